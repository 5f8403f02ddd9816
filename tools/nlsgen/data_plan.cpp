#include "data_plan.hpp"

#include "case_table.hpp"
#include "collation_table.hpp"
#include "language_plan.hpp"
#include "name_compare.hpp"
#include "number_field.hpp"
#include "site_exits.hpp"
#include "site_page.hpp"

#include <algorithm>
#include <filesystem>
#include <map>

namespace velnls::nlsgen {
namespace {

constexpr std::uint8_t kByteMapType = 1;
constexpr std::uint8_t kPageToUtf16 = 29;
constexpr std::uint8_t kPageToUtf16Swapped = 171;
constexpr std::uint8_t kUtf16ToPage = 30;
constexpr std::uint8_t kUtf16SwappedToPage = 170;
constexpr const char *kThaiPage = "620-2533";
constexpr std::uint32_t kByteCount = 256;

class PlanMaker {
public:
    explicit PlanMaker(const Sources &sources)
        : sources_(sources), unicode_(sources.unicode + "/UnicodeData.txt") {}

    DataPlan make() {
        readPages();
        if (!sources_.site.empty())
            exits_ = readSiteExits(sources_.site + "/exits.txt");
        addCharSets();
        addCaseTables();
        addCollations();
        addConversions();
        checkSiteExits(exits_, plan_.entries);
        return std::move(plan_);
    }

private:
    struct BytePage {
        std::shared_ptr<const Page> page;
        std::shared_ptr<const MappingData> mapping;
        std::string order; // list that "basic" follows; empty: the default order
    };

    void addBytePage(Page page, MappingData mapping, std::string_view order) {
        const auto shared = std::make_shared<const Page>(std::move(page));
        bytePages_.push_back(
            {shared, std::make_shared<const MappingData>(std::move(mapping)), std::string(order)});
        plan_.pages.push_back(shared);
    }

    void readPages() {
        for (const SingleBytePlan &plan : singleBytePlans()) {
            Page page = makeSingleBytePage(plan, sources_, unicode_);
            MappingData mapping = buildSingleByteMapping(page, plan.window);
            addBytePage(std::move(page), std::move(mapping), plan.order);
        }
        std::shared_ptr<const Page> shiftJis;
        for (const MultibytePlan &plan : multibytePlans()) {
            Page page = makeMultibytePage(plan, sources_, unicode_, shiftJis.get());
            MappingData mapping = buildMultibyteMapping(page, plan);
            addBytePage(std::move(page), std::move(mapping), {});
            if (plan.name == "SHIFT-JIS")
                shiftJis = bytePages_.back().page;
        }
        readSitePages();
        for (const RulePlan &plan : rulePlans())
            rulePages_.push_back(std::make_shared<const Page>(makeRulePage(plan)));
    }

    // Pages of the user's own, in the order of their names.
    void readSitePages() {
        std::vector<std::filesystem::path> files;
        if (std::filesystem::is_directory(sources_.site))
            for (const auto &file : std::filesystem::directory_iterator(sources_.site))
                if (file.path().extension() == ".map")
                    files.push_back(file.path());
        std::sort(files.begin(), files.end());
        for (const auto &file : files) {
            auto [page, mapping] = makeSitePage(file.stem().string(), file.string(), unicode_);
            addBytePage(std::move(page), std::move(mapping), {});
        }
    }

    PlannedEntry &add(file::EntryKind kind, std::string name, std::string name2, Place place) {
        PlannedEntry &entry = plan_.entries.emplace_back();
        entry.kind = kind;
        entry.name = std::move(name);
        entry.name2 = std::move(name2);
        entry.place = std::move(place);
        return entry;
    }

    static Place placeOf(const Page &page) {
        const Place place = page.placeOf(kCodeCount);
        return place.file.empty() ? Place{"page " + page.name, 0} : place;
    }

    void addCharSet(const Page &page) {
        file::CharTable table{};
        std::memcpy(table.count, "256 ", sizeof table.count);
        std::copy(page.classes.begin(), page.classes.end(), table.classes);
        std::copy(page.attributes.begin(), page.attributes.end(), table.attributes);
        std::copy(page.trailValid.begin(), page.trailValid.end(), table.trailValid);
        PlannedEntry &entry = add(file::kCharSet, page.name, "", placeOf(page));
        entry.format = page.flags;
        entry.record = bytesOf(table);
    }

    void addCharSets() {
        for (const BytePage &page : bytePages_)
            addCharSet(*page.page);
        for (const auto &page : rulePages_)
            addCharSet(*page);
    }

    void addByteCaseTable(const Page &page, std::string_view name, bool turkish) {
        add(file::kCaseTable, page.name, std::string(name), placeOf(page)).record =
            bytesOf(makeByteCaseTable(page, unicode_, turkish));
    }

    void addCaseTables() {
        const auto turkishPagesSpan = turkishPages();
        for (const BytePage &page : bytePages_) {
            addByteCaseTable(*page.page, kBasicName, false);
            if (std::find(turkishPagesSpan.begin(), turkishPagesSpan.end(), page.page->name) !=
                turkishPagesSpan.end())
                addByteCaseTable(*page.page, "turkish", true);
        }
        for (std::size_t i = 0; i < rulePages_.size(); i++) {
            const Page &page = *rulePages_[i];
            if (!rulePlans()[i].hasCaseTable)
                continue;
            if ((page.flags & file::kUtf8) == 0) {
                addByteCaseTable(page, kBasicName, false);
                continue;
            }
            for (const bool turkish : {false, true}) {
                PlannedEntry &entry =
                    add(file::kCaseTable, page.name, std::string(turkish ? "turkish" : kBasicName),
                        {sources_.unicode + "/UnicodeData.txt", 0});
                entry.format = file::kUnicodeCaseFormat;
                entry.record = bytesOf(makeUnicodeCaseTable(unicode_, turkish));
            }
        }
    }

    std::shared_ptr<const CharacterOrder> orderNamed(const std::string &name) {
        std::shared_ptr<const CharacterOrder> &order = orders_[name];
        if (order == nullptr)
            order = std::make_shared<const CharacterOrder>(
                name.empty() ? defaultOrder() : readOrderList(sources_.data + "/collation/" + name + ".txt"));
        return order;
    }

    CharacterOrder defaultOrder() const {
        std::set<std::uint32_t> characters;
        for (const BytePage &page : bytePages_)
            for (std::uint32_t byte = 0; !page.page->isMultibyte() && byte < kByteCount; byte++)
                if (page.page->toUnicode(byte) != kNone)
                    characters.insert(page.page->toUnicode(byte));
        return readDefaultOrder(sources_.unicode + "/allkeys.txt", characters);
    }

    void addWeights(const std::shared_ptr<const Page> &page, std::string_view name, const std::string &order,
                    const std::set<std::uint32_t> &expanding) {
        plan_.collations.push_back({page, std::string(name), orderNamed(order), expanding});
        const PlannedCollation &planned = plan_.collations.back();
        const file::Collation weights = page->name == kThaiPage ? makeThaiWeights(*page, *planned.order)
                                        : name == kNoAccentsName
                                            ? makeNoAccentsWeights(*page, *planned.order)
                                            : makeWeights(*page, *planned.order, expanding);
        checkCollation(*page, planned.name, weights, expanding);
        add(file::kCollation, page->name, planned.name, {planned.order->source(), 0}).record =
            bytesOf(weights);
    }

    // The list of a language has its name; "german" and "noaccents" follow the default order.
    void addLanguages(const std::shared_ptr<const Page> &page) {
        for (const LanguagePlan &language : languagePlans()) {
            if (!offers(page->name, language.name))
                continue;
            // An expanding character takes the weight of byte 73 twice, which must be that of s.
            std::set<std::uint32_t> expanding;
            if (language.sharpSExpands && page->isAscii())
                expanding.insert(kSharpS);
            addWeights(page, language.name, std::string(language.collator.empty() ? "" : language.name),
                       expanding);
        }
    }

    // Collations that the user sort exit serves; `basic` is the page's own, added last.
    void addExits(const Page &page) {
        const Bytes record = makeExitCollation(plan_.entries.back().record);
        for (const SiteExit &exit : exits_)
            if (foldedName(exit.page) == foldedName(page.name))
                add(file::kCollation, page.name, exit.collation, exit.place).record = record;
    }

    void addCollations() {
        const Bytes basic = bytesOf(makeBasicCollation());
        const auto addBasic = [&](const Page &page) {
            add(file::kCollation, page.name, std::string(kBasicName), placeOf(page)).record = basic;
            addExits(page);
        };
        for (const BytePage &page : bytePages_) {
            if (page.page->isMultibyte()) {
                addBasic(*page.page);
                continue;
            }
            addWeights(page.page, kBasicName, page.order, {});
            addExits(*page.page);
            addLanguages(page.page);
        }
        for (const auto &page : rulePages_)
            addBasic(*page);
    }

    PlannedEntry &addConversion(const std::string &source, const std::string &target, std::uint8_t format,
                                const Place &place) {
        PlannedEntry &entry = add(file::kConversion, source, target, place);
        entry.format = format;
        return entry;
    }

    void addConversions() {
        for (const BytePage &page : bytePages_) {
            const std::string &name = page.page->name;
            const Place place = placeOf(*page.page);
            addConversion(name, "UTF-8", page.mapping->type, place).mapping = page.mapping;
            addConversion("UTF-8", name, page.page->isMultibyte() ? kUtf8ToMultibyte : kUtf8ToSingleByte,
                          place);
            for (const char *wide : {"UCS2", "UTF-16"}) {
                addConversion(name, wide, kPageToUtf16, place);
                addConversion(wide, name, kUtf16ToPage, place);
            }
            addConversion(name, "UTF-16BE", kPageToUtf16Swapped, place);
            addConversion("UTF-16BE", name, kUtf16SwappedToPage, place);
        }
        for (const TypedConversion &typed : typedConversions())
            addConversion(std::string(typed.source), std::string(typed.target), typed.type,
                          {"the list of conversions by rule", 0});
        for (const auto &group : directGroups())
            for (const std::string_view source : group)
                for (const std::string_view target : group)
                    if (source != target)
                        addDirect(source, target, false);
        addEbcdicDirect();
    }

    const BytePage &pageNamed(std::string_view name) const {
        for (const BytePage &page : bytePages_)
            if (page.page->name == name)
                return page;
        throw Problem("the list of direct tables", 0,
                      "expected the name of a byte page, found " + std::string(name));
    }

    // `oneToOne` tables may carry weights from one page to another.
    void addDirect(std::string_view sourceName, std::string_view targetName, bool oneToOne) {
        const Page &source = *pageNamed(sourceName).page;
        const Page &target = *pageNamed(targetName).page;
        file::Conversion record{};
        std::memcpy(record.length, "256 ", sizeof record.length);
        std::set<std::uint8_t> used;
        for (std::uint32_t byte = 0; byte < 256; byte++) {
            const std::uint32_t character = source.toUnicode(byte);
            const std::uint32_t code = character == kNone ? kNone : target.codeOf(character);
            record.body[byte] = code < 0x100 ? static_cast<std::uint8_t>(code) : target.substitution();
            if (oneToOne && !used.insert(record.body[byte]).second)
                throw Problem(source.placeOf(byte), "direct table " + source.name + " to " + target.name +
                                                        ": expected a byte of its own for " +
                                                        hexadecimal(byte, 2));
        }
        record.typeLow = kByteMapType;
        PlannedEntry &entry =
            addConversion(source.name, target.name, oneToOne ? file::kBorrowFormat : 0, placeOf(source));
        entry.variant = oneToOne ? 1 : 0;
        entry.record = bytesOf(record);
    }

    void addEbcdicDirect() {
        for (const BytePage &page : bytePages_) {
            const std::string &name = page.page->name;
            if (page.page->isMultibyte() || page.page->isAscii())
                continue;
            for (const char *other : {"ISO8859-1", "1252", "IBM850"}) {
                const bool oneToOne = std::string_view(other) == "ISO8859-1";
                addDirect(name, other, oneToOne);
                addDirect(other, name, oneToOne);
            }
        }
        for (const char *other : {"1252", "IBM850"}) {
            addDirect("IBM861", other, false);
            addDirect(other, "IBM861", false);
        }
    }

    const Sources &sources_;
    UnicodeData unicode_;
    std::vector<BytePage> bytePages_;
    std::vector<std::shared_ptr<const Page>> rulePages_;
    std::vector<SiteExit> exits_;
    std::map<std::string, std::shared_ptr<const CharacterOrder>> orders_; // by the list's name
    DataPlan plan_;
};

} // namespace

DataPlan makeDataPlan(const Sources &sources) {
    return PlanMaker(sources).make();
}

std::vector<PlannedEntry> smallEntries(const std::vector<PlannedEntry> &entries) {
    std::vector<PlannedEntry> result;
    const auto isJapanese = [](const std::string &name) { return name == "SHIFT-JIS" || name == "EUCJIS"; };
    for (const PlannedEntry &entry : entries)
        if (entry.kind != file::kConversion || entry.name == "UTF-8" || entry.name2 == "UTF-8" ||
            (isJapanese(entry.name) && isJapanese(entry.name2)))
            result.push_back(entry);
    return result;
}

} // namespace velnls::nlsgen
