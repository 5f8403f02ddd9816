// Where a list text goes: into a caller's counted string, or into a count of its length. One walk serves
// both a text property and its numeric twin, so that they cannot disagree.
#pragma once

#include "velnls.h"

#include <cstdint>
#include <cstring>
#include <string_view>

namespace velnls {

// Appends to a caller's counted string; the first failure stays and stops everything after it.
class StringSink {
public:
    explicit StringSink(nlsStr &text) : text_(text) {
        text.length = 0;
        if (text.size != 0)
            text.buffer[0] = '\0';
    }
    bool add(std::string_view part) {
        status_ = nlsAppendString(part.data(), static_cast<std::int32_t>(part.size()), &text_);
        return status_ == NLS_OK;
    }
    [[nodiscard]] nlsStatus status() const {
        return status_;
    }

private:
    nlsStr &text_;
    nlsStatus status_ = NLS_OK;
};

// Adds up lengths.
class LengthSink {
public:
    bool add(std::string_view part) {
        length_ += static_cast<std::uint32_t>(part.size());
        return true;
    }
    [[nodiscard]] std::uint32_t length() const {
        return length_;
    }

private:
    std::uint32_t length_ = 0;
};

// Writes "," before every item but the first.
template <typename Sink>
class ListWriter {
public:
    explicit ListWriter(Sink &sink) : sink_(sink) {}
    template <typename... Parts>
    bool item(Parts... parts) {
        const bool separated = first_ || sink_.add(",");
        first_ = false;
        return separated && (sink_.add(parts) && ...);
    }

private:
    Sink &sink_;
    bool first_ = true;
};

} // namespace velnls
