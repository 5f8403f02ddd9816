// Case mapping of a text by whatever case table its locale carries.
#pragma once

#include "locale/case_kernels.hpp"
#include "locale/locale.hpp"

namespace velnls {

template <Case kCase>
CaseResult mapTextCase(const nlsLocale &locale, Text text, std::uint8_t *out, std::size_t room) {
    const CharTable &chars = *locale.charTable;
    if (locale.caseTable == nullptr)
        return mapByRuntime<kCase>(chars, text, out, room);
    const std::uint32_t proofs = locale.header.proofs;
    if (chars.has(file::kUtf8))
        return mapByPages<kCase>(chars, *static_cast<const UnicodeCaseTable *>(locale.caseTable), proofs,
                                 text, out, room);
    return mapByBytes<kCase>(chars, *static_cast<const ByteCaseTable *>(locale.caseTable), proofs, text, out,
                             room);
}

} // namespace velnls
