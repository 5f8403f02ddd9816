#include "match_data.hpp"

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

// When case is ignored, bytes that are not ASCII weigh as "a" or nothing; those of ASCII stay apart.
CollationTable sharedWeights() {
    CollationTable table = plainWeights();
    for (const unsigned byte : {0xE1U, 0xE4U})
        table.insensitive[byte] = table.insensitive['a'];
    table.insensitive[0xDF] = 0;
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

// A letter behind ASCII too, which has its own byte in each case.
ByteCase singleCase() {
    ByteCase table = ByteCase::ascii();
    table.lower[0xC4] = 0xE4;
    table.upper[0xE4] = 0xC4;
    return table;
}

// A lead byte that a table maps to ASCII, which shows where a text's end cuts its character.
ByteCase doubleCase() {
    ByteCase table = ByteCase::ascii();
    table.lower[0x82] = 'z';
    return table;
}

// Where capital I with dot is no counterpart of "i", ASCII letters pair up among themselves.
UnicodeCase unicodeCase(bool asciiPairs) {
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
    table.lower.emplace_back(0x2C60, 0x2C61); // E2
    table.lower.emplace_back(0xFF21, 0xFF41); // EF
    for (const auto &[upper, lower] : table.lower)
        if (upper != 0x130 || !asciiPairs)
            table.upper.emplace_back(lower, upper);
    return table;
}

} // namespace

DataFile matchFile() {
    DataFile file(56);
    file.codePage("SINGLE", CharacterTable::singleByte());
    file.collation("SINGLE", "plain", plainWeights());
    file.collation("SINGLE", "merged", mergedWeights());
    file.collation("SINGLE", "shared", sharedWeights());
    file.collation("SINGLE", "zero", zeroWeights());
    file.collation("SINGLE", "thai", thaiWeights());
    file.collation("SINGLE", "basic", CollationTable::basic());
    file.caseTable("SINGLE", "ascii", singleCase());
    file.codePage("DOUBLE", CharacterTable::doubleByte());
    file.collation("DOUBLE", "basic", CollationTable::basic());
    file.collation("DOUBLE", "weights", doubleByteWeights());
    file.caseTable("DOUBLE", "ascii", doubleCase());
    file.codePage("UTF-8", CharacterTable::utf8());
    file.collation("UTF-8", "basic", CollationTable::basic());
    file.collation("UTF-8", "weights", plainWeights());
    file.caseTable("UTF-8", "some", unicodeCase(false));
    file.caseTable("UTF-8", "pairs", unicodeCase(true));
    file.codePage("LONG", longCharacters());
    file.collation("LONG", "basic", CollationTable::basic());
    return file;
}

const std::vector<PageData> &matchPageData() {
    static const CharacterTable single = CharacterTable::singleByte();
    static const CharacterTable pairs = CharacterTable::doubleByte();
    static const CharacterTable utf8 = CharacterTable::utf8();
    static const std::vector<std::string> letters = {"a", "b",    " ",    "A",    "B",
                                                     "s", "\xDF", "\xE1", "\xE4", "\xC4"};
    static const std::vector<std::string> thai = {"a", "b", " ", "\xA1", "\xE0", "\xD4", "\xE8"};
    static const std::vector<std::string> doubles = {
        "a", "b", " ", "A", "\x82\x61", "\x82\x82", "\x83\x61", "\x83\x41", "\x81\x83", "z", "s"};
    static const std::vector<std::string> unicode = {"a",
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
                                                     "\xE2\xB1\xA0",
                                                     "\xE2\xB1\xA1",
                                                     "\xEF\xBC\xA1",
                                                     "\xEF\xBD\x81",
                                                     "\xE4\xB8\x80",
                                                     "\xF0\x9F\x98\x80"};
    static const std::vector<std::string> longer = {
        "a", "b", " ", "A", "?", "\xF1x", "\xF2xy", "\xF3xyz", "\xF4wxyz", "\xF5uvwxy", "\xF7sabcdef"};
    static const std::vector<PageData> pages = {
        {"single plain", "SINGLE", "plain", nullptr, single, letters},
        {"single merged", "SINGLE", "merged", nullptr, single, letters},
        {"single shared", "SINGLE", "shared", nullptr, single, letters},
        {"single zero", "SINGLE", "zero", nullptr, single, letters},
        {"single thai", "SINGLE", "thai", nullptr, single, thai},
        {"single basic", "SINGLE", "basic", "ascii", single, letters},
        {"single basic without case", "SINGLE", "basic", nullptr, single, letters},
        {"double basic", "DOUBLE", "basic", "ascii", pairs, doubles},
        {"double weights", "DOUBLE", "weights", nullptr, pairs, doubles},
        {"utf8 folded", "UTF-8", "basic", "some", utf8, unicode},
        {"utf8 folded, ASCII in pairs", "UTF-8", "basic", "pairs", utf8, unicode},
        {"utf8 without case", "UTF-8", "basic", nullptr, utf8, unicode},
        {"utf8 weights", "UTF-8", "weights", nullptr, utf8, unicode},
        {"long", "LONG", "basic", nullptr, longCharacters(), longer},
    };
    return pages;
}

} // namespace fixture
