#include "core/data_file.hpp"

#include "core/arena.hpp"
#include "core/file_layout.hpp"
#include "core/text.hpp"

#include <atomic>
#include <cstring>

namespace velnls {

namespace {

// The version of the file read last by any handle of the process, recorded before it is judged.
std::atomic<std::int32_t> formatVersion{0};

bool hasTable(const Entry &entry) {
    return entry.offset != 0 || entry.kind == file::kConversion;
}

// Turns a directory entry's file form into its memory form. Both take 64 bytes, so it is done in place.
void parseEntry(void *place) {
    file::Entry raw;
    std::memcpy(&raw, place, sizeof raw);
    raw.name[sizeof raw.name - 1] = '\0';
    raw.name2[sizeof raw.name2 - 1] = '\0';

    Entry entry{};
    std::memcpy(entry.name, raw.name, std::strlen(raw.name));
    std::memcpy(entry.name2, raw.name2, std::strlen(raw.name2));
    entry.offset = static_cast<std::uint32_t>(parseNumber(raw.offset, sizeof raw.offset));
    entry.variant = static_cast<std::uint16_t>(parseNumber(&raw.variant, 1));
    entry.format = raw.format;
    entry.kind = static_cast<std::uint16_t>(parseNumber(&raw.kind, 1));
    std::memcpy(place, &entry, sizeof entry);
}

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
        parseEntry(&entry);
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
