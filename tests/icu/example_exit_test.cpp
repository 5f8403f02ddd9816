// The user sort exit of examples/sort-exit, as a site would use it.
#include <gtest/gtest.h>

#include "process.hpp"
#include "world.hpp"

#include <random>

namespace {

using process::Home;

fixture::DataFile siteFile() {
    fixture::DataFile file;
    file.codePage("1252", fixture::CharacterTable::singleByte());
    fixture::CollationTable weights;
    for (unsigned byte = 'A'; byte <= 'Z'; ++byte)
        weights.insensitive[byte] = static_cast<unsigned char>(byte + 32);
    weights.kind = 2;
    file.collation("1252", "house", weights);
    file.collation("1252", "plain", weights);
    return file;
}

void withExample(const std::function<void(fixture::Library &)> &body) {
    const Home home;
    home.put("example_exit", "usortwin");
    process::isolated([&] {
        process::setVariable("PATH", home.bin());
        fixture::Library open(siteFile());
        body(open);
    });
}

int compared(nlsLocale *locale, const std::string &a, const std::string &b, std::int16_t mode = 1) {
    std::int16_t result = 99;
    EXPECT_EQ(nlsCompare(locale, a.c_str(), b.c_str(), mode, &result), NLS_OK);
    return result;
}

std::string key(nlsLocale *locale, std::string text, std::uint16_t size = 300, std::uint16_t mode = 1) {
    std::string out(size, '?');
    std::uint16_t length = 0;
    EXPECT_EQ(nlsSortKey(locale, text.data(), size, mode, 1, reinterpret_cast<unsigned char *>(out.data()),
                         &length),
              NLS_OK);
    out.resize(length);
    return out;
}

TEST(ExampleExit, NumbersOrderByTheirValue) {
    withExample([](fixture::Library &open) {
        nlsLocale *const locale = open.locale("1252", "house");
        EXPECT_EQ(compared(locale, "file9", "file10"), -1);
        EXPECT_EQ(compared(locale, "file10", "file9"), 1);
        EXPECT_EQ(compared(locale, "v1.10.2", "v1.9.30"), 1);
        EXPECT_EQ(compared(locale, "007", "7"), 0);
        EXPECT_EQ(compared(locale, "0", "1"), -1);
        EXPECT_EQ(compared(locale, "a", "a1"), -1);
        EXPECT_EQ(compared(locale, "abc  ", "abc"), 0);
        EXPECT_EQ(compared(locale, "File9", "file10", 0), -1);
        EXPECT_EQ(compared(locale, "FILE9", "file9", 0), 0);
        EXPECT_EQ(compared(locale, "FILE9", "file9", 1), -1);
    });
}

TEST(ExampleExit, TheUserValueCarriesWhatTheNameAskedFor) {
    withExample([](fixture::Library &open) {
        EXPECT_EQ(compared(open.locale("1252", "plain"), "file9", "file10"), 1);
    });
}

TEST(ExampleExit, KeysAndComparesAgree) {
    withExample([](fixture::Library &open) {
        nlsLocale *const locale = open.locale("1252", "house");
        std::mt19937 random(11);
        const std::string letters = "ab019 .A";
        for (int i = 0; i < 20000; ++i) {
            std::string texts[2];
            for (std::string &text : texts)
                for (auto length = random() % 9; length > 0; --length)
                    text += letters[random() % letters.size()];
            const int byKey = key(locale, texts[0]).compare(key(locale, texts[1]));
            ASSERT_EQ(compared(locale, texts[0], texts[1]), (byKey > 0) - (byKey < 0))
                << texts[0] << "|" << texts[1];
        }
    });
}

TEST(ExampleExit, KeysStayInTheirBuffer) {
    withExample([](fixture::Library &open) {
        nlsLocale *const locale = open.locale("1252", "house");
        const std::string text = "abc123456def" + std::string(300, '7');
        const std::string whole = key(locale, text, 1000);
        for (std::uint16_t size = 1; size < 40; ++size)
            EXPECT_EQ(key(locale, text, size), whole.substr(0, size - 1U)) << size;
    });
}

} // namespace
