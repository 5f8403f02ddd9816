// The built data file, a pair of code pages and a capacity chosen by the input, any text: every way to
// convert it. Results stay within their destinations, and the same call gives the same result twice.
#include "lent_block.hpp"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

namespace {

// The library, opened once, with one locale of every code page.
struct Opened {
    Opened() : memory(8000000) {
        std::ifstream stream(VELNLS_DATA_FILE, std::ios::binary);
        file.assign(std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>());
        fuzz::serve(file.data(), file.size());
        if (nlsInit(1, memory.data(), 8000000, &fuzz::readServed, &handle) != NLS_OK) {
            std::fprintf(stderr, "cannot open " VELNLS_DATA_FILE "\n");
            std::abort();
        }
        std::vector<char> buffer(100000);
        nlsStr names = {buffer.data(), 99999, 0};
        fuzz::require(nlsGetStrNLSProperty(handle, 2, &names) == NLS_OK);
        std::string list = std::string(names.buffer, names.length) + ",";
        for (std::size_t at = 0; at < list.size();) {
            const std::size_t comma = list.find(',', at);
            nlsLocale *locale = nullptr;
            fuzz::require(nlsCreateLocale(handle, list.substr(at, comma - at).c_str(), NLS_NO_COLLATION,
                                          nullptr, &locale) == NLS_OK);
            if (std::find(locales.begin(), locales.end(), locale) == locales.end())
                locales.push_back(locale);
            at = comma + 1;
        }
    }
    std::vector<std::uint8_t> file;
    fuzz::Block memory;
    nlsHandle *handle = nullptr;
    std::vector<nlsLocale *> locales;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    static Opened opened;
    fuzz::Input input(data, size);
    nlsLocale *const source = opened.locales[input.byte() % opened.locales.size()];
    nlsLocale *const target = opened.locales[input.byte() % opened.locales.size()];
    const unsigned choice = input.byte();
    const std::uint32_t intermediate = input.half() % 3000;
    const std::vector<std::uint8_t> text = input.bytes(4096);
    // Mostly near what the text needs, and every small size.
    const std::uint32_t length = static_cast<std::uint32_t>(text.size());
    const std::uint32_t capacity = choice < 64    ? choice
                                   : choice < 128 ? length + choice - 96 + (length + choice < 96 ? 96 : 0)
                                   : choice < 192 ? length * 2 + choice - 128
                                                  : length * 4 + 16;
    nlsConversion *conversion = nullptr;
    if (nlsCreateConversion(opened.handle, source, target, &conversion) != NLS_OK)
        return 0;
    fuzz::convertEveryWay(conversion, text, capacity, intermediate);
    return 0;
}
