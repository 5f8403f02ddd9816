// Who runs: velnls through its C interface, glibc iconv, and ICU in the two ways that a user would pick from.
//
// A contestant is opened once for a pair of pages and converts many strings with the same open converters.
// The loop over the strings is inside, so that nothing but the peer's own call is repeated per string.
#pragma once

#include "pages.hpp"
#include "velnls.h"

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace bench {

// Strings to convert, one call each. Each is followed by a terminator of its page's width, which is not
// counted in its length.
struct Strings {
    std::string bytes;
    struct Piece {
        std::size_t offset;
        std::size_t length;
    };
    std::vector<Piece> pieces;

    [[nodiscard]] std::size_t sourceBytes() const;
    [[nodiscard]] std::size_t longest() const;
    void add(std::string_view text);
};

class Contestant {
public:
    virtual ~Contestant() = default;
    [[nodiscard]] virtual std::string name() const = 0;
    // Converts each string into the same scratch place; what is timed. The sum of the output bytes is
    // returned so that nothing can be optimised away.
    virtual std::size_t run(const Strings &strings) = 0;
    // Converts one string for the comparison of outputs; false when this contestant refuses or substitutes.
    virtual bool convert(std::string_view text, std::string &output) = 0;
    // Makes the scratch place large enough for the strings; never timed.
    virtual void prepare(const Strings &strings) = 0;
};

// Room that every conversion of the benchmark fits in: UTF-32 has four bytes for one.
inline std::size_t roomFor(std::size_t sourceBytes) {
    return sourceBytes * 4 + 64;
}

// Opens `dataFile` for the whole run; call once before openVelnls.
bool openDataFile(const std::string &dataFile);
nlsHandle *dataHandle(); // what it was opened with
// Opens the same data file once more in this memory; ends the program when that fails.
nlsHandle *openHandle(std::vector<unsigned char> &memory);

std::unique_ptr<Contestant> openVelnls(const Page &source, const Page &target);
std::unique_ptr<Contestant> openIconv(const Page &source, const Page &target);
// All ways of ICU that apply to the pair.
std::vector<std::unique_ptr<Contestant>> openIcu(const Page &source, const Page &target);

} // namespace bench
