#include "pages.hpp"

#include <new>
#include <stdexcept>

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

namespace fixture {

std::size_t pageSize() {
    SYSTEM_INFO facts;
    GetSystemInfo(&facts);
    return facts.dwPageSize;
}

unsigned char *reservePages(std::size_t size) {
    void *const pages = VirtualAlloc(nullptr, size, MEM_RESERVE | MEM_COMMIT, PAGE_NOACCESS);
    if (pages == nullptr)
        throw std::bad_alloc();
    return static_cast<unsigned char *>(pages);
}

void setAccess(unsigned char *pages, std::size_t size, Access access) {
    const DWORD protection = access == Access::kNone   ? PAGE_NOACCESS
                             : access == Access::kRead ? PAGE_READONLY
                                                       : PAGE_READWRITE;
    DWORD before = 0;
    if (VirtualProtect(pages, size, protection, &before) == 0)
        throw std::runtime_error("VirtualProtect");
}

void releasePages(unsigned char *pages, std::size_t) {
    VirtualFree(pages, 0, MEM_RELEASE);
}

} // namespace fixture
