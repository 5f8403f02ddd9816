// Any pattern and any text under any signs, on a page of every kind: the answer is that of the recursive
// rules, and the same when the text is too long for a plain walk.
#include "match_world.hpp"

#include <algorithm>

namespace {

// Not below the number of any-string wildcards in a pattern. Characters of five bytes and more have the value
// 63, whatever their bytes.
std::size_t mostWildcards(const std::string &pattern, const model::Signs &signs) {
    if (signs.anyString == 63)
        return pattern.size();
    return static_cast<std::size_t>(
        std::count(pattern.begin(), pattern.end(), static_cast<char>(signs.anyString)));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    fuzz::Input input(data, size);
    const model::Page &page = fuzz::matchPage(input.byte());
    const unsigned choice = input.byte();
    const auto mode = static_cast<std::uint16_t>(choice & 1);
    model::Signs signs{'!', '_', '%'};
    if ((choice & 2) != 0) // any characters, one or several of them absent or equal
        signs = {input.byte(), input.half(), input.half()};
    const std::string pattern = fuzz::stringOf(input, 24);
    // The recursion of the twin multiplies with every wildcard, so texts get shorter.
    const std::size_t wildcards = mostWildcards(pattern, signs);
    const unsigned longest = wildcards <= 2 ? 400 : wildcards <= 4 ? 40 : wildcards <= 8 ? 14 : 6;
    std::string text = fuzz::stringOf(input, longest);
    if ((choice & 4) != 0 && wildcards <= 2) // long enough for blocks
        for (std::string piece = text; !piece.empty() && text.size() < 1200;)
            text += piece;
    fuzz::Copy patternCopy(pattern);
    fuzz::Copy textCopy(text);
    const nlsStatus actual = nlsSqlLike(page.locale, patternCopy.get(), textCopy.get(), mode, signs.escape,
                                        signs.oneCharacter, signs.anyString);
    fuzz::require(actual == model::like(page, pattern, text, mode, signs));
    return 0;
}
