// Carving of lent memory. Nothing is ever given back before the handle is closed.
#pragma once

#include "core/handle.hpp"

namespace velnls {

// Takes `size` bytes at a multiple of `alignment` (not 0) from the current block. 0, 1 (NLS_E_NOMEM: nothing
// changed) or 13. The memory is zero, since blocks are zeroed when they are lent.
nlsStatus allocate(nlsHandle &handle, std::int32_t size, std::uint32_t alignment, void *&out);

template <typename T>
nlsStatus allocate(nlsHandle &handle, std::int32_t size, std::uint32_t alignment, T *&out) {
    void *memory = nullptr;
    const nlsStatus status = allocate(handle, size, alignment, memory);
    if (status == NLS_OK)
        out = static_cast<T *>(memory);
    return status;
}

} // namespace velnls
