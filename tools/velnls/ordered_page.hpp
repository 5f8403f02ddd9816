// A code page with the collation and the letter-case rule that a command was given.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "commands.hpp"
#include "data_source.hpp"
#include "library.hpp"
#include "page.hpp"

namespace velnls::tool {

// Holds the data file and the library too, so it stands for everything that a command on text needs. Throws
// StatusError, UnknownPage or std::runtime_error when the names do not exist or the page cannot be walked.
class OrderedPage {
public:
    explicit OrderedPage(const OrderOptions &options);

    const Page &page() const {
        return page_;
    }
    nlsLocale *locale() const {
        return locale_;
    }
    // 1 where letter case counts, else 0.
    std::uint16_t mode() const {
        return mode_;
    }
    // Whether keys are made by ICU, which looks at a text as a whole.
    bool isIcu() const {
        return isIcu_;
    }
    // Bytes of the character that begins with "byte", as the library walks.
    std::size_t step(unsigned char byte) const {
        return trailCounts_[byte] + std::size_t{1};
    }
    // A word of the command line, which is UTF-8, in the code page. "what" names it in messages.
    std::string argument(const std::string &text, const char *what);
    // The same for a single character; the packed number that the library takes.
    std::uint32_t character(const std::string &text, const char *what);

private:
    DataSource data_;
    Library library_;
    Page page_;
    nlsLocale *locale_ = nullptr;
    std::uint16_t mode_;
    bool isIcu_ = false;
    std::array<unsigned char, 256> trailCounts_ = {};
};

// A page whose text the library walks; throws for UTF-16 and UTF-32, whose bytes it does not.
Page describeWalkedPage(Library &library, const std::string &name);

// The name as "names" spell it; letter case does not matter. Throws std::runtime_error that lists them.
std::string resolveName(const std::vector<std::string> &names, const std::string &wanted,
                        const std::string &page, const char *what);

} // namespace velnls::tool
