// Case mapping of a text by whatever case table its locale carries.
#pragma once

#include "core/instruction_sets.hpp"
#include "locale/case_fast.hpp"
#include "locale/case_kernels.hpp"
#include "locale/locale.hpp"
#include "locale/short_text.hpp"

namespace velnls {

// `known`: no NUL stands in the text before it; null: nothing is known.
template <Case kCase>
CaseResult mapTextCase(const nlsLocale &locale, Text text, const std::uint8_t *known, std::uint8_t *out,
                       std::size_t room) {
    const CharTable &chars = *locale.charTable;
    if (locale.caseTable == nullptr)
        return mapByRuntime<kCase>(chars, text, out, room);
    const std::uint32_t proofs = locale.header.proofs;
    if (chars.has(file::kUtf8))
        return mapByPages<kCase>(chars, *static_cast<const UnicodeCaseTable *>(locale.caseTable), proofs,
                                 text, known, out, room);
    return mapByBytes<kCase>(chars, *static_cast<const ByteCaseTable *>(locale.caseTable), proofs, text,
                             known, out, room);
}

// What becomes of a short text at once, where the locale's proofs and the processor allow it; else kNotShort.
template <Case kCase>
[[gnu::always_inline]] inline std::size_t mapShortCase(const nlsLocale &locale,
                                                       const avx512::ShortText &text) {
    const std::uint32_t proofs = locale.header.proofs;
    if ((proofs & kWideVectors) == 0)
        return avx512::kNotShort;
    if ((proofs & kCommonCase) != 0)
        return avx512::mapShortUtf8<kCase>(text);
    if (constexpr std::uint32_t kPairs = kPairPage | kPairCase; (proofs & kPairs) == kPairs)
        return avx512::mapShortPairs<kCase>(factsOf(*locale.charTable), text);
    if (constexpr std::uint32_t kBytes = kSingleBytePage | kKeepsBytes; (proofs & kBytes) == kBytes) {
        const auto &table = *static_cast<const ByteCaseTable *>(locale.caseTable);
        return avx512::mapShortBytes(kCase == Case::Upper ? table.upper : table.lower, text);
    }
    return avx512::kNotShort;
}

} // namespace velnls
