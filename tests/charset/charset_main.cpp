// Runs the tests of charset names and, at their end, prints which statuses of the two exports they have seen.
#include "status_rows.hpp"

int main(int argc, char **argv) {
    testing::InitGoogleTest(&argc, argv);
    fixture::watchStatusRows({
        {"nlsGetOSCharset", {0, 16, 28}},
        {"nlsGetVelCharset", {0, 7, 13, 16, 20, 24, 25, 27}},
    });
    return RUN_ALL_TESTS();
}
