// Random text of every page through every call, beside the plain twins. Sources are read-only, buffers have
// their exact size, and the lent memory is misaligned by another amount in each round.
#include "harness/checks.hpp"
#include "model/case.hpp"
#include "model/count.hpp"

#include <gtest/gtest.h>

using kit::Bytes;
using kit::hex;
using kit::Kit;
using kit::operator+;
using kit::World;

namespace {

constexpr unsigned kMisalignments[] = {0, 1, 3, 6};
constexpr int kRounds = 2500; // per locale and misalignment

class Differential : public testing::TestWithParam<unsigned> {
protected:
    // `check` gets a locale and a maker of text; it stops at the first difference.
    template <typename Check>
    void everyLocale(std::uint32_t seed, Check check) {
        World world(GetParam());
        for (const Kit &one : world.kits) {
            kit::TextMaker maker(seed + GetParam());
            for (int round = 0; round < kRounds && !HasFatalFailure(); ++round) {
                SCOPED_TRACE(one.name + ", round " + std::to_string(round));
                check(one, maker);
            }
        }
    }
};

// How many characters to make: mostly few, sometimes more than fill several blocks of a vector kernel.
std::uint32_t someOrMany(kit::TextMaker &maker, std::uint32_t few) {
    return maker.random.below(maker.random.below(8) == 0 ? 160 : few);
}

Bytes head(const Bytes &text, std::size_t length) {
    return {text.begin(), text.begin() + static_cast<std::ptrdiff_t>(std::min(length, text.size()))};
}

std::vector<std::uint16_t> halves(const std::vector<std::uint32_t> &units) {
    std::vector<std::uint16_t> out;
    for (const std::uint32_t unit : units)
        out.push_back(fixture::halfOf(unit));
    return out;
}

} // namespace

TEST_P(Differential, Compare) {
    everyLocale(1, kit::checkCompare);
}

TEST_P(Differential, CompareWithLengths) {
    everyLocale(2, kit::checkCompareWithLengths);
}

TEST_P(Differential, SortKey) {
    everyLocale(3, kit::checkSortKey);
}

TEST_P(Differential, CaseMapping) {
    everyLocale(4, kit::checkCaseMapping);
}

TEST_P(Differential, Counts) {
    kit::GuardedText guarded;
    everyLocale(5, [&guarded](const Kit &one, kit::TextMaker &maker) {
        const Bytes text = maker.any(one.script, someOrMany(maker, 12));
        const auto limit =
            static_cast<std::int32_t>(maker.random.below(static_cast<std::uint32_t>(text.size() + 3))) -
            (maker.random.below(20) == 0);
        const char *const source = guarded.terminated(text);
        std::uint32_t count = 77;
        model::Counted expected = model::countBytes(one.twin, text, limit);
        nlsStatus status = nlsCountBytes(one.locale, source, limit, &count);
        ASSERT_EQ(static_cast<std::int32_t>(status), expected.status) << hex(text) << " " << limit;
        if (expected.status == 0) {
            ASSERT_EQ(count, expected.count) << hex(text) << " " << limit;
        }

        expected = model::countCharacters(one.twin, text, limit);
        status = nlsCountChars(one.locale, source, limit, &count);
        ASSERT_EQ(static_cast<std::int32_t>(status), expected.status) << hex(text) << " " << limit;
        ASSERT_EQ(count, expected.count) << hex(text) << " " << limit;

        expected = model::countColumns(one.twin, text, limit);
        status = nlsCountColumns(one.locale, source, limit, &count);
        ASSERT_EQ(static_cast<std::int32_t>(status), expected.status) << hex(text) << " " << limit;
        ASSERT_EQ(count, expected.count) << hex(text) << " " << limit;
    });
}

// Texts of several of the stretches that long texts are gone through in; a stretch may end inside a
// character.
TEST_P(Differential, LongTexts) {
    constexpr std::uint32_t kStretch = 1 << 14;
    kit::GuardedText guarded(4 * kStretch);
    World world(GetParam());
    for (const Kit &one : world.kits) {
        SCOPED_TRACE(one.name);
        kit::TextMaker maker(80 + GetParam());
        Bytes text;
        while (text.size() < 2 * kStretch + 100) {
            const Bytes piece = maker.random.below(40) == 0 ? maker.corrupted(maker.valid(one.script, 20))
                                                            : maker.valid(one.script, 20);
            text.insert(text.end(), piece.begin(), piece.end());
        }
        for (unsigned shift = 0; shift < 5; ++shift) {
            text.insert(text.begin(), 'a'); // moves all characters over the stretches' ends
            const char *const source = guarded.terminated(text);
            for (const std::uint32_t around : {kStretch, 2 * kStretch}) {
                const auto limit = static_cast<std::int32_t>(around - 3 + maker.random.below(8));
                std::uint32_t count = 77;
                model::Counted expected = model::countCharacters(one.twin, text, limit);
                nlsStatus status = nlsCountChars(one.locale, source, limit, &count);
                ASSERT_EQ(static_cast<std::int32_t>(status), expected.status) << limit;
                ASSERT_EQ(count, expected.count) << limit;
                expected = model::countColumns(one.twin, text, limit);
                status = nlsCountColumns(one.locale, source, limit, &count);
                ASSERT_EQ(static_cast<std::int32_t>(status), expected.status) << limit;
                ASSERT_EQ(count, expected.count) << limit;
                const Bytes part = head(text, static_cast<std::size_t>(limit));
                status = nlsValidateString(one.locale, source, limit, 0, &count);
                expected = model::validate(one.twin, part, false);
                ASSERT_EQ(static_cast<std::int32_t>(status), expected.status) << limit;
                ASSERT_EQ(count, expected.count) << limit;
            }
            std::vector<char> room(4 * text.size());
            for (const bool upper : {true, false}) {
                const nlsStr from{const_cast<char *>(source), 0, 0};
                nlsStr to{room.data(), static_cast<std::uint32_t>(room.size()), 0};
                ASSERT_EQ(upper ? nlsUpperCase(one.locale, &from, &to) : nlsLowerCase(one.locale, &from, &to),
                          NLS_OK);
                const model::Mapped expected =
                    model::mapCase(one.twin, text, static_cast<std::uint32_t>(room.size()), upper);
                ASSERT_TRUE(Bytes(room.begin(), room.begin() + to.length) == expected.text) << shift;
            }
        }
    }
}

TEST_P(Differential, SubstrAndExtract) {
    kit::GuardedText guarded;
    fixture::GuardedBuffer output(4096);
    everyLocale(6, [&](const Kit &one, kit::TextMaker &maker) {
        const Bytes text = maker.any(one.script, someOrMany(maker, 10));
        const auto around = static_cast<std::uint32_t>(text.size() + 3);
        const auto start = static_cast<std::int32_t>(maker.random.below(around));
        const auto length = static_cast<std::int32_t>(maker.random.below(around));
        const char *const source = guarded.terminated(text);
        const std::uint32_t size = maker.random.below(around);
        unsigned char *const buffer = output.tail(size + 1);
        const auto run = [&](const Bytes &wanted, std::int32_t before, auto call) {
            std::fill(buffer, buffer + size + 1, 0xEE);
            nlsStr out{reinterpret_cast<char *>(buffer), size, 7};
            const bool fits = size != 0 && wanted.size() <= size;
            const auto status = static_cast<std::int32_t>(call(out));
            ASSERT_EQ(status, before != 0 ? before
                              : fits      ? 0
                                          : 2)
                << hex(text) << " " << start << " " << length << " size " << size;
            if (status != 0)
                return;
            ASSERT_EQ(out.length, wanted.size()) << hex(text) << " " << start << " " << length;
            ASSERT_EQ(hex({buffer, buffer + out.length + 1}), hex(wanted + Bytes{0}));
        };
        std::uint32_t characters = 77;
        const model::Cut cut = model::substring(one.twin, text, start, length);
        run(cut.text, cut.status,
            [&](nlsStr &out) { return nlsSubstr(one.locale, source, start, length, &characters, &out); });
        ASSERT_EQ(characters, cut.characters) << hex(text) << " " << start << " " << length;
        // A last character that the NUL cuts counts whole and is not there to copy.
        const model::Counted counted = model::countBytes(one.twin, text, length);
        if (counted.status == 0 && counted.count <= text.size())
            run(head(text, counted.count), 0, [&](nlsStr &out) {
                return nlsExtract(one.locale, source, static_cast<std::uint32_t>(length), &out);
            });
        else if (counted.status != 0)
            run({}, counted.status, [&](nlsStr &out) {
                return nlsExtract(one.locale, source, static_cast<std::uint32_t>(length), &out);
            });
    });
}

TEST_P(Differential, Validation) {
    kit::GuardedText guarded;
    const auto check = [&guarded](nlsLocale *locale, const model::Locale &twin, const Bytes &data, bool big) {
        std::uint32_t count = 77;
        const nlsStatus status = nlsValidateString(
            locale, guarded.bytes(data), static_cast<std::int32_t>(data.size()), big ? 1 : 0, &count);
        const model::Counted expected = model::validate(twin, data, big);
        ASSERT_EQ(static_cast<std::int32_t>(status), expected.status) << hex(data);
        ASSERT_EQ(count, expected.count) << hex(data);
    };
    everyLocale(7, [&check](const Kit &one, kit::TextMaker &maker) {
        Bytes data = maker.any(one.script, someOrMany(maker, 12));
        if (!data.empty() && maker.random.below(4) == 0)
            data[maker.random.below(static_cast<std::uint32_t>(data.size()))] = 0;
        check(one.locale, one.twin, data, false);
    });
    World world(GetParam());
    for (const bool wide : {true, false}) {
        model::Locale twin;
        twin.characters = fixture::CharacterTable::singleByte(
            static_cast<unsigned char>(fixture::kMultibyte | (wide ? fixture::kWide : fixture::kUnits32)));
        nlsLocale *const locale = world.library.locale(wide ? "UTF-16" : "UTF-32");
        kit::TextMaker maker(70 + GetParam());
        for (int round = 0; round < 4 * kRounds && !HasFatalFailure(); ++round) {
            std::vector<std::uint32_t> units;
            for (unsigned i = maker.random.below(6); i > 0; --i) {
                static constexpr std::uint32_t kUnits[] = {0x41,   0xD800, 0xDBFF,   0xDC00,
                                                           0xDFFF, 0xE000, 0x4E00,   0,
                                                           0xFF00, 0xFF,   0x10FFFF, 0x110000};
                units.push_back(kUnits[maker.random.below(12)]);
            }
            const bool big = maker.random.below(2) != 0;
            Bytes data = wide ? fixture::units16(halves(units), big) : fixture::units32(units, big);
            data.insert(data.end(), maker.random.below(4), 'x');
            check(locale, twin, data, big);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Misaligned, Differential, testing::ValuesIn(kMisalignments));
