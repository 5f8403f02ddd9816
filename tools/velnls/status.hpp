// Turns the library's status numbers into words: the one place where this program does so.
#pragma once

#include <stdexcept>
#include <string>

#include "velnls.h"

namespace velnls::tool {

// What a status means, without a closing full stop. An unknown number gets words too.
const char *statusWords(nlsStatus status);

// A call of the library failed; what() names the action, the words and the number.
class StatusError : public std::runtime_error {
public:
    StatusError(const std::string &action, nlsStatus status);
    nlsStatus status() const {
        return status_;
    }

private:
    nlsStatus status_;
};

} // namespace velnls::tool
