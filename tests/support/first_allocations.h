// Failing allocations before the one that work which must not run out of memory asks for first.
#ifndef VELQUAD_TESTS_SUPPORT_FIRST_ALLOCATIONS_H
#define VELQUAD_TESTS_SUPPORT_FIRST_ALLOCATIONS_H

#include <gtest/gtest.h>

#include <cstddef>

#include "tests/support/allocation_failure.h"

namespace velquad::test {

/// Lets each of the first allocations of a call fail, up to the one that makes sure of the decomposition's memory.
/// `call` returns whether it saw the failure.
template <typename Call>
void failFirstAllocations(std::size_t most, const Call& call) {
    EXPECT_FALSE(call());
    for (std::size_t number = 1; number <= most; ++number) {
        SCOPED_TRACE(number);
        const std::ptrdiff_t before = liveAllocations();
        failAllocation(number);
        const bool reported = call();
        const bool happened = hasAllocationFailed();
        failAllocation(0);
        EXPECT_TRUE(happened);
        EXPECT_TRUE(reported);
        EXPECT_EQ(liveAllocations(), before);
    }
}

}  // namespace velquad::test

#endif  // VELQUAD_TESTS_SUPPORT_FIRST_ALLOCATIONS_H
