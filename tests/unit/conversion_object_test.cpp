// Conversion objects: creation, sharing by names, properties.
#include "conversion_pair.hpp"

#include <cstring>

namespace {

using fixture::CharacterTable;
using fixture::DataFile;
using fixture::FakeObject;
using fixture::gives;
using fixture::GuardedBuffer;
using fixture::Library;
using unit::Pair;
namespace peek = fixture::peek;

DataFile letters() {
    DataFile file;
    for (const char *const name : {"A", "B", "X"})
        file.codePage(name, CharacterTable::singleByte());
    file.collation("A", "basic", fixture::CollationTable());
    file.conversion("A", "B", 3);
    file.conversion("B", "A", 4);
    return file;
}

TEST(ConversionObject, SamePairGivesTheSameObject) {
    Library library(letters());
    nlsConversion *const first = library.conversion("A", "B");
    EXPECT_TRUE(gives("nlsCreateConversion", 0, library.tryConversion("A", "B")));
    EXPECT_EQ(library.conversion("A", "B"), first);
    EXPECT_NE(library.conversion("B", "A"), first);
}

TEST(ConversionObject, NamesDecideAndNotTheLocales) {
    Library library(letters());
    nlsConversion *const first = library.conversion("A", "B");
    nlsLocale *const other = library.locale("a  ", "basic"); // another locale of the same page
    ASSERT_NE(other, peek::source(first));
    nlsConversion *conversion = nullptr;
    ASSERT_EQ(nlsCreateConversion(library.handle, other, library.locale("b"), &conversion), NLS_OK);
    EXPECT_EQ(conversion, first);
}

TEST(ConversionObject, SharedObjectCostsNothing) {
    Library library(letters());
    library.conversion("A", "B");
    const std::uint32_t before = library.remaining();
    library.conversion("A", "B");
    EXPECT_EQ(library.remaining(), before);
}

TEST(ConversionObject, LocalesAreCheckedFirstSourceThenTargetHandleThenTag) {
    Library library(letters());
    nlsLocale *const good = library.locale("A");
    unsigned char nothing[96] = {};
    FakeObject orphan(nothing, 0);
    FakeObject notLocale(library.handle, 0); // as after its closing
    nlsConversion *out = nullptr;
    const auto create = [&](nlsLocale *source, nlsLocale *target) {
        return nlsCreateConversion(library.handle, source, target, &out);
    };
    EXPECT_TRUE(gives("nlsCreateConversion", 13, create(orphan.asLocale(), notLocale.asLocale())));
    EXPECT_TRUE(gives("nlsCreateConversion", 24, create(notLocale.asLocale(), orphan.asLocale())));
    EXPECT_TRUE(gives("nlsCreateConversion", 13, create(good, orphan.asLocale())));
    EXPECT_TRUE(gives("nlsCreateConversion", 24, create(good, notLocale.asLocale())));
    EXPECT_EQ(create(nullptr, good), NLS_E_HANDLE);
    EXPECT_EQ(create(good, nullptr), NLS_E_HANDLE);
    EXPECT_EQ(nlsCreateConversion(nullptr, good, good, &out), NLS_E_HANDLE);
    EXPECT_TRUE(gives("nlsCreateConversion", 16,
                      nlsCreateConversion(library.handle, good, library.locale("B"), nullptr)));
    EXPECT_EQ(nlsCreateConversion(library.handle, notLocale.asLocale(), good, nullptr), NLS_E_NOTLOCALE);
    EXPECT_EQ(out, nullptr);
}

TEST(ConversionObject, FailureIsNotLinkedAndEndsBusy) {
    Library library(letters());
    library.locale("A");
    library.locale("X");
    const void *const newest = peek::newest(library.handle);
    EXPECT_TRUE(gives("nlsCreateConversion", 8, library.tryConversion("A", "X")));
    EXPECT_EQ(peek::newest(library.handle), newest);
    EXPECT_EQ(library.lend(), NLS_OK);
}

TEST(ConversionObject, IdentityHasWidthOneWhateverItsPage) {
    DataFile file;
    file.codePage("UTF-8", CharacterTable::utf8());
    Pair pair(file, "UTF-8", "UTF-8");
    EXPECT_EQ(pair.property(17), 1U);
    EXPECT_EQ(pair.property(24), 1U);
    EXPECT_EQ(pair.property(28), 0U);
}

TEST(ConversionObject, ByteMapHasTheWidthOfItsTarget) {
    for (const unsigned flags : {0U, 0x02U, 0x0AU, 0x50U}) {
        DataFile file;
        file.codePage("A", CharacterTable::singleByte());
        file.codePage("B", CharacterTable::singleByte(fixture::byteOf(flags)));
        const fixture::ByteTable map = fixture::identityTable();
        file.conversion("A", "B", 1, fixture::Bytes(map.begin(), map.end()));
        Pair pair(file);
        EXPECT_EQ(pair.property(17), 1U);
        EXPECT_EQ(pair.property(24), (flags & 0x58) != 0 ? 4U : (flags & 2) != 0 ? 2U : 1U) << flags;
    }
}

TEST(ConversionObject, KindsWithoutAValueGiveSixteen) {
    Pair pair(unit::pairOfType(25));
    std::uint32_t value = 77;
    EXPECT_TRUE(
        gives("nlsGetIntConversionProperty", 16, nlsGetIntConversionProperty(pair.conversion, 17, &value)));
    EXPECT_EQ(value, 77U);
    EXPECT_EQ(pair.property(24), 4U);
    EXPECT_EQ(pair.property(28), 0U);
    Pair unknown(unit::pairOfType(100));
    EXPECT_EQ(nlsGetIntConversionProperty(unknown.conversion, 17, &value), NLS_E_NULLARG);
    EXPECT_EQ(nlsGetIntConversionProperty(unknown.conversion, 24, &value), NLS_E_NULLARG);
    EXPECT_EQ(unknown.property(28), 0U);
}

TEST(ConversionObject, TargetsWidthIsReadFirst) {
    // A target that is no locale any more fails property 24 for every kind, and property 24 alone.
    for (const unsigned char type : unit::Types{3, 22, 100}) {
        Library library(unit::pairOfType(type));
        nlsConversion *const conversion = library.conversion("A", "B");
        nlsLocale *const target = library.locale("B");
        peek::setType(target, 0);
        std::uint32_t value = 77;
        EXPECT_EQ(nlsGetIntConversionProperty(conversion, 24, &value), NLS_E_NOTLOCALE) << int(type);
        EXPECT_EQ(nlsGetIntConversionProperty(conversion, 28, &value), NLS_OK);
        peek::setType(target, 2);
    }
}

TEST(ConversionObject, ChainHasTheProductOfBothExpansionsAndTheSecondsWidth) {
    DataFile file;
    for (const char *const name : {"A", "UTF-8", "UTF-16", "UTF-32", "M"})
        file.codePage(name, CharacterTable::singleByte());
    file.conversion("A", "M", 3);       // 2
    file.conversion("M", "UTF-16", 24); // 2, width 4
    file.conversion("M", "UTF-32", 26); // no expansion, width 4
    file.conversion("M", "UTF-8", 100); // neither
    Library library(file);
    const auto property = [&](const char *target, std::int32_t id) {
        std::uint32_t value = 0xDEAD;
        const nlsStatus status = nlsGetIntConversionProperty(library.conversion("A", target), id, &value);
        return std::pair<nlsStatus, std::uint32_t>(status, value);
    };
    using Answer = std::pair<nlsStatus, std::uint32_t>;
    EXPECT_EQ(property("UTF-16", 17), Answer(0, 4));
    EXPECT_EQ(property("UTF-16", 24), Answer(0, 4));
    EXPECT_EQ(property("UTF-16", 28), Answer(0, 1));
    EXPECT_EQ(property("UTF-32", 17), Answer(16, 0xDEAD));
    EXPECT_EQ(property("UTF-32", 24), Answer(0, 4));
    EXPECT_EQ(property("UTF-8", 17), Answer(16, 0xDEAD));
    EXPECT_EQ(property("UTF-8", 24), Answer(16, 0xDEAD));
}

TEST(ConversionObject, NamesAreThoseOfTheLocales) {
    Library library(letters());
    nlsConversion *conversion = nullptr;
    ASSERT_EQ(nlsCreateConversion(library.handle, library.locale("a "), library.locale("B"), &conversion),
              NLS_OK);
    GuardedBuffer guard(32);
    const auto text = [&](std::int32_t id, std::uint32_t size) {
        nlsStr string = {reinterpret_cast<char *>(guard.tail(size + 1)), size, 9};
        EXPECT_TRUE(
            gives("nlsGetStrConversionProperty", 0, nlsGetStrConversionProperty(conversion, id, &string)));
        EXPECT_EQ(std::strlen(string.buffer), string.length);
        return std::string(string.buffer);
    };
    EXPECT_EQ(text(15, 20), "a ");
    EXPECT_EQ(text(16, 20), "B");
    EXPECT_EQ(text(16, 1), "B") << "a name is copied by its own length";
    nlsStr none = {reinterpret_cast<char *>(guard.tail(1)), 0, 0};
    EXPECT_TRUE(gives("nlsGetStrConversionProperty", 2, nlsGetStrConversionProperty(conversion, 15, &none)));
    nlsStr small = {reinterpret_cast<char *>(guard.tail(1)), 1, 0};
    EXPECT_EQ(nlsGetStrConversionProperty(conversion, 15, &small), NLS_E_BUFFER);
}

TEST(ConversionObject, UnknownNumbersGiveTwelve) {
    Pair pair(unit::pairOfType(3));
    char buffer[40];
    nlsStr string = {buffer, sizeof buffer - 1, 0};
    std::uint32_t value = 77;
    for (std::int32_t id = -2; id < 40; ++id) {
        if (id != 17 && id != 24 && id != 28) {
            EXPECT_TRUE(gives("nlsGetIntConversionProperty", 12,
                              nlsGetIntConversionProperty(pair.conversion, id, &value)))
                << id;
        }
        if (id != 15 && id != 16) {
            EXPECT_TRUE(gives("nlsGetStrConversionProperty", 12,
                              nlsGetStrConversionProperty(pair.conversion, id, &string)))
                << id;
        }
    }
    EXPECT_EQ(value, 77U);
}

TEST(ConversionObject, EveryCallChecksHandlesAndTagBeforeTheArguments) {
    Library library(letters());
    nlsLocale *const good = library.locale("A");
    unsigned char nothing[96] = {};
    FakeObject orphan(nothing, 2);
    FakeObject lostSource(orphan.asLocale(), 3);
    lostSource.setTarget(good);
    FakeObject lostTarget(good, 3);
    lostTarget.setTarget(orphan.asLocale());
    const std::pair<nlsConversion *, std::int32_t> attempts[] = {
        {lostSource.asConversion(), 13},
        {lostTarget.asConversion(), 13},
        {reinterpret_cast<nlsConversion *>(good), 26}, // a locale is no conversion
        {reinterpret_cast<nlsConversion *>(library.handle), 26},
    };
    for (const auto &[conversion, e] : attempts) {
        EXPECT_TRUE(
            gives("nlsGetIntConversionProperty", e, nlsGetIntConversionProperty(conversion, 99, nullptr)));
        EXPECT_TRUE(
            gives("nlsGetStrConversionProperty", e, nlsGetStrConversionProperty(conversion, 99, nullptr)));
        EXPECT_TRUE(gives("nlsConvertNLS", e, nlsConvertNLS(conversion, nullptr, nullptr, nullptr)));
        EXPECT_TRUE(gives("nlsConvertNLSCheck", e, nlsConvertNLSCheck(conversion, nullptr, nullptr)));
        EXPECT_TRUE(gives("nlsConvertLChar", e, nlsConvertLChar(conversion, 'a', nullptr)));
        EXPECT_TRUE(gives("nlsConvertFromUCS2", e, nlsConvertFromUCS2(conversion, nullptr, 1, nullptr)));
        EXPECT_TRUE(gives("nlsConvertToUCS2", e, nlsConvertToUCS2(conversion, nullptr, 1, nullptr, nullptr)));
    }
}

TEST(ConversionObject, OtherObjectsAreNoLocales) {
    Library library(letters());
    nlsConversion *const conversion = library.conversion("A", "B");
    std::uint32_t value = 0;
    EXPECT_EQ(nlsGetIntLocaleProperty(reinterpret_cast<nlsLocale *>(conversion), 3, &value), NLS_E_NOTLOCALE);
    EXPECT_EQ(nlsGetIntLocaleProperty(reinterpret_cast<nlsLocale *>(library.handle), 3, &value),
              NLS_E_NOTLOCALE);
}

TEST(ConversionObject, NullArgumentsGiveSixteen) {
    Pair pair(unit::pairOfType(3));
    nlsConversion *const c = pair.conversion;
    char buffer[32] = "abc";
    const nlsStr text = {buffer, 8, 3};
    char other[32];
    nlsStr out = {other, sizeof other, 0};
    std::uint32_t written = 0;
    EXPECT_EQ(nlsGetIntConversionProperty(c, 17, nullptr), NLS_E_NULLARG);
    EXPECT_TRUE(gives("nlsGetStrConversionProperty", 16, nlsGetStrConversionProperty(c, 15, nullptr)));
    EXPECT_TRUE(gives("nlsConvertNLS", 16, nlsConvertNLS(c, nullptr, nullptr, &out)));
    EXPECT_TRUE(gives("nlsConvertNLS", 16, nlsConvertNLS(c, &text, nullptr, nullptr)));
    EXPECT_TRUE(gives("nlsConvertNLSCheck", 16, nlsConvertNLSCheck(c, nullptr, &out)));
    EXPECT_TRUE(gives("nlsConvertNLSCheck", 16, nlsConvertNLSCheck(c, &text, nullptr)));
    EXPECT_TRUE(gives("nlsConvertLChar", 16, nlsConvertLChar(c, 'a', nullptr)));
    EXPECT_TRUE(gives("nlsConvertFromUCS2", 16, nlsConvertFromUCS2(c, nullptr, 3, &out)));
    EXPECT_TRUE(gives("nlsConvertFromUCS2", 16, nlsConvertFromUCS2(c, buffer, 3, nullptr)));
    EXPECT_TRUE(gives("nlsConvertToUCS2", 16, nlsConvertToUCS2(c, nullptr, 8, other, &written)));
    EXPECT_TRUE(gives("nlsConvertToUCS2", 16, nlsConvertToUCS2(c, &text, 8, nullptr, &written)));
    EXPECT_TRUE(gives("nlsConvertToUCS2", 16, nlsConvertToUCS2(c, &text, 8, other, nullptr)));
}

} // namespace
