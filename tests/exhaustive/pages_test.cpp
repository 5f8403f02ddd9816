// Every code page against its public table, read by separate code: every byte, every two bytes, every code
// point, in every encoding form that the data file lists for the page.
#include "harness/compare.hpp"
#include "harness/names.hpp"

#include <map>

using harness::Bytes;
using harness::kStride;
using harness::Pair;

namespace {

class PageTest : public ::testing::TestWithParam<std::string> {};
class MultibytePageTest : public PageTest {};

Bytes bytesOfCode(std::uint32_t code) {
    if (code > 0xFF)
        return {static_cast<std::uint8_t>(code >> 8), static_cast<std::uint8_t>(code)};
    return {static_cast<std::uint8_t>(code)};
}

// Bytes that a third byte is taken from: one of each role that a byte can have anywhere.
const Bytes kThirdBytes = {0x00, 0x0A, 0x31, 0x41, 0x5C, 0x7E, 0x7F, 0x80,
                           0x81, 0x8E, 0xA1, 0xC1, 0xDF, 0xFE, 0xFF};

TEST_P(PageTest, sourceTableHasTheDocumentedSize) {
    static const std::map<std::string, std::pair<std::size_t, std::size_t>> kSizes = {
        {"708", {211, 211}},
        {"720", {248, 248}},
        {"ISO8859-8", {220, 220}},
        {"SHIFT-JIS", {9795, 9397}},
        {"EUCJIS", {7527, 7517}},
        {"KSC5601", {8387, 8387}},
        {"CP949", {17366, 17366}},
        {"CP1361", {17177, 17177}},
        {"GB2312", {7573, 7573}},
        {"CP936", {24070, 24070}},
        {"BIG-5", {14040, 14030}},
        {"CP950", {19850, 19840}},
        {"CP950-HKSCS", {18588, 18580}},
        {"ISO6937", {398, 398}}};
    const model::Page &page = model::page(GetParam());
    if (const auto size = kSizes.find(GetParam()); size != kSizes.end()) {
        EXPECT_EQ(page.codes, size->second.first);
        EXPECT_EQ(page.reversible, size->second.second);
    } else {
        EXPECT_FALSE(page.multibyte);
        EXPECT_GT(page.codes, 200u);
        EXPECT_LE(page.codes, 256u);
    }
}

TEST_P(PageTest, trailCountsAreThoseOfThePage) {
    const model::Page &page = model::page(GetParam());
    nlsLocale *const locale = harness::library().locale(GetParam());
    for (unsigned first = 1; first < 256; ++first) {
        char text[12] = {};
        std::fill(text, text + 10, 'a');
        text[0] = static_cast<char>(first);
        char *next = nullptr;
        ASSERT_EQ(nlsGetNextChar(locale, text, &next), NLS_OK);
        EXPECT_EQ(next - text, 1 + page.trailCount[first]) << std::hex << first;
    }
}

TEST_P(PageTest, everyByteBecomesItsCharacter) {
    for (const char *form : harness::kListedForms) {
        Pair pair(GetParam(), form);
        for (std::uint32_t byte = 0; byte < 256; ++byte)
            ASSERT_TRUE(pair.agree({static_cast<std::uint8_t>(byte)}, 16));
    }
}

TEST_P(PageTest, everyTwoBytesBecomeTheirCharacters) {
    for (const char *form : harness::kListedForms) {
        Pair pair(GetParam(), form);
        for (std::uint32_t code = 0; code < 0x10000; code += kStride)
            ASSERT_TRUE(
                pair.agree({static_cast<std::uint8_t>(code >> 8), static_cast<std::uint8_t>(code)}, 16));
    }
}

TEST_P(MultibytePageTest, everyTwoBytesKeepTheirMeaningBeforeAThird) {
    for (const char *form : {"UTF-8", "UTF-16"}) {
        Pair pair(GetParam(), form);
        for (std::uint32_t code = 0; code < 0x10000; code += kStride)
            for (const std::uint8_t third : kThirdBytes)
                ASSERT_TRUE(pair.agree(
                    {static_cast<std::uint8_t>(code >> 8), static_cast<std::uint8_t>(code), third}, 16));
    }
}

TEST_P(PageTest, allCodesInOneTextBecomeTheirCharacters) {
    const model::Page &page = model::page(GetParam());
    Bytes mapped;
    Bytes everything;
    for (std::uint32_t code = 0; code < 0x10000; ++code) {
        const bool wellFormed = code < 256 ? page.trailCount[code] == 0 : page.trailCount[code >> 8] == 1;
        const Bytes bytes = bytesOfCode(code);
        if (wellFormed && page.unicodeOfCode[code] != model::kNone)
            mapped.insert(mapped.end(), bytes.begin(), bytes.end());
        everything.insert(everything.end(), bytes.begin(), bytes.end());
    }
    for (const char *form : harness::kListedForms) {
        Pair pair(GetParam(), form);
        for (const Bytes &text : {mapped, everything})
            ASSERT_TRUE(pair.agree(text, static_cast<std::uint32_t>(text.size() * 4)));
    }
}

TEST_P(PageTest, everyCodePointBecomesItsCode) {
    for (const char *form : harness::kListedForms) {
        Pair pair(form, GetParam());
        // Plane 2 has mapped characters too; all forms share one table behind the decoder.
        const std::uint32_t end = pair.expected().source().form == model::Form::kUtf8 ? 0x30000 : 0x10000;
        for (std::uint32_t codePoint = 0; codePoint < end; codePoint += kStride) {
            Bytes text;
            model::appendEncoded(text, pair.expected().source(), codePoint);
            ASSERT_TRUE(pair.agree(text, 8));
        }
    }
}

TEST_P(PageTest, allCodePointsInShortRunsBecomeTheirCodes) {
    constexpr std::uint32_t kRun = 64;
    for (const char *form : harness::kListedForms) {
        Pair pair(form, GetParam());
        for (std::uint32_t first = 0; first < 0x110000; first += kRun * kStride) {
            Bytes text;
            for (std::uint32_t codePoint = first; codePoint < first + kRun; ++codePoint)
                model::appendEncoded(text, pair.expected().source(), codePoint);
            ASSERT_TRUE(pair.agree(text, 2 * kRun));
        }
    }
}

TEST_P(PageTest, allCodePointsInOneTextBecomeTheirCodes) {
    for (const char *form : harness::kListedForms) {
        Pair pair(form, GetParam());
        Bytes text;
        for (std::uint32_t codePoint = 0; codePoint < 0x110000; ++codePoint)
            model::appendEncoded(text, pair.expected().source(), codePoint);
        ASSERT_TRUE(pair.agree(text, 0x220000));
    }
}

TEST_P(PageTest, everyReversibleCodeTurnsBack) {
    const model::Page &page = model::page(GetParam());
    Pair there(GetParam(), "UTF-8");
    Pair back("UTF-8", GetParam());
    std::size_t turned = 0;
    for (std::uint32_t unicode = 1; unicode < page.codeOfUnicode.size(); ++unicode) {
        if (page.codeOfUnicode[unicode] == model::kNone)
            continue;
        const Bytes code = bytesOfCode(page.codeOfUnicode[unicode]);
        std::uint8_t middle[8];
        std::uint8_t out[8];
        const harness::BareResult first = harness::convertBare(
            there.actual(), code.data(), static_cast<std::uint32_t>(code.size()), middle, sizeof middle);
        ASSERT_EQ(first.status, NLS_OK) << harness::hex(code);
        const harness::BareResult second =
            harness::convertBare(back.actual(), middle, first.written, out, sizeof out);
        ASSERT_EQ(second.status, NLS_OK) << harness::hex(code);
        ASSERT_EQ(Bytes(out, out + second.written), code);
        ++turned;
    }
    EXPECT_GT(turned, 200u);
}

TEST_P(PageTest, everySingleCharacterCallConvertsInPlace) {
    for (const char *form : harness::kListedForms) {
        Pair to(GetParam(), form);
        Pair from(form, GetParam());
        for (std::uint32_t value = 0; value < 0x10000; value += kStride) {
            ASSERT_TRUE(to.agreeCharacter(value));
            ASSERT_TRUE(from.agreeCharacter(value));
        }
    }
    Pair from("UTF-8", GetParam());
    for (std::uint32_t codePoint = 0x80; codePoint < 0x30000; codePoint += kStride) {
        Bytes text;
        model::appendEncoded(text, from.expected().source(), codePoint);
        std::uint32_t character = 0;
        for (const std::uint8_t byte : text)
            character = character * 256 + byte;
        ASSERT_TRUE(from.agreeCharacter(character));
    }
}

TEST_P(PageTest, textOfItsOwnPageIsCopied) {
    Pair pair(GetParam(), GetParam());
    const Bytes text = {'a', 0x81, 0xFF, 0, 'b'};
    for (std::uint32_t capacity = 0; capacity < 10; ++capacity) {
        EXPECT_TRUE(pair.agree(text, capacity));
        EXPECT_TRUE(pair.agreeTerminated(text, capacity));
        EXPECT_TRUE(pair.agreeChecked(text, capacity));
    }
}

INSTANTIATE_TEST_SUITE_P(Pages, PageTest, ::testing::ValuesIn(model::allPages()), harness::pageTestName);
INSTANTIATE_TEST_SUITE_P(Pages, MultibytePageTest, ::testing::ValuesIn(model::multibytePages()),
                         harness::pageTestName);

} // namespace
