// Other converters that the code pages are compared with, one character at a time.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace peers {

class Peer {
public:
    virtual ~Peer() = default;

    // The code points of one complete code; empty when the code is not mapped.
    virtual std::vector<std::uint32_t> toUnicode(const std::vector<std::uint8_t> &code) = 0;
    // The bytes of one code point; empty when it is not mapped.
    virtual std::vector<std::uint8_t> fromUnicode(std::uint32_t codePoint) = 0;
};

// Null when this build or this machine has no such converter.
std::unique_ptr<Peer> openIconv(const std::string &name);
std::unique_ptr<Peer> openIcu(const std::string &name);

// "iconv of glibc 2.36", "ICU 72.1": which release was asked; the lists of differences name theirs.
std::string iconvVersion();
std::string icuVersion();

// Which name of each peer corresponds to a code page; null: it has none.
struct Names {
    const char *page;
    const char *iconv;
    const char *icu;
};
const std::vector<Names> &peerNames();

} // namespace peers
