// The part of `nlsgen check` that proves a mapping record: its sub-tables, its fields, its ways there and
// back.
#pragma once

#include "file_view.hpp"

#include <functional>

namespace velnls::nlsgen {

// `attributes` are those of the page's character set. Calls `fail` with an offset in the file and what was
// expected there; `fail` does not return.
void checkMappingRecord(const FileView &file, std::size_t offset, const std::uint8_t *attributes,
                        const std::function<void(std::size_t, const std::string &)> &fail);

} // namespace velnls::nlsgen
