// What the fake libraries do, in the test program: an ICU and a sort exit that count, log and fail on demand.
#pragma once

#include "bytes.hpp"

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace fake {

using fixture::Bytes;

// One call of a fake's function.
struct Call {
    std::string name;
    std::string text;          // the name to open
    std::int32_t number = 0;   // strength, attribute, or length of the source
    std::int32_t capacity = 0; // of the target, or the attribute's value
    bool aligned = true;       // units at even addresses
};

// The fake ICU. Its page "X" has one byte per character: 00-7F as they are, 80-FF as U+4E80 to U+4EFF. "WIDE"
// writes four bytes for each unit that is not ASCII, "BROAD" for each "w". "utf8" is strict UTF-8.
struct Icu {
    std::map<std::string, std::int32_t> openError; // by name; of converters and collators
    // Error of the n-th conversion from now on (0 first), and what the next order or key call answers.
    std::map<int, std::int32_t> conversionError;
    std::function<std::int32_t(std::u16string, std::u16string, std::int32_t strength)> order;
    std::function<std::int32_t(std::u16string, std::uint8_t *key, std::int32_t capacity)> key;
    bool nullCollator = false;
    // The locale that a collator says it is for, by the name it was opened with, where that is not the same.
    std::map<std::string, const char *> validLocale;
    std::int32_t validLocaleError = 0;

    std::vector<Call> calls;
    int openConverters = 0;
    int openCollators = 0;
    int conversions = 0;
    // Of the collator, in the last order or key.
    std::int32_t usedStrength = -1;
    bool usedCaseLevel = false;

    [[nodiscard]] std::vector<std::string> names() const;
    [[nodiscard]] int count(const std::string &name) const;
    [[nodiscard]] const Call &last(const std::string &name) const;
};
extern Icu icu;

struct ExitCall {
    std::string name;
    std::string a;
    std::string b;
    std::uint32_t mode = 0;
    std::uint32_t size = 0;
    std::uintptr_t user = 0;
    Bytes insensitive;
    Bytes sensitive;
};

struct Exit {
    std::int32_t ready = 0;
    std::int32_t result = 0;
    std::uintptr_t nextUser = 0x1001; // each init hands out the next one
    std::function<void()> init;       // what init does besides
    std::function<void(unsigned char *key, const char *source, std::uint32_t size)> copy;
    std::vector<ExitCall> calls;

    [[nodiscard]] int count(const std::string &name) const;
    [[nodiscard]] const ExitCall &last() const {
        return calls.back();
    }
};
extern Exit sortExit;

} // namespace fake
