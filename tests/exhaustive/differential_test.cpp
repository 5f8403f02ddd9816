// Converters against their plain twins where fast code goes wrong: one special piece at every place of texts
// of every length, at every alignment, in memory that ends where nothing may be touched; and long random
// mixes.
#include "harness/compare.hpp"
#include "harness/guarded.hpp"
#include "harness/names.hpp"
#include "harness/text_maker.hpp"

#include <algorithm>
#include <cstring>

using harness::Bytes;
using harness::GuardedRoom;
using harness::kFill;

namespace {

using Names = std::pair<std::string, std::string>;

std::string pairTestName(const ::testing::TestParamInfo<Names> &info) {
    return harness::testName(info.param.first + "_to_" + info.param.second);
}

// One conversion in guarded memory. The source can be read only; the destination may be exact.
class GuardedPair {
public:
    GuardedPair(const std::string &source, const std::string &target)
        : expected_(source, target), actual_(harness::library().conversion(source, target)) {}

    [[nodiscard]] const model::Conversion &expected() const {
        return expected_;
    }

    // Sets the text that the following calls convert.
    void setText(const Bytes &text) {
        text_ = text;
        text_.push_back(0);
        whole_.assign(text.size() * 4 + 80, kFill);
        outcome_ = expected_.run({text_.data(), length()},
                                 {whole_.data(), static_cast<std::uint32_t>(whole_.size())}, {nullptr, 0});
    }

    [[nodiscard]] std::uint32_t need() const {
        return outcome_.written;
    }

    // With room to spare, at the given distances from 64-byte boundaries.
    ::testing::AssertionResult agreeAligned(std::size_t sourceAt, std::size_t destinationAt) {
        std::uint8_t *const source = source_.begin() + sourceAt;
        std::memcpy(source_.writable(source), text_.data(), text_.size());
        const std::uint32_t capacity = need() + 16;
        std::uint8_t *const region = destination_.begin();
        const std::size_t regionSize = destinationAt + capacity + 64;
        std::memset(region, kFill, regionSize);
        const harness::BareResult actual =
            harness::convertBare(actual_, source, length(), region + destinationAt, capacity);
        if (actual.status == outcome_.status && actual.written == outcome_.written &&
            std::memcmp(region + destinationAt, whole_.data(), need()) == 0 &&
            isFilled(region, destinationAt) &&
            isFilled(region + destinationAt + capacity, regionSize - destinationAt - capacity))
            return ::testing::AssertionSuccess();
        return failure("aligned", sourceAt, destinationAt, capacity, outcome_, actual, whole_.data(),
                       region + destinationAt);
    }

    // With the source ending where memory ends (behind a terminator that UTF-8 decoders may read) and exactly
    // `capacity` bytes before the end of the destination's memory.
    ::testing::AssertionResult agreeGuarded(std::uint32_t capacity) {
        const std::size_t behind = expected_.source().form == model::Form::kUtf8 ? 1 : 0;
        std::uint8_t *const source = source_.endingWith(length() + behind);
        std::memcpy(source_.writable(source), text_.data(), length() + behind);
        model::Outcome expected = outcome_; // what the model does with room to spare
        exact_.assign(capacity, kFill);
        if (capacity >= need())
            std::copy_n(whole_.data(), need(), exact_.data()); // both may be empty
        else
            expected = expected_.run({text_.data(), length()}, {exact_.data(), capacity}, {nullptr, 0});
        std::uint8_t *const destination = destination_.endingWith(capacity);
        std::memset(destination_.endingWith(capacity + 64), kFill, capacity + 64);
        const harness::BareResult actual =
            harness::convertBare(actual_, source, length(), destination, capacity);
        if (actual.status == expected.status && actual.written == expected.written &&
            std::equal(destination, destination + expected.written, exact_.data()) &&
            isFilled(destination - 64, 64))
            return ::testing::AssertionSuccess();
        return failure("guarded", 0, 0, capacity, expected, actual, exact_.data(), destination);
    }

    // With the source and the destination beginning where memory begins.
    ::testing::AssertionResult agreeFromTheFirstByte() {
        return agreeAligned(0, 0);
    }

private:
    [[nodiscard]] std::uint32_t length() const {
        return static_cast<std::uint32_t>(text_.size() - 1);
    }

    static bool isFilled(const std::uint8_t *data, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i)
            if (data[i] != kFill)
                return false;
        return true;
    }

    ::testing::AssertionResult failure(const char *what, std::size_t sourceAt, std::size_t destinationAt,
                                       std::uint32_t capacity, const model::Outcome &expected,
                                       const harness::BareResult &actual, const std::uint8_t *expectedBytes,
                                       const std::uint8_t *actualBytes) const {
        std::size_t at = 0;
        while (at < capacity && expectedBytes[at] == actualBytes[at])
            ++at;
        return ::testing::AssertionFailure()
               << expected_.source().name << " to " << expected_.target().name << ", " << what << ", offsets "
               << sourceAt << " and " << destinationAt << ", capacity " << capacity << ", source of "
               << length() << " bytes [" << harness::hex(text_) << "]: expected status "
               << static_cast<std::int32_t>(expected.status) << ", " << expected.written
               << " bytes, got status " << static_cast<std::int32_t>(actual.status) << ", " << actual.written
               << " bytes; first difference at " << at << ": expected ["
               << harness::hex(expectedBytes + at, capacity - at) << "], got ["
               << harness::hex(actualBytes + at, capacity - at) << "]";
    }

    model::Conversion expected_;
    nlsConversion *actual_;
    GuardedRoom source_{1 << 20, true};
    GuardedRoom destination_{1 << 22, false};
    Bytes text_; // with its terminator
    Bytes whole_;
    Bytes exact_;
    model::Outcome outcome_;
};

// ---- One special piece at every place -------------------------------------------------------------------

std::vector<Names> sweptPairs() {
    std::vector<Names> pairs;
    for (const char *page : {"1252",     "1251",  "1253",      "KOI8-R", "ISO8859-1",   "IBM437", "IBM500",
                             "620-2533", "708",   "SHIFT-JIS", "EUCJIS", "KSC5601",     "CP949",  "CP1361",
                             "GB2312",   "CP936", "BIG-5",     "CP950",  "CP950-HKSCS", "ISO6937"})
        for (const char *form : {"UTF-8", "UTF-16"}) {
            pairs.emplace_back(page, form);
            pairs.emplace_back(form, page);
        }
    for (const char *page : {"1252", "SHIFT-JIS"}) {
        pairs.emplace_back(page, "UTF-16BE");
        pairs.emplace_back("UTF-16BE", page);
    }
    const std::vector<std::string> forms = {"UTF-8", "UTF-16", "UTF-16BE", "UCS2", "UTF-32", "UTF-32BE"};
    for (const auto &source : forms)
        for (const auto &target : forms)
            if (!model::Conversion(source, target).isChain())
                pairs.emplace_back(source, target);
    for (const Names &pair :
         {Names("1252", "ISO8859-15"), Names("KOI8-R", "1251"), Names("ISO8859-1", "IBM500"),
          Names("SHIFT-JIS", "EUCJIS"), Names("EUCJIS", "SHIFT-JIS"), Names("SHIFT-JIS", "SHIFT-JIS")})
        pairs.push_back(pair);
    return pairs;
}

class SweepTest : public ::testing::TestWithParam<Names> {
protected:
    static constexpr std::size_t kLongest = 200;
    // Beyond it every seventh length has its special piece.
    static constexpr std::size_t kEveryLength = 100;

    SweepTest() : pair_(GetParam().first, GetParam().second), maker_(pair_.expected()) {}

    // `count` base characters with `special` in place of the one at `place` (none when beyond the end).
    static Bytes textOf(const std::vector<Bytes> &base, std::size_t count, std::size_t place,
                        const Bytes &special) {
        Bytes text;
        for (std::size_t i = 0; i < count; ++i) {
            const Bytes &piece = i == place ? special : base[i % base.size()];
            text.insert(text.end(), piece.begin(), piece.end());
        }
        return text;
    }

    void sweep(const std::vector<Bytes> &base, const Bytes &special) {
        for (std::size_t count = 1; count <= kLongest;
             count += (count < kEveryLength ? 1 : 7) * harness::kStride) {
            for (std::size_t place = 0; place < count; ++place) {
                pair_.setText(textOf(base, count, place, special));
                const std::size_t turn = count * 5 + place;
                // Some texts at every alignment, all texts at two in turn.
                const std::size_t runs = turn % 16 == 0 ? 32 : 2;
                for (std::size_t run = 0; run < runs; ++run)
                    ASSERT_TRUE(pair_.agreeAligned((turn + run) % 32, (turn * 7 + run * 3) % 32));
                const std::uint32_t need = pair_.need();
                ASSERT_TRUE(pair_.agreeGuarded(need));
                if (turn % 4 == 0) {
                    ASSERT_TRUE(
                        pair_.agreeGuarded(need - std::min(need, static_cast<std::uint32_t>(1 + turn % 5))));
                }
            }
        }
    }

    GuardedPair pair_;
    harness::TextMaker maker_;
};

TEST_P(SweepTest, plainTextsOfEveryLengthAtEveryAlignment) {
    for (const auto *base : {&maker_.asciiCharacters(), &maker_.scriptCharacters()})
        for (std::size_t count = 0; count <= kLongest; ++count) {
            pair_.setText(textOf(*base, count, count, {}));
            for (std::size_t alignment = 0; alignment < 32; ++alignment)
                ASSERT_TRUE(pair_.agreeAligned(alignment, (alignment * 5 + count) % 32));
            ASSERT_TRUE(pair_.agreeFromTheFirstByte());
            const std::uint32_t need = pair_.need();
            for (std::uint32_t capacity = need - std::min(need, 40u); capacity < need + 4; ++capacity)
                ASSERT_TRUE(pair_.agreeGuarded(capacity));
        }
}

TEST_P(SweepTest, oneSpecialPieceAtEveryPlaceOfAscii) {
    for (const Bytes &special : maker_.specials())
        sweep(maker_.asciiCharacters(), special);
}

TEST_P(SweepTest, oneSpecialPieceAtEveryPlaceOfItsScript) {
    for (const Bytes &special : maker_.specials())
        sweep(maker_.scriptCharacters(), special);
}

TEST_P(SweepTest, longRandomMixes) {
    harness::Random random(harness::seed());
    for (unsigned round = 0; round < 60; ++round) {
        pair_.setText(maker_.mix(random, 500 + random.below(6000)));
        ASSERT_TRUE(pair_.agreeAligned(random.below(32), random.below(32)));
        const std::uint32_t need = pair_.need();
        for (unsigned cut = 0; cut < 6; ++cut)
            ASSERT_TRUE(
                pair_.agreeGuarded(need - std::min<std::uint32_t>(need, cut == 0 ? 0 : random.below(300))));
        ASSERT_TRUE(pair_.agreeGuarded(random.below(need + 1)));
    }
}

INSTANTIATE_TEST_SUITE_P(Pairs, SweepTest, ::testing::ValuesIn(sweptPairs()), pairTestName);

// ---- Every conversion -----------------------------------------------------------------------------------

std::vector<std::string> forms() {
    return {"UTF-8", "UTF-16", "UTF-16BE", "UCS2", "UTF-32", "UTF-32BE"};
}

// All conversions that lead from one page or form, directly or by a chain.
std::vector<std::string> targetsOf(const std::string &source) {
    const std::vector<std::string> unicode = forms();
    const bool isForm = std::find(unicode.begin(), unicode.end(), source) != unicode.end();
    std::vector<std::string> targets = unicode;
    for (const auto &page : model::allPages()) {
        const bool japanese =
            (source == "SHIFT-JIS" && page == "EUCJIS") || (source == "EUCJIS" && page == "SHIFT-JIS");
        if (isForm || page == source || japanese || model::hasByteTable(source, page))
            targets.push_back(page);
    }
    return targets;
}

std::vector<std::string> allSources() {
    std::vector<std::string> names = forms();
    for (const auto &page : model::allPages())
        names.push_back(page);
    return names;
}

class RandomTest : public ::testing::TestWithParam<std::string> {};

TEST_P(RandomTest, shortTextsAtEveryCapacityThroughEveryCall) {
    harness::Random random(harness::seed());
    for (const auto &target : targetsOf(GetParam())) {
        harness::Pair pair(GetParam(), target);
        const harness::TextMaker maker(pair.expected());
        for (unsigned round = 0; round < 40; ++round) {
            const Bytes text = maker.mix(random, random.below(28));
            const std::uint32_t need = pair.need(text);
            for (std::uint32_t capacity = 0; capacity < need + 10; ++capacity) {
                ASSERT_TRUE(pair.agree(text, capacity));
                ASSERT_TRUE(pair.agreeTerminated(text, capacity));
                ASSERT_TRUE(pair.agreeChecked(text, capacity));
                ASSERT_TRUE(pair.agreeWithTerminator(text, capacity));
            }
        }
    }
}

TEST_P(RandomTest, longerTextsAroundTheNeed) {
    harness::Random random(harness::seed() + 1);
    for (const auto &target : targetsOf(GetParam())) {
        harness::Pair pair(GetParam(), target);
        const harness::TextMaker maker(pair.expected());
        std::vector<Bytes> texts = maker.sentences();
        for (unsigned round = 0; round < 40; ++round)
            texts.push_back(maker.mix(random, random.below(700)));
        for (const Bytes &text : texts) {
            const std::uint32_t need = pair.need(text);
            for (std::uint32_t capacity = need - std::min(need, 5u); capacity < need + 6; ++capacity) {
                ASSERT_TRUE(pair.agree(text, capacity));
                ASSERT_TRUE(pair.agreeTerminated(text, capacity, 3000));
            }
            ASSERT_TRUE(pair.agree(text, random.below(need + 1), random.below(1500)));
            ASSERT_TRUE(pair.agreeChecked(text, need + 8));
        }
    }
}

TEST_P(RandomTest, singleCharactersInPlace) {
    harness::Random random(harness::seed() + 2);
    for (const auto &target : targetsOf(GetParam())) {
        harness::Pair pair(GetParam(), target);
        for (unsigned round = 0; round < 3000; ++round)
            ASSERT_TRUE(pair.agreeCharacter(random.next() >> random.below(32)));
    }
}

INSTANTIATE_TEST_SUITE_P(Sources, RandomTest, ::testing::ValuesIn(allSources()), harness::pageTestName);

} // namespace
