// The progress bar, with a clock of its own.
#include <gtest/gtest.h>

#include "process.hpp"
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

// Runs the shell command with a terminal for its streams, as far as it does not redirect them.
Result runInTerminal(const std::string &command) {
    const Folder folder;
    const std::string file = folder.write("command", command);
    return runShell("SHELL=/bin/sh script -qec 'sh " + file + "' /dev/null </dev/null");
}

constexpr char kSlowInput[] = "(printf a; sleep 2.2; printf b) | ";

TEST(ProgressOnTheTerminal, AppearsAndIsWipedAwayWhenInputTakesLong) {
    NEEDS_POSIX("terminals of this system");
    if (runShell("command -v script").exitCode != 0) {
        GTEST_SKIP() << "no program 'script' to make a terminal";
    }
    const Result result = runInTerminal(kSlowInput + std::string("\"$VELNLS\" convert >/dev/null"));
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out, "\r0 MB  0 MB/s\033[K\r\033[K");
}

TEST(ProgressOnTheTerminal, StaysAwayWhenTheTextItselfGoesThere) {
    NEEDS_POSIX("terminals of this system");
    if (runShell("command -v script").exitCode != 0) {
        GTEST_SKIP() << "no program 'script' to make a terminal";
    }
    EXPECT_EQ(runInTerminal(kSlowInput + std::string("\"$VELNLS\" convert")).out, "ab");
}

TEST(ProgressOnTheTerminal, StaysAwayWhenStandardErrorIsAFile) {
    const Result result = runShell(kSlowInput + std::string("\"$VELNLS\" convert"));
    EXPECT_EQ(result.out, "ab");
    EXPECT_EQ(result.err, "");
}

} // namespace
} // namespace velnls::tool
