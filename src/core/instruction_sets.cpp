#include "core/instruction_sets.hpp"

#if defined(VELNLS_PLAIN_LOOPS)
#elif defined(__x86_64__) && !defined(__clang__) && __has_include(<sys/platform/x86.h>)
#include <sys/platform/x86.h> // what the dynamic loader has found out: asking the processor again traps under a hypervisor
#define VELNLS_LOADER_KNOWS 1
#elif defined(__x86_64__)
#include <atomic>
#include <cpuid.h>
#endif

#if defined(VELNLS_CPU_SWITCHES)
#include <cstdlib>
#include <cstring>
#endif

namespace velnls {

namespace {

[[maybe_unused]] std::uint32_t setsOf(bool wideVectors, bool byteShuffles) {
    return (wideVectors && byteShuffles ? kWideVectors : 0) | (byteShuffles ? kByteShuffles : 0);
}

#if defined(VELNLS_LOADER_KNOWS)

std::uint32_t processorSets() {
    const bool wideVectors = CPU_FEATURE_ACTIVE(AVX512F) && CPU_FEATURE_ACTIVE(AVX512BW) &&
                             CPU_FEATURE_ACTIVE(AVX512VL) && CPU_FEATURE_ACTIVE(AVX512_VBMI) &&
                             CPU_FEATURE_ACTIVE(AVX512_VBMI2) && CPU_FEATURE_ACTIVE(BMI2);
    const bool byteShuffles = CPU_FEATURE_ACTIVE(AVX2) && CPU_FEATURE_ACTIVE(BMI1) &&
                              CPU_FEATURE_ACTIVE(BMI2) && CPU_FEATURE_ACTIVE(LZCNT) &&
                              CPU_FEATURE_ACTIVE(POPCNT);
    return setsOf(wideVectors, byteShuffles);
}

#elif defined(__x86_64__) && !defined(VELNLS_PLAIN_LOOPS)

struct Features {
    unsigned b = 0; // of the processor's leaf 7
    unsigned c = 0;
    unsigned basicC = 0;    // of leaf 1
    unsigned extendedC = 0; // of leaf 80000001
    unsigned saved = 0;     // registers that the operating system keeps
};

Features askProcessor() {
    Features found;
    unsigned a = 0;
    unsigned b = 0;
    unsigned d = 0;
    constexpr unsigned kOsSavesRegisters = 1u << 27;
    if (__get_cpuid(1, &a, &b, &found.basicC, &d) == 0 || (found.basicC & kOsSavesRegisters) == 0 ||
        __get_cpuid_count(7, 0, &a, &found.b, &found.c, &d) == 0)
        return found;
    unsigned c = 0;
    if (__get_cpuid(0x80000001, &a, &b, &c, &d) != 0)
        found.extendedC = c;
    unsigned high = 0;
    asm("xgetbv" : "=a"(found.saved), "=d"(high) : "c"(0));
    return found;
}

bool hasAll(unsigned word, unsigned bits) {
    return (word & bits) == bits;
}

bool hasWideVectors(const Features &found) {
    constexpr unsigned kAllVectorState = 0xE6;
    constexpr unsigned kOfB = 1u << 8 | 1u << 16 | 1u << 30 | 1u << 31; // BMI2, AVX512F, BW, VL
    constexpr unsigned kOfC = 1u << 1 | 1u << 6;                        // VBMI, VBMI2
    return hasAll(found.saved, kAllVectorState) && hasAll(found.b, kOfB) && hasAll(found.c, kOfC);
}

bool hasByteShuffles(const Features &found) {
    constexpr unsigned kVectorState = 0x06;
    constexpr unsigned kOfB = 1u << 3 | 1u << 5 | 1u << 8; // BMI1, AVX2, BMI2
    constexpr unsigned kPopulationCount = 1u << 23;
    constexpr unsigned kLeadingZeros = 1u << 5;
    return hasAll(found.saved, kVectorState) && hasAll(found.b, kOfB) &&
           hasAll(found.basicC, kPopulationCount) && hasAll(found.extendedC, kLeadingZeros);
}

// Asked once by the process: under a hypervisor the questions take longer than to open a data file.
std::uint32_t processorSets() {
    constexpr std::uint32_t kAsked = 1;
    static std::atomic<std::uint32_t> known{0};
    std::uint32_t sets = known.load(std::memory_order_relaxed);
    if (sets == 0) {
        const Features found = askProcessor();
        sets = setsOf(hasWideVectors(found), hasByteShuffles(found)) | kAsked;
        known.store(sets, std::memory_order_relaxed);
    }
    return sets & kInstructionSets;
}

#else

std::uint32_t processorSets() {
    return 0;
}

#endif

} // namespace

std::uint32_t instructionSets() {
    std::uint32_t sets = processorSets();
#if defined(VELNLS_CPU_SWITCHES)
    // Test builds only: runs what other processors run.
    if (const char *const off = std::getenv("VELNLS_CPU_OFF"); off != nullptr) {
        sets &= std::strstr(off, "avx512") != nullptr ? ~kWideVectors : ~0U;
        sets &= std::strstr(off, "avx2") != nullptr ? ~kByteShuffles : ~0U;
    }
#endif
    return sets;
}

} // namespace velnls
