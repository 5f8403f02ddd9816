#include "core/arena.hpp"

namespace velnls {

nlsStatus allocate(nlsHandle &handle, std::int32_t size, std::uint32_t alignment, void *&out) {
    if (handle.header.type != kHandleObject)
        return NLS_E_HANDLE;
    const auto low = static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(handle.cursor));
    const std::uint32_t past = alignment == 1 ? 0 : low % alignment;
    const std::uint32_t padding = past == 0 ? 0 : alignment - past;
    const auto wanted = static_cast<std::uint32_t>(size);
    // A sum that wraps would pass for a small one.
    if (wanted > handle.remaining || padding > handle.remaining - wanted)
        return NLS_E_NOMEM;
    out = handle.cursor + padding;
    handle.remaining -= padding + wanted;
    handle.cursor += padding + wanted;
    return NLS_OK;
}

} // namespace velnls
