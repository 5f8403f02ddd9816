// From directory entries to converters: every type, what each takes of the arena, routes, and what is
// refused.
#include "conversion_pair.hpp"
#include "reference_converters.hpp"

#include <algorithm>
#include <cstring>

namespace {

using fixture::ArenaModel;
using fixture::bytesOf;
using fixture::CharacterTable;
using fixture::convert;
using fixture::convertText;
using fixture::DataFile;
using fixture::gives;
using fixture::Library;
using fixture::Mapping;
using fixture::units16;
using fixture::units32;
using unit::Bytes;
using unit::Pair;
namespace peek = fixture::peek;

DataFile named(std::initializer_list<const char *> pages) {
    DataFile file;
    for (const char *const page : pages)
        file.codePage(page, CharacterTable::singleByte());
    return file;
}

TEST(TableConstruction, EqualNamesNeedNoTable) {
    Library library(named({"A", "a "}));
    for (const char *const target : {"A", "a", "a  "}) {
        const nlsConversion *const conversion = library.conversion("A", target);
        EXPECT_EQ(peek::converter(conversion), nullptr) << target;
    }
}

TEST(TableConstruction, UndefinedNeedsNoTable) {
    Library library(named({"A", "undefined"}));
    EXPECT_EQ(peek::converter(library.conversion("A", "UNDEFINED")), nullptr);
    EXPECT_EQ(peek::converter(library.conversion("Undefined", "A")), nullptr);
}

TEST(TableConstruction, NoEntryAndNoRouteGivesEight) {
    Library library(named({"A", "B", "UTF-8"}));
    EXPECT_TRUE(gives("nlsCreateConversion", 8, library.tryConversion("A", "B")));
    EXPECT_TRUE(gives("nlsCreateConversion", 8, library.tryConversion("A", "UTF-8")));
    EXPECT_TRUE(gives("nlsCreateConversion", 8, library.tryConversion("UTF-8", "B")));
}

TEST(TableConstruction, FirstEntryOfThePairWins) {
    DataFile file = named({"A", "B"});
    file.conversion("a ", "B", 3);
    file.conversion("A", "B", 4);
    Library library(file);
    EXPECT_EQ(convert(library.conversion("A", "B"), {0xB1}, 8).text(), (Bytes{0x8E, 0xB1}));
}

TEST(TableConstruction, TableIsBuiltOnceAndReadOnce) {
    DataFile file = named({"A", "B"});
    const fixture::ByteTable map = fixture::identityTable();
    file.conversion("A", "B", 1, Bytes(map.begin(), map.end()));
    file.codePage("a2", CharacterTable::singleByte());
    Library library(file);
    library.locale("A");
    library.locale("B");
    library.files.restart();
    const nlsConversion *const first = library.conversion("A", "B");
    ASSERT_EQ(library.files.reads(), 1);
    EXPECT_EQ(library.files.log[0].length, 528U);
    EXPECT_EQ(library.conversion("A", "B"), first);
    EXPECT_EQ(library.files.reads(), 1);
}

TEST(TableConstruction, PlainTypesTakeTheirBodyAndEightBytes) {
    for (const std::size_t body : {std::size_t{0}, std::size_t{1}, std::size_t{9}, std::size_t{256}}) {
        DataFile file = named({"A", "B"});
        file.conversion("A", "B", 3, Bytes(body, 0x55));
        Library library(file);
        ArenaModel model(library.memory.data(), 600000);
        model.open(file.entries());
        const nlsConversion *const conversion = library.conversion("A", "B");
        for (int i = 0; i < 2; ++i) {
            model.take(136, 8);
            model.take(792, 1);
        }
        model.take(48, 8);
        model.take(static_cast<std::uint32_t>(body) + 8, 8);
        EXPECT_EQ(library.remaining(), model.remaining()) << body;
        EXPECT_EQ(peek::kindWord(conversion), 3);
        const auto *const copy = static_cast<const unsigned char *>(peek::converter(conversion));
        EXPECT_EQ(std::count(copy, copy + body, 0x55), static_cast<std::ptrdiff_t>(body));
    }
}

TEST(TableConstruction, BodyLengthIsBoundedByTheRecord) {
    for (const char *const length : {"513 ", "9999", "-1  ", "-999", "-8  ", "-9  "}) {
        DataFile file = named({"A", "B"});
        file.conversionRecord("A", "B", length, 3, Bytes(512, 0x55));
        Library library(file);
        nlsConversion *conversion = nullptr;
        const nlsStatus status = library.tryConversion("A", "B", &conversion);
        if (status == NLS_OK) {
            EXPECT_EQ(convert(conversion, bytesOf("ab"), 8).text(), bytesOf("ab")) << length;
        } else {
            EXPECT_EQ(status, NLS_E_ICU) << length;
        }
    }
}

// ---- File types ----

struct Remapped {
    int type;
    int word;
};

// The whole table of file types that are replaced.
const Remapped kRemapped[] = {
    {144, 151},  {145, 536},  {146, 279},  {147, 1048}, {148, 153},  {149, 538},  {150, 281},
    {151, 1050}, {152, 155},  {153, 540},  {154, 283},  {155, 1052}, {156, 539},  {157, 156},
    {158, 1051}, {159, 284},  {160, 667},  {161, 668},  {162, 1179}, {163, 796},  {164, 795},
    {165, 1180}, {166, 1307}, {167, 1308}, {168, 286},  {169, 1053}, {170, 158},  {171, 541},
    {172, 261},  {173, 1030}, {174, 133},  {175, 518},  {176, 389},  {177, 1542},
};

// What the property tables say of a kind; 0 stands for "no value".
std::uint32_t property17(int kind) {
    switch (kind) {
    case 1:
    case 2:
    case 4:
    case 20:
    case 50:
        return 1;
    case 3:
    case 18:
    case 21:
    case 22:
    case 23:
    case 24:
    case 27:
    case 29:
    case 51:
        return 2;
    case 17:
    case 19:
    case 81:
        return 3;
    case 5:
    case 6:
    case 89:
        return 4;
    default:
        return 0;
    }
}

std::uint32_t property24(int kind) {
    switch (kind) {
    case 2:
    case 20:
        return 1;
    case 3:
    case 4:
    case 18:
    case 22:
    case 30:
    case 50:
    case 51:
        return 2;
    case 17:
    case 19:
        return 3;
    case 21:
    case 23:
    case 24:
    case 25:
    case 26:
    case 27:
    case 28:
    case 29:
    case 81:
    case 89:
        return 4;
    default:
        return 0;
    }
}

void expectProperties(nlsConversion *conversion, int kind) {
    std::uint32_t value = 0xDEAD;
    nlsStatus status = nlsGetIntConversionProperty(conversion, 17, &value);
    EXPECT_EQ(status, property17(kind) == 0 ? NLS_E_NULLARG : NLS_OK) << "kind " << kind;
    EXPECT_EQ(value, property17(kind) == 0 ? 0xDEAD : property17(kind)) << "kind " << kind;
    value = 0xDEAD;
    status = nlsGetIntConversionProperty(conversion, 24, &value);
    EXPECT_EQ(status, property24(kind) == 0 ? NLS_E_NULLARG : NLS_OK) << "kind " << kind;
    EXPECT_EQ(value, property24(kind) == 0 ? 0xDEAD : property24(kind)) << "kind " << kind;
    value = 0xDEAD;
    EXPECT_EQ(nlsGetIntConversionProperty(conversion, 28, &value), NLS_OK);
    EXPECT_EQ(value, 0U);
}

// Text "a" and a character of plane 1, in the source form of a kind and in its target form.
Bytes sampleSource(int kind, bool swapped) {
    if (kind == 22 || kind == 24 || kind == 26)
        return {'a', 0xF0, 0x9F, 0x98, 0x80};
    if (kind == 25 || kind == 28)
        return units32({'a', 0x1F600}, swapped);
    return units16({'a', 0xD83D, 0xDE00}, swapped);
}

Bytes sampleTarget(int kind, bool swapped) {
    if (kind == 21 || kind == 23 || kind == 25)
        return {'a', 0xF0, 0x9F, 0x98, 0x80};
    if (kind == 26 || kind == 27)
        return units32({'a', 0x1F600}, swapped);
    return units16({'a', 0xD83D, 0xDE00}, swapped);
}

TEST(TableConstruction, ReplacedTypesConvertInTheByteOrdersOfTheirReplacements) {
    for (const Remapped &row : kRemapped) {
        const int kind = row.word & ~0x780;
        DataFile inFormat = unit::mappedPage(Mapping::doubleBytePage());
        DataFile inRecord = unit::mappedPage(Mapping::doubleBytePage());
        const char *const source = kind == 30 ? "X" : "P";
        const char *const target = kind == 30 ? "P" : "X";
        for (DataFile *const file : {&inFormat, &inRecord})
            file->codePage("X", CharacterTable::singleByte());
        inFormat.conversion(source, target, fixture::byteOf(row.type));
        inRecord.conversion(source, target, row.type, Bytes());
        for (const DataFile *const file : {&inFormat, &inRecord}) {
            Library library(*file);
            nlsConversion *conversion = nullptr;
            const nlsStatus status = library.tryConversion(source, target, &conversion);
            if (kind == 5 || kind == 6) {
                EXPECT_TRUE(gives("nlsCreateConversion", 8, status)) << row.type;
                continue;
            }
            ASSERT_EQ(status, NLS_OK) << row.type;
            EXPECT_EQ(peek::kindWord(conversion), row.word) << row.type;
            expectProperties(conversion, kind);
            const bool swapSource = (row.word & 0x80) != 0;
            const bool swapTarget = (row.word & 0x200) != 0;
            if (kind == 29) {
                EXPECT_EQ(convert(conversion, bytesOf("ab"), 16).text(), units16({'a', 'b'}, swapTarget))
                    << row.type;
            } else if (kind == 30) {
                EXPECT_EQ(convert(conversion, units16({'a', 'b'}, swapSource), 16).text(), bytesOf("ab"))
                    << row.type;
            } else {
                EXPECT_EQ(convert(conversion, sampleSource(kind, swapSource), 64).text(),
                          sampleTarget(kind, swapTarget))
                    << row.type;
            }
        }
    }
}

TEST(TableConstruction, EveryRowOfTheReplacementsIsThere) {
    ASSERT_EQ(std::size(kRemapped), 34U);
    for (std::size_t i = 0; i < std::size(kRemapped); ++i)
        EXPECT_EQ(kRemapped[i].type, 144 + static_cast<int>(i));
}

TEST(TableConstruction, PropertiesOfEveryPlainKind) {
    for (int kind = 2; kind <= 128; ++kind) {
        if (kind == 5 || kind == 6 || kind == 7 || (kind >= 17 && kind <= 20) || kind == 29 || kind == 30 ||
            kind == 50 || kind == 51 || kind == 81 || kind == 89 || kind == 128)
            continue; // these need more than an entry
        Pair pair(unit::pairOfType(fixture::byteOf(kind)));
        expectProperties(pair.conversion, kind);
    }
    Pair map(unit::pairOfMap(fixture::identityTable()));
    std::uint32_t value = 0;
    EXPECT_EQ(nlsGetIntConversionProperty(map.conversion, 17, &value), NLS_OK);
    EXPECT_EQ(value, 1U);
}

TEST(TableConstruction, PropertiesOfTheTableKinds) {
    for (const unsigned char type : unit::Types{17, 81, 89})
        for (const unsigned char back : unit::Types{18, 50}) {
            Library library(unit::mappedPage(Mapping::doubleBytePage(), type, back));
            expectProperties(library.conversion("P", "UTF-8"), type);
            expectProperties(library.conversion("UTF-8", "P"), back);
            expectProperties(library.conversion("P", "UTF-16"), 29);
            expectProperties(library.conversion("UTF-16", "P"), 30);
        }
    for (const unsigned char type : unit::Types{19, 51}) {
        Library library(unit::byteUnicodePair(unit::someUnits(), type));
        expectProperties(library.conversion("S", "UTF-8"), type);
        expectProperties(library.conversion("UTF-8", "S"), 20);
    }
}

TEST(TableConstruction, TypesThatNoFileMayHoldAreRefused) {
    for (int type = 129; type <= 143; ++type) {
        Library format(unit::pairOfType(fixture::byteOf(type)));
        EXPECT_EQ(format.tryConversion("A", "B"), NLS_E_ICU) << type;
        Library record(unit::pairOfMap(fixture::identityTable(), type));
        EXPECT_EQ(record.tryConversion("A", "B"), NLS_E_ICU) << type;
    }
    for (const int type : {178, 179, 255, 256, 257, 279, 536, 1000, 1024, 1599}) {
        Library record(unit::pairOfMap(fixture::identityTable(), type));
        EXPECT_EQ(record.tryConversion("A", "B"), NLS_E_ICU) << type;
    }
    for (int type = 178; type <= 255; ++type) {
        Library format(unit::pairOfType(fixture::byteOf(type)));
        EXPECT_EQ(format.tryConversion("A", "B"), NLS_E_ICU) << type;
    }
}

TEST(TableConstruction, ChainsAndCollatorConvertersDoNotComeFromTheFile) {
    for (const unsigned char type : unit::Types{7, 5, 6}) {
        Library library(unit::pairOfType(type));
        EXPECT_EQ(library.tryConversion("A", "B"), NLS_E_ICU) << int(type);
        Library record(unit::pairOfMap(fixture::identityTable(), type));
        EXPECT_EQ(record.tryConversion("A", "B"), NLS_E_ICU) << int(type);
    }
}

TEST(TableConstruction, ByteMapWithoutItsWholeBodyStaysInItsMemory) {
    for (const std::size_t body : {std::size_t{0}, std::size_t{10}, std::size_t{255}}) {
        DataFile file = named({"A", "B"});
        file.conversion("A", "B", 1, Bytes(body, 'x'));
        Library library(file);
        nlsConversion *conversion = nullptr;
        if (library.tryConversion("A", "B", &conversion) == NLS_OK) {
            Bytes all;
            for (unsigned b = 0; b < 256; ++b)
                all.push_back(fixture::byteOf(b));
            EXPECT_EQ(convert(conversion, all, 256).written, 256U);
        }
    }
}

// ---- Mapping tables ----

std::uint32_t subTableBytes(const Mapping &mapping, ArenaModel &model) {
    std::uint32_t reads = 0;
    for (const fixture::CodeRange &range : mapping.groups)
        for (const auto *const table : {&range.values, &range.reverse, &range.deltas})
            if (!table->empty()) {
                model.take(static_cast<std::uint32_t>(table->size()) * 2, 2);
                ++reads;
            }
    return reads;
}

TEST(TableConstruction, MappingTakesItsSubTablesAndTwoBodiesAndServesBothDirections) {
    for (const bool forthFirst : {true, false}) {
        const Mapping mapping = Mapping::planeTwoPage();
        const DataFile file = unit::mappedPage(mapping, 81, 18);
        Library library(file);
        ArenaModel model(library.memory.data(), 600000);
        model.open(file.entries());
        library.locale("P");
        library.locale("UTF-8");
        for (int i = 0; i < 2; ++i) {
            model.take(136, 8);
            model.take(792, 1);
        }
        library.files.restart();
        const char *const source = forthFirst ? "P" : "UTF-8";
        const char *const target = forthFirst ? "UTF-8" : "P";
        nlsConversion *const first = library.conversion(source, target);
        model.take(48, 8);
        const std::uint32_t subTables = subTableBytes(mapping, model);
        model.take(496, 8);
        model.take(496, 8);
        EXPECT_EQ(library.remaining(), model.remaining()) << forthFirst;
        EXPECT_GE(library.files.reads(), static_cast<int>(subTables) + 1);
        library.files.restart();
        nlsConversion *const second = library.conversion(target, source);
        model.take(48, 8);
        EXPECT_EQ(library.remaining(), model.remaining()) << "the other direction is there already";
        EXPECT_EQ(library.files.reads(), 0);
        EXPECT_EQ(peek::kindWord(first), forthFirst ? 81 : 18);
        EXPECT_EQ(peek::kindWord(second), forthFirst ? 18 : 81);
    }
}

TEST(TableConstruction, MappingLoadsTheCharacterTableOfItsPageOnce) {
    // The page has a second name for its locale, so its own character table is not loaded before.
    DataFile file = unit::mappedPage(Mapping::doubleBytePage());
    Library library(file);
    const std::uint32_t before = library.remaining();
    nlsLocale *const utf8 = library.locale("UTF-8");
    nlsLocale *const page = library.locale("P");
    EXPECT_LT(library.remaining(), before);
    nlsConversion *conversion = nullptr;
    EXPECT_EQ(nlsCreateConversion(library.handle, page, utf8, &conversion), NLS_OK);
}

TEST(TableConstruction, MappingWithoutTheOppositeEntryGivesEight) {
    DataFile file;
    file.codePage("P", CharacterTable::doubleByte());
    file.codePage("UTF-8", CharacterTable::utf8());
    file.mapping("P", "UTF-8", 17, Mapping::doubleBytePage());
    Library library(file);
    EXPECT_EQ(library.tryConversion("P", "UTF-8"), NLS_E_ICU);
    DataFile reverse;
    reverse.codePage("P", CharacterTable::doubleByte());
    reverse.codePage("UTF-8", CharacterTable::utf8());
    reverse.conversion("UTF-8", "P", 18);
    Library other(reverse);
    EXPECT_EQ(other.tryConversion("UTF-8", "P"), NLS_E_ICU) << "its descriptor is that of the other entry";
}

TEST(TableConstruction, MappingOfAPageWithoutCharacterTableGivesOne) {
    DataFile file = unit::mappedPage(Mapping::doubleBytePage());
    file.codePage("Q", CharacterTable::singleByte());
    // An entry whose page is not among the character sets: reached from a leg only.
    file.mapping("GHOST", "UTF-8", 17, Mapping::doubleBytePage());
    file.conversion("UTF-8", "GHOST", 18);
    file.conversion("GHOST", "Q", 29);
    file.conversion("Q", "GHOST", 20);
    Library library(file);
    // Q to GHOST asks for GHOST to Q, that for GHOST to UTF-8: nobody has GHOST's characters.
    DataFile direct;
    direct.codePage("UTF-8", CharacterTable::utf8());
    direct.codePage("Q", CharacterTable::singleByte());
    direct.mapping("GHOST", "UTF-8", 17, Mapping::doubleBytePage());
    direct.conversion("UTF-8", "GHOST", 18);
    direct.conversion("Q", "UTF-8", 30);
    Library small(direct);
    EXPECT_NE(small.tryConversion("Q", "UTF-8"), NLS_OK);
}

TEST(TableConstruction, ShortSubTablesDescriptorsAndRecordsGiveTwentyOne) {
    const DataFile file = unit::mappedPage(Mapping::planeTwoPage());
    int reads = 0;
    {
        Library library(file);
        library.locale("P");
        library.locale("UTF-8");
        library.files.restart();
        library.conversion("P", "UTF-8");
        reads = library.files.reads();
    }
    ASSERT_GT(reads, 7);
    for (int read = 0; read < reads; ++read)
        for (const std::uint32_t missing : {1U, 33U, fixture::FileServer::kEverything}) {
            Library library(file);
            library.locale("P");
            library.locale("UTF-8");
            library.files.restart();
            library.files.failRead(read, missing);
            EXPECT_TRUE(gives("nlsCreateConversion", 21, library.tryConversion("P", "UTF-8"))) << read;
            library.files.heal();
            EXPECT_EQ(library.tryConversion("P", "UTF-8"), NLS_OK) << "a later request tries again";
            EXPECT_EQ(library.tryConversion("UTF-8", "P"), NLS_OK);
        }
}

TEST(TableConstruction, LegsThatFailGiveEight) {
    const DataFile file = unit::mappedPage(Mapping::doubleBytePage());
    for (const char *const target : {"UTF-16", "UTF-16BE"}) {
        Library library(file);
        library.locale("P");
        library.locale(target);
        library.files.restart();
        library.files.failRead(1);
        EXPECT_EQ(library.tryConversion("P", target), NLS_E_ICU);
        library.files.heal();
        EXPECT_EQ(library.tryConversion("P", target), NLS_OK);
    }
    DataFile noLeg = named({"A", "B"});
    noLeg.conversion("A", "B", 29);
    noLeg.conversion("B", "A", 30);
    Library library(noLeg);
    EXPECT_EQ(library.tryConversion("A", "B"), NLS_E_ICU);
    EXPECT_EQ(library.tryConversion("B", "A"), NLS_E_ICU);
}

TEST(TableConstruction, LegTakesSixteenBytesAndSharesTheMapping) {
    const DataFile file = unit::mappedPage(Mapping::doubleBytePage());
    Library library(file);
    library.conversion("P", "UTF-8");
    library.locale("UTF-16");
    const std::uint32_t before = library.remaining();
    library.files.restart();
    library.conversion("P", "UTF-16");
    const std::uint32_t used = before - library.remaining();
    EXPECT_GE(used, 48U + 16U);
    EXPECT_LT(used, 48U + 16U + 8U);
    EXPECT_EQ(library.files.reads(), 0);
}

TEST(TableConstruction, LegOfTheWrongFormIsRefused) {
    // 29 and 30 read a mapping; a byte table behind them must not be taken for one.
    DataFile file = unit::byteUnicodePair(unit::someUnits());
    file.codePage("X", CharacterTable::singleByte());
    file.conversion("S", "X", 29);
    file.conversion("X", "S", 30);
    Library library(file);
    nlsConversion *conversion = nullptr;
    if (library.tryConversion("S", "X", &conversion) == NLS_OK)
        convert(conversion, bytesOf("abc"), 16);
    if (library.tryConversion("X", "S", &conversion) == NLS_OK)
        convert(conversion, units16({'a', 'b'}), 16);
}

// ---- Byte pages by table ----

TEST(TableConstruction, ByteTablesTakeWhatTheirCharactersNeed) {
    const std::vector<std::uint16_t> units = unit::someUnits();
    const DataFile file = unit::byteUnicodePair(units);
    Library warm(file); // the table of zeros is counted for the first handle at the latest
    warm.conversion("S", "UTF-8");
    Library library(file);
    library.locale("S");
    library.locale("UTF-8");
    const std::uint32_t before = library.remaining();
    nlsConversion *const forth = library.conversion("S", "UTF-8");
    std::vector<bool> taken(256);
    std::uint32_t tables = 256;
    taken[0] = true;
    for (const std::uint16_t unit : units) {
        const Bytes character = reference::utf8Of(unit);
        if (character.size() == 1)
            continue;
        const unsigned number = character[character.size() - 2];
        if (!taken[number])
            tables += 72;
        taken[number] = true;
    }
    const std::uint32_t used = before - library.remaining();
    const std::uint32_t least = 48 + tables + 1032 + 2056;
    EXPECT_GE(used, least);
    EXPECT_LE(used, least + 256 + 24) << "the table of zeros at most once, and padding";
    EXPECT_EQ(peek::kindWord(forth), 19);
    library.files.restart();
    nlsConversion *const back = library.conversion("UTF-8", "S");
    EXPECT_EQ(library.files.reads(), 0) << "built in the same pass";
    EXPECT_EQ(peek::kindWord(back), 20);
}

TEST(TableConstruction, ReverseTypeBuildsTheOtherDirectionFirst) {
    Library library(unit::byteUnicodePair(unit::someUnits()));
    nlsConversion *const back = library.conversion("UTF-8", "S");
    EXPECT_EQ(peek::kindWord(back), 20);
    EXPECT_EQ(convert(back, bytesOf("abc"), 8).text(), bytesOf("abc"));
    EXPECT_EQ(peek::kindWord(library.conversion("S", "UTF-8")), 19) << "never the forward table itself";
}

TEST(TableConstruction, TwoCharactersOnOneSlotGiveTwentyTwo) {
    std::vector<std::uint16_t> units = unit::someUnits();
    units[0xFE] = 0x2500;
    units[0xFF] = 0xF500; // the same two last bytes
    Library far(unit::byteUnicodePair(units));
    EXPECT_TRUE(gives("nlsCreateConversion", 22, far.tryConversion("S", "UTF-8")));
    units[0xFE] = 0xFFFD;
    units[0xFF] = 0xFFFD;
    Library same(unit::byteUnicodePair(units));
    EXPECT_TRUE(gives("nlsCreateConversion", 22, same.tryConversion("S", "UTF-8")));
}

TEST(TableConstruction, ByteTableWithoutTheOppositeEntryGivesOne) {
    DataFile file;
    file.codePage("S", CharacterTable::singleByte());
    file.codePage("UTF-8", CharacterTable::utf8());
    file.conversion("S", "UTF-8", 19, units16(unit::someUnits()), 19);
    Library library(file);
    EXPECT_TRUE(gives("nlsCreateConversion", 1, library.tryConversion("S", "UTF-8")));
}

TEST(TableConstruction, ReverseTypeWithoutOrWithAFailingForwardTableGivesEight) {
    DataFile none = named({"S", "UTF-8"});
    none.conversion("UTF-8", "S", 20);
    Library without(none);
    EXPECT_EQ(without.tryConversion("UTF-8", "S"), NLS_E_ICU);
    std::vector<std::uint16_t> units = unit::someUnits();
    units[0xFF] = units[0xFE];
    Library failing(unit::byteUnicodePair(units));
    EXPECT_EQ(failing.tryConversion("UTF-8", "S"), NLS_E_ICU);
    DataFile other = named({"A", "B"});
    other.conversion("A", "B", 20);
    other.conversion("B", "A", 3); // nothing is stored for the other direction
    Library plain(other);
    EXPECT_EQ(plain.tryConversion("A", "B"), NLS_E_ICU);
}

TEST(TableConstruction, CirclesGiveEight) {
    DataFile facing = named({"A", "B"});
    facing.conversion("A", "B", 20);
    facing.conversion("B", "A", 20);
    Library two(facing);
    EXPECT_EQ(two.tryConversion("A", "B"), NLS_E_ICU);
    EXPECT_EQ(two.tryConversion("B", "A"), NLS_E_ICU);
    DataFile own = named({"A", "UTF-8"});
    own.conversion("A", "UTF-8", 29);
    own.conversion("UTF-8", "A", 30);
    Library legs(own);
    EXPECT_EQ(legs.tryConversion("A", "UTF-8"), NLS_E_ICU);
    EXPECT_EQ(legs.tryConversion("UTF-8", "A"), NLS_E_ICU);
    DataFile longer = named({"A", "UTF-8", "B"});
    longer.conversion("A", "B", 20);
    longer.conversion("B", "A", 29);
    longer.conversion("B", "UTF-8", 20);
    longer.conversion("UTF-8", "B", 30);
    Library chain(longer);
    EXPECT_EQ(chain.tryConversion("A", "B"), NLS_E_ICU);
    EXPECT_EQ(chain.tryConversion("UTF-8", "B"), NLS_E_ICU);
    EXPECT_EQ(chain.lend(), NLS_OK) << "and the handle is not busy";
}

// ---- Routes ----

TEST(Route, GoesThroughAnyPageThatLinksThePair) {
    DataFile file = named({"A", "UTF-16"});
    file.codePage("MIDDLE", CharacterTable::singleByte());
    file.conversion("A", "MIDDLE", 3);
    file.conversion("MIDDLE", "UTF-16", 4);
    Library library(file);
    nlsConversion *const chain = library.conversion("A", "UTF-16");
    EXPECT_EQ(peek::kindWord(chain), 7);
    EXPECT_EQ(convertText(chain, {'a', 0xB1}, 16, 16).text(), (Bytes{'a', 0xB1}));
    std::uint32_t value = 0;
    EXPECT_EQ(nlsGetIntConversionProperty(chain, 28, &value), NLS_OK);
    EXPECT_EQ(value, 1U);
    EXPECT_EQ(nlsGetIntConversionProperty(chain, 17, &value), NLS_OK);
    EXPECT_EQ(value, 2U) << "the product of both";
    EXPECT_EQ(nlsGetIntConversionProperty(chain, 24, &value), NLS_OK);
    EXPECT_EQ(value, 2U) << "the second's";
}

TEST(Route, IsForUnicodeNamesOnly) {
    DataFile file = named({"A", "B", "MIDDLE"});
    file.conversion("A", "MIDDLE", 3);
    file.conversion("MIDDLE", "B", 4);
    Library library(file);
    EXPECT_EQ(library.tryConversion("A", "B"), NLS_E_ICU);
}

TEST(Route, KnowsItsNamesByTheirBeginning) {
    for (const char *const name :
         {"UTF-8", "utf-8", "UTF-8X", "UCS2", "ucs2-be", "UTF-16", "utf-16BE", "UTF-32", "Utf-32LE"})
        for (const bool asSource : {true, false}) {
            DataFile file = named({"A", "MIDDLE"});
            file.codePage(name, CharacterTable::singleByte());
            const std::string source = asSource ? name : "A";
            const std::string target = asSource ? "A" : name;
            file.conversion(source, "MIDDLE", 3);
            file.conversion("MIDDLE", target, 4);
            Library library(file);
            EXPECT_EQ(library.tryConversion(source, target), NLS_OK) << name;
        }
    for (const char *const name : {"UTF8", "UTF-7", "UCS-2", "XUTF-8", "UTF"}) {
        DataFile file = named({"A", "MIDDLE"});
        file.codePage(name, CharacterTable::singleByte());
        file.conversion("A", "MIDDLE", 3);
        file.conversion("MIDDLE", name, 4);
        Library library(file);
        EXPECT_EQ(library.tryConversion("A", name), NLS_E_ICU) << name;
    }
}

TEST(Route, FindsASecondWayWhenTheFirstEndsBlind) {
    DataFile file = named({"A", "UTF-16"});
    file.codePage("BLIND", CharacterTable::singleByte());
    file.codePage("MIDDLE", CharacterTable::singleByte());
    file.conversion("A", "BLIND", 3);
    file.conversion("A", "MIDDLE", 3);
    file.conversion("MIDDLE", "UTF-16", 4);
    Library library(file);
    EXPECT_EQ(library.tryConversion("A", "UTF-16"), NLS_OK);
    EXPECT_EQ(library.tryConversion("UTF-16", "A"), NLS_E_ICU) << "not the way back";
}

TEST(Route, RunsOutOfArenaWithOne) {
    DataFile file(370);
    for (const char *const page : {"A", "UTF-16", "MIDDLE"})
        file.codePage(page, CharacterTable::singleByte());
    file.conversion("A", "MIDDLE", 3);
    file.conversion("MIDDLE", "UTF-16", 4);
    while (file.entries() < 360)
        file.conversion("X", "Y" + std::to_string(file.entries()), 3);
    const std::int32_t objects = 120 + 360 * 64 + 2 * (136 + 792) + 48;
    bool succeeded = false;
    for (std::int32_t size = std::max(25000, objects); size < 27000 && !succeeded; ++size) {
        Library library(file, size);
        const nlsStatus status = library.tryConversion("A", "UTF-16");
        succeeded = status == NLS_OK;
        if (!succeeded) {
            ASSERT_TRUE(gives("nlsCreateConversion", 1, status)) << size;
            ASSERT_EQ(library.lend(), NLS_OK);
            ASSERT_EQ(library.tryConversion("A", "UTF-16"), NLS_OK);
            nlsClose(library.handle);
            library.handle = nullptr;
        }
    }
    EXPECT_TRUE(succeeded);
}

} // namespace
