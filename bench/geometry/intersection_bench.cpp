// Crossings of lines, segments and ellipses. The inline forms that other rooms call in their loops stand next to
// the exported ones, and the answer alone next to the whole result.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

#include "geometry/line_intersection.h"
#include "velquad/geometry.h"

namespace {

using velquad::geometry::crossLines;
using velquad::geometry::crossSegments;
using velquad::geometry::crossSegmentsInTouchingBoxes;
using velquad::geometry::SegmentCrossing;
using velquad::geometry::SegmentTraits;

/// Consecutive fours are a pair of segments.
template <class Point>
std::vector<Point> makePairs(std::size_t count, int extent, int length) {
    std::mt19937 random(1);
    std::uniform_int_distribution<int> place(0, extent);
    std::uniform_int_distribution<int> step(-length, length);
    std::vector<Point> points;
    points.reserve(4 * count);
    using Coordinate = decltype(Point::x);
    for (std::size_t i = 0; i < 2 * count; ++i) {
        const int x = place(random);
        const int y = place(random);
        points.push_back({static_cast<Coordinate>(x), static_cast<Coordinate>(y)});
        points.push_back(
            {static_cast<Coordinate>(x + step(random)), static_cast<Coordinate>(y + step(random))});
    }
    return points;
}

/// Most pairs of an outline are far apart; these are.
constexpr int kSparseExtent = 1000;
/// Boxes of these pairs overlap nearly always.
constexpr int kDenseExtent = 10;
constexpr int kLength = 30;

void setItems(benchmark::State& state) {
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

template <class Point, int kExtent>
void answerOfSegments(benchmark::State& state) {
    const auto count = static_cast<std::size_t>(state.range(0));
    const std::vector<Point> p = makePairs<Point>(count, kExtent, kLength);
    for (auto _ : state) {
        int contacts = 0;
        for (std::size_t i = 0; i < 4 * count; i += 4) {
            contacts += crossSegments(p[i], p[i + 1], p[i + 2], p[i + 3]) ? 1 : 0;
        }
        benchmark::DoNotOptimize(contacts);
    }
    setItems(state);
}

/// The plain box test, which leaves at the first comparison that rejects a pair.
template <class Point>
bool crossSegmentsPlain(const Point& a0, const Point& a1, const Point& b0, const Point& b1) {
    using Traits = SegmentTraits<Point>;
    if (Traits::isFarAbove(std::min(a0.x, a1.x), std::max(b0.x, b1.x))) return false;
    if (Traits::isFarAbove(std::min(a0.y, a1.y), std::max(b0.y, b1.y))) return false;
    if (Traits::isFarBelow(std::max(a0.x, a1.x), std::min(b0.x, b1.x))) return false;
    if (Traits::isFarBelow(std::max(a0.y, a1.y), std::min(b0.y, b1.y))) return false;
    return crossSegmentsInTouchingBoxes(a0, a1, b0, b1, static_cast<SegmentCrossing*>(nullptr));
}

template <class Point, int kExtent>
void plainAnswerOfSegments(benchmark::State& state) {
    const auto count = static_cast<std::size_t>(state.range(0));
    const std::vector<Point> p = makePairs<Point>(count, kExtent, kLength);
    for (auto _ : state) {
        int contacts = 0;
        for (std::size_t i = 0; i < 4 * count; i += 4) {
            contacts += crossSegmentsPlain(p[i], p[i + 1], p[i + 2], p[i + 3]) ? 1 : 0;
        }
        benchmark::DoNotOptimize(contacts);
    }
    setItems(state);
}

template <class Point, int kExtent>
void resultOfSegments(benchmark::State& state) {
    const auto count = static_cast<std::size_t>(state.range(0));
    const std::vector<Point> p = makePairs<Point>(count, kExtent, kLength);
    for (auto _ : state) {
        double sum = 0.0;
        for (std::size_t i = 0; i < 4 * count; i += 4) {
            SegmentCrossing crossing;
            if (crossSegments(p[i], p[i + 1], p[i + 2], p[i + 3], &crossing)) sum += crossing.parameterB;
        }
        benchmark::DoNotOptimize(sum);
    }
    setItems(state);
}

int exportedSegments(const tagPOINT* p, SegmentCrossing& out, int& isParallel) {
    return matIntersectSegments2L(p, p + 1, p + 2, p + 3, &out.point, &out.parameterA, &out.parameterB,
                                  &isParallel);
}
int exportedSegments(const tagPOINT2D* p, SegmentCrossing& out, int& isParallel) {
    return matIntersectSegments2D(p, p + 1, p + 2, p + 3, &out.point, &out.parameterA, &out.parameterB,
                                  &isParallel);
}

template <class Point, int kExtent>
void exportOfSegments(benchmark::State& state) {
    const auto count = static_cast<std::size_t>(state.range(0));
    const std::vector<Point> p = makePairs<Point>(count, kExtent, kLength);
    for (auto _ : state) {
        double sum = 0.0;
        for (std::size_t i = 0; i < 4 * count; i += 4) {
            SegmentCrossing crossing;
            int isParallel = 0;
            if (exportedSegments(&p[i], crossing, isParallel) != 0) sum += crossing.parameterB;
        }
        benchmark::DoNotOptimize(sum);
    }
    setItems(state);
}

template <class Point>
void parameterOfLines(benchmark::State& state) {
    const auto count = static_cast<std::size_t>(state.range(0));
    const std::vector<Point> p = makePairs<Point>(count, kDenseExtent, kLength);
    for (auto _ : state) {
        double sum = 0.0;
        for (std::size_t i = 0; i < 4 * count; i += 4) {
            const auto crossing = crossLines(p[i], p[i + 1], p[i + 2], p[i + 3]);
            if (!crossing.isParallel) sum += crossing.parameterA;
        }
        benchmark::DoNotOptimize(sum);
    }
    setItems(state);
}

void lineAndEllipse(benchmark::State& state) {
    const auto count = static_cast<std::size_t>(state.range(0));
    const std::vector<tagPOINT2D> p = makePairs<tagPOINT2D>(count, kDenseExtent, kLength);
    const int rect[] = {-20, -20, 40, 40};
    for (auto _ : state) {
        int crossings = 0;
        for (std::size_t i = 0; i < 4 * count; i += 4) {
            tagPOINT2D first;
            tagPOINT2D second;
            crossings += matIntersectLineAndEllipse(rect, &p[i], &p[i + 1], &first, &second);
        }
        benchmark::DoNotOptimize(crossings);
    }
    setItems(state);
}

#define VELQUAD_SIZES Arg(64)->Arg(1024)->Arg(65536)
BENCHMARK(plainAnswerOfSegments<tagPOINT, kSparseExtent>)->VELQUAD_SIZES;
BENCHMARK(answerOfSegments<tagPOINT, kSparseExtent>)->VELQUAD_SIZES;
BENCHMARK(plainAnswerOfSegments<tagPOINT, kDenseExtent>)->VELQUAD_SIZES;
BENCHMARK(answerOfSegments<tagPOINT, kDenseExtent>)->VELQUAD_SIZES;
BENCHMARK(resultOfSegments<tagPOINT, kDenseExtent>)->VELQUAD_SIZES;
BENCHMARK(exportOfSegments<tagPOINT, kSparseExtent>)->VELQUAD_SIZES;
BENCHMARK(exportOfSegments<tagPOINT, kDenseExtent>)->VELQUAD_SIZES;
BENCHMARK(plainAnswerOfSegments<tagPOINT2D, kSparseExtent>)->VELQUAD_SIZES;
BENCHMARK(answerOfSegments<tagPOINT2D, kSparseExtent>)->VELQUAD_SIZES;
BENCHMARK(plainAnswerOfSegments<tagPOINT2D, kDenseExtent>)->VELQUAD_SIZES;
BENCHMARK(answerOfSegments<tagPOINT2D, kDenseExtent>)->VELQUAD_SIZES;
BENCHMARK(resultOfSegments<tagPOINT2D, kDenseExtent>)->VELQUAD_SIZES;
BENCHMARK(exportOfSegments<tagPOINT2D, kDenseExtent>)->VELQUAD_SIZES;
BENCHMARK(parameterOfLines<tagPOINT>)->VELQUAD_SIZES;
BENCHMARK(parameterOfLines<tagPOINT2D>)->VELQUAD_SIZES;
BENCHMARK(lineAndEllipse)->VELQUAD_SIZES;

}  // namespace
