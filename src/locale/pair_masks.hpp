// The characters of pages of one and two bytes, in masks of one bit per byte.
//
// Included by the files that instantiate kernels; what it defines is local to each. `Masks` makes the masks
// of a block.
#pragma once

#include "locale/page_facts.hpp"

namespace velnls {
namespace {

// Which bytes of a block are trail bytes: in a run of lead-valued bytes every other one, and the byte behind
// a run that began an odd number of bytes before. `pending`, 0 or 1: the first byte belongs to the block
// before; becomes the same for the next block.
[[gnu::always_inline]] inline std::uint64_t pairTrails(std::uint64_t leads, std::uint64_t &pending) {
    constexpr std::uint64_t kEven = 0x5555'5555'5555'5555;
    leads &= ~pending;
    const std::uint64_t behindLead = leads << 1 | pending;
    const std::uint64_t oddStarts = leads & ~kEven & ~behindLead;
    std::uint64_t sum = 0;
    pending = __builtin_add_overflow(oddStarts, leads, &sum) ? 1 : 0;
    return (kEven ^ sum << 1) & behindLead;
}

// Of a block that begins with a character.
[[gnu::always_inline]] inline std::uint64_t pairTrails(std::uint64_t leads) {
    std::uint64_t pending = 0;
    return pairTrails(leads, pending);
}

template <typename Masks>
[[gnu::always_inline]] inline std::uint64_t leadsOf(const Masks &masks, const PageFacts &facts) {
    return masks.inRange(facts.leads[0].first, facts.leads[0].span) |
           masks.inRange(facts.leads[1].first, facts.leads[1].span);
}

} // namespace
} // namespace velnls
