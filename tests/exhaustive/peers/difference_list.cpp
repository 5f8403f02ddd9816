// See difference_list.hpp.
#include "difference_list.hpp"

#include <cstdio>
#include <fstream>

namespace peers {
namespace {

constexpr char kSeparator = '\t';

// Whether `next` continues `first` at a distance: both unmapped, or counted up by the distance.
bool continues(const std::string &first, const std::string &next, std::uint32_t distance) {
    if (first == "-" || next == "-" || first.find(' ') != std::string::npos)
        return first == next && first == "-";
    if (first.size() != next.size() || next.find(' ') != std::string::npos)
        return false;
    return std::stoul(first, nullptr, 16) + distance == std::stoul(next, nullptr, 16);
}

std::string number(std::uint32_t value) {
    char text[16];
    std::snprintf(text, sizeof text, value > 0xFF ? "%04X" : "%02X", value);
    return text;
}

// A character that only the peer has, with a code of three bytes.
bool isLongCode(const Difference &difference) {
    return difference.direction == "from-unicode" && difference.ours == "-" && difference.theirs.size() == 6;
}

} // namespace

std::vector<std::string> describe(const std::vector<Difference> &all) {
    std::vector<std::string> lines;
    std::vector<Difference> differences;
    std::uint32_t longCodes = 0;
    std::uint32_t checksum = 2166136261u;
    for (const Difference &difference : all) {
        if (!isLongCode(difference)) {
            differences.push_back(difference);
            continue;
        }
        ++longCodes;
        for (const char c : number(difference.input) + difference.theirs)
            checksum = (checksum ^ static_cast<std::uint8_t>(c)) * 16777619u;
    }
    if (longCodes != 0)
        lines.push_back(std::string("from-unicode") + kSeparator + std::to_string(longCodes) + " characters" +
                        kSeparator + "-" + kSeparator + "three bytes, checksum " + number(checksum));
    for (std::size_t i = 0; i < differences.size();) {
        const Difference &first = differences[i];
        std::size_t end = i + 1;
        while (end < differences.size() && differences[end].direction == first.direction &&
               differences[end].input == first.input + (end - i) &&
               continues(first.ours, differences[end].ours, static_cast<std::uint32_t>(end - i)) &&
               continues(first.theirs, differences[end].theirs, static_cast<std::uint32_t>(end - i)))
            ++end;
        std::string line = first.direction + kSeparator + number(first.input);
        if (end - i > 1)
            line += ".." + number(differences[end - 1].input);
        lines.push_back(line + kSeparator + first.ours + kSeparator + first.theirs);
        i = end;
    }
    return lines;
}

std::map<std::string, std::string> readList(const std::string &path) {
    std::map<std::string, std::string> reasons;
    std::ifstream file(path);
    std::string line;
    while (std::getline(file, line)) {
        if (line.empty() || line[0] == '#')
            continue;
        const std::size_t reason = line.rfind(kSeparator);
        reasons[line.substr(0, reason)] = line.substr(reason + 1);
    }
    return reasons;
}

std::string totals(const std::map<std::string, std::string> &list) {
    if (list.empty())
        return "same";
    std::uint64_t codes = 0;
    std::uint64_t characters = 0;
    for (const auto &[line, reason] : list) {
        const std::size_t start = line.find(kSeparator) + 1;
        const std::string range = line.substr(start, line.find(kSeparator, start) - start);
        const std::size_t dots = range.find("..");
        std::uint64_t count = 1;
        if (range.find(' ') != std::string::npos)
            count = std::stoul(range);
        else if (dots != std::string::npos)
            count = std::stoul(range.substr(dots + 2), nullptr, 16) - std::stoul(range, nullptr, 16) + 1;
        (line.rfind("to-unicode", 0) == 0 ? codes : characters) += count;
    }
    return std::to_string(codes) + " / " + std::to_string(characters);
}

void writeList(const std::string &path, const std::string &heading, const std::vector<std::string> &lines,
               const std::map<std::string, std::string> &reasons) {
    if (lines.empty()) {
        std::remove(path.c_str());
        return;
    }
    std::ofstream file(path);
    file << "# " << heading << "\n# direction" << kSeparator << "input" << kSeparator << "ours" << kSeparator
         << "theirs" << kSeparator << "reason\n";
    for (const std::string &line : lines) {
        const auto reason = reasons.find(line);
        file << line << kSeparator << (reason == reasons.end() ? "?" : reason->second) << '\n';
    }
}

} // namespace peers
