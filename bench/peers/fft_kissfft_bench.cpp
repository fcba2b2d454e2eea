// A real signal to its spectrum and back by the double precision of KissFFT's C++ template: tables made once, and tables
// made for every round trip.
#include <benchmark/benchmark.h>

#include <complex>
#include <cstddef>
#include <kissfft/kissfft.hh>
#include <vector>

#include "bench/peers/fft_round_trip.h"

namespace {

using velquad::bench::fftSizes;
using velquad::bench::measureRoundTrip;
using Spectrum = std::vector<std::complex<double>>;

void run(const kissfft<double>& forward, const kissfft<double>& inverse, Spectrum& time, Spectrum& spectrum,
         const std::vector<double>& signal, std::vector<double>& back) {
    for (std::size_t i = 0; i < time.size(); ++i)
        time[i] = signal[i];
    forward.transform(time.data(), spectrum.data());
    inverse.transform(spectrum.data(), time.data());
    const double factor = 1.0 / static_cast<double>(time.size());
    for (std::size_t i = 0; i < time.size(); ++i)
        back[i] = time[i].real() * factor;
}

void planKept(benchmark::State& state) {
    const auto n = static_cast<std::size_t>(state.range(0));
    const kissfft<double> forward(n, false);
    const kissfft<double> inverse(n, true);
    Spectrum time(n);
    Spectrum spectrum(n);
    measureRoundTrip(state, [&](const std::vector<double>& signal, std::vector<double>& back) {
        run(forward, inverse, time, spectrum, signal, back);
    });
}

void planMade(benchmark::State& state) {
    const auto n = static_cast<std::size_t>(state.range(0));
    Spectrum time(n);
    Spectrum spectrum(n);
    measureRoundTrip(state, [&](const std::vector<double>& signal, std::vector<double>& back) {
        run(kissfft<double>(n, false), kissfft<double>(n, true), time, spectrum, signal, back);
    });
}

BENCHMARK(planKept)->Name("kissfft/complexPlanKept")->Apply(fftSizes);
BENCHMARK(planMade)->Name("kissfft/complexPlanMade")->Apply(fftSizes);

}  // namespace
