#include "library_fixture.hpp"

#include <gtest/gtest.h>

#include <cstring>

namespace fixture {

Library::Library(const DataFile &file, std::int32_t size, std::size_t misalignment)
    : files(file.image()), memory(static_cast<std::size_t>(size), misalignment) {
    const nlsStatus status = nlsInit(files.token(), memory.data(), memory.size(), &FileServer::read, &handle);
    EXPECT_EQ(status, NLS_OK) << "the library does not open";
    if (status != NLS_OK)
        handle = nullptr;
}

Library::~Library() {
    if (handle != nullptr)
        nlsClose(handle);
    EXPECT_TRUE(memory.intact()) << "written behind the lent block";
}

nlsStatus Library::lend(std::int32_t size, std::size_t misalignment) {
    lent.push_back(std::make_unique<LentMemory>(static_cast<std::size_t>(size), misalignment));
    return nlsAddBuffer(handle, lent.back()->data(), size);
}

nlsStatus Library::tryLocale(const std::string &page, const char *collation, const char *caseTable,
                             nlsLocale **out) {
    nlsLocale *locale = nullptr;
    const nlsStatus status = nlsCreateLocale(handle, page.c_str(), collation, caseTable, &locale);
    if (out != nullptr)
        *out = locale;
    return status;
}

nlsLocale *Library::locale(const std::string &page, const char *collation, const char *caseTable) {
    nlsLocale *result = nullptr;
    const nlsStatus status = tryLocale(page, collation, caseTable, &result);
    EXPECT_EQ(status, NLS_OK) << "locale " << page;
    return status == NLS_OK ? result : nullptr;
}

nlsStatus Library::tryConversion(const std::string &source, const std::string &target, nlsConversion **out) {
    nlsLocale *const from = locale(source);
    nlsLocale *const to = locale(target);
    nlsConversion *result = nullptr;
    const nlsStatus status = nlsCreateConversion(handle, from, to, &result);
    if (out != nullptr)
        *out = result;
    return status;
}

nlsConversion *Library::conversion(const std::string &source, const std::string &target) {
    nlsConversion *result = nullptr;
    const nlsStatus status = tryConversion(source, target, &result);
    EXPECT_EQ(status, NLS_OK) << "conversion " << source << " to " << target;
    return status == NLS_OK ? result : nullptr;
}

std::uint32_t Library::remaining() const {
    std::uint32_t value = 0;
    EXPECT_EQ(nlsGetIntNLSProperty(handle, 21, &value), NLS_OK);
    return value;
}

void ArenaModel::take(std::uint32_t size, std::uint32_t alignment) {
    const std::uint64_t padding = (alignment - cursor_ % alignment) % alignment;
    cursor_ += padding + size;
    remaining_ -= padding + size;
}

void ArenaModel::open(int entries) {
    take(96, 1);
    take(24, 8);
    take(static_cast<std::uint32_t>(entries) * 64, 2);
}

void ArenaModel::lend(const void *memory, std::uint32_t size) {
    cursor_ = addressOf(memory);
    remaining_ = size;
    take(24, 8);
}

namespace peek {

namespace {

template <typename T>
T at(const void *object, std::size_t offset) {
    T value;
    std::memcpy(&value, static_cast<const unsigned char *>(object) + offset, sizeof value);
    return value;
}

template <typename T>
void put(void *object, std::size_t offset, T value) {
    std::memcpy(static_cast<unsigned char *>(object) + offset, &value, sizeof value);
}

} // namespace

const void *next(const void *object) {
    return at<const void *>(object, 0);
}
const void *previous(const void *object) {
    return at<const void *>(object, 8);
}
std::uint16_t serial(const void *object) {
    return at<std::uint16_t>(object, 16);
}
std::uint16_t type(const void *object) {
    return at<std::uint16_t>(object, 18);
}
void setType(void *object, std::uint16_t type) {
    put(object, 18, type);
}
const void *newest(const nlsHandle *handle) {
    return at<const void *>(handle, 24);
}
const void *owner(const nlsLocale *locale) {
    return at<const void *>(locale, 24);
}
const void *characterTable(const nlsLocale *locale) {
    return at<const void *>(locale, 32);
}
void setCharacterTable(nlsLocale *locale, const void *table) {
    put(locale, 32, table);
}
const void *collation(const nlsLocale *locale) {
    return at<const void *>(locale, 40);
}
const void *caseTable(const nlsLocale *locale) {
    return at<const void *>(locale, 48);
}
std::string collationName(const nlsLocale *locale) {
    char name[21] = {};
    std::memcpy(name, reinterpret_cast<const char *>(locale) + 84, 20);
    return name;
}
void setBlobSize(nlsLocale *locale, std::uint32_t size) {
    put(locale, 124, size);
}
nlsLocale *source(const nlsConversion *conversion) {
    return at<nlsLocale *>(conversion, 24);
}
const void *converter(const nlsConversion *conversion) {
    return at<const void *>(conversion, 40);
}
std::int32_t kindWord(const nlsConversion *conversion) {
    std::int32_t word;
    std::memcpy(&word, static_cast<const unsigned char *>(converter(conversion)) - 8, sizeof word);
    return word;
}

} // namespace peek

FakeObject::FakeObject(const void *owner, std::uint16_t type) {
    std::memcpy(bytes_ + 18, &type, sizeof type);
    std::memcpy(bytes_ + 24, &owner, sizeof owner);
}

void FakeObject::setTarget(const nlsLocale *target) {
    std::memcpy(bytes_ + 32, &target, sizeof target);
}

} // namespace fixture
