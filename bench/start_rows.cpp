#include "start_rows.hpp"

#include "contestants.hpp"
#include "string_rows.hpp"

#include <unicode/ucnv.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iconv.h>

namespace bench {
namespace {

constexpr double kWarmFloor = 0.03;
constexpr double kColdFloor = 0.5;

constexpr char kText[] = "Stra\xDF"
                         "e 17, M\xFCnchen";

// ---- Everything is loaded and in the caches: open, convert, close ---------------------------------------

std::size_t warmVelnls(std::vector<unsigned char> &memory, char *out, std::size_t room) {
    nlsHandle *const handle = openHandle(memory);
    nlsLocale *source = nullptr;
    nlsLocale *target = nullptr;
    nlsConversion *conversion = nullptr;
    const nlsStr text{const_cast<char *>(kText), sizeof kText, sizeof kText - 1};
    nlsStr result{out, static_cast<std::uint32_t>(room), 0};
    if (nlsCreateLocale(handle, "1252", NLS_NO_COLLATION, nullptr, &source) != NLS_OK ||
        nlsCreateLocale(handle, "UTF-8", NLS_NO_COLLATION, nullptr, &target) != NLS_OK ||
        nlsCreateConversion(handle, source, target, &conversion) != NLS_OK ||
        nlsConvertNLS(conversion, &text, nullptr, &result) != NLS_OK)
        std::abort();
    nlsClose(handle);
    return result.length;
}

std::size_t warmIconv(char *out, std::size_t room) {
    const iconv_t descriptor = iconv_open("UTF-8", "CP1252");
    char *from = const_cast<char *>(kText);
    char *to = out;
    std::size_t left = sizeof kText - 1;
    iconv(descriptor, &from, &left, &to, &room);
    iconv_close(descriptor);
    return static_cast<std::size_t>(to - out);
}

std::size_t warmIcu(char *out, std::size_t room) {
    UErrorCode error = U_ZERO_ERROR;
    return static_cast<std::size_t>(
        ucnv_convert("UTF-8", "windows-1252", out, static_cast<std::int32_t>(room), kText, -1, &error));
}

Result warm(int rounds) {
    constexpr std::size_t kTimes = 2000;
    // As much as these locales need, and no more: the block is cleared at each start.
    const auto memory = std::make_shared<std::vector<unsigned char>>(64u << 10);
    return contest(
        {writing("velnls", kTimes, 64,
                 [memory](std::size_t, std::vector<char> &out) {
                     return warmVelnls(*memory, out.data(), out.size());
                 }),
         writing("iconv", kTimes, 64,
                 [](std::size_t, std::vector<char> &out) { return warmIconv(out.data(), out.size()); }),
         writing("ICU ucnv_convert", kTimes, 64,
                 [](std::size_t, std::vector<char> &out) { return warmIcu(out.data(), out.size()); })},
        kTimes, kTimes * (sizeof kText - 1), rounds);
}

// ---- A new process --------------------------------------------------------------------------------------

// What the probe says, in seconds; negative when it failed.
double probe(const std::string &arguments) {
    std::FILE *const pipe = popen((VELNLS_BENCH_PROBE " " + arguments).c_str(), "r");
    unsigned long long nanoseconds = 0;
    const bool read = pipe != nullptr && std::fscanf(pipe, "%llu", &nanoseconds) == 1;
    const bool ended = pipe != nullptr && pclose(pipe) == 0;
    return read && ended ? static_cast<double>(nanoseconds) * 1e-9 : -1;
}

Result cold(int rounds) {
    constexpr int kProcesses = 20; // of each in a round
    const std::vector<std::pair<std::string, std::string>> who = {
        {"velnls", "velnls " VELNLS_BENCH_DATA " " VELNLS_BENCH_LIBRARY},
        {"iconv", "iconv"},
        {"ICU ucnv_convert", "icu libicuuc.so.72"},
    };
    std::vector<std::vector<double>> seconds(who.size());
    Result result;
    for (int round = 0; round < rounds; ++round)
        for (std::size_t i = 0; i < who.size(); ++i) {
            const std::size_t turn = (i + static_cast<std::size_t>(round)) % who.size();
            std::vector<double> times;
            for (int process = 0; process < kProcesses; ++process)
                times.push_back(probe(who[turn].second));
            std::sort(times.begin(), times.end());
            if (times.front() < 0)
                result.problem = who[turn].first + " does not start";
            seconds[turn].push_back(times[times.size() / 2]);
        }
    result.strings = 2; // told in nanoseconds
    result.bytes = sizeof kText - 1;
    setOutcome(result, seconds, {"velnls", "iconv", "ICU ucnv_convert"});
    result.seconds *= 2;
    result.peerSeconds *= 2;
    return result;
}

} // namespace

Jobs startJobs() {
    return {{"start/1252_to_UTF-8/warm", kWarmFloor, warm}, {"start/1252_to_UTF-8/cold", kColdFloor, cold}};
}

} // namespace bench
