// nlsCompare, nlsCompareN, nlsSortKey.
#include "collate/checks.hpp"
#include "collate/compare.hpp"
#include "collate/key.hpp"

#include <cstring>

using namespace velnls;

namespace {

nlsStatus compare(const nlsLocale &locale, Text a, Text b, unsigned mode, std::int16_t &out) {
    int result = out; // ICU leaves it as it is in the modes that it does not know
    const nlsStatus status = compareTexts(locale, a, b, mode, result);
    if (status == NLS_OK)
        out = static_cast<std::int16_t>(result);
    return status;
}

} // namespace

nlsStatus nlsCompare(nlsLocale *locale, const char *a, const char *b, int16_t mode, int16_t *result) {
    if (const nlsStatus status = checkOrder(locale, a != nullptr && b != nullptr && result != nullptr);
        status != NLS_OK)
        return status;
    return compare(*locale, boundedText(a, -1), boundedText(b, -1), static_cast<std::uint16_t>(mode),
                   *result);
}

nlsStatus nlsCompareN(nlsLocale *locale, const char *a, const char *b, int32_t lengthA, uint32_t lengthB,
                      uint16_t mode, int16_t *result) {
    if (const nlsStatus status = checkOrder(locale, a != nullptr && b != nullptr && result != nullptr);
        status != NLS_OK)
        return status;
    const std::int64_t boundB = lengthB == 0xFFFFFFFF ? -1 : std::int64_t{lengthB};
    return compare(*locale, boundedText(a, lengthA), boundedText(b, boundB), mode, *result);
}

nlsStatus nlsSortKey(nlsLocale *locale, char *source, uint16_t keySize, uint16_t mode, uint16_t trim,
                     unsigned char *key, uint16_t *keyLength) {
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
