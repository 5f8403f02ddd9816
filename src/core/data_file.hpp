// Reading the data file through the caller's callback, and the directory kept from it.
#pragma once

#include "core/handle.hpp"

namespace velnls {

// Reads exactly `length` bytes at `offset`; false when the callback delivers fewer.
bool readAt(const nlsHandle &handle, std::uint32_t offset, void *buffer, std::uint32_t length);

// Checks the file's header and reads its directory into the arena: 0, 1, 4, 5, 6 or 13.
nlsStatus loadDirectory(nlsHandle &handle);

// The first entry of a kind whose name, and second name if given, match; null when there is none.
Entry *findEntry(const nlsHandle &handle, std::uint16_t kind, const char *name, const char *name2 = nullptr);

// The directory as a range, in file order.
struct Directory {
    Entry *first;
    Entry *last;
    [[nodiscard]] Entry *begin() const {
        return first;
    }
    [[nodiscard]] Entry *end() const {
        return last;
    }
};
inline Directory directoryOf(const nlsHandle &handle) {
    return {handle.directory, handle.directory + handle.entryCount};
}

} // namespace velnls
