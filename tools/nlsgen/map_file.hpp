// Reader of this system's own map files below data/: corrections, user-defined areas, whole pages.
#pragma once

#include "code_list.hpp"

#include <optional>
#include <utility>

namespace velnls::nlsgen {

struct MapFile {
    CodeList codes;
    // Everyday characters, looked up directly; from a line `window XXXX YYYY`.
    std::optional<std::pair<std::uint32_t, std::uint32_t>> window;
};

// A line is `code unicode`, `first..last unicode` (the last byte counts up) or `window XXXX YYYY`, all
// hexadecimal; `one-way` behind a code line means code to Unicode only; # begins a comment. A code of two
// digits is one byte, of four digits two. Throws Problem with file and line.
MapFile readMapFile(const std::string &path);

} // namespace velnls::nlsgen
