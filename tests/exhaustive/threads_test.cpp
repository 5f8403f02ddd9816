// Several threads that read through one locale and one conversion at the same time get what one thread gets.
// Run under the thread sanitizer too, which sees any shared word that a reading call writes.
#include "harness/compare.hpp"
#include "harness/names.hpp"
#include "harness/text_maker.hpp"

#include <atomic>
#include <thread>

using harness::Bytes;

namespace {

using Names = std::pair<std::string, std::string>;

constexpr unsigned kThreads = 4;

struct Job {
    nlsConversion *conversion;
    nlsLocale *locale;
    bool chain;
    Bytes source; // terminated
    nlsStatus status;
    Bytes result;
    nlsStatus characterStatus;
    std::uint32_t character;
    std::size_t characters;
};

// Everything a reading caller does with one text; false when anything differs from the first time.
struct Results {
    nlsStatus status;
    Bytes result;
    nlsStatus characterStatus;
    std::uint32_t character;
    std::size_t characters;
};

Results run(const Job &job) {
    Results results{};
    Bytes source = job.source;
    Bytes middle(source.size() * 4 + 8);
    results.result.resize(source.size() * 4 + 8);
    const auto length = static_cast<std::uint32_t>(source.size() - 4);
    const nlsStr from = {reinterpret_cast<char *>(source.data()), static_cast<std::uint32_t>(source.size()),
                         length};
    nlsStr between = {reinterpret_cast<char *>(middle.data()), static_cast<std::uint32_t>(middle.size()), 0};
    nlsStr to = {reinterpret_cast<char *>(results.result.data()),
                 static_cast<std::uint32_t>(results.result.size()), 0};
    results.status = nlsConvertNLS(job.conversion, &from, job.chain ? &between : nullptr, &to);
    results.result.resize(to.length);
    results.characterStatus = nlsConvertLChar(job.conversion, source[0], &results.character);
    char *at = reinterpret_cast<char *>(source.data());
    char *next = nullptr;
    while (*at != 0) {
        if (nlsGetNextChar(job.locale, at, &next) != NLS_OK && *next != 0)
            break;
        ++results.characters;
        at = next;
    }
    return results;
}

class ThreadsTest : public ::testing::TestWithParam<Names> {};

TEST_P(ThreadsTest, readingCallsShareOneConversion) {
    const model::Conversion expected(GetParam().first, GetParam().second);
    const harness::TextMaker maker(expected);
    harness::Random random(harness::seed());
    std::vector<Job> jobs;
    for (unsigned i = 0; i < 40; ++i) {
        Job job{};
        job.conversion = harness::library().conversion(GetParam().first, GetParam().second);
        job.locale = harness::library().locale(GetParam().first);
        job.chain = expected.isChain();
        job.source = maker.mix(random, 40 + random.below(400));
        job.source.resize(job.source.size() + 4, 0);
        const Results results = run(job);
        job.status = results.status;
        job.result = results.result;
        job.characterStatus = results.characterStatus;
        job.character = results.character;
        job.characters = results.characters;
        jobs.push_back(job);
    }
    std::atomic<unsigned> wrong = 0;
    std::atomic<unsigned> ready = 0;
    std::vector<std::thread> threads;
    for (unsigned thread = 0; thread < kThreads; ++thread)
        threads.emplace_back([&jobs, &wrong, &ready, thread] {
            ++ready;
            while (ready < kThreads)
                std::this_thread::yield();
            for (unsigned round = 0; round < 20; ++round)
                for (std::size_t i = 0; i < jobs.size(); ++i) {
                    const Job &job = jobs[(i + thread * 7) % jobs.size()];
                    const Results results = run(job);
                    if (results.status != job.status || results.result != job.result ||
                        results.characterStatus != job.characterStatus ||
                        results.character != job.character || results.characters != job.characters)
                        ++wrong;
                }
        });
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(wrong, 0u);
}

std::vector<Names> sharedPairs() {
    std::vector<Names> pairs;
    for (const auto &page : model::allPages()) {
        pairs.emplace_back(page, "UTF-8");
        pairs.emplace_back("UTF-8", page);
        pairs.emplace_back("UTF-16", page);
    }
    for (const Names &pair : {Names("SHIFT-JIS", "UTF-16BE"), Names("UTF-8", "UTF-16"),
                              Names("UTF-16", "UTF-8"), Names("UTF-32", "UTF-8"), Names("UTF-32", "1252"),
                              Names("CP949", "UTF-32"), Names("1252", "IBM850"), Names("SHIFT-JIS", "EUCJIS"),
                              Names("EUCJIS", "SHIFT-JIS"), Names("1252", "1252")})
        pairs.push_back(pair);
    return pairs;
}

std::string sharedName(const ::testing::TestParamInfo<Names> &info) {
    return harness::testName(info.param.first + "_to_" + info.param.second);
}

INSTANTIATE_TEST_SUITE_P(Pairs, ThreadsTest, ::testing::ValuesIn(sharedPairs()), sharedName);

// A handle each, with its own memory: creating on one does not disturb the other.
TEST(Threads, eachWithItsOwnHandleCreateAtTheSameTime) {
    std::atomic<unsigned> wrong = 0;
    std::vector<std::thread> threads;
    for (unsigned thread = 0; thread < kThreads; ++thread)
        threads.emplace_back([&wrong] {
            for (unsigned round = 0; round < 5; ++round) {
                harness::Library own(std::size_t{2} << 20);
                for (const char *page : {"1252", "SHIFT-JIS", "CP949", "EUCJIS", "IBM500"}) {
                    nlsConversion *const conversion = own.conversion("UTF-8", page);
                    const Bytes source = {'A', 0};
                    std::uint8_t out[8] = {};
                    const harness::BareResult result =
                        harness::convertBare(conversion, source.data(), 1, out, 8);
                    const bool ebcdic = model::isEbcdic(page);
                    if (result.status != NLS_OK || out[0] != (ebcdic ? 0xC1 : 'A'))
                        ++wrong;
                }
            }
        });
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(wrong, 0u);
}

} // namespace
