// Tells well-formed text from malformed text, and complete characters from those that a buffer's edge cuts.
//
// The library's own decoders are lenient, so this program judges its input itself: UTF-8 by the table of
// well-formed sequences of the Unicode standard, UTF-16 and UTF-32 by their surrogates and range, multibyte
// pages by their lead and trail bytes. Whether a well-formed code is mapped is not asked here.
#pragma once

#include <cstddef>
#include <string>

#include "page.hpp"

namespace velnls::tool {

enum class Fault {
    None,
    LoneContinuation, // UTF-8: a continuation byte where a character should begin
    ImpossibleByte,   // UTF-8: a byte that no well-formed text has
    BadContinuation,  // UTF-8: the next byte does not continue the sequence
    BadTrail,         // multibyte: the next byte is no trail byte
    LoneHigh,         // UTF-16: a high surrogate without its low surrogate
    LoneLow,          // UTF-16: a low surrogate without its high surrogate
    Surrogate,        // UTF-32: a surrogate value
    OutOfRange,       // UTF-32: above U+10FFFF
    CutShort,         // the input ends inside a character or a unit
};

struct Scan {
    std::size_t good = 0; // bytes of complete, well-formed characters at the start
    std::size_t bad = 0;  // bytes of the malformed sequence behind them; 0 when there is none
    Fault fault = Fault::None;
};

// Looks at "size" bytes that begin at a character. With "atEnd" nothing follows them, so a cut character is
// malformed; without it, up to kLongestCharacter - 1 bytes may stay behind "good" as the start of a character
// yet to come.
Scan scanText(const Page &page, const unsigned char *text, std::size_t size, bool atEnd);

// Length of the first character of well-formed, non-empty text.
std::size_t characterLength(const Page &page, const unsigned char *text);

// What was found and what was expected, for a malformed sequence of "bad" bytes at "text"; "size" bytes may
// be read.
std::string describeFault(const Page &page, Fault fault, const unsigned char *text, std::size_t bad,
                          std::size_t size);

} // namespace velnls::tool
