// The structs that live at the front of lent memory: object header, handle, arena descriptor, directory
// entry.
//
// Lent memory may start at any address, so everything here is packed: the compiler then assumes no alignment.
// The layouts are the natural ones all the same; the assertions say so.
#pragma once

#include "velnls.h"

#include <cstddef>
#include <cstdint>

namespace velnls {

enum ObjectType : std::uint16_t {
    kClosed = 0,
    kHandleObject = 1,
    kLocaleObject = 2,
    kConversionObject = 3,
};

// What every object on a handle's list begins with.
struct [[gnu::packed]] ObjectHeader {
    ObjectHeader *next;
    ObjectHeader *previous; // the object created after this one
    std::uint16_t serial;
    std::uint16_t type;
    std::uint32_t proofs; // what creation proved about the object's tables; 0 = nothing
};
static_assert(sizeof(ObjectHeader) == 24);

// Proofs about a locale's page.
inline constexpr std::uint32_t kSingleBytePage = 0x0001; // no byte begins a longer character
inline constexpr std::uint32_t kUtf8Page = 0x0002;       // flag and trail counts are those of UTF-8
inline constexpr std::uint32_t kLongestTrails = 0x0070;  // the most bytes that follow a first one
inline constexpr unsigned kLongestTrailsShift = 4;

// One lent block; the newest is the one being carved.
struct [[gnu::packed]] Block {
    void *base;
    Block *previousBlock;
    std::uint32_t size;
    std::uint32_t leftOver; // bytes abandoned when the next block was lent
};
static_assert(sizeof(Block) == 24);

// A directory entry in memory. The first loader that builds its table keeps it in `table`.
struct [[gnu::packed]] Entry {
    char name[20];
    char name2[20];
    std::uint32_t offset;
    std::uint16_t variant;
    std::uint16_t format;
    std::uint16_t kind;
    std::uint8_t unused[6];
    const void *table;
};
static_assert(sizeof(Entry) == 64);
static_assert(offsetof(Entry, table) == 56);

struct SortExit;

} // namespace velnls

struct [[gnu::packed]] nlsHandle {
    velnls::ObjectHeader header;
    velnls::ObjectHeader *newest; // head of the object list; the handle itself is its tail
    velnls::Entry *directory;
    velnls::Block *block;
    nlsReadCallback read;
    unsigned char *cursor;
    velnls::SortExit *sortExit;
    std::uint32_t remaining; // free bytes behind cursor
    std::uint32_t file;
    std::int32_t entryCount;
    std::uint32_t busy;
    std::uint32_t sortExitLoaded;
    std::uint32_t unused;
};
static_assert(sizeof(nlsHandle) == 96);
static_assert(offsetof(nlsHandle, newest) == 24);
