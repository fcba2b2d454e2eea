// Correlation of two channels of ten million pixels and of a row, next to the plain loop over the pairs, in doubles
// and, for unsigned integers, in integers.
#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

#include "tests/support/correlation_reference.h"
#include "velquad/statistics.h"

namespace {

using velquad::test::ReferenceCorrelation;

template <class T>
struct Channels {
    std::vector<T> x;
    std::vector<T> y;

    explicit Channels(std::size_t count) : x(count), y(count) {
        std::mt19937 random(11);
        for (std::size_t i = 0; i < count; ++i) {
            x[i] = static_cast<T>(random() & 0xFFFFU);
            y[i] = static_cast<T>(x[i] / 2 + static_cast<T>(random() & 0x3FFFU));
        }
    }
};

enum class Way { plainDoubles, plainIntegers, typed, untyped };

template <class T, Way kWay>
void correlate(benchmark::State& state, unsigned int typeCode) {
    const auto count = static_cast<int>(state.range(0));
    Channels<T> channels(static_cast<std::size_t>(count));
    for (auto _ : state) {
        if constexpr (kWay == Way::plainDoubles) {
            ReferenceCorrelation evaluator;
            evaluator.addInOrder(channels.x.data(), channels.y.data(), count);
            benchmark::DoNotOptimize(evaluator.correlation());
        } else if constexpr (kWay == Way::plainIntegers) {
            ReferenceCorrelation evaluator;
            evaluator.addAsIntegers(channels.x.data(), channels.y.data(), count);
            benchmark::DoNotOptimize(evaluator.correlation());
        } else {
            CMatCorrelationEvaluator evaluator;
            if constexpr (kWay == Way::typed) {
                evaluator.AddValuePairs(channels.x.data(), channels.y.data(), count);
            } else {
                evaluator.AddValuePairs(channels.x.data(), channels.y.data(), count, typeCode);
            }
            benchmark::DoNotOptimize(evaluator.ComputeCorrelation());
        }
    }
    state.SetItemsProcessed(state.iterations() * count);
}

template <class T, Way kWay>
void add(const char* name, unsigned int typeCode) {
    benchmark::RegisterBenchmark(name, correlate<T, kWay>, typeCode)->Arg(4096)->Arg(10'000'000);
}

const bool kRegistered = [] {
    add<unsigned char, Way::plainDoubles>("plainDoubles/u8", 2);
    add<unsigned char, Way::plainIntegers>("plainIntegers/u8", 2);
    add<unsigned char, Way::typed>("typed/u8", 2);
    add<unsigned char, Way::untyped>("untyped/u8", 2);
    add<unsigned short, Way::plainDoubles>("plainDoubles/u16", 4);
    add<unsigned short, Way::plainIntegers>("plainIntegers/u16", 4);
    add<unsigned short, Way::typed>("typed/u16", 4);
    add<unsigned short, Way::untyped>("untyped/u16", 4);
    add<short, Way::plainDoubles>("plainDoubles/i16", 3);
    add<short, Way::untyped>("untyped/i16", 3);
    add<float, Way::plainDoubles>("plainDoubles/float", 7);
    add<float, Way::typed>("typed/float", 7);
    add<double, Way::plainDoubles>("plainDoubles/double", 8);
    add<double, Way::typed>("typed/double", 8);
    return true;
}();

}  // namespace
