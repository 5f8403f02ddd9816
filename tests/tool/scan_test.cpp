// The judges of well-formed text, compared with plain second versions of the rules.
#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <vector>

#include "scan.hpp"

namespace velnls::tool {
namespace {

// Length of the well-formed character at the start, by decoding it: minimal length, no surrogate, in range.
std::size_t decodedLength(const std::vector<unsigned char> &text) {
    const unsigned char lead = text[0];
    if (lead < 0x80) {
        return 1;
    }
    std::size_t length = 0;
    std::uint32_t value = 0;
    if ((lead & 0xE0) == 0xC0) {
        length = 2;
        value = lead & 0x1Fu;
    } else if ((lead & 0xF0) == 0xE0) {
        length = 3;
        value = lead & 0x0Fu;
    } else if ((lead & 0xF8) == 0xF0) {
        length = 4;
        value = lead & 0x07u;
    }
    if (length == 0 || text.size() < length) {
        return 0;
    }
    for (std::size_t i = 1; i < length; ++i) {
        if ((text[i] & 0xC0) != 0x80) {
            return 0;
        }
        value = value << 6 | (text[i] & 0x3Fu);
    }
    const std::uint32_t least = length == 2 ? 0x80 : length == 3 ? 0x800 : 0x10000;
    return value < least || (value >= 0xD800 && value <= 0xDFFF) || value > 0x10FFFF ? 0 : length;
}

Page utf8Page() {
    Page page;
    page.form = Form::Utf8;
    page.derive();
    return page;
}

// Every first and second byte, and third and fourth bytes from both sides of every limit.
TEST(ScanUtf8, AgreesWithDecodingForEverySequence) {
    const Page page = utf8Page();
    const unsigned char kThird[] = {0x00, 0x41, 0x7F, 0x80, 0x81, 0xBF, 0xC0, 0xE0, 0xFF};
    std::vector<unsigned char> text(4);
    for (unsigned first = 0; first < 256; ++first) {
        for (unsigned second = 0; second < 256; ++second) {
            for (const unsigned char third : kThird) {
                for (const unsigned char fourth : kThird) {
                    text = {static_cast<unsigned char>(first), static_cast<unsigned char>(second), third,
                            fourth};
                    const std::size_t length = decodedLength(text);
                    // Short input takes the careful way, input with ASCII behind it the fast one.
                    const Scan careful = scanText(page, text.data(), text.size(), true);
                    unsigned char block[64];
                    std::memset(block, 'a', sizeof block);
                    std::memcpy(block + 1, text.data(), text.size());
                    const Scan fast = scanText(page, block, sizeof block, true);
                    if (length == 0) {
                        ASSERT_EQ(careful.good, 0u);
                        ASSERT_GE(careful.bad, 1u);
                        ASSERT_EQ(fast.good, 1u);
                        ASSERT_GE(fast.bad, 1u);
                        ASSERT_NE(fast.fault, Fault::None);
                        ASSERT_NE(fast.fault, Fault::CutShort);
                    } else {
                        ASSERT_GE(careful.good, length);
                        ASSERT_GE(fast.good, 1 + length);
                        ASSERT_EQ(characterLength(page, text.data()), length);
                    }
                }
            }
        }
    }
}

TEST(ScanUtf8, FindsAFaultAtEveryPlaceOfABlock) {
    const Page page = utf8Page();
    for (std::size_t size = 1; size < 100; ++size) {
        for (std::size_t at = 0; at < size; ++at) {
            std::vector<unsigned char> text(size, 'a');
            text[at] = 0xFF;
            const Scan scan = scanText(page, text.data(), text.size(), true);
            ASSERT_EQ(scan.good, at);
            ASSERT_EQ(scan.bad, 1u);
            ASSERT_EQ(scan.fault, Fault::ImpossibleByte);
        }
    }
}

TEST(ScanUtf8, LeavesACutCharacterForLater) {
    const Page page = utf8Page();
    const std::string character = "\xF0\x9F\x98\x80";
    for (std::size_t before = 0; before < 70; ++before) {
        for (std::size_t kept = 1; kept < 4; ++kept) {
            const std::string text = std::string(before, 'a') + character.substr(0, kept);
            const auto *bytes = reinterpret_cast<const unsigned char *>(text.data());
            const Scan later = scanText(page, bytes, text.size(), false);
            ASSERT_EQ(later.good, before);
            ASSERT_EQ(later.bad, 0u);
            const Scan last = scanText(page, bytes, text.size(), true);
            ASSERT_EQ(last.good, before);
            ASSERT_EQ(last.bad, kept);
            ASSERT_EQ(last.fault, Fault::CutShort);
        }
    }
}

// Well-formed text of "size" bytes at least, in which characters of all lengths fall on all places.
template <typename Random>
std::vector<unsigned char> mixedText(Random &random, const std::vector<std::string> &characters,
                                     std::size_t size) {
    std::vector<unsigned char> text;
    while (text.size() < size) {
        // Stretches of one kind, so that whole blocks of it come up.
        const std::string &character = characters[random() % characters.size()];
        for (std::size_t count = random() % 90 + 1; count != 0; --count) {
            text.insert(text.end(), character.begin(), character.end());
        }
    }
    return text;
}

TEST(ScanUtf8, AgreesWithDecodingOnLongDamagedText) {
    const Page page = utf8Page();
    std::mt19937 random(1);
    const std::vector<std::string> characters = {"a",
                                                 "\xC3\xA9",
                                                 "\xE6\x97\xA5",
                                                 "\xF0\x9F\x98\x80",
                                                 "\xED\x9F\xBF",
                                                 "\xEE\x80\x80",
                                                 "\xF4\x8F\xBF\xBF",
                                                 "\xC2\x80"};
    for (int round = 0; round < 3000; ++round) {
        std::vector<unsigned char> text = mixedText(random, characters, 700);
        if (round % 10 != 0) {
            text[random() % text.size()] = static_cast<unsigned char>(random());
        }
        text.resize(text.size() - random() % 4);
        std::size_t good = 0;
        while (good < text.size()) {
            const std::size_t length =
                decodedLength({text.begin() + static_cast<std::ptrdiff_t>(good), text.end()});
            if (length == 0) {
                break;
            }
            good += length;
        }
        const Scan scan = scanText(page, text.data(), text.size(), true);
        ASSERT_EQ(scan.good, good) << "round " << round;
        ASSERT_EQ(scan.bad != 0, good != text.size());
    }
}

// A page whose trail bytes may have the values of lead bytes and of ASCII letters, as SHIFT-JIS has.
TEST(ScanPairs, AgreesWithWalkingOnLongDamagedText) {
    Page page;
    page.form = Form::Multibyte;
    for (unsigned byte = 0; byte < 256; ++byte) {
        page.trailCount[byte] = (byte >= 0x81 && byte <= 0x9F) || (byte >= 0xE0 && byte <= 0xFC);
        page.trailValid[byte] = byte >= 0x40 && byte <= 0xFC && byte != 0x7F;
    }
    page.derive();
    ASSERT_TRUE(page.hasPairs);
    std::mt19937 random(1);
    const std::vector<std::string> characters = {"a",    "\x88\x9F", "\x83\x5C", "\xE0\xE0",
                                                 "\xB1", "\x81\x81", "\n"};
    for (int round = 0; round < 3000; ++round) {
        std::vector<unsigned char> text = mixedText(random, characters, 700);
        for (int damages = round % 3; damages > 0; --damages) {
            text[random() % text.size()] = static_cast<unsigned char>(random());
        }
        text.resize(text.size() - random() % 2);
        std::size_t good = 0;
        Fault fault = Fault::None;
        while (good < text.size()) {
            if (page.trailCount[text[good]] == 0) {
                ++good;
            } else if (good + 1 == text.size()) {
                fault = Fault::CutShort;
                break;
            } else if (page.trailValid[text[good + 1]] == 0) {
                fault = Fault::BadTrail;
                break;
            } else {
                good += 2;
            }
        }
        const Scan scan = scanText(page, text.data(), text.size(), true);
        ASSERT_EQ(scan.good, good) << "round " << round;
        ASSERT_EQ(scan.fault, fault) << "round " << round;
        const Scan later = scanText(page, text.data(), text.size(), false);
        ASSERT_EQ(later.good, good);
        ASSERT_EQ(later.bad, fault == Fault::BadTrail ? 1u : 0u);
    }
}

class ScanUnits : public testing::TestWithParam<bool> {
protected:
    Page page(Form form) const {
        Page result;
        result.form = form;
        result.highByteFirst = GetParam();
        return result;
    }
    void put(std::vector<unsigned char> &text, std::uint32_t unit, int bytes) const {
        for (int i = 0; i < bytes; ++i) {
            const int shift = 8 * (GetParam() ? bytes - 1 - i : i);
            text.push_back(static_cast<unsigned char>(unit >> shift));
        }
    }
};

TEST_P(ScanUnits, EverySingle16BitUnitIsASurrogateOrFine) {
    for (std::uint32_t unit = 0; unit < 0x10000; ++unit) {
        std::vector<unsigned char> text;
        for (int i = 0; i < 5; ++i) {
            put(text, 'a', 2);
        }
        put(text, unit, 2);
        for (int i = 0; i < 30; ++i) {
            put(text, 'a', 2);
        }
        const Scan scan = scanText(page(Form::Utf16), text.data(), text.size(), true);
        if (unit >= 0xD800 && unit <= 0xDFFF) {
            ASSERT_EQ(scan.good, 10u) << unit;
            ASSERT_EQ(scan.bad, 2u);
            ASSERT_EQ(scan.fault, unit < 0xDC00 ? Fault::LoneHigh : Fault::LoneLow);
        } else {
            ASSERT_EQ(scan.good, text.size()) << unit;
        }
    }
}

TEST_P(ScanUnits, PairsAreFineAtEveryPlaceOfABlock) {
    for (int before = 0; before < 40; ++before) {
        std::vector<unsigned char> text;
        for (int i = 0; i < before; ++i) {
            put(text, 0x65E5, 2);
        }
        put(text, 0xD83D, 2);
        put(text, 0xDE00, 2);
        for (int i = 0; i < 40; ++i) {
            put(text, 'a', 2);
        }
        EXPECT_EQ(scanText(page(Form::Utf16), text.data(), text.size(), true).good, text.size());
        const std::size_t cut = 2 * static_cast<std::size_t>(before) + 2;
        for (const std::size_t odd : {0u, 1u}) {
            const Scan later = scanText(page(Form::Utf16), text.data(), cut + odd, false);
            EXPECT_EQ(later.good, cut - 2);
            EXPECT_EQ(later.bad, 0u);
        }
    }
}

TEST_P(ScanUnits, A32BitUnitIsACharacterUpTo10FFFFButForSurrogates) {
    const struct {
        std::uint32_t unit;
        Fault fault;
    } kUnits[] = {
        {0, Fault::None},
        {0xD7FF, Fault::None},
        {0xD800, Fault::Surrogate},
        {0xDFFF, Fault::Surrogate},
        {0xE000, Fault::None},
        {0x10FFFF, Fault::None},
        {0x110000, Fault::OutOfRange},
        {0xFFFFFFFF, Fault::OutOfRange},
        {0x1D800, Fault::None},
    };
    for (const auto &entry : kUnits) {
        std::vector<unsigned char> text;
        put(text, 'a', 4);
        put(text, entry.unit, 4);
        const Scan scan = scanText(page(Form::Utf32), text.data(), text.size(), true);
        EXPECT_EQ(scan.fault, entry.fault) << entry.unit;
        EXPECT_EQ(scan.good, entry.fault == Fault::None ? 8u : 4u);
    }
}

INSTANTIATE_TEST_SUITE_P(Order, ScanUnits, testing::Bool(), [](const auto &made) {
    return std::string(made.param ? "HighByteFirst" : "LowByteFirst");
});

// The rules of GB 18030: two bytes, or four with digits in second and fourth place.
TEST(ScanGb18030, FourByteCharactersAreOneCharacter) {
    Page page;
    page.form = Form::Gb18030;
    for (unsigned byte = 0x81; byte <= 0xFE; ++byte) {
        page.trailCount[byte] = 1;
    }
    for (unsigned byte = 0x30; byte <= 0xFE; ++byte) {
        page.trailValid[byte] = (byte <= 0x39 || byte >= 0x40) && byte != 0x7F;
    }
    const auto scan = [&](const std::string &text, bool atEnd) {
        return scanText(page, reinterpret_cast<const unsigned char *>(text.data()), text.size(), atEnd);
    };
    EXPECT_EQ(scan("a\xB0\xA1\x81\x30\x81\x30z", true).good, 8u);
    for (std::size_t size = 1; size < 4; ++size) {
        const std::string cut = std::string("\x81\x30\x81\x30").substr(0, size);
        EXPECT_EQ(scan(cut, false).good, 0u);
        EXPECT_EQ(scan(cut, false).bad, 0u);
        EXPECT_EQ(scan(cut, true).fault, Fault::CutShort);
    }
    EXPECT_EQ(scan("\x81\x30z", true).fault, Fault::BadTrail);
    EXPECT_EQ(scan("\x81\x30\x81z", true).fault, Fault::BadTrail);
    EXPECT_EQ(scan("\x81\x7F", true).fault, Fault::BadTrail);
    const auto length = [&](const char *text) {
        return characterLength(page, reinterpret_cast<const unsigned char *>(text));
    };
    EXPECT_EQ(length("a"), 1u);
    EXPECT_EQ(length("\xB0\xA1"), 2u);
    EXPECT_EQ(length("\x81\x30\x81\x30"), 4u);
}

} // namespace
} // namespace velnls::tool
