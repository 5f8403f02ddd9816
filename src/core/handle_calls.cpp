// nlsInit, nlsAddBuffer, nlsClose: the life of a handle over lent memory.
#include "collate/record_list.hpp"
#include "collate/sort_exit.hpp"
#include "core/data_file.hpp"
#include "core/objects.hpp"
#include "icu/collate.hpp"
#include "icu/convert.hpp"
#include "icu/kept_collators.hpp"

#include <cstring>

using namespace velnls;

namespace {

constexpr std::int32_t kMinimumFirstBlock = 25000;
constexpr std::int32_t kMinimumNextBlock = 76000;

// Places the descriptor of a lent block at the cursor, aligned to 8, and makes the block current.
bool placeDescriptor(nlsHandle &handle, void *memory, std::int32_t size) {
    const auto address = reinterpret_cast<std::uintptr_t>(handle.cursor);
    const auto padding = static_cast<std::uint32_t>((8 - address % 8) % 8);
    const auto taken = static_cast<std::uint32_t>(padding + sizeof(Block));
    if (taken > handle.remaining)
        return false;
    auto *const block = reinterpret_cast<Block *>(handle.cursor + padding);
    block->base = memory;
    block->previousBlock = handle.block;
    block->size = static_cast<std::uint32_t>(size);
    handle.block = block;
    handle.cursor += taken;
    handle.remaining -= taken;
    return true;
}

// Gives back what stands outside lent memory: the sort exit, ICU's collators and converters. Blocks of
// rebuilt locales are not looked at: they may be gone.
void closeOutside(nlsHandle &handle) {
    unloadSortExit(handle);
    for (Collation *record = forgetCollationsOf(handle); record != nullptr; record = record->next)
        icu::closeCollator(*record);
    icu::closeKeptCollatorsOf(handle);
    icu::closeConvertersOf(handle);
}

} // namespace

nlsStatus nlsInit(uint32_t file, void *memory, int32_t size, nlsReadCallback read, nlsHandle **handle) {
    if (memory == nullptr || read == nullptr || handle == nullptr)
        return NLS_E_NULLARG;
    if (size < kMinimumFirstBlock)
        return NLS_E_NOMEM;
    std::memset(memory, 0, static_cast<std::size_t>(size));
    auto &made = *static_cast<nlsHandle *>(memory);
    made.header.type = kHandleObject;
    made.header.serial = 1;
    made.newest = &made.header;
    made.cursor = static_cast<unsigned char *>(memory) + sizeof(nlsHandle);
    made.remaining = static_cast<std::uint32_t>(size - static_cast<std::int32_t>(sizeof(nlsHandle)));
    if (!placeDescriptor(made, memory, size))
        return NLS_E_NOMEM;
    const BusyScope busy(made);
    made.file = file;
    made.read = read;
    const nlsStatus status = loadDirectory(made);
    if (status == NLS_OK)
        *handle = &made;
    return status;
}

nlsStatus nlsAddBuffer(nlsHandle *handle, void *memory, int32_t size) {
    if (!isLive(handle))
        return NLS_E_HANDLE;
    if (memory == nullptr)
        return NLS_E_NULLARG;
    const BusyScope busy(*handle);
    if (!busy.held())
        return NLS_E_BUSY;
    if (size < kMinimumNextBlock)
        return NLS_E_NOMEM;
    handle->block->leftOver = handle->remaining;
    std::memset(memory, 0, static_cast<std::size_t>(size));
    handle->cursor = static_cast<unsigned char *>(memory);
    handle->remaining = static_cast<std::uint32_t>(size);
    return placeDescriptor(*handle, memory, size) ? NLS_OK : NLS_E_NOMEM;
}

nlsStatus nlsClose(nlsHandle *handle) {
    if (!isLive(handle))
        return NLS_E_HANDLE;
    const BusyScope busy(*handle);
    if (!busy.held())
        return NLS_E_BUSY;
    handle->header.type = kClosed;
    closeOutside(*handle);
    return NLS_OK;
}
