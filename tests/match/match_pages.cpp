#include "match_pages.hpp"

#include "match_data.hpp"

#include <stdexcept>

namespace fixture {

MatchPages::MatchPages() : library_(matchFile()) {
    for (const PageData &data : matchPageData()) {
        MatchPage page;
        page.name = data.name;
        page.page.locale = library_.locale(data.codePage, data.collation, data.caseTable);
        page.page.attributes = data.table.attributes;
        page.page.utf8 = (data.table.flags & kUtf8) != 0;
        page.alphabet = data.alphabet;
        pages_.push_back(page);
    }
}

const MatchPage &MatchPages::operator[](const std::string &name) const {
    for (const MatchPage &page : pages_)
        if (page.name == name)
            return page;
    throw std::out_of_range(name);
}

MatchPages &MatchPages::instance() {
    static MatchPages pages;
    return pages;
}

} // namespace fixture
