// velnls_bench_start WHO FILE: converts one string as the first thing that a process does, and prints how
// many nanoseconds passed from the begin of main() until it stood there. Nothing but libc is linked: each
// library is loaded as a program's plug-in would be.
//
//   velnls_bench_start velnls DATA-FILE LIBRARY
//   velnls_bench_start icu LIBRARY
//   velnls_bench_start iconv
#include "velnls.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include <dlfcn.h>
#include <fcntl.h>
#include <iconv.h>
#include <unistd.h>

namespace {

constexpr char kText[] = "Stra\xDF"
                         "e 17, M\xFCnchen";
constexpr char kConverted[] = "Stra\xC3\x9F"
                              "e 17, M\xC3\xBCnchen";

std::uint64_t now() {
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return static_cast<std::uint64_t>(time.tv_sec) * 1000000000 + static_cast<std::uint64_t>(time.tv_nsec);
}

[[noreturn]] void fail(const char *what) {
    std::fprintf(stderr, "velnls_bench_start: %s\n", what);
    std::exit(2);
}

template <typename Function>
Function *find(void *library, const char *name) {
    void *const symbol = dlsym(library, name);
    if (symbol == nullptr)
        fail(name);
    Function *function = nullptr;
    std::memcpy(&function, &symbol, sizeof function);
    return function;
}

void *load(const char *path) {
    void *const library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr)
        fail(dlerror());
    return library;
}

int dataFile = -1;

std::uint32_t readData(std::uint32_t, std::uint32_t offset, unsigned char *buffer, std::uint32_t length) {
    const ssize_t count = pread(dataFile, buffer, length, offset);
    return count < 0 ? 0 : static_cast<std::uint32_t>(count);
}

char out[64];

void withVelnls(const char *file, const char *path) {
    static unsigned char memory[64 * 1024]; // as much as these locales need: it is cleared at each start
    void *const library = load(path);
    dataFile = open(file, O_RDONLY | O_CLOEXEC);
    nlsHandle *handle = nullptr;
    nlsLocale *source = nullptr;
    nlsLocale *target = nullptr;
    nlsConversion *conversion = nullptr;
    const auto createLocale = find<decltype(nlsCreateLocale)>(library, "nlsCreateLocale");
    const nlsStr text{const_cast<char *>(kText), sizeof kText, sizeof kText - 1};
    nlsStr result{out, sizeof out, 0};
    if (find<decltype(nlsInit)>(library, "nlsInit")(0, memory, sizeof memory, readData, &handle) != NLS_OK ||
        createLocale(handle, "1252", NLS_NO_COLLATION, nullptr, &source) != NLS_OK ||
        createLocale(handle, "UTF-8", NLS_NO_COLLATION, nullptr, &target) != NLS_OK ||
        find<decltype(nlsCreateConversion)>(library, "nlsCreateConversion")(handle, source, target,
                                                                            &conversion) != NLS_OK ||
        find<decltype(nlsConvertNLS)>(library, "nlsConvertNLS")(conversion, &text, nullptr, &result) !=
            NLS_OK)
        fail("velnls does not convert");
}

// The two functions of ICU, declared here since nothing of ICU is linked.
using IcuConvert = std::int32_t(const char *to, const char *from, char *target, std::int32_t room,
                                const char *source, std::int32_t length, int *error);

void withIcu(const char *path) {
    int error = 0;
    find<IcuConvert>(load(path), "ucnv_convert_72")("UTF-8", "windows-1252", out, sizeof out, kText, -1,
                                                    &error);
    if (error > 0)
        fail("ICU does not convert");
}

void withIconv() {
    const iconv_t descriptor = iconv_open("UTF-8", "CP1252");
    char *from = const_cast<char *>(kText);
    char *to = out;
    std::size_t left = sizeof kText - 1;
    std::size_t room = sizeof out - 1;
    if (descriptor == iconv_t(-1) || iconv(descriptor, &from, &left, &to, &room) != 0)
        fail("iconv does not convert");
}

} // namespace

int main(int argc, char **argv) {
    const std::uint64_t start = now();
    const char *const who = argc > 1 ? argv[1] : "";
    if (std::strcmp(who, "velnls") == 0 && argc == 4)
        withVelnls(argv[2], argv[3]);
    else if (std::strcmp(who, "icu") == 0 && argc == 3)
        withIcu(argv[2]);
    else if (std::strcmp(who, "iconv") == 0)
        withIconv();
    else
        fail("expected velnls FILE LIBRARY, icu LIBRARY or iconv");
    const std::uint64_t end = now();
    if (std::strcmp(out, kConverted) != 0)
        fail("another text than expected came out");
    std::printf("%llu\n", static_cast<unsigned long long>(end - start));
    return 0;
}
