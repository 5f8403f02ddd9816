// Every fast kernel gives what its plain twin gives: status, output, length, for well-formed, mixed,
// corrupted and cut text, at every capacity. No byte behind the source may be read where a page of memory
// ends there, none behind the target written.
#include "convert/kernels/fast.hpp"
#include "convert/kernels/kernels.hpp"
#include "convert/kernels/mapping_lookup.hpp"
#include "convert/kernels/unicode_units.hpp"
#include "core/instruction_sets.hpp"
#include "guarded_buffer.hpp"
#include "table_source.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <random>
#include <tuple>

using namespace velnls;
using namespace kernel_tests;

namespace {

using Bytes = std::vector<std::uint8_t>;
using Kernel = std::function<nlsStatus(Source &, Target &)>;

struct Outcome {
    nlsStatus status;
    Bytes output;
    bool operator==(const Outcome &) const = default;
};

constexpr std::uint8_t kGuard = 0xA5;
constexpr std::size_t kGuardBytes = 64;

// The text and a terminator end where a page of memory does or, every other time, begin where one does, with
// forbidden pages around. The target lies in a block with guards behind it.
Outcome run(const Kernel &kernel, const Bytes &text, std::size_t capacity) {
    static fixture::GuardedBuffer sources(std::size_t{1} << 18);
    static bool atFront = false;
    atFront = !atFront;
    const std::size_t size = text.size() + 1;
    std::uint8_t *const source = atFront ? sources.head(size) : sources.tail(size);
    std::copy(text.begin(), text.end(), source);
    source[text.size()] = 0;
    const auto target = std::make_unique<std::uint8_t[]>(capacity + kGuardBytes);
    std::fill_n(target.get(), capacity + kGuardBytes, kGuard);
    Source from{source, source + text.size()};
    Target to{target.get(), target.get() + capacity};
    const nlsStatus status = kernel(from, to);
    for (std::size_t i = 0; i < kGuardBytes; ++i)
        EXPECT_EQ(kGuard, target[capacity + i]) << "written behind the target";
    EXPECT_LE(to.at, target.get() + capacity);
    return {status, Bytes(target.get(), to.at)};
}

class Random {
public:
    std::uint32_t below(std::uint32_t limit) {
        return std::uniform_int_distribution<std::uint32_t>(0, limit - 1)(engine_);
    }
    std::uint8_t byte() {
        return static_cast<std::uint8_t>(below(256));
    }

private:
    std::mt19937 engine_{20240817};
};

// Short ones mostly, since tails are where kernels go wrong; some long enough for the tables that pay late.
std::size_t randomLength(Random &random) {
    switch (random.below(16)) {
    case 0:
        return random.below(4);
    case 1:
        return 2000 + random.below(8000);
    case 2:
        return 500 + random.below(600);
    default:
        return random.below(200);
    }
}

void corrupt(Random &random, Bytes &text) {
    if (text.empty() || random.below(3) != 0)
        return;
    for (std::uint32_t count = 1 + random.below(4); count > 0 && !text.empty(); --count) {
        const std::size_t place = random.below(static_cast<std::uint32_t>(text.size()));
        switch (random.below(4)) {
        case 0:
            text[place] = random.byte();
            break;
        case 1:
            text.erase(text.begin() + static_cast<std::ptrdiff_t>(place));
            break;
        case 2:
            text.resize(place);
            break;
        default:
            text[place] = 0;
            break;
        }
    }
}

void compare(const Kernel &fast, const Kernel &plain, const Bytes &text, Random &random, std::size_t widest) {
    const Outcome whole = run(plain, text, text.size() * widest + 64);
    ASSERT_EQ(whole, run(fast, text, text.size() * widest + 64)) << "length " << text.size();
    // Exactly enough, one short, and anything.
    for (const std::size_t capacity :
         {whole.output.size(), whole.output.size() - std::min<std::size_t>(whole.output.size(), 1),
          std::size_t{random.below(static_cast<std::uint32_t>(whole.output.size() + 2))}})
        ASSERT_EQ(run(plain, text, capacity), run(fast, text, capacity))
            << "length " << text.size() << " capacity " << capacity;
}

// ---- Texts ----------------------------------------------------------------------------------------------

// Characters come in runs of one script, as in text.
std::uint32_t randomValue(Random &random, unsigned script) {
    switch (script) {
    case 0:
        return 0x20 + random.below(0x5F);
    case 1:
        return 0xA0 + random.below(0x60);
    case 2:
        return 0x400 + random.below(0x60);
    case 3:
        return 0x3000 + random.below(0x100);
    case 4:
        return 0x4E00 + random.below(0x5200);
    case 5:
        return 0xAC00 + random.below(0x2BA4);
    case 6:
        return 0xFF00 + random.below(0x100);
    case 7:
        return 0x2000 + random.below(0x60);
    case 8:
        return 0x10000 + random.below(0x100000);
    case 9:
        return random.below(0x10000); // surrogates and unassigned too
    case 10:
        return random.below(0x800);
    default:
        return random.below(0x80);
    }
}

std::vector<std::uint32_t> randomValues(Random &random, std::size_t count) {
    std::vector<std::uint32_t> values;
    // Most texts keep to two scripts; some mix all.
    const bool mixed = random.below(8) == 0;
    const unsigned scripts[2] = {random.below(12), random.below(3) == 0 ? random.below(12) : 0u};
    while (values.size() < count) {
        const unsigned script = mixed ? random.below(12) : scripts[random.below(2)];
        for (std::uint32_t run = 1 + random.below(random.below(4) == 0 ? 80 : 8); run > 0; --run)
            values.push_back(randomValue(random, script));
    }
    values.resize(count);
    return values;
}

Bytes asUtf8(const std::vector<std::uint32_t> &values) {
    Bytes text(values.size() * 6);
    Target target{text.data(), text.data() + text.size()};
    for (const std::uint32_t value : values)
        writeUtf8(target, value);
    text.resize(static_cast<std::size_t>(target.at - text.data()));
    return text;
}

template <typename Unit>
Bytes asUnits(const std::vector<std::uint32_t> &values) {
    Bytes text(values.size() * 4);
    Target target{text.data(), text.data() + text.size()};
    for (const std::uint32_t value : values) {
        if constexpr (sizeof(Unit) == 2)
            writeUtf16(target, value, Order::Native);
        else
            writeUnit<Unit>(target, value, Order::Native);
    }
    text.resize(static_cast<std::size_t>(target.at - text.data()));
    return text;
}

Bytes randomBytes(Random &random, std::size_t length) {
    Bytes text(length);
    for (std::uint8_t &byte : text)
        byte = random.byte();
    return text;
}

// Text that the page has, random bytes now and then.
Bytes randomPageText(Random &random, const MappingBody &body) {
    const std::size_t length = randomLength(random);
    if (random.below(6) == 0)
        return randomBytes(random, length);
    const Bytes utf8 = asUtf8(randomValues(random, length / 2));
    Bytes text(utf8.size() * 2 + 1);
    Source source{utf8.data(), utf8.data() + utf8.size()};
    Target target{text.data(), text.data() + text.size()};
    utf8ToPage(body, source, target);
    text.resize(static_cast<std::size_t>(target.at - text.data()));
    return text;
}

// ---- Tests ----------------------------------------------------------------------------------------------

constexpr int kTexts = 1500;

// The baseline, and what processors have beyond it as far as this machine does.
std::vector<std::uint32_t> sets() {
    const std::uint32_t all = instructionSets();
    std::vector<std::uint32_t> found{0};
    for (const std::uint32_t set : {kByteShuffles, kByteShuffles | kWideVectors})
        if ((all & set) == set)
            found.push_back(set);
    return found;
}

std::string nameOf(std::uint32_t set) {
    return (set & kWideVectors) != 0 ? "_wide" : set != 0 ? "_shuffles" : "_baseline";
}

class PageKernels : public testing::TestWithParam<std::tuple<std::string, std::uint32_t>> {
protected:
    [[nodiscard]] const MappingBody *body() const {
        return mappingOf(std::get<0>(GetParam()));
    }
    [[nodiscard]] std::uint32_t proofs() const {
        return (headerOf(body()).proofs & ~kInstructionSets) | std::get<1>(GetParam());
    }
};

TEST_P(PageKernels, ToUtf8) {
    const MappingBody *const body = this->body();
    ASSERT_NE(nullptr, body);
    const std::uint32_t proofs = this->proofs();
    if (!fast::canMap(proofs))
        GTEST_SKIP() << "the plain way runs";
    Random random;
    for (int i = 0; i < kTexts && !HasFatalFailure(); ++i) {
        Bytes text = randomPageText(random, *body);
        corrupt(random, text);
        compare([&](Source &s, Target &t) { return fast::pageToUtf8(*body, proofs, s, t); },
                [&](Source &s, Target &t) { return pageToUtf8(*body, s, t); }, text, random, 3);
    }
}

TEST_P(PageKernels, FromUtf8) {
    const MappingBody *const body = this->body();
    ASSERT_NE(nullptr, body);
    const std::uint32_t proofs = this->proofs();
    if (!fast::canMap(proofs))
        GTEST_SKIP() << "the plain way runs";
    Random random;
    for (int i = 0; i < kTexts && !HasFatalFailure(); ++i) {
        Bytes text = asUtf8(randomValues(random, randomLength(random)));
        corrupt(random, text);
        compare([&](Source &s, Target &t) { return fast::utf8ToPage(*body, proofs, s, t); },
                [&](Source &s, Target &t) { return utf8ToPage(*body, s, t); }, text, random, 2);
    }
}

// Every value of the basic plane by itself, between ASCII, inside a block.
TEST_P(PageKernels, FromUtf8EveryValue) {
    const MappingBody *const body = this->body();
    ASSERT_NE(nullptr, body);
    const std::uint32_t proofs = this->proofs();
    if (!fast::canMap(proofs))
        GTEST_SKIP() << "the plain way runs";
    for (std::uint32_t first = 0; first < 0x10000; first += 0x1000) {
        std::vector<std::uint32_t> values;
        for (std::uint32_t value = first; value < first + 0x1000; ++value) {
            values.push_back(value);
            if (value % 3 == 0)
                values.push_back('a');
        }
        const Bytes text = asUtf8(values);
        const Kernel plain = [&](Source &s, Target &t) { return utf8ToPage(*body, s, t); };
        const Kernel fast = [&](Source &s, Target &t) { return fast::utf8ToPage(*body, proofs, s, t); };
        ASSERT_EQ(run(plain, text, text.size()), run(fast, text, text.size())) << first;
    }
}

// Long enough for the tables that pay late, and no room behind what the bytes without a value become.
TEST_P(PageKernels, ToUtf8BytesWithoutAValueAtTheTargetsEnd) {
    const MappingBody *const body = this->body();
    ASSERT_NE(nullptr, body);
    const std::uint32_t proofs = this->proofs();
    if (!fast::canMap(proofs))
        GTEST_SKIP() << "the plain way runs";
    constexpr std::size_t kBefore = 2048;
    Bytes text(kBefore, 'a');
    for (unsigned byte = 0x80; byte < 0x100 && text.size() == kBefore; ++byte)
        if (body->charTable->trailCount(static_cast<std::uint8_t>(byte)) == 0 &&
            unicodeOfCode(*body, static_cast<std::uint16_t>(byte)) == kNone)
            text.insert(text.end(), 32, static_cast<std::uint8_t>(byte));
    const Kernel plain = [&](Source &s, Target &t) { return pageToUtf8(*body, s, t); };
    const Kernel fast = [&](Source &s, Target &t) { return fast::pageToUtf8(*body, proofs, s, t); };
    for (std::size_t capacity = kBefore; capacity < kBefore + 100; ++capacity)
        ASSERT_EQ(run(plain, text, capacity), run(fast, text, capacity)) << capacity;
}

TEST_P(PageKernels, ToUtf8EveryPair) {
    const MappingBody *const body = this->body();
    ASSERT_NE(nullptr, body);
    const std::uint32_t proofs = this->proofs();
    if (!fast::canMap(proofs))
        GTEST_SKIP() << "the plain way runs";
    for (unsigned lead = 0; lead < 0x100; ++lead) {
        Bytes text;
        for (unsigned trail = 0; trail < 0x100; ++trail) {
            text.push_back(static_cast<std::uint8_t>(lead));
            text.push_back(static_cast<std::uint8_t>(trail));
            text.push_back('.'); // the next pair begins in step whatever this one was
            text.push_back('.');
        }
        const Kernel plain = [&](Source &s, Target &t) { return pageToUtf8(*body, s, t); };
        const Kernel fast = [&](Source &s, Target &t) { return fast::pageToUtf8(*body, proofs, s, t); };
        ASSERT_EQ(run(plain, text, text.size() * 3), run(fast, text, text.size() * 3)) << lead;
    }
}

INSTANTIATE_TEST_SUITE_P(Pages, PageKernels,
                         testing::Combine(testing::ValuesIn(pages()), testing::ValuesIn(sets())),
                         [](const auto &parameters) {
                             std::string name = std::get<0>(parameters.param);
                             std::replace_if(
                                 name.begin(), name.end(), [](char c) { return c == '-'; }, '_');
                             return name + nameOf(std::get<1>(parameters.param));
                         });

using FastKernel = nlsStatus (*)(std::uint32_t, Source &, Target &);

// The kernel at one instruction set.
Kernel at(FastKernel kernel, std::uint32_t set) {
    return [kernel, set](Source &source, Target &target) { return kernel(set, source, target); };
}

void compareOnUtf8(FastKernel fast, const Kernel &plain, std::size_t widest) {
    Random random;
    for (int i = 0; i < 4 * kTexts && !testing::Test::HasFatalFailure(); ++i) {
        Bytes text = random.below(10) == 0 ? randomBytes(random, randomLength(random))
                                           : asUtf8(randomValues(random, randomLength(random)));
        corrupt(random, text);
        for (const std::uint32_t set : sets())
            compare(at(fast, set), plain, text, random, widest);
    }
}

TEST(UnicodeKernels, Utf8ToUtf16) {
    compareOnUtf8(
        fast::utf8ToUtf16, [](Source &s, Target &t) { return utf8ToUtf16(s, t, Order::Native); }, 2);
}

TEST(UnicodeKernels, Utf8ToUtf32) {
    compareOnUtf8(
        fast::utf8ToUtf32, [](Source &s, Target &t) { return utf8ToUtf32(s, t, Order::Native); }, 4);
}

template <typename Unit>
void compareOnUnits(FastKernel fast, const Kernel &plain, std::size_t widest) {
    Random random;
    for (int i = 0; i < 4 * kTexts && !testing::Test::HasFatalFailure(); ++i) {
        Bytes text = random.below(10) == 0 ? randomBytes(random, randomLength(random))
                                           : asUnits<Unit>(randomValues(random, randomLength(random)));
        corrupt(random, text);
        for (const std::uint32_t set : sets())
            compare(at(fast, set), plain, text, random, widest);
    }
}

TEST(UnicodeKernels, Utf16ToUtf8) {
    compareOnUnits<std::uint16_t>(
        fast::utf16ToUtf8, [](Source &s, Target &t) { return utf16ToUtf8(s, t, Order::Native); }, 2);
}

TEST(UnicodeKernels, Utf32ToUtf8) {
    compareOnUnits<std::uint32_t>(
        fast::utf32ToUtf8, [](Source &s, Target &t) { return utf32ToUtf8(s, t, Order::Native); }, 2);
}

TEST(UnicodeKernels, Utf16ToUtf32) {
    compareOnUnits<std::uint16_t>(
        fast::utf16ToUtf32,
        [](Source &s, Target &t) { return utf16ToUtf32(s, t, Order::Native, Order::Native); }, 2);
}

TEST(UnicodeKernels, Utf32ToUtf16) {
    compareOnUnits<std::uint32_t>(
        fast::utf32ToUtf16,
        [](Source &s, Target &t) { return utf32ToUtf16(s, t, Order::Native, Order::Native); }, 2);
}

// Pairs of the arithmetic, katakana and everything else.
Bytes randomJapanese(Random &random, bool euc) {
    Bytes text;
    const std::size_t length = randomLength(random);
    const bool withKatakana = random.below(2) == 0;
    while (text.size() < length) {
        const std::uint32_t kind = random.below(10);
        for (std::uint32_t run = 1 + random.below(12); run > 0; --run) {
            if (kind < 3) {
                text.push_back(static_cast<std::uint8_t>(0x20 + random.below(0x5F)));
            } else if (kind == 3 && withKatakana) {
                if (euc)
                    text.push_back(0x8E);
                text.push_back(static_cast<std::uint8_t>(0xA1 + random.below(0x3F)));
            } else if (euc) {
                text.push_back(static_cast<std::uint8_t>(0xA1 + random.below(0x5E)));
                text.push_back(static_cast<std::uint8_t>(0xA1 + random.below(0x5E)));
            } else {
                const std::uint32_t lead = random.below(47);
                text.push_back(static_cast<std::uint8_t>(lead < 31 ? 0x81 + lead : 0xC1 + lead));
                text.push_back(static_cast<std::uint8_t>(0x40 + random.below(0xBD)));
            }
        }
    }
    return text;
}

void compareOnJapanese(FastKernel fast, const Kernel &plain, bool euc) {
    Random random;
    for (int i = 0; i < 4 * kTexts && !testing::Test::HasFatalFailure(); ++i) {
        Bytes text =
            random.below(6) == 0 ? randomBytes(random, randomLength(random)) : randomJapanese(random, euc);
        corrupt(random, text);
        for (const std::uint32_t set : sets())
            compare(at(fast, set), plain, text, random, 2);
    }
}

TEST(JapaneseKernels, ShiftJisToEuc) {
    compareOnJapanese(fast::shiftJisToEuc, shiftJisToEuc, false);
}

TEST(JapaneseKernels, EucToShiftJis) {
    compareOnJapanese(fast::eucToShiftJis, eucToShiftJis, true);
}

TEST(ByteMapKernel, MapsEveryLength) {
    Random random;
    Bytes map = randomBytes(random, 256);
    for (std::size_t length = 0; length < 300; ++length) {
        const Bytes text = randomBytes(random, length);
        const Kernel plain = [&](Source &s, Target &t) {
            mapBytes(map.data(), s, t);
            return NLS_OK;
        };
        for (const std::uint32_t set : sets()) {
            const Kernel fast = [&](Source &s, Target &t) {
                fast::mapBytes(map.data(), set, s, t);
                return NLS_OK;
            };
            ASSERT_EQ(run(plain, text, length), run(fast, text, length)) << length;
        }
    }
}

} // namespace
