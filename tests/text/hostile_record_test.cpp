// Records of any content: rebuilding gives a status and touches nothing outside the record, the sort data and
// the block; a locale that comes of it answers every call within its buffers.
#include "harness/stored.hpp"

#include <gtest/gtest.h>

using kit::Bytes;
using kit::Kit;
using kit::operator+;
using kit::World;

namespace {

constexpr int kRounds = VELNLS_SANITIZED ? 300 : 2500; // per locale

void spoil(Bytes &bytes, fixture::Random &random, unsigned changes) {
    for (; changes > 0 && !bytes.empty(); --changes)
        bytes[random.below(static_cast<std::uint32_t>(bytes.size()))] = fixture::byteOf(random());
}

void spoilName(char (&name)[20], fixture::Random &random) {
    for (char &byte : name)
        byte = static_cast<char>(random.below(4) == 0 ? random() : byte);
}

kit::Stored hostile(const Kit &one, fixture::Random &random) {
    kit::Stored stored = kit::store(one.locale, random.below(4) == 0 ? kit::kOldLevel : kit::kNewLevel);
    switch (random.below(4)) {
    case 0:
        spoil(stored.data, random, 1 + random.below(8));
        break;
    case 1: // rubbish in the fields that steer
        for (const unsigned place : {520U, 524U, 528U, 1344U, 1364U, 1368U, 1372U, 1500U, 1504U, 1508U})
            if (place < stored.data.size() && random.below(2) == 0)
                stored.data[place] = fixture::byteOf(random());
        break;
    case 2:
        for (std::size_t i = 832; i < std::min<std::size_t>(stored.data.size(), 1088); ++i)
            stored.data[i] = fixture::byteOf(random());
        break;
    default:
        stored.data.resize(random.below(2) != 0
                               ? random.below(8000)
                               : static_cast<std::uint32_t>(stored.data.size()) - 3 + random.below(7));
        spoil(stored.data, random, 40);
        break;
    }
    if (random.below(4) == 0)
        spoilName(stored.record.codePageName, random);
    if (random.below(4) == 0)
        spoilName(stored.record.collationName, random);
    if (random.below(4) == 0)
        spoilName(stored.record.caseTableName, random);
    if (random.below(4) == 0)
        stored.record.collationKind = random.below(8);
    if (random.below(4) == 0)
        stored.record.collationWord = random();
    if (random.below(8) == 0)
        stored.record.blockSize = random.below(12000);
    stored.record.dataSize = static_cast<std::uint32_t>(stored.data.size());
    return stored;
}

std::vector<std::uint16_t> hostileSortData(fixture::Random &random) {
    std::vector<std::uint16_t> data(4 + random.below(140));
    for (std::uint16_t &unit : data)
        unit = fixture::halfOf(random());
    static constexpr unsigned char kFormats[] = {7, 8, 9, 128};
    if (random.below(2) == 0)
        data[0] = kFormats[random.below(4)];
    data[1] = static_cast<std::uint16_t>(data.size() * 2 - random.below(2));
    if (random.below(4) != 0)
        data[2] = static_cast<std::uint16_t>(random.below(300));
    return data;
}

// Every call that reads the tables which came from the record.
void useIt(nlsLocale *locale, kit::TextMaker &maker, bool withSortData) {
    static kit::GuardedText guarded;
    for (int i = 0; i < 3; ++i) {
        Bytes a(maker.random.below(20));
        for (unsigned char &byte : a)
            byte = fixture::byteOf(1 + maker.random.below(255));
        const Bytes b = maker.variant(kit::Script::Latin, a);
        for (const std::int16_t mode : kit::kModes) {
            kit::compare(locale, a, b, mode);
            kit::compareN(locale, a, b, static_cast<std::int32_t>(a.size() / 2),
                          static_cast<std::uint32_t>(b.size() / 2));
        }
        kit::sortKey(locale, a, static_cast<std::uint16_t>(1 + maker.random.below(40)),
                     static_cast<std::uint16_t>(maker.random.below(3)), 1);
        for (const bool upper : {true, false})
            kit::mapCase(locale, a, maker.random.below(40), upper);
        std::uint32_t count = 0;
        const char *const text = guarded.terminated(a);
        const auto length = static_cast<std::int32_t>(a.size());
        nlsCountBytes(locale, text, length / 2, &count);
        nlsCountChars(locale, text, length / 2, &count);
        nlsCountColumns(locale, text, length / 2, &count);
        nlsValidateString(locale, text, length, 0, &count);
        char buffer[64];
        nlsStr out{buffer, 63, 0};
        nlsSubstr(locale, text, 1 + length / 3, length / 2, &count, &out);
        if (!withSortData)
            continue;
        nlsIsSortNeeded(locale, &count);
        char *at = const_cast<char *>(text);
        char word[200];
        for (int words = 0; words < 30 && nlsGetNextWord(locale, &at, 1, word, sizeof word, &count) == NLS_OK;
             ++words)
            ASSERT_LE(at, text + length);
    }
}

} // namespace

TEST(HostileRecord, NothingOutsideIsTouchedAndAStatusSaysWhatIsWrong) {
    int opened = 0;
    int refused = 0;
    for (std::size_t number = 0; number < World().kits.size(); ++number) {
        // A library each: failed attempts use its memory up.
        World world(3);
        const Kit &one = world.kits[number];
        kit::TextMaker maker(61);
        for (int round = 0; round < kRounds && !HasFatalFailure(); ++round) {
            const kit::Stored stored = hostile(one, maker.random);
            const std::vector<std::uint16_t> data = hostileSortData(maker.random);
            const bool sorted = maker.random.below(2) != 0;
            nlsLocale *const target = maker.random.below(4) == 0 ? world["UTF-8 BASIC"].locale : nullptr;
            SCOPED_TRACE(one.name + ", round " + std::to_string(round));
            const auto more = maker.random.below(50);
            const std::uint32_t size = kit::sizeNeeded(stored, "copy", sorted ? &data : nullptr) + more -
                                       std::min(maker.random.below(60), 40U);
            const kit::Rebuilt rebuilt(world.library.handle, stored, "copy", sorted ? &data : nullptr, target,
                                       size);
            static constexpr nlsStatus kKnown[] = {0, 1, 2, 8, 9, 10, 11, 16, 21, 22, 25};
            ASSERT_NE(std::find(std::begin(kKnown), std::end(kKnown), rebuilt.status), std::end(kKnown))
                << rebuilt.status;
            if (rebuilt.status != NLS_OK) {
                ++refused;
                continue;
            }
            ++opened;
            useIt(rebuilt.locale, maker, sorted);
        }
    }
    EXPECT_GT(opened, 1000);
    EXPECT_GT(refused, 1000);
}

// The attributes of NUL are data too: a record that makes it begin a character ends no text later.
TEST(HostileRecord, NulEndsATextWhateverItsAttributesSay) {
    constexpr std::size_t kAttributeOfNul = 832;
    for (std::size_t number = 0; number < World().kits.size(); ++number) {
        World world(3);
        const Kit &one = world.kits[number];
        for (unsigned char attribute = 1; attribute < 16; ++attribute) {
            kit::Stored stored = kit::store(one.locale, kit::kNewLevel);
            ASSERT_GT(stored.data.size(), kAttributeOfNul);
            stored.data[kAttributeOfNul] = attribute;
            const std::uint32_t size = kit::sizeNeeded(stored, "copy", nullptr);
            const kit::Rebuilt rebuilt(world.library.handle, stored, "copy", nullptr, nullptr, size);
            if (rebuilt.status != NLS_OK)
                continue;
            SCOPED_TRACE(one.name + ", attribute " + std::to_string(attribute));
            kit::GuardedText left;
            kit::GuardedText right;
            const char *const atPageEnd = left.terminated({});
            char *next = nullptr;
            EXPECT_EQ(nlsGetNextChar(rebuilt.locale, atPageEnd, &next), NLS_E_END);
            EXPECT_EQ(next, atPageEnd);
            for (const std::int16_t mode : kit::kModes) {
                std::int16_t result = 77;
                EXPECT_EQ(
                    nlsCompare(rebuilt.locale, left.bytes({0, 'x'}), right.bytes({0, 'y'}), mode, &result),
                    NLS_OK);
                EXPECT_EQ(result, 0);
                EXPECT_EQ(
                    nlsCompare(rebuilt.locale, left.terminated({}), right.terminated({}), mode, &result),
                    NLS_OK);
                EXPECT_EQ(result, 0);
            }
        }
    }
}
