#include "case.hpp"

#include <cctype>

namespace model {

std::uint32_t mapNumber(const CasePages &pages, std::uint32_t number, bool upper) {
    const std::uint32_t lead = number / 65536;
    std::uint32_t adjusted = number;
    if (lead == 0xE1)
        adjusted -= 0xE17F80;
    else if (lead == 0xE2)
        adjusted -= 0xE23F80;
    else if (lead == 0xEF)
        adjusted -= 0xEEFF80;
    else if (lead != 0)
        return number;
    const unsigned page = adjusted / 256 % 256;
    const unsigned index = adjusted % 128;
    const unsigned value = upper ? pages.upper(page, index) : pages.lower(page, index);
    return value == 0 ? number : value + lead * 65536;
}

namespace {

unsigned char runtimeCase(unsigned char byte, bool upper) {
    return static_cast<unsigned char>(upper ? std::toupper(byte) : std::tolower(byte));
}

// The characters of the text, each as it will be written.
std::vector<Bytes> pieces(const Locale &locale, const Bytes &text, bool upper) {
    std::vector<Bytes> out;
    std::size_t at = 0;
    const auto upTo = [&](std::size_t length) { return std::min(length, text.size() - at); };
    while (at < text.size()) {
        const unsigned char first = text[at];
        const unsigned trails = locale.trails(first);
        if (locale.pagedCase()) {
            std::uint32_t code = 0;
            const std::size_t taken = upTo(trails + 1);
            for (std::size_t i = 0; i < taken; ++i)
                code = code * 256 + text[at + i];
            if (trails >= 3)
                code = '?';
            at += taken;
            code = mapNumber(*locale.casePages, code, upper);
            Bytes bytes;
            if (code > 0xFFFF)
                bytes.push_back(fixture::byteOf(code / 65536));
            if (code > 0xFF)
                bytes.push_back(fixture::byteOf(code / 256));
            bytes.push_back(fixture::byteOf(code));
            out.push_back(bytes);
            continue;
        }
        const bool byTable = locale.byteCase.has_value();
        const std::size_t length = trails == 0 ? 1 : upTo(byTable ? 2 : trails + 1);
        if (trails != 0)
            out.emplace_back(text.begin() + static_cast<std::ptrdiff_t>(at),
                             text.begin() + static_cast<std::ptrdiff_t>(at + length));
        else if (byTable)
            out.push_back({upper ? locale.byteCase->upper[first] : locale.byteCase->lower[first]});
        else
            out.push_back({runtimeCase(first, upper)});
        at += length;
    }
    return out;
}

} // namespace

Mapped mapCase(const Locale &locale, const Bytes &text, std::size_t size, bool upper) {
    Mapped result;
    for (const Bytes &piece : pieces(locale, text, upper)) {
        const std::size_t room = size - result.text.size();
        if (room == 0) {
            result.status = 2;
            return result;
        }
        if (piece.size() > room) {
            // Lower case ends its text here; upper case says no more than that it did not fit.
            result.status = 2;
            result.terminated = !upper;
            return result;
        }
        result.text = result.text + piece;
    }
    result.terminated = true;
    result.counted = true;
    return result;
}

} // namespace model
