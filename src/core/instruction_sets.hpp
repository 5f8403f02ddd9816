// What the processor can do beyond the baseline: asked when an object is made, and kept among its proofs.
#pragma once

#include <cstdint>

namespace velnls {

// AVX-512 with byte permutes and compression (VBMI, VBMI2), and the operating system keeps its registers.
inline constexpr std::uint32_t kWideVectors = 0x8000'0000;

// AVX2: byte shuffles of 256 bits. Where the wide vectors are there, so is this.
inline constexpr std::uint32_t kByteShuffles = 0x4000'0000;
inline constexpr std::uint32_t kInstructionSets = kWideVectors | kByteShuffles;

// The bits above that hold on this machine.
std::uint32_t instructionSets();

} // namespace velnls
