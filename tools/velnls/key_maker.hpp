// Sort keys of lines of any length and with any bytes.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "ordered_page.hpp"

namespace velnls::tool {

// The library makes keys of texts that end at a NUL, and no longer than a 16-bit length tells. Longer texts
// get their key in pieces, cut where the keys of the two sides put together are the key of the whole. A NUL
// within a text becomes the two bytes 00 01, which sort before everything but the end of a key: no key of the
// library holds a 00.
class KeyMaker {
public:
    // "pieceSize" is the longest text that is given to the library at once.
    explicit KeyMaker(const OrderedPage &page, std::size_t pieceSize = 8000);

    // Appends the key of "text". Blanks at its end do not count.
    void append(std::string_view text, std::string &key);
    // Ends a key, or one field of it: the bytes 00 00.
    static void end(std::string &key) {
        key.append(2, '\0');
    }

private:
    void appendPart(std::string_view part, std::string &key);
    void appendPiece(std::string_view piece, std::string &key);
    void appendKey(std::string_view text, std::uint16_t mode, std::string &key);
    std::size_t cut(std::string_view text);
    bool mayCut(std::string_view before, std::string_view after);

    const OrderedPage &page_;
    std::size_t pieceSize_;
    bool foldsFourBytes_; // the library folds all four-byte characters to one
    std::vector<char> source_;
    std::vector<unsigned char> buffer_;
};

} // namespace velnls::tool
