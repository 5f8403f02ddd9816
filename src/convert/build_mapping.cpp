#include "convert/build_mapping.hpp"

#include "convert/kernels/proofs.hpp"
#include "core/arena.hpp"
#include "core/data_file.hpp"
#include "core/instruction_sets.hpp"
#include "locale/load.hpp"

#include <cstring>
#include <initializer_list>

namespace velnls {

namespace {

bool readsPage(std::int32_t type) {
    return type == kPageToUtf8 || type == kPageToUtf8Wide || type == kPageToUtf8Widest;
}

// A sub-table of a group: where its count, its file offset and its pointer stand.
struct SubTable {
    std::uint16_t count;
    std::uint32_t offset;
    const std::uint16_t *values;
};

nlsStatus loadSubTable(nlsHandle &handle, SubTable &table) {
    table.values = nullptr;
    if (table.count == 0)
        return NLS_OK;
    const std::int32_t size = table.count * 2;
    void *memory = nullptr;
    if (const nlsStatus status = allocate(handle, size, 2, memory); status != NLS_OK)
        return status;
    if (!readAt(handle, table.offset + file::kSubTableHead, memory, static_cast<std::uint32_t>(size)))
        return NLS_E_TABLE;
    table.values = static_cast<const std::uint16_t *>(memory);
    return NLS_OK;
}

nlsStatus loadSubTables(nlsHandle &handle, file::MappingGroup &group) {
    SubTable values{group.valueCount, group.valuesOffset, nullptr};
    SubTable reverse{group.reverseCount, group.reverseOffset, nullptr};
    SubTable deltas{group.deltaCount, group.deltasOffset, nullptr};
    for (SubTable *const table : {&values, &reverse, &deltas}) {
        if (const nlsStatus status = loadSubTable(handle, *table); status != NLS_OK)
            return status;
    }
    group.values = values.values;
    group.reverse = reverse.values;
    group.deltas = deltas.values;
    return NLS_OK;
}

bool isMappingKind(std::int32_t kind) {
    return readsPage(kind) || kind == kUtf8ToPage || kind == kUtf8ToBytePage;
}

nlsStatus readDescriptor(nlsHandle &handle, const Entry *fromPage, file::MappingGroup (&groups)[3]) {
    if (fromPage == nullptr)
        return NLS_E_ICU;
    file::Mapping record;
    if (!readAt(handle, fromPage->offset, &record, sizeof record))
        return NLS_E_TABLE;
    std::memcpy(groups, record.groups, sizeof record.groups);
    return NLS_OK;
}

} // namespace

bool isMapping(const void *converter) {
    return isMappingKind(kindOf(converter));
}

nlsStatus storeTable(nlsHandle &handle, const char *source, const char *target, const void *body,
                     std::int32_t size, std::uint32_t proofs, bool (*fits)(std::int32_t type)) {
    Entry *const entry = findEntry(handle, file::kConversion, source, target);
    if (entry == nullptr)
        return NLS_E_ICU;
    ConverterHeader *header = nullptr;
    const auto whole = static_cast<std::int32_t>(sizeof *header) + size;
    if (const nlsStatus status = allocate(handle, whole, 8, header); status != NLS_OK)
        return status;
    if (!fits(entry->format))
        return NLS_OK;
    header->type = entry->format;
    header->proofs = proofs;
    std::memcpy(header + 1, body, static_cast<std::size_t>(size));
    entry->table = header + 1;
    return NLS_OK;
}

nlsStatus buildMapping(nlsHandle &handle, const Entry &entry, std::int32_t type, const void *&out) {
    const Entry *const fromPage =
        readsPage(type) ? &entry : findEntry(handle, file::kConversion, entry.name2, entry.name);
    MappingBody built{};
    if (const nlsStatus status = readDescriptor(handle, fromPage, built.groups); status != NLS_OK)
        return status;
    for (file::MappingGroup &group : built.groups) {
        if (const nlsStatus status = loadSubTables(handle, group); status != NLS_OK)
            return status;
    }
    ConverterHeader *header = nullptr;
    constexpr auto kSize = static_cast<std::int32_t>(sizeof *header + sizeof built);
    if (const nlsStatus status = allocate(handle, kSize, 8, header); status != NLS_OK)
        return status;
    header->type = type;
    const CharTable *charTable = nullptr;
    if (loadCharTable(handle, fromPage->name, charTable) != NLS_OK)
        return NLS_E_NOMEM;
    built.charTable = charTable;
    header->proofs = proveMapping(built) | instructionSets();
    std::memcpy(header + 1, &built, sizeof built);
    if (const nlsStatus status = storeTable(handle, entry.name2, entry.name, header + 1, sizeof built,
                                            header->proofs, isMappingKind);
        status != NLS_OK)
        return status;
    out = header + 1;
    return NLS_OK;
}

} // namespace velnls
