#include "curves/scratch_pool.h"

#include <gtest/gtest.h>

#include <cstdint>

#include "tests/support/allocation_failure.h"

using namespace velquad::curves;

namespace {

TEST(ScratchPool, HeadNodeCarriesItsMarkAndNoBlock) {
    ScratchPool* pool = poolOpen();
    ASSERT_NE(pool, nullptr);
    EXPECT_EQ(pool->kind, 410);
    EXPECT_EQ(pool->block, nullptr);
    EXPECT_EQ(pool->size1, 0u);
    EXPECT_EQ(pool->next, nullptr);
    EXPECT_TRUE(poolIsOk(pool));
    poolClose(pool);
}

TEST(ScratchPool, ListsTheNewestAllocationFirst) {
    ScratchPool* pool = poolOpen();
    void* vector = poolAlloc(pool, 0, 7, 0);
    void* matrix = poolAlloc(pool, 2, 3, 2);
    ASSERT_TRUE(poolIsOk(pool));
    ASSERT_NE(pool->next, nullptr);
    EXPECT_EQ(pool->next->block, matrix);
    EXPECT_EQ(pool->next->kind, 2);
    EXPECT_EQ(pool->next->size1, 3u);
    EXPECT_EQ(pool->next->size2, 2u);
    ASSERT_NE(pool->next->next, nullptr);
    EXPECT_EQ(pool->next->next->block, vector);
    EXPECT_EQ(pool->next->next->kind, 0);
    EXPECT_EQ(pool->next->next->size1, 7u);
    EXPECT_EQ(pool->next->next->next, nullptr);
    poolClose(pool);
}

TEST(ScratchPool, GivesZeroedElementsThatDoNotOverlap) {
    ScratchMemory memory;
    double* vector = memory.vector(100);
    double** matrix = memory.matrix(50, 3);
    ASSERT_TRUE(memory.isOk());
    for (int i = 0; i < 100; ++i)
        EXPECT_EQ(vector[i], 0.0);
    for (int i = 0; i < 50; ++i) {
        for (int j = 0; j < 3; ++j) {
            EXPECT_EQ(matrix[i][j], 0.0);
            matrix[i][j] = i * 3 + j;
        }
    }
    for (int i = 0; i < 50; ++i) {
        for (int j = 0; j < 3; ++j)
            EXPECT_EQ(matrix[i][j], i * 3 + j);
    }
}

TEST(ScratchPool, EmptyArraysAreNoFailure) {
    ScratchMemory memory;
    EXPECT_NE(memory.vector(0), nullptr);
    EXPECT_NE(memory.matrix(0, 2), nullptr);
    EXPECT_NE(memory.matrix(2, 0), nullptr);
    EXPECT_TRUE(memory.isOk());
}

TEST(ScratchPool, UnknownKindsFailAndMarkThePool) {
    ScratchPool* pool = poolOpen();
    EXPECT_EQ(poolAlloc(pool, 1, 4, 4), nullptr);
    EXPECT_FALSE(poolIsOk(pool));
    EXPECT_NE(poolAlloc(pool, 0, 4, 0), nullptr);
    EXPECT_FALSE(poolIsOk(pool)) << "the mark stays";
    poolClose(pool);
}

TEST(ScratchPool, SizesThatNoMemoryCanHoldFail) {
    const auto fails = [](int kind, std::uint64_t count, std::uint64_t size2) {
        ScratchPool* pool = poolOpen();
        const bool hasFailed = poolAlloc(pool, kind, count, size2) == nullptr && !poolIsOk(pool);
        poolClose(pool);
        return hasFailed;
    };
    EXPECT_TRUE(fails(0, UINT64_MAX, 0));
    EXPECT_TRUE(fails(0, UINT64_MAX / 8 + 2, 0)) << "8 * count wraps around to a small size";
    EXPECT_TRUE(fails(2, UINT64_MAX, 2));
    EXPECT_TRUE(fails(2, 2, UINT64_MAX));
    EXPECT_TRUE(fails(2, UINT64_C(1) << 32, UINT64_C(1) << 29)) << "rows * columns * 8 is 2^64";
    EXPECT_TRUE(fails(2, 1, (UINT64_MAX - 7) / 8));
}

TEST(ScratchPool, RefusesWhatIsNotAHeadNode) {
    EXPECT_EQ(poolAlloc(nullptr, 0, 1, 0), nullptr);
    EXPECT_FALSE(poolIsOk(nullptr));
    poolClose(nullptr);
    ScratchPool other{nullptr, 409, 0, 0, nullptr};
    EXPECT_EQ(poolAlloc(&other, 0, 1, 0), nullptr);
    EXPECT_FALSE(poolIsOk(&other));
    poolClose(&other);
    EXPECT_EQ(other.next, nullptr);
}

TEST(ScratchPool, EveryFailingAllocationIsReportedAndEverythingReleased) {
    const std::size_t count = velquad::test::forEachFailingAllocation([] {
        ScratchMemory memory;
        memory.vector(5);
        memory.matrix(4, 2);
        memory.vector(1);
        return !memory.isOk();
    });
    EXPECT_EQ(count, 7u) << "the head, and for each entry its block and its node";
}

}  // namespace
