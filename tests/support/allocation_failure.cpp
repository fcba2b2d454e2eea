#include "tests/support/allocation_failure.h"

#include <gtest/gtest.h>
#include <malloc.h>

#include <cstdlib>
#include <new>

#include "tests/support/allocation_counters.h"

namespace {

using velquad::test::allocationCounters;

// The first exception of a thread takes memory that the run-time library keeps.
void throwOnce() {
    try {
        throw std::bad_alloc();
    } catch (const std::bad_alloc&) {
    }
}

std::ptrdiff_t bytesOf(void* block) {
#if defined(_WIN32)
    return static_cast<std::ptrdiff_t>(_msize(block));
#else
    return static_cast<std::ptrdiff_t>(malloc_usable_size(block));
#endif
}

// Counts what was allocated, unless it is null.
void* counted(void* block) {
    if (block != nullptr) allocationCounters().addBytes(bytesOf(block));
    return allocationCounters().counted(block);
}

}  // namespace

extern "C" {

// The names are the linker's: --wrap sends each call of malloc to __wrap_malloc and offers the original as
// __real_malloc.
void* __real_malloc(std::size_t size);
void* __real_calloc(std::size_t count, std::size_t size);
void* __real_realloc(void* block, std::size_t size);
void __real_free(void* block);
void* __wrap_malloc(std::size_t size);
void* __wrap_calloc(std::size_t count, std::size_t size);
void* __wrap_realloc(void* block, std::size_t size);
void __wrap_free(void* block);

void* __wrap_malloc(std::size_t size) {
    return allocationCounters().mustFail() ? nullptr : counted(__real_malloc(size));
}

void* __wrap_calloc(std::size_t count, std::size_t size) {
    return allocationCounters().mustFail() ? nullptr : counted(__real_calloc(count, size));
}

void* __wrap_realloc(void* block, std::size_t size) {
    if (allocationCounters().mustFail()) return nullptr;
    if (block == nullptr) return counted(__real_malloc(size));
    const std::ptrdiff_t bytesBefore = bytesOf(block);
    void* moved = __real_realloc(block, size);
    if (moved != nullptr) allocationCounters().addBytes(bytesOf(moved) - bytesBefore);
    return moved;
}

void __wrap_free(void* block) {
    if (block != nullptr) {
        --allocationCounters().liveCount;
        allocationCounters().addBytes(-bytesOf(block));
    }
    __real_free(block);
}

}  // extern "C"

void* operator new(std::size_t size) {
    void* block = std::malloc(size == 0 ? 1 : size);
    if (block == nullptr) {
        // A handler of the test's may throw what it likes.
        if (const std::new_handler handler = std::get_new_handler()) handler();
        throw std::bad_alloc();
    }
    return block;
}
void* operator new[](std::size_t size) {
    return operator new(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return std::malloc(size == 0 ? 1 : size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return std::malloc(size == 0 ? 1 : size);
}
void operator delete(void* block) noexcept {
    std::free(block);
}
void operator delete[](void* block) noexcept {
    std::free(block);
}
void operator delete(void* block, std::size_t) noexcept {
    std::free(block);
}
void operator delete[](void* block, std::size_t) noexcept {
    std::free(block);
}
void operator delete(void* block, const std::nothrow_t&) noexcept {
    std::free(block);
}
void operator delete[](void* block, const std::nothrow_t&) noexcept {
    std::free(block);
}

namespace velquad::test {

void failAllocation(std::size_t number) {
    allocationCounters().countdown = number;
    allocationCounters().hasFailed = false;
}

bool hasAllocationFailed() {
    return allocationCounters().hasFailed;
}

std::ptrdiff_t liveAllocations() {
    return allocationCounters().liveCount;
}

std::size_t allocationCount() {
    return allocationCounters().totalCount;
}

std::size_t peakMemory(const std::function<void()>& call) {
    AllocationCounters& counters = allocationCounters();
    counters.peakBytes = counters.liveBytes;
    const std::ptrdiff_t before = counters.liveBytes;
    call();
    return static_cast<std::size_t>(counters.peakBytes - before);
}

std::size_t forEachFailingAllocation(const std::function<bool()>& call) {
    constexpr std::size_t kMostAllocations = 100000;
    throwOnce();
    EXPECT_FALSE(call()) << "the call must succeed while no allocation fails";
    for (std::size_t number = 1; number < kMostAllocations; ++number) {
        const std::ptrdiff_t before = liveAllocations();
        failAllocation(number);
        const bool reported = call();
        const bool happened = hasAllocationFailed();
        failAllocation(0);
        EXPECT_EQ(liveAllocations(), before) << "allocation " << number << " failed and something was lost";
        EXPECT_EQ(reported, happened) << "allocation " << number;
        if (!happened) return number - 1;
    }
    ADD_FAILURE() << "more allocations than expected";
    return kMostAllocations;
}

}  // namespace velquad::test
