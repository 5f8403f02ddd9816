#include "verifier.hpp"

#include "file_lookup.hpp"
#include "language_plan.hpp"
#include "number_field.hpp"

#include <algorithm>
#include <cstring>
#include <map>
#include <optional>
#include <tuple>

namespace velnls::nlsgen {
namespace {

constexpr std::uint32_t kLastCharacter = 0x2FFFF;

std::string named(std::uint32_t code, int width) {
    return code == kNone ? "nothing" : hexadecimal(code, width);
}

void verifyMapping(const FileLookup &lookup, const Page &page) {
    for (std::uint32_t code = 0; code < kCodeCount; code++) {
        const std::uint32_t found = lookup.toUnicode(static_cast<std::uint16_t>(code)).value_or(kNone);
        // An unmapped code below 7F stays itself.
        const std::uint32_t meant = page.toUnicode(code);
        if (found != meant && !(found == kNone && code < 0x7F && meant == code))
            throw Problem(page.placeOf(code), "page " + page.name + ": code " + hexadecimal(code, 2) +
                                                  " expected to give " + named(meant, 4) +
                                                  ", the finished file gives " + named(found, 4));
    }
    for (std::uint32_t character = 0; character <= kLastCharacter; character++) {
        const auto code = lookup.fromUnicode(character);
        const std::uint32_t found = code ? *code : kNone;
        const std::uint32_t meant = page.codeOf(character);
        if (found != meant && !(found == kNone && character < 0x7F && meant == character))
            throw Problem(page.placeOf(meant == kNone ? kCodeCount : meant),
                          "page " + page.name + ": " + unicodeName(character) + " expected to give " +
                              named(meant, 2) + ", the finished file gives " + named(found, 2));
    }
}

// The weights of the finished file, two characters at a time.
class CollationProof {
public:
    CollationProof(const PlannedCollation &planned, const file::Collation &record)
        : planned_(planned), record_(record) {}

    void run() const {
        std::vector<std::uint32_t> bytes; // by planned rank, then those of no character
        for (std::uint32_t byte = 1; byte < kByteCount; byte++)
            if (isRanked(byte))
                bytes.push_back(byte);
        std::sort(bytes.begin(), bytes.end(),
                  [this](std::uint32_t a, std::uint32_t b) { return placeOf(a) < placeOf(b); });
        for (std::size_t i = 1; i < bytes.size(); i++) {
            const std::uint32_t a = bytes[i - 1];
            const std::uint32_t b = bytes[i];
            expectOrder(record_.caseSensitive, a, b, !mergesForm(a, b));
            expectOrder(record_.caseInsensitive, a, b, !mergesLetter(a, b));
        }
    }

private:
    static constexpr std::uint32_t kByteCount = 256;

    // Whether the byte's weight is its rank: not of Thai signs, whose weights are bits, and not of characters
    // that sort as two others.
    [[nodiscard]] bool isRanked(std::uint32_t byte) const {
        if (record_.kind == file::kThai)
            return byte != 0xD1 && (byte < 0xD4 || byte > 0xD9) && (byte < 0xE7 || byte > 0xED);
        const bool expands = planned_.expanding.contains(planned_.page->toUnicode(byte));
        if (expands && (record_.caseSensitive[byte] != 0 || record_.caseInsensitive[byte] != 0))
            fail(byte, byte, "expected weight 0");
        return !expands;
    }
    [[nodiscard]] bool mergesAccents() const {
        return planned_.name == kNoAccentsName;
    }
    [[nodiscard]] std::optional<Rank> rankOf(std::uint32_t byte) const {
        const std::uint32_t character = planned_.page->toUnicode(byte);
        return character == kNone ? std::nullopt : std::optional(planned_.order->rankOf(character));
    }
    using Position = std::tuple<bool, unsigned, unsigned, unsigned>;
    [[nodiscard]] Position placeOf(std::uint32_t byte) const {
        const auto rank = rankOf(byte);
        if (!rank)
            return {true, byte, 0, 0};
        if (mergesAccents())
            return {false, rank->base, rank->form, rank->order};
        return {false, rank->order, 0, 0};
    }
    // Whether the case-sensitive table makes no difference between the two, or the other one.
    [[nodiscard]] bool mergesForm(std::uint32_t a, std::uint32_t b) const {
        const auto one = rankOf(a);
        const auto other = rankOf(b);
        return mergesAccents() && one && other && one->base == other->base && one->form == other->form;
    }
    [[nodiscard]] bool mergesLetter(std::uint32_t a, std::uint32_t b) const {
        const auto one = rankOf(a);
        const auto other = rankOf(b);
        if (!one || !other || record_.kind == file::kThai)
            return false;
        return mergesAccents() ? one->base == other->base : one->letter == other->letter;
    }
    void expectOrder(const std::uint8_t *weights, std::uint32_t a, std::uint32_t b, bool less) const {
        if (less ? weights[a] >= weights[b] : weights[a] != weights[b])
            fail(a, b,
                 std::string("expected the first to weigh ") + (less ? "less than" : "the same as") +
                     " the second");
        if (weights[a] == 0)
            fail(a, b, "expected weights above 0");
    }
    [[noreturn]] void fail(std::uint32_t a, std::uint32_t b, const std::string &message) const {
        throw Problem(planned_.order->source(), 0,
                      "collation \"" + planned_.name + "\" of page " + planned_.page->name + ", bytes " +
                          hexadecimal(a, 2) + " and " + hexadecimal(b, 2) + ": " + message +
                          " in the finished file");
    }

    const PlannedCollation &planned_;
    const file::Collation &record_;
};

// The offsets of all records of a kind by the names of their entries.
std::map<std::pair<std::string, std::string>, std::size_t> recordsOf(std::span<const std::uint8_t> file,
                                                                     file::EntryKind kind) {
    std::map<std::pair<std::string, std::string>, std::size_t> records;
    file::Header header;
    std::memcpy(&header, file.data(), sizeof header);
    const auto count = static_cast<std::size_t>(readNumber(header.entryCount, sizeof header.entryCount));
    for (std::size_t i = 0; i < count; i++) {
        file::Entry entry;
        std::memcpy(&entry, file.data() + sizeof header + i * sizeof entry, sizeof entry);
        const long offset = readNumber(entry.offset, sizeof entry.offset);
        if (entry.kind == '0' + kind && offset != 0)
            records.emplace(std::pair(entry.name, entry.name2), static_cast<std::size_t>(offset));
    }
    return records;
}

} // namespace

void verifyMappings(std::span<const std::uint8_t> file,
                    const std::vector<std::shared_ptr<const Page>> &pages) {
    const auto records = recordsOf(file, file::kConversion);
    for (const auto &page : pages) {
        const auto found = records.find({page->name, "UTF-8"});
        if (found == records.end())
            throw Problem(page->placeOf(kCodeCount),
                          "page " + page->name + ": expected a mapping to UTF-8 in the finished file");
        verifyMapping(FileLookup(file, found->second), *page);
    }
}

void verifyCollations(std::span<const std::uint8_t> file, const std::vector<PlannedCollation> &collations) {
    const auto records = recordsOf(file, file::kCollation);
    for (const PlannedCollation &planned : collations) {
        const auto found = records.find({planned.page->name, planned.name});
        if (found == records.end())
            throw Problem(planned.order->source(), 0,
                          "collation \"" + planned.name + "\" of page " + planned.page->name +
                              ": expected it in the finished file");
        file::Collation record;
        std::memcpy(&record, file.data() + found->second, sizeof record);
        CollationProof(planned, record).run();
    }
}

} // namespace velnls::nlsgen
