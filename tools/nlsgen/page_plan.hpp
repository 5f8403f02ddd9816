// What is built: every code page with its source, its bytes and the layout of its mapping, and which direct
// tables and case tables there are. Nothing here is computed; docs/data-file-format.md explains the layouts.
#pragma once

#include "core/file_layout.hpp"

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

namespace velnls::nlsgen {

// Both ends belong to it; a range that ends before it begins is empty.
struct Range {
    std::uint32_t low = 1;
    std::uint32_t high = 0;

    [[nodiscard]] constexpr bool has(std::uint32_t value) const {
        return value >= low && value <= high;
    }
    [[nodiscard]] constexpr bool empty() const {
        return high < low;
    }
};

struct SingleBytePlan {
    std::string_view name;
    std::string_view charmap;    // empty: the map file is the whole page
    Range window;                // everyday characters, found by one direct look-up
    std::string_view map = {};   // file below data/ that corrects or completes the charmap
    bool fillControls = false;   // undefined bytes 80-9F are the controls of the same number
    std::string_view order = {}; // list below data/collation/ that "basic" follows; empty: the default order
};

inline constexpr std::uint8_t kNoGapLow = 0xFF;
inline constexpr std::uint8_t kNoGapHigh = 0;

struct MultibytePlan {
    std::string_view name;
    std::string_view charmap; // empty: computed from SHIFT-JIS
    std::string_view map = {};
    std::array<Range, 3> leads;
    std::array<Range, 3> trails;
    Range oneColumnLeads = {}; // lead bytes of characters of one display column
    std::uint8_t extraFlags = 0;
    // The rectangle of the two-byte codes, gaps exclusive of the bytes they name. Its leads are all lead
    // bytes of the page, used or not: the library's fast path asks for that.
    std::uint8_t firstLead;
    std::uint8_t leadGapLow = kNoGapLow;
    std::uint8_t leadGapHigh = kNoGapHigh;
    std::uint8_t lastLead;
    std::uint8_t firstTrail;
    std::uint8_t trailGapLow = kNoGapLow;
    std::uint8_t trailGapHigh = kNoGapHigh;
    std::uint8_t lastTrail;
    Range window;      // everyday characters, found by one direct look-up
    Range second = {}; // the next most frequent ones, found in few steps
};

// Pages without a table of their own: by rule, or by ICU at run time.
struct RulePlan {
    std::string_view name;
    std::uint8_t flags;
    std::array<Range, 3> leads; // with one, two and three trail bytes
    std::array<Range, 3> trails;
    bool hasCaseTable;
};

std::span<const SingleBytePlan> singleBytePlans();
std::span<const MultibytePlan> multibytePlans();
std::span<const RulePlan> rulePlans();

// Single-byte pages between whose members every direct table exists.
std::span<const std::span<const std::string_view>> directGroups();

// A case table "turkish" stands beside "basic" on these single-byte pages.
std::span<const std::string_view> turkishPages();

struct TypedConversion {
    std::string_view source, target;
    std::uint8_t type;
};
// Conversions that need no table in the file: the Unicode forms, the Japanese arithmetic, ICU.
std::span<const TypedConversion> typedConversions();

} // namespace velnls::nlsgen
