#include "icu_extract.hpp"

#include "charmap.hpp"
#include "language_plan.hpp"

#include <unicode/ucnv.h>
#include <unicode/ucol.h>
#include <unicode/uvernum.h>

#include <algorithm>
#include <memory>
#include <set>
#include <string_view>

namespace velnls::nlsgen {
namespace {

constexpr UChar kPrivateUseFirst = 0xE000;
constexpr UChar kPrivateUseLast = 0xF8FF;
constexpr UChar kReplacement = 0xFFFD;

[[noreturn]] void fail(const std::string &what, UErrorCode error) {
    throw Problem("ICU " U_ICU_VERSION, 0, what + ": " + u_errorName(error));
}

class IcuPage {
public:
    explicit IcuPage(const char *name) : name_(name) {
        UErrorCode error = U_ZERO_ERROR;
        converter_.reset(ucnv_open(name, &error));
        if (U_FAILURE(error))
            fail("converter " + name_, error);
        ucnv_setFallback(converter_.get(), false);
    }

    // The one character of the basic plane that the bytes stand for and that turns back to them, or kNone.
    [[nodiscard]] std::uint32_t toUnicode(std::uint32_t code) const {
        const char bytes[2] = {static_cast<char>(code >> 8), static_cast<char>(code)};
        const int length = code > 0xFF ? 2 : 1;
        UChar units[8];
        UErrorCode error = U_ZERO_ERROR;
        const int count = ucnv_toUChars(converter_.get(), units, 8, bytes + 2 - length, length, &error);
        if (U_FAILURE(error) || count != 1 || units[0] == kReplacement)
            return kNone;
        char back[8];
        // An empty result with success is how ICU drops characters that it ignores: that is no mapping.
        const int backLength = ucnv_fromUChars(converter_.get(), back, 8, units, count, &error);
        if (U_FAILURE(error) || backLength != length || !std::equal(back, back + length, bytes + 2 - length))
            return kNone;
        return units[0];
    }

private:
    struct Close {
        void operator()(UConverter *converter) const {
            ucnv_close(converter);
        }
    };
    std::string name_;
    std::unique_ptr<UConverter, Close> converter_;
};

std::string heading(const std::string &what) {
    return std::string("# ") + what +
           "\n# Written by `nlsgen from-icu` from ICU " U_ICU_VERSION "; do not edit.\n";
}

using Codes = std::vector<std::pair<std::uint32_t, std::uint32_t>>; // ascending

// Codes and characters that both count up are one line.
std::string codeLines(const Codes &codes) {
    std::string text;
    for (std::size_t first = 0; first < codes.size();) {
        std::size_t last = first;
        while (last + 1 < codes.size() && codes[last + 1].first == codes[last].first + 1 &&
               codes[last + 1].first >> 8 == codes[first].first >> 8 &&
               codes[last + 1].second == codes[last].second + 1)
            last++;
        const int width = codes[first].first > 0xFF ? 4 : 2;
        text += hexadecimal(codes[first].first, width);
        if (last > first)
            text.append("..").append(hexadecimal(codes[last].first, width));
        text.append(" ").append(hexadecimal(codes[first].second, 4)).append("\n");
        first = last + 1;
    }
    return text;
}

// ICU's PC pages rotate the controls 1A, 1C and 7F, so only 80 to FF are taken from it.
ExtractedFile page720() {
    const IcuPage icu("ibm-720");
    Codes codes;
    for (std::uint32_t code = 0; code < 0x80; code++)
        codes.emplace_back(code, code);
    for (std::uint32_t code = 0x80; code < 0x100; code++)
        if (const std::uint32_t character = icu.toUnicode(code); character != kNone)
            codes.emplace_back(code, character);
    return {"720.map",
            heading("Code page 720, Arabic: converter ibm-720; ASCII by definition.") + codeLines(codes)};
}

// What the converter has and the charmap lacks; with `privateUseOnly` of the private use area alone, and
// single bytes, which are controls and private characters.
ExtractedFile userArea(const std::string &file, const std::string &charmap, const char *converter,
                       bool privateUseOnly, const Sources &sources) {
    const IcuPage icu(converter);
    std::set<std::uint32_t> known;
    for (const CodeLine &line : readCharmap(sources.charmaps + "/" + charmap + ".gz").lines)
        known.insert(line.code);
    Codes codes;
    for (std::uint32_t code = 0x80; code < kCodeCount; code++) {
        const std::uint32_t character = known.contains(code) ? kNone : icu.toUnicode(code);
        if (character == kNone)
            continue;
        if (!privateUseOnly || code < 0x100 ||
            (character >= kPrivateUseFirst && character <= kPrivateUseLast))
            codes.emplace_back(code, character);
    }
    return {file, heading("Codes of converter " + std::string(converter) + " that the charmap " + charmap +
                          " of Debian's locales 2.36\n# does not have: the user-defined areas.") +
                      codeLines(codes)};
}

class IcuOrder {
public:
    explicit IcuOrder(const std::string &locale) {
        UErrorCode error = U_ZERO_ERROR;
        collator_.reset(ucol_open(locale.c_str(), &error));
        if (U_FAILURE(error))
            fail("collator " + locale, error);
        // An ICU without the language answers with the default order, and with success.
        const char *actual = ucol_getLocaleByType(collator_.get(), ULOC_ACTUAL_LOCALE, &error);
        if (U_FAILURE(error) || std::string_view(actual) == "root")
            throw Problem("ICU " U_ICU_VERSION, 0, "collator " + locale + ": expected an order of its own");
    }

    UCollationResult compare(std::uint32_t a, std::uint32_t b, UCollationStrength strength) const {
        ucol_setStrength(collator_.get(), strength);
        const auto one = static_cast<UChar>(a);
        const auto other = static_cast<UChar>(b);
        return ucol_strcoll(collator_.get(), &one, 1, &other, 1);
    }
    bool isIgnorable(std::uint32_t character) const {
        ucol_setStrength(collator_.get(), UCOL_TERTIARY);
        const auto unit = static_cast<UChar>(character);
        return ucol_strcoll(collator_.get(), &unit, 1, &unit, 0) == UCOL_EQUAL;
    }

private:
    struct Close {
        void operator()(UCollator *collator) const {
            ucol_close(collator);
        }
    };
    std::unique_ptr<UCollator, Close> collator_;
};

ExtractedFile orderList(const OrderPlan &plan, const Sources &sources) {
    const UnicodeData unicode(sources.unicode + "/UnicodeData.txt");
    std::set<std::uint32_t> characters;
    std::string pages;
    for (const SingleBytePlan &pagePlan : singleBytePlans()) {
        if (!ordersPage(plan, pagePlan.name))
            continue;
        pages += pages.empty() ? "" : ", ";
        pages += pagePlan.name;
        const Page page = makeSingleBytePage(pagePlan, sources, unicode);
        for (const auto &[character, code] : page.fromUnicode())
            characters.insert(character);
    }
    const IcuOrder icu{std::string(plan.collator)};
    std::vector<std::uint32_t> sorted(characters.begin(), characters.end());
    std::stable_sort(sorted.begin(), sorted.end(), [&icu](std::uint32_t a, std::uint32_t b) {
        return icu.compare(a, b, UCOL_TERTIARY) == UCOL_LESS;
    });
    std::string text = heading("Order of the characters of " + pages + " by the collator \"" +
                               std::string(plan.collator) + "\".") +
                       "ignorable";
    std::uint32_t previous = kNone;
    for (const std::uint32_t character : sorted) {
        if (icu.isIgnorable(character)) {
            text += " ";
            text += hexadecimal(character, 4);
            continue;
        }
        if (previous == kNone || icu.compare(previous, character, UCOL_PRIMARY) != UCOL_EQUAL)
            text += "\n";
        else
            text += icu.compare(previous, character, UCOL_SECONDARY) != UCOL_EQUAL ? " << " : " <<< ";
        text += hexadecimal(character, 4);
        previous = character;
    }
    return {std::string("collation/") + std::string(plan.file) + ".txt", text + "\n"};
}

} // namespace

std::vector<ExtractedFile> extractTables(const Sources &sources) {
    return {
        page720(),
        userArea("cp936-user.map", "GBK", "windows-936-2000", false, sources),
        userArea("cp949-user.map", "CP949", "windows-949-2000", true, sources),
        userArea("cp950-user.map", "BIG5", "windows-950-2000", true, sources),
    };
}

std::vector<ExtractedFile> extractOrders(const Sources &sources) {
    std::vector<ExtractedFile> files;
    for (const OrderPlan &plan : orderPlans())
        files.push_back(orderList(plan, sources));
    return files;
}

} // namespace velnls::nlsgen
