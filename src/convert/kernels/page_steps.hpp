// What the conversions of UTF-8 into a page through units have in common, whatever the instruction set.
//
// Included by the files that instantiate kernels; what it defines is local to each.
#pragma once

#include "convert/kernels/mapping_lookup.hpp"

namespace velnls {
namespace {

// The table that Unicode values from group.lowest on are looked up in. Without a window nothing lies inside,
// and its first entry is looked at all the same.
[[gnu::always_inline]] inline const std::uint16_t *windowOf(const file::MappingGroup &group) {
    return group.reverseCount != 0 ? group.reverse : group.values;
}

// The steps of throughUnits() that no kernel is needed for.
class PageSteps {
public:
    [[gnu::always_inline]] static std::ptrdiff_t lengthOf(std::uint8_t lead) {
        return 1 + (lead >= 0xC0 ? 1 : 0) + (lead >= 0xE0 ? 1 : 0);
    }
    // A character that the page has, though not where the kernels look.
    [[gnu::always_inline]] bool writeOne(std::uint32_t value, Target &target) const {
        const std::uint32_t code = codeOfUnicode(body_, value);
        return code != kNone && writeCode(target, code);
    }

protected:
    [[gnu::always_inline]] explicit PageSteps(const MappingBody &body) : body_(body) {}

    [[nodiscard]] [[gnu::always_inline]] const MappingBody &body() const {
        return body_;
    }

private:
    const MappingBody &body_;
};

} // namespace
} // namespace velnls
