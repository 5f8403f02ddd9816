// See guarded.hpp.
#include "guarded.hpp"

#include <stdexcept>

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

namespace harness {
namespace {

// Views begin at multiples of this; nothing else can lie between a view's end and the next one.
constexpr std::size_t kGranularity = 64 * 1024;
constexpr std::size_t kPage = 4096;

std::size_t roundedUp(std::size_t size, std::size_t unit) {
    return (size + unit - 1) / unit * unit;
}

template <typename T>
T checked(T result, const char *what) {
    if (!result)
        throw std::runtime_error(what);
    return result;
}

} // namespace

GuardedRoom::GuardedRoom(std::size_t size, bool readOnlyView) : size_(roundedUp(size, kPage)) {
    const HANDLE file = checked(CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0,
                                                   static_cast<DWORD>(size_), nullptr),
                                "CreateFileMapping failed");
    const std::size_t rounded = roundedUp(size_, kGranularity);
    // The place is found by reserving it whole; then the room goes in and what is around it is reserved
    // again.
    auto *const all = static_cast<std::uint8_t *>(
        checked(VirtualAlloc(nullptr, rounded + 2 * kGranularity, MEM_RESERVE, PAGE_NOACCESS),
                "VirtualAlloc failed"));
    VirtualFree(all, 0, MEM_RELEASE);
    reserved_ = static_cast<std::uint8_t *>(
        checked(VirtualAlloc(all, kGranularity, MEM_RESERVE, PAGE_NOACCESS), "no page before the room"));
    view_ = static_cast<std::uint8_t *>(checked(
        MapViewOfFileEx(file, readOnlyView ? FILE_MAP_READ : FILE_MAP_WRITE, 0, 0, size_, all + kGranularity),
        "MapViewOfFileEx failed"));
    checked(VirtualAlloc(view_ + rounded, kGranularity, MEM_RESERVE, PAGE_NOACCESS),
            "no page behind the room");
    twin_ = static_cast<std::uint8_t *>(
        checked(MapViewOfFile(file, FILE_MAP_WRITE, 0, 0, size_), "MapViewOfFile failed"));
    CloseHandle(file);
}

GuardedRoom::~GuardedRoom() {
    UnmapViewOfFile(view_);
    UnmapViewOfFile(twin_);
    VirtualFree(reserved_, 0, MEM_RELEASE);
    VirtualFree(view_ + roundedUp(size_, kGranularity), 0, MEM_RELEASE);
}

} // namespace harness
