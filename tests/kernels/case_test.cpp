// Case and sort keys by blocks give what the plain loops give: status, text, length, and not a byte written
// elsewhere. Each call runs under a copy of a locale that claims nothing proved, and under copies that claim
// what is, with each instruction set. Texts and rooms end where a page of memory does.
#include "core/file_layout.hpp"
#include "core/instruction_sets.hpp"
#include "guarded_buffer.hpp"
#include "locale/case_fast.hpp"
#include "table_source.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>

using namespace velnls;
using namespace kernel_tests;
using fixture::Bytes;
using fixture::GuardedBuffer;

namespace {

constexpr std::size_t kMost = 200;
constexpr unsigned char kFiller = 0xEE;

class Random {
public:
    std::uint32_t below(std::uint32_t limit) {
        return std::uniform_int_distribution<std::uint32_t>(0, limit - 1)(engine_);
    }
    std::uint8_t in(const ByteRange &range) {
        return static_cast<std::uint8_t>(range.first + below(range.span + 1U));
    }

private:
    std::mt19937 engine_{20250311};
};

bool isPairCase(const nlsLocale &locale) {
    constexpr std::uint32_t kPairs = kPairPage | kPairCase;
    return (locale.header.proofs & kPairs) == kPairs;
}

std::uint8_t notNul(std::uint32_t byte) {
    return static_cast<std::uint8_t>(byte == 0 ? 1 : byte);
}

// Runs of letters, of high single bytes, of characters of several bytes with trail bytes that are right or
// anything; the end may cut the last. Now and then anything at all.
Bytes textOf(Random &random, const nlsLocale &locale, std::size_t length) {
    Bytes text;
    const bool broken = random.below(6) == 0;
    const bool ascii = random.below(5) == 0;
    const PageFacts &facts = factsOf(*locale.charTable);
    while (text.size() < length) {
        const std::uint32_t kind = broken ? random.below(6) : ascii ? 0 : random.below(4);
        for (std::uint32_t run = 1 + random.below(kind == 0 ? 20 : 9); run > 0; --run) {
            if (kind == 0) {
                text.push_back(static_cast<std::uint8_t>(0x20 + random.below(0x5F)));
            } else if (kind >= 4) {
                text.push_back(notNul(random.below(256)));
            } else if ((locale.header.proofs & kPairPage) != 0) {
                if (kind == 1) {
                    text.push_back(notNul(0x80 + random.below(0x80)));
                } else {
                    text.push_back(random.in(facts.leads[random.below(2)]));
                    text.push_back(notNul(random.in(facts.trails[random.below(3)])));
                }
            } else if ((locale.header.proofs & kUtf8Page) != 0) {
                const std::uint8_t leads[] = {0xC2, 0xC3, 0xD0, 0xD1, 0xE2, 0xE3,
                                              0xE9, 0xE0, 0xC4, 0xE1, 0xF0};
                const std::uint8_t lead = leads[random.below(kind == 1 ? 4 : random.below(3) != 0 ? 8 : 11)];
                text.push_back(lead);
                for (unsigned i = lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3; i > 0; --i)
                    text.push_back(lead == 0xE2 && i == 2 && random.below(4) != 0
                                       ? std::uint8_t{0x80}
                                       : static_cast<std::uint8_t>(0x80 + random.below(0x40)));
            } else {
                text.push_back(notNul(random.below(256)));
            }
        }
    }
    text.resize(length);
    if (random.below(3) == 0 && length > 3) // blanks to trim
        std::fill(text.end() - 1 - random.below(3), text.end(), std::uint8_t{' '});
    return text;
}

// The locale as it is made, and what its copies claim: nothing first.
struct Subject {
    std::string name;
    nlsLocale plain;
    std::vector<nlsLocale> fast;
};

Subject subjectOf(const std::string &name, const nlsLocale &locale) {
    Subject subject{name, locale, {}};
    subject.plain.header.proofs = 0;
    nlsLocale copy = locale;
    copy.header.proofs &= ~kWideVectors;
    subject.fast.push_back(copy);
    if ((instructionSets() & kWideVectors) != 0) {
        copy.header.proofs |= kWideVectors;
        subject.fast.push_back(copy);
    }
    return subject;
}

// Every code page under BASIC, and orders by weights.
const std::vector<Subject> &subjects() {
    static const std::vector<Subject> all = [] {
        std::vector<Subject> made;
        for (const std::string &page : codePages())
            if (const nlsLocale *const locale = localeOf(page, "BASIC"); locale != nullptr)
                made.push_back(subjectOf(page, *locale));
        for (const char *const collation : {"german", "basic"})
            if (const nlsLocale *const locale = localeOf("1252", collation); locale != nullptr)
                made.push_back(subjectOf(std::string("1252 ") + collation, *locale));
        return made;
    }();
    return all;
}

struct Outcome {
    nlsStatus status;
    std::uint32_t length;
    Bytes buffer; // and what stands around it
    bool operator==(const Outcome &) const = default;
};

struct Memory {
    GuardedBuffer text{kMost + 1};
    GuardedBuffer out{kMost + 1};
};

// The buffer has one byte behind its size, for the NUL of a text that fills it.
Outcome mapped(Memory &memory, const nlsLocale &locale, const unsigned char *text, std::size_t room,
               bool upper) {
    unsigned char *const buffer = memory.out.tail(room + 1);
    std::memset(buffer, kFiller, room + 1);
    const nlsStr from{const_cast<char *>(reinterpret_cast<const char *>(text)), 0, 0};
    nlsStr to{reinterpret_cast<char *>(buffer), static_cast<std::uint32_t>(room), 77};
    auto *const changed = const_cast<nlsLocale *>(&locale);
    const nlsStatus status = upper ? nlsUpperCase(changed, &from, &to) : nlsLowerCase(changed, &from, &to);
    return {status, to.length, Bytes(buffer, buffer + room + 1)};
}

// Of the buffer only the key counts: behind it, inside the size, anything may stand.
Outcome keyed(Memory &memory, const nlsLocale &locale, const unsigned char *text, std::size_t size,
              unsigned mode, bool trim) {
    unsigned char *const buffer = memory.out.tail(size);
    std::memset(buffer, kFiller, size);
    std::uint16_t length = 77;
    const nlsStatus status = nlsSortKey(
        const_cast<nlsLocale *>(&locale), const_cast<char *>(reinterpret_cast<const char *>(text)),
        static_cast<std::uint16_t>(size), static_cast<std::uint16_t>(mode), trim ? 1 : 0, buffer, &length);
    return {status, length, Bytes(buffer, buffer + std::min<std::size_t>(length + 1U, size))};
}

const unsigned char *placed(Memory &memory, const Bytes &text) {
    Bytes ended = text;
    ended.push_back(0);
    return memory.text.readOnly(ended);
}

std::string hex(const Bytes &bytes) {
    std::string digits;
    for (const std::uint8_t byte : bytes) {
        digits += "0123456789abcdef"[byte >> 4];
        digits += "0123456789abcdef"[byte & 15];
    }
    return digits;
}

void compareAll(Memory &memory, const Subject &subject, const Bytes &text, std::size_t room) {
    const unsigned char *const at = placed(memory, text);
    for (const bool upper : {true, false}) {
        const Outcome expected = mapped(memory, subject.plain, at, room, upper);
        for (const nlsLocale &fast : subject.fast)
            ASSERT_EQ(expected, mapped(memory, fast, at, room, upper))
                << "room " << room << " upper " << upper << " proofs " << fast.header.proofs << " "
                << hex(text);
    }
    if (room == 0)
        return;
    for (const unsigned mode : {0U, 1U})
        for (const bool trim : {true, false}) {
            const Outcome expected = keyed(memory, subject.plain, at, room, mode, trim);
            for (const nlsLocale &fast : subject.fast)
                ASSERT_EQ(expected, keyed(memory, fast, at, room, mode, trim))
                    << "size " << room << " mode " << mode << " trim " << trim << " proofs "
                    << fast.header.proofs << " " << hex(text);
        }
}

} // namespace

TEST(CaseKernels, TheDataFilesPagesOfOneAndTwoBytesAreProved) {
    std::vector<std::string> proved;
    for (const Subject &subject : subjects())
        if (isPairCase(subject.fast.front()))
            proved.push_back(subject.name);
    for (const char *const page : {"SHIFT-JIS", "CP949", "CP936", "CP950", "KSC5601", "BIG-5", "GB2312"})
        EXPECT_NE(std::find(proved.begin(), proved.end(), page), proved.end()) << page;
}

// Every length with every room.
TEST(CaseKernels, PagesOfOneAndTwoBytesAtEveryLengthAndRoom) {
    Random random;
    Memory memory;
    for (const Subject &subject : subjects()) {
        if (!isPairCase(subject.fast.front()))
            continue;
        SCOPED_TRACE(subject.name);
        for (std::size_t length = 0; length <= kMost && !HasFatalFailure(); ++length) {
            const Bytes text = textOf(random, subject.fast[0], length);
            // Every room matters near the length and near the ends of blocks.
            for (std::size_t room = 0; room <= kMost && !HasFatalFailure(); ++room)
                compareAll(memory, subject, text, room);
        }
    }
}

TEST(CaseKernels, EveryPageAtEveryLength) {
    Random random;
    Memory memory;
    for (const Subject &subject : subjects()) {
        SCOPED_TRACE(subject.name);
        for (std::size_t length = 0; length <= kMost && !HasFatalFailure(); ++length)
            for (unsigned round = 0; round < 12 && !HasFatalFailure(); ++round) {
                const Bytes text = textOf(random, subject.fast[0], length);
                const auto near = static_cast<std::size_t>(random.below(8)) + length;
                compareAll(memory, subject, text, kMost);
                compareAll(memory, subject, text, std::min(near < 4 ? 0 : near - 4, kMost));
                compareAll(memory, subject, text, random.below(kMost + 1));
            }
    }
}

// A text whose first block reaches into the next page of memory, and one that begins a page.
TEST(CaseKernels, TextsAroundTheEndOfAPage) {
    Random random;
    Memory memory;
    GuardedBuffer inner(3 * 4096);
    for (const Subject &subject : subjects()) {
        SCOPED_TRACE(subject.name);
        for (std::size_t before = 0; before <= 80 && !HasFatalFailure(); ++before) {
            Bytes text = textOf(random, subject.fast[0], random.below(100));
            text.push_back(0);
            unsigned char *const page = inner.head(3 * 4096);
            const std::size_t aligned = 4096 - reinterpret_cast<std::uintptr_t>(page) % 4096;
            std::memset(page, kFiller, 3 * 4096);
            unsigned char *const at = page + aligned + 4096 - before;
            std::copy(text.begin(), text.end(), at);
            for (const bool upper : {true, false})
                for (const nlsLocale &fast : subject.fast)
                    ASSERT_EQ(mapped(memory, subject.plain, at, kMost, upper),
                              mapped(memory, fast, at, kMost, upper))
                        << before << " " << hex(text);
            for (const nlsLocale &fast : subject.fast)
                ASSERT_EQ(keyed(memory, subject.plain, at, kMost, 0, true),
                          keyed(memory, fast, at, kMost, 0, true))
                    << before << " " << hex(text);
        }
    }
}

// Where text and result share memory, bytes are read and written one after the other.
TEST(CaseKernels, OverlappingTextsKeepTheOrderOfReadingAndWriting) {
    constexpr std::size_t kArena = 4 * kMost;
    Random random;
    for (const Subject &subject : subjects()) {
        SCOPED_TRACE(subject.name);
        for (unsigned round = 0; round < 400 && !HasFatalFailure(); ++round) {
            const Bytes text = textOf(random, subject.fast[0], random.below(kMost));
            const std::size_t from = kMost;
            const std::size_t to = random.below(3) == 0 ? from : from - 100 + random.below(200);
            const std::size_t room = random.below(2 * kMost);
            const auto run = [&](const nlsLocale &locale, bool upper) {
                Bytes arena(kArena, std::uint8_t{'Q'});
                arena[kArena - 1] = 0; // ends a text whose NUL is written over
                std::copy(text.begin(), text.end(), arena.begin() + static_cast<std::ptrdiff_t>(from));
                arena[from + text.size()] = 0;
                const nlsStr source{reinterpret_cast<char *>(arena.data() + from), 0, 0};
                nlsStr target{reinterpret_cast<char *>(arena.data() + to), static_cast<std::uint32_t>(room),
                              77};
                auto *const changed = const_cast<nlsLocale *>(&locale);
                const nlsStatus status =
                    upper ? nlsUpperCase(changed, &source, &target) : nlsLowerCase(changed, &source, &target);
                return Outcome{status, target.length, arena};
            };
            for (const bool upper : {true, false})
                for (const nlsLocale &fast : subject.fast)
                    ASSERT_EQ(run(subject.plain, upper), run(fast, upper))
                        << "from " << from << " to " << to << " room " << room << " upper " << upper << " "
                        << hex(text);
        }
    }
}
