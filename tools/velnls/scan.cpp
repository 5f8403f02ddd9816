// The walks that judge text, one for each form of code page.
#include "scan.hpp"

#include "scan_vector.hpp"

#include <cstdint>
#include <cstdio>
#include <cstring>

namespace velnls::tool {

namespace {

// Bytes that the fast loops look at together.
constexpr std::size_t kBlock = 32;

bool asciiBlock(const unsigned char *text) {
    std::uint64_t words[kBlock / 8];
    std::memcpy(words, text, kBlock);
    return ((words[0] | words[1] | words[2] | words[3]) & 0x8080808080808080u) == 0;
}

bool isContinuation(unsigned char byte) {
    return (byte & 0xC0) == 0x80;
}

struct ByteRange {
    unsigned char low;
    unsigned char high;
};

// The bytes that may stand second in a sequence: this is where overlong forms, surrogates and values above
// U+10FFFF are told from characters.
ByteRange secondByteRange(unsigned char lead) {
    switch (lead) {
    case 0xE0:
        return {0xA0, 0xBF};
    case 0xED:
        return {0x80, 0x9F};
    case 0xF0:
        return {0x90, 0xBF};
    case 0xF4:
        return {0x80, 0x8F};
    default:
        return {0x80, 0xBF};
    }
}

// Bytes of a sequence that begins with "lead"; 0 for bytes that begin none.
std::size_t utf8Length(unsigned char lead) {
    if (lead < 0x80) {
        return 1;
    }
    if (lead < 0xC2 || lead > 0xF4) {
        return 0;
    }
    return lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
}

// One character with every check; at least one byte is there. "good" is its length when it is well formed. A
// malformed sequence is as long as the part that could have begun a character, and at least one byte.
Scan scanUtf8Character(const unsigned char *text, std::size_t size, bool atEnd) {
    const std::size_t length = utf8Length(text[0]);
    if (length == 0) {
        return {0, 1, isContinuation(text[0]) ? Fault::LoneContinuation : Fault::ImpossibleByte};
    }
    const ByteRange second = secondByteRange(text[0]);
    for (std::size_t i = 1; i < length; ++i) {
        if (i == size) {
            return atEnd ? Scan{0, size, Fault::CutShort} : Scan{};
        }
        const bool fits = i == 1 ? text[i] >= second.low && text[i] <= second.high : isContinuation(text[i]);
        if (!fits) {
            return {0, i, Fault::BadContinuation};
        }
    }
    return {length, 0, Fault::None};
}

// Length of the character at "text" when it is well formed, else 0. Four bytes may be read.
std::size_t wellFormedUtf8(const unsigned char *text) {
    if (text[0] < 0x80) {
        return 1;
    }
    std::uint32_t bytes = 0;
    std::memcpy(&bytes, text, sizeof bytes);
    static_assert(sizeof bytes == 4);
    // The masks are written for machines that keep the low byte first, the only ones supported.
    if ((bytes & 0x0000C0E0u) == 0x000080C0u) {
        return (bytes & 0x1Eu) != 0 ? 2 : 0;
    }
    if ((bytes & 0x00C0C0F0u) == 0x008080E0u) {
        const std::uint32_t top = bytes & 0x0000200Fu;
        return top != 0 && top != 0x0000200Du ? 3 : 0;
    }
    if ((bytes & 0xC0C0C0F8u) == 0x808080F0u) {
        const std::uint32_t top = ((bytes & 0x07u) << 2) | ((bytes >> 12) & 0x03u); // planes 0 to 31
        return top >= 1 && top <= 16 ? 4 : 0;
    }
    return 0;
}

Scan scanUtf8(const unsigned char *text, std::size_t size, bool atEnd) {
    std::size_t at = wellFormedUtf8Prefix(text, size);
    while (size - at >= kBlock) {
        if (asciiBlock(text + at)) {
            at += kBlock;
            continue;
        }
        // Every character that begins before "stop" lies inside the block.
        const std::size_t stop = at + kBlock - 3;
        while (at < stop) {
            const std::size_t length = wellFormedUtf8(text + at);
            if (length == 0) {
                const Scan found = scanUtf8Character(text + at, size - at, atEnd);
                return {at, found.bad, found.fault};
            }
            at += length;
        }
    }
    while (at < size) {
        const Scan found = scanUtf8Character(text + at, size - at, atEnd);
        if (found.good == 0) {
            return {at, found.bad, found.fault};
        }
        at += found.good;
    }
    return {at, 0, Fault::None};
}

Scan scanUtf16(const Page &page, const unsigned char *text, std::size_t size, bool atEnd) {
    // The high byte of a unit tells a surrogate; both byte orders are served by a mask over whole words.
    const std::uint64_t mask = page.highByteFirst ? 0x00F800F800F800F8u : 0xF800F800F800F800u;
    const std::uint64_t surrogate = page.highByteFirst ? 0x00D800D800D800D8u : 0xD800D800D800D800u;
    const std::uint64_t low = page.highByteFirst ? 0x0008000800080008u : 0x0800080008000800u;
    std::size_t at = 0;
    for (;;) {
        // A field of (word AND mask) XOR surrogate is zero for a surrogate. Zero fields are found by
        // subtracting the lowest bit of the mask; a borrow can only mark too much, never too little.
        while (size - at >= kBlock) {
            std::uint64_t words[kBlock / 8];
            std::memcpy(words, text + at, kBlock);
            std::uint64_t found = 0;
            for (const std::uint64_t word : words) {
                const std::uint64_t field = (word & mask) ^ surrogate;
                found |= (field - low) & ~field & (mask & ~(mask >> 1));
            }
            if (found != 0) {
                break;
            }
            at += kBlock;
        }
        const std::size_t stop = size - at >= kBlock ? at + kBlock : size;
        while (at < stop) {
            if (size - at < 2) {
                return atEnd ? Scan{at, 1, Fault::CutShort} : Scan{at, 0, Fault::None};
            }
            const std::uint32_t unit = page.unit(text + at);
            if ((unit & 0xF800u) != 0xD800u) {
                at += 2;
                continue;
            }
            if (unit >= 0xDC00u) {
                return {at, 2, Fault::LoneLow};
            }
            if (size - at < 4) {
                if (!atEnd) {
                    return {at, 0, Fault::None};
                }
                // An odd byte behind the surrogate is a fault of its own.
                return {at, 2, size - at == 2 ? Fault::CutShort : Fault::LoneHigh};
            }
            if ((page.unit(text + at + 2) & 0xFC00u) != 0xDC00u) {
                return {at, 2, Fault::LoneHigh};
            }
            at += 4;
        }
        if (at >= size) {
            return {at, 0, Fault::None};
        }
    }
}

Scan scanUtf32(const Page &page, const unsigned char *text, std::size_t size, bool atEnd) {
    std::size_t at = 0;
    while (size - at >= 4) {
        const std::uint32_t unit = page.unit(text + at);
        if (unit > 0x10FFFFu) {
            return {at, 4, Fault::OutOfRange};
        }
        if ((unit & 0xFFFFF800u) == 0xD800u) {
            return {at, 4, Fault::Surrogate};
        }
        at += 4;
    }
    if (at < size && atEnd) {
        return {at, size - at, Fault::CutShort};
    }
    return {at, 0, Fault::None};
}

// A lead byte alone is the malformed sequence, so that whatever follows it gets its own chance.
Scan scanMultibyte(const Page &page, const unsigned char *text, std::size_t size, bool atEnd) {
    std::size_t at = page.hasPairs ? wellFormedPairsPrefix(page, text, size) : 0;
    while (at < size) {
        if (page.plainAscii && text[at] < 0x80) {
            if (size - at >= kBlock && asciiBlock(text + at)) {
                at += kBlock;
            } else {
                ++at;
            }
            continue;
        }
        const std::size_t trails = page.trailCount[text[at]];
        for (std::size_t i = 1; i <= trails; ++i) {
            if (at + i == size) {
                return atEnd ? Scan{at, size - at, Fault::CutShort} : Scan{at, 0, Fault::None};
            }
            if (page.trailValid[text[at + i]] == 0) {
                return {at, i, Fault::BadTrail};
            }
        }
        at += trails + 1;
    }
    return {at, 0, Fault::None};
}

bool isGb18030Lead(unsigned char byte) {
    return byte >= 0x81 && byte <= 0xFE;
}

bool isDigit(unsigned char byte) {
    return byte >= 0x30 && byte <= 0x39;
}

Scan scanGb18030(const Page &page, const unsigned char *text, std::size_t size, bool atEnd) {
    std::size_t at = 0;
    while (at < size) {
        if (!isGb18030Lead(text[at])) {
            ++at;
            continue;
        }
        const std::size_t left = size - at;
        if (left >= 2 && page.trailValid[text[at + 1]] == 0) {
            return {at, 1, Fault::BadTrail};
        }
        if (left >= 2 && !isDigit(text[at + 1])) {
            at += 2;
            continue;
        }
        if ((left >= 3 && !isGb18030Lead(text[at + 2])) || (left >= 4 && !isDigit(text[at + 3]))) {
            return {at, 1, Fault::BadTrail};
        }
        if (left < 4) {
            return atEnd ? Scan{at, left, Fault::CutShort} : Scan{at, 0, Fault::None};
        }
        at += 4;
    }
    return {at, 0, Fault::None};
}

std::string hex(unsigned value, int digits = 2) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%0*X", digits, value);
    return text;
}

std::string rangeWords(unsigned low, unsigned high) {
    return low == high ? hex(low) : hex(low) + " to " + hex(high);
}

// The bytes that may stand as trail bytes, as ranges.
std::string trailWords(const Page &page) {
    std::string words;
    for (unsigned low = 0; low < 256; ++low) {
        if (page.trailValid[low] == 0) {
            continue;
        }
        unsigned high = low;
        while (high < 255 && page.trailValid[high + 1] != 0) {
            ++high;
        }
        words += (words.empty() ? "" : ", ") + rangeWords(low, high);
        low = high;
    }
    return words;
}

} // namespace

Scan scanText(const Page &page, const unsigned char *text, std::size_t size, bool atEnd) {
    switch (page.form) {
    case Form::SingleByte:
        break;
    case Form::Multibyte:
        return scanMultibyte(page, text, size, atEnd);
    case Form::Gb18030:
        return scanGb18030(page, text, size, atEnd);
    case Form::Utf8:
        return scanUtf8(text, size, atEnd);
    case Form::Utf16:
        return scanUtf16(page, text, size, atEnd);
    case Form::Utf32:
        return scanUtf32(page, text, size, atEnd);
    }
    return {size, 0, Fault::None};
}

std::size_t characterLength(const Page &page, const unsigned char *text) {
    switch (page.form) {
    case Form::SingleByte:
        return 1;
    case Form::Multibyte:
        return page.trailCount[text[0]] + std::size_t{1};
    case Form::Gb18030:
        return !isGb18030Lead(text[0]) ? 1 : isDigit(text[1]) ? 4 : 2;
    case Form::Utf8:
        return utf8Length(text[0]);
    case Form::Utf16:
        return (page.unit(text) & 0xFC00u) == 0xD800u ? 4 : 2;
    case Form::Utf32:
        return 4;
    }
    return 1;
}

std::string describeFault(const Page &page, Fault fault, const unsigned char *text, std::size_t bad,
                          std::size_t size) {
    const std::string found = size > bad ? ", found " + hex(text[bad]) : "";
    switch (fault) {
    case Fault::LoneContinuation:
        return "a continuation byte without a lead byte, expected the first byte of a character";
    case Fault::ImpossibleByte:
        return "a byte that UTF-8 never has, expected the first byte of a character";
    case Fault::BadContinuation: {
        const ByteRange range = bad == 1 ? secondByteRange(text[0]) : ByteRange{0x80, 0xBF};
        return "expected a continuation byte " + rangeWords(range.low, range.high) + found;
    }
    case Fault::BadTrail:
        if (page.form == Form::Gb18030) {
            return "expected a trail byte, or three more bytes of a four-byte character" + found;
        }
        return "expected a trail byte " + trailWords(page) + found;
    case Fault::LoneHigh:
        return "high surrogate " + hex(page.unit(text), 4) + ", expected a low surrogate behind it";
    case Fault::LoneLow:
        return "low surrogate " + hex(page.unit(text), 4) + ", expected a high surrogate before it";
    case Fault::Surrogate:
        return "surrogate " + hex(page.unit(text), 4) + ", expected a character";
    case Fault::OutOfRange:
        return "value " + hex(page.unit(text), 8) + ", expected at most 0x10FFFF";
    case Fault::CutShort:
        return "expected the rest of the character, found the end of the input";
    case Fault::None:
        break;
    }
    return "";
}

} // namespace velnls::tool
