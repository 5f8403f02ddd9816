// Case in 64 bytes at once, in masks of one bit per byte.
//
// Included by the files that instantiate kernels; what it defines is local to each.
#pragma once

#include "locale/common_case.hpp"
#include "locale/masks_avx512.hpp"
#include "locale/pair_masks.hpp"

#if defined(VELNLS_AVX512_KERNELS)

namespace velnls::avx512 {
namespace {

inline constexpr std::size_t kBlock = 64;

[[gnu::always_inline]] inline std::uint64_t isEqual(Vector bytes, unsigned value) {
    return WideMasks(bytes).equal(value);
}
[[gnu::always_inline]] inline std::uint64_t isAtLeast(Vector bytes, unsigned value) {
    return WideMasks(bytes).atLeast(value);
}

// The letters of ASCII among the bytes that `where` names.
template <Case kCase>
[[gnu::always_inline]] inline Vector mapAsciiBlock(Vector bytes, std::uint64_t where) {
    constexpr unsigned kFirst = kCase == Case::Upper ? kSmallA : kCapitalA;
    const __mmask64 letters =
        _mm512_mask_cmple_epu8_mask(where, _mm512_sub_epi8(bytes, all(kFirst)), all(25));
    return _mm512_mask_add_epi8(bytes, letters, bytes, all(kCase == Case::Upper ? 0xE0 : 0x20));
}

// What a lead byte says of the character, in bits; 0 for what the kernel is not for. Lead bytes of three are
// those that no table is asked about, and E2.
enum LeadBits : std::uint8_t {
    kAllowed = 0x01,
    kOfThree = 0x02,
    kIsE2 = 0x04,
    kIsC2 = 0x08,
    kMaps = 0x10,     // the trail byte has a change in the tables
    kMapsLate = 0x20, // the same from A0 up
    kSecond = 0x40,   // in the second of them
    kIsD1 = 0x80,
};

template <Case kCase>
struct CommonTables {
    alignas(kBlock) std::uint8_t leads[kBlock]{};    // LeadBits of C0 to FF
    alignas(kBlock) std::uint8_t before[kBlock]{};   // the place before each place
    alignas(kBlock) std::uint8_t behindC3[kBlock]{}; // changes of trail bytes
    alignas(kBlock) std::uint8_t behindD[kBlock]{};  // the same behind D0 or D1

    static constexpr std::uint8_t kWrong = 1; // no change at all

    constexpr CommonTables() {
        constexpr bool kUpper = kCase == Case::Upper;
        leads[0x02] = kAllowed | kIsC2;
        leads[0x03] = kAllowed | kMaps;
        leads[0x10] = kAllowed | kSecond | (kUpper ? kMapsLate : kMaps);
        leads[0x11] = kAllowed | kIsD1 | (kUpper ? kSecond | kMaps : 0);
        for (unsigned lead = 0xE0; lead < 0xF0; ++lead)
            if (lead != 0xE1 && lead != 0xEF)
                leads[lead - 0xC0] = kAllowed | kOfThree | (lead == 0xE2 ? kIsE2 : 0);
        for (unsigned place = 0; place < kBlock; ++place) {
            before[place] = static_cast<std::uint8_t>(place - 1);
            const unsigned trail = 0x80 + place;
            behindC3[place] = change(0xC3, trail);
            behindD[place] = change(kUpper && trail < 0xA0 ? 0xD1 : 0xD0, trail);
        }
    }

private:
    static constexpr std::uint8_t change(unsigned lead, unsigned trail) {
        const std::uint32_t mapped = commonCase(kCase, lead << 8 | trail);
        return mapped == 0 ? kWrong : static_cast<std::uint8_t>(mapped - trail);
    }
};

template <Case kCase>
// NOLINTNEXTLINE(bugprone-dynamic-static-initializers): a constant expression, in a template
inline constexpr CommonTables<kCase> kCommonTables;

// `bytes` begin with a character; the last one may go on behind them. `wrong` gets what the kernel is not
// for.
template <Case kCase>
[[gnu::always_inline]] inline Vector mapCommonBlock(Vector bytes, std::uint64_t &wrong,
                                                    std::uint64_t &trails) {
    const auto has = [](Vector bits, unsigned wanted) { return _mm512_test_epi8_mask(bits, all(wanted)); };
    const auto table = [](const std::uint8_t(&entries)[kBlock]) { return _mm512_load_si512(entries); };
    constexpr const CommonTables<kCase> &kTables = kCommonTables<kCase>;
    const std::uint64_t leads = isAtLeast(bytes, 0xC0);
    const Vector own = _mm512_maskz_permutexvar_epi8(leads, bytes, table(kTables.leads));
    const Vector before = _mm512_maskz_permutexvar_epi8(~std::uint64_t{1}, table(kTables.before), own);
    const std::uint64_t allowed = _mm512_test_epi8_mask(before, before);
    const std::uint64_t ofThree = has(before, kOfThree);
    trails = WideMasks(bytes).utf8Trails();
    // Every trail byte is announced, and every lead byte is allowed; the last byte's turn comes later.
    wrong = ((allowed | ofThree << 1) ^ trails) | (allowed ^ leads << 1) |
            _mm512_mask_cmpneq_epi8_mask(has(before, kIsE2), bytes, all(0x80)) |
            _mm512_mask_cmpge_epu8_mask(has(before, kIsD1), bytes, all(0xA0));
    Vector mapped = mapAsciiBlock<kCase>(bytes, ~std::uint64_t{0});
    // Bit 6 of the place chooses the second table.
    const Vector place = _mm512_ternarylogic_epi64(bytes, before, all(kSecond), 0xF8);
    const Vector behindC3 = table(kTables.behindC3);
    const Vector behindD = table(kTables.behindD);
    const auto changeOf = [&](std::uint64_t where) {
        return _mm512_maskz_permutex2var_epi8(where, behindC3, place, behindD);
    };
    if constexpr (kCase == Case::Upper) {
        // Bit 5 of a trail byte is set from A0 up.
        const Vector maps = _mm512_ternarylogic_epi64(before, bytes, all(0xFF ^ kMapsLate), 0xE0);
        const Vector change = changeOf(has(maps, kMaps | kMapsLate));
        wrong |= _mm512_mask_cmpeq_epi8_mask(has(before, kIsC2), bytes, all(0xB5)) |
                 isEqual(change, CommonTables<kCase>::kWrong);
        mapped = _mm512_add_epi8(mapped, change);
        return _mm512_mask_mov_epi8(mapped, has(own, kIsD1), all(0xD0));
    } else {
        const Vector change = changeOf(has(before, kMaps));
        mapped = _mm512_add_epi8(mapped, change);
        // Letters whose lead byte becomes D1 change by 10 or by E0, the others by 20.
        return _mm512_mask_mov_epi8(mapped, has(change, 0xD0) >> 1, all(0xD1));
    }
}

} // namespace
} // namespace velnls::avx512

#endif
