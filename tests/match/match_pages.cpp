#include "match_pages.hpp"

#include <stdexcept>

namespace fixture {

namespace {

// Weights as the data file's tables have them: all different, capitals with their letters when case is
// ignored.
CollationTable plainWeights() {
    CollationTable table;
    for (unsigned i = 0; i < 26; ++i)
        table.insensitive['A' + i] = byteOf('a' + i);
    return table;
}

// E1, E0 and E4 weigh as "a" in both tables: more forms than a few; "b" weighs as the blank.
CollationTable mergedWeights() {
    CollationTable table = plainWeights();
    for (ByteTable *area : {&table.sensitive, &table.insensitive}) {
        for (const unsigned byte : {0xE0U, 0xE1U, 0xE4U, 0xE5U})
            (*area)[byte] = (*area)['a'];
        (*area)['b'] = (*area)[' '];
    }
    return table;
}

// DF and "b" have weight 0, "a" weighs as "s".
CollationTable zeroWeights() {
    CollationTable table = plainWeights();
    for (ByteTable *area : {&table.sensitive, &table.insensitive}) {
        (*area)[0xDF] = 0;
        (*area)['b'] = 0;
        (*area)['a'] = (*area)['s'];
    }
    return table;
}

// The lead byte 82 weighs as "a", 83 nothing.
CollationTable doubleByteWeights() {
    CollationTable table = plainWeights();
    for (ByteTable *area : {&table.sensitive, &table.insensitive}) {
        (*area)[0x82] = (*area)['a'];
        (*area)[0x83] = 0;
        (*area)['z'] = 0;
    }
    return table;
}

CollationTable thaiWeights() {
    CollationTable table = plainWeights();
    table.kind = 4;
    return table;
}

// Characters of 1 to 8 bytes: lead bytes F1 to F7 announce so many more.
CharacterTable longCharacters() {
    CharacterTable table;
    table.flags = kMultibyte;
    for (unsigned trails = 1; trails <= 7; ++trails)
        table.attributes[0xF0 + trails] = byteOf(trails);
    return table;
}

UnicodeCase unicodeCase() {
    UnicodeCase table;
    for (std::uint16_t i = 0; i < 26; ++i)
        table.lower.emplace_back(halfOf('A' + i), halfOf('a' + i));
    for (std::uint16_t i = 0; i < 32; ++i)
        table.lower.emplace_back(halfOf(0x410 + i), halfOf(0x430 + i)); // Cyrillic, D0 and D1
    table.lower.emplace_back(0x130, 'i');                               // two bytes to one
    table.lower.emplace_back(0x1C4, 0x1C6);                             // two characters to one
    table.lower.emplace_back(0x1C5, 0x1C6);
    table.lower.emplace_back(0xC5, 0xE5);
    table.lower.emplace_back(0x1F08, 0x1F00); // three bytes, E1
    table.lower.emplace_back(0xFF21, 0xFF41); // EF
    for (const auto &[lower, upper] : table.lower)
        table.upper.emplace_back(upper, lower);
    return table;
}

DataFile makeFile() {
    DataFile file(48);
    file.codePage("SINGLE", CharacterTable::singleByte());
    file.collation("SINGLE", "plain", plainWeights());
    file.collation("SINGLE", "merged", mergedWeights());
    file.collation("SINGLE", "zero", zeroWeights());
    file.collation("SINGLE", "thai", thaiWeights());
    file.collation("SINGLE", "basic", CollationTable::basic());
    file.caseTable("SINGLE", "ascii", ByteCase::ascii());
    file.codePage("DOUBLE", CharacterTable::doubleByte());
    file.collation("DOUBLE", "basic", CollationTable::basic());
    file.collation("DOUBLE", "weights", doubleByteWeights());
    file.caseTable("DOUBLE", "ascii", ByteCase::ascii());
    file.codePage("UTF-8", CharacterTable::utf8());
    file.collation("UTF-8", "basic", CollationTable::basic());
    file.caseTable("UTF-8", "some", unicodeCase());
    file.codePage("LONG", longCharacters());
    file.collation("LONG", "basic", CollationTable::basic());
    return file;
}

} // namespace

MatchPages::MatchPages() : library_(makeFile()), unordered_(library_.locale("SINGLE")) {
    const CharacterTable single = CharacterTable::singleByte();
    const std::vector<std::string> letters = {"a", "b", " ", "A", "B", "s", "\xDF", "\xE1", "\xE4"};
    add("single plain", "SINGLE", "plain", nullptr, single, letters);
    add("single merged", "SINGLE", "merged", nullptr, single, letters);
    add("single zero", "SINGLE", "zero", nullptr, single, letters);
    add("single thai", "SINGLE", "thai", nullptr, single, {"a", "b", " ", "\xA1", "\xE0", "\xD4", "\xE8"});
    add("single basic", "SINGLE", "basic", "ascii", single, letters);
    add("single basic without case", "SINGLE", "basic", nullptr, single, letters);
    const CharacterTable pairs = CharacterTable::doubleByte();
    const std::vector<std::string> doubles = {"a",        "b",        " ",        "A", "\x82\x61", "\x82\x82",
                                              "\x83\x61", "\x83\x41", "\x81\x83", "z", "s"};
    add("double basic", "DOUBLE", "basic", "ascii", pairs, doubles);
    add("double weights", "DOUBLE", "weights", nullptr, pairs, doubles);
    const CharacterTable utf8 = CharacterTable::utf8();
    const std::vector<std::string> unicode = {"a",
                                              "b",
                                              " ",
                                              "A",
                                              "i",
                                              "\xC4\xB0",
                                              "\xD0\x90",
                                              "\xD0\xB0",
                                              "\xD1\x80",
                                              "\xD0\xA0",
                                              "\xC7\x84",
                                              "\xC7\x85",
                                              "\xC7\x86",
                                              "\xC3\xA5",
                                              "\xE1\xBC\x88",
                                              "\xE1\xBC\x80",
                                              "\xEF\xBC\xA1",
                                              "\xEF\xBD\x81",
                                              "\xE4\xB8\x80",
                                              "\xF0\x9F\x98\x80"};
    add("utf8 folded", "UTF-8", "basic", "some", utf8, unicode);
    add("utf8 without case", "UTF-8", "basic", nullptr, utf8, unicode);
    add("long", "LONG", "basic", nullptr, longCharacters(),
        {"a", "b", " ", "A", "?", "\xF1x", "\xF2xy", "\xF3xyz", "\xF4wxyz", "\xF5uvwxy", "\xF7sabcdef"});
}

void MatchPages::add(const std::string &name, const std::string &codePage, const char *collation,
                     const char *caseTable, const CharacterTable &table, std::vector<std::string> alphabet) {
    MatchPage page;
    page.name = name;
    page.page.locale = library_.locale(codePage, collation, caseTable);
    page.page.attributes = table.attributes;
    page.page.utf8 = (table.flags & kUtf8) != 0;
    page.alphabet = std::move(alphabet);
    pages_.push_back(std::move(page));
}

const MatchPage &MatchPages::operator[](const std::string &name) const {
    for (const MatchPage &page : pages_)
        if (page.name == name)
            return page;
    throw std::out_of_range(name);
}

MatchPages &MatchPages::instance() {
    static MatchPages pages;
    return pages;
}

} // namespace fixture
