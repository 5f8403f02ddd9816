// Carries characters over the edges of the parts, and finds single characters when a piece had substitutions.
#include "stream.hpp"

#include <algorithm>
#include <cstdio>
#include <utility>

namespace velnls::tool {

namespace {

// By how much pieces shrink while a substituted character is looked for. Larger means fewer repeated
// conversions of text that is fine, smaller means fewer calls.
constexpr std::size_t kShrink = 32;

std::string hexBytes(const unsigned char *text, std::size_t size) {
    std::string words;
    for (std::size_t i = 0; i < size; ++i) {
        char byte[8];
        std::snprintf(byte, sizeof byte, "%s0x%02X", i == 0 ? "" : " ", text[i]);
        words += byte;
    }
    return words;
}

} // namespace

Stream::Stream(Route &route, const StreamOptions &options, Write write)
    : route_(route), options_(options), write_(std::move(write)), position_(route.source()) {}

void Stream::begin(const std::string &file) {
    file_ = file;
    position_ = Position(route_.source());
    carriedSize_ = 0;
}

bool Stream::feed(const unsigned char *text, std::size_t size) {
    if (!feedCarried(text, size)) {
        return false;
    }
    // A part this long always holds a whole character, so nothing taken means that the input is used up.
    const std::size_t most = std::max(options_.pieceSize, kLongestCharacter);
    while (size != 0) {
        const std::size_t taken = take(text, std::min(size, most), false);
        if (stopped_) {
            return false;
        }
        if (taken == 0) {
            std::copy(text, text + size, carried_.begin());
            carriedSize_ = size;
            break;
        }
        text += taken;
        size -= taken;
    }
    return true;
}

// Completes the carried character byte by byte, until nothing is carried or the new part is used up.
bool Stream::feedCarried(const unsigned char *&text, std::size_t &size) {
    while (carriedSize_ != 0 && size != 0) {
        carried_[carriedSize_++] = *text++;
        --size;
        std::size_t taken = 0;
        do {
            taken = take(carried_.data(), carriedSize_, false);
            if (stopped_) {
                return false;
            }
            std::copy(carried_.begin() + taken, carried_.begin() + carriedSize_, carried_.begin());
            carriedSize_ -= taken;
        } while (taken != 0 && carriedSize_ != 0);
    }
    return !stopped_;
}

bool Stream::finish() {
    std::size_t at = 0;
    while (!stopped_ && at < carriedSize_) {
        at += take(carried_.data() + at, carriedSize_ - at, true);
    }
    carriedSize_ = 0;
    return !stopped_;
}

void Stream::flush() {
    if (out_.size() != 0) {
        write_(out_.data(), out_.size());
        out_.resize(0);
    }
}

// Converts the well-formed characters at the start and deals with a malformed sequence behind them. Returns
// how many bytes are done with; 0 when only the start of a character is left.
std::size_t Stream::take(const unsigned char *text, std::size_t size, bool atEnd) {
    const Scan scan = scanText(route_.source(), text, size, atEnd);
    convertGood(text, scan.good);
    if (scan.bad == 0) {
        return scan.good;
    }
    noteMalformed(scan.fault, text + scan.good, scan.bad, size - scan.good);
    if (!options_.acceptMalformed) {
        stopped_ = true;
        return scan.good;
    }
    if (!options_.drop) {
        const std::string &substitution = route_.substitution();
        std::copy(substitution.begin(), substitution.end(), out_.room(substitution.size()));
        out_.resize(out_.size() + substitution.size());
    }
    position_.advanceMalformed();
    return scan.good + scan.bad;
}

void Stream::convertGood(const unsigned char *text, std::size_t size) {
    if (size == 0) {
        return;
    }
    pieceStart_ = text;
    convertPiece(text, size);
    position_.advance(text, size);
    if (out_.size() >= options_.outputSize) {
        flush();
    }
}

// Converts a piece; when the library tells of a substitution, converts it again in smaller pieces down to the
// single character, so that each is counted and the first one is placed.
void Stream::convertPiece(const unsigned char *text, std::size_t size) {
    const std::size_t before = out_.size();
    if (!route_.convert(text, size, out_)) {
        return;
    }
    if (characterLength(route_.source(), text) == size) {
        noteSubstituted(text, size);
        if (options_.drop) {
            out_.resize(before);
        }
        return;
    }
    out_.resize(before);
    const std::size_t smaller = size / kShrink;
    while (size != 0) {
        const std::size_t length = piece(text, size, smaller);
        convertPiece(text, length);
        text += length;
        size -= length;
    }
}

// Length of the whole characters at the start of well-formed text that fit into "limit" bytes; one at least.
std::size_t Stream::piece(const unsigned char *text, std::size_t size, std::size_t limit) const {
    if (size <= limit) {
        return size;
    }
    const std::size_t fitting = limit == 0 ? 0 : scanText(route_.source(), text, limit, false).good;
    return fitting != 0 ? fitting : characterLength(route_.source(), text);
}

void Stream::noteSubstituted(const unsigned char *text, std::size_t size) {
    if (report_.substituted++ != 0) {
        return;
    }
    Position position = position_;
    position.advance(pieceStart_, static_cast<std::size_t>(text - pieceStart_));
    report_.firstSubstituted = {file_, position.line(), position.column(), hexBytes(text, size)};
}

void Stream::noteMalformed(Fault fault, const unsigned char *text, std::size_t bad, std::size_t size) {
    if (report_.malformed++ != 0) {
        return;
    }
    report_.firstMalformed = {file_, position_.line(), position_.column(), hexBytes(text, bad)};
    report_.firstFault = describeFault(route_.source(), fault, text, bad, size);
}

} // namespace velnls::tool
