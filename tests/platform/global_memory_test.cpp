#include "platform/global_memory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <bit>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <random>
#include <set>
#include <thread>
#include <vector>

#include "tests/support/allocation_failure.h"

namespace {

using velquad::platform::blockTableCapacity;
using velquad::platform::freeAtLastGeneration;
using velquad::platform::liveBlockCount;
using velquad::test::forEachFailingAllocation;

constexpr UINT kZeroedMovable = GMEM_MOVEABLE | GMEM_ZEROINIT;

bool isFilledWith(const void* contents, std::size_t from, std::size_t to, unsigned char value) {
    const auto* bytes = static_cast<const unsigned char*>(contents);
    return std::all_of(bytes + from, bytes + to, [value](unsigned char byte) { return byte == value; });
}

// Frees every handle that it was given, and checks that the test left no other block behind.
class GlobalMemory : public testing::Test {
  protected:
    void SetUp() override { before_ = liveBlockCount(); }
    void TearDown() override { EXPECT_EQ(liveBlockCount(), before_); }

  private:
    std::size_t before_ = 0;
};

TEST_F(GlobalMemory, HandleIsNotTheAddress) {
    const HGLOBAL handle = GlobalAlloc(GMEM_MOVEABLE, 100);
    ASSERT_NE(handle, nullptr);
    void* contents = GlobalLock(handle);
    ASSERT_NE(contents, nullptr);
    EXPECT_NE(handle, contents);
    EXPECT_EQ(GlobalHandle(contents), handle);
    EXPECT_EQ(GlobalSize(handle), 100u);
    std::memset(contents, 0xA5, 100);
    EXPECT_EQ(GlobalUnlock(handle), 0);
    EXPECT_EQ(GlobalFree(handle), nullptr);
}

TEST_F(GlobalMemory, ContentsAreAlignedForEveryFundamentalType) {
    for (const UINT flags : {GMEM_MOVEABLE, GMEM_FIXED, kZeroedMovable}) {
        for (SIZE_T size = 1; size < 70; ++size) {
            const HGLOBAL handle = GlobalAlloc(flags, size);
            ASSERT_NE(handle, nullptr);
            EXPECT_EQ(std::bit_cast<std::uintptr_t>(GlobalLock(handle)) % alignof(std::max_align_t), 0u);
            EXPECT_EQ(GlobalFree(handle), nullptr);
        }
    }
}

TEST_F(GlobalMemory, ZeroinitClearsAllBytesOfAUsedAgainBlock) {
    for (const SIZE_T size : {1u, 24u, 64u, 1024u, 1032u, 1033u, 5000u, 65536u, 1000000u}) {
        void* dirty = std::malloc(size);
        ASSERT_NE(dirty, nullptr);
        std::memset(dirty, 0xFF, size);
        std::free(dirty);
        const HGLOBAL handle = GlobalAlloc(kZeroedMovable, size);
        EXPECT_TRUE(isFilledWith(GlobalLock(handle), 0, size, 0)) << size;
        GlobalFree(handle);
    }
}

TEST_F(GlobalMemory, LocksAreCounted) {
    const HGLOBAL handle = GlobalAlloc(GMEM_MOVEABLE, 8);
    EXPECT_EQ(GlobalFlags(handle), 0u);
    void* first = GlobalLock(handle);
    void* second = GlobalLock(handle);
    EXPECT_EQ(first, second);
    EXPECT_EQ(GlobalFlags(handle), 2u);
    EXPECT_NE(GlobalUnlock(handle), 0);
    EXPECT_EQ(GlobalFlags(handle), 1u);
    EXPECT_EQ(GlobalUnlock(handle), 0);
    EXPECT_EQ(GlobalUnlock(handle), 0);
    EXPECT_EQ(GlobalFlags(handle), 0u);
    GlobalFree(handle);
}

TEST_F(GlobalMemory, MoreThan255LocksAreAllCountedAndToldAs255) {
    const HGLOBAL handle = GlobalAlloc(GMEM_MOVEABLE, 8);
    for (int count = 1; count <= 300; ++count) {
        ASSERT_NE(GlobalLock(handle), nullptr);
        ASSERT_EQ(GlobalFlags(handle) & GMEM_LOCKCOUNT, static_cast<UINT>(std::min(count, 255)));
        ASSERT_EQ(GlobalFlags(handle) & ~GMEM_LOCKCOUNT, 0u);
    }
    for (int count = 299; count >= 1; --count)
        ASSERT_NE(GlobalUnlock(handle), 0) << count;
    EXPECT_EQ(GlobalUnlock(handle), 0);
    EXPECT_EQ(GlobalFlags(handle), 0u);
    GlobalFree(handle);
}

TEST_F(GlobalMemory, LockedBlockMayBeFreed) {
    const HGLOBAL handle = GlobalAlloc(GMEM_MOVEABLE, 8);
    void* contents = GlobalLock(handle);
    EXPECT_EQ(GlobalFree(handle), nullptr);
    EXPECT_EQ(GlobalHandle(contents), nullptr);
    EXPECT_EQ(GlobalFlags(handle), GMEM_INVALID_HANDLE);
}

TEST_F(GlobalMemory, EmptyFixedBlocksHaveAddressesOfTheirOwn) {
    std::set<void*> addresses;
    std::vector<HGLOBAL> handles;
    for (const UINT flags : {GMEM_FIXED, GMEM_FIXED | GMEM_ZEROINIT, GMEM_FIXED}) {
        const HGLOBAL handle = GlobalAlloc(flags, 0);
        ASSERT_NE(handle, nullptr);
        handles.push_back(handle);
        EXPECT_EQ(GlobalSize(handle), 0u);
        EXPECT_EQ(GlobalFlags(handle), 0u);
        void* contents = GlobalLock(handle);
        ASSERT_NE(contents, nullptr);
        EXPECT_EQ(GlobalHandle(contents), handle);
        addresses.insert(contents);
    }
    EXPECT_EQ(addresses.size(), handles.size());
    for (const HGLOBAL handle : handles)
        EXPECT_EQ(GlobalFree(handle), nullptr);
}

TEST_F(GlobalMemory, EmptyMovableBlocksBeginDiscarded) {
    for (const UINT flags : {GMEM_MOVEABLE, kZeroedMovable}) {
        const HGLOBAL handle = GlobalAlloc(flags, 0);
        ASSERT_NE(handle, nullptr);
        EXPECT_EQ(GlobalFlags(handle), GMEM_DISCARDED);
        EXPECT_EQ(GlobalSize(handle), 0u);
        EXPECT_EQ(GlobalLock(handle), nullptr);
        EXPECT_EQ(GlobalUnlock(handle), 0);
        EXPECT_EQ(GlobalReAlloc(handle, 40, kZeroedMovable), handle);
        void* contents = GlobalLock(handle);
        ASSERT_NE(contents, nullptr);
        EXPECT_EQ(GlobalHandle(contents), handle);
        EXPECT_TRUE(isFilledWith(contents, 0, 40, 0));
        EXPECT_EQ(GlobalFree(handle), nullptr);
    }
    const HGLOBAL unused = GlobalAlloc(GMEM_MOVEABLE, 0);
    EXPECT_EQ(GlobalFree(unused), nullptr);
    EXPECT_EQ(GlobalFree(unused), unused);
}

TEST_F(GlobalMemory, SizesThatCannotBeGiveNull) {
    for (const SIZE_T size : {SIZE_MAX, SIZE_MAX - 1, SIZE_MAX - 4096, SIZE_MAX / 2 + 1, SIZE_MAX / 2}) {
        EXPECT_EQ(GlobalAlloc(GMEM_MOVEABLE, size), nullptr);
        EXPECT_EQ(GlobalAlloc(kZeroedMovable, size), nullptr);
        EXPECT_EQ(GlobalAlloc(GMEM_FIXED, size), nullptr);
    }
}

TEST_F(GlobalMemory, FixedBlockIsItsHandle) {
    const HGLOBAL handle = GlobalAlloc(GMEM_FIXED | GMEM_ZEROINIT, 2000);
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(GlobalLock(handle), handle);
    EXPECT_EQ(GlobalHandle(handle), handle);
    EXPECT_TRUE(isFilledWith(handle, 0, 2000, 0));
    EXPECT_EQ(GlobalSize(handle), 2000u);
    EXPECT_EQ(GlobalFlags(handle), 0u);
    EXPECT_NE(GlobalUnlock(handle), 0);
    EXPECT_NE(GlobalUnlock(handle), 0);
    EXPECT_EQ(GlobalFree(handle), nullptr);
    EXPECT_EQ(GlobalFree(handle), handle);
    EXPECT_EQ(GlobalLock(handle), nullptr);
}

// --- refused handles and addresses

void expectRefused(HGLOBAL handle) {
    EXPECT_EQ(GlobalLock(handle), nullptr);
    EXPECT_EQ(GlobalUnlock(handle), 0);
    EXPECT_EQ(GlobalReAlloc(handle, 10, GMEM_MOVEABLE), nullptr);
    EXPECT_EQ(GlobalReAlloc(handle, 0, GMEM_MOVEABLE), nullptr);
    EXPECT_EQ(GlobalReAlloc(handle, 0, GMEM_MODIFY | GMEM_MOVEABLE), nullptr);
    EXPECT_EQ(GlobalSize(handle), 0u);
    EXPECT_EQ(GlobalFlags(handle), GMEM_INVALID_HANDLE);
    EXPECT_EQ(GlobalFree(handle), handle);
}

TEST_F(GlobalMemory, NullIsRefusedAndFreedWithoutEffect) {
    expectRefused(nullptr);
    EXPECT_EQ(GlobalHandle(nullptr), nullptr);
    EXPECT_EQ(GlobalFree(nullptr), nullptr);
}

TEST_F(GlobalMemory, FreedHandleIsRefused) {
    const HGLOBAL handle = GlobalAlloc(GMEM_MOVEABLE, 16);
    void* contents = GlobalLock(handle);
    ASSERT_EQ(GlobalFree(handle), nullptr);
    expectRefused(handle);
    EXPECT_EQ(GlobalHandle(contents), nullptr);
}

TEST_F(GlobalMemory, StaleHandleIsRefusedWhenItsPlaceIsUsedAgain) {
    std::vector<HGLOBAL> stale;
    for (int round = 0; round < 100; ++round) {
        const HGLOBAL handle = GlobalAlloc(GMEM_MOVEABLE, 16);
        for (const HGLOBAL old : stale)
            ASSERT_NE(handle, old);
        stale.push_back(handle);
        GlobalFree(handle);
    }
    const HGLOBAL live = GlobalAlloc(GMEM_MOVEABLE, 16);
    for (const HGLOBAL old : stale)
        expectRefused(old);
    EXPECT_EQ(GlobalSize(live), 16u);
    EXPECT_EQ(GlobalFree(live), nullptr);
}

TEST_F(GlobalMemory, PlaceThatUsedUpItsHandlesIsGivenUp) {
    const HGLOBAL first = GlobalAlloc(GMEM_MOVEABLE, 16);
    freeAtLastGeneration(first);
    expectRefused(first);
    const HGLOBAL next = GlobalAlloc(GMEM_MOVEABLE, 16);
    constexpr std::uintptr_t kPlaceBits = 0xFFFFFFFFu;
    EXPECT_NE(std::bit_cast<std::uintptr_t>(first) & kPlaceBits,
              std::bit_cast<std::uintptr_t>(next) & kPlaceBits);
    GlobalFree(next);
}

TEST_F(GlobalMemory, ForeignPointersAreRefusedAndNotRead) {
    int onStack = 0;
    static int inModule = 0;
    void* onHeap = std::malloc(64);
    for (void* pointer : {static_cast<void*>(&onStack), static_cast<void*>(&inModule), onHeap}) {
        expectRefused(pointer);
        EXPECT_EQ(GlobalHandle(pointer), nullptr);
    }
    std::free(onHeap);
    // None of these can be read at all.
    for (const std::uintptr_t bits :
         {std::uintptr_t{1}, std::uintptr_t{2}, std::uintptr_t{16}, std::uintptr_t{4097},
          (std::uintptr_t{1} << 62) | 1, (std::uintptr_t{1} << 62) | 0xFFFFFFFFu, UINTPTR_MAX,
          UINTPTR_MAX - 1, std::uintptr_t{1} << 63, std::uintptr_t{0xFFFFFFFF80000000u}}) {
        const HGLOBAL wild = std::bit_cast<HGLOBAL>(bits);
        if (GlobalFlags(wild) != GMEM_INVALID_HANDLE) continue;  // a live handle by chance
        expectRefused(wild);
        EXPECT_EQ(GlobalHandle(wild), nullptr);
    }
}

TEST_F(GlobalMemory, AddressOfAMovableBlockIsNoHandle) {
    const HGLOBAL handle = GlobalAlloc(GMEM_MOVEABLE, 64);
    auto* contents = static_cast<char*>(GlobalLock(handle));
    expectRefused(contents);
    EXPECT_EQ(GlobalHandle(contents + 1), nullptr);
    EXPECT_EQ(GlobalHandle(contents + 16), nullptr);
    EXPECT_EQ(GlobalHandle(contents + 64), nullptr);
    EXPECT_EQ(GlobalHandle(handle), nullptr);
    EXPECT_EQ(GlobalSize(handle), 64u);
    EXPECT_EQ(GlobalFree(handle), nullptr);
}

TEST_F(GlobalMemory, ChangedHandleBitsAreRefused) {
    const HGLOBAL handle = GlobalAlloc(GMEM_MOVEABLE, 64);
    for (int bit = 0; bit < 64; ++bit) {
        const auto changed =
            std::bit_cast<HGLOBAL>(std::bit_cast<std::uintptr_t>(handle) ^ (std::uintptr_t{1} << bit));
        EXPECT_EQ(GlobalSize(changed), 0u) << bit;
        EXPECT_EQ(GlobalHandle(changed), nullptr) << bit;
    }
    GlobalFree(handle);
}

// --- reallocation

TEST_F(GlobalMemory, ReallocationKeepsContentsAndHandle) {
    const HGLOBAL handle = GlobalAlloc(GMEM_MOVEABLE, 100);
    std::memset(GlobalLock(handle), 0x5A, 100);
    GlobalUnlock(handle);
    EXPECT_EQ(GlobalReAlloc(handle, 100000, GMEM_MOVEABLE), handle);
    EXPECT_EQ(GlobalSize(handle), 100000u);
    void* grown = GlobalLock(handle);
    EXPECT_TRUE(isFilledWith(grown, 0, 100, 0x5A));
    std::memset(grown, 0x5A, 100000);
    EXPECT_EQ(GlobalHandle(grown), handle);
    GlobalUnlock(handle);
    EXPECT_EQ(GlobalReAlloc(handle, 50, 0), handle);
    EXPECT_EQ(GlobalSize(handle), 50u);
    EXPECT_TRUE(isFilledWith(GlobalLock(handle), 0, 50, 0x5A));
    GlobalFree(handle);
}

TEST_F(GlobalMemory, MovedBlockIsFoundAtItsNewAddressOnly) {
    const HGLOBAL handle = GlobalAlloc(GMEM_MOVEABLE, 64);
    void* before = GlobalLock(handle);
    GlobalUnlock(handle);
    // The neighbour makes it hard to grow in place.
    const HGLOBAL neighbour = GlobalAlloc(GMEM_MOVEABLE, 64);
    ASSERT_EQ(GlobalReAlloc(handle, 1 << 20, GMEM_MOVEABLE), handle);
    void* after = GlobalLock(handle);
    EXPECT_EQ(GlobalHandle(after), handle);
    if (after != before) {
        EXPECT_EQ(GlobalHandle(before), nullptr);
    }
    GlobalFree(neighbour);
    GlobalFree(handle);
}

TEST_F(GlobalMemory, ZeroinitClearsTheGrownTailBehindTheLastSize) {
    const HGLOBAL handle = GlobalAlloc(GMEM_MOVEABLE, 4000);
    std::memset(GlobalLock(handle), 0xFF, 4000);
    GlobalUnlock(handle);
    // Shrunk to 10: the bytes behind are gone, whatever the allocator left there.
    ASSERT_EQ(GlobalReAlloc(handle, 10, GMEM_MOVEABLE), handle);
    ASSERT_EQ(GlobalReAlloc(handle, 5000, kZeroedMovable), handle);
    const void* contents = GlobalLock(handle);
    EXPECT_TRUE(isFilledWith(contents, 0, 10, 0xFF));
    EXPECT_TRUE(isFilledWith(contents, 10, 5000, 0));
    GlobalFree(handle);
}

TEST_F(GlobalMemory, LockedBlockMovesOnlyWhenAllowed) {
    const HGLOBAL handle = GlobalAlloc(GMEM_MOVEABLE, 100);
    void* contents = GlobalLock(handle);
    std::memset(contents, 0xFF, 100);
    EXPECT_EQ(GlobalReAlloc(handle, 101, 0), nullptr);
    EXPECT_EQ(GlobalReAlloc(handle, 1 << 20, GMEM_ZEROINIT), nullptr);
    EXPECT_EQ(GlobalSize(handle), 100u);
    EXPECT_TRUE(isFilledWith(contents, 0, 100, 0xFF));
    EXPECT_EQ(GlobalFlags(handle), 1u);

    EXPECT_EQ(GlobalReAlloc(handle, 10, 0), handle);
    EXPECT_EQ(GlobalSize(handle), 10u);
    EXPECT_EQ(GlobalReAlloc(handle, 100, GMEM_ZEROINIT), handle);
    EXPECT_EQ(GlobalHandle(contents), handle);
    EXPECT_TRUE(isFilledWith(contents, 0, 10, 0xFF));
    EXPECT_TRUE(isFilledWith(contents, 10, 100, 0));

    EXPECT_EQ(GlobalReAlloc(handle, 1 << 20, kZeroedMovable), handle);
    EXPECT_EQ(GlobalFlags(handle), 1u);
    EXPECT_EQ(GlobalUnlock(handle), 0);
    EXPECT_TRUE(isFilledWith(GlobalLock(handle), 0, 10, 0xFF));
    EXPECT_TRUE(isFilledWith(GlobalLock(handle), 10, 1 << 20, 0));
    GlobalFree(handle);
}

TEST_F(GlobalMemory, FixedBlockMovesOnlyWhenAllowed) {
    const HGLOBAL fixed = GlobalAlloc(GMEM_FIXED, 100);
    std::memset(fixed, 0xFF, 100);
    EXPECT_EQ(GlobalReAlloc(fixed, 200, 0), nullptr);
    EXPECT_EQ(GlobalSize(fixed), 100u);
    EXPECT_EQ(GlobalReAlloc(fixed, 0, 0), fixed);
    EXPECT_EQ(GlobalSize(fixed), 0u);
    EXPECT_EQ(GlobalReAlloc(fixed, 60, GMEM_ZEROINIT), fixed);
    EXPECT_TRUE(isFilledWith(fixed, 0, 60, 0));
    const HGLOBAL moved = GlobalReAlloc(fixed, 1 << 20, kZeroedMovable);
    ASSERT_NE(moved, nullptr);
    EXPECT_EQ(GlobalLock(moved), moved);
    EXPECT_EQ(GlobalHandle(moved), moved);
    EXPECT_TRUE(isFilledWith(moved, 0, 1 << 20, 0));
    EXPECT_EQ(GlobalFree(moved), nullptr);
}

TEST_F(GlobalMemory, SizeZeroDiscardsAnUnlockedBlock) {
    const HGLOBAL handle = GlobalAlloc(GMEM_MOVEABLE, 100);
    void* contents = GlobalLock(handle);
    EXPECT_EQ(GlobalReAlloc(handle, 0, GMEM_MOVEABLE), nullptr);
    EXPECT_EQ(GlobalReAlloc(handle, 0, 0), nullptr);
    EXPECT_EQ(GlobalSize(handle), 100u);
    GlobalUnlock(handle);

    EXPECT_EQ(GlobalReAlloc(handle, 0, GMEM_MOVEABLE), handle);
    EXPECT_EQ(GlobalFlags(handle), GMEM_DISCARDED);
    EXPECT_EQ(GlobalSize(handle), 0u);
    EXPECT_EQ(GlobalLock(handle), nullptr);
    EXPECT_EQ(GlobalFlags(handle), GMEM_DISCARDED);
    EXPECT_EQ(GlobalUnlock(handle), 0);
    EXPECT_EQ(GlobalHandle(contents), nullptr);
    EXPECT_EQ(GlobalReAlloc(handle, 0, GMEM_MOVEABLE), handle);

    EXPECT_EQ(GlobalReAlloc(handle, 300, kZeroedMovable), handle);
    EXPECT_EQ(GlobalFlags(handle), 0u);
    EXPECT_TRUE(isFilledWith(GlobalLock(handle), 0, 300, 0));
    GlobalUnlock(handle);
    EXPECT_EQ(GlobalReAlloc(handle, 0, 0), handle);
    EXPECT_EQ(GlobalFree(handle), nullptr);
    expectRefused(handle);
}

TEST_F(GlobalMemory, ModifyChangesNoSize) {
    const HGLOBAL movable = GlobalAlloc(GMEM_MOVEABLE, 100);
    EXPECT_EQ(GlobalReAlloc(movable, 5, GMEM_MODIFY), movable);
    EXPECT_EQ(GlobalReAlloc(movable, 0, GMEM_MODIFY | GMEM_MOVEABLE), movable);
    EXPECT_EQ(GlobalSize(movable), 100u);
    EXPECT_EQ(GlobalFlags(movable), 0u);
    GlobalFree(movable);
}

TEST_F(GlobalMemory, ModifyMakesAFixedBlockMovable) {
    const HGLOBAL fixed = GlobalAlloc(GMEM_FIXED, 100);
    std::memset(fixed, 0x33, 100);
    EXPECT_EQ(GlobalReAlloc(fixed, 0, GMEM_MODIFY), fixed);
    const HGLOBAL movable = GlobalReAlloc(fixed, 0, GMEM_MODIFY | GMEM_MOVEABLE);
    ASSERT_NE(movable, nullptr);
    EXPECT_NE(movable, fixed);
    expectRefused(fixed);
    EXPECT_EQ(GlobalHandle(fixed), movable);
    EXPECT_EQ(GlobalSize(movable), 100u);
    EXPECT_EQ(GlobalFlags(movable), 0u);
    EXPECT_EQ(GlobalLock(movable), fixed);
    EXPECT_TRUE(isFilledWith(fixed, 0, 100, 0x33));
    EXPECT_EQ(GlobalUnlock(movable), 0);
    EXPECT_EQ(GlobalFree(movable), nullptr);
}

// --- short memory

TEST_F(GlobalMemory, FailedAllocationGivesNullAndLosesNothing) {
    for (const UINT flags : {GMEM_MOVEABLE, kZeroedMovable, GMEM_FIXED}) {
        for (const SIZE_T size : {0u, 16u, 100000u}) {
            const std::size_t allocations = forEachFailingAllocation([flags, size] {
                const HGLOBAL handle = GlobalAlloc(flags, size);
                GlobalFree(handle);
                return handle == nullptr;
            });
            const bool hasContents = size != 0 || flags == GMEM_FIXED;
            EXPECT_EQ(allocations, hasContents ? 1u : 0u);
        }
    }
}

TEST_F(GlobalMemory, FailedReallocationKeepsTheOldBlock) {
    for (const bool isLocked : {false, true}) {
        for (const SIZE_T size : {5u, 100u, 1000000u}) {
            const HGLOBAL handle = GlobalAlloc(GMEM_MOVEABLE, 64);
            void* contents = GlobalLock(handle);
            std::memset(contents, 0x77, 64);
            if (!isLocked) GlobalUnlock(handle);
            velquad::test::failAllocation(1);
            EXPECT_EQ(GlobalReAlloc(handle, size, kZeroedMovable), nullptr);
            EXPECT_TRUE(velquad::test::hasAllocationFailed());
            velquad::test::failAllocation(0);
            EXPECT_EQ(GlobalSize(handle), 64u);
            EXPECT_EQ(GlobalHandle(contents), handle);
            EXPECT_EQ(GlobalFlags(handle), isLocked ? 1u : 0u);
            EXPECT_TRUE(isFilledWith(contents, 0, 64, 0x77));
            EXPECT_EQ(GlobalFree(handle), nullptr);
        }
    }
}

TEST_F(GlobalMemory, ImpossibleReallocationKeepsTheOldBlock) {
    const HGLOBAL handle = GlobalAlloc(GMEM_MOVEABLE, 64);
    for (const SIZE_T size : {SIZE_MAX, SIZE_MAX / 2 + 1, SIZE_MAX / 2}) {
        EXPECT_EQ(GlobalReAlloc(handle, size, GMEM_MOVEABLE), nullptr);
    }
    EXPECT_EQ(GlobalSize(handle), 64u);
    EXPECT_NE(GlobalLock(handle), nullptr);
    GlobalFree(handle);
}

TEST_F(GlobalMemory, FailedRevivalLeavesADiscardedBlock) {
    const HGLOBAL handle = GlobalAlloc(GMEM_MOVEABLE, 64);
    ASSERT_EQ(GlobalReAlloc(handle, 0, GMEM_MOVEABLE), handle);
    velquad::test::failAllocation(1);
    EXPECT_EQ(GlobalReAlloc(handle, 10, GMEM_MOVEABLE), nullptr);
    velquad::test::failAllocation(0);
    EXPECT_EQ(GlobalFlags(handle), GMEM_DISCARDED);
    EXPECT_EQ(GlobalReAlloc(handle, 10, GMEM_MOVEABLE), handle);
    EXPECT_EQ(GlobalSize(handle), 10u);
    GlobalFree(handle);
}

TEST_F(GlobalMemory, FailedGrowthOfTheTableFailsOneAllocationAndNoOther) {
    std::vector<HGLOBAL> handles(blockTableCapacity() + 10);
    std::size_t count = 0;
    const std::size_t capacity = blockTableCapacity();
    while (liveBlockCount() < capacity) {
        handles[count] = GlobalAlloc(GMEM_MOVEABLE, 8);
        if (handles[count] == nullptr) break;
        ++count;
        // A place that was given up earlier may make the table grow a little sooner.
        if (blockTableCapacity() != capacity || liveBlockCount() + 2 >= capacity) break;
    }
    ASSERT_EQ(blockTableCapacity(), capacity);
    while (blockTableCapacity() == capacity) {
        const std::ptrdiff_t before = velquad::test::liveAllocations();
        velquad::test::failAllocation(2);  // the first is the contents
        const HGLOBAL refused = GlobalAlloc(GMEM_MOVEABLE, 8);
        const bool hasFailed = velquad::test::hasAllocationFailed();
        velquad::test::failAllocation(0);
        ASSERT_LT(count, handles.size());
        if (!hasFailed) {
            handles[count++] = refused;
            continue;
        }
        EXPECT_EQ(refused, nullptr);
        EXPECT_EQ(velquad::test::liveAllocations(), before);
        EXPECT_EQ(blockTableCapacity(), capacity);
        handles[count++] = GlobalAlloc(GMEM_MOVEABLE, 8);
        EXPECT_EQ(blockTableCapacity(), 2 * capacity);
    }
    for (std::size_t index = 0; index < count; ++index) {
        void* contents = GlobalLock(handles[index]);
        ASSERT_NE(contents, nullptr);
        ASSERT_EQ(GlobalHandle(contents), handles[index]);
        ASSERT_EQ(GlobalFree(handles[index]), nullptr);
    }
}

// --- many blocks, many threads

TEST_F(GlobalMemory, ManyBlocksAreAllFoundWhileTheTableGrows) {
    constexpr std::size_t kBlocks = 50000;
    std::vector<HGLOBAL> handles(kBlocks);
    for (std::size_t index = 0; index < kBlocks; ++index) {
        handles[index] = GlobalAlloc(index % 3 == 0 ? GMEM_FIXED : GMEM_MOVEABLE, sizeof(index));
        ASSERT_NE(handles[index], nullptr);
        std::memcpy(GlobalLock(handles[index]), &index, sizeof(index));
    }
    for (std::size_t index = 0; index < kBlocks; ++index) {
        void* contents = GlobalLock(handles[index]);
        ASSERT_EQ(GlobalHandle(contents), handles[index]);
        std::size_t stored = 0;
        std::memcpy(&stored, contents, sizeof(stored));
        ASSERT_EQ(stored, index);
    }
    for (const HGLOBAL handle : handles)
        ASSERT_EQ(GlobalFree(handle), nullptr);
    for (const HGLOBAL handle : handles)
        ASSERT_EQ(GlobalFlags(handle), GMEM_INVALID_HANDLE);
}

// A block and what must be true of it.
struct Model {
    HGLOBAL handle;
    SIZE_T size;
    UINT locks;
    unsigned char fill;
};

void check(const Model& model) {
    ASSERT_EQ(GlobalSize(model.handle), model.size);
    ASSERT_EQ(GlobalFlags(model.handle), model.locks);
    void* contents = GlobalLock(model.handle);
    ASSERT_NE(contents, nullptr);
    ASSERT_TRUE(isFilledWith(contents, 0, model.size, model.fill));
    ASSERT_EQ(GlobalHandle(contents), model.handle);
    ASSERT_EQ(GlobalUnlock(model.handle) != 0, model.locks != 0);
}

void fill(const Model& model) {
    std::memset(GlobalLock(model.handle), model.fill, model.size);
    GlobalUnlock(model.handle);
}

// Random calls against the model, on blocks of this thread.
void runRandomCalls(std::uint32_t seed, int rounds) {
    std::mt19937 random(seed);
    std::vector<Model> models;
    const auto pick = [&random](std::size_t bound) { return static_cast<std::size_t>(random()) % bound; };
    for (int round = 0; round < rounds; ++round) {
        const std::size_t choice = pick(6);
        if (models.empty() || choice == 0) {
            Model model{nullptr, 1 + pick(3000), 0, static_cast<unsigned char>(random())};
            model.handle = GlobalAlloc(GMEM_MOVEABLE, model.size);
            ASSERT_NE(model.handle, nullptr);
            fill(model);
            models.push_back(model);
            continue;
        }
        Model& model = models[pick(models.size())];
        check(model);
        if (choice == 1) {
            ASSERT_NE(GlobalLock(model.handle), nullptr);
            ++model.locks;
        } else if (choice == 2) {
            ASSERT_EQ(GlobalUnlock(model.handle) != 0, model.locks > 1);
            if (model.locks > 0) --model.locks;
        } else if (choice == 3) {
            const SIZE_T size = 1 + pick(5000);
            const SIZE_T kept = std::min(size, model.size);
            ASSERT_EQ(GlobalReAlloc(model.handle, size, kZeroedMovable), model.handle);
            void* contents = GlobalLock(model.handle);
            ASSERT_TRUE(isFilledWith(contents, 0, kept, model.fill));
            ASSERT_TRUE(isFilledWith(contents, kept, size, 0));
            GlobalUnlock(model.handle);
            model.size = size;
            fill(model);
        } else if (choice == 4) {
            ASSERT_EQ(GlobalFree(model.handle), nullptr);
            ASSERT_EQ(GlobalFlags(model.handle), GMEM_INVALID_HANDLE);
            model = models.back();
            models.pop_back();
        }
    }
    for (const Model& model : models) {
        check(model);
        ASSERT_EQ(GlobalFree(model.handle), nullptr);
    }
}

TEST_F(GlobalMemory, RandomCallsAgreeWithAModel) {
    for (std::uint32_t seed = 1; seed <= 20; ++seed) {
        SCOPED_TRACE(seed);
        runRandomCalls(seed, 2000);
    }
}

TEST_F(GlobalMemory, ThreadsWorkOnBlocksOfTheirOwn) {
    std::vector<std::thread> threads;
    for (std::uint32_t index = 0; index < 4; ++index) {
        threads.emplace_back([index] { runRandomCalls(1000 + index, 5000); });
    }
    for (std::thread& thread : threads)
        thread.join();
}

TEST_F(GlobalMemory, ThreadsMayUseOneHandle) {
    const HGLOBAL handle = GlobalAlloc(GMEM_MOVEABLE, 64);
    std::atomic<int> failures{0};
    std::vector<std::thread> threads;
    for (SIZE_T index = 0; index < 4; ++index) {
        threads.emplace_back([handle, index, &failures] {
            for (SIZE_T round = 0; round < 2000; ++round) {
                if (index < 2) {
                    if (GlobalLock(handle) == nullptr) ++failures;
                    GlobalUnlock(handle);
                } else if (GlobalReAlloc(handle, 64 + (round * 37) % 3000, kZeroedMovable) != handle) {
                    ++failures;
                }
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(failures, 0);
    EXPECT_EQ(GlobalFlags(handle), 0u);
    EXPECT_EQ(GlobalFree(handle), nullptr);
}

TEST_F(GlobalMemory, OnlyOneOfManyThreadsFreesAHandle) {
    for (int round = 0; round < 200; ++round) {
        const HGLOBAL handle = GlobalAlloc(GMEM_MOVEABLE, 64);
        std::atomic<int> freed{0};
        std::atomic<bool> isStarted{false};
        std::vector<std::thread> threads;
        for (int index = 0; index < 2; ++index) {
            threads.emplace_back([&] {
                while (!isStarted)
                    std::this_thread::yield();
                GlobalReAlloc(handle, 500, GMEM_MOVEABLE);
                if (GlobalFree(handle) == nullptr) ++freed;
            });
        }
        isStarted = true;
        for (std::thread& thread : threads)
            thread.join();
        ASSERT_EQ(freed, 1);
    }
}

// Blocks work while static objects are destroyed; a failure ends the process with another code.
struct AllocateAtExit {
    AllocateAtExit() { GlobalFree(GlobalAlloc(GMEM_MOVEABLE, 8)); }
    ~AllocateAtExit() {
        const HGLOBAL handle = GlobalAlloc(kZeroedMovable, 100);
        if (GlobalLock(handle) == nullptr || GlobalFree(handle) != nullptr) std::_Exit(99);
    }
};
__attribute__((init_priority(102))) const AllocateAtExit allocateAtExit;

TEST(GlobalMemoryDeathTest, WorksInDestructorsOfStaticObjects) {
    EXPECT_EXIT(std::exit(0), testing::ExitedWithCode(0), "");
}

}  // namespace
