// nlsCompare, nlsCompareN, nlsSortKey.
#include "collate/basic.hpp"
#include "collate/byte_key.hpp"
#include "collate/checks.hpp"
#include "collate/compare.hpp"
#include "collate/first_block.hpp"
#include "collate/first_characters.hpp"
#include "collate/key.hpp"
#include "collate/weights.hpp"
#include "icu/collate.hpp"
#include "locale/case_text.hpp"
#include "locale/page_facts.hpp"

#include <cstring>

using namespace velnls;

namespace velnls {

nlsStatus compareOnByBytes(const char *a, const char *b, std::int16_t *out) {
    return give(compareBytes(boundedText(a, -1), boundedText(b, -1)), out);
}

nlsStatus compareOnByWeights(const nlsLocale *locale, const char *a, const char *b,
                             const std::uint8_t *weights, std::int16_t *out) {
    const WeightOrder order{weights, locale->charTable};
    return give(compareByByteWeightsOn(order, boundedText(a, -1), boundedText(b, -1)), out);
}

#if defined(VELNLS_READS_AHEAD)

nlsStatus compareAtEnd(const nlsLocale *locale, const char *a, const char *b, const std::uint8_t *weights,
                       std::int16_t *out, std::uint32_t places) {
    a += firstOf(places);
    b += firstOf(places);
    const bool ends = *a == 0 || *b == 0;
    const int order = ends ? byteOrder(*bytesOf(a), *bytesOf(b)) : kUnsettled;
    return order != kUnsettled ? give(order, out) : compareOnByWeights(locale, a, b, weights, out);
}

[[gnu::cold]] nlsStatus compareNearPageEnd(const nlsLocale *locale, const char *a, const char *b,
                                           const std::uint8_t *weights, std::int16_t *out) {
    const std::size_t at = equalBytesPlain(boundedText(a, kAheadBytes), boundedText(b, kAheadBytes));
    const std::uint32_t places = at != kAheadBytes ? ~std::uint32_t{0} << at : 0;
    return settleByWeights(places, locale, a, b, weights, out);
}

#endif

} // namespace velnls

namespace {

// Checked in full, and by whatever order the locale has.
[[gnu::noinline]] nlsStatus compareAny(const nlsLocale *locale, const char *a, const char *b,
                                       std::int16_t mode, std::int16_t *out, std::int64_t lengthA,
                                       std::int64_t lengthB) {
    if (const nlsStatus status = checkOrder(locale, a != nullptr && b != nullptr && out != nullptr);
        status != NLS_OK)
        return status;
    int result = *out; // ICU leaves it as it is in the modes that it does not know
    const nlsStatus status = compareTexts(*locale, boundedText(a, lengthA), boundedText(b, lengthB),
                                          static_cast<std::uint16_t>(mode), result);
    if (status == NLS_OK)
        *out = static_cast<std::int16_t>(result);
    return status;
}

// ---- The ways of nlsCompare. Each has five arguments at most, like the call itself, so that it can jump
// there.

[[gnu::noinline]] nlsStatus compareWhole(const nlsLocale *locale, const char *a, const char *b,
                                         std::int16_t mode, std::int16_t *out) {
    return compareAny(locale, a, b, mode, out, -1, -1);
}

struct Differences {
#if defined(VELNLS_READS_AHEAD)
    [[gnu::always_inline]] std::uint32_t operator()(const std::uint8_t *a, const std::uint8_t *b) const {
        return differencesAhead(a, b);
    }
#endif
};

[[gnu::noinline]] nlsStatus compareFirstBytes(const char *a, const char *b, std::int16_t *out) {
    return compareFirstBytesBy(Differences(), a, b, out);
}

[[gnu::noinline]] nlsStatus compareFirstWeights(const nlsLocale *locale, const char *a, const char *b,
                                                const std::uint8_t *weights, std::int16_t *out) {
    return compareFirstWeightsBy(Differences(), locale, a, b, weights, out);
}

// Where kOwnAsciiWeights is proved; kOwnWeights says the same of the other bytes.
[[gnu::noinline]] nlsStatus compareFirstOwnWeights(const nlsLocale *locale, const char *a, const char *b,
                                                   const std::uint8_t *weights, std::int16_t *out) {
    const auto areOwn = [locale](unsigned either) {
        return either < 0x80 || (locale->header.proofs & kOwnWeights) != 0;
    };
    return compareFirstOwnWeightsBy(Differences(), areOwn, locale, a, b, weights, out);
}

[[gnu::always_inline]] inline nlsStatus compareByBytes(std::uint32_t proofs, const char *a, const char *b,
                                                       std::int16_t *out) {
    return (proofs & kWideVectors) != 0 ? avx512::compareFirstBytes(a, b, out) : compareFirstBytes(a, b, out);
}

// Many strings differ in their first bytes already. Under mode 1 most bytes have a weight of their own.
[[gnu::always_inline]] inline nlsStatus compareByWeights(const nlsLocale *locale, std::uint32_t proofs,
                                                         const char *a, const char *b,
                                                         const std::uint8_t *weights, unsigned mode,
                                                         std::int16_t *out) {
    if (*a != *b)
        if (const int order = orderOfWeights(weights[*bytesOf(a)], weights[*bytesOf(b)]); order != kUnsettled)
            return give(order, out);
    const bool wide = (proofs & kWideVectors) != 0;
    if (mode == 0 || (proofs & kOwnAsciiWeights) == 0)
        return wide ? avx512::compareFirstWeights(locale, a, b, weights, out)
                    : compareFirstWeights(locale, a, b, weights, out);
    if (!wide)
        return compareFirstOwnWeights(locale, a, b, weights, out);
    return (proofs & kOwnWeights) != 0 ? avx512::compareFirstOwnWeights(locale, a, b, weights, out)
                                       : avx512::compareFirstOwnAscii(locale, a, b, weights, out);
}

[[gnu::noinline]] nlsStatus compareOnFolded(const nlsLocale *locale, const char *a, const char *b,
                                            std::int16_t *out) {
    return give(compareFolded(*locale, boundedText(a, -1), boundedText(b, -1)), out);
}

template <typename Page>
[[gnu::noinline]] nlsStatus compareFirstCharacters(const nlsLocale *locale, const char *a, const char *b,
                                                   std::int16_t *out) {
    const int order = orderOfFirstCharacters(Page(*locale), bytesOf(a), bytesOf(b));
    if (order == kUnsettled) [[unlikely]]
        return compareOnFolded(locale, a, b, out);
    return give(order, out);
}

// BASIC in mode 0.
[[gnu::always_inline]] inline nlsStatus compareFolding(const nlsLocale *locale, std::uint32_t proofs,
                                                       const char *a, const char *b, std::int16_t *out) {
    if ((proofs & kByteOrder) != 0)
        return compareByWeights(locale, proofs, a, b,
                                static_cast<const ByteCaseTable *>(locale->caseTable)->lower, 0, out);
    if ((proofs & kAsciiOrder) == 0)
        return compareOnFolded(locale, a, b, out);
    if ((proofs & kUtf8Page) != 0)
        return compareFirstCharacters<FirstUtf8>(locale, a, b, out);
    if ((proofs & kPairPage) != 0)
        return compareFirstCharacters<FirstPairs>(locale, a, b, out);
    return compareFirstCharacters<FirstAscii>(locale, a, b, out);
}

} // namespace

nlsStatus nlsCompare(nlsLocale *locale, const char *a, const char *b, int16_t mode, int16_t *result) {
    const std::uint32_t proofs = provedOrder(locale);
    if (proofs != 0 && a != nullptr && b != nullptr && result != nullptr) [[likely]] {
        if ((proofs & kByteWeights) != 0 && (mode & ~1) == 0)
            return compareByWeights(locale, proofs, a, b, provedWeights(*locale, static_cast<unsigned>(mode)),
                                    static_cast<unsigned>(mode), result);
        if ((proofs & kBasicOrder) != 0)
            return mode != 0 ? compareByBytes(proofs, a, b, result)
                             : compareFolding(locale, proofs, a, b, result);
    }
    return compareWhole(locale, a, b, mode, result);
}

nlsStatus nlsCompareN(nlsLocale *locale, const char *a, const char *b, int32_t lengthA, uint32_t lengthB,
                      uint16_t mode, int16_t *result) {
    return compareAny(locale, a, b, static_cast<std::int16_t>(mode), result, lengthA,
                      lengthB == 0xFFFFFFFF ? -1 : std::int64_t{lengthB});
}

namespace {

// The general way, whose key may hold a NUL: its length is measured.
[[gnu::noinline]] nlsStatus writeAnyKey(const nlsLocale *locale, char *source, std::uint16_t keySize,
                                        std::uint16_t mode, std::uint16_t trim, unsigned char *key,
                                        std::uint16_t *keyLength) {
    if (const nlsStatus status =
            checkOrder(locale, source != nullptr && key != nullptr && keyLength != nullptr);
        status != NLS_OK)
        return status;
    Text text = boundedText(source, -1);
    // A key that spells "SS" is trimmed itself, since its blanks are weights that read 0x20.
    const bool trimKey = trim != 0 && spellsLiteralSs(*locale->collation);
    if (trim != 0 && !trimKey) {
        std::size_t length = std::strlen(source);
        while (length > 0 && source[length - 1] == ' ')
            --length;
        text.end = text.at + length;
    }
    const nlsStatus status = writeSortKey(*locale, text, mode, trimKey, key, keySize);
    if (status != NLS_OK && status != NLS_E_BUFFER)
        return status;
    const void *const end = std::memchr(key, 0, keySize);
    const auto length =
        end == nullptr ? keySize : static_cast<std::uint16_t>(static_cast<const unsigned char *>(end) - key);
    *keyLength = length;
    return length < keySize ? status : NLS_E_BUFFER;
}

// The key of a short text at once, where the locale's proofs and the processor allow it; else kNotShort.
// `table` is 0 or 1.
[[gnu::always_inline]] inline std::size_t writeShortKey(const nlsLocale &locale, std::uint32_t proofs,
                                                        unsigned table, const avx512::ShortText &text) {
    if ((proofs & kWideVectors) == 0)
        return avx512::kNotShort;
    if ((proofs & kByteWeights) == 0)
        return table != 0 ? avx512::copyShort(text) : mapShortCase<Case::Lower>(locale, text);
    // A key that spells "SS" is trimmed itself.
    if (text.trims && spellsLiteralSs(*locale.collation))
        return avx512::kNotShort;
    return avx512::mapShortBytes(provedWeights(locale, table), text);
}

// Text without the blanks at its end.
std::size_t trimmed(const std::uint8_t *text, std::size_t length) {
    while (length > 0 && text[length - 1] == ' ')
        --length;
    return length;
}

} // namespace

nlsStatus nlsSortKey(nlsLocale *locale, char *source, uint16_t keySize, uint16_t mode, uint16_t trim,
                     unsigned char *key, uint16_t *keyLength) {
    const std::uint32_t proofs = provedOrder(locale);
    const unsigned table = mode & ~(icu::kKeyIgnored | icu::kKeyPrimary);
    if (source == nullptr || key == nullptr || keyLength == nullptr || keySize == 0 || table > 1 ||
        (proofs & (kByteWeights | kBasicKeys)) == 0) [[unlikely]]
        return writeAnyKey(locale, source, keySize, mode, trim, key, keyLength);
    const auto *const text = reinterpret_cast<const std::uint8_t *>(source);
    if (const std::size_t written =
            writeShortKey(*locale, proofs, table, {text, trim != 0, key, keySize, true});
        written != avx512::kNotShort) {
        *keyLength = static_cast<std::uint16_t>(written);
        return NLS_OK;
    }
    std::size_t length = lengthOf(boundedText(source, -1));
    const std::size_t room = keySize - 1;
    if ((proofs & kByteWeights) != 0) {
        // A key that spells "SS" is trimmed itself, since its blanks are weights that read 0x20.
        const bool literal = spellsLiteralSs(*locale->collation);
        if (trim != 0 && !literal)
            length = trimmed(text, length);
        const std::uint8_t *const weights = provedWeights(*locale, table);
        const std::uint8_t expanded = literal ? std::uint8_t{'S'} : weights[unsigned{'s'}];
        if (expanded == 0) [[unlikely]]
            return writeAnyKey(locale, source, keySize, mode, trim, key, keyLength);
        std::size_t written = writeByteKey({weights, expanded, proofs}, text, length, key, room);
        if (trim != 0 && literal)
            written = trimmed(key, written);
        key[written] = 0;
        *keyLength = static_cast<std::uint16_t>(written);
        return NLS_OK;
    }
    if (trim != 0)
        length = trimmed(text, length);
    if (length > room) // the buffer stays as it is, and what stands there is measured
        return writeAnyKey(locale, source, keySize, mode, trim, key, keyLength);
    if (table != 0) {
        std::memmove(key, text, length);
        key[length] = 0;
        *keyLength = static_cast<std::uint16_t>(length);
        return NLS_OK;
    }
    const std::uint8_t *const end = text + length;
    const CaseResult lower = mapTextCase<Case::Lower>(*locale, {text, end}, end, key, room);
    key[lower.written] = 0;
    // What the key is taken to hold ends at its first NUL.
    const std::size_t written =
        lower.mayHoldNul ? std::strlen(reinterpret_cast<const char *>(key)) : lower.written;
    *keyLength = static_cast<std::uint16_t>(written);
    return NLS_OK;
}
