// Calls on disjoint data may run side by side: every thread gets the results of a thread that is alone. Built
// with the thread sanitizer, this finds any state that calls would share.
#include <gtest/gtest.h>

#include <cmath>
#include <thread>
#include <vector>

#include "velquad/velquad.h"

namespace {

constexpr int kThreads = 4;
constexpr int kRounds = 40;

/// A closed outline around (1000, 1000) whose shape depends on the seed.
std::vector<tagPOINT> wavyOutline(int seed) {
    constexpr int kPoints = 48;
    std::vector<tagPOINT> points;
    for (int i = 0; i < kPoints; ++i) {
        const double angle = 6.283185307179586 * i / kPoints;
        const double radius = 300.0 + 40.0 * std::sin((3 + seed % 5) * angle);
        points.push_back({static_cast<LONG>(1000 + radius * std::cos(angle)),
                          static_cast<LONG>(1000 + radius * std::sin(angle))});
    }
    points.push_back(points.front());
    return points;
}

/// Everything that a round computes, in the order it was computed.
using Results = std::vector<double>;

void measureHandle(void* handle, Results& results) {
    auto* record = static_cast<tagPOLY*>(GlobalLock(handle));
    ASSERT_NE(record, nullptr);
    const tagPOINT middle{1000, 1000};
    results.push_back(record->count);
    results.push_back(polyCalcAreaExact(record->points, record->count));
    results.push_back(polyCalcLength(record->points, record->count, 0, 0));
    results.push_back(polyIsPointInside(record->points, record->count, &middle));
    results.push_back(polyIsCCW(record->points, record->count));
    results.push_back(
        polyCalcDistance(record->points, record->count, 1, &middle, 0, nullptr, nullptr, nullptr));
    GlobalUnlock(handle);
}

Results runRound(int seed) {
    Results results;
    const std::vector<tagPOINT> points = wavyOutline(seed);
    void* outline = polyCopy(points.data(), static_cast<DWORD>(points.size()), 1);
    unsigned int error = 99;
    void* through = polyCalcInterpolatingCurve(outline, 2.0, 0.3, &error);
    results.push_back(error);
    void* fitted = polyCalcFittingCurve(outline, 2.0, 4, &error);
    results.push_back(error);
    for (void* handle : {outline, through, fitted})
        measureHandle(handle, results);
    double matrix[4][4];
    matComputeRotationMatrix4(matrix, 10.0 + seed, 1, 2);
    results.push_back(matInvertMatrix4(matrix, matrix, 0));
    results.push_back(matrix[0][1]);
    for (void* handle : {outline, through, fitted})
        EXPECT_EQ(polyFree(handle), 1);
    return results;
}

}  // namespace

TEST(DisjointData, GivesEveryThreadTheResultsOfALoneOne) {
    std::vector<Results> expected;
    for (int seed = 0; seed < kThreads; ++seed)
        expected.push_back(runRound(seed));

    std::vector<int> mismatches(kThreads, 0);
    std::vector<std::thread> threads;
    for (int seed = 0; seed < kThreads; ++seed) {
        threads.emplace_back([seed, &expected, &mismatches] {
            const auto index = static_cast<std::size_t>(seed);
            for (int round = 0; round < kRounds; ++round) {
                if (runRound(seed) != expected[index]) ++mismatches[index];
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(mismatches, std::vector<int>(kThreads, 0));
}

TEST(DisjointData, HandlesPassFromThreadToThread) {
    // A handle belongs to one thread at a time, not to the one that made it.
    std::vector<void*> handles(64, nullptr);
    std::thread maker([&handles] {
        for (std::size_t i = 0; i < handles.size(); ++i) {
            const tagPOINT point{static_cast<LONG>(i), 7};
            handles[i] = polyConvertFromPoint(&point);
        }
    });
    maker.join();
    for (std::size_t i = 0; i < handles.size(); ++i) {
        const auto* record = static_cast<const tagPOLY*>(GlobalLock(handles[i]));
        ASSERT_NE(record, nullptr);
        EXPECT_EQ(record->count, 1U);
        EXPECT_EQ(record->points[0].x, static_cast<LONG>(i));
        GlobalUnlock(handles[i]);
        EXPECT_EQ(polyFree(handles[i]), 1);
    }
}
