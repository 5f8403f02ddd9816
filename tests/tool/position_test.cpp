// Lines and columns, compared with counting character by character.
#include <gtest/gtest.h>

#include <cstdlib>

#include "position.hpp"
#include "process.hpp"

namespace velnls::tool {
namespace {

void expectPlace(const Page &page, const std::string &text, std::uint64_t line, std::uint64_t column) {
    // In one go and byte by byte of whole characters must not differ; units are given whole.
    Position position(page);
    position.advance(reinterpret_cast<const unsigned char *>(text.data()), text.size());
    EXPECT_EQ(position.line(), line);
    EXPECT_EQ(position.column(), column);
}

Page pageOf(Form form, bool highByteFirst = false) {
    Page page;
    page.form = form;
    page.highByteFirst = highByteFirst;
    return page;
}

TEST(Position, BeginsAtLine1Column1) {
    expectPlace(pageOf(Form::Utf8), "", 1, 1);
}

TEST(Position, ColumnsCountCharactersAndNotBytes) {
    expectPlace(pageOf(Form::Utf8), "a\n\xE6\x97\xA5\xF0\x9F\x98\x80z", 2, 4);
    expectPlace(pageOf(Form::Utf16), BYTES("\n\0\x3D\xD8\0\xDE\xE5\x65"), 2, 3);
    expectPlace(pageOf(Form::Utf32), BYTES("\0\xF6\x01\0a\0\0\0"), 1, 3);
}

// The bytes of a line feed inside or across other units are none.
TEST(Position, LineFeedsAreWholeUnits) {
    expectPlace(pageOf(Form::Utf16), BYTES("\x0A\x0A\0\x0A\x0A\0"), 2, 1);
    expectPlace(pageOf(Form::Utf16, true), BYTES("\x0A\x0A\x0A\0\0\x0A\0a"), 2, 2);
    expectPlace(pageOf(Form::Utf32, true), BYTES("\0\0\0\x0A\0\0\x0A\0"), 2, 2);
}

TEST(Position, TakesThePagesOwnLineFeed) {
    Page page = pageOf(Form::SingleByte);
    page.lineFeed = 0x25;
    expectPlace(page, "\n\n\x25\n", 2, 2);
}

TEST(Position, GoesOnFromPartToPart) {
    const Page page = pageOf(Form::SingleByte);
    Position position(page);
    const auto advance = [&](const std::string &text) {
        position.advance(reinterpret_cast<const unsigned char *>(text.data()), text.size());
    };
    advance("ab");
    advance("cd\n\nx");
    advance("y");
    EXPECT_EQ(position.line(), 3u);
    EXPECT_EQ(position.column(), 3u);
    position.advanceMalformed();
    EXPECT_EQ(position.column(), 4u);
}

// Long enough that partial counts of one byte are full several times.
TEST(Position, ManyLineFeedsAreAllCounted) {
    const Page page = pageOf(Form::SingleByte);
    std::srand(1);
    for (const std::size_t size : {1u, 31u, 32u, 33u, 8159u, 8160u, 8161u, 100003u}) {
        std::string text(size, 'a');
        std::uint64_t line = 1;
        std::uint64_t column = 1;
        for (char &byte : text) {
            byte = std::rand() % 3 == 0 ? 'b' : '\n';
            column = byte == '\n' ? 1 : column + 1;
            line += byte == '\n' ? 1 : 0;
        }
        expectPlace(page, text, line, column);
    }
    expectPlace(page, std::string(1000000, '\n'), 1000001, 1);
}

} // namespace
} // namespace velnls::tool
