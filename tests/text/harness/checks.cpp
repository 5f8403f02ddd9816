#include "checks.hpp"

#include "model/case.hpp"
#include "model/order.hpp"

namespace kit {

namespace {

Bytes head(const Bytes &text, std::size_t length) {
    return {text.begin(), text.begin() + static_cast<std::ptrdiff_t>(std::min(length, text.size()))};
}

} // namespace

void checkCompare(const Kit &one, TextMaker &maker) {
    const Bytes a = maker.any(one.script, maker.random.below(12));
    const Bytes b = maker.random.below(4) == 0 ? maker.any(one.script, maker.random.below(12))
                                               : maker.variant(one.script, a);
    for (const std::int16_t mode : kModesAndOne) {
        const model::Compared expected = model::compare(one.twin, a, b, static_cast<std::uint16_t>(mode));
        const Compared actual = compare(one.locale, a, b, mode);
        ASSERT_EQ(actual.status, expected.status) << hex(a) << " " << hex(b) << " mode " << mode;
        ASSERT_EQ(actual.result, expected.status != 0 ? 77 : expected.result)
            << hex(a) << " " << hex(b) << " mode " << mode;
    }
}

void checkCompareWithLengths(const Kit &one, TextMaker &maker) {
    const Bytes a = maker.any(one.script, maker.random.below(10));
    const Bytes b = maker.variant(one.script, a);
    const auto length = [&maker](const Bytes &text) {
        return maker.random.below(4) == 0 ? 0xFFFFFFFF
                                          : maker.random.below(static_cast<std::uint32_t>(text.size() + 3));
    };
    const std::uint32_t lengthA = length(a);
    const std::uint32_t lengthB = length(b);
    for (const std::uint16_t mode : kKeyModes) {
        const model::Compared expected = model::compare(one.twin, head(a, lengthA), head(b, lengthB), mode);
        const Compared actual = compareN(one.locale, a, b, static_cast<std::int32_t>(lengthA), lengthB, mode);
        ASSERT_EQ(actual.status, expected.status);
        ASSERT_EQ(actual.result, expected.result)
            << hex(head(a, lengthA)) << " " << hex(head(b, lengthB)) << " mode " << mode;
    }
}

void checkSortKey(const Kit &one, TextMaker &maker) {
    Bytes text = maker.any(one.script, maker.random.below(12));
    if (maker.random.below(3) == 0)
        text.insert(text.end(), maker.random.below(4), ' ');
    const auto size =
        static_cast<std::uint16_t>(1 + maker.random.below(maker.random.below(2) != 0 ? 64 : 12));
    const bool trim = maker.random.below(2) != 0;
    const Bytes filler(maker.random.below(size + 1U), 'x');
    for (const unsigned mode : {0U, 1U, 3U, 0x2000U, 0x6001U}) {
        const model::Keyed expected = model::sortKey(one.twin, text, size, mode, trim);
        const Key actual =
            sortKey(one.locale, text, size, static_cast<std::uint16_t>(mode), trim, filler + Bytes{0});
        Bytes stands = expected.written ? expected.key + Bytes{0} : filler + Bytes{0};
        const auto end =
            std::find(stands.begin(), stands.begin() + std::min<std::ptrdiff_t>(std::ssize(stands), size), 0);
        const auto length = static_cast<std::size_t>(end - stands.begin());
        ASSERT_EQ(actual.status, length < size ? 0U : 2U)
            << hex(text) << " size " << size << " mode " << mode << " trim " << trim;
        ASSERT_EQ(actual.length, length)
            << hex(text) << " size " << size << " mode " << mode << " trim " << trim << " key "
            << hex(actual.buffer) << " expected " << hex(stands);
        ASSERT_EQ(hex(actual.text()), hex(head(stands, length)))
            << hex(text) << " size " << size << " mode " << mode << " trim " << trim;
    }
}

void checkCaseMapping(const Kit &one, TextMaker &maker) {
    // Mostly few characters, sometimes more than fill several blocks of a vector kernel.
    const Bytes text = maker.any(one.script, maker.random.below(maker.random.below(8) == 0 ? 160 : 12));
    for (const bool upper : {true, false}) {
        const auto size = static_cast<std::uint32_t>(
            maker.random.below(3) == 0 ? 2 * text.size() + 8
                                       : maker.random.below(static_cast<std::uint32_t>(text.size() + 3)));
        const model::Mapped expected = model::mapCase(one.twin, text, size, upper);
        const Cased actual = mapCase(one.locale, text, size, upper);
        ASSERT_EQ(actual.status, expected.status) << hex(text) << " size " << size << " upper " << upper;
        Bytes stands = expected.text;
        if (expected.terminated)
            stands.push_back(0);
        ASSERT_EQ(hex(head(actual.buffer, stands.size())), hex(stands))
            << hex(text) << " size " << size << " upper " << upper;
        for (std::size_t i = stands.size(); i < actual.buffer.size(); ++i)
            ASSERT_EQ(actual.buffer[i], 0xEE) << hex(text) << " size " << size << " upper " << upper;
        ASSERT_EQ(actual.length, expected.counted ? expected.text.size() : 0xEEEE);
    }
}

} // namespace kit
