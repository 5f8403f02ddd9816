// Every collation of the built data file: its calls beside their twins, and the sign of compare beside the
// sign of the keys' order over many words. Where the two differ, a rule says why.
#include "harness/calls.hpp"
#include "harness/checks.hpp"
#include "harness/laws.hpp"
#include "harness/real_file.hpp"

#include <gtest/gtest.h>

#include <map>

using kit::Bytes;
using kit::RealCollation;
using kit::RealFile;

namespace {

// The rules by which keys and compares of two texts may differ.
enum class Rule {
    None,
    Expansion,       // an expanding character at an end, or spelled "SS" in the key
    BelowTheBlank,   // something that ranks with or below the blank, behind the other's end
    FourBytes,       // a key in lower case has "?" for a character of four bytes
    ThroughShiftJis, // BASIC compares a text as it stands and keys its Shift_JIS form
    SingleOverPair,  // folded, every pair is above every single byte, whatever the bytes
};

const char *nameOf(Rule rule) {
    switch (rule) {
    case Rule::Expansion:
        return "expansion";
    case Rule::BelowTheBlank:
        return "below the blank";
    case Rule::FourBytes:
        return "four bytes";
    case Rule::ThroughShiftJis:
        return "BASIC through Shift_JIS";
    case Rule::SingleOverPair:
        return "single bytes over pairs";
    default:
        return "none";
    }
}

Rule ruleFor(const model::Locale &twin, const Bytes &text, std::int16_t mode) {
    const fixture::CollationTable &collation = *twin.collation;
    if (collation.kind == 3) {
        if (twin.has(fixture::kThroughShiftJis))
            return Rule::ThroughShiftJis;
        for (std::size_t i = 0; i < text.size(); i += twin.trails(text[i]) + 1U) {
            if (text[i] < ' ')
                return Rule::BelowTheBlank;
            if (mode == 0 && twin.pagedCase() && twin.trails(text[i]) >= 3)
                return Rule::FourBytes;
            if (mode == 0 && twin.has(fixture::kMultibyte) && twin.trails(text[i]) == 0 && text[i] >= 0x80)
                return Rule::SingleOverPair;
        }
        return Rule::None;
    }
    const fixture::ByteTable &weights = mode != 0 ? collation.sensitive : collation.insensitive;
    for (const unsigned char byte : text) {
        if (weights[byte] == 0)
            return Rule::Expansion;
        if (byte != ' ' && weights[byte] <= weights[' '])
            return Rule::BelowTheBlank;
    }
    return Rule::None;
}

int signOfKeys(const Bytes &a, const Bytes &b) {
    return a < b ? -1 : b < a ? 1 : 0;
}

kit::Script scriptOf(const model::Locale &twin) {
    if (twin.has(fixture::kUtf8))
        return kit::Script::Utf8;
    if (twin.has(fixture::kThroughShiftJis))
        return kit::Script::Euc;
    if (twin.has(fixture::kMultibyte))
        return kit::Script::ShiftJis; // two bytes with high leads, as all the others
    return twin.collation->kind == 4 ? kit::Script::Thai : kit::Script::Latin;
}

kit::Kit kitOf(const RealCollation &collation, nlsLocale *locale) {
    return {collation.page + " " + collation.name, scriptOf(collation.twin), locale, collation.twin};
}

} // namespace

TEST(DataFileOrderLaws, EveryTextEqualsItselfAndOrderTurnsRound) {
    RealFile file;
    for (const RealCollation &collation : file.collations())
        for (const std::int16_t mode : kit::kModes)
            kit::checkThatOrderTurnsRound(kitOf(collation, file.locale(collation)), mode);
}

TEST(DataFileOrderLaws, OrderIsTransitive) {
    RealFile file;
    for (const RealCollation &collation : file.collations())
        for (const std::int16_t mode : kit::kModes)
            kit::checkThatOrderIsTransitive(kitOf(collation, file.locale(collation)), mode);
}

TEST(DataFileOrder, CallsAnswerLikeTheirTwins) {
    RealFile file;
    ASSERT_GT(file.collations().size(), 50U);
    for (const RealCollation &collation : file.collations()) {
        nlsLocale *const locale = file.locale(collation);
        ASSERT_NE(locale, nullptr) << collation.page << " " << collation.name;
        const kit::Kit one = kitOf(collation, locale);
        kit::TextMaker maker(81);
        for (int round = 0; round < (VELNLS_SANITIZED ? 60 : 400) && !HasFatalFailure(); ++round) {
            SCOPED_TRACE(one.name + ", round " + std::to_string(round));
            kit::checkCompare(one, maker);
            kit::checkCompareWithLengths(one, maker);
            kit::checkSortKey(one, maker);
            kit::checkCaseMapping(one, maker);
        }
    }
}

TEST(DataFileOrder, CompareAndKeysAgreeOverManyWords) {
    RealFile file;
    const std::vector<Bytes> words = kit::manyWords();
    ASSERT_GT(words.size(), 400U);
    std::map<Rule, std::map<std::string, std::uint64_t>> exceptions;
    std::uint64_t pairs = 0;
    std::size_t pagesWithWords = 0;
    for (const RealCollation &collation : file.collations()) {
        if (collation.twin.has(fixture::kWide) || collation.twin.has(fixture::kUnits32))
            continue; // their texts hold NULs
        nlsLocale *const locale = file.locale(collation);
        const std::vector<Bytes> texts = file.wordsOf(collation.page, words);
        pagesWithWords += texts.size() > 50;
        for (const std::int16_t mode : kit::kModes) {
            std::vector<Bytes> keys;
            std::vector<Rule> rules;
            for (const Bytes &text : texts) {
                const kit::Key key = kit::sortKey(locale, text, 512, static_cast<std::uint16_t>(mode), 1);
                ASSERT_EQ(key.status, NLS_OK);
                keys.push_back(key.text());
                rules.push_back(ruleFor(collation.twin, text, mode));
            }
            for (std::size_t i = 0; i < texts.size(); ++i)
                for (std::size_t j = i; j < texts.size(); ++j) {
                    const std::string a(texts[i].begin(), texts[i].end());
                    const std::string b(texts[j].begin(), texts[j].end());
                    std::int16_t result = 77;
                    ASSERT_EQ(nlsCompare(locale, a.c_str(), b.c_str(), mode, &result), NLS_OK);
                    ++pairs;
                    if (result == signOfKeys(keys[i], keys[j]))
                        continue;
                    const Rule rule = rules[i] != Rule::None ? rules[i] : rules[j];
                    ASSERT_NE(rule, Rule::None)
                        << collation.page << " " << collation.name << " mode " << mode << ": "
                        << kit::hex(texts[i]) << "and " << kit::hex(texts[j]) << "compare " << result
                        << ", keys " << kit::hex(keys[i]) << "and " << kit::hex(keys[j]);
                    ++exceptions[rule][collation.page + " " + collation.name];
                }
        }
    }
    EXPECT_GT(pagesWithWords, 40U);
    std::printf("%llu pairs of words; keys and compares differ, by rule:\n",
                static_cast<unsigned long long>(pairs));
    for (const auto &[rule, places] : exceptions) {
        std::printf("  %s:", nameOf(rule));
        for (const auto &[place, count] : places)
            std::printf(" %s %llu;", place.c_str(), static_cast<unsigned long long>(count));
        std::printf("\n");
    }
}

TEST(DataFileOrder, KeysThatWereCutAgreeAsFarAsTheyGo) {
    RealFile file;
    const std::vector<Bytes> words = kit::manyWords();
    for (const RealCollation &collation : file.collations()) {
        if (collation.twin.collation->kind == 3)
            continue; // these are whole or not there
        nlsLocale *const locale = file.locale(collation);
        for (const Bytes &text : file.wordsOf(collation.page, words)) {
            const Bytes whole = kit::sortKey(locale, text, 512).text();
            for (std::uint16_t size = 1; size <= 8; ++size) {
                const Bytes cut = kit::sortKey(locale, text, size).text();
                ASSERT_EQ(cut, Bytes(whole.begin(),
                                     whole.begin() + std::min<std::ptrdiff_t>(size - 1, std::ssize(whole))))
                    << collation.page << " " << kit::hex(text);
            }
        }
    }
}
