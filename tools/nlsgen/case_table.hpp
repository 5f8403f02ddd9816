// Case table records: a byte map for byte pages, two lists of character pairs for UTF-8.
#pragma once

#include "core/file_layout.hpp"
#include "page.hpp"
#include "unicode_data.hpp"

namespace velnls::nlsgen {

// The letters' simple counterparts where the page has them; multibyte pages map ASCII only. With `turkish`
// the dotted and the dotless i are two letters.
file::CaseTable makeByteCaseTable(const Page &page, const UnicodeData &unicode, bool turkish);

file::UnicodeCaseTable makeUnicodeCaseTable(const UnicodeData &unicode, bool turkish);

struct CaseListCounts {
    int upper = 0;
    int lower = 0;
};

// Proves that the lists keep to what the library's pages can represent: room, one character a slot, a
// counterpart of the same lead byte and length class. Throws Problem at `place`.
CaseListCounts checkUnicodeCaseTable(const file::UnicodeCaseTable &table, const Place &place);

} // namespace velnls::nlsgen
