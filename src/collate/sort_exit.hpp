// The user sort exit: a site's own library that orders strings in place of weights (collations of kind 2).
//
// The record in use is process-wide: the entry points and the user value of the exit loaded last. Each handle
// loads the exit for itself and unloads it when it is closed; the record then falls back to the load before.
#pragma once

#include "collate/record.hpp"
#include "core/handle.hpp"
#include "locale/text.hpp"

namespace velnls {

// The entry points of the exit. Modes, results and sizes have 16 bits; they are passed in whole registers.
struct SortExit {
    void *library;
    std::int32_t (*init)(const char *collationName, void **user); // optional; 0 = ready
    void (*term)(void *user);                                     // optional
    std::int32_t (*compare)(const char *a, const char *b, const std::uint8_t *caseInsensitive,
                            const std::uint8_t *caseSensitive, std::uint32_t mode, void *user);
    void (*copy)(std::uint8_t *key, const char *source, std::uint32_t size,
                 const std::uint8_t *caseInsensitive, const std::uint8_t *caseSensitive, std::uint32_t mode,
                 void *user);
    void *user; // what init filled
};

// Loads the exit for a handle that has not loaded it yet: 0, 1 (no room to keep the load), or 25 when there
// is none on PATH, it does not load, lacks an entry point or is not ready.
nlsStatus loadSortExit(nlsHandle &handle, const char *collationName);

// Ends the handle's load, if it has one.
void unloadSortExit(nlsHandle &handle);

// What the exit answers, cut to 16 bits. Behind a bound inside a text stands a NUL for the time of the call.
// 0, or 25 when no exit is loaded.
nlsStatus compareByExit(const Collation &collation, Text a, Text b, unsigned mode, int &result);

// Has the exit write a key of at most `size` bytes; nobody checks that it ends it.
nlsStatus writeExitKey(const Collation &collation, Text text, unsigned mode, std::uint8_t *key,
                       std::size_t size);

} // namespace velnls
