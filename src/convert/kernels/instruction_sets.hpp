// What the processor can do beyond the baseline, asked once per converter and kept among its proofs.
#pragma once

#include <cstdint>

namespace velnls {

// AVX-512 with byte permutes and compression (VBMI, VBMI2), and the operating system keeps its registers.
inline constexpr std::uint32_t kWideVectors = 0x8000'0000;

// The bits above that hold on this machine.
std::uint32_t instructionSets();

} // namespace velnls
