// Finds the code page that a user means, or the ones that may be meant.
#pragma once

#include <stdexcept>
#include <string>
#include <vector>

#include "library.hpp"

namespace velnls::tool {

// The name is no code page of the data file; what() says so, with near names when there are any.
struct UnknownPage : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// The page's name as the data file spells it; letter case and trailing blanks do not matter. Throws
// UnknownPage.
std::string resolvePage(const Library &library, const std::string &wanted);

// Up to five of "names" that "wanted" may stand for, best first: names that other programs use, then names
// that differ in prefixes and punctuation, then misspellings.
std::vector<std::string> nearNames(const std::string &wanted, const std::vector<std::string> &names);

} // namespace velnls::tool
