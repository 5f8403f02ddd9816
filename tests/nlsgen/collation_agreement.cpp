// collation_agreement names|words: prints how often the collations of the default data file order words as
// ICU does, in percent, as docs/collations.md has it. `names` are ICU's own words, `words` the installed word
// lists.
#include "language_words.hpp"
#include "order_agreement.hpp"
#include "real_files.hpp"

#include <unicode/uvernum.h>

#include <iostream>
#include <string_view>

namespace velnls::nlsgen::test {
namespace {

constexpr std::size_t kMostWords = 200'000;

int print(bool names) {
    const Bytes file = layOut(realPlan().entries);
    std::cout << "ICU " U_ICU_VERSION "\n";
    for (const AgreementRow &row : agreementRows()) {
        if (!names && std::string_view(row.wordList).empty())
            continue;
        const auto words = names ? wordsOfIcuNames(row.collator)
                                 : wordsOfFile(std::string("/usr/share/") + row.wordList, kMostWords);
        if (words.empty())
            std::cout << "| " << row.language << " | no words: /usr/share/" << row.wordList << " |\n";
        else
            std::cout << agreementLine(row, measureAgreement(file, row, words)) << '\n';
    }
    return 0;
}

} // namespace
} // namespace velnls::nlsgen::test

int main(int argc, char **argv) {
    const std::string_view what = argc == 2 ? argv[1] : "";
    if (what == "names" || what == "words")
        return velnls::nlsgen::test::print(what == "names");
    std::cerr << "usage: collation_agreement names|words\n";
    return 2;
}
