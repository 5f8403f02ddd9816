// iconv of the C library as a peer.
#include "peer.hpp"

#include <gnu/libc-version.h>
#include <iconv.h>

namespace peers {
namespace {

// A conversion descriptor that is closed with its owner.
class Descriptor {
public:
    Descriptor(const std::string &to, const std::string &from) : cd_(iconv_open(to.c_str(), from.c_str())) {}
    ~Descriptor() {
        if (isOpen())
            iconv_close(cd_);
    }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;

    [[nodiscard]] bool isOpen() const {
        return cd_ != reinterpret_cast<iconv_t>(-1);
    }

    // Empty when the input is not one complete, mapped piece.
    std::vector<std::uint8_t> convert(const std::uint8_t *data, std::size_t length) {
        char input[8];
        for (std::size_t i = 0; i < length; ++i)
            input[i] = static_cast<char>(data[i]);
        char output[64];
        char *in = input;
        char *out = output;
        std::size_t left = length;
        std::size_t room = sizeof output;
        iconv(cd_, nullptr, nullptr, nullptr, nullptr);
        const std::size_t failed = static_cast<std::size_t>(-1);
        if (iconv(cd_, &in, &left, &out, &room) == failed || left != 0)
            return {};
        // Some converters hold a character back until they know what follows.
        if (iconv(cd_, nullptr, nullptr, &out, &room) == failed)
            return {};
        return std::vector<std::uint8_t>(output, out);
    }

private:
    iconv_t cd_;
};

class IconvPeer : public Peer {
public:
    explicit IconvPeer(const std::string &name) : to_("UTF-32LE", name), from_(name, "UTF-32LE") {}

    [[nodiscard]] bool isOpen() const {
        return to_.isOpen() && from_.isOpen();
    }

    std::vector<std::uint32_t> toUnicode(const std::vector<std::uint8_t> &code) override {
        const std::vector<std::uint8_t> bytes = to_.convert(code.data(), code.size());
        std::vector<std::uint32_t> values;
        for (std::size_t i = 0; i + 4 <= bytes.size(); i += 4)
            values.push_back(bytes[i] | static_cast<std::uint32_t>(bytes[i + 1]) << 8 |
                             static_cast<std::uint32_t>(bytes[i + 2]) << 16);
        return values;
    }

    std::vector<std::uint8_t> fromUnicode(std::uint32_t codePoint) override {
        const std::uint8_t bytes[4] = {static_cast<std::uint8_t>(codePoint),
                                       static_cast<std::uint8_t>(codePoint >> 8),
                                       static_cast<std::uint8_t>(codePoint >> 16), 0};
        return from_.convert(bytes, 4);
    }

private:
    Descriptor to_;
    Descriptor from_;
};

} // namespace

std::unique_ptr<Peer> openIconv(const std::string &name) {
    auto peer = std::make_unique<IconvPeer>(name);
    if (!peer->isOpen())
        return nullptr;
    return peer;
}

std::string iconvVersion() {
    return std::string("glibc ") + gnu_get_libc_version();
}

} // namespace peers
