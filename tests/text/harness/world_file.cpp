#include "world_file.hpp"

#include <algorithm>

namespace kit {

using fixture::byteOf;
using fixture::CharacterTable;
using fixture::CollationTable;

fixture::CharacterTable latinPage() {
    CharacterTable table = CharacterTable::singleByte();
    for (unsigned b = 0xC0; b < 0x100; ++b)
        table.classes[b] = b != 0xD7 && b != 0xF7;
    return table;
}

fixture::CharacterTable eucPage() {
    CharacterTable table;
    table.flags = fixture::kMultibyte | fixture::kThroughShiftJis;
    table.attributes[0x8E] = 0x09;
    for (unsigned b = 0xA1; b <= 0xFE; ++b) {
        table.attributes[b] = 1;
        table.trailValid[b] = 1;
    }
    return table;
}

fixture::CharacterTable longPage() {
    CharacterTable table;
    table.flags = fixture::kMultibyte;
    for (unsigned b = 0x80; b < 0x100; ++b) {
        table.attributes[b] = byteOf(b < 0xC0 ? 0 : (b - 0xC0) / 8);
        table.trailValid[b] = b < 0xC0;
    }
    return table;
}

fixture::ByteCase latinCase() {
    fixture::ByteCase table = fixture::ByteCase::ascii();
    for (unsigned upper = 0xC0; upper <= 0xDE; ++upper)
        if (upper != 0xD7) {
            table.lower[upper] = byteOf(upper + 0x20);
            table.upper[upper + 0x20] = byteOf(upper);
        }
    return table;
}

fixture::ByteCase losingCase() {
    fixture::ByteCase table = latinCase();
    table.lower['B'] = 0;
    table.lower[0xE9] = 0;
    return table;
}

fixture::UnicodeCase unicodeCase() {
    fixture::UnicodeCase table;
    const auto pair = [&table](unsigned upper, unsigned lower) {
        table.upper.emplace_back(lower, upper);
        table.lower.emplace_back(upper, lower);
    };
    const auto row = [&pair](unsigned firstUpper, unsigned firstLower, unsigned count) {
        for (unsigned i = 0; i < count; ++i)
            pair(firstUpper + i, firstLower + i);
    };
    row('A', 'a', 26);
    row(0xC0, 0xE0, 23);
    row(0xD8, 0xF8, 7);
    row(0x391, 0x3B1, 17);
    row(0x410, 0x430, 32);
    for (unsigned upper = 0x1E00; upper < 0x1E40; upper += 2)
        pair(upper, upper + 1);
    row(0x24B6, 0x24D0, 26);
    row(0xFF21, 0xFF41, 26);
    table.upper.emplace_back(0x131, 'I'); // shrinks
    table.lower.emplace_back(0x130, 'i');
    table.upper.emplace_back('j', 0x1F0); // grows
    // Neither E3 nor any other lead byte is mapped; filed all the same, these two fall on the slots of U+F002
    // and U+F003.
    table.upper.emplace_back(0x3042, 0x3044);
    table.lower.emplace_back(0x3043, 0x3045);
    return table;
}

fixture::UnicodeCase commonCase() {
    fixture::UnicodeCase table;
    const auto row = [&table](unsigned firstUpper, unsigned firstLower, unsigned count) {
        for (unsigned i = 0; i < count; ++i) {
            const auto upper = static_cast<std::uint16_t>(firstUpper + i);
            const auto lower = static_cast<std::uint16_t>(firstLower + i);
            table.upper.emplace_back(lower, upper);
            table.lower.emplace_back(upper, lower);
        }
    };
    row('A', 'a', 26);
    row(0xC0, 0xE0, 23);
    row(0xD8, 0xF8, 7);
    row(0x178, 0xFF, 1);
    table.upper.emplace_back(0xB5, 0x39C);
    row(0x391, 0x3B1, 17);
    row(0x400, 0x450, 16);
    row(0x410, 0x430, 32);
    row(0x460, 0x461, 1);
    row(0x490, 0x491, 1);
    row(0x24B6, 0x24D0, 26);
    table.upper.emplace_back(0x131, 'I');    // shrinks
    table.upper.emplace_back(0x250, 0x2C6F); // would grow, and loses its lead byte
    return table;
}

fixture::CollationTable germanWeights(unsigned char kind, unsigned char variant) {
    CollationTable table;
    table.kind = kind;
    table.variant = variant;
    // Blank first, then marks and digits, then letters with their accented forms behind them.
    static constexpr char kLetters[] = "a\xE0\xE1\xE2\xE3\xE4"
                                       "b\0c\xE7\0d\0e\xE8\xE9\xEA\xEB"
                                       "f\0g\0h\0i\xEC\xED\xEE\xEF"
                                       "j\0k\0l\0m\0n\xF1"
                                       "o\xF2\xF3\xF4\xF5\xF6"
                                       "p\0q\0r\0s\0t\0u\xF9\xFA\xFB\xFC"
                                       "v\0w\0x\0y\xFD"
                                       "z\0\xF0\0\xFE";
    const fixture::ByteCase letterCase = latinCase();
    fixture::ByteTable sensitive{};
    fixture::ByteTable insensitive{};
    std::vector<bool> placed(256);
    unsigned rank = 0;
    const auto place = [&](unsigned b) {
        if (!placed[b])
            sensitive[b] = insensitive[b] = byteOf(++rank);
        placed[b] = true;
    };
    place(' ');
    placed[0] = true;
    for (const char *const end = kLetters + sizeof kLetters - 1;
         const char letter : std::string(kLetters, end)) {
        if (letter == 0)
            continue;
        const auto lower = static_cast<unsigned char>(letter);
        const unsigned char upper = letterCase.upper[lower];
        placed[lower] = placed[upper] = true;
    }
    placed[0xDF] = true;
    for (unsigned b = 1; b < 256; ++b)
        place(b);
    for (const char *const end = kLetters + sizeof kLetters - 1;
         const char letter : std::string(kLetters, end)) {
        if (letter == 0)
            continue;
        const auto lower = static_cast<unsigned char>(letter);
        const unsigned char upper = letterCase.upper[lower];
        sensitive[lower] = byteOf(++rank);
        if (upper != lower)
            sensitive[upper] = byteOf(++rank);
        insensitive[lower] = insensitive[upper] = sensitive[lower];
    }
    table.sensitive = sensitive;
    table.insensitive = insensitive; // DF keeps 0
    return table;
}

fixture::CollationTable literalWeights() {
    CollationTable table;
    table.variant = 0;
    for (unsigned b = 'a'; b <= 'z'; ++b)
        table.insensitive[b] = byteOf(b - 0x20);
    table.sensitive[0xDF] = 0;
    table.insensitive[0xDF] = 0;
    return table;
}

fixture::CollationTable latinWeights(std::string_view name) {
    if (name == "german")
        return germanWeights();
    if (name == "literal")
        return literalWeights();
    if (name == "other")
        return germanWeights(9, 0);
    CollationTable table;
    for (fixture::ByteTable *const weights : {&table.sensitive, &table.insensitive}) {
        for (unsigned b = 1; b < 256; ++b)
            (*weights)[b] = byteOf((b + 0x40 - 1) % 255 + 1); // bytes from C0 up come first
        if (name == "plain letters")
            for (unsigned b = 0xE0; b <= 0xE5; ++b)
                (*weights)[b] = (*weights)[unsigned{'a'}];
        if (name == "marks alike")
            (*weights)[unsigned{'-'}] = (*weights)[unsigned{'0'}];
        if (name == "a mark expands")
            (*weights)[0x7F] = 0; // the last of ASCII
    }
    for (unsigned b = 'a'; b <= 'z'; ++b)
        table.insensitive[b] = table.insensitive[b - 0x20];
    return table;
}

fixture::CollationTable thaiWeights() {
    CollationTable table;
    table.kind = 4;
    static constexpr unsigned char kVowels[] = {0xD1, 0xD4, 0xD5, 0xD6, 0xD7, 0xD8, 0xD9, 0xED};
    static constexpr unsigned char kMarkWeights[] = {3, 4, 5, 6, 7, 7}; // E7 to EC
    for (unsigned i = 0; i < 8; ++i)
        table.sensitive[kVowels[i]] = byteOf(8 + 8 * i);
    for (unsigned i = 0; i < 6; ++i)
        table.sensitive[0xE7 + i] = kMarkWeights[i];
    unsigned rank = 0;
    for (unsigned b = 1; b < 256; ++b) {
        const bool ranked = (b < 0xE7 || b > 0xEC) &&
                            std::find(std::begin(kVowels), std::end(kVowels), b) == std::end(kVowels);
        if (ranked)
            table.sensitive[b] = byteOf(++rank);
    }
    table.insensitive = table.sensitive;
    for (unsigned b = 'a'; b <= 'z'; ++b)
        table.insensitive[b] = table.sensitive[b - 0x20];
    return table;
}

fixture::CollationTable japaneseWeights() {
    CollationTable table;
    for (unsigned b = 'a'; b <= 'z'; ++b)
        table.insensitive[b] = byteOf(b - 0x20);
    table.sensitive[0xDD] = table.insensitive[0xDD] = 0; // a half-width kana that expands
    table.sensitive['~'] = table.insensitive['~'] = 0;
    return table;
}

fixture::DataFile worldFile() {
    fixture::DataFile file;
    const fixture::CollationTable basic = CollationTable::basic();
    file.codePage("1252", latinPage());
    file.codePage("620-2533", CharacterTable::singleByte());
    file.codePage("SHIFT-JIS", CharacterTable::doubleByte());
    file.codePage("EUCJIS", eucPage());
    file.codePage("UTF-8", CharacterTable::utf8());
    file.codePage("LONG", longPage());
    file.codePage("UTF-16", CharacterTable::singleByte(fixture::kMultibyte | fixture::kWide));
    file.codePage("UTF-32", CharacterTable::singleByte(fixture::kMultibyte | fixture::kUnits32));
    file.caseTable("1252", "basic", latinCase());
    file.caseTable("1252", "losing", losingCase());
    for (const char *const page : {"620-2533", "SHIFT-JIS", "EUCJIS", "LONG"})
        file.caseTable(page, "basic", fixture::ByteCase::ascii());
    file.caseTable("UTF-8", "basic", unicodeCase());
    file.caseTable("UTF-8", "common", commonCase());
    for (const char *const page : {"1252", "SHIFT-JIS", "EUCJIS", "UTF-8", "LONG"})
        file.collation(page, "basic", basic);
    file.collation("620-2533", "basic", thaiWeights());
    for (const char *const name : kLatinTables)
        file.collation("1252", name, latinWeights(name));
    for (const char *const page : {"SHIFT-JIS", "EUCJIS"})
        file.collation(page, "weights", japaneseWeights());
    file.collation("UTF-8", "weights", germanWeights());
    file.collation("LONG", "weights", germanWeights());
    file.conversion("EUCJIS", "SHIFT-JIS", 4);
    file.conversion("SHIFT-JIS", "EUCJIS", 3);
    return file;
}

} // namespace kit
