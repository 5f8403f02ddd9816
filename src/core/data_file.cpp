#include "core/data_file.hpp"

#include "core/arena.hpp"
#include "core/file_layout.hpp"
#include "core/text.hpp"
#include "core/unaligned.hpp"

#include <atomic>
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

// One digit, or 0.
std::uint16_t takeDigit(char c) {
    const auto value = static_cast<std::uint8_t>(c - '0');
    return value < 10 ? value : std::uint16_t{0};
}

// Ends a name and clears what stands behind its NUL.
void endName(char (&name)[file::kNameSize]) {
    name[file::kNameSize - 1] = '\0';
    const std::size_t length = std::strlen(name);
    std::memset(name + length, 0, file::kNameSize - length);
}

// Turns a directory entry's file form into its memory form. Both take 64 bytes and begin with the names, so
// it is done in place.
[[gnu::cold, gnu::noinline]] void parseEntry(Entry &entry) {
    const auto &raw = reinterpret_cast<const file::Entry &>(entry);
    const auto offset = static_cast<std::uint32_t>(parseNumber(raw.offset, sizeof raw.offset));
    const std::uint16_t variant = takeDigit(raw.variant);
    const std::uint16_t format = raw.format;
    const std::uint16_t kind = takeDigit(raw.kind);
    endName(entry.name);
    endName(entry.name2);
    entry.offset = offset;
    entry.variant = variant;
    entry.format = format;
    entry.kind = kind;
    std::memset(entry.unused, 0, sizeof entry.unused);
    entry.table = nullptr;
}
static_assert(sizeof(Entry) == sizeof(file::Entry) && offsetof(Entry, name2) == offsetof(file::Entry, name2));

// A directory has many hundred entries, and every program that starts reads them all. As they are written
// with care, nothing stands behind a name's NUL, and a number is nothing but digits: then little is left to
// do, and nothing jumps by what cannot be foreseen, like how long a name is.

#if defined(__SSE2__) && !defined(VELNLS_PLAIN_LOOPS)

std::uint64_t nonZero(const char *at) {
    const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i *>(at));
    return 0xFFFFu ^ static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(block, _mm_setzero_si128())));
}

// Zero where each name ends in its field, with nothing behind its NUL.
std::uint64_t behindNames(const file::Entry &raw) {
    static_assert(file::kNameSize == 20 && offsetof(file::Entry, name2) == 20);
    const char *const both = raw.name;
    const std::uint64_t characters = nonZero(both) | nonZero(both + 16) << 16 | nonZero(both + 24) << 24;
    // Ones from the first bit of a field up, and nothing else, are all carried away by one more.
    constexpr std::uint64_t kFirsts = 1 | 1 << 20;
    constexpr std::uint64_t kLasts = kFirsts << 19;
    return characters & (kLasts | (characters + kFirsts));
}

// The same as parseEntry, where the entry is written with care; false where it is not.
bool parseCareful(Entry &entry) {
    static_assert(offsetof(file::Entry, variant) == offsetof(file::Entry, offset) + 7);
    const auto &raw = reinterpret_cast<const file::Entry &>(entry);
    // The seven digits of the offset, the first in the lowest byte, and the variant's.
    const std::uint64_t digits = loadNumber<std::uint64_t>(raw.offset) ^ 0x3030303030303030;
    const unsigned kind = static_cast<unsigned char>(raw.kind) - unsigned{'0'};
    const std::uint64_t noDigits = (digits | (digits + 0x7676767676767676)) & 0x8080808080808080;
    if ((noDigits | behindNames(raw) | (kind > 9 ? 1 : 0)) != 0) [[unlikely]]
        return false;
    // Neighbours together, three times: numbers of two, four and eight digits.
    const std::uint64_t eight = digits << 8;
    const std::uint64_t pairs = eight * 10 + (eight >> 8);
    const std::uint64_t number = (pairs & 0x000000FF000000FF) * 0x000F424000000064 +
                                 (pairs >> 16 & 0x000000FF000000FF) * 0x0000271000000001;
    entry.format = raw.format;
    entry.offset = static_cast<std::uint32_t>(number >> 32);
    entry.variant = static_cast<std::uint16_t>(digits >> 56);
    entry.kind = static_cast<std::uint16_t>(kind);
    std::memset(entry.unused, 0, sizeof entry.unused);
    entry.table = nullptr;
    return true;
}

#else

bool parseCareful(Entry &) {
    return false;
}

#endif

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
        if (!parseCareful(entry))
            parseEntry(entry);
        if (!hasTable(entry))
            return NLS_E_READ;
    }
    return NLS_OK;
}

Entry *findEntry(const nlsHandle &handle, std::uint16_t kind, const char *name, const char *name2) {
    // Mostly one of the first letters differs, and nothing else has to be looked at.
    for (Entry &entry : directoryOf(handle)) {
        if (entry.kind == kind && beginAlike(entry.name, name) &&
            (name2 == nullptr || (beginAlike(entry.name2, name2) && sameName(entry.name2, name2))) &&
            sameName(entry.name, name))
            return &entry;
    }
    return nullptr;
}

} // namespace velnls
