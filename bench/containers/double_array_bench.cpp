// Growth of the array element by element, next to the standard vector, and archives of large arrays, next to a copy
// of memory.
#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstring>
#include <vector>

#include "velquad/containers.h"

namespace {

void addElements(benchmark::State& state) {
    const int count = static_cast<int>(state.range(0));
    for (auto _ : state) {
        CDoubleArray array;
        for (int i = 0; i < count; ++i)
            array.Add(i);
        benchmark::DoNotOptimize(array.GetData());
    }
    state.SetItemsProcessed(state.iterations() * count);
}
BENCHMARK(addElements)->Arg(100)->Arg(10000)->Arg(100000);

void addElementsWithSize(benchmark::State& state) {
    const int count = static_cast<int>(state.range(0));
    for (auto _ : state) {
        CDoubleArray array(count, -1);
        array.SetSize(1);
        array.RemoveAt(0);
        for (int i = 0; i < count; ++i)
            array.Add(i);
        benchmark::DoNotOptimize(array.GetData());
    }
    state.SetItemsProcessed(state.iterations() * count);
}
BENCHMARK(addElementsWithSize)->Arg(100)->Arg(10000)->Arg(100000);

void addElementsToVector(benchmark::State& state) {
    const int count = static_cast<int>(state.range(0));
    for (auto _ : state) {
        std::vector<double> array;
        for (int i = 0; i < count; ++i)
            array.push_back(i);
        benchmark::DoNotOptimize(array.data());
    }
    state.SetItemsProcessed(state.iterations() * count);
}
BENCHMARK(addElementsToVector)->Arg(100)->Arg(10000)->Arg(100000);

// 16 KB in the first cache, 1 MB in the second, 64 MB in none.
constexpr int kSizes[] = {1 << 11, 1 << 17, 1 << 23};

std::int64_t byteCount(const benchmark::State& state) {
    return state.iterations() * state.range(0) * static_cast<std::int64_t>(sizeof(double));
}

void copyMemory(benchmark::State& state) {
    const std::vector<double> from(static_cast<std::size_t>(state.range(0)), 1.5);
    std::vector<double> to(from.size());
    for (auto _ : state) {
        std::memcpy(to.data(), from.data(), from.size() * sizeof(double));
        benchmark::DoNotOptimize(to.data());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(byteCount(state));
}

// The file's memory is there before, as that of the copy is.
void storeArray(benchmark::State& state) {
    CDoubleArray array(static_cast<int>(state.range(0)), -1);
    CMemFile file;
    file.SetLength(static_cast<std::uint64_t>(state.range(0)) * sizeof(double) + 16);
    for (auto _ : state) {
        file.SeekToBegin();
        CArchive archive(&file, CArchive::store);
        array.Serialize(archive);
        archive.Close();
    }
    state.SetBytesProcessed(byteCount(state));
}

void loadArray(benchmark::State& state) {
    CDoubleArray array(static_cast<int>(state.range(0)), -1);
    CMemFile file;
    {
        CArchive archive(&file, CArchive::store);
        array.Serialize(archive);
        archive.Close();
    }
    for (auto _ : state) {
        file.SeekToBegin();
        CArchive archive(&file, CArchive::load);
        array.Serialize(archive);
        benchmark::DoNotOptimize(array.GetData());
    }
    state.SetBytesProcessed(byteCount(state));
}

void forEachSize(benchmark::internal::Benchmark* benchmark) {
    for (const int size : kSizes)
        benchmark->Arg(size);
}
BENCHMARK(copyMemory)->Apply(forEachSize);
BENCHMARK(storeArray)->Apply(forEachSize);
BENCHMARK(loadArray)->Apply(forEachSize);

}  // namespace
