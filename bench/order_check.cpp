#include "order_check.hpp"

#include <string_view>

namespace bench {

PlainOrder::Step PlainOrder::stepOf(const std::string &character) {
    std::string source = character;
    std::string key = character;
    if (!basic_) {
        unsigned char buffer[8];
        std::uint16_t length = 0;
        nlsSortKey(locale_, source.data(), sizeof buffer, mode_, 0, buffer, &length);
        key.assign(reinterpret_cast<const char *>(buffer), length);
    } else if (mode_ == 0) {
        char buffer[16];
        const nlsStr from{source.data(), static_cast<std::uint32_t>(source.size()) + 1,
                          static_cast<std::uint32_t>(source.size())};
        nlsStr to{buffer, sizeof buffer, 0};
        nlsLowerCase(locale_, &from, &to);
        key.assign(buffer, to.length);
    }
    Step step{0, key};
    for (const char byte : key)
        step.weight = step.weight << 8 | static_cast<unsigned char>(byte);
    return step;
}

const PlainOrder::Step &PlainOrder::take(const char *&text) {
    char *next = nullptr;
    nlsGetNextChar(locale_, text, &next);
    const std::string character(text, static_cast<std::size_t>(next - text));
    text = next;
    const auto found = known_.find(character);
    return found != known_.end() ? found->second : known_.emplace(character, stepOf(character)).first->second;
}

int PlainOrder::compare(const char *a, const char *b) {
    const bool bytes = basic_ && mode_ != 0;
    const auto byteOf = [](const char *at) { return static_cast<unsigned char>(*at); };
    std::string_view pendingA;
    std::string_view pendingB;
    // One step of a string: its next byte, number or weight.
    const auto step = [&](const char *&at, std::string_view &pending) -> std::uint32_t {
        if (bytes)
            return byteOf(at++);
        if (pending.empty()) {
            const Step &next = take(at);
            if (basic_)
                return next.weight;
            pending = next.key;
        }
        const auto weight = static_cast<unsigned char>(pending[0]);
        pending.remove_prefix(1);
        return weight;
    };
    while ((*a != '\0' || !pendingA.empty()) && (*b != '\0' || !pendingB.empty())) {
        const std::uint32_t x = step(a, pendingA);
        const std::uint32_t y = step(b, pendingB);
        if (x != y)
            return x < y ? -1 : 1;
    }
    const int more = *a != '\0' ? 1 : -1;
    for (const char *rest = *a != '\0' ? a : b; *rest != '\0'; ++rest)
        if (*rest != ' ')
            return more;
    return 0;
}

std::string PlainOrder::key(const char *text) {
    std::string key;
    while (*text != '\0')
        key += take(text).key;
    return key;
}

} // namespace bench
