// Zoom of images, affine transform and blur of volumes by the library.
#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <vector>

#include "bench/peers/array_data.h"
#include "velquad/array.h"

namespace {

using namespace velquad::bench;

enum ZoomFlags : unsigned int { kZoomNearest = 1, kZoomBilinear = 2, kZoomCubic = 4 };
enum AffineFlags : DWORD { kTrilinear = 0, kNearest = 1 };

template <class T, unsigned int Flags>
void zoom(benchmark::State& state) {
    const auto from = static_cast<unsigned int>(state.range(0));
    const auto to = static_cast<unsigned int>(state.range(1));
    std::vector<T> source = rampWithNoise<T>(std::size_t{from} * from);
    std::vector<T> destination(std::size_t{to} * to);
    const std::vector<void*> sourceRows = rowTable(source, from);
    const std::vector<void*> destinationRows = rowTable(destination, to);
    for (auto _ : state) {
        matZoomArray2v(from, from, sourceRows.data(), to, to, destinationRows.data(), kTypeOf<T>, Flags);
        benchmark::ClobberMemory();
    }
    showMean(state, destination.data(), destination.size());
}

BENCHMARK(zoom<std::uint8_t, kZoomNearest>)->Name("zoomNearest/uint8/velquad")->Apply(zoomSizes);
BENCHMARK(zoom<std::uint16_t, kZoomNearest>)->Name("zoomNearest/uint16/velquad")->Apply(zoomSizes);
BENCHMARK(zoom<float, kZoomNearest>)->Name("zoomNearest/float/velquad")->Apply(zoomSizes);
BENCHMARK(zoom<std::uint8_t, kZoomBilinear>)->Name("zoomBilinear/uint8/velquad")->Apply(zoomSizes);
BENCHMARK(zoom<std::uint16_t, kZoomBilinear>)->Name("zoomBilinear/uint16/velquad")->Apply(zoomSizes);
BENCHMARK(zoom<float, kZoomBilinear>)->Name("zoomBilinear/float/velquad")->Apply(zoomSizes);
BENCHMARK(zoom<std::uint8_t, kZoomCubic>)->Name("zoomCubic/uint8/velquad")->Apply(zoomSizes);
BENCHMARK(zoom<std::uint16_t, kZoomCubic>)->Name("zoomCubic/uint16/velquad")->Apply(zoomSizes);
BENCHMARK(zoom<float, kZoomCubic>)->Name("zoomCubic/float/velquad")->Apply(zoomSizes);

template <class T, DWORD Flags>
void affine(benchmark::State& state) {
    Volume<T> source;
    Volume<T> destination;
    double matrix[4][4];
    turnAboutCentre(matrix);
    for (auto _ : state) {
        matAffinTransformArray3v(kVolumeSize, kVolumeSize, kVolumeSize, source.slices(), kVolumeSize,
                                 kVolumeSize, kVolumeSize, destination.slices(), kTypeOf<T>, matrix, Flags);
        benchmark::ClobberMemory();
    }
    destination.showMean(state);
}

BENCHMARK(affine<std::uint8_t, kNearest>)->Name("affineNearest/uint8/velquad")->Unit(benchmark::kMillisecond);
BENCHMARK(affine<float, kNearest>)->Name("affineNearest/float/velquad")->Unit(benchmark::kMillisecond);
BENCHMARK(affine<std::uint8_t, kTrilinear>)
    ->Name("affineLinear/uint8/velquad")
    ->Unit(benchmark::kMillisecond);
BENCHMARK(affine<float, kTrilinear>)->Name("affineLinear/float/velquad")->Unit(benchmark::kMillisecond);

/// Integers are filtered in a copy of floats and rounded once, as the peers do. The volume is blurred in place, further
/// with every round: the time does not depend on the values.
template <class T>
void blur(benchmark::State& state) {
    Volume<T> volume;
    unsigned int size[] = {kVolumeSize, kVolumeSize, kVolumeSize};
    double sigma[] = {kBlurSigma, kBlurSigma, kBlurSigma};
    double radiusFactor[] = {kBlurRadiusFactor, kBlurRadiusFactor, kBlurRadiusFactor};
    for (auto _ : state) {
        matGaussianBlurFilter3v(volume.slices(), size, kTypeOf<T>, 1, nullptr, sigma, radiusFactor, 1,
                                nullptr, nullptr);
        benchmark::ClobberMemory();
    }
    volume.showMean(state);
}

BENCHMARK(blur<std::uint8_t>)->Name("blur/uint8/velquad")->Unit(benchmark::kMillisecond);
BENCHMARK(blur<float>)->Name("blur/float/velquad")->Unit(benchmark::kMillisecond);

}  // namespace
