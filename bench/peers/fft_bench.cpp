// A real signal to its spectrum and back by the library, which computes its factors in every call.
#include <benchmark/benchmark.h>

#include <cstddef>
#include <vector>

#include "bench/peers/fft_round_trip.h"
#include "velquad/signal.h"

namespace {

using velquad::bench::fftSizes;
using velquad::bench::measureRoundTrip;

void roundTrip(benchmark::State& state) {
    const auto n = static_cast<unsigned int>(state.range(0));
    std::vector<double> re(n);
    std::vector<double> im(n);
    measureRoundTrip(state, [&](const std::vector<double>& signal, std::vector<double>& back) {
        matFFT(signal.data(), n, re.data(), im.data());
        matInvFFT(re.data(), im.data(), n, back.data());
    });
}

BENCHMARK(roundTrip)->Name("velquad/complex")->Apply(fftSizes);

}  // namespace
