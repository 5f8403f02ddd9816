#include "verifier.hpp"

#include "file_lookup.hpp"
#include "number_field.hpp"

#include <cstring>
#include <map>
#include <string_view>

namespace velnls::nlsgen {
namespace {

constexpr std::uint32_t kLastCharacter = 0x2FFFF;

std::string named(std::uint32_t code, int width) {
    return code == kNone ? "nothing" : hexadecimal(code, width);
}

void verifyMapping(const FileLookup &lookup, const Page &page) {
    for (std::uint32_t code = 0; code < kCodeCount; code++) {
        const std::uint32_t found = lookup.toUnicode(static_cast<std::uint16_t>(code)).value_or(kNone);
        // An unmapped code below 7F stays itself.
        const std::uint32_t meant = page.toUnicode(code);
        if (found != meant && !(found == kNone && code < 0x7F && meant == code))
            throw Problem(page.placeOf(code), "page " + page.name + ": code " + hexadecimal(code, 2) +
                                                  " expected to give " + named(meant, 4) +
                                                  ", the finished file gives " + named(found, 4));
    }
    for (std::uint32_t character = 0; character <= kLastCharacter; character++) {
        const auto code = lookup.fromUnicode(character);
        const std::uint32_t found = code ? *code : kNone;
        const std::uint32_t meant = page.codeOf(character);
        if (found != meant && !(found == kNone && character < 0x7F && meant == character))
            throw Problem(page.placeOf(meant == kNone ? kCodeCount : meant),
                          "page " + page.name + ": " + unicodeName(character) + " expected to give " +
                              named(meant, 2) + ", the finished file gives " + named(found, 2));
    }
}

} // namespace

void verifyMappings(std::span<const std::uint8_t> file,
                    const std::vector<std::shared_ptr<const Page>> &pages) {
    std::map<std::string, std::size_t> records; // offset by source page
    file::Header header;
    std::memcpy(&header, file.data(), sizeof header);
    const auto count = static_cast<std::size_t>(readNumber(header.entryCount, sizeof header.entryCount));
    for (std::size_t i = 0; i < count; i++) {
        file::Entry entry;
        std::memcpy(&entry, file.data() + sizeof header + i * sizeof entry, sizeof entry);
        const long offset = readNumber(entry.offset, sizeof entry.offset);
        if (entry.kind == '0' + file::kConversion && std::string_view(entry.name2) == "UTF-8" && offset != 0)
            records.emplace(entry.name, static_cast<std::size_t>(offset));
    }
    for (const auto &page : pages) {
        const auto found = records.find(page->name);
        if (found == records.end())
            throw Problem(page->placeOf(kCodeCount),
                          "page " + page->name + ": expected a mapping to UTF-8 in the finished file");
        verifyMapping(FileLookup(file, found->second), *page);
    }
}

} // namespace velnls::nlsgen
