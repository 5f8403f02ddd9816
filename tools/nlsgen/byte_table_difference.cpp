#include "byte_table_difference.hpp"

#include "order_moves.hpp"

#include <algorithm>
#include <vector>

namespace velnls::nlsgen {
namespace {

constexpr std::uint32_t kByteCount = 256;

// A character of both files and its byte in each.
struct SharedCharacter {
    ByteMeaning meaning;
    std::uint8_t before;
    std::uint8_t after;
};

std::vector<SharedCharacter> sharedBy(const PageBytes &bytes) {
    std::vector<SharedCharacter> shared;
    for (std::uint32_t i = 0; i < kByteCount; i++) {
        const auto byte = static_cast<std::uint8_t>(i);
        const ByteMeaning meaning = bytes.before.meaningOf(byte);
        if (const auto other = bytes.after.byteOf(meaning))
            shared.push_back({meaning, byte, *other});
    }
    return shared;
}

struct Item {
    ByteMeaning meaning;
    TwoWeights weights;
    bool moved = false;
};

// Where an item stands among those that did not move, in one of the two orders.
std::string placeOf(const Item &item, const std::vector<Item> &items, std::uint8_t TwoWeights::*side,
                    const DifferenceReport &report) {
    const std::uint8_t weight = item.weights.*side;
    const Item *below = nullptr;
    const Item *above = nullptr;
    for (const Item &other : items) {
        if (other.moved)
            continue;
        const std::uint8_t otherWeight = other.weights.*side;
        if (otherWeight == weight)
            return "equal to " + meaningText(other.meaning, report);
        if (otherWeight < weight && (below == nullptr || otherWeight >= below->weights.*side))
            below = &other;
        if (otherWeight > weight && (above == nullptr || otherWeight < above->weights.*side))
            above = &other;
    }
    if (below == nullptr && above == nullptr)
        return "alone";
    if (below == nullptr)
        return "before " + meaningText(above->meaning, report);
    if (above == nullptr)
        return "behind " + meaningText(below->meaning, report);
    return "between " + meaningText(below->meaning, report) + " and " + meaningText(above->meaning, report);
}

} // namespace

std::string meaningText(ByteMeaning meaning, const DifferenceReport &report) {
    return (meaning & kMeaningless) != 0 ? "byte " + hexadecimal(meaning & 0xFF, 2)
                                         : report.character(meaning);
}

void reportNumbers(const PageBytes &bytes, ByteTable was, ByteTable is, const std::string &title,
                   DifferenceReport &report) {
    for (const SharedCharacter &character : sharedBy(bytes)) {
        const std::uint8_t old = was[character.before];
        const std::uint8_t now = is[character.after];
        if (old != now)
            report.add(title + " of " + meaningText(character.meaning, report) + ": was " +
                       std::to_string(old) + ", is " + std::to_string(now));
    }
}

void reportTargets(const PageBytes &bytes, const PageBytes &targets, ByteTable was, ByteTable is,
                   const std::string &title, DifferenceReport &report) {
    for (const SharedCharacter &character : sharedBy(bytes)) {
        const ByteMeaning old = targets.before.meaningOf(was[character.before]);
        const ByteMeaning now = targets.after.meaningOf(is[character.after]);
        if (old != now)
            report.add(title + meaningText(character.meaning, report) + ": was " + meaningText(old, report) +
                       ", is " + meaningText(now, report));
    }
}

void reportOrder(const PageBytes &bytes, ByteTable was, ByteTable is, const std::string &title,
                 DifferenceReport &report) {
    const std::size_t countBefore = report.count();
    std::vector<Item> items;
    bool otherWeights = false;
    for (const SharedCharacter &character : sharedBy(bytes)) {
        const TwoWeights weights{was[character.before], is[character.after]};
        otherWeights = otherWeights || weights.before != weights.after;
        if (character.before == 0 && character.after == 0)
            continue; // ends a string
        if (weights.before != 0 && weights.after != 0)
            items.push_back({character.meaning, weights});
        else if (weights.before != weights.after)
            report.add(title + ": " + meaningText(character.meaning, report) +
                       (weights.after == 0 ? " sorts as \"ss\" now" : " does not sort as \"ss\" any more"));
    }
    std::vector<TwoWeights> weights;
    weights.reserve(items.size());
    for (const Item &item : items)
        weights.push_back(item.weights);
    for (const std::size_t index : movedItems(weights))
        items[index].moved = true;
    for (const Item &item : items)
        if (item.moved)
            report.add(title + ": " + meaningText(item.meaning, report) + " moved: was " +
                       placeOf(item, items, &TwoWeights::before, report) + ", is " +
                       placeOf(item, items, &TwoWeights::after, report));
    if (otherWeights && report.count() == countBefore)
        report.add(title + ": other weights in the same order: keys of the two files do not compare");
}

} // namespace velnls::nlsgen
