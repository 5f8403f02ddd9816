// Plain twins of the calls that match, one step after the other as the manual of each call has it, without a
// thought for speed. They walk characters by themselves; whether two are equal they ask nlsCompareN, and
// counts nlsCountChars.
#pragma once

#include "bytes.hpp"

#include "velnls.h"

#include <array>
#include <cstdint>
#include <string>

namespace model {

inline constexpr std::uint32_t kUnwritten = 0xABCDEF01;
inline constexpr std::ptrdiff_t kNowhere = -1; // a null result pointer

struct Page {
    nlsLocale *locale = nullptr;
    std::array<unsigned char, 256> attributes{};
    bool utf8 = false;
};

struct Found {
    nlsStatus status = 0;
    std::uint32_t position = 0;
    std::uint32_t endOffset = kUnwritten; // where the call has one
    std::ptrdiff_t found = kNowhere;      // offset in the text
};

// A counted string before or after a call. The byte behind its size is there too.
struct Out {
    nlsStatus status = 0;
    fixture::Bytes buffer; // size + 1 bytes
    std::uint32_t size = 0;
    std::uint32_t length = 0;
    std::uint32_t count = kUnwritten; // of replacements
    Found match;                      // of nlsReplace
};

struct Signs {
    std::uint32_t escape;
    std::uint32_t oneCharacter;
    std::uint32_t anyString;
};

nlsStatus like(const Page &page, const std::string &pattern, const std::string &string, std::uint16_t mode,
               const Signs &signs);

Found searchForwards(const Page &page, const std::string &pattern, const std::string &text,
                     std::uint16_t mode);
Found searchBackwards(const Page &page, const std::string &pattern, const std::string &text,
                      std::int32_t length, std::uint16_t mode);
Out replace(const Page &page, const std::string &pattern, const std::string &replacement,
            const std::string &text, std::uint16_t mode, Out out);
// The pattern is not empty.
Out replaceAll(const Page &page, const std::string &pattern, const std::string &replacement,
               const std::string &text, std::uint16_t mode, Out out);

Found findForwards(const Page &page, std::uint32_t lchar, const std::string &text, std::uint16_t mode);
Found findBackwards(const Page &page, std::uint32_t lchar, const std::string &text, std::int32_t length,
                    std::uint16_t mode);
Found trimLeft(const Page &page, const std::string &set, const std::string &text, std::uint16_t mode);
Found trimRight(const Page &page, const std::string &set, const std::string &text, std::int32_t length,
                std::uint16_t mode);

} // namespace model
