// The arithmetic between Shift_JIS and EUC-JP, on codes.
#pragma once

#include <cstdint>

namespace model {

// The EUC-JP code of a Shift_JIS code, or kNone where the arithmetic has none (leads F0 to FC).
std::uint32_t eucOfShiftJis(std::uint32_t code);

} // namespace model
