// The body of the correlation kernels, compiled once for each instruction set. The file that includes it defines
//
//     VELQUAD_KERNEL    the name of the kernel
//     VELQUAD_LANES     doubles in a vector
//
// Vectors run across stretches: lane j of a vector belongs to the stretch that begins j samples later, so each
// stretch is summed in its own order. Stretches are taken a tile at a time, as many as keep the adders busy; the
// squares of the samples under a tile are computed once for all of its stretches. Everything here has internal
// linkage, and no function of a header is called: the linker must never take this file's code for another's.
#include <cstddef>

#include "signal/correlation_kernel.h"

namespace velquad::signal {

namespace {

// One double or a vector of them; loads and stores may be unaligned. The width of the kernel is no template
// parameter: compilers differ in vector types that depend on one.
constexpr std::size_t kLanes = VELQUAD_LANES;
template <std::size_t Lanes>
struct Pack {
    using Value = double __attribute__((vector_size(VELQUAD_LANES * sizeof(double))));
};
template <>
struct Pack<1> {
    using Value = double;
};
static_assert(sizeof(Pack<kLanes>::Value) == kLanes * sizeof(double));

// Samples of the pattern between two refills of the squares.
constexpr std::size_t kChunk = 256;

__attribute__((always_inline)) inline double squareRoot(double value) {
    return __builtin_sqrt(value);
}

template <std::size_t Lanes>
struct Vectors {
    using Value = typename Pack<Lanes>::Value;

    // Vectors are handed on by reference: by value they would need an alignment of the stack.
    __attribute__((always_inline)) static void load(Value& vector, const double* from) {
        __builtin_memcpy(&vector, from, sizeof vector);
    }
    __attribute__((always_inline)) static void store(double* to, const Value& vector) {
        __builtin_memcpy(to, &vector, sizeof vector);
    }
};

// Correlates the pattern with Lanes * Count stretches.
template <std::size_t Lanes, std::size_t Count>
__attribute__((always_inline)) inline void correlateTile(const CorrelationPattern& pattern,
                                                         const double* signal, double* result) {
    using V = Vectors<Lanes>;
    using Value = typename V::Value;
    constexpr std::size_t kStretches = Lanes * Count;
    double squared[kChunk + kStretches];
    Value sum[Count] = {};
    Value squares[Count] = {};
    Value dot[Count] = {};
    for (std::size_t begin = 0; begin < pattern.count; begin += kChunk) {
        const std::size_t length = pattern.count - begin < kChunk ? pattern.count - begin : kChunk;
        const double* const samples = signal + begin;
        for (std::size_t i = 0; i < length + kStretches - 1; ++i)
            squared[i] = samples[i] * samples[i];
        for (std::size_t k = 0; k < length; ++k) {
            const double weight = pattern.values[begin + k];
            for (std::size_t v = 0; v < Count; ++v) {
                Value sample;
                Value square;
                V::load(sample, samples + k + v * Lanes);
                V::load(square, squared + k + v * Lanes);
                sum[v] += sample;
                squares[v] += square;
                dot[v] += sample * weight;
            }
        }
    }
    const auto size = static_cast<double>(pattern.count);
    for (std::size_t v = 0; v < Count; ++v) {
        const Value about = squares[v] - sum[v] / size * sum[v];
        double abouts[Lanes] = {};
        double dots[Lanes] = {};
        V::store(abouts, about);
        V::store(dots, dot[v]);
        for (std::size_t j = 0; j < Lanes; ++j) {
            const double x = abouts[j];
            result[v * Lanes + j] = x > 0.0 ? dots[j] / (squareRoot(x) * pattern.norm) : x;
        }
    }
}

}  // namespace

void VELQUAD_KERNEL(const CorrelationPattern& pattern, const double* signal, std::size_t count,
                    double* result) {
    constexpr std::size_t kVectors = 4;
    constexpr std::size_t kTile = kLanes * kVectors;
    std::size_t i = 0;
    for (; i + kTile <= count; i += kTile)
        correlateTile<kLanes, kVectors>(pattern, signal + i, result + i);
    for (; i + kLanes <= count; i += kLanes)
        correlateTile<kLanes, 1>(pattern, signal + i, result + i);
    for (; i < count; ++i)
        correlateTile<1, 1>(pattern, signal + i, result + i);
}

}  // namespace velquad::signal
