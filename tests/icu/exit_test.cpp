// The user sort exit: where it is looked for, what makes it usable, what it is given, and that it is given
// back.
#include <gtest/gtest.h>

#include "fake.hpp"
#include "guarded_buffer.hpp"
#include "process.hpp"
#include "world.hpp"

#include <cstring>
#include <filesystem>
#include <fstream>

namespace {

using fixture::Bytes;
using fixture::bytesOf;
using process::Home;
using process::isolated;
using process::seen;

using Calls = std::vector<std::string>;

const Calls kLookUps = {"find UserSortInit", "find UserSortTerm", "find UserSortComp", "find UserSortCopy"};

Calls operator+(Calls a, const Calls &b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

// A case with an exit of a kind on PATH.
void withExit(const char *built, const std::function<void(const Home &)> &body) {
    const Home home;
    home.put(built, "usortwin");
    isolated([&] {
        process::setVariable("PATH", home.bin());
        body(home);
    });
}

// ---- Loading ----

TEST(Exit, ItIsLookedForInTheDirectoriesOfPath) {
    withExit("exit", [](const Home &home) {
        const Home empty;
        process::setVariable("PATH", process::pathOf({process::kNoSuchFolder, empty.bin(), home.bin()}));
        world::Open open;
        ASSERT_TRUE(seen("nlsCreateLocale", 0, open.tryLocale("P", "site")));
        EXPECT_EQ(process::loaderCalls(), Calls{"load " + home.library("usortwin")} + kLookUps);
    });
}

TEST(Exit, TheFirstFileOfThatNameDecides) {
    withExit("exit", [](const Home &home) {
        const Home broken;
        std::ofstream(broken.library("usortwin")) << "no library";
        process::setVariable("PATH", process::pathOf({broken.bin(), home.bin()}));
        world::Open open;
        EXPECT_TRUE(seen("nlsCreateLocale", 25, open.tryLocale("P", "site")));
        EXPECT_EQ(process::loaderCalls(), Calls{"load " + broken.library("usortwin")});
        const Home folder;
        std::filesystem::create_directory(folder.library("usortwin"));
        process::setVariable("PATH", process::pathOf({folder.bin(), home.bin()}));
        EXPECT_TRUE(seen("nlsCreateLocale", 0, open.tryLocale("P", "site"))) << "a folder is no file";
    });
}

TEST(Exit, TheCurrentDirectoryIsNotSearchedByAccident) {
    withExit("exit", [](const Home &home) {
        std::filesystem::current_path(home.bin());
        const std::string nowhere = process::kNoSuchFolder;
        for (const std::string &path :
             {std::string(), process::pathOf({"", ""}), process::pathOf({"", nowhere, ""}),
              process::pathOf({nowhere, "", ""})}) {
            process::setVariable("PATH", path);
            world::Open open;
            EXPECT_TRUE(seen("nlsCreateLocale", 25, open.tryLocale("P", "site"))) << path;
        }
        process::clearVariable("PATH");
        world::Open open;
        EXPECT_TRUE(seen("nlsCreateLocale", 25, open.tryLocale("P", "site")));
        EXPECT_EQ(process::loaderCalls(), Calls{});
        process::setVariable("PATH", ".");
        EXPECT_TRUE(seen("nlsCreateLocale", 0, open.tryLocale("P", "site"))) << "but where it is named";
    });
}

TEST(Exit, ADirectoryWithATooLongNameIsPassedOver) {
    withExit("exit", [](const Home &home) {
        process::setVariable("PATH",
                             process::pathOf({process::kSeparator + std::string(5000, 'x'), home.bin()}));
        world::Open open;
        EXPECT_TRUE(seen("nlsCreateLocale", 0, open.tryLocale("P", "site")));
    });
}

#if defined(_WIN32)
TEST(Exit, QuotesInPathAreDroppedAndASemicolonBetweenThemSeparatesNothing) {
    withExit("exit", [](const Home &home) {
        const std::string bin = home.path() + "\\b;i n";
        std::filesystem::rename(home.bin(), bin);
        const std::string library = bin + "\\usortwin.dll";
        const std::string nowhere = process::kNoSuchFolder;
        const std::string halfQuoted = home.path() + "\\\"b;i\" n";
        const std::string whole = "\"" + bin + "\"";
        for (const std::string &path :
             {whole, process::pathOf({nowhere, whole, nowhere}), process::pathOf({"\"\"", whole}),
              process::pathOf({halfQuoted, nowhere}), nowhere + ";\"" + bin}) {
            process::forgetLoaderCalls();
            process::setVariable("PATH", path);
            world::Open open;
            EXPECT_TRUE(seen("nlsCreateLocale", 0, open.tryLocale("P", "site"))) << path;
            EXPECT_EQ(process::loaderCalls(), Calls{"load " + library} + kLookUps) << path;
        }
        process::forgetLoaderCalls();
        for (const std::string &path : {bin, "\"" + nowhere + ";" + bin, "\"" + nowhere + ";" + whole}) {
            process::setVariable("PATH", path);
            world::Open open;
            EXPECT_TRUE(seen("nlsCreateLocale", 25, open.tryLocale("P", "site"))) << path;
        }
        EXPECT_EQ(process::loaderCalls(), Calls{});
    });
}
#else
TEST(Exit, AQuoteInPathIsACharacterOfADirectorysName) {
    withExit("exit", [](const Home &home) {
        const std::string quoted = home.path() + "/\"bin\"";
        process::setVariable("PATH", quoted);
        {
            world::Open open;
            EXPECT_TRUE(seen("nlsCreateLocale", 25, open.tryLocale("P", "site"))) << "no such directory";
        }
        process::setVariable("PATH", "\"" + quoted + ":" + home.bin() + ":" + quoted + "\"");
        {
            world::Open open;
            EXPECT_TRUE(seen("nlsCreateLocale", 0, open.tryLocale("P", "site"))) << "colons separate";
            EXPECT_EQ(process::loaderCalls(), Calls{"load " + home.library("usortwin")} + kLookUps);
        }
        std::filesystem::rename(home.bin(), quoted);
        process::forgetLoaderCalls();
        process::setVariable("PATH", quoted);
        world::Open open;
        EXPECT_TRUE(seen("nlsCreateLocale", 0, open.tryLocale("P", "site")));
        EXPECT_EQ(process::loaderCalls(), Calls{"load " + quoted + "/usortwin.so"} + kLookUps);
    });
}
#endif

TEST(Exit, WithoutInitAndTermItIsUsed) {
    withExit("exit_plain", [](const Home &) {
        world::Open open;
        nlsLocale *locale = nullptr;
        ASSERT_TRUE(seen("nlsCreateLocale", 0, open.tryLocale("P", "site", nullptr, &locale)));
        fake::sortExit.result = -3;
        std::int16_t result = 0;
        EXPECT_TRUE(seen("nlsCompare", 0, nlsCompare(locale, "a", "b", 1, &result)));
        EXPECT_EQ(result, -3);
        EXPECT_EQ(fake::sortExit.last().user, 0U);
        EXPECT_TRUE(seen("nlsClose", 0, nlsClose(open.handle)));
        EXPECT_EQ(fake::sortExit.count("term"), 0);
    });
}

TEST(Exit, WithoutCompOrCopyItIsRefusedAndUnloaded) {
    for (const char *const built : {"exit_without_comp", "exit_without_copy"})
        withExit(built, [](const Home &home) {
            world::Open open;
            EXPECT_TRUE(seen("nlsCreateLocale", 25, open.tryLocale("P", "site")));
            const std::string path = home.library("usortwin");
            EXPECT_EQ(process::loaderCalls(), Calls{"load " + path} + kLookUps + Calls{"unload " + path});
            EXPECT_TRUE(fake::sortExit.calls.empty()) << "not even made ready";
            EXPECT_EQ(nlsClose(open.handle), NLS_OK);
            EXPECT_TRUE(fake::sortExit.calls.empty());
        });
}

TEST(Exit, AnInitThatDoesNotGive0RefusesTheExit) {
    withExit("exit", [](const Home &home) {
        world::Open open;
        for (const std::int32_t answer : {5, -1, 1}) {
            fake::sortExit.ready = answer;
            EXPECT_TRUE(seen("nlsCreateLocale", 25, open.tryLocale("P", "site")));
            EXPECT_EQ(process::loaderCalls().back(), "unload " + home.library("usortwin"));
        }
        EXPECT_EQ(fake::sortExit.count("term"), 0);
        fake::sortExit.ready = 0;
        EXPECT_TRUE(seen("nlsCreateLocale", 0, open.tryLocale("P", "site"))) << "a later request tries again";
    });
}

TEST(Exit, InitGetsTheNameOfTheCollationAsTheDataFileSpellsIt) {
    withExit("exit", [](const Home &) {
        world::Open open;
        open.locale("P", "sITE  ");
        ASSERT_EQ(fake::sortExit.count("init"), 1);
        EXPECT_EQ(fake::sortExit.last().a, "Site");
    });
}

TEST(Exit, AHandleLoadsItOnce) {
    withExit("exit", [](const Home &) {
        world::Open open;
        open.locale("P", "site");
        process::forgetLoaderCalls();
        open.locale("P", "other");
        EXPECT_EQ(process::loaderCalls(), Calls{});
        EXPECT_EQ(fake::sortExit.count("init"), 1);
    });
}

TEST(Exit, ABorrowedCollationUsesItAndAFailureIs10) {
    withExit("exit", [](const Home &) {
        world::Open open;
        fake::sortExit.ready = 5;
        EXPECT_TRUE(seen("nlsCreateLocale", 10, open.tryLocale("BORROWER", "lent")));
        fake::sortExit.ready = 0;
        nlsLocale *const locale = open.locale("BORROWER", "lent");
        fake::sortExit.result = 1;
        std::int16_t result = 0;
        EXPECT_EQ(nlsCompare(locale, "a", "b", 1, &result), NLS_OK);
        EXPECT_EQ(result, 1);
        EXPECT_EQ(fake::sortExit.last().insensitive['a'], world::insensitiveWeight('a'));
    });
}

TEST(Exit, WithoutRoomToKeepItItIsGivenBack) {
    withExit("exit", [](const Home &home) {
        bool loaded = false;
        for (std::uint32_t left = 136; left < 1000 && !loaded; ++left) {
            world::Open open;
            open.locale("P");
            fake::sortExit.calls.clear();
            std::memcpy(reinterpret_cast<unsigned char *>(open.handle) + 72, &left,
                        sizeof left); // what is left
            const nlsStatus status = open.tryLocale("P", "site");
            if (status == NLS_OK) {
                loaded = true;
                break;
            }
            EXPECT_TRUE(seen("nlsCreateLocale", 1, status)) << left;
            EXPECT_EQ(nlsClose(open.handle), NLS_OK);
            EXPECT_EQ(fake::sortExit.count("init"), fake::sortExit.count("term")) << left;
            EXPECT_EQ(process::loaderCalls().empty() ||
                          process::loaderCalls().back() == "unload " + home.library("usortwin"),
                      true);
        }
        EXPECT_TRUE(loaded);
    });
}

// ---- Use ----

TEST(Exit, CompareGetsTheTextsTheTablesTheModeAndItsUserValue) {
    withExit("exit", [](const Home &) {
        world::Open open;
        nlsLocale *const locale = open.locale("P", "site");
        const std::uintptr_t user = fake::sortExit.last().user;
        for (const std::int16_t mode : std::vector<std::int16_t>{0, 1, 7, 0x2001, 0x7FFF, -1}) {
            std::int16_t result = 0;
            EXPECT_TRUE(seen("nlsCompare", 0, nlsCompare(locale, "one  ", "two", mode, &result)));
            const fake::ExitCall &call = fake::sortExit.last();
            EXPECT_EQ(call.a, "one  ") << "blanks are the exit's business";
            EXPECT_EQ(call.b, "two");
            EXPECT_EQ(call.mode, static_cast<std::uint16_t>(mode)) << "as it is, in 16 bits";
            EXPECT_EQ(call.user, user);
            for (unsigned byte = 0; byte < 256; ++byte) {
                ASSERT_EQ(call.sensitive[byte], world::sensitiveWeight(byte));
                ASSERT_EQ(call.insensitive[byte], world::insensitiveWeight(byte));
            }
        }
    });
}

TEST(Exit, ResultsAreCutTo16BitsAndStoredAsTheyAre) {
    withExit("exit", [](const Home &) {
        world::Open open;
        nlsLocale *const locale = open.locale("P", "site");
        for (const auto &[answer, stored] :
             std::vector<std::pair<std::int32_t, std::int16_t>>{{0, 0},
                                                                {1, 1},
                                                                {-1, -1},
                                                                {1234, 1234},
                                                                {-1234, -1234},
                                                                {0x10000, 0},
                                                                {0x18000, -32768},
                                                                {0x7FFF0001, 1},
                                                                {0xFFFF, -1}}) {
            fake::sortExit.result = answer;
            std::int16_t result = 55;
            EXPECT_EQ(nlsCompare(locale, "a", "b", 1, &result), NLS_OK);
            EXPECT_EQ(result, stored) << answer;
        }
    });
}

TEST(Exit, ABoundInsideATextIsATemporaryNul) {
    withExit("exit", [](const Home &) {
        world::Open open;
        nlsLocale *const locale = open.locale("P", "site");
        char a[] = "abcdef";
        char b[] = "uvwxyz";
        std::int16_t result = 0;
        EXPECT_EQ(nlsCompareN(locale, a, b, 2, 4, 1, &result), NLS_OK);
        EXPECT_EQ(fake::sortExit.last().a, "ab");
        EXPECT_EQ(fake::sortExit.last().b, "uvwx");
        EXPECT_STREQ(a, "abcdef");
        EXPECT_STREQ(b, "uvwxyz");
        EXPECT_EQ(nlsCompareN(locale, a, b, 0, 0xFFFFFFFF, 1, &result), NLS_OK);
        EXPECT_EQ(fake::sortExit.last().a, "");
        EXPECT_EQ(fake::sortExit.last().b, "uvwxyz");
        EXPECT_STREQ(a, "abcdef");
    });
}

TEST(Exit, ABoundOnOrBehindTheTextsNulCutsNothing) {
    withExit("exit", [](const Home &) {
        world::Open open;
        nlsLocale *const locale = open.locale("P", "site");
        fixture::GuardedBuffer first(16);
        fixture::GuardedBuffer second(16);
        const auto *const a = reinterpret_cast<const char *>(first.readOnly(bytesOf({"abc", 4})));
        const auto *const b = reinterpret_cast<const char *>(second.readOnly(bytesOf({"xy", 3})));
        std::int16_t result = 0;
        for (const std::int32_t length : {3, 4, 100, -1}) {
            EXPECT_EQ(nlsCompareN(locale, a, b, length, static_cast<std::uint32_t>(length), 1, &result),
                      NLS_OK)
                << "read-only texts, which a write would end";
            EXPECT_EQ(fake::sortExit.last().a, "abc");
            EXPECT_EQ(fake::sortExit.last().b, "xy");
        }
    });
}

TEST(Exit, BoundsInOneTextAreRestoredInReverseOrder) {
    withExit("exit", [](const Home &) {
        world::Open open;
        nlsLocale *const locale = open.locale("P", "site");
        char text[] = "abcdef";
        std::int16_t result = 0;
        for (std::int32_t a = 0; a <= 7; ++a)
            for (std::uint32_t b = 0; b <= 7; ++b) {
                EXPECT_EQ(nlsCompareN(locale, text, text, a, b, 1, &result), NLS_OK);
                ASSERT_STREQ(text, "abcdef") << a << " " << b;
            }
    });
}

TEST(Exit, CopyGetsTheTextTheSizeTheTablesAndTheModeWithoutTwoBits) {
    withExit("exit", [](const Home &) {
        world::Open open;
        nlsLocale *const locale = open.locale("P", "site");
        const std::uintptr_t user = fake::sortExit.last().user;
        char text[] = "abc  ";
        unsigned char out[300];
        std::uint16_t length = 0;
        EXPECT_TRUE(seen("nlsSortKey", 0, nlsSortKey(locale, text, 300, 0x6001, 0, out, &length)));
        const fake::ExitCall &call = fake::sortExit.last();
        EXPECT_EQ(call.name, "copy");
        EXPECT_EQ(call.a, "abc  ");
        EXPECT_EQ(call.size, 300U);
        EXPECT_EQ(call.mode, 1U);
        EXPECT_EQ(call.user, user);
        EXPECT_EQ(call.sensitive['b'], world::sensitiveWeight('b'));
        EXPECT_EQ(call.insensitive['b'], world::insensitiveWeight('b'));
        EXPECT_EQ(length, 5);
        EXPECT_STREQ(reinterpret_cast<const char *>(out), "abc  ");
        EXPECT_EQ(nlsSortKey(locale, text, 300, 0xFFFF, 0, out, &length), NLS_OK);
        EXPECT_EQ(fake::sortExit.last().mode, 0x9FFFU);
    });
}

TEST(Exit, TrimmingCutsTheSourceForTheTimeOfTheCall) {
    withExit("exit", [](const Home &) {
        world::Open open;
        nlsLocale *const locale = open.locale("P", "site");
        unsigned char out[40];
        std::uint16_t length = 0;
        for (const auto &[whole, trimmed] : std::vector<std::pair<std::string, std::string>>{
                 {"abc  ", "abc"}, {"abc", "abc"}, {"   ", ""}, {"", ""}, {" a b ", " a b"}}) {
            std::string text = whole;
            EXPECT_EQ(nlsSortKey(locale, text.data(), 40, 1, 1, out, &length), NLS_OK);
            EXPECT_EQ(fake::sortExit.last().a, trimmed);
            EXPECT_EQ(text, whole);
            EXPECT_EQ(length, trimmed.size());
        }
    });
}

TEST(Exit, AKeyThatTheExitDidNotEndGives2) {
    withExit("exit", [](const Home &) {
        world::Open open;
        nlsLocale *const locale = open.locale("P", "site");
        fake::sortExit.copy = [](unsigned char *key, const char *, std::uint32_t size) {
            std::memset(key, 'k', size);
        };
        fixture::GuardedBuffer guarded(16);
        char text[] = "abc";
        std::uint16_t length = 0;
        EXPECT_TRUE(seen("nlsSortKey", 2, nlsSortKey(locale, text, 9, 1, 0, guarded.tail(9), &length)));
        EXPECT_EQ(length, 9);
    });
}

TEST(Exit, MatchingCallsAskIt) {
    withExit("exit", [](const Home &) {
        world::Open open;
        nlsLocale *const locale = open.locale("P", "site");
        fake::sortExit.result = 0; // everything is equal
        char text[] = "xyz";
        char pattern[] = "a%";
        EXPECT_EQ(nlsSqlLike(locale, pattern, text, 1, '\\', '_', '%'), 1U);
        EXPECT_GT(fake::sortExit.count("compare"), 0);
        EXPECT_STREQ(text, "xyz");
        EXPECT_STREQ(pattern, "a%");
    });
}

// ---- Giving it back ----

TEST(Exit, NlsCloseEndsAndUnloadsIt) {
    withExit("exit", [](const Home &home) {
        world::Open open;
        open.locale("P", "site");
        const std::uintptr_t user = fake::sortExit.last().user;
        EXPECT_TRUE(seen("nlsClose", 0, nlsClose(open.handle)));
        EXPECT_EQ(fake::sortExit.last().name, "term");
        EXPECT_EQ(fake::sortExit.last().user, user);
        EXPECT_EQ(process::loaderCalls().back(), "unload " + home.library("usortwin"));
        EXPECT_EQ(nlsClose(open.handle), NLS_E_HANDLE);
        EXPECT_EQ(fake::sortExit.count("term"), 1);
    });
}

TEST(Exit, AHandleThatNeverLoadedItCallsNothing) {
    withExit("exit", [](const Home &) {
        world::Open open;
        open.locale("P", "weights");
        EXPECT_TRUE(seen("nlsClose", 0, nlsClose(open.handle)));
        EXPECT_TRUE(fake::sortExit.calls.empty());
        EXPECT_EQ(process::loaderCalls(), Calls{});
    });
}

TEST(Exit, TheRecordIsTheProcesssAndEachLoadHasItsOwnUnload) {
    for (const bool firstClosesFirst : {true, false})
        withExit("exit", [&](const Home &) {
            world::Open first;
            world::Open second;
            nlsLocale *const one = first.locale("P", "site");
            const std::uintptr_t userOne = fake::sortExit.last().user;
            nlsLocale *const two = second.locale("P", "site");
            const std::uintptr_t userTwo = fake::sortExit.last().user;
            EXPECT_NE(userOne, userTwo);
            std::int16_t result = 0;
            EXPECT_EQ(nlsCompare(one, "a", "b", 1, &result), NLS_OK);
            EXPECT_EQ(fake::sortExit.last().user, userTwo) << "the second load overwrote the record";
            EXPECT_EQ(nlsClose(firstClosesFirst ? first.handle : second.handle), NLS_OK);
            EXPECT_EQ(fake::sortExit.last().name, "term");
            EXPECT_EQ(fake::sortExit.last().user, firstClosesFirst ? userOne : userTwo);
            fake::sortExit.result = 8;
            EXPECT_EQ(nlsCompare(firstClosesFirst ? two : one, "a", "b", 1, &result), NLS_OK);
            EXPECT_EQ(result, 8) << "the other handle's exit goes on";
            EXPECT_EQ(fake::sortExit.last().user, firstClosesFirst ? userTwo : userOne);
            EXPECT_EQ(nlsClose(firstClosesFirst ? second.handle : first.handle), NLS_OK);
            EXPECT_EQ(fake::sortExit.count("term"), 2);
            EXPECT_EQ(fake::sortExit.last().user, firstClosesFirst ? userTwo : userOne);
        });
}

TEST(Exit, HandlesWithExitsFromDifferentPlaces) {
    withExit("exit", [](const Home &home) {
        const Home other;
        other.put("exit_plain", "usortwin");
        world::Open first;
        nlsLocale *const one = first.locale("P", "site");
        process::setVariable("PATH", other.bin());
        world::Open second;
        second.locale("P", "site");
        EXPECT_EQ(nlsClose(second.handle), NLS_OK);
        EXPECT_EQ(process::loaderCalls().back(), "unload " + other.library("usortwin"));
        fake::sortExit.result = 3;
        std::int16_t result = 0;
        EXPECT_EQ(nlsCompare(one, "a", "b", 1, &result), NLS_OK) << "what is unloaded is not called";
        EXPECT_EQ(result, 3);
        EXPECT_EQ(nlsClose(first.handle), NLS_OK);
        EXPECT_EQ(process::loaderCalls().back(), "unload " + home.library("usortwin"));
    });
}

} // namespace
