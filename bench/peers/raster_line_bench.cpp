// Raster lines in pixels per second, next to OpenCV's line iterator, on the same lines in random directions.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
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

/// Lines of `length` pixels in all directions, within the square of that side, so that an image can hold them.
std::vector<Line> makeLines(int length) {
    std::mt19937 random(1);
    std::uniform_int_distribution<int> across(1 - length, length - 1);
    std::vector<Line> lines;
    for (std::size_t i = 0; i < kLines; ++i) {
        const int major = i % 2 == 0 ? length - 1 : 1 - length;
        const int minor = across(random);
        const int dx = i % 4 < 2 ? major : minor;
        const int dy = i % 4 < 2 ? minor : major;
        const int x0 = std::max(0, -dx);
        const int y0 = std::max(0, -dy);
        lines.push_back({x0, y0, x0 + dx, y0 + dy});
    }
    return lines;
}

/// Times `draw(line, points)`, which gives the number of pixels it went through.
template <class Draw>
void drawAll(benchmark::State& state, Draw draw) {
    const auto length = static_cast<std::size_t>(state.range(0));
    const std::vector<Line> lines = makeLines(static_cast<int>(length));
    std::vector<tagPOINT> points(length);
    for (const Line& line : lines) {
        if (static_cast<std::size_t>(draw(line, points)) != length) {
            state.SkipWithError("a line has another number of pixels");
            return;
        }
    }
    for (auto _ : state) {
        for (const Line& line : lines) {
            benchmark::DoNotOptimize(draw(line, points));
            benchmark::ClobberMemory();
        }
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kLines) * state.range(0));
}

void wholeStored(benchmark::State& state) {
    drawAll(state, [](const Line& line, std::vector<tagPOINT>& points) {
        return matGetBresenhamLine(line.x0, line.y0, line.x1, line.y1, points.data(),
                                   static_cast<unsigned int>(points.size()));
    });
}

void fittingStored(benchmark::State& state) {
    drawAll(state, [](const Line& line, std::vector<tagPOINT>& points) {
        return matGetLine(line.x0, line.y0, line.x1, line.y1, points.data(),
                          static_cast<unsigned int>(points.size()));
    });
}

void walkStored(benchmark::State& state) {
    drawAll(state, [](const Line& line, std::vector<tagPOINT>& points) {
        CMatBresenhamLine walk(CPoint(line.x0, line.y0), CPoint(line.x1, line.y1));
        unsigned int count = 0;
        for (CPoint pixel; walk.GetNextPoint(pixel); ++count)
            points[count] = pixel;
        return count;
    });
}

void walked(benchmark::State& state) {
    drawAll(state, [](const Line& line, const std::vector<tagPOINT>&) {
        CMatBresenhamLine walk(CPoint(line.x0, line.y0), CPoint(line.x1, line.y1));
        unsigned int count = 0;
        for (CPoint pixel; walk.GetNextPoint(pixel); ++count)
            benchmark::DoNotOptimize(pixel);
        return count;
    });
}

cv::Point startOf(const Line& line) {
    return {line.x0, line.y0};
}

cv::Point endOf(const Line& line) {
    return {line.x1, line.y1};
}

/// An image that holds the lines. Its pixels are neither set nor read.
cv::Mat makeImage(const benchmark::State& state) {
    const int side = static_cast<int>(state.range(0));
    return cv::Mat(side, side, CV_8UC1);
}

void storePositions(cv::LineIterator& pixel, std::vector<tagPOINT>& points) {
    for (int i = 0; i < pixel.count; ++i, ++pixel) {
        const cv::Point position = pixel.pos();
        tagPOINT& point = points[static_cast<std::size_t>(i)];
        point.x = position.x;
        point.y = position.y;
    }
}

void peerPointStored(benchmark::State& state) {
    drawAll(state, [](const Line& line, std::vector<tagPOINT>& points) {
        cv::LineIterator pixel(startOf(line), endOf(line));
        storePositions(pixel, points);
        return pixel.count;
    });
}

void peerAddressStored(benchmark::State& state) {
    const cv::Mat image = makeImage(state);
    drawAll(state, [&image](const Line& line, std::vector<tagPOINT>& points) {
        cv::LineIterator pixel(image, startOf(line), endOf(line));
        storePositions(pixel, points);
        return pixel.count;
    });
}

void peerPointWalked(benchmark::State& state) {
    drawAll(state, [](const Line& line, const std::vector<tagPOINT>&) {
        cv::LineIterator pixel(startOf(line), endOf(line));
        for (int i = 0; i < pixel.count; ++i, ++pixel) {
            cv::Point position = pixel.pos();
            benchmark::DoNotOptimize(position);
        }
        return pixel.count;
    });
}

void peerAddressWalked(benchmark::State& state) {
    const cv::Mat image = makeImage(state);
    drawAll(state, [&image](const Line& line, const std::vector<tagPOINT>&) {
        cv::LineIterator pixel(image, startOf(line), endOf(line));
        for (int i = 0; i < pixel.count; ++i, ++pixel) {
            uchar* address = *pixel;
            benchmark::DoNotOptimize(address);
        }
        return pixel.count;
    });
}

void setLengths(benchmark::internal::Benchmark* benchmark) {
    benchmark->RangeMultiplier(10)->Range(10, 10000);
}

BENCHMARK(wholeStored)->Name("velquad/wholeStored")->Apply(setLengths);
BENCHMARK(fittingStored)->Name("velquad/fittingStored")->Apply(setLengths);
BENCHMARK(walkStored)->Name("velquad/walkStored")->Apply(setLengths);
BENCHMARK(peerPointStored)->Name("opencv/pointStored")->Apply(setLengths);
BENCHMARK(peerAddressStored)->Name("opencv/addressStored")->Apply(setLengths);
BENCHMARK(walked)->Name("velquad/walked")->Apply(setLengths);
BENCHMARK(peerPointWalked)->Name("opencv/pointWalked")->Apply(setLengths);
BENCHMARK(peerAddressWalked)->Name("opencv/addressWalked")->Apply(setLengths);

}  // namespace
