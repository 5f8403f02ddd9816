#include "convert/kernels/instruction_sets.hpp"

#if defined(VELNLS_PLAIN_LOOPS)
#elif defined(__x86_64__) && !defined(__clang__) && __has_include(<sys/platform/x86.h>)
#include <sys/platform/x86.h> // what the dynamic loader has found out: asking the processor again traps under a hypervisor
#define VELNLS_LOADER_KNOWS 1
#elif defined(__x86_64__)
#include <cpuid.h>
#endif

#if defined(VELNLS_CPU_SWITCHES)
#include <cstdlib>
#include <cstring>
#endif

namespace velnls {

namespace {

#if defined(VELNLS_LOADER_KNOWS)

bool hasWideVectors() {
    return CPU_FEATURE_ACTIVE(AVX512F) && CPU_FEATURE_ACTIVE(AVX512BW) && CPU_FEATURE_ACTIVE(AVX512VL) &&
           CPU_FEATURE_ACTIVE(AVX512_VBMI) && CPU_FEATURE_ACTIVE(AVX512_VBMI2) && CPU_FEATURE_ACTIVE(BMI2);
}

#elif defined(__x86_64__) && !defined(VELNLS_PLAIN_LOOPS)

bool hasWideVectors() {
    unsigned a = 0;
    unsigned b = 0;
    unsigned c = 0;
    unsigned d = 0;
    constexpr unsigned kOsSavesRegisters = 1u << 27;
    if (__get_cpuid(1, &a, &b, &c, &d) == 0 || (c & kOsSavesRegisters) == 0)
        return false;
    unsigned low = 0;
    unsigned high = 0;
    asm("xgetbv" : "=a"(low), "=d"(high) : "c"(0));
    constexpr unsigned kAllVectorState = 0xE6;
    if ((low & kAllVectorState) != kAllVectorState || __get_cpuid_count(7, 0, &a, &b, &c, &d) == 0)
        return false;
    constexpr unsigned kOfB = 1u << 8 | 1u << 16 | 1u << 30 | 1u << 31; // BMI2, AVX512F, BW, VL
    constexpr unsigned kOfC = 1u << 1 | 1u << 6;                        // VBMI, VBMI2
    return (b & kOfB) == kOfB && (c & kOfC) == kOfC;
}

#else

bool hasWideVectors() {
    return false;
}

#endif

} // namespace

std::uint32_t instructionSets() {
#if defined(VELNLS_CPU_SWITCHES)
    // Test builds only: runs the baseline on any machine.
    const char *const off = std::getenv("VELNLS_CPU_OFF");
    if (off != nullptr && std::strstr(off, "avx512") != nullptr)
        return 0;
#endif
    return hasWideVectors() ? kWideVectors : 0;
}

} // namespace velnls
