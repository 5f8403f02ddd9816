// Gives the library word classes, and keeps punctuation beyond ASCII out of its sight.
#include "word_walker.hpp"

#include <algorithm>
#include <cstring>

namespace velnls::tool {

namespace {

constexpr nlsStatus kWordCut = 29;

// Word classes of the sort data; those of bytes that begin longer characters the library finds by itself.
constexpr std::uint8_t kSeparator = 1;
constexpr std::uint8_t kLetter = 2;
constexpr std::uint8_t kDigit = 3;
constexpr std::uint8_t kJoinsLetters = 5;
constexpr std::uint8_t kJoinsDigits = 6;

// Formats of the sort data: words as they stand in single-byte pages; characters of several bytes as words of
// their own in the others.
constexpr std::uint8_t kPlainWords = 7;
constexpr std::uint8_t kCharacterWords = 9;

// Sort data as a database lays it out: format, length, place of the class map, flags, the map.
struct SortData {
    std::uint8_t format;
    std::uint8_t unused = 0;
    std::uint16_t length = sizeof(SortData);
    std::uint16_t classMap = 8;
    std::uint8_t flags = 0;
    std::uint8_t padding = 0;
    std::uint8_t classes[256] = {};
};
static_assert(sizeof(SortData) == 264);

// A character's code point, from its UTF-8 bytes as one number, first byte highest.
std::uint32_t codePointOf(std::uint32_t utf8) {
    if (utf8 < 0x80) {
        return utf8;
    }
    if (utf8 < 0x10000) {
        return (utf8 >> 8 & 0x1F) << 6 | (utf8 & 0x3F);
    }
    return (utf8 >> 16 & 0x0F) << 12 | (utf8 >> 8 & 0x3F) << 6 | (utf8 & 0x3F);
}

// Blocks of punctuation, spaces and symbols, from the names of Unicode's blocks.
bool isPunctuationPoint(std::uint32_t point) {
    constexpr std::pair<std::uint32_t, std::uint32_t> kBlocks[] = {
        {0x0080, 0x00A9}, {0x00AB, 0x00B4}, {0x00B6, 0x00B9}, {0x00BB, 0x00BF}, {0x00D7, 0x00D7},
        {0x00F7, 0x00F7}, {0x2000, 0x206F}, {0x20A0, 0x20CF}, // General Punctuation, Currency
        {0x2190, 0x245F}, {0x2500, 0x2BFF},                   // arrows to symbols
        {0x2E00, 0x2E7F}, {0x3000, 0x3004}, {0x3008, 0x3020}, {0x3030, 0x3030}, {0x30FB, 0x30FB},
        {0xFE10, 0xFE1F}, {0xFE30, 0xFE6F}, {0xFF00, 0xFF0F}, {0xFF1A, 0xFF20}, {0xFF3B, 0xFF40},
        {0xFF5B, 0xFF65}, {0xFFE0, 0xFFEF},
    };
    return std::any_of(std::begin(kBlocks), std::end(kBlocks),
                       [&](const auto &block) { return point >= block.first && point <= block.second; });
}

std::uint8_t classOf(std::uint32_t point) {
    if (point >= '0' && point <= '9') {
        return kDigit;
    }
    if (point == '\'') {
        return kJoinsLetters;
    }
    if (point == '.' || point == ',') {
        return kJoinsDigits;
    }
    const bool letter =
        point < 0x80 ? (point | 0x20) >= 'a' && (point | 0x20) <= 'z' : !isPunctuationPoint(point);
    return letter ? kLetter : kSeparator;
}

} // namespace

WordWalker::WordWalker(Library &library, const Page &page)
    : page_(page), trailCounts_(trailCountsOf(page.locale)),
      toUtf8_(page.form == Form::Utf8 ? nullptr : library.conversion(page.locale, library.utf8())) {
    SortData data{page.form == Form::SingleByte ? kPlainWords : kCharacterWords};
    for (unsigned byte = 1; byte < 256; ++byte) {
        if (trailCounts_[byte] == 0) {
            const std::optional<std::uint32_t> point = codePoint(byte);
            data.classes[byte] = point ? classOf(*point) : kSeparator;
        }
        inWords_[byte] =
            trailCounts_[byte] != 0 || data.classes[byte] == kLetter || data.classes[byte] == kDigit;
    }
    const StoredRecord stored(library.locale(page.name, "basic", ""));
    nlsDbCollation record = stored.record();
    record.sortData = reinterpret_cast<const std::uint16_t *>(&data);
    locale_ = library.rebuild(record, "words of " + page.name);
}

void WordWalker::start(std::string_view line) {
    line_ = line;
    at_ = 0;
    std::replace(line_.begin(), line_.end(), '\0', ' ');
    if (page_.form != Form::SingleByte) {
        blankPunctuation();
    }
}

std::optional<std::uint32_t> WordWalker::codePoint(std::uint32_t character) {
    if (page_.form == Form::Utf8) {
        return character > 0xFFFFFF ? std::nullopt : std::optional(codePointOf(character));
    }
    std::uint32_t utf8 = 0;
    if (toUtf8_ == nullptr || nlsConvertLChar(toUtf8_, character, &utf8) != NLS_OK || utf8 > 0xFFFFFF) {
        return std::nullopt;
    }
    return codePointOf(utf8);
}

void WordWalker::blankPunctuation() {
    for (std::size_t at = 0; at < line_.size();) {
        const std::size_t size = std::min<std::size_t>(
            trailCounts_[static_cast<unsigned char>(line_[at])] + std::size_t{1}, line_.size() - at);
        if (size > 1 && size <= 3) {
            std::uint32_t character = 0;
            for (std::size_t i = 0; i < size; ++i) {
                character = character << 8 | static_cast<unsigned char>(line_[at + i]);
            }
            if (const auto point = codePoint(character); point && isPunctuationPoint(*point)) {
                std::fill_n(line_.data() + at, size, ' ');
            }
        }
        at += size;
    }
}

// Keys come back in pages of several bytes, so the word is taken from the text that the call stepped over:
// everything between its first and last word character.
std::string_view WordWalker::trim(std::string_view text) const {
    std::size_t begin = text.size();
    std::size_t end = 0;
    for (std::size_t at = 0; at < text.size();) {
        const auto byte = static_cast<unsigned char>(text[at]);
        const std::size_t next = std::min(at + trailCounts_[byte] + 1, text.size());
        if (inWords_[byte]) {
            begin = std::min(begin, at);
            end = next;
        }
        at = next;
    }
    return begin < end ? text.substr(begin, end - begin) : std::string_view();
}

std::optional<std::string_view> WordWalker::next() {
    while (at_ < line_.size()) {
        char *const begin = line_.data() + at_;
        char *end = begin;
        std::uint32_t length = 0;
        const nlsStatus status =
            nlsGetNextWord(locale_, &end, 1, word_.data(), static_cast<std::int32_t>(word_.size()), &length);
        if (status == NLS_E_END) {
            break;
        }
        // A word that is too long for the call (29) has been stepped over all the same.
        if (status != NLS_OK && status != kWordCut) {
            throw StatusError("finding words", status);
        }
        at_ = static_cast<std::size_t>(end - line_.data());
        const std::string_view word = trim({begin, static_cast<std::size_t>(end - begin)});
        if (!word.empty()) {
            return word;
        }
    }
    return {};
}

} // namespace velnls::tool
