// Real text to convert: prose of Debian's translated manual pages and the Unicode names list.
#pragma once

#include <string>
#include <string_view>

namespace bench {

struct Text {
    std::string utf8;   // about 8 MB, repeated when the source has less
    std::string origin; // where it comes from, for the report
};

// The text of a language: "de", "en", "fr", "ru", "ja", "ko", "zh_CN", "zh_TW". Read on first use.
const Text &textOf(std::string_view language);

// How many bytes the buffer size holds.
inline constexpr std::size_t kBufferBytes = 8u << 20;

} // namespace bench
