#include "kits.hpp"

#include <algorithm>
#include <stdexcept>

namespace kit {

using fixture::byteOf;
using fixture::CharacterTable;
using fixture::CollationTable;

World::World(std::size_t misalignment) : library(worldFile(), 600000, misalignment) {
    add("1252 german", Script::Latin, "1252", "german", nullptr);
    add("1252 literal", Script::Latin, "1252", "literal", "basic");
    add("1252 other kind", Script::Latin, "1252", "other", nullptr);
    add("1252 own weights", Script::Latin, "1252", "own", "basic");
    add("1252 plain letters", Script::Latin, "1252", "plain letters", "basic");
    add("1252 marks alike", Script::Latin, "1252", "marks alike", nullptr);
    add("1252 a mark expands", Script::Latin, "1252", "a mark expands", nullptr);
    add("1252 BASIC", Script::Latin, "1252", "basic", "basic");
    add("1252 BASIC, letters lost in lower case", Script::Latin, "1252", "basic", "losing");
    add("1252 BASIC without case table", Script::Latin, "1252", "basic", nullptr);
    add("Thai", Script::Thai, "620-2533", "basic", "basic");
    add("SHIFT-JIS weights", Script::ShiftJis, "SHIFT-JIS", "weights", "basic");
    add("SHIFT-JIS BASIC", Script::ShiftJis, "SHIFT-JIS", "basic", "basic");
    add("SHIFT-JIS BASIC without case table", Script::ShiftJis, "SHIFT-JIS", "basic", nullptr);
    add("EUCJIS weights", Script::Euc, "EUCJIS", "weights", "basic");
    add("EUCJIS BASIC", Script::Euc, "EUCJIS", "basic", "basic");
    add("UTF-8 weights", Script::Utf8, "UTF-8", "weights", "basic");
    add("UTF-8 BASIC", Script::Utf8, "UTF-8", "basic", "basic");
    add("UTF-8 BASIC, common pairs of case", Script::Utf8, "UTF-8", "basic", "common");
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
            made.twin.collation = latinWeights(collation);
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
        made.twin.casePages.emplace(std::string_view(caseTable) == "common" ? commonCase() : unicodeCase());
    else if (cased && std::string_view(caseTable) == "losing")
        made.twin.byteCase = losingCase();
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
            return {one(0xC2, 0xC4), one(0x80, 0xBF)};
        if (dice < 12)
            return {one(0xCE, 0xD1), one(0x80, 0xBF)};
        static constexpr unsigned char kStarts[][2] = {
            {0xE1, 0xB8}, {0xE2, 0x93}, {0xEF, 0xBC}, {0xEF, 0xBD}, {0xE3, 0x81}, {0xE0, 0xB8},
            {0xE0, 0xB9}, {0xEF, 0x80}, {0xEF, 0xBB}, {0xEF, 0xBF}, {0xE9, 0x81}, {0xE2, 0x80}};
        const auto &start = kStarts[random.below(12)];
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
