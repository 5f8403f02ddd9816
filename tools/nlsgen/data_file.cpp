#include "data_file.hpp"

#include "number_field.hpp"

#include <algorithm>
#include <map>

namespace velnls::nlsgen {
namespace {

constexpr std::size_t kOffsetLimit = 10'000'000;
constexpr std::size_t kLongestRead = sizeof(file::Conversion); // padding behind the last record

class Layout {
public:
    explicit Layout(std::size_t directoryEnd) : bytes_(directoryEnd) {}

    // The offset of these bytes in the file.
    std::size_t put(const Bytes &record) {
        const auto [found, isNew] =
            offsets_.emplace(std::string(record.begin(), record.end()), bytes_.size());
        if (isNew)
            bytes_.insert(bytes_.end(), record.begin(), record.end());
        return found->second;
    }

    Bytes &bytes() {
        return bytes_;
    }

private:
    Bytes bytes_;
    std::map<std::string, std::size_t> offsets_; // by content
};

void fail(const PlannedEntry &entry, const std::string &message) {
    throw Problem(entry.place, "entry \"" + entry.name + "\", \"" + entry.name2 + "\": " + message);
}

// The offset and count of a sub-table; 0 and 0 for a missing one.
std::pair<std::uint32_t, std::uint16_t> putSubTable(Layout &layout, const std::vector<std::uint16_t> &values,
                                                    const PlannedEntry &entry) {
    if (values.empty())
        return {0, 0};
    if (values.size() > 0xFFFF)
        fail(entry,
             "a sub-table has " + std::to_string(values.size()) + " values, expected fewer than 65536");
    Bytes bytes(file::kSubTableHead);
    putNumber(reinterpret_cast<char *>(bytes.data()), file::kSubTableHead, values.size());
    for (const std::uint16_t value : values) {
        bytes.push_back(static_cast<std::uint8_t>(value));
        bytes.push_back(static_cast<std::uint8_t>(value >> 8));
    }
    return {static_cast<std::uint32_t>(layout.put(bytes)), static_cast<std::uint16_t>(values.size())};
}

Bytes mappingRecord(Layout &layout, const PlannedEntry &entry) {
    file::Mapping mapping{};
    std::memcpy(mapping.head, "484     ", sizeof mapping.head);
    for (std::size_t i = 0; i < entry.mapping->groups.size(); i++) {
        const MappingGroupData &data = entry.mapping->groups[i];
        file::MappingGroup group = data.group;
        if (group.indexLimit >= 0xFFFF)
            fail(entry, "expected an index limit below 65535");
        const auto [valuesOffset, valueCount] = putSubTable(layout, data.values, entry);
        const auto [reverseOffset, reverseCount] = putSubTable(layout, data.reverse, entry);
        const auto [deltasOffset, deltaCount] = putSubTable(layout, data.deltas, entry);
        group.valuesOffset = valuesOffset;
        group.valueCount = valueCount;
        group.reverseOffset = reverseOffset;
        group.reverseCount = reverseCount;
        group.deltasOffset = deltasOffset;
        group.deltaCount = deltaCount;
        mapping.groups[i] = group;
    }
    Bytes record = bytesOf(mapping);
    record.resize(sizeof(file::Conversion));
    record[offsetof(file::Conversion, typeLow)] = entry.mapping->type;
    return record;
}

void copyName(char *field, const std::string &name, const PlannedEntry &entry) {
    if (name.size() >= file::kNameSize)
        fail(entry, "expected names of at most 19 bytes, found " + name);
    std::memcpy(field, name.data(), name.size());
}

} // namespace

Bytes layOut(const std::vector<PlannedEntry> &entries) {
    if (entries.size() > static_cast<std::size_t>(file::kMaxEntries))
        fail(entries[file::kMaxEntries],
             "expected at most 999 entries, found " + std::to_string(entries.size()));
    Layout layout(sizeof(file::Header) + entries.size() * sizeof(file::Entry));
    std::vector<file::Entry> directory;
    for (const PlannedEntry &planned : entries) {
        file::Entry entry{};
        copyName(entry.name, planned.name, planned);
        copyName(entry.name2, planned.name2, planned);
        std::size_t offset = 0;
        if (planned.mapping)
            offset = layout.put(mappingRecord(layout, planned));
        else if (!planned.record.empty())
            offset = layout.put(planned.record);
        if (offset >= kOffsetLimit)
            fail(planned, "expected an offset below 10000000, found " + std::to_string(offset));
        putNumber(entry.offset, sizeof entry.offset, offset);
        putNumber(&entry.variant, 1, planned.variant);
        entry.format = planned.format;
        putNumber(&entry.kind, 1, planned.kind);
        directory.push_back(entry);
    }
    Bytes &bytes = layout.bytes();
    bytes.resize(bytes.size() + kLongestRead);

    file::Header header{};
    putNumber(header.magic, sizeof header.magic, file::kMagic);
    putNumber(header.directoryOffset, sizeof header.directoryOffset, sizeof header);
    putNumber(header.version, sizeof header.version, file::kVersion);
    putNumber(header.entryCount, sizeof header.entryCount, entries.size());
    std::memset(header.unused, ' ', sizeof header.unused);
    std::memcpy(bytes.data(), &header, sizeof header);
    if (!directory.empty())
        std::memcpy(bytes.data() + sizeof header, directory.data(), directory.size() * sizeof(file::Entry));
    return bytes;
}

} // namespace velnls::nlsgen
