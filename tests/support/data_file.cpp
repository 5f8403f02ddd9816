#include "data_file.hpp"

#include "mapping_table.hpp"

#include <cstdio>
#include <stdexcept>

namespace fixture {

namespace {

void put(Bytes &out, std::string_view text, std::size_t width, char filler) {
    for (std::size_t i = 0; i < width; ++i)
        out.push_back(static_cast<unsigned char>(i < text.size() ? text[i] : filler));
}

// The first 256 bytes of a 512-byte array; the rest is never looked at.
void putTable(Bytes &out, const ByteTable &table) {
    out.insert(out.end(), table.begin(), table.end());
    out.insert(out.end(), 256, 0xDD);
}

void putPairs(Bytes &out, const std::vector<std::pair<std::uint16_t, std::uint16_t>> &pairs) {
    const std::size_t end = out.size() + 2976;
    for (const auto &[character, counterpart] : pairs)
        for (const std::uint16_t unit : {character, counterpart}) {
            out.push_back(byteOf(unit));
            out.push_back(byteOf(unit >> 8));
        }
    if (out.size() > end - 4)
        throw std::length_error("too many case pairs");
    out.resize(end);
}

} // namespace

ByteTable identityTable() {
    ByteTable table{};
    for (std::size_t i = 0; i < table.size(); ++i)
        table[i] = byteOf(i);
    return table;
}

CharacterTable CharacterTable::singleByte(unsigned char flags) {
    CharacterTable table;
    table.flags = flags;
    return table;
}

CharacterTable CharacterTable::utf8() {
    CharacterTable table;
    table.flags = kMultibyte | kUtf8;
    for (unsigned b = 0; b < 256; ++b) {
        if (b >= 0xC0 && b <= 0xF7)
            table.attributes[b] = b >= 0xF0 ? 3 : b >= 0xE0 ? 2 : 1;
        table.trailValid[b] = b >= 0x80 && b <= 0xBF;
    }
    return table;
}

CharacterTable CharacterTable::doubleByte(unsigned char flags) {
    CharacterTable table;
    table.flags = flags;
    for (unsigned b = 0; b < 256; ++b) {
        table.attributes[b] = (b >= 0x81 && b <= 0x9F) || (b >= 0xE0 && b <= 0xFC);
        table.trailValid[b] = (b >= 0x40 && b <= 0x7E) || (b >= 0x80 && b <= 0xFC);
    }
    return table;
}

Bytes CharacterTable::record() const {
    Bytes out;
    put(out, count, 4, ' ');
    putTable(out, classes);
    putTable(out, attributes);
    putTable(out, trailValid);
    out.resize(1552);
    return out;
}

ByteCase ByteCase::ascii() {
    ByteCase table;
    for (unsigned i = 0; i < 26; ++i) {
        table.upper['a' + i] = byteOf('A' + i);
        table.lower['A' + i] = byteOf('a' + i);
    }
    return table;
}

Bytes ByteCase::record() const {
    Bytes out;
    put(out, count, 4, ' ');
    putTable(out, upper);
    putTable(out, lower);
    out.resize(1040);
    return out;
}

Bytes UnicodeCase::record() const {
    Bytes out(6);
    putPairs(out, upper);
    putPairs(out, lower);
    out.resize(5968);
    return out;
}

CollationTable CollationTable::basic() {
    CollationTable table;
    table.kind = 3;
    const std::string_view text = "BASIC";
    for (ByteTable *area : {&table.sensitive, &table.insensitive}) {
        area->fill(0);
        std::copy(text.begin(), text.end(), area->begin());
    }
    return table;
}

Bytes CollationTable::record() const {
    Bytes out;
    put(out, count, 4, ' ');
    putTable(out, sensitive);
    putTable(out, insensitive);
    out.push_back(kind);
    out.push_back(variant);
    out.resize(1040);
    return out;
}

DataFile::DataFile(int maxEntries) : base_(static_cast<std::uint32_t>(128 + 64 * maxEntries)) {}

std::uint32_t DataFile::place(const Bytes &record) {
    const auto offset = static_cast<std::uint32_t>(base_ + records_.size());
    records_ = records_ + record;
    return offset;
}

int DataFile::add(const DirectoryEntry &entry) {
    directory_.push_back(entry);
    return entries() - 1;
}

int DataFile::codePage(const std::string &name, const CharacterTable &table) {
    return add({name, "", place(table.record()), 0, table.flags, 2});
}

int DataFile::caseTable(const std::string &page, const std::string &name, const ByteCase &table) {
    return add({page, name, place(table.record()), 0, 1, 3});
}

int DataFile::caseTable(const std::string &page, const std::string &name, const UnicodeCase &table) {
    return add({page, name, place(table.record()), 0, 2, 3});
}

int DataFile::collation(const std::string &page, const std::string &name, const CollationTable &table) {
    return add({page, name, place(table.record()), 0, 0, 4});
}

int DataFile::conversion(const std::string &source, const std::string &target, unsigned char type) {
    return add({source, target, 0, 0, type, 1});
}

int DataFile::conversion(const std::string &source, const std::string &target, int type, const Bytes &body,
                         unsigned char format, int variant) {
    return conversionRecord(source, target, std::to_string(body.size()), type, body, format, variant);
}

int DataFile::conversionRecord(const std::string &source, const std::string &target,
                               const std::string &length, int type, const Bytes &body, unsigned char format,
                               int variant) {
    Bytes out;
    put(out, length, 4, ' ');
    out = out + body;
    out.resize(528);
    out[516] = byteOf(type >> 8);
    out[517] = byteOf(type);
    return add({source, target, place(out), variant, format, 1});
}

int DataFile::mapping(const std::string &source, const std::string &target, int type, const Mapping &table) {
    std::array<std::array<std::uint32_t, 3>, 3> offsets{};
    for (std::size_t g = 0; g < 3; ++g) {
        const std::vector<std::uint16_t> *const tables[3] = {
            &table.groups[g].values, &table.groups[g].reverse, &table.groups[g].deltas};
        for (std::size_t t = 0; t < 3; ++t)
            if (!tables[t]->empty()) {
                Bytes out;
                put(out, std::to_string(tables[t]->size()), 6, ' ');
                offsets[g][t] = place(out + units16(*tables[t]));
            }
    }
    return add({source, target, place(table.record(offsets, type)), 0, byteOf(type), 1});
}

Bytes DataFile::image() const {
    Bytes out;
    put(out, magic, 4, ' ');
    put(out, directoryOffset, 2, ' ');
    put(out, version, 2, ' ');
    char number[16];
    std::snprintf(number, sizeof number, "%03zu", directory_.size());
    put(out, count.empty() ? number : count, 3, ' ');
    put(out, "?????", 5, '?');
    for (const DirectoryEntry &entry : directory_) {
        put(out, entry.name, 20, '\0');
        put(out, entry.name2, 20, '\0');
        std::snprintf(number, sizeof number, "%07u", entry.offset);
        put(out, number, 7, ' ');
        put(out, std::to_string(entry.variant), 1, ' ');
        out.push_back(entry.format);
        put(out, std::to_string(entry.kind), 1, ' ');
        put(out, "", 14, '?');
    }
    if (out.size() > base_)
        throw std::length_error("more directory entries than announced");
    out.resize(base_);
    return out + records_;
}

} // namespace fixture
