#include "table_source.hpp"

#include "core/file_layout.hpp"
#include "core/handle.hpp"

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>

namespace kernel_tests {
namespace {

std::vector<unsigned char> dataFile;

std::uint32_t readData(std::uint32_t, std::uint32_t offset, unsigned char *buffer, std::uint32_t length) {
    if (offset >= dataFile.size())
        return 0;
    const auto count = std::min<std::size_t>(length, dataFile.size() - offset);
    std::memcpy(buffer, dataFile.data() + offset, count);
    return static_cast<std::uint32_t>(count);
}

nlsHandle *handle() {
    static nlsHandle *const opened = [] {
        std::ifstream file(VELNLS_TEST_DATA, std::ios::binary);
        dataFile.assign(std::istreambuf_iterator<char>(file), {});
        static std::vector<unsigned char> memory(16 << 20);
        nlsHandle *made = nullptr;
        nlsInit(0, memory.data(), static_cast<std::int32_t>(memory.size()), readData, &made);
        return made;
    }();
    return opened;
}

} // namespace

const void *converterOf(const std::string &from, const std::string &to) {
    nlsLocale *source = nullptr;
    nlsLocale *target = nullptr;
    nlsConversion *conversion = nullptr;
    if (handle() == nullptr ||
        nlsCreateLocale(handle(), from.c_str(), NLS_NO_COLLATION, nullptr, &source) != NLS_OK ||
        nlsCreateLocale(handle(), to.c_str(), NLS_NO_COLLATION, nullptr, &target) != NLS_OK ||
        nlsCreateConversion(handle(), source, target, &conversion) != NLS_OK)
        return nullptr;
    return conversion->converter;
}

const velnls::MappingBody *mappingOf(const std::string &page) {
    return static_cast<const velnls::MappingBody *>(converterOf(page, "UTF-8"));
}

const std::vector<std::string> &pages() {
    static const std::vector<std::string> names = {
        "1252",      "1251",      "1250",   "KOI8-R",  "IBM850", "IBM437",     "620-2533",
        "ISO8859-1", "SHIFT-JIS", "EUCJIS", "KSC5601", "CP949",  "CP1361",     "CP936",
        "GB2312",    "CP950",     "BIG-5",  "ISO6937", "IBM037", "CP950-HKSCS"};
    return names;
}

const nlsLocale *localeOf(const std::string &page, const std::string &collation) {
    nlsLocale *locale = nullptr;
    if (handle() == nullptr ||
        nlsCreateLocale(handle(), page.c_str(), collation.c_str(), "basic", &locale) != NLS_OK)
        return nullptr;
    return locale;
}

std::vector<std::string> codePages() {
    std::vector<std::string> names;
    const nlsHandle *const opened = handle();
    for (std::int32_t i = 0; opened != nullptr && i < opened->entryCount; ++i)
        if (const velnls::Entry &entry = opened->directory[i]; entry.kind == velnls::file::kCharSet)
            names.emplace_back(entry.name);
    return names;
}

} // namespace kernel_tests
