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

struct Slot {
    unsigned table; // by lead byte, or for three bytes by second byte; 0 for ASCII
    unsigned place;
};

// The UTF-8 bytes of a unit, in memory order.
std::uint32_t utf8Bytes(std::uint16_t unit) {
    std::uint8_t bytes[4] = {};
    Target target{bytes, bytes + sizeof bytes};
    writeUtf8(target, isSurrogate(unit) ? std::uint32_t{'?'} : unit);
    std::uint32_t character = 0;
    std::memcpy(&character, bytes, sizeof character);
    return character;
}

Slot slotOf(std::uint32_t character) {
    std::uint8_t bytes[4];
    std::memcpy(bytes, &character, sizeof bytes);
    switch (utf8Trails(bytes[0])) {
    case 0:
        return {0, bytes[0]};
    case 1:
        return {bytes[0], bytes[1] & 0x3Fu};
    default: // a 16-bit unit takes three bytes at most
        return {bytes[1], bytes[2] & 0x3Fu};
    }
}

} // namespace

nlsStatus buildByteTables(nlsHandle &handle, const char *source, const char *target, std::int32_t type,
                          const file::Conversion &record, const void *&out) {
    ByteToUtf8Body forward{};
    Utf8ToByteBody reverse{};
    for (unsigned byte = 0; byte < 256; ++byte) {
        const std::uint32_t character =
            utf8Bytes(loadUnit<std::uint16_t>(record.body + std::size_t{byte} * 2, Order::Native));
        forward.characters[byte] = character;
        const Slot slot = slotOf(character);
        if (reverse.tables[slot.table] == nullptr) {
            const std::int32_t size = slot.table == 0 ? kAsciiTableSize : kTrailTableSize;
            void *memory = nullptr;
            if (const nlsStatus status = allocate(handle, size, 1, memory); status != NLS_OK)
                return status;
            reverse.tables[slot.table] = static_cast<const std::uint8_t *>(memory);
        }
        auto &place = const_cast<std::uint8_t *>(reverse.tables[slot.table])[slot.place];
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
