// Runs the tests of matching and then accounts for the statuses of their calls.
#include "status_rows.hpp"

int main(int argc, char **argv) {
    testing::InitGoogleTest(&argc, argv);
    fixture::watchStatusRows({
        {"nlsSqlLike", {1, 0, -1, 13, 24, 16, 27, 25}},
        {"nlsSearchForw", {0, 13, 24, 16, 27, -4, 25}},
        {"nlsSearchBack", {0, 13, 24, 16, 27, -4, 20, 25}},
        {"nlsReplace", {0, 2, 13, 24, 16, 27, -4, 25}},
        {"nlsReplaceAll", {0, 2, 13, 24, 16, 27, -4, 25}},
        {"nlsFindCharForw", {0, 13, 24, 16, 27, 25}},
        {"nlsFindCharBack", {0, 13, 24, 16, 27, 25}},
        {"nlsFindLtrimPtrForw", {0, 13, 24, 16, 27, 25}},
        {"nlsFindRtrimPtrBack", {0, 13, 24, 16, 27, 25, -4}},
    });
    return RUN_ALL_TESTS();
}
