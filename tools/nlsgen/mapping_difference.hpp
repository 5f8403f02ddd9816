// What is different between the mappings of one code page in two data files.
#pragma once

#include "difference_report.hpp"
#include "file_view.hpp"

namespace velnls::nlsgen {

// Both conversions have mapping records. Reports codes that stand for other characters, then characters that
// turn back to other codes without their codes having changed, then the substitution code.
void reportMappingDifferences(const FileView &before, const EntryView &beforeEntry, const FileView &after,
                              const EntryView &afterEntry, DifferenceReport &report);

} // namespace velnls::nlsgen
