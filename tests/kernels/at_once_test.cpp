// Short texts that are converted at once, against the general way.
#include "convert/at_once.hpp"
#include "convert/engine.hpp"
#include "core/instruction_sets.hpp"
#include "guarded_buffer.hpp"
#include "random.hpp"
#include "table_source.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

using namespace velnls;
using namespace kernel_tests;

namespace {

struct Pair {
    const char *from;
    const char *to;
};

// Every way, and the tables of one and two bytes.
constexpr Pair kPairs[] = {{"1252", "UTF-8"},       {"UTF-8", "1252"},       {"1251", "UTF-8"},
                           {"UTF-8", "1251"},       {"SHIFT-JIS", "UTF-8"},  {"UTF-8", "SHIFT-JIS"},
                           {"CP936", "UTF-8"},      {"UTF-8", "CP936"},      {"1252", "IBM850"},
                           {"SHIFT-JIS", "EUCJIS"}, {"EUCJIS", "SHIFT-JIS"}, {"UTF-16", "UTF-8"},
                           {"UTF-8", "UTF-16"},     {"UTF-32", "UTF-8"},     {"UTF-8", "UTF-32"},
                           {"UTF-16", "UTF-32"},    {"UTF-32", "UTF-16"}};

bool hasKernels() {
    return instructionSets() != 0;
}

TEST(AtOnce, EveryKindWithAKernelHasAWayWhereTheProcessorHasIts) {
    for (const Pair &pair : kPairs) {
        const void *const converter = converterOf(pair.from, pair.to);
        ASSERT_NE(converter, nullptr) << pair.from << ' ' << pair.to;
        EXPECT_EQ(wayAtOnce(converter) != 0, hasKernels()) << pair.from << ' ' << pair.to;
    }
    EXPECT_EQ(wayAtOnce(nullptr), 0u) << "a plain copy";
    EXPECT_EQ(wayAtOnce(converterOf("IBM037", "UTF-8")), 0u) << "ASCII is no identity";
}

std::string randomText(fixture::Random &random, const Pair &pair) {
    const std::string_view from = pair.from;
    const std::size_t unit = from == "UTF-16" ? 2 : from == "UTF-32" ? 4 : 1;
    const std::size_t characters = 1 + random.below(random.below(4) == 0 ? 300 : 40);
    const unsigned script = random.below(4);
    std::string text;
    for (std::size_t i = 0; i < characters; ++i) {
        const unsigned value = random.below(3) == 0 ? 0x20 + random.below(0x5F)
                               : script == 0        ? 0xC0 + random.below(0x40)
                               : script == 1        ? 0x410 + random.below(0x40)
                               : script == 2        ? 0x3042 + random.below(0x50)
                                                    : 0x4E00 + random.below(0x3000);
        if (unit != 1) {
            text.append(reinterpret_cast<const char *>(&value), unit);
        } else if (from == "UTF-8") {
            if (value < 0x80)
                text += static_cast<char>(value);
            else if (value < 0x800)
                text += {static_cast<char>(0xC0 | value >> 6), static_cast<char>(0x80 | (value & 0x3F))};
            else
                text += {static_cast<char>(0xE0 | value >> 12), static_cast<char>(0x80 | (value >> 6 & 0x3F)),
                         static_cast<char>(0x80 | (value & 0x3F))};
        } else if (from.substr(0, 2) == "12" || value < 0x80) {
            text += static_cast<char>(value);
        } else {
            text +=
                {static_cast<char>(0x81 + random.below(0x7E)), static_cast<char>(0x40 + random.below(0xBF))};
        }
    }
    // Now and then something is broken, or cut.
    if (random.below(4) == 0)
        text[random.below(static_cast<std::uint32_t>(text.size()))] = static_cast<char>(random.below(256));
    if (random.below(8) == 0)
        text.pop_back();
    return text;
}

struct Outcome {
    nlsStatus status;
    std::string written; // with what stands where the terminator does
};

// The text in memory that ends where it does or, every other time, begins there, and a destination that ends
// where its size does.
template <typename Convert>
Outcome outcomeOf(const std::string &text, std::uint32_t room, std::uint32_t terminator, Convert convert) {
    static fixture::GuardedBuffer sources(8192);
    static fixture::GuardedBuffer targets(8192);
    static bool atFront = false;
    atFront = !atFront;
    const std::size_t size = text.size() + 1;
    unsigned char *const from = atFront ? sources.head(size) : sources.tail(size);
    std::copy_n(text.c_str(), size, from);
    const nlsStr source{reinterpret_cast<char *>(from), static_cast<std::uint32_t>(size),
                        static_cast<std::uint32_t>(text.size())};
    unsigned char *const at = targets.tail(room);
    std::fill_n(at, room, 0xEE);
    nlsStr target{reinterpret_cast<char *>(at), room, 77};
    const nlsStatus status = convert(source, target);
    const std::size_t length = std::min<std::size_t>(target.length + terminator, room);
    return {status, std::to_string(target.length) + ':' +
                        std::string(at, at + (status == NLS_OK ? length : std::min(target.length, room)))};
}

// Calls `check(pair, converter, way)` for every pair; for none where the processor has no such kernels.
template <typename Check>
void forEveryWay(Check check) {
    if (wayAtOnce(converterOf("1252", "UTF-8")) == 0)
        GTEST_SKIP() << "the processor has no such kernels";
    for (const Pair &pair : kPairs) {
        SCOPED_TRACE(std::string(pair.from) + ' ' + pair.to);
        const void *const converter = converterOf(pair.from, pair.to);
        const std::uint32_t way = wayAtOnce(converter);
        ASSERT_NE(way, 0u);
        check(pair, converter, way);
    }
}

TEST(AtOnce, SwappedUnitsHaveNoWay) {
    for (const Pair &pair : {Pair{"UTF-16BE", "UTF-8"}, Pair{"UTF-8", "UTF-32BE"}}) {
        const void *const converter = converterOf(pair.from, pair.to);
        ASSERT_NE(converter, nullptr) << pair.from << ' ' << pair.to;
        EXPECT_EQ(wayAtOnce(converter), 0u) << pair.from << ' ' << pair.to;
    }
}

TEST(AtOnce, TextsOnTheirDestinationsGoTheGeneralWay) {
    forEveryWay([](const Pair &pair, const void *converter, std::uint32_t way) {
        fixture::Random random(99);
        for (int distance = -36; distance <= 36; ++distance) {
            const std::string text = randomText(random, pair).substr(0, kMostAtOnce);
            const auto convertWith = [&](bool atOnce) {
                std::string memory(2048, '\xEE');
                std::copy(text.begin(), text.end(), memory.begin() + 512);
                const nlsStr source{memory.data() + 512, 0, static_cast<std::uint32_t>(text.size())};
                nlsStr target{memory.data() + 512 + distance, 600, 0};
                const nlsStatus status = atOnce ? convertAtOnce(way, converter, source, nullptr, target)
                                                : convertText(converter, source, nullptr, target);
                return std::to_string(status) + ':' + std::to_string(target.length) + memory;
            };
            if (!text.empty()) {
                EXPECT_EQ(convertWith(true), convertWith(false)) << distance;
            }
        }
    });
}

// Whether the whole destination is the same, whatever stands behind the text and its terminator.
bool takesNothingFromBehind(std::uint32_t way, const void *converter, const std::string &text) {
    const auto convertBefore = [&](char behind) {
        std::string from = text + '\0' + std::string(128, behind);
        std::string to(2048, '\xEE');
        const nlsStr source{from.data(), 0, static_cast<std::uint32_t>(text.size())};
        nlsStr target{to.data(), 2048, 0};
        convertAtOnce(way, converter, source, nullptr, target);
        return to;
    };
    return convertBefore('x') == convertBefore('\xE3');
}

TEST(AtOnce, NothingOfWhatStandsBehindTheTextGetsIntoTheDestination) {
    forEveryWay([](const Pair &pair, const void *converter, std::uint32_t way) {
        fixture::Random random(7);
        for (int round = 0; round < 400; ++round) {
            const std::string text = randomText(random, pair).substr(0, kMostAtOnce);
            if (!text.empty()) {
                ASSERT_TRUE(takesNothingFromBehind(way, converter, text)) << "round " << round;
            }
        }
        if (std::string_view(pair.from) != "UTF-8")
            return;
        for (std::size_t length = 0; length < 100; ++length) { // mostly ASCII
            const std::string text = std::string(length, 'a') + "\xC2\xA7" + std::string(length % 20, 'b');
            ASSERT_TRUE(takesNothingFromBehind(way, converter, text)) << "length " << length;
        }
    });
}

TEST(AtOnce, ADestinationBeyondTheSignedRangeHasNoRoom) {
    const void *const converter = converterOf("1252", "UTF-8");
    const std::uint32_t way = wayAtOnce(converter);
    if (way == 0)
        GTEST_SKIP() << "the processor has no such kernels";
    char text[] = "text";
    char out[16] = "untouched";
    const nlsStr source{text, sizeof text, 4};
    nlsStr target{out, 0x80000000, 7};
    nlsStr expected = target;
    EXPECT_EQ(convertAtOnce(way, converter, source, nullptr, target),
              convertText(converter, source, nullptr, expected));
    EXPECT_EQ(target.length, expected.length);
}

class AtOnceOf : public testing::TestWithParam<Pair> {};

TEST_P(AtOnceOf, GivesWhatTheGeneralWayGivesAtEveryRoom) {
    const Pair &pair = GetParam();
    const void *const converter = converterOf(pair.from, pair.to);
    ASSERT_NE(converter, nullptr);
    const std::uint32_t way = wayAtOnce(converter);
    if (way == 0)
        GTEST_SKIP() << "the processor has no such kernels";
    fixture::Random random(4242);
    unsigned whole = 0;
    for (int round = 0; round < 6000; ++round) {
        std::string text = randomText(random, pair);
        if (round % 64 == 0 && !text.empty()) // of the most bytes, and of one
            text = round % 128 == 0 ? text.substr(0, 1)
                                    : (text + std::string(kMostAtOnce, 'x')).substr(0, kMostAtOnce);
        if (round % 50 == 1 && !text.empty())
            text[0] = static_cast<char>(0x80 + random.below(0x40));
        if (text.empty() || text.size() > kMostAtOnce)
            continue;
        const auto most = static_cast<std::uint32_t>(4 * text.size() + 80);
        const std::uint32_t room = random.below(3) == 0 ? 1 + random.below(most) : most;
        const auto generally = [&](const nlsStr &source, nlsStr &target) {
            return convertText(converter, source, nullptr, target);
        };
        const auto atOnce = [&](const nlsStr &source, nlsStr &target) {
            return convertAtOnce(way, converter, source, nullptr, target);
        };
        const Outcome expected = outcomeOf(text, room, terminatorWidth(converter), generally);
        const Outcome actual = outcomeOf(text, room, terminatorWidth(converter), atOnce);
        whole += expected.status == NLS_OK ? 1 : 0;
        ASSERT_EQ(expected.status, actual.status) << "round " << round;
        ASSERT_EQ(expected.written, actual.written) << "round " << round;
    }
    EXPECT_GT(whole, 500u);
}

INSTANTIATE_TEST_SUITE_P(Pairs, AtOnceOf, testing::ValuesIn(kPairs), [](const auto &which) {
    std::string name = std::string(which.param.from) + "_to_" + which.param.to;
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
});

} // namespace
