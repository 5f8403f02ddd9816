// The progress bar, with a clock of its own.
#include <gtest/gtest.h>

#include "progress.hpp"

namespace velnls::tool {
namespace {

using std::chrono::milliseconds;

constexpr std::uint64_t kMegabyte = 1000000;

class ProgressBar : public testing::Test {
protected:
    Progress make(std::optional<std::uint64_t> total) {
        return Progress(
            total, [this](const std::string &text) { shown += text; }, [this] { return time; });
    }

    Progress::Clock::time_point time{};
    std::string shown;
};

TEST_F(ProgressBar, IsSilentForShortInput) {
    {
        Progress progress = make(kMegabyte);
        time += milliseconds(1900);
        progress.update(kMegabyte);
    }
    EXPECT_EQ(shown, "");
}

TEST_F(ProgressBar, AppearsForLargeInputAndIsWipedAway) {
    {
        Progress progress = make(200 * kMegabyte);
        time += milliseconds(50);
        progress.update(10 * kMegabyte);
        EXPECT_EQ(shown, "");
        time += milliseconds(150);
        progress.update(50 * kMegabyte);
        EXPECT_EQ(shown, "\r 25% [=======                       ] 50 of 200 MB  250 MB/s\033[K");
        shown.clear();
    }
    EXPECT_EQ(shown, "\r\033[K");
}

TEST_F(ProgressBar, AppearsAfterAWhileWithoutAKnownSize) {
    Progress progress = make(std::nullopt);
    time += milliseconds(1000);
    progress.update(50 * kMegabyte);
    EXPECT_EQ(shown, "");
    time += milliseconds(1000);
    progress.update(100 * kMegabyte);
    EXPECT_EQ(shown, "\r100 MB  50 MB/s\033[K");
}

TEST_F(ProgressBar, IsNotRedrawnAtEveryBlock) {
    Progress progress = make(200 * kMegabyte);
    time += milliseconds(200);
    progress.update(kMegabyte);
    const std::string once = shown;
    time += milliseconds(50);
    progress.update(2 * kMegabyte);
    EXPECT_EQ(shown, once);
    time += milliseconds(50);
    progress.update(3 * kMegabyte);
    EXPECT_NE(shown, once);
}

TEST_F(ProgressBar, OfAFileThatGrewStaysFull) {
    Progress progress = make(100 * kMegabyte);
    time += milliseconds(1000);
    progress.update(150 * kMegabyte);
    EXPECT_EQ(shown, "\r100% [==============================] 150 of 100 MB  150 MB/s\033[K");
}

} // namespace
} // namespace velnls::tool
