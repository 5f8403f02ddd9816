// Finds a page's lead and trail bytes, byte order and line feed through the public calls.
#include "page.hpp"

#include <algorithm>
#include <cctype>
#include <cstring>

namespace velnls::tool {

namespace {

// One short text from UTF-8 to the page; empty when there is no conversion.
std::string fromUtf8(Library &library, nlsLocale *target, const char *text) {
    nlsConversion *conversion = library.conversion(library.utf8(), target);
    if (conversion == nullptr) {
        return {};
    }
    std::array<char, 64> from = {};
    std::array<char, 64> middle = {};
    std::array<char, 64> into = {};
    std::strncpy(from.data(), text, from.size() - 1);
    nlsStr source = {from.data(), static_cast<std::uint32_t>(from.size()),
                     static_cast<std::uint32_t>(std::strlen(from.data()))};
    nlsStr intermediate = {middle.data(), static_cast<std::uint32_t>(middle.size()), 0};
    nlsStr result = {into.data(), static_cast<std::uint32_t>(into.size()), 0};
    if (nlsConvertNLS(conversion, &source, &intermediate, &result) != NLS_OK) {
        return {};
    }
    return std::string(into.data(), result.length);
}

bool sameName(const std::string &name, const char *other) {
    const std::size_t length = std::strlen(other);
    return name.size() == length && std::equal(name.begin(), name.end(), other, [](char a, char b) {
               return std::toupper(static_cast<unsigned char>(a)) ==
                      std::toupper(static_cast<unsigned char>(b));
           });
}

void findTrailBytes(Page &page) {
    // Which bytes may stand as trail bytes does not depend on the lead byte, so one of two-byte characters
    // tells.
    const auto *lead = std::find(page.trailCount.begin(), page.trailCount.end(), 1);
    if (lead == page.trailCount.end()) {
        return;
    }
    const std::uint32_t leadByte = static_cast<std::uint32_t>(lead - page.trailCount.begin());
    for (std::uint32_t byte = 0; byte < 256; ++byte) {
        std::array<char, kLongestCharacter> written = {};
        char *end = written.data();
        std::uint16_t length = 0;
        page.trailValid[byte] = nlsLCharToChar(page.locale, leadByte << 8 | byte, &end, &length) == NLS_OK;
    }
}

} // namespace

std::array<unsigned char, 256> trailCountsOf(nlsLocale *locale) {
    std::array<unsigned char, 256> counts = {};
    for (unsigned byte = 1; byte < 256; ++byte) {
        // The walk steps over the trail bytes without judging them, so any byte but NUL will do.
        std::array<char, kLongestCharacter + 2> text;
        text.fill('A');
        text[0] = static_cast<char>(byte);
        text.back() = '\0';
        char *next = text.data() + 1;
        nlsGetNextChar(locale, text.data(), &next);
        counts[byte] = static_cast<unsigned char>(next - text.data() - 1);
    }
    return counts;
}

void Page::derive() {
    plainAscii = form == Form::Utf8 || std::all_of(trailCount.begin(), trailCount.begin() + 128,
                                                   [](unsigned char count) { return count == 0; });
    hasPairs = form == Form::Multibyte && *std::max_element(trailCount.begin(), trailCount.end()) == 1;
    leadBytes = {};
    trailBytes = {};
    for (unsigned byte = 0; byte < 256; ++byte) {
        if (trailCount[byte] != 0) {
            leadBytes.insert(byte);
        }
        if (trailValid[byte] != 0) {
            trailBytes.insert(byte);
        }
    }
}

Page describePage(Library &library, const std::string &name) {
    Page page;
    page.name = name;
    page.locale = library.locale(name);
    if (Library::number(page.locale, LocaleNumber::Is32BitUnicode) != 0) {
        page.form = Form::Utf32;
    } else if (Library::number(page.locale, LocaleNumber::IsWideUnicode) != 0) {
        page.form = Form::Utf16;
    } else if (Library::number(page.locale, LocaleNumber::IsUtf8) != 0) {
        page.form = Form::Utf8;
    } else if (Library::number(page.locale, LocaleNumber::IsMultibyte) != 0) {
        page.form = sameName(name, "GB18030") ? Form::Gb18030 : Form::Multibyte;
    }
    if (page.unitSize() > 1) {
        // The library has no property for the byte order of the units: a letter shows it.
        const std::string letter = fromUtf8(library, page.locale, "A");
        page.highByteFirst = !letter.empty() && letter.front() == '\0';
        return page;
    }
    if (page.form == Form::Utf8) {
        page.derive();
        return page;
    }
    // EBCDIC pages have their line feed elsewhere.
    const std::string lineFeed = fromUtf8(library, page.locale, "\n");
    if (lineFeed.size() == 1) {
        page.lineFeed = static_cast<unsigned char>(lineFeed.front());
    }
    if (page.form != Form::SingleByte) {
        page.trailCount = trailCountsOf(page.locale);
        findTrailBytes(page);
        page.derive();
    }
    return page;
}

} // namespace velnls::tool
