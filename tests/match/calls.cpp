#include "calls.hpp"

#include "guarded_buffer.hpp"
#include "pages.hpp"

#include <algorithm>
#include <cstring>
#include <memory>

namespace fixture {

namespace {

constexpr unsigned char kFiller = 0xEE;
constexpr std::size_t kBehind = 80; // bytes that stand behind a string near the front of its area
constexpr std::size_t kBefore = 64; // fewer bytes than these are made to stand before it
Stand stand = Stand::kAtPageEnd;

// Each string of a call has an area of its own.
GuardedBuffer &area(std::size_t which, std::size_t size) {
    static std::unique_ptr<GuardedBuffer> areas[4];
    static std::size_t sizes[4];
    if (!areas[which] || sizes[which] < size) {
        sizes[which] = std::max<std::size_t>(2 * size, 4096);
        areas[which] = std::make_unique<GuardedBuffer>(sizes[which]);
    }
    return *areas[which];
}

const char *place(std::size_t which, const std::string &text) {
    Bytes bytes(text.begin(), text.end());
    bytes.push_back(0);
    GuardedBuffer &buffer = area(which, pageSize() + bytes.size() + kBehind);
    // Every other pattern ends where its page does, and every other one does not, wherever the text stands.
    static unsigned patterns = 0;
    const bool atPageEnd = which == 0 ? ++patterns % 2 == 0 : stand == Stand::kAtPageEnd;
    if (atPageEnd)
        return reinterpret_cast<const char *>(buffer.readOnly(bytes));
    // What stands before and behind the string looks much like it, NULs included: none of that may be found.
    static std::size_t turn = 0;
    const std::size_t some = ++turn * 7 % kBefore;
    const std::size_t before = stand == Stand::kAcrossPages ? pageSize() - 1 - some : some;
    unsigned char *const at = buffer.head(before + bytes.size() + kBehind) + before;
    std::copy(bytes.begin(), bytes.end(), at);
    for (std::size_t i = 0; i < kBehind; ++i)
        at[bytes.size() + i] = bytes[i % bytes.size()];
    for (std::size_t i = 1; i <= std::min(before, kBefore); ++i)
        at[-static_cast<std::ptrdiff_t>(i)] = i % 6 == 5 ? 0 : bytes[bytes.size() - 1 - i % bytes.size()];
    return reinterpret_cast<const char *>(at);
}

model::Found result(nlsStatus status, std::uint32_t position, std::uint32_t endOffset, const char *found,
                    const char *text) {
    return {status, position, endOffset, found == nullptr ? model::kNowhere : found - text};
}

char rubbish;

// A counted string of exact size with one byte more.
nlsStr lay(const model::Out &before) {
    unsigned char *const at = area(3, before.buffer.size()).tail(before.buffer.size());
    std::copy(before.buffer.begin(), before.buffer.end(), at);
    return {reinterpret_cast<char *>(at), before.size, before.length};
}

model::Out read(const nlsStr &string, nlsStatus status) {
    model::Out out;
    const auto *const at = reinterpret_cast<const unsigned char *>(string.buffer);
    out.buffer.assign(at, at + string.size + 1);
    out.size = string.size;
    out.length = string.length;
    out.status = status;
    return out;
}

} // namespace

void letStringsStand(Stand where) {
    stand = where;
}

model::Out emptyOut(std::uint32_t size) {
    model::Out out;
    out.buffer.assign(size + 1, kFiller);
    out.size = size;
    return out;
}

nlsStatus like(const model::Page &page, const std::string &pattern, const std::string &string,
               std::uint16_t mode, const model::Signs &signs) {
    return nlsSqlLike(page.locale, place(0, pattern), place(1, string), mode, signs.escape,
                      signs.oneCharacter, signs.anyString);
}

model::Found searchForwards(const model::Page &page, const std::string &pattern, const std::string &text,
                            std::uint16_t mode) {
    std::uint32_t position = model::kUnwritten;
    std::uint32_t end = model::kUnwritten;
    char *found = &rubbish;
    const char *const at = place(1, text);
    const nlsStatus status = nlsSearchForw(page.locale, place(0, pattern), at, mode, &position, &end, &found);
    return result(status, position, end, found, at);
}

model::Found searchBackwards(const model::Page &page, const std::string &pattern, const std::string &text,
                             std::int32_t length, std::uint16_t mode) {
    std::uint32_t position = model::kUnwritten;
    char *found = &rubbish;
    const char *const at = place(1, text);
    const nlsStatus status =
        nlsSearchBack(page.locale, place(0, pattern), at, length, mode, &position, &found);
    return result(status, position, model::kUnwritten, found, at);
}

model::Out replace(const model::Page &page, const std::string &pattern, const std::string &replacement,
                   const std::string &text, std::uint16_t mode, const model::Out &before) {
    std::uint32_t position = model::kUnwritten;
    std::uint32_t end = model::kUnwritten;
    char *found = &rubbish;
    const char *const at = place(1, text);
    nlsStr string = lay(before);
    const nlsStatus status = nlsReplace(page.locale, place(0, pattern), place(2, replacement), at, mode,
                                        &string, &position, &end, &found);
    model::Out out = read(string, status);
    out.match = result(0, position, end, found, at);
    return out;
}

model::Out replaceAll(const model::Page &page, const std::string &pattern, const std::string &replacement,
                      const std::string &text, std::uint16_t mode, const model::Out &before) {
    std::uint32_t count = model::kUnwritten;
    nlsStr string = lay(before);
    const nlsStatus status = nlsReplaceAll(page.locale, place(0, pattern), place(2, replacement),
                                           place(1, text), mode, &string, &count);
    model::Out out = read(string, status);
    out.count = count;
    return out;
}

model::Found findForwards(const model::Page &page, std::uint32_t lchar, const std::string &text,
                          std::uint16_t mode) {
    std::uint32_t position = model::kUnwritten;
    char *found = &rubbish;
    const char *const at = place(1, text);
    const nlsStatus status = nlsFindCharForw(page.locale, &lchar, at, mode, &position, &found);
    return result(status, position, model::kUnwritten, found, at);
}

model::Found findBackwards(const model::Page &page, std::uint32_t lchar, const std::string &text,
                           std::int32_t length, std::uint16_t mode) {
    std::uint32_t position = model::kUnwritten;
    char *found = &rubbish;
    const char *const at = place(1, text);
    const nlsStatus status = nlsFindCharBack(page.locale, &lchar, at, length, mode, &position, &found);
    return result(status, position, model::kUnwritten, found, at);
}

model::Found trimLeft(const model::Page &page, const std::string *set, const std::string &text,
                      std::uint16_t mode) {
    std::uint32_t position = model::kUnwritten;
    char *found = &rubbish;
    const char *const at = place(1, text);
    const nlsStatus status = nlsFindLtrimPtrForw(page.locale, set == nullptr ? nullptr : place(0, *set), at,
                                                 mode, &position, &found);
    return result(status, position, model::kUnwritten, status == NLS_OK ? found : nullptr, at);
}

model::Found trimRight(const model::Page &page, const std::string *set, const std::string &text,
                       std::int32_t length, std::uint16_t mode) {
    std::uint32_t position = model::kUnwritten;
    char *found = &rubbish;
    // Read-only memory behind a pointer that the interface asks for without const.
    char *const at = const_cast<char *>(place(1, text));
    const nlsStatus status = nlsFindRtrimPtrBack(page.locale, set == nullptr ? nullptr : place(0, *set), at,
                                                 length, mode, &position, &found);
    return result(status, position, model::kUnwritten, status == NLS_OK ? found : nullptr, at);
}

} // namespace fixture
