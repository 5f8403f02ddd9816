#include "language_plan.hpp"

#include "page_plan.hpp"

#include <algorithm>
#include <array>

namespace velnls::nlsgen {
namespace {

// In the order in which a page's collations stand in the directory.
constexpr LanguagePlan kLanguages[] = {
    {.name = "german", .collator = "", .sharpSExpands = true},
    {.name = "phonebook", .collator = "de@collation=phonebook", .sharpSExpands = true},
    {.name = "swedish", .collator = "sv"},
    {.name = "finnish", .collator = "fi"},
    {.name = "danish", .collator = "da"},
    {.name = "norwegian", .collator = "no"},
    {.name = "icelandic", .collator = "is"},
    {.name = "czech", .collator = "cs"},
    {.name = "slovak", .collator = "sk"},
    {.name = "polish", .collator = "pl"},
    {.name = "croatian", .collator = "hr"},
    {.name = "romanian", .collator = "ro"},
    {.name = "serbian", .collator = "sr"},
    {.name = "macedonian", .collator = "mk"},
    {.name = "lithuanian", .collator = "lt"},
    {.name = "latvian", .collator = "lv"},
    {.name = "estonian", .collator = "et"},
    {.name = "turkish", .collator = "tr"},
    {.name = kNoAccentsName, .collator = ""},
};

constexpr std::string_view kWesternPages[] = {"1252", "ISO8859-1", "ISO8859-15", "IBM850", "IBM858"};
constexpr std::string_view kCentralPages[] = {"1250", "ISO8859-2", "IBM852"};
// The pages with Latin letters at their ASCII places. The EBCDIC pages are left out: with them the small
// file's directory would leave no room for a first locale in a block of the smallest size.
constexpr std::string_view kLatinPages[] = {"ISO8859-1", "ISO8859-2", "ISO8859-15", "ROMAN-8", "MAZOVIA",
                                            "IBM437",    "IBM850",    "IBM852",     "IBM857",  "IBM858",
                                            "IBM861",    "1250",      "1252",       "1254",    "1257"};

constexpr std::string_view kWesternLanguages[] = {"german", "phonebook", "swedish",   "finnish",
                                                  "danish", "norwegian", "icelandic", "estonian"};
constexpr std::string_view kCentralLanguages[] = {"czech", "slovak", "polish", "croatian", "romanian"};

constexpr std::string_view kIbm437Page[] = {"IBM437"};
constexpr std::string_view kIbm861Page[] = {"IBM861"};
constexpr std::string_view kIbm273Page[] = {"IBM273"};
constexpr std::string_view kIbm277Page[] = {"IBM277"};
constexpr std::string_view kIbm278Page[] = {"IBM278"};
constexpr std::string_view kMazoviaPage[] = {"MAZOVIA"};
constexpr std::string_view kCyrillicPages[] = {"1251", "ISO8859-5"};
constexpr std::string_view kBalticPage[] = {"1257"};
constexpr std::string_view kTurkishPages[] = {"1254", "IBM857"};

constexpr std::string_view kIbm437Languages[] = {"german", "swedish", "finnish"};
constexpr std::string_view kIcelandic[] = {"icelandic"};
constexpr std::string_view kGerman[] = {"german"};
constexpr std::string_view kIbm277Languages[] = {"danish", "norwegian"};
constexpr std::string_view kIbm278Languages[] = {"swedish", "finnish"};
constexpr std::string_view kPolish[] = {"polish"};
constexpr std::string_view kCyrillicLanguages[] = {"serbian", "macedonian"};
constexpr std::string_view kBalticLanguages[] = {"lithuanian", "latvian", "estonian"};
constexpr std::string_view kTurkish[] = {"turkish"};
constexpr std::string_view kNoAccents[] = {kNoAccentsName};

struct Offer {
    std::span<const std::string_view> pages;
    std::span<const std::string_view> languages;
};

// English, French, Spanish, Italian, Portuguese, Dutch, Catalan and Hungarian order single characters as
// "basic" does, so they have no collation of their own.
constexpr Offer kOffers[] = {
    {kWesternPages, kWesternLanguages},
    {kIbm437Page, kIbm437Languages},
    {kIbm861Page, kIcelandic},
    {kIbm273Page, kGerman},
    {kIbm277Page, kIbm277Languages},
    {kIbm278Page, kIbm278Languages},
    {kCentralPages, kCentralLanguages},
    {kMazoviaPage, kPolish},
    {kCyrillicPages, kCyrillicLanguages},
    {kBalticPage, kBalticLanguages},
    {kTurkishPages, kTurkish},
    {kLatinPages, kNoAccents},
};

// "basic" of the pages of other scripts follows the order of a language of that script.
constexpr OrderPlan kScriptOrders[] = {{"ru", "ru"}, {"el", "el"}, {"ar", "ar"}, {"he", "he"}};

constexpr std::size_t kLanguageOrderCount =
    std::count_if(std::begin(kLanguages), std::end(kLanguages),
                  [](const LanguagePlan &language) { return !language.collator.empty(); });

// A language's list has the name of its collation.
constexpr auto kOrders = [] {
    std::array<OrderPlan, std::size(kScriptOrders) + kLanguageOrderCount> orders;
    auto *next = std::copy(std::begin(kScriptOrders), std::end(kScriptOrders), orders.begin());
    for (const LanguagePlan &language : kLanguages)
        if (!language.collator.empty())
            *next++ = {language.name, language.collator};
    return orders;
}();

bool contains(std::span<const std::string_view> names, std::string_view name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

} // namespace

std::span<const LanguagePlan> languagePlans() {
    return kLanguages;
}

bool offers(std::string_view page, std::string_view language) {
    return std::any_of(std::begin(kOffers), std::end(kOffers), [&](const Offer &offer) {
        return contains(offer.pages, page) && contains(offer.languages, language);
    });
}

std::span<const OrderPlan> orderPlans() {
    return kOrders;
}

bool ordersPage(const OrderPlan &order, std::string_view page) {
    for (const SingleBytePlan &plan : singleBytePlans())
        if (plan.name == page && plan.order == order.file)
            return true;
    return offers(page, order.file);
}

} // namespace velnls::nlsgen
