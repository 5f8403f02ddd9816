// What velnls info says of a page's source is what the compiler makes the page from.
#include <gtest/gtest.h>

#include <string>

#include "page_plan.hpp"
#include "page_source.hpp"

namespace velnls {
namespace {

std::string said(std::string_view page) {
    return tool::pageSource(std::string(page)) + " ";
}

TEST(PageSource, APageOfACharmapNamesTheCharmap) {
    for (const nlsgen::SingleBytePlan &plan : nlsgen::singleBytePlans()) {
        if (!plan.charmap.empty()) {
            EXPECT_NE(said(plan.name).find("charmap " + std::string(plan.charmap)), std::string::npos)
                << plan.name;
        }
    }
    for (const nlsgen::MultibytePlan &plan : nlsgen::multibytePlans()) {
        const std::string charmap(plan.charmap.empty() ? "WINDOWS-31J" : plan.charmap);
        EXPECT_NE(said(plan.name).find("charmap " + charmap), std::string::npos) << plan.name;
    }
}

TEST(PageSource, APageThatIsCorrectedOrCompletedSaysSo) {
    for (const nlsgen::SingleBytePlan &plan : nlsgen::singleBytePlans()) {
        const std::string words = said(plan.name);
        const bool plain = words == "charmap " + std::string(plan.charmap) + " of glibc ";
        // 620-2533 has no correction: its words tell what the charmap's name does not.
        EXPECT_EQ(plain, plan.map.empty() && !plan.fillControls && plan.name != "620-2533") << plan.name;
    }
    for (const nlsgen::MultibytePlan &plan : nlsgen::multibytePlans()) {
        const bool plain = said(plan.name) == "charmap " + std::string(plan.charmap) + " of glibc ";
        // Codes of two characters are left out of CP950-HKSCS by rule.
        EXPECT_EQ(plain, plan.map.empty() && !plan.charmap.empty() && plan.name != "CP950-HKSCS")
            << plan.name;
    }
}

TEST(PageSource, EveryPageHasOneAndAPageOfTheUsersHasNone) {
    for (const nlsgen::RulePlan &plan : nlsgen::rulePlans()) {
        EXPECT_NE(said(plan.name), " ") << plan.name;
    }
    EXPECT_EQ(said("MINE"), " ");
}

} // namespace
} // namespace velnls
