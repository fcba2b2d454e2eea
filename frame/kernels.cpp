// The levels that this machine can run.
#include "frame/kernels.h"

#include <atomic>

#if defined(__x86_64__)
#include <cpuid.h>
#endif

namespace velquad::frame {

namespace {

#define VELQUAD_KERNEL_LEVEL_NAME(level, ...) #level,
constexpr const char* kLevelNames[] = {VELQUAD_FOR_EACH_KERNEL_LEVEL(VELQUAD_KERNEL_LEVEL_NAME, 0)};
#undef VELQUAD_KERNEL_LEVEL_NAME

#if defined(_WIN32)

std::size_t bestLevel() {
    __builtin_cpu_init();
    const bool hasV2 = __builtin_cpu_supports("sse4.2") && __builtin_cpu_supports("popcnt") &&
                       __builtin_cpu_supports("ssse3");
    return hasV2 ? 1 : 0;
}

#elif defined(__x86_64__)

/// The parts of x86-64-v3 that the compiler's own query does not know everywhere.
bool hasScalarPartsOfV3() {
    constexpr unsigned kMovbe = 1U << 22;
    constexpr unsigned kF16c = 1U << 29;
    constexpr unsigned kLzcnt = 1U << 5;
    unsigned a = 0;
    unsigned b = 0;
    unsigned c = 0;
    unsigned d = 0;
    if (__get_cpuid(1, &a, &b, &c, &d) == 0 || (c & kMovbe) == 0 || (c & kF16c) == 0) return false;
    return __get_cpuid(0x80000001U, &a, &b, &c, &d) != 0 && (c & kLzcnt) != 0;
}

std::size_t bestLevel() {
    __builtin_cpu_init();
    const bool hasV3 = __builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi") &&
                       __builtin_cpu_supports("bmi2") && __builtin_cpu_supports("fma") &&
                       hasScalarPartsOfV3();
    if (!hasV3) return 0;
    const bool hasV4 = __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
                       __builtin_cpu_supports("avx512cd") && __builtin_cpu_supports("avx512dq") &&
                       __builtin_cpu_supports("avx512vl");
    return hasV4 ? 2 : 1;
}

#else

std::size_t bestLevel() {
    return 0;
}

#endif

const std::size_t kBestLevel = bestLevel();
std::atomic<std::size_t> levelInUse{kBestLevel};

}  // namespace

std::size_t kernelLevelCount() {
    return kBestLevel + 1;
}

const char* kernelLevelName(std::size_t level) {
    return kLevelNames[level];
}

std::size_t kernelLevel() {
    return levelInUse.load(std::memory_order_relaxed);
}

void selectKernelLevel(std::size_t level) {
    if (level < kernelLevelCount()) levelInUse.store(level, std::memory_order_relaxed);
}

}  // namespace velquad::frame
