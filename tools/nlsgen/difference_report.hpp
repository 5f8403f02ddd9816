// Where `nlsgen diff` writes to: one line a difference, characters by their names.
#pragma once

#include "character_names.hpp"
#include "problem.hpp"

#include <optional>
#include <ostream>

namespace velnls::nlsgen {

class DifferenceReport {
public:
    DifferenceReport(const CharacterNames &names, std::ostream &out) : names_(names), out_(out) {}

    void add(const std::string &line) {
        out_ << line << '\n';
        count_++;
    }
    [[nodiscard]] std::size_t count() const {
        return count_;
    }
    [[nodiscard]] std::string character(std::uint32_t codePoint) const {
        return names_.describe(codePoint);
    }
    [[nodiscard]] std::string character(std::optional<std::uint32_t> codePoint) const {
        return codePoint ? character(*codePoint) : "nothing";
    }

private:
    const CharacterNames &names_;
    std::ostream &out_;
    std::size_t count_ = 0;
};

} // namespace velnls::nlsgen
