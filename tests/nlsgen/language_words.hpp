// Words of many languages to order: ICU's own names of languages, countries, scripts, currencies, months and
// days.
#pragma once

#include <string>
#include <vector>

namespace velnls::nlsgen::test {

// The words of a text, each once, in code order: runs of letters with their marks.
std::vector<std::u16string> wordsOfText(const std::u16string &text);

// The words of the names that ICU has in the language of a locale.
std::vector<std::u16string> wordsOfIcuNames(const std::string &locale);

// The words of a file in UTF-8, at most `limit` of them, picked evenly. Empty when there is no such file.
std::vector<std::u16string> wordsOfFile(const std::string &path, std::size_t limit);

} // namespace velnls::nlsgen::test
