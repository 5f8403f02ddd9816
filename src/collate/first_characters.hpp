// How the characters at the beginning of a text fold, page by page: what orderOfFirstCharacters asks. The
// places are those of the first block of bytes, which can be loaded whole.
#pragma once

#include "collate/quick.hpp"
#include "locale/case_map.hpp"
#include "locale/page_facts.hpp"

namespace velnls {

#if defined(VELNLS_READS_AHEAD)

// The half block that a place of the first block is the last byte of, or the first half of all.
struct Window {
    __m128i bytes;
    unsigned from;  // its first place
    unsigned index; // of the place in it

    [[gnu::always_inline]] Window(const std::uint8_t *text, unsigned place)
        : from(place < kHalfBytes ? 0 : place - (kHalfBytes - 1)), index(place - from) {
        bytes = _mm_loadu_si128(reinterpret_cast<const __m128i *>(text + from));
    }
    [[gnu::always_inline]] [[nodiscard]] std::uint32_t high() const {
        return maskOf(bytes);
    }
    [[gnu::always_inline]] [[nodiscard]] std::uint32_t inRange(ByteRange range) const {
        const __m128i spans = all(range.span);
        return maskOf(_mm_cmpeq_epi8(_mm_max_epu8(_mm_sub_epi8(bytes, all(range.first)), spans), spans));
    }

private:
    static __m128i all(unsigned value) {
        return _mm_set1_epi8(static_cast<char>(value));
    }
    static std::uint32_t maskOf(__m128i bytes) {
        return static_cast<std::uint32_t>(_mm_movemask_epi8(bytes));
    }
};

inline unsigned lastOf(std::uint32_t mask) {
    return 31 - static_cast<unsigned>(__builtin_clz(mask));
}

// Whether the last `kMost` bytes before a place are ASCII.
template <unsigned kMost>
[[gnu::always_inline]] inline bool isAsciiBefore(const std::uint8_t *text, unsigned place) {
    const Window window(text, place);
    return (window.high() << kMost >> window.index & ((1U << kMost) - 1)) == 0;
}

// Any page of characters of up to four bytes: ASCII alone, where no byte before may reach across it.
class FirstAscii {
public:
    explicit FirstAscii(const nlsLocale &) {}
    static int orderOfFirst(const std::uint8_t *, const std::uint8_t *) {
        return kUnsettled;
    }
    [[gnu::always_inline]] [[nodiscard]] static bool isPlain(const std::uint8_t *text, unsigned place) {
        return isAsciiBefore<3>(text, place);
    }
    static unsigned beginOf(const std::uint8_t *, unsigned) {
        return kUnknownPlace;
    }
    static bool fold(const std::uint8_t *, std::uint32_t &) {
        return false;
    }
};

// The same for what is proved to be UTF-8, and the texts' first characters.
class FirstUtf8 : public FirstAscii {
public:
    explicit FirstUtf8(const nlsLocale &locale)
        : FirstAscii(locale), table_(*static_cast<const UnicodeCaseTable *>(locale.caseTable)) {}
    // Texts that begin with characters of two bytes.
    [[gnu::always_inline]] [[nodiscard]] int orderOfFirst(const std::uint8_t *a,
                                                          const std::uint8_t *b) const {
        if (((a[0] ^ 0xC0U) | (b[0] ^ 0xC0U)) >= 0x20 || a[1] == 0 || b[1] == 0)
            return kUnsettled;
        const std::uint32_t foldA = foldPair(a);
        const std::uint32_t foldB = foldPair(b);
        return foldA != foldB ? orderOf(foldA, foldB) : kUnsettled;
    }

private:
    [[gnu::always_inline]] [[nodiscard]] std::uint32_t foldPair(const std::uint8_t *at) const {
        return mapUtf8Case<Case::Lower>(table_, std::uint32_t{at[0]} << 8 | at[1]);
    }

    const UnicodeCaseTable &table_;
};

// Characters of one and two bytes, by the facts of the page; bytes have their case by a table.
class FirstPairs {
public:
    explicit FirstPairs(const nlsLocale &locale)
        : chars_(*locale.charTable), lower_(static_cast<const ByteCaseTable *>(locale.caseTable)->lower) {}
    [[gnu::always_inline]] [[nodiscard]] static bool isPlain(const std::uint8_t *text, unsigned place) {
        return isAsciiBefore<1>(text, place);
    }

    // Texts that begin with pairs: they have no case.
    [[gnu::always_inline]] [[nodiscard]] int orderOfFirst(const std::uint8_t *a,
                                                          const std::uint8_t *b) const {
        if (chars_.trailCount(a[0]) == 0 || chars_.trailCount(b[0]) == 0 || a[1] == 0 || b[1] == 0)
            return kUnsettled;
        const unsigned pairA = a[0] << 8 | a[1];
        const unsigned pairB = b[0] << 8 | b[1];
        return pairA != pairB ? orderOf(pairA, pairB) : kUnsettled;
    }
    // Of a run of lead bytes that ends before the place, every other one is a trail byte.
    [[gnu::always_inline]] [[nodiscard]] unsigned beginOf(const std::uint8_t *text, unsigned place) const {
        const PageFacts &facts = factsOf(chars_);
        const Window window(text, place);
        const std::uint32_t before = (1U << window.index) - 1;
        const std::uint32_t others =
            ~(window.inRange(facts.leads[0]) | window.inRange(facts.leads[1])) & before;
        if (others == 0 && window.from != 0) [[unlikely]]
            return kUnknownPlace;
        const unsigned runBegin = others == 0 ? 0 : lastOf(others) + 1;
        return place - ((window.index - runBegin) & 1);
    }
    [[gnu::always_inline]] bool fold(const std::uint8_t *at, std::uint32_t &number) const {
        if (chars_.trailCount(*at) == 0) {
            number = lower_[*at];
            return *at != 0;
        }
        number = static_cast<std::uint32_t>(at[0]) << 8 | at[1];
        return at[1] != 0;
    }

private:
    const CharTable &chars_;
    const std::uint8_t *lower_;
};

#else

class FirstUtf8 {
public:
    explicit FirstUtf8(const nlsLocale &) {}
};
class FirstPairs {
public:
    explicit FirstPairs(const nlsLocale &) {}
};
class FirstAscii {
public:
    explicit FirstAscii(const nlsLocale &) {}
};

#endif

} // namespace velnls
