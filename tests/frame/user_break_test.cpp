#include "frame/user_break.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "velquad/platform.h"

namespace {

using velquad::frame::matPollUserBreak;

bool peek(UINT kind, UINT flags) {
    MSG message{};
    return PeekMessageW(&message, nullptr, kind, kind, flags) != 0;
}

class UserBreak : public testing::Test {
  protected:
    void SetUp() override {
        MSG message{};
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != 0) {
        }
        self_ = GetCurrentThreadId();
    }
    void post(UINT message, WPARAM wParam) const {
        ASSERT_NE(PostThreadMessageW(self_, message, wParam, 0), 0);
    }

    DWORD self_ = 0;
};

TEST_F(UserBreak, IsNotThereOnAnEmptyQueue) {
    EXPECT_EQ(matPollUserBreak(), 0);
}

TEST_F(UserBreak, IsAnEscapeCharacterAndConsumesIt) {
    post(WM_CHAR, 27);
    EXPECT_EQ(matPollUserBreak(), 1);
    EXPECT_EQ(matPollUserBreak(), 0);
    EXPECT_FALSE(peek(WM_CHAR, PM_NOREMOVE));
}

TEST_F(UserBreak, IsNoOtherCharacter) {
    post(WM_CHAR, 'q');
    post(WM_CHAR, 26);
    post(WM_CHAR, 28);
    for (int count = 0; count < 3; ++count)
        EXPECT_EQ(matPollUserBreak(), 0);
    EXPECT_FALSE(peek(WM_CHAR, PM_NOREMOVE));
}

TEST_F(UserBreak, IsNoKeyReleaseOrUnicodeCharacter) {
    post(WM_KEYUP, VK_ESCAPE);
    post(WM_UNICHAR, 27);
    EXPECT_EQ(matPollUserBreak(), 0);
    EXPECT_EQ(matPollUserBreak(), 0);
    EXPECT_EQ(matPollUserBreak(), 0);
    EXPECT_FALSE(peek(WM_KEYUP, PM_NOREMOVE));
    EXPECT_FALSE(peek(WM_UNICHAR, PM_NOREMOVE));
}

TEST_F(UserBreak, TakesOneMessageACall) {
    post(WM_CHAR, 'a');
    post(WM_CHAR, 27);
    EXPECT_EQ(matPollUserBreak(), 0);
    EXPECT_EQ(matPollUserBreak(), 1);
}

TEST_F(UserBreak, LeavesMessagesOutsideOfTheKeyboardRange) {
    post(WM_KEYDOWN - 1, 27);
    post(WM_UNICHAR + 1, 27);
    post(WM_USER, 27);
    EXPECT_EQ(matPollUserBreak(), 0);
    EXPECT_TRUE(peek(WM_KEYDOWN - 1, PM_REMOVE));
    EXPECT_TRUE(peek(WM_UNICHAR + 1, PM_REMOVE));
    EXPECT_TRUE(peek(WM_USER, PM_REMOVE));
}

TEST_F(UserBreak, PassesOverOtherMessagesToReachAnEscape) {
    post(WM_USER, 0);
    post(WM_CHAR, 27);
    EXPECT_EQ(matPollUserBreak(), 1);
    EXPECT_TRUE(peek(WM_USER, PM_REMOVE));
}

TEST_F(UserBreak, TranslatesAKeyPressToItsCharacter) {
    post(WM_KEYDOWN, VK_ESCAPE);
    EXPECT_EQ(matPollUserBreak(), 0);
    EXPECT_EQ(matPollUserBreak(), 1);
}

TEST_F(UserBreak, ComesFromAnotherThread) {
    std::thread([this] { post(WM_CHAR, 27); }).join();
    EXPECT_EQ(matPollUserBreak(), 1);
}

TEST_F(UserBreak, BelongsToOneThread) {
    post(WM_CHAR, 27);
    std::thread([] { EXPECT_EQ(matPollUserBreak(), 0); }).join();
    EXPECT_EQ(matPollUserBreak(), 1);
}

#if !defined(_WIN32)
std::vector<UINT> dispatched;

LRESULT record(const MSG* message) {
    dispatched.push_back(message->message);
    return 0;
}

TEST_F(UserBreak, DispatchesEveryMessageButEscape) {
    dispatched.clear();
    SetMessageDispatchHandler(record);
    post(WM_KEYDOWN, 'A');
    post(WM_KEYUP, 'A');
    post(WM_CHAR, 27);
    EXPECT_EQ(matPollUserBreak(), 0);
    EXPECT_EQ(matPollUserBreak(), 0);
    EXPECT_EQ(matPollUserBreak(), 1);
    EXPECT_EQ(matPollUserBreak(), 0);
    EXPECT_EQ(matPollUserBreak(), 0);
    SetMessageDispatchHandler(nullptr);
    EXPECT_EQ(dispatched, (std::vector<UINT>{WM_KEYDOWN, WM_KEYUP, WM_CHAR}));
}
#endif

}  // namespace
