#include "frame/global_block.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "tests/support/allocation_failure.h"

#if !defined(_WIN32)
#include "platform/global_memory.h"
#endif

namespace {

using velquad::frame::BlockLock;
using velquad::frame::kZeroedMovable;
using velquad::frame::LockedBlock;
using velquad::frame::matGlobalAllocLocked;
using velquad::frame::matGlobalFreeLocked;
using velquad::frame::matGlobalReAllocLocked;
using velquad::frame::shrinkToHandle;
using velquad::frame::unlockToHandle;
using velquad::test::forEachFailingAllocation;

static_assert(kZeroedMovable == 66);

bool isFilledWith(const void* contents, std::size_t from, std::size_t to, unsigned char value) {
    const auto* bytes = static_cast<const unsigned char*>(contents);
    return std::all_of(bytes + from, bytes + to, [value](unsigned char byte) { return byte == value; });
}

UINT lockCount(HGLOBAL handle) {
    return GlobalFlags(handle) & GMEM_LOCKCOUNT;
}

TEST(GlobalAllocLocked, GivesTheLockedContents) {
    void* contents = matGlobalAllocLocked(kZeroedMovable, 500);
    ASSERT_NE(contents, nullptr);
    const HGLOBAL handle = GlobalHandle(contents);
    ASSERT_NE(handle, nullptr);
    EXPECT_NE(handle, contents);
    EXPECT_EQ(lockCount(handle), 1u);
    EXPECT_GE(GlobalSize(handle), 500u);
    EXPECT_TRUE(isFilledWith(contents, 0, 500, 0));
    matGlobalFreeLocked(contents);
    EXPECT_EQ(GlobalHandle(contents), nullptr);
}

TEST(GlobalAllocLocked, GivesNullWithoutMemory) {
    EXPECT_EQ(matGlobalAllocLocked(kZeroedMovable, SIZE_MAX), nullptr);
}

TEST(GlobalAllocLocked, FreesABlockThatCannotBeLocked) {
    // A movable block of no bytes has nothing to lock.
    EXPECT_EQ(matGlobalAllocLocked(kZeroedMovable, 0), nullptr);
#if !defined(_WIN32)
    const std::size_t before = velquad::platform::liveBlockCount();
    EXPECT_EQ(matGlobalAllocLocked(kZeroedMovable, 0), nullptr);
    EXPECT_EQ(velquad::platform::liveBlockCount(), before);
#endif
}

TEST(GlobalReAllocLocked, KeepsContentsAndLock) {
    void* contents = matGlobalAllocLocked(GMEM_MOVEABLE, 100);
    std::memset(contents, 0x5C, 100);
    const HGLOBAL handle = GlobalHandle(contents);
    void* grown = matGlobalReAllocLocked(contents, 100000, kZeroedMovable);
    ASSERT_NE(grown, nullptr);
    EXPECT_EQ(GlobalHandle(grown), handle);
    EXPECT_EQ(lockCount(handle), 1u);
    EXPECT_TRUE(isFilledWith(grown, 0, 100, 0x5C));
    EXPECT_TRUE(isFilledWith(grown, 100, 100000, 0));
    void* shrunk = matGlobalReAllocLocked(grown, 10, GMEM_MOVEABLE);
    ASSERT_NE(shrunk, nullptr);
    EXPECT_TRUE(isFilledWith(shrunk, 0, 10, 0x5C));
    EXPECT_EQ(lockCount(handle), 1u);
    matGlobalFreeLocked(shrunk);
}

TEST(GlobalReAllocLocked, LeavesTheOldBlockValidAndLockedOnFailure) {
    void* contents = matGlobalAllocLocked(GMEM_MOVEABLE, 100);
    std::memset(contents, 0x5C, 100);
    EXPECT_EQ(matGlobalReAllocLocked(contents, SIZE_MAX, kZeroedMovable), nullptr);
    const HGLOBAL handle = GlobalHandle(contents);
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(lockCount(handle), 1u);
    EXPECT_EQ(GlobalLock(handle), contents);
    GlobalUnlock(handle);
    EXPECT_TRUE(isFilledWith(contents, 0, 100, 0x5C));
    matGlobalFreeLocked(contents);
}

TEST(GlobalReAllocLocked, RefusesAPointerWithoutAHandle) {
    void* foreign = std::malloc(64);
    EXPECT_EQ(matGlobalReAllocLocked(nullptr, 10, kZeroedMovable), nullptr);
    EXPECT_EQ(matGlobalReAllocLocked(foreign, 10, kZeroedMovable), nullptr);
    std::free(foreign);
}

TEST(GlobalReAllocLocked, FreesABlockThatCannotBeLockedAgain) {
    void* contents = matGlobalAllocLocked(GMEM_MOVEABLE, 100);
    const HGLOBAL handle = GlobalHandle(contents);
    // Size 0 discards the unlocked block, and nothing is there to lock.
    EXPECT_EQ(matGlobalReAllocLocked(contents, 0, GMEM_MOVEABLE), nullptr);
    EXPECT_EQ(GlobalHandle(contents), nullptr);
    EXPECT_EQ(GlobalFlags(handle), GMEM_INVALID_HANDLE);
}

TEST(GlobalFreeLocked, IgnoresAPointerWithoutAHandle) {
    int local = 7;
    void* foreign = std::malloc(64);
    matGlobalFreeLocked(nullptr);
    matGlobalFreeLocked(&local);
    matGlobalFreeLocked(foreign);
    EXPECT_EQ(local, 7);
    std::free(foreign);
}

TEST(GlobalFreeLocked, FreesTheBlock) {
    void* contents = matGlobalAllocLocked(kZeroedMovable, 100);
    const HGLOBAL handle = GlobalHandle(contents);
    matGlobalFreeLocked(contents);
    EXPECT_EQ(GlobalFlags(handle), GMEM_INVALID_HANDLE);
    matGlobalFreeLocked(contents);
    EXPECT_EQ(GlobalHandle(contents), nullptr);
}

TEST(UnlockToHandle, GivesTheUnlockedHandle) {
    void* contents = matGlobalAllocLocked(kZeroedMovable, 100);
    const HGLOBAL handle = unlockToHandle(contents);
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(lockCount(handle), 0u);
    EXPECT_EQ(GlobalFree(handle), nullptr);
}

TEST(ShrinkToHandle, CutsTheBlock) {
    void* contents = matGlobalAllocLocked(kZeroedMovable, 1000);
    std::memset(contents, 3, 1000);
    const HGLOBAL handle = shrinkToHandle(contents, 12);
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(lockCount(handle), 0u);
    EXPECT_EQ(GlobalSize(handle), 12u);
    EXPECT_TRUE(isFilledWith(GlobalLock(handle), 0, 12, 3));
    GlobalUnlock(handle);
    EXPECT_EQ(GlobalFree(handle), nullptr);
}

TEST(LockedBlockOwner, FreesWhatItHolds) {
    HGLOBAL handle = nullptr;
    {
        const LockedBlock block(kZeroedMovable, 100);
        ASSERT_TRUE(block);
        handle = GlobalHandle(block.get());
        EXPECT_EQ(lockCount(handle), 1u);
    }
    EXPECT_EQ(GlobalFlags(handle), GMEM_INVALID_HANDLE);
}

TEST(LockedBlockOwner, MovesItsBlock) {
    LockedBlock first(kZeroedMovable, 100);
    void* contents = first.get();
    LockedBlock second(std::move(first));
    EXPECT_EQ(second.get(), contents);
    EXPECT_FALSE(first);  // NOLINT: the moved-from state is promised
    LockedBlock third;
    EXPECT_FALSE(third);
    third = std::move(second);
    EXPECT_EQ(third.as<char>(), contents);
    EXPECT_EQ(lockCount(GlobalHandle(contents)), 1u);
}

TEST(LockedBlockOwner, ReleasesItsHandleUnlocked) {
    LockedBlock block(kZeroedMovable, 100);
    const HGLOBAL handle = block.releaseHandle();
    EXPECT_FALSE(block);
    EXPECT_EQ(lockCount(handle), 0u);
    EXPECT_EQ(block.releaseHandle(), nullptr);
    EXPECT_EQ(block.releaseHandle(10), nullptr);
    EXPECT_EQ(GlobalFree(handle), nullptr);

    LockedBlock larger(kZeroedMovable, 1000);
    const HGLOBAL cut = larger.releaseHandle(16);
    EXPECT_EQ(GlobalSize(cut), 16u);
    EXPECT_EQ(lockCount(cut), 0u);
    EXPECT_EQ(GlobalFree(cut), nullptr);
}

TEST(BlockLockGuard, LocksForAScope) {
    const HGLOBAL handle = GlobalAlloc(kZeroedMovable, 100);
    {
        const BlockLock lock(handle);
        ASSERT_TRUE(lock);
        EXPECT_NE(lock.as<char>(), nullptr);
        EXPECT_EQ(lockCount(handle), 1u);
    }
    EXPECT_EQ(lockCount(handle), 0u);
    EXPECT_EQ(GlobalFree(handle), nullptr);
}

TEST(BlockLockGuard, HoldsNothingForARefusedHandle) {
    const BlockLock null(nullptr);
    EXPECT_FALSE(null);
    const HGLOBAL stale = GlobalAlloc(kZeroedMovable, 100);
    GlobalFree(stale);
    const BlockLock lock(stale);
    EXPECT_FALSE(lock);
    EXPECT_EQ(lock.as<char>(), nullptr);
}

TEST(GlobalAllocLocked, LosesNothingWhenAllocationsFail) {
    const std::size_t allocations = forEachFailingAllocation([] {
        void* contents = matGlobalAllocLocked(kZeroedMovable, 100);
        const bool hasFailed = contents == nullptr;
        matGlobalFreeLocked(contents);
        return hasFailed;
    });
    EXPECT_EQ(allocations, 1u);
}

TEST(GlobalReAllocLocked, KeepsTheOldBlockWhenTheAllocationFails) {
    void* contents = matGlobalAllocLocked(GMEM_MOVEABLE, 100);
    std::memset(contents, 0x5C, 100);
    velquad::test::failAllocation(1);
    EXPECT_EQ(matGlobalReAllocLocked(contents, 200, kZeroedMovable), nullptr);
    EXPECT_TRUE(velquad::test::hasAllocationFailed());
    velquad::test::failAllocation(0);
    const HGLOBAL handle = GlobalHandle(contents);
    EXPECT_EQ(lockCount(handle), 1u);
    EXPECT_GE(GlobalSize(handle), 100u);
    EXPECT_TRUE(isFilledWith(contents, 0, 100, 0x5C));
    matGlobalFreeLocked(contents);
}

TEST(ShrinkToHandle, KeepsTheLargerBlockWhenShrinkingFails) {
    void* contents = matGlobalAllocLocked(GMEM_MOVEABLE, 1000);
    velquad::test::failAllocation(1);
    const HGLOBAL handle = shrinkToHandle(contents, 10);
    EXPECT_TRUE(velquad::test::hasAllocationFailed());
    velquad::test::failAllocation(0);
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(lockCount(handle), 0u);
    EXPECT_GE(GlobalSize(handle), 1000u);
    EXPECT_EQ(GlobalFree(handle), nullptr);
}

}  // namespace
