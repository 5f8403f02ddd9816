// The block kernels between Shift_JIS and EUC-JP for every x86-64 processor.
//
// Each goes as far as no half-width katakana and no byte outside the formulas stands, whole characters find
// room, and leaves the positions there; the caller goes on.
#pragma once

#include "convert/kernels/kernels.hpp"

#if defined(__SSE2__)
#define VELNLS_JAPANESE_BLOCKS 1

namespace velnls::fast {

void shiftJisToEucBlocks(Source &source, Target &target);
void eucToShiftJisBlocks(Source &source, Target &target);

} // namespace velnls::fast

#else

// On other processors they stop where they are.
namespace velnls::fast {

inline void shiftJisToEucBlocks(Source &, Target &) {}
inline void eucToShiftJisBlocks(Source &, Target &) {}

} // namespace velnls::fast

#endif
