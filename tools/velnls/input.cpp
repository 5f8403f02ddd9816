#include "input.hpp"

#include "platform.hpp"

#include <cerrno>
#include <system_error>

namespace velnls::tool {

namespace {

constexpr char kStandardName[] = "(standard input)";

} // namespace

Input::Input(const std::string &path) : name_(path) {
    if (path == "-") {
        name_ = kStandardName;
        descriptor_ = platform::kStandardInput;
        return;
    }
    descriptor_ = platform::openToRead(path);
    if (descriptor_ < 0) {
        throw std::system_error(errno, std::generic_category(), name_);
    }
}

Input::~Input() {
    if (descriptor_ != platform::kStandardInput) {
        platform::closeFile(descriptor_);
    }
}

std::size_t Input::read(unsigned char *buffer, std::size_t size) {
    const long long count = platform::readFile(descriptor_, buffer, size);
    if (count < 0) {
        throw std::system_error(errno, std::generic_category(), name_);
    }
    return static_cast<std::size_t>(count);
}

std::optional<std::uint64_t> Input::sizeOf(const std::string &path) {
    platform::FileFacts facts;
    const bool standard = path == "-";
    if (standard ? !platform::factsOf(platform::kStandardInput, facts)
                 : !platform::factsOf(path, facts) || !platform::isReadable(path)) {
        throw std::system_error(errno, std::generic_category(), standard ? kStandardName : path);
    }
    return facts.regular ? std::optional(facts.size) : std::nullopt;
}

bool Input::isFileOf(int descriptor) const {
    platform::FileFacts mine;
    platform::FileFacts other;
    return platform::factsOf(descriptor_, mine) && platform::factsOf(descriptor, other) && mine.regular &&
           mine.size != 0 && mine.identity == other.identity;
}

} // namespace velnls::tool
