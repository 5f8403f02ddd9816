// What makes an order an order, tried on very many texts of a locale.
#include "harness/laws.hpp"

#include "harness/calls.hpp"

#include <gtest/gtest.h>

#include <algorithm>

namespace kit {

namespace {

constexpr int kTriples = VELNLS_SANITIZED ? 50'000 : 1'000'000;
constexpr unsigned kTexts = 3000; // to draw the triples from

bool ranksAboveTheBlank(const fixture::ByteTable &weights, unsigned char byte) {
    return byte == ' ' || weights[byte] > weights[' '];
}

// Whether a character takes part in a transitive order: nothing in it ranks with or below the blank, nothing
// expands.
bool isOrderly(const Kit &one, const Bytes &character, std::int16_t mode) {
    const fixture::CollationTable &collation = *one.twin.collation;
    if (collation.kind == 3)
        return character[0] >= ' ';
    const fixture::ByteTable &weights = mode != 0 ? collation.sensitive : collation.insensitive;
    if (one.script == kit::Script::Euc && character[0] == 0x8E)
        return ranksAboveTheBlank(weights, character[1]);
    if (!ranksAboveTheBlank(weights, character[0]))
        return false;
    for (std::size_t i = one.twin.trails(character[0]) != 0 ? 2 : 1; i < character.size(); ++i)
        if (!ranksAboveTheBlank(weights, character[i]))
            return false;
    return true;
}

Bytes orderlyThai(kit::TextMaker &maker) {
    const auto one = [&maker](unsigned first, unsigned last) {
        return fixture::byteOf(first + maker.random.below(last - first + 1));
    };
    Bytes out;
    for (unsigned cells = maker.random.below(4); cells > 0; --cells) {
        if (maker.random.below(4) == 0) {
            out.push_back(maker.random.below(3) == 0 ? ' ' : one('a', 'd'));
            continue;
        }
        if (maker.random.below(3) == 0)
            out.push_back(one(0xE0, 0xE4));
        out.push_back(one(0xA1, 0xA4));
        if (maker.random.below(2) == 0)
            out.push_back(one(0xD4, 0xD6));
        if (maker.random.below(2) == 0)
            out.push_back(one(0xE7, 0xEC));
    }
    return out;
}

Bytes orderly(const Kit &one, kit::TextMaker &maker, std::int16_t mode) {
    if (one.script == kit::Script::Thai)
        return orderlyThai(maker);
    Bytes out;
    for (unsigned i = maker.random.below(5); i > 0; --i) {
        const Bytes character = maker.valid(one.script, 1);
        if (isOrderly(one, character, mode))
            out = out + character;
    }
    return out;
}

class Laws {
public:
    Laws(const Kit &one, std::int16_t mode) : one_(one), mode_(mode) {}

    int operator()(const Bytes &a, const Bytes &b) const {
        std::int16_t result = 77;
        const nlsStatus status = nlsCompare(one_.locale, reinterpret_cast<const char *>(a.data()),
                                            reinterpret_cast<const char *>(b.data()), mode_, &result);
        return status == NLS_OK ? result : 77;
    }

private:
    const Kit &one_;
    std::int16_t mode_;
};

// Texts with their NUL, each with a near relative behind it.
template <typename Make>
std::vector<Bytes> texts(Make make) {
    std::vector<Bytes> out;
    for (unsigned i = 0; i < kTexts; ++i)
        out.push_back(make() + Bytes{0});
    return out;
}

} // namespace

void checkThatOrderTurnsRound(const Kit &one, std::int16_t mode) {
    TextMaker maker(41);
    Bytes last;
    const std::vector<Bytes> pool = texts([&] {
        last = maker.random.below(2) != 0 ? maker.variant(one.script, last)
                                          : maker.any(one.script, maker.random.below(6));
        return last;
    });
    const Laws compared(one, mode);
    for (const Bytes &text : pool)
        ASSERT_EQ(compared(text, text), 0) << one.name << " " << hex(text);
    for (int i = 0; i < kTriples; ++i) {
        const Bytes &a = pool[maker.random.below(kTexts)];
        const Bytes &b = i % 2 == 0 ? pool[maker.random.below(kTexts)] : *std::min(&a + 1, &pool.back());
        const int forth = compared(a, b);
        ASSERT_TRUE(forth >= -1 && forth <= 1);
        ASSERT_EQ(forth, -compared(b, a)) << one.name << " " << hex(a) << " " << hex(b);
    }
}

void checkThatOrderIsTransitive(const Kit &one, std::int16_t mode) {
    TextMaker maker(42);
    const std::vector<Bytes> pool = texts([&] { return orderly(one, maker, mode); });
    const Laws compared(one, mode);
    int ordered = 0;
    for (int i = 0; i < kTriples; ++i) {
        const Bytes &a = pool[maker.random.below(kTexts)];
        const Bytes &b = pool[maker.random.below(kTexts)];
        const Bytes &c = pool[maker.random.below(kTexts)];
        const int ab = compared(a, b);
        const int bc = compared(b, c);
        const int ac = compared(a, c);
        if (ab * bc < 0)
            continue; // says nothing about the third
        ++ordered;
        ASSERT_EQ(ac, ab != 0 ? ab : bc)
            << one.name << " mode " << mode << ": " << hex(a) << "| " << hex(b) << "| " << hex(c);
    }
    EXPECT_GT(ordered, kTriples / 3) << one.name;
}

} // namespace kit
