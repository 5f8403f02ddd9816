#include "twins.hpp"

#include <algorithm>
#include <cstring>

namespace model {

namespace {

unsigned char byteAt(const std::string &text, std::size_t at) {
    return at < text.size() ? static_cast<unsigned char>(text[at]) : 0;
}

unsigned trails(const Page &page, unsigned char byte) {
    return page.attributes[byte] & 7U;
}

// Bytes of the character at a place, as its first byte announces them.
unsigned lengthAt(const Page &page, const std::string &text, std::size_t at) {
    return trails(page, byteAt(text, at)) + 1;
}

// The character behind the one at a place; never behind the text's end.
std::size_t nextOf(const Page &page, const std::string &text, std::size_t at) {
    return at >= text.size() ? at : std::min(text.size(), at + lengthAt(page, text, at));
}

bool isBoundary(const Page &page, const std::string &text, std::size_t at) {
    if (page.utf8)
        return (byteAt(text, at) & 0xC0) != 0x80;
    std::size_t run = 0;
    while (run < at && trails(page, byteAt(text, at - run - 1)) != 0)
        ++run;
    return run % 2 == 0;
}

// The character before a place that is not the text's start.
std::size_t previousOf(const Page &page, const std::string &text, std::size_t at) {
    do
        --at;
    while (at != 0 && !isBoundary(page, text, at));
    return at;
}

// A character's bytes as a number; 63 for those of five bytes and more, 0 at the text's end.
std::uint32_t valueAt(const Page &page, const std::string &text, std::size_t at) {
    const unsigned length = lengthAt(page, text, at);
    if (at < text.size() && length > 4)
        return 63;
    std::uint32_t value = 0;
    for (std::size_t i = at; i < std::min(text.size(), at + length); ++i)
        value = value * 256 + byteAt(text, i);
    return value;
}

// nlsCompareN of two stretches, given by place and announced length.
nlsStatus compare(const Page &page, const std::string &a, std::size_t atA, unsigned lengthA,
                  const std::string &b, std::size_t atB, unsigned lengthB, std::uint16_t mode, bool &equal) {
    std::int16_t result = 1;
    const nlsStatus status = nlsCompareN(page.locale, a.c_str() + atA, b.c_str() + atB,
                                         static_cast<std::int32_t>(lengthA), lengthB, mode, &result);
    equal = status == 0 && result == 0;
    return status;
}

// The characters at two places.
nlsStatus compareCharacters(const Page &page, const std::string &a, std::size_t atA, const std::string &b,
                            std::size_t atB, std::uint16_t mode, bool &equal) {
    return compare(page, a, atA, lengthAt(page, a, atA), b, atB, lengthAt(page, b, atB), mode, equal);
}

nlsStatus countOf(const Page &page, const std::string &text, std::size_t bytes, std::uint32_t &count) {
    return nlsCountChars(page.locale, text.c_str(), static_cast<std::int32_t>(bytes), &count);
}

class Like {
public:
    Like(const Page &page, const std::string &pattern, const std::string &string, std::uint16_t mode,
         const Signs &signs)
        : page_(page), pattern_(pattern), string_(string), mode_(mode), signs_(signs) {}

    nlsStatus match(std::size_t p, std::size_t s) const {
        for (;;) {
            const std::size_t kept = p;
            std::uint32_t c = valueAt(page_, pattern_, p);
            p = nextOf(page_, pattern_, p);
            if (c == signs_.oneCharacter && c != signs_.escape) {
                if (atEnd(string_, s))
                    return 0;
                s = nextOf(page_, string_, s);
                if (atEnd(pattern_, p) && !atEnd(string_, s))
                    return 0;
                continue;
            }
            if (c == signs_.anyString && c != signs_.escape) {
                if (atEnd(pattern_, p))
                    return 1;
                while (!atEnd(string_, s)) {
                    if (match(p, s) == 1)
                        return 1;
                    s = nextOf(page_, string_, s);
                }
                return 0;
            }
            std::size_t literal = kept;
            if (signs_.escape != 0 && c == signs_.escape) {
                literal = p;
                c = valueAt(page_, pattern_, p);
                p = nextOf(page_, pattern_, p);
                if (c != signs_.escape && c != signs_.oneCharacter && c != signs_.anyString)
                    return static_cast<nlsStatus>(-1);
            }
            if (atEnd(pattern_, literal) && atEnd(string_, s))
                return 1;
            bool equal = false;
            const nlsStatus status = compareCharacters(page_, pattern_, literal, string_, s, mode_, equal);
            if (status != 0)
                return status;
            if (!equal)
                return 0;
            s = nextOf(page_, string_, s);
            if (atEnd(string_, s)) {
                if (atEnd(pattern_, p))
                    return 1;
                const std::uint32_t rest = valueAt(page_, pattern_, p);
                return rest == signs_.anyString && rest != signs_.escape &&
                       atEnd(pattern_, nextOf(page_, pattern_, p));
            }
            if (atEnd(pattern_, p))
                p = kept;
        }
    }

private:
    static bool atEnd(const std::string &text, std::size_t at) {
        return at >= text.size();
    }

    const Page &page_;
    const std::string &pattern_;
    const std::string &string_;
    std::uint16_t mode_;
    Signs signs_;
};

// Whether the pattern stands at one candidate.
nlsStatus matchesAt(const Page &page, const std::string &pattern, const std::string &text, std::size_t at,
                    std::uint16_t mode, std::size_t &end, bool &equal) {
    equal = true;
    end = at;
    for (std::size_t p = 0; p < pattern.size(); p = nextOf(page, pattern, p)) {
        const nlsStatus status = compareCharacters(page, pattern, p, text, end, mode, equal);
        if (status != 0 || !equal)
            return status;
        end = nextOf(page, text, end);
    }
    return 0;
}

void blank(Out &out) {
    std::fill_n(out.buffer.begin(), std::min<std::size_t>(out.length, out.size), ' ');
    out.length = 0;
    if (out.size != 0)
        out.buffer[0] = 0;
}

// Writes at a place of the counted string, terminates, sets the length.
void put(Out &out, std::size_t at, const std::string &piece) {
    std::copy(piece.begin(), piece.end(), out.buffer.begin() + static_cast<std::ptrdiff_t>(at));
    out.length = static_cast<std::uint32_t>(at + piece.size());
    out.buffer[out.length] = 0;
}

std::int64_t room(const Out &out) {
    return std::int64_t{out.size} - out.length - 1;
}

nlsStatus append(Out &out, const std::string &piece) {
    if (static_cast<std::int64_t>(piece.size()) > room(out))
        return NLS_E_BUFFER;
    put(out, out.length, piece);
    return 0;
}

nlsStatus copyWhole(Out &out, const std::string &text) {
    if (out.size == 0 || text.size() > out.size)
        return NLS_E_BUFFER;
    put(out, 0, text);
    return 0;
}

std::string unpack(std::uint32_t lchar) {
    std::string bytes;
    for (int shift = 24; shift >= 0; shift -= 8)
        if (const auto byte = static_cast<char>(lchar >> shift); byte != 0 || !bytes.empty())
            bytes += byte;
    return bytes.c_str(); // ends at its first NUL
}

Found terminatorOf(const std::string &text) {
    return {0, static_cast<std::uint32_t>(text.size()) + 1, kUnwritten,
            static_cast<std::ptrdiff_t>(text.size())};
}

Found foundAt(std::size_t at) {
    return {0, static_cast<std::uint32_t>(at) + 1, kUnwritten, static_cast<std::ptrdiff_t>(at)};
}

Found failed(nlsStatus status) {
    return {status, 0, kUnwritten, kNowhere};
}

} // namespace

nlsStatus like(const Page &page, const std::string &pattern, const std::string &string, std::uint16_t mode,
               const Signs &signs) {
    return Like(page, pattern, string, mode, signs).match(0, 0);
}

Found searchForwards(const Page &page, const std::string &pattern, const std::string &text,
                     std::uint16_t mode) {
    std::uint32_t wanted = 0;
    std::uint32_t remaining = 0;
    if (const nlsStatus status = countOf(page, pattern, pattern.size(), wanted); status != 0)
        return failed(status);
    if (const nlsStatus status = countOf(page, text, text.size(), remaining); status != 0)
        return failed(status);
    if (pattern.empty()) {
        Found result = terminatorOf(text);
        result.endOffset = result.position;
        return result;
    }
    for (std::size_t candidate = 0; remaining >= wanted; --remaining) {
        std::size_t end = 0;
        bool equal = false;
        if (const nlsStatus status = matchesAt(page, pattern, text, candidate, mode, end, equal); status != 0)
            return failed(status);
        if (equal) {
            Found result = foundAt(candidate);
            result.endOffset = static_cast<std::uint32_t>(end);
            return result;
        }
        candidate = nextOf(page, text, candidate);
    }
    return failed(0);
}

Found searchBackwards(const Page &page, const std::string &pattern, const std::string &text,
                      std::int32_t length, std::uint16_t mode) {
    std::uint32_t wanted = 0;
    std::uint32_t remaining = 0;
    if (const nlsStatus status = countOf(page, pattern, pattern.size(), wanted); status != 0)
        return failed(status);
    if (const nlsStatus status = countOf(page, text, static_cast<std::size_t>(length), remaining);
        status != 0)
        return failed(status);
    if (pattern.empty())
        return foundAt(static_cast<std::size_t>(length));
    if (length == 0)
        return failed(NLS_E_END);
    const std::string searched = text.substr(0, static_cast<std::size_t>(length)); // ends at its length
    std::size_t candidate = previousOf(page, searched, searched.size());
    for (; remaining >= wanted; --remaining) {
        std::size_t p = previousOf(page, pattern, pattern.size());
        std::size_t place = candidate;
        for (;;) {
            bool equal = false;
            if (const nlsStatus status = compareCharacters(page, pattern, p, searched, place, mode, equal);
                status != 0)
                return failed(status);
            if (!equal)
                break;
            if (p == 0)
                return foundAt(place);
            if (place == 0)
                break;
            p = previousOf(page, pattern, p);
            place = previousOf(page, searched, place);
        }
        if (candidate == 0)
            break;
        candidate = previousOf(page, searched, candidate);
    }
    return failed(0);
}

Out replace(const Page &page, const std::string &pattern, const std::string &replacement,
            const std::string &text, std::uint16_t mode, Out out) {
    out.match = searchForwards(page, pattern, text, mode);
    out.status = out.match.status;
    if (out.status != 0)
        return out;
    if (out.match.found == kNowhere) {
        out.status = copyWhole(out, text);
        return out;
    }
    const std::size_t prefix = out.match.position - 1;
    if (out.size == 0 || prefix > out.size) {
        out.status = NLS_E_BUFFER;
        return out;
    }
    put(out, 0, text.substr(0, prefix));
    out.status = append(out, replacement);
    if (out.status == 0)
        out.status = append(out, text.substr(std::min<std::size_t>(out.match.endOffset, text.size())));
    if (out.status != 0)
        blank(out);
    return out;
}

Out replaceAll(const Page &page, const std::string &pattern, const std::string &replacement,
               const std::string &text, std::uint16_t mode, Out out) {
    out.count = 0;
    Found match = searchForwards(page, pattern, text, mode);
    out.status = match.status;
    if (out.status != 0)
        return out;
    if (match.found == kNowhere) {
        out.status = copyWhole(out, text);
        return out;
    }
    std::size_t cursor = 0;
    bool isFirst = true;
    for (;;) {
        const std::string before = text.substr(cursor, match.position - 1);
        if (isFirst) {
            if (out.size == 0 || before.size() > out.size)
                break;
            put(out, 0, before);
        } else if (append(out, before) != 0) {
            break;
        }
        isFirst = false;
        if (append(out, replacement) != 0) {
            cursor += before.size(); // the stretch before is written already
            break;
        }
        ++out.count;
        cursor += match.endOffset;
        if (cursor >= text.size())
            break;
        match = searchForwards(page, pattern, text.substr(cursor), mode);
        if (match.status != 0 || match.position == 0)
            break;
    }
    out.status = append(out, text.substr(cursor));
    if (out.status != 0)
        blank(out);
    return out;
}

Found findForwards(const Page &page, std::uint32_t lchar, const std::string &text, std::uint16_t mode) {
    if (lchar == 0)
        return terminatorOf(text);
    const std::string pattern = unpack(lchar);
    for (std::size_t at = 0; at < text.size(); at = nextOf(page, text, at)) {
        bool equal = false;
        if (const nlsStatus status = compare(page, pattern, 0, static_cast<unsigned>(pattern.size()), text,
                                             at, lengthAt(page, text, at), mode, equal);
            status != 0)
            return failed(status);
        if (equal)
            return foundAt(at);
    }
    return failed(0);
}

Found findBackwards(const Page &page, std::uint32_t lchar, const std::string &text, std::int32_t length,
                    std::uint16_t mode) {
    if (lchar == 0)
        return terminatorOf(text);
    const std::string pattern = unpack(lchar);
    for (auto at = static_cast<std::size_t>(length); at != 0;) {
        at = previousOf(page, text, at);
        bool equal = false;
        if (const nlsStatus status = compare(page, pattern, 0, static_cast<unsigned>(pattern.size()), text,
                                             at, lengthAt(page, text, at), mode, equal);
            status != 0)
            return failed(status);
        if (equal)
            return foundAt(at);
    }
    return failed(0);
}

Found trimLeft(const Page &page, const std::string &set, const std::string &text, std::uint16_t mode) {
    std::size_t at = 0;
    for (; at < text.size(); at = nextOf(page, text, at)) {
        const Found inSet = findForwards(page, valueAt(page, text, at), set, mode);
        if (inSet.status != 0)
            return failed(inSet.status);
        if (inSet.found == kNowhere)
            break;
    }
    return foundAt(at);
}

Found trimRight(const Page &page, const std::string &set, const std::string &text, std::int32_t length,
                std::uint16_t mode) {
    auto end = static_cast<std::size_t>(length);
    while (end != 0) {
        const std::size_t start = previousOf(page, text, end);
        const Found inSet = searchForwards(page, text.substr(start, end - start), set, mode);
        if (inSet.status != 0)
            return failed(inSet.status);
        if (inSet.found == kNowhere)
            break;
        end = start;
    }
    return foundAt(end);
}

} // namespace model
