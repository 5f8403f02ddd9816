// The command line with the ICU that is installed, by the libraries beside the program: what it sorts and
// converts, against the same ICU called directly. Where those libraries are missing, every test here fails.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include <unicode/unorm2.h>
#include <unicode/ustring.h>

#include "direct_icu.hpp"
#include "language_words.hpp"
#include "process.hpp"

namespace velnls::tool {
namespace {

class InstalledIcu : public testing::Test {
protected:
    void SetUp() override {
        NEEDS_POSIX("the ICU of this system");
        unsetenv("BINPATHX"); // the libraries of this build, whatever the environment says
    }
};

std::vector<std::string> linesOf(const std::string &text) {
    std::vector<std::string> lines;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        lines.push_back(text.substr(at, end - at));
        at = end + 1;
    }
    return lines;
}

// The names behind "ICU-" of the listed collations.
std::vector<std::string> listedNames() {
    const std::string begin = "UTF-8 ICU-";
    std::vector<std::string> names;
    for (const std::string &line : linesOf(runTool({"list", "collations"}).out)) {
        if (line.compare(0, begin.size(), begin) == 0) {
            names.push_back(line.substr(begin.size()));
        }
    }
    return names;
}

// At most `limit` words, picked evenly.
direct::Words picked(const direct::Words &words, std::size_t limit) {
    direct::Words some;
    for (std::size_t i = 0; i < std::min(limit, words.size()); ++i) {
        some.push_back(words[i * words.size() / std::min(limit, words.size())]);
    }
    return some;
}

std::u16string inCapitals(const std::u16string &word) {
    char16_t out[200];
    UErrorCode error = U_ZERO_ERROR;
    const int32_t length = u_strToUpper(out, 200, word.data(), static_cast<int32_t>(word.size()), "", &error);
    return {out, out + std::clamp(length, 0, 200)};
}

// With its accents as characters of their own, which orders as the word does: equal lines that look
// different.
std::u16string takenApart(const std::u16string &word) {
    char16_t out[200];
    UErrorCode error = U_ZERO_ERROR;
    const int32_t length = unorm2_normalize(unorm2_getNFDInstance(&error), word.data(),
                                            static_cast<int32_t>(word.size()), out, 200, &error);
    return {out, out + std::clamp(length, 0, 200)};
}

// Lines to order, mixed: words of a language, the same in capitals, taken apart, in pairs and with numbers,
// and words of other languages and scripts.
std::vector<std::string> linesToOrder(const std::string &locale) {
    direct::Words words = picked(nlsgen::test::wordsOfIcuNames(locale), 250);
    const std::size_t own = words.size();
    for (std::size_t i = 0; i + 1 < own; i += 2) {
        words.push_back(inCapitals(words[i]));
        words.push_back(takenApart(words[i + 1]));
    }
    for (std::size_t i = 0; i + 1 < own; i += 9) {
        words.push_back(words[i] + u" " + words[i + 1]);
        words.push_back(words[i] + u"-" + words[i + 1]);
        for (const char16_t *const number : {u"1", u" 10", u" 2", u" (2)"}) {
            words.push_back(words[i] + number);
        }
    }
    const direct::Words others = picked(direct::manyWords(), own < 250 ? 800 : 300);
    words.insert(words.end(), others.begin(), others.end());

    std::vector<std::string> lines;
    for (const std::u16string &word : words) {
        std::string line = direct::utf8(word);
        line.erase(line.find_last_not_of(' ') + 1); // blanks at the end count for ICU and do not here
        if (!line.empty()) {
            lines.push_back(line);
        }
    }
    std::shuffle(lines.begin(), lines.end(), std::mt19937(55)); // NOLINT: the same lines in every run
    return lines;
}

std::vector<std::string> sortedDirectly(std::vector<std::string> lines, const std::string &name) {
    const direct::Collator collator = direct::openCollator(name, UCOL_TERTIARY);
    UErrorCode error = U_ZERO_ERROR;
    std::stable_sort(lines.begin(), lines.end(), [&](const std::string &a, const std::string &b) {
        return ucol_strcollUTF8(collator.get(), a.data(), static_cast<int32_t>(a.size()), b.data(),
                                static_cast<int32_t>(b.size()), &error) == UCOL_LESS;
    });
    EXPECT_TRUE(U_SUCCESS(error));
    return lines;
}

TEST_F(InstalledIcu, EachOfThe55NamesSortsLinesAsIcuDoes) {
    const std::vector<std::string> names = listedNames();
    EXPECT_EQ(names.size(), 55u);
    int unlikeRoot = 0;
    for (const std::string &name : names) {
        SCOPED_TRACE(name);
        const std::string locale = direct::nameToday(name);
        const std::vector<std::string> lines = linesToOrder(locale.substr(0, locale.find('@')));
        EXPECT_GE(lines.size(), 500u);
        std::string input;
        for (const std::string &line : lines) {
            input += line + "\n";
        }
        const Result result = runTool({"sort", "--collation", "ICU-" + name}, input);
        EXPECT_EQ(result.exitCode, 0) << result.err;
        EXPECT_EQ(result.err, "");
        const std::vector<std::string> sorted = linesOf(result.out);
        const std::vector<std::string> expected = sortedDirectly(lines, name);
        ASSERT_EQ(sorted.size(), expected.size());
        const auto [at, other] = std::mismatch(sorted.begin(), sorted.end(), expected.begin());
        if (at != sorted.end()) {
            ADD_FAILURE() << "line " << at - sorted.begin() + 1 << " is " << *at << " and not " << *other;
        }
        unlikeRoot += expected != sortedDirectly(lines, "UCA") ? 1 : 0;
    }
    EXPECT_GE(unlikeRoot, 45) << "the lines do not tell the collations apart";
}

// Where two long texts differ first.
testing::AssertionResult same(const std::string &text, const std::string &expected) {
    const auto end = text.begin() + static_cast<std::ptrdiff_t>(std::min(text.size(), expected.size()));
    const auto at = std::mismatch(text.begin(), end, expected.begin()).first;
    if (at == end && text.size() == expected.size()) {
        return testing::AssertionSuccess();
    }
    return testing::AssertionFailure() << "different from byte " << at - text.begin() << ", " << text.size()
                                       << " bytes and not " << expected.size();
}

TEST_F(InstalledIcu, EveryCodePointToGb18030AndBackIsAsItWasAndAsIcuHasIt) {
    const std::u16string all = direct::codePoints(1, 0x110000);
    ASSERT_EQ(all.size(), 0xFFFFu - 0x800 + 2 * 0x100000);
    const std::string text = direct::utf8(all);
    const std::string code = direct::gb18030(all);
    for (const std::vector<std::string> &data : {std::vector<std::string>{}, {"--data", VELNLS_DATA}}) {
        const auto converted = [&](const char *from, const char *to, const std::string &input) {
            std::vector<std::string> arguments = {"convert", "-f", from, "-t", to};
            arguments.insert(arguments.end(), data.begin(), data.end());
            const Result result = runTool(arguments, input);
            EXPECT_EQ(result.exitCode, 0) << result.err;
            EXPECT_EQ(result.err, "");
            return result.out;
        };
        EXPECT_TRUE(same(converted("UTF-8", "GB18030", text), code));
        EXPECT_TRUE(same(converted("GB18030", "UTF-8", code), text));
    }
}

} // namespace
} // namespace velnls::tool
