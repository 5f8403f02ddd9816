#include "collate/basic.hpp"

#include "collate/weight_stream.hpp"
#include "locale/case_map.hpp"

namespace velnls {

namespace {

constexpr unsigned kLongestNumbered = 4;

class FoldedSteps {
public:
    FoldedSteps(const nlsLocale &locale, Text text) : locale_(locale), text_(text) {}
    [[nodiscard]] bool more() const {
        return !text_.ended();
    }
    std::uint32_t take() {
        return takeFolded(locale_, text_);
    }
    [[nodiscard]] Text rest() const {
        return text_;
    }

private:
    const nlsLocale &locale_;
    Text text_;
};

} // namespace

std::uint32_t foldNumber(const nlsLocale &locale, std::uint32_t number) {
    if (number >= 0x1000000)
        return number;
    if (locale.caseTable != nullptr && locale.charTable->has(file::kUtf8))
        return mapUtf8Case<Case::Lower>(*static_cast<const UnicodeCaseTable *>(locale.caseTable), number);
    if (number > 0xFF)
        return number;
    const auto byte = static_cast<std::uint8_t>(number);
    return locale.caseTable == nullptr
               ? mapRuntimeCase<Case::Lower>(byte)
               : mapByteCase<Case::Lower>(*static_cast<const ByteCaseTable *>(locale.caseTable), byte);
}

std::uint32_t takeFolded(const nlsLocale &locale, Text &text) {
    const unsigned length = locale.charTable->trailCount(*text.at) + 1;
    const unsigned taken = text.available(length);
    std::uint32_t number = '?';
    if (length <= kLongestNumbered) {
        number = 0;
        for (unsigned i = 0; i < taken; ++i)
            number = number << 8 | text.at[i];
    }
    text.at += taken;
    return foldNumber(locale, number);
}

int compareBytes(Text a, Text b) {
    while (!a.ended() && !b.ended()) {
        if (*a.at != *b.at)
            return *a.at < *b.at ? -1 : 1;
        ++a.at;
        ++b.at;
    }
    return compareRests(a, b);
}

int compareFolded(const nlsLocale &locale, Text a, Text b) {
    return compareSteps(FoldedSteps(locale, a), FoldedSteps(locale, b));
}

} // namespace velnls
