// See compare.hpp.
#include "compare.hpp"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace harness {
namespace {

constexpr std::size_t kBehind = 64; // bytes behind the destination that must stay as they are

nlsStr string(Bytes &bytes, std::uint32_t size) {
    return {reinterpret_cast<char *>(bytes.data()), size, 0};
}

} // namespace

std::string hex(const std::uint8_t *data, std::size_t length) {
    constexpr std::size_t kMost = 48;
    std::string text;
    char digits[4];
    for (std::size_t i = 0; i < std::min(length, kMost); ++i) {
        std::snprintf(digits, sizeof digits, "%02X ", data[i]);
        text += digits;
    }
    return length > kMost ? text + "..." : text;
}

std::string hex(const Bytes &bytes) {
    return hex(bytes.data(), bytes.size());
}

Pair::Pair(const std::string &source, const std::string &target)
    : name_(source + " to " + target), expected_(source, target),
      actual_(library().conversion(source, target)) {}

void Pair::prepare(const Bytes &source, std::uint32_t capacity, std::uint32_t intermediate) {
    source_ = source;
    source_.resize(source.size() + 1, 0);
    source_.resize(source.size() + 8, 0x9F); // nobody may look at these
    expectedOut_.assign(capacity + kBehind, kFill);
    actualOut_.assign(capacity + kBehind, kFill);
    if (expected_.isChain()) {
        expectedMiddle_.assign(intermediate + kBehind, 0);
        actualMiddle_.assign(intermediate + kBehind, 0);
    }
}

::testing::AssertionResult Pair::verdict(const char *call, const Bytes &source, std::uint32_t capacity,
                                         const model::Outcome &expected, nlsStatus status,
                                         std::uint32_t written, std::size_t compared) const {
    // What the caller may look at, then what lies outside of the buffer.
    std::size_t at = 0;
    while (at < compared && expectedOut_[at] == actualOut_[at])
        ++at;
    const bool same = at >= compared;
    if (same)
        for (at = capacity; at < actualOut_.size() && actualOut_[at] == kFill;)
            ++at;
    if (status == expected.status && written == expected.written && same && at == actualOut_.size() &&
        std::equal(source.begin(), source.end(), source_.begin()))
        return ::testing::AssertionSuccess();
    at = std::min(at, actualOut_.size() - 1);
    return ::testing::AssertionFailure()
           << name_ << ", " << call << ", source of " << source.size() << " bytes [" << hex(source)
           << "], capacity " << capacity << ": expected status " << static_cast<std::int32_t>(expected.status)
           << ", " << expected.written << " bytes, got status " << static_cast<std::int32_t>(status) << ", "
           << written << " bytes; first difference at " << at << ": expected ["
           << hex(expectedOut_.data() + at, expectedOut_.size() - at) << "], got ["
           << hex(actualOut_.data() + at, actualOut_.size() - at) << "]";
}

::testing::AssertionResult Pair::agree(const Bytes &source, std::uint32_t capacity,
                                       std::uint32_t intermediate) {
    if (expected_.isChain())
        return agreeTerminated(source, capacity, intermediate);
    prepare(source, capacity, 0);
    const auto length = static_cast<std::uint32_t>(source.size());
    const model::Outcome expected =
        expected_.run({source_.data(), length}, {expectedOut_.data(), capacity}, {nullptr, 0});
    const BareResult actual = convertBare(actual_, source_.data(), length, actualOut_.data(), capacity);
    return verdict("bare call", source, capacity, expected, actual.status, actual.written,
                   comparable(expected, 0));
}

::testing::AssertionResult Pair::agreeTerminated(const Bytes &source, std::uint32_t capacity,
                                                 std::uint32_t intermediate) {
    prepare(source, capacity, intermediate);
    const auto length = static_cast<std::uint32_t>(source.size());
    const model::Outcome expected =
        expected_.convert({source_.data(), length}, {expectedOut_.data(), capacity},
                          {expectedMiddle_.empty() ? nullptr : expectedMiddle_.data(), intermediate});
    nlsStr from = {reinterpret_cast<char *>(source_.data()), length + 8, length};
    nlsStr to = string(actualOut_, capacity);
    nlsStr middle = string(actualMiddle_, intermediate);
    const nlsStatus status = nlsConvertNLS(actual_, &from, expected_.isChain() ? &middle : nullptr, &to);
    return verdict("terminating call", source, capacity, expected, status, to.length,
                   comparable(expected, expected_.terminatorWidth()));
}

::testing::AssertionResult Pair::agreeChecked(const Bytes &source, std::uint32_t capacity) {
    prepare(source, capacity, 0);
    const auto length = static_cast<std::uint32_t>(source.size());
    const model::Outcome expected =
        expected_.check({source_.data(), length}, {expectedOut_.data(), capacity});
    nlsStr from = {reinterpret_cast<char *>(source_.data()), length + 8, length};
    nlsStr to = string(actualOut_, capacity);
    const nlsStatus status = nlsConvertNLSCheck(actual_, &from, &to);
    return verdict("check call", source, capacity, expected, status, to.length, comparable(expected, 0));
}

::testing::AssertionResult Pair::agreeWithTerminator(const Bytes &source, std::uint32_t capacity) {
    prepare(source, capacity, 0);
    const auto length = static_cast<std::uint32_t>(source.size());
    const model::Outcome expected =
        expected_.convertWithTerminator({source_.data(), length}, {expectedOut_.data(), capacity});
    nlsStr from = {reinterpret_cast<char *>(source_.data()), length + 8, length};
    std::uint32_t written = 0;
    const nlsStatus status = nlsConvertToUCS2(actual_, &from, capacity, actualOut_.data(), &written);
    return verdict("call with terminator", source, capacity, expected, status, written,
                   comparable(expected, 0));
}

::testing::AssertionResult Pair::agreeCharacter(std::uint32_t character) {
    std::uint32_t expected = 0xDEADBEEF;
    std::uint32_t actual = 0xDEADBEEF;
    const std::uint32_t expectedStatus = expected_.convertCharacter(character, expected);
    const nlsStatus status = nlsConvertLChar(actual_, character, &actual);
    if (status == expectedStatus && (actual == expected || status == NLS_E_NULLARG))
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure()
           << name_ << ", single character " << std::hex << character << ": expected status " << std::dec
           << static_cast<std::int32_t>(expectedStatus) << ", result " << std::hex << expected
           << ", got status " << std::dec << static_cast<std::int32_t>(status) << ", result " << std::hex
           << actual;
}

// The output with its terminator; after a chain whose first step failed, nothing was written at all.
std::size_t Pair::comparable(const model::Outcome &expected, std::uint32_t behind) const {
    const std::size_t capacity = expectedOut_.size() - kBehind;
    if (expected_.isChain() && expected.status != NLS_OK && expected.status != NLS_R_SUBSTITUTED)
        return 0;
    return expected.written + behind > capacity ? std::min<std::size_t>(expected.written, capacity)
                                                : expected.written + behind;
}

std::uint32_t Pair::need(const Bytes &source) {
    const auto room = static_cast<std::uint32_t>(source.size() * 8 + 64);
    prepare(source, room, room);
    const model::Outcome outcome = expected_.run(
        {source_.data(), static_cast<std::uint32_t>(source.size())}, {expectedOut_.data(), room},
        {expectedMiddle_.empty() ? nullptr : expectedMiddle_.data(), room});
    return outcome.written;
}

} // namespace harness
