// A C++20 user of the installed library: converts there and back, and prints the result.
#include <velnls.h>

#include <fstream>
#include <iostream>
#include <string>
#include <vector>

namespace {

std::ifstream dataFile;

std::uint32_t readData(std::uint32_t, std::uint32_t offset, unsigned char *buffer, std::uint32_t length) {
    dataFile.clear();
    dataFile.seekg(offset);
    dataFile.read(reinterpret_cast<char *>(buffer), length);
    return static_cast<std::uint32_t>(dataFile.gcount());
}

// Converts with a destination as large as the interface says is always enough.
bool convert(nlsConversion *conversion, std::string text, std::string &result) {
    result.resize(4 * text.size() + 4);
    nlsStr source{text.data(), static_cast<std::uint32_t>(text.size() + 1),
                  static_cast<std::uint32_t>(text.size())};
    nlsStr target{result.data(), static_cast<std::uint32_t>(result.size()), 0};
    const bool converted = nlsConvertNLS(conversion, &source, nullptr, &target) == NLS_OK;
    result.resize(target.length);
    return converted;
}

} // namespace

int main(int argc, char **argv) {
    if (argc != 2)
        return 2;
    dataFile.open(argv[1], std::ios::binary);
    std::vector<std::byte> memory(1 << 18);
    nlsHandle *handle = nullptr;
    nlsLocale *japanese = nullptr;
    nlsLocale *unicode = nullptr;
    nlsConversion *there = nullptr;
    nlsConversion *back = nullptr;
    if (nlsInit(0, memory.data(), static_cast<std::int32_t>(memory.size()), readData, &handle) != NLS_OK ||
        nlsCreateLocale(handle, "SHIFT-JIS", nullptr, nullptr, &japanese) != NLS_OK ||
        nlsCreateLocale(handle, "UTF-8", nullptr, nullptr, &unicode) != NLS_OK ||
        nlsCreateConversion(handle, japanese, unicode, &there) != NLS_OK ||
        nlsCreateConversion(handle, unicode, japanese, &back) != NLS_OK)
        return 3;
    const std::string text = "\x93\xFA\x96\x7B";
    std::string result;
    std::string again;
    if (!convert(there, text, result) || !convert(back, result, again) || again != text)
        return 4;
    std::cout << result << '\n';
    return nlsClose(handle) == NLS_OK ? 0 : 5;
}
