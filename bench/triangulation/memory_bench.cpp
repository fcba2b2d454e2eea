// What a triangulation takes of memory: bytes per point that are allocated at its end, and at the worst moment.
#include <benchmark/benchmark.h>

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>
#include <random>

#include "velquad/triangulation.h"

namespace {

std::atomic<std::size_t> liveBytes{0};
std::atomic<std::size_t> mostBytes{0};

/// In front of each block stands its size.
constexpr std::size_t kHeader = alignof(std::max_align_t);

void insertOneByOneMemory(benchmark::State& state) {
    constexpr double kDefaultTolerance = 1.7976931348623157e308;
    const auto count = static_cast<std::size_t>(state.range(0));
    double atEnd = 0.0;
    double atMost = 0.0;
    for (auto _ : state) {
        std::mt19937_64 random(1);
        std::uniform_real_distribution<double> coordinate(0.0, 1000.0);
        const std::size_t before = liveBytes;
        mostBytes = before;
        void* handle = matInitDelaunay2D(nullptr);
        for (std::size_t i = 0; i < count; ++i) {
            const double x = coordinate(random);
            const tagPOINT3D point{x, coordinate(random), 0.0};
            matExtentDelaunay2D(&handle, &point, kDefaultTolerance);
        }
        atEnd = static_cast<double>(liveBytes - before);
        atMost = static_cast<double>(mostBytes - before);
        matExitDelaunay2D(handle);
    }
    state.counters["bytesPerPoint"] = atEnd / static_cast<double>(count);
    state.counters["mostBytesPerPoint"] = atMost / static_cast<double>(count);
}
BENCHMARK(insertOneByOneMemory)->Arg(100000)->Arg(300000)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace

void* operator new(std::size_t size) {
    auto* block = static_cast<std::byte*>(std::malloc(size + kHeader));
    if (block == nullptr) throw std::bad_alloc();
    *reinterpret_cast<std::size_t*>(block) = size;
    const std::size_t live = liveBytes += size;
    if (live > mostBytes) mostBytes = live;
    return block + kHeader;
}

void operator delete(void* memory) noexcept {
    if (memory == nullptr) return;
    std::byte* block = static_cast<std::byte*>(memory) - kHeader;
    liveBytes -= *reinterpret_cast<std::size_t*>(block);
    std::free(block);
}

void operator delete(void* memory, std::size_t) noexcept {
    operator delete(memory);
}
