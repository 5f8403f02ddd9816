// See guarded.hpp.
#ifndef _GNU_SOURCE
#define _GNU_SOURCE
#endif
#include "guarded.hpp"

#include <stdexcept>
#include <sys/mman.h>
#include <unistd.h>

namespace harness {
namespace {

std::size_t pageSize() {
    return static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

void *checked(void *address) {
    if (address == MAP_FAILED)
        throw std::runtime_error("mmap failed");
    return address;
}

} // namespace

GuardedRoom::GuardedRoom(std::size_t size, bool readOnlyView)
    : size_((size + pageSize() - 1) / pageSize() * pageSize()) {
    const int file = memfd_create("guarded", 0);
    if (file < 0 || ftruncate(file, static_cast<off_t>(size_)) != 0)
        throw std::runtime_error("memfd_create failed");
    reserved_ = static_cast<std::uint8_t *>(
        checked(mmap(nullptr, size_ + 2 * pageSize(), PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0)));
    view_ = static_cast<std::uint8_t *>(
        checked(mmap(reserved_ + pageSize(), size_, readOnlyView ? PROT_READ : PROT_READ | PROT_WRITE,
                     MAP_SHARED | MAP_FIXED, file, 0)));
    twin_ = static_cast<std::uint8_t *>(
        checked(mmap(nullptr, size_, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0)));
    close(file);
}

GuardedRoom::~GuardedRoom() {
    munmap(reserved_, size_ + 2 * pageSize());
    munmap(twin_, size_);
}

} // namespace harness
