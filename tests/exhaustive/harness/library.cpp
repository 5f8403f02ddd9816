// See library.hpp.
#include "library.hpp"

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace harness {
namespace {

const std::vector<unsigned char> &dataFile() {
    static const std::vector<unsigned char> bytes = [] {
        std::ifstream file(VELNLS_DATA_FILE, std::ios::binary);
        return std::vector<unsigned char>(std::istreambuf_iterator<char>(file), {});
    }();
    return bytes;
}

std::uint32_t readDataFile(std::uint32_t, std::uint32_t offset, unsigned char *buffer, std::uint32_t length) {
    const std::vector<unsigned char> &bytes = dataFile();
    if (offset >= bytes.size())
        return 0;
    const auto count = static_cast<std::uint32_t>(std::min<std::size_t>(length, bytes.size() - offset));
    std::memcpy(buffer, bytes.data() + offset, count);
    return count;
}

[[noreturn]] void fail(const std::string &what, nlsStatus status) {
    throw std::runtime_error(what + ": status " + std::to_string(static_cast<std::int32_t>(status)));
}

} // namespace

Library::Library(std::size_t memory) : memory_(memory / 8) {
    const nlsStatus status =
        nlsInit(0, memory_.data(), static_cast<std::int32_t>(memory_.size() * 8), readDataFile, &handle_);
    if (status != NLS_OK)
        fail("opening " VELNLS_DATA_FILE, status);
}

Library::~Library() {
    nlsClose(handle_);
}

nlsLocale *Library::locale(const std::string &name) {
    nlsLocale *locale = nullptr;
    const nlsStatus status = nlsCreateLocale(handle_, name.c_str(), NLS_NO_COLLATION, nullptr, &locale);
    if (status != NLS_OK)
        fail("locale " + name, status);
    return locale;
}

nlsStatus Library::tryConversion(const std::string &source, const std::string &target,
                                 nlsConversion **conversion) {
    return nlsCreateConversion(handle_, locale(source), locale(target), conversion);
}

nlsConversion *Library::conversion(const std::string &source, const std::string &target) {
    nlsConversion *conversion = nullptr;
    const nlsStatus status = tryConversion(source, target, &conversion);
    if (status != NLS_OK)
        fail("conversion from " + source + " to " + target, status);
    return conversion;
}

Library &library() {
    static Library shared;
    return shared;
}

} // namespace harness
