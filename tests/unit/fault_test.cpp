// Everything that can run out or fail, at every place where it can: arena sizes in steps of one byte, the
// n-th read failing or short, memory at odd addresses. Each time the stated status, and success on the next
// attempt.
#include "conversion_pair.hpp"

#include <functional>

namespace {

using fixture::ByteCase;
using fixture::CharacterTable;
using fixture::CollationTable;
using fixture::DataFile;
using fixture::FileServer;
using fixture::gives;
using fixture::LentMemory;
using fixture::Library;
using fixture::Mapping;
using fixture::UnicodeCase;
using unit::Bytes;

// A page of every kind; the directory is filled up so that the smallest block has hardly any room left.
DataFile everything(int entries) {
    DataFile file(entries);
    file.codePage("P", CharacterTable::doubleByte());
    file.codePage("S", CharacterTable::singleByte());
    file.codePage("OWN", CharacterTable::singleByte(fixture::kBorrows));
    file.codePage("UTF-8", CharacterTable::utf8());
    file.codePage("UTF-16", CharacterTable::singleByte(fixture::kMultibyte | fixture::kWide));
    file.codePage("EUC", CharacterTable::doubleByte(fixture::kMultibyte | fixture::kThroughShiftJis));
    file.codePage("SHIFT-JIS", CharacterTable::doubleByte());
    for (const char *const page : {"P", "S", "UTF-8", "EUC", "SHIFT-JIS"})
        file.collation(page, "basic", CollationTable::basic());
    file.collation("S", "german", CollationTable());
    for (const char *const page : {"P", "S", "EUC", "SHIFT-JIS"})
        file.caseTable(page, "basic", ByteCase::ascii());
    file.caseTable("UTF-8", "basic", UnicodeCase{{{'a', 'A'}, {0xE4, 0xC4}, {0x1E01, 0x1E00}}, {{'A', 'a'}}});
    file.mapping("P", "UTF-8", 17, Mapping::singleBytePage());
    file.conversion("UTF-8", "P", 18);
    file.conversion("P", "UTF-16", 29);
    file.conversion("UTF-16", "P", 30);
    file.conversion("S", "UTF-8", 19, fixture::units16(unit::someUnits()), 19);
    file.conversion("UTF-8", "S", 20);
    file.conversion("UTF-8", "UTF-16", 24);
    const fixture::ByteTable map = fixture::identityTable();
    file.conversion("S", "OWN", 1, Bytes(map.begin(), map.end()), 1, 1);
    file.conversion("EUC", "SHIFT-JIS", 4);
    while (file.entries() < entries)
        file.conversion("FILL" + std::to_string(file.entries()), "X", 3);
    return file;
}

struct Creation {
    const char *what;
    std::function<nlsStatus(Library &)> run;
};

nlsStatus makeLocale(Library &library, const char *page, const char *collation, const char *caseTable) {
    nlsLocale *locale = nullptr;
    return nlsCreateLocale(library.handle, page, collation, caseTable, &locale);
}

nlsStatus makeConversion(Library &library, const char *source, const char *target) {
    nlsLocale *from = nullptr;
    nlsLocale *to = nullptr;
    nlsStatus status = nlsCreateLocale(library.handle, source, NLS_NO_COLLATION, nullptr, &from);
    if (status == NLS_OK)
        status = nlsCreateLocale(library.handle, target, NLS_NO_COLLATION, nullptr, &to);
    nlsConversion *conversion = nullptr;
    return status == NLS_OK ? nlsCreateConversion(library.handle, from, to, &conversion) : status;
}

std::vector<Creation> creations() {
    const auto locale = [](const char *page, const char *collation, const char *caseTable) {
        return [=](Library &library) { return makeLocale(library, page, collation, caseTable); };
    };
    const auto conversion = [](const char *source, const char *target) {
        return [=](Library &library) { return makeConversion(library, source, target); };
    };
    return {
        {"locale with collation and case table", locale("S", "german", "basic")},
        {"locale with borrowed weights", locale("OWN", "german", nullptr)},
        {"locale with Unicode case table", locale("UTF-8", "basic", "basic")},
        {"locale with companion", locale("EUC", "basic", "basic")},
        {"byte map", conversion("S", "OWN")},
        {"mapping", conversion("P", "UTF-8")},
        {"mapping, the other direction", conversion("UTF-8", "P")},
        {"leg to UTF-16", conversion("P", "UTF-16")},
        {"leg from UTF-16", conversion("UTF-16", "P")},
        {"byte table", conversion("S", "UTF-8")},
        {"byte table, the other direction", conversion("UTF-8", "S")},
        {"chain", conversion("S", "UTF-16")},
    };
}

TEST(Fault, EveryArenaSizeUntilEachCreationSucceeds) {
    const int entries = 387;
    const DataFile file = everything(entries);
    for (const Creation &creation : creations()) {
        int failed = 0;
        bool succeeded = false;
        for (std::int32_t size = 25000; size < 60000; ++size) {
            Library library(file, size);
            const nlsStatus status = creation.run(library);
            if (status == NLS_OK) {
                succeeded = true;
                break;
            }
            ++failed;
            // Where a borrowing fails inside, the page just has no such collation; a reverse table passes on
            // its forward table's failure as its own.
            const std::string what = creation.what;
            const bool borrowing = what == "locale with borrowed weights";
            const bool reverse = what == "byte table, the other direction";
            ASSERT_TRUE(status == NLS_E_NOMEM || (borrowing && status == NLS_E_NOCOLLATION) ||
                        (reverse && status == NLS_E_ICU))
                << creation.what << " with " << size << " bytes gave " << status;
            if (size % 7 != 0)
                continue;
            ASSERT_EQ(library.lend(76000), NLS_OK) << "the handle is not busy";
            ASSERT_EQ(creation.run(library), NLS_OK) << creation.what << " after " << size;
        }
        EXPECT_TRUE(succeeded) << creation.what;
        EXPECT_GT(failed, 100) << creation.what << ": the smallest block is too roomy for this test";
    }
}

TEST(Fault, EverySuccessHoldsAtEveryLargerSize) {
    // One run after the other in one block: once something fails, nothing that comes later is damaged by it.
    const DataFile file = everything(387);
    for (std::int32_t size = 25000; size < 60000; size += 61) {
        Library library(file, size, static_cast<std::size_t>(size % 16));
        for (const Creation &creation : creations()) {
            nlsStatus status = creation.run(library);
            if (status != NLS_OK) {
                ASSERT_EQ(library.lend(76000, static_cast<std::size_t>(size % 13)), NLS_OK);
                status = creation.run(library);
            }
            ASSERT_EQ(status, NLS_OK) << creation.what << " at " << size;
        }
        for (const auto &block : library.lent)
            ASSERT_TRUE(block->intact());
    }
}

TEST(Fault, EveryReadThatFailsOrIsShort) {
    const DataFile file = everything(60);
    for (const Creation &creation : creations()) {
        int reads = 0;
        {
            Library library(file);
            library.files.restart();
            ASSERT_EQ(creation.run(library), NLS_OK) << creation.what;
            reads = library.files.reads();
        }
        ASSERT_GT(reads, 0);
        for (int read = 0; read < reads; ++read)
            for (const std::uint32_t missing : {1U, 100U, FileServer::kEverything}) {
                Library library(file);
                library.files.restart();
                library.files.failRead(read, missing);
                const nlsStatus status = creation.run(library);
                const std::string what = creation.what;
                // Legs and reverses pass on a failure as 8, a page's characters within a mapping as 1.
                ASSERT_TRUE(status == NLS_E_TABLE ||
                            (what == "locale with borrowed weights" && status == NLS_E_NOCOLLATION) ||
                            (what != "locale with borrowed weights" && status == NLS_E_ICU &&
                             (what.find("leg") == 0 || what.find("direction") != std::string::npos ||
                              what == "chain")))
                    << what << ", read " << read << " gave " << status;
                library.files.heal();
                ASSERT_EQ(creation.run(library), NLS_OK) << what << " after read " << read;
            }
    }
}

TEST(Fault, EveryReadOfTheOpeningThatFailsOrIsShort) {
    const DataFile file = everything(60);
    int reads = 0;
    {
        Library library(file);
        reads = library.files.reads();
    }
    for (int read = 0; read < reads; ++read)
        for (const std::uint32_t missing : {1U, FileServer::kEverything}) {
            FileServer files(file.image());
            files.failRead(read, missing);
            LentMemory memory(30000);
            nlsHandle *handle = nullptr;
            const nlsStatus status = nlsInit(files.token(), memory.data(), 30000, &FileServer::read, &handle);
            ASSERT_TRUE(gives("nlsInit", read == 0 ? 5 : 4, status)) << read;
            ASSERT_EQ(handle, nullptr);
            files.restart();
            ASSERT_EQ(nlsInit(files.token(), memory.data(), 30000, &FileServer::read, &handle), NLS_OK)
                << "the block serves again";
            nlsClose(handle);
        }
}

TEST(Fault, ReadThatClaimsMoreThanAskedIsTakenAsEnough) {
    // Only a count below what was asked for is a failure.
    static FileServer *server = nullptr;
    const DataFile file = everything(60);
    FileServer files(file.image());
    server = &files;
    const nlsReadCallback generous = [](std::uint32_t token, std::uint32_t offset, unsigned char *buffer,
                                        std::uint32_t length) {
        return FileServer::read(token, offset, buffer, length) + 5 * (server != nullptr);
    };
    LentMemory memory(60000);
    nlsHandle *handle = nullptr;
    ASSERT_EQ(nlsInit(files.token(), memory.data(), 60000, generous, &handle), NLS_OK);
    nlsLocale *locale = nullptr;
    EXPECT_EQ(nlsCreateLocale(handle, "S", "german", "basic", &locale), NLS_OK);
    nlsClose(handle);
    server = nullptr;
}

TEST(Fault, EveryCreationWorksAtEveryAddress) {
    const DataFile file = everything(60);
    for (std::size_t misalignment = 0; misalignment < 16; ++misalignment) {
        Library library(file, 100000, misalignment);
        for (const Creation &creation : creations())
            ASSERT_EQ(creation.run(library), NLS_OK) << creation.what << " at " << misalignment;
        nlsConversion *conversion = nullptr;
        ASSERT_EQ(
            nlsCreateConversion(library.handle, library.locale("S"), library.locale("UTF-8"), &conversion),
            NLS_OK);
        EXPECT_EQ(fixture::convert(conversion, {'a', 0x80}, 8).text(), (Bytes{'a', 0xD2, 0x80}));
    }
}

TEST(Fault, EveryCreationRefusesReentryAtEveryRead) {
    const DataFile file = everything(60);
    for (const Creation &creation : creations()) {
        Library library(file);
        int refused = 0;
        library.files.onRead = [&](std::uint32_t, std::uint32_t) {
            nlsLocale *locale = nullptr;
            const nlsStatus status = nlsCreateLocale(library.handle, "SHIFT-JIS", "basic", nullptr, &locale);
            EXPECT_TRUE(gives("nlsCreateLocale", 23, status)) << creation.what;
            EXPECT_TRUE(gives("nlsClose", 23, nlsClose(library.handle)));
            ++refused;
        };
        EXPECT_EQ(creation.run(library), NLS_OK) << creation.what;
        EXPECT_GT(refused, 0);
        library.files.onRead = nullptr;
        EXPECT_EQ(library.lend(), NLS_OK);
    }
}

} // namespace
