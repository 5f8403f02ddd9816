// Locales of every kind that matching tells apart, over one data file made in memory.
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

    // All that order every two strings in the modes 0 and 1.
    [[nodiscard]] const std::vector<MatchPage> &all() const {
        return pages_;
    }
    [[nodiscard]] const MatchPage &operator[](const std::string &name) const;

    // Single bytes without a collation.
    [[nodiscard]] nlsLocale *unordered() {
        return unordered_;
    }

    static MatchPages &instance();

private:
    void add(const std::string &name, const std::string &codePage, const char *collation,
             const char *caseTable, const CharacterTable &table, std::vector<std::string> alphabet);

    Library library_;
    std::vector<MatchPage> pages_;
    nlsLocale *unordered_;
};

} // namespace fixture
