// One round of random text through a call, beside its twin. A difference is a fatal failure.
#pragma once

#include "calls.hpp"

namespace kit {

void checkCompare(const Kit &one, TextMaker &maker);
void checkCompareWithLengths(const Kit &one, TextMaker &maker);
void checkSortKey(const Kit &one, TextMaker &maker);
void checkCaseMapping(const Kit &one, TextMaker &maker);

} // namespace kit
