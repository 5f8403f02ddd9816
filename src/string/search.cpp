#include "string/search.hpp"

#include "string/count.hpp"

namespace velnls {

nlsStatus countText(const nlsLocale &locale, const std::uint8_t *text, std::size_t length, Counted &counted) {
    const auto bytes = static_cast<std::uint32_t>(length);
    counted = {text, text + length, bytes};
    return locale.charTable->has(file::kMultibyte) ? countCharacters(locale, text, bytes, counted.characters)
                                                   : NLS_OK;
}

bool isCut(const CharTable &table, const std::uint8_t *text, const std::uint8_t *end) {
    const TableCharacters characters{table};
    return table.has(file::kMultibyte) && Boundaries(characters, text).from(end) != end;
}

} // namespace velnls
