#include "convert/build_byte_tables.hpp"

#include "convert/build_mapping.hpp"
#include "convert/kernels/unicode_units.hpp"
#include "core/arena.hpp"

#include <cstring>

namespace velnls {

namespace {

// The table of all lead bytes without characters; a constant, so that no table outlives the memory of
// another.
constexpr std::uint8_t kZeroByteTable[256] = {};

constexpr std::int32_t kAsciiTableSize = 256;
constexpr std::int32_t kTrailTableSize = 72;

// A unit in UTF-8, three bytes at most: the bytes in memory order, and where the way back keeps it.
struct Utf8Form {
    std::uint32_t bytes;
    unsigned table; // by lead byte, or for three bytes by second byte; 0 for ASCII
    unsigned place;
};

Utf8Form utf8FormOf(std::uint16_t unit) {
    if (isSurrogate(unit))
        unit = '?';
    if (unit < 0x80)
        return {unit, 0, unit};
    const unsigned last = unit & 0x3Fu;
    if (unit < 0x800) {
        const unsigned lead = 0xC0u | unit >> 6;
        return {(0x80 | last) << 8 | lead, lead, last};
    }
    const unsigned second = 0x80u | (unit >> 6 & 0x3F);
    return {(0x80 | last) << 16 | second << 8 | 0xE0u | unit >> 12, second, last};
}

} // namespace

nlsStatus buildByteTables(nlsHandle &handle, const char *source, const char *target, std::int32_t type,
                          const file::Conversion &record, const void *&out) {
    ByteToUtf8Body forward{};
    Utf8ToByteBody reverse{};
    for (unsigned byte = 0; byte < 256; ++byte) {
        const Utf8Form form =
            utf8FormOf(loadUnit<std::uint16_t>(record.body + std::size_t{byte} * 2, Order::Native));
        forward.characters[byte] = form.bytes;
        if (reverse.tables[form.table] == nullptr) {
            const std::int32_t size = form.table == 0 ? kAsciiTableSize : kTrailTableSize;
            void *memory = nullptr;
            if (const nlsStatus status = allocate(handle, size, 1, memory); status != NLS_OK)
                return status;
            reverse.tables[form.table] = static_cast<const std::uint8_t *>(memory);
        }
        auto &place = const_cast<std::uint8_t *>(reverse.tables[form.table])[form.place];
        if (place != 0)
            return NLS_E_BADTABLE;
        place = static_cast<std::uint8_t>(byte);
    }
    // The room of the zero table is taken, although the constant serves.
    void *unused = nullptr;
    if (const nlsStatus status = allocate(handle, sizeof kZeroByteTable, 1, unused); status != NLS_OK)
        return status;
    for (unsigned lead = 0; lead < 256; ++lead) {
        if (reverse.tables[lead] == nullptr)
            reverse.tables[lead] = kZeroByteTable;
    }
    ConverterHeader *header = nullptr;
    constexpr auto kSize = static_cast<std::int32_t>(sizeof *header + sizeof forward);
    if (const nlsStatus status = allocate(handle, kSize, 8, header); status != NLS_OK)
        return status;
    header->type = type;
    std::memcpy(header + 1, &forward, sizeof forward);
    const auto isReverse = [](std::int32_t kind) { return kind == kUtf8ToByte; };
    if (storeTable(handle, target, source, &reverse, sizeof reverse, 0, isReverse) != NLS_OK)
        return NLS_E_NOMEM;
    out = header + 1;
    return NLS_OK;
}

} // namespace velnls
