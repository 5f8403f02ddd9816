// What is built of languages: collations beside "basic", the pages that offer them, and the orders they
// follow.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace velnls::nlsgen {

// The collation every page has.
inline constexpr std::string_view kBasicName = "basic";

// The collation that ranks accented letters with their letters: weights of its own for letters and forms
// only.
inline constexpr std::string_view kNoAccentsName = "noaccents";

// The character that sorts as "ss" where a language asks for it.
inline constexpr std::uint32_t kSharpS = 0x00DF;

// The one letter below the blank: it stretches Arabic words and ranks among the punctuation.
inline constexpr std::uint32_t kTatweel = 0x0640;

struct LanguagePlan {
    std::string_view name;      // of the collation
    std::string_view collator;  // ICU's; empty: the default order
    bool sharpSExpands = false; // on pages that have s at its ASCII place
};

// A list below data/collation/ and what it is made from: the characters of the pages in ICU's order.
struct OrderPlan {
    std::string_view file;
    std::string_view collator;
};

std::span<const LanguagePlan> languagePlans();

// Whether the page offers the language's collation, by the names of the two.
bool offers(std::string_view page, std::string_view language);

// All lists: those of "basic" on pages of other scripts, and those of the languages.
std::span<const OrderPlan> orderPlans();

// Whether the list is for this page.
bool ordersPage(const OrderPlan &order, std::string_view page);

} // namespace velnls::nlsgen
