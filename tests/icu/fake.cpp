#include "fake.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <mutex>

namespace fake {

Icu icu;
Exit sortExit;

std::vector<std::string> Icu::names() const {
    std::vector<std::string> all;
    for (const Call &call : calls)
        all.push_back(call.name);
    return all;
}

int Icu::count(const std::string &name) const {
    return static_cast<int>(
        std::count_if(calls.begin(), calls.end(), [&](const Call &call) { return call.name == name; }));
}

const Call &Icu::last(const std::string &name) const {
    static const Call none;
    const auto at =
        std::find_if(calls.rbegin(), calls.rend(), [&](const Call &call) { return call.name == name; });
    return at == calls.rend() ? none : *at;
}

int Exit::count(const std::string &name) const {
    return static_cast<int>(
        std::count_if(calls.begin(), calls.end(), [&](const ExitCall &call) { return call.name == name; }));
}

namespace {

std::recursive_mutex inUse; // of the logs

constexpr std::int32_t kOverflow = 15;
constexpr std::int32_t kNotTerminated = -124;
constexpr std::int32_t kValidLocale = 1;
constexpr std::int32_t kCaseLevel = 3; // the attribute, and its values
constexpr std::int32_t kOff = 16;
constexpr std::int32_t kOn = 17;

struct Object {
    std::string name;
    bool open = true;
    std::int32_t strength = 2;
    bool caseLevel = false;
};

bool aligned(const void *units) {
    return reinterpret_cast<std::uintptr_t>(units) % 2 == 0;
}

// Puts a result and its terminator down as ICU does.
template <typename T>
std::int32_t put(const std::vector<T> &all, T *target, std::int32_t capacity, std::int32_t *error) {
    const auto size = static_cast<std::int32_t>(all.size());
    std::copy_n(all.begin(), std::min(size, capacity), target);
    if (size < capacity)
        target[size] = 0;
    else
        *error = size == capacity ? kNotTerminated : kOverflow;
    return size;
}

std::vector<std::uint16_t> decodeUtf8(const Bytes &text) {
    std::vector<std::uint16_t> units;
    for (std::size_t i = 0; i < text.size();) {
        const unsigned lead = text[i];
        const unsigned trails = lead < 0x80 ? 0 : lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
        std::uint32_t value = trails == 0 ? lead : lead & (0x3FU >> trails);
        for (unsigned t = 1; t <= trails; ++t)
            value = value << 6 | (i + t < text.size() ? text[i + t] & 0x3FU : 0);
        i += trails + 1;
        if (value < 0x10000) {
            units.push_back(fixture::halfOf(value));
        } else {
            units.push_back(fixture::halfOf(0xD800 + ((value - 0x10000) >> 10)));
            units.push_back(fixture::halfOf(0xDC00 + (value & 0x3FF)));
        }
    }
    return units;
}

std::vector<char> encodeUtf8(const std::vector<std::uint16_t> &units) {
    std::vector<char> text;
    const auto add = [&](std::uint32_t byte) { text.push_back(static_cast<char>(byte)); };
    for (std::size_t i = 0; i < units.size(); ++i) {
        std::uint32_t value = units[i];
        if (value >= 0xD800 && value < 0xDC00 && i + 1 < units.size())
            value = 0x10000 + ((value - 0xD800) << 10) + (units[++i] - 0xDC00U);
        if (value < 0x80) {
            add(value);
        } else if (value < 0x800) {
            add(0xC0 | value >> 6);
            add(0x80 | (value & 0x3F));
        } else if (value < 0x10000) {
            add(0xE0 | value >> 12);
            add(0x80 | (value >> 6 & 0x3F));
            add(0x80 | (value & 0x3F));
        } else {
            add(0xF0 | value >> 18);
            add(0x80 | (value >> 12 & 0x3F));
            add(0x80 | (value >> 6 & 0x3F));
            add(0x80 | (value & 0x3F));
        }
    }
    return text;
}

std::u16string text(const std::uint16_t *units, std::int32_t length) {
    return {reinterpret_cast<const char16_t *>(units), static_cast<std::size_t>(length)};
}

bool widens(const std::string &page, std::uint16_t unit) {
    return (page == "WIDE" && unit >= 0x80) || (page == "BROAD" && unit == 'w');
}

bool failsNow(std::int32_t *error) {
    const auto planned = icu.conversionError.find(icu.conversions++);
    if (planned != icu.conversionError.end())
        *error = planned->second;
    return *error > 0;
}

void noteUse(const Object &collator) {
    icu.usedStrength = collator.strength;
    icu.usedCaseLevel = collator.caseLevel;
}

// How an order without an answer of the test's compares: unit by unit.
std::int32_t plainOrder(const std::u16string &a, const std::u16string &b) {
    return a < b ? -1 : a == b ? 0 : 1;
}

} // namespace

} // namespace fake

using namespace fake;

extern "C" {

void *fake_ucnv_open(const char *name, std::int32_t *error);
void fake_ucnv_close(void *converter);
void fake_ucnv_reset(void *converter);
std::int32_t fake_ucnv_fromUChars(void *converter, char *target, std::int32_t capacity,
                                  const std::uint16_t *source, std::int32_t length, std::int32_t *error);
std::int32_t fake_ucnv_toUChars(void *converter, std::uint16_t *target, std::int32_t capacity,
                                const char *source, std::int32_t length, std::int32_t *error);
void *fake_ucol_open(const char *locale, std::int32_t *error);
void fake_ucol_close(void *collator);
const char *fake_ucol_getLocaleByType(const void *collator, std::int32_t type, std::int32_t *error);
std::int32_t fake_ucol_getStrength(const void *collator);
void fake_ucol_setStrength(void *collator, std::int32_t strength);
std::int32_t fake_ucol_getAttribute(const void *collator, std::int32_t attribute, std::int32_t *error);
void fake_ucol_setAttribute(void *collator, std::int32_t attribute, std::int32_t value, std::int32_t *error);
std::int32_t fake_ucol_strcoll(const void *collator, const std::uint16_t *a, std::int32_t lengthA,
                               const std::uint16_t *b, std::int32_t lengthB);
std::int32_t fake_ucol_getSortKey(const void *collator, const std::uint16_t *source, std::int32_t length,
                                  std::uint8_t *key, std::int32_t capacity);
void fake_ucol_getVersion(const void *collator, std::uint8_t *version);
void fake_unexpected(const char *name);
std::int32_t fake_init(const char *collation, void **user);
void fake_term(void *user);
std::int32_t fake_compare(const char *a, const char *b, const unsigned char *insensitive,
                          const unsigned char *sensitive, std::uint32_t mode, void *user);
void fake_copy(unsigned char *key, const char *source, std::uint32_t size, const unsigned char *insensitive,
               const unsigned char *sensitive, std::uint32_t mode, void *user);

void *fake_ucnv_open(const char *name, std::int32_t *error) {
    const std::scoped_lock lock(inUse);
    EXPECT_EQ(*error, 0);
    icu.calls.push_back({"ucnv_open", name, 0, 0, true});
    if (icu.openError.count(name) != 0)
        *error = icu.openError[name];
    if (*error > 0)
        return nullptr;
    ++icu.openConverters;
    return new Object{name};
}

void fake_ucnv_close(void *converter) {
    const std::scoped_lock lock(inUse);
    auto *const object = static_cast<Object *>(converter);
    icu.calls.push_back({"ucnv_close", object->name, 0, 0, true});
    EXPECT_TRUE(object->open);
    object->open = false; // never freed, so that a second close is seen
    --icu.openConverters;
}

void fake_ucnv_reset(void *converter) {
    const std::scoped_lock lock(inUse);
    const auto &object = *static_cast<Object *>(converter);
    icu.calls.push_back({"ucnv_reset", object.name, 0, 0, true});
    EXPECT_TRUE(object.open);
}

std::int32_t fake_ucnv_toUChars(void *converter, std::uint16_t *target, std::int32_t capacity,
                                const char *source, std::int32_t length, std::int32_t *error) {
    const std::scoped_lock lock(inUse);
    const auto &object = *static_cast<Object *>(converter);
    icu.calls.push_back({"ucnv_toUChars", object.name, length, capacity, aligned(target)});
    EXPECT_TRUE(object.open);
    if (failsNow(error))
        return 0;
    const std::size_t size = length < 0 ? std::strlen(source) : static_cast<std::size_t>(length);
    const Bytes bytes(source, source + size);
    if (object.name == "utf8")
        return put(decodeUtf8(bytes), target, capacity, error);
    std::vector<std::uint16_t> units;
    for (const unsigned char byte : bytes)
        units.push_back(fixture::halfOf(byte < 0x80 ? byte : 0x4E00U + byte));
    return put(units, target, capacity, error);
}

std::int32_t fake_ucnv_fromUChars(void *converter, char *target, std::int32_t capacity,
                                  const std::uint16_t *source, std::int32_t length, std::int32_t *error) {
    const std::scoped_lock lock(inUse);
    const auto &object = *static_cast<Object *>(converter);
    icu.calls.push_back({"ucnv_fromUChars", object.name, length, capacity, aligned(source)});
    EXPECT_TRUE(object.open);
    if (failsNow(error))
        return 0;
    std::vector<std::uint16_t> units;
    if (length < 0)
        for (; *source != 0; ++source)
            units.push_back(*source);
    else
        units.assign(source, source + length);
    std::vector<char> bytes;
    if (object.name == "utf8") {
        bytes = encodeUtf8(units);
    } else {
        for (const std::uint16_t unit : units)
            bytes.insert(bytes.end(), widens(object.name, unit) ? 4 : 1, static_cast<char>(unit & 0xFF));
    }
    return put(bytes, target, capacity, error);
}

void *fake_ucol_open(const char *locale, std::int32_t *error) {
    const std::scoped_lock lock(inUse);
    EXPECT_EQ(*error, 0);
    icu.calls.push_back({"ucol_open", locale, 0, 0, true});
    if (icu.openError.count(locale) != 0)
        *error = icu.openError[locale];
    if (*error > 0 || icu.nullCollator)
        return nullptr;
    ++icu.openCollators;
    return new Object{locale};
}

void fake_ucol_close(void *collator) {
    const std::scoped_lock lock(inUse);
    auto *const object = static_cast<Object *>(collator);
    icu.calls.push_back({"ucol_close", object->name, 0, 0, true});
    EXPECT_TRUE(object->open);
    object->open = false;
    --icu.openCollators;
}

const char *fake_ucol_getLocaleByType(const void *collator, std::int32_t type, std::int32_t *error) {
    const std::scoped_lock lock(inUse);
    const auto &object = *static_cast<const Object *>(collator);
    EXPECT_TRUE(object.open);
    EXPECT_EQ(type, kValidLocale);
    EXPECT_EQ(*error, 0);
    icu.calls.push_back({"ucol_getLocaleByType", object.name, type, 0, true});
    *error = icu.validLocaleError;
    const auto other = icu.validLocale.find(object.name);
    return other == icu.validLocale.end() ? object.name.c_str() : other->second;
}

std::int32_t fake_ucol_getStrength(const void *collator) {
    const std::scoped_lock lock(inUse);
    const auto &object = *static_cast<const Object *>(collator);
    EXPECT_TRUE(object.open);
    icu.calls.push_back({"ucol_getStrength", object.name, 0, 0, true});
    return object.strength;
}

std::int32_t fake_ucol_getAttribute(const void *collator, std::int32_t attribute, std::int32_t *error) {
    const std::scoped_lock lock(inUse);
    const auto &object = *static_cast<const Object *>(collator);
    EXPECT_TRUE(object.open);
    EXPECT_EQ(attribute, kCaseLevel);
    EXPECT_EQ(*error, 0);
    icu.calls.push_back({"ucol_getAttribute", object.name, attribute, 0, true});
    return object.caseLevel ? kOn : kOff;
}

void fake_ucol_setAttribute(void *collator, std::int32_t attribute, std::int32_t value, std::int32_t *error) {
    const std::scoped_lock lock(inUse);
    auto &object = *static_cast<Object *>(collator);
    EXPECT_TRUE(object.open);
    EXPECT_EQ(attribute, kCaseLevel);
    EXPECT_EQ(*error, 0);
    icu.calls.push_back({"ucol_setAttribute", object.name, attribute, value, true});
    object.caseLevel = value == kOn; // the default is off
}

void fake_ucol_setStrength(void *collator, std::int32_t strength) {
    const std::scoped_lock lock(inUse);
    auto &object = *static_cast<Object *>(collator);
    EXPECT_TRUE(object.open);
    icu.calls.push_back({"ucol_setStrength", object.name, strength, 0, true});
    object.strength = strength;
}

std::int32_t fake_ucol_strcoll(const void *collator, const std::uint16_t *a, std::int32_t lengthA,
                               const std::uint16_t *b, std::int32_t lengthB) {
    const std::scoped_lock lock(inUse);
    const auto &object = *static_cast<const Object *>(collator);
    EXPECT_TRUE(object.open);
    icu.calls.push_back({"ucol_strcoll", object.name, lengthA, lengthB, aligned(a) && aligned(b)});
    noteUse(object);
    const std::u16string first = text(a, lengthA);
    const std::u16string second = text(b, lengthB);
    return icu.order ? icu.order(first, second, object.strength) : plainOrder(first, second);
}

std::int32_t fake_ucol_getSortKey(const void *collator, const std::uint16_t *source, std::int32_t length,
                                  std::uint8_t *key, std::int32_t capacity) {
    const std::scoped_lock lock(inUse);
    const auto &object = *static_cast<const Object *>(collator);
    EXPECT_TRUE(object.open);
    icu.calls.push_back({"ucol_getSortKey", object.name, length, capacity, aligned(source)});
    noteUse(object);
    if (icu.key)
        return icu.key(text(source, length), key, capacity);
    // The strength as a digit, then two bytes per unit.
    std::vector<std::uint8_t> all{static_cast<std::uint8_t>('0' + object.strength)};
    for (std::int32_t i = 0; i < length; ++i) {
        all.push_back(static_cast<std::uint8_t>(1 + (source[i] >> 8)));
        all.push_back(static_cast<std::uint8_t>(source[i] | 1));
    }
    all.push_back(0);
    std::copy_n(all.begin(), std::min<std::ptrdiff_t>(std::ssize(all), capacity), key);
    return static_cast<std::int32_t>(all.size());
}

void fake_ucol_getVersion(const void *collator, std::uint8_t *version) {
    const std::scoped_lock lock(inUse);
    icu.calls.push_back({"ucol_getVersion", static_cast<const Object *>(collator)->name, 0, 0, true});
    for (std::uint8_t i = 0; i < 4; ++i)
        version[i] = static_cast<std::uint8_t>(0xA1 + i);
}

void fake_unexpected(const char *name) {
    const std::scoped_lock lock(inUse);
    ADD_FAILURE() << name << " was called";
}

std::int32_t fake_init(const char *collation, void **user) {
    const std::scoped_lock lock(inUse);
    *user = reinterpret_cast<void *>(sortExit.nextUser++);
    sortExit.calls.push_back({"init", collation, "", 0, 0, reinterpret_cast<std::uintptr_t>(*user), {}, {}});
    if (sortExit.init)
        sortExit.init();
    return sortExit.ready;
}

void fake_term(void *user) {
    const std::scoped_lock lock(inUse);
    sortExit.calls.push_back({"term", "", "", 0, 0, reinterpret_cast<std::uintptr_t>(user), {}, {}});
}

std::int32_t fake_compare(const char *a, const char *b, const unsigned char *insensitive,
                          const unsigned char *sensitive, std::uint32_t mode, void *user) {
    const std::scoped_lock lock(inUse);
    sortExit.calls.push_back({"compare", a, b, mode, 0, reinterpret_cast<std::uintptr_t>(user),
                              Bytes(insensitive, insensitive + 256), Bytes(sensitive, sensitive + 256)});
    return sortExit.result;
}

void fake_copy(unsigned char *key, const char *source, std::uint32_t size, const unsigned char *insensitive,
               const unsigned char *sensitive, std::uint32_t mode, void *user) {
    const std::scoped_lock lock(inUse);
    sortExit.calls.push_back({"copy", source, "", mode, size, reinterpret_cast<std::uintptr_t>(user),
                              Bytes(insensitive, insensitive + 256), Bytes(sensitive, sensitive + 256)});
    if (sortExit.copy)
        sortExit.copy(key, source, size);
    else if (size != 0) {
        std::strncpy(reinterpret_cast<char *>(key), source, size - 1);
        key[size - 1] = 0;
    }
}

} // extern "C"
