#include "locale.hpp"

namespace model {

std::uint32_t utf8Number(std::uint32_t character) {
    if (character < 0x80)
        return character;
    if (character < 0x800)
        return (0xC0 + character / 64) * 256 + 0x80 + character % 64;
    return (0xE0 + character / 4096) * 65536 + (0x80 + character / 64 % 64) * 256 + 0x80 + character % 64;
}

CasePages::CasePages(const fixture::UnicodeCase &lists) {
    for (unsigned pass = 0; pass < 2; ++pass)
        for (const auto &[character, counterpart] : pass == 0 ? lists.upper : lists.lower) {
            std::uint32_t number = utf8Number(character);
            switch (number / 65536) {
            case 0xE1:
                number -= 0xE17F80;
                break;
            case 0xE2:
                number -= 0xE23F80;
                break;
            case 0xEF:
                number -= 0xEEFF80;
                break;
            default:
                break;
            }
            const unsigned page = number / 256 % 256;
            const unsigned index = number % 128;
            const unsigned half = page == 0 ? 128 : 64;
            if (pages[page].empty())
                pages[page].resize(2 * half);
            pages[page].at(index + half * pass) = fixture::halfOf(utf8Number(counterpart));
        }
}

namespace {

// An index behind the page's end is that of a byte that is no trail byte; it has no counterpart.
unsigned at(const std::vector<std::uint16_t> &page, unsigned index) {
    return index < page.size() ? page[index] : 0;
}

} // namespace

unsigned CasePages::upper(unsigned page, unsigned index) const {
    return at(pages[page], index);
}

unsigned CasePages::lower(unsigned page, unsigned index) const {
    return at(pages[page], index + (page == 0 ? 128 : 64));
}

} // namespace model
