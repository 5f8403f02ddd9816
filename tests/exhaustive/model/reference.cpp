// See reference.hpp.
#include "reference.hpp"

#include <cstring>
#include <stdexcept>
#include <utility>

namespace model {
namespace {

bool isHigh(std::uint32_t unit) {
    return unit >= 0xD800 && unit <= 0xDBFF;
}

bool isLow(std::uint32_t unit) {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

std::uint32_t pairValue(std::uint32_t high, std::uint32_t low) {
    return (high - 0xD800) * 0x400 + (low - 0xDC00) + 0x10000;
}

std::uint32_t readUnit(const std::uint8_t *p, unsigned width, bool swapped) {
    std::uint32_t value = 0;
    for (unsigned i = 0; i < width; ++i) {
        const unsigned place = swapped ? width - 1 - i : i;
        value |= static_cast<std::uint32_t>(p[i]) << (8 * place);
    }
    return value;
}

unsigned widthOf(Form form) {
    return form == Form::kUtf16 ? 2 : form == Form::kUtf32 ? 4 : 1;
}

unsigned trailingBytes(std::uint8_t lead) {
    if (lead < 0xC0)
        return 0;
    if (lead < 0xE0)
        return 1;
    if (lead < 0xF0)
        return 2;
    if (lead < 0xF8)
        return 3;
    return lead < 0xFC ? 4 : 5;
}

// Reads one source character after the other.
class Decoder {
public:
    enum class Result {
        kCharacter,
        kEnd,
        kTruncated
    };

    Decoder(const Encoding &encoding, Text text, bool pairsIn32)
        : encoding_(encoding), at_(text.data), end_(text.data + text.length), terminated_(text.terminated),
          pairsIn32_(pairsIn32) {}

    // `value` is kNone for a code that the page does not map; `lone` says that it is an unpaired surrogate.
    Result next(std::uint32_t &value, bool &lone) {
        lone = false;
        if (at_ >= end_)
            return Result::kEnd;
        switch (encoding_.form) {
        case Form::kUtf8:
            return nextUtf8(value);
        case Form::kUtf16:
        case Form::kUtf32:
            return nextUnit(value, lone);
        case Form::kPage:
            break;
        }
        return nextOfPage(value);
    }

private:
    Result nextUtf8(std::uint32_t &value) {
        static constexpr std::uint32_t kOffsets[6] = {0x00000000, 0x00003080, 0x000E2080,
                                                      0x03C82080, 0xFA082080, 0x82082080};
        const unsigned trailing = trailingBytes(*at_);
        const std::ptrdiff_t left = end_ - at_ - (terminated_ ? 1 : 0);
        if (static_cast<std::ptrdiff_t>(trailing) > left)
            return Result::kTruncated;
        value = 0;
        for (unsigned i = 0; i <= trailing; ++i)
            value = (value << 6) + at_[i];
        value -= kOffsets[trailing];
        at_ += trailing + 1;
        return Result::kCharacter;
    }

    Result nextUnit(std::uint32_t &value, bool &lone) {
        const unsigned width = widthOf(encoding_.form);
        if (end_ - at_ < static_cast<std::ptrdiff_t>(width))
            return Result::kEnd; // a cut unit ends the input
        value = readUnit(at_, width, encoding_.swapped);
        at_ += width;
        if (encoding_.form == Form::kUtf32 && !pairsIn32_)
            return Result::kCharacter;
        if (isHigh(value) && end_ - at_ >= static_cast<std::ptrdiff_t>(width)) {
            const std::uint32_t second = readUnit(at_, width, encoding_.swapped);
            if (isLow(second)) {
                value = pairValue(value, second);
                at_ += width;
                return Result::kCharacter;
            }
        }
        lone = isHigh(value) || isLow(value);
        return Result::kCharacter;
    }

    Result nextOfPage(std::uint32_t &value) {
        const unsigned further = encoding_.page->trailCount[*at_];
        std::uint32_t code = *at_++;
        for (unsigned i = 0; i < further && at_ < end_ && *at_ != 0; ++i)
            code = (code * 256 + *at_++) & 0xFFFF;
        value = encoding_.page->toUnicode(code);
        return Result::kCharacter;
    }

    const Encoding &encoding_;
    const std::uint8_t *at_;
    const std::uint8_t *end_;
    bool terminated_;
    bool pairsIn32_;
};

// The bytes of one value in the target, and what it means for the final status.
class Encoder {
public:
    Encoder(const Encoding &source, const Encoding &target) : source_(source), target_(target) {}

    // Fills `bytes` and returns their number.
    unsigned encode(std::uint32_t value, bool lone, std::uint8_t *bytes) {
        switch (target_.form) {
        case Form::kPage:
            return encodeForPage(value, bytes);
        case Form::kUtf8:
            return encodeUtf8(value, lone, bytes);
        case Form::kUtf16:
            return encodeUtf16(replaced(value), bytes);
        case Form::kUtf32:
            break;
        }
        const std::uint32_t unit = replaced(value);
        return putUnit(unit, 4, bytes);
    }

    [[nodiscard]] std::uint32_t status() const {
        return status_;
    }

private:
    unsigned encodeForPage(std::uint32_t value, std::uint8_t *bytes) {
        std::uint32_t code = target_.page->fromUnicode(value >= 0x110000 ? kReplacement : value);
        if (code == kNone) {
            code = target_.page->substitution;
            status_ = kSubstituted;
        }
        if (code > 255) {
            bytes[0] = static_cast<std::uint8_t>(code >> 8);
            bytes[1] = static_cast<std::uint8_t>(code);
            return 2;
        }
        bytes[0] = static_cast<std::uint8_t>(code);
        return 1;
    }

    // What a page does not map, and what no code point is.
    std::uint32_t replaced(std::uint32_t value) {
        if (source_.form == Form::kPage && (value == kNone || value == kReplacement)) {
            status_ = kSubstituted;
            return kReplacement;
        }
        return value > 0x10FFFF ? kReplacement : value;
    }

    unsigned encodeUtf8(std::uint32_t value, bool lone, std::uint8_t *bytes) {
        if (source_.form == Form::kPage)
            value = replaced(value);
        if (lone) {
            status_ = source_.form == Form::kUtf32 ? kSurrogate : kInvalid;
            bytes[0] = '?';
            return 1;
        }
        if (value >= 0x4000000) { // the two-byte form of U+FFFD, as the bytes fall
            bytes[0] = 0xFF;
            bytes[1] = 0xBD;
            return 2;
        }
        static constexpr std::uint8_t kMarks[6] = {0, 0x00, 0xC0, 0xE0, 0xF0, 0xF8};
        const unsigned length = value < 0x80       ? 1
                                : value < 0x800    ? 2
                                : value < 0x10000  ? 3
                                : value < 0x200000 ? 4
                                                   : 5;
        for (unsigned i = length; i-- > 1; value >>= 6)
            bytes[i] = static_cast<std::uint8_t>((value & 0x3F) | 0x80);
        bytes[0] = static_cast<std::uint8_t>(value | kMarks[length]);
        return length;
    }

    static unsigned encodeUtf16(std::uint32_t value, std::uint8_t *bytes) {
        if (value < 0x10000)
            return putUnit(value, 2, bytes);
        putUnit(0xD800 + ((value - 0x10000) >> 10), 2, bytes);
        putUnit(0xDC00 + ((value - 0x10000) & 0x3FF), 2, bytes + 2);
        return 4;
    }

    static unsigned putUnit(std::uint32_t unit, unsigned width, std::uint8_t *bytes) {
        for (unsigned i = 0; i < width; ++i)
            bytes[i] = static_cast<std::uint8_t>(unit >> (8 * i));
        return width;
    }

    const Encoding &source_;
    const Encoding &target_;
    std::uint32_t status_ = kOk;
};

void swapUnits(std::uint8_t *data, std::uint32_t length, unsigned width) {
    for (std::uint32_t at = 0; at + width <= length; at += width)
        for (unsigned i = 0; i < width / 2; ++i)
            std::swap(data[at + i], data[at + width - 1 - i]);
}

Outcome convertForms(const Encoding &source, const Encoding &target, Text text, Buffer destination,
                     std::uint32_t previous) {
    Outcome outcome;
    if (source.form == Form::kUtf8 && text.length > 0 && (text.data[0] & 0xC0) == 0x80)
        return {kInvalid, previous};
    const std::uint32_t room = destination.capacity - destination.capacity % widthOf(target.form);
    Decoder decoder(source, text, target.form == Form::kUtf8);
    Encoder encoder(source, target);
    for (;;) {
        std::uint32_t value = 0;
        bool lone = false;
        const Decoder::Result result = decoder.next(value, lone);
        if (result == Decoder::Result::kTruncated)
            outcome.status = kInvalid;
        if (result != Decoder::Result::kCharacter)
            break;
        std::uint8_t bytes[8];
        const unsigned length = encoder.encode(value, lone, bytes);
        if (length > room - outcome.written) {
            outcome.status = kTooSmall;
            break;
        }
        std::memcpy(destination.data + outcome.written, bytes, length);
        outcome.written += length;
    }
    if (outcome.status == kOk)
        outcome.status = encoder.status();
    if (target.swapped)
        swapUnits(destination.data, outcome.written, widthOf(target.form));
    return outcome;
}

std::uint8_t byteOf(const Page &source, const Page &target, std::uint8_t byte) {
    const std::uint32_t unicode = source.toUnicode(byte);
    const std::uint32_t code = unicode == kNone ? kNone : target.fromUnicode(unicode);
    return code == kNone ? target.substitution : static_cast<std::uint8_t>(code);
}

Outcome convertBytes(const Encoding &source, const Encoding &target, Text text, Buffer destination) {
    if (destination.capacity < text.length)
        return {kTooSmall, 0};
    for (std::uint32_t i = 0; i < text.length; ++i)
        destination.data[i] = byteOf(*source.page, *target.page, text.data[i]);
    return {kOk, text.length};
}

// Writes the pairs and single bytes of the Japanese converters with their room checks.
class PairWriter {
public:
    explicit PairWriter(Buffer buffer) : buffer_(buffer) {}

    bool put(std::uint8_t byte) {
        if (written_ >= buffer_.capacity)
            return false;
        buffer_.data[written_++] = byte;
        return true;
    }
    bool put(std::uint8_t first, std::uint8_t second) {
        if (written_ + 2 > buffer_.capacity)
            return false;
        buffer_.data[written_] = first;
        buffer_.data[written_ + 1] = second;
        written_ += 2;
        return true;
    }
    [[nodiscard]] std::uint32_t written() const {
        return written_;
    }

private:
    Buffer buffer_;
    std::uint32_t written_ = 0;
};

std::uint8_t low8(unsigned value) {
    return static_cast<std::uint8_t>(value & 0xFF);
}

Outcome shiftJisToEuc(Text text, Buffer destination) {
    PairWriter out(destination);
    for (std::uint32_t i = 0; i < text.length;) {
        const unsigned b = text.data[i];
        bool fits = true;
        if ((b >= 0x81 && b <= 0x9F) || (b >= 0xE0 && b <= 0xEF)) {
            if (i + 1 >= text.length)
                return {kInvalid, out.written()};
            const unsigned t = text.data[i + 1];
            i += 2;
            if (t >= 0x40 && t <= 0xFC) {
                const unsigned first = (b - (b < 0xA0 ? 0x70 : 0xB0)) * 2 + 0x80 - (t < 0x9F ? 1 : 0);
                const unsigned second = t + 0x80 - (t < 0x80 ? 0x1F : t <= 0x9E ? 0x20 : 0x7E);
                fits = out.put(low8(first), low8(second));
            } else {
                fits = out.put(low8(b), low8(t));
            }
        } else {
            ++i;
            fits = b >= 0xA1 && b <= 0xDF ? out.put(0x8E, low8(b)) : out.put(low8(b));
        }
        if (!fits)
            return {kTooSmall, out.written()};
    }
    return {kOk, out.written()};
}

Outcome eucToShiftJis(Text text, Buffer destination) {
    PairWriter out(destination);
    for (std::uint32_t i = 0; i < text.length;) {
        const unsigned b = text.data[i];
        const bool lead = b >= 0xA1 && b <= 0xFE;
        bool fits = true;
        if (!lead && b != 0x8E) {
            fits = out.put(low8(b));
            ++i;
        } else {
            if (i + 1 >= text.length)
                return {kInvalid, out.written()};
            const unsigned t = text.data[i + 1];
            i += 2;
            if (lead && t >= 0xA1 && t <= 0xFE) {
                const unsigned r = b - 0x80;
                const unsigned cell = t - 0x80;
                const unsigned first = (r + 1) / 2 + (r < 0x5F ? 0x70 : 0xB0);
                const unsigned second = cell + (r % 2 == 1 ? (cell <= 0x5F ? 0x1F : 0x20) : 0x7E);
                fits = out.put(low8(first), low8(second));
            } else if (!lead && t >= 0xA1 && t <= 0xDF) {
                fits = out.put(low8(t));
            } else {
                fits = out.put(low8(b), low8(t));
            }
        }
        if (!fits)
            return {kTooSmall, out.written()};
    }
    return {kOk, out.written()};
}

bool isUnicodeName(const std::string &name) {
    return name.rfind("UTF-", 0) == 0 || name == "UCS2";
}

// The pairs of Unicode forms that the data file lists; all others are chained through UTF-8.
bool isListed(const Encoding &source, const Encoding &target) {
    if (source.form == Form::kPage || target.form == Form::kPage)
        return source.form != Form::kUtf32 && target.form != Form::kUtf32;
    if (source.form == Form::kUtf8 || target.form == Form::kUtf8)
        return true;
    if (source.form == target.form)
        return false;
    const bool withUcs2 = source.name == "UCS2" || target.name == "UCS2";
    return !withUcs2 || (source.name != "UTF-32BE" && target.name != "UTF-32BE");
}

} // namespace

Encoding encoding(const std::string &name) {
    Encoding result;
    result.name = name;
    result.swapped = name.size() > 2 && isUnicodeName(name) && name.substr(name.size() - 2) == "BE";
    if (name == "UTF-8")
        result.form = Form::kUtf8;
    else if (name.rfind("UTF-16", 0) == 0 || name == "UCS2")
        result.form = Form::kUtf16;
    else if (name.rfind("UTF-32", 0) == 0)
        result.form = Form::kUtf32;
    else
        result.page = &page(name);
    return result;
}

Conversion::Step Conversion::step(const Encoding &source, const Encoding &target) {
    if (source.form == Form::kPage && target.form == Form::kPage) {
        if (source.name == "SHIFT-JIS")
            return {Kind::kShiftJisToEuc, source, target};
        if (source.name == "EUCJIS")
            return {Kind::kEucToShiftJis, source, target};
        return {Kind::kByteTable, source, target};
    }
    return {Kind::kForms, source, target};
}

Conversion::Conversion(const std::string &source, const std::string &target)
    : source_(encoding(source)), target_(encoding(target)) {
    if (source == target)
        return;
    const bool pages = source_.form == Form::kPage && target_.form == Form::kPage;
    if (pages) {
        const bool japanese =
            (source == "SHIFT-JIS" && target == "EUCJIS") || (source == "EUCJIS" && target == "SHIFT-JIS");
        if (!japanese && !hasByteTable(source, target))
            throw std::runtime_error("no conversion from " + source + " to " + target);
    }
    if (pages || isListed(source_, target_)) {
        steps_.push_back(step(source_, target_));
        return;
    }
    const Encoding middle = encoding("UTF-8");
    steps_.push_back(step(source_, middle));
    steps_.push_back(step(middle, target_));
}

std::uint32_t Conversion::terminatorWidth() const {
    return steps_.empty() ? 1 : widthOf(target_.form);
}

Outcome Conversion::runStep(const Step &step, Text source, Buffer destination, std::uint32_t previous) {
    switch (step.kind) {
    case Kind::kByteTable:
        return convertBytes(step.source, step.target, source, destination);
    case Kind::kShiftJisToEuc:
        return shiftJisToEuc(source, destination);
    case Kind::kEucToShiftJis:
        return eucToShiftJis(source, destination);
    case Kind::kForms:
        break;
    }
    return convertForms(step.source, step.target, source, destination, previous);
}

Outcome Conversion::run(Text source, Buffer destination, Buffer intermediate, std::uint32_t previous) const {
    if (steps_.empty()) {
        const std::uint32_t count =
            source.length < destination.capacity ? source.length : destination.capacity;
        std::memmove(destination.data, source.data, count);
        return {count < source.length ? kTooSmall : kOk, count};
    }
    if (steps_.size() == 1)
        return runStep(steps_[0], source, destination, previous);
    if (intermediate.data == nullptr || intermediate.capacity == 0)
        return {kInvalid, previous};
    const Outcome first = runStep(steps_[0], source, intermediate, previous);
    if (first.status != kOk && first.status != kSubstituted)
        return first;
    return runStep(steps_[1], {intermediate.data, first.written}, destination, first.written);
}

Outcome Conversion::convert(Text source, Buffer destination, Buffer intermediate) const {
    Outcome outcome = run(source, destination, intermediate);
    const std::uint32_t width = terminatorWidth();
    if (outcome.written + width > destination.capacity) {
        outcome.status = kTooSmall;
        return outcome;
    }
    std::memset(destination.data + outcome.written, 0, width);
    return outcome;
}

Outcome Conversion::convertWithTerminator(Text source, Buffer destination) const {
    return run({source.data, source.length + 1, true}, destination, {nullptr, 0});
}

Outcome Conversion::check(Text source, Buffer destination) const {
    Outcome outcome = convertWithTerminator(source, destination);
    if (!steps_.empty() && !isChain()) {
        const Kind kind = steps_[0].kind;
        const bool unicodeOnly = steps_[0].source.form != Form::kPage && steps_[0].target.form != Form::kPage;
        if (kind == Kind::kByteTable) {
            if (outcome.status == kOk && std::memcmp(destination.data, source.data, outcome.written) != 0)
                outcome.status = kChanged;
        } else if (kind != Kind::kForms) {
            if (outcome.status == kOk &&
                std::strncmp(reinterpret_cast<const char *>(destination.data),
                             reinterpret_cast<const char *>(source.data), outcome.written) != 0)
                outcome.status = kChanged;
        } else if (outcome.status == kOk || (outcome.status == kSubstituted && !unicodeOnly)) {
            if (outcome.written != 0)
                outcome.status = kChanged;
        }
    }
    if (outcome.written != 0 && destination.data[outcome.written - 1] == 0)
        --outcome.written;
    return outcome;
}

std::uint32_t Conversion::convertCharacter(std::uint32_t character, std::uint32_t &result) const {
    if (steps_.empty()) {
        result = character;
        return kOk;
    }
    std::uint8_t buffer[8] = {};
    const unsigned length = character < 0x100 ? 1 : character < 0x10000 ? 2 : character < 0x1000000 ? 3 : 4;
    for (unsigned i = 0; i < length; ++i)
        buffer[i] = static_cast<std::uint8_t>(character >> (8 * (length - 1 - i)));
    const Outcome outcome = run({buffer, length}, {buffer, 4}, {nullptr, 0});
    if (outcome.written < 1 || outcome.written > 4)
        return kInvalid;
    result = buffer[0];
    if (source_.form == Form::kUtf8 && target_.form == Form::kUtf32)
        return outcome.status;
    for (std::uint32_t i = 1; i < outcome.written; ++i)
        result = result * 256 + buffer[i];
    return outcome.status;
}

void appendEncoded(std::vector<std::uint8_t> &out, const Encoding &encoding, std::uint32_t codePoint) {
    static const Encoding from = model::encoding("UTF-32");
    std::uint8_t bytes[8];
    Encoder encoder(from, encoding);
    const unsigned length = encoder.encode(codePoint, false, bytes);
    if (encoding.swapped)
        swapUnits(bytes, length, widthOf(encoding.form));
    out.insert(out.end(), bytes, bytes + length);
}

} // namespace model
