// The collations order characters exactly as ICU does, and words as far as one weight a character can; the
// manual states how far.
#include "language_plan.hpp"
#include "language_words.hpp"
#include "order_agreement.hpp"
#include "page_plan.hpp"
#include "real_files.hpp"
#include "text_file.hpp"

#include <gtest/gtest.h>
#include <unicode/ucol.h>
#include <unicode/uvernum.h>

#include <algorithm>
#include <cstring>

namespace velnls::nlsgen::test {
namespace {

const Bytes &dataFile() {
    static const Bytes file = layOut(realPlan().entries);
    return file;
}

// The figures that the tables must reach; what one level of weights cannot do is left out below.
struct Floor {
    double sensitiveAnyTwo = 98.5, insensitiveAnyTwo = 99.5;
    double sensitiveNeighbours = 70, insensitiveNeighbours = 92;
};

// Where letters are told apart by signs that many words have, one level decides too early more often: by the
// tonos in Greek, by the hamza that begins words in Arabic, by the marks above Thai consonants.
Floor floorOf(const std::string &language) {
    if (language == "Greek")
        return {99, 99.5, 75, 80};
    if (language == "Arabic")
        return {96, 96, 96, 96};
    if (language == "Thai")
        return {99, 99, 95, 95};
    return {};
}

bool reaches(const AgreementFigures &figures, const Floor &floor) {
    return figures.sensitive.anyTwo >= floor.sensitiveAnyTwo &&
           figures.insensitive.anyTwo >= floor.insensitiveAnyTwo &&
           figures.sensitive.neighbours >= floor.sensitiveNeighbours &&
           figures.insensitive.neighbours >= floor.insensitiveNeighbours;
}

class WordOrder : public testing::TestWithParam<AgreementRow> {};

TEST_P(WordOrder, IsThatOfIcuAsFarAsOneLevelCan) {
    const AgreementRow &row = GetParam();
    const AgreementFigures figures = measureAgreement(dataFile(), row, wordsOfIcuNames(row.collator));
    EXPECT_GT(figures.words, 1000U);
    EXPECT_TRUE(reaches(figures, floorOf(row.language))) << agreementLine(row, figures);
}

std::string testName(const testing::TestParamInfo<AgreementRow> &parameter) {
    return std::string(parameter.param.language) + "_" + parameter.param.collation;
}
INSTANTIATE_TEST_SUITE_P(Languages, WordOrder, testing::ValuesIn(agreementRows()), testName);

// The same measure, with a language's words and the collation of another, must not pass.
TEST(WordOrder, OfAnotherLanguageFallsShort) {
    const AgreementRow strangers[] = {{"Swedish", "1252", "basic", "sv", ""},
                                      {"Estonian", "1257", "lithuanian", "et", ""},
                                      {"German", "1252", "swedish", "de", ""}};
    for (const AgreementRow &row : strangers) {
        const AgreementFigures figures = measureAgreement(dataFile(), row, wordsOfIcuNames(row.collator));
        EXPECT_FALSE(reaches(figures, floorOf(row.language))) << agreementLine(row, figures);
    }
}

// Where letters stand at other places than their base letters, the language's own table must be the better
// one.
TEST(WordOrder, IsCloserToIcuByTheLanguagesOwnTable) {
    for (const char *collation : {"swedish", "finnish", "danish", "norwegian", "icelandic", "estonian",
                                  "croatian", "lithuanian", "turkish"}) {
        for (AgreementRow row : agreementRows()) {
            if (std::string_view(row.collation) != collation)
                continue;
            const auto words = wordsOfIcuNames(row.collator);
            const AgreementFigures own = measureAgreement(dataFile(), row, words);
            row.collation = "basic";
            const AgreementFigures basic = measureAgreement(dataFile(), row, words);
            EXPECT_GT(own.insensitive.anyTwo, basic.insensitive.anyTwo) << collation;
            EXPECT_GT(own.insensitive.neighbours, basic.insensitive.neighbours) << collation;
        }
    }
}

// The manual's table of ICU's names states what this file and this ICU give, word for word.
TEST(WordOrder, FiguresAreThoseOfTheManual) {
    const auto lines = readLines(NLSGEN_SOURCE_DIR "/docs/collations.md");
    if (std::none_of(lines.begin(), lines.end(), [](const std::string &line) {
            return line.find("ICU " U_ICU_VERSION " names") != std::string::npos;
        }))
        GTEST_SKIP() << "the manual's figures are from another ICU than " U_ICU_VERSION;
    for (const AgreementRow &row : agreementRows()) {
        const std::string line =
            agreementLine(row, measureAgreement(dataFile(), row, wordsOfIcuNames(row.collator)));
        EXPECT_NE(std::find(lines.begin(), lines.end(), line), lines.end()) << line;
    }
}

TEST(Words, AreRunsOfLettersEachOnce) {
    EXPECT_EQ(wordsOfText(u"b a, b-c 12 d\u0301e"),
              (std::vector<std::u16string>{u"a", u"b", u"c", u"d\u0301e"}));
    EXPECT_TRUE(wordsOfFile("/nowhere", 10).empty());
}

class Collator {
public:
    explicit Collator(const std::string &locale) {
        UErrorCode error = U_ZERO_ERROR;
        collator_ = ucol_open(locale.c_str(), &error);
    }
    ~Collator() {
        ucol_close(collator_);
    }
    Collator(const Collator &) = delete;
    Collator &operator=(const Collator &) = delete;

    [[nodiscard]] UCollationResult compare(const std::u16string &a, const std::u16string &b,
                                           UCollationStrength strength) const {
        ucol_setStrength(collator_, strength);
        return ucol_strcoll(collator_, a.data(), static_cast<int32_t>(a.size()), b.data(),
                            static_cast<int32_t>(b.size()));
    }

private:
    UCollator *collator_;
};

std::string collatorOf(const PlannedCollation &planned) {
    for (const LanguagePlan &language : languagePlans())
        if (planned.name == language.name)
            return language.collator.empty() ? "root" : std::string(language.collator);
    for (const SingleBytePlan &page : singleBytePlans())
        for (const OrderPlan &order : orderPlans())
            if (page.name == planned.page->name && page.order == order.file)
                return std::string(order.collator);
    return "root";
}

// Every page, every collation: characters in the order of their weights never descend in ICU's order, and the
// case-insensitive table makes a difference exactly where ICU's secondary strength does, without accents
// where its primary strength does. Characters that ICU ignores have places of their own.
TEST(CharacterOrder, IsThatOfIcuForEveryPageAndCollation) {
    std::size_t compared = 0;
    for (const PlannedCollation &planned : realPlan().collations) {
        SCOPED_TRACE(planned.page->name + ", " + planned.name);
        file::Collation weights;
        std::memcpy(
            &weights,
            dataFile().data() +
                recordOffset(dataFile(), entryNumber(dataFile(), '4', planned.page->name, planned.name)),
            sizeof weights);
        if (weights.kind == file::kThai)
            continue; // weights in bits: see the figures of words
        const Collator collator(collatorOf(planned));
        std::vector<std::uint8_t> bytes;
        for (std::uint32_t byte = 1; byte < 256; byte++) {
            const std::uint32_t character = planned.page->toUnicode(byte);
            if (character != kNone && !planned.expanding.contains(character) &&
                collator.compare({static_cast<char16_t>(character)}, {}, UCOL_TERTIARY) != UCOL_EQUAL)
                bytes.push_back(static_cast<std::uint8_t>(byte));
        }
        std::stable_sort(bytes.begin(), bytes.end(), [&weights](std::uint8_t a, std::uint8_t b) {
            return weights.caseSensitive[a] < weights.caseSensitive[b];
        });
        const bool noAccents = planned.name == kNoAccentsName;
        const UCollationStrength strength = noAccents ? UCOL_PRIMARY : UCOL_SECONDARY;
        for (std::size_t i = 1; i < bytes.size(); i++) {
            const std::u16string a{static_cast<char16_t>(planned.page->toUnicode(bytes[i - 1]))};
            const std::u16string b{static_cast<char16_t>(planned.page->toUnicode(bytes[i]))};
            EXPECT_NE(collator.compare(a, b, noAccents ? UCOL_PRIMARY : UCOL_TERTIARY), UCOL_GREATER)
                << int{bytes[i - 1]} << " and " << int{bytes[i]};
            EXPECT_EQ(weights.caseInsensitive[bytes[i - 1]] == weights.caseInsensitive[bytes[i]],
                      collator.compare(a, b, strength) == UCOL_EQUAL)
                << int{bytes[i - 1]} << " and " << int{bytes[i]};
            compared++;
        }
    }
    EXPECT_GT(compared, 20'000U);
}

} // namespace
} // namespace velnls::nlsgen::test
