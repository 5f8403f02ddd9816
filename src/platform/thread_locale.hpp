// What the system says about the calling thread's locale.
#pragma once

#include <cstddef>

namespace velnls::platform {

// Each writes a text to `text`, which has room for `size` bytes, its NUL included, and returns how many bytes
// it wrote; 0 when the system has no answer or it does not fit.

// The ANSI code page as decimal digits, "0" for languages that have none.
std::size_t threadAnsiCodePage(char *text, std::size_t size);

// The English name of the country, such as "Germany".
std::size_t threadCountryName(char *text, std::size_t size);

} // namespace velnls::platform
