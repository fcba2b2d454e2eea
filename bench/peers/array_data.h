// Images and volumes that the library and its peers resample and blur.
#ifndef VELQUAD_BENCH_PEERS_ARRAY_DATA_H
#define VELQUAD_BENCH_PEERS_ARRAY_DATA_H

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

#include "velquad/array.h"

namespace velquad::bench {

constexpr unsigned int kVolumeSize = 256;
constexpr double kBlurSigma = 2.0;
constexpr double kBlurRadiusFactor = 4.0;

template <class T>
constexpr unsigned int kTypeOf = 0;
template <>
inline constexpr unsigned int kTypeOf<std::uint8_t> = MAT_ARRAY_UINT8;
template <>
inline constexpr unsigned int kTypeOf<std::uint16_t> = MAT_ARRAY_UINT16;
template <>
inline constexpr unsigned int kTypeOf<float> = MAT_ARRAY_FLOAT;

/// A ramp with noise, smaller than 256.
template <class T>
std::vector<T> rampWithNoise(std::size_t count) {
    std::mt19937 random(11);
    std::vector<T> values(count);
    for (std::size_t i = 0; i < count; ++i)
        values[i] = static_cast<T>(i / 64 % 192 + random() % 64);
    return values;
}

/// What of the library is one row table over rows without gaps.
template <class T>
std::vector<void*> rowTable(std::vector<T>& values, std::size_t width) {
    std::vector<void*> rows;
    for (std::size_t at = 0; at < values.size(); at += width)
        rows.push_back(values.data() + at);
    return rows;
}

/// Shows the mean of a result, which tells whether the peers have done the same.
template <class T>
void showMean(benchmark::State& state, const T* values, std::size_t count) {
    double sum = 0.0;
    for (std::size_t i = 0; i < count; ++i)
        sum += static_cast<double>(values[i]);
    state.counters["mean"] = sum / static_cast<double>(count);
}

/// A cube without gaps and the tables that name its rows.
template <class T>
class Volume {
  public:
    Volume() : values_(rampWithNoise<T>(std::size_t{kVolumeSize} * kVolumeSize * kVolumeSize)) {
        rows_ = rowTable(values_, kVolumeSize);
        for (std::size_t z = 0; z < kVolumeSize; ++z)
            slices_.push_back(rows_.data() + z * kVolumeSize);
    }

    void*** slices() { return slices_.data(); }

    void showMean(benchmark::State& state) const { bench::showMean(state, values_.data(), values_.size()); }

  private:
    std::vector<T> values_;
    std::vector<void*> rows_;
    std::vector<void**> slices_;
};

/// A turn about an oblique axis through the centre, from source to destination.
inline void turnAboutCentre(double (&matrix)[4][4]) {
    const double c = std::cos(0.5);
    const double s = std::sin(0.5);
    const double turn[3][3] = {{c, -s * c, s * s}, {s, c * c, -c * s}, {0, s, c}};
    const double centre = 0.5 * kVolumeSize;
    for (int row = 0; row < 3; ++row) {
        matrix[row][3] = centre;
        for (int column = 0; column < 3; ++column) {
            matrix[row][column] = turn[row][column];
            matrix[row][3] -= turn[row][column] * centre;
        }
        matrix[3][row] = 0.0;
    }
    matrix[3][3] = 1.0;
}

inline void zoomSizes(benchmark::internal::Benchmark* family) {
    family->ArgNames({"from", "to"})->Args({2048, 4096})->Args({4096, 1500})->Unit(benchmark::kMillisecond);
}

}  // namespace velquad::bench

#endif  // VELQUAD_BENCH_PEERS_ARRAY_DATA_H
