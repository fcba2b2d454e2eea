// What the counting replacements of the allocation functions keep for each thread. They reach it from within
// malloc, so finding it must not allocate.
#ifndef VELQUAD_TESTS_SUPPORT_ALLOCATION_COUNTERS_H
#define VELQUAD_TESTS_SUPPORT_ALLOCATION_COUNTERS_H

#include <cstddef>

namespace velquad::test {

struct AllocationCounters {
    std::size_t countdown = 0;  ///< The allocation that is to fail, counted from the next one; 0 for none.
    bool hasFailed = false;
    std::ptrdiff_t liveCount = 0;
    std::size_t totalCount = 0;
    std::ptrdiff_t liveBytes = 0;  ///< Of malloc and its kin only.
    std::ptrdiff_t peakBytes = 0;  ///< The largest value of `liveBytes` since it was reset.

    /// Counts an attempt to allocate. @return whether it is the one that is to fail.
    bool mustFail() {
        if (countdown == 0 || --countdown != 0) return false;
        hasFailed = true;
        return true;
    }

    /// Counts what was allocated, unless it is null. @return `block`.
    void* counted(void* block) {
        if (block != nullptr) {
            ++liveCount;
            ++totalCount;
        }
        return block;
    }

    /// Counts bytes that were allocated, or freed when negative.
    void addBytes(std::ptrdiff_t bytes) {
        liveBytes += bytes;
        if (liveBytes > peakBytes) peakBytes = liveBytes;
    }
};

/// The counters of the calling thread.
AllocationCounters& allocationCounters();

}  // namespace velquad::test

#endif  // VELQUAD_TESTS_SUPPORT_ALLOCATION_COUNTERS_H
