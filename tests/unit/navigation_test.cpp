// Walking text one character at a time, and characters as numbers.
#include "library_fixture.hpp"
#include "random.hpp"
#include "status_rows.hpp"

namespace {

using fixture::byteOf;
using fixture::Bytes;
using fixture::CharacterTable;
using fixture::DataFile;
using fixture::FakeObject;
using fixture::gives;
using fixture::GuardedBuffer;
using fixture::Library;
namespace peek = fixture::peek;

// Every trail count at a byte of its own: '1' to '7' begin characters of two to eight bytes.
CharacterTable longCharacters() {
    CharacterTable table;
    table.flags = fixture::kMultibyte;
    for (unsigned i = 1; i <= 7; ++i)
        table.attributes['0' + i] = byteOf(i | 0x08);
    table.trailValid.fill(1);
    table.classes['#'] = 5;
    return table;
}

class Navigation : public testing::Test {
protected:
    Navigation() : library_(file(), 60000) {
        byte_ = library_.locale("BYTE");
        double_ = library_.locale("DOUBLE");
        utf8_ = library_.locale("UTF-8");
        long_ = library_.locale("LONG");
    }
    static DataFile file() {
        DataFile file;
        file.codePage("BYTE", CharacterTable::singleByte());
        file.codePage("DOUBLE", CharacterTable::doubleByte());
        file.codePage("UTF-8", CharacterTable::utf8());
        file.codePage("LONG", longCharacters());
        return file;
    }
    // Puts text before forbidden memory, its terminator being the last byte that may be read.
    const char *text(const std::string &content) {
        Bytes bytes = fixture::bytesOf(content);
        bytes.push_back(0);
        return reinterpret_cast<const char *>(guard_.readOnly(bytes));
    }
    // How far one step goes, and its status.
    std::pair<std::ptrdiff_t, nlsStatus> step(nlsLocale *locale, const std::string &content) {
        const char *const p = text(content);
        char *next = nullptr;
        const nlsStatus status = nlsGetNextChar(locale, p, &next);
        return {next - p, status};
    }
    // How far one step back from `from` goes, and its status.
    std::pair<std::ptrdiff_t, nlsStatus> back(nlsLocale *locale, const std::string &content, std::size_t from,
                                              std::size_t start = 0) {
        const char *const p = text(content);
        char *prev = nullptr;
        const nlsStatus status = nlsGetPrevChar(locale, p + from, p + start, &prev);
        return {p + from - prev, status};
    }

    Library library_;
    nlsLocale *byte_;
    nlsLocale *double_;
    nlsLocale *utf8_;
    nlsLocale *long_;
    GuardedBuffer guard_{4096};
};

using Step = std::pair<std::ptrdiff_t, nlsStatus>;

TEST_F(Navigation, NextCharacterReportsTheLastOne) {
    EXPECT_EQ(step(byte_, "ab"), Step(1, 0));
    EXPECT_EQ(step(byte_, "b"), Step(1, 20));
    EXPECT_EQ(step(byte_, ""), Step(0, 20));
    EXPECT_EQ(step(double_, "\x88\x9F"
                            "a"),
              Step(2, 0));
    EXPECT_EQ(step(double_, "\x88\x9F"), Step(2, 20));
    EXPECT_EQ(step(utf8_, "\xE2\x82\xAC!"), Step(3, 0));
    EXPECT_EQ(step(utf8_, "\xF0\x9F\x98\x80"), Step(4, 20));
    char *next = nullptr;
    EXPECT_TRUE(gives("nlsGetNextChar", 0, nlsGetNextChar(byte_, "ab", &next)));
    EXPECT_TRUE(gives("nlsGetNextChar", 20, nlsGetNextChar(byte_, "b", &next)));
}

TEST_F(Navigation, NextCharacterStopsOnANulAmongTheFirstThreeTrailBytes) {
    EXPECT_EQ(step(double_, "\x88"), Step(1, 20));
    EXPECT_EQ(step(utf8_, "\xE2"), Step(1, 20));
    EXPECT_EQ(step(utf8_, "\xE2\x82"), Step(2, 20));
    EXPECT_EQ(step(utf8_, "\xF0\x9F\x98"), Step(3, 20));
    for (unsigned count = 1; count <= 3; ++count)
        for (unsigned present = 0; present < count; ++present) {
            const std::string content = std::to_string(count) + std::string(present, 'x');
            EXPECT_EQ(step(long_, content), Step(1 + present, 20)) << content;
        }
}

TEST_F(Navigation, NextCharacterStaysOnANulAndLooksAtNothingBehindIt) {
    for (nlsLocale *const locale : {byte_, double_, utf8_, long_})
        EXPECT_EQ(step(locale, ""), Step(0, 20));
    EXPECT_EQ(step(utf8_, "\xC3"), Step(1, 20));
    EXPECT_EQ(step(utf8_, std::string("\xC3\0z", 3)), Step(1, 20));
    EXPECT_EQ(step(utf8_, std::string("\0z", 2)), Step(0, 20));
    EXPECT_EQ(step(double_, std::string("\x88\0z", 3)), Step(1, 20));
    EXPECT_EQ(step(double_, std::string("\0z", 2)), Step(0, 20));
}

TEST_F(Navigation, NextCharacterGoesOverLongCharactersWithoutLooking) {
    for (unsigned count = 4; count <= 7; ++count) {
        const std::string whole = std::to_string(count) + std::string(count, 'x');
        EXPECT_EQ(step(long_, whole + "y"), Step(count + 1, 0));
        EXPECT_EQ(step(long_, whole), Step(count + 1, 20));
        std::string holed = whole + "y";
        holed[2] = '\0';
        EXPECT_EQ(step(long_, holed), Step(count + 1, 0));
    }
}

TEST_F(Navigation, NextCharacterTrustsTheLeadByteAlone) {
    EXPECT_EQ(step(double_, "\x88\x20z"), Step(2, 0)); // no valid trail byte
    EXPECT_EQ(step(utf8_, "\xC3zz"), Step(2, 0));
    EXPECT_EQ(step(utf8_, "\x80z"), Step(1, 0));
}

TEST_F(Navigation, PreviousCharacterFromTheStartIsTheStart) {
    EXPECT_EQ(back(byte_, "abc", 0), Step(0, 20));
    EXPECT_EQ(back(double_, "abc", 2, 2), Step(0, 20));
    EXPECT_EQ(back(utf8_, "", 0), Step(0, 20));
    const char *const p = "abc";
    char *prev = nullptr;
    EXPECT_TRUE(gives("nlsGetPrevChar", 20, nlsGetPrevChar(byte_, p, p, &prev)));
    EXPECT_EQ(prev, p);
    EXPECT_TRUE(gives("nlsGetPrevChar", 0, nlsGetPrevChar(byte_, p + 2, p, &prev)));
    EXPECT_EQ(prev, p + 1);
}

TEST_F(Navigation, PreviousCharacterOfDoubleBytePagesCountsLeadBytes) {
    EXPECT_EQ(back(double_,
                   "\x88\x9F"
                   "a",
                   3),
              Step(1, 0));
    EXPECT_EQ(back(double_,
                   "\x88\x89\x8A"
                   "a",
                   4),
              Step(2, 0));
    EXPECT_EQ(back(double_, "ab", 2), Step(1, 0));
    EXPECT_EQ(back(double_, "\x88\x41", 2), Step(2, 0));
    EXPECT_EQ(back(double_, "a\x88\x41", 3), Step(2, 0));
    EXPECT_EQ(back(double_, "\x88", 1), Step(1, 0));
}

// The rule itself: a place is a boundary when the run of lead bytes just before it has even length.
std::size_t previousByParity(const std::string &text, std::size_t p, std::size_t start,
                             const CharacterTable &table) {
    const auto isLead = [&](std::size_t at) {
        return (table.attributes[static_cast<unsigned char>(text[at])] & 7) != 0;
    };
    for (std::size_t q = p - 1;; --q) {
        if (q == start)
            return q;
        std::size_t run = 0;
        while (q - run > start && isLead(q - run - 1))
            ++run;
        if (run % 2 == 0)
            return q;
    }
}

TEST_F(Navigation, PreviousCharacterAgreesWithTheParityRule) {
    const CharacterTable table = CharacterTable::doubleByte();
    fixture::Random random(5);
    const char alphabet[] = {'\x88', '\xE1', 'A', ' ', '\xB1'};
    for (int round = 0; round < 4000; ++round) {
        std::string content;
        for (std::uint32_t length = 1 + random.below(12); content.size() < length;)
            content += alphabet[random.below(random.below(2) != 0 ? 2 : 5)];
        const std::size_t start = random.below(static_cast<std::uint32_t>(content.size()));
        const std::size_t from = start + 1 + random.below(static_cast<std::uint32_t>(content.size() - start));
        const std::size_t expected = previousByParity(content, from, start, table);
        ASSERT_EQ(back(double_, content, from, start), Step(static_cast<std::ptrdiff_t>(from - expected), 0))
            << round;
    }
}

TEST_F(Navigation, PreviousCharacterOfUtf8SkipsContinuationBytes) {
    EXPECT_EQ(back(utf8_, "a\xE2\x82\xAC", 4), Step(3, 0));
    EXPECT_EQ(back(utf8_, "\xF0\x9F\x98\x80", 4), Step(4, 0));
    EXPECT_EQ(back(utf8_, "ab", 2), Step(1, 0));
    EXPECT_EQ(back(utf8_, "\x80\x80\x80", 3), Step(3, 0)) << "never before the start";
    EXPECT_EQ(back(utf8_, "a\x80\x80\x80", 4, 2), Step(2, 0));
    EXPECT_EQ(back(utf8_, "\xC3\xA4x", 3, 1), Step(1, 0));
}

TEST_F(Navigation, PreviousCharacterUndoesNextCharacterOnCleanText) {
    const std::string content = "a\x88\x9F\x89\x41\xB1\xE0\x80z\x81\x81";
    const char *const p = text(content);
    std::vector<const char *> places = {p};
    for (;;) {
        char *next = nullptr;
        const nlsStatus status = nlsGetNextChar(double_, places.back(), &next);
        places.push_back(next);
        if (status == NLS_E_END)
            break;
    }
    EXPECT_EQ(places.back(), p + content.size());
    for (std::size_t i = places.size() - 1; i > 0; --i) {
        char *prev = nullptr;
        ASSERT_EQ(nlsGetPrevChar(double_, places[i], p, &prev), NLS_OK);
        EXPECT_EQ(prev, places[i - 1]);
    }
}

struct Character {
    std::uint32_t value = 0xDEAD;
    std::ptrdiff_t moved = 0;
    nlsStatus status = 0;
};

Character toLChar(nlsLocale *locale, const char *p) {
    char *at = const_cast<char *>(p); // NOLINT: the interface takes it so; nothing is written
    Character result;
    result.status = nlsCharToLChar(locale, &at, &result.value);
    result.moved = at - p;
    return result;
}

void expectCharacter(const Character &got, std::uint32_t value, std::ptrdiff_t moved, nlsStatus status) {
    EXPECT_EQ(got.value, value);
    EXPECT_EQ(got.moved, moved);
    EXPECT_EQ(got.status, status);
}

TEST_F(Navigation, CharacterIsPackedWithItsFirstByteHighest) {
    expectCharacter(toLChar(byte_, text("Az")), 'A', 1, 0);
    expectCharacter(toLChar(byte_, text("A")), 'A', 1, 20);
    expectCharacter(toLChar(byte_, text("\xFFz")), 0xFF, 1, 0);
    expectCharacter(toLChar(double_, text("\x88\x9Fz")), 0x889F, 2, 0);
    expectCharacter(toLChar(utf8_, text("\xE2\x82\xACz")), 0xE282AC, 3, 0);
    expectCharacter(toLChar(utf8_, text("\xF0\x9F\x98\x80")), 0xF09F9880, 4, 20);
    std::uint32_t value = 0;
    char buffer[] = "ab";
    char *p = buffer;
    EXPECT_TRUE(gives("nlsCharToLChar", 0, nlsCharToLChar(byte_, &p, &value)));
    EXPECT_TRUE(gives("nlsCharToLChar", 20, nlsCharToLChar(byte_, &p, &value)));
}

TEST_F(Navigation, NoCharacterAtTheEnd) {
    expectCharacter(toLChar(utf8_, text("")), 0, 0, 20);
}

TEST_F(Navigation, CutCharacterIsPackedAsFarAsItGoes) {
    expectCharacter(toLChar(double_, text("\x88")), 0x88, 1, 20);
    expectCharacter(toLChar(utf8_, text("\xE2\x82")), 0xE282, 2, 20);
    expectCharacter(toLChar(utf8_, text("\xF0\x9F\x98")), 0xF09F98, 3, 20);
}

TEST_F(Navigation, CharactersOfMoreThanFourBytesReadAsQuestionMarks) {
    for (unsigned count = 4; count <= 7; ++count) {
        const std::string whole = std::to_string(count) + std::string(count, 'x');
        expectCharacter(toLChar(long_, text(whole + "y")), 63, count + 1, 0);
        expectCharacter(toLChar(long_, text(whole)), 63, count + 1, 20);
    }
    expectCharacter(toLChar(long_, text("3abcz")), 0x33616263, 4, 0);
}

struct Written {
    nlsStatus status = 0;
    std::uint16_t length = 0;
    std::ptrdiff_t moved = 0;
    Bytes bytes; // four bytes, 0xEE where nothing was written
};

Written fromLChar(nlsLocale *locale, std::uint32_t value) {
    char buffer[4] = {'\xEE', '\xEE', '\xEE', '\xEE'};
    char *p = buffer;
    Written result;
    result.length = 77;
    result.status = nlsLCharToChar(locale, value, &p, &result.length);
    result.moved = p - buffer;
    result.bytes = fixture::bytesOf(std::string_view(buffer, 4));
    return result;
}

// The rules for writing a character, step by step.
Written writtenByTheRules(const CharacterTable &table, std::uint32_t value) {
    Written result;
    result.bytes.assign(4, 0xEE);
    result.status = 17;
    if (value < 256) {
        if (value >= 128 && (table.flags & fixture::kUtf8) != 0)
            return result;
        result.bytes[0] = byteOf(value);
        result.length = 1;
        result.moved = 1;
        result.status = 0;
        return result;
    }
    if (value >= 65535 && (value < 0xE08080 || value > 0xF4BFC0))
        return result;
    if ((table.flags & (fixture::kMultibyte | fixture::kUtf8)) == 0)
        return result;
    unsigned count = 0;
    if (value > 0xFFFFFF)
        result.bytes[count++] = byteOf(value >> 24);
    if (value > 0xFFFF)
        result.bytes[count++] = byteOf(value >> 16);
    result.bytes[count++] = byteOf(value >> 8);
    result.bytes[count++] = byteOf(value);
    const unsigned trails = table.attributes[result.bytes[0]] & 7;
    if (trails + 1 != count)
        return result;
    result.length = fixture::halfOf(count);
    for (unsigned i = 1; i < count; ++i)
        if (table.trailValid[result.bytes[i]] == 0)
            return result;
    if (trails == 0)
        return result;
    result.moved = count;
    result.status = 0;
    return result;
}

TEST_F(Navigation, WritingCharactersFollowsTheRulesForAllSmallValuesAndTheEdges) {
    const std::pair<nlsLocale *, CharacterTable> pages[] = {{byte_, CharacterTable::singleByte()},
                                                            {double_, CharacterTable::doubleByte()},
                                                            {utf8_, CharacterTable::utf8()},
                                                            {long_, longCharacters()}};
    for (const auto &[locale, table] : pages) {
        const auto check = [&, locale = locale, &table = table](std::uint32_t value) {
            const Written expected = writtenByTheRules(table, value);
            const Written got = fromLChar(locale, value);
            ASSERT_EQ(got.status, expected.status) << std::hex << value;
            ASSERT_EQ(got.length, expected.length) << std::hex << value;
            ASSERT_EQ(got.moved, expected.moved) << std::hex << value;
            ASSERT_EQ(got.bytes, expected.bytes) << std::hex << value;
        };
        for (std::uint32_t value = 0; value < 0x10010; ++value)
            check(value);
        for (const std::uint32_t value :
             {0xE0807FU, 0xE08080U, 0xE08081U, 0xE282ACU, 0xEFBFBFU, 0xF08080U, 0xF4BFBFU, 0xF4BFC0U,
              0xF4BFC1U, 0xF09F9880U, 0xFFFFFFU, 0x1000000U, 0xFFFFFFFFU, 0x33616263U})
            check(value);
        fixture::Random random(9);
        for (int i = 0; i < 20000; ++i)
            check(0xE08080 + random.below(0xF4BFC0 - 0xE08080 + 1));
    }
}

TEST_F(Navigation, WritingCharactersKnownCases) {
    for (nlsLocale *const locale : {byte_, double_, utf8_, long_}) {
        EXPECT_EQ(fromLChar(locale, 0x41).status, NLS_OK);
        EXPECT_EQ(fromLChar(locale, 0x41).moved, 1);
        EXPECT_TRUE(gives("nlsLCharToChar", 0, fromLChar(locale, 0).status));
        EXPECT_EQ(fromLChar(locale, 0).bytes[0], 0);
        EXPECT_TRUE(gives("nlsLCharToChar", 17, fromLChar(locale, 0xFFFF).status));
        EXPECT_EQ(fromLChar(locale, 0xA4).status, locale == utf8_ ? NLS_E_BADCHAR : NLS_OK);
    }
    EXPECT_EQ(fromLChar(utf8_, 0xE282AC).length, 3);
    EXPECT_EQ(fromLChar(double_, 0x889F).length, 2);
    const Written badTrail = fromLChar(double_, 0x8820);
    EXPECT_EQ(badTrail.status, NLS_E_BADCHAR);
    EXPECT_EQ(badTrail.length, 2) << "the length is set before the trail bytes are judged";
    EXPECT_EQ(badTrail.moved, 0);
    EXPECT_EQ(badTrail.bytes[0], 0x88) << "and so are the bytes written";
    EXPECT_EQ(fromLChar(byte_, 0x4142).bytes[0], 0xEE) << "a byte page writes nothing";
}

TEST_F(Navigation, CharacterPropertyTellsClassLengthAndDigits) {
    const auto property = [this](nlsLocale *locale, const std::string &content, std::int32_t classValue) {
        std::uint32_t value = 0xDEAD;
        const nlsStatus status = nlsGetCharProperty(locale, text(content), classValue, &value);
        return std::pair<std::int32_t, std::uint32_t>(static_cast<std::int32_t>(status), value);
    };
    using Answer = std::pair<std::int32_t, std::uint32_t>;
    EXPECT_EQ(property(byte_, "7", 0), Answer(-2, 7));
    EXPECT_EQ(property(byte_, "0", 0), Answer(-2, 0));
    EXPECT_EQ(property(byte_, "9", 256), Answer(-2, 9)) << "the low byte of the class counts";
    EXPECT_EQ(property(byte_, "A", 0), Answer(0, 65));
    EXPECT_EQ(property(byte_, "", 0), Answer(0, 0));
    EXPECT_EQ(property(byte_, "\xFF", 0), Answer(0, 255));
    EXPECT_EQ(property(double_, "\x88\x9F", 0), Answer(-1, 2));
    EXPECT_EQ(property(utf8_, "\xF0", 0), Answer(-1, 4));
    EXPECT_EQ(property(long_, "#", 0), Answer(-1, 1)) << "another class";
    EXPECT_EQ(property(long_, "#", 5), Answer(0, '#'));
    EXPECT_EQ(property(long_, "#", 7), Answer(-1, 8));
    EXPECT_EQ(property(byte_, "7", 1), Answer(-1, 2)) << "the class is judged before the digit";
    EXPECT_EQ(property(byte_, "7", -1), Answer(-1, 0));
    EXPECT_EQ(property(long_, "5", 0), Answer(-1, 6)) << "the length is judged before the digit";
    std::uint32_t value = 0;
    EXPECT_TRUE(gives("nlsGetCharProperty", 0, nlsGetCharProperty(byte_, "A", 0, &value)));
    EXPECT_TRUE(gives("nlsGetCharProperty", -1, nlsGetCharProperty(byte_, "A", 1, &value)));
    EXPECT_TRUE(gives("nlsGetCharProperty", -2, nlsGetCharProperty(byte_, "5", 0, &value)));
}

TEST_F(Navigation, NullArgumentsGiveSixteen) {
    char buffer[] = "ab";
    char *p = buffer;
    char *none = nullptr;
    std::uint32_t value = 0;
    std::uint16_t length = 0;
    EXPECT_TRUE(gives("nlsGetNextChar", 16, nlsGetNextChar(byte_, nullptr, &p)));
    EXPECT_TRUE(gives("nlsGetNextChar", 16, nlsGetNextChar(byte_, buffer, nullptr)));
    EXPECT_TRUE(gives("nlsGetPrevChar", 16, nlsGetPrevChar(byte_, nullptr, buffer, &p)));
    EXPECT_TRUE(gives("nlsGetPrevChar", 16, nlsGetPrevChar(byte_, buffer, nullptr, &p)));
    EXPECT_TRUE(gives("nlsGetPrevChar", 16, nlsGetPrevChar(byte_, buffer, buffer, nullptr)));
    EXPECT_TRUE(gives("nlsCharToLChar", 16, nlsCharToLChar(byte_, &none, &value)));
    EXPECT_TRUE(gives("nlsCharToLChar", 16, nlsCharToLChar(byte_, nullptr, &value)));
    EXPECT_TRUE(gives("nlsCharToLChar", 16, nlsCharToLChar(byte_, &p, nullptr)));
    EXPECT_TRUE(gives("nlsLCharToChar", 16, nlsLCharToChar(byte_, 'a', &none, &length)));
    EXPECT_TRUE(gives("nlsLCharToChar", 16, nlsLCharToChar(byte_, 'a', nullptr, &length)));
    EXPECT_TRUE(gives("nlsLCharToChar", 16, nlsLCharToChar(byte_, 'a', &p, nullptr)));
    EXPECT_TRUE(gives("nlsGetCharProperty", 16, nlsGetCharProperty(byte_, nullptr, 0, &value)));
    EXPECT_TRUE(gives("nlsGetCharProperty", 16, nlsGetCharProperty(byte_, buffer, 0, nullptr)));
}

TEST_F(Navigation, HandleComesBeforeTheTagAndTheTagBeforeTheArguments) {
    unsigned char nothing[96] = {};
    FakeObject orphan(nothing, 0);
    FakeObject other(library_.handle, 0);
    for (const bool owned : {false, true}) {
        nlsLocale *const locale = owned ? other.asLocale() : orphan.asLocale();
        const std::int32_t expected = owned ? 24 : 13;
        EXPECT_TRUE(gives("nlsGetNextChar", expected, nlsGetNextChar(locale, nullptr, nullptr)));
        EXPECT_TRUE(gives("nlsGetPrevChar", expected, nlsGetPrevChar(locale, nullptr, nullptr, nullptr)));
        EXPECT_TRUE(gives("nlsCharToLChar", expected, nlsCharToLChar(locale, nullptr, nullptr)));
        EXPECT_TRUE(gives("nlsLCharToChar", expected, nlsLCharToChar(locale, 0, nullptr, nullptr)));
        EXPECT_TRUE(gives("nlsGetCharProperty", expected, nlsGetCharProperty(locale, nullptr, 0, nullptr)));
    }
}

TEST_F(Navigation, WithoutCharacterTableNothingIsWalked) {
    const void *const table = peek::characterTable(byte_);
    peek::setCharacterTable(byte_, nullptr);
    char buffer[] = "ab";
    char *p = buffer;
    char *out = buffer;
    std::uint32_t value = 77;
    std::uint16_t length = 0;
    EXPECT_TRUE(gives("nlsGetNextChar", 27, nlsGetNextChar(byte_, buffer, &out)));
    EXPECT_EQ(out, nullptr);
    out = buffer;
    EXPECT_TRUE(gives("nlsGetPrevChar", 27, nlsGetPrevChar(byte_, buffer + 1, buffer, &out)));
    EXPECT_EQ(out, nullptr);
    EXPECT_TRUE(gives("nlsCharToLChar", 27, nlsCharToLChar(byte_, &p, &value)));
    EXPECT_EQ(value, 0U);
    EXPECT_TRUE(gives("nlsLCharToChar", 27, nlsLCharToChar(byte_, 'x', &p, &length)));
    EXPECT_TRUE(gives("nlsGetCharProperty", 27, nlsGetCharProperty(byte_, buffer, 0, &value)));
    EXPECT_EQ(nlsGetNextChar(byte_, nullptr, &out), NLS_E_NULLARG) << "null arguments come first";
    peek::setCharacterTable(byte_, table);
}

} // namespace
