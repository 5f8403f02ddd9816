// How ICU is found: which libraries are loaded from where, which functions are looked up in which order, and
// what is kept when something is missing.
#include <gtest/gtest.h>

#include "fake.hpp"
#include "process.hpp"
#include "world.hpp"

#include <thread>

namespace {

using process::Home;
using process::isolated;
using process::seen;

const char *const kConverterNames[] = {
    "ucnv_open",     "ucnv_close", "ucnv_fromUnicode",      "ucnv_toUnicode",      "ucnv_fromUChars",
    "ucnv_toUChars", "ucnv_reset", "ucnv_resetFromUnicode", "ucnv_resetToUnicode", "ucnv_flushCache"};
const char *const kCollatorNames[] = {"ucol_open",         "ucol_getRules", "ucol_getSortKey",
                                      "ucol_setStrength",  "ucol_strcoll",  "ucol_countAvailable",
                                      "ucol_getAvailable", "ucol_close",    "ucol_getVersion"};

using Calls = std::vector<std::string>;

Calls found(const Calls &calls, const char *const (&names)[10]) {
    Calls all = calls;
    for (const char *const name : names)
        all.push_back(std::string("find ") + name + VELNLS_ICU_SUFFIX);
    return all;
}

Calls found(const Calls &calls, const char *const (&names)[9]) {
    Calls all = calls;
    for (const char *const name : names)
        all.push_back(std::string("find ") + name + VELNLS_ICU_SUFFIX);
    return all;
}

// The calls of a bind that finds everything, of files below a folder ("" for bare names).
Calls conversionCalls(const std::string &folder) {
    return found({"load " + folder + "icudata-qmx" VELNLS_LIBRARY_ENDING,
                  "load " + folder + "icuuc-qmx" VELNLS_LIBRARY_ENDING},
                 kConverterNames);
}
Calls languageCalls(const std::string &folder) {
    return found({"load " + folder + "icui18n-qmx" VELNLS_LIBRARY_ENDING}, kCollatorNames);
}
Calls operator+(Calls a, const Calls &b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

TEST(Binding, LibrariesComeFromBinBelowBinpathx) {
    const Home home;
    home.putIcu();
    isolated([&] {
        process::setVariable("BINPATHX", home.path());
        world::Open open;
        ASSERT_TRUE(seen("nlsCreateConversion", 0, open.tryConversion("X", "UTF-8")));
        EXPECT_EQ(process::loaderCalls(), conversionCalls(home.bin() + process::kSeparator));
    });
}

TEST(Binding, TheFirstLibraryAskedForIsTheDataLibrary) {
    isolated([] {
        process::setVariable("BINPATHX", process::kNoSuchFolder);
        world::Open open;
        ASSERT_TRUE(seen("nlsCreateConversion", 8, open.tryConversion("X", "UTF-8")));
        EXPECT_EQ(process::loaderCalls(),
                  Calls{std::string("load ") + process::kNoSuchFolder + process::kSeparator + "bin" +
                        process::kSeparator + "icudata-qmx" VELNLS_LIBRARY_ENDING});
    });
}

TEST(Binding, WithoutBinpathxTheNamesAreBare) {
    isolated([] {
        process::clearVariable("BINPATHX");
        world::Open open;
        ASSERT_TRUE(seen("nlsCreateConversion", 8, open.tryConversion("X", "UTF-8")));
        EXPECT_EQ(process::loaderCalls(), Calls{"load icudata-qmx" VELNLS_LIBRARY_ENDING});
    });
}

TEST(Binding, AnEmptyBinpathxCountsAsNotSet) {
    isolated([] {
        process::setVariable("BINPATHX", "");
        world::Open open;
        ASSERT_TRUE(seen("nlsCreateConversion", 8, open.tryConversion("X", "UTF-8")));
        EXPECT_EQ(process::loaderCalls(), Calls{"load icudata-qmx" VELNLS_LIBRARY_ENDING});
    });
}

TEST(Binding, APathTooLongForAnySystemIsNotTried) {
    isolated([] {
        process::setVariable("BINPATHX", "/" + std::string(5000, 'x'));
        world::Open open;
        ASSERT_TRUE(seen("nlsCreateConversion", 8, open.tryConversion("X", "UTF-8")));
        EXPECT_EQ(process::loaderCalls(), Calls{});
    });
}

TEST(Binding, AConversionBindsTheFirstLevelAndACollationTheRest) {
    const Home home;
    home.putIcu();
    isolated([&] {
        process::setVariable("BINPATHX", home.path());
        world::Open open;
        ASSERT_EQ(open.tryConversion("X", "UTF-8"), NLS_OK);
        process::forgetLoaderCalls();
        ASSERT_TRUE(seen("nlsCreateLocale", 0, open.tryLocale("UTF-8", "ICU-de")));
        EXPECT_EQ(process::loaderCalls(), languageCalls(home.bin() + process::kSeparator));
        process::forgetLoaderCalls();
        ASSERT_EQ(open.tryLocale("UTF-8", "ICU-fr"), NLS_OK);
        ASSERT_EQ(open.tryConversion("UTF-8", "X"), NLS_OK);
        EXPECT_EQ(process::loaderCalls(), Calls{}) << "everything is bound";
    });
}

TEST(Binding, ACollationFirstBindsAllInOneGo) {
    const Home home;
    home.putIcu();
    isolated([&] {
        process::setVariable("BINPATHX", home.path());
        world::Open open;
        ASSERT_EQ(open.tryLocale("UTF-8", "ICU-de"), NLS_OK);
        EXPECT_EQ(process::loaderCalls(), conversionCalls(home.bin() + process::kSeparator) +
                                              languageCalls(home.bin() + process::kSeparator));
        process::forgetLoaderCalls();
        ASSERT_EQ(open.tryConversion("X", "UTF-8"), NLS_OK);
        EXPECT_EQ(process::loaderCalls(), Calls{});
    });
}

TEST(Binding, NothingIsUnloaded) {
    const Home home;
    home.putIcu();
    isolated([&] {
        process::setVariable("BINPATHX", home.path());
        {
            world::Open open;
            ASSERT_EQ(open.tryLocale("UTF-8", "ICU-de"), NLS_OK);
        }
        process::forgetLoaderCalls();
        world::Open again;
        ASSERT_EQ(again.tryLocale("UTF-8", "ICU-de"), NLS_OK);
        EXPECT_EQ(process::loaderCalls(), Calls{}) << "bound for the process, not for the handle";
    });
}

TEST(Binding, EachLibraryThatIsMissingFails) {
    const std::vector<std::pair<const char *, const char *>> libraries = {
        {"data", "icudata-qmx"}, {"common", "icuuc-qmx"}, {"languages", "icui18n-qmx"}};
    for (std::size_t missing = 0; missing < libraries.size(); ++missing) {
        const Home home;
        for (std::size_t i = 0; i < libraries.size(); ++i)
            if (i != missing)
                home.put(libraries[i].first, libraries[i].second);
        isolated([&] {
            process::setVariable("BINPATHX", home.path());
            world::Open open;
            EXPECT_TRUE(seen("nlsCreateLocale", 1, open.tryLocale("UTF-8", "ICU-de")));
            EXPECT_EQ(process::loaderCalls().back(), "load " + home.library(libraries[missing].second));
            const nlsStatus expected = missing == 2 ? NLS_OK : NLS_E_ICU;
            EXPECT_EQ(open.tryConversion("X", "UTF-8"), expected) << "conversions need the first two";
            EXPECT_EQ(fake::icu.count("ucol_open"), 0);
        });
    }
}

TEST(Binding, EachFunctionThatIsMissingFailsTheBind) {
    const Home home;
    home.putIcu();
    const auto tryWithout = [&](const std::string &name, bool forConversion) {
        isolated([&] {
            process::setVariable("BINPATHX", home.path());
            process::hideSymbol(name + VELNLS_ICU_SUFFIX);
            world::Open open;
            if (forConversion) {
                EXPECT_TRUE(seen("nlsCreateConversion", 8, open.tryConversion("X", "UTF-8"))) << name;
                EXPECT_EQ(process::loaderCalls().back(), "find " + name + VELNLS_ICU_SUFFIX);
            }
            EXPECT_TRUE(seen("nlsCreateLocale", 1, open.tryLocale("UTF-8", "ICU-de"))) << name;
            EXPECT_EQ(process::loaderCalls().back(), "find " + name + VELNLS_ICU_SUFFIX);
            if (!forConversion) {
                EXPECT_EQ(open.tryConversion("X", "UTF-8"), NLS_OK)
                    << "of the first level nothing is missing";
            }
        });
    };
    for (const char *const name : kConverterNames)
        tryWithout(name, true);
    for (const char *const name : kCollatorNames)
        tryWithout(name, false);
}

TEST(Binding, ABindThatFailsLeavesTheLevelAsItWas) {
    const Home home;
    home.put("data", "icudata-qmx");
    home.put("common", "icuuc-qmx");
    isolated([&] {
        process::setVariable("BINPATHX", home.path());
        world::Open open;
        ASSERT_EQ(open.tryLocale("UTF-8", "ICU-de"), NLS_E_NOMEM);
        process::forgetLoaderCalls();
        ASSERT_EQ(open.tryConversion("X", "UTF-8"), NLS_OK);
        EXPECT_EQ(process::loaderCalls(), conversionCalls(home.bin() + process::kSeparator))
            << "from level 0 again";
        process::forgetLoaderCalls();
        ASSERT_EQ(open.tryLocale("UTF-8", "ICU-de"), NLS_E_NOMEM);
        EXPECT_EQ(process::loaderCalls(), Calls{"load " + home.library("icui18n-qmx")}) << "level 1 stays";
        home.put("languages", "icui18n-qmx");
        EXPECT_EQ(open.tryLocale("UTF-8", "ICU-de"), NLS_OK) << "the next request tries again";
    });
}

TEST(Binding, AnotherReleaseFailsAtTheFirstFunction) {
    const Home home;
    home.put("data", "icudata-qmx");
    home.put("common_3_0", "icuuc-qmx");
    home.put("languages_3_0", "icui18n-qmx");
    isolated([&] {
        process::setVariable("BINPATHX", home.path());
        world::Open open;
        EXPECT_TRUE(seen("nlsCreateConversion", 8, open.tryConversion("X", "UTF-8")));
        EXPECT_EQ(process::loaderCalls(),
                  (Calls{"load " + home.library("icudata-qmx"), "load " + home.library("icuuc-qmx"),
                         std::string("find ucnv_open") + VELNLS_ICU_SUFFIX}));
        EXPECT_TRUE(seen("nlsCreateLocale", 1, open.tryLocale("UTF-8", "ICU-de")));
    });
}

TEST(Binding, ThreadsWithAHandleEachBindOnce) {
    const Home home;
    home.putIcu();
    isolated([&] {
        process::setVariable("BINPATHX", home.path());
        std::vector<std::thread> threads;
        std::vector<nlsStatus> statuses(6, NLS_E_BUSY);
        std::vector<std::unique_ptr<world::Open>> handles;
        for (std::size_t i = 0; i < statuses.size(); ++i)
            handles.push_back(std::make_unique<world::Open>());
        // The bind alone is what they share here: the fakes keep their log without a lock.
        fake::icu.nullCollator = true;
        fake::icu.openError["xx"] = 1;
        for (std::size_t i = 0; i < statuses.size(); ++i)
            threads.emplace_back([&, i] { statuses[i] = handles[i]->tryLocale("UTF-8", "ICU-de"); });
        for (std::thread &thread : threads)
            thread.join();
        EXPECT_EQ(process::loaderCalls(), conversionCalls(home.bin() + process::kSeparator) +
                                              languageCalls(home.bin() + process::kSeparator));
        EXPECT_EQ(statuses, std::vector<nlsStatus>(6, NLS_E_NOMEM));
    });
}

} // namespace
