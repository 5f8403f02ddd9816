// Code pages with a mapping, to UTF-8 and UTF-16 and back, one character at a time.
#include "convert/kernels/mapping_lookup.hpp"
#include "convert/kernels/unicode_units.hpp"

namespace velnls {

namespace {

// Below this an unmapped character stands for itself on either side.
constexpr std::uint32_t kSelfMapped = 127;

// The code of the character at source.at. The end of the source or a zero byte inside a character ends it
// early, with the code formed so far; the zero byte stays for the next character. Characters of four bytes
// and more have no code and read as "?".
std::uint16_t readCode(const CharTable &table, Source &source) {
    const std::uint8_t first = *source.at++;
    unsigned trails = table.trailCount(first);
    if (trails > 2) {
        const std::ptrdiff_t left = source.left();
        source.at += left < static_cast<std::ptrdiff_t>(trails) ? left : static_cast<std::ptrdiff_t>(trails);
        return '?';
    }
    std::uint16_t code = first;
    for (; trails > 0 && source.at < source.end && *source.at != 0; --trails)
        code = static_cast<std::uint16_t>(code << 8 | *source.at++);
    return code;
}

std::uint32_t readPageCharacter(const MappingBody &body, Source &source, nlsStatus &status) {
    const std::uint16_t code = readCode(*body.charTable, source);
    std::uint32_t value = unicodeOfCode(body, code);
    if (value == kNone)
        value = code < kSelfMapped ? code : kReplacement;
    if (value == kReplacement)
        status = NLS_R_SUBSTITUTED;
    return value;
}

bool writePageCharacter(const MappingBody &body, Target &target, std::uint32_t value, nlsStatus &status) {
    std::uint32_t code = codeOfUnicode(body, value);
    if (code == kNone) {
        if (value < kSelfMapped) {
            code = value;
        } else {
            code = body.groups[0].substitution;
            status = NLS_R_SUBSTITUTED;
        }
    }
    return writeCode(target, code);
}

} // namespace

nlsStatus pageToUtf8(const MappingBody &body, Source &source, Target &target) {
    nlsStatus status = NLS_OK;
    while (source.at < source.end) {
        std::uint32_t value = readPageCharacter(body, source, status);
        if (isSurrogate(value)) { // no character; only a faulty table has one
            value = '?';
            status = NLS_R_SUBSTITUTED;
        }
        if (!writeUtf8(target, value))
            return NLS_E_BUFFER;
    }
    return status;
}

nlsStatus pageToUtf16(const MappingBody &body, Source &source, Target &target, Order order) {
    return writeOrdered<std::uint16_t>(target, order, [&] {
        nlsStatus status = NLS_OK;
        while (source.at < source.end) {
            if (!writeUtf16(target, readPageCharacter(body, source, status), Order::Native))
                return NLS_E_BUFFER;
        }
        return status;
    });
}

nlsStatus utf8ToPage(const MappingBody &body, Source &source, Target &target) {
    nlsStatus status = NLS_OK;
    while (source.at < source.end) {
        std::uint32_t value = 0;
        if (!readUtf8(source, value))
            return NLS_E_NULLARG;
        if (!writePageCharacter(body, target, value, status))
            return NLS_E_BUFFER;
    }
    return status;
}

nlsStatus utf16ToPage(const MappingBody &body, Source &source, Target &target, Order order) {
    nlsStatus status = NLS_OK;
    while (hasUnit<std::uint16_t>(source)) {
        const std::uint32_t value = readPairOrUnit<std::uint16_t>(source, order);
        if (!writePageCharacter(body, target, value, status))
            return NLS_E_BUFFER;
    }
    return status;
}

} // namespace velnls
