#include "growth.hpp"

#include "contestants.hpp"
#include "string_rows.hpp"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <functional>

namespace bench {
namespace {

constexpr int kPasses = 5;
constexpr double kShortestPass = 2e-3; // seconds; shorter texts are gone over many times

// A call over one text of a given size, ready to run.
using Call = std::function<void()>;

struct Subject {
    const char *name;
    std::function<Call(std::size_t size)> prepare;
};

void require(nlsStatus status, nlsStatus wanted, const char *what) {
    if (status == wanted)
        return;
    std::fprintf(stderr, "velnls_bench: %s gives status %u\n", what, status);
    std::exit(2);
}

// German prose in the page, as often as it takes.
std::string prose(const Page &page, std::size_t size) {
    const std::string &utf8 = textOf("de").utf8;
    std::string piece = utf8.substr(0, utf8.find_last_of(' ', 100000));
    std::string text;
    if (!isUtf8(page))
        openVelnls(pageNamed("UTF-8"), page)->convert(piece, text);
    else
        text = piece;
    if (text.empty()) // a character that the page lacks: the letters that it has
        for (const char byte : piece)
            if (static_cast<unsigned char>(byte) < 0x80)
                text += byte;
    piece = text;
    while (text.size() < size)
        text += piece;
    text.resize(size);
    while (!text.empty() && static_cast<unsigned char>(text.back()) >= 0x80) // no character is cut
        text.back() = ' ', text.pop_back();
    text.resize(size, ' ');
    return text;
}

Subject conversion(const char *name, const char *from, const char *to) {
    return {name, [from, to](std::size_t size) -> Call {
                const auto contestant =
                    std::shared_ptr<Contestant>(openVelnls(pageNamed(from), pageNamed(to)));
                const auto strings = std::make_shared<Strings>();
                strings->add(prose(pageNamed(from), size));
                contestant->prepare(*strings);
                return [contestant, strings] { contestant->run(*strings); };
            }};
}

Subject compare(const char *name, const char *page, std::int16_t mode) {
    return {name, [page, mode](std::size_t size) -> Call {
                nlsLocale *const locale = basicLocale(pageNamed(page));
                const auto one = std::make_shared<std::string>(prose(pageNamed(page), size));
                const auto other = std::make_shared<std::string>(*one);
                return [=] {
                    std::int16_t result = 1;
                    require(nlsCompare(locale, one->c_str(), other->c_str(), mode, &result), NLS_OK,
                            "compare");
                };
            }};
}

Subject like(const char *name, const char *pattern, bool adversarial) {
    return {name, [pattern, adversarial](std::size_t size) -> Call {
                const Page &page = pageNamed("UTF-8");
                nlsLocale *const locale = basicLocale(page);
                const auto text =
                    std::make_shared<std::string>(adversarial ? std::string(size, 'a') : prose(page, size));
                return
                    [=] { require(nlsSqlLike(locale, pattern, text->c_str(), 1, '!', '_', '%'), 0, "LIKE"); };
            }};
}

Subject search(const char *name, std::string pattern, std::uint16_t caseFlag, bool adversarial) {
    return {name, [pattern = std::move(pattern), caseFlag, adversarial](std::size_t size) -> Call {
                const Page &page = pageNamed("UTF-8");
                nlsLocale *const locale = basicLocale(page);
                const auto text =
                    std::make_shared<std::string>(adversarial ? std::string(size, 'a') : prose(page, size));
                return [=] {
                    std::uint32_t position = 0;
                    std::uint32_t end = 0;
                    char *found = nullptr;
                    require(nlsSearchForw(locale, pattern.c_str(), text->c_str(), caseFlag, &position, &end,
                                          &found),
                            NLS_OK, "search");
                };
            }};
}

Subject replaceAll(const char *name) {
    return {name, [](std::size_t size) -> Call {
                const Page &page = pageNamed("UTF-8");
                nlsLocale *const locale = basicLocale(page);
                const auto text = std::make_shared<std::string>(prose(page, size));
                for (std::size_t at = 0; at + 100 < size; at += 100)
                    if (static_cast<unsigned char>((*text)[at]) < 0x80 &&
                        static_cast<unsigned char>((*text)[at + 4]) < 0x80)
                        text->replace(at, 3, "xqz");
                const auto room = std::make_shared<std::vector<char>>(size * 2 + 64);
                return [=] {
                    nlsStr out{room->data(), static_cast<std::uint32_t>(room->size()), 0};
                    std::uint32_t count = 0;
                    require(nlsReplaceAll(locale, "xqz", "abcd", text->c_str(), 1, &out, &count), NLS_OK,
                            "replace");
                };
            }};
}

std::vector<Subject> subjects() {
    return {
        conversion("convert 1252 to UTF-8", "1252", "UTF-8"),
        conversion("convert UTF-8 to 1252", "UTF-8", "1252"),
        compare("compare equal texts, weights", "1252", 1),
        compare("compare equal texts, UTF-8, case ignored", "UTF-8", 0),
        like("LIKE '%xqz%', no match", "%xqz%", false),
        like("LIKE '%a%a%a%a%b' on a's", "%a%a%a%a%b", true),
        search("search, no match", "xqzj", 1, false),
        search("search, case ignored, no match", "xqzj", 0, false),
        search("search for 31 a's and b in a's", std::string(31, 'a') + "b", 1, true),
        replaceAll("replace all, a match each 100 bytes"),
    };
}

double processorSeconds() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

// The best of some passes, each of as many calls as it takes: reading the clock costs as much as some of
// them.
double secondsOf(const Call &call) {
    call();
    double best = 1e9;
    int calls = 1;
    for (int pass = 0; pass < kPasses;) {
        const double start = processorSeconds();
        for (int i = 0; i < calls; ++i)
            call();
        const double taken = processorSeconds() - start;
        if (taken < kShortestPass) {
            calls *= 2;
            continue;
        }
        best = std::min(best, taken / calls);
        ++pass;
    }
    return best;
}

std::string sizeName(std::size_t size) {
    return size < (1u << 20) ? std::to_string(size >> 10) + " kB" : std::to_string(size >> 20) + " MB";
}

} // namespace

const std::vector<std::size_t> &growthSizes() {
    static const std::vector<std::size_t> sizes = [] {
        std::vector<std::size_t> made;
        for (std::size_t size = 1u << 10; size <= 64u << 20; size *= 4)
            made.push_back(size);
        return made;
    }();
    return sizes;
}

std::vector<Curve> measureGrowth() {
    std::vector<Curve> curves;
    for (const Subject &subject : subjects()) {
        Curve curve{subject.name, {}};
        for (const std::size_t size : growthSizes())
            curve.nanosecondsPerByte.push_back(secondsOf(subject.prepare(size)) * 1e9 /
                                               static_cast<double>(size));
        curves.push_back(std::move(curve));
    }
    return curves;
}

void printGrowth(const std::vector<Curve> &curves) {
    std::printf("| Nanoseconds per byte |");
    for (const std::size_t size : growthSizes())
        std::printf(" %s |", sizeName(size).c_str());
    std::printf(" Largest / smallest |\n|---|");
    for (std::size_t i = 0; i <= growthSizes().size(); ++i)
        std::printf("---|");
    std::printf("\n");
    for (const Curve &curve : curves) {
        std::printf("| %s |", curve.name.c_str());
        for (const double value : curve.nanosecondsPerByte)
            std::printf(" %.3f |", value);
        const auto [low, high] =
            std::minmax_element(curve.nanosecondsPerByte.begin(), curve.nanosecondsPerByte.end());
        std::printf(" %.1f |\n", *high / *low);
    }
}

} // namespace bench
