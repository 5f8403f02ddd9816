#include "match_world.hpp"

#include <algorithm>
#include <cstring>

namespace fuzz {

namespace {

struct Opened {
    Opened() : file(fixture::matchFile().image()), memory(kRoom) {
        serve(file.data(), file.size());
        nlsHandle *handle = nullptr;
        require(nlsInit(1, memory.data(), kRoom, &readServed, &handle) == NLS_OK);
        for (const fixture::PageData &data : fixture::matchPageData()) {
            model::Page page;
            require(nlsCreateLocale(handle, data.codePage.c_str(), data.collation, data.caseTable,
                                    &page.locale) == NLS_OK);
            page.attributes = data.table.attributes;
            page.utf8 = (data.table.flags & fixture::kUtf8) != 0;
            pages.push_back(page);
        }
    }
    static constexpr std::int32_t kRoom = 600000;
    fixture::Bytes file;
    Block memory;
    std::vector<model::Page> pages;
};

} // namespace

const model::Page &matchPage(unsigned number) {
    static Opened opened;
    return opened.pages[number % opened.pages.size()];
}

std::string stringOf(Input &input, std::size_t most) {
    const std::vector<std::uint8_t> bytes = input.bytes(most);
    return {bytes.begin(), std::find(bytes.begin(), bytes.end(), 0)};
}

Copy::Copy(const std::string &text) : block_(text.size() + 1) {
    std::memcpy(block_.data(), text.c_str(), text.size() + 1);
}

} // namespace fuzz
