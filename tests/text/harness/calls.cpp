#include "calls.hpp"

namespace kit {

namespace {

GuardedText &left() {
    static GuardedText text;
    return text;
}

GuardedText &right() {
    static GuardedText text;
    return text;
}

fixture::GuardedBuffer &output() {
    static fixture::GuardedBuffer buffer(70000);
    return buffer;
}

// No call that these tests make writes to its source; the page is read-only, so that would show.
char *unwritten(const char *text) {
    return const_cast<char *>(text);
}

} // namespace

Key sortKey(nlsLocale *locale, const Bytes &source, std::uint16_t size, std::uint16_t mode,
            std::uint16_t trim, const Bytes &filler) {
    Key key;
    unsigned char *const buffer = output().tail(size);
    std::fill(buffer, buffer + size, 0xEE);
    std::copy(filler.begin(), filler.begin() + std::min<std::ptrdiff_t>(std::ssize(filler), size), buffer);
    key.status =
        nlsSortKey(locale, unwritten(left().terminated(source)), size, mode, trim, buffer, &key.length);
    key.buffer.assign(buffer, buffer + size);
    return key;
}

Compared compare(nlsLocale *locale, const Bytes &a, const Bytes &b, std::int16_t mode) {
    Compared out;
    out.status = nlsCompare(locale, left().terminated(a), right().terminated(b), mode, &out.result);
    return out;
}

Compared compareN(nlsLocale *locale, const Bytes &a, const Bytes &b, std::int32_t lengthA,
                  std::uint32_t lengthB, std::uint16_t mode) {
    const auto place = [](GuardedText &text, const Bytes &bytes, std::uint32_t length) {
        return length <= bytes.size() ? text.bytes(Bytes(bytes.begin(), bytes.begin() + length))
                                      : text.terminated(bytes);
    };
    Compared out;
    out.status = nlsCompareN(locale, place(left(), a, static_cast<std::uint32_t>(lengthA)),
                             place(right(), b, lengthB), lengthA, lengthB, mode, &out.result);
    return out;
}

Cased mapCase(nlsLocale *locale, const Bytes &source, std::uint32_t size, bool upper) {
    Cased out;
    unsigned char *const buffer = output().tail(size + 1);
    std::fill(buffer, buffer + size + 1, 0xEE);
    const nlsStr from{unwritten(left().terminated(source)), 0, 0};
    nlsStr to{reinterpret_cast<char *>(buffer), size, 0xEEEE};
    out.status = upper ? nlsUpperCase(locale, &from, &to) : nlsLowerCase(locale, &from, &to);
    out.length = to.length;
    out.buffer.assign(buffer, buffer + size + 1);
    return out;
}

void refusesWhatIsNoLocale(const char *exportName, const LocaleCall &call) {
    World world;
    nlsLocale *const locale = world["1252 german"].locale;
    EXPECT_TRUE(gives(exportName, 13, call(nullptr)));
    fixture::FakeObject closed(world.library.handle, 0);
    EXPECT_TRUE(gives(exportName, 24, call(closed.asLocale())));
    nlsConversion *const conversion = world.library.conversion("SHIFT-JIS", "EUCJIS");
    EXPECT_TRUE(gives(exportName, 24, call(reinterpret_cast<nlsLocale *>(conversion))));
    EXPECT_EQ(nlsClose(world.library.handle), NLS_OK);
    EXPECT_TRUE(gives(exportName, 13, call(locale)));
    EXPECT_TRUE(gives(exportName, 13, call(closed.asLocale()))) << "the handle is looked at first";
    world.library.handle = nullptr;
}

void refusesWithoutCharacters(const char *exportName, const LocaleCall &call) {
    World world;
    nlsLocale *const locale = world["1252 german"].locale;
    const void *const table = fixture::peek::characterTable(locale);
    fixture::peek::setCharacterTable(locale, nullptr);
    EXPECT_TRUE(gives(exportName, 27, call(locale)));
    fixture::peek::setCharacterTable(locale, table);
}

} // namespace kit
