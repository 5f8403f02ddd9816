// One open handle of the library and the memory lent to it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "data_source.hpp"
#include "status.hpp"
#include "velnls.h"

namespace velnls::tool {

// The lists of names that the library hands out, by their property numbers.
enum class NameList : std::int32_t {
    CodePages = 2,
    Collations = 7,
    CaseTables = 8,
    Conversions = 9,
};

// The numeric properties of a locale that this program asks for.
enum class LocaleNumber : std::int32_t {
    LongestCharacter = 3,
    IsMultibyte = 11,
    IsUtf8 = 13,
    IsWideUnicode = 14,
    Is32BitUnicode = 26,
};

// Opens the data file and lends memory whenever a call asks for more. Locales and conversions belong to the
// handle, so they live as long as this object. Not for use by two threads at once. Failures are thrown as
// StatusError.
class Library {
public:
    explicit Library(const DataSource &data);
    ~Library();
    Library(const Library &) = delete;
    Library &operator=(const Library &) = delete;

    // A locale without collation and case table.
    nlsLocale *locale(const std::string &codePage);
    // A locale with a collation and, unless its name is empty, a case table.
    nlsLocale *locale(const std::string &codePage, const std::string &collation,
                      const std::string &caseTable);
    // The locale of a stored collation record.
    nlsLocale *rebuild(const nlsDbCollation &record, const std::string &name);
    // A locale without collation and case table for UTF-8, the page in the middle; null when the data file
    // does not have it.
    nlsLocale *utf8();
    // Null when the data file has no way from "source" to "target", or one of them is null.
    nlsConversion *conversion(nlsLocale *source, nlsLocale *target);

    // The names of the whole data file.
    std::vector<std::string> list(NameList list) const;
    // The collations, case tables or conversions of one code page.
    static std::vector<std::string> list(nlsLocale *locale, NameList list);
    static std::uint32_t number(nlsLocale *locale, LocaleNumber property);
    // Whether the conversion runs in two steps and needs an intermediate buffer.
    static bool isChain(nlsConversion *conversion);

    const DataSource &data() const {
        return data_;
    }

private:
    struct FreeDeleter {
        void operator()(void *memory) const;
    };
    using Block = std::unique_ptr<void, FreeDeleter>;

    static std::uint32_t readData(std::uint32_t file, std::uint32_t offset, unsigned char *buffer,
                                  std::uint32_t length);
    static Block newBlock(std::int32_t size);
    void lendMore();
    template <typename Call>
    nlsStatus withMemory(Call call);
    nlsStatus create(const std::string &codePage, const char *collation, const char *caseTable,
                     nlsLocale *&locale);

    const DataSource &data_;
    std::uint32_t token_ = 0;
    nlsHandle *handle_ = nullptr;
    std::vector<Block> blocks_;
    std::int32_t nextBlockSize_;
};

} // namespace velnls::tool
