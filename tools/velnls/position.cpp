// Counts line feeds and characters.
#include "position.hpp"

#include <algorithm>
#include <cstring>

#include "scan.hpp"

namespace velnls::tool {

namespace {

// How often "wanted" stands among the units of the text. Written so that compilers count many units at once:
// partial counts stay within a unit until they are added up.
template <typename Unit>
std::size_t countUnits(const unsigned char *text, std::size_t size, Unit wanted) {
    constexpr std::size_t kLanes = 32 / sizeof(Unit);
    constexpr std::size_t kRounds = 255; // what the smallest unit can count to
    std::size_t count = 0;
    while (size >= 32) {
        const std::size_t rounds = std::min(size / 32, kRounds);
        Unit lanes[kLanes] = {};
        for (std::size_t round = 0; round < rounds; ++round) {
            Unit units[kLanes];
            std::memcpy(units, text + round * 32, 32);
            for (std::size_t lane = 0; lane < kLanes; ++lane) {
                lanes[lane] = static_cast<Unit>(lanes[lane] + (units[lane] == wanted ? 1 : 0));
            }
        }
        for (const Unit lane : lanes) {
            count += lane;
        }
        text += rounds * 32;
        size -= rounds * 32;
    }
    for (; size >= sizeof(Unit); text += sizeof(Unit), size -= sizeof(Unit)) {
        Unit unit;
        std::memcpy(&unit, text, sizeof unit);
        count += unit == wanted ? 1 : 0;
    }
    return count;
}

std::size_t countLineFeeds(const Page &page, const unsigned char *text, std::size_t size) {
    switch (page.unitSize()) {
    case 2:
        return countUnits<std::uint16_t>(text, size, page.highByteFirst ? 0x0A00 : 0x000A);
    case 4:
        return countUnits<std::uint32_t>(text, size, page.highByteFirst ? 0x0A000000u : 0x0000000Au);
    default:
        return countUnits<unsigned char>(text, size, page.lineFeed);
    }
}

// Start of the last line: the place behind the last line feed, which must exist.
std::size_t lastLine(const Page &page, const unsigned char *text, std::size_t size) {
    const std::size_t unit = page.unitSize();
    std::size_t at = size;
    if (unit == 1) {
        while (text[at - 1] != page.lineFeed) {
            --at;
        }
        return at;
    }
    while (page.unit(text + at - unit) != 0x0A) {
        at -= unit;
    }
    return at;
}

std::size_t countCharacters(const Page &page, const unsigned char *text, std::size_t size) {
    std::size_t count = 0;
    switch (page.form) {
    case Form::SingleByte:
        return size;
    case Form::Utf8:
        for (std::size_t i = 0; i < size; ++i) {
            count += (text[i] & 0xC0) != 0x80 ? 1 : 0;
        }
        return count;
    case Form::Utf16:
        for (std::size_t i = 0; i + 1 < size; i += 2) {
            count += (page.unit(text + i) & 0xFC00u) != 0xDC00u ? 1 : 0;
        }
        return count;
    case Form::Utf32:
        return size / 4;
    case Form::Multibyte:
    case Form::Gb18030:
        break;
    }
    for (std::size_t i = 0; i < size; i += characterLength(page, text + i)) {
        ++count;
    }
    return count;
}

} // namespace

void Position::advance(const unsigned char *text, std::size_t size) {
    const std::size_t lineFeeds = countLineFeeds(*page_, text, size);
    if (lineFeeds != 0) {
        const std::size_t start = lastLine(*page_, text, size);
        line_ += lineFeeds;
        column_ = 1;
        text += start;
        size -= start;
    }
    column_ += countCharacters(*page_, text, size);
}

} // namespace velnls::tool
