#include "string/search.hpp"

#include "core/utf8_boundary.hpp"
#include "locale/page_facts.hpp"
#include "string/count.hpp"

namespace velnls {

nlsStatus countText(const nlsLocale &locale, const std::uint8_t *text, std::size_t length, Counted &counted) {
    const auto bytes = static_cast<std::uint32_t>(length);
    counted = {text, text + length, bytes};
    return locale.charTable->has(file::kMultibyte) ? countCharacters(locale, text, bytes, counted.characters)
                                                   : NLS_OK;
}

bool isCut(const nlsLocale &locale, const std::uint8_t *text, const std::uint8_t *end) {
    const CharTable &table = *locale.charTable;
    if (!table.has(file::kMultibyte))
        return false;
    // Mostly none of the last bytes of UTF-8 announces any behind the end.
    if ((locale.header.proofs & kUtf8Page) != 0 && nothingReachesAcross(text, end))
        return false;
    if ((locale.header.proofs & kPairPage) != 0)
        return !beginsCharacter(table, end, text);
    return cutsCharacter(TableCharacters(locale), text, end);
}

} // namespace velnls
