// Affine transform and blur of volumes by ITK in one thread.
#include <benchmark/benchmark.h>
#include <itkAffineTransform.h>
#include <itkDiscreteGaussianImageFilter.h>
#include <itkImage.h>
#include <itkLinearInterpolateImageFunction.h>
#include <itkMultiThreaderBase.h>
#include <itkNearestNeighborInterpolateImageFunction.h>
#include <itkResampleImageFilter.h>
#include <itkSmoothingRecursiveGaussianImageFilter.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "bench/peers/array_data.h"

namespace {

using namespace velquad::bench;

template <class T>
using Image = itk::Image<T, 3>;

template <class T>
typename Image<T>::Pointer makeImage() {
    itk::MultiThreaderBase::SetGlobalMaximumNumberOfThreads(1);
    itk::MultiThreaderBase::SetGlobalDefaultNumberOfThreads(1);
    auto image = Image<T>::New();
    typename Image<T>::SizeType size;
    size.Fill(kVolumeSize);
    image->SetRegions(size);
    image->Allocate();
    const std::vector<T> values = rampWithNoise<T>(std::size_t{kVolumeSize} * kVolumeSize * kVolumeSize);
    std::copy(values.begin(), values.end(), image->GetBufferPointer());
    return image;
}

/// Runs a filter again and again on the same image.
template <class Filter>
void measure(benchmark::State& state, Filter& filter) {
    filter.SetNumberOfWorkUnits(1);
    for (auto _ : state) {
        filter.Modified();
        filter.Update();
        benchmark::ClobberMemory();
    }
    const auto* result = filter.GetOutput();
    showMean(state, result->GetBufferPointer(), result->GetPixelContainer()->Size());
}

template <class T, template <class, class> class Interpolator>
void affine(benchmark::State& state) {
    const auto image = makeImage<T>();
    double matrix[4][4];
    turnAboutCentre(matrix);
    // From destination to source: for a turn, the transposed matrix.
    using Transform = itk::AffineTransform<double, 3>;
    auto transform = Transform::New();
    Transform::MatrixType inverse;
    Transform::OutputVectorType shift;
    for (unsigned int row = 0; row < 3; ++row) {
        shift[row] = 0.0;
        for (unsigned int column = 0; column < 3; ++column) {
            inverse(row, column) = matrix[column][row];
            shift[row] -= matrix[column][row] * matrix[column][3];
        }
    }
    transform->SetMatrix(inverse);
    transform->SetTranslation(shift);
    auto filter = itk::ResampleImageFilter<Image<T>, Image<T>>::New();
    filter->SetInput(image);
    filter->SetTransform(transform);
    filter->SetInterpolator(Interpolator<Image<T>, double>::New());
    filter->SetReferenceImage(image);
    filter->UseReferenceImageOn();
    measure(state, *filter);
}

template <class Input, class Coordinate>
using Linear = itk::LinearInterpolateImageFunction<Input, Coordinate>;
template <class Input, class Coordinate>
using Nearest = itk::NearestNeighborInterpolateImageFunction<Input, Coordinate>;

BENCHMARK(affine<std::uint8_t, Nearest>)->Name("affineNearest/uint8/itk")->Unit(benchmark::kMillisecond);
BENCHMARK(affine<float, Nearest>)->Name("affineNearest/float/itk")->Unit(benchmark::kMillisecond);
BENCHMARK(affine<std::uint8_t, Linear>)->Name("affineLinear/uint8/itk")->Unit(benchmark::kMillisecond);
BENCHMARK(affine<float, Linear>)->Name("affineLinear/float/itk")->Unit(benchmark::kMillisecond);

/// By kernels of at most as many weights as the library's.
template <class T>
void discreteBlur(benchmark::State& state) {
    const auto image = makeImage<T>();
    auto filter = itk::DiscreteGaussianImageFilter<Image<T>, Image<T>>::New();
    filter->SetInput(image);
    filter->SetVariance(kBlurSigma * kBlurSigma);
    filter->SetMaximumError(1e-4);
    filter->SetMaximumKernelWidth(static_cast<unsigned int>(2.0 * kBlurSigma * kBlurRadiusFactor) + 1);
    measure(state, *filter);
}

/// By a recursion of fourth order, whose cost does not depend on sigma.
template <class T>
void recursiveBlur(benchmark::State& state) {
    const auto image = makeImage<T>();
    auto filter = itk::SmoothingRecursiveGaussianImageFilter<Image<T>, Image<T>>::New();
    filter->SetInput(image);
    filter->SetSigma(kBlurSigma);
    measure(state, *filter);
}

BENCHMARK(discreteBlur<std::uint8_t>)->Name("blur/uint8/itkDiscrete")->Unit(benchmark::kMillisecond);
BENCHMARK(discreteBlur<float>)->Name("blur/float/itkDiscrete")->Unit(benchmark::kMillisecond);
BENCHMARK(recursiveBlur<std::uint8_t>)->Name("blur/uint8/itkRecursive")->Unit(benchmark::kMillisecond);
BENCHMARK(recursiveBlur<float>)->Name("blur/float/itkRecursive")->Unit(benchmark::kMillisecond);

}  // namespace
