#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "frame/user_break.h"
#include "tests/support/allocation_failure.h"
#include "velquad/platform.h"

namespace {

using velquad::frame::matPollUserBreak;

constexpr UINT kSystemKeyDown = 0x0104;
constexpr UINT kSystemKeyUp = 0x0105;

void drain() {
    MSG message{};
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != 0) {
    }
}

// The message of every test's queue, taken from it; 0 for an empty queue.
UINT takeAny() {
    MSG message{};
    return PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != 0 ? message.message : 0;
}

MSG makeMessage(UINT kind, WPARAM wParam) {
    MSG message{};
    message.message = kind;
    message.wParam = wParam;
    return message;
}

class MessageQueue : public testing::Test {
  protected:
    void SetUp() override {
        drain();
        self_ = GetCurrentThreadId();
    }
    void TearDown() override {
        EXPECT_EQ(takeAny(), 0u);
        EXPECT_EQ(SetMessageDispatchHandler(nullptr), nullptr);
    }
    DWORD self_ = 0;
};

TEST_F(MessageQueue, EmptyQueueHasNoMessage) {
    MSG message = makeMessage(7, 8);
    EXPECT_EQ(PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE), 0);
    EXPECT_EQ(message.message, 7u);
    EXPECT_EQ(message.wParam, 8u);
}

TEST_F(MessageQueue, GivesAllPartsOfAPostedMessage) {
    ASSERT_NE(PostThreadMessageW(self_, WM_USER + 1, 42, -43), 0);
    MSG message = makeMessage(1, 1);
    message.hwnd = &message;
    ASSERT_NE(PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE), 0);
    EXPECT_EQ(message.hwnd, nullptr);
    EXPECT_EQ(message.message, WM_USER + 1);
    EXPECT_EQ(message.wParam, 42u);
    EXPECT_EQ(message.lParam, -43);
    EXPECT_EQ(message.pt.x, 0);
    EXPECT_EQ(message.pt.y, 0);
}

TEST_F(MessageQueue, IsFirstInFirstOut) {
    for (UINT number = 0; number < 100; ++number)
        ASSERT_NE(PostThreadMessageW(self_, WM_USER + number, 0, 0), 0);
    for (UINT number = 0; number < 100; ++number)
        EXPECT_EQ(takeAny(), WM_USER + number);
}

TEST_F(MessageQueue, MessagesStayWithoutRemove) {
    ASSERT_NE(PostThreadMessageW(self_, WM_USER, 5, 0), 0);
    MSG message{};
    for (int round = 0; round < 3; ++round) {
        ASSERT_NE(PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE), 0);
        EXPECT_EQ(message.wParam, 5u);
    }
    EXPECT_EQ(takeAny(), WM_USER);
}

TEST_F(MessageQueue, FilterTakesTheFirstInItsRangeWithBothEnds) {
    for (const UINT kind : {WM_USER, WM_KEYDOWN, WM_USER + 1, WM_UNICHAR, WM_UNICHAR + 1, WM_KEYDOWN - 1}) {
        ASSERT_NE(PostThreadMessageW(self_, kind, 0, 0), 0);
    }
    MSG message{};
    ASSERT_NE(PeekMessageW(&message, nullptr, WM_KEYDOWN, WM_UNICHAR, PM_REMOVE), 0);
    EXPECT_EQ(message.message, WM_KEYDOWN);
    ASSERT_NE(PeekMessageW(&message, nullptr, WM_KEYDOWN, WM_UNICHAR, PM_REMOVE), 0);
    EXPECT_EQ(message.message, WM_UNICHAR);
    EXPECT_EQ(PeekMessageW(&message, nullptr, WM_KEYDOWN, WM_UNICHAR, PM_REMOVE), 0);
    EXPECT_EQ(PeekMessageW(&message, nullptr, WM_USER + 1, WM_USER, PM_REMOVE), 0);
    // The last message is taken from the middle, then the queue still takes new ones at its end.
    ASSERT_NE(PeekMessageW(&message, nullptr, WM_KEYDOWN - 1, WM_KEYDOWN - 1, PM_REMOVE), 0);
    ASSERT_NE(PostThreadMessageW(self_, WM_USER + 9, 0, 0), 0);
    EXPECT_EQ(takeAny(), WM_USER);
    EXPECT_EQ(takeAny(), WM_USER + 1);
    EXPECT_EQ(takeAny(), WM_UNICHAR + 1);
    EXPECT_EQ(takeAny(), WM_USER + 9);
}

TEST_F(MessageQueue, OnlyThreadMessagesAreThere) {
    int window = 0;
    ASSERT_NE(PostThreadMessageW(self_, WM_USER, 0, 0), 0);
    MSG message{};
    EXPECT_EQ(PeekMessageW(&message, &window, 0, 0, PM_REMOVE), 0);
    EXPECT_EQ(PeekMessageW(nullptr, nullptr, 0, 0, PM_REMOVE), 0);
    EXPECT_EQ(takeAny(), WM_USER);
}

TEST_F(MessageQueue, RefusesMessagesWhenFull) {
    for (int count = 0; count < 10000; ++count)
        ASSERT_NE(PostThreadMessageW(self_, WM_USER, 0, 0), 0);
    EXPECT_EQ(PostThreadMessageW(self_, WM_USER, 0, 0), 0);
    EXPECT_EQ(takeAny(), WM_USER);
    EXPECT_NE(PostThreadMessageW(self_, WM_USER + 1, 0, 0), 0);
    EXPECT_EQ(PostThreadMessageW(self_, WM_USER, 0, 0), 0);
    drain();
}

TEST_F(MessageQueue, RefusesMessagesWithoutMemory) {
    const std::size_t allocations = velquad::test::forEachFailingAllocation([this] {
        const bool isPosted = PostThreadMessageW(self_, WM_USER, 0, 0) != 0;
        EXPECT_EQ(takeAny(), isPosted ? WM_USER : 0);
        return !isPosted;
    });
    EXPECT_EQ(allocations, 1u);
}

TEST_F(MessageQueue, UnknownThreadsAreRefused) {
    EXPECT_EQ(PostThreadMessageW(0, WM_USER, 0, 0), 0);
    EXPECT_EQ(PostThreadMessageW(0xFFFFFFFFu, WM_USER, 0, 0), 0);
}

TEST_F(MessageQueue, ThreadIdsAreStableAndDistinct) {
    EXPECT_NE(self_, 0u);
    EXPECT_EQ(GetCurrentThreadId(), self_);
    DWORD other = 0;
    std::thread([&other] { other = GetCurrentThreadId(); }).join();
    EXPECT_NE(other, 0u);
    EXPECT_NE(other, self_);
}

TEST_F(MessageQueue, EndsWithItsThread) {
    DWORD other = 0;
    std::thread([&other] {
        other = GetCurrentThreadId();
        EXPECT_NE(PostThreadMessageW(other, WM_USER, 0, 0), 0);
    }).join();
    EXPECT_EQ(PostThreadMessageW(other, WM_USER, 0, 0), 0);
}

// Asks the queue of a thread after that has ended, in the destructor of an older object of the thread.
struct AskAtThreadEnd {
    std::atomic<int>* answers = nullptr;
    DWORD id = 0;
    ~AskAtThreadEnd() {
        MSG message{};
        const bool isQuiet = PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) == 0;
        const bool isRefused = PostThreadMessageW(id, WM_USER, 0, 0) == 0;
        if (isQuiet && isRefused && GetCurrentThreadId() == id) ++*answers;
    }
};

TEST_F(MessageQueue, AnswersObjectsThatOutliveIt) {
    std::atomic<int> answers{0};
    std::thread([&answers] {
        thread_local AskAtThreadEnd ask;
        ask.answers = &answers;
        ask.id = GetCurrentThreadId();
        PostThreadMessageW(ask.id, WM_USER, 0, 0);
    }).join();
    EXPECT_EQ(answers, 1);
}

TEST_F(MessageQueue, TakesMessagesFromManyThreadsInTheOrderOfEach) {
    constexpr WPARAM kThreads = 4;
    constexpr LPARAM kMessages = 1000;
    std::vector<std::thread> threads;
    for (WPARAM index = 0; index < kThreads; ++index) {
        threads.emplace_back([index, target = self_] {
            for (LPARAM number = 0; number < kMessages; ++number) {
                EXPECT_NE(PostThreadMessageW(target, WM_USER, index, number), 0);
            }
        });
    }
    std::vector<LPARAM> next(kThreads);
    for (LPARAM taken = 0; taken < LPARAM{kThreads} * kMessages;) {
        MSG message{};
        if (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) == 0) {
            std::this_thread::yield();
            continue;
        }
        ASSERT_LT(message.wParam, kThreads);
        EXPECT_EQ(message.lParam, next[message.wParam]++);
        ++taken;
    }
    for (std::thread& thread : threads)
        thread.join();
}

TEST_F(MessageQueue, ThreadsMayEndWhileOthersPost) {
    for (int round = 0; round < 100; ++round) {
        std::atomic<DWORD> target{0};
        std::atomic<bool> mustEnd{false};
        std::thread receiver([&] {
            target = GetCurrentThreadId();
            while (!mustEnd)
                std::this_thread::yield();
        });
        std::thread sender([&] {
            while (target == 0)
                std::this_thread::yield();
            while (PostThreadMessageW(target, WM_USER, 0, 0) != 0)
                mustEnd = true;
        });
        receiver.join();
        sender.join();
        EXPECT_EQ(PostThreadMessageW(target, WM_USER, 0, 0), 0);
    }
}

TEST_F(MessageQueue, TranslatesKeysWithACharacter) {
    const struct {
        WPARAM key;
        WPARAM character;
    } cases[] = {{0x03, 3},  {0x08, 8},  {0x09, 9},  {0x0D, 13}, {VK_ESCAPE, 27},
                 {' ', ' '}, {'0', '0'}, {'9', '9'}, {'A', 'a'}, {'Z', 'z'}};
    for (const auto& [key, character] : cases) {
        MSG down = makeMessage(WM_KEYDOWN, key);
        down.lParam = 99;
        EXPECT_NE(TranslateMessage(&down), 0);
        MSG message{};
        ASSERT_NE(PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE), 0) << key;
        EXPECT_EQ(message.message, WM_CHAR);
        EXPECT_EQ(message.wParam, character);
        EXPECT_EQ(message.lParam, 99);
        EXPECT_EQ(takeAny(), 0u);
    }
}

TEST_F(MessageQueue, PostsNothingForKeysWithoutACharacter) {
    // Mouse buttons, shift, control, caps lock, page up, arrows, delete, the keys next to digits and letters, F1,
    // and what is no virtual key.
    const WPARAM keys[] = {0x00, 0x01, 0x02, 0x10, 0x11, 0x14, 0x21,  0x25,
                           0x2E, 0x2F, 0x3A, 0x40, 0x5B, 0x70, 0x1B1B};
    for (const WPARAM key : keys) {
        const MSG down = makeMessage(WM_KEYDOWN, key);
        EXPECT_NE(TranslateMessage(&down), 0);
        EXPECT_EQ(takeAny(), 0u) << key;
    }
}

TEST_F(MessageQueue, TranslatesPressesOnly) {
    for (const UINT kind : {WM_KEYUP, kSystemKeyDown, kSystemKeyUp}) {
        const MSG message = makeMessage(kind, VK_ESCAPE);
        EXPECT_NE(TranslateMessage(&message), 0);
        EXPECT_EQ(takeAny(), 0u);
    }
    for (const UINT kind : {WM_CHAR, WM_UNICHAR, WM_USER, 0u}) {
        const MSG message = makeMessage(kind, VK_ESCAPE);
        EXPECT_EQ(TranslateMessage(&message), 0);
        EXPECT_EQ(takeAny(), 0u);
    }
    EXPECT_EQ(TranslateMessage(nullptr), 0);
}

TEST_F(MessageQueue, TranslationWithoutMemoryLosesTheCharacter) {
    const MSG down = makeMessage(WM_KEYDOWN, VK_ESCAPE);
    velquad::test::failAllocation(1);
    EXPECT_NE(TranslateMessage(&down), 0);
    EXPECT_TRUE(velquad::test::hasAllocationFailed());
    velquad::test::failAllocation(0);
    EXPECT_EQ(takeAny(), 0u);
}

thread_local std::vector<UINT> dispatched;

LRESULT record(const MSG* message) {
    dispatched.push_back(message->message);
    return static_cast<LRESULT>(message->wParam) + 1;
}

LRESULT answerFive(const MSG* /*message*/) {
    return 5;
}

TEST_F(MessageQueue, DispatchesToTheHandlerOfTheThread) {
    const MSG message = makeMessage(WM_USER, 10);
    EXPECT_EQ(DispatchMessageW(&message), 0);
    dispatched.clear();
    EXPECT_EQ(SetMessageDispatchHandler(record), nullptr);
    EXPECT_EQ(DispatchMessageW(&message), 11);
    EXPECT_EQ(DispatchMessageW(nullptr), 0);
    EXPECT_EQ(dispatched, (std::vector<UINT>{WM_USER}));
    std::thread([&message] { EXPECT_EQ(DispatchMessageW(&message), 0); }).join();
    EXPECT_EQ(SetMessageDispatchHandler(answerFive), &record);
    EXPECT_EQ(DispatchMessageW(&message), 5);
    EXPECT_EQ(SetMessageDispatchHandler(nullptr), &answerFive);
}

TEST_F(MessageQueue, EscapeFromAnotherThreadBreaks) {
    EXPECT_EQ(matPollUserBreak(), 0);
    std::thread([target = self_] { EXPECT_NE(PostThreadMessageW(target, WM_CHAR, VK_ESCAPE, 0), 0); }).join();
    EXPECT_EQ(matPollUserBreak(), 1);
    EXPECT_EQ(matPollUserBreak(), 0);
}

TEST_F(MessageQueue, EscapeKeyBreaksAtTheFollowingPoll) {
    ASSERT_NE(PostThreadMessageW(self_, WM_KEYDOWN, VK_ESCAPE, 0), 0);
    EXPECT_EQ(matPollUserBreak(), 0);
    EXPECT_EQ(matPollUserBreak(), 1);
    EXPECT_EQ(matPollUserBreak(), 0);
}

}  // namespace
