// What a movable block costs next to plain memory of the C library: a pair of allocation and release, the work
// on a block by way of its address, and pairs while many blocks are alive.

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "velquad/platform.h"

namespace {

constexpr UINT kZeroedMovable = GMEM_MOVEABLE | GMEM_ZEROINIT;

void mallocFree(benchmark::State& state) {
    const auto size = static_cast<std::size_t>(state.range(0));
    for (auto _ : state) {
        void* contents = std::malloc(size);
        benchmark::DoNotOptimize(contents);
        std::free(contents);
    }
}

void callocFree(benchmark::State& state) {
    const auto size = static_cast<std::size_t>(state.range(0));
    for (auto _ : state) {
        void* contents = std::calloc(1, size);
        benchmark::DoNotOptimize(contents);
        std::free(contents);
    }
}

void globalAllocFree(benchmark::State& state, UINT flags) {
    const auto size = static_cast<SIZE_T>(state.range(0));
    for (auto _ : state) {
        const HGLOBAL handle = GlobalAlloc(flags, size);
        benchmark::DoNotOptimize(handle);
        GlobalFree(handle);
    }
}

// Pairs while many other blocks are alive.
void globalAllocFreeAmongMany(benchmark::State& state) {
    std::vector<HGLOBAL> others(static_cast<std::size_t>(state.range(0)));
    for (HGLOBAL& other : others)
        other = GlobalAlloc(GMEM_MOVEABLE, 64);
    for (auto _ : state) {
        const HGLOBAL handle = GlobalAlloc(GMEM_MOVEABLE, 64);
        benchmark::DoNotOptimize(handle);
        GlobalFree(handle);
    }
    for (const HGLOBAL other : others)
        GlobalFree(other);
}

void lockUnlock(benchmark::State& state) {
    const HGLOBAL handle = GlobalAlloc(kZeroedMovable, 64);
    for (auto _ : state) {
        benchmark::DoNotOptimize(GlobalLock(handle));
        benchmark::DoNotOptimize(GlobalUnlock(handle));
    }
    GlobalFree(handle);
}

void handleOfAddress(benchmark::State& state) {
    std::vector<HGLOBAL> handles(static_cast<std::size_t>(state.range(0)));
    std::vector<void*> addresses;
    for (HGLOBAL& handle : handles) {
        handle = GlobalAlloc(kZeroedMovable, 64);
        addresses.push_back(GlobalLock(handle));
    }
    std::size_t position = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(GlobalHandle(addresses[position]));
        position = position + 1 == addresses.size() ? 0 : position + 1;
    }
    for (const HGLOBAL handle : handles)
        GlobalFree(handle);
}

BENCHMARK(mallocFree)->Arg(64)->Arg(1024)->Arg(65536)->Arg(1 << 20)->ThreadRange(1, 2);
BENCHMARK(callocFree)->Arg(64)->Arg(1024)->Arg(65536)->Arg(1 << 20)->ThreadRange(1, 2);
BENCHMARK_CAPTURE(globalAllocFree, movable, GMEM_MOVEABLE)
    ->Arg(64)
    ->Arg(1024)
    ->Arg(65536)
    ->Arg(1 << 20)
    ->ThreadRange(1, 2);
BENCHMARK_CAPTURE(globalAllocFree, zeroed, kZeroedMovable)
    ->Arg(64)
    ->Arg(1024)
    ->Arg(65536)
    ->Arg(1 << 20)
    ->ThreadRange(1, 2);
BENCHMARK(globalAllocFreeAmongMany)->Arg(1000)->Arg(100000);
BENCHMARK(lockUnlock);
BENCHMARK(handleOfAddress)->Arg(1)->Arg(1000)->Arg(100000);

}  // namespace
