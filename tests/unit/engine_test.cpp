// The engine: dispatch, byte maps, the Japanese converters, chains, byte pages by table, and check mode.
#include "conversion_pair.hpp"
#include "random.hpp"
#include "reference_converters.hpp"

#include <algorithm>

namespace {

using fixture::agree;
using fixture::byteOf;
using fixture::operator+;
using fixture::bytesOf;
using fixture::convert;
using fixture::convertCheck;
using fixture::convertText;
using fixture::convertWithTerminator;
using fixture::gives;
using fixture::kNotWritten;
using fixture::Library;
using unit::Bytes;
using unit::Converted;
using unit::Pair;

constexpr nlsStatus kChanged = NLS_R_CHANGED;
constexpr nlsStatus kSubstituted = NLS_R_SUBSTITUTED;

TEST(Engine, IdentityFillsWhatFits) {
    Pair pair(unit::pairOfType(3), "A", "A");
    const Converted cut = convert(pair.conversion, bytesOf("abcde"), 3);
    EXPECT_EQ(cut.status, NLS_E_BUFFER);
    EXPECT_EQ(cut.written, 3U);
    EXPECT_EQ(cut.text(), bytesOf("abc"));
    const Converted whole = convert(pair.conversion, bytesOf("abcde"), 5);
    EXPECT_EQ(whole.status, NLS_OK);
    EXPECT_EQ(whole.text(), bytesOf("abcde"));
    const Converted none = convert(pair.conversion, bytesOf("abcde"), 0);
    EXPECT_EQ(none.status, NLS_E_BUFFER);
    EXPECT_EQ(none.written, 0U);
}

TEST(Engine, IdentityNeverReportsAChange) {
    Pair pair(unit::pairOfType(3), "A", "A");
    const Converted got = convertCheck(pair.conversion, bytesOf("a\xFF"), 10);
    EXPECT_EQ(got.status, NLS_OK);
    EXPECT_EQ(got.text(), bytesOf("a\xFF"));
}

fixture::ByteTable turned() {
    fixture::ByteTable map = fixture::identityTable();
    for (unsigned b = 0x80; b < 256; ++b)
        map[b] = byteOf(0x80 + 255 - b);
    return map;
}

TEST(Engine, ByteMapWritesNothingWhenTheRoomIsTooSmall) {
    Pair pair(unit::pairOfMap(turned()));
    for (std::uint32_t capacity = 0; capacity < 5; ++capacity) {
        const Converted got = convert(pair.conversion, bytesOf("abcde"), capacity);
        EXPECT_EQ(got.status, NLS_E_BUFFER);
        EXPECT_EQ(got.written, 0U);
        EXPECT_EQ(got.destination, Bytes(capacity, fixture::kFiller));
    }
}

TEST(Engine, ByteMapReplacesEveryByte) {
    fixture::Random random(3);
    fixture::ByteTable map{};
    for (unsigned char &b : map)
        b = byteOf(random());
    Pair pair(unit::pairOfMap(map));
    for (std::uint32_t length = 0; length < 300; ++length) {
        Bytes source;
        Bytes expected;
        for (std::uint32_t i = 0; i < length; ++i) {
            source.push_back(byteOf(length == 256 ? i : random()));
            expected.push_back(map[source.back()]);
        }
        for (const std::uint32_t spare : {0U, 7U}) {
            const Converted got = convert(pair.conversion, source, length + spare);
            ASSERT_EQ(got.status, NLS_OK);
            ASSERT_EQ(got.text(), expected);
        }
    }
}

TEST(Engine, ByteMapCheckComparesByteForByte) {
    Pair pair(unit::pairOfMap(turned()));
    const Converted same = convertCheck(pair.conversion, bytesOf("plain"), 20);
    EXPECT_EQ(same.status, NLS_OK);
    EXPECT_EQ(same.text(), bytesOf("plain"));
    for (std::size_t at = 0; at < 40; ++at) {
        Bytes source(40, 'x');
        source[at] = 0x81;
        const Converted got = convertCheck(pair.conversion, source, 41);
        EXPECT_TRUE(gives("nlsConvertNLSCheck", -2, got.status)) << at;
        Bytes expected = source;
        expected[at] = 0xFE;
        EXPECT_EQ(got.text(), expected) << "the whole output is written";
    }
    EXPECT_TRUE(gives("nlsConvertNLSCheck", 2, convertCheck(pair.conversion, bytesOf("abc"), 3).status));
}

TEST(Engine, LargeTypesAreByteMaps) {
    for (const int type : {1600, 1601, 0x0700 + 3, 30000, 0x7FFF}) {
        Pair pair(unit::pairOfMap(turned(), type));
        EXPECT_EQ(convert(pair.conversion, bytesOf("a\x80"), 2).text(), bytesOf("a\xFF")) << type;
        EXPECT_EQ(pair.property(17), 1U);
    }
}

TEST(Engine, UnknownKindWritesOneZeroByte) {
    for (const unsigned char type : unit::Types{2, 8, 9, 16, 31, 49, 52, 80, 82, 88, 90, 100, 127}) {
        Pair pair(unit::pairOfType(type));
        const Converted got = convertWithTerminator(pair.conversion, bytesOf("abc"), 8);
        EXPECT_EQ(got.status, NLS_OK) << int(type);
        EXPECT_EQ(got.written, kNotWritten) << "the count is left alone";
        EXPECT_EQ(got.destination[0], 0);
        EXPECT_EQ(got.destination[1], fixture::kFiller);
    }
}

TEST(Engine, UnknownKindWritesNothingWithoutRoom) {
    Pair pair(unit::pairOfType(100));
    convert(pair.conversion, bytesOf("abc"), 0); // the destination lies before forbidden memory
}

TEST(Engine, TextInUtf8ThatBeginsWithATrailByteIsRefusedAtOnce) {
    const auto refused = [](nlsConversion *conversion) {
        for (const unsigned first : {0x80U, 0xA5U, 0xBFU}) {
            const Bytes source = {byteOf(first), 'a'};
            const Converted got = convertWithTerminator(conversion, source, 16);
            EXPECT_TRUE(gives("nlsConvertToUCS2", 16, got.status));
            EXPECT_EQ(got.written, kNotWritten);
            EXPECT_EQ(got.destination, Bytes(16, fixture::kFiller));
            EXPECT_EQ(convertCheck(conversion, source, 16).status, NLS_E_NULLARG);
        }
    };
    for (const unsigned char type : unit::Types{22, 24, 145, 26, 149}) {
        Pair pair(unit::pairOfType(type));
        refused(pair.conversion);
    }
    Pair toByte(unit::byteUnicodePair(unit::someUnits()), "UTF-8", "S");
    refused(toByte.conversion);
    for (const unsigned char type : unit::Types{18, 50}) {
        Pair toPage(unit::mappedPage(fixture::Mapping::doubleBytePage(), 17, type), "UTF-8", "P");
        refused(toPage.conversion);
    }
}

// ---- Shift_JIS and EUC-JP ----

TEST(JapaneseConverters, KnownCharacters) {
    Pair toEuc(unit::pairOfType(3));
    Pair toShiftJis(unit::pairOfType(4));
    const auto check = [&](const Bytes &shiftJis, const Bytes &euc) {
        EXPECT_EQ(convert(toEuc.conversion, shiftJis, 16).text(), euc);
        EXPECT_EQ(convert(toShiftJis.conversion, euc, 16).text(), shiftJis);
    };
    check({0x88, 0x9F}, {0xB0, 0xA1});
    check({0xB1}, {0x8E, 0xB1});
    check({0x81, 0x40}, {0xA1, 0xA1});
    check({0xE0, 0x40}, {0xDF, 0xA1});
    check({0x9F, 0xFC}, {0xDE, 0xFE});
    check(bytesOf("abc"), bytesOf("abc"));
    EXPECT_EQ(convert(toEuc.conversion, {'a', 0x88}, 16).status, 16U);
    EXPECT_EQ(convert(toEuc.conversion, {'a', 0x88}, 16).written, 1U);
    EXPECT_EQ(convert(toShiftJis.conversion, {0xB0}, 16).status, 16U);
    EXPECT_EQ(convert(toShiftJis.conversion, {0x8E}, 16).status, 16U);
    EXPECT_EQ(convert(toEuc.conversion, {}, 16).status, NLS_OK);
    EXPECT_EQ(convert(toEuc.conversion, {}, 16).written, 0U);
}

TEST(JapaneseConverters, EveryPairOfBytesFollowsTheRules) {
    Pair toEuc(unit::pairOfType(3));
    Pair toShiftJis(unit::pairOfType(4));
    for (unsigned first = 0; first < 256; ++first)
        for (unsigned second = 0; second < 256; ++second) {
            const Bytes source = {byteOf(first), byteOf(second)};
            ASSERT_TRUE(agree(reference::shiftJisToEuc(source, 8), convert(toEuc.conversion, source, 8)))
                << fixture::hex(source);
            ASSERT_TRUE(agree(reference::eucToShiftJis(source, 8), convert(toShiftJis.conversion, source, 8)))
                << fixture::hex(source);
        }
}

TEST(JapaneseConverters, TextsFollowTheRulesAtEveryCapacity) {
    Pair toEuc(unit::pairOfType(3));
    Pair toShiftJis(unit::pairOfType(4));
    fixture::Random random(17);
    for (int round = 0; round < 400; ++round) {
        Bytes source;
        for (std::uint32_t length = random.below(40); source.size() < length;) {
            if (random.below(4) == 0)
                source.insert(source.end(), random.below(20), 'x');
            else
                source.push_back(byteOf(random.below(3) == 0 ? 0x8E : random()));
        }
        unit::compareAtEveryCapacity(toEuc.conversion, source, reference::shiftJisToEuc);
        if (HasFatalFailure())
            return;
        unit::compareAtEveryCapacity(toShiftJis.conversion, source, reference::eucToShiftJis);
        if (HasFatalFailure())
            return;
    }
}

// ---- Byte pages by table: kinds 19, 51 and 20 ----

TEST(ByteUnicodeTables, EveryByteAndEverySmallCharacter) {
    const std::vector<std::uint16_t> units = unit::someUnits();
    for (const unsigned char type : unit::Types{19, 51}) {
        Library library(unit::byteUnicodePair(units, type));
        nlsConversion *const forth = library.conversion("S", "UTF-8");
        nlsConversion *const back = library.conversion("UTF-8", "S");
        for (unsigned b = 0; b < 256; ++b) {
            const Bytes source = {byteOf(b)};
            ASSERT_TRUE(agree(reference::byteToUtf8(source, 8, units), convert(forth, source, 8))) << b;
        }
        for (std::uint32_t u = 0; u < 0x10000; ++u) {
            const Bytes source = reference::utf8Of(u);
            ASSERT_TRUE(agree(reference::utf8ToByte(source, 8, units), convert(back, source, 8))) << u;
        }
    }
}

TEST(ByteUnicodeTables, RoomRunsOutWithBlanksAndAZero) {
    const std::vector<std::uint16_t> units = unit::someUnits();
    Library library(unit::byteUnicodePair(units));
    nlsConversion *const forth = library.conversion("S", "UTF-8");
    const Converted padded = convert(forth, {'a', 0x80, 'b', 0xC0, 0xC1}, 7);
    EXPECT_EQ(padded.status, NLS_E_BUFFER);
    EXPECT_EQ(padded.written, 7U);
    EXPECT_EQ(padded.text(), (Bytes{'a', 0xD2, 0x80, 'b', ' ', ' ', 0}));
    const Converted silent = convert(forth, {'a', 0xC0}, 4);
    EXPECT_EQ(silent.status, NLS_OK) << "the last character has exactly its own room: left out";
    EXPECT_EQ(silent.text(), bytesOf("a"));
    const Converted kept = convert(forth, {'a', 0xC0}, 5);
    EXPECT_EQ(kept.status, NLS_OK);
    EXPECT_EQ(kept.written, 4U);
    const Converted none = convert(forth, {'a'}, 0);
    EXPECT_EQ(none.status, NLS_E_BUFFER);
    EXPECT_EQ(none.written, 0U);
    EXPECT_EQ(convert(forth, {}, 0).status, NLS_OK);
    EXPECT_EQ(convert(forth, {}, 0).written, 0U);
}

TEST(ByteUnicodeTables, TextThatEndsInZeroKeepsItsZero) {
    std::vector<std::uint16_t> units = unit::someUnits();
    std::swap(units[0], units['A']); // byte 0 stands for "A"
    Library library(unit::byteUnicodePair(units));
    nlsConversion *const forth = library.conversion("S", "UTF-8");
    const Converted got = convert(forth, {'b', 0}, 5);
    EXPECT_EQ(got.status, NLS_E_BUFFER);
    EXPECT_EQ(got.written, 5U);
    EXPECT_EQ(got.text(), (Bytes{'b', 'A', ' ', ' ', 0}));
}

TEST(ByteUnicodeTables, TextsFollowTheRulesAtEveryCapacity) {
    const std::vector<std::uint16_t> units = unit::someUnits();
    for (const unsigned char type : unit::Types{19, 51}) {
        Library library(unit::byteUnicodePair(units, type));
        nlsConversion *const forth = library.conversion("S", "UTF-8");
        nlsConversion *const back = library.conversion("UTF-8", "S");
        fixture::Random random(type);
        for (int round = 0; round < 300; ++round) {
            Bytes source;
            for (std::uint32_t length = random.below(20); source.size() < length;)
                source.push_back(byteOf(random.below(2) == 0 ? random() : 0x70 + random.below(0x20)));
            if (random.below(3) == 0 && !source.empty())
                source.back() = 0;
            unit::compareAtEveryCapacity(forth, source, [&](const Bytes &text, std::uint32_t capacity) {
                return reference::byteToUtf8(text, capacity, units);
            });
            if (HasFatalFailure())
                return;
            Bytes unicode;
            for (std::uint32_t length = random.below(20); unicode.size() < length;) {
                const std::uint32_t choice = random.below(4);
                unicode = unicode + (choice == 0   ? Bytes{byteOf(random())}
                                     : choice == 1 ? Bytes{byteOf(random.below(0x80))}
                                                   : reference::utf8Of(units[random.below(256)]));
            }
            unit::compareAtEveryCapacity(back, unicode, [&](const Bytes &text, std::uint32_t capacity) {
                return reference::utf8ToByte(text, capacity, units);
            });
            if (HasFatalFailure())
                return;
        }
    }
}

TEST(ByteUnicodeTables, CharactersWithoutByteBecomeQuestionMarks) {
    Library library(unit::byteUnicodePair(unit::someUnits()));
    nlsConversion *const back = library.conversion("UTF-8", "S");
    const auto expect = [&](const Bytes &source, const char *text, nlsStatus status) {
        const Converted got = convert(back, source, 16);
        EXPECT_EQ(got.status, status) << fixture::hex(source);
        EXPECT_EQ(got.text(), bytesOf(text)) << fixture::hex(source);
    };
    expect({'a', 0xE2, 0x82, 0xAC, 'b'}, "a?b", kSubstituted);
    expect({'a', 0xF0, 0x9F, 0x98, 0x80}, "a?", kSubstituted);
    expect({'a', 0x80, 'b'}, "a?b", kSubstituted);
    expect({'a', 0xF5, 'b', 0xFF}, "a?b?", kSubstituted);
    expect({0xC3, 0xA4}, "?", kSubstituted);
    expect({0xD2, 0x80}, "\x80", NLS_OK);
    expect({0xD2, 0x40}, "\x80", NLS_OK); // the trail byte is not judged
    expect({'a', 0xC3}, "a", NLS_E_NULLARG);
    expect({'a', 0xE2, 0x82}, "a", NLS_E_NULLARG);
    expect({'a', 0xF0, 0x9F, 0x98}, "a", NLS_E_NULLARG);
    EXPECT_EQ(convert(back, {0}, 4).text(), Bytes{0});
    EXPECT_TRUE(gives("nlsConvertFromUCS2", -3, convert(back, {0xC3, 0xA4}, 4).status));
}

// ---- Chains ----

// S by table to UTF-8 to UTF-16: no entry for S to UTF-16, so the route is built.
fixture::DataFile chained() {
    fixture::DataFile file = unit::byteUnicodePair(unit::someUnits());
    file.codePage("UTF-16", fixture::CharacterTable::singleByte(fixture::kMultibyte | fixture::kWide));
    file.conversion("UTF-8", "UTF-16", 24);
    file.conversion("UTF-16", "UTF-8", 23);
    return file;
}

TEST(Chain, TextPassesThroughTheIntermediateBuffer) {
    Library library(chained());
    nlsConversion *const forth = library.conversion("S", "UTF-16");
    const Converted got = convertText(forth, {'a', 0x80, 0xC0}, 64, 64);
    EXPECT_EQ(got.status, NLS_OK);
    EXPECT_EQ(got.text(), fixture::units16({'a', 0x480, 0x20AC + 0xC0}));
    nlsConversion *const back = library.conversion("UTF-16", "S");
    EXPECT_EQ(convertText(back, fixture::units16({'a', 0x480}), 64, 64).text(), (Bytes{'a', 0x80}));
}

TEST(Chain, NeedsAnIntermediateBuffer) {
    Library library(chained());
    nlsConversion *const chain = library.conversion("S", "UTF-16");
    EXPECT_TRUE(gives("nlsConvertNLS", 16, convertText(chain, bytesOf("a"), 64, 0).status));
    char byte = 0;
    char out[16];
    const nlsStr source = {&byte, 1, 0};
    nlsStr between = {&byte, 0, 0};
    nlsStr destination = {out, sizeof out, 0};
    EXPECT_EQ(nlsConvertNLS(chain, &source, &between, &destination), NLS_E_NULLARG) << "of no size";
    between = {nullptr, 10, 0};
    EXPECT_EQ(nlsConvertNLS(chain, &source, &between, &destination), NLS_E_NULLARG) << "without memory";
    EXPECT_TRUE(gives("nlsConvertNLSCheck", 16, convertCheck(chain, bytesOf("a"), 64).status));
    EXPECT_EQ(convert(chain, bytesOf("a"), 64).status, NLS_E_NULLARG);
    EXPECT_EQ(convertWithTerminator(chain, bytesOf("a"), 64).status, NLS_E_NULLARG);
}

TEST(Chain, FirstStepsFailureIsTheResult) {
    Library library(chained());
    nlsConversion *const forth = library.conversion("S", "UTF-16");
    EXPECT_EQ(convertText(forth, {'a', 'b', 'c'}, 64, 2).status, NLS_E_BUFFER);
    nlsConversion *const back = library.conversion("UTF-16", "S");
    EXPECT_EQ(convertText(back, fixture::units16({'a', 0xDC00}), 64, 64).status, 16U) << "a lone surrogate";
}

TEST(Chain, SecondStepsStatusIsTheResult) {
    Library library(chained());
    nlsConversion *const back = library.conversion("UTF-16", "S");
    const Converted got = convertText(back, fixture::units16({'a', 0x20AC}), 64, 64);
    EXPECT_TRUE(gives("nlsConvertNLS", -3, got.status));
    EXPECT_EQ(got.text(), bytesOf("a?"));
    EXPECT_EQ(convertText(back, fixture::units16({'a', 'b', 'c'}), 2, 64).status, NLS_E_BUFFER);
}

TEST(Chain, SubstitutionInTheFirstStepIsForgotten) {
    fixture::DataFile file = unit::byteUnicodePair(unit::someUnits());
    file.codePage("UTF-16", fixture::CharacterTable::singleByte(fixture::kMultibyte | fixture::kWide));
    file.conversion("UTF-16", "UTF-8", 23);
    file.codePage("T", fixture::CharacterTable::singleByte());
    const fixture::ByteTable plain = fixture::identityTable();
    file.conversion("S", "T", 1, Bytes(plain.begin(), plain.end()));
    Library library(file);
    // UTF-8 to S replaces what S lacks, S to T then goes well.
    nlsConversion *const chain = library.conversion("UTF-8", "T");
    std::uint32_t isChain = 0;
    ASSERT_EQ(nlsGetIntConversionProperty(chain, 28, &isChain), NLS_OK);
    ASSERT_EQ(isChain, 1U);
    const Converted got = convertText(chain, {'a', 0xE2, 0x82, 0xAC}, 64, 64);
    EXPECT_EQ(got.status, NLS_OK);
    EXPECT_EQ(got.text(), bytesOf("a?"));
}

// ---- Check mode ----

TEST(CheckMode, ComparesTheTextsOfByteConverters) {
    Pair toEuc(unit::pairOfType(3));
    EXPECT_TRUE(gives("nlsConvertNLSCheck", 0, convertCheck(toEuc.conversion, bytesOf("abc"), 16).status));
    EXPECT_EQ(convertCheck(toEuc.conversion, bytesOf("abc"), 16).text(), bytesOf("abc"));
    EXPECT_EQ(convertCheck(toEuc.conversion, {'a', 0xB1}, 16).status, kChanged);
    EXPECT_EQ(convertCheck(toEuc.conversion, {'a', 0xB1}, 16).text(), (Bytes{'a', 0x8E, 0xB1}));
    EXPECT_EQ(convertCheck(toEuc.conversion, bytesOf("abc"), 3).status, NLS_E_BUFFER);
    Pair toShiftJis(unit::pairOfType(4));
    EXPECT_EQ(convertCheck(toShiftJis.conversion, bytesOf("abc"), 16).status, NLS_OK);
    EXPECT_EQ(convertCheck(toShiftJis.conversion, {0xB0, 0xA1}, 16).status, kChanged);

    for (const unsigned char type : unit::Types{19, 51}) {
        Library library(unit::byteUnicodePair(unit::someUnits(), type));
        nlsConversion *const forth = library.conversion("S", "UTF-8");
        nlsConversion *const back = library.conversion("UTF-8", "S");
        EXPECT_EQ(convertCheck(forth, bytesOf("abc"), 16).status, NLS_OK);
        EXPECT_EQ(convertCheck(forth, {'a', 0x80}, 16).status, kChanged);
        EXPECT_EQ(convertCheck(back, bytesOf("abc"), 16).status, NLS_OK);
        EXPECT_EQ(convertCheck(back, {'a', 0xD2, 0x80}, 16).status, kChanged);
        EXPECT_TRUE(gives("nlsConvertNLSCheck", -3, convertCheck(back, {'a', 0xC3, 0xA4}, 16).status))
            << "a substitution is told as such";
        EXPECT_EQ(convertCheck(back, {'a', 0xC3}, 16).status == NLS_OK, false);
    }
}

TEST(CheckMode, EncodingsAlwaysChange) {
    for (const unsigned char type : unit::Types{22, 24, 26, 145, 149}) {
        Pair pair(unit::pairOfType(type));
        EXPECT_EQ(convertCheck(pair.conversion, bytesOf("abc"), 64).status, kChanged) << int(type);
        EXPECT_EQ(convertCheck(pair.conversion, bytesOf("abc"), 6).status, NLS_E_BUFFER) << int(type);
    }
    for (const unsigned char type : unit::Types{21, 23, 27}) {
        Pair pair(unit::pairOfType(type));
        EXPECT_EQ(convertCheck(pair.conversion, fixture::units16({'a', 'b'}), 64).status, kChanged);
    }
    for (const unsigned char type : unit::Types{25, 28}) {
        Pair pair(unit::pairOfType(type));
        EXPECT_EQ(convertCheck(pair.conversion, fixture::units32({'a', 'b'}), 64).status, kChanged);
    }
    Pair sixteen(unit::pairOfType(23));
    EXPECT_EQ(convertCheck(sixteen.conversion, fixture::units16({'a', 0xDC00}), 64).status, 16U);
    Pair thirtyTwo(unit::pairOfType(25));
    EXPECT_TRUE(gives("nlsConvertNLSCheck", 33,
                      convertCheck(thirtyTwo.conversion, fixture::units32({'a', 0xDC00}), 64).status));
}

TEST(CheckMode, NothingWrittenIsNoChange) {
    // The terminator alone is no whole unit, so nothing is produced.
    for (const unsigned char type : unit::Types{21, 23, 25, 27, 28}) {
        Pair pair(unit::pairOfType(type));
        const Converted got = convertCheck(pair.conversion, {}, 16);
        EXPECT_EQ(got.status, NLS_OK) << int(type);
        EXPECT_EQ(got.written, 0U);
    }
}

TEST(CheckMode, ConvertersOverOneBufferAreRefused) {
    const auto inPlace = [](nlsConversion *conversion) {
        char buffer[16] = "abc";
        const nlsStr source = {buffer, sizeof buffer, 3};
        nlsStr destination = {buffer, sizeof buffer, 0};
        return nlsConvertNLSCheck(conversion, &source, &destination);
    };
    for (const unsigned char type : unit::Types{3, 4}) {
        Pair pair(unit::pairOfType(type));
        EXPECT_EQ(inPlace(pair.conversion), NLS_E_NULLARG);
    }
    for (const unsigned char type : unit::Types{19, 51}) {
        Library library(unit::byteUnicodePair(unit::someUnits(), type));
        EXPECT_EQ(inPlace(library.conversion("S", "UTF-8")), NLS_E_NULLARG);
        EXPECT_EQ(inPlace(library.conversion("UTF-8", "S")), NLS_E_NULLARG);
    }
    Pair map(unit::pairOfMap(fixture::identityTable()));
    EXPECT_EQ(inPlace(map.conversion), NLS_OK) << "a byte map may work in place";
}

} // namespace
