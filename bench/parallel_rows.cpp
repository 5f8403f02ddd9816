#include "parallel_rows.hpp"

#include "contestants.hpp"
#include "string_rows.hpp"

#include <algorithm>
#include <chrono>
#include <functional>
#include <thread>

namespace bench {
namespace {

// Below the ratio lies what the machine itself gives two threads; 2 is the most that there is.
constexpr double kFloor = 1.8;

// A handle of its own for each thread, over its own memory.
class Worker {
public:
    Worker() : memory_(4u << 20) {
        handle_ = openHandle(memory_);
        nlsLocale *source = nullptr;
        nlsLocale *target = nullptr;
        if (nlsCreateLocale(handle_, "1252", "basic", "basic", &source) != NLS_OK ||
            nlsCreateLocale(handle_, "UTF-8", NLS_NO_COLLATION, nullptr, &target) != NLS_OK ||
            nlsCreateConversion(handle_, source, target, &conversion_) != NLS_OK)
            std::abort();
        locale_ = source;
    }
    ~Worker() {
        nlsClose(handle_);
    }
    Worker(const Worker &) = delete;
    Worker &operator=(const Worker &) = delete;

    [[nodiscard]] nlsLocale *locale() const {
        return locale_;
    }
    [[nodiscard]] nlsConversion *conversion() const {
        return conversion_;
    }

private:
    std::vector<unsigned char> memory_;
    nlsHandle *handle_ = nullptr;
    nlsLocale *locale_ = nullptr;
    nlsConversion *conversion_ = nullptr;
};

using Clock = std::chrono::steady_clock;

double wallSeconds(const std::function<void()> &work) {
    const auto start = Clock::now();
    work();
    return std::chrono::duration<double>(Clock::now() - start).count();
}

// Converts and compares every string of the column.
std::size_t share(const Column &column, nlsConversion *conversion, nlsLocale *locale) {
    char out[256];
    std::size_t sum = 0;
    for (std::size_t i = 0; i < column.size(); ++i) {
        const nlsStr source{const_cast<char *>(column.pageText(i)),
                            static_cast<std::uint32_t>(column.pageLength(i)) + 1,
                            static_cast<std::uint32_t>(column.pageLength(i))};
        nlsStr target{out, sizeof out, 0};
        nlsConvertNLS(conversion, &source, nullptr, &target);
        std::int16_t result = 0;
        nlsCompare(locale, column.pageText(i), column.pageText(i == 0 ? 0 : i - 1), 1, &result);
        sum += target.length + static_cast<std::size_t>(result + 1);
    }
    return sum;
}

Result scaling(nlsConversion *const (&conversions)[2], nlsLocale *const (&locales)[2], int rounds) {
    const Page &page = pageNamed("1252");
    const Column column = columnOf(charactersOf("de", page), Size::shortStrings);
    constexpr int kRepeats = 10; // long enough that starting a thread does not count
    std::size_t sums[2] = {};
    const auto work = [&](int which) {
        for (int i = 0; i < kRepeats; ++i)
            sums[which] += share(column, conversions[which], locales[which]);
    };
    std::vector<double> together;
    std::vector<double> oneByOne;
    work(0);
    for (int round = 0; round < rounds; ++round) {
        oneByOne.push_back(wallSeconds([&] {
            work(0);
            work(1);
        }));
        together.push_back(wallSeconds([&] {
            std::thread other([&] { work(1); });
            work(0);
            other.join();
        }));
    }
    Result result;
    result.strings = column.size() * kRepeats * 2;
    result.bytes = column.page.sourceBytes() * kRepeats * 2;
    setOutcome(result, {together, oneByOne}, {"two threads", "the same on one thread"});
    if (sums[0] == 0 || sums[1] == 0)
        result.problem = "nothing was converted";
    return result;
}

Result handles(int rounds) {
    const Worker one;
    const Worker other;
    return scaling({one.conversion(), other.conversion()}, {one.locale(), other.locale()}, rounds);
}

Result sharedLocale(int rounds) {
    const Worker one;
    return scaling({one.conversion(), one.conversion()}, {one.locale(), one.locale()}, rounds);
}

} // namespace

Jobs parallelJobs() {
    return {{"two_threads/a_handle_each", kFloor, handles}, {"two_threads/one_locale", kFloor, sharedLocale}};
}

} // namespace bench
