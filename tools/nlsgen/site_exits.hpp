// Collations that a site orders by itself: data/site/exits.txt names them, the user sort exit serves them.
#pragma once

#include "data_file.hpp"

#include <string>
#include <vector>

namespace velnls::nlsgen {

struct SiteExit {
    std::string page;
    std::string collation;
    Place place;
};

// The lines "PAGE COLLATION" of a file, "#" in front of remarks; none when there is no such file. Throws
// Problem.
std::vector<SiteExit> readSiteExits(const std::string &path);

// The record of such a collation. The exit is handed two tables: those of `basic`, the page's own, where that
// is weights; else each byte's value, and the value of its lower-case ASCII letter.
Bytes makeExitCollation(const Bytes &basic);

// Throws Problem when a line is left that names no page of the file, or one without its companion.
void checkSiteExits(const std::vector<SiteExit> &exits, const std::vector<PlannedEntry> &entries);

} // namespace velnls::nlsgen
