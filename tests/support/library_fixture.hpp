// An opened library over a data file made in memory, and looks into the objects it hands out.
#pragma once

#include "data_file.hpp"
#include "file_server.hpp"
#include "guarded_buffer.hpp"

#include "velnls.h"

#include <memory>
#include <string>
#include <vector>

namespace fixture {

// Opens a handle and closes it. A test that closes it itself may do so.
class Library {
public:
    explicit Library(const DataFile &file, std::int32_t size = 600000, std::size_t misalignment = 0);
    ~Library();
    Library(const Library &) = delete;
    Library &operator=(const Library &) = delete;

    // Creates or finds an object; a failure fails the test and gives null.
    nlsLocale *locale(const std::string &page, const char *collation = NLS_NO_COLLATION,
                      const char *caseTable = nullptr);
    nlsConversion *conversion(const std::string &source, const std::string &target);

    // As above but with the status for the caller to judge.
    nlsStatus tryLocale(const std::string &page, const char *collation = NLS_NO_COLLATION,
                        const char *caseTable = nullptr, nlsLocale **out = nullptr);
    nlsStatus tryConversion(const std::string &source, const std::string &target,
                            nlsConversion **out = nullptr);

    // Lends another block, which lasts as long as this object.
    nlsStatus lend(std::int32_t size = 76000, std::size_t misalignment = 0);

    [[nodiscard]] std::uint32_t remaining() const;

    FileServer files;
    std::vector<std::unique_ptr<LentMemory>> lent;
    LentMemory memory;
    nlsHandle *handle = nullptr;
};

// What the arena should have left after each taking, starting from a block just lent to nlsInit.
class ArenaModel {
public:
    ArenaModel(const void *memory, std::uint32_t size) : cursor_(addressOf(memory)), remaining_(size) {}

    void take(std::uint32_t size, std::uint32_t alignment);
    // Handle, descriptor and directory.
    void open(int entries);
    // A block lent by nlsAddBuffer.
    void lend(const void *memory, std::uint32_t size);

    [[nodiscard]] std::uint32_t remaining() const {
        return static_cast<std::uint32_t>(remaining_);
    }

private:
    static std::uint64_t addressOf(const void *memory) {
        return reinterpret_cast<std::uintptr_t>(memory);
    }

    std::uint64_t cursor_;
    std::uint64_t remaining_;
};

// Fields of objects, by their place.
namespace peek {

std::uint16_t serial(const void *object);
std::uint16_t type(const void *object);
void setType(void *object, std::uint16_t type);
const void *next(const void *object);
const void *previous(const void *object);
const void *newest(const nlsHandle *handle); // head of the object list

const void *owner(const nlsLocale *locale);
const void *characterTable(const nlsLocale *locale);
void setCharacterTable(nlsLocale *locale, const void *table);
const void *collation(const nlsLocale *locale);
const void *caseTable(const nlsLocale *locale);
std::string collationName(const nlsLocale *locale);
void setBlobSize(nlsLocale *locale, std::uint32_t size);

nlsLocale *source(const nlsConversion *conversion);
const void *converter(const nlsConversion *conversion);
std::int32_t kindWord(const nlsConversion *conversion); // of a converter that is not null

} // namespace peek

// An object of the right shape with a tag of the test's choice, owned by a handle.
class FakeObject {
public:
    FakeObject(const void *owner, std::uint16_t type);

    nlsLocale *asLocale() {
        return reinterpret_cast<nlsLocale *>(bytes_);
    }
    nlsConversion *asConversion() {
        return reinterpret_cast<nlsConversion *>(bytes_);
    }
    void setTarget(const nlsLocale *target);

private:
    alignas(16) unsigned char bytes_[136] = {};
};

} // namespace fixture
