// The companion of a page that collates through Shift-JIS: its locale and the conversion to it.
#pragma once

#include "locale/locale.hpp"
#include "locale/text.hpp"

namespace velnls {

struct ShiftJisWay {
    const CharTable *chars; // of the Shift-JIS locale
    const void *converter;  // from the page to Shift-JIS; null: they are the same
};

// Looks both up on the handle's object list: 0, 7 (no such locale) or 8 (no such conversion).
nlsStatus findShiftJisWay(const nlsLocale &locale, ShiftJisWay &way);

// The character at text.at, 1 or 2 bytes, converted; text moves past it. The number of bytes written, 1 or 2.
unsigned takeAsShiftJis(const CharTable &pageChars, const ShiftJisWay &way, Text &text,
                        std::uint8_t (&out)[2]);

// The Shift-JIS form of a text, byte by byte.
class ShiftJisBytes {
public:
    ShiftJisBytes(const CharTable &pageChars, const ShiftJisWay &way, Text text)
        : pageChars_(pageChars), way_(way), text_(text) {}
    [[nodiscard]] bool more() const {
        return at_ != count_ || !text_.ended();
    }
    std::uint8_t take() {
        if (at_ == count_) {
            count_ = takeAsShiftJis(pageChars_, way_, text_, bytes_);
            at_ = 0;
        }
        return bytes_[at_++];
    }

private:
    const CharTable &pageChars_;
    const ShiftJisWay &way_;
    Text text_;
    std::uint8_t bytes_[2] = {};
    unsigned at_ = 0;
    unsigned count_ = 0;
};

} // namespace velnls
