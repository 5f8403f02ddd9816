// Reader of POSIX charmaps, as Debian's package "locales" carries them.
#pragma once

#include "code_list.hpp"

namespace velnls::nlsgen {

// Reads the body between CHARMAP and END CHARMAP. Honours <escape_char> and <comment_char>; a line is
// `<Uxxxx> bytes`, `<Uxxxx>..<Uyyyy> bytes` (the last byte counts up), each also behind %IRREVERSIBLE%
// (code to Unicode only). Codes of three and more bytes are skipped. Throws Problem with file and line.
CodeList readCharmap(const std::string &path);

} // namespace velnls::nlsgen
