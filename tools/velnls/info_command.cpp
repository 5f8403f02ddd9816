// velnls info: what is to know of one code page.
#include "commands.hpp"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "output.hpp"
#include "page_names.hpp"
#include "page_source.hpp"
#include "route.hpp"

namespace velnls::tool {

namespace {

// Codes by what becomes of them on the way to UTF-8 and back.
struct CodeCensus {
    std::size_t defined = 0;
    std::vector<std::uint32_t> undefined;
    std::vector<std::uint32_t> oneWay; // defined, but their character turns into another code
};

// Converts every code of a page of one- and two-byte codes there and back.
CodeCensus takeCensus(Library &library, const Page &page, const Page &utf8) {
    Route there(library, page, utf8);
    Route back(library, utf8, page);
    CodeCensus census;
    ByteBuffer unicode;
    ByteBuffer again;
    const auto look = [&](const unsigned char *code, std::size_t size) {
        const std::uint32_t number = size == 1 ? code[0] : static_cast<std::uint32_t>(code[0] << 8 | code[1]);
        unicode.resize(0);
        again.resize(0);
        if (there.convert(code, size, unicode)) {
            census.undefined.push_back(number);
            return;
        }
        ++census.defined;
        const bool lost =
            back.convert(reinterpret_cast<const unsigned char *>(unicode.data()), unicode.size(), again);
        const auto *result = reinterpret_cast<const unsigned char *>(again.data());
        if (lost || !std::equal(code, code + size, result, result + again.size())) {
            census.oneWay.push_back(number);
        }
    };
    for (unsigned first = 0; first < 256; ++first) {
        unsigned char code[2] = {static_cast<unsigned char>(first), 0};
        if (page.trailCount[first] == 0) {
            look(code, 1);
            continue;
        }
        for (unsigned second = 0; second < 256; ++second) {
            if (page.trailValid[second] != 0) {
                code[1] = static_cast<unsigned char>(second);
                look(code, 2);
            }
        }
    }
    return census;
}

// Numbers in rising order as ranges: "0x81-0x9F, 0xE0".
std::string ranges(const std::vector<std::uint32_t> &numbers) {
    std::string words;
    for (std::size_t i = 0; i < numbers.size();) {
        std::size_t last = i;
        while (last + 1 < numbers.size() && numbers[last + 1] == numbers[last] + 1) {
            ++last;
        }
        char text[32];
        const int digits = numbers[last] > 0xFF ? 4 : 2;
        if (last == i) {
            std::snprintf(text, sizeof text, "0x%0*X", digits, numbers[i]);
        } else {
            std::snprintf(text, sizeof text, "0x%0*X-0x%0*X", digits, numbers[i], digits, numbers[last]);
        }
        words += (words.empty() ? "" : ", ") + std::string(text);
        i = last + 1;
    }
    return words;
}

std::string countAndRanges(const std::vector<std::uint32_t> &numbers) {
    return std::to_string(numbers.size()) + (numbers.empty() ? "" : ": " + ranges(numbers));
}

std::string joined(const std::vector<std::string> &items) {
    std::string words;
    for (const std::string &item : items) {
        words += (words.empty() ? "" : ", ") + item;
    }
    return words.empty() ? "none" : words;
}

std::vector<std::uint32_t> bytesWhere(const std::array<unsigned char, 256> &table) {
    std::vector<std::uint32_t> bytes;
    for (std::uint32_t byte = 0; byte < 256; ++byte) {
        if (table[byte] != 0) {
            bytes.push_back(byte);
        }
    }
    return bytes;
}

std::string kindWords(const Page &page) {
    const std::string order = page.highByteFirst ? ", high byte first" : ", low byte first";
    switch (page.form) {
    case Form::SingleByte:
        return "single byte";
    case Form::Multibyte:
    case Form::Gb18030:
        return "multibyte";
    case Form::Utf8:
        return "Unicode, UTF-8";
    case Form::Utf16:
        return "Unicode, 16-bit units" + order;
    case Form::Utf32:
        return "Unicode, 32-bit units" + order;
    }
    return "";
}

std::string widthWords(const Page &page) {
    switch (page.form) {
    case Form::SingleByte:
        return "1";
    case Form::Multibyte:
        return "1 to " +
               std::to_string(*std::max_element(page.trailCount.begin(), page.trailCount.end()) + 1);
    case Form::Gb18030:
        return "1, 2 or 4";
    case Form::Utf8:
        return "1 to 4";
    case Form::Utf16:
        return "2 or 4";
    case Form::Utf32:
        return "4";
    }
    return "";
}

// The other ends of the conversions that begin or end at the page.
std::vector<std::string> conversionEnds(const std::vector<std::string> &conversions, const std::string &page,
                                        bool begin) {
    constexpr char kArrow[] = " -> ";
    std::vector<std::string> ends;
    for (const std::string &conversion : conversions) {
        const std::size_t arrow = conversion.find(kArrow);
        const std::string from = conversion.substr(0, arrow);
        const std::string to = conversion.substr(arrow + sizeof kArrow - 1);
        if ((begin ? from : to) == page) {
            ends.push_back(begin ? to : from);
        }
    }
    return ends;
}

} // namespace

int runInfo(const InfoOptions &options) {
    const DataSource data(options.data);
    Library library(data);
    const Page page = describePage(library, resolvePage(library, options.page));

    std::string text;
    const auto line = [&](const char *label, const std::string &words) {
        char padded[32];
        std::snprintf(padded, sizeof padded, "%-17s", label);
        text += padded + words + "\n";
    };
    line("name", page.name);
    line("kind", kindWords(page));
    line("bytes", widthWords(page));
    if (page.form == Form::Multibyte || page.form == Form::Gb18030) {
        line("lead bytes", ranges(bytesWhere(page.trailCount)));
        line("trail bytes", ranges(bytesWhere(page.trailValid)));
    }
    const std::string source = data.builtIn() ? pageSource(page.name) : "";
    line("source", source.empty() ? "not recorded in the data file" : source);
    const bool countable = page.form == Form::SingleByte ||
                           (page.form == Form::Multibyte &&
                            *std::max_element(page.trailCount.begin(), page.trailCount.end()) == 1);
    if (countable) {
        try {
            const Page utf8 = describePage(library, resolvePage(library, "UTF-8"));
            const CodeCensus census = takeCensus(library, page, utf8);
            line("defined codes", std::to_string(census.defined));
            line("undefined codes", std::to_string(census.undefined.size()));
            line("one-way codes", countAndRanges(census.oneWay));
        } catch (const UnknownPage &) {
            line("defined codes", "not known: the data file has no UTF-8");
        } catch (const NoRoute &) {
            line("defined codes", "not known: no conversion to UTF-8 and back");
        }
    } else if (page.isUnicode()) {
        line("defined codes", "every code point of Unicode");
    }
    line("collations", joined(Library::list(page.locale, NameList::Collations)));
    line("case tables", joined(Library::list(page.locale, NameList::CaseTables)));
    const std::vector<std::string> conversions = Library::list(page.locale, NameList::Conversions);
    line("converts to", joined(conversionEnds(conversions, page.name, true)));
    line("converts from", joined(conversionEnds(conversions, page.name, false)));
    Output output("");
    output.write(text.data(), text.size());
    return kExitDone;
}

} // namespace velnls::tool
