// The plain way to order strings, from what the library says of single characters only: what compares, sorts
// and keys of whole strings are checked against before they are timed.
//
// The orders of the peers are other orders (other places of punctuation, several levels), so their answers
// cannot be compared with ours.
#pragma once

#include "string_texts.hpp"
#include "velnls.h"

#include <cstdint>
#include <map>
#include <string>

namespace bench {

class PlainOrder {
public:
    // Of a weight table a character's weights are its key, a second one stays away at the end of a compare;
    // of BASIC it is its bytes as they stand (mode 1) or in lower case (mode 0), read as a big-endian number.
    PlainOrder(nlsLocale *locale, bool basic, std::uint16_t mode)
        : locale_(locale), basic_(basic), mode_(mode) {}

    // -1, 0 or 1; blanks at the end do not count.
    int compare(const char *a, const char *b);
    std::string key(const char *text);

private:
    struct Step {
        std::uint32_t weight;
        std::string key;
    };
    // The character at `text`, which moves behind it.
    const Step &take(const char *&text);
    Step stepOf(const std::string &character);

    nlsLocale *locale_;
    bool basic_;
    std::uint16_t mode_;
    std::map<std::string, Step> known_;
};

} // namespace bench
