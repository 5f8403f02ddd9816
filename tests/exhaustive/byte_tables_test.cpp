// The direct tables between single-byte pages, and the pairs of pages that have none.
#include "harness/compare.hpp"
#include "harness/names.hpp"

using harness::Bytes;
using harness::Pair;

namespace {

Bytes allBytes() {
    Bytes bytes;
    for (unsigned byte = 0; byte < 256; ++byte)
        bytes.push_back(static_cast<std::uint8_t>(byte));
    return bytes;
}

TEST(ByteTables, thereAreOneHundredAndThirty) {
    EXPECT_EQ(model::byteTablePairs().size(), 130u);
}

TEST(ByteTables, everyByteGoesThroughUnicode) {
    for (const auto &[source, target] : model::byteTablePairs()) {
        Pair pair(source, target);
        for (const std::uint8_t byte : allBytes()) {
            ASSERT_TRUE(pair.agree({byte}, 1));
            ASSERT_TRUE(pair.agreeCharacter(byte));
            ASSERT_TRUE(pair.agreeChecked({byte}, 2));
        }
        ASSERT_TRUE(pair.agree(allBytes(), 256));
        ASSERT_TRUE(pair.agreeTerminated(allBytes(), 257));
    }
}

TEST(ByteTables, agreeWithTheWayThroughUtf8WhereBothPagesHaveTheCharacter) {
    for (const auto &[source, target] : model::byteTablePairs()) {
        Pair direct(source, target);
        Pair first(source, "UTF-8");
        Pair second("UTF-8", target);
        for (const std::uint8_t byte : allBytes()) {
            std::uint8_t out[8] = {};
            std::uint8_t middle[8] = {};
            std::uint8_t round[8] = {};
            const harness::BareResult one = harness::convertBare(direct.actual(), &byte, 1, out, 8);
            const harness::BareResult two = harness::convertBare(first.actual(), &byte, 1, middle, 8);
            const harness::BareResult three =
                harness::convertBare(second.actual(), middle, two.written, round, 8);
            ASSERT_EQ(one.status, NLS_OK);
            ASSERT_EQ(one.written, 1u);
            if (two.status == NLS_OK && three.status == NLS_OK) {
                ASSERT_EQ(out[0], round[0]) << source << " to " << target << " byte " << unsigned{byte};
            } else {
                ASSERT_EQ(out[0], model::isEbcdic(target) ? 0x6F : '?')
                    << source << " to " << target << " byte " << unsigned{byte};
            }
        }
    }
}

TEST(ByteTables, tooLittleRoomWritesNothing) {
    for (const auto &[source, target] : model::byteTablePairs()) {
        Pair pair(source, target);
        for (const std::uint32_t capacity : {0u, 1u, 31u, 32u, 255u, 256u, 257u})
            ASSERT_TRUE(pair.agree(allBytes(), capacity));
    }
}

TEST(ByteTables, latinAndEbcdicTablesTurnBack) {
    for (const auto &name : model::singleBytePages()) {
        if (!model::isEbcdic(name))
            continue;
        Pair there("ISO8859-1", name);
        Pair back(name, "ISO8859-1");
        const Bytes text = allBytes();
        std::uint8_t middle[256];
        std::uint8_t out[256];
        harness::convertBare(there.actual(), text.data(), 256, middle, 256);
        harness::convertBare(back.actual(), middle, 256, out, 256);
        EXPECT_EQ(Bytes(out, out + 256), text) << name;
    }
}

TEST(ByteTables, pagesWithoutADirectTableHaveNoConversion) {
    std::size_t refused = 0;
    for (const auto &source : model::allPages()) {
        for (const auto &target : model::allPages()) {
            const bool japanese = (source == "SHIFT-JIS" && target == "EUCJIS") ||
                                  (source == "EUCJIS" && target == "SHIFT-JIS");
            if (source == target || japanese || model::hasByteTable(source, target))
                continue;
            nlsConversion *conversion = nullptr;
            ASSERT_EQ(harness::library().tryConversion(source, target, &conversion), NLS_E_ICU)
                << source << " to " << target;
            ++refused;
        }
    }
    EXPECT_EQ(refused, 46u * 45 - 130 - 2);
}

} // namespace
