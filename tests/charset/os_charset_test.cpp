// nlsGetOSCharset: the thread's ANSI code page as text.
#include "pretended_system.hpp"

#include "guarded_buffer.hpp"
#include "status_rows.hpp"

#include <string>

namespace {

using charset::pretendedSystem;
using fixture::gives;

class OSCharset : public testing::Test {
protected:
    OSCharset() {
        charset::newPretendedSystem();
    }
    // What stands in a buffer of the promised 20 bytes, with forbidden memory behind it.
    std::string ask(std::int32_t expected) {
        char *const out = reinterpret_cast<char *>(guard_.tail(20));
        std::fill(out, out + 20, 'x');
        EXPECT_TRUE(gives("nlsGetOSCharset", expected, nlsGetOSCharset(out)));
        return {out, strnlen(out, 20)};
    }

private:
    fixture::GuardedBuffer guard_{20};
};

TEST_F(OSCharset, NullBufferGives16AndAsksNothing) {
    EXPECT_TRUE(gives("nlsGetOSCharset", 16, nlsGetOSCharset(nullptr)));
    EXPECT_EQ(pretendedSystem().pageQueries, 0);
}

TEST_F(OSCharset, NoAnswerGives28AndEmptyText) {
    pretendedSystem().silent = true;
    EXPECT_EQ(ask(28), "");
}

TEST_F(OSCharset, AnswerIsCopied) {
    for (const char *const page : {"1252", "932", "874", "0", "65001"}) {
        pretendedSystem().page = page;
        EXPECT_EQ(ask(0), page);
    }
    EXPECT_EQ(pretendedSystem().pageRoom, 20U);
    EXPECT_EQ(pretendedSystem().countryQueries, 0);
}

TEST_F(OSCharset, AnswerEndsAtItsNul) {
    pretendedSystem().page = std::string("125\0002", 5);
    EXPECT_EQ(ask(0), "125");
    pretendedSystem().page = std::string();
    EXPECT_EQ(ask(0), "") << "a NUL alone is an answer";
}

TEST_F(OSCharset, AnswerEndsAtItsCount) {
    pretendedSystem().terminated = false;
    pretendedSystem().page = "12";
    EXPECT_EQ(ask(0), "12") << "no NUL was counted";
}

TEST_F(OSCharset, AnswerThatFillsItsRoomStaysInTheCallersBuffer) {
    pretendedSystem().page = std::string(19, '7');
    EXPECT_EQ(ask(0), std::string(19, '7'));
    pretendedSystem().terminated = false;
    pretendedSystem().page = std::string(20, '7');
    EXPECT_EQ(ask(0), std::string(19, '7'));
}

} // namespace
