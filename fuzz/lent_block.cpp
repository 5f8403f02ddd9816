#include "lent_block.hpp"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace fuzz {

namespace {

const std::uint8_t *served = nullptr;
std::size_t servedSize = 0;

char *text(std::uint8_t *bytes) {
    return reinterpret_cast<char *>(bytes);
}

} // namespace

std::vector<std::uint8_t> Input::bytes(std::size_t most) {
    const std::size_t count = std::min(most, left_);
    std::vector<std::uint8_t> taken(at_, at_ + count);
    at_ += count;
    left_ -= count;
    return taken;
}

void serve(const std::uint8_t *data, std::size_t size) {
    served = data;
    servedSize = size;
}

std::uint32_t readServed(std::uint32_t, std::uint32_t offset, unsigned char *buffer, std::uint32_t length) {
    if (offset >= servedSize)
        return 0;
    const std::size_t count = std::min<std::size_t>(length, servedSize - offset);
    std::memcpy(buffer, served + offset, count);
    return static_cast<std::uint32_t>(count);
}

void require(bool holds) {
    if (!holds)
        std::abort();
}

void convertEveryWay(nlsConversion *conversion, const std::vector<std::uint8_t> &source,
                     std::uint32_t capacity, std::uint32_t intermediate) {
    // The source with its terminator and nothing behind.
    const std::uint32_t length = static_cast<std::uint32_t>(source.size());
    Block sourceBlock(source.size() + 1);
    std::copy(source.begin(), source.end(), sourceBlock.data());
    sourceBlock.data()[length] = 0;
    Block between(std::max<std::size_t>(intermediate, 1));
    const nlsStr from = {text(sourceBlock.data()), length + 1, length};

    for (int way = 0; way < 5; ++way) {
        Block out(std::max<std::size_t>(capacity, 1));
        out.data()[0] = 0xEE;
        nlsStr to = {text(out.data()), capacity, 0};
        nlsStr middle = {text(between.data()), intermediate, 0};
        std::uint32_t written = 0;
        std::uint32_t value = 0;
        switch (way) {
        case 0:
            nlsConvertNLS(conversion, &from, &middle, &to);
            written = to.length;
            break;
        case 1:
            nlsConvertNLSCheck(conversion, &from, &to);
            written = to.length;
            break;
        case 2:
            nlsConvertFromUCS2(conversion, sourceBlock.data(), length, &to);
            written = to.length;
            break;
        case 3:
            nlsConvertToUCS2(conversion, &from, capacity, out.data(), &written);
            break;
        default:
            for (std::uint32_t i = 0; i < std::min<std::uint32_t>(length, 4); ++i)
                value = value << 8 | source[i];
            nlsConvertLChar(conversion, value, &written);
            written = 0;
        }
        // A chain that fails in its first step leaves that step's count.
        require(written <= (way == 0 ? std::max(capacity, intermediate) : capacity));
        require(capacity != 0 || out.data()[0] == 0xEE);
    }
    require(length == 0 || std::equal(source.begin(), source.end(), sourceBlock.data()));
}

} // namespace fuzz
