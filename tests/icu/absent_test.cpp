// A machine without ICU and without a sort exit: what needs them says so, the rest works.
#include <gtest/gtest.h>

#include "process.hpp"
#include "stored.hpp"
#include "world.hpp"

namespace {

using process::isolated;
using process::seen;

// Environments in which nothing is found.
void nothingThere() {
    process::setVariable("BINPATHX", process::kNoSuchFolder);
    process::setVariable(
        "PATH", process::pathOf({process::kNoSuchFolder, std::string(process::kNoSuchFolder) + "2"}));
}

TEST(Absent, AConversionThatNeedsIcuGives8) {
    isolated([] {
        nothingThere();
        world::Open open;
        for (const char *const target : {"UTF-8", "UTF-16", "UTF-16BE"}) {
            EXPECT_TRUE(seen("nlsCreateConversion", 8, open.tryConversion("X", target)));
            EXPECT_TRUE(seen("nlsCreateConversion", 8, open.tryConversion(target, "X")));
        }
    });
}

TEST(Absent, ACollationThatNeedsIcuGives1) {
    isolated([] {
        nothingThere();
        world::Open open;
        EXPECT_TRUE(seen("nlsCreateLocale", 1, open.tryLocale("UTF-8", "ICU-UCA")));
        EXPECT_TRUE(seen("nlsCreateLocale", 1, open.tryLocale("P", "ICU-en_GB")));
    });
}

TEST(Absent, ACollationThatNeedsTheExitGives25AndBorrowedOnesGive10) {
    isolated([] {
        nothingThere();
        world::Open open;
        EXPECT_TRUE(seen("nlsCreateLocale", 25, open.tryLocale("P", "site")));
        EXPECT_TRUE(seen("nlsCreateLocale", 10, open.tryLocale("BORROWER", "lent")));
    });
}

TEST(Absent, RebuildingGives1And10) {
    isolated([] {
        nothingThere();
        world::Open open;
        stored::Record record(open.locale("P", "weights"), stored::kNew);
        record.setKind(5);
        EXPECT_TRUE(seen("nlsDbCollationToLocale", 1, record.rebuild(open.handle)));
        record.setKind(2);
        EXPECT_TRUE(seen("nlsDbCollationToLocale", 10, record.rebuild(open.handle)));
        stored::Record old(open.locale("P", "weights"), stored::kOld);
        old.setKind(5);
        EXPECT_TRUE(seen("nlsDbCollationToLocale", 1, old.rebuild(open.handle)));
        old.setKind(2);
        EXPECT_TRUE(seen("nlsDbCollationToLocale", 10, old.rebuild(open.handle)));
    });
}

TEST(Absent, TheRestWorks) {
    isolated([] {
        nothingThere();
        world::Open open;
        ASSERT_EQ(open.tryLocale("UTF-8", "ICU-UCA"), NLS_E_NOMEM);
        ASSERT_EQ(open.tryLocale("P", "site"), NLS_E_NOSORT);
        std::int16_t result = 9;
        nlsLocale *const weights = open.locale("P", "weights");
        EXPECT_TRUE(seen("nlsCompare", 0, nlsCompare(weights, "a", "b", 1, &result)));
        EXPECT_EQ(result, -1);
        EXPECT_EQ(nlsCompare(open.locale("UTF-8", "basic"), "a", "a ", 0, &result), NLS_OK);
        EXPECT_EQ(result, 0);
        EXPECT_TRUE(seen("nlsClose", 0, nlsClose(open.handle)));
    });
}

TEST(Absent, EighteenStaysInside) {
    isolated([] {
        nothingThere();
        world::Open open;
        EXPECT_NE(open.tryConversion("X", "UTF-8"), NLS_E_ICULOAD);
        EXPECT_NE(open.tryLocale("UTF-8", "ICU-de"), NLS_E_ICULOAD);
        stored::Record record(open.locale("P", "weights"), stored::kNew);
        record.setKind(5);
        EXPECT_NE(record.rebuild(open.handle), NLS_E_ICULOAD);
    });
}

} // namespace
