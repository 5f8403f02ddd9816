// Any pattern in any text, on a page of every kind: search in both directions, replacement into strings of
// any size, single characters and trims give what the plain twins give.
#include "match_world.hpp"

#include <algorithm>

namespace {

constexpr unsigned char kFiller = 0xEE;

struct Result {
    std::uint32_t position = 0xABCDEF01;
    std::uint32_t endOffset = 0xABCDEF01;
    char *found = nullptr;
};

void requireSame(const model::Found &expected, nlsStatus status, const Result &actual, const char *text) {
    fuzz::require(status == expected.status);
    if (status != NLS_OK)
        return;
    fuzz::require(actual.position == expected.position);
    fuzz::require(expected.found == model::kNowhere ? actual.found == nullptr
                                                    : actual.found == text + expected.found);
    fuzz::require(expected.endOffset == model::kUnwritten || expected.endOffset == actual.endOffset);
}

// One byte more than the stated size belongs to the string.
void requireSame(const model::Out &expected, nlsStatus status, const nlsStr &actual) {
    fuzz::require(status == expected.status && actual.length == expected.length);
    if (expected.size != 0)
        fuzz::require(std::equal(actual.buffer, actual.buffer + actual.length,
                                 reinterpret_cast<const char *>(expected.buffer.data())));
}

model::Out emptyOut(std::uint32_t size) {
    model::Out out;
    out.buffer.assign(size + 1, kFiller);
    out.size = size;
    return out;
}

struct OutString {
    explicit OutString(const model::Out &before)
        : block(before.buffer.size()), string{reinterpret_cast<char *>(block.data()), before.size,
                                              before.length} {
        std::copy(before.buffer.begin(), before.buffer.end(), block.data());
    }
    fuzz::Block block;
    nlsStr string;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    fuzz::Input input(data, size);
    const model::Page &page = fuzz::matchPage(input.byte());
    const unsigned choice = input.byte();
    const auto mode = static_cast<std::uint16_t>(choice & 1);
    const std::uint32_t outSize = input.half() % 2000;
    const std::string pattern = fuzz::stringOf(input, 1 + choice / 16);
    const std::string instead = fuzz::stringOf(input, choice / 2 % 8);
    std::string text = fuzz::stringOf(input, 400);
    if ((choice & 2) != 0) // long enough for blocks
        for (std::string piece = text; !piece.empty() && text.size() < 1200;)
            text += piece;
    const auto length = static_cast<std::int32_t>((choice * 37U) % (text.size() + 1));
    std::uint32_t lchar = 0;
    for (const char byte : pattern.substr(0, 4))
        lchar = lchar << 8 | static_cast<unsigned char>(byte);

    fuzz::Copy patternCopy(pattern);
    fuzz::Copy insteadCopy(instead);
    fuzz::Copy textCopy(text);
    char *const at = textCopy.get();
    nlsLocale *const locale = page.locale;
    Result result;
    nlsStatus status = nlsSearchForw(locale, patternCopy.get(), at, mode, &result.position, &result.endOffset,
                                     &result.found);
    requireSame(model::searchForwards(page, pattern, text, mode), status, result, at);
    status = nlsSearchBack(locale, patternCopy.get(), at, length, mode, &result.position, &result.found);
    requireSame(model::searchBackwards(page, pattern, text, length, mode), status, result, at);

    const model::Out before = emptyOut(outSize);
    {
        OutString out(before);
        status = nlsReplace(locale, patternCopy.get(), insteadCopy.get(), at, mode, &out.string,
                            &result.position, &result.endOffset, &result.found);
        requireSame(model::replace(page, pattern, instead, text, mode, before), status, out.string);
    }
    if (!pattern.empty()) {
        OutString out(before);
        std::uint32_t count = 0;
        status = nlsReplaceAll(locale, patternCopy.get(), insteadCopy.get(), at, mode, &out.string, &count);
        const model::Out expected = model::replaceAll(page, pattern, instead, text, mode, before);
        requireSame(expected, status, out.string);
        fuzz::require(status != NLS_OK || count == expected.count);
    }

    status = nlsFindCharForw(locale, &lchar, at, mode, &result.position, &result.found);
    requireSame(model::findForwards(page, lchar, text, mode), status, result, at);
    status = nlsFindCharBack(locale, &lchar, at, length, mode, &result.position, &result.found);
    requireSame(model::findBackwards(page, lchar, text, length, mode), status, result, at);
    status = nlsFindLtrimPtrForw(locale, patternCopy.get(), at, mode, &result.position, &result.found);
    requireSame(model::trimLeft(page, pattern, text, mode), status, result, at);
    status =
        nlsFindRtrimPtrBack(locale, patternCopy.get(), at, length, mode, &result.position, &result.found);
    requireSame(model::trimRight(page, pattern, text, length, mode), status, result, at);
    fuzz::require(text == at); // nothing was written to it
    return 0;
}
