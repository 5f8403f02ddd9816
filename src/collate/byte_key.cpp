#include "collate/byte_key.hpp"

#include "core/instruction_sets.hpp"

#include <algorithm>

namespace velnls {

std::size_t writeByteKeyPlain(const ByteKey &how, const std::uint8_t *text, std::size_t length,
                              std::uint8_t *key, std::size_t room) {
    std::size_t written = 0;
    for (std::size_t at = 0; at < length && written < room; ++at) {
        const std::uint8_t weight = how.weights[text[at]];
        if (weight != 0) {
            key[written++] = weight;
            continue;
        }
        for (unsigned i = 0; i < 2 && written < room; ++i)
            key[written++] = how.expanded;
    }
    return written;
}

std::size_t writeByteKey(const ByteKey &how, const std::uint8_t *text, std::size_t length, std::uint8_t *key,
                         std::size_t room) {
#if defined(__x86_64__) && !defined(VELNLS_PLAIN_LOOPS)
    if ((how.proofs & kWideVectors) != 0)
        return avx512::writeByteKey(how, text, length, key, room);
#endif
    // As far as no byte expands: eight at a time, looked at behind their stores.
    constexpr std::size_t kStep = 8;
    const std::uint8_t *const weights = how.weights;
    const std::size_t steps = std::min(length, room) / kStep;
    std::size_t at = 0;
    for (std::size_t step = 0; step < steps; ++step, at += kStep) {
        bool expands = false;
        for (std::size_t i = 0; i < kStep; ++i) {
            const std::uint8_t weight = weights[text[at + i]];
            expands |= weight == 0;
            key[at + i] = weight;
        }
        if (expands)
            break;
    }
    return at + writeByteKeyPlain(how, text + at, length - at, key + at, room - at);
}

} // namespace velnls
