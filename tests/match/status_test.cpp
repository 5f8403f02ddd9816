// Every status of every call that matches, and the order in which the checks are made.
#include "library_fixture.hpp"
#include "match_pages.hpp"
#include "status_rows.hpp"

#include <gtest/gtest.h>

#include <functional>

namespace {

using fixture::gives;

// The arguments of all the calls; null pointers are made by clearing members.
struct Arguments {
    const char *pattern = "b";
    const char *text = "abc";
    const char *replacement = "x";
    std::uint32_t lchar = 'b';
    const std::uint32_t *lcharAt = &lchar;
    std::int32_t length = 3;
    std::uint16_t mode = 1;
    char buffer[16] = "old";
    nlsStr out{buffer, 8, 3};
    nlsStr *outAt = &out;
    std::uint32_t position = 77;
    std::uint32_t *positionAt = &position;
    std::uint32_t endOffset = 77;
    std::uint32_t *endAt = &endOffset;
    std::uint32_t count = 77;
    std::uint32_t *countAt = &count;
    char *found = buffer;
    char **foundAt = &found;
};

struct Call {
    const char *name;
    std::function<nlsStatus(nlsLocale *, Arguments &)> run;
    // Each makes one pointer null that the call needs.
    std::vector<std::function<void(Arguments &)>> nulls;
};

void noPattern(Arguments &a) {
    a.pattern = nullptr;
}
void noText(Arguments &a) {
    a.text = nullptr;
}
void noReplacement(Arguments &a) {
    a.replacement = nullptr;
}
void noCharacter(Arguments &a) {
    a.lcharAt = nullptr;
}
void noOut(Arguments &a) {
    a.outAt = nullptr;
}
void noBuffer(Arguments &a) {
    a.out.buffer = nullptr;
}
void noPosition(Arguments &a) {
    a.positionAt = nullptr;
}
void noEnd(Arguments &a) {
    a.endAt = nullptr;
}
void noCount(Arguments &a) {
    a.countAt = nullptr;
}
void noFound(Arguments &a) {
    a.foundAt = nullptr;
}
void negativeLength(Arguments &a) {
    a.length = -1;
}

const std::vector<Call> &calls() {
    static const std::vector<Call> all = {
        {"nlsSqlLike",
         [](nlsLocale *l, Arguments &a) { return nlsSqlLike(l, a.pattern, a.text, a.mode, '!', '_', '%'); },
         {noPattern, noText}},
        {"nlsSearchForw",
         [](nlsLocale *l, Arguments &a) {
             return nlsSearchForw(l, a.pattern, a.text, a.mode, a.positionAt, a.endAt, a.foundAt);
         },
         {noPattern, noText, noPosition, noEnd, noFound}},
        {"nlsSearchBack",
         [](nlsLocale *l, Arguments &a) {
             return nlsSearchBack(l, a.pattern, a.text, a.length, a.mode, a.positionAt, a.foundAt);
         },
         {noPattern, noText, noPosition, noFound, negativeLength}},
        {"nlsReplace",
         [](nlsLocale *l, Arguments &a) {
             return nlsReplace(l, a.pattern, a.replacement, a.text, a.mode, a.outAt, a.positionAt, a.endAt,
                               a.foundAt);
         },
         {noPattern, noReplacement, noText, noOut, noBuffer, noPosition, noEnd, noFound}},
        {"nlsReplaceAll",
         [](nlsLocale *l, Arguments &a) {
             return nlsReplaceAll(l, a.pattern, a.replacement, a.text, a.mode, a.outAt, a.countAt);
         },
         {noPattern, noReplacement, noText, noOut, noBuffer, noCount}},
        {"nlsFindCharForw",
         [](nlsLocale *l, Arguments &a) {
             return nlsFindCharForw(l, a.lcharAt, a.text, a.mode, a.positionAt, a.foundAt);
         },
         {noCharacter, noText, noPosition, noFound}},
        {"nlsFindCharBack",
         [](nlsLocale *l, Arguments &a) {
             return nlsFindCharBack(l, a.lcharAt, a.text, a.length, a.mode, a.positionAt, a.foundAt);
         },
         {noCharacter, noText, noPosition, noFound, negativeLength}},
        {"nlsFindLtrimPtrForw",
         [](nlsLocale *l, Arguments &a) {
             return nlsFindLtrimPtrForw(l, a.pattern, a.text, a.mode, a.positionAt, a.foundAt);
         },
         {noText, noPosition, noFound}},
        {"nlsFindRtrimPtrBack",
         [](nlsLocale *l, Arguments &a) {
             return nlsFindRtrimPtrBack(l, a.pattern, const_cast<char *>(a.text), a.length, a.mode,
                                        a.positionAt, a.foundAt);
         },
         {noText, noPosition, noFound, negativeLength}},
    };
    return all;
}

class Statuses : public testing::Test {
protected:
    Statuses() : library_(makeFile()), locale_(library_.locale("P", "plain")) {}

    static fixture::DataFile makeFile() {
        fixture::DataFile file;
        file.codePage("P", fixture::CharacterTable::singleByte());
        file.collation("P", "plain", fixture::CollationTable());
        file.codePage("D", fixture::CharacterTable::doubleByte());
        file.collation("D", "basic", fixture::CollationTable::basic());
        return file;
    }

    fixture::Library library_;
    nlsLocale *locale_;
};

TEST_F(Statuses, WholeArgumentsSucceed) {
    for (const Call &call : calls()) {
        Arguments arguments;
        EXPECT_TRUE(gives(call.name, 0, call.run(locale_, arguments)));
    }
    Arguments like;
    like.pattern = "a%";
    EXPECT_TRUE(gives("nlsSqlLike", 1, calls()[0].run(locale_, like)));
    like.pattern = "a!b";
    EXPECT_TRUE(gives("nlsSqlLike", -1, calls()[0].run(locale_, like)));
}

TEST_F(Statuses, NoLocaleNoHandleIs13) {
    for (const Call &call : calls()) {
        Arguments arguments;
        EXPECT_TRUE(gives(call.name, 13, call.run(nullptr, arguments)));
    }
    ASSERT_EQ(nlsClose(library_.handle), NLS_OK);
    library_.handle = nullptr;
    for (const Call &call : calls()) {
        Arguments arguments;
        EXPECT_TRUE(gives(call.name, 13, call.run(locale_, arguments)));
    }
}

TEST_F(Statuses, AnotherObjectIs24) {
    fixture::FakeObject object(library_.handle, 0);
    for (const Call &call : calls()) {
        Arguments arguments;
        EXPECT_TRUE(gives(call.name, 24, call.run(object.asLocale(), arguments)));
    }
}

TEST_F(Statuses, NullPointersAndNegativeLengthsAre16) {
    for (const Call &call : calls())
        for (std::size_t i = 0; i < call.nulls.size(); ++i) {
            SCOPED_TRACE(call.name + std::string(" null ") + std::to_string(i));
            Arguments arguments;
            call.nulls[i](arguments);
            EXPECT_TRUE(gives(call.name, 16, call.run(locale_, arguments)));
        }
}

TEST_F(Statuses, NoCharacterTableIs27AndClearsTheResult) {
    const void *const table = fixture::peek::characterTable(locale_);
    fixture::peek::setCharacterTable(locale_, nullptr);
    for (const Call &call : calls()) {
        Arguments arguments;
        EXPECT_TRUE(gives(call.name, 27, call.run(locale_, arguments)));
        const std::string name = call.name;
        if (name != "nlsSqlLike" && name != "nlsReplaceAll") {
            EXPECT_EQ(arguments.found, nullptr) << name;
        }
    }
    fixture::peek::setCharacterTable(locale_, table);
}

TEST_F(Statuses, NoCollationIs25OnceCharactersAreCompared) {
    nlsLocale *const unordered = library_.locale("P");
    for (const Call &call : calls()) {
        Arguments arguments;
        EXPECT_TRUE(gives(call.name, 25, call.run(unordered, arguments)));
    }
    // Nothing to compare, nothing to miss.
    Arguments arguments;
    arguments.pattern = "abcd";
    EXPECT_EQ(calls()[1].run(unordered, arguments), NLS_OK);
    EXPECT_EQ(arguments.position, 0U);
    arguments.pattern = "%";
    EXPECT_EQ(calls()[0].run(unordered, arguments), 1U);
    // Behind an any-string wildcard a failure is no match at that place.
    arguments.pattern = "%b";
    EXPECT_EQ(calls()[0].run(unordered, arguments), 0U);
}

TEST_F(Statuses, ModesWithoutATableAreRefusedByTheComparison) {
    for (const Call &call : calls()) {
        Arguments arguments;
        arguments.mode = 2;
        EXPECT_TRUE(gives(call.name, 16, call.run(locale_, arguments)));
    }
}

TEST_F(Statuses, TextThatEndsInsideACharacterIsMinus4) {
    nlsLocale *const pairs = library_.locale("D", "basic");
    for (const std::size_t i : {1U, 2U, 3U, 4U}) { // searches and replaces
        for (const bool inPattern : {true, false}) {
            Arguments arguments;
            (inPattern ? arguments.pattern : arguments.text) = "a\x81";
            arguments.length = 2;
            EXPECT_TRUE(gives(calls()[i].name, -4, calls()[i].run(pairs, arguments)));
            EXPECT_EQ(arguments.out.length, 3U);
        }
    }
    Arguments trim; // the character to be looked up ends too early, or the set does
    trim.text = "a\x81";
    trim.length = 2;
    EXPECT_TRUE(gives("nlsFindRtrimPtrBack", -4, calls()[8].run(pairs, trim)));
    trim.text = "ab";
    trim.pattern = "b\x81";
    EXPECT_TRUE(gives("nlsFindRtrimPtrBack", -4, calls()[8].run(pairs, trim)));
}

TEST_F(Statuses, SearchingBackInNothingIs20) {
    Arguments arguments;
    arguments.length = 0;
    EXPECT_TRUE(gives("nlsSearchBack", 20, calls()[2].run(locale_, arguments)));
    EXPECT_EQ(arguments.position, 0U);
    EXPECT_EQ(arguments.found, nullptr);
    arguments.pattern = "";
    EXPECT_TRUE(gives("nlsSearchBack", 0, calls()[2].run(locale_, arguments)));
    EXPECT_EQ(arguments.position, 1U);
}

TEST_F(Statuses, ResultsThatDoNotFitAre2) {
    for (const std::size_t i : {3U, 4U}) {
        Arguments arguments;
        arguments.out.size = 3;
        EXPECT_TRUE(gives(calls()[i].name, 2, calls()[i].run(locale_, arguments)));
        EXPECT_EQ(arguments.out.length, 0U);
        EXPECT_EQ(arguments.buffer[0], '\0');
    }
}

// Each status hides those behind it: 13, 24, 16, 27, then the call's own.
TEST_F(Statuses, ChecksAreMadeInTheirOrder) {
    fixture::FakeObject object(library_.handle, 0);
    nlsLocale *const unordered = library_.locale("P");
    for (const Call &call : calls()) {
        SCOPED_TRACE(call.name);
        Arguments arguments;
        call.nulls.front()(arguments);
        EXPECT_EQ(call.run(nullptr, arguments), NLS_E_HANDLE);
        EXPECT_EQ(call.run(object.asLocale(), arguments), NLS_E_NOTLOCALE);
        const void *const table = fixture::peek::characterTable(unordered);
        fixture::peek::setCharacterTable(unordered, nullptr);
        EXPECT_EQ(call.run(unordered, arguments), NLS_E_NULLARG);
        Arguments whole;
        EXPECT_EQ(call.run(unordered, whole), NLS_E_NOCHARTAB);
        fixture::peek::setCharacterTable(unordered, table);
    }
    fixture::FakeObject orphan(nullptr, 0);
    for (const Call &call : calls()) {
        Arguments arguments;
        EXPECT_EQ(call.run(orphan.asLocale(), arguments), NLS_E_HANDLE) << call.name;
    }
}

} // namespace
