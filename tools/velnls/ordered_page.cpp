// Finds collation and case table, and brings words of the command line into the page.
#include "ordered_page.hpp"

#include <algorithm>
#include <cctype>
#include <stdexcept>

#include "page_names.hpp"
#include "route.hpp"
#include "scan.hpp"

namespace velnls::tool {

namespace {

constexpr char kIcuPrefix[] = "ICU-";

std::string upperText(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char c) { return static_cast<char>(std::toupper(static_cast<unsigned char>(c))); });
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}

} // namespace

std::string resolveName(const std::vector<std::string> &names, const std::string &wanted,
                        const std::string &page, const char *what) {
    std::string all;
    for (const std::string &name : names) {
        if (upperText(name) == upperText(wanted)) {
            return name;
        }
        all += (all.empty() ? "" : ", ") + name;
    }
    throw std::runtime_error(page + " has no " + what + " '" + wanted + "'; it has " +
                             (all.empty() ? "none" : all));
}

Page describeWalkedPage(Library &library, const std::string &name) {
    Page page = describePage(library, resolvePage(library, name));
    if (page.unitSize() != 1) {
        throw std::runtime_error("text in " + page.name +
                                 " cannot be processed as it stands; convert it to UTF-8 first");
    }
    return page;
}

OrderedPage::OrderedPage(const OrderOptions &options)
    : data_(options.data), library_(data_), page_(describeWalkedPage(library_, options.page)),
      mode_(options.ignoreCase ? 0 : 1),
      isIcu_(page_.form == Form::Utf8 && options.collation.rfind(kIcuPrefix, 0) == 0) {
    const std::string collation = isIcu_ ? options.collation
                                         : resolveName(Library::list(page_.locale, NameList::Collations),
                                                       options.collation, page_.name, "collation");
    // Orders without weights fold letters by the case table.
    const std::vector<std::string> tables = Library::list(page_.locale, NameList::CaseTables);
    const bool hasBasic = std::find(tables.begin(), tables.end(), "basic") != tables.end();
    locale_ = library_.locale(page_.name, collation, hasBasic ? "basic" : "");
    trailCounts_ = trailCountsOf(locale_);
}

std::string OrderedPage::argument(const std::string &text, const char *what) {
    const Page utf8 = describePage(library_, resolvePage(library_, "UTF-8"));
    const auto *bytes = reinterpret_cast<const unsigned char *>(text.data());
    if (scanText(utf8, bytes, text.size(), true).good != text.size()) {
        throw std::runtime_error(std::string("the ") + what + " is not UTF-8");
    }
    if (page_.form == Form::Utf8 || text.empty()) {
        return text;
    }
    Route route(library_, utf8, page_);
    ByteBuffer converted;
    if (route.convert(bytes, text.size(), converted)) {
        throw std::runtime_error(std::string("the ") + what + " holds a character that " + page_.name +
                                 " does not have");
    }
    return std::string(converted.data(), converted.size());
}

std::uint32_t OrderedPage::character(const std::string &text, const char *what) {
    const std::string bytes = argument(text, what);
    if (bytes.empty() || bytes.size() > 4 || step(static_cast<unsigned char>(bytes[0])) != bytes.size()) {
        throw std::runtime_error(std::string("the ") + what + " must be one character");
    }
    std::uint32_t number = 0;
    for (const char byte : bytes) {
        number = number << 8 | static_cast<unsigned char>(byte);
    }
    return number;
}

} // namespace velnls::tool
