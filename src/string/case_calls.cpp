// nlsUpperCase, nlsLowerCase.
#include "locale/case_text.hpp"
#include "locale/checks.hpp"

#include <algorithm>

using namespace velnls;

namespace {

template <Case kCase>
nlsStatus mapCase(const nlsLocale *locale, const nlsStr *source, nlsStr *destination) {
    if (const nlsStatus status = checkLocale(locale); status != NLS_OK)
        return status;
    if (locale->charTable == nullptr)
        return NLS_E_NOCHARTAB;
    if (source == nullptr || destination == nullptr || destination->buffer == nullptr ||
        source->buffer == nullptr)
        return NLS_E_NULLARG;
    const auto room = static_cast<std::size_t>(std::max(static_cast<std::int32_t>(destination->size), 0));
    auto *const out = reinterpret_cast<std::uint8_t *>(destination->buffer);
    const auto *const text = reinterpret_cast<const std::uint8_t *>(source->buffer);
    if (const std::size_t written = mapShortCase<kCase>(*locale, {text, false, out, room, false});
        written != avx512::kNotShort) {
        destination->length = static_cast<std::uint32_t>(written);
        return NLS_OK;
    }
    const CaseResult result = mapTextCase<kCase>(*locale, terminatedText(text), nullptr, out, room);
    if (result.complete) {
        // Behind an exactly filled buffer the terminator takes one byte more, as documented.
        destination->buffer[result.written] = '\0';
        destination->length = static_cast<std::uint32_t>(result.written);
        return NLS_OK;
    }
    if (kCase == Case::Lower && result.cutCharacter)
        destination->buffer[result.written] = '\0';
    return NLS_E_BUFFER;
}

} // namespace

nlsStatus nlsUpperCase(nlsLocale *locale, const nlsStr *source, nlsStr *destination) {
    return mapCase<Case::Upper>(locale, source, destination);
}

nlsStatus nlsLowerCase(nlsLocale *locale, const nlsStr *source, nlsStr *destination) {
    return mapCase<Case::Lower>(locale, source, destination);
}
