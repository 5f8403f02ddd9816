// The data file behind the tests of text: a page of every shape, and the tables in it one by one.
#pragma once

#include "data_file.hpp"

#include <string_view>

namespace kit {

using fixture::Bytes;
using fixture::operator+;

// Tables, as they stand in the data file and in the twins.
fixture::CharacterTable latinPage();
fixture::CharacterTable eucPage();
fixture::CharacterTable longPage();
fixture::ByteCase latinCase();
fixture::ByteCase losingCase(); // a letter and a byte that is none become NUL in lower case
fixture::UnicodeCase unicodeCase();
fixture::UnicodeCase commonCase(); // all that the fast kernels are for
fixture::CollationTable germanWeights(unsigned char kind = 1, unsigned char variant = 1);
fixture::CollationTable literalWeights(); // identity, so that S is 53 and the blank 20; DF expands to "SS"
// Tables of 1252 by name: the two above, "other" of another kind, and those with a weight of its own for
// every byte, for every byte of ASCII, and for neither, in two ways.
inline constexpr const char *kLatinTables[] = {"german",        "literal",     "other",         "own",
                                               "plain letters", "marks alike", "a mark expands"};
fixture::CollationTable latinWeights(std::string_view name);
fixture::CollationTable thaiWeights();
fixture::CollationTable japaneseWeights();

// A data file with all of it.
fixture::DataFile worldFile();

} // namespace kit
