// The outlines and the questions that the library and its peers are timed with.
#ifndef VELQUAD_BENCH_PEERS_OUTLINE_QUERIES_H
#define VELQUAD_BENCH_PEERS_OUTLINE_QUERIES_H

#include <benchmark/benchmark.h>

#include <cstddef>
#include <vector>

#include "bench/polygon/outlines.h"

namespace velquad::bench {

enum Shape {
    kTraced,  ///< As traced from an image: neighbours are a pixel apart.
    kRagged,  ///< A star whose corners have random distances from its centre.
};

inline std::vector<tagPOINT> outline(benchmark::State& state) {
    const int count = static_cast<int>(state.range(1));
    return state.range(0) == kRagged ? raggedStar(count, 16000.0) : rippledCircle(count, 1.0);
}

/// Test points all over the outline, so that no query is favoured.
inline std::vector<tagPOINT> testPoints(const std::vector<tagPOINT>& points) {
    std::vector<tagPOINT> tests;
    for (std::size_t k = 0; k < 64; ++k) {
        const tagPOINT& p = points[k * points.size() / 64];
        const auto tenths = static_cast<LONG>(k % 13);
        tests.push_back({p.x * tenths / 10, p.y * tenths / 10});
    }
    return tests;
}

template <class Query>
void measureSimplicity(benchmark::State& state, Query isSimple) {
    bool result = false;
    for (auto _ : state)
        benchmark::DoNotOptimize(result = isSimple());
    state.counters["simple"] = result ? 1 : 0;
}

template <class Query>
void measureMembership(benchmark::State& state, Query isInside) {
    const std::vector<tagPOINT> tests = testPoints(outline(state));
    std::size_t next = 0;
    int inside = 0;
    for (auto _ : state) {
        inside += isInside(tests[next % tests.size()]) ? 1 : 0;
        ++next;
    }
    benchmark::DoNotOptimize(inside);
    state.counters["inside"] = static_cast<double>(inside) / static_cast<double>(next);
}

inline void simplicityArguments(benchmark::internal::Benchmark* benchmark) {
    benchmark->ArgNames({"shape", "points"})->Unit(benchmark::kMicrosecond);
    benchmark->ArgsProduct({{kTraced, kRagged}, {1000, 10000}})->Args({kTraced, 100000});
}
inline void membershipArguments(benchmark::internal::Benchmark* benchmark) {
    benchmark->ArgNames({"shape", "points"});
    benchmark->ArgsProduct({{kTraced, kRagged}, {1000, 10000}})->Args({kTraced, 100000});
}

}  // namespace velquad::bench

#endif  // VELQUAD_BENCH_PEERS_OUTLINE_QUERIES_H
