// A real signal to its spectrum and back by the radix-2 transforms of the GNU Scientific Library, which take no tables.
#include <benchmark/benchmark.h>
#include <gsl/gsl_fft_complex.h>
#include <gsl/gsl_fft_halfcomplex.h>
#include <gsl/gsl_fft_real.h>

#include <cstddef>
#include <vector>

#include "bench/peers/fft_round_trip.h"

namespace {

using velquad::bench::fftSizes;
using velquad::bench::measureRoundTrip;

/// All n frequencies.
void complexRadix2(benchmark::State& state) {
    const auto n = static_cast<std::size_t>(state.range(0));
    std::vector<double> packed(2 * n);
    measureRoundTrip(state, [&](const std::vector<double>& signal, std::vector<double>& back) {
        for (std::size_t i = 0; i < n; ++i) {
            packed[2 * i] = signal[i];
            packed[2 * i + 1] = 0.0;
        }
        gsl_fft_complex_radix2_forward(packed.data(), 1, n);
        gsl_fft_complex_radix2_inverse(packed.data(), 1, n);
        for (std::size_t i = 0; i < n; ++i)
            back[i] = packed[2 * i];
    });
}

/// The frequencies that are not mirrored.
void realRadix2(benchmark::State& state) {
    const auto n = static_cast<std::size_t>(state.range(0));
    measureRoundTrip(state, [&](const std::vector<double>& signal, std::vector<double>& back) {
        back = signal;
        gsl_fft_real_radix2_transform(back.data(), 1, n);
        gsl_fft_halfcomplex_radix2_inverse(back.data(), 1, n);
    });
}

BENCHMARK(complexRadix2)->Name("gsl/complexRadix2")->Apply(fftSizes);
BENCHMARK(realRadix2)->Name("gsl/realRadix2")->Apply(fftSizes);

}  // namespace
