// What a mapping costs and what it serves, measured on the finished file.
#pragma once

#include "file_view.hpp"

namespace velnls::nlsgen {

struct MappingFigures {
    std::size_t codes = 0;      // that a group maps
    std::size_t characters = 0; // that a group turns back
    double averageSteps = 0;    // entries of compressed tables that a character's look-up goes over
    unsigned mostSteps = 0;
    std::size_t fileBytes = 0;
    std::size_t arenaBytes = 0; // both directions, without the page's character table
    std::size_t largestRequest = 0;
};

// `offset` is that of a mapping record without fault.
MappingFigures measureMapping(const FileView &file, std::size_t offset);

} // namespace velnls::nlsgen
