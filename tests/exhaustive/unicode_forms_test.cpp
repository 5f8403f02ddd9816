// The Unicode encoding forms among themselves: every code point, every combination of surrogates, every
// shape of broken UTF-8, at every capacity around the need.
#include "harness/compare.hpp"
#include "harness/names.hpp"

#include <tuple>

using harness::Bytes;
using harness::kStride;
using harness::Pair;

namespace {

const char *const kForms[] = {"UTF-8", "UTF-16", "UTF-16BE", "UCS2", "UTF-32", "UTF-32BE"};

class FormsTest : public ::testing::TestWithParam<std::tuple<const char *, const char *>> {
protected:
    FormsTest() : pair_(std::get<0>(GetParam()), std::get<1>(GetParam())) {}

    [[nodiscard]] const model::Encoding &source() const {
        return pair_.expected().source();
    }

    Bytes encoded(const std::vector<std::uint32_t> &values) const {
        Bytes text;
        for (const std::uint32_t value : values) {
            if (source().form == model::Form::kUtf32)
                putUnit(text, value);
            else
                model::appendEncoded(text, source(), value);
        }
        return text;
    }

    void putUnit(Bytes &text, std::uint32_t unit) const {
        for (unsigned i = 0; i < 4; ++i)
            text.push_back(static_cast<std::uint8_t>(unit >> (8 * (source().swapped ? 3 - i : i))));
    }

    // All texts of up to `longest` pieces; the short ones at every capacity.
    void tryAll(const std::vector<Bytes> &pieces, unsigned longest) {
        Bytes text;
        extend(pieces, longest, 0, text);
    }

    Pair pair_;

private:
    void extend(const std::vector<Bytes> &pieces, unsigned longest, unsigned count, Bytes &text) {
        const std::uint32_t need = pair_.need(text);
        const std::uint32_t lowest = count < 3 ? 0 : need;
        for (std::uint32_t capacity = lowest; capacity < need + 3; ++capacity)
            ASSERT_TRUE(pair_.agree(text, capacity));
        if (count == longest)
            return;
        for (const Bytes &piece : pieces) {
            const std::size_t size = text.size();
            text.insert(text.end(), piece.begin(), piece.end());
            extend(pieces, longest, count + 1, text);
            text.resize(size);
            if (HasFatalFailure())
                return;
        }
    }
};

// Only 32-bit units hold values beyond the code points; only UTF-8 has shapes.
class Units32Test : public FormsTest {};
class Utf8Test : public FormsTest {};

TEST_P(FormsTest, everyCodePointAlone) {
    for (std::uint32_t codePoint = 0; codePoint < 0x110000; codePoint += kStride)
        ASSERT_TRUE(pair_.agree(encoded({codePoint}), 8));
}

TEST_P(FormsTest, allCodePointsInOneText) {
    std::vector<std::uint32_t> all;
    for (std::uint32_t codePoint = 0; codePoint < 0x110000; ++codePoint)
        if (codePoint < 0xD800 || codePoint > 0xDFFF)
            all.push_back(codePoint);
    const Bytes text = encoded(all);
    ASSERT_TRUE(pair_.agree(text, 5000000, 5000000));
}

TEST_P(FormsTest, everyCombinationOfSurrogatesAndNeighbours) {
    std::vector<Bytes> pieces;
    for (const std::uint32_t value : {0x41u, 0xE9u, 0x4E2Du, 0xD7FFu, 0xD800u, 0xDBFFu, 0xDC00u, 0xDFFFu,
                                      0xE000u, 0xFFFDu, 0xFFFFu, 0x10000u, 0x10FFFFu})
        pieces.push_back(encoded({value}));
    tryAll(pieces, harness::kStride == 1 ? 4 : 3);
}

TEST_P(FormsTest, cutUnitsEndTheInput) {
    const Bytes text = encoded({0x41, 0xD800, 0xDC00, 0x1F600, 0xD800, 0x42});
    for (std::size_t length = 0; length <= text.size(); ++length) {
        const Bytes cut(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(length));
        const std::uint32_t need = pair_.need(cut);
        for (std::uint32_t capacity = 0; capacity < need + 6; ++capacity) {
            ASSERT_TRUE(pair_.agree(cut, capacity));
            ASSERT_TRUE(pair_.agreeTerminated(cut, capacity));
        }
    }
}

TEST_P(Units32Test, valuesBeyondUnicode) {
    std::vector<Bytes> pieces;
    // A value that has no form of its own in the middle step of a chain has no place here.
    for (const std::uint32_t value : {0x41u, 0x110000u, 0x1FFFFFu, 0x200000u, 0x3FFFFFFu})
        pieces.push_back(encoded({value}));
    if (!pair_.expected().isChain())
        for (const std::uint32_t value : {0x4000000u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu})
            pieces.push_back(encoded({value}));
    tryAll(pieces, 3);
}

TEST_P(Utf8Test, everyShapeOfBrokenUtf8) {
    std::vector<Bytes> pieces;
    for (const unsigned byte : {0x00, 0x41, 0x80, 0xBF, 0xC0, 0xC3, 0xDF, 0xE0, 0xE2, 0xED, 0xA0, 0xF0, 0xF4,
                                0xF5, 0xF8, 0xFC, 0xFF})
        pieces.push_back({static_cast<std::uint8_t>(byte)});
    tryAll(pieces, harness::kStride == 1 ? 4 : 3);
}

TEST_P(Utf8Test, everyTwoBytesAsUtf8) {
    for (std::uint32_t code = 0; code < 0x10000; code += kStride) {
        const auto high = static_cast<std::uint8_t>(code >> 8);
        const auto low = static_cast<std::uint8_t>(code);
        ASSERT_TRUE(pair_.agree({high, low}, 16));
        ASSERT_TRUE(pair_.agree({0xE2, high, low}, 16));
        ASSERT_TRUE(pair_.agree({0xF0, 0x9F, high, low}, 16));
        ASSERT_TRUE(pair_.agree({'a', high, low, 'b'}, 24));
    }
}

TEST_P(FormsTest, singleCharacterCallsConvertInPlace) {
    for (std::uint32_t codePoint = 0; codePoint < 0x110000; codePoint += 61) {
        std::uint32_t character = 0;
        for (const std::uint8_t byte : encoded({codePoint}))
            character = character * 256 + byte;
        ASSERT_TRUE(pair_.agreeCharacter(character));
        ASSERT_TRUE(pair_.agreeCharacter(codePoint));
        ASSERT_TRUE(pair_.agreeCharacter(codePoint * 257));
    }
}

std::string formsName(const ::testing::TestParamInfo<FormsTest::ParamType> &info) {
    return harness::testName(std::string(std::get<0>(info.param)) + "_to_" + std::get<1>(info.param));
}

INSTANTIATE_TEST_SUITE_P(Pairs, FormsTest,
                         ::testing::Combine(::testing::ValuesIn(kForms), ::testing::ValuesIn(kForms)),
                         formsName);
INSTANTIATE_TEST_SUITE_P(Pairs, Units32Test,
                         ::testing::Combine(::testing::Values("UTF-32", "UTF-32BE"),
                                            ::testing::ValuesIn(kForms)),
                         formsName);
INSTANTIATE_TEST_SUITE_P(Pairs, Utf8Test,
                         ::testing::Combine(::testing::Values("UTF-8"), ::testing::ValuesIn(kForms)),
                         formsName);

// The forms that chains are made of need an intermediate buffer.
TEST(Chains, withoutAnIntermediateBufferGiveInvalid) {
    Pair pair("UTF-16", "UTF-16BE");
    ASSERT_TRUE(pair.expected().isChain());
    Bytes source = {'a', 0, 'b', 0};
    char out[32];
    nlsStr from = {reinterpret_cast<char *>(source.data()), 4, 4};
    nlsStr to = {out, sizeof out, 0};
    nlsStr none = {nullptr, 0, 0};
    EXPECT_EQ(nlsConvertNLS(pair.actual(), &from, &none, &to), NLS_E_NULLARG);
    EXPECT_EQ(nlsConvertFromUCS2(pair.actual(), source.data(), 4, &to), NLS_E_NULLARG);
    EXPECT_EQ(nlsConvertNLSCheck(pair.actual(), &from, &to), NLS_E_NULLARG);
}

} // namespace
