// `nlsgen check`: looks for the first fault of any data file, however broken. Reads nothing outside the file.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace velnls::nlsgen {

struct Fault {
    std::size_t offset; // of the faulty field in the file
    std::string entry;  // the directory entry it belongs to; empty for the header
    std::string expected;

    [[nodiscard]] std::string text() const;
};

std::optional<Fault> firstFault(std::span<const std::uint8_t> file);

} // namespace velnls::nlsgen
