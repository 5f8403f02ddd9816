// The five conversion calls: lengths, terminators, check mode's bookkeeping, single characters.
#include "conversion_pair.hpp"
#include "random.hpp"
#include "reference_converters.hpp"

namespace {

using fixture::bytesOf;
using fixture::convert;
using fixture::convertCheck;
using fixture::Converted;
using fixture::convertText;
using fixture::convertWithTerminator;
using fixture::gives;
using fixture::GuardedBuffer;
using fixture::Library;
using fixture::Mapping;
using fixture::operator+;
using fixture::units16;
using fixture::units32;
using unit::Bytes;
using unit::Pair;

// The bytes of a destination behind its written part.
Bytes behind(const Converted &result) {
    return {result.destination.begin() + result.written, result.destination.end()};
}

// Whole text with a terminator of `width` bytes, and what happens at every capacity below.
void expectTerminator(nlsConversion *conversion, const Bytes &source, const Bytes &output, std::size_t width,
                      std::uint32_t intermediate = 0) {
    const auto need = static_cast<std::uint32_t>(output.size() + width);
    const Converted whole = convertText(conversion, source, need, intermediate);
    EXPECT_TRUE(gives("nlsConvertNLS", 0, whole.status));
    EXPECT_EQ(whole.text(), output);
    EXPECT_EQ(behind(whole), Bytes(width, 0));
    const Converted roomy = convertText(conversion, source, need + 3, intermediate);
    EXPECT_EQ(roomy.status, NLS_OK);
    EXPECT_EQ(behind(roomy), Bytes(width, 0) + Bytes(3, fixture::kFiller));
    for (std::uint32_t capacity = static_cast<std::uint32_t>(output.size()); capacity < need; ++capacity) {
        const Converted tight = convertText(conversion, source, capacity, intermediate);
        EXPECT_TRUE(gives("nlsConvertNLS", 2, tight.status)) << capacity;
        EXPECT_EQ(tight.text(), output) << "the text stands";
        EXPECT_EQ(behind(tight), Bytes(capacity - output.size(), fixture::kFiller)) << "without terminator";
    }
}

TEST(ConvertText, TerminatorIsAsWideAsTheOutputsUnits) {
    {
        Pair pair(unit::pairOfType(3), "A", "A");
        expectTerminator(pair.conversion, bytesOf("abc"), bytesOf("abc"), 1);
    }
    {
        Pair pair(unit::pairOfMap(fixture::identityTable()));
        expectTerminator(pair.conversion, bytesOf("abc"), bytesOf("abc"), 1);
    }
    for (const unsigned char type : unit::Types{3, 4}) {
        Pair pair(unit::pairOfType(type));
        expectTerminator(pair.conversion, bytesOf("abc"), bytesOf("abc"), 1);
    }
    for (const unsigned char type : unit::Types{21, 23}) {
        Pair pair(unit::pairOfType(type));
        expectTerminator(pair.conversion, units16({'a', 'b'}), bytesOf("ab"), 1);
    }
    for (const unsigned char type : unit::Types{22, 24}) {
        Pair pair(unit::pairOfType(type));
        expectTerminator(pair.conversion, bytesOf("ab"), units16({'a', 'b'}), 2);
    }
    Pair swapped(unit::pairOfType(145));
    expectTerminator(swapped.conversion, bytesOf("ab"), units16({'a', 'b'}, true), 2);
    Pair from32(unit::pairOfType(25));
    expectTerminator(from32.conversion, units32({'a', 'b'}), bytesOf("ab"), 1);
    Pair to32(unit::pairOfType(26));
    expectTerminator(to32.conversion, bytesOf("ab"), units32({'a', 'b'}), 4);
    Pair wider(unit::pairOfType(27));
    expectTerminator(wider.conversion, units16({'a', 'b'}), units32({'a', 'b'}), 4);
    Pair narrower(unit::pairOfType(28));
    expectTerminator(narrower.conversion, units32({'a', 'b'}), units16({'a', 'b'}), 2);
    Library page(unit::mappedPage(Mapping::doubleBytePage()));
    expectTerminator(page.conversion("P", "UTF-8"), bytesOf("ab"), bytesOf("ab"), 1);
    expectTerminator(page.conversion("UTF-8", "P"), bytesOf("ab"), bytesOf("ab"), 1);
    expectTerminator(page.conversion("P", "UTF-16"), bytesOf("ab"), units16({'a', 'b'}), 2);
    expectTerminator(page.conversion("UTF-16", "P"), units16({'a', 'b'}), bytesOf("ab"), 1);
}

TEST(ConvertText, TerminatorOfAChainIsThatOfItsSecondStep) {
    fixture::DataFile file = unit::byteUnicodePair(unit::someUnits());
    for (const char *const name : {"UTF-16", "UTF-32"})
        file.codePage(name, fixture::CharacterTable::singleByte());
    file.conversion("UTF-8", "UTF-16", 24);
    file.conversion("UTF-8", "UTF-32", 26);
    file.conversion("UTF-16", "UTF-8", 23);
    Library library(file);
    expectTerminator(library.conversion("S", "UTF-16"), bytesOf("ab"), units16({'a', 'b'}), 2, 64);
    expectTerminator(library.conversion("S", "UTF-32"), bytesOf("ab"), units32({'a', 'b'}), 4, 64);
    expectTerminator(library.conversion("UTF-16", "S"), units16({'a', 'b'}), bytesOf("ab"), 1, 64);
}

TEST(ConvertText, EngineStatusComesWithTheTerminator) {
    Pair pair(unit::pairOfType(23));
    const Converted got = convertText(pair.conversion, units16({'a', 0xDC00}), 16);
    EXPECT_EQ(got.status, 16U);
    EXPECT_EQ(got.text(), bytesOf("a?"));
    EXPECT_EQ(behind(got)[0], 0);
    Pair wide(unit::pairOfType(25));
    EXPECT_TRUE(gives("nlsConvertNLS", 33, convertText(wide.conversion, units32({0xDC00}), 16).status));
    Library library(unit::byteUnicodePair(unit::someUnits()));
    EXPECT_TRUE(
        gives("nlsConvertNLS", -3, convertText(library.conversion("UTF-8", "S"), {0xC3, 0xA4}, 16).status));
}

TEST(ConvertText, MissingRoomForTheTerminatorHidesTheEnginesStatus) {
    Pair pair(unit::pairOfType(23));
    EXPECT_EQ(convertText(pair.conversion, units16({'a', 0xDC00}), 2).status, NLS_E_BUFFER);
    Library library(unit::byteUnicodePair(unit::someUnits()));
    EXPECT_EQ(convertText(library.conversion("UTF-8", "S"), {0xC3, 0xA4}, 1).status, NLS_E_BUFFER);
}

TEST(ConvertText, IntermediateIsNotReadWithoutAChain) {
    Pair pair(unit::pairOfType(3));
    char text[] = "abc";
    char out[16];
    const nlsStr source = {text, 4, 3};
    nlsStr destination = {out, sizeof out, 0};
    auto *const nowhere = reinterpret_cast<nlsStr *>(std::uintptr_t{8});
    EXPECT_EQ(nlsConvertNLS(pair.conversion, &source, nowhere, &destination), NLS_OK);
}

TEST(ConvertText, OneCallDoesNotStopAtNuls) {
    Pair pair(unit::pairOfMap(fixture::identityTable()));
    const Bytes source = {'a', 0, 'b', 0};
    EXPECT_EQ(convertText(pair.conversion, source, 16).text(), source);
}

TEST(ConvertCheck, TerminatorIsConvertedAndDropped) {
    Pair map(unit::pairOfMap(fixture::identityTable()));
    const Converted same = convertCheck(map.conversion, bytesOf("ABC"), 4);
    EXPECT_TRUE(gives("nlsConvertNLSCheck", 0, same.status));
    EXPECT_EQ(same.written, 3U);
    EXPECT_EQ(same.destination, bytesOf("ABC") + Bytes{0});
    EXPECT_EQ(convertCheck(map.conversion, bytesOf("ABC"), 3).status, NLS_E_BUFFER);
    EXPECT_EQ(convertCheck(map.conversion, bytesOf("ABC"), 3).written, 0U);
}

TEST(ConvertCheck, OnlyOneZeroByteIsDropped) {
    Pair pair(unit::pairOfType(24));
    const Converted got = convertCheck(pair.conversion, bytesOf("a"), 16);
    EXPECT_EQ(got.status, NLS_R_CHANGED);
    EXPECT_EQ(got.written, 3U) << "two units less one byte";
    Pair identity(unit::pairOfType(3), "A", "A");
    EXPECT_EQ(convertCheck(identity.conversion, Bytes{'a', 0}, 16).written, 2U);
    EXPECT_EQ(convertCheck(identity.conversion, {}, 16).written, 0U);
}

TEST(ConvertCheck, EncodingsChangeAnyTextThatIsNotEmpty) {
    Pair pair(unit::pairOfType(22));
    for (const char *const text : {"a", "abc", "\xE2\x82\xAC"})
        EXPECT_EQ(convertCheck(pair.conversion, bytesOf(text), 32).status, NLS_R_CHANGED);
}

TEST(ConvertCheck, OneRecordForBothIsRefused) {
    Pair pair(unit::pairOfMap(fixture::identityTable()));
    char buffer[16] = "abc";
    nlsStr both = {buffer, sizeof buffer, 3};
    EXPECT_TRUE(gives("nlsConvertNLSCheck", 16, nlsConvertNLSCheck(pair.conversion, &both, &both)));
    EXPECT_EQ(both.length, 3U);
}

TEST(ConvertUcs2, FromConvertsExactlyTheBytesGiven) {
    Pair pair(unit::pairOfType(23));
    const Converted got = convert(pair.conversion, units16({'a', 'b', 0}), 3);
    EXPECT_TRUE(gives("nlsConvertFromUCS2", 0, got.status));
    EXPECT_EQ(got.text(), (Bytes{'a', 'b', 0}));
    EXPECT_EQ(convert(pair.conversion, units16({'a', 'b'}), 2).status, NLS_OK) << "no terminator is added";
}

TEST(ConvertUcs2, ToCountsTheConvertedTerminator) {
    Pair pair(unit::pairOfType(24));
    const Converted got = convertWithTerminator(pair.conversion, bytesOf("ab"), 16);
    EXPECT_TRUE(gives("nlsConvertToUCS2", 0, got.status));
    EXPECT_EQ(got.text(), units16({'a', 'b', 0}));
    const Converted tight = convertWithTerminator(pair.conversion, bytesOf("ab"), 4);
    EXPECT_TRUE(gives("nlsConvertToUCS2", 2, tight.status));
    EXPECT_EQ(tight.text(), units16({'a', 'b'}));
    Library library(unit::byteUnicodePair(unit::someUnits()));
    EXPECT_TRUE(gives("nlsConvertToUCS2", -3,
                      convertWithTerminator(library.conversion("UTF-8", "S"), {0xC3, 0xA4}, 16).status));
    Pair wide(unit::pairOfType(25));
    // The terminator is no whole unit and ends the input.
    EXPECT_TRUE(
        gives("nlsConvertToUCS2", 33, convertWithTerminator(wide.conversion, units32({0xDC00}), 16).status));
}

// ---- Single characters ----

struct Single {
    nlsStatus status;
    std::uint32_t value;
};

Single single(nlsConversion *conversion, std::uint32_t character) {
    Single result = {0, 0xDEADBEEF};
    result.status = nlsConvertLChar(conversion, character, &result.value);
    return result;
}

TEST(ConvertCharacter, IdentityGivesTheCharacterBack) {
    Pair pair(unit::pairOfType(3), "A", "A");
    for (const std::uint32_t c : {0U, 0x41U, 0xFFU, 0x889FU, 0xE282ACU, 0xF09F9880U, 0xFFFFFFFFU}) {
        const Single got = single(pair.conversion, c);
        EXPECT_TRUE(gives("nlsConvertLChar", 0, got.status));
        EXPECT_EQ(got.value, c);
    }
}

TEST(ConvertCharacter, BytesAreLaidDownAndReadHighestFirst) {
    fixture::ByteTable map{};
    for (unsigned b = 0; b < 256; ++b)
        map[b] = fixture::byteOf(b + 1);
    Pair pair(unit::pairOfMap(map));
    EXPECT_EQ(single(pair.conversion, 0).value, 0x01U);
    EXPECT_EQ(single(pair.conversion, 0x41).value, 0x42U);
    EXPECT_EQ(single(pair.conversion, 0x100).value, 0x0201U);
    EXPECT_EQ(single(pair.conversion, 0x123456).value, 0x133557U);
    EXPECT_EQ(single(pair.conversion, 0x12345678).value, 0x13355779U);
    EXPECT_EQ(single(pair.conversion, 0xFF).value, 0U);
}

TEST(ConvertCharacter, ThroughThePagesConverters) {
    Pair toEuc(unit::pairOfType(3));
    EXPECT_EQ(single(toEuc.conversion, 0x889F).value, 0xB0A1U);
    EXPECT_EQ(single(toEuc.conversion, 0xB1).value, 0x8EB1U);
    Pair toShiftJis(unit::pairOfType(4));
    EXPECT_EQ(single(toShiftJis.conversion, 0x8EB1).value, 0xB1U);
    EXPECT_TRUE(gives("nlsConvertLChar", 16, single(toShiftJis.conversion, 0x8E).status));
    Library byteTable(unit::byteUnicodePair(unit::someUnits()));
    EXPECT_EQ(single(byteTable.conversion("S", "UTF-8"), 0x80).value, 0xD280U);
    EXPECT_EQ(single(byteTable.conversion("S", "UTF-8"), 0xC0).value, 0xE285ACU);
    EXPECT_EQ(single(byteTable.conversion("UTF-8", "S"), 0xD280).value, 0x80U);
    const Single missing = single(byteTable.conversion("UTF-8", "S"), 0xC3A4);
    EXPECT_TRUE(gives("nlsConvertLChar", -3, missing.status));
    EXPECT_EQ(missing.value, '?');
    EXPECT_TRUE(gives("nlsConvertLChar", 2, single(byteTable.conversion("S", "UTF-8"), 0xC0C1C2C3).status));
    const Mapping mapping = Mapping::doubleBytePage();
    Library page(unit::mappedPage(mapping));
    nlsConversion *const forth = page.conversion("P", "UTF-8");
    nlsConversion *const back = page.conversion("UTF-8", "P");
    int tried = 0;
    for (std::uint32_t code = 0x8140; code < 0xFD00; ++code) {
        const std::uint32_t u = mapping.toUnicode(code);
        if (u == fixture::kNone)
            continue;
        std::uint32_t packed = 0;
        for (const unsigned char b : reference::utf8Of(u))
            packed = packed << 8 | b;
        ASSERT_EQ(single(forth, code).value, packed);
        ASSERT_EQ(single(back, packed).value, code);
        ++tried;
    }
    EXPECT_GT(tried, 5000);
}

TEST(ConvertCharacter, ThroughTheUnicodeForms) {
    Pair toUtf16(unit::pairOfType(24));
    EXPECT_EQ(single(toUtf16.conversion, 'A').value, 0x4100U) << "two bytes, the first one highest";
    EXPECT_EQ(single(toUtf16.conversion, 0xE282AC).value, 0xAC20U);
    EXPECT_EQ(single(toUtf16.conversion, 0xF09F9880).value, 0x3DD800DEU);
    Pair swapped(unit::pairOfType(145));
    EXPECT_EQ(single(swapped.conversion, 0xE282AC).value, 0x20ACU);
    Pair toUtf32(unit::pairOfType(26));
    EXPECT_EQ(single(toUtf32.conversion, 'A').value, 0x41U) << "the first byte alone";
    EXPECT_EQ(single(toUtf32.conversion, 0xE282AC).value, 0xACU);
    Pair fromUtf16(unit::pairOfType(23));
    EXPECT_EQ(single(fromUtf16.conversion, 0x4100).value, 0x41U);
    Pair fromUtf32(unit::pairOfType(25));
    EXPECT_TRUE(gives("nlsConvertLChar", 33, single(fromUtf32.conversion, 0x01DC0000).status));
}

TEST(ConvertCharacter, NoOutputAndChainsGiveSixteen) {
    Pair fromUtf16(unit::pairOfType(23));
    EXPECT_TRUE(gives("nlsConvertLChar", 16, single(fromUtf16.conversion, 0x41).status)) << "half a unit";
    Pair refused(unit::pairOfType(24));
    EXPECT_EQ(single(refused.conversion, 0x80).status, 16U);
    fixture::DataFile file;
    for (const char *const name : {"A", "M", "UTF-16"})
        file.codePage(name, fixture::CharacterTable::singleByte());
    file.conversion("A", "M", 3);
    file.conversion("M", "UTF-16", 24);
    Library library(file);
    EXPECT_EQ(single(library.conversion("A", "UTF-16"), 'a').status, 16U);
}

TEST(ConvertCharacter, FiveBytesOfOutputAreNoCharacter) {
    Pair fromUtf32(unit::pairOfType(25));
    // U+200000 has a form of five bytes, more than the four there are.
    EXPECT_EQ(single(fromUtf32.conversion, 0x00002000).status == NLS_OK, false);
}

} // namespace
