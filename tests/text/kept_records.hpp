// The stored records that are kept as files beside the tests.
#pragma once

#include <string>

// Writes them, with the order and the keys that they give, as this build of the library does.
void writeKeptRecords(const std::string &folder);
