#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "velquad/platform.h"

namespace {

std::wstring received;

void receive(const wchar_t* text) {
    received += text;
}

void ignore(const wchar_t* /*text*/) {}

std::string standardErrorOf(const wchar_t* text) {
    testing::internal::CaptureStderr();
    OutputDebugStringW(text);
    return testing::internal::GetCapturedStderr();
}

TEST(OutputDebugString, WritesToTheReplacedSink) {
    received.clear();
    const DebugOutputSink before = SetDebugOutputSink(receive);
    EXPECT_EQ(before, nullptr);
    OutputDebugStringW(L"one ");
    OutputDebugStringW(L"two\x20AC");
    EXPECT_EQ(SetDebugOutputSink(nullptr), &receive);
    EXPECT_EQ(received, L"one two\x20AC");
}

TEST(OutputDebugString, GivesThePreviousSinkBack) {
    EXPECT_EQ(SetDebugOutputSink(receive), nullptr);
    EXPECT_EQ(SetDebugOutputSink(ignore), &receive);
    EXPECT_EQ(SetDebugOutputSink(nullptr), &ignore);
    EXPECT_EQ(SetDebugOutputSink(nullptr), nullptr);
}

TEST(OutputDebugString, IgnoresNull) {
    received.clear();
    SetDebugOutputSink(receive);
    OutputDebugStringW(nullptr);
    SetDebugOutputSink(nullptr);
    EXPECT_TRUE(received.empty());
    EXPECT_EQ(standardErrorOf(nullptr), "");
}

TEST(OutputDebugString, WritesUtf8ToStandardErrorByDefault) {
    EXPECT_EQ(standardErrorOf(L"plain\n"), "plain\n");
    EXPECT_EQ(standardErrorOf(L""), "");
    // The first and the last character of each length.
    const wchar_t edges[] = {0x7F, 0x80, 0x7FF, 0x800, 0xFFFF, 0x10000, 0x10FFFF, 0};
    EXPECT_EQ(standardErrorOf(edges),
              "\x7F"
              "\xC2\x80"
              "\xDF\xBF"
              "\xE0\xA0\x80"
              "\xEF\xBF\xBF"
              "\xF0\x90\x80\x80"
              "\xF4\x8F\xBF\xBF");
}

TEST(OutputDebugString, ReplacesWhatIsNoCharacter) {
    const std::string replacement = "\xEF\xBF\xBD";
    const wchar_t invalid[] = {'a', 0xD800, 'b', 0xDFFF, 'c', 0x110000, 'd', -1, 'e', 0};
    EXPECT_EQ(standardErrorOf(invalid),
              "a" + replacement + "b" + replacement + "c" + replacement + "d" + replacement + "e");
    const wchar_t neighbours[] = {0xD7FF, 0xE000, 0};
    EXPECT_EQ(standardErrorOf(neighbours), "\xED\x9F\xBF\xEE\x80\x80");
}

TEST(OutputDebugString, WritesTextsLongerThanItsBuffer) {
    for (const std::size_t length : {506u, 507u, 508u, 509u, 510u, 511u, 512u, 513u, 3000u}) {
        const std::wstring text = std::wstring(length, L'x') + L'\x20AC';
        EXPECT_EQ(standardErrorOf(text.c_str()), std::string(length, 'x') + "\xE2\x82\xAC") << length;
    }
}

TEST(OutputDebugString, KeepsTextsOfDifferentThreadsApart) {
    constexpr int kThreads = 4;
    constexpr int kTexts = 20;
    testing::internal::CaptureStderr();
    std::vector<std::thread> threads;
    for (int index = 0; index < kThreads; ++index) {
        threads.emplace_back([index] {
            const std::wstring text(1500, static_cast<wchar_t>(L'a' + index));
            for (int round = 0; round < kTexts; ++round)
                OutputDebugStringW((text + L'\n').c_str());
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    const std::string output = testing::internal::GetCapturedStderr();
    ASSERT_EQ(output.size(), std::size_t{kThreads} * kTexts * 1501);
    for (std::size_t start = 0; start < output.size(); start += 1501) {
        EXPECT_EQ(output.substr(start, 1501), std::string(1500, output[start]) + '\n');
    }
}

}  // namespace
