// Runs the unit tests and, at their end, prints which statuses of which exports they have seen.
#include "status_rows.hpp"

int main(int argc, char **argv) {
    testing::InitGoogleTest(&argc, argv);
    fixture::watchStatusRows({
        {"nlsInit", {0, 1, 4, 5, 6, 13, 16}},
        {"nlsAddBuffer", {0, 1, 13, 16, 23}},
        {"nlsClose", {0, 13, 23}},
        {"nlsGetIntNLSProperty", {0, 12, 13, 16}},
        {"nlsGetStrNLSProperty", {0, 2, 12, 13, 16}},
        {"nlsCreateLocale", {0, 1, 8, 9, 10, 11, 13, 16, 21, 22, 23, 25}},
        {"nlsCloseDBLocale", {0, 13, 16, 23, 24}},
        {"nlsGetIntLocaleProperty", {0, 12, 13, 16, 24}},
        {"nlsGetStrLocaleProperty", {0, 2, 12, 13, 16, 24}},
        {"nlsGetNextChar", {0, 13, 16, 20, 24, 27}},
        {"nlsGetPrevChar", {0, 13, 16, 20, 24, 27}},
        {"nlsGetCharProperty", {0, -1, -2, 13, 16, 24, 27}},
        {"nlsCharToLChar", {0, 13, 16, 20, 24, 27}},
        {"nlsLCharToChar", {0, 13, 16, 17, 24, 27}},
        {"nlsCreateConversion", {0, 1, 8, 13, 16, 21, 22, 23, 24}},
        {"nlsGetIntConversionProperty", {0, 12, 13, 16, 26}},
        {"nlsGetStrConversionProperty", {0, 2, 12, 13, 16, 26}},
        {"nlsConvertNLS", {0, -3, 2, 13, 16, 26, 33}},
        {"nlsConvertNLSCheck", {0, -2, -3, 2, 13, 16, 26, 33}},
        {"nlsConvertLChar", {0, -3, 2, 13, 16, 26, 33}},
        {"nlsConvertFromUCS2", {0, -3, 2, 13, 16, 26, 33}},
        {"nlsConvertToUCS2", {0, -3, 2, 13, 16, 26, 33}},
        {"nlsInitString", {0}},
        {"nlsSetString", {0}},
        {"nlsAppendString", {0, 2, 16}},
        {"nlsGetBufOfnlsStr", {0, 16}},
        {"nlsGetBufSizeOfnlsStr", {0, 16}},
        {"nlsGetStrLengthOfnlsStr", {0, 16}},
        {"nlsCopyString", {0, 2, 16}},
        {"nlsCopynlsStr", {0, 2}},
    });
    return RUN_ALL_TESTS();
}
