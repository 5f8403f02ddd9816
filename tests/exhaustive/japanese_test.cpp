// Shift_JIS and EUC-JP by arithmetic, both ways, and that the way over EUC-JP means the same characters.
#include "harness/compare.hpp"
#include "harness/names.hpp"
#include "model/japanese.hpp"

using harness::Bytes;
using harness::Pair;

namespace {

Bytes bytesOfCode(std::uint32_t code) {
    if (code > 0xFF)
        return {static_cast<std::uint8_t>(code >> 8), static_cast<std::uint8_t>(code)};
    return {static_cast<std::uint8_t>(code)};
}

class JapaneseTest : public ::testing::TestWithParam<bool> {
protected:
    JapaneseTest() : pair_(GetParam() ? "SHIFT-JIS" : "EUCJIS", GetParam() ? "EUCJIS" : "SHIFT-JIS") {}
    Pair pair_;
};

TEST_P(JapaneseTest, everyByteAtEveryCapacity) {
    for (unsigned byte = 0; byte < 256; ++byte)
        for (std::uint32_t capacity = 0; capacity < 4; ++capacity)
            ASSERT_TRUE(pair_.agree({static_cast<std::uint8_t>(byte)}, capacity));
}

TEST_P(JapaneseTest, everyTwoBytesAtEveryCapacity) {
    for (std::uint32_t code = 0; code < 0x10000; ++code)
        for (std::uint32_t capacity = 0; capacity < 6; ++capacity)
            ASSERT_TRUE(pair_.agree({static_cast<std::uint8_t>(code >> 8), static_cast<std::uint8_t>(code)},
                                    capacity));
}

TEST_P(JapaneseTest, everyTwoBytesBetweenOthers) {
    for (std::uint32_t code = 0; code < 0x10000; ++code)
        for (const std::uint8_t other : Bytes{0x00, 0x41, 0x8E, 0x88, 0x9F, 0xB1, 0xE0, 0xFD, 0xFF}) {
            const auto high = static_cast<std::uint8_t>(code >> 8);
            const auto low = static_cast<std::uint8_t>(code);
            ASSERT_TRUE(pair_.agree({high, low, other, 'a'}, 8));
            ASSERT_TRUE(pair_.agree({other, high, low, 'a'}, 8));
        }
}

TEST_P(JapaneseTest, everySingleCharacterCall) {
    for (std::uint32_t code = 0; code < 0x10000; ++code)
        ASSERT_TRUE(pair_.agreeCharacter(code));
}

std::string directionName(const ::testing::TestParamInfo<bool> &info) {
    return info.param ? "shiftJisToEuc" : "eucToShiftJis";
}

INSTANTIATE_TEST_SUITE_P(Directions, JapaneseTest, ::testing::Bool(), directionName);

TEST(Japanese, everyCodeWithAnEucFormTurnsBackAndMeansTheSameCharacter) {
    const model::Page &page = model::page("SHIFT-JIS");
    Pair toEuc("SHIFT-JIS", "EUCJIS");
    Pair fromEuc("EUCJIS", "SHIFT-JIS");
    Pair direct("SHIFT-JIS", "UTF-8");
    Pair overEuc("EUCJIS", "UTF-8");
    std::size_t codes = 0;
    std::size_t without = 0;
    for (std::uint32_t code = 0; code < 0x10000; ++code) {
        if (page.unicodeOfCode[code] == model::kNone)
            continue;
        const Bytes source = bytesOfCode(code);
        const auto length = static_cast<std::uint32_t>(source.size());
        std::uint8_t euc[8];
        std::uint8_t back[8];
        std::uint8_t one[8];
        std::uint8_t two[8];
        const harness::BareResult there = harness::convertBare(toEuc.actual(), source.data(), length, euc, 8);
        if (model::eucOfShiftJis(code) == model::kNone) {
            ASSERT_EQ(euc[0], source[0]); // passed through, byte by byte
            ++without;
            continue;
        }
        ASSERT_EQ(there.status, NLS_OK);
        const harness::BareResult again = harness::convertBare(fromEuc.actual(), euc, there.written, back, 8);
        ASSERT_EQ(Bytes(back, back + again.written), source);
        const harness::BareResult first =
            harness::convertBare(direct.actual(), source.data(), length, one, 8);
        const harness::BareResult second = harness::convertBare(overEuc.actual(), euc, there.written, two, 8);
        ASSERT_EQ(first.status, NLS_OK);
        ASSERT_EQ(second.status, NLS_OK);
        ASSERT_EQ(Bytes(one, one + first.written), Bytes(two, two + second.written)) << std::hex << code;
        ++codes;
    }
    EXPECT_EQ(codes, 7527u);
    EXPECT_EQ(without, 2268u);
}

} // namespace
