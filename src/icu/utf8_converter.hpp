// An ICU converter for UTF-8, open for a scope.
#pragma once

#include "icu/convert.hpp"

namespace velnls::icu {

class Utf8Converter {
public:
    Utf8Converter() {
        if (openConverter("utf8", converter_) != NLS_OK)
            converter_ = nullptr;
    }
    ~Utf8Converter() {
        if (converter_ != nullptr)
            closeConverter(converter_);
    }
    Utf8Converter(const Utf8Converter &) = delete;
    Utf8Converter &operator=(const Utf8Converter &) = delete;

    // Null when ICU is not there or could not open it.
    [[nodiscard]] Converter *get() const {
        return converter_;
    }

private:
    Converter *converter_ = nullptr;
};

} // namespace velnls::icu
