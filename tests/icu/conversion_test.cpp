// Conversions through ICU: which converter is opened, what is given to it, and what comes out at odd
// addresses, in the other byte order, through UTF-8, and when ICU fails.
#include <gtest/gtest.h>

#include "converted.hpp"
#include "fake.hpp"
#include "guarded_buffer.hpp"
#include "process.hpp"
#include "world.hpp"

#include <algorithm>
#include <cstring>
#include <map>
#include <tuple>
#include <vector>

namespace {

using fixture::Bytes;
using fixture::bytesOf;
using fixture::operator+;
using fixture::GuardedBuffer;
using fixture::units16;
using process::Home;
using process::seen;

// A case with the fake ICU and an open handle.
void withIcu(const std::function<void(world::Open &)> &body) {
    const Home home;
    home.putIcu();
    process::isolated([&] {
        process::setVariable("BINPATHX", home.path());
        world::Open open;
        body(open);
    });
}

// nlsConvertFromUCS2 from units at an even address, with no terminator of their own.
fixture::Converted fromUnits(nlsConversion *conversion, const Bytes &units, std::uint32_t capacity) {
    GuardedBuffer source(256);
    GuardedBuffer target(256);
    fixture::Converted result;
    unsigned char *const out = target.tail(capacity);
    nlsStr destination{reinterpret_cast<char *>(out), capacity, fixture::kNotWritten};
    result.status = nlsConvertFromUCS2(conversion, source.readOnly(units),
                                       static_cast<std::uint32_t>(units.size()), &destination);
    result.written = destination.length;
    result.destination.assign(out, out + capacity);
    return result;
}

Bytes repeated(const Bytes &part, std::size_t count) {
    Bytes all;
    for (std::size_t i = 0; i < count; ++i)
        all.insert(all.end(), part.begin(), part.end());
    return all;
}

// ---- Opening and closing ----

TEST(IcuConversion, TheConverterIsOpenedForThePageThatIsNotUnicode) {
    withIcu([](world::Open &open) {
        for (const auto &[source, target] : std::vector<std::pair<const char *, const char *>>{
                 {"X", "UTF-8"}, {"UTF-8", "X"}, {"X", "UTF-16"}, {"UTF-16BE", "X"}}) {
            EXPECT_TRUE(seen("nlsCreateConversion", 0, open.tryConversion(source, target)));
            EXPECT_EQ(fake::icu.last("ucnv_open").text, "X");
        }
        EXPECT_EQ(fake::icu.openConverters, 4);
        EXPECT_EQ(open.tryConversion("X", "UTF-8"), NLS_OK);
        EXPECT_EQ(fake::icu.openConverters, 4) << "one for each direction, once";
    });
}

TEST(IcuConversion, APageThatIcuDoesNotKnowGives8) {
    withIcu([](world::Open &open) {
        fake::icu.openError["MISSING"] = 4;
        for (const char *const target : {"UTF-8", "UTF-16", "UTF-16BE"}) {
            EXPECT_TRUE(seen("nlsCreateConversion", 8, open.tryConversion("MISSING", target)));
            EXPECT_TRUE(seen("nlsCreateConversion", 8, open.tryConversion(target, "MISSING")));
        }
        EXPECT_EQ(fake::icu.openConverters, 0);
        fake::icu.openError.clear();
        EXPECT_EQ(open.tryConversion("MISSING", "UTF-8"), NLS_OK) << "a later request tries again";
    });
}

TEST(IcuConversion, AWarningFromOpeningIsNoFailure) {
    withIcu([](world::Open &open) {
        fake::icu.openError["X"] = -122;
        EXPECT_TRUE(seen("nlsCreateConversion", 0, open.tryConversion("X", "UTF-8")));
    });
}

TEST(IcuConversion, ConvertersAreClosedWithTheHandle) {
    withIcu([](world::Open &open) {
        for (const char *const unicode : {"UTF-8", "UTF-16", "UTF-16BE"}) {
            open.conversion("X", unicode);
            open.conversion(unicode, "WIDE");
        }
        EXPECT_EQ(fake::icu.openConverters, 6);
        EXPECT_TRUE(seen("nlsClose", 0, nlsClose(open.handle)));
        EXPECT_EQ(fake::icu.openConverters, 0);
        EXPECT_EQ(fake::icu.count("ucnv_close"), 6);
    });
}

TEST(IcuConversion, TheConverterIsClosedWhenThereIsNoMemoryToKeepIt) {
    const Home home;
    home.putIcu();
    process::isolated([&] {
        process::setVariable("BINPATHX", home.path());
        bool exhausted = false;
        fixture::DataFile file(48);
        file.codePage("UTF-8", fixture::CharacterTable::utf8());
        file.codePage("X", fixture::CharacterTable::singleByte());
        file.conversion("X", "UTF-8", 177);
        for (std::uint32_t left = 0; left < 200 && !exhausted; ++left) {
            fixture::Library library(file, 25000);
            nlsLocale *const from = library.locale("X");
            nlsLocale *const to = library.locale("UTF-8");
            // The handle's own count of what is left, at byte 72 of it.
            std::memcpy(reinterpret_cast<unsigned char *>(library.handle) + 72, &left, sizeof left);
            nlsConversion *conversion = nullptr;
            const nlsStatus status = nlsCreateConversion(library.handle, from, to, &conversion);
            if (status == NLS_OK) {
                exhausted = true;
                EXPECT_EQ(fake::icu.openConverters, 1);
            } else {
                EXPECT_TRUE(seen("nlsCreateConversion", 1, status)) << left;
                EXPECT_EQ(fake::icu.openConverters, 0) << left;
            }
        }
        EXPECT_TRUE(exhausted);
    });
}

TEST(IcuConversion, TheExpansionIs4AndTheCharacterWidthHasNoValue) {
    withIcu([](world::Open &open) {
        for (nlsConversion *const conversion :
             {open.conversion("X", "UTF-8"), open.conversion("UTF-16", "X")}) {
            std::uint32_t value = 0;
            EXPECT_TRUE(
                seen("nlsGetIntConversionProperty", 0, nlsGetIntConversionProperty(conversion, 17, &value)));
            EXPECT_EQ(value, 4U);
            EXPECT_TRUE(
                seen("nlsGetIntConversionProperty", 16, nlsGetIntConversionProperty(conversion, 24, &value)));
        }
    });
}

// ---- The character set to UTF-16 ----

TEST(IcuConversion, ToUtf16GivesUnitsOfTheMachine) {
    withIcu([](world::Open &open) {
        const auto result = fixture::convert(open.conversion("X", "UTF-16"), bytesOf("a\x81z"), 20);
        EXPECT_TRUE(seen("nlsConvertFromUCS2", 0, result.status));
        EXPECT_EQ(result.text(), units16({'a', 0x4E81, 'z'}));
        EXPECT_EQ(fake::icu.last("ucnv_toUChars").number, -1) << "a source that ends with its NUL";
        EXPECT_EQ(fake::icu.last("ucnv_toUChars").capacity, 10);
    });
}

TEST(IcuConversion, ToUtf16InTheOtherOrderIsSwapped) {
    withIcu([](world::Open &open) {
        const auto result = fixture::convert(open.conversion("X", "UTF-16BE"), bytesOf("a\x81z"), 20);
        EXPECT_TRUE(seen("nlsConvertFromUCS2", 0, result.status));
        EXPECT_EQ(result.text(), units16({'a', 0x4E81, 'z'}, true));
    });
}

TEST(IcuConversion, AnOddTargetReceivesTheUnitsAtItsAddress) {
    withIcu([](world::Open &open) {
        for (const char *const target : {"UTF-16", "UTF-16BE"}) {
            const bool swapped = target[6] != '\0';
            alignas(16) char buffer[32];
            std::memset(buffer, 0x55, sizeof buffer);
            char text[] = "a\x81z";
            const nlsStr source{text, sizeof text, 3};
            nlsStr destination{buffer + 1, 21, 0};
            EXPECT_TRUE(seen("nlsConvertNLS", 0,
                             nlsConvertNLS(open.conversion("X", target), &source, nullptr, &destination)));
            EXPECT_EQ(destination.length, 6U);
            EXPECT_EQ(Bytes(buffer + 1, buffer + 7), units16({'a', 0x4E81, 'z'}, swapped));
            EXPECT_EQ(buffer[0], 0x55);
            EXPECT_EQ(buffer[22], 0x55);
            EXPECT_TRUE(fake::icu.last("ucnv_toUChars").aligned);
            EXPECT_EQ(fake::icu.last("ucnv_toUChars").capacity, 10) << "(21 - 1) / 2";
        }
    });
}

TEST(IcuConversion, CapacitiesOfUtf16TargetsAreHalved) {
    withIcu([](world::Open &open) {
        nlsConversion *const conversion = open.conversion("X", "UTF-16");
        GuardedBuffer guarded(64);
        char text[] = "abc";
        const nlsStr source{text, sizeof text, 3};
        for (std::uint32_t size = 0; size < 20; ++size) {
            auto *const at = reinterpret_cast<char *>(guarded.tail(size));
            const bool odd = size % 2 != 0; // the page ends at an even address
            nlsStr destination{at, size, 0};
            const nlsStatus status = nlsConvertNLS(conversion, &source, nullptr, &destination);
            const std::int32_t capacity = (static_cast<std::int32_t>(size) - (odd ? 1 : 0)) / 2;
            EXPECT_EQ(fake::icu.last("ucnv_toUChars").capacity, std::max(capacity, 0));
            if (capacity < 3)
                EXPECT_TRUE(seen("nlsConvertNLS", size == 0 ? 2 : 16, status)) << size;
            else
                EXPECT_TRUE(seen("nlsConvertNLS", size == 6 ? 2 : 0, status)) << size;
        }
    });
}

TEST(IcuConversion, AnErrorToUtf16Gives16) {
    withIcu([](world::Open &open) {
        nlsConversion *const conversion = open.conversion("X", "UTF-16");
        for (const std::int32_t error : {1, 10, 12, 15}) {
            fake::icu.conversionError[fake::icu.conversions] = error;
            const auto result = fixture::convert(conversion, bytesOf("abc"), 20);
            EXPECT_TRUE(seen("nlsConvertFromUCS2", 16, result.status)) << error;
            EXPECT_EQ(result.written, 0U) << "nothing counted";
        }
        fake::icu.conversionError[fake::icu.conversions] = -122;
        EXPECT_EQ(fixture::convert(conversion, bytesOf("abc"), 20).status, NLS_OK) << "a warning";
    });
}

// ---- UTF-16 to the character set ----

TEST(IcuConversion, FromUtf16ReadsUnitsOfTheMachine) {
    withIcu([](world::Open &open) {
        const auto result = fromUnits(open.conversion("UTF-16", "X"), units16({'a', 0x4E81, 'z'}), 20);
        EXPECT_TRUE(seen("nlsConvertFromUCS2", 0, result.status));
        EXPECT_EQ(result.text(), bytesOf("a\x81z"));
        EXPECT_EQ(fake::icu.last("ucnv_fromUChars").number, 3)
            << "counted, since no NUL stands in the bounds";
    });
}

TEST(IcuConversion, FromUtf16EndsAtTheFirstZeroUnit) {
    withIcu([](world::Open &open) {
        nlsConversion *const conversion = open.conversion("UTF-16", "X");
        const auto result = fromUnits(conversion, units16({'a', 0, 'z'}), 20);
        EXPECT_EQ(result.text(), bytesOf("a"));
        EXPECT_EQ(fake::icu.last("ucnv_fromUChars").number, -1);
        EXPECT_EQ(fromUnits(conversion, units16({0x6100, 0x0061}), 20).text(), bytesOf({"\0a", 2}))
            << "a zero byte is no zero unit";
    });
}

TEST(IcuConversion, ASourceAtAnOddAddressIsMovedAndRestored) {
    withIcu([](world::Open &open) {
        for (const char *const from : {"UTF-16", "UTF-16BE"}) {
            const bool swapped = from[6] != '\0';
            for (const bool terminated : {false, true}) {
                Bytes text = units16({'a', 0x4E81, 'z'}, swapped);
                if (terminated)
                    text = text + units16({0});
                alignas(16) unsigned char buffer[32];
                std::memset(buffer, 0x55, sizeof buffer);
                std::copy(text.begin(), text.end(), buffer + 1);
                const Bytes before(buffer, buffer + sizeof buffer);
                char out[20];
                nlsStr destination{out, sizeof out, 0};
                EXPECT_TRUE(seen("nlsConvertFromUCS2", 0,
                                 nlsConvertFromUCS2(open.conversion(from, "X"), buffer + 1,
                                                    static_cast<std::uint32_t>(text.size()), &destination)));
                EXPECT_EQ(Bytes(out, out + destination.length), bytesOf("a\x81z"));
                EXPECT_TRUE(fake::icu.last("ucnv_fromUChars").aligned);
                EXPECT_EQ(fake::icu.last("ucnv_fromUChars").number, terminated ? -1 : 3);
                EXPECT_EQ(Bytes(buffer, buffer + sizeof buffer), before);
            }
        }
    });
}

TEST(IcuConversion, ASwappedSourceIsSwappedBackAndTouchesNothingBehindItsTerminator) {
    withIcu([](world::Open &open) {
        nlsConversion *const conversion = open.conversion("UTF-16BE", "X");
        GuardedBuffer guarded(64);
        const Bytes text = units16({'a', 0x4E81, 'z'}, true) + units16({0});
        unsigned char *const at = guarded.tail(text.size());
        std::copy(text.begin(), text.end(), at);
        char out[20];
        nlsStr destination{out, sizeof out, 0};
        EXPECT_EQ(nlsConvertFromUCS2(conversion, at, static_cast<std::uint32_t>(text.size()), &destination),
                  NLS_OK);
        EXPECT_EQ(Bytes(out, out + destination.length), bytesOf("a\x81z"));
        EXPECT_EQ(Bytes(at, at + text.size()), text);
        // Behind an inner terminator stands text that nobody may swap.
        Bytes more = text + units16({'q', 'q'}, true);
        fake::icu.conversionError[fake::icu.conversions] = 10;
        EXPECT_EQ(nlsConvertFromUCS2(conversion, more.data(), static_cast<std::uint32_t>(more.size()),
                                     &destination),
                  NLS_E_NULLARG);
        EXPECT_EQ(more, text + units16({'q', 'q'}, true)) << "also after an error";
    });
}

TEST(IcuConversion, ASourceInTheMachinesOrderAtAnEvenAddressIsOnlyRead) {
    withIcu([](world::Open &open) {
        GuardedBuffer guarded(64);
        const unsigned char *const at = guarded.readOnly(units16({'a', 0x4E81, 'z'}) + units16({0}));
        char out[20];
        nlsStr destination{out, sizeof out, 0};
        EXPECT_EQ(nlsConvertFromUCS2(open.conversion("UTF-16", "X"), at, 8, &destination), NLS_OK);
        EXPECT_EQ(destination.length, 3U);
    });
}

TEST(IcuConversion, AnErrorFromUtf16Gives16) {
    withIcu([](world::Open &open) {
        nlsConversion *const conversion = open.conversion("UTF-16", "X");
        fake::icu.conversionError[fake::icu.conversions] = 10;
        EXPECT_TRUE(seen("nlsConvertFromUCS2", 16, fromUnits(conversion, units16({'a'}), 20).status));
        EXPECT_TRUE(seen("nlsConvertFromUCS2", 16, fromUnits(conversion, units16({'a', 'b'}), 1).status))
            << "too small a target is ICU's error too";
    });
}

// ---- UTF-8 ----

TEST(IcuConversion, ToUtf8GoesThroughUtf16) {
    withIcu([](world::Open &open) {
        const auto result = fixture::convert(open.conversion("X", "UTF-8"), bytesOf("a\x81z"), 20);
        EXPECT_TRUE(seen("nlsConvertFromUCS2", 0, result.status));
        EXPECT_EQ(result.text(), bytesOf("a\xE4\xBA\x81z"));
        EXPECT_EQ(fake::icu.last("ucnv_toUChars").text, "X");
        EXPECT_EQ(fake::icu.last("ucnv_toUChars").number, -1);
        EXPECT_EQ(fake::icu.last("ucnv_toUChars").capacity, 4) << "source length + 1 units";
        EXPECT_EQ(fake::icu.last("ucnv_fromUChars").text, "utf8");
        EXPECT_EQ(fake::icu.last("ucnv_fromUChars").number, -1);
        EXPECT_EQ(fake::icu.last("ucnv_fromUChars").capacity, 20) << "the whole target";
    });
}

TEST(IcuConversion, FromUtf8GoesThroughUtf16) {
    withIcu([](world::Open &open) {
        const auto result = fixture::convert(open.conversion("UTF-8", "X"), bytesOf("a\xE4\xBA\x81z"), 20);
        EXPECT_TRUE(seen("nlsConvertFromUCS2", 0, result.status));
        EXPECT_EQ(result.text(), bytesOf("a\x81z"));
        EXPECT_EQ(fake::icu.last("ucnv_toUChars").text, "utf8");
        EXPECT_EQ(fake::icu.last("ucnv_toUChars").capacity, 6);
        EXPECT_EQ(fake::icu.last("ucnv_fromUChars").text, "X");
    });
}

TEST(IcuConversion, TheUtf8ConverterIsClosedAfterEachCall) {
    withIcu([](world::Open &open) {
        nlsConversion *const to = open.conversion("X", "UTF-8");
        nlsConversion *const from = open.conversion("UTF-8", "X");
        for (const int failing : {-1, 0, 1}) {
            for (nlsConversion *const conversion : {to, from}) {
                if (failing >= 0)
                    fake::icu.conversionError[fake::icu.conversions + failing] = 10;
                EXPECT_TRUE(seen("nlsConvertFromUCS2", failing < 0 ? 0 : 16,
                                 fixture::convert(conversion, bytesOf("abc"), 20).status));
                EXPECT_EQ(fake::icu.openConverters, 2) << "those of the two conversions";
            }
        }
    });
}

TEST(IcuConversion, WithoutAUtf8ConverterUtf8Gives8) {
    withIcu([](world::Open &open) {
        nlsConversion *const to = open.conversion("X", "UTF-8");
        nlsConversion *const from = open.conversion("UTF-8", "X");
        fake::icu.openError["utf8"] = 4;
        for (nlsConversion *const conversion : {to, from}) {
            EXPECT_TRUE(
                seen("nlsConvertFromUCS2", 8, fixture::convert(conversion, bytesOf("abc"), 20).status));
            EXPECT_TRUE(
                seen("nlsConvertNLS", 8, fixture::convertText(conversion, bytesOf("abc"), 20).status));
            EXPECT_TRUE(
                seen("nlsConvertNLSCheck", 8, fixture::convertCheck(conversion, bytesOf("abc"), 20).status));
            EXPECT_TRUE(seen("nlsConvertToUCS2", 8,
                             fixture::convertWithTerminator(conversion, bytesOf("abc"), 20).status));
        }
    });
}

TEST(IcuConversion, ATargetWithoutRoomForTheUtf16FormGives2) {
    withIcu([](world::Open &open) {
        for (nlsConversion *const conversion :
             {open.conversion("X", "UTF-8"), open.conversion("UTF-8", "X")}) {
            for (const std::size_t length : {0U, 1U, 7U, 3000U}) {
                const Bytes text(length, 'a');
                const auto area = static_cast<std::uint32_t>(2 * (length + 1));
                EXPECT_TRUE(seen("nlsConvertFromUCS2", 2, fixture::convert(conversion, text, area).status));
                EXPECT_EQ(fake::icu.conversions, 0) << "before ICU is asked";
                const auto result = fixture::convert(conversion, text, area + 1);
                EXPECT_TRUE(seen("nlsConvertFromUCS2", 0, result.status)) << length;
                EXPECT_EQ(result.text(), text);
                fake::icu.conversions = 0;
            }
            EXPECT_TRUE(seen("nlsConvertFromUCS2", 2, fixture::convert(conversion, bytesOf("a"), 0).status));
        }
    });
}

TEST(IcuConversion, Utf8ThatBeginsInsideACharacterGives16) {
    withIcu([](world::Open &open) {
        nlsConversion *const conversion = open.conversion("UTF-8", "X");
        for (const char *const text : {"\x80", "\xBF"
                                               "abc"}) {
            EXPECT_TRUE(
                seen("nlsConvertFromUCS2", 16, fixture::convert(conversion, bytesOf(text), 40).status));
            EXPECT_TRUE(seen("nlsConvertFromUCS2", 16, fixture::convert(conversion, bytesOf(text), 1).status))
                << "before the room is looked at";
        }
        EXPECT_EQ(fake::icu.conversions, 0);
    });
}

TEST(IcuConversion, LongTextsKeepTheirUtf16FormInTheTarget) {
    withIcu([](world::Open &open) {
        nlsConversion *const to = open.conversion("X", "UTF-8");
        nlsConversion *const from = open.conversion("UTF-8", "X");
        for (const std::size_t length : {1998U, 1999U, 2000U, 2001U, 5001U, 30000U}) {
            for (const Bytes &part :
                 {bytesOf("a"), bytesOf("\x81"), bytesOf("ab\x81"), bytesOf("\x81\x82yz")}) {
                Bytes text = repeated(part, length);
                text.resize(length);
                const std::uint32_t factor = 4;
                for (const std::uint32_t extra : {0U, 1U, 2U, 3U}) {
                    const auto converted =
                        fixture::convert(to, text, static_cast<std::uint32_t>(length) * factor + extra);
                    ASSERT_EQ(converted.status, NLS_OK) << length;
                    const Bytes utf8 = converted.text();
                    const auto back = fixture::convert(
                        from, utf8, static_cast<std::uint32_t>(utf8.size()) * factor + extra);
                    ASSERT_EQ(back.status, NLS_OK) << length;
                    EXPECT_EQ(back.text(), text);
                    EXPECT_TRUE(fake::icu.last("ucnv_toUChars").aligned);
                }
            }
        }
    });
}

// What becomes of units that lie at the end of a target of `size` bytes, which is even, and turn into as many
// bytes each as `lengths` says, written from its beginning.
nlsStatus expectedOf(const std::vector<std::size_t> &lengths, std::size_t size) {
    const std::size_t before = size - 2 * (lengths.size() + 1);
    std::size_t written = 0;
    bool overtaken = false;
    for (std::size_t i = 0; i < lengths.size(); ++i) {
        written += lengths[i];
        overtaken = overtaken || written > before + 2 * (i + 1);
    }
    return written > size ? NLS_E_NULLARG : overtaken ? NLS_E_BUFFER : NLS_OK;
}

TEST(IcuConversion, LongTextsInTightTargetsAreRefusedOnlyWhereOutputOvertakesTheUtf16Form) {
    withIcu([](world::Open &open) {
        std::map<std::uint32_t, int> counts;
        const auto check = [&](nlsConversion *conversion, const Bytes &text, std::uint32_t size,
                               const std::vector<std::size_t> &lengths, const Bytes &whole) {
            const auto result = fixture::convert(conversion, text, size);
            EXPECT_EQ(result.status, expectedOf(lengths, size)) << size;
            if (result.status == NLS_OK)
                EXPECT_EQ(result.text(), whole);
            else
                EXPECT_TRUE(
                    seen("nlsConvertFromUCS2", result.status == NLS_E_BUFFER ? 2 : 16, result.status));
            ++counts[result.status];
        };
        // Every size near the least that does, and some beside.
        const auto checkSizes = [&](nlsConversion *conversion, const Bytes &text,
                                    const std::vector<std::size_t> &lengths) {
            const Bytes whole = fixture::convert(conversion, text, 60000).text();
            const auto least = static_cast<std::uint32_t>(2 * text.size() + 3);
            std::uint32_t enough = least;
            while (expectedOf(lengths, enough) != NLS_OK)
                ++enough;
            for (std::uint32_t size = least;
                 size<least + 9000; size += size + 70> enough && size < enough + 9 ? 1 : 61)
                check(conversion, text, size, lengths, whole);
        };
        // X widens a byte to three in UTF-8, BROAD another one to four.
        for (const auto &[conversion, wide, width] :
             {std::tuple(open.conversion("X", "UTF-8"), '\x81', 3U),
              std::tuple(open.conversion("UTF-8", "BROAD"), 'w', 4U)}) {
            for (const std::string &shape :
                 {std::string("a"), std::string{wide}, std::string{'a', wide}, wide + std::string("aaaa")}) {
                Bytes text = repeated(bytesOf(shape), 2600);
                text.resize(2600);
                // As it is, narrow characters first, wide ones first, narrow ones on both sides.
                for (const int order : {0, 1, 2, 3}) {
                    const auto isNarrow = [](unsigned char byte) { return byte == 'a'; };
                    if (order != 0)
                        std::stable_partition(text.begin(), text.end(), isNarrow);
                    if (order == 2)
                        std::reverse(text.begin(), text.end());
                    if (order == 3)
                        std::rotate(text.begin(), text.begin() + 600, text.end());
                    std::vector<std::size_t> lengths;
                    for (const unsigned char byte : text)
                        lengths.push_back(isNarrow(byte) ? 1 : width);
                    checkSizes(conversion, text, lengths);
                }
            }
        }
        EXPECT_GT(counts[NLS_OK], 1000);
        EXPECT_GT(counts[NLS_E_BUFFER], 20);
        EXPECT_GT(counts[NLS_E_NULLARG], 100);
    });
}

// ---- The calls ----

TEST(IcuConversion, NlsConvertNLSPutsOneZeroByteBehindTheOutput) {
    withIcu([](world::Open &open) {
        EXPECT_EQ(fixture::convertText(open.conversion("X", "UTF-8"), bytesOf("abc"), 9).destination[3], 0);
        Bytes units = units16({'a', 'b', 0});
        const nlsStr source{reinterpret_cast<char *>(units.data()), 6, 4};
        for (const auto &[size, status] :
             std::vector<std::pair<std::uint32_t, std::int32_t>>{{1, 16}, {2, 2}, {3, 0}}) {
            char out[4] = "???";
            nlsStr destination{out, size, 0};
            EXPECT_TRUE(seen("nlsConvertNLS", status,
                             nlsConvertNLS(open.conversion("UTF-16", "X"), &source, nullptr, &destination)));
            EXPECT_STREQ(out, size == 1 ? "" : size == 2 ? "ab?" : "ab");
        }
    });
}

TEST(IcuConversion, TheCheckTellsOfAChangeAsSoonAsAnythingIsWritten) {
    withIcu([](world::Open &open) {
        nlsConversion *const conversion = open.conversion("X", "UTF-8");
        EXPECT_TRUE(
            seen("nlsConvertNLSCheck", -2, fixture::convertCheck(conversion, bytesOf("abc"), 40).status));
        EXPECT_TRUE(seen("nlsConvertNLSCheck", 0, fixture::convertCheck(conversion, {}, 40).status));
        EXPECT_TRUE(
            seen("nlsConvertNLSCheck", 2, fixture::convertCheck(conversion, bytesOf("abc"), 10).status));
        fake::icu.conversionError[fake::icu.conversions] = 10;
        EXPECT_TRUE(
            seen("nlsConvertNLSCheck", 16, fixture::convertCheck(conversion, bytesOf("abc"), 40).status));
    });
}

TEST(IcuConversion, TheTerminatorIsNotConverted) {
    withIcu([](world::Open &open) {
        const auto result = fixture::convertWithTerminator(open.conversion("X", "UTF-16"), bytesOf("ab"), 20);
        EXPECT_TRUE(seen("nlsConvertToUCS2", 0, result.status));
        EXPECT_EQ(result.text(), units16({'a', 'b'}));
        EXPECT_TRUE(
            seen("nlsConvertToUCS2", 2,
                 fixture::convertWithTerminator(open.conversion("X", "UTF-8"), bytesOf("ab"), 8).status));
        fake::icu.conversionError[fake::icu.conversions] = 10;
        EXPECT_TRUE(
            seen("nlsConvertToUCS2", 16,
                 fixture::convertWithTerminator(open.conversion("X", "UTF-16"), bytesOf("ab"), 20).status));
    });
}

TEST(IcuConversion, ASingleCharacterGoesToAndFromUtf16) {
    withIcu([](world::Open &open) {
        std::uint32_t result = 0;
        EXPECT_TRUE(
            seen("nlsConvertLChar", 0, nlsConvertLChar(open.conversion("X", "UTF-16BE"), 0x81, &result)));
        EXPECT_EQ(result, 0x4E81U);
        EXPECT_TRUE(
            seen("nlsConvertLChar", 0, nlsConvertLChar(open.conversion("UTF-16BE", "X"), 0x4E81, &result)));
        EXPECT_EQ(result, 0x81U);
        EXPECT_TRUE(
            seen("nlsConvertLChar", 16, nlsConvertLChar(open.conversion("X", "UTF-8"), 0x81, &result)))
            << "four bytes hold no UTF-16 form beside the output";
    });
}

TEST(IcuConversion, AChainRunsThroughBothConverters) {
    const Home home;
    home.putIcu();
    process::isolated([&] {
        process::setVariable("BINPATHX", home.path());
        fixture::DataFile file;
        file.codePage("X", fixture::CharacterTable::singleByte());
        file.codePage("UTF-16", fixture::CharacterTable::singleByte(fixture::kMultibyte | fixture::kWide));
        file.codePage("UTF-32", fixture::CharacterTable::singleByte(fixture::kMultibyte | fixture::kUnits32));
        file.conversion("X", "UTF-16", 6);
        file.conversion("UTF-16", "X", 5);
        file.conversion("UTF-16", "UTF-32", 27);
        file.conversion("UTF-32", "UTF-16", 28);
        fixture::Library open(file);
        const Bytes wide = fixture::units32({'a', 0x4E81, 'z'});
        const auto out = fixture::convertText(open.conversion("X", "UTF-32"), bytesOf("a\x81z"), 40, 20);
        EXPECT_EQ(out.status, NLS_OK);
        EXPECT_EQ(out.text(), wide);
        const auto back = fixture::convertText(open.conversion("UTF-32", "X"), wide, 40, 6);
        EXPECT_EQ(back.status, NLS_OK) << "the intermediate text ends where its buffer ends";
        EXPECT_EQ(back.text(), bytesOf("a\x81z"));
        EXPECT_EQ(fake::icu.last("ucnv_fromUChars").number, 3);
    });
}

} // namespace
