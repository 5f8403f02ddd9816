// The compressed way back: every character is found with its index and no other, for all segment sizes.
#include "compressed_reverse.hpp"

#include <gtest/gtest.h>

#include <map>
#include <optional>
#include <random>

namespace velnls::nlsgen::test {
namespace {

// The rule as the manual of the format has it.
std::optional<std::uint32_t> lookUp(const CompressedReverse &table, std::uint32_t value) {
    if (value < table.lowest || value > table.highest)
        return std::nullopt;
    const std::uint32_t distance = value - table.lowest;
    std::size_t at = table.words.at(distance >> table.split);
    int count = static_cast<int>(distance & ((1U << table.split) - 1)) + 1;
    while (count > 0) {
        const std::uint16_t entry = table.words.at(at++);
        int run = entry & table.runMask;
        if (run == 0)
            run = table.words.at(at++);
        count -= run;
        if (count == 0)
            return entry >> table.indexShift;
    }
    return std::nullopt;
}

void expectExact(const std::vector<IndexedCharacter> &characters, std::uint32_t lowest, unsigned split) {
    const CompressedReverse table = compressReverse(characters, lowest, split);
    std::map<std::uint32_t, std::uint32_t> meant(characters.begin(), characters.end());
    for (std::uint32_t value = 0; value < characters.back().first + 300; value++) {
        const auto found = lookUp(table, value);
        const auto wanted = meant.find(value);
        ASSERT_EQ(found.has_value(), wanted != meant.end()) << std::hex << value << " split " << split;
        if (found) {
            ASSERT_EQ(*found, wanted->second) << std::hex << value << " split " << split;
        }
    }
}

TEST(CompressedReverse, FindsExactlyItsCharactersForEverySegmentSize) {
    std::mt19937 random(1);
    for (unsigned split = 0; split <= 6; split++) {
        for (const unsigned density : {1U, 3U, 40U, 500U}) {
            std::vector<IndexedCharacter> characters;
            for (std::uint32_t value = 0xA0; value < 0x3000; value++)
                if (random() % density == 0)
                    characters.emplace_back(value, random() % 200);
            characters.emplace_back(0x3000, 1);
            expectExact(characters, characters.front().first, split);
            expectExact(characters, 0x98, split);
        }
    }
}

TEST(CompressedReverse, ServesTheLargestIndexThatLeavesABitForTheRun) {
    for (unsigned split = 0; split <= 6; split++)
        expectExact({{0x100, kLargestCompressedIndex}, {0x101, 0}, {0x13F, 7}, {0x180, 16384}}, 0x100, split);
}

TEST(CompressedReverse, ServesASingleCharacter) {
    expectExact({{0x9F, 1}}, 0x9F, 0);
    expectExact({{0x9F, 1}}, 0x98, 4);
}

} // namespace
} // namespace velnls::nlsgen::test
