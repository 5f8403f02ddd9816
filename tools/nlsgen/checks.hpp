// What the compiler proves of its entries before it writes them; weights, case lists and look-ups have their
// own checks beside them.
#pragma once

#include "data_file.hpp"
#include "page.hpp"

#include <vector>

namespace velnls::nlsgen {

// Both entries of every conversion exist with types that fit each other.
void checkPairs(const std::vector<PlannedEntry> &entries);

// Every page has "basic" of kind 4, and of kind 3 when its text is made of bytes.
void checkBasics(const std::vector<PlannedEntry> &entries);

// No two entries of a kind that the library could not tell apart; exactly one collation of UTF-8.
void checkNames(const std::vector<PlannedEntry> &entries);

// Every code walks as one character of its length and passes validation; lead bytes and digits are of class
// 0.
void checkCharTable(const Page &page);

} // namespace velnls::nlsgen
