// Two texts of any bytes under any locale: compares turn round and agree with bounded ones, keys end with a
// NUL within their buffer.
#include "fuzz_text.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    fuzz::Input input(data, size);
    nlsLocale *const locale = fuzz::localeOf(input.byte());
    const unsigned choices = input.byte();
    const std::uint16_t keySize = input.byte();
    const std::size_t split = input.byte();
    const std::vector<std::uint8_t> a = input.bytes(split);
    const std::vector<std::uint8_t> b = input.bytes(2000);
    const auto mode = static_cast<std::uint16_t>((choices & 0xE0) != 0 ? choices & 1 : choices & 7);
    fuzz::orderEveryWay(locale, a, b, keySize, mode, (choices & 8) != 0);
    return 0;
}
