// Draws curves of time per byte over the size of the text, both axes by powers, as an SVG picture.
#pragma once

#include "growth.hpp"

#include <string>

namespace bench {

std::string plotGrowth(const std::vector<Curve> &curves);

} // namespace bench
