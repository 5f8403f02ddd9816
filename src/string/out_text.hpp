// Text put together in a caller's counted string, as the counted string calls would, for pieces whose lengths
// are known.
#pragma once

#include "core/instruction_sets.hpp"
#include "velnls.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace velnls {

// For processors with AVX-512; call it only where kWideVectors is proved.
namespace avx512 {

// Copies fewer than 64 bytes and puts a NUL behind them, without a branch on their number.
void putShort(char *to, const std::uint8_t *from, std::size_t length);

} // namespace avx512

class OutText {
public:
    // `proofs`: those of the text's locale.
    OutText(nlsStr &string, std::uint32_t proofs) : string_(string), wide_((proofs & kWideVectors) != 0) {}

    // All of a text, as nlsCopyString copies it: one that fills the size exactly has its NUL behind it.
    nlsStatus copy(const std::uint8_t *from, const std::uint8_t *to) {
        const std::int64_t size = static_cast<std::int32_t>(string_.size);
        if (size <= 0 || to - from > size)
            return NLS_E_BUFFER;
        string_.length = 0;
        put(from, to);
        return NLS_OK;
    }
    // The first bytes of a text that goes on. Where they fill the size exactly nothing can follow, not even
    // nothing, and the string is left blank.
    nlsStatus begin(const std::uint8_t *from, const std::uint8_t *to) {
        const std::int64_t size = static_cast<std::int32_t>(string_.size);
        if (size <= 0 || to - from > size)
            return NLS_E_BUFFER;
        string_.length = 0;
        if (to - from < size) {
            put(from, to);
            return NLS_OK;
        }
        string_.length = string_.size;
        return blank(NLS_E_BUFFER);
    }
    // Leaves the string as it was when the piece does not fit.
    nlsStatus append(const std::uint8_t *from, const std::uint8_t *to) {
        // The room can be -1, and then not even an empty piece fits.
        if (to - from > room())
            return NLS_E_BUFFER;
        put(from, to);
        return NLS_OK;
    }
    // For who writes behind the text without this class: where that is, how many bytes there are before the
    // NUL's, and up to where it then goes.
    [[nodiscard]] char *end() const {
        return string_.buffer + string_.length;
    }
    [[nodiscard]] std::int64_t room() const {
        return std::int64_t{static_cast<std::int32_t>(string_.size)} -
               static_cast<std::int32_t>(string_.length) - 1;
    }
    void endAt(char *end) {
        string_.length = static_cast<std::uint32_t>(end - string_.buffer);
        *end = '\0';
    }
    // Empties the string and leaves blanks where its text was. Gives `status`.
    nlsStatus blank(nlsStatus status) {
        if (const auto used = std::min(string_.length, string_.size); used != 0)
            std::memset(string_.buffer, ' ', used);
        string_.length = 0;
        if (string_.size != 0)
            string_.buffer[0] = '\0';
        return status;
    }

private:
    void put(const std::uint8_t *from, const std::uint8_t *to) {
        const auto length = static_cast<std::size_t>(to - from);
        char *const end = string_.buffer + string_.length;
        string_.length += static_cast<std::uint32_t>(length);
        if (wide_ && length < kShort) {
            avx512::putShort(end, from, length);
            return;
        }
        if (length != 0)
            std::memcpy(end, from, length);
        end[length] = '\0';
    }

    static constexpr std::size_t kShort = 64;

    nlsStr &string_;
    bool wide_;
};

} // namespace velnls
