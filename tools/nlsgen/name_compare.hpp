// Names of entries as the library compares them: letter case and trailing blanks do not count.
#pragma once

#include <string>
#include <string_view>

namespace velnls::nlsgen {

inline std::string foldedName(std::string_view name) {
    std::string folded(name.substr(0, name.find_last_not_of(' ') + 1));
    for (char &c : folded)
        if (c >= 'a' && c <= 'z')
            c = static_cast<char>(c - 'a' + 'A');
    return folded;
}

} // namespace velnls::nlsgen
