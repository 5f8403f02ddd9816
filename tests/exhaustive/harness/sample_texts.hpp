// Sentences of many scripts, as values of UTF-8 bytes: what real text looks like to a converter.
#pragma once

#include <string>
#include <vector>

namespace harness {

// UTF-8. Written by us; public pangrams and plain sentences.
const std::vector<std::string> &sampleTexts();

} // namespace harness
