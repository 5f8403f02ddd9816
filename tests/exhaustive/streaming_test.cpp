// A caller that reads text in pieces and carries incomplete characters over, by the character lengths of the
// public interface, gets what one call for the whole text gives: at every split point, with every buffer
// size.
#include "harness/compare.hpp"
#include "harness/names.hpp"
#include "harness/text_maker.hpp"

#include <array>

using harness::Bytes;
using model::Form;

namespace {

using Names = std::pair<std::string, std::string>;

// Finds where the last complete character of a piece ends.
class CharacterWalk {
public:
    explicit CharacterWalk(const model::Encoding &encoding)
        : form_(encoding.form), swapped_(encoding.swapped) {
        if (form_ == Form::kUtf16 || form_ == Form::kUtf32)
            return;
        nlsLocale *const locale = harness::library().locale(encoding.name);
        for (unsigned first = 1; first < 256; ++first) {
            std::array<char, 16> text{};
            text.fill('a');
            text[0] = static_cast<char>(first);
            text[15] = 0;
            char *next = nullptr;
            EXPECT_EQ(nlsGetNextChar(locale, text.data(), &next), NLS_OK);
            length_[first] = static_cast<std::size_t>(next - text.data());
        }
    }

    [[nodiscard]] std::size_t completePart(const Bytes &text) const {
        std::size_t at = 0;
        while (at < text.size()) {
            const std::size_t length = characterAt(text, at);
            if (length > text.size() - at)
                break;
            at += length;
        }
        return at;
    }

private:
    // More than what is left when the character is not complete.
    [[nodiscard]] std::size_t characterAt(const Bytes &text, std::size_t at) const {
        if (form_ == Form::kUtf32)
            return 4;
        if (form_ == Form::kUtf16) {
            if (text.size() - at < 2)
                return 2;
            const unsigned high = text[at + (swapped_ ? 0 : 1)];
            return high >= 0xD8 && high <= 0xDB ? 4 : 2;
        }
        const std::size_t length = length_[text[at]];
        for (std::size_t i = 1; i < length && at + i < text.size(); ++i)
            if (text[at + i] == 0)
                return i; // a NUL ends a character early
        return length;
    }

    Form form_;
    bool swapped_;
    std::array<std::size_t, 256> length_{1};
};

class StreamingTest : public ::testing::TestWithParam<Names> {
protected:
    StreamingTest()
        : expected_(GetParam().first, GetParam().second),
          conversion_(harness::library().conversion(GetParam().first, GetParam().second)),
          walk_(expected_.source()), maker_(expected_) {}

    // Every special character between every two others, as far as their order can matter.
    Bytes text() const {
        std::vector<Bytes> pieces;
        for (const Bytes &special : maker_.specials())
            if (isWhole(special))
                pieces.push_back(special);
        Bytes text;
        const auto append = [&](const Bytes &piece) { text.insert(text.end(), piece.begin(), piece.end()); };
        std::size_t next = 0;
        for (const Bytes &one : pieces)
            for (const Bytes &other : pieces) {
                append(one);
                append(other);
                append(maker_.scriptCharacters()[next++ % maker_.scriptCharacters().size()]);
                if (next % 3 == 0)
                    append(maker_.asciiCharacters()[next % maker_.asciiCharacters().size()]);
            }
        return text;
    }

    struct Total {
        nlsStatus status = NLS_OK;
        Bytes bytes;
    };

    void convert(const Bytes &piece, Total &total) {
        Bytes source = piece;
        source.push_back(0);
        Bytes out(piece.size() * 4 + 8);
        const harness::BareResult result =
            harness::convertBare(conversion_, source.data(), static_cast<std::uint32_t>(piece.size()),
                                 out.data(), static_cast<std::uint32_t>(out.size()));
        if (result.status != NLS_OK)
            total.status = result.status;
        total.bytes.insert(total.bytes.end(), out.begin(),
                           out.begin() + static_cast<std::ptrdiff_t>(result.written));
    }

    Total whole(const Bytes &text) {
        Total total;
        convert(text, total);
        return total;
    }

    // Reads `first` bytes, then pieces of `size` bytes.
    Total inPieces(const Bytes &text, std::size_t first, std::size_t size) {
        Total total;
        Bytes carried;
        for (std::size_t at = 0; at < text.size();) {
            const std::size_t count = std::min(text.size() - at, at == 0 && first != 0 ? first : size);
            carried.insert(carried.end(), text.begin() + static_cast<std::ptrdiff_t>(at),
                           text.begin() + static_cast<std::ptrdiff_t>(at + count));
            at += count;
            const auto complete =
                static_cast<std::ptrdiff_t>(at == text.size() ? carried.size() : walk_.completePart(carried));
            if (complete != 0)
                convert(Bytes(carried.begin(), carried.begin() + complete), total);
            carried.erase(carried.begin(), carried.begin() + complete);
        }
        return total;
    }

    ::testing::AssertionResult same(const Total &one, const Total &other, const Bytes &text) const {
        if (one.status == other.status && one.bytes == other.bytes)
            return ::testing::AssertionSuccess();
        return ::testing::AssertionFailure()
               << "whole: status " << static_cast<std::int32_t>(one.status) << ", " << one.bytes.size()
               << " bytes, in pieces: status " << static_cast<std::int32_t>(other.status) << ", "
               << other.bytes.size() << " bytes, of " << harness::hex(text);
    }

private:
    // A piece that a reader by character lengths and the decoder see alike: no forms that only the decoder
    // knows, nothing that would run into its neighbour.
    bool isWhole(const Bytes &piece) const {
        const Form form = expected_.source().form;
        if (form == Form::kUtf8 && (piece[0] >= 0xF8 || (piece[0] & 0xC0) == 0x80))
            return false;
        // A lone surrogate pairs with its neighbour, in 32-bit units too.
        const bool swapped = expected_.source().swapped;
        if (form == Form::kUtf16 && piece.size() == 2)
            return (piece[swapped ? 0 : 1] & 0xF8) != 0xD8;
        if (form == Form::kUtf32)
            return (piece[swapped ? 2 : 1] & 0xF8) != 0xD8 || piece[swapped ? 1 : 2] != 0;
        // The arithmetic between the Japanese pages takes the bytes from F0 up for single ones.
        if (GetParam().second == "EUCJIS" && form == Form::kPage && piece[0] >= 0xF0)
            return false;
        return walk_.completePart(piece) == piece.size();
    }

    model::Conversion expected_;
    nlsConversion *conversion_;
    CharacterWalk walk_;
    harness::TextMaker maker_;
};

TEST_P(StreamingTest, everyBufferSizeGivesTheSameOutput) {
    const Bytes all = text();
    ASSERT_GT(all.size(), 64u);
    const Total expected = whole(all);
    for (std::size_t size = 1; size <= 64; ++size)
        ASSERT_TRUE(same(expected, inPieces(all, 0, size), all)) << "pieces of " << size;
}

TEST_P(StreamingTest, everySplitPointGivesTheSameOutput) {
    Bytes all = text();
    all.resize(std::min<std::size_t>(all.size(), 3000));
    const Total expected = whole(all);
    for (std::size_t first = 1; first < all.size(); ++first)
        ASSERT_TRUE(same(expected, inPieces(all, first, all.size()), all)) << "split at " << first;
}

TEST_P(StreamingTest, everyLengthGivesTheSameOutput) {
    Bytes all = text();
    all.resize(std::min<std::size_t>(all.size(), 600));
    for (std::size_t length = 1; length < all.size(); ++length) {
        const Bytes cut(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(length));
        for (const std::size_t size : {1u, 2u, 3u, 5u, 64u})
            ASSERT_TRUE(same(whole(cut), inPieces(cut, 0, size), cut))
                << "length " << length << ", pieces of " << size;
    }
}

std::vector<Names> streamedPairs() {
    std::vector<Names> pairs;
    for (const auto &page : model::multibytePages())
        for (const char *form : {"UTF-8", "UTF-16"}) {
            pairs.emplace_back(page, form);
            pairs.emplace_back(form, page);
        }
    for (const Names &pair :
         {Names("UTF-8", "UTF-16"), Names("UTF-16", "UTF-8"), Names("UTF-8", "UTF-32"),
          Names("UTF-16BE", "UTF-8"), Names("UTF-32", "UTF-8"), Names("UTF-8", "1252"),
          Names("1252", "UTF-8"), Names("SHIFT-JIS", "EUCJIS"), Names("EUCJIS", "SHIFT-JIS")})
        pairs.push_back(pair);
    return pairs;
}

std::string streamedName(const ::testing::TestParamInfo<Names> &info) {
    return harness::testName(info.param.first + "_to_" + info.param.second);
}

INSTANTIATE_TEST_SUITE_P(Pairs, StreamingTest, ::testing::ValuesIn(streamedPairs()), streamedName);

} // namespace
