// What may be shared: one correlation handle serves several threads at once. Built with the thread sanitizer, this
// finds any write to it.
#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "velquad/signal.h"

namespace {

TEST(SharedHandle, CorrelatesInSeveralThreadsAtOnce) {
    constexpr int kThreads = 4;
    constexpr int kRounds = 20;
    std::vector<double> pattern(64);
    for (std::size_t i = 0; i < pattern.size(); ++i)
        pattern[i] = static_cast<double>(i * i % 17);
    std::vector<double> signal(2000);
    for (std::size_t i = 0; i < signal.size(); ++i)
        signal[i] = static_cast<double>(i * 7 % 31);
    void* handle = fnrInitCorrelation(pattern.data(), static_cast<int>(pattern.size()));
    ASSERT_NE(handle, nullptr);
    const auto run = [&] {
        std::vector<double> result(signal.size());
        const int count = fnrDoCorrelation(handle, signal.data(), static_cast<unsigned int>(signal.size()),
                                           result.data(), static_cast<int>(result.size()));
        result.push_back(count);
        return result;
    };
    const std::vector<double> expected = run();
    EXPECT_EQ(expected.back(), 1937.0);
    std::vector<int> mismatches(kThreads, 0);
    std::vector<std::thread> threads;
    for (int& count : mismatches) {
        threads.emplace_back([&count, &run, &expected] {
            for (int round = 0; round < kRounds; ++round)
                count += run() == expected ? 0 : 1;
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(mismatches, std::vector<int>(kThreads, 0));
    fnrExitCorrelation(&handle);
}

}  // namespace
