// ICU collations and sort exits in stored records, and the locales rebuilt from them.
#include <gtest/gtest.h>

#include "fake.hpp"
#include "process.hpp"
#include "stored.hpp"
#include "world.hpp"

namespace {

using fixture::Bytes;
using process::Home;
using process::seen;

void withBoth(const std::function<void(world::Open &)> &body) {
    const Home home;
    home.putIcu();
    home.put("exit", "usortwin");
    process::isolated([&] {
        process::setVariable("BINPATHX", home.path());
        process::setVariable("PATH", home.bin());
        world::Open open;
        body(open);
    });
}

std::int16_t compared(nlsLocale *locale, const char *a, const char *b) {
    std::int16_t result = 77;
    EXPECT_EQ(nlsCompare(locale, a, b, 1, &result), NLS_OK);
    return result;
}

TEST(StoredIcu, ARecordHoldsNoAddressOfTheProcess) {
    withBoth([](world::Open &open) {
        nlsLocale *const locale = open.locale("UTF-8", "ICU-de");
        for (const std::int32_t level : {stored::kOld, stored::kNew}) {
            const stored::Record record(locale, level);
            ASSERT_EQ(record.status, NLS_OK);
            EXPECT_EQ(record.record.collationKind, 5U);
            EXPECT_EQ(Bytes(record.data.begin(), record.data.begin() + 8), Bytes(8));
            EXPECT_EQ(Bytes(record.data.begin() + 256, record.data.begin() + 264), Bytes(8));
            EXPECT_EQ(record.data[28], 'd');
            // Nothing in it depends on where things lay.
            const stored::Record again(locale, level);
            EXPECT_EQ(record.data, again.data);
        }
        EXPECT_EQ(compared(locale, "a", "b"), -1) << "the locale itself goes on";
    });
}

TEST(StoredIcu, ARebuiltLocaleOpensItsOwnCollator) {
    withBoth([](world::Open &open) {
        for (const std::int32_t level : {stored::kNew}) {
            stored::Record record(open.locale("UTF-8", "ICU-de"), level);
            ASSERT_TRUE(seen("nlsDbCollationToLocale", 0, record.rebuild(open.handle)));
            EXPECT_EQ(fake::icu.last("ucol_open").text, "de");
            EXPECT_EQ(world::kind(record.locale), 5);
            EXPECT_EQ(compared(record.locale, "a", "b"), -1);
            void *block = nullptr;
            std::uint32_t size = 0;
            const int before = fake::icu.openCollators;
            EXPECT_TRUE(seen("nlsCloseDBLocale", 0, nlsCloseDBLocale(record.locale, &block, &size)));
            EXPECT_EQ(fake::icu.openCollators, before - 1);
            EXPECT_EQ(nlsCloseDBLocale(record.locale, &block, &size), NLS_E_NOTLOCALE);
            EXPECT_EQ(fake::icu.openCollators, before - 1);
        }
    });
}

TEST(StoredIcu, AnOldRecordOpensTheCollatorOfItsName) {
    withBoth([](world::Open &open) {
        stored::Record record(open.locale("P", "weights"), stored::kOld);
        record.setKind(5);
        record.setName("ICU-sv");
        ASSERT_TRUE(seen("nlsDbCollationToLocale", 0, record.rebuild(open.handle)));
        EXPECT_EQ(fake::icu.last("ucol_open").text, "sv");
        EXPECT_EQ(compared(record.locale, "a", "b"), -1);
    });
}

TEST(StoredIcu, NlsCloseClosesTheCollatorsOfRebuiltLocales) {
    withBoth([](world::Open &open) {
        nlsLocale *const locale = open.locale("UTF-8", "ICU-de");
        stored::Record first(locale, stored::kNew);
        stored::Record second(locale, stored::kNew);
        ASSERT_EQ(first.rebuild(open.handle), NLS_OK);
        ASSERT_EQ(second.rebuild(open.handle), NLS_OK);
        EXPECT_EQ(fake::icu.openCollators, 3);
        EXPECT_TRUE(seen("nlsClose", 0, nlsClose(open.handle)));
        EXPECT_EQ(fake::icu.openCollators, 0);
    });
}

TEST(StoredIcu, NlsCloseDoesNotLookAtBlocksThatMayBeGone) {
    withBoth([](world::Open &open) {
        {
            stored::Record record(open.locale("UTF-8", "ICU-de"), stored::kNew);
            ASSERT_EQ(record.rebuild(open.handle), NLS_OK);
            std::fill(record.block.begin(), record.block.end(), 0xDD);
        }
        EXPECT_EQ(nlsClose(open.handle), NLS_OK);
        EXPECT_EQ(fake::icu.openCollators, 0);
    });
}

TEST(StoredIcu, RebuildingAndClosingAgainAndAgainTakesLentMemoryOnce) {
    withBoth([](world::Open &open) {
        stored::Record record(open.locale("UTF-8", "ICU-de"), stored::kNew);
        std::uint32_t left = 0;
        for (int i = 0; i < 100; ++i) {
            ASSERT_EQ(record.rebuild(open.handle), NLS_OK);
            void *block = nullptr;
            std::uint32_t size = 0;
            ASSERT_EQ(nlsCloseDBLocale(record.locale, &block, &size), NLS_OK);
            if (i == 0)
                left = open.remaining();
            EXPECT_EQ(open.remaining(), left);
            EXPECT_EQ(fake::icu.openCollators, 1);
        }
        world::Open other;
        ASSERT_EQ(record.rebuild(other.handle), NLS_OK);
        EXPECT_EQ(nlsClose(open.handle), NLS_OK);
        EXPECT_EQ(fake::icu.openCollators, 1) << "each handle closes its own";
        EXPECT_EQ(nlsClose(other.handle), NLS_OK);
        EXPECT_EQ(fake::icu.openCollators, 0);
    });
}

TEST(StoredIcu, ACollatorThatDoesNotOpenGives1) {
    withBoth([](world::Open &open) {
        stored::Record record(open.locale("UTF-8", "ICU-de"), stored::kNew);
        fake::icu.openError["de"] = 2;
        EXPECT_TRUE(seen("nlsDbCollationToLocale", 1, record.rebuild(open.handle)));
        fake::icu.openError["de"] = -127;
        EXPECT_TRUE(seen("nlsDbCollationToLocale", 1, record.rebuild(open.handle)));
        EXPECT_EQ(fake::icu.openCollators, 1) << "the first locale's";
    });
}

TEST(StoredIcu, AKind5WithoutAnIcuNameGives1) {
    withBoth([](world::Open &open) {
        stored::Record record(open.locale("P", "weights"), stored::kNew);
        record.setKind(5);
        for (const char *const name : {"weights", "", "icu-de", "ICU"}) {
            record.setName(name);
            EXPECT_TRUE(seen("nlsDbCollationToLocale", 1, record.rebuild(open.handle))) << name;
        }
        EXPECT_EQ(fake::icu.count("ucol_open"), 0);
    });
}

TEST(StoredIcu, WhatIsOpenedForALocaleThatThenFailsIsClosed) {
    withBoth([](world::Open &open) {
        stored::Record record(open.locale("UTF-8", "ICU-de"), stored::kNew);
        const std::uint16_t sortData[32] = {9, 64};
        record.record.sortData = sortData;
        record.record.sortTarget = open.locale("P"); // there is no conversion from UTF-8 to it
        EXPECT_NE(record.rebuild(open.handle), NLS_OK);
        EXPECT_EQ(fake::icu.count("ucol_open"), 2);
        EXPECT_EQ(fake::icu.openCollators, 1);
    });
}

TEST(StoredIcu, ARecordThatClaimsAnOpenCollatorIsNotBelieved) {
    withBoth([](world::Open &open) {
        // Everything in it that is not a kind or a name is rubbish, also where the library keeps its own
        // marks.
        stored::Record record(open.locale("P", "weights"), stored::kNew);
        std::fill(record.data.begin(), record.data.begin() + 512, 0x11);
        std::fill(record.data.begin() + 572, record.data.begin() + 576, 0xFF);
        record.setKind(6);
        ASSERT_EQ(record.rebuild(open.handle), NLS_OK);
        EXPECT_EQ(compared(record.locale, "a", "b"), 0) << "equal weights";
        EXPECT_EQ(nlsClose(open.handle), NLS_OK);
        EXPECT_EQ(fake::icu.count("ucol_close"), 0);
    });
}

TEST(StoredExit, ARebuiltLocaleLoadsTheExitWithItsName) {
    withBoth([](world::Open &open) {
        const stored::Record made(open.locale("P", "Site"), stored::kNew);
        ASSERT_EQ(made.status, NLS_OK);
        EXPECT_EQ(made.record.collationKind, 2U);
        for (const std::int32_t level : {stored::kOld, stored::kNew}) {
            world::Open other;
            stored::Record record(open.locale("P", "Site"), level);
            const int inits = fake::sortExit.count("init");
            ASSERT_TRUE(seen("nlsDbCollationToLocale", 0, record.rebuild(other.handle)));
            EXPECT_EQ(fake::sortExit.count("init"), inits + 1);
            EXPECT_EQ(fake::sortExit.last().a, "Site");
            fake::sortExit.result = 5;
            EXPECT_EQ(compared(record.locale, "a", "b"), 5);
            EXPECT_EQ(fake::sortExit.last().sensitive['a'], world::sensitiveWeight('a'));
            stored::Record again(open.locale("P", "Site"), level);
            ASSERT_EQ(again.rebuild(other.handle), NLS_OK);
            EXPECT_EQ(fake::sortExit.count("init"), inits + 1) << "once for a handle";
        }
    });
}

TEST(StoredExit, TheHandleIsBusyWhileTheExitIsLoaded) {
    withBoth([](world::Open &open) {
        for (const std::int32_t level : {stored::kOld, stored::kNew}) {
            stored::Record record(open.locale("P", "Site"), level);
            std::vector<unsigned char> more(80000); // outlives the handle that it is lent to
            world::Open other;
            nlsStatus adding = 0;
            nlsStatus closing = 0;
            fake::sortExit.init = [&] {
                adding = nlsAddBuffer(other.handle, more.data(), static_cast<std::int32_t>(more.size()));
                closing = nlsClose(other.handle);
            };
            EXPECT_TRUE(seen("nlsDbCollationToLocale", 0, record.rebuild(other.handle)));
            EXPECT_EQ(adding, NLS_E_BUSY);
            EXPECT_EQ(closing, NLS_E_BUSY);
            fake::sortExit.init = nullptr;
            EXPECT_EQ(nlsAddBuffer(other.handle, more.data(), static_cast<std::int32_t>(more.size())), NLS_OK)
                << "not busy any more";
        }
    });
}

TEST(StoredExit, AnExitThatIsNotReadyGives10) {
    withBoth([](world::Open &open) {
        stored::Record record(open.locale("P", "Site"), stored::kNew);
        world::Open other;
        fake::sortExit.ready = 5;
        EXPECT_TRUE(seen("nlsDbCollationToLocale", 10, record.rebuild(other.handle)));
    });
}

} // namespace
