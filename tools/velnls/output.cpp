#include "output.hpp"

#include "platform.hpp"

#include <cerrno>
#include <stdexcept>
#include <system_error>

namespace velnls::tool {

namespace {

std::system_error lastError(const std::string &name) {
    return std::system_error(errno, std::generic_category(), name);
}

} // namespace

Output::Output(const std::string &path) : name_(path) {
    if (path.empty() || path == "-") {
        name_ = "standard output";
        descriptor_ = platform::kStandardOutput;
        return;
    }
    platform::FileFacts facts;
    const bool exists = platform::factsOf(path, facts);
    if (exists && !facts.regular) {
        descriptor_ = platform::openToWrite(path);
    } else {
        path_ = platform::followLinks(path);
        // A file that must not be written must not be replaced either.
        if (exists && !platform::isWritable(path_)) {
            throw lastError(name_);
        }
        temporary_ = path_;
        descriptor_ = platform::openTemporary(temporary_);
        if (descriptor_ < 0) {
            temporary_.clear();
        } else {
            platform::removeOnInterrupt(temporary_);
            platform::setRights(descriptor_, exists ? &facts : nullptr);
        }
    }
    if (descriptor_ < 0) {
        throw lastError(name_);
    }
    owned_ = true;
}

Output::~Output() {
    if (owned_) {
        platform::closeFile(descriptor_);
    }
    if (!temporary_.empty()) {
        platform::removeFile(temporary_);
        platform::removeOnInterrupt({});
    }
}

void Output::write(const char *text, std::size_t size) {
    while (size != 0) {
        const long long count = platform::writeFile(descriptor_, text, size);
        if (count < 0) {
            if (errno == EPIPE) {
                throw BrokenPipe();
            }
            throw lastError(name_);
        }
        text += count;
        size -= static_cast<std::size_t>(count);
    }
}

void Output::refuse(const Input &input) const {
    if (input.isFileOf(descriptor_)) {
        throw std::runtime_error(input.name() + ": is the output file too");
    }
}

void Output::commit() {
    if (!owned_) {
        return;
    }
    owned_ = false;
    // Some file systems tell of a full disk only here.
    if (!platform::closeFile(descriptor_)) {
        throw lastError(name_);
    }
    if (temporary_.empty()) {
        return;
    }
    if (!platform::renameOver(temporary_, path_)) {
        throw lastError(name_);
    }
    temporary_.clear();
    platform::removeOnInterrupt({});
}

} // namespace velnls::tool
