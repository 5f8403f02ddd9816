// nlsGetIntNLSProperty, nlsGetStrNLSProperty: what the data file offers, and how much lent memory is left.
#include "core/collation_names.hpp"
#include "core/data_file.hpp"
#include "core/file_layout.hpp"
#include "core/list_text.hpp"
#include "core/objects.hpp"
#include "core/text.hpp"

using namespace velnls;

namespace {

enum Property : std::uint32_t {
    kCharSetsLength = 1,
    kCharSets = 2,
    kCollationsLength = 4,
    kCaseTablesLength = 5,
    kConversionsLength = 6,
    kCollations = 7,
    kCaseTables = 8,
    kConversions = 9,
    kConstant16 = 10,
    kFreeBytes = 21,
    kLocaleRoom = 23,
};

constexpr std::uint32_t kLocaleAndCollation = 712; // bytes of a locale object and a collation record

// Which entries a text property lists; 0 for an unknown property.
std::uint16_t kindListed(std::uint32_t property) {
    switch (property) {
    case kCharSets:
        return file::kCharSet;
    case kCollations:
        return file::kCollation;
    case kCaseTables:
        return file::kCaseTable;
    case kConversions:
        return file::kConversion;
    default:
        return 0;
    }
}

template <typename Sink>
bool addItem(ListWriter<Sink> &list, const Entry &entry) {
    const char *const name = entry.name;
    const char *const name2 = entry.name2;
    switch (entry.kind) {
    case file::kCharSet:
        return list.item(name);
    case file::kConversion:
        return list.item(name, " -> ", name2);
    default:
        return list.item(name, " ", name2);
    }
}

// Writes the list of a kind's entries; `afterEntry` may add items of its own behind each.
template <typename Sink, typename AfterEntry>
void writeList(const nlsHandle &handle, std::uint16_t kind, Sink &sink, AfterEntry afterEntry) {
    ListWriter<Sink> list(sink);
    for (const Entry &entry : directoryOf(handle)) {
        if (entry.kind == kind && !(addItem(list, entry) && afterEntry(list, entry)))
            return;
    }
}

std::uint32_t listLength(const nlsHandle &handle, std::uint16_t kind) {
    LengthSink sink;
    writeList(handle, kind, sink, [](auto &, const Entry &) { return true; });
    return sink.length();
}

} // namespace

nlsStatus nlsGetIntNLSProperty(nlsHandle *handle, int32_t property, uint32_t *value) {
    if (!isLive(handle))
        return NLS_E_HANDLE;
    if (value == nullptr)
        return NLS_E_NULLARG;
    switch (property) {
    case kCharSetsLength:
        *value = listLength(*handle, file::kCharSet);
        return NLS_OK;
    case kCollationsLength:
        // An upper bound: room for the ICU names is counted whether or not "UTF-8" has a collation.
        *value = listLength(*handle, file::kCollation) +
                 static_cast<std::uint32_t>(kIcuCollationNames.size() + 1 + 6 * kIcuCollationCount);
        return NLS_OK;
    case kCaseTablesLength:
        *value = listLength(*handle, file::kCaseTable);
        return NLS_OK;
    case kConversionsLength:
        *value = listLength(*handle, file::kConversion);
        return NLS_OK;
    case kConstant16:
        *value = 16;
        return NLS_OK;
    case kFreeBytes:
        *value = handle->remaining;
        return NLS_OK;
    case kLocaleRoom:
        *value = kLocaleAndCollation;
        return NLS_OK;
    default:
        return NLS_E_BADID;
    }
}

nlsStatus nlsGetStrNLSProperty(nlsHandle *handle, uint32_t property, nlsStr *text) {
    if (handle == nullptr)
        return NLS_E_HANDLE;
    if (text == nullptr || text->buffer == nullptr)
        return NLS_E_NULLARG;
    StringSink sink(*text);
    const std::uint16_t kind = kindListed(property);
    if (kind == 0)
        return NLS_E_BADID;
    bool icuListed = kind != file::kCollation;
    writeList(*handle, kind, sink, [&](auto &, const Entry &entry) {
        if (icuListed || !sameName(entry.name, "UTF-8"))
            return true;
        icuListed = true;
        return forEachIcuCollation(
            [&sink](std::string_view name) { return sink.add(",UTF-8 ") && sink.add(name); });
    });
    return sink.status();
}
