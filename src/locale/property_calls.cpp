// nlsGetIntLocaleProperty, nlsGetStrLocaleProperty: what a locale is, and what its data file offers for it.
#include "core/collation_names.hpp"
#include "core/data_file.hpp"
#include "core/file_layout.hpp"
#include "core/list_text.hpp"
#include "core/text.hpp"
#include "core/unaligned.hpp"
#include "locale/checks.hpp"

#include <cstring>

using namespace velnls;

namespace {

enum IntProperty : std::int32_t {
    kMaxBytes = 3,
    kCollationsLength = 4,
    kCaseTablesLength = 5,
    kConversionsLength = 6,
    kIsMultibyte = 11,
    kIsThroughShiftJis = 12,
    kIsUtf8 = 13,
    kIsWide = 14,
    kTableSize = 22,
    kIsPlainMultibyte = 25,
    kIsUnits32 = 26,
    kPageClass = 27,
};

enum StrProperty : std::int32_t {
    kCollations = 7,
    kCaseTables = 8,
    kConversions = 9,
    kCodePageName = 18,
    kCollationName = 19,
    kCaseTableName = 20,
};

constexpr std::uint32_t kUnicodeForms = file::kUtf8 | file::kWide | file::kUnits32;

// Sizes of the tables in a stored collation record.
constexpr std::uint32_t kStoredCollation = 576;
constexpr std::uint32_t kStoredWithCharTable = 1368; // with the 792 bytes of the character table
constexpr std::uint32_t kStoredWithByteCase = 1884;  // and the 516 of a byte case table

// The page whose collations a locale uses: those of "UTF-8" for the wide Unicode pages, UCS2 excepted.
const char *collationPage(const nlsLocale &locale) {
    const CharTable &table = *locale.charTable;
    const bool shared =
        table.has(file::kUnits32) || (table.has(file::kWide) && !sameName(locale.codePageName, "UCS2"));
    return shared ? "UTF-8" : locale.codePageName;
}

template <typename Sink>
void listCollations(const nlsLocale &locale, Sink &sink) {
    const char *const page = collationPage(locale);
    ListWriter<Sink> list(sink);
    for (const Entry &entry : directoryOf(*locale.handle)) {
        const char *const name = entry.name2;
        if (entry.kind == file::kCollation && sameName(entry.name, page) && !list.item(name))
            return;
    }
    if (sameName(page, "UTF-8"))
        list.item(kIcuCollationNames);
}

template <typename Sink>
void listCaseTables(const nlsLocale &locale, Sink &sink) {
    ListWriter<Sink> list(sink);
    for (const Entry &entry : directoryOf(*locale.handle)) {
        const char *const name = entry.name2;
        if (entry.kind == file::kCaseTable && sameName(entry.name, locale.codePageName) && !list.item(name))
            return;
    }
}

template <typename Sink>
void listConversions(const nlsLocale &locale, Sink &sink) {
    ListWriter<Sink> list(sink);
    for (const Entry &entry : directoryOf(*locale.handle)) {
        const char *const name = entry.name;
        const char *const name2 = entry.name2;
        if (entry.kind == file::kConversion &&
            (sameName(name, locale.codePageName) || sameName(name2, locale.codePageName)) &&
            !list.item(name, " -> ", name2))
            return;
    }
}

template <typename List>
std::uint32_t lengthOf(const nlsLocale &locale, List list) {
    LengthSink sink;
    list(locale, sink);
    return sink.length();
}

template <typename List>
nlsStatus writeTo(nlsStr &text, const nlsLocale &locale, List list) {
    StringSink sink(text);
    list(locale, sink);
    return sink.status();
}

// The first word of the case table is its count, or for a Unicode case table the offset of its pages.
std::uint32_t firstWord(const void *table) {
    return loadNumber<std::uint32_t>(table);
}

nlsStatus tableSize(const nlsLocale &locale, std::uint32_t &value) {
    if (locale.collation == nullptr)
        return NLS_E_NOSORT;
    if (locale.collation->kind <= file::kIcu)
        value = kStoredCollation;
    else if (locale.caseTable == nullptr)
        value = kStoredWithCharTable;
    else if (locale.charTable->has(file::kUtf8))
        value = kStoredWithCharTable + firstWord(locale.caseTable);
    else
        value = kStoredWithByteCase;
    return NLS_OK;
}

nlsStatus copyField(const char *name, nlsStr &text) {
    return nlsCopyString(name, static_cast<std::int32_t>(std::strlen(name)), &text);
}

} // namespace

nlsStatus nlsGetIntLocaleProperty(nlsLocale *locale, int32_t id, uint32_t *value) {
    if (const nlsStatus status = checkLocale(locale); status != NLS_OK)
        return status;
    if (value == nullptr)
        return NLS_E_NULLARG;
    const CharTable &table = *locale->charTable;
    const bool multibyte = table.has(file::kMultibyte);
    switch (id) {
    case kMaxBytes:
        *value = maxBytes(table);
        return NLS_OK;
    case kCollationsLength:
        *value = lengthOf(*locale, [](auto &from, auto &sink) { listCollations(from, sink); });
        return NLS_OK;
    case kCaseTablesLength:
        *value = lengthOf(*locale, [](auto &from, auto &sink) { listCaseTables(from, sink); });
        return NLS_OK;
    case kConversionsLength:
        *value = lengthOf(*locale, [](auto &from, auto &sink) { listConversions(from, sink); });
        return NLS_OK;
    case kIsMultibyte:
        *value = multibyte;
        return NLS_OK;
    case kIsThroughShiftJis:
        *value = table.has(file::kThroughShiftJis);
        return NLS_OK;
    case kIsUtf8:
        *value = table.has(file::kUtf8);
        return NLS_OK;
    case kIsWide:
        *value = table.has(file::kWide);
        return NLS_OK;
    case kTableSize:
        return tableSize(*locale, *value);
    case kIsPlainMultibyte:
        *value = multibyte && !table.has(kUnicodeForms);
        return NLS_OK;
    case kIsUnits32:
        *value = table.has(file::kUnits32);
        return NLS_OK;
    case kPageClass:
        *value = !multibyte ? 3 : table.has(file::kUtf8) ? 1 : 2;
        return NLS_OK;
    default:
        return NLS_E_BADID;
    }
}

nlsStatus nlsGetStrLocaleProperty(nlsLocale *locale, int32_t id, nlsStr *text) {
    if (const nlsStatus status = checkLocale(locale); status != NLS_OK)
        return status;
    if (text == nullptr || text->buffer == nullptr)
        return NLS_E_NULLARG;
    switch (id) {
    case kCollations:
        return writeTo(*text, *locale, [](auto &from, auto &sink) { listCollations(from, sink); });
    case kCaseTables:
        return writeTo(*text, *locale, [](auto &from, auto &sink) { listCaseTables(from, sink); });
    case kConversions:
        return writeTo(*text, *locale, [](auto &from, auto &sink) { listConversions(from, sink); });
    case kCodePageName:
        return copyField(locale->codePageName, *text);
    case kCollationName:
        return copyField(locale->collationName, *text);
    case kCaseTableName:
        return copyField(locale->caseTableName, *text);
    default:
        return NLS_E_BADID;
    }
}
