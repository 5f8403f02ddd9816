// Runs the tests of ICU and the sort exit and, at their end, prints which statuses of which exports they have
// seen: those that only these two give.
#include <gtest/gtest.h>

#include "process.hpp"
#include "status_rows.hpp"

int main(int argc, char **argv) {
    testing::InitGoogleTest(&argc, argv);
    // Those that look at the loader's calls, which builds with sanitizers do not see.
    if (VELNLS_SANITIZED && testing::GTEST_FLAG(filter) == "*")
        testing::GTEST_FLAG(filter) =
            "-Binding.*:Exit.ItIs*:Exit.TheFirst*:Exit.TheCurrent*:Exit.WithoutCompOrCopy*:Exit.AnInit*:"
            "Exit.AHandle*:Exit.AQuote*:Exit.WithoutRoom*:Exit.NlsClose*:Exit.HandlesWith*:"
            "ForwardLoad.Velnls*";
    if (process::isChild())
        return RUN_ALL_TESTS();
    fixture::watchStatusRows({
        {"nlsClose", {0}},
        {"nlsCreateLocale", {0, 1, 10, 25}},
        {"nlsCreateConversion", {0, 1, 8}},
        {"nlsCloseDBLocale", {0}},
        {"nlsDbCollationToLocale", {0, 1, 10}},
        {"nlsGetIntConversionProperty", {0, 16}},
        {"nlsConvertNLS", {0, 2, 8, 16}},
        {"nlsConvertNLSCheck", {0, -2, 2, 8, 16}},
        {"nlsConvertLChar", {0, 16}},
        {"nlsConvertFromUCS2", {0, 2, 8, 16}},
        {"nlsConvertToUCS2", {0, 2, 8, 16}},
        {"nlsCompare", {0, 2, 16, 22}},
        {"nlsCompareN", {0, 2, 16, 22}},
        {"nlsSortKey", {0, 2}},
    });
    return RUN_ALL_TESTS();
}
