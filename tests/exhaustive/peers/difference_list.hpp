// The reviewed list of the codes on which a peer and a page differ, one text file a page and peer.
//
// A line: direction, range of inputs, our value of the first input, the peer's, and the reason. Along a range
// each value stays "-" (not mapped) or counts up with the input.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace peers {

struct Difference {
    std::string direction; // "to-unicode" or "from-unicode"
    std::uint32_t input;
    std::string ours; // hexadecimal, "-" when not mapped
    std::string theirs;
};

// Lines without their reasons, neighbours joined into ranges. Characters that have a code of three bytes at
// the peer and none here are one line together, with their number and a checksum of inputs and codes.
std::vector<std::string> describe(const std::vector<Difference> &all);

// The reason of each line of a file; comment lines are left out. Empty when there is no such file.
std::map<std::string, std::string> readList(const std::string &path);

// "codes / characters" that the lines stand for, "same" when there are none: what the manual states.
std::string totals(const std::map<std::string, std::string> &list);

// Writes the lines with the reasons they had; new ones get "?", for a person to replace.
void writeList(const std::string &path, const std::string &heading, const std::vector<std::string> &lines,
               const std::map<std::string, std::string> &reasons);

} // namespace peers
