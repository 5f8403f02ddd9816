#include "fuzz_text.hpp"

namespace fuzz {

namespace {

nlsHandle *open = nullptr;
nlsLocale *locales[kLocaleCount] = {};

} // namespace

nlsHandle *world() {
    static const fixture::Bytes file = kit::worldFile().image();
    static std::vector<std::uint8_t> memory(1 << 20);
    if (open == nullptr) {
        serve(file.data(), file.size());
        const auto size = static_cast<std::int32_t>(memory.size());
        require(nlsInit(0, memory.data(), size, readServed, &open) == NLS_OK);
        for (unsigned i = 0; i < kLocaleCount; ++i)
            require(nlsCreateLocale(open, kLocales[i].page, kLocales[i].collation, kLocales[i].caseTable,
                                    &locales[i]) == NLS_OK);
    }
    return open;
}

void refreshWorld() {
    static unsigned inputs = 0;
    if (++inputs % 2000 != 0 || open == nullptr)
        return;
    require(nlsClose(open) == NLS_OK);
    open = nullptr;
}

nlsLocale *localeOf(unsigned number) {
    world();
    return locales[number % kLocaleCount];
}

namespace {

std::int16_t compared(nlsLocale *locale, const char *a, const char *b, std::int16_t mode, nlsStatus &status) {
    std::int16_t result = 0;
    status = nlsCompare(locale, a, b, mode, &result);
    require(status == NLS_OK || status == NLS_E_NULLARG);
    require(result >= -1 && result <= 1);
    return result;
}

} // namespace

void orderEveryWay(nlsLocale *locale, const std::vector<std::uint8_t> &a, const std::vector<std::uint8_t> &b,
                   std::uint16_t keySize, std::uint16_t mode, bool trim) {
    Terminated left(a);
    Terminated right(b);
    nlsStatus status = NLS_OK;
    const auto signedMode = static_cast<std::int16_t>(mode);
    const std::int16_t forth = compared(locale, left.get(), right.get(), signedMode, status);
    const std::int16_t back = compared(locale, right.get(), left.get(), signedMode, status);
    require(forth == -back);
    require(compared(locale, left.get(), left.get(), signedMode, status) == 0);

    // Bounds as long as the texts change nothing; the bounded copies have no NUL.
    const std::size_t leftLength = left.length();
    const std::size_t rightLength = right.length();
    Block boundedLeft(leftLength);
    Block boundedRight(rightLength);
    std::copy_n(left.get(), leftLength, boundedLeft.data());
    std::copy_n(right.get(), rightLength, boundedRight.data());
    std::int16_t bounded = 0;
    const nlsStatus same = nlsCompareN(locale, reinterpret_cast<const char *>(boundedLeft.data()),
                                       reinterpret_cast<const char *>(boundedRight.data()),
                                       static_cast<std::int32_t>(leftLength),
                                       static_cast<std::uint32_t>(rightLength), mode, &bounded);
    require(same == status && bounded == forth);

    // Equal texts have equal keys, and a short key is the beginning of a long one.
    Block key(keySize);
    std::fill_n(key.data(), keySize, std::uint8_t{'x'});
    std::uint16_t length = 0xFFFF;
    const nlsStatus keyed = nlsSortKey(locale, left.get(), keySize, mode, trim, key.data(), &length);
    require(keyed == NLS_OK ? length < keySize : keyed == NLS_E_BUFFER && length == keySize);
    require(leftLength == std::strlen(left.get()));
    const auto longSize = static_cast<std::uint16_t>(2 * leftLength * 4 + 8);
    Block whole(longSize);
    std::fill_n(whole.data(), longSize, std::uint8_t{'x'});
    std::uint16_t wholeLength = 0;
    nlsSortKey(locale, left.get(), longSize, mode, trim, whole.data(), &wholeLength);
    if (keyed == NLS_OK && key.data()[0] != 'x' && whole.data()[0] != 'x')
        require(length <= wholeLength && (trim || std::memcmp(key.data(), whole.data(), length) == 0));
}

void mapEveryWay(nlsLocale *locale, const std::vector<std::uint8_t> &text, std::uint32_t size) {
    Terminated source(text);
    const nlsStr from{source.get(), 0, 0};
    for (const bool upper : {true, false}) {
        Block block(size + 1U);
        std::fill_n(block.data(), size + 1U, std::uint8_t{0xEE});
        nlsStr to{reinterpret_cast<char *>(block.data()), size, 0xABCD};
        const nlsStatus status = upper ? nlsUpperCase(locale, &from, &to) : nlsLowerCase(locale, &from, &to);
        // Bytes that are no UTF-8 may come out with a NUL among them.
        if (status == NLS_OK)
            require(to.length <= size && block.data()[to.length] == 0);
        else
            require(status == NLS_E_BUFFER && to.length == 0xABCD && block.data()[size] == 0xEE);
        // With room enough for every character to grow, mapping always ends well.
        const auto room = static_cast<std::uint32_t>(text.size() * 3 + 1);
        Block wide(room + 1U);
        nlsStr all{reinterpret_cast<char *>(wide.data()), room, 0};
        require((upper ? nlsUpperCase(locale, &from, &all) : nlsLowerCase(locale, &from, &all)) == NLS_OK);
        require(status != NLS_OK ||
                (all.length == to.length && std::memcmp(all.buffer, to.buffer, all.length) == 0));
    }
}

} // namespace fuzz
