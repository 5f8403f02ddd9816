// Locales of every code page and collation that matching tells apart, opened once.
#pragma once

#include "library_fixture.hpp"
#include "model/twins.hpp"

#include <string>
#include <vector>

namespace fixture {

struct MatchPage {
    std::string name; // for messages
    model::Page page;
    std::vector<std::string> alphabet; // characters worth mixing, some of them equal to each other
};

class MatchPages {
public:
    MatchPages();

    [[nodiscard]] const std::vector<MatchPage> &all() const {
        return pages_;
    }
    [[nodiscard]] const MatchPage &operator[](const std::string &name) const;

    static MatchPages &instance();

private:
    Library library_;
    std::vector<MatchPage> pages_;
};

} // namespace fixture
