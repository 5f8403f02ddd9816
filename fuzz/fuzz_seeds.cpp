// Writes the seeds that the fuzz targets start from, a folder for each, below the folder given.
#include "data_file.hpp"
#include "mapping_table.hpp"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <string>

namespace {

using fixture::Bytes;
using fixture::CharacterTable;
using fixture::CollationTable;
using fixture::DataFile;
using fixture::Mapping;

void write(const std::filesystem::path &path, const Bytes &bytes) {
    std::filesystem::create_directories(path.parent_path());
    std::ofstream file(path, std::ios::binary);
    file.write(reinterpret_cast<const char *>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    if (!file)
        std::fprintf(stderr, "cannot write %s\n", path.c_str());
}

// Choices, capacity, text, file: what the data file target takes apart.
Bytes dataFileSeed(unsigned choices, unsigned capacity, const std::string &text, const Bytes &file) {
    Bytes seed = {fixture::byteOf(choices), fixture::byteOf(capacity)};
    if ((choices & 16) != 0)
        seed = {fixture::byteOf(choices), 0, 0, fixture::byteOf(capacity)};
    seed.push_back(fixture::byteOf(text.size()));
    return fixture::operator+(fixture::operator+(seed, fixture::bytesOf(text)), file);
}

DataFile plain() {
    DataFile file(12);
    file.codePage("A", CharacterTable::singleByte(fixture::kBorrows));
    file.codePage("B", CharacterTable::singleByte());
    file.collation("B", "basic", CollationTable());
    file.caseTable("A", "basic", fixture::ByteCase::ascii());
    const fixture::ByteTable map = fixture::identityTable();
    file.conversion("B", "A", 1, Bytes(map.begin(), map.end()), 1, 1);
    file.conversion("A", "B", 3);
    return file;
}

DataFile mapped(const Mapping &mapping, int type) {
    DataFile file(12);
    file.codePage("P", CharacterTable::doubleByte());
    file.codePage("UTF-8", CharacterTable::utf8());
    file.codePage("UTF-16", CharacterTable::singleByte(fixture::kMultibyte | fixture::kWide));
    file.caseTable("UTF-8", "basic", fixture::UnicodeCase{{{'a', 'A'}, {0xE4, 0xC4}}, {{'A', 'a'}}});
    file.mapping("P", "UTF-8", type, mapping);
    file.conversion("UTF-8", "P", 18);
    file.conversion("P", "UTF-16", 29);
    file.conversion("UTF-16", "P", 30);
    return file;
}

DataFile unicode() {
    DataFile file(24);
    file.codePage("UTF-8", CharacterTable::utf8());
    file.codePage("S", CharacterTable::singleByte());
    for (const char *const name : {"UTF-16", "UTF-16BE", "UTF-32", "UTF-32BE"})
        file.codePage(name, CharacterTable::singleByte(fixture::kMultibyte));
    std::vector<std::uint16_t> units;
    for (unsigned b = 0; b < 256; ++b)
        units.push_back(fixture::halfOf(b < 0xC0 ? b : 0x20AC + b));
    file.conversion("S", "UTF-8", 19, fixture::units16(units), 19);
    file.conversion("UTF-8", "S", 20);
    file.conversion("UTF-8", "UTF-16", 24);
    file.conversion("UTF-16", "UTF-8", 23);
    file.conversion("UTF-8", "UTF-32", 26);
    file.conversion("UTF-32", "UTF-8", 25);
    file.conversion("UTF-16BE", "UTF-8", 144);
    file.conversion("UTF-16", "UTF-32BE", 156);
    file.conversion("UTF-32BE", "UTF-16", 157);
    file.collation("UTF-8", "basic", CollationTable::basic());
    return file;
}

// A mapping whose way back states any type: the library must not read a body in another's layout.
DataFile facing(unsigned type) {
    DataFile file(6);
    file.codePage("P", CharacterTable::doubleByte());
    file.codePage("UTF-8", CharacterTable::utf8());
    file.mapping("P", "UTF-8", 17, Mapping::doubleBytePage());
    file.conversion("UTF-8", "P", fixture::byteOf(type));
    return file;
}

// Texts in every page's bytes: letters of both cases, blanks, characters of two to four bytes, cut ones.
const std::string kTexts[] = {
    "Stra\xDF"
    "e strasse  ",
    "caf\xC3\xA9 CAF\xC3\x89 \xE2\x82\xAC \xF0\x9F\x98\x80",
    "\x88\x9F\x93\xFA\x96{\xB1 z",
    "\xE0\xA1\xD1\xE8 \xA1\xE0",
    "ab_%ab!%aab",
    "\xC3",
};

Bytes joined(std::initializer_list<unsigned> numbers, const std::string &text) {
    Bytes seed;
    for (const unsigned number : numbers)
        seed.push_back(fixture::byteOf(number));
    return fixture::operator+(seed, fixture::bytesOf(text));
}

// In the order in which the targets take their input apart.
void writeTextSeeds(const std::filesystem::path &root) {
    constexpr unsigned kLocales = 16;
    int number = 0;
    for (unsigned locale = 0; locale < kLocales; ++locale)
        for (const std::string &text : kTexts) {
            const std::string name = std::to_string(number++);
            const auto half = static_cast<unsigned>(text.size() / 2);
            write(root / "fuzz_order" / name, joined({locale, locale % 2 * 8 + 1, 40, half}, text));
            write(root / "fuzz_case" / name, joined({locale, 40, 3, 1}, text));
            write(root / "fuzz_record" / name, joined({locale, 0, 0, 60, 0}, text));
            std::string pattern = "%" + text.substr(0, half) + "%_";
            pattern.resize(24);
            write(root / "fuzz_like" / name, joined({locale, locale % 2}, pattern + text));
            const std::string searched = text.substr(half, 2);
            const auto choice = static_cast<unsigned>((searched.size() - 1) * 16 + 3);
            write(root / "fuzz_search" / name, joined({locale, choice, 0, 200}, searched + "x" + text));
        }
}

} // namespace

int main(int argc, char **argv) {
    if (argc != 2)
        return 2;
    const std::filesystem::path root = argv[1];
    const std::string text = "aZ7\x88\x9F\xE2\x82\xAC\xF0\x9F\x98\x80\xC3";
    const Bytes files[] = {plain().image(), mapped(Mapping::singleBytePage(), 17).image(),
                           mapped(Mapping::doubleBytePage(), 81).image(),
                           mapped(Mapping::planeTwoPage(), 89).image(), unicode().image()};
    int number = 0;
    for (const Bytes &file : files)
        for (const unsigned choices : {0U, 7U, 16U})
            for (const unsigned capacity : {5U, 255U})
                write(root / "fuzz_data_file" / std::to_string(number++),
                      dataFileSeed(choices, capacity, text, file));
    for (unsigned type = 0; type <= 180; ++type)
        write(root / "fuzz_data_file" / std::to_string(number++),
              dataFileSeed(0, 255, text, facing(type).image()));
    writeTextSeeds(root);
    number = 0;
    for (unsigned source = 0; source < 54; ++source)
        for (const unsigned target : {37U, 46U, 47U, 50U}) {
            Bytes seed = {fixture::byteOf(source), fixture::byteOf(target), fixture::byteOf(number * 7), 0,
                          200};
            write(root / "fuzz_conversion" / std::to_string(number++),
                  fixture::operator+(seed, fixture::bytesOf(text + std::string(40, 'x') + text)));
            std::swap(seed[0], seed[1]);
            write(root / "fuzz_conversion" / std::to_string(number++),
                  fixture::operator+(seed, fixture::bytesOf(text + std::string(40, 'x') + text)));
        }
    std::printf("seeds in %s\n", argv[1]);
    return 0;
}
