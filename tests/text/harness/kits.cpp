#include "kits.hpp"

#include <algorithm>
#include <stdexcept>

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
    for (const char *const page : {"620-2533", "SHIFT-JIS", "EUCJIS", "LONG"})
        file.caseTable(page, "basic", fixture::ByteCase::ascii());
    file.caseTable("UTF-8", "basic", unicodeCase());
    for (const char *const page : {"1252", "SHIFT-JIS", "EUCJIS", "UTF-8", "LONG"})
        file.collation(page, "basic", basic);
    file.collation("620-2533", "basic", thaiWeights());
    file.collation("1252", "german", germanWeights());
    file.collation("1252", "other", germanWeights(9, 0));
    file.collation("1252", "literal", literalWeights());
    for (const char *const page : {"SHIFT-JIS", "EUCJIS"})
        file.collation(page, "weights", japaneseWeights());
    file.collation("UTF-8", "weights", germanWeights());
    file.collation("LONG", "weights", germanWeights());
    file.conversion("EUCJIS", "SHIFT-JIS", 4);
    file.conversion("SHIFT-JIS", "EUCJIS", 3);
    return file;
}

World::World(std::size_t misalignment) : library(worldFile(), 600000, misalignment) {
    add("1252 german", Script::Latin, "1252", "german", nullptr);
    add("1252 literal", Script::Latin, "1252", "literal", "basic");
    add("1252 other kind", Script::Latin, "1252", "other", nullptr);
    add("1252 BASIC", Script::Latin, "1252", "basic", "basic");
    add("1252 BASIC without case table", Script::Latin, "1252", "basic", nullptr);
    add("Thai", Script::Thai, "620-2533", "basic", "basic");
    add("SHIFT-JIS weights", Script::ShiftJis, "SHIFT-JIS", "weights", "basic");
    add("SHIFT-JIS BASIC", Script::ShiftJis, "SHIFT-JIS", "basic", "basic");
    add("SHIFT-JIS BASIC without case table", Script::ShiftJis, "SHIFT-JIS", "basic", nullptr);
    add("EUCJIS weights", Script::Euc, "EUCJIS", "weights", "basic");
    add("EUCJIS BASIC", Script::Euc, "EUCJIS", "basic", "basic");
    add("UTF-8 weights", Script::Utf8, "UTF-8", "weights", "basic");
    add("UTF-8 BASIC", Script::Utf8, "UTF-8", "basic", "basic");
    add("UTF-8 BASIC without case table", Script::Utf8, "UTF-8", "basic", nullptr);
    add("LONG weights", Script::Long, "LONG", "weights", nullptr);
    add("LONG BASIC", Script::Long, "LONG", "basic", "basic");
    add("LONG BASIC without case table", Script::Long, "LONG", "basic", nullptr);
}

void World::add(const std::string &name, Script script, const char *page, const char *collation,
                const char *caseTable) {
    Kit made{name, script, library.locale(page, collation, caseTable), {}};
    const bool basic = std::string_view(collation) == "basic";
    const bool cased = caseTable != nullptr;
    made.twin.collation = CollationTable::basic();
    switch (script) {
    case Script::Latin:
        made.twin.characters = latinPage();
        if (!basic)
            made.twin.collation = std::string_view(collation) == "literal"  ? literalWeights()
                                  : std::string_view(collation) == "german" ? germanWeights()
                                                                            : germanWeights(9, 0);
        break;
    case Script::Thai:
        made.twin.characters = CharacterTable::singleByte();
        made.twin.collation = thaiWeights();
        break;
    case Script::ShiftJis:
        made.twin.characters = CharacterTable::doubleByte();
        if (!basic)
            made.twin.collation = japaneseWeights();
        break;
    case Script::Euc:
        made.twin.characters = eucPage();
        made.twin.companion = CharacterTable::doubleByte();
        if (!basic)
            made.twin.collation = japaneseWeights();
        break;
    case Script::Utf8:
        made.twin.characters = CharacterTable::utf8();
        if (!basic)
            made.twin.collation = germanWeights();
        break;
    case Script::Long:
        made.twin.characters = longPage();
        if (!basic)
            made.twin.collation = germanWeights();
        break;
    }
    if (cased && script == Script::Utf8)
        made.twin.casePages.emplace(unicodeCase());
    else if (cased)
        made.twin.byteCase = script == Script::Latin ? latinCase() : fixture::ByteCase::ascii();
    kits.push_back(made);
}

const Kit &World::operator[](const std::string &name) const {
    for (const Kit &one : kits)
        if (one.name == name)
            return one;
    throw std::out_of_range(name);
}

Bytes TextMaker::character(Script script) {
    const auto one = [this](unsigned first, unsigned last) {
        return byteOf(first + random.below(last - first + 1));
    };
    const unsigned dice = random.below(16);
    if (dice == 0)
        return {' '};
    if (dice < 6) {
        static constexpr char kCommon[] = "aAbBsSzZ019-~ ss";
        return {static_cast<unsigned char>(kCommon[random.below(sizeof kCommon - 1)])};
    }
    switch (script) {
    case Script::Latin:
        return {dice < 9 ? byteOf(0xDF) : dice < 12 ? one(0xC0, 0xFF) : one(0x01, 0xFF)};
    case Script::Thai:
        return {dice < 9    ? one(0xA1, 0xCE)
                : dice < 11 ? one(0xE0, 0xE4)
                : dice < 13 ? one(0xD1, 0xDA)
                : dice < 15 ? one(0xE5, 0xEE)
                            : one(0x01, 0xFF)};
    case Script::ShiftJis:
        if (dice < 9)
            return {one(0xA1, 0xDF)};
        return {random.below(2) != 0 ? one(0x81, 0x9F) : one(0xE0, 0xFC),
                random.below(4) != 0 ? one(0x80, 0xFC) : one(0x40, 0x7E)};
    case Script::Euc:
        if (dice < 9)
            return {0x8E, one(0xA1, 0xDF)};
        return {one(0xA1, 0xFE), one(0xA1, 0xFE)};
    case Script::Utf8: {
        if (dice == 15)
            return {one(0xF0, 0xF4), one(0x90, 0xBF), one(0x80, 0xBF), one(0x80, 0xBF)};
        if (dice < 10)
            return {one(0xC3, 0xC4), one(0x80, 0xBF)};
        if (dice < 12)
            return {one(0xCE, 0xD1), one(0x80, 0xBF)};
        static constexpr unsigned char kStarts[][2] = {{0xE1, 0xB8}, {0xE2, 0x93}, {0xEF, 0xBC}, {0xEF, 0xBD},
                                                       {0xE3, 0x81}, {0xE0, 0xB8}, {0xE0, 0xB9}, {0xEF, 0x80},
                                                       {0xEF, 0xBB}, {0xEF, 0xBF}, {0xE9, 0x81}};
        const auto &start = kStarts[random.below(11)];
        return {start[0], start[1], one(0x80, 0xBF)};
    }
    case Script::Long: {
        Bytes out{one(0xC0, 0xFF)};
        for (unsigned trails = (out[0] - 0xC0U) / 8; trails > 0; --trails)
            out.push_back(one(0x80, 0xBF));
        return out;
    }
    }
    return {};
}

Bytes TextMaker::valid(Script script, unsigned characters) {
    Bytes out;
    for (unsigned i = 0; i < characters; ++i)
        out = out + character(script);
    return out;
}

Bytes TextMaker::corrupted(Bytes text) {
    for (unsigned changes = 1 + random.below(3); changes > 0 && !text.empty(); --changes) {
        const auto at = text.begin() + random.below(static_cast<std::uint32_t>(text.size()));
        switch (random.below(3)) {
        case 0:
            text.erase(at);
            break;
        case 1:
            *at = byteOf(1 + random.below(255));
            break;
        default:
            text.resize(static_cast<std::size_t>(at - text.begin()));
            break;
        }
    }
    return text;
}

Bytes TextMaker::any(Script script, unsigned characters) {
    switch (random.below(4)) {
    case 0:
        return corrupted(valid(script, characters));
    case 1: {
        Bytes out(characters);
        for (unsigned char &byte : out)
            byte = byteOf(1 + random.below(255));
        return out;
    }
    default:
        return valid(script, characters);
    }
}

Bytes TextMaker::variant(Script script, const Bytes &text) {
    Bytes out = text;
    const auto insertAt = [&] {
        return out.begin() + random.below(static_cast<std::uint32_t>(out.size() + 1));
    };
    for (unsigned changes = random.below(3); changes > 0; --changes) {
        switch (random.below(7)) {
        case 0:
            out.insert(out.end(), 1 + random.below(3), ' ');
            break;
        case 1: // other case
            for (unsigned char &byte : out)
                if (random.below(2) != 0 && ((byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z')))
                    byte ^= 0x20;
            break;
        case 2: // an expansion spelled out
            if (const auto at = std::find(out.begin(), out.end(), 0xDF); at != out.end()) {
                *at = 's';
                out.insert(at, 's');
            }
            break;
        case 3: {
            const Bytes one = character(script);
            out.insert(insertAt(), one.begin(), one.end());
            break;
        }
        case 4:
            if (!out.empty())
                out.pop_back();
            break;
        case 5:
            out = out + character(script);
            break;
        default:
            out = corrupted(out);
            break;
        }
    }
    return out;
}

} // namespace kit
