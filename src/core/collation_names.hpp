// The collations that ICU serves under "ICU-" names: one text, shared by everything that lists or accepts
// them.
#pragma once

#include <string_view>

namespace velnls {

inline constexpr std::string_view kIcuPrefix = "ICU-";

inline constexpr std::string_view kIcuCollationNames =
    "ICU-UCA,ICU-ar,ICU-be,ICU-bg,ICU-ca,ICU-cs,ICU-da,ICU-de__PHONEBOOK,ICU-el,ICU-en_BE,ICU-eo,ICU-es,"
    "ICU-es__TRADITIONAL,ICU-et,ICU-fa,ICU-fi,ICU-fr,ICU-gu,ICU-he,ICU-hi,ICU-hi__DIRECT,ICU-hr,ICU-hu,"
    "ICU-is,ICU-ja,ICU-ja__HQ,ICU-kn,ICU-ko,ICU-lt,ICU-lv,ICU-mk,ICU-mr,ICU-mt,ICU-nb,ICU-nn,ICU-pl,ICU-ro,"
    "ICU-ru,ICU-sh,ICU-sk,ICU-sl,ICU-sq,ICU-sr,ICU-sv,ICU-ta,ICU-te,ICU-th,ICU-tr,ICU-uk,ICU-vi,ICU-zh,"
    "ICU-zh_HK,ICU-zh_MO,ICU-zh_TW,ICU-zh__PINYIN";

inline constexpr std::size_t kIcuCollationCount = 55;
static_assert(kIcuCollationNames.size() == 441);

// Calls `visit` with each name of the list in order, until it returns false. False when it did.
template <typename Visit>
constexpr bool forEachIcuCollation(Visit visit) {
    std::string_view rest = kIcuCollationNames;
    while (!rest.empty()) {
        const std::size_t comma = rest.find(',');
        const bool last = comma == std::string_view::npos;
        if (!visit(std::string_view(rest.data(), last ? rest.size() : comma)))
            return false;
        rest.remove_prefix(last ? rest.size() : comma + 1);
    }
    return true;
}

} // namespace velnls
