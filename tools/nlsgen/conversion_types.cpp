#include "conversion_types.hpp"

#include "core/file_layout.hpp"

#include <utility>

namespace velnls::nlsgen {
namespace {

// Kinds. Types 1 to 4 and 7 stand for themselves; a mapping goes with a mapping, a byte map with a byte map:
// the library reads the body of one direction in the layout of the other.
constexpr std::pair<int, int> kOpposites[] = {
    {0, 0},   {1, 1},   {0, 1},   {3, 4},   {5, 6},   {17, 18}, {17, 50}, {81, 18}, {81, 50},
    {89, 18}, {89, 50}, {19, 20}, {51, 20}, {21, 22}, {23, 24}, {25, 26}, {27, 28}, {29, 30},
};

struct KindAndForms {
    int kind;
    int source; // form of the Unicode units that it reads, and of those that it writes
    int target;
};

KindAndForms split(int type) {
    const int word = type >= file::kFirstRemappedType && type <= file::kLastRemappedType
                         ? file::kRemappedTypes[type - file::kFirstRemappedType]
                         : type;
    if (word == type)
        return {type, 0, 0};
    return {word & ~file::kVariantBits, word >> file::kSourceFormShift & file::kFormMask,
            word >> file::kTargetFormShift & file::kFormMask};
}

} // namespace

bool typesFit(std::uint8_t forward, std::uint8_t back) {
    const KindAndForms there = split(forward);
    const KindAndForms here = split(back);
    if (there.source != here.target || there.target != here.source)
        return false;
    for (const auto &[one, other] : kOpposites)
        if ((there.kind == one && here.kind == other) || (there.kind == other && here.kind == one))
            return true;
    return false;
}

int kindOfType(int type) {
    return split(type).kind;
}

bool typeExists(int type) {
    switch (type) {
    case 1:
    case 3:
    case 4:
    case 5:
    case 6:
    case 17:
    case 18:
    case 19:
    case 20:
    case 50:
    case 51:
    case 81:
    case 89:
        return true;
    default:
        return (type >= 21 && type <= 30) ||
               (type >= file::kFirstRemappedType && type <= file::kLastRemappedType);
    }
}

} // namespace velnls::nlsgen
