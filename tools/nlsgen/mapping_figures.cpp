#include "mapping_figures.hpp"

#include "file_lookup.hpp"

#include <algorithm>

namespace velnls::nlsgen {
namespace {

constexpr std::size_t kConverter = 8 + 488; // header and body, one for each direction

} // namespace

MappingFigures measureMapping(const FileView &file, std::size_t offset) {
    MappingFigures figures;
    figures.fileBytes = sizeof(file::Conversion);
    figures.arenaBytes = 2 * kConverter;
    figures.largestRequest = kConverter;
    const auto mapping = file.at<file::Mapping>(offset);
    for (const file::MappingGroup &group : mapping.groups) {
        for (const std::size_t count : {group.valueCount, group.reverseCount, group.deltaCount}) {
            const std::size_t size = count * 2;
            figures.fileBytes += count == 0 ? 0 : file::kSubTableHead + size;
            figures.arenaBytes += size;
            figures.largestRequest = std::max(figures.largestRequest, size);
        }
    }
    const FileLookup lookup(file.bytes(), offset);
    std::size_t steps = 0;
    for (std::uint32_t code = 0; code <= 0xFFFF; code++)
        figures.codes += lookup.toUnicode(static_cast<std::uint16_t>(code)).has_value() ? 1 : 0;
    for (std::uint32_t character = 0; character <= 0x2FFFF; character++) {
        if (!lookup.fromUnicode(character))
            continue;
        figures.characters++;
        steps += lookup.steps();
        figures.mostSteps = std::max(figures.mostSteps, lookup.steps());
    }
    if (figures.characters != 0)
        figures.averageSteps = static_cast<double>(steps) / static_cast<double>(figures.characters);
    return figures;
}

} // namespace velnls::nlsgen
