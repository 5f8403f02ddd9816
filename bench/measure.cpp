#include "measure.hpp"

#include "contestants.hpp"
#include "texts.hpp"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <ctime>
#include <map>
#include <random>
#include <unordered_map>

namespace bench {
namespace {

using Contestants = std::vector<std::unique_ptr<Contestant>>;

// ---- Strings --------------------------------------------------------------------------------------------

std::size_t lengthOfUtf8(char lead) {
    const auto byte = static_cast<unsigned char>(lead);
    return byte < 0x80 ? 1 : byte < 0xE0 ? 2 : byte < 0xF0 ? 3 : 4;
}

// The text character by character in the source page, without the characters that some contestant does not
// have or maps elsewhere: every contestant then does the same work.
struct CutText {
    std::vector<std::string> distinct;
    std::vector<std::uint32_t> characters; // indexes into `distinct`
    std::vector<std::uint8_t> utf8Lengths; // by index
};

bool allAgree(const Contestants &contestants, const std::string &source) {
    std::string first;
    if (!contestants[0]->convert(source, first))
        return false;
    for (std::size_t i = 1; i < contestants.size(); ++i) {
        std::string other;
        if (!contestants[i]->convert(source, other) || other != first)
            return false;
    }
    return true;
}

CutText cut(const std::string &utf8, const Page &source, const Contestants &contestants) {
    std::unique_ptr<Contestant> encoder;
    if (!isUtf8(source))
        encoder = openVelnls(pageNamed("UTF-8"), source);
    constexpr std::uint32_t kDropped = 0xFFFFFFFF;
    std::unordered_map<std::string, std::uint32_t> known;
    CutText text;
    for (std::size_t i = 0; i < utf8.size();) {
        const std::size_t length = lengthOfUtf8(utf8[i]);
        const std::string character = utf8.substr(i, length);
        i += length;
        auto found = known.find(character);
        if (found == known.end()) {
            std::string encoded = character;
            const bool usable = (encoder == nullptr || encoder->convert(character, encoded)) &&
                                allAgree(contestants, encoded);
            found =
                known.emplace(character, usable ? static_cast<std::uint32_t>(text.distinct.size()) : kDropped)
                    .first;
            if (usable) {
                text.distinct.push_back(encoded);
                text.utf8Lengths.push_back(static_cast<std::uint8_t>(length));
            }
        }
        if (found->second != kDropped)
            text.characters.push_back(found->second);
    }
    return text;
}

Strings asBuffer(const CutText &text) {
    std::string all;
    all.reserve(kBufferBytes + 8);
    for (std::size_t i = 0; all.size() < kBufferBytes && !text.characters.empty(); ++i)
        all += text.distinct[text.characters[i % text.characters.size()]];
    Strings strings;
    strings.add(all);
    return strings;
}

Strings asLines(const CutText &text) {
    constexpr std::size_t kEnough = 2u << 20;
    Strings strings;
    std::string line;
    std::size_t sum = 0;
    for (const std::uint32_t character : text.characters) {
        const std::string &bytes = text.distinct[character];
        if (bytes[0] == '\n' && (bytes.size() == 1 || bytes[1] == 0)) {
            if (!line.empty())
                strings.add(line);
            sum += line.size();
            line.clear();
            if (sum >= kEnough)
                break;
            continue;
        }
        line += bytes;
    }
    if (!line.empty())
        strings.add(line);
    return strings;
}

// 10^5 strings of 8 to 40 bytes, 20 on average, as a database column holds them. UTF-16 and UTF-32 sources
// are cut where their UTF-8 form has that length, so that the same strings go both ways.
Strings asColumn(const CutText &text, bool countUtf8) {
    constexpr std::size_t kCount = 100'000;
    std::mt19937 random(1);
    std::uniform_real_distribution<double> uniform(0, 1);
    Strings strings;
    std::string value;
    std::size_t position = 0;
    while (strings.pieces.size() < kCount && !text.characters.empty()) {
        // 8 + 32 u^(5/3) has the mean 20
        const auto wanted = static_cast<std::size_t>(8.5 + 32 * std::pow(uniform(random), 5.0 / 3));
        value.clear();
        for (std::size_t length = 0; length < wanted;) {
            const std::uint32_t character = text.characters[position++ % text.characters.size()];
            const std::string &bytes = text.distinct[character];
            const std::size_t step = countUtf8 ? text.utf8Lengths[character] : bytes.size();
            if (bytes[0] == '\n' || length + step > 40)
                break;
            value += bytes;
            length += step;
        }
        if (value.size() >= 8)
            strings.add(value);
    }
    return strings;
}

Strings stringsOf(const CutText &text, Size size, const Page &source) {
    switch (size) {
    case Size::shortStrings:
        return asColumn(text, source.unit > 1);
    case Size::lines:
        return asLines(text);
    case Size::buffer:
        break;
    }
    return asBuffer(text);
}

// ---- Timing ---------------------------------------------------------------------------------------------

// Processor time of this thread: what other programs on the machine take is not counted.
double processorSeconds() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

double timeOf(Contestant &contestant, const Strings &strings, std::size_t &sum) {
    const double start = processorSeconds();
    sum += contestant.run(strings);
    return processorSeconds() - start;
}

double medianOf(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

std::string compareOutputs(const Contestants &contestants, const Strings &strings) {
    for (const Strings::Piece &piece : strings.pieces) {
        const std::string_view source(strings.bytes.data() + piece.offset, piece.length);
        std::string first;
        if (!contestants[0]->convert(source, first))
            return contestants[0]->name() + " refuses a string";
        for (std::size_t i = 1; i < contestants.size(); ++i) {
            std::string other;
            if (!contestants[i]->convert(source, other))
                return contestants[i]->name() + " refuses a string";
            if (other != first)
                return contestants[i]->name() + " and " + contestants[0]->name() + " differ";
        }
    }
    return {};
}

// The cut text of the row that was asked for last: the three sizes of a row follow each other.
const CutText &cutTextFor(const Row &row, const Page &source, const Contestants &contestants) {
    static const Row *last = nullptr;
    static CutText text;
    if (last != &row) {
        text = cut(textOf(row.language).utf8, source, contestants);
        last = &row;
    }
    return text;
}

} // namespace

const char *nameOf(Size size) {
    switch (size) {
    case Size::shortStrings:
        return "short";
    case Size::lines:
        return "lines";
    case Size::buffer:
        break;
    }
    return "buffer";
}

Result measure(const Row &row, Size size, int rounds) {
    Result result;
    const Page &source = pageNamed(row.source);
    const Page &target = pageNamed(row.target);
    Contestants contestants;
    contestants.push_back(openVelnls(source, target));
    contestants.push_back(openIconv(source, target));
    for (auto &way : openIcu(source, target))
        contestants.push_back(std::move(way));
    for (const auto &contestant : contestants)
        if (contestant == nullptr) {
            result.problem = "a contestant cannot be opened";
            return result;
        }

    const Strings strings = stringsOf(cutTextFor(row, source, contestants), size, source);
    result.strings = strings.pieces.size();
    result.bytes = strings.sourceBytes();
    result.problem = compareOutputs(contestants, strings);
    if (!result.problem.empty())
        return result;

    std::size_t sum = 0;
    for (const auto &contestant : contestants) {
        contestant->prepare(strings);
        timeOf(*contestant, strings, sum); // pages in, warms caches
    }
    std::vector<std::vector<double>> seconds(contestants.size());
    for (int round = 0; round < rounds; ++round)
        for (std::size_t i = 0; i < contestants.size(); ++i) {
            const std::size_t turn = (i + static_cast<std::size_t>(round)) % contestants.size();
            seconds[turn].push_back(timeOf(*contestants[turn], strings, sum));
        }
    if (sum == 0)
        result.problem = "nothing was written";

    result.seconds = medianOf(seconds[0]);
    std::size_t best = 1;
    for (std::size_t i = 2; i < contestants.size(); ++i)
        if (medianOf(seconds[i]) < medianOf(seconds[best]))
            best = i;
    result.peer = contestants[best]->name();
    result.peerSeconds = medianOf(seconds[best]);
    std::vector<double> ratios;
    for (std::size_t round = 0; round < seconds[0].size(); ++round)
        ratios.push_back(seconds[best][round] / seconds[0][round]);
    result.ratio = {medianOf(ratios), *std::min_element(ratios.begin(), ratios.end()),
                    *std::max_element(ratios.begin(), ratios.end())};
    return result;
}

Jobs conversionJobs() {
    Jobs jobs;
    for (const Row &row : rows())
        for (const Size size : {Size::shortStrings, Size::lines, Size::buffer})
            jobs.push_back(
                {std::string(row.source) + "_to_" + row.target + "/" + row.language + "/" + nameOf(size),
                 size == Size::buffer         ? row.floorBuffer
                 : size == Size::shortStrings ? row.floorShort
                                              : std::min(row.floorShort, row.floorBuffer),
                 [&row, size](int rounds) { return measure(row, size, rounds); }});
    return jobs;
}

} // namespace bench
