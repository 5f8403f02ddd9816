// The built data file, read by the tests' own reading of its format: twins of its locales, words in its
// pages.
#pragma once

#include "library_fixture.hpp"
#include "model/locale.hpp"

#include <memory>

namespace kit {

// One collation of the data file.
struct RealCollation {
    std::string page;
    std::string name;
    std::string caseTable; // empty: the page has none
    model::Locale twin;
};

class RealFile {
public:
    RealFile();
    ~RealFile();
    RealFile(const RealFile &) = delete;
    RealFile &operator=(const RealFile &) = delete;

    [[nodiscard]] const std::vector<RealCollation> &collations() const {
        return collations_;
    }
    // Null where it cannot be had without ICU.
    nlsLocale *locale(const RealCollation &collation);
    // UTF-8 words as the page writes them; those that it cannot write are left out.
    std::vector<model::Bytes> wordsOf(const std::string &page, const std::vector<model::Bytes> &words);

private:
    fixture::Bytes contents_;
    std::unique_ptr<fixture::FileServer> server_;
    std::vector<unsigned char> memory_;
    nlsHandle *handle_ = nullptr;
    std::vector<RealCollation> collations_;
};

// Words of many languages in UTF-8, from the texts in the source tree, and some that are there for their
// traps.
std::vector<model::Bytes> manyWords();

} // namespace kit
