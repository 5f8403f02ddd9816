// Any bytes as a data file: opens it, asks every property, creates every locale and conversion that it names,
// walks and converts text through each. Nothing may be read or written outside lent memory.
//
// The input begins with a few bytes of choices (arena sizes, alignment, which header fields to repair), then
// the file. Repairing the header lets mutations reach the directory and the records behind it.
#include "lent_block.hpp"

#include <algorithm>
#include <cstring>
#include <string>

namespace {

struct Name {
    std::string text;
    explicit Name(const std::uint8_t *field) {
        std::size_t length = 0;
        while (length < 20 && field[length] != 0)
            ++length;
        text.assign(reinterpret_cast<const char *>(field), length);
    }
};

void walk(nlsLocale *locale, const std::vector<std::uint8_t> &text) {
    fuzz::Block block(text.size() + 1);
    std::copy(text.begin(), text.end(), block.data());
    block.data()[text.size()] = 0;
    char *const start = reinterpret_cast<char *>(block.data());
    char *const end = start + std::strlen(start);
    std::uint32_t value = 0;
    // A character of more than four bytes is stepped over unseen, so the walk stops short of the end.
    for (char *p = start; end - p >= 8;) {
        char *next = nullptr;
        char *behind = p;
        nlsGetCharProperty(locale, p, 0, &value);
        nlsCharToLChar(locale, &behind, &value);
        const nlsStatus status = nlsGetNextChar(locale, p, &next);
        fuzz::require(next > p && behind == next);
        if (status != NLS_OK)
            break;
        p = next;
    }
    for (char *p = end; p > start;) {
        char *prev = nullptr;
        nlsGetPrevChar(locale, p, start, &prev);
        fuzz::require(prev >= start && prev < p);
        p = prev;
    }
    char written[4];
    for (const std::uint32_t character : {0x41U, 0x889FU, 0xE282ACU, 0xF09F9880U}) {
        char *p = written;
        std::uint16_t length = 0;
        nlsLCharToChar(locale, character, &p, &length);
        fuzz::require(length <= 4);
    }
}

void askLocale(nlsLocale *locale) {
    std::uint32_t value = 0;
    std::uint32_t lengths[3] = {};
    // Number 22 needs a collation, so it is asked of none here.
    for (std::int32_t id = 0; id < 30; ++id)
        if (id != 22)
            nlsGetIntLocaleProperty(locale, id, &value);
    for (std::int32_t id = 4; id <= 6; ++id)
        nlsGetIntLocaleProperty(locale, id, &lengths[id - 4]);
    for (std::int32_t id = 7; id <= 20; ++id)
        for (const std::uint32_t size : {1U, 30U, 200000U}) {
            fuzz::Block block(size + 1);
            nlsStr text = {reinterpret_cast<char *>(block.data()), size, 0};
            const nlsStatus status = nlsGetStrLocaleProperty(locale, id, &text);
            if (status == NLS_OK && id <= 9)
                fuzz::require(text.length == lengths[id - 7]);
        }
}

void askLibrary(nlsHandle *handle) {
    std::uint32_t value = 0;
    for (std::int32_t id = 0; id < 25; ++id)
        nlsGetIntNLSProperty(handle, id, &value);
    for (std::uint32_t id = 0; id < 12; ++id)
        for (const std::uint32_t size : {1U, 100U, 200000U}) {
            fuzz::Block block(size);
            nlsStr text = {reinterpret_cast<char *>(block.data()), size, 0};
            nlsGetStrNLSProperty(handle, id, &text);
        }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    fuzz::Input input(data, size);
    const unsigned choices = input.byte();
    const std::size_t misalignment = choices & 15;
    const std::int32_t firstSize = (choices & 16) != 0 ? 25000 + input.half() : 200000;
    const unsigned capacityChoice = input.byte();
    const std::uint32_t capacity = capacityChoice < 200 ? capacityChoice % 40 : 4096;
    const std::vector<std::uint8_t> text = input.bytes(input.byte() % 64);
    std::vector<std::uint8_t> file = input.bytes(65536);
    if ((choices & 32) == 0 && file.size() >= 16) {
        std::memcpy(file.data(), "42421605", 8);
        if ((choices & 64) == 0) {
            // As many entries as there are that do not spoil the opening.
            unsigned count = 0;
            while (count < 60 && 16 + (count + 1) * 64 <= file.size()) {
                const std::uint8_t *const entry = &file[16 + count * 64];
                if (entry[49] != '1' && (entry[49] < '2' || entry[49] > '4'))
                    break;
                ++count;
            }
            file[8] = static_cast<std::uint8_t>('0' + count / 100);
            file[9] = static_cast<std::uint8_t>('0' + count / 10 % 10);
            file[10] = static_cast<std::uint8_t>('0' + count % 10);
        }
    }
    fuzz::serve(file.data(), file.size());

    fuzz::Block memory(static_cast<std::size_t>(firstSize), misalignment);
    fuzz::Block more(300000, misalignment);
    nlsHandle *handle = nullptr;
    if (nlsInit(7, memory.data(), firstSize, &fuzz::readServed, &handle) != NLS_OK)
        return 0;
    askLibrary(handle);

    std::vector<nlsLocale *> locales;
    std::vector<Name> collations;
    for (int pass = 0; pass < 2; ++pass) {
        for (std::size_t at = 16; at + 64 <= file.size() && at < 16 + 60 * 64; at += 64) {
            const std::uint8_t *const entry = &file[at];
            const Name name(entry);
            const Name name2(entry + 20);
            nlsLocale *locale = nullptr;
            nlsStatus status = NLS_E_BADID;
            if (entry[49] == '2')
                status = nlsCreateLocale(handle, name.text.c_str(), NLS_NO_COLLATION, nullptr, &locale);
            else if (entry[49] == '3')
                status =
                    nlsCreateLocale(handle, name.text.c_str(), NLS_NO_COLLATION, name2.text.c_str(), &locale);
            else if (entry[49] == '4')
                status = nlsCreateLocale(handle, name.text.c_str(), name2.text.c_str(), nullptr, &locale);
            if (status == NLS_OK) {
                fuzz::require(locale != nullptr);
                if (locales.size() < 24 && std::find(locales.begin(), locales.end(), locale) == locales.end())
                    locales.push_back(locale);
            }
        }
        if (pass == 0)
            nlsAddBuffer(handle, more.data(), 300000);
    }
    for (nlsLocale *const locale : locales) {
        askLocale(locale);
        walk(locale, text);
    }
    int conversions = 0;
    for (nlsLocale *const source : locales)
        for (nlsLocale *const target : locales) {
            nlsConversion *conversion = nullptr;
            if (nlsCreateConversion(handle, source, target, &conversion) != NLS_OK || ++conversions > 40)
                continue;
            std::uint32_t value = 0;
            for (const std::int32_t id : {17, 24, 28})
                nlsGetIntConversionProperty(conversion, id, &value);
            fuzz::convertEveryWay(conversion, text, capacity, capacityChoice % 32);
            fuzz::convertEveryWay(conversion, text, 512, 512);
        }
    nlsClose(handle);
    return 0;
}
