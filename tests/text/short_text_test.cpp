// Texts around the lengths of one vector and of one block, which are counted, cut and validated in one go: at
// the front of a page with rubbish behind them, and ending where the page does; with each length, with a NUL
// and with a byte that does not belong there at each place.
#include "harness/checks.hpp"
#include "model/count.hpp"

#include "guarded_buffer.hpp"

#include <gtest/gtest.h>

#include <algorithm>

using kit::Bytes;
using kit::hex;
using kit::Kit;
using kit::World;

namespace {

constexpr std::size_t kLongest = 70;
constexpr std::size_t kBehind = 80;
constexpr unsigned kAround[] = {0,  1,  2,  15, 16, 17, 30, 31, 32, 33,
                                47, 48, 61, 62, 63, 64, 65, 66, 70, 1000};

// A text at one of its places.
class Placed {
public:
    // What stands behind the NUL belongs to characters before it, or begins some.
    const char *atFront(const Bytes &text) {
        static constexpr unsigned char kRubbish[] = {0x80, 0xBF, 0x81, 'a', 0xE3, 0x81, 0x82, 0xC3, 0xF7, 0};
        unsigned char *const at = area_.head(text.size() + 1 + kBehind);
        std::copy(text.begin(), text.end(), at);
        at[text.size()] = 0;
        for (std::size_t i = 0; i < kBehind; ++i)
            at[text.size() + 1 + i] = kRubbish[i % sizeof kRubbish];
        return reinterpret_cast<const char *>(at);
    }
    const char *atEnd(const Bytes &text) {
        unsigned char *const at = area_.tail(text.size() + 1);
        std::copy(text.begin(), text.end(), at);
        at[text.size()] = 0;
        return reinterpret_cast<const char *>(at);
    }

private:
    fixture::GuardedBuffer area_{4096};
};

Bytes head(const Bytes &text, std::size_t length) {
    return {text.begin(), text.begin() + static_cast<std::ptrdiff_t>(length)};
}

Bytes upToNul(const Bytes &text) {
    return {text.begin(), std::find(text.begin(), text.end(), 0)};
}

// Calls `check(text, source)` with texts of all lengths of every page, at both places, whole and broken.
template <typename Check>
void everyText(std::uint32_t seed, Check check) {
    World world;
    Placed placed;
    for (const Kit &one : world.kits) {
        kit::TextMaker maker(seed);
        Bytes valid;
        while (valid.size() < kLongest) {
            const Bytes more = maker.valid(one.script, 8);
            valid.insert(valid.end(), more.begin(), more.end());
        }
        for (std::size_t length = 0; length <= kLongest && !testing::Test::HasFatalFailure(); ++length) {
            std::vector<Bytes> texts{head(valid, length)};
            if (length != 0) { // one of its bytes becomes another
                Bytes broken = texts[0];
                const auto place = maker.random.below(static_cast<std::uint32_t>(length));
                static constexpr unsigned char kStrange[] = {0x80, 0xBF, 0xC3, 0xE3, 0xF0, 0xF8, 0xFF,
                                                             0x81, 0xFD, 0xA0, 'a',  '0',  0};
                for (const unsigned char strange : kStrange) {
                    broken[place] = strange;
                    texts.push_back(broken);
                }
            }
            for (const Bytes &text : texts)
                for (const bool front : {true, false}) {
                    SCOPED_TRACE(one.name + (front ? " at the front" : " at the end"));
                    check(one, text, front ? placed.atFront(text) : placed.atEnd(text));
                }
        }
    }
}

} // namespace

TEST(ShortTextDifferential, CountCharacters) {
    everyText(1, [](const Kit &one, const Bytes &bytes, const char *source) {
        const Bytes text = upToNul(bytes);
        std::vector<std::uint32_t> limits(std::begin(kAround), std::end(kAround));
        for (std::size_t near = text.size() < 2 ? 0 : text.size() - 2; near < text.size() + 2; ++near)
            limits.push_back(static_cast<std::uint32_t>(near));
        for (const std::uint32_t limit : limits) {
            std::uint32_t count = 77;
            const nlsStatus status =
                nlsCountChars(one.locale, source, static_cast<std::int32_t>(limit), &count);
            const model::Counted expected =
                model::countCharacters(one.twin, text, static_cast<std::int32_t>(limit));
            ASSERT_EQ(static_cast<std::int32_t>(status), expected.status) << hex(text) << " " << limit;
            ASSERT_EQ(count, expected.count) << hex(text) << " " << limit;
        }
    });
}

// The data ends where it says: no NUL stands behind it.
TEST(ShortTextDifferential, Validate) {
    everyText(2, [](const Kit &one, const Bytes &bytes, const char *source) {
        std::uint32_t count = 77;
        const nlsStatus status =
            nlsValidateString(one.locale, source, static_cast<std::int32_t>(bytes.size()), 0, &count);
        const model::Counted expected = model::validate(one.twin, bytes, false);
        ASSERT_EQ(static_cast<std::int32_t>(status), expected.status) << hex(bytes);
        ASSERT_EQ(count, expected.count) << hex(bytes);
    });
}

TEST(ShortTextDifferential, Substring) {
    fixture::GuardedBuffer output(4096);
    fixture::Random random(3);
    everyText(3, [&](const Kit &one, const Bytes &bytes, const char *source) {
        const Bytes text = upToNul(bytes);
        for (unsigned round = 0; round < 12; ++round) {
            const auto around = static_cast<std::uint32_t>(text.size() + 3);
            const auto start = static_cast<std::int32_t>(random.below(around));
            const auto length = static_cast<std::int32_t>(random.below(around));
            const model::Cut cut = model::substring(one.twin, text, start, length);
            // Room for all, to the byte, or for less.
            const auto size = static_cast<std::uint32_t>(cut.text.size() + 1 - random.below(3) % 2);
            unsigned char *const buffer = output.tail(size + 1);
            std::fill(buffer, buffer + size + 1, 0xEE);
            nlsStr out{reinterpret_cast<char *>(buffer), size, 7};
            std::uint32_t characters = 77;
            const nlsStatus status = nlsSubstr(one.locale, source, start, length, &characters, &out);
            const bool fits = size != 0 && cut.text.size() <= size;
            const std::int32_t expected = cut.status != 0 ? cut.status : fits ? 0 : 2;
            ASSERT_EQ(static_cast<std::int32_t>(status), expected)
                << hex(text) << " " << start << " " << length << " size " << size;
            ASSERT_EQ(characters, cut.characters) << hex(text) << " " << start << " " << length;
            if (status != NLS_OK)
                continue;
            ASSERT_EQ(hex({buffer, buffer + out.length}), hex(cut.text))
                << hex(text) << " " << start << " " << length;
            ASSERT_EQ(buffer[out.length], 0);
            // Nothing behind the NUL is written to.
            ASSERT_TRUE(std::all_of(buffer + out.length + 1, buffer + size + 1,
                                    [](unsigned char byte) { return byte == 0xEE; }));
        }
    });
}

// Texts with nothing in front of what may be read: a length of 0 lets nobody look at the data.
TEST(ShortTextDifferential, AtALengthOf0NothingIsLookedAt) {
    World world;
    fixture::GuardedBuffer area(4096);
    const auto *const nowhere = reinterpret_cast<const char *>(area.tail(0));
    for (const Kit &one : world.kits) {
        std::uint32_t count = 77;
        EXPECT_EQ(nlsValidateString(one.locale, nowhere, 0, 0, &count), NLS_OK) << one.name;
        EXPECT_EQ(count, 0U);
    }
}
