// The installed ICU, called directly: what must come out by way of the library too, and texts to try it with.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <unicode/ucol.h>

namespace direct {

using Words = std::vector<std::u16string>;
using Collator = std::unique_ptr<UCollator, decltype(&ucol_close)>;

// Words of many languages, and random ones from the scripts that the collations are about: always the same.
Words manyWords();

// A run of code points as UTF-16; zero, which ends a text, and surrogates left out.
std::u16string codePoints(std::uint32_t from, std::uint32_t to);

// What ICU of today calls the order of a name of then, both without "ICU-".
std::string nameToday(const std::string &name);

// The collator of a name of then. Fails the test when ICU has none.
Collator openCollator(const std::string &name, UCollationStrength strength);

// A text in other encodings. What ICU cannot convert fails the test.
std::string utf8(const std::u16string &text);
std::string gb18030(const std::u16string &text);

} // namespace direct
