#include "platform/memory_probe.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <bit>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "velquad/platform.h"

namespace {

using velquad::platform::probeByPipe;
using velquad::platform::probeBySignalMask;
using velquad::platform::Readability;

// Four pages: readable, unreadable, readable, unreadable.
class IsBadReadPtrTest : public testing::Test {
  protected:
    void SetUp() override {
        pageSize_ = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
        void* mapping =
            mmap(nullptr, 4 * pageSize_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        ASSERT_NE(mapping, MAP_FAILED);
        pages_ = static_cast<char*>(mapping);
        ASSERT_EQ(mprotect(page(1), pageSize_, PROT_NONE), 0);
        ASSERT_EQ(mprotect(page(3), pageSize_, PROT_NONE), 0);
    }
    void TearDown() override { munmap(pages_, 4 * pageSize_); }

    char* page(std::size_t index) const { return pages_ + index * pageSize_; }

    std::size_t pageSize_ = 0;
    char* pages_ = nullptr;
};

TEST_F(IsBadReadPtrTest, AcceptsReadableMemory) {
    const int local = 5;
    EXPECT_EQ(IsBadReadPtr(&local, sizeof(local)), 0);
    EXPECT_EQ(IsBadReadPtr("text", 5), 0);
    void* block = std::malloc(100000);
    EXPECT_EQ(IsBadReadPtr(block, 100000), 0);
    std::free(block);
    EXPECT_EQ(IsBadReadPtr(page(0), pageSize_), 0);
    EXPECT_EQ(IsBadReadPtr(page(0) + pageSize_ - 1, 1), 0);
    EXPECT_EQ(IsBadReadPtr(page(2), 1), 0);
}

TEST_F(IsBadReadPtrTest, RefusesARangeThatTouchesAnUnreadablePage) {
    EXPECT_NE(IsBadReadPtr(page(1), 1), 0);
    EXPECT_NE(IsBadReadPtr(page(1) + pageSize_ - 1, 1), 0);
    EXPECT_NE(IsBadReadPtr(page(0), pageSize_ + 1), 0);
    EXPECT_NE(IsBadReadPtr(page(0) + pageSize_ - 1, 2), 0);
    EXPECT_NE(IsBadReadPtr(page(0), 3 * pageSize_), 0);
    EXPECT_NE(IsBadReadPtr(page(0) + pageSize_ - 4, 8), 0);
}

TEST_F(IsBadReadPtrTest, TakesAnEmptyRangeAnywhere) {
    EXPECT_EQ(IsBadReadPtr(nullptr, 0), 0);
    EXPECT_EQ(IsBadReadPtr(page(1), 0), 0);
}

TEST_F(IsBadReadPtrTest, RefusesNullAndWhatIsNotTheProcess) {
    EXPECT_NE(IsBadReadPtr(nullptr, 1), 0);
    EXPECT_NE(IsBadReadPtr(std::bit_cast<const void*>(std::uintptr_t{32}), 8), 0);
    EXPECT_NE(IsBadReadPtr(std::bit_cast<const void*>(std::uintptr_t{1} << 62), 8), 0);
    EXPECT_NE(IsBadReadPtr(std::bit_cast<const void*>(UINTPTR_MAX - 8), 8), 0);
    EXPECT_NE(IsBadReadPtr(std::bit_cast<const void*>(UINTPTR_MAX), 1), 0);
}

TEST_F(IsBadReadPtrTest, RefusesARangeBeyondTheAddressSpace) {
    const int local = 5;
    EXPECT_NE(IsBadReadPtr(&local, UINTPTR_MAX), 0);
    EXPECT_NE(IsBadReadPtr(&local, UINTPTR_MAX - std::bit_cast<std::uintptr_t>(&local) + 2), 0);
    EXPECT_NE(IsBadReadPtr(std::bit_cast<const void*>(UINTPTR_MAX), 2), 0);
}

TEST_F(IsBadReadPtrTest, AcceptsReadOnlyAndRefusesUnmappedPages) {
    ASSERT_EQ(mprotect(page(0), pageSize_, PROT_READ), 0);
    EXPECT_EQ(IsBadReadPtr(page(0), pageSize_), 0);
    ASSERT_EQ(munmap(page(3), pageSize_), 0);
    EXPECT_NE(IsBadReadPtr(page(3), 1), 0);
}

TEST_F(IsBadReadPtrTest, LeavesContentsErrnoAndTheSignalMaskAlone) {
    sigset_t before;
    sigset_t after;
    ASSERT_EQ(pthread_sigmask(SIG_SETMASK, nullptr, &before), 0);
    std::memset(page(0), 0xFF, pageSize_);
    errno = 77;
    EXPECT_EQ(IsBadReadPtr(page(0), pageSize_), 0);
    EXPECT_EQ(errno, 77);
    EXPECT_NE(IsBadReadPtr(page(1), 1), 0);
    EXPECT_EQ(errno, 77);
    ASSERT_EQ(pthread_sigmask(SIG_SETMASK, nullptr, &after), 0);
    for (const int signal : {SIGINT, SIGTERM, SIGUSR1}) {
        EXPECT_EQ(sigismember(&before, signal), sigismember(&after, signal));
    }
    EXPECT_EQ(page(0)[pageSize_ - 1], '\xFF');
}

TEST_F(IsBadReadPtrTest, ProbesByPipe) {
    const auto readable = std::bit_cast<std::uintptr_t>(page(0));
    EXPECT_EQ(probeByPipe(readable), Readability::kReadable);
    EXPECT_EQ(probeByPipe(readable + pageSize_ - 1), Readability::kReadable);
    EXPECT_EQ(probeByPipe(std::bit_cast<std::uintptr_t>(page(1))), Readability::kUnreadable);
    EXPECT_EQ(probeByPipe(0), Readability::kUnreadable);
}

TEST_F(IsBadReadPtrTest, ProbesBySignalMask) {
    const auto readable = std::bit_cast<std::uintptr_t>(page(0));
    const auto unreadable = std::bit_cast<std::uintptr_t>(page(1));
#if defined(__linux__)
    // Every program that starts a thread makes this call, so no sandbox forbids it.
    EXPECT_EQ(probeBySignalMask(readable), Readability::kReadable);
    EXPECT_EQ(probeBySignalMask(readable + pageSize_ - 8), Readability::kReadable);
    EXPECT_EQ(probeBySignalMask(unreadable), Readability::kUnreadable);
#else
    EXPECT_EQ(probeBySignalMask(readable), Readability::kUnknown);
    EXPECT_EQ(probeBySignalMask(unreadable), Readability::kUnknown);
#endif
    EXPECT_EQ(probeBySignalMask(0), Readability::kUnknown);
}

}  // namespace
