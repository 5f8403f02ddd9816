#include "stored.hpp"

namespace kit {

Stored store(nlsLocale *locale, std::int32_t level, std::uint32_t room) {
    fixture::GuardedBuffer memory(room);
    Stored out;
    out.record.data = memory.tail(room);
    std::fill(out.record.data, out.record.data + room, 0xEE);
    out.status = nlsLocaleToDbCollation(locale, level, room, &out.record);
    const std::uint32_t size = out.status == NLS_OK ? out.record.dataSize : room;
    out.data.assign(out.record.data, out.record.data + size);
    for (std::uint32_t i = size; i < room; ++i)
        EXPECT_EQ(out.record.data[i], 0xEE) << "written behind the data";
    out.record.data = nullptr;
    return out;
}

std::vector<std::uint16_t> sortData(unsigned char format, const fixture::ByteTable &classes,
                                    unsigned char flags) {
    constexpr unsigned kMapPlace = 8;
    Bytes bytes{format, 0, 0, 0, kMapPlace, 0, flags, 0};
    bytes.insert(bytes.end(), classes.begin(), classes.end());
    bytes[2] = fixture::byteOf(bytes.size());
    bytes[3] = fixture::byteOf(bytes.size() >> 8);
    std::vector<std::uint16_t> out(bytes.size() / 2);
    std::memcpy(out.data(), bytes.data(), bytes.size());
    return out;
}

std::uint32_t sizeNeeded(const Stored &stored, const std::string &name,
                         const std::vector<std::uint16_t> *sortData) {
    const std::uint32_t sort = sortData == nullptr ? 318 : (*sortData)[1] + 62;
    return stored.record.blockSize + static_cast<std::uint32_t>(name.size()) + 1 + sort;
}

Rebuilt::Rebuilt(nlsHandle *handle, const Stored &stored, const std::string &name,
                 const std::vector<std::uint16_t> *sortData, nlsLocale *target, std::uint32_t wanted)
    : size(wanted != 0 ? wanted : sizeNeeded(stored, name, sortData)),
      memory_(std::make_unique<fixture::GuardedBuffer>(size)),
      data_(std::make_unique<fixture::GuardedBuffer>(stored.data.size())) {
    block = memory_->tail(size);
    std::fill(block, block + size, 0xCC);
    nlsDbCollation record = stored.record;
    record.data = const_cast<unsigned char *>(data_->readOnly(stored.data));
    record.sortData = sortData == nullptr ? nullptr : sortData->data();
    record.sortTarget = target;
    status = nlsDbCollationToLocale(handle, &record, name.c_str(), &size, block, &locale);
}

Rebuilt::~Rebuilt() {
    if (locale == nullptr || fixture::peek::type(locale) != 2)
        return;
    void *closed = nullptr;
    std::uint32_t given = 0;
    EXPECT_EQ(nlsCloseDBLocale(locale, &closed, &given), NLS_OK);
    EXPECT_EQ(closed, block);
}

const unsigned char *Rebuilt::sortBlock() const {
    const unsigned char *place = nullptr;
    std::memcpy(&place, block + 128, sizeof place);
    return place;
}

fixture::DataFile changedFile() {
    fixture::DataFile file;
    fixture::CollationTable backwards;
    for (unsigned b = 0; b < 256; ++b)
        backwards.sensitive[b] = backwards.insensitive[b] = fixture::byteOf(255 - b);
    fixture::ByteCase rotated;
    for (unsigned b = 'a'; b < 'z'; ++b)
        rotated.lower[b] = rotated.upper[b] = fixture::byteOf(b + 1);
    file.codePage("1252", fixture::CharacterTable::singleByte());
    file.codePage("620-2533", fixture::CharacterTable::singleByte());
    // The two Japanese pages stay what they are: text goes through the conversion of today.
    file.codePage("SHIFT-JIS", fixture::CharacterTable::doubleByte());
    file.codePage("EUCJIS", eucPage());
    file.codePage("UTF-8", fixture::CharacterTable::singleByte());
    for (const char *const page : {"1252", "620-2533", "SHIFT-JIS", "EUCJIS", "UTF-8"})
        file.caseTable(page, "basic", rotated);
    for (const char *const page : {"1252", "620-2533", "SHIFT-JIS", "EUCJIS", "UTF-8"})
        for (const char *const name : {"basic", "german", "literal", "weights"})
            file.collation(page, name, backwards);
    file.conversion("EUCJIS", "SHIFT-JIS", 4);
    file.conversion("SHIFT-JIS", "EUCJIS", 3);
    return file;
}

} // namespace kit
