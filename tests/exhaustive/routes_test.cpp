// Chains that the library builds by itself: UTF-32 with every byte page, and what a small intermediate buffer
// does to them.
#include "harness/compare.hpp"
#include "harness/names.hpp"

using harness::Bytes;
using harness::kStride;
using harness::Pair;

namespace {

class RouteTest : public ::testing::TestWithParam<std::string> {};

bool isChain(nlsConversion *conversion) {
    std::uint32_t value = 2;
    EXPECT_EQ(nlsGetIntConversionProperty(conversion, 28, &value), NLS_OK);
    return value == 1;
}

TEST_P(RouteTest, everyCodePointInShortRuns) {
    constexpr std::uint32_t kRun = 256;
    for (const char *form : {"UTF-32", "UTF-32BE"}) {
        Pair pair(form, GetParam());
        ASSERT_TRUE(isChain(pair.actual()));
        for (std::uint32_t first = 0; first < 0x110000; first += kRun * kStride) {
            Bytes text;
            for (std::uint32_t codePoint = first; codePoint < first + kRun; ++codePoint)
                model::appendEncoded(text, pair.expected().source(), codePoint);
            ASSERT_TRUE(pair.agree(text, 2 * kRun + 4, 4 * kRun));
        }
    }
}

TEST_P(RouteTest, everyCodeInOneText) {
    const model::Page &page = model::page(GetParam());
    Bytes text;
    for (std::uint32_t code = 0; code < 0x10000; ++code) {
        if (page.unicodeOfCode[code] == model::kNone)
            continue;
        if (code > 0xFF)
            text.push_back(static_cast<std::uint8_t>(code >> 8));
        text.push_back(static_cast<std::uint8_t>(code));
    }
    for (const char *form : {"UTF-32", "UTF-32BE"}) {
        Pair pair(GetParam(), form);
        ASSERT_TRUE(isChain(pair.actual()));
        ASSERT_TRUE(pair.agree(text, 400000, 200000));
    }
}

TEST_P(RouteTest, everyTwoBytes) {
    Pair pair(GetParam(), "UTF-32");
    for (std::uint32_t code = 0; code < 0x10000; code += kStride * 3)
        ASSERT_TRUE(
            pair.agree({static_cast<std::uint8_t>(code >> 8), static_cast<std::uint8_t>(code)}, 16, 16));
}

TEST_P(RouteTest, everyRoomInBothBuffers) {
    const model::Page &page = model::page(GetParam());
    Pair from("UTF-32", GetParam());
    Pair to(GetParam(), "UTF-32BE");
    Bytes wide;
    Bytes narrow = {'a'};
    model::appendEncoded(wide, from.expected().source(), 'a');
    unsigned taken = 0;
    for (std::uint32_t unicode = 0xA0; unicode < 0x10000 && taken < 4; unicode += 7) {
        if (page.fromUnicode(unicode) == model::kNone)
            continue;
        model::appendEncoded(wide, from.expected().source(), unicode);
        const std::uint32_t code = page.fromUnicode(unicode);
        if (code > 255)
            narrow.push_back(static_cast<std::uint8_t>(code >> 8));
        narrow.push_back(static_cast<std::uint8_t>(code));
        ++taken;
    }
    model::appendEncoded(wide, from.expected().source(), 0x1F600); // no page has it
    for (std::uint32_t intermediate = 0; intermediate < 24; ++intermediate)
        for (std::uint32_t capacity = 0; capacity < 28; ++capacity) {
            ASSERT_TRUE(from.agreeTerminated(wide, capacity, intermediate));
            ASSERT_TRUE(to.agreeTerminated(narrow, capacity, intermediate));
        }
}

INSTANTIATE_TEST_SUITE_P(Pages, RouteTest, ::testing::ValuesIn(model::allPages()), harness::pageTestName);

} // namespace
