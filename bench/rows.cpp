#include "rows.hpp"

namespace bench {

const std::vector<Row> &rows() {
    static const std::vector<Row> all = {
        // page to UTF-8
        {"1252", "UTF-8", "de", 1.5, 3},
        {"1252", "UTF-8", "fr", 1.5, 3},
        {"1252", "UTF-8", "en", 1.5, 3},
        {"1251", "UTF-8", "ru", 2, 3},
        {"KOI8-R", "UTF-8", "ru", 2, 3},
        {"SHIFT-JIS", "UTF-8", "ja", 1.8, 2.5},
        {"CP949", "UTF-8", "ko", 1.8, 2.5},
        {"CP936", "UTF-8", "zh_CN", 1.8, 2.5},
        {"CP950", "UTF-8", "zh_TW", 1.8, 2.5},
        // UTF-8 to page
        {"UTF-8", "1252", "de", 1.3, 2.5},
        {"UTF-8", "1252", "fr", 1.3, 2.5},
        {"UTF-8", "1252", "en", 1.3, 2.5},
        {"UTF-8", "1251", "ru", 1.3, 1.2},
        {"UTF-8", "KOI8-R", "ru", 1.3, 1.2},
        {"UTF-8", "SHIFT-JIS", "ja", 1.4, 1.2},
        {"UTF-8", "CP949", "ko", 1.4, 1.2},
        {"UTF-8", "CP936", "zh_CN", 1.4, 1.2},
        {"UTF-8", "CP950", "zh_TW", 1.4, 1.2},
        // single byte to single byte
        {"KOI8-R", "1251", "ru", 3, 8},
        {"1251", "KOI8-R", "ru", 3, 8},
        {"1252", "IBM850", "de", 3, 8},
        {"IBM850", "1252", "de", 3, 8},
        // Japanese, by arithmetic
        {"SHIFT-JIS", "EUCJIS", "ja", 2, 2},
        {"EUCJIS", "SHIFT-JIS", "ja", 2, 2},
        // Unicode forms
        {"UTF-8", "UTF-16", "en", 1, 1},
        {"UTF-8", "UTF-16", "de", 1, 1},
        {"UTF-8", "UTF-16", "ru", 1, 1},
        {"UTF-8", "UTF-16", "ja", 1, 1},
        {"UTF-16", "UTF-8", "en", 1, 1},
        {"UTF-16", "UTF-8", "de", 1, 1},
        {"UTF-16", "UTF-8", "ru", 1, 1},
        {"UTF-16", "UTF-8", "ja", 1, 1},
        {"UTF-8", "UTF-32", "de", 1, 1},
        {"UTF-8", "UTF-32", "ru", 1, 1},
        {"UTF-8", "UTF-32", "ja", 1, 1},
        {"UTF-32", "UTF-8", "de", 1, 1},
        {"UTF-32", "UTF-8", "ru", 1, 1},
        {"UTF-32", "UTF-8", "ja", 1, 1},
        {"UTF-16", "UTF-32", "de", 1, 1},
        {"UTF-16", "UTF-32", "ja", 1, 1},
        {"UTF-32", "UTF-16", "de", 1, 1},
        {"UTF-32", "UTF-16", "ja", 1, 1},
    };
    return all;
}

} // namespace bench
