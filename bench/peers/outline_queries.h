// The outlines and the questions that the library and its peers are timed with, and the answers that all must give.
#ifndef VELQUAD_BENCH_PEERS_OUTLINE_QUERIES_H
#define VELQUAD_BENCH_PEERS_OUTLINE_QUERIES_H

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "bench/polygon/outlines.h"

namespace velquad::bench {

enum Shape {
    kTraced,   ///< As traced from an image: neighbours are pixels that touch.
    kRagged,   ///< A star whose corners have random distances from its centre.
    kCrossed,  ///< Traced, with two points exchanged near the end, so that it is not simple.
};

/// The pixels that a wavy closed curve of mean radius `radius` passes through, each once, in their order.
inline std::vector<tagPOINT> tracedCurve(double radius) {
    constexpr double kFullTurn = 6.283185307179586;
    const int steps = static_cast<int>(40.0 * radius);
    std::vector<tagPOINT> pixels;
    for (int k = 0; k < steps; ++k) {
        const double angle = kFullTurn * k / steps;
        const double r = radius * (1.0 + 0.2 * std::sin(16.0 * angle));
        const tagPOINT p{static_cast<LONG>(std::lround(r * std::cos(angle))),
                         static_cast<LONG>(std::lround(r * std::sin(angle)))};
        const auto isPixel = [&p](const tagPOINT& other) { return other.x == p.x && other.y == p.y; };
        if (!pixels.empty() && isPixel(pixels.back())) continue;
        // A step into a pixel and straight back is no part of an outline.
        if (pixels.size() > 1 && isPixel(pixels[pixels.size() - 2])) {
            pixels.pop_back();
            continue;
        }
        pixels.push_back(p);
    }
    // The last step leads back into the first pixel.
    const auto isFirst = [&pixels](const tagPOINT& p) { return p.x == pixels[0].x && p.y == pixels[0].y; };
    while (pixels.size() > 1 && isFirst(pixels.back()))
        pixels.pop_back();
    return pixels;
}

/// A traced outline of exactly `count` pixels: of one that has some more, a few are left out.
inline std::vector<tagPOINT> tracedOutline(int count) {
    const auto wanted = static_cast<std::size_t>(count);
    double radius = 0.05 * count;
    std::vector<tagPOINT> pixels = tracedCurve(radius);
    while (pixels.size() < wanted || pixels.size() > wanted + wanted / 100) {
        radius *= 1.003 * count / static_cast<double>(pixels.size());
        pixels = tracedCurve(radius);
    }
    std::vector<tagPOINT> outline;
    for (std::size_t k = 0; k < wanted; ++k)
        outline.push_back(pixels[k * pixels.size() / wanted]);
    return outline;
}

inline std::vector<tagPOINT> outline(benchmark::State& state) {
    const int count = static_cast<int>(state.range(1));
    if (state.range(0) == kRagged) return raggedStar(count, 16000.0);
    std::vector<tagPOINT> points = tracedOutline(count);
    if (state.range(0) == kCrossed) std::swap(points[points.size() - 10], points[points.size() - 5]);
    return points;
}

/// Test points all over the outline, so that no query is favoured: the centre, points of the outline and others
/// inside, outside and near it.
inline std::vector<tagPOINT> testPoints(const std::vector<tagPOINT>& points) {
    std::vector<tagPOINT> tests;
    for (std::size_t k = 0; k < 64; ++k) {
        const tagPOINT& p = points[k * points.size() / 64];
        const auto tenths = static_cast<LONG>(k % 13);
        tests.push_back({p.x * tenths / 10, p.y * tenths / 10});
    }
    return tests;
}

/// Tells in exact integers, by the even-odd rule, whether a point lies inside an outline or on it.
inline bool isInsideOrOn(const std::vector<tagPOINT>& points, const tagPOINT& test) {
    bool isInside = false;
    for (std::size_t i = 0, j = points.size() - 1; i < points.size(); j = i++) {
        const std::int64_t ax = std::int64_t{points[j].x} - test.x;
        const std::int64_t ay = std::int64_t{points[j].y} - test.y;
        const std::int64_t bx = std::int64_t{points[i].x} - test.x;
        const std::int64_t by = std::int64_t{points[i].y} - test.y;
        const std::int64_t side = ax * by - ay * bx;
        if (side == 0 && ax * bx <= 0 && ay * by <= 0) return true;
        if ((ay > 0) != (by > 0) && (by > ay) == (side > 0)) isInside = !isInside;
    }
    return isInside;
}

/// A wrong answer fails the benchmark.
template <class Query>
void measureSimplicity(benchmark::State& state, Query isSimple) {
    bool result = false;
    for (auto _ : state)
        benchmark::DoNotOptimize(result = isSimple());
    if (result == (state.range(0) == kCrossed)) state.SkipWithError("wrong answer");
}

/// A wrong answer to any of the questions fails the benchmark before it is timed.
template <class Query>
void measureMembership(benchmark::State& state, Query isInside) {
    const std::vector<tagPOINT> points = outline(state);
    const std::vector<tagPOINT> tests = testPoints(points);
    for (const tagPOINT& test : tests) {
        if (isInside(test) == isInsideOrOn(points, test)) continue;
        state.SkipWithError("wrong answer");
        return;
    }
    std::size_t next = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(isInside(tests[next++ % tests.size()]));
}

inline void simplicityArguments(benchmark::internal::Benchmark* benchmark) {
    benchmark->ArgNames({"shape", "points"})->Unit(benchmark::kMicrosecond);
    benchmark->ArgsProduct({{kTraced, kCrossed}, {1000, 10000, 100000}});
    benchmark->ArgsProduct({{kRagged}, {1000, 10000}});
}

inline void membershipArguments(benchmark::internal::Benchmark* benchmark) {
    benchmark->ArgNames({"shape", "points"})->Unit(benchmark::kMicrosecond);
    benchmark->ArgsProduct({{kTraced}, {1000, 10000, 100000}})->ArgsProduct({{kRagged}, {1000, 10000}});
}

}  // namespace velquad::bench

#endif  // VELQUAD_BENCH_PEERS_OUTLINE_QUERIES_H
