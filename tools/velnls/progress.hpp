// A progress bar on standard error, for long input and only when somebody watches.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace velnls::tool {

// The bar appears when the known size is large, or after a while when it is not, and is wiped away at the
// end. "show" writes to the terminal, "now" tells the time: both are given so that tests can watch.
class Progress {
public:
    using Clock = std::chrono::steady_clock;
    using Show = std::function<void(const std::string &)>;
    using Now = std::function<Clock::time_point()>;

    Progress(std::optional<std::uint64_t> total, Show show, Now now);
    ~Progress();
    Progress(const Progress &) = delete;
    Progress &operator=(const Progress &) = delete;

    // Tells that "bytes" of input are done in all.
    void update(std::uint64_t bytes);
    // Wipes the bar away.
    void clear();

private:
    std::string line(std::uint64_t bytes, double seconds) const;

    std::optional<std::uint64_t> total_;
    Show show_;
    Now now_;
    Clock::time_point start_;
    Clock::time_point shown_;
    bool visible_ = false;
};

// A progress bar on the real terminal; a silent one when standard error is none, or when the text itself goes
// to a terminal through "outputDescriptor".
Progress terminalProgress(std::optional<std::uint64_t> total, int outputDescriptor);

} // namespace velnls::tool
