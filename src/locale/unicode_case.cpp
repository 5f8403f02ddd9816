#include "locale/unicode_case.hpp"

namespace velnls {

std::uint32_t utf8Number(std::uint16_t unit) {
    if (unit < 0x80)
        return unit;
    const std::uint32_t last = 0x80u | (unit & 0x3Fu);
    if (unit < 0x800)
        return (0xC0u | unit >> 6) << 8 | last;
    if (unit >= 0xD800 && unit < 0xE000)
        return 0;
    return (0xE0u | unit >> 12) << 16 | (0x80u | (unit >> 6 & 0x3Fu)) << 8 | last;
}

CaseSlot caseSlot(std::uint32_t utf8) {
    // Three-byte characters of the leads that case mapping knows get pages of their own; of any other lead
    // the lead byte is dropped, which lets such characters overwrite one another.
    switch (utf8 >> 16) {
    case 0xE1:
        utf8 -= 0xE17F80;
        break;
    case 0xE2:
        utf8 -= 0xE23F80;
        break;
    case 0xEF:
        utf8 -= 0xEEFF80;
        break;
    default:
        break;
    }
    return {utf8 >> 8 & 0xFFu, utf8 & 0x7Fu};
}

} // namespace velnls
