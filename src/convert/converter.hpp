// Converters: the tables that conversions run, behind a header of two words, and the conversion object.
#pragma once

#include "core/file_layout.hpp"
#include "core/handle.hpp"
#include "locale/tables.hpp"

#include <cstdint>

namespace velnls {

// Lies immediately before a converter's body. Callers hold pointers to the body.
struct [[gnu::packed]] ConverterHeader {
    std::int32_t type;    // the kind word: kind plus byte-order flags
    std::uint32_t proofs; // what the builder proved of the body, see below; 0 = the general way
};
static_assert(sizeof(ConverterHeader) == 8);

// Proofs.
inline constexpr std::uint32_t kWholeByteMap = 0x0001; // kind 1: the body holds all 256 bytes
inline constexpr std::int32_t kByteMapSize = 256;

// Bits of the kind word that are no part of the kind.
inline constexpr std::int32_t kVariantBits = file::kVariantBits;
inline constexpr std::int32_t kSwapSource = 0x080; // source units are byte-swapped
inline constexpr std::int32_t kSwapTarget = 0x200; // target units are byte-swapped
inline constexpr std::int32_t kFirstByteMapType = 1600;

enum ConverterKind : std::int32_t {
    kByteMap = 1,
    kIdentity = 2, // a null converter
    kShiftJisToEuc = 3,
    kEucToShiftJis = 4,
    kUnicodeToIcu = 5,
    kIcuToUnicode = 6,
    kChain = 7,
    kPageToUtf8 = 17,
    kUtf8ToPage = 18,
    kByteToUtf8 = 19,
    kUtf8ToByte = 20,
    kUcs2ToUtf8 = 21,
    kUtf8ToUcs2 = 22,
    kUtf16ToUtf8 = 23,
    kUtf8ToUtf16 = 24,
    kUtf32ToUtf8 = 25,
    kUtf8ToUtf32 = 26,
    kUtf16ToUtf32 = 27,
    kUtf32ToUtf16 = 28,
    kPageToUtf16 = 29,
    kUtf16ToPage = 30,
    kUtf8ToBytePage = 50,
    kByteToUtf8Wide = 51,
    kPageToUtf8Wide = 81,
    kPageToUtf8Widest = 89,
};

inline const ConverterHeader &headerOf(const void *body) {
    return *(static_cast<const ConverterHeader *>(body) - 1);
}

// The kind word of a converter; a null converter has none.
inline std::int32_t kindWord(const void *body) {
    return body == nullptr ? 0 : headerOf(body).type;
}

inline std::int32_t kindOf(const void *body) {
    if (body == nullptr)
        return kIdentity;
    const std::int32_t type = headerOf(body).type;
    return type >= kFirstByteMapType ? kByteMap : (type & ~kVariantBits) & 0xFFFF;
}

// The 256 bytes of a single-byte conversion; null for any other converter.
inline const std::uint8_t *byteMapOf(const void *converter) {
    const bool whole = converter != nullptr && kindOf(converter) == kByteMap &&
                       (headerOf(converter).proofs & kWholeByteMap) != 0;
    return whole ? static_cast<const std::uint8_t *>(converter) : nullptr;
}

// Body of kinds 17, 18, 50, 81, 89: three code range blocks and the character table of the page side.
struct [[gnu::packed]] MappingBody {
    file::MappingGroup groups[3]; // first, second, third; tried in the order third, first, second
    const CharTable *charTable;
};
static_assert(sizeof(MappingBody) == 488);

// Body of kinds 19 and 51: the UTF-8 bytes of each byte value's character, in memory order.
struct [[gnu::packed]] ByteToUtf8Body {
    std::uint32_t characters[256];
};
static_assert(sizeof(ByteToUtf8Body) == 1024);

// Body of kind 20: byte tables by UTF-8 lead byte; entry 0 is the one for ASCII.
struct [[gnu::packed]] Utf8ToByteBody {
    const std::uint8_t *tables[256];
};
static_assert(sizeof(Utf8ToByteBody) == 2048);

// Body of kinds 29 and 30: the table of the UTF-8 leg, a MappingBody.
struct [[gnu::packed]] Utf8LegBody {
    const MappingBody *mapping;
};

// Body of kind 7.
struct [[gnu::packed]] ChainBody {
    const void *first;
    const void *second;
};

// The converter that makes the output: of a chain the second step, followed as far as it goes.
inline const void *lastStepOf(const void *converter) {
    while (kindOf(converter) == kChain)
        converter = static_cast<const ChainBody *>(converter)->second;
    return converter;
}

} // namespace velnls

struct [[gnu::packed]] nlsConversion {
    velnls::ObjectHeader header;
    nlsLocale *source; // stands where other objects keep their handle
    nlsLocale *target;
    const void *converter; // null: plain copy
};
static_assert(sizeof(nlsConversion) == 48);
