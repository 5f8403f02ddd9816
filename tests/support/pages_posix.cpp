#include "pages.hpp"

#include <new>
#include <stdexcept>
#include <sys/mman.h>
#include <unistd.h>

namespace fixture {

std::size_t pageSize() {
    static const auto size = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    return size;
}

unsigned char *reservePages(std::size_t size) {
    void *const pages = mmap(nullptr, size, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (pages == MAP_FAILED)
        throw std::bad_alloc();
    return static_cast<unsigned char *>(pages);
}

void setAccess(unsigned char *pages, std::size_t size, Access access) {
    const int protection = access == Access::kNone   ? PROT_NONE
                           : access == Access::kRead ? PROT_READ
                                                     : PROT_READ | PROT_WRITE;
    if (mprotect(pages, size, protection) != 0)
        throw std::runtime_error("mprotect");
}

void releasePages(unsigned char *pages, std::size_t size) {
    munmap(pages, size);
}

} // namespace fixture
