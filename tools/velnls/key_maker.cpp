// Cuts texts into pieces whose keys can be put together.
#include "key_maker.hpp"

#include <algorithm>
#include <limits>
#include <stdexcept>

namespace velnls::tool {

namespace {

constexpr std::uint16_t kKeySize = std::numeric_limits<std::uint16_t>::max();
// Characters on each side of a place that are looked at to tell whether it may be cut.
constexpr std::size_t kNeighbours = 8;
// The first byte of four-byte characters in UTF-8.
constexpr unsigned char kFourByteLead = 0xF0;

} // namespace

KeyMaker::KeyMaker(const OrderedPage &page, std::size_t pieceSize)
    : page_(page), pieceSize_(pieceSize),
      foldsFourBytes_(page.page().form == Form::Utf8 && page.mode() == 0 && !page.isIcu()),
      buffer_(kKeySize) {}

void KeyMaker::append(std::string_view text, std::string &key) {
    const std::size_t last = text.find_last_not_of(' ');
    text = text.substr(0, last == std::string_view::npos ? 0 : last + 1);
    for (;;) {
        const std::size_t nul = text.find('\0');
        appendPart(text.substr(0, nul), key);
        if (nul == std::string_view::npos) {
            return;
        }
        key.append({'\0', '\1'});
        text.remove_prefix(nul + 1);
    }
}

void KeyMaker::appendPart(std::string_view part, std::string &key) {
    if (page_.isIcu()) { // keys of pieces do not make the key of the whole
        appendKey(part, page_.mode(), key);
        return;
    }
    while (part.size() > pieceSize_) {
        const std::size_t size = cut(part);
        appendPiece(part.substr(0, size), key);
        part.remove_prefix(size);
    }
    appendPiece(part, key);
}

// Folding turns every four-byte character into "?". They have no letter case that the library knows, so their
// own bytes go into the key instead, which keeps them apart, behind all shorter characters.
void KeyMaker::appendPiece(std::string_view piece, std::string &key) {
    if (!foldsFourBytes_) {
        appendKey(piece, page_.mode(), key);
        return;
    }
    const auto isLong = [](char byte) { return static_cast<unsigned char>(byte) >= kFourByteLead; };
    while (!piece.empty()) {
        const auto firstLong = std::find_if(piece.begin(), piece.end(), isLong);
        const auto before = static_cast<std::size_t>(firstLong - piece.begin());
        appendKey(piece.substr(0, before), page_.mode(), key);
        piece.remove_prefix(before);
        if (piece.empty()) {
            return;
        }
        const std::size_t length = std::min(page_.step(static_cast<unsigned char>(piece[0])), piece.size());
        appendKey(piece.substr(0, length), 1, key);
        piece.remove_prefix(length);
    }
}

void KeyMaker::appendKey(std::string_view text, std::uint16_t mode, std::string &key) {
    if (text.empty()) {
        return;
    }
    source_.assign(text.begin(), text.end());
    source_.push_back('\0');
    std::uint16_t length = 0;
    const nlsStatus status =
        nlsSortKey(page_.locale(), source_.data(), kKeySize, mode, 0, buffer_.data(), &length);
    if (status != NLS_OK) {
        throw StatusError("making a sort key", status);
    }
    key.append(reinterpret_cast<const char *>(buffer_.data()), length);
}

// The last place within a piece where the text may be cut.
std::size_t KeyMaker::cut(std::string_view text) {
    // Characters are walked as the library does, so that malformed text is cut where it would step.
    std::vector<std::size_t> places = {0};
    std::size_t within = 0; // how many of the places lie within the piece
    while (places.back() < text.size() && places.size() - within <= kNeighbours) {
        const std::size_t at = places.back();
        if (at <= pieceSize_) {
            within = places.size();
        }
        places.push_back(std::min(at + page_.step(static_cast<unsigned char>(text[at])), text.size()));
    }
    for (std::size_t i = within - 1; i > 0; --i) {
        const std::size_t from = places[i - std::min(i, kNeighbours)];
        const std::size_t to = places[std::min(i + kNeighbours, places.size() - 1)];
        if (mayCut(text.substr(from, places[i] - from), text.substr(places[i], to - places[i]))) {
            return places[i];
        }
    }
    throw std::runtime_error("a text of more than " + std::to_string(pieceSize_) +
                             " bytes has no sort key in this collation");
}

bool KeyMaker::mayCut(std::string_view before, std::string_view after) {
    std::string whole;
    std::string both;
    appendPiece(std::string(before) + std::string(after), whole);
    appendPiece(before, both);
    appendPiece(after, both);
    return whole == both;
}

} // namespace velnls::tool
