#include "core/data_file.hpp"

#include "core/arena.hpp"
#include "core/file_layout.hpp"
#include "core/text.hpp"
#include "core/unaligned.hpp"

#include <atomic>
#include <bit>
#include <cstring>

#if defined(__SSE2__) && !defined(VELNLS_PLAIN_LOOPS)
#include <emmintrin.h>
#endif

namespace velnls {

namespace {

// The version of the file read last by any handle of the process, recorded before it is judged.
std::atomic<std::int32_t> formatVersion{0};

bool hasTable(const Entry &entry) {
    return entry.offset != 0 || entry.kind == file::kConversion;
}

// A directory has many hundred entries, and every program that starts reads them all: names are cleared
// behind their NUL by words, and numbers are read digit by digit only where they are nothing but digits.

// Nothing jumps by how long a name is: that cannot be foreseen.

// The high bits of a word's zero bytes; from the lowest one up others may be set besides.
std::uint64_t zerosOf(std::uint64_t word) {
    return (word - 0x0101010101010101) & ~word & 0x8080808080808080;
}

// A word's bytes before its first zero byte, by the zeros found in it and in the words before.
std::uint64_t beforeZero(std::uint64_t word, std::uint64_t zeros, std::uint64_t zerosBefore) {
    const std::uint64_t goesOn = zerosBefore == 0 ? ~std::uint64_t{0} : 0;
    return word & ((zeros & (0 - zeros)) - 1) & goesOn;
}

[[gnu::always_inline]] inline void takeName(char (&to)[file::kNameSize],
                                            const char (&from)[file::kNameSize]) {
    static_assert(std::endian::native == std::endian::little && file::kNameSize == 20);
    const std::uint64_t last = loadNumber<std::uint32_t>(from + 16) & 0xFFFFFF; // always with a NUL
#if defined(__SSE2__) && !defined(VELNLS_PLAIN_LOOPS)
    constexpr unsigned kFirst = 16;
    static constexpr std::uint8_t kKeep[2 * kFirst] = {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF,
                                                       0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};
    const __m128i first = _mm_loadu_si128(reinterpret_cast<const __m128i *>(from));
    const auto zeros =
        static_cast<std::uint32_t>(_mm_movemask_epi8(_mm_cmpeq_epi8(first, _mm_setzero_si128())));
    const auto length = static_cast<unsigned>(__builtin_ctz(zeros | 1U << kFirst));
    const __m128i keep = _mm_loadu_si128(reinterpret_cast<const __m128i *>(kKeep + kFirst - length));
    _mm_storeu_si128(reinterpret_cast<__m128i *>(to), _mm_and_si128(first, keep));
    storeNumber(to + kFirst, static_cast<std::uint32_t>(beforeZero(last, zerosOf(last), zeros)));
#else
    const auto first = loadNumber<std::uint64_t>(from);
    const auto second = loadNumber<std::uint64_t>(from + 8);
    const std::uint64_t zeros = zerosOf(first);
    const std::uint64_t moreZeros = zerosOf(second);
    storeNumber(to, beforeZero(first, zeros, 0));
    storeNumber(to + 8, beforeZero(second, moreZeros, zeros));
    storeNumber(to + 16, static_cast<std::uint32_t>(beforeZero(last, zerosOf(last), zeros | moreZeros)));
#endif
}

// Seven digits, the first in the lowest byte.
std::uint32_t takeOffset(const char (&field)[7], std::uint64_t digits) {
    const std::uint64_t values = (digits << 8 | '0') ^ 0x3030303030303030;
    if (((values | (values + 0x7676767676767676)) & 0x8080808080808080) != 0) // not all of them are digits
        return static_cast<std::uint32_t>(parseNumber(field, sizeof field));
    // Neighbours together, three times: numbers of two, four and eight digits.
    const std::uint64_t pairs = values * 10 + (values >> 8);
    return static_cast<std::uint32_t>(((pairs & 0x000000FF000000FF) * 0x000F424000000064 +
                                       (pairs >> 16 & 0x000000FF000000FF) * 0x0000271000000001) >>
                                      32);
}

// One digit, or 0.
std::uint16_t takeDigit(char c) {
    return c >= '0' && c <= '9' ? static_cast<std::uint16_t>(c - '0') : std::uint16_t{0};
}

// Turns a directory entry's file form into its memory form. Both take 64 bytes, so it is done in place.
void parseEntry(Entry &entry) {
    const auto &raw = reinterpret_cast<const file::Entry &>(entry);
    const std::uint32_t offset = takeOffset(raw.offset, loadNumber<std::uint64_t>(raw.offset));
    const std::uint16_t variant = takeDigit(raw.variant);
    const std::uint16_t format = raw.format;
    const std::uint16_t kind = takeDigit(raw.kind);
    takeName(entry.name, raw.name);
    takeName(entry.name2, raw.name2);
    entry.offset = offset;
    entry.variant = variant;
    entry.format = format;
    entry.kind = kind;
    std::memset(entry.unused, 0, sizeof entry.unused);
    entry.table = nullptr;
}
static_assert(sizeof(Entry) == sizeof(file::Entry) && offsetof(Entry, name2) == offsetof(file::Entry, name2));

} // namespace

bool readAt(const nlsHandle &handle, std::uint32_t offset, void *buffer, std::uint32_t length) {
    return handle.read(handle.file, offset, static_cast<unsigned char *>(buffer), length) >= length;
}

nlsStatus loadDirectory(nlsHandle &handle) {
    file::Header header;
    if (!readAt(handle, 0, &header, sizeof header))
        return NLS_E_MAGIC;
    if (parseNumber(header.magic, sizeof header.magic) != file::kMagic)
        return NLS_E_MAGIC;
    const auto offset =
        static_cast<std::uint32_t>(parseNumber(header.directoryOffset, sizeof header.directoryOffset));
    const std::int32_t version = parseNumber(header.version, sizeof header.version);
    formatVersion.store(version, std::memory_order_relaxed);
    if (version != file::kVersionOld && version != file::kVersion)
        return NLS_E_VERSION;

    const std::int32_t count = parseNumber(header.entryCount, sizeof header.entryCount);
    const auto size = static_cast<std::int32_t>(count * static_cast<std::int32_t>(sizeof(Entry)));
    void *memory = nullptr;
    if (const nlsStatus status = allocate(handle, size, 2, memory); status != NLS_OK)
        return status;
    handle.directory = static_cast<Entry *>(memory);
    handle.entryCount = count;
    if (count < 1)
        return NLS_OK;
    // The whole directory in one read: it costs one call instead of a thousand.
    if (!readAt(handle, offset, memory, static_cast<std::uint32_t>(size)))
        return NLS_E_READ;
    for (Entry &entry : directoryOf(handle)) {
        parseEntry(entry);
        if (!hasTable(entry))
            return NLS_E_READ;
    }
    return NLS_OK;
}

Entry *findEntry(const nlsHandle &handle, std::uint16_t kind, const char *name, const char *name2) {
    for (Entry &entry : directoryOf(handle)) {
        if (entry.kind == kind && sameName(entry.name, name) &&
            (name2 == nullptr || sameName(entry.name2, name2)))
            return &entry;
    }
    return nullptr;
}

} // namespace velnls
