// OpenCV's answers about outlines; see outline_bench.cpp for those of the library.
#include <benchmark/benchmark.h>

#include <opencv2/imgproc.hpp>
#include <vector>

#include "bench/peers/outline_queries.h"

namespace {

using namespace velquad::bench;

void opencvPointPolygonTest(benchmark::State& state) {
    const std::vector<tagPOINT> points = outline(state);
    std::vector<cv::Point> contour;
    contour.reserve(points.size());
    for (const tagPOINT& p : points)
        contour.emplace_back(p.x, p.y);
    measureMembership(state, [&](const tagPOINT& test) {
        const cv::Point2f point(static_cast<float>(test.x), static_cast<float>(test.y));
        return cv::pointPolygonTest(contour, point, false) >= 0.0;
    });
}
BENCHMARK(opencvPointPolygonTest)->Apply(membershipArguments);

}  // namespace
