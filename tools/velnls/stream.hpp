// Converts input that comes in parts of any size, in constant memory.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "position.hpp"
#include "route.hpp"
#include "scan.hpp"

namespace velnls::tool {

// Where something was found first.
struct Place {
    std::string file;
    std::uint64_t line = 0;
    std::uint64_t column = 0;
    std::string bytes; // of the character or sequence, as "0xE3 0x81"
};

struct Report {
    std::uint64_t substituted = 0; // characters without counterpart
    Place firstSubstituted;
    std::uint64_t malformed = 0; // malformed sequences
    Place firstMalformed;
    std::string firstFault; // what was found and what was expected there
};

struct StreamOptions {
    bool drop = false;                   // leave out what cannot be converted instead of substituting
    bool acceptMalformed = false;        // go on behind malformed input
    std::size_t pieceSize = 64 * 1024;   // bytes given to the library at a time; fits the second-level cache
    std::size_t outputSize = 256 * 1024; // bytes gathered before they are written
};

// Input is fed in parts; a character that a part cuts is carried over to the next. Output goes to "write" in
// large blocks. After a malformed sequence that is not accepted, nothing more is converted.
class Stream {
public:
    using Write = std::function<void(const char *, std::size_t)>;

    Stream(Route &route, const StreamOptions &options, Write write);

    // Begins an input; "file" is its name in messages.
    void begin(const std::string &file);
    // False once the stream has stopped at malformed input.
    bool feed(const unsigned char *text, std::size_t size);
    // Ends the input: a character still incomplete is malformed. False when the stream has stopped.
    bool finish();
    // Writes what is gathered.
    void flush();

    const Report &report() const {
        return report_;
    }

private:
    bool feedCarried(const unsigned char *&text, std::size_t &size);
    std::size_t take(const unsigned char *text, std::size_t size, bool atEnd);
    void convertGood(const unsigned char *text, std::size_t size);
    void convertPiece(const unsigned char *text, std::size_t size);
    void noteSubstituted(const unsigned char *text, std::size_t size);
    void noteMalformed(Fault fault, const unsigned char *text, std::size_t bad, std::size_t size);
    std::size_t piece(const unsigned char *text, std::size_t size, std::size_t limit) const;

    Route &route_;
    const StreamOptions options_;
    Write write_;
    std::string file_;
    Position position_;                         // of pieceStart_
    const unsigned char *pieceStart_ = nullptr; // of the piece now being converted
    std::array<unsigned char, 2 *kLongestCharacter> carried_ = {};
    std::size_t carriedSize_ = 0;
    bool stopped_ = false;
    ByteBuffer out_;
    Report report_;
};

} // namespace velnls::tool
