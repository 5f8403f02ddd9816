// How often a collation of the data file orders two words as ICU does.
#pragma once

#include "data_file.hpp"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velnls::nlsgen::test {

// Parts of the pairs that compare alike, three ways: less, equal, greater.
struct Agreement {
    double anyTwo = 0;
    double neighbours = 0; // in the list as ICU sorts it
};

struct AgreementRow {
    const char *language;
    const char *page;
    const char *collation;
    const char *collator; // ICU's
    const char *wordList; // below /usr/share; empty: none
};

// What is compared: every language collation and "basic" of every script, each on one page.
const std::vector<AgreementRow> &agreementRows();

struct AgreementFigures {
    std::size_t words = 0; // those that the page can write
    Agreement sensitive;   // against tertiary strength; "noaccents": primary strength with the case level
    Agreement insensitive; // against secondary strength; "noaccents": primary strength
};

AgreementFigures measureAgreement(const Bytes &dataFile, const AgreementRow &row,
                                  const std::vector<std::u16string> &words);

// The figures as a line of the manual's table: "German | 2,345 | 98.60 / 99.90 | 81.50 / 95.90".
std::string agreementLine(const AgreementRow &row, const AgreementFigures &figures);

} // namespace velnls::nlsgen::test
