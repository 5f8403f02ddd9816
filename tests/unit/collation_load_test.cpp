// Loading of collations: kinds, sharing, what is borrowed from another page.
#include "library_fixture.hpp"
#include "status_rows.hpp"

#include <cstring>

namespace {

using fixture::ArenaModel;
using fixture::byteOf;
using fixture::Bytes;
using fixture::ByteTable;
using fixture::CharacterTable;
using fixture::CollationTable;
using fixture::DataFile;
using fixture::gives;
using fixture::Library;
namespace peek = fixture::peek;

// A loaded collation, by the place of its fields.
struct Record {
    explicit Record(const void *at) {
        const auto *const bytes = static_cast<const unsigned char *>(at);
        std::memcpy(sensitive.data(), bytes, 256);
        std::memcpy(insensitive.data(), bytes + 256, 256);
        std::memcpy(&next, bytes + 512, 8);
        std::memcpy(&count, bytes + 520, 4);
        std::memcpy(&kind, bytes + 524, 4);
        std::memcpy(&variant, bytes + 528, 4);
        page.assign(reinterpret_cast<const char *>(bytes) + 532);
        name.assign(reinterpret_cast<const char *>(bytes) + 552);
    }
    ByteTable sensitive{};
    ByteTable insensitive{};
    const void *next = nullptr;
    std::int32_t count = 0;
    std::int32_t kind = 0;
    std::int32_t variant = 0;
    std::string page;
    std::string name;
};

CollationTable shuffled() {
    CollationTable table;
    for (unsigned b = 0; b < 256; ++b) {
        table.sensitive[b] = byteOf(b * 7 + 3);
        table.insensitive[b] = byteOf(b * 5 + 1);
    }
    return table;
}

TEST(Collation, RecordHoldsTablesKindVariantAndNames) {
    for (const int kind : {0, 1, 4, 5, 6, 9, 255})
        for (const int variant : {0, 1, 200}) {
            CollationTable table = shuffled();
            table.kind = byteOf(kind);
            table.variant = byteOf(variant);
            DataFile file;
            file.codePage("P", CharacterTable::singleByte());
            file.collation("P", "order", table);
            Library library(file, 30000);
            const Record record(peek::collation(library.locale("P", "ORDER")));
            EXPECT_EQ(record.sensitive, table.sensitive);
            EXPECT_EQ(record.insensitive, table.insensitive);
            EXPECT_EQ(record.count, 256);
            EXPECT_EQ(record.kind, kind);
            EXPECT_EQ(record.variant, variant);
            EXPECT_EQ(record.page, "P");
            EXPECT_EQ(record.name, "ORDER") << "as it was asked for";
        }
}

TEST(Collation, LengthDecidesHowMuchIsCopied) {
    for (const std::int32_t count : {0, 1, 100, 256, 257, 512, 9999, -1, -999}) {
        CollationTable table;
        table.sensitive.fill(1);
        table.insensitive.fill(2);
        table.count = std::to_string(count);
        DataFile file;
        file.codePage("P", CharacterTable::singleByte());
        file.collation("P", "order", table);
        Library library(file, 30000);
        const Record record(peek::collation(library.locale("P", "order")));
        EXPECT_EQ(record.count, count);
        EXPECT_EQ(record.kind, 1);
        const int copied = std::max(0, std::min(count, 256));
        for (int b = 0; b < 256; ++b) {
            ASSERT_EQ(record.sensitive[static_cast<std::size_t>(b)], b < copied ? 1 : 0) << count << " " << b;
            ASSERT_EQ(record.insensitive[static_cast<std::size_t>(b)], b < copied ? 2 : 0)
                << count << " " << b;
        }
    }
}

TEST(Collation, SamePairGivesTheSameRecordAndIsReadOnce) {
    DataFile file;
    file.codePage("P", CharacterTable::singleByte());
    file.collation("P", "order", shuffled());
    file.caseTable("P", "basic", fixture::ByteCase());
    Library library(file, 30000);
    const void *const first = peek::collation(library.locale("P", "order"));
    library.files.restart();
    EXPECT_EQ(peek::collation(library.locale("p ", "ORDER ", "basic")), first);
    EXPECT_EQ(library.files.reads(), 1) << "the case table alone";
}

TEST(Collation, RecordTakes576Bytes) {
    for (std::size_t misalignment = 0; misalignment < 8; misalignment += 3) {
        DataFile file;
        file.codePage("P", CharacterTable::singleByte());
        file.collation("P", "order", shuffled());
        Library library(file, 30000, misalignment);
        ArenaModel model(library.memory.data(), 30000);
        model.open(2);
        library.locale("P", "order");
        model.take(136, 8);
        model.take(792, 1);
        model.take(576, 1);
        EXPECT_EQ(library.remaining(), model.remaining());
    }
}

TEST(Collation, RecordsAreListedNewestFirst) {
    DataFile file;
    file.codePage("P", CharacterTable::singleByte());
    file.collation("P", "one", shuffled());
    file.collation("P", "two", shuffled());
    Library library(file, 30000);
    const void *const one = peek::collation(library.locale("P", "one"));
    const void *const two = peek::collation(library.locale("P", "two"));
    EXPECT_EQ(Record(two).next, one);
}

TEST(Collation, ClosingAHandleTakesItsRecordsOffTheList) {
    DataFile file;
    file.codePage("P", CharacterTable::singleByte());
    file.collation("P", "one", shuffled());
    Library lasting(file, 30000);
    const void *const kept = peek::collation(lasting.locale("P", "one"));
    {
        Library passing(file, 30000);
        EXPECT_EQ(Record(peek::collation(passing.locale("P", "one"))).next, kept);
    }
    Library later(file, 30000);
    EXPECT_EQ(Record(peek::collation(later.locale("P", "one"))).next, kept);
}

TEST(Collation, BasicMustReadBasicTwice) {
    const auto load = [](const CollationTable &table) {
        DataFile file;
        file.codePage("P", CharacterTable::singleByte());
        file.collation("P", "basic", table);
        Library library(file, 30000);
        return library.tryLocale("P", "basic");
    };
    EXPECT_EQ(load(CollationTable::basic()), NLS_OK);
    for (const std::size_t at : {0U, 4U, 5U}) {
        CollationTable first = CollationTable::basic();
        first.sensitive[at] = 'b';
        EXPECT_TRUE(gives("nlsCreateLocale", 25, load(first)));
        CollationTable second = CollationTable::basic();
        second.insensitive[at] = 'c';
        EXPECT_TRUE(gives("nlsCreateLocale", 25, load(second)));
    }
    CollationTable more = CollationTable::basic();
    more.sensitive[6] = 'x'; // behind the NUL
    EXPECT_EQ(load(more), NLS_OK);
}

TEST(Collation, SortExitThatCannotBeLoadedGivesTwentyFive) {
    CollationTable table = shuffled();
    table.kind = 2;
    DataFile file;
    file.codePage("P", CharacterTable::singleByte());
    file.collation("P", "exit", table);
    Library library(file, 30000);
    EXPECT_TRUE(gives("nlsCreateLocale", 25, library.tryLocale("P", "exit")));
}

TEST(Collation, ShortBlockGivesTwentyOneBeforeItsKindIsJudged) {
    CollationTable wrong = CollationTable::basic();
    wrong.sensitive[0] = 'x';
    DataFile file;
    file.codePage("P", CharacterTable::singleByte());
    file.collation("P", "wrong", wrong);
    Library library(file, 30000);
    library.locale("P");
    library.files.restart();
    library.files.failRead(0, 1);
    EXPECT_EQ(library.tryLocale("P", "wrong"), NLS_E_TABLE);
    EXPECT_EQ(library.tryLocale("P", "wrong"), NLS_E_NOSORT);
}

TEST(Collation, CollatorNamesAreTakenInExactCaseOnly) {
    DataFile file;
    file.codePage("UTF-8", CharacterTable::utf8());
    file.collation("UTF-8", "icu-de", shuffled());
    Library library(file, 30000);
    EXPECT_EQ(Record(peek::collation(library.locale("UTF-8", "icu-de"))).kind, 1);
    EXPECT_EQ(Record(peek::collation(library.locale("UTF-8", "Icu-DE"))).kind, 1);
}

TEST(Collation, CollatorThatCannotBeOpenedTakesARecordEachTime) {
    DataFile file;
    file.codePage("UTF-8", CharacterTable::utf8());
    Library library(file, 30000);
    library.locale("UTF-8");
    library.files.restart();
    for (int i = 0; i < 2; ++i) {
        const std::uint32_t before = library.remaining();
        EXPECT_TRUE(gives("nlsCreateLocale", 1, library.tryLocale("UTF-8", "ICU-de")));
        const std::uint32_t used = before - library.remaining();
        EXPECT_GE(used, 136U + 576U);
        EXPECT_LT(used, 136U + 576U + 8U);
    }
    EXPECT_EQ(library.files.reads(), 0);
}

// ---- Borrowing ----

// OWN may borrow; OTHER has the order; the map between them turns the bytes round.
DataFile borrowing(const CharacterTable &own, const ByteTable &map, unsigned char format = 1, int variant = 1,
                   int type = 1) {
    DataFile file;
    file.codePage("OWN", own);
    file.codePage("OTHER", CharacterTable::singleByte());
    file.collation("OTHER", "order", shuffled());
    file.conversion("OTHER", "OWN", type, Bytes(map.begin(), map.end()), format, variant);
    return file;
}

ByteTable reversed() {
    ByteTable map{};
    for (unsigned b = 0; b < 256; ++b)
        map[b] = byteOf(255 - b);
    return map;
}

TEST(Collation, BorrowedWeightsArePermutedIntoThePage) {
    Library library(borrowing(CharacterTable::singleByte(fixture::kBorrows), reversed()), 60000);
    nlsLocale *const locale = library.locale("OWN", "order");
    ASSERT_NE(locale, nullptr);
    const Record record(peek::collation(locale));
    const CollationTable original = shuffled();
    for (unsigned b = 0; b < 256; ++b) {
        ASSERT_EQ(record.sensitive[255 - b], original.sensitive[b]);
        ASSERT_EQ(record.insensitive[255 - b], original.insensitive[b]);
    }
    EXPECT_EQ(record.count, 256);
    EXPECT_EQ(record.kind, 1);
    EXPECT_EQ(record.variant, 1);
    EXPECT_EQ(record.page, "OWN");
    EXPECT_EQ(record.name, "order");
}

TEST(Collation, BorrowedRecordIsMadeAnewEachTime) {
    DataFile file = borrowing(CharacterTable::singleByte(fixture::kBorrows), reversed());
    file.caseTable("OWN", "basic", fixture::ByteCase());
    Library library(file, 60000);
    const void *const first = peek::collation(library.locale("OWN", "order"));
    const void *const second = peek::collation(library.locale("OWN", "order", "basic"));
    EXPECT_NE(first, second);
    EXPECT_EQ(Record(first).sensitive, Record(second).sensitive);
    EXPECT_EQ(peek::collation(library.locale("OTHER", "order")) == first, false);
    EXPECT_EQ(Record(peek::collation(library.locale("OTHER", "order"))).sensitive, shuffled().sensitive)
        << "the lender keeps its own";
}

TEST(Collation, NothingIsBorrowedWithoutTheFlagTheFormatOrTheConversion) {
    const CharacterTable willing = CharacterTable::singleByte(fixture::kBorrows);
    Library noFlag(borrowing(CharacterTable::singleByte(), reversed()), 60000);
    EXPECT_TRUE(gives("nlsCreateLocale", 10, noFlag.tryLocale("OWN", "order")));
    Library noFormat(borrowing(willing, reversed(), 0), 60000);
    EXPECT_EQ(noFormat.tryLocale("OWN", "order"), NLS_E_NOCOLLATION);
    Library noName(borrowing(willing, reversed()), 60000);
    EXPECT_EQ(noName.tryLocale("OWN", "other"), NLS_E_NOCOLLATION);
    DataFile alone;
    alone.codePage("OWN", willing);
    alone.collation("OTHER", "order", shuffled());
    alone.conversion("OWN", "OTHER", 1, Bytes(256), 1, 1); // the wrong direction
    Library noConversion(alone, 60000);
    EXPECT_EQ(noConversion.tryLocale("OWN", "order"), NLS_E_NOCOLLATION);
}

TEST(Collation, LendersFailureGivesTen) {
    const CharacterTable willing = CharacterTable::singleByte(fixture::kBorrows);
    const DataFile file = borrowing(willing, reversed());
    int reads = 0;
    {
        Library library(file, 60000);
        library.locale("OWN");
        library.files.restart();
        library.locale("OWN", "order");
        reads = library.files.reads();
    }
    ASSERT_GE(reads, 2);
    for (int read = 0; read < reads; ++read) {
        Library library(file, 60000);
        library.locale("OWN");
        library.files.restart();
        library.files.failRead(read);
        EXPECT_EQ(library.tryLocale("OWN", "order"), NLS_E_NOCOLLATION) << read;
        library.files.heal();
        EXPECT_EQ(library.tryLocale("OWN", "order"), NLS_OK) << read;
    }
}

TEST(Collation, NextLenderServesWhenTheFirstHasNoConversion) {
    DataFile file;
    file.codePage("OWN", CharacterTable::singleByte(fixture::kBorrows));
    CollationTable strange;
    strange.kind = 7;
    file.collation("STRANGE", "order", strange);
    file.collation("OTHER", "Order ", shuffled());
    const ByteTable map = reversed();
    file.conversion("OTHER", "OWN", 1, Bytes(map.begin(), map.end()), 1, 1);
    Library library(file, 60000);
    EXPECT_EQ(Record(peek::collation(library.locale("OWN", "order"))).kind, 1);
}

TEST(Collation, WeightsStayWhenTheConverterIsNoByteMap) {
    // A converter whose kind has the bit 0x10 reorders nothing.
    DataFile file;
    file.codePage("OWN", CharacterTable::singleByte(fixture::kBorrows));
    file.codePage("OTHER", CharacterTable::singleByte());
    file.collation("OTHER", "order", shuffled());
    file.conversion("OTHER", "OWN", 23, Bytes(), 1, 1);
    Library library(file, 60000);
    nlsLocale *const locale = library.locale("OWN", "order");
    ASSERT_NE(locale, nullptr);
    EXPECT_EQ(Record(peek::collation(locale)).sensitive, shuffled().sensitive);
}

TEST(Collation, WeightsAreNotReadThroughAConverterWithoutATable) {
    for (const int type : {3, 4, 100}) {
        DataFile file;
        file.codePage("OWN", CharacterTable::singleByte(fixture::kBorrows));
        file.codePage("OTHER", CharacterTable::singleByte());
        file.collation("OTHER", "order", shuffled());
        file.conversion("OTHER", "OWN", type, Bytes(), 1, 1);
        Library library(file, 30000);
        const nlsStatus status = library.tryLocale("OWN", "order");
        EXPECT_TRUE(status == NLS_OK || status == NLS_E_NOCOLLATION) << type;
    }
}

} // namespace
