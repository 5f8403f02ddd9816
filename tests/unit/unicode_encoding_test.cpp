// UTF-8, UTF-16 and UTF-32: every converter against its plain twin, in every byte order and at every
// capacity.
#include "conversion_pair.hpp"
#include "random.hpp"
#include "reference_converters.hpp"

#include <functional>

namespace {

using fixture::agree;
using fixture::byteOf;
using fixture::operator+;
using fixture::convert;
using fixture::halfOf;
using fixture::units16;
using fixture::units32;
using reference::ByteOrder;
using unit::Bytes;
using unit::Converted;
using unit::Pair;

using Reference = std::function<Converted(const Bytes &, std::uint32_t)>;

enum class Form {
    kUtf8,
    kUtf16,
    kUtf32,
};

struct Case {
    unsigned char type;
    Form source;
    Reference reference;
};

std::vector<Case> cases() {
    const auto in = [](auto function, ByteOrder order) -> Reference {
        return [=](const Bytes &source, std::uint32_t capacity) { return function(source, capacity, order); };
    };
    const auto from8 = [](auto function, ByteOrder order) -> Reference {
        return
            [=](const Bytes &source, std::uint32_t capacity) { return function(source, capacity, order, 0); };
    };
    const ByteOrder plain = {false, false};
    const ByteOrder source = {true, false};
    const ByteOrder target = {false, true};
    const ByteOrder both = {true, true};
    return {
        {21, Form::kUtf16, in(reference::utf16ToUtf8, plain)},
        {23, Form::kUtf16, in(reference::utf16ToUtf8, plain)},
        {144, Form::kUtf16, in(reference::utf16ToUtf8, source)},
        {22, Form::kUtf8, from8(reference::utf8ToUtf16, plain)},
        {24, Form::kUtf8, from8(reference::utf8ToUtf16, plain)},
        {145, Form::kUtf8, from8(reference::utf8ToUtf16, target)},
        {25, Form::kUtf32, in(reference::utf32ToUtf8, plain)},
        {148, Form::kUtf32, in(reference::utf32ToUtf8, source)},
        {26, Form::kUtf8, from8(reference::utf8ToUtf32, plain)},
        {149, Form::kUtf8, from8(reference::utf8ToUtf32, target)},
        {27, Form::kUtf16, in(reference::utf16ToUtf32, plain)},
        {152, Form::kUtf16, in(reference::utf16ToUtf32, source)},
        {156, Form::kUtf16, in(reference::utf16ToUtf32, target)},
        {160, Form::kUtf16, in(reference::utf16ToUtf32, both)},
        {28, Form::kUtf32, in(reference::utf32ToUtf16, plain)},
        {157, Form::kUtf32, in(reference::utf32ToUtf16, source)},
        {153, Form::kUtf32, in(reference::utf32ToUtf16, target)},
        {161, Form::kUtf32, in(reference::utf32ToUtf16, both)},
    };
}

// Text with a liking for edges: surrogates, limits of lengths, bytes of wrong kind, ASCII runs, cut units.
Bytes strangeText(Form form, fixture::Random &random, std::uint32_t length) {
    static const std::uint32_t edges[] = {
        0,        1,        0x41,     0x7F,      0x80,      0x7FF,      0x800,      0xD7FF,     0xD800,
        0xDBFF,   0xDC00,   0xDFFF,   0xE000,    0xFFFD,    0xFFFE,     0xFFFF,     0x10000,    0x10FFFF,
        0x110000, 0x1FFFFF, 0x200000, 0x3FFFFFF, 0x4000000, 0x7FFFFFFF, 0x80000000, 0xD8000000, 0xFFFFFFFF};
    static const unsigned char bytes[] = {0x00, 0x41, 0x7F, 0x80, 0x9F, 0xA0, 0xBF, 0xC0, 0xC1,
                                          0xC3, 0xDF, 0xE0, 0xE2, 0xED, 0xEF, 0xF0, 0xF4, 0xF5,
                                          0xF7, 0xF8, 0xFB, 0xFC, 0xFD, 0xFE, 0xFF};
    Bytes out;
    while (out.size() < length) {
        const std::uint32_t edge = edges[random.below(std::size(edges))];
        const std::uint32_t choice = random.below(8);
        if (choice == 0) {
            for (std::uint32_t run = random.below(40); run > 0; --run) {
                out.push_back(byteOf('a' + run % 26));
                if (form != Form::kUtf8)
                    out.resize(out.size() + (form == Form::kUtf16 ? 1 : 3));
            }
        } else if (form == Form::kUtf8) {
            if (choice <= 3)
                out.push_back(bytes[random.below(std::size(bytes))]);
            else if (choice == 4)
                out.push_back(byteOf(random()));
            else if (choice == 5)
                out = out + reference::utf8Of(random.below(0x3000));
            else
                out = out + reference::utf8Of(edge & 0x3FFFFFF);
        } else if (form == Form::kUtf16) {
            if (choice <= 2)
                out = out + units16({halfOf(0xD800 + random.below(0x800))});
            else if (choice <= 4)
                out = out +
                      units16({halfOf(0xD800 + random.below(0x400)), halfOf(0xDC00 + random.below(0x400))});
            else if (choice == 5)
                out = out + units16({halfOf(random())});
            else
                out = out + units16({halfOf(edge)});
        } else {
            if (choice <= 2)
                out = out + units32({0xD800 + random.below(0x800)});
            else if (choice == 3)
                out = out + units32({random()});
            else if (choice == 4)
                out = out + units32({random.below(0x120000)});
            else
                out = out + units32({edge});
        }
    }
    if (random.below(4) == 0 && !out.empty())
        out.resize(out.size() -
                   random.below(static_cast<std::uint32_t>(std::min<std::size_t>(out.size(), 4))));
    return out;
}

class UnicodeForms : public testing::TestWithParam<Case> {};

TEST_P(UnicodeForms, AgreeWithTheirTwinOnStrangeTextAtEveryCapacity) {
    const Case &one = GetParam();
    Pair pair(unit::pairOfType(one.type));
    fixture::Random random(one.type);
    for (int round = 0; round < 300; ++round) {
        const Bytes source = strangeText(one.source, random, random.below(24));
        unit::compareAtEveryCapacity(pair.conversion, source, one.reference);
        if (HasFatalFailure())
            return;
    }
}

TEST_P(UnicodeForms, AgreeWithTheirTwinOnLongText) {
    const Case &one = GetParam();
    Pair pair(unit::pairOfType(one.type));
    fixture::Random random(one.type + 1000);
    for (int round = 0; round < 200; ++round) {
        const Bytes source = strangeText(one.source, random, 200 + random.below(800));
        const std::uint32_t need = one.reference(source, 100000).written;
        for (const std::uint32_t capacity : {6000U, need, need - 1, need / 2, random.below(need + 2)}) {
            if (capacity > 100000)
                continue; // refused input has no length
            const Converted expected = one.reference(source, capacity);
            ASSERT_TRUE(agree(expected, convert(pair.conversion, source, capacity)))
                << "capacity " << capacity << " of " << need << ", source " << fixture::hex(source);
        }
    }
}

TEST_P(UnicodeForms, AgreeWithTheirTwinOnEveryCharacterValue) {
    const Case &one = GetParam();
    Pair pair(unit::pairOfType(one.type));
    const std::uint32_t limit = one.source == Form::kUtf16 ? 0x10000 : 0x112000;
    const bool swapped = one.type == 144 || one.type == 148 || one.type == 152 || one.type == 157 ||
                         one.type == 160 || one.type == 161;
    for (std::uint32_t begin = 0; begin < limit; begin += 0x1000) {
        Bytes source;
        for (std::uint32_t u = begin; u < begin + 0x1000; ++u) {
            const Bytes character = one.source == Form::kUtf8    ? reference::utf8Of(u)
                                    : one.source == Form::kUtf16 ? units16({halfOf(u), 'x'}, swapped)
                                                                 : units32({u, 'x'}, swapped);
            source.insert(source.end(), character.begin(), character.end());
        }
        const Converted expected = one.reference(source, 60000);
        ASSERT_TRUE(agree(expected, convert(pair.conversion, source, 60000))) << std::hex << begin;
    }
}

TEST_P(UnicodeForms, EmptySourceGivesNothing) {
    Pair pair(unit::pairOfType(GetParam().type));
    for (const std::uint32_t capacity : {0U, 1U, 8U}) {
        const Converted got = convert(pair.conversion, {}, capacity);
        EXPECT_EQ(got.status, NLS_OK);
        EXPECT_EQ(got.written, 0U);
    }
}

INSTANTIATE_TEST_SUITE_P(Types, UnicodeForms, testing::ValuesIn(cases()),
                         [](const auto &one) { return "Type" + std::to_string(one.param.type); });

Converted run(unsigned char type, const Bytes &source, std::uint32_t capacity = 64) {
    Pair pair(unit::pairOfType(type));
    return convert(pair.conversion, source, capacity);
}

TEST(UnicodeEncoding, SurrogatePairBecomesFourBytes) {
    const Bytes expected = {0xF0, 0x9F, 0x98, 0x80};
    EXPECT_EQ(run(21, units16({0xD83D, 0xDE00})).text(), expected);
    EXPECT_EQ(run(23, units16({0xD83D, 0xDE00})).text(), expected);
    EXPECT_EQ(run(144, units16({0xD83D, 0xDE00}, true)).text(), expected);
    EXPECT_EQ(run(25, units32({0xD83D, 0xDE00})).text(), expected);
    EXPECT_EQ(run(25, units32({0x1F600})).text(), expected);
}

TEST(UnicodeEncoding, LoneSurrogatesAreReportedButGoOn) {
    const Converted sixteen = run(23, units16({'a', 0xDC00, 'b'}));
    EXPECT_TRUE(fixture::gives("nlsConvertFromUCS2", 16, sixteen.status));
    EXPECT_EQ(sixteen.text(), fixture::bytesOf("a?b"));
    const Converted thirtyTwo = run(25, units32({'a', 0xDC00, 'b'}));
    EXPECT_TRUE(fixture::gives("nlsConvertFromUCS2", 33, thirtyTwo.status));
    EXPECT_EQ(thirtyTwo.text(), fixture::bytesOf("a?b"));
    EXPECT_EQ(run(23, units16({0xD800})).status, 16U);
    EXPECT_EQ(run(25, units32({0xD800})).status, 33U);
    EXPECT_EQ(run(23, units16({0xD800, 0xD800, 0xDC00})).text(), (Bytes{'?', 0xF0, 0x90, 0x80, 0x80}));
}

TEST(UnicodeEncoding, ValuesBeyondUnicodeAreWrittenAsTheyStand) {
    EXPECT_EQ(run(25, units32({0x110000})).text(), (Bytes{0xF4, 0x90, 0x80, 0x80}));
    EXPECT_EQ(run(25, units32({0x1FFFFF})).text(), (Bytes{0xF7, 0xBF, 0xBF, 0xBF}));
    EXPECT_EQ(run(25, units32({0x200000})).text(), (Bytes{0xF8, 0x88, 0x80, 0x80, 0x80}));
    EXPECT_EQ(run(25, units32({0x3FFFFFF})).text(), (Bytes{0xFB, 0xBF, 0xBF, 0xBF, 0xBF}));
    EXPECT_EQ(run(25, units32({0x4000000})).text(), (Bytes{0xFF, 0xBD}));
    EXPECT_EQ(run(25, units32({0xFFFFFFFF})).text(), (Bytes{0xFF, 0xBD}));
    EXPECT_EQ(run(25, units32({0x4000000})).status, NLS_OK);
}

TEST(UnicodeEncoding, ValuesBeyondUnicodeBecomeReplacementCharacters) {
    EXPECT_EQ(run(28, units32({0x110000})).text(), units16({0xFFFD}));
    EXPECT_EQ(run(24, {0xF4, 0x90, 0x80, 0x80}).text(), units16({0xFFFD}));
    EXPECT_EQ(run(26, {0xF4, 0x90, 0x80, 0x80}).text(), units32({0xFFFD}));
    EXPECT_EQ(run(26, {0xF4, 0x90, 0x80, 0x80}).status, NLS_OK);
    EXPECT_EQ(run(26, {0xF4, 0x8F, 0xBF, 0xBF}).text(), units32({0x10FFFF}));
}

TEST(UnicodeEncoding, TargetByteOrderIsTheTypes) {
    EXPECT_EQ(run(24, {0xE2, 0x82, 0xAC}).text(), (Bytes{0xAC, 0x20}));
    EXPECT_EQ(run(145, {0xE2, 0x82, 0xAC}).text(), (Bytes{0x20, 0xAC}));
    EXPECT_EQ(run(149, {0xE2, 0x82, 0xAC}).text(), (Bytes{0x00, 0x00, 0x20, 0xAC}));
}

TEST(UnicodeEncoding, ByteOrderMarksAreOrdinaryCharacters) {
    EXPECT_EQ(run(23, units16({0xFEFF, 'a'})).text(), (Bytes{0xEF, 0xBB, 0xBF, 'a'}));
    EXPECT_EQ(run(23, units16({0xFFFE})).text(), (Bytes{0xEF, 0xBF, 0xBE}));
    EXPECT_EQ(run(24, fixture::bytesOf("a")).text(), units16({'a'}));
}

TEST(UnicodeEncoding, SequenceShortByOneByteTakesTheTerminatorAsItsLast) {
    const Converted got = run(24, {'a', 0xC3});
    EXPECT_EQ(got.status, NLS_OK);
    EXPECT_EQ(got.text(), units16({'a', halfOf((0xC3U << 6) - 0x3080)}));
    EXPECT_EQ(run(24, {'a', 0xE2}).status, 16U);
    EXPECT_EQ(run(24, {'a', 0xE2}).text(), units16({'a'}));
    EXPECT_EQ(run(24, {0xE2, 0x82}).status, NLS_OK);
    EXPECT_EQ(run(26, {0xF0, 0x9F}).status, 16U);
    EXPECT_EQ(run(26, {0xF0, 0x9F, 0x98}).status, NLS_OK);
}

TEST(UnicodeEncoding, NothingIsReadBehindTheTerminator) {
    // With the terminator converted too, the byte behind the source is the caller's no more.
    for (const unsigned char type : unit::Types{22, 24, 145, 26, 149}) {
        Pair pair(unit::pairOfType(type));
        for (const Bytes &source : {Bytes{0xE2}, Bytes{'a', 0xE2}, Bytes{0xF0, 0x9F}, Bytes{0xF8, 0x80, 0x80},
                                    Bytes{0xFC, 0x80, 0x80, 0x80}}) {
            fixture::convertWithTerminator(pair.conversion, source, 64);
            fixture::convertCheck(pair.conversion, source, 64);
        }
    }
}

TEST(UnicodeEncoding, Utf8IsNotJudged) {
    EXPECT_EQ(run(24, {0xC0, 0x80}).text(), units16({0})) << "overlong";
    EXPECT_EQ(run(24, {0xED, 0xA0, 0x80}).text(), units16({0xD800})) << "an encoded surrogate";
    EXPECT_EQ(run(24, {'a', 0x80}).text(), units16({'a', 0x80})) << "a trail byte alone";
    EXPECT_EQ(run(26, {0xC3, 0x41}).text(), units32({(0xC3U << 6) + 0x41 - 0x3080})) << "no trail byte";
    EXPECT_EQ(run(26, {0xFC, 0x84, 0x80, 0x80, 0x80, 0x80}).text(), units32({0xFFFD}));
}

TEST(UnicodeEncoding, LoneSurrogatesPassBetweenUnitForms) {
    const Converted wide = run(27, units16({0xD800}));
    EXPECT_EQ(wide.status, NLS_OK);
    EXPECT_EQ(wide.text(), units32({0xD800}));
    EXPECT_EQ(run(27, units16({0xDC00, 0xD800, 0xDC00})).text(), units32({0xDC00, 0x10000}));
    EXPECT_EQ(run(28, units32({0xDC00})).text(), units16({0xDC00}));
}

TEST(UnicodeEncoding, CutUnitEndsTheInput) {
    for (std::size_t cut = 1; cut < 2; ++cut)
        EXPECT_EQ(run(23, Bytes{'a', 0, 'b'}).text(), fixture::bytesOf("a"));
    for (std::size_t cut = 1; cut < 4; ++cut) {
        Bytes source = units32({'a', 'b'});
        source.resize(source.size() - cut);
        EXPECT_EQ(run(25, source).text(), fixture::bytesOf("a"));
        EXPECT_EQ(run(25, source).status, NLS_OK);
        EXPECT_EQ(run(28, source).text(), units16({'a'}));
    }
    const Converted cutPair = run(23, Bytes{0x00, 0xD8, 0x00});
    EXPECT_EQ(cutPair.text(), fixture::bytesOf("?"));
    EXPECT_EQ(cutPair.status, 16U);
}

TEST(UnicodeEncoding, OddCapacityTakesNoHalfUnit) {
    for (std::uint32_t capacity = 0; capacity < 12; ++capacity) {
        const Converted sixteen = run(24, fixture::bytesOf("abcdefgh"), capacity);
        EXPECT_EQ(sixteen.status, 2U);
        EXPECT_EQ(sixteen.written, capacity / 2 * 2);
        const Converted thirtyTwo = run(26, fixture::bytesOf("abcdefgh"), capacity);
        EXPECT_EQ(thirtyTwo.status, 2U);
        EXPECT_EQ(thirtyTwo.written, capacity / 4 * 4);
    }
}

TEST(UnicodeEncoding, CharacterThatDoesNotFitIsNotWritten) {
    const Converted pair = run(24, {'a', 0xF0, 0x9F, 0x98, 0x80}, 4);
    EXPECT_TRUE(fixture::gives("nlsConvertFromUCS2", 2, pair.status));
    EXPECT_EQ(pair.text(), units16({'a'}));
    const Converted bytes = run(23, units16({'a', 0x20AC}), 3);
    EXPECT_EQ(bytes.status, 2U);
    EXPECT_EQ(bytes.text(), fixture::bytesOf("a"));
}

} // namespace
