// The way from one code page to another: one conversion of the library, or two by way of UTF-8.
#pragma once

#include <bitset>
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "library.hpp"
#include "page.hpp"

namespace velnls::tool {

// Bytes that grow at the end; what is behind size() has no meaning.
class ByteBuffer {
public:
    // Room for "count" bytes more at the end.
    char *room(std::size_t count) {
        if (bytes_.size() - size_ < count) {
            bytes_.resize((size_ + count) * 2);
        }
        return bytes_.data() + size_;
    }
    void resize(std::size_t size) {
        size_ = size;
    }
    std::size_t size() const {
        return size_;
    }
    const char *data() const {
        return bytes_.data();
    }

private:
    std::vector<char> bytes_;
    std::size_t size_ = 0;
};

// There is no conversion between the two pages in the data file, not even through UTF-8.
struct NoRoute : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// Every substitution is reported. The library does not tell of those that its direct tables between two byte
// pages make, nor of those in the first step of a chain; for such pairs the codes concerned are found once,
// when the route is made, and text that holds one of them goes through UTF-8, where each step tells.
class Route {
public:
    Route(Library &library, const Page &source, const Page &target);

    // Converts complete, well-formed characters and appends the result to "out". True when a character among
    // them had no counterpart and was replaced by the substitution character.
    bool convert(const unsigned char *text, std::size_t size, ByteBuffer &out);

    // What stands for a malformed sequence in the output: U+FFFD, or the page's own substitution character.
    const std::string &substitution() const {
        return substitution_;
    }
    const Page &source() const {
        return source_;
    }
    const Page &target() const {
        return target_;
    }
    // Whether the library converts in one call, and whether some codes must take the other way.
    bool isDirect() const {
        return direct_ != nullptr;
    }
    bool hasSilentCodes() const {
        return hasSilentCodes_;
    }

private:
    nlsStatus attempt(nlsConversion *conversion, const unsigned char *text, std::size_t size,
                      ByteBuffer &out);
    bool run(nlsConversion *conversion, const unsigned char *text, std::size_t size, ByteBuffer &out);
    bool runThroughUtf8(const unsigned char *text, std::size_t size, ByteBuffer &out);
    void findSilentCodes();
    void compareCodes(const std::vector<unsigned char> &codes, std::size_t codeLength);
    bool holdsSilentCode(const unsigned char *text, std::size_t size) const;

    const Page &source_;
    const Page &target_;
    nlsConversion *direct_ = nullptr;
    nlsConversion *toUtf8_ = nullptr;
    nlsConversion *fromUtf8_ = nullptr;
    std::bitset<65536> silentCodes_; // by code, one byte or two
    bool hasSilentCodes_ = false;
    std::string substitution_;
    ByteBuffer utf8_;  // between the two conversions
    ByteBuffer chain_; // lent to the library's own chains
};

} // namespace velnls::tool
