#include "file_view.hpp"

#include <algorithm>

namespace velnls::nlsgen {

EntryView FileView::entryAt(std::size_t place) const {
    const auto entry = at<file::Entry>(place);
    const auto textOf = [](const char *field) {
        return std::string(field, std::find(field, field + file::kNameSize, '\0'));
    };
    EntryView view;
    view.place = place;
    view.name = textOf(entry.name);
    view.name2 = textOf(entry.name2);
    view.offset = readNumber(entry.offset, sizeof entry.offset);
    view.kind = readNumber(&entry.kind, 1);
    view.variant = readNumber(&entry.variant, 1);
    view.format = entry.format;
    return view;
}

std::size_t recordSize(const EntryView &entry) {
    switch (entry.kind) {
    case file::kConversion:
        return sizeof(file::Conversion);
    case file::kCharSet:
        return sizeof(file::CharTable);
    case file::kCaseTable:
        return entry.format == file::kUnicodeCaseFormat ? sizeof(file::UnicodeCaseTable)
                                                        : sizeof(file::CaseTable);
    case file::kCollation:
        return sizeof(file::Collation);
    default:
        return 0;
    }
}

int conversionType(const FileView &file, const EntryView &entry) {
    return entry.offset == 0 ? entry.format
                             : file.at<file::Conversion>(static_cast<std::size_t>(entry.offset)).type();
}

const char *kindName(long kind) {
    switch (kind) {
    case file::kConversion:
        return "conversion";
    case file::kCharSet:
        return "charset";
    case file::kCaseTable:
        return "case";
    default:
        return "collation";
    }
}

std::vector<EntryView> entriesOf(const FileView &file) {
    const auto header = file.at<file::Header>(0);
    const auto directory =
        static_cast<std::size_t>(readNumber(header.directoryOffset, sizeof header.directoryOffset));
    const auto count = static_cast<std::size_t>(readNumber(header.entryCount, sizeof header.entryCount));
    std::vector<EntryView> entries;
    for (std::size_t i = 0; i < count; i++)
        entries.push_back(file.entryAt(directory + i * sizeof(file::Entry)));
    return entries;
}

} // namespace velnls::nlsgen
