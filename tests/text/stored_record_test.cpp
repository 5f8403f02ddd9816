// nlsLocaleToDbCollation, nlsDbCollationToLocale, nlsCloseDBLocale: statuses, sizes and contents.
#include "harness/checks.hpp"
#include "harness/stored.hpp"

#include <gtest/gtest.h>

using kit::Bytes;
using kit::gives;
using kit::Kit;
using kit::Rebuilt;
using kit::store;
using kit::Stored;
using kit::operator+;
using kit::World;

namespace peek = fixture::peek;

namespace {

nlsStatus plainStore(nlsLocale *locale) {
    nlsDbCollation record{};
    unsigned char data[8000];
    record.data = data;
    return nlsLocaleToDbCollation(locale, kit::kNewLevel, sizeof data, &record);
}

nlsStatus plainClose(nlsLocale *locale) {
    void *block = nullptr;
    std::uint32_t size = 0;
    return nlsCloseDBLocale(locale, &block, &size);
}

std::uint32_t wordAt(const Bytes &data, std::size_t place) {
    std::uint32_t word = 0;
    std::memcpy(&word, &data.at(place + 3) - 3, sizeof word);
    return word;
}

Bytes slice(const Bytes &data, std::size_t from, std::size_t count) {
    return {data.begin() + static_cast<std::ptrdiff_t>(from),
            data.begin() + static_cast<std::ptrdiff_t>(from + count)};
}

Bytes bytesOf(const fixture::ByteTable &table) {
    return {table.begin(), table.end()};
}

// The size word of a paged case table.
std::uint32_t pagesSize(const model::CasePages &pages) {
    std::uint32_t size = 2056 + 258;
    for (const auto &page : pages.pages)
        size += page.empty() ? 0 : static_cast<std::uint32_t>(page.size()) * 2 + 2;
    return size;
}

bool isOnList(const nlsHandle *handle, const void *wanted) {
    for (const void *object = peek::newest(handle); object != nullptr; object = peek::next(object))
        if (object == wanted)
            return true;
    return false;
}

} // namespace

// ---- Writing records ------------------------------------------------------------------------------------

TEST(StoredRecord, WhatIsNoLocaleGives13Or24) {
    kit::refusesWhatIsNoLocale("nlsLocaleToDbCollation", plainStore);
}

TEST(StoredRecord, NullArgumentsGive16) {
    World world;
    nlsDbCollation record{};
    EXPECT_TRUE(gives("nlsLocaleToDbCollation", 16,
                      nlsLocaleToDbCollation(world["1252 german"].locale, 6, 5000, nullptr)));
    EXPECT_TRUE(gives("nlsLocaleToDbCollation", 16,
                      nlsLocaleToDbCollation(world["1252 german"].locale, 6, 5000, &record)));
}

TEST(StoredRecord, ALocaleWithoutCharactersOrCollationIsRefused) {
    kit::refusesWithoutCharacters("nlsLocaleToDbCollation", plainStore);
    World world;
    EXPECT_TRUE(gives("nlsLocaleToDbCollation", 25, plainStore(world.library.locale("1252"))));
}

TEST(StoredRecord, TheOldFormIsTheWeightsAlone) {
    World world;
    for (const Kit &one : world.kits)
        for (const std::int32_t level : {5, 0, -1}) {
            const Stored stored = store(one.locale, level);
            EXPECT_TRUE(gives("nlsLocaleToDbCollation", 0, stored.status));
            EXPECT_EQ(stored.record.dataSize, 512U) << one.name;
            EXPECT_EQ(stored.record.blockSize, 712U) << one.name;
            EXPECT_EQ(stored.data,
                      bytesOf(one.twin.collation->sensitive) + bytesOf(one.twin.collation->insensitive))
                << one.name;
            EXPECT_EQ(stored.record.collationKind, one.twin.collation->kind) << one.name;
            EXPECT_EQ(stored.record.collationWord, one.twin.collation->variant) << one.name;
        }
}

TEST(StoredRecord, TheNewFormIsCollationCharactersAndCase) {
    World world;
    for (const Kit &one : world.kits)
        for (const std::int32_t level : {6, 7, 100}) {
            const Stored stored = store(one.locale, level);
            EXPECT_TRUE(gives("nlsLocaleToDbCollation", 0, stored.status));
            const bool paged = one.twin.pagedCase();
            const std::uint32_t caseSize = paged ? 5976 : one.twin.byteCase.has_value() ? 516 : 0;
            EXPECT_EQ(stored.record.dataSize, 1368 + caseSize) << one.name;
            EXPECT_EQ(stored.record.blockSize, 1504 + caseSize + (paged ? pagesSize(*one.twin.casePages) : 0))
                << one.name;
            EXPECT_EQ(slice(stored.data, 0, 256), bytesOf(one.twin.collation->sensitive)) << one.name;
            EXPECT_EQ(slice(stored.data, 256, 256), bytesOf(one.twin.collation->insensitive)) << one.name;
            EXPECT_EQ(wordAt(stored.data, 520), 256U) << "table length";
            EXPECT_EQ(wordAt(stored.data, 524), one.twin.collation->kind);
            EXPECT_EQ(wordAt(stored.data, 528), one.twin.collation->variant);
            EXPECT_EQ(slice(stored.data, 576, 256), bytesOf(one.twin.characters.classes)) << one.name;
            EXPECT_EQ(slice(stored.data, 832, 256), bytesOf(one.twin.characters.attributes)) << one.name;
            EXPECT_EQ(slice(stored.data, 1088, 256), bytesOf(one.twin.characters.trailValid)) << one.name;
            EXPECT_EQ(wordAt(stored.data, 1344), 256U);
            EXPECT_EQ(slice(stored.data, 1348, 16), Bytes(16)) << "reserved";
            EXPECT_EQ(wordAt(stored.data, 1364), one.twin.characters.flags) << "where records have them";
            if (caseSize == 516) {
                EXPECT_EQ(wordAt(stored.data, 1368), 256U);
                EXPECT_EQ(slice(stored.data, 1372, 256), bytesOf(one.twin.byteCase->upper)) << one.name;
                EXPECT_EQ(slice(stored.data, 1628, 256), bytesOf(one.twin.byteCase->lower)) << one.name;
            } else if (paged) {
                EXPECT_EQ(wordAt(stored.data, 1368), 5976U);
                EXPECT_EQ(wordAt(stored.data, 1372), pagesSize(*one.twin.casePages));
                const bool common = one.name.find("common") != std::string::npos;
                EXPECT_EQ(slice(stored.data, 1376, 5968),
                          (common ? kit::commonCase() : kit::unicodeCase()).record());
            }
        }
}

TEST(StoredRecord, NamesAreCopiedWhole) {
    World world;
    const Stored stored = store(world["EUCJIS weights"].locale);
    EXPECT_STREQ(stored.record.codePageName, "EUCJIS");
    EXPECT_STREQ(stored.record.collationName, "weights");
    EXPECT_STREQ(stored.record.caseTableName, "basic");
    EXPECT_STREQ(store(world["1252 german"].locale).record.caseTableName, "");
}

TEST(StoredRecord, ARoomOneByteTooSmallGives2AndWritesNothing) {
    World world;
    for (const Kit &one : world.kits)
        for (const std::int32_t level : {kit::kOldLevel, kit::kNewLevel}) {
            const std::uint32_t size = store(one.locale, level).record.dataSize;
            EXPECT_TRUE(gives("nlsLocaleToDbCollation", 0, store(one.locale, level, size).status))
                << one.name;
            const Stored small = store(one.locale, level, size - 1);
            EXPECT_TRUE(gives("nlsLocaleToDbCollation", 2, small.status)) << one.name;
            EXPECT_EQ(small.data, Bytes(size - 1, 0xEE)) << one.name;
        }
}

// ---- Rebuilding -----------------------------------------------------------------------------------------

TEST(RebuiltLocale, NullArgumentsGive16) {
    World world;
    Stored stored = store(world["1252 german"].locale);
    nlsHandle *const handle = world.library.handle;
    std::vector<unsigned char> block(3000);
    std::uint32_t size = 3000;
    nlsLocale *locale = nullptr;
    nlsDbCollation record = stored.record;
    EXPECT_TRUE(gives("nlsDbCollationToLocale", 16,
                      nlsDbCollationToLocale(handle, &record, "x", &size, block.data(), &locale)))
        << "without data";
    record.data = stored.data.data();
    EXPECT_TRUE(gives("nlsDbCollationToLocale", 16,
                      nlsDbCollationToLocale(handle, nullptr, "x", &size, block.data(), &locale)));
    EXPECT_TRUE(gives("nlsDbCollationToLocale", 16,
                      nlsDbCollationToLocale(handle, &record, nullptr, &size, block.data(), &locale)));
    EXPECT_TRUE(gives("nlsDbCollationToLocale", 16,
                      nlsDbCollationToLocale(handle, &record, "x", nullptr, block.data(), &locale)));
    EXPECT_TRUE(gives("nlsDbCollationToLocale", 16,
                      nlsDbCollationToLocale(handle, &record, "x", &size, nullptr, &locale)));
    EXPECT_TRUE(gives("nlsDbCollationToLocale", 16,
                      nlsDbCollationToLocale(handle, &record, "x", &size, block.data(), nullptr)));
    EXPECT_EQ(locale, nullptr);
}

TEST(RebuiltLocale, ANullBlockOfNoBytesAsksForTheSize) {
    World world;
    Stored stored = store(world["1252 german"].locale);
    stored.record.data = stored.data.data();
    std::uint32_t size = 0;
    nlsLocale *locale = nullptr;
    EXPECT_TRUE(
        gives("nlsDbCollationToLocale", 2,
              nlsDbCollationToLocale(world.library.handle, &stored.record, "copy", &size, nullptr, &locale)));
    EXPECT_EQ(size, 1504U + 5 + 318);
}

TEST(RebuiltLocale, AClosedHandleGives13) {
    World world;
    const Stored stored = store(world["1252 german"].locale);
    EXPECT_TRUE(gives("nlsDbCollationToLocale", 13, Rebuilt(nullptr, stored).status));
    EXPECT_EQ(nlsClose(world.library.handle), NLS_OK);
    EXPECT_TRUE(gives("nlsDbCollationToLocale", 13, Rebuilt(world.library.handle, stored).status));
    world.library.handle = nullptr;
}

TEST(RebuiltLocale, ABusyHandleGives23) {
    World world;
    const Stored stored = store(world["1252 german"].locale);
    const Rebuilt rebuilt(world.library.handle, stored);
    nlsStatus building = 0;
    nlsStatus closing = 0;
    world.library.files.onRead = [&](std::uint32_t, std::uint32_t) {
        building = Rebuilt(world.library.handle, stored).status;
        closing = plainClose(rebuilt.locale);
    };
    world.library.locale("UTF-16");
    EXPECT_TRUE(gives("nlsDbCollationToLocale", 23, building));
    EXPECT_TRUE(gives("nlsCloseDBLocale", 23, closing));
    world.library.files.onRead = nullptr;
    EXPECT_TRUE(gives("nlsCloseDBLocale", 0, plainClose(rebuilt.locale)));
}

TEST(RebuiltLocale, OldRecordsNeed712BytesTheNameAnd318) {
    World world;
    for (const std::string name : {"", "x", "a longer name of the locale"}) {
        const Stored stored = store(world["1252 german"].locale, kit::kOldLevel);
        const auto needed = static_cast<std::uint32_t>(712 + name.size() + 1 + 318);
        const Rebuilt small(world.library.handle, stored, name, nullptr, nullptr, needed - 1);
        EXPECT_TRUE(gives("nlsDbCollationToLocale", 2, small.status));
        EXPECT_EQ(small.size, needed) << "the exact size is reported";
        EXPECT_EQ(small.locale, nullptr);
        const Rebuilt exact(world.library.handle, stored, name, nullptr, nullptr, needed);
        EXPECT_TRUE(gives("nlsDbCollationToLocale", 0, exact.status));
        EXPECT_EQ(exact.size, needed);
    }
}

TEST(RebuiltLocale, NewRecordsNeed792BytesMoreAndTheirCaseTable) {
    World world;
    const auto check = [&world](const char *name, std::uint32_t withoutNameAndSort) {
        const Stored stored = store(world[name].locale);
        const std::uint32_t needed = withoutNameAndSort + 5 + 318;
        const Rebuilt small(world.library.handle, stored, "copy", nullptr, nullptr, needed - 1);
        EXPECT_TRUE(gives("nlsDbCollationToLocale", 2, small.status)) << name;
        EXPECT_EQ(small.size, needed) << name;
        EXPECT_TRUE(gives("nlsDbCollationToLocale", 0,
                          Rebuilt(world.library.handle, stored, "copy", nullptr, nullptr, needed).status))
            << name;
    };
    check("1252 german", 1504);
    check("1252 BASIC", 2020);
    check("EUCJIS weights", 2020);
    check("UTF-8 BASIC without case table", 1504);
}

TEST(RebuiltLocale, SortDataNeed62BytesMoreThanTheirLength) {
    World world;
    const std::vector<std::uint16_t> data = kit::sortData(7, {});
    const Stored stored = store(world["1252 german"].locale);
    const std::uint32_t needed = 1504 + 5 + 264 + 62;
    const Rebuilt small(world.library.handle, stored, "copy", &data, nullptr, needed - 1);
    EXPECT_TRUE(gives("nlsDbCollationToLocale", 2, small.status));
    EXPECT_EQ(small.size, needed);
    EXPECT_TRUE(gives("nlsDbCollationToLocale", 0,
                      Rebuilt(world.library.handle, stored, "copy", &data, nullptr, needed).status));
}

TEST(RebuiltLocale, TheSizeOfACaseTableIsReadAtTheBlocksOffsets) {
    World world;
    Stored stored = store(world["1252 BASIC"].locale);
    // Offset 1500 lies in the upper-case map: there the UTF-8 flag and two words are looked for.
    stored.data[1500] |= 0x08;
    const std::uint32_t words[2] = {1000, 234};
    std::memcpy(&stored.data[1504], words, sizeof words);
    const std::uint32_t needed = 5 + 712 + 318 + 792 + 1234;
    const Rebuilt small(world.library.handle, stored, "copy", nullptr, nullptr, needed - 1);
    EXPECT_TRUE(gives("nlsDbCollationToLocale", 2, small.status));
    EXPECT_EQ(small.size, needed);
    EXPECT_TRUE(gives("nlsDbCollationToLocale", 0,
                      Rebuilt(world.library.handle, stored, "copy", nullptr, nullptr, needed).status));
}

TEST(RebuiltLocale, ABlockWithoutRoomForTheCasePagesGives1) {
    World world;
    const Stored stored = store(world["UTF-8 BASIC"].locale);
    // By the estimate a byte table would do; the reader runs out of room behind the lists.
    const std::uint32_t estimate = 5 + 712 + 318 + 792 + 516;
    const Rebuilt asked(world.library.handle, stored, "copy", nullptr, nullptr, 1);
    EXPECT_TRUE(gives("nlsDbCollationToLocale", 2, asked.status));
    const std::uint32_t enough = kit::sizeNeeded(stored, "copy");
    for (std::uint32_t size = std::max(asked.size, estimate); size < enough - 1000; size += 61)
        ASSERT_TRUE(gives("nlsDbCollationToLocale", 1,
                          Rebuilt(world.library.handle, stored, "copy", nullptr, nullptr, size).status))
            << size;
    EXPECT_TRUE(gives("nlsDbCollationToLocale", 0, Rebuilt(world.library.handle, stored).status));
}

TEST(RebuiltLocale, ABlockWithoutRoomForTheSortDataGives1) {
    World world;
    const Stored stored = store(world["UTF-8 BASIC"].locale);
    const std::vector<std::uint16_t> data = kit::sortData(7, {});
    const std::uint32_t enough = kit::sizeNeeded(stored, "copy", &data);
    const auto status = [&](const std::vector<std::uint16_t> *sortData, std::uint32_t size) {
        return Rebuilt(world.library.handle, stored, "copy", sortData, nullptr, size).status;
    };
    // The estimate is too small for UTF-8, so blocks that pass it can still lack room.
    int onlySortDataLacked = 0;
    bool fits = false;
    for (std::uint32_t size = enough - 8000; size <= enough; ++size) {
        const nlsStatus now = status(&data, size);
        ASSERT_TRUE(now == NLS_E_NOMEM || now == NLS_OK) << size << " gives " << now;
        ASSERT_TRUE(!fits || now == NLS_OK) << size;
        fits = now == NLS_OK;
        onlySortDataLacked += now == NLS_E_NOMEM && status(nullptr, size) == NLS_OK;
    }
    EXPECT_TRUE(fits);
    EXPECT_EQ(onlySortDataLacked, 264);
}

TEST(RebuiltLocale, TheLocaleLiesInItsBlockWithItsNameAtTheEnd) {
    World world;
    const Stored stored = store(world["1252 BASIC"].locale);
    const Rebuilt rebuilt(world.library.handle, stored, "my locale", nullptr, nullptr, 4000);
    ASSERT_TRUE(gives("nlsDbCollationToLocale", 0, rebuilt.status));
    EXPECT_EQ(static_cast<void *>(rebuilt.locale), rebuilt.block);
    EXPECT_STREQ(reinterpret_cast<const char *>(rebuilt.block) + 4000 - 10, "my locale");
    EXPECT_EQ(peek::type(rebuilt.locale), 2);
    EXPECT_EQ(peek::owner(rebuilt.locale), world.library.handle);
    EXPECT_EQ(peek::newest(world.library.handle), rebuilt.locale);
    EXPECT_EQ(peek::serial(rebuilt.locale), peek::serial(peek::next(rebuilt.locale)) + 1);
    EXPECT_EQ(peek::collation(rebuilt.locale), rebuilt.block + 136);
    EXPECT_EQ(peek::characterTable(rebuilt.locale), rebuilt.block + 136 + 576);
    EXPECT_EQ(peek::caseTable(rebuilt.locale), rebuilt.block + 136 + 576 + 792);
    char text[32];
    nlsStr name{text, 32, 0};
    EXPECT_EQ(nlsGetStrLocaleProperty(rebuilt.locale, 18, &name), NLS_OK);
    EXPECT_STREQ(text, "1252");
}

TEST(RebuiltLocale, ALocaleOfTheSameNamesIsFoundByCreatingOne) {
    World world;
    const Rebuilt rebuilt(world.library.handle, store(world["1252 german"].locale));
    EXPECT_EQ(world.library.locale("1252", "german"), rebuilt.locale) << "the newest on the list";
    EXPECT_TRUE(gives("nlsCloseDBLocale", 0, plainClose(rebuilt.locale)));
    EXPECT_EQ(world.library.locale("1252", "german"), world["1252 german"].locale);
}

TEST(RebuiltLocale, ABasicCollationMustReadSo) {
    World world;
    for (const std::int32_t level : {kit::kOldLevel, kit::kNewLevel})
        for (const unsigned place : {0U, 4U, 5U, 256U, 261U}) {
            Stored stored = store(world["1252 BASIC"].locale, level);
            stored.data[place] ^= 0x20;
            EXPECT_TRUE(gives("nlsDbCollationToLocale", 25, Rebuilt(world.library.handle, stored).status))
                << place;
        }
}

TEST(RebuiltLocale, AUserSortExitThatDoesNotLoadGives10) {
    World world;
    Stored stored = store(world["1252 german"].locale);
    stored.data[524] = 2;
    stored.record.collationKind = 2;
    EXPECT_TRUE(gives("nlsDbCollationToLocale", 10, Rebuilt(world.library.handle, stored).status));
    Stored old = store(world["1252 german"].locale, kit::kOldLevel);
    old.record.collationKind = 2;
    EXPECT_TRUE(gives("nlsDbCollationToLocale", 10, Rebuilt(world.library.handle, old).status));
}

TEST(RebuiltLocale, AnOldRecordNeedsItsPageAndABasicCaseTable) {
    World world;
    const Stored stored = store(world["1252 german"].locale, kit::kOldLevel);
    fixture::DataFile empty;
    EXPECT_TRUE(gives("nlsDbCollationToLocale", 9, Rebuilt(fixture::Library(empty).handle, stored).status));
    fixture::DataFile pageOnly;
    pageOnly.codePage("1252", kit::latinPage());
    EXPECT_TRUE(
        gives("nlsDbCollationToLocale", 11, Rebuilt(fixture::Library(pageOnly).handle, stored).status));
    fixture::Library broken(kit::worldFile());
    broken.files.failRead(broken.files.reads());
    EXPECT_TRUE(gives("nlsDbCollationToLocale", 21, Rebuilt(broken.handle, stored).status));
    // The new form needs neither.
    EXPECT_TRUE(gives("nlsDbCollationToLocale", 0,
                      Rebuilt(fixture::Library(empty).handle, store(world["1252 german"].locale)).status));
}

TEST(RebuiltLocale, RecordsThatDoNotHoldTogetherGive21) {
    World world;
    Stored stored = store(world["1252 BASIC"].locale);
    for (const std::uint32_t size : {513U, 1367U, 1368U, 1883U}) {
        Stored cut = stored;
        cut.record.dataSize = size;
        cut.data.resize(size);
        EXPECT_TRUE(gives("nlsDbCollationToLocale", 21, Rebuilt(world.library.handle, cut).status)) << size;
    }
    Stored old = store(world["1252 german"].locale, kit::kOldLevel);
    old.record.dataSize = 511;
    old.data.resize(511);
    EXPECT_TRUE(gives("nlsDbCollationToLocale", 21, Rebuilt(world.library.handle, old).status));
    const std::vector<std::uint16_t> tooShort{7, 6, 8};
    EXPECT_TRUE(
        gives("nlsDbCollationToLocale", 21,
              Rebuilt(world.library.handle, store(world["1252 german"].locale), "copy", &tooShort).status));
    std::vector<std::uint16_t> beyond = kit::sortData(7, {});
    beyond[2] = 400; // its map would end behind the block
    EXPECT_TRUE(
        gives("nlsDbCollationToLocale", 21,
              Rebuilt(world.library.handle, store(world["1252 german"].locale), "copy", &beyond).status));
}

TEST(RebuiltLocale, CaseListsWithAnUnpairedSurrogateGive22) {
    World world;
    Stored stored = store(world["UTF-8 BASIC"].locale);
    stored.data[1376 + 6] = 0x00;
    stored.data[1376 + 7] = 0xD8;
    EXPECT_TRUE(gives("nlsDbCollationToLocale", 22, Rebuilt(world.library.handle, stored).status));
}

TEST(RebuiltLocale, AFailureLeavesTheListAsItWas) {
    World world;
    const void *const before = peek::newest(world.library.handle);
    Stored stored = store(world["1252 BASIC"].locale);
    stored.data[0] = 'b';
    EXPECT_NE(Rebuilt(world.library.handle, stored).status, NLS_OK);
    EXPECT_EQ(peek::newest(world.library.handle), before);
}

TEST(RebuiltLocale, APageThroughShiftJisBringsItsCompanion) {
    World world;
    const Stored stored = store(world["EUCJIS weights"].locale);
    fixture::Library fresh(kit::worldFile());
    const Rebuilt rebuilt(fresh.handle, stored);
    ASSERT_TRUE(gives("nlsDbCollationToLocale", 0, rebuilt.status));
    EXPECT_EQ(kit::compare(rebuilt.locale, {0xB0, 0xA1}, {0x8E, 0xB1}).result, -1);
    fixture::DataFile without;
    without.codePage("EUCJIS", kit::eucPage());
    EXPECT_TRUE(gives("nlsDbCollationToLocale", 9, Rebuilt(fixture::Library(without).handle, stored).status));
}

class RebuiltOrder : public testing::TestWithParam<std::int32_t> {};

TEST_P(RebuiltOrder, RebuiltLocalesCompareKeyAndMapLikeTheOriginals) {
    World world(5);
    for (const Kit &one : world.kits) {
        Kit copy = one;
        const Stored stored = store(one.locale, GetParam());
        // A block of odd size is a misaligned block.
        for (const std::uint32_t more : {0U, 1U, 3U}) {
            const Rebuilt rebuilt(world.library.handle, stored, "copy", nullptr, nullptr,
                                  kit::sizeNeeded(stored, "copy") + more);
            ASSERT_TRUE(gives("nlsDbCollationToLocale", 0, rebuilt.status)) << one.name;
            copy.locale = rebuilt.locale;
            if (GetParam() < 6 && !copy.twin.has(fixture::kUtf8)) // the "basic" case table comes along
                copy.twin.byteCase =
                    one.script == kit::Script::Latin ? kit::latinCase() : fixture::ByteCase::ascii();
            else if (GetParam() < 6)
                copy.twin.casePages.emplace(kit::unicodeCase());
            kit::TextMaker maker(11 + more);
            for (int round = 0; round < 400 && !HasFatalFailure(); ++round) {
                SCOPED_TRACE(one.name + ", round " + std::to_string(round));
                kit::checkCompare(copy, maker);
                kit::checkCompareWithLengths(copy, maker);
                kit::checkSortKey(copy, maker);
                kit::checkCaseMapping(copy, maker);
            }
            EXPECT_TRUE(gives("nlsCloseDBLocale", 0, plainClose(rebuilt.locale)));
        }
    }
}

TEST_P(RebuiltOrder, ARecordKeepsItsOrderUnderAChangedDataFile) {
    if (GetParam() < 6)
        GTEST_SKIP() << "records of the old form take characters and case from the data file of today";
    World world;
    fixture::Library changed(kit::changedFile());
    for (const Kit &one : world.kits) {
        if (one.script == kit::Script::Long)
            continue; // the changed file has no such page; it needs none
        Kit copy = one;
        const Rebuilt rebuilt(changed.handle, store(one.locale));
        ASSERT_TRUE(gives("nlsDbCollationToLocale", 0, rebuilt.status)) << one.name;
        copy.locale = rebuilt.locale;
        kit::TextMaker maker(12);
        for (int round = 0; round < 400 && !HasFatalFailure(); ++round) {
            SCOPED_TRACE(one.name + ", round " + std::to_string(round));
            kit::checkCompare(copy, maker);
            kit::checkSortKey(copy, maker);
            kit::checkCaseMapping(copy, maker);
        }
        EXPECT_TRUE(gives("nlsCloseDBLocale", 0, plainClose(rebuilt.locale)));
    }
}

INSTANTIATE_TEST_SUITE_P(Levels, RebuiltOrder, testing::Values(kit::kOldLevel, kit::kNewLevel));

// ---- Closing --------------------------------------------------------------------------------------------

TEST(CloseDBLocale, WhatIsNoLocaleGives13Or24) {
    kit::refusesWhatIsNoLocale("nlsCloseDBLocale", plainClose);
}

TEST(CloseDBLocale, NullArgumentsGive16) {
    World world;
    const Rebuilt rebuilt(world.library.handle, store(world["1252 german"].locale));
    void *block = nullptr;
    std::uint32_t size = 0;
    EXPECT_TRUE(gives("nlsCloseDBLocale", 16, nlsCloseDBLocale(rebuilt.locale, nullptr, &size)));
    EXPECT_TRUE(gives("nlsCloseDBLocale", 16, nlsCloseDBLocale(rebuilt.locale, &block, nullptr)));
    EXPECT_EQ(peek::type(rebuilt.locale), 2) << "still open";
    EXPECT_TRUE(gives("nlsCloseDBLocale", 0, plainClose(rebuilt.locale)));
}

TEST(CloseDBLocale, AnOrdinaryLocaleStaysAndGivesNoBlock) {
    World world;
    void *block = &world;
    std::uint32_t size = 77;
    EXPECT_TRUE(gives("nlsCloseDBLocale", 0, nlsCloseDBLocale(world["1252 german"].locale, &block, &size)));
    EXPECT_EQ(block, nullptr);
    EXPECT_EQ(size, 0U);
    EXPECT_EQ(peek::type(world["1252 german"].locale), 2);
}

TEST(CloseDBLocale, GivesBackTheBlockAndTheSizeThatTheCallerGave) {
    World world;
    const Stored stored = store(world["1252 german"].locale);
    for (const std::uint32_t more : {0U, 1U, 777U}) {
        const std::uint32_t given = kit::sizeNeeded(stored, "copy") + more;
        const Rebuilt rebuilt(world.library.handle, stored, "copy", nullptr, nullptr, given);
        void *block = nullptr;
        std::uint32_t size = 0;
        EXPECT_TRUE(gives("nlsCloseDBLocale", 0, nlsCloseDBLocale(rebuilt.locale, &block, &size)));
        EXPECT_EQ(block, rebuilt.block);
        EXPECT_EQ(size, given);
        EXPECT_FALSE(isOnList(world.library.handle, rebuilt.locale));
        EXPECT_TRUE(gives("nlsCloseDBLocale", 24, nlsCloseDBLocale(rebuilt.locale, &block, &size)));
        std::int16_t result = 0;
        EXPECT_EQ(nlsCompare(rebuilt.locale, "a", "b", 1, &result), NLS_E_NOTLOCALE);
    }
}

TEST(CloseDBLocale, LocalesLeaveTheListInAnyOrder) {
    World world;
    const Stored stored = store(world["1252 german"].locale);
    const void *const before = peek::newest(world.library.handle);
    const unsigned orders[][3] = {{0, 1, 2}, {0, 2, 1}, {1, 0, 2}, {1, 2, 0}, {2, 0, 1}, {2, 1, 0}};
    for (const auto &order : orders) {
        std::vector<std::unique_ptr<Rebuilt>> rebuilt;
        for (int i = 0; i < 3; ++i)
            rebuilt.push_back(std::make_unique<Rebuilt>(world.library.handle, stored));
        for (const unsigned closed : order) {
            EXPECT_TRUE(gives("nlsCloseDBLocale", 0, plainClose(rebuilt[closed]->locale)));
            EXPECT_FALSE(isOnList(world.library.handle, rebuilt[closed]->locale));
            rebuilt[closed].reset(); // the block is the caller's again
            for (const void *object = peek::newest(world.library.handle); object != nullptr;
                 object = peek::next(object))
                if (peek::next(object) != nullptr && peek::type(peek::next(object)) == 2 &&
                    peek::previous(peek::next(object)) != nullptr) {
                    EXPECT_EQ(peek::previous(peek::next(object)), object);
                }
        }
        EXPECT_EQ(peek::newest(world.library.handle), before);
    }
}

TEST(CloseDBLocale, ABlockCanBeUsedAgain) {
    World world;
    Stored stored = store(world["EUCJIS weights"].locale);
    stored.record.data = stored.data.data();
    std::vector<unsigned char> block(4001);
    for (int round = 0; round < 10; ++round) {
        auto size = static_cast<std::uint32_t>(block.size());
        nlsLocale *locale = nullptr;
        ASSERT_TRUE(gives("nlsDbCollationToLocale", 0,
                          nlsDbCollationToLocale(world.library.handle, &stored.record, "again", &size,
                                                 block.data(), &locale)));
        EXPECT_EQ(kit::compare(locale, {0xB0, 0xA1}, {0x8E, 0xB1}).result, -1);
        ASSERT_TRUE(gives("nlsCloseDBLocale", 0, plainClose(locale)));
        std::fill(block.begin(), block.end(), 0xCC); // nothing may look at it any more
    }
    EXPECT_EQ(kit::compare(world["EUCJIS weights"].locale, {0xB0, 0xA1}, {0x8E, 0xB1}).result, -1);
}
