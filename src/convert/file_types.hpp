// The kind word that the type of a conversion entry becomes.
#pragma once

#include "convert/converter.hpp"
#include "core/file_layout.hpp"

namespace velnls {

// The kind word of a file type; 0 with `valid` false for types that no data file may carry. A chain is made
// by the route builder alone: its body holds pointers, which must never come from a file.
inline std::int32_t kindWordOfFileType(std::int32_t type, bool &valid) {
    if (type >= file::kFirstRemappedType && type <= file::kLastRemappedType)
        type = file::kRemappedTypes[type - file::kFirstRemappedType];
    else if (type > file::kLastPlainType && type < kFirstByteMapType) {
        valid = false;
        return 0;
    }
    valid = type != kChain;
    return type;
}

} // namespace velnls
