// Double-byte pages: decoding of their characters, both look-ups of the mapping tables, all output forms.
#include "conversion_pair.hpp"
#include "random.hpp"
#include "reference_converters.hpp"

#include <algorithm>

namespace {

using fixture::agree;
using fixture::byteOf;
using fixture::operator+;
using fixture::bytesOf;
using fixture::ByteTable;
using fixture::CharacterTable;
using fixture::CodeRange;
using fixture::convert;
using fixture::DataFile;
using fixture::halfOf;
using fixture::Library;
using fixture::Mapping;
using unit::Bytes;
using unit::Converted;

// The page's conversions and the twins that they are compared with.
struct Page {
    explicit Page(const Mapping &table, const CharacterTable &characters = CharacterTable::doubleByte(),
                  unsigned char toType = 17, unsigned char fromType = 18)
        : mapping(table), attributes(characters.attributes),
          library(unit::mappedPage(table, toType, fromType, characters), 2000000) {
        toUtf8 = library.conversion("P", "UTF-8");
        fromUtf8 = library.conversion("UTF-8", "P");
        toUtf16 = library.conversion("P", "UTF-16");
        fromUtf16 = library.conversion("UTF-16", "P");
        toSwapped = library.conversion("P", "UTF-16BE");
        fromSwapped = library.conversion("UTF-16BE", "P");
    }

    void compareFrom(const Bytes &source, std::uint32_t capacity) const {
        ASSERT_TRUE(agree(reference::pageToUtf8(source, capacity, mapping, attributes),
                          convert(toUtf8, source, capacity)))
            << capacity;
        ASSERT_TRUE(agree(reference::pageToUtf16(source, capacity, mapping, attributes),
                          convert(toUtf16, source, capacity)))
            << capacity;
        ASSERT_TRUE(agree(reference::pageToUtf16(source, capacity, mapping, attributes, {false, true}),
                          convert(toSwapped, source, capacity)))
            << capacity;
    }
    void compareFromUtf8(const Bytes &source, std::uint32_t capacity) const {
        ASSERT_TRUE(
            agree(reference::utf8ToPage(source, capacity, mapping), convert(fromUtf8, source, capacity)))
            << capacity;
    }
    void compareFromUtf16(const std::vector<std::uint16_t> &units, std::uint32_t capacity) const {
        const Bytes source = fixture::units16(units);
        ASSERT_TRUE(
            agree(reference::utf16ToPage(source, capacity, mapping), convert(fromUtf16, source, capacity)))
            << capacity;
        const Bytes swapped = fixture::units16(units, true);
        ASSERT_TRUE(agree(reference::utf16ToPage(swapped, capacity, mapping, {true, false}),
                          convert(fromSwapped, swapped, capacity)))
            << capacity;
    }

    // Every one- and two-byte code, and every Unicode value of planes 0 to 2.
    void compareAll() const {
        for (unsigned lead = 0; lead < 256; ++lead) {
            Bytes source;
            if ((attributes[lead] & 7) == 0)
                source.push_back(byteOf(lead));
            else
                for (unsigned trail = 1; trail < 256; ++trail) {
                    source.push_back(byteOf(lead));
                    source.push_back(byteOf(trail));
                }
            compareFrom(source, 4000);
            if (testing::Test::HasFatalFailure())
                return;
        }
        for (std::uint32_t begin = 0; begin < 0x30000; begin += 0x1000) {
            Bytes source;
            std::vector<std::uint16_t> units;
            for (std::uint32_t u = begin; u < begin + 0x1000; ++u) {
                const Bytes character = reference::utf8Of(u);
                source.insert(source.end(), character.begin(), character.end());
                if (u < 0x10000) {
                    units.push_back(halfOf(u));
                    units.push_back('-'); // so that no surrogates meet
                } else {
                    units.push_back(halfOf(0xD800 + ((u - 0x10000) >> 10)));
                    units.push_back(halfOf(0xDC00 + (u & 0x3FF)));
                }
            }
            compareFromUtf8(source, 20000);
            compareFromUtf16(units, 20000);
            if (testing::Test::HasFatalFailure())
                return;
        }
    }

    Mapping mapping;
    ByteTable attributes;
    Library library;
    nlsConversion *toUtf8;
    nlsConversion *fromUtf8;
    nlsConversion *toUtf16;
    nlsConversion *fromUtf16;
    nlsConversion *toSwapped;
    nlsConversion *fromSwapped;
};

TEST(MappedPage, EveryCodeAndEveryCharacterOfADoubleBytePage) {
    for (const unsigned seed : {1U, 2U}) {
        Page(Mapping::doubleBytePage(seed)).compareAll();
        if (HasFatalFailure())
            return;
    }
}

TEST(MappedPage, EveryCodeAndEveryCharacterOfASingleBytePage) {
    for (const unsigned seed : {1U, 2U, 3U}) {
        Page(Mapping::singleBytePage(seed), CharacterTable::singleByte(), 17, 50).compareAll();
        if (HasFatalFailure())
            return;
    }
}

// The rows of plane 2 begin with FD and FE.
CharacterTable planeTwoCharacters() {
    CharacterTable characters = CharacterTable::doubleByte();
    characters.attributes[0xFD] = 1;
    characters.attributes[0xFE] = 1;
    return characters;
}

TEST(MappedPage, EveryCodeAndEveryCharacterOfAPageWithPlaneTwo) {
    for (const unsigned char type : unit::Types{17, 81, 89}) {
        Page(Mapping::planeTwoPage(), planeTwoCharacters(), type).compareAll();
        if (HasFatalFailure())
            return;
    }
}

TEST(MappedPage, RoundTripHoldsForWhatTheTableMapsBothWays) {
    const Mapping mapping = Mapping::planeTwoPage();
    const Page page(mapping, planeTwoCharacters());
    int count = 0;
    int beyond = 0;
    for (std::uint32_t code = 0x8100; code < 0x10000; ++code) {
        const std::uint32_t value = mapping.toUnicode(code);
        if (value == fixture::kNone || (code & 0xFF) == 0)
            continue;
        const Bytes source = {byteOf(code >> 8), byteOf(code)};
        const Converted forth = convert(page.toUtf8, source, 8);
        ASSERT_EQ(forth.text(), reference::utf8Of(value));
        ASSERT_EQ(convert(page.fromUtf8, forth.text(), 8).text(), source);
        ++count;
        beyond += value > 0xFFFF;
    }
    EXPECT_GT(count, 5000);
    EXPECT_GT(beyond, 100);
}

// Tables with fields of any value: what counts is that both readings agree, not that the table makes sense.
Mapping anyMapping(fixture::Random &random) {
    Mapping mapping;
    for (int g = 0; g < 3; ++g) {
        CodeRange &range = mapping.groups[g];
        const auto byte = [&] {
            static const unsigned char places[] = {0x00, 0x40, 0x7E, 0x7F, 0x80, 0x81,
                                                   0x9F, 0xA1, 0xE0, 0xFC, 0xFE, 0xFF};
            return random.below(3) == 0 ? byteOf(random()) : places[random.below(std::size(places))];
        };
        range.firstLead = random.below(2) == 0 ? 0 : byteOf(0x81 + random.below(0x40));
        range.lastLead = random.below(2) == 0 ? 0xFC : byte();
        range.firstTrail = random.below(2) == 0 ? 0x40 : byte();
        range.lastTrail = random.below(2) == 0 ? 0xFE : byte();
        if (random.below(2) == 0) {
            range.leadGapLow = byte();
            range.leadGapHigh = byte();
            range.leadShift = byteOf(random.below(0x50));
        }
        if (random.below(2) == 0) {
            range.trailGap1Low = byte();
            range.trailGap1High = byte();
            range.trailShift1 = byteOf(random.below(0x50));
        }
        if (random.below(2) == 0) {
            range.trailGap2Low = byte();
            range.trailGap2High = byte();
            range.trailShift2 = byteOf(random.below(0x50));
        }
        range.trailsPerLead = byteOf(1 + random.below(255));
        range.zeroCode = random.below(2) == 0 ? 0 : halfOf(random());
        range.indexBase = halfOf(random.below(3) == 0 ? random() : random.below(200));
        if (random.below(2) == 0) {
            range.holeStart = halfOf(random.below(4000));
            range.holeSize = halfOf(random.below(500));
        }
        range.substitution = halfOf(random.below(2) == 0 ? '?' : random());
        range.indexLimit = halfOf(1 + random.below(12000));
        if (random.below(4) != 0)
            for (std::uint32_t i = 0; i < range.indexLimit; ++i) {
                const std::uint32_t value = random.below(5) == 0 ? 0xFFFF : random() & 0xFFFF;
                range.values.push_back(halfOf(value >= 0xD800 && value < 0xE000 ? 0xFFFD : value));
            }
        else
            range.indexLimit = 0;
        const std::uint32_t begin = random.below(0x9000);
        const std::uint32_t length = 1 + random.below(3000);
        if (random.below(4) == 0)
            continue; // no way back
        if (g == 2) {
            range.lowest = begin;
            range.highest = begin + length - 1;
            for (std::uint32_t i = 0; i < length; ++i)
                range.reverse.push_back(halfOf(random.below(4) == 0 ? 0xFFFF : random()));
        } else {
            std::map<std::uint32_t, std::uint32_t> byValue;
            const std::uint32_t density = 1 + random.below(40);
            for (std::uint32_t u = begin; u < begin + length; u += 1 + random.below(density))
                byValue[u] = 1 + random.below(range.indexLimit == 0 ? 2000 : range.indexLimit);
            range.setRuns(byValue, 3 + random.below(5));
        }
        if (g == 0 && random.below(2) == 0) {
            range.flags = 1 + random.below(3);
            // Values stay clear of the surrogates and within Unicode.
            if ((range.flags & 1) != 0) {
                range.addDelta(0x21000, 0x20000, 0x20000);
                range.addDelta(0x3FFFF, 0x30000, 0x30000);
                range.endDeltas();
            }
            if ((range.flags & 2) != 0) {
                range.addDelta(begin + 0x20000 + length / 2, begin + 0x20000, 0x20000);
                range.addDelta(begin + length, begin + length / 3, 0);
                range.addDelta(begin + 0x10000 + length, begin + 0x10000, 0x10000);
                range.endDeltas();
            }
        }
    }
    return mapping;
}

TEST(MappedPage, TablesOfAnyContentAreReadByTheRules) {
    fixture::Random random(2024);
    CharacterTable characters = CharacterTable::doubleByte();
    for (int round = 0; round < 25; ++round) {
        for (unsigned b = 0x80; b < 256; ++b)
            characters.attributes[b] = random.below(8) != 0;
        const Page page(anyMapping(random), characters);
        page.compareAll();
        ASSERT_FALSE(HasFatalFailure()) << "round " << round;
    }
}

TEST(MappedPage, TextsAtEveryCapacity) {
    fixture::Random random(77);
    CharacterTable characters = CharacterTable::doubleByte();
    characters.attributes[0xFD] = 2; // three bytes
    characters.attributes[0xFE] = 3; // four: skipped and read as "?"
    characters.attributes[0xFF] = 7;
    const Page page(Mapping::planeTwoPage(), characters);
    for (int round = 0; round < 150; ++round) {
        Bytes source;
        for (std::uint32_t length = random.below(24); source.size() < length;) {
            static const unsigned char odd[] = {0x00, 0x7F, 0x80, 0xA0, 0xA1, 0xDF, 0xFD, 0xFE, 0xFF, 0x81};
            const std::uint32_t choice = random.below(6);
            if (choice == 0)
                source.insert(source.end(), random.below(20), byteOf('a' + random.below(26)));
            else if (choice == 1)
                source.push_back(odd[random.below(std::size(odd))]);
            else if (choice == 2)
                source.push_back(byteOf(random()));
            else {
                source.push_back(byteOf(0x81 + random.below(0x1F)));
                source.push_back(byteOf(0x40 + random.below(0xBD)));
            }
        }
        for (std::uint32_t capacity = 0; capacity < source.size() * 4 + 6; ++capacity) {
            page.compareFrom(source, capacity);
            if (HasFatalFailure()) {
                ADD_FAILURE() << fixture::hex(source);
                return;
            }
        }
        Bytes unicode;
        std::vector<std::uint16_t> units;
        for (std::uint32_t length = random.below(24); unicode.size() < length;) {
            const std::uint32_t choice = random.below(6);
            const std::uint32_t u = choice == 0   ? random.below(0x80)
                                    : choice <= 2 ? 0x100 + random.below(0x8F00)
                                    : choice == 3 ? 0x20000 + random.below(0x2000)
                                                  : 0xFF61 + random.below(0x40);
            unicode = unicode + (choice == 5 ? Bytes{byteOf(random())} : reference::utf8Of(u));
            if (choice == 5)
                units.push_back(halfOf(0xD800 + random.below(0x800)));
            else if (u < 0x10000)
                units.push_back(halfOf(u));
            else {
                units.push_back(halfOf(0xD800 + ((u - 0x10000) >> 10)));
                units.push_back(halfOf(0xDC00 + (u & 0x3FF)));
            }
        }
        for (std::uint32_t capacity = 0; capacity < unicode.size() * 2 + 6; ++capacity) {
            page.compareFromUtf8(unicode, capacity);
            page.compareFromUtf16(units, capacity);
            if (HasFatalFailure()) {
                ADD_FAILURE() << fixture::hex(unicode);
                return;
            }
        }
    }
}

TEST(MappedPage, LongTexts) {
    fixture::Random random(78);
    const Page page(Mapping::doubleBytePage());
    for (int round = 0; round < 60; ++round) {
        Bytes source;
        while (source.size() < 700) {
            if (random.below(3) == 0)
                source.insert(source.end(), random.below(70), byteOf(' ' + random.below(90)));
            source.push_back(byteOf(0x81 + random.below(0x1F)));
            source.push_back(byteOf(0x40 + random.below(0xBD)));
        }
        page.compareFrom(source, 3000);
        page.compareFrom(source, random.below(2500));
        const Bytes unicode = reference::pageToUtf8(source, 3000, page.mapping, page.attributes).text();
        page.compareFromUtf8(unicode, 3000);
        page.compareFromUtf8(unicode, random.below(900));
        if (HasFatalFailure())
            return;
    }
}

// ---- The rules one by one ----

TEST(MappedPage, CharacterEndsAtANulInsideAndAtTheEndOfTheText) {
    const Page page(Mapping::doubleBytePage());
    // The code formed so far is the lead byte alone; the page maps no such code.
    const Converted cut = convert(page.toUtf8, {'a', 0x88}, 16);
    EXPECT_EQ(cut.status, NLS_R_SUBSTITUTED);
    EXPECT_EQ(cut.text(), (Bytes{'a', 0xEF, 0xBF, 0xBD}));
    const Converted zero = convert(page.toUtf8, {0x88, 0, 'a'}, 16);
    EXPECT_EQ(zero.status, NLS_R_SUBSTITUTED);
    EXPECT_EQ(zero.text(), (Bytes{0xEF, 0xBF, 0xBD, 0, 'a'}));
}

TEST(MappedPage, UnmappedCodesBelow127StayThemselves) {
    const Page page(Mapping::doubleBytePage());
    Bytes ascii;
    for (unsigned b = 0; b < 127; ++b)
        ascii.push_back(byteOf(b));
    EXPECT_EQ(convert(page.toUtf8, ascii, 300).text(), ascii);
    EXPECT_EQ(convert(page.toUtf8, ascii, 300).status, NLS_OK);
    EXPECT_EQ(convert(page.fromUtf8, ascii, 300).text(), ascii);
    EXPECT_EQ(convert(page.fromUtf8, ascii, 300).status, NLS_OK);
    EXPECT_EQ(convert(page.toUtf8, {0x80}, 300).status, NLS_R_SUBSTITUTED);
}

TEST(MappedPage, UnmappedCharactersBecomeTheSubstitutionCode) {
    Mapping mapping = Mapping::doubleBytePage();
    const Page byte(mapping);
    const Converted one = convert(byte.fromUtf8, reference::utf8Of(0x1F600), 8);
    EXPECT_EQ(one.status, NLS_R_SUBSTITUTED);
    EXPECT_EQ(one.text(), bytesOf("?"));
    mapping.first().substitution = 0x8140;
    const Page two(mapping);
    EXPECT_EQ(convert(two.fromUtf8, reference::utf8Of(0x1F600), 8).text(), (Bytes{0x81, 0x40}));
    EXPECT_EQ(convert(two.fromUtf8, reference::utf8Of(0x1F600), 1).status, NLS_E_BUFFER);
}

TEST(MappedPage, MappedReplacementCharacterCountsAsSubstitution) {
    Mapping mapping = Mapping::doubleBytePage();
    mapping.third().values[mapping.third().indexOf(0x8140)] = 0xFFFD;
    const Page page(mapping);
    EXPECT_EQ(convert(page.toUtf8, {0x81, 0x40}, 8).text(), (Bytes{0xEF, 0xBF, 0xBD}));
    EXPECT_EQ(convert(page.toUtf8, {0x81, 0x40}, 8).status, NLS_R_SUBSTITUTED);
    EXPECT_EQ(convert(page.toUtf16, {0x81, 0x40}, 8).status, NLS_R_SUBSTITUTED);
}

TEST(MappedPage, CutUtf8IsRefusedWhereItIsCut) {
    const Page page(Mapping::doubleBytePage());
    const Converted got = convert(page.fromUtf8, {'a', 0xE2}, 16);
    EXPECT_EQ(got.status, 16U);
    EXPECT_EQ(got.text(), bytesOf("a"));
    // Short by one byte: the terminator serves, as everywhere; none of it lies behind the text.
    EXPECT_EQ(convert(page.fromUtf8, {'a', 0xE2, 0x82}, 16).status == 16U, false);
    for (const Bytes &source : {Bytes{0xE2}, Bytes{'a', 0xF0, 0x9F}}) {
        fixture::convertCheck(page.fromUtf8, source, 16);
        fixture::convertWithTerminator(page.fromUtf8, source, 16);
    }
}

TEST(MappedPage, CheckTellsAChangeAsSoonAsSomethingIsWritten) {
    const Page page(Mapping::doubleBytePage());
    for (nlsConversion *const conversion : {page.toUtf8, page.fromUtf8, page.toUtf16}) {
        EXPECT_EQ(fixture::convertCheck(conversion, bytesOf("abc"), 32).status, NLS_R_CHANGED);
        EXPECT_EQ(fixture::convertCheck(conversion, {0xC3, 0xFE, 0x81, 0x20}, 32).status, NLS_R_CHANGED)
            << "even with a substitution";
        EXPECT_EQ(fixture::convertCheck(conversion, bytesOf("abc"), 2).status, NLS_E_BUFFER);
    }
}

} // namespace
