// See japanese.hpp. Works over rows and cells of the 94 x 94 set rather than by the byte formulas, so that
// the two ways of computing check one another.
#include "japanese.hpp"

#include "page.hpp"

namespace model {

std::uint32_t eucOfShiftJis(std::uint32_t code) {
    if (code < 0x80)
        return code;
    if (code >= 0xA1 && code <= 0xDF)
        return 0x8E00 + code;
    const std::uint32_t lead = code / 256;
    const std::uint32_t trail = code % 256;
    const bool isLead = (lead >= 0x81 && lead <= 0x9F) || (lead >= 0xE0 && lead <= 0xEF);
    if (!isLead || trail < 0x40 || trail == 0x7F || trail > 0xFC)
        return kNone;
    // Each lead byte carries two rows of 94 cells; the trail bytes leave out 7F.
    const std::uint32_t pair = lead < 0xA0 ? lead - 0x81 : lead - 0xC1;
    const std::uint32_t place = trail - 0x40 - (trail > 0x7F ? 1 : 0);
    const std::uint32_t row = pair * 2 + place / 94;
    const std::uint32_t cell = place % 94;
    return (0xA1 + row) * 256 + 0xA1 + cell;
}

} // namespace model
