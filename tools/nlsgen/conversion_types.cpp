#include "conversion_types.hpp"

#include <utility>

namespace velnls::nlsgen {
namespace {

// Types 1 to 4 and 7 stand for themselves; a mapping goes with a mapping, a byte map with a byte map: the
// library reads the body of one direction in the layout of the other.
constexpr std::pair<std::uint8_t, std::uint8_t> kOpposites[] = {
    {0, 0},     {1, 1},     {0, 1},     {3, 4},     {5, 6},     {17, 18},   {17, 50},   {81, 18},   {81, 50},
    {89, 18},   {89, 50},   {19, 20},   {51, 20},   {21, 22},   {23, 24},   {25, 26},   {27, 28},   {29, 30},
    {144, 145}, {148, 149}, {152, 153}, {156, 157}, {160, 161}, {170, 171}, {174, 175}, {176, 177},
};

} // namespace

bool typesFit(std::uint8_t forward, std::uint8_t back) {
    for (const auto &[one, other] : kOpposites)
        if ((forward == one && back == other) || (forward == other && back == one))
            return true;
    return false;
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
        return (type >= 21 && type <= 30) || (type >= 144 && type <= 177);
    }
}

} // namespace velnls::nlsgen
