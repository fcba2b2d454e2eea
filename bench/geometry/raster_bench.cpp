// Raster lines in pixels per second, next to the textbook's loop with a branch per pixel, and the clippers in
// segments per second.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <random>
#include <vector>

#include "velquad/geometry.h"

namespace {

constexpr std::size_t kLines = 64;

struct Line {
    int x0;
    int y0;
    int x1;
    int y1;
};

/// Lines of `length` pixels in all directions.
std::vector<Line> makeLines(int length) {
    std::mt19937 random(1);
    std::uniform_int_distribution<int> across(1 - length, length - 1);
    std::vector<Line> lines;
    for (std::size_t i = 0; i < kLines; ++i) {
        const int major = i % 2 == 0 ? length - 1 : 1 - length;
        const int minor = across(random);
        lines.push_back(i % 4 < 2 ? Line{0, 0, major, minor} : Line{0, 0, minor, major});
    }
    return lines;
}

void setPixels(benchmark::State& state) {
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kLines) * state.range(0));
}

/// The error term as the textbook has it.
unsigned int textbookLine(const Line& line, tagPOINT* points) {
    const int adx = std::abs(line.x1 - line.x0);
    const int ady = std::abs(line.y1 - line.y0);
    const int sx = line.x1 < line.x0 ? -1 : 1;
    const int sy = line.y1 < line.y0 ? -1 : 1;
    const int major = std::max(adx, ady);
    const int minor = std::min(adx, ady);
    int x = line.x0;
    int y = line.y0;
    int error = 2 * minor - major;
    for (int i = 0; i <= major; ++i) {
        points[i].x = x;
        points[i].y = y;
        if (error < 0) {
            if (adx < ady) {
                y += sy;
            } else {
                x += sx;
            }
            error += 2 * minor;
        } else {
            x += sx;
            y += sy;
            error += 2 * (minor - major);
        }
    }
    return static_cast<unsigned int>(major) + 1U;
}

template <class Draw>
void drawAll(benchmark::State& state, Draw draw) {
    const int length = static_cast<int>(state.range(0));
    const std::vector<Line> lines = makeLines(length);
    std::vector<tagPOINT> points(static_cast<std::size_t>(length));
    for (auto _ : state) {
        for (const Line& line : lines) {
            benchmark::DoNotOptimize(draw(line, points));
            benchmark::ClobberMemory();
        }
    }
    setPixels(state);
}

void textbook(benchmark::State& state) {
    drawAll(state, [](const Line& line, std::vector<tagPOINT>& points) {
        return textbookLine(line, points.data());
    });
}

void wholeLine(benchmark::State& state) {
    drawAll(state, [](const Line& line, std::vector<tagPOINT>& points) {
        return matGetBresenhamLine(line.x0, line.y0, line.x1, line.y1, points.data(),
                                   static_cast<unsigned int>(points.size()));
    });
}

void fittingLine(benchmark::State& state) {
    drawAll(state, [](const Line& line, std::vector<tagPOINT>& points) {
        return matGetLine(line.x0, line.y0, line.x1, line.y1, points.data(),
                          static_cast<unsigned int>(points.size()));
    });
}

void walkedLine(benchmark::State& state) {
    drawAll(state, [](const Line& line, std::vector<tagPOINT>& points) {
        CMatBresenhamLine walk(CPoint(line.x0, line.y0), CPoint(line.x1, line.y1));
        unsigned int count = 0;
        for (CPoint pixel; walk.GetNextPoint(pixel); ++count) {
            points[count].x = pixel.x;
            points[count].y = pixel.y;
        }
        return count;
    });
}

/// Points around a rectangle of `kExtent`; a third of the segments is cut.
constexpr int kExtent = 1000;

std::vector<tagPOINT> makePoints(std::size_t count) {
    std::mt19937 random(2);
    std::uniform_int_distribution<int> place(-kExtent, 2 * kExtent);
    std::vector<tagPOINT> points;
    for (std::size_t i = 0; i < count; ++i) {
        const int x = place(random);
        points.push_back({x, place(random)});
    }
    return points;
}

void setSegments(benchmark::State& state) {
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void clipPixels(benchmark::State& state) {
    const auto count = static_cast<std::size_t>(state.range(0));
    const std::vector<tagPOINT> points = makePoints(2 * count);
    const int rect[] = {0, 0, kExtent, kExtent};
    for (auto _ : state) {
        int inside = 0;
        for (std::size_t i = 0; i < 2 * count; i += 2) {
            tagPOINT p1 = points[i];
            tagPOINT p2 = points[i + 1];
            inside += matClipLine2L(rect, &p1, &p2);
            benchmark::DoNotOptimize(p1);
            benchmark::DoNotOptimize(p2);
        }
        benchmark::DoNotOptimize(inside);
    }
    setSegments(state);
}

void clipDoubles(benchmark::State& state) {
    const auto count = static_cast<std::size_t>(state.range(0));
    std::vector<tagPOINT2D> points;
    for (const tagPOINT& p : makePoints(2 * count))
        points.push_back({static_cast<double>(p.x), static_cast<double>(p.y)});
    const tagMAT_RECT2D rect{0.0, 0.0, kExtent, kExtent};
    for (auto _ : state) {
        int inside = 0;
        for (std::size_t i = 0; i < 2 * count; i += 2) {
            tagPOINT2D p1 = points[i];
            tagPOINT2D p2 = points[i + 1];
            inside += matClipLine2D(&rect, &p1, &p2);
            benchmark::DoNotOptimize(p1);
            benchmark::DoNotOptimize(p2);
        }
        benchmark::DoNotOptimize(inside);
    }
    setSegments(state);
}

void clipSpace(benchmark::State& state) {
    const auto count = static_cast<std::size_t>(state.range(0));
    const std::vector<tagPOINT> flat = makePoints(4 * count);
    std::vector<tagPOINT3D> points;
    for (std::size_t i = 0; i < 4 * count; i += 2) {
        points.push_back({static_cast<double>(flat[i].x), static_cast<double>(flat[i].y),
                          static_cast<double>(flat[i + 1].x)});
    }
    const double corner[] = {0.0, 0.0, 0.0};
    for (auto _ : state) {
        int met = 0;
        for (std::size_t i = 0; i < 2 * count; i += 2) {
            tagPOINT3D first{};
            tagPOINT3D second{};
            met +=
                matClipLine3D(corner, kExtent, kExtent, kExtent, &points[i], &points[i + 1], &first, &second);
            benchmark::DoNotOptimize(first);
            benchmark::DoNotOptimize(second);
        }
        benchmark::DoNotOptimize(met);
    }
    setSegments(state);
}

#define VELQUAD_LENGTHS Arg(10)->Arg(100)->Arg(1000)->Arg(10000)
BENCHMARK(textbook)->VELQUAD_LENGTHS;
BENCHMARK(wholeLine)->VELQUAD_LENGTHS;
BENCHMARK(fittingLine)->VELQUAD_LENGTHS;
BENCHMARK(walkedLine)->VELQUAD_LENGTHS;

#define VELQUAD_SEGMENTS Arg(64)->Arg(1024)->Arg(65536)
BENCHMARK(clipPixels)->VELQUAD_SEGMENTS;
BENCHMARK(clipDoubles)->VELQUAD_SEGMENTS;
BENCHMARK(clipSpace)->VELQUAD_SEGMENTS;

}  // namespace
