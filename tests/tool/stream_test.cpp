// The streaming engine: the parts in which input comes, the pieces that are converted and the blocks that are
// written must not show in the result.
#include <gtest/gtest.h>

#include <ostream>

#include "process.hpp"
#include "stream.hpp"

namespace velnls::tool {
namespace {

struct Outcome {
    std::string out;
    bool finished = false;
    Report report;
};

bool operator==(const Place &a, const Place &b) {
    return a.file == b.file && a.line == b.line && a.column == b.column && a.bytes == b.bytes;
}

void expectSame(const Outcome &a, const Outcome &b, const std::string &what) {
    ASSERT_EQ(a.out, b.out) << what;
    ASSERT_EQ(a.finished, b.finished) << what;
    ASSERT_EQ(a.report.substituted, b.report.substituted) << what;
    ASSERT_TRUE(a.report.firstSubstituted == b.report.firstSubstituted) << what;
    ASSERT_EQ(a.report.malformed, b.report.malformed) << what;
    ASSERT_TRUE(a.report.firstMalformed == b.report.firstMalformed)
        << what << " " << a.report.firstMalformed.bytes << " and " << b.report.firstMalformed.bytes;
}

struct Sample {
    const char *name;
    const char *from;
    const char *to;
    std::string text; // with characters of every length of its page
};

// Names the test; the default would print its bytes.
void PrintTo(const Sample &sample, std::ostream *out) {
    *out << sample.name;
}

class Streaming : public testing::TestWithParam<Sample> {
protected:
    Streaming()
        : data_(""), library_(data_), source_(describePage(library_, GetParam().from)),
          target_(describePage(library_, GetParam().to)), route_(library_, source_, target_) {}

    // Feeds the text in parts that end at each of "ends" and at its end.
    Outcome run(const std::string &text, const std::vector<std::size_t> &ends, const StreamOptions &options) {
        Outcome outcome;
        Stream stream(route_, options,
                      [&](const char *bytes, std::size_t size) { outcome.out.append(bytes, size); });
        stream.begin("file");
        std::size_t start = 0;
        bool going = true;
        for (std::size_t i = 0; going && i <= ends.size(); ++i) {
            const std::size_t end = i < ends.size() ? ends[i] : text.size();
            // A copy of exact size, so that the sanitizers see a step too far.
            const std::vector<unsigned char> part(text.begin() + static_cast<std::ptrdiff_t>(start),
                                                  text.begin() + static_cast<std::ptrdiff_t>(end));
            going = stream.feed(part.data(), part.size());
            start = end;
        }
        outcome.finished = going && stream.finish();
        stream.flush();
        outcome.report = stream.report();
        return outcome;
    }

    static std::vector<std::size_t> every(std::size_t step, std::size_t size) {
        std::vector<std::size_t> ends;
        for (std::size_t end = step; end < size; end += step) {
            ends.push_back(end);
        }
        return ends;
    }

    // Splits at every place and at every pair of places, feeds in parts of 1 to 64 bytes, and converts in
    // pieces and writes in blocks of 1 to 64 bytes.
    void expectSizesDoNotShow(const std::string &text, const StreamOptions &options) {
        const Outcome whole = run(text, {}, options);
        for (std::size_t first = 0; first <= text.size(); ++first) {
            expectSame(run(text, {first}, options), whole, "split at " + std::to_string(first));
            for (std::size_t second = first; second <= std::min(first + 5, text.size()); ++second) {
                expectSame(run(text, {first, second}, options), whole,
                           "split at " + std::to_string(first) + " and " + std::to_string(second));
            }
        }
        for (std::size_t size = 1; size <= 64; ++size) {
            expectSame(run(text, every(size, text.size()), options), whole,
                       "parts of " + std::to_string(size));
            StreamOptions small = options;
            small.pieceSize = size;
            small.outputSize = size;
            expectSame(run(text, {}, small), whole, "pieces of " + std::to_string(size));
            expectSame(run(text, every(size, text.size()), small), whole,
                       "parts and pieces of " + std::to_string(size));
        }
    }

    DataSource data_;
    Library library_;
    Page source_;
    Page target_;
    Route route_;
};

TEST_P(Streaming, WellFormedTextGivesTheSameForEverySize) {
    expectSizesDoNotShow(GetParam().text + GetParam().text, {});
}

TEST_P(Streaming, TextBeforeTheEndOfTheInputIsNotHeldBack) {
    const Outcome outcome = run(GetParam().text, {}, {});
    EXPECT_TRUE(outcome.finished);
    EXPECT_NE(outcome.out, "");
}

// Every place of the text is damaged in turn, which makes all kinds of malformed and unmapped input.
TEST_P(Streaming, DamagedTextGivesTheSameForEverySize) {
    for (const bool accept : {false, true}) {
        for (const bool drop : {false, true}) {
            StreamOptions options;
            options.acceptMalformed = accept;
            options.drop = drop;
            for (std::size_t at = 0; at < GetParam().text.size(); ++at) {
                for (const char byte : {'\xFF', '\x80', '\xD8', 'A', '\n', '\0'}) {
                    std::string text = GetParam().text;
                    text[at] = byte;
                    const Outcome whole = run(text, {}, options);
                    for (const std::size_t size : {1u, 2u, 3u, 5u}) {
                        StreamOptions small = options;
                        small.pieceSize = size;
                        small.outputSize = size;
                        expectSame(run(text, every(size, text.size()), small), whole,
                                   "byte " + std::to_string(at) + ", parts of " + std::to_string(size));
                    }
                }
            }
        }
    }
}

TEST_P(Streaming, CutTextGivesTheSameForEverySize) {
    StreamOptions options;
    options.acceptMalformed = true;
    for (std::size_t size = 0; size < GetParam().text.size(); ++size) {
        const std::string text = GetParam().text.substr(0, size);
        const Outcome whole = run(text, {}, options);
        for (const std::size_t part : {1u, 2u, 3u, 5u}) {
            expectSame(run(text, every(part, text.size()), options), whole,
                       "cut at " + std::to_string(size) + ", parts of " + std::to_string(part));
        }
    }
}

const std::string kUtf8Text = "a\xC3\xA9\n\xE6\x97\xA5\xE6\x9C\xAC\xF0\x9F\x98\x80z\xD0\x96";
const std::string kUtf16Text = BYTES("a\0\n\0\xE5\x65\x3D\xD8\0\xDEz\0\x3D\xD8\x01\xDE");
const std::string kUtf16BeText = BYTES("\0a\0\n\x65\xE5\xD8\x3D\xDE\0\0z\xD8\x3D\xDE\x01");
const std::string kUtf32Text = BYTES("a\0\0\0\n\0\0\0\xE5\x65\0\0\0\xF6\x01\0z\0\0\0");
const std::string kShiftJisText = "a\x93\xFA\n\xB1\x96\x7B\x5C\x83\x5C\x83\x83z\x81\x40";

const Sample kSamples[] = {
    {"Utf8ToUtf16", "UTF-8", "UTF-16", kUtf8Text},
    {"Utf8ToUtf32", "UTF-8", "UTF-32BE", kUtf8Text},
    {"Utf8To1252", "UTF-8", "1252", kUtf8Text},
    {"Utf8ToShiftJis", "UTF-8", "SHIFT-JIS", kUtf8Text},
    {"Utf8ToItself", "UTF-8", "UTF-8", kUtf8Text},
    {"Utf16ToUtf8", "UTF-16", "UTF-8", kUtf16Text},
    {"Utf16BeToUtf8", "UTF-16BE", "UTF-8", kUtf16BeText},
    {"Utf16ToShiftJis", "UTF-16", "SHIFT-JIS", kUtf16Text},
    {"Utf16ToUtf16Be", "UTF-16", "UTF-16BE", kUtf16Text},
    {"Utf16ToUtf32", "UTF-16", "UTF-32", kUtf16Text},
    {"Utf32ToUtf8", "UTF-32", "UTF-8", kUtf32Text},
    {"Utf32To1251", "UTF-32", "1251", kUtf32Text},
    {"ShiftJisToUtf8", "SHIFT-JIS", "UTF-8", kShiftJisText},
    {"ShiftJisToUtf16", "SHIFT-JIS", "UTF-16", kShiftJisText},
    {"ShiftJisToUtf32", "SHIFT-JIS", "UTF-32", kShiftJisText},
    {"ShiftJisToEucJis", "SHIFT-JIS", "EUCJIS", kShiftJisText},
    {"ShiftJisToCp936", "SHIFT-JIS", "CP936", kShiftJisText},
    {"EucJisToShiftJis", "EUCJIS", "SHIFT-JIS", "a\xC6\xFC\n\x8E\xB1\xCB\xDCz"},
    {"Cp949ToUtf8", "CP949", "UTF-8", "a\xB0\xA1\n\x81\x41\x81\x61z"},
    {"Cp936ToUtf8", "CP936", "UTF-8", "a\xC8\xD5\n\x81\x40\x81\x80z"},
    {"Cp950ToUtf8", "CP950", "UTF-8", "a\xA4\x40\n\xA4\xA4z"},
    {"HkscsToUtf8", "CP950-HKSCS", "UTF-8", "a\xA4\x40\n\x87\x40\x88\x40z\x7F"},
    {"Iso6937ToUtf8", "ISO6937", "UTF-8", "a\xC1\x41\n\xC8\x75z"},
    {"Page1252ToUtf8", "1252", "UTF-8", "a\xE9\n\x80\x9Fz"},
    {"Page1252To850", "1252", "IBM850", "a\xE9\n\xA9\x80z"},
    {"Page1252To1251", "1252", "1251", "a\xE9\n\x80\xA9z"},
    {"EbcdicTo1252", "IBM037", "1252", "\xC1\x25\x41\xC2\xFF"},
};

INSTANTIATE_TEST_SUITE_P(Pair, Streaming, testing::ValuesIn(kSamples),
                         [](const auto &made) { return std::string(made.param.name); });

} // namespace
} // namespace velnls::tool
