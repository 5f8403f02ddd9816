// What the fuzz targets of text share: one open library over a data file with a page of every shape, and
// buffers of exact size.
#pragma once

#include "lent_block.hpp"

#include "harness/world_file.hpp"

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

namespace fuzz {

// Opened at the first use. Ends the process when something does not open.
nlsHandle *world();
// Closes the library now and then, so that what failed attempts have taken of its memory comes back. Locales
// got before are gone.
void refreshWorld();

struct NamedLocale {
    const char *page;
    const char *collation;
    const char *caseTable;
};
inline constexpr NamedLocale kLocales[] = {
    {"1252", "german", nullptr},     {"1252", "literal", "basic"},   {"1252", "basic", "basic"},
    {"1252", "basic", nullptr},      {"620-2533", "basic", "basic"}, {"SHIFT-JIS", "weights", "basic"},
    {"SHIFT-JIS", "basic", "basic"}, {"EUCJIS", "weights", "basic"}, {"EUCJIS", "basic", "basic"},
    {"UTF-8", "weights", "basic"},   {"UTF-8", "basic", "basic"},    {"UTF-8", "basic", nullptr},
    {"LONG", "weights", nullptr},    {"LONG", "basic", "basic"},     {"LONG", "basic", nullptr},
};
inline constexpr unsigned kLocaleCount = sizeof kLocales / sizeof kLocales[0];

nlsLocale *localeOf(unsigned number);

// A NUL-terminated copy of exactly its own size; NULs inside end it earlier.
class Terminated {
public:
    explicit Terminated(const std::vector<std::uint8_t> &text) : block_(text.size() + 1) {
        std::copy(text.begin(), text.end(), block_.data());
        block_.data()[text.size()] = 0;
    }
    char *get() {
        return reinterpret_cast<char *>(block_.data());
    }
    std::size_t length() {
        return std::strlen(get());
    }

private:
    Block block_;
};

// Sort keys, compares (whole and bounded), the laws of order that hold for every text.
void orderEveryWay(nlsLocale *locale, const std::vector<std::uint8_t> &a, const std::vector<std::uint8_t> &b,
                   std::uint16_t keySize, std::uint16_t mode, bool trim);
// Both directions into destinations of exactly this size.
void mapEveryWay(nlsLocale *locale, const std::vector<std::uint8_t> &text, std::uint32_t size);

} // namespace fuzz
