// Test parameters that are code page names, and how thorough a build can afford to be.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

namespace harness {

// "CP950-HKSCS" becomes "CP950_HKSCS", as test names need it.
inline std::string testName(std::string name) {
    for (char &c : name)
        if (c == '-')
            c = '_';
    return name;
}

inline std::string pageTestName(const ::testing::TestParamInfo<std::string> &info) {
    return testName(info.param);
}

// Sanitizers slow the calls down tenfold: such builds look at every n-th single call, others at each.
#ifdef VELNLS_TESTS_SAMPLED
inline constexpr std::uint32_t kStride = 13;
#else
inline constexpr std::uint32_t kStride = 1;
#endif

// The encodings in which the data file lists every byte page, both ways.
inline constexpr const char *kListedForms[] = {"UTF-8", "UCS2", "UTF-16", "UTF-16BE"};

} // namespace harness
