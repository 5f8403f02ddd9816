#include "string_rows.hpp"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <map>

namespace bench {

Jobs stringJobs() {
    Jobs jobs;
    for (const auto &family : {likeRows, searchRows, caseRows, countRows})
        for (const StringRow &row : family())
            for (const Size size : row.sizes)
                jobs.push_back({row.name + "/" + nameOf(size),
                                size == Size::buffer ? row.floorBuffer : row.floorShort,
                                [measure = row.measure, size](int rounds) { return measure(size, rounds); }});
    return jobs;
}

nlsLocale *basicLocale(const Page &page) {
    nlsLocale *locale = nullptr;
    const nlsStatus status = nlsCreateLocale(dataHandle(), page.velnls, "basic", "basic", &locale);
    if (status != NLS_OK) {
        std::fprintf(stderr, "velnls_bench: locale %s gives status %u\n", page.velnls, status);
        std::exit(2);
    }
    return locale;
}

std::string inPage(const Page &page, const std::string &utf8) {
    std::string text = utf8;
    if (!isUtf8(page) && !openVelnls(pageNamed("UTF-8"), page)->convert(utf8, text)) {
        std::fprintf(stderr, "velnls_bench: %s has not all of \"%s\"\n", page.velnls, utf8.c_str());
        std::exit(2);
    }
    return text;
}

locale_t systemLocale(const char *name) {
    static std::map<std::string, locale_t> locales;
    const auto found = locales.find(name);
    if (found != locales.end())
        return found->second;
    locale_t locale = newlocale(LC_CTYPE_MASK, name, nullptr);
    if (locale == nullptr)
        std::fprintf(stderr, "velnls_bench: the C library has no locale %s; its rows lack that peer\n", name);
    return locales.emplace(name, locale).first->second;
}

bool agree(const std::vector<Contender> &contenders, std::size_t string) {
    const std::string ours = contenders[0].answer(string);
    return std::all_of(contenders.begin(), contenders.end(), [&](const Contender &contender) {
        return !contender.answer || contender.answer(string) == ours;
    });
}

} // namespace bench
