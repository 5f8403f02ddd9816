// What both fuzz targets stand on: input taken apart, a file in memory, blocks that end at the sanitizer's
// guard.
#pragma once

#include "velnls.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace fuzz {

// The input, read from its front. Reads zeros once it is used up.
class Input {
public:
    Input(const std::uint8_t *data, std::size_t size) : at_(data), left_(size) {}

    std::uint8_t byte() {
        if (left_ == 0)
            return 0;
        --left_;
        return *at_++;
    }
    std::uint16_t half() {
        const unsigned high = byte();
        return static_cast<std::uint16_t>(high << 8 | byte());
    }
    // At most `most` bytes of what is left.
    std::vector<std::uint8_t> bytes(std::size_t most);

private:
    const std::uint8_t *at_;
    std::size_t left_;
};

// The contents that the read callback serves; one at a time.
void serve(const std::uint8_t *data, std::size_t size);
std::uint32_t readServed(std::uint32_t file, std::uint32_t offset, unsigned char *buffer,
                         std::uint32_t length);

// A block of exactly this size on the heap, at an offset from its alignment: the sanitizer guards both ends.
class Block {
public:
    explicit Block(std::size_t size, std::size_t misalignment = 0)
        : memory_(new std::uint8_t[size + misalignment]), data_(memory_.get() + misalignment) {}
    std::uint8_t *data() {
        return data_;
    }

private:
    std::unique_ptr<std::uint8_t[]> memory_;
    std::uint8_t *data_;
};

// Ends the program when something that must hold does not.
void require(bool holds);

// Converts text in every way that there is, into destinations of exactly the given capacity.
void convertEveryWay(nlsConversion *conversion, const std::vector<std::uint8_t> &text, std::uint32_t capacity,
                     std::uint32_t intermediate);

} // namespace fuzz
