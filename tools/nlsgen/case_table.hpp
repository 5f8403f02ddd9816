// Case table records: a byte map for byte pages, two lists of character pairs for UTF-8.
#pragma once

#include "core/file_layout.hpp"
#include "page.hpp"
#include "unicode_data.hpp"

#include <optional>

namespace velnls::nlsgen {

// The letters' simple counterparts where the page has them; multibyte pages map ASCII only. With `turkish`
// the dotted and the dotless i are two letters.
file::CaseTable makeByteCaseTable(const Page &page, const UnicodeData &unicode, bool turkish);

file::UnicodeCaseTable makeUnicodeCaseTable(const UnicodeData &unicode, bool turkish);

struct CaseListFault {
    bool upper; // which list
    std::size_t pair;
    std::string expected;
};

// The first pair of the lists that the library's pages cannot represent: room, one character a slot, a
// counterpart of the same lead byte and length class.
std::optional<CaseListFault> faultOfUnicodeCaseTable(const file::UnicodeCaseTable &table);

// Throws Problem at `place` for such a pair.
void checkUnicodeCaseTable(const file::UnicodeCaseTable &table, const Place &place);

} // namespace velnls::nlsgen
