// Runs the tests of text and, at their end, prints which statuses of which exports they have seen. With
// --write-records and a folder: writes the records that are kept beside the tests instead.
#include "kept_records.hpp"
#include "status_rows.hpp"

#include <string_view>

int main(int argc, char **argv) {
    testing::InitGoogleTest(&argc, argv);
    if (argc == 3 && std::string_view(argv[1]) == "--write-records") {
        writeKeptRecords(argv[2]);
        return 0;
    }
    fixture::watchStatusRows({
        {"nlsSortKey", {0, 2, 7, 8, 13, 16, 24, 25, 27}},
        {"nlsCompare", {0, 7, 8, 13, 16, 24, 25, 27}},
        {"nlsCompareN", {0, 7, 8, 13, 16, 24, 25, 27}},
        {"nlsIsSortNeeded", {0, 6, 13, 16, 24, 32}},
        {"nlsGetNextWord", {0, 2, 13, 16, 20, 24, 29, 32}},
        {"nlsUpperCase", {0, 2, 13, 16, 24, 27}},
        {"nlsLowerCase", {0, 2, 13, 16, 24, 27}},
        {"nlsCountBytes", {0, -4, 13, 16, 24, 27}},
        {"nlsCountChars", {0, -4, 13, 16, 24, 27}},
        {"nlsCountColumns", {0, 13, 16, 24, 27}},
        {"nlsSubstr", {0, 2, 13, 16, 24, 27}},
        {"nlsExtract", {0, -4, 2, 13, 16, 24, 27}},
        {"nlsValidateString", {0, -4, 13, 16, 20, 24, 27, 33}},
        {"nlsLocaleToDbCollation", {0, 2, 13, 16, 24, 25, 27}},
        {"nlsDbCollationToLocale", {0, 1, 2, 8, 9, 10, 11, 13, 16, 21, 22, 23, 25}},
        {"nlsCloseDBLocale", {0, 13, 16, 23, 24}},
    });
    return RUN_ALL_TESTS();
}
