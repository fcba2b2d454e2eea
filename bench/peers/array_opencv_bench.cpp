// Zoom of images by OpenCV in one thread.
#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "bench/peers/array_data.h"

namespace {

using namespace velquad::bench;

template <class T, int Interpolation>
void zoom(benchmark::State& state) {
    cv::setNumThreads(1);
    const auto from = static_cast<int>(state.range(0));
    const auto to = static_cast<int>(state.range(1));
    std::vector<T> values = rampWithNoise<T>(static_cast<std::size_t>(from) * static_cast<std::size_t>(from));
    const cv::Mat source(from, from, cv::DataType<T>::type, values.data());
    cv::Mat destination(to, to, cv::DataType<T>::type);
    for (auto _ : state) {
        cv::resize(source, destination, destination.size(), 0.0, 0.0, Interpolation);
        benchmark::ClobberMemory();
    }
    showMean(state, destination.ptr<T>(), destination.total());
}

BENCHMARK(zoom<std::uint8_t, cv::INTER_NEAREST>)->Name("zoomNearest/uint8/opencv")->Apply(zoomSizes);
BENCHMARK(zoom<std::uint16_t, cv::INTER_NEAREST>)->Name("zoomNearest/uint16/opencv")->Apply(zoomSizes);
BENCHMARK(zoom<float, cv::INTER_NEAREST>)->Name("zoomNearest/float/opencv")->Apply(zoomSizes);
BENCHMARK(zoom<std::uint8_t, cv::INTER_LINEAR>)->Name("zoomBilinear/uint8/opencv")->Apply(zoomSizes);
BENCHMARK(zoom<std::uint16_t, cv::INTER_LINEAR>)->Name("zoomBilinear/uint16/opencv")->Apply(zoomSizes);
BENCHMARK(zoom<float, cv::INTER_LINEAR>)->Name("zoomBilinear/float/opencv")->Apply(zoomSizes);
BENCHMARK(zoom<std::uint8_t, cv::INTER_CUBIC>)->Name("zoomCubic/uint8/opencv")->Apply(zoomSizes);
BENCHMARK(zoom<std::uint16_t, cv::INTER_CUBIC>)->Name("zoomCubic/uint16/opencv")->Apply(zoomSizes);
BENCHMARK(zoom<float, cv::INTER_CUBIC>)->Name("zoomCubic/float/opencv")->Apply(zoomSizes);

}  // namespace
