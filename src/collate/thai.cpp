#include "collate/thai.hpp"

#include "collate/weight_stream.hpp"

namespace velnls {

namespace {

enum ThaiClass : std::uint8_t {
    kOther = 0,
    kBase = 1,    // consonant or following vowel
    kVowel = 2,   // above or below
    kLeading = 3, // vowel written before its consonant
    kMark = 4,    // tone mark or diacritic
};

// By byte of TIS-620; no class is given to anything below A0.
constexpr ThaiClass classOf(std::uint8_t byte) {
    if ((byte >= 0xA1 && byte <= 0xCE) || byte == 0xD0 || byte == 0xD2 || byte == 0xD3 || byte == 0xDA ||
        byte == 0xDB || (byte >= 0xDD && byte <= 0xDF) || byte == 0xE5 || byte == 0xEE || byte >= 0xFC)
        return kBase;
    if (byte == 0xD1 || (byte >= 0xD4 && byte <= 0xD9) || byte == 0xED)
        return kVowel;
    if (byte >= 0xE0 && byte <= 0xE4)
        return kLeading;
    if (byte >= 0xE7 && byte <= 0xEC)
        return kMark;
    return kOther;
}

struct ClassTable {
    ThaiClass classes[256];
};
constexpr ClassTable makeClasses() {
    ClassTable table{};
    for (unsigned byte = 0; byte < 256; ++byte)
        table.classes[byte] = classOf(static_cast<std::uint8_t>(byte));
    return table;
}
constexpr ClassTable kClasses = makeClasses();

constexpr std::uint8_t kNoMark = 2;      // low bits of a cell without a mark
constexpr std::uint8_t kSecondary = 128; // announces a byte of lower rank in a key
constexpr std::uint8_t kVowelBits = 0x78;
constexpr std::uint8_t kMarkBits = 0x07;

// Each step is one cell, packed: base in bits 24-31, leading vowel 16-23, vowel 8-15, mark 0-7.
class Cells {
public:
    Cells(const std::uint8_t *weights, Text text) : weights_(weights), text_(text) {}
    [[nodiscard]] bool more() const {
        return !text_.ended();
    }
    std::uint32_t take() {
        std::uint32_t cell = kNoMark;
        bool filled[5] = {};
        for (bool first = true; !text_.ended(); first = false) {
            const std::uint8_t byte = *text_.at;
            const ThaiClass kind = kClasses.classes[byte];
            if (kind == kOther) {
                if (!first)
                    break;
                ++text_.at;
                return std::uint32_t{weights_[byte]} << 24;
            }
            if (filled[kind] || (kind == kLeading && filled[kBase]))
                break;
            filled[kind] = true;
            const std::uint32_t weight = weights_[byte];
            switch (kind) {
            case kBase:
                cell |= weight << 24;
                break;
            case kLeading:
                cell |= weight << 16;
                break;
            case kVowel:
                cell |= weight << 8;
                break;
            default:
                cell = (cell & ~std::uint32_t{kNoMark}) | weight;
                break;
            }
            ++text_.at;
        }
        return cell;
    }
    [[nodiscard]] Text rest() const {
        return text_;
    }

private:
    const std::uint8_t *weights_;
    Text text_;
};

class KeyWriter {
public:
    KeyWriter(std::uint8_t *key, std::size_t room) : key_(key), room_(room) {}
    void put(std::uint8_t byte) {
        if (length_ < room_)
            key_[length_++] = byte;
        else
            full_ = true;
    }
    template <typename... Rest>
    void put(std::uint8_t byte, Rest... rest) {
        put(byte);
        put(rest...);
    }
    // The byte emitted last; there is always one where a vowel or mark asks for it, unless the room is used
    // up.
    std::uint8_t &last() {
        return length_ == 0 ? nothing_ : key_[length_ - 1];
    }
    [[nodiscard]] bool full() const {
        return full_;
    }
    [[nodiscard]] std::size_t length() const {
        return length_;
    }

private:
    std::uint8_t *key_;
    std::size_t room_;
    std::size_t length_ = 0;
    std::uint8_t nothing_ = 0;
    bool full_ = false;
};

} // namespace

int compareThai(const std::uint8_t *weights, Text a, Text b) {
    return compareSteps(Cells(weights, a), Cells(weights, b));
}

std::size_t writeThaiKey(const std::uint8_t *weights, Text text, std::uint8_t *key, std::size_t room) {
    KeyWriter writer(key, room);
    ThaiClass before = kOther;
    while (!text.ended() && !writer.full()) {
        const std::uint8_t byte = *text.at++;
        const std::uint8_t weight = weights[byte];
        const ThaiClass kind = kClasses.classes[byte];
        if ((kind == kVowel || kind == kMark) && before == kOther)
            writer.put(kSecondary, kNoMark); // a cell without a base
        if (writer.full())
            break;
        switch (kind) {
        case kOther:
            writer.put(weight);
            break;
        case kBase:
            writer.put(weight, kNoMark);
            break;
        case kLeading:
            if (!text.ended() && kClasses.classes[*text.at] == kBase) {
                // The vowel sorts after its consonant.
                writer.put(weights[*text.at], kSecondary, weight, kNoMark);
                before = kBase;
                ++text.at;
                continue;
            }
            writer.put(weight, kNoMark);
            break;
        case kVowel:
            if ((writer.last() & kVowelBits) != 0)
                writer.put(kSecondary, static_cast<std::uint8_t>(weight | kNoMark));
            else
                writer.last() = static_cast<std::uint8_t>(writer.last() | weight);
            break;
        case kMark:
            if ((writer.last() & kMarkBits) != kNoMark)
                writer.put(kSecondary, weight);
            else
                writer.last() = static_cast<std::uint8_t>((writer.last() & ~kMarkBits) | weight);
            break;
        }
        before = kind;
    }
    return writer.length();
}

} // namespace velnls
