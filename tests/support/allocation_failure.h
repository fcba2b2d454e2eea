// Makes single allocations fail, and counts what is alive. Everything that the process allocates through
// malloc, calloc, realloc and operator new is seen, on the calling thread only.
//
//     forEachFailingAllocation([] {
//         void* handle = polyCopy(points, 3, 1);
//         const bool hasFailed = handle == nullptr;
//         polyFree(handle);
//         return hasFailed;
//     });
#ifndef VELQUAD_TESTS_SUPPORT_ALLOCATION_FAILURE_H
#define VELQUAD_TESTS_SUPPORT_ALLOCATION_FAILURE_H

#include <cstddef>
#include <functional>

namespace velquad::test {

/// Lets the allocation with this number (1 is the next one) of the calling thread fail; 0 switches off.
void failAllocation(std::size_t number);

/// Tells whether the allocation that was to fail came about since the last call of `failAllocation`.
bool hasAllocationFailed();

/// Blocks that the calling thread allocated less those that it freed.
std::ptrdiff_t liveAllocations();

/// Allocations that the calling thread made so far.
std::size_t allocationCount();

/// The most bytes that `call` holds allocated at a time, beyond those of before.
std::size_t peakMemory(const std::function<void()>& call);

/// Runs `call` again and again, with its first, second, ... allocation failing, until a run meets no failure.
/// `call` returns whether it saw the promised failure value, and releases what it got. Checks that every run
/// with a failing allocation reports failure, that the last one succeeds and that nothing is left allocated.
/// @return how many allocations `call` makes when all goes well.
std::size_t forEachFailingAllocation(const std::function<bool()>& call);

}  // namespace velquad::test

#endif  // VELQUAD_TESTS_SUPPORT_ALLOCATION_FAILURE_H
