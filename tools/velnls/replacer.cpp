// Moves a window over the text.
#include "replacer.hpp"

#include <algorithm>
#include <utility>

#include "scan.hpp"

namespace velnls::tool {

Replacer::Replacer(const OrderedPage &page, std::string pattern, std::string replacement,
                   std::size_t windowSize)
    : page_(page), pattern_(std::move(pattern)), replacement_(std::move(replacement)),
      // A match has as many characters as the pattern, and no more characters than bytes are in it.
      overlap_(pattern_.size() * (page.page().form == Form::SingleByte ? 1 : kLongestCharacter)),
      windowSize_(std::max(windowSize, overlap_ * 4)) {}

void Replacer::append(std::string_view text, std::string &out) {
    for (;;) {
        const std::size_t nul = text.find('\0');
        appendPart(text.substr(0, nul), out);
        if (nul == std::string_view::npos) {
            return;
        }
        out += '\0';
        text.remove_prefix(nul + 1);
    }
}

// The last boundary of characters within "limit" bytes.
std::size_t Replacer::boundary(std::string_view text, std::size_t limit) const {
    if (limit >= text.size()) {
        return text.size();
    }
    return scanText(page_.page(), reinterpret_cast<const unsigned char *>(text.data()), limit, false).good;
}

void Replacer::appendPart(std::string_view part, std::string &out) {
    while (!part.empty()) {
        const std::string_view window = part.substr(0, boundary(part, windowSize_));
        window_.assign(window.begin(), window.end());
        window_.push_back('\0');
        std::uint32_t position = 0;
        std::uint32_t end = 0;
        char *found = nullptr;
        const nlsStatus status = nlsSearchForw(page_.locale(), pattern_.c_str(), window_.data(), page_.mode(),
                                               &position, &end, &found);
        if (status != NLS_OK) {
            throw StatusError("searching", status);
        }
        if (found != nullptr) {
            out += part.substr(0, position - 1);
            out += replacement_;
            part.remove_prefix(end);
            ++count_;
            continue;
        }
        // A match may begin near the window's end and go on behind it.
        const std::size_t done =
            window.size() == part.size() ? part.size() : boundary(part, window.size() - overlap_);
        out += part.substr(0, done);
        part.remove_prefix(done);
    }
}

} // namespace velnls::tool
