// UTF-8, UTF-16 and UTF-32 into one another, one character at a time. A unit cut by the end of the input ends
// it.
#include "convert/kernels/unicode_units.hpp"

namespace velnls {

namespace {

// To UTF-8 from units of either width: unpaired surrogates come out as "?" and give `unpaired` at the end.
template <typename Unit>
nlsStatus unitsToUtf8(Source &source, Target &target, Order order, nlsStatus unpaired) {
    nlsStatus status = NLS_OK;
    while (hasUnit<Unit>(source)) {
        std::uint32_t value = readPairOrUnit<Unit>(source, order);
        if (isSurrogate(value)) {
            value = '?';
            status = unpaired;
        }
        if (!writeUtf8(target, value))
            return NLS_E_BUFFER;
    }
    return status;
}

} // namespace

nlsStatus utf16ToUtf8(Source &source, Target &target, Order sourceOrder) {
    return unitsToUtf8<std::uint16_t>(source, target, sourceOrder, NLS_E_NULLARG);
}

nlsStatus utf32ToUtf8(Source &source, Target &target, Order sourceOrder) {
    return unitsToUtf8<std::uint32_t>(source, target, sourceOrder, NLS_E_SURROGATE);
}

nlsStatus utf8ToUtf16(Source &source, Target &target, Order targetOrder) {
    return writeOrdered<std::uint16_t>(target, targetOrder, [&] {
        while (source.at < source.end) {
            std::uint32_t value = 0;
            if (!readUtf8(source, value))
                return NLS_E_NULLARG;
            if (!writeUtf16(target, value, Order::Native))
                return NLS_E_BUFFER;
        }
        return NLS_OK;
    });
}

nlsStatus utf8ToUtf32(Source &source, Target &target, Order targetOrder) {
    return writeOrdered<std::uint32_t>(target, targetOrder, [&] {
        while (source.at < source.end) {
            std::uint32_t value = 0;
            if (!readUtf8(source, value))
                return NLS_E_NULLARG;
            if (!writeUnit<std::uint32_t>(target, value > kLastCodePoint ? kReplacement : value,
                                          Order::Native))
                return NLS_E_BUFFER;
        }
        return NLS_OK;
    });
}

nlsStatus utf16ToUtf32(Source &source, Target &target, Order sourceOrder, Order targetOrder) {
    return writeOrdered<std::uint32_t>(target, targetOrder, [&] {
        while (hasUnit<std::uint16_t>(source)) {
            const std::uint32_t value = readPairOrUnit<std::uint16_t>(source, sourceOrder);
            if (!writeUnit<std::uint32_t>(target, value, Order::Native))
                return NLS_E_BUFFER;
        }
        return NLS_OK;
    });
}

nlsStatus utf32ToUtf16(Source &source, Target &target, Order sourceOrder, Order targetOrder) {
    return writeOrdered<std::uint16_t>(target, targetOrder, [&] {
        while (hasUnit<std::uint32_t>(source)) {
            if (target.room() < 2) // before the unit is read
                return NLS_E_BUFFER;
            if (!writeUtf16(target, readUnit<std::uint32_t>(source, sourceOrder), Order::Native))
                return NLS_E_BUFFER;
        }
        return NLS_OK;
    });
}

} // namespace velnls
