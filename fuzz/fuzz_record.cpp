// Records of any content as stored collations: rebuilding gives a locale or a status; the locale answers; its
// block comes back.
//
// The input is a few choices, then changes (place, value) to a record that the library wrote, then a text. So
// mutations stay near records that are worth rebuilding.
#include "fuzz_text.hpp"

namespace {

struct Stored {
    nlsDbCollation record{};
    std::vector<std::uint8_t> data;
};

Stored store(nlsLocale *locale, std::int32_t level) {
    Stored out;
    out.data.resize(8000);
    out.record.data = out.data.data();
    fuzz::require(nlsLocaleToDbCollation(locale, level, 8000, &out.record) == NLS_OK);
    out.data.resize(out.record.dataSize);
    return out;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    fuzz::refreshWorld();
    fuzz::Input input(data, size);
    nlsLocale *const original = fuzz::localeOf(input.byte());
    const unsigned choices = input.byte();
    Stored stored = store(original, (choices & 1) != 0 ? 5 : 6);
    if ((choices & 2) != 0)
        stored.data.resize(input.half() % 9000);
    for (unsigned changes = input.byte() % 64; changes > 0; --changes) {
        const unsigned place = input.half();
        const std::uint8_t value = input.byte();
        if (place >= 0xFF00)
            reinterpret_cast<std::uint8_t *>(&stored.record)[place % 68] = value; // names, kind, word
        else if (!stored.data.empty())
            stored.data[place % stored.data.size()] = value;
    }
    fuzz::Block area(stored.data.size());
    std::copy(stored.data.begin(), stored.data.end(), area.data());
    stored.record.data = area.data();
    stored.record.dataSize = static_cast<std::uint32_t>(stored.data.size());

    std::vector<std::uint16_t> sortData;
    if ((choices & 4) != 0) {
        sortData.resize(4 + input.byte());
        for (unsigned i = 0; i < 4; ++i)
            sortData[i] = input.half();
        for (unsigned i = 0; i < 16; ++i)
            sortData[4 + input.byte() % (sortData.size() - 3) - 1] = input.half();
        sortData[1] = static_cast<std::uint16_t>(sortData.size() * 2 - (choices >> 6 & 1));
        stored.record.sortData = sortData.data();
        if ((choices & 8) != 0)
            stored.record.sortTarget = fuzz::localeOf(input.byte());
    }
    // As much as the record says, or a little more or less.
    const std::uint32_t wanted =
        stored.record.blockSize % 16000 + 318 + static_cast<std::uint32_t>(sortData.size() * 2);
    std::uint32_t blockSize = wanted + input.byte();
    blockSize -= std::min<std::uint32_t>(blockSize, input.byte());
    fuzz::Block block(blockSize, choices >> 4 & 3);
    std::fill_n(block.data(), blockSize, std::uint8_t{0xCC});
    nlsLocale *locale = nullptr;
    const std::uint32_t given = blockSize;
    const nlsStatus status =
        nlsDbCollationToLocale(fuzz::world(), &stored.record, "copy", &blockSize, block.data(), &locale);
    if (status != NLS_OK) {
        fuzz::require(locale == nullptr && (blockSize == given || status == NLS_E_BUFFER));
        return 0;
    }
    fuzz::require(static_cast<void *>(locale) == block.data());
    const std::vector<std::uint8_t> a = input.bytes(40);
    const std::vector<std::uint8_t> b = input.bytes(40);
    fuzz::orderEveryWay(locale, a, b, input.byte(), choices >> 5 & 1, false);
    fuzz::Terminated text(a);
    const nlsStr from{text.get(), 0, 0};
    fuzz::Block mapped(9);
    nlsStr to{reinterpret_cast<char *>(mapped.data()), 8, 0};
    nlsUpperCase(locale, &from, &to);
    nlsLowerCase(locale, &from, &to);
    std::uint32_t count = 0;
    nlsIsSortNeeded(locale, &count);
    char *at = text.get();
    fuzz::Block word(30);
    for (unsigned i = 0; i < 50; ++i) {
        if (nlsGetNextWord(locale, &at, 1, reinterpret_cast<char *>(word.data()), 30, &count) != NLS_OK)
            break;
        fuzz::require(at <= text.get() + text.length());
    }
    void *closed = nullptr;
    fuzz::require(nlsCloseDBLocale(locale, &closed, &count) == NLS_OK);
    fuzz::require(closed == block.data() && count == given);
    return 0;
}
