// Sort data of rebuilt locales: the class map and flags that rebuilding completes, nlsIsSortNeeded,
// nlsGetNextWord.
#include "harness/stored.hpp"
#include "model/order.hpp"
#include "model/words.hpp"

#include <gtest/gtest.h>

using kit::Bytes;
using kit::gives;
using kit::Kit;
using kit::Rebuilt;
using kit::store;
using kit::operator""_b;
using kit::operator+;
using kit::World;

namespace {

constexpr unsigned kMapPlace = 8;
constexpr unsigned kFlagsPlace = 6;

Bytes identityBytes() {
    const fixture::ByteTable table = fixture::identityTable();
    return {table.begin(), table.end()};
}

fixture::ByteTable mapOf(const Rebuilt &rebuilt) {
    fixture::ByteTable map{};
    std::copy(rebuilt.sortBlock() + kMapPlace, rebuilt.sortBlock() + kMapPlace + 256, map.begin());
    return map;
}

// A rebuilt locale with sort data of this format and map.
std::unique_ptr<Rebuilt> rebuild(World &world, const Kit &one, unsigned char format,
                                 const fixture::ByteTable &classes = {}, nlsLocale *target = nullptr,
                                 unsigned char flags = 0) {
    const std::vector<std::uint16_t> data = kit::sortData(format, classes, flags);
    auto rebuilt =
        std::make_unique<Rebuilt>(world.library.handle, store(one.locale), "sorted", &data, target);
    EXPECT_TRUE(gives("nlsDbCollationToLocale", 0, rebuilt->status)) << one.name;
    return rebuilt;
}

struct Word {
    nlsStatus status = 0;
    std::uint32_t length = 77;
    Bytes buffer;
    std::size_t moved = 0;
};

Word nextWord(nlsLocale *locale, const Bytes &text, std::int32_t size, std::int16_t mode = 1) {
    static kit::GuardedText source;
    static fixture::GuardedBuffer output(4096);
    const auto room = static_cast<std::size_t>(std::max(size, 0));
    unsigned char *const buffer = output.tail(room);
    std::fill(buffer, buffer + room, 0xEE);
    char *const begin = const_cast<char *>(source.terminated(text));
    char *at = begin;
    Word word;
    word.status = nlsGetNextWord(locale, &at, mode, reinterpret_cast<char *>(buffer), size, &word.length);
    word.moved = static_cast<std::size_t>(at - begin);
    word.buffer.assign(buffer, buffer + room);
    return word;
}

Bytes textOf(const Word &word) {
    return {word.buffer.begin(),
            word.buffer.begin() + std::min<std::ptrdiff_t>(word.length, std::ssize(word.buffer))};
}

// All words of a text.
std::vector<Bytes> allWords(nlsLocale *locale, Bytes text) {
    std::vector<Bytes> words;
    for (int guard = 0; guard < 1000; ++guard) {
        const Word word = nextWord(locale, text, 500);
        if (word.status == 20)
            return words;
        EXPECT_TRUE(gives("nlsGetNextWord", 0, word.status));
        words.push_back(textOf(word));
        text.erase(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(word.moved));
    }
    ADD_FAILURE() << "words without end";
    return words;
}

// A map in which every byte is ignored but those given.
fixture::ByteTable classes(const std::vector<std::pair<unsigned char, unsigned char>> &given) {
    fixture::ByteTable map{};
    map.fill(12);
    for (unsigned b = 'a'; b <= 'z'; ++b)
        map[b] = 2;
    for (unsigned b = '0'; b <= '9'; ++b)
        map[b] = 3;
    map[' '] = 1;
    for (const auto &[byte, kind] : given)
        map[byte] = kind;
    return map;
}

nlsStatus plainNeeded(nlsLocale *locale) {
    std::uint32_t flag = 0;
    return nlsIsSortNeeded(locale, &flag);
}

nlsStatus plainWord(nlsLocale *locale) {
    char text[] = "abc";
    char *at = text;
    char word[200];
    std::uint32_t length = 0;
    return nlsGetNextWord(locale, &at, 1, word, sizeof word, &length);
}

} // namespace

TEST(SortData, WhatIsNoLocaleGives13Or24) {
    kit::refusesWhatIsNoLocale("nlsIsSortNeeded", plainNeeded);
    kit::refusesWhatIsNoLocale("nlsGetNextWord", plainWord);
}

TEST(SortData, ALocaleWithoutSortDataGives32) {
    World world;
    EXPECT_TRUE(gives("nlsIsSortNeeded", 32, plainNeeded(world["1252 german"].locale)));
    EXPECT_TRUE(gives("nlsGetNextWord", 32, plainWord(world["1252 german"].locale)));
    const Rebuilt rebuilt(world.library.handle, store(world["1252 german"].locale));
    EXPECT_TRUE(gives("nlsIsSortNeeded", 32, plainNeeded(rebuilt.locale)));
    EXPECT_TRUE(gives("nlsGetNextWord", 32, plainWord(rebuilt.locale)));
}

TEST(SortData, NullArgumentsGive16) {
    World world;
    const auto rebuilt = rebuild(world, world["1252 german"], 7);
    char text[] = "abc";
    char *at = text;
    char *none = nullptr;
    char word[8];
    std::uint32_t length = 0;
    EXPECT_TRUE(gives("nlsIsSortNeeded", 16, nlsIsSortNeeded(rebuilt->locale, nullptr)));
    EXPECT_TRUE(gives("nlsGetNextWord", 16, nlsGetNextWord(rebuilt->locale, nullptr, 1, word, 8, &length)));
    EXPECT_TRUE(gives("nlsGetNextWord", 16, nlsGetNextWord(rebuilt->locale, &none, 1, word, 8, &length)));
    EXPECT_TRUE(gives("nlsGetNextWord", 16, nlsGetNextWord(rebuilt->locale, &at, 1, nullptr, 8, &length)));
    EXPECT_TRUE(gives("nlsGetNextWord", 16, nlsGetNextWord(rebuilt->locale, &at, 1, word, 8, nullptr)));
    EXPECT_EQ(at, text);
}

TEST(SortData, SortingIsNeededByFormat) {
    World world;
    const auto needed = [&world](const char *name, unsigned char format) {
        const auto rebuilt = rebuild(world, world[name], format);
        std::uint32_t flag = 77;
        EXPECT_TRUE(gives("nlsIsSortNeeded", 0, nlsIsSortNeeded(rebuilt->locale, &flag)));
        return flag;
    };
    EXPECT_EQ(needed("1252 german", 7), 1U);
    EXPECT_EQ(needed("1252 german", 9), 0U);
    EXPECT_EQ(needed("1252 german", 128), 0U);
    EXPECT_EQ(needed("SHIFT-JIS weights", 7), 1U);
    for (const unsigned char format : Bytes{7, 8, 9, 128, 0})
        EXPECT_EQ(needed("UTF-8 BASIC", format), 0U) << "UTF-8 whatever the format";
    for (const unsigned char format : Bytes{0, 1, 6, 8, 10, 127, 129, 255})
        EXPECT_TRUE(
            gives("nlsIsSortNeeded", 6, plainNeeded(rebuild(world, world["1252 german"], format)->locale)));
}

TEST(SortData, TheGivenDataAreCopied) {
    World world;
    const std::vector<std::uint16_t> data = kit::sortData(7, classes({}), 0x50);
    const Rebuilt rebuilt(world.library.handle, store(world["1252 german"].locale), "sorted", &data);
    ASSERT_NE(rebuilt.sortBlock(), nullptr);
    EXPECT_EQ(std::memcmp(rebuilt.sortBlock(), data.data(), data.size() * 2), 0) << "a full map and no UTF-8";
    EXPECT_GE(rebuilt.sortBlock(), rebuilt.block + 1504) << "behind the tables";
}

TEST(SortData, EmptyMapEntriesAreBuiltFromLettersDigitsAndTrailCounts) {
    World world;
    for (const Kit &one : world.kits)
        for (const unsigned char format : Bytes{0, 7, 8, 9, 10, 128}) {
            const auto rebuilt = rebuild(world, one, format);
            EXPECT_EQ(mapOf(*rebuilt), model::builtClasses(one.twin, nullptr, format))
                << one.name << " " << +format;
        }
}

TEST(SortData, WithATargetTheLettersAreTheTargetsBelowFormat9) {
    // Two pages whose letters differ.
    fixture::DataFile file = kit::worldFile();
    fixture::CharacterTable other = fixture::CharacterTable::singleByte();
    other.classes['x'] = 7;
    file.codePage("OTHER", other);
    file.conversion("1252", "OTHER", 1, identityBytes());
    fixture::Library library(file);
    Kit one{"1252", kit::Script::Latin, library.locale("1252", "german"), {}};
    one.twin.characters = kit::latinPage();
    nlsLocale *const target = library.locale("OTHER");
    for (const unsigned char format : Bytes{0, 7, 8, 9, 10, 128}) {
        const std::vector<std::uint16_t> data = kit::sortData(format, {});
        const Rebuilt rebuilt(library.handle, store(one.locale), "sorted", &data, target);
        ASSERT_TRUE(gives("nlsDbCollationToLocale", 0, rebuilt.status));
        EXPECT_EQ(mapOf(rebuilt), model::builtClasses(one.twin, &other, format)) << +format;
        EXPECT_EQ(rebuilt.sortBlock()[kFlagsPlace], 0);
    }
}

TEST(SortData, GivenMapEntriesOverrideTheBuiltOnes) {
    World world;
    fixture::ByteTable given{};
    given['5'] = 4;
    given[0x81] = 1;
    given['a'] = 200;
    for (const char *const name : {"1252 german", "SHIFT-JIS weights", "UTF-8 BASIC"}) {
        fixture::ByteTable expected = model::builtClasses(world[name].twin, nullptr, 9);
        expected['5'] = 4;
        expected[0x81] = 1;
        expected['a'] = 200;
        EXPECT_EQ(mapOf(*rebuild(world, world[name], 9, given)), expected) << name;
    }
}

TEST(SortData, FlagsTellWhichSideIsUtf8) {
    fixture::DataFile file = kit::worldFile();
    file.conversion("1252", "UTF-8", 1, identityBytes());
    file.conversion("UTF-8", "1252", 1, identityBytes());
    fixture::Library library(file);
    const auto flags = [&library](const char *page, const char *target, unsigned char given = 0) {
        const std::vector<std::uint16_t> data = kit::sortData(7, {}, given);
        const Rebuilt rebuilt(library.handle, store(library.locale(page, "basic")), "sorted", &data,
                              target == nullptr ? nullptr : library.locale(target));
        EXPECT_TRUE(gives("nlsDbCollationToLocale", 0, rebuilt.status)) << page;
        return +rebuilt.sortBlock()[kFlagsPlace];
    };
    EXPECT_EQ(flags("1252", nullptr), 0);
    EXPECT_EQ(flags("UTF-8", nullptr), 0x02);
    EXPECT_EQ(flags("UTF-8", "1252"), 0x02 | 0x04);
    EXPECT_EQ(flags("1252", "UTF-8"), 0x08);
    EXPECT_EQ(flags("utf-8  ", "1252"), 0x02 | 0x04) << "as names are compared";
    EXPECT_EQ(flags("UTF-8", "UTF-8"), 0x02 | 0x04);
    EXPECT_EQ(flags("1252", nullptr, 0xF1), 0xF1) << "other bits stay";
    EXPECT_EQ(flags("UTF-8", nullptr, 0x80), 0x82);
}

TEST(SortData, Format9ReindexesTheMapThroughAByteTable) {
    fixture::DataFile file = kit::worldFile();
    fixture::ByteTable bytes = fixture::identityTable();
    std::swap(bytes['a'], bytes['5']);
    std::swap(bytes[0xC0], bytes['!']);
    file.codePage("OTHER", fixture::CharacterTable::singleByte());
    file.conversion("1252", "OTHER", 1, Bytes(bytes.begin(), bytes.end()));
    fixture::Library library(file);
    for (const unsigned char format : Bytes{9, 7, 128}) {
        fixture::ByteTable given{};
        given['a'] = 4;
        given['5'] = 6;
        const std::vector<std::uint16_t> data = kit::sortData(format, given);
        const Rebuilt rebuilt(library.handle, store(library.locale("1252", "german")), "sorted", &data,
                              library.locale("OTHER"));
        ASSERT_TRUE(gives("nlsDbCollationToLocale", 0, rebuilt.status));
        const fixture::ByteTable map = mapOf(rebuilt);
        EXPECT_EQ(map['a'], format == 9 ? 6 : 4);
        EXPECT_EQ(map['5'], format == 9 ? 4 : 6);
        EXPECT_EQ(map['!'], format == 9 ? 2 : 1) << "the class of the letter C0";
        EXPECT_EQ(map['7'], 3);
    }
}

TEST(SortData, ATargetWithoutConversionFailsTheRebuilding) {
    World world;
    const std::vector<std::uint16_t> data = kit::sortData(7, {});
    const void *const before = fixture::peek::newest(world.library.handle);
    const Rebuilt rebuilt(world.library.handle, store(world["1252 german"].locale), "sorted", &data,
                          world["Thai"].locale);
    EXPECT_TRUE(gives("nlsDbCollationToLocale", 8, rebuilt.status));
    for (const void *object = fixture::peek::newest(world.library.handle); object != before;
         object = fixture::peek::next(object))
        EXPECT_NE(object, rebuilt.block) << "not on the list";
}

// ---- Words ----------------------------------------------------------------------------------------------

TEST(NextWord, SeparatorsEndWordsAndIgnoredBytesVanish) {
    World world;
    const auto rebuilt = rebuild(world, world["1252 german"], 7, classes({{'!', 8}, {'?', 12}, {'~', 200}}));
    EXPECT_EQ(allWords(rebuilt->locale, "  abc  d!e?f~ 123 "_b),
              (std::vector<Bytes>{"abc"_b, "def"_b, "123"_b}));
    EXPECT_EQ(allWords(rebuilt->locale, "abc"_b), (std::vector<Bytes>{"abc"_b}));
}

TEST(NextWord, WithoutAFurtherWordThePointerStays) {
    World world;
    const auto rebuilt = rebuild(world, world["1252 german"], 7, classes({}));
    for (const Bytes &text : {""_b, "   "_b, " !! "_b}) {
        const Word word = nextWord(rebuilt->locale, text, 200);
        EXPECT_TRUE(gives("nlsGetNextWord", 20, word.status));
        EXPECT_EQ(word.moved, 0U);
    }
}

TEST(NextWord, JoinersAreKeptBeforeTheClassTheyJoin) {
    World world;
    const auto rebuilt = rebuild(world, world["1252 german"], 7, classes({{'-', 5}, {'.', 6}, {'_', 7}}));
    const auto words = [&](const Bytes &text) { return allWords(rebuilt->locale, text); };
    EXPECT_EQ(words("a-b"_b), (std::vector<Bytes>{"a-b"_b})) << "5 joins to letters";
    EXPECT_EQ(words("a-1"_b), (std::vector<Bytes>{"a"_b, "1"_b}));
    EXPECT_EQ(words("1.2"_b), (std::vector<Bytes>{"1.2"_b})) << "6 joins to digits";
    EXPECT_EQ(words("1.a"_b), (std::vector<Bytes>{"1"_b, "a"_b}));
    EXPECT_EQ(words("a_1_b"_b), (std::vector<Bytes>{"a_1_b"_b})) << "7 joins to both";
    EXPECT_EQ(words("-a"_b), (std::vector<Bytes>{"-a"_b})) << "also at the start";
    EXPECT_EQ(words("a--b"_b), (std::vector<Bytes>{"a"_b, "-b"_b}));
    EXPECT_EQ(words("--a"_b), (std::vector<Bytes>{"-a"_b})) << "dropped before a word";
    EXPECT_EQ(words("a-"_b), (std::vector<Bytes>{"a"_b}));
}

TEST(NextWord, TwoByteCharactersAreCopiedWhole) {
    World world;
    const auto plain =
        rebuild(world, world["SHIFT-JIS weights"], 7, classes({{0x88, 9}, {0x89, 11}, {0x9F, 1}}));
    EXPECT_EQ(allWords(plain->locale, {'a', 0x88, 0x9F, 'b', ' ', 0x89, 0x9F}),
              (std::vector<Bytes>{{'a', 0x88, 0x9F, 'b'}, {0x89, 0x9F}}));
}

TEST(NextWord, UnderFormat9ATwoByteCharacterIsAWordByItself) {
    World world;
    // Format 9 words come back as keys; the weights of this page are its bytes.
    const auto sjis = rebuild(world, world["SHIFT-JIS weights"], 9, classes({{0x88, 9}, {0x8A, 10}}));
    EXPECT_EQ(allWords(sjis->locale, {'a', 0x88, 0x9F, 0x88, 0xA0, 'b'}),
              (std::vector<Bytes>{"a"_b, {0x88, 0x9F}, {0x88, 0xA0}, "b"_b}));
    EXPECT_EQ(allWords(sjis->locale, {'a', 0x8A, 0x9F, 'x', 'y'}),
              (std::vector<Bytes>{"a"_b, {0x8A, 0x9F, 'x'}, "y"_b}));
    // In a page of single bytes class 9 takes two bytes into the word.
    const auto latin = rebuild(world, world["1252 literal"], 9, classes({{0x88, 9}}));
    EXPECT_EQ(allWords(latin->locale, {'a', 0x88, 'b', 'c'}), (std::vector<Bytes>{{'a', 0x88, 'b', 'c'}}));
}

TEST(NextWord, InUtf8ACharacterOfClass11IsAWordOfFourBytes) {
    World world;
    // The weights of this locale are letters' ranks; compare the words' keys with those of the bytes.
    const Kit &utf8 = world["UTF-8 weights"];
    const auto rebuilt = rebuild(world, utf8, 7, classes({{0xF0, 11}, {0xE4, 10}, {0xC3, 9}}));
    const auto key = [&utf8](const Bytes &word) { return model::weightKey(utf8.twin, word, 500, 1); };
    EXPECT_EQ(allWords(rebuilt->locale, {'a', 0xF0, 0x9F, 0x98, 0x80, 'b', 0xE4, 0xB8, 0x80, 'c'}),
              (std::vector<Bytes>{key("a"_b), key({0xF0, 0x9F, 0x98, 0x80}), key("b"_b),
                                  key({0xE4, 0xB8, 0x80}), key("c"_b)}));
    EXPECT_EQ(allWords(rebuilt->locale, {'a', 0xC3, 0xA4, 'b'}),
              (std::vector<Bytes>{key({'a', 0xC3, 0xA4, 'b'})}));
    EXPECT_EQ(allWords(rebuilt->locale, {0xF0, 0x9F}), (std::vector<Bytes>{key({0xF0, 0x9F})}))
        << "cut by the NUL";
}

TEST(NextWord, AWordHoldsAtMost184Bytes) {
    World world;
    const auto rebuilt = rebuild(world, world["1252 german"], 7, classes({}));
    Word word = nextWord(rebuilt->locale, Bytes(184, 'a') + " b"_b, 185);
    EXPECT_TRUE(gives("nlsGetNextWord", 0, word.status));
    EXPECT_EQ(word.length, 184U);
    word = nextWord(rebuilt->locale, Bytes(185, 'a') + " b"_b, 185);
    EXPECT_TRUE(gives("nlsGetNextWord", 29, word.status)) << "the word is returned all the same";
    EXPECT_EQ(textOf(word), Bytes(184, 'a'));
    EXPECT_GE(word.moved, 185U) << "behind the whole word";
    const Kit &sjis = world["SHIFT-JIS weights"];
    const auto pairs = rebuild(world, sjis, 7, classes({{0x88, 9}}));
    word = nextWord(pairs->locale, Bytes(183, 'a') + Bytes{0x88, 0x9F, 'b'}, 300);
    EXPECT_TRUE(gives("nlsGetNextWord", 29, word.status));
    EXPECT_EQ(textOf(word), Bytes(183, 'a') + Bytes{0x88});
}

TEST(NextWord, ABufferThatTheWordFillsGives2AndThePointerStays) {
    World world;
    for (const unsigned char format : Bytes{7, 8, 9}) {
        const auto rebuilt = rebuild(world, world["1252 german"], format, classes({}));
        for (const std::int32_t size : {3, 2, 1, 0, -1}) {
            const Word word = nextWord(rebuilt->locale, " abc d"_b, size);
            EXPECT_TRUE(gives("nlsGetNextWord", 2, word.status)) << size;
            EXPECT_EQ(word.moved, 0U);
            // What fits of a word as it stands, nothing of one that is collected for its key.
            const Bytes begin = size == 3 ? "ab"_b + Bytes{0} : size == 2 ? "a"_b + Bytes{0} : Bytes{0};
            const auto room = static_cast<std::size_t>(std::max(size, 0));
            EXPECT_EQ(word.buffer,
                      format < 8 ? Bytes(begin.begin(), begin.begin() + std::min<long>(size, 3) * (size > 0))
                                 : Bytes(room, 0xEE));
        }
        const Word word = nextWord(rebuilt->locale, " abc d"_b, 4);
        EXPECT_TRUE(gives("nlsGetNextWord", 0, word.status));
        EXPECT_EQ(word.length, 3U);
    }
}

TEST(NextWord, TheTwoBitsOfTheModeThatOnlyIcuReadsSelectNoOtherTable) {
    World world;
    for (const unsigned char format : Bytes{8, 9, 128}) {
        const auto rebuilt = rebuild(world, world["1252 german"], format, classes({{0xDF, 2}}));
        for (const std::int16_t mode : kit::kModes)
            for (const int bits : {0x2000, 0x4000, 0x6000})
                EXPECT_EQ(textOf(nextWord(rebuilt->locale, {'a', 0xDF, ' '}, 16,
                                          static_cast<std::int16_t>(mode | bits))),
                          textOf(nextWord(rebuilt->locale, {'a', 0xDF, ' '}, 16, mode)))
                    << bits;
    }
}

TEST(NextWord, FromFormat8OnWordsAreKeys) {
    World world;
    const Kit &german = world["1252 german"];
    fixture::ByteTable letters = classes({{0xDF, 2}});
    for (unsigned b = 'A'; b <= 'Z'; ++b)
        letters[b] = 2;
    for (const unsigned char format : Bytes{0, 7, 8, 9, 128})
        for (const std::int16_t mode : kit::kModes) {
            const auto rebuilt = rebuild(world, german, format, letters);
            const Word word = nextWord(rebuilt->locale, {'A', 0xDF, ' '}, 16, mode);
            EXPECT_TRUE(gives("nlsGetNextWord", 0, word.status));
            EXPECT_EQ(textOf(word), format < 8 ? (Bytes{'A', 0xDF})
                                               : model::weightKey(german.twin, {'A', 0xDF}, 16,
                                                                  static_cast<std::uint16_t>(mode)))
                << +format;
            // A key that does not fit is cut to its buffer.
            if (format >= 8) {
                EXPECT_EQ(nextWord(rebuilt->locale, {'A', 0xDF}, 3, mode).length, 2U);
            }
        }
}

TEST(NextWord, RandomTextsGiveTheWordsOfThePlainScan) {
    World world;
    for (const Kit &one : world.kits)
        for (const unsigned char format : Bytes{7, 8, 9, 128}) {
            kit::TextMaker maker(31U + format);
            for (int round = 0; round < 40 && !testing::Test::HasFatalFailure(); ++round) {
                model::WordMap map;
                map.format = format;
                for (unsigned char &kind : map.classes)
                    kind = fixture::byteOf(maker.random.below(3) != 0 ? 1 + maker.random.below(3)
                                                                      : 1 + maker.random.below(13));
                const auto rebuilt = rebuild(world, one, format, map.classes);
                for (int i = 0; i < 20; ++i) {
                    Bytes text = maker.any(one.script, maker.random.below(i == 0 ? 400 : 20));
                    const auto mode = static_cast<std::int16_t>(maker.random.below(2));
                    const auto size =
                        static_cast<std::int32_t>(maker.random.below(4) == 0 ? 200 : maker.random.below(24));
                    while (true) {
                        const model::WordText expected = model::nextWord(one.twin, map, text);
                        const Word actual = nextWord(rebuilt->locale, text, size, mode);
                        const auto context =
                            one.name + " " + kit::hex(text) + " size " + std::to_string(size);
                        if (expected.word.empty()) {
                            ASSERT_EQ(actual.status, 20U) << context;
                            ASSERT_EQ(actual.moved, 0U) << context;
                            break;
                        }
                        if (std::ssize(expected.word) >= size) {
                            ASSERT_EQ(actual.status, 2U) << context;
                            ASSERT_EQ(actual.moved, 0U) << context;
                        } else {
                            ASSERT_EQ(actual.status, expected.cut ? 29U : 0U) << context;
                            const bool keyed = format >= 8 || one.twin.has(fixture::kUtf8);
                            Bytes word = keyed ? model::weightKey(one.twin, expected.word,
                                                                  static_cast<std::size_t>(size),
                                                                  static_cast<std::uint16_t>(mode))
                                               : expected.word;
                            word.erase(std::find(word.begin(), word.end(), 0), word.end());
                            ASSERT_EQ(kit::hex(textOf(actual)), kit::hex(word)) << context;
                            ASSERT_EQ(actual.moved, expected.consumed) << context;
                        }
                        text.erase(text.begin(),
                                   text.begin() + static_cast<std::ptrdiff_t>(expected.consumed));
                    }
                }
                void *block = nullptr;
                std::uint32_t blockSize = 0;
                ASSERT_EQ(nlsCloseDBLocale(rebuilt->locale, &block, &blockSize), NLS_OK);
            }
        }
}
