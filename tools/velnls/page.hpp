// What this program has to know of a code page to walk text in it without the library's help.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

#include "library.hpp"

namespace velnls::tool {

enum class Form {
    SingleByte,
    Multibyte, // lead bytes with a fixed count of trail bytes
    Gb18030,   // two bytes, or four where the second is a digit
    Utf8,
    Utf16,
    Utf32,
};

// A set of byte values in the form that vector code looks up: bit h of low[n] stands for the byte with the
// digits h and n, bit h of high[n] for the one with h + 8 and n.
struct ByteSet {
    std::array<unsigned char, 16> low = {};
    std::array<unsigned char, 16> high = {};

    void insert(unsigned byte) {
        std::array<unsigned char, 16> &half = byte < 128 ? low : high;
        half[byte & 15] = static_cast<unsigned char>(half[byte & 15] | 1 << (byte >> 4 & 7));
    }
};

struct Page {
    std::string name;
    nlsLocale *locale = nullptr;
    Form form = Form::SingleByte;
    bool highByteFirst = false; // of 16-bit and 32-bit units
    bool plainAscii = false;    // bytes below 128 are characters of their own, whatever stands before them
    unsigned char lineFeed = 0x0A;
    std::array<unsigned char, 256> trailCount = {}; // by first byte
    std::array<unsigned char, 256> trailValid = {}; // 1 where a byte may be a trail byte

    bool hasPairs = false; // no character has more than two bytes
    ByteSet leadBytes;     // the two arrays once more, for vector code
    ByteSet trailBytes;

    // Fills what follows from the two arrays and the form.
    void derive();

    // Bytes of one unit: characters begin at multiples of it.
    std::size_t unitSize() const {
        return form == Form::Utf16 ? 2 : form == Form::Utf32 ? 4 : 1;
    }
    bool isUnicode() const {
        return form == Form::Utf8 || form == Form::Utf16 || form == Form::Utf32;
    }
    // The 16-bit or 32-bit unit at "text".
    std::uint32_t unit(const unsigned char *text) const {
        if (form == Form::Utf16) {
            return highByteFirst ? static_cast<std::uint32_t>(text[0] << 8 | text[1])
                                 : static_cast<std::uint32_t>(text[1] << 8 | text[0]);
        }
        const std::uint32_t b0 = text[0];
        const std::uint32_t b1 = text[1];
        const std::uint32_t b2 = text[2];
        const std::uint32_t b3 = text[3];
        return highByteFirst ? b0 << 24 | b1 << 16 | b2 << 8 | b3 : b3 << 24 | b2 << 16 | b1 << 8 | b0;
    }
};

// Asks the library about a code page that it knows. Throws StatusError when it does not.
Page describePage(Library &library, const std::string &name);

// Bytes that follow each first byte, as the library walks.
std::array<unsigned char, 256> trailCountsOf(nlsLocale *locale);

// Longest character of any page, in bytes.
constexpr std::size_t kLongestCharacter = 8;

} // namespace velnls::tool
