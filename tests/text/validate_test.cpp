// nlsValidateString: statuses and rules by example, page class by page class.
#include "harness/calls.hpp"

#include <gtest/gtest.h>

using kit::Bytes;
using kit::gives;
using kit::operator+;
using kit::operator""_b;
using kit::World;

namespace {

constexpr std::int32_t kCut = -4;

class Validation : public testing::Test {
protected:
    // The data end where the forbidden page begins.
    testing::AssertionResult answers(nlsLocale *locale, const Bytes &data, std::int32_t status,
                                     std::uint32_t count, std::uint32_t byteOrder = 0) {
        std::uint32_t counted = 77;
        const nlsStatus actual = nlsValidateString(
            locale, guarded_.bytes(data), static_cast<std::int32_t>(data.size()), byteOrder, &counted);
        if (!gives("nlsValidateString", status, actual))
            return testing::AssertionFailure() << kit::hex(data) << ": " << static_cast<std::int32_t>(actual);
        if (counted != count)
            return testing::AssertionFailure() << kit::hex(data) << ": counted " << counted;
        return testing::AssertionSuccess();
    }

    World world_;
    kit::GuardedText guarded_;
    nlsLocale *const latin_ = world_["1252 german"].locale;
    nlsLocale *const sjis_ = world_["SHIFT-JIS weights"].locale;
    nlsLocale *const utf8_ = world_["UTF-8 BASIC"].locale;
    nlsLocale *const utf16_ = world_.library.locale("UTF-16");
    nlsLocale *const utf32_ = world_.library.locale("UTF-32");
};

nlsStatus plain(nlsLocale *locale) {
    std::uint32_t count = 0;
    return nlsValidateString(locale, "abc", 3, 0, &count);
}

} // namespace

TEST_F(Validation, WhatIsNoLocaleGives13Or24) {
    kit::refusesWhatIsNoLocale("nlsValidateString", plain);
}

TEST_F(Validation, ALocaleWithoutCharacterTableGives27) {
    kit::refusesWithoutCharacters("nlsValidateString", plain);
}

TEST_F(Validation, NullArgumentsAndNegativeLengthsGive16) {
    std::uint32_t count = 77;
    EXPECT_TRUE(gives("nlsValidateString", 16, nlsValidateString(latin_, nullptr, 0, 0, &count)));
    EXPECT_TRUE(gives("nlsValidateString", 16, nlsValidateString(latin_, "a", 1, 0, nullptr)));
    for (nlsLocale *const locale : {latin_, sjis_, utf8_, utf16_, utf32_})
        for (const std::int32_t length : {-1, -2147483647 - 1})
            EXPECT_TRUE(gives("nlsValidateString", 16, nlsValidateString(locale, "a", length, 0, &count)));
}

TEST_F(Validation, ALengthOfZeroIsValidInEveryForm) {
    for (nlsLocale *const locale : {latin_, sjis_, utf8_, utf16_, utf32_})
        EXPECT_TRUE(answers(locale, {}, 0, 0));
}

TEST_F(Validation, ASingleBytePageAcceptsEveryByteButNul) {
    Bytes all;
    for (unsigned b = 1; b < 256; ++b)
        all.push_back(fixture::byteOf(b));
    EXPECT_TRUE(answers(latin_, all, 0, 255));
    EXPECT_TRUE(answers(latin_, {'a', 0, 'b'}, 20, 1));
    EXPECT_TRUE(answers(latin_, {0}, 20, 0));
}

TEST_F(Validation, InADoubleBytePageTrailBytesAreLookedUp) {
    EXPECT_TRUE(answers(sjis_, {'a', 0x81, 0x40, 0xB1}, 0, 3));
    EXPECT_TRUE(answers(sjis_, {'a', 0x81, 0x3F}, 16, 1));
    EXPECT_TRUE(answers(sjis_, {'a', 0x81, 0x7F, 'b'}, 16, 1));
    EXPECT_TRUE(answers(sjis_, {'a', 0x81}, kCut, 1));
    EXPECT_TRUE(answers(sjis_, {'a', 0, 0x81, 0x3F}, 20, 1)) << "the first fault decides";
    EXPECT_TRUE(answers(sjis_, {0x81, 0}, 16, 0)) << "a NUL is no trail byte";
    EXPECT_TRUE(answers(sjis_, {0x81, 0x3F, 0}, 16, 0));
}

TEST_F(Validation, Utf8MustNotBeginInsideACharacter) {
    EXPECT_TRUE(answers(utf8_, {0x80, 'a'}, 16, 0));
    EXPECT_TRUE(answers(utf8_, {0xBF}, 16, 0));
    EXPECT_TRUE(answers(utf8_, {'a', 0x80}, 0, 2)) << "later on it is a character of one byte";
}

TEST_F(Validation, Utf8CharactersMustBeWholeAndTrailed) {
    EXPECT_TRUE(answers(utf8_, {0xC3, 0xA4, 0xE4, 0xB8, 0x80, 0xF0, 0x90, 0x90, 0xA8, 'x'}, 0, 4));
    EXPECT_TRUE(answers(utf8_, {'x', 0xE4, 0xB8}, kCut, 1));
    EXPECT_TRUE(answers(utf8_, {'x', 0xE4, 'a', 'b'}, 16, 1));
    EXPECT_TRUE(answers(utf8_, {'x', 0xE4, 'a'}, kCut, 1)) << "the end is looked at before the trail bytes";
    EXPECT_TRUE(answers(utf8_, {0xC0, 0x80}, 0, 1)) << "overlong forms pass";
    EXPECT_TRUE(answers(utf8_, {0xED, 0xA0, 0x80}, 0, 1)) << "encoded surrogates pass";
    EXPECT_TRUE(answers(utf8_, {'x', 0}, 20, 1));
}

TEST_F(Validation, Utf16SurrogatesMustComeInPairs) {
    for (const bool big : {false, true}) {
        const auto check = [&](const std::vector<std::uint16_t> &units, std::int32_t status,
                               std::uint32_t count) {
            return answers(utf16_, fixture::units16(units, big), status, count, big ? 1 : 0);
        };
        EXPECT_TRUE(check({'a', 0x4E00, 0xFFFF, 0xE000, 0xD7FF}, 0, 5));
        EXPECT_TRUE(check({'a', 0xD800, 0xDC00, 'b'}, 0, 3)) << "a pair counts as one";
        EXPECT_TRUE(check({'a', 0xDBFF, 0xDFFF}, 0, 2));
        EXPECT_TRUE(check({'a', 0xDC00}, 33, 1)) << "a lone low one";
        EXPECT_TRUE(check({'a', 0xD800, 'b'}, 33, 1));
        EXPECT_TRUE(check({'a', 0xD800, 0xD800, 0xDC00}, 33, 1));
        EXPECT_TRUE(check({'a', 0xD800}, 33, 1)) << "waiting at the end";
        EXPECT_TRUE(check({'a', 0, 'b'}, 20, 1));
        EXPECT_TRUE(check({'a', 0xD800, 0}, 33, 1)) << "waiting at a zero unit";
        EXPECT_TRUE(check({0x0100, 0x0001}, 0, 2)) << "half a zero is none";
    }
    EXPECT_TRUE(answers(utf16_, {'a', 0, 'b'}, 0, 1)) << "the walk ends with the last whole unit";
    EXPECT_TRUE(answers(utf16_, {'a'}, 0, 0));
    EXPECT_TRUE(answers(utf16_, fixture::units16({'a'}, true), 0, 1, 0xFFFFFFFF)) << "any order but 0 is big";
}

TEST_F(Validation, Utf32UnitsMustLieInTheCodeSpace) {
    for (const bool big : {false, true}) {
        const auto check = [&](const std::vector<std::uint32_t> &units, std::int32_t status,
                               std::uint32_t count) {
            return answers(utf32_, fixture::units32(units, big), status, count, big ? 1 : 0);
        };
        EXPECT_TRUE(check({'a', 0x10FFFF, 0xD800}, 0, 3));
        EXPECT_TRUE(check({'a', 0x110000}, 16, 1));
        EXPECT_TRUE(check({'a', 0x01000041}, 16, 1));
        EXPECT_TRUE(check({'a', 0, 0x110000}, 20, 1));
        EXPECT_TRUE(check({0x100, 0x10000}, 0, 2));
    }
    EXPECT_TRUE(answers(utf32_, fixture::units32({'a'}) + Bytes{'b', 0, 0}, 0, 1))
        << "a cut unit is not looked at";
}

TEST_F(Validation, MultibyteIsTheFlagAlone) {
    // Attributes and trail bytes mean nothing to a page without the flag.
    fixture::DataFile file;
    fixture::CharacterTable page = fixture::CharacterTable::doubleByte(0);
    file.codePage("HALF", page);
    fixture::Library library(file);
    EXPECT_TRUE(answers(library.locale("HALF"), {0x81}, 0, 1));
}
