// Collation records that a database stores beside its data: what they hold, and how a block of memory is laid
// out for the locale that is rebuilt from one.
#pragma once

#include "locale/locale.hpp"

namespace velnls {

inline constexpr std::uint32_t kOldRecordSize = 512; // the weights alone; larger records are of the new form
inline constexpr std::uint32_t kNewRecordSize = sizeof(Collation) + sizeof(CharTable);
static_assert(kNewRecordSize == 1368);

struct RecordSizes {
    std::uint32_t data;  // bytes of the data area
    std::uint32_t block; // bytes of locale block, without the name and the sort data
};

// Sizes of the record of a locale that has a character table and a collation.
RecordSizes recordSizes(const nlsLocale &locale, bool newForm);

// Writes the data area of a record.
void writeRecord(const nlsLocale &locale, bool newForm, std::uint8_t *data);

// The block size that a record asks for, with its name and sort data. For records with a case table this is
// an estimate: the page flags and the table's words are looked up where they will lie in the block.
std::uint64_t blockSizeNeeded(const nlsDbCollation &record, std::uint64_t nameLength);

inline bool isNewForm(const nlsDbCollation &record) {
    return record.dataSize > kOldRecordSize;
}

} // namespace velnls
