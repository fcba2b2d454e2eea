#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "frame/kernels.h"
#include "signal/correlation_kernels.h"
#include "tests/support/allocation_failure.h"
#include "tests/support/pattern_correlation_reference.h"
#include "velquad/signal.h"

namespace {

using velquad::signal::CorrelationPattern;
using velquad::test::correlateLiterally;

using Values = std::vector<double>;

/// Releases a handle at the end of a test.
class Correlation {
  public:
    explicit Correlation(const Values& pattern)
        : handle_(fnrInitCorrelation(pattern.data(), static_cast<int>(pattern.size()))) {}
    Correlation(const Correlation&) = delete;
    Correlation& operator=(const Correlation&) = delete;
    ~Correlation() { fnrExitCorrelation(&handle_); }
    void* handle() const { return handle_; }
    int run(const Values& signal, Values& result) const {
        return fnrDoCorrelation(handle_, signal.data(), static_cast<unsigned int>(signal.size()),
                                result.data(), static_cast<int>(result.size()));
    }

  private:
    void* handle_;
};

TEST(Correlation, PatternWithItselfIsOne) {
    const Correlation correlation({1, 2, 4, 1});
    Values result(1, 7.0);
    EXPECT_EQ(correlation.run({1, 2, 4, 1}, result), 1);
    EXPECT_DOUBLE_EQ(result[0], 1.0);
}

TEST(Correlation, ValuesByHand) {
    // The pattern about its mean is (-1, 1), its norm the root of 2.
    const Correlation correlation({2, 4});
    Values result(4, 7.0);
    EXPECT_EQ(correlation.run({1, 3, 0, 0, 5}, result), 4);
    // Window (1, 3): sum 4, squares 10, x 2, dot 2. Window (3, 0): sum 3, squares 9, x 4.5, dot -3.
    EXPECT_DOUBLE_EQ(result[0], 1.0);
    EXPECT_DOUBLE_EQ(result[1], -1.0);
    EXPECT_EQ(result[2], 0.0);
    EXPECT_DOUBLE_EQ(result[3], 1.0);
}

TEST(Correlation, FlatWindowGivesItsSquaresAboutTheMean) {
    const Correlation correlation({1, 2, 3});
    // 0.1 three times: the squares less the square of the sum by 3 need not be 0 exactly, only not above it.
    for (const double level : {0.0, 1.0, 0.1, 0.7, -0.3, 1e150}) {
        Values result(1, 7.0);
        EXPECT_EQ(correlation.run({level, level, level}, result), 1);
        const double sum = level + level + level;
        const double about = (level * level + level * level + level * level) - sum / 3.0 * sum;
        if (about > 0.0) continue;
        EXPECT_EQ(result[0], about) << level;
    }
    Values result(1, 7.0);
    EXPECT_EQ(correlation.run({4, 4, 4}, result), 1);
    EXPECT_EQ(result[0], 0.0);
}

TEST(Correlation, RefusesPatternsBelowTwoSamples) {
    const Values pattern{1, 2};
    EXPECT_EQ(fnrInitCorrelation(pattern.data(), 1), nullptr);
    EXPECT_EQ(fnrInitCorrelation(pattern.data(), 0), nullptr);
    EXPECT_EQ(fnrInitCorrelation(pattern.data(), -5), nullptr);
    EXPECT_EQ(fnrInitCorrelation(nullptr, 5), nullptr);
}

TEST(Correlation, ConstantPatternHasNoCorrelation) {
    const Correlation correlation({3, 3, 3});
    ASSERT_NE(correlation.handle(), nullptr);
    Values result(1, 7.0);
    EXPECT_EQ(correlation.run({1, 2, 3}, result), -1);
    EXPECT_EQ(result[0], 7.0);
}

TEST(Correlation, RefusesWhatHasNoResult) {
    const Correlation correlation({1, 2, 3});
    const Values signal{1, 2, 3, 5};
    Values result(4, 7.0);
    EXPECT_EQ(fnrDoCorrelation(nullptr, signal.data(), 4, result.data(), 4), -1);
    EXPECT_EQ(fnrDoCorrelation(correlation.handle(), nullptr, 4, result.data(), 4), -1);
    EXPECT_EQ(fnrDoCorrelation(correlation.handle(), signal.data(), 4, nullptr, 4), -1);
    EXPECT_EQ(fnrDoCorrelation(correlation.handle(), signal.data(), 2, result.data(), 4), -1);
    EXPECT_EQ(fnrDoCorrelation(correlation.handle(), signal.data(), 0, result.data(), 4), -1);
    EXPECT_EQ(fnrDoCorrelation(correlation.handle(), signal.data(), 4, result.data(), 0), -1);
    EXPECT_EQ(fnrDoCorrelation(correlation.handle(), signal.data(), 4, result.data(), -1), -1);
    EXPECT_EQ(result, (Values{7, 7, 7, 7}));
    EXPECT_EQ(fnrDoCorrelation(correlation.handle(), signal.data(), 3, result.data(), 4), 1);
    EXPECT_EQ(fnrDoCorrelation(correlation.handle(), signal.data(), 4, result.data(), 1), 1);
    EXPECT_EQ(result[1], 7.0);
    EXPECT_EQ(fnrDoCorrelation(correlation.handle(), signal.data(), 4, result.data(), 100), 2);
    EXPECT_EQ(result[2], 7.0);
}

TEST(Correlation, ExitSetsTheHandleToNull) {
    const Values pattern{1, 2};
    void* handle = fnrInitCorrelation(pattern.data(), 2);
    ASSERT_NE(handle, nullptr);
    fnrExitCorrelation(&handle);
    EXPECT_EQ(handle, nullptr);
    fnrExitCorrelation(&handle);
    fnrExitCorrelation(nullptr);
    EXPECT_EQ(handle, nullptr);
}

TEST(Correlation, InitReportsLackOfMemory) {
    const Values pattern{1, 2, 5};
    const std::size_t count = velquad::test::forEachFailingAllocation([&] {
        void* handle = fnrInitCorrelation(pattern.data(), 3);
        const bool hasFailed = handle == nullptr;
        fnrExitCorrelation(&handle);
        return hasFailed;
    });
    EXPECT_EQ(count, 2U);
}

TEST(Correlation, CopiesThePatternAndMayWorkInPlace) {
    Values pattern{1, 5, 2};
    const Correlation correlation(pattern);
    pattern = {0, 0, 0};
    std::mt19937_64 random(9);
    std::uniform_real_distribution<double> number(-1.0, 1.0);
    Values signal(1200);
    for (double& sample : signal)
        sample = number(random);
    Values result(signal.size());
    EXPECT_EQ(correlation.run(signal, result), 1198);
    EXPECT_EQ(fnrDoCorrelation(correlation.handle(), signal.data(), 1200, signal.data(), 1200), 1198);
    for (std::size_t i = 0; i < 1198; ++i)
        ASSERT_EQ(signal[i], result[i]) << i;
}

/// Samples of one kind or another.
double randomSample(std::mt19937_64& random, int kind) {
    switch (kind) {
        case 0:
            return std::uniform_real_distribution<double>(-1.0, 1.0)(random);
        case 1:
            return static_cast<double>(random() % 3U);
        case 2:
            return 1e5 + 0.1 * static_cast<double>(random() % 2U);
        default:
            return random() % 40U == 0 ? std::numeric_limits<double>::infinity() : 1e-160;
    }
}

bool sameNumber(double first, double second) {
    if (std::isnan(first) && std::isnan(second)) return true;
    return std::memcmp(&first, &second, sizeof first) == 0;
}

TEST(Correlation, EveryInstructionSetGivesTheBitsOfTheLiteralLoops) {
    constexpr std::uint64_t kSeed = 84;
    std::mt19937_64 random(kSeed);
    const std::size_t usual = velquad::frame::kernelLevel();
    for (std::size_t level = 0; level < velquad::frame::kernelLevelCount(); ++level) {
        velquad::frame::selectKernelLevel(level);
        SCOPED_TRACE(velquad::frame::kernelLevelName(level) + std::string(", seed ") + std::to_string(kSeed));
        for (int round = 0; round < 120; ++round) {
            const int kind = round % 4;
            const std::size_t size = round % 20 == 0 ? 255 + random() % 300 : 2 + random() % 40;
            const std::size_t count = 1 + random() % (round % 3 == 0 ? 1200 : 90);
            Values pattern(size);
            for (double& sample : pattern)
                sample = randomSample(random, kind % 3);
            Values signal(size + count - 1);
            for (double& sample : signal)
                sample = randomSample(random, kind);
            const double norm = 1.0 + static_cast<double>(random() % 100U) / 7.0;
            Values expected(count);
            correlateLiterally(pattern.data(), size, norm, signal.data(), count, expected.data());
            Values actual(count + 1, 7.0);
            velquad::signal::correlationKernels().correlate(CorrelationPattern{pattern.data(), size, norm},
                                                            signal.data(), count, actual.data());
            for (std::size_t i = 0; i < count; ++i)
                ASSERT_TRUE(sameNumber(actual[i], expected[i])) << "round " << round << ", shift " << i;
            ASSERT_EQ(actual[count], 7.0);
        }
    }
    velquad::frame::selectKernelLevel(usual);
}

TEST(Correlation, ExportGivesTheBitsOfTheLiteralLoops) {
    std::mt19937_64 random(85);
    for (int round = 0; round < 60; ++round) {
        const std::size_t size = 2 + random() % 70;
        Values pattern(size);
        Values signal(size + random() % 200);
        for (double& sample : pattern)
            sample = randomSample(random, round % 3);
        for (double& sample : signal)
            sample = randomSample(random, round % 3);
        double sum = 0.0;
        double squares = 0.0;
        for (const double sample : pattern) {
            sum += sample;
            squares += sample * sample;
        }
        const double mean = sum / static_cast<double>(size);
        const double x = squares - mean * sum;
        const double norm = x > 0.0 ? std::sqrt(x) : 0.0;
        Values centred = pattern;
        for (double& sample : centred)
            sample -= mean;
        const std::size_t count = signal.size() - size + 1;
        Values result(count, 7.0);
        const int expectedCount = norm <= 0.0 ? -1 : static_cast<int>(count);
        ASSERT_EQ(Correlation(pattern).run(signal, result), expectedCount);
        if (expectedCount < 0) continue;
        Values expected(count);
        correlateLiterally(centred.data(), size, norm, signal.data(), count, expected.data());
        for (std::size_t i = 0; i < count; ++i)
            ASSERT_TRUE(sameNumber(result[i], expected[i])) << "round " << round << ", shift " << i;
    }
}

}  // namespace
