// Draws the bar with one carriage return a line, so that nothing scrolls.
#include "progress.hpp"

#include "platform.hpp"

#include <cstdio>
#include <utility>

namespace velnls::tool {

namespace {

using std::chrono::milliseconds;

constexpr std::uint64_t kLongInput = 32u * 1024 * 1024;
constexpr milliseconds kPatience(2000); // before input of unknown or smaller size gets a bar
constexpr milliseconds kRedraw(100);
constexpr int kBarWidth = 30;
constexpr double kMegabyte = 1e6;

} // namespace

Progress::Progress(std::optional<std::uint64_t> total, Show show, Now now)
    : total_(total), show_(std::move(show)), now_(std::move(now)) {
    if (show_) {
        start_ = now_();
        shown_ = start_;
    }
}

Progress::~Progress() {
    clear();
}

void Progress::update(std::uint64_t bytes) {
    if (!show_) {
        return;
    }
    const Clock::time_point time = now_();
    const bool isLong = (total_ && *total_ >= kLongInput) || time - start_ >= kPatience;
    if (!isLong || time - shown_ < kRedraw) {
        return;
    }
    shown_ = time;
    visible_ = true;
    std::string drawn("\r");
    drawn += line(bytes, std::chrono::duration<double>(time - start_).count());
    drawn += "\033[K"; // clears what a longer line left
    show_(drawn);
}

void Progress::clear() {
    if (visible_) {
        visible_ = false;
        show_("\r\033[K");
    }
}

std::string Progress::line(std::uint64_t bytes, double seconds) const {
    const double done = static_cast<double>(bytes);
    const double speed = seconds > 0 ? done / seconds : 0;
    char text[128];
    if (!total_ || *total_ == 0) {
        std::snprintf(text, sizeof text, "%.0f MB  %.0f MB/s", done / kMegabyte, speed / kMegabyte);
        return text;
    }
    // A file may grow while it is read.
    const double total = static_cast<double>(*total_);
    const double share = done < total ? done / total : 1;
    const int filled = static_cast<int>(share * kBarWidth);
    const std::string bar = std::string(static_cast<std::size_t>(filled), '=') +
                            std::string(static_cast<std::size_t>(kBarWidth - filled), ' ');
    std::snprintf(text, sizeof text, "%3.0f%% [%s] %.0f of %.0f MB  %.0f MB/s", share * 100, bar.c_str(),
                  done / kMegabyte, total / kMegabyte, speed / kMegabyte);
    return text;
}

Progress terminalProgress(std::optional<std::uint64_t> total, int outputDescriptor) {
    Progress::Show show;
    if (platform::isTerminal(platform::kStandardError) && !platform::isTerminal(outputDescriptor)) {
        show = [](const std::string &text) {
            std::fputs(text.c_str(), stderr);
            std::fflush(stderr);
        };
    }
    return Progress(total, std::move(show), [] { return Progress::Clock::now(); });
}

} // namespace velnls::tool
