// The calls that match, on strings that no one may write to and that forbidden pages follow or precede.
#pragma once

#include "model/twins.hpp"

namespace fixture {

nlsStatus like(const model::Page &page, const std::string &pattern, const std::string &string,
               std::uint16_t mode, const model::Signs &signs);

model::Found searchForwards(const model::Page &page, const std::string &pattern, const std::string &text,
                            std::uint16_t mode);
model::Found searchBackwards(const model::Page &page, const std::string &pattern, const std::string &text,
                             std::int32_t length, std::uint16_t mode);
model::Out replace(const model::Page &page, const std::string &pattern, const std::string &replacement,
                   const std::string &text, std::uint16_t mode, const model::Out &before);
model::Out replaceAll(const model::Page &page, const std::string &pattern, const std::string &replacement,
                      const std::string &text, std::uint16_t mode, const model::Out &before);

model::Found findForwards(const model::Page &page, std::uint32_t lchar, const std::string &text,
                          std::uint16_t mode);
model::Found findBackwards(const model::Page &page, std::uint32_t lchar, const std::string &text,
                           std::int32_t length, std::uint16_t mode);
// A null set is the one blank of its own. What a failing trim leaves as result counts as null.
model::Found trimLeft(const model::Page &page, const std::string *set, const std::string &text,
                      std::uint16_t mode);
model::Found trimRight(const model::Page &page, const std::string *set, const std::string &text,
                       std::int32_t length, std::uint16_t mode);

// Where the strings of the next calls stand: in front of a forbidden page, in one page with other text around
// them, or so that their first bytes end a page and another one follows.
enum class Stand {
    kAtPageEnd,
    kAmidOthers,
    kAcrossPages
};
inline constexpr Stand kStands[] = {Stand::kAtPageEnd, Stand::kAmidOthers, Stand::kAcrossPages};
void letStringsStand(Stand where);

// An empty counted string of a size.
model::Out emptyOut(std::uint32_t size);

} // namespace fixture
