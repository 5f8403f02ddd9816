// Compares and sort keys that read strings by blocks, beside the plain twins: strings that begin alike for a
// while, at every place of a page of memory, before rubbish, and where the page behind may not be read.
#include "harness/calls.hpp"
#include "model/order.hpp"

#include <gtest/gtest.h>

#include <optional>

using kit::Bytes;
using kit::hex;
using kit::Kit;
using kit::operator+;
using kit::World;

namespace {

constexpr int kRounds = VELNLS_SANITIZED ? 400 : 4000; // per locale
constexpr std::size_t kPage = 4096;

// Strings in writable memory of two pages, with a page behind that nobody may touch.
class Place {
public:
    Place() : buffer_(2 * kPage), bytes_(buffer_.tail(2 * kPage)) {}

    // Somewhere in the first page, across the border of the two, or at the very end. What is behind the NUL,
    // or behind the last byte where there is none, is rubbish, in which a NUL is as good as any byte.
    const char *put(const Bytes &text, bool terminated, fixture::Random &random) {
        const std::size_t size = text.size() + (terminated ? 1 : 0);
        std::size_t at = 2 * kPage - size;
        switch (random.below(4)) {
        case 0:
            at = random.below(static_cast<std::uint32_t>(kPage - size));
            break;
        case 1:
            at = kPage - std::min<std::size_t>(size, random.below(static_cast<std::uint32_t>(size + 40)));
            break;
        case 2:
            at -= random.below(48);
            break;
        default:
            break;
        }
        const unsigned char rubbish = fixture::byteOf(random.below(3) != 0 ? random() : 0);
        std::fill(bytes_ + at, bytes_ + std::min(2 * kPage, at + size + 64), rubbish);
        std::copy(text.begin(), text.end(), bytes_ + at);
        if (terminated)
            bytes_[at + text.size()] = 0;
        return reinterpret_cast<const char *>(bytes_ + at);
    }
    // With much of its page behind it, as most strings have.
    const char *putInside(const Bytes &text) {
        std::fill(bytes_, bytes_ + text.size() + 64, 0xEE);
        std::copy(text.begin(), text.end(), bytes_);
        bytes_[text.size()] = 0;
        return reinterpret_cast<const char *>(bytes_);
    }
    [[nodiscard]] unsigned char *room(std::size_t size) {
        return buffer_.tail(size);
    }

private:
    fixture::GuardedBuffer buffer_;
    unsigned char *bytes_;
};

Bytes head(const Bytes &text, std::size_t length) {
    return {text.begin(), text.begin() + static_cast<std::ptrdiff_t>(std::min(length, text.size()))};
}

// Two strings that begin alike, go on as variants of each other or apart, and end alike now and then.
struct Pair {
    Bytes a;
    Bytes b;
};

Pair pairOf(const Kit &one, kit::TextMaker &maker) {
    const auto some = [&](unsigned most) { return maker.any(one.script, maker.random.below(most)); };
    const unsigned length = maker.random.below(8) == 0 ? 300 : maker.random.below(2) != 0 ? 40 : 8;
    const Bytes begin = some(length);
    const Bytes middle = some(6);
    Pair pair{begin + middle, begin};
    switch (maker.random.below(4)) {
    case 0:
        pair.b = pair.b + some(6);
        break;
    case 1: // far away as well
        pair.b = maker.variant(one.script, pair.a);
        break;
    default:
        pair.b = pair.b + maker.variant(one.script, middle);
        break;
    }
    const Bytes end = some(maker.random.below(3) == 0 ? 40 : 2);
    pair.a = pair.a + end;
    if (maker.random.below(3) != 0)
        pair.b = pair.b + end;
    if (maker.random.below(4) == 0)
        pair.b.insert(pair.b.end(), maker.random.below(40), ' ');
    return pair;
}

// Calls `check` with every locale and its texts until something differs.
template <typename Check>
void everyLocale(std::uint32_t seed, Check check) {
    World world(1);
    for (const Kit &one : world.kits) {
        kit::TextMaker maker(seed);
        for (int round = 0; round < kRounds && !testing::Test::HasFatalFailure(); ++round) {
            SCOPED_TRACE(one.name + ", round " + std::to_string(round));
            check(one, maker);
        }
    }
}

} // namespace

TEST(OrderBlocks, StringsThatBeginAlikeAreComparedAsThePlainWalkDoes) {
    Place left;
    Place right;
    everyLocale(21, [&](const Kit &one, kit::TextMaker &maker) {
        const Pair pair = pairOf(one, maker);
        const char *const a = left.put(pair.a, true, maker.random);
        const char *const b = right.put(pair.b, true, maker.random);
        for (const std::int16_t mode : kit::kModes) {
            std::int16_t result = 77;
            ASSERT_EQ(nlsCompare(one.locale, a, b, mode, &result), NLS_OK);
            ASSERT_EQ(result,
                      model::compare(one.twin, pair.a, pair.b, static_cast<std::uint16_t>(mode)).result)
                << hex(pair.a) << " " << hex(pair.b) << " mode " << mode;
        }
    });
}

TEST(OrderBlocks, LettersBehindLeadBytesAreCharactersOnlyWherePlainWalksFindThem) {
    World world(1);
    Place left;
    Place right;
    static constexpr unsigned char kLeads[] = {0xE2, 0xC3, 0xC4, 0xD0, 0xF1, 0x81, 0xDF};
    for (const unsigned char lead : kLeads) {
        // Every string of up to three bytes.
        const Bytes few = {'a', 'B', lead, 0xB0, ' '};
        std::vector<Bytes> all = {{}};
        for (std::size_t i = 0; i < all.size(); ++i)
            for (const unsigned char byte : few)
                if (all[i].size() < 3)
                    all.push_back(all[i] + Bytes{byte});
        // At the beginning, and across the middle of a block.
        for (const std::size_t before : {0, 14}) {
            const Bytes begin(before, 'x');
            for (const Kit &one : world.kits)
                for (const Bytes &endA : all) {
                    const Bytes a = begin + endA;
                    const char *const textA = left.putInside(a);
                    for (const Bytes &endB : all) {
                        const Bytes b = begin + endB;
                        const char *const textB = right.putInside(b);
                        std::int16_t result = 77;
                        ASSERT_EQ(nlsCompare(one.locale, textA, textB, 0, &result), NLS_OK);
                        ASSERT_EQ(result, model::compare(one.twin, a, b, 0).result)
                            << one.name << ": " << hex(a) << " " << hex(b);
                    }
                }
        }
    }
}

TEST(OrderBlocks, AnyTwoBytesBehindTheSameBeginningAreAsInThePlainWalk) {
    World world(1);
    Place left;
    Place right;
    const Bytes begin = {'k', 'k'};
    for (const Kit &one : world.kits) {
        if (one.script != kit::Script::Latin)
            continue;
        for (unsigned byteA = 0; byteA < 256; ++byteA) {
            // Where bytes are equal, what follows decides.
            const Bytes a = byteA == 0 ? begin : begin + Bytes{fixture::byteOf(byteA), '1'};
            const char *const textA = left.putInside(a);
            for (unsigned byteB = 0; byteB < 256; ++byteB) {
                const Bytes b = byteB == 0 ? begin : begin + Bytes{fixture::byteOf(byteB), '2'};
                const char *const textB = right.putInside(b);
                for (const std::int16_t mode : kit::kModes) {
                    std::int16_t result = 77;
                    ASSERT_EQ(nlsCompare(one.locale, textA, textB, mode, &result), NLS_OK);
                    ASSERT_EQ(result, model::compare(one.twin, a, b, static_cast<std::uint16_t>(mode)).result)
                        << one.name << ": " << hex(a) << " " << hex(b) << " mode " << mode;
                }
            }
        }
    }
}

TEST(OrderBlocks, BoundsEndStringsInEveryBlock) {
    Place left;
    Place right;
    everyLocale(22, [&](const Kit &one, kit::TextMaker &maker) {
        const Pair pair = pairOf(one, maker);
        // Nothing needs to stand behind a bound, not even a NUL.
        const auto boundOf = [&maker](const Bytes &text) -> std::optional<std::uint32_t> {
            if (maker.random.below(4) == 0)
                return std::nullopt;
            return maker.random.below(static_cast<std::uint32_t>(text.size() + 1));
        };
        const auto boundA = boundOf(pair.a);
        const auto boundB = boundOf(pair.b);
        const Bytes a = boundA ? head(pair.a, *boundA) : pair.a;
        const Bytes b = boundB ? head(pair.b, *boundB) : pair.b;
        const char *const textA = left.put(a, !boundA, maker.random);
        const char *const textB = right.put(b, !boundB, maker.random);
        for (const std::uint16_t mode : kit::kKeyModes) {
            std::int16_t result = 77;
            ASSERT_EQ(nlsCompareN(one.locale, textA, textB, boundA ? static_cast<std::int32_t>(*boundA) : -1,
                                  boundB.value_or(0xFFFFFFFF), mode, &result),
                      NLS_OK);
            ASSERT_EQ(result, model::compare(one.twin, a, b, mode).result)
                << hex(a) << " " << hex(b) << " mode " << mode;
        }
    });
}

TEST(OrderBlocks, KeysOfAnyLengthAreThoseOfThePlainWalk) {
    Place source;
    Place target;
    everyLocale(23, [&](const Kit &one, kit::TextMaker &maker) {
        Bytes text = pairOf(one, maker).a;
        if (maker.random.below(3) == 0)
            text.insert(text.end(), maker.random.below(70), ' ');
        const char *const at = source.put(text, true, maker.random);
        const std::size_t around = text.size() + 4;
        const auto size = static_cast<std::uint16_t>(
            1 +
            maker.random.below(static_cast<std::uint32_t>(maker.random.below(2) != 0 ? around : 3 * around)));
        const bool trim = maker.random.below(2) != 0;
        for (const std::uint16_t mode : kit::kKeyModes) {
            const model::Keyed expected = model::sortKey(one.twin, text, size, mode, trim);
            unsigned char *const room = target.room(size);
            std::fill(room, room + size, 0xEE);
            std::uint16_t length = 0xABCD;
            const nlsStatus status =
                nlsSortKey(one.locale, const_cast<char *>(at), size, mode, trim ? 1 : 0, room, &length);
            if (!expected.written) {
                ASSERT_EQ(status, NLS_E_BUFFER) << hex(text) << " size " << size;
                ASSERT_EQ(Bytes(room, room + size), Bytes(size, 0xEE)) << hex(text) << " size " << size;
                continue;
            }
            ASSERT_EQ(status, NLS_OK) << hex(text) << " size " << size;
            const auto end = std::find(expected.key.begin(), expected.key.end(), 0);
            ASSERT_EQ(hex({room, room + length}), hex({expected.key.begin(), end}))
                << hex(text) << " size " << size << " mode " << mode << " trim " << trim;
            ASSERT_EQ(room[length], 0);
        }
        // The source is as it was.
        ASSERT_EQ(hex(Bytes(at, at + text.size())), hex(text));
    });
}
