// The orders are orders: reflexive, antisymmetric and transitive on a million triples of texts per locale and
// mode. Where they are not transitive is stated by rule, each with its example.
#include "harness/calls.hpp"
#include "harness/laws.hpp"

#include <gtest/gtest.h>

using kit::Bytes;
using kit::compare;
using kit::Kit;
using kit::operator""_b;
using kit::operator+;
using kit::World;

TEST(OrderLaws, EveryTextEqualsItselfAndOrderTurnsRound) {
    World world;
    for (const Kit &one : world.kits)
        for (const std::int16_t mode : kit::kModes)
            kit::checkThatOrderTurnsRound(one, mode);
}

TEST(OrderLaws, OrderIsTransitive) {
    World world;
    for (const Kit &one : world.kits)
        for (const std::int16_t mode : kit::kModes)
            // The case-insensitive table of the first gives single bytes and lead bytes one weight; lost
            // letters rank below the blank, which the texts of this test have nothing else of.
            if (one.name != "LONG weights" && one.name != "1252 BASIC, letters lost in lower case")
                kit::checkThatOrderIsTransitive(one, mode);
}

TEST(OrderLaws, AnExpandingCharacterAtAnEndEqualsOneSAndTwo) {
    World world;
    nlsLocale *const locale = world["1252 german"].locale;
    EXPECT_EQ(compare(locale, "s"_b, {0xDF}).result, 0);
    EXPECT_EQ(compare(locale, {0xDF}, "ss"_b).result, 0);
    EXPECT_EQ(compare(locale, "s"_b, "ss"_b).result, -1) << "not transitive, by the rule for ended strings";
}

TEST(OrderLaws, WhatRanksBelowTheBlankLiesOnBothSidesOfAnEnd) {
    World world;
    for (const char *const name : {"1252 literal", "1252 BASIC", "UTF-8 BASIC", "SHIFT-JIS weights"}) {
        nlsLocale *const locale = world[name].locale;
        EXPECT_EQ(compare(locale, "a"_b, "a "_b).result, 0) << name;
        EXPECT_EQ(compare(locale, "a"_b, "a\t"_b).result, -1) << name;
        EXPECT_EQ(compare(locale, "a "_b, "a\t"_b).result, 1) << name;
    }
}

TEST(OrderLaws, AThaiVowelWithoutConsonantRanksBelowTheBlank) {
    World world;
    nlsLocale *const locale = world["Thai"].locale;
    EXPECT_EQ(compare(locale, {0xA1}, {0xA1, ' '}).result, 0);
    EXPECT_EQ(compare(locale, {0xA1}, {0xA1, 0xD4, 0xD4}).result, -1);
    EXPECT_EQ(compare(locale, {'a', ' '}, {'a', 0xD4}).result, 1);
    EXPECT_EQ(compare(locale, {'a'}, {'a', 0xD4}).result, -1);
}
