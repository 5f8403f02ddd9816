// The data file behind the tests of text: a page of every shape, and the tables in it one by one.
#pragma once

#include "data_file.hpp"

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
fixture::CollationTable thaiWeights();
fixture::CollationTable japaneseWeights();

// A data file with all of it.
fixture::DataFile worldFile();

} // namespace kit
