// Whole pages of memory, which may be closed to reading and writing. An access to a closed page ends the
// test.
#pragma once

#include <cstddef>

namespace fixture {

enum class Access {
    kNone,
    kRead,
    kReadWrite,
};

std::size_t pageSize();

// `size` bytes, a multiple of the page's, that nobody may touch yet. Throws std::bad_alloc.
unsigned char *reservePages(std::size_t size);
void setAccess(unsigned char *pages, std::size_t size, Access access);
void releasePages(unsigned char *pages, std::size_t size);

} // namespace fixture
