// Finds ICU at run time: loads its libraries by file name, looks its functions up by versioned name. One
// table serves the process; nothing is ever unloaded.
//
// Safe to call from any thread: one thread binds, others that need ICU meanwhile wait for it.
#pragma once

#include "icu/functions.hpp"
#include "velnls.h"

namespace velnls::icu {

enum Level : std::int32_t {
    kUnbound = 0,
    kConversion = 1, // the data and common libraries
    kCollation = 2,  // the library for languages too
};

// Binds what is missing to the level: 0, or 18 when a library or a function is not found. The level reached
// is kept; after a failure the next request tries again.
nlsStatus bind(Level wanted);

// What is bound now.
Level level();

// Written by the thread that binds, before the level that lets others read.
// NOLINTNEXTLINE(bugprone-dynamic-static-initializers): initialised by a constant, in binding.cpp
extern constinit Functions boundFunctions;

// The function table: those of a level may be called once that level is reached.
inline const Functions &functions() {
    return boundFunctions;
}

} // namespace velnls::icu
