// Volumes of 256^3: affine transform, blur and conversions, next to the loops that define them. Arguments:
// type code, then nearest or convert.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstring>
#include <random>

#include "frame/kernels.h"
#include "tests/support/volume_reference.h"
#include "velquad/array.h"

namespace {

namespace volume = velquad::test::volume;

constexpr unsigned int kSize = 256;
constexpr double kSigma[] = {2.0, 2.0, 2.0};
constexpr double kRadiusFactor[] = {1.5, 1.5, 1.5};

/// A volume of the library with a smooth pattern and noise.
class Volume {
  public:
    explicit Volume(unsigned int type) : slices_(matAllocArray3v(kSize, kSize, kSize, type, 1, nullptr)) {
        std::mt19937 random(11);
        for (std::size_t z = 0; z < kSize; ++z) {
            for (std::size_t y = 0; y < kSize; ++y) {
                for (std::size_t x = 0; x < kSize; ++x) {
                    const double value = static_cast<double>((x + y + z) / 4 + random() % 32);
                    volume::write(type, volume::rowOf(slices_, z, y) + x * volume::bytesOf(type), value);
                }
            }
        }
    }
    Volume(const Volume&) = delete;
    Volume& operator=(const Volume&) = delete;
    ~Volume() { matFreeArray3v(slices_); }

    void*** get() const { return slices_; }

  private:
    void*** slices_;
};

unsigned int argument(const benchmark::State& state, std::size_t index) {
    return static_cast<unsigned int>(state.range(index));
}

void finish(benchmark::State& state) {
    state.SetItemsProcessed(state.iterations() * kSize * kSize * kSize);
    state.SetLabel(velquad::frame::kernelLevelName(velquad::frame::kernelLevel()));
}

/// A turn about an oblique axis through the centre.
void turn(double (&matrix)[4][4]) {
    const double c = std::cos(0.5);
    const double s = std::sin(0.5);
    const double first[3][3] = {{c, -s, 0}, {s, c, 0}, {0, 0, 1}};
    const double second[3][3] = {{1, 0, 0}, {0, c, -s}, {0, s, c}};
    for (int row = 0; row < 3; ++row) {
        double shift = 0.5 * kSize;
        for (int column = 0; column < 3; ++column) {
            matrix[row][column] = 0.0;
            for (int k = 0; k < 3; ++k)
                matrix[row][column] += first[row][k] * second[k][column];
            shift -= matrix[row][column] * 0.5 * kSize;
        }
        matrix[row][3] = shift;
        matrix[3][row] = 0.0;
    }
    matrix[3][3] = 1.0;
}

void affine(benchmark::State& state) {
    const unsigned int type = argument(state, 0);
    const Volume source(type);
    const Volume destination(type);
    double matrix[4][4];
    turn(matrix);
    for (auto _ : state) {
        matAffinTransformArray3v(kSize, kSize, kSize, source.get(), kSize, kSize, kSize, destination.get(),
                                 type, matrix, argument(state, 1));
        benchmark::ClobberMemory();
    }
    finish(state);
}

void affineLiteral(benchmark::State& state) {
    const unsigned int type = argument(state, 0);
    const Volume source(type);
    const Volume destination(type);
    double matrix[4][4];
    turn(matrix);
    const double background = 0.0;
    const volume::Shape shape = {kSize, kSize, kSize, type, 1};
    const double(*const rows)[4] = matrix;
    for (auto _ : state) {
        volume::resampleOfType(type, shape, source.get(), kSize, kSize, kSize, destination.get(), rows, false,
                               argument(state, 1) != 0, &background);
        benchmark::ClobberMemory();
    }
    finish(state);
}

void blur(benchmark::State& state) {
    const unsigned int type = argument(state, 0);
    const Volume data(type);
    unsigned int size[] = {kSize, kSize, kSize};
    double sigma[] = {kSigma[0], kSigma[1], kSigma[2]};
    double radiusFactor[] = {kRadiusFactor[0], kRadiusFactor[1], kRadiusFactor[2]};
    for (auto _ : state) {
        matGaussianBlurFilter3v(data.get(), size, type, 1, nullptr, sigma, radiusFactor,
                                static_cast<int>(state.range(1)), nullptr, nullptr);
        benchmark::ClobberMemory();
    }
    finish(state);
}

void blurLiteral(benchmark::State& state) {
    const unsigned int type = argument(state, 0);
    const Volume data(type);
    volume::Blur filter;
    filter.sigma = kSigma;
    filter.radiusFactor = kRadiusFactor;
    const volume::Shape shape = {kSize, kSize, kSize, type, 1};
    volume::Shape copyShape = shape;
    copyShape.type = MAT_ARRAY_FLOAT;
    for (auto _ : state) {
        if (state.range(1) != 0 && type < 5) {
            void*** copy = matAllocArray3v(kSize, kSize, kSize, MAT_ARRAY_FLOAT, 1, nullptr);
            volume::convert(data.get(), type, copy, MAT_ARRAY_FLOAT, shape);
            filter.run(copy, copyShape);
            volume::convert(copy, MAT_ARRAY_FLOAT, data.get(), type, shape);
            matFreeArray3v(copy);
        } else {
            filter.run(data.get(), shape);
        }
        benchmark::ClobberMemory();
    }
    finish(state);
}

void convertFromDouble(benchmark::State& state) {
    const unsigned int type = argument(state, 0);
    const Volume source(MAT_ARRAY_DOUBLE);
    const Volume destination(type);
    for (auto _ : state) {
        matConvertFromDouble3v(reinterpret_cast<double***>(source.get()), destination.get(), kSize, kSize,
                               kSize, type, 1);
        benchmark::ClobberMemory();
    }
    finish(state);
}

void convertFromDoubleLiteral(benchmark::State& state) {
    const unsigned int type = argument(state, 0);
    const Volume source(MAT_ARRAY_DOUBLE);
    const Volume destination(type);
    for (auto _ : state) {
        volume::convert(source.get(), MAT_ARRAY_DOUBLE, destination.get(), type,
                        {kSize, kSize, kSize, type, 1});
        benchmark::ClobberMemory();
    }
    finish(state);
}

void typesAndModes(benchmark::internal::Benchmark* family) {
    family->ArgsProduct({{2, 4, 7}, {0, 1}})->Unit(benchmark::kMillisecond);
}

BENCHMARK(affine)->Apply(typesAndModes);
BENCHMARK(affineLiteral)->Apply(typesAndModes)->Iterations(1);
BENCHMARK(blur)->Apply(typesAndModes);
BENCHMARK(blurLiteral)->Apply(typesAndModes)->Iterations(1);
BENCHMARK(convertFromDouble)->Arg(2)->Arg(4)->Arg(5)->Arg(7)->Unit(benchmark::kMillisecond);
BENCHMARK(convertFromDoubleLiteral)
    ->Arg(2)
    ->Arg(4)
    ->Arg(5)
    ->Arg(7)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);

}  // namespace
