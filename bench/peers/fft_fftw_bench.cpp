// A real signal to its spectrum and back by FFTW with estimated plans: plans made once, and plans made for every round
// trip.
#include <benchmark/benchmark.h>
#include <fftw3.h>

#include <cstddef>
#include <vector>

#include "bench/peers/fft_round_trip.h"

namespace {

using velquad::bench::fftSizes;
using velquad::bench::measureRoundTrip;

template <class T>
class Buffer {
  public:
    explicit Buffer(std::size_t count) : values_(static_cast<T*>(fftw_malloc(count * sizeof(T)))) {}
    Buffer(const Buffer&) = delete;
    Buffer& operator=(const Buffer&) = delete;
    ~Buffer() { fftw_free(values_); }

    T* get() const { return values_; }

  private:
    T* values_;
};

/// All n frequencies.
class ComplexTransform {
  public:
    explicit ComplexTransform(std::size_t n) : n_(n), time_(n), spectrum_(n) {}

    void plan() {
        const auto n = static_cast<int>(n_);
        forward_ = fftw_plan_dft_1d(n, time_.get(), spectrum_.get(), FFTW_FORWARD, FFTW_ESTIMATE);
        inverse_ = fftw_plan_dft_1d(n, spectrum_.get(), time_.get(), FFTW_BACKWARD, FFTW_ESTIMATE);
    }

    void forget() {
        fftw_destroy_plan(forward_);
        fftw_destroy_plan(inverse_);
    }

    void run(const std::vector<double>& signal, std::vector<double>& back) {
        fftw_complex* time = time_.get();
        for (std::size_t i = 0; i < n_; ++i) {
            time[i][0] = signal[i];
            time[i][1] = 0.0;
        }
        fftw_execute(forward_);
        fftw_execute(inverse_);
        const double factor = 1.0 / static_cast<double>(n_);
        for (std::size_t i = 0; i < n_; ++i)
            back[i] = time[i][0] * factor;
    }

  private:
    std::size_t n_;
    Buffer<fftw_complex> time_;
    Buffer<fftw_complex> spectrum_;
    fftw_plan forward_ = nullptr;
    fftw_plan inverse_ = nullptr;
};

/// The n / 2 + 1 frequencies that are not mirrored.
class RealTransform {
  public:
    explicit RealTransform(std::size_t n) : n_(n), time_(n), spectrum_(n / 2 + 1) {}

    void plan() {
        const auto n = static_cast<int>(n_);
        forward_ = fftw_plan_dft_r2c_1d(n, time_.get(), spectrum_.get(), FFTW_ESTIMATE);
        inverse_ = fftw_plan_dft_c2r_1d(n, spectrum_.get(), time_.get(), FFTW_ESTIMATE);
    }

    void forget() {
        fftw_destroy_plan(forward_);
        fftw_destroy_plan(inverse_);
    }

    void run(const std::vector<double>& signal, std::vector<double>& back) {
        double* time = time_.get();
        for (std::size_t i = 0; i < n_; ++i)
            time[i] = signal[i];
        fftw_execute(forward_);
        fftw_execute(inverse_);
        const double factor = 1.0 / static_cast<double>(n_);
        for (std::size_t i = 0; i < n_; ++i)
            back[i] = time[i] * factor;
    }

  private:
    std::size_t n_;
    Buffer<double> time_;
    Buffer<fftw_complex> spectrum_;
    fftw_plan forward_ = nullptr;
    fftw_plan inverse_ = nullptr;
};

template <class Transform>
void planKept(benchmark::State& state) {
    Transform transform(static_cast<std::size_t>(state.range(0)));
    transform.plan();
    measureRoundTrip(state, [&](const std::vector<double>& signal, std::vector<double>& back) {
        transform.run(signal, back);
    });
    transform.forget();
}

/// The choice of algorithm is remembered by FFTW from the first plan on, its factors are not.
template <class Transform>
void planMade(benchmark::State& state) {
    Transform transform(static_cast<std::size_t>(state.range(0)));
    measureRoundTrip(state, [&](const std::vector<double>& signal, std::vector<double>& back) {
        transform.plan();
        transform.run(signal, back);
        transform.forget();
    });
}

BENCHMARK(planKept<ComplexTransform>)->Name("fftw/complexPlanKept")->Apply(fftSizes);
BENCHMARK(planMade<ComplexTransform>)->Name("fftw/complexPlanMade")->Apply(fftSizes);
BENCHMARK(planKept<RealTransform>)->Name("fftw/realPlanKept")->Apply(fftSizes);
BENCHMARK(planMade<RealTransform>)->Name("fftw/realPlanMade")->Apply(fftSizes);

}  // namespace
