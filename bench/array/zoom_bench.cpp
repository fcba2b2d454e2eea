// Zoom up and down, next to the loops that define it and to a plain copy of as many bytes as a zoom reads and writes.
// Arguments: type code, flags (1 nearest, 2 bilinear, 4 cubic), source size, destination size.
//
// The copy is what tells how much is left to gain: nearest samples, and bilinear reductions of all but bytes, take about
// as long as it does, and so cannot be faster than the literal loops by more than those are slower than the copy. With
// 512-bit vectors on a machine with 300 MB of last-level cache that bound was 1.8 to 2.6 for nearest doubles, 2.6 and 1.4
// for bilinear floats and doubles reduced, 4.5 and 2.0 for cubic ones. Compare medians of one run only: another program
// that uses the memory halves the speed of all of them.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <random>
#include <vector>

#include "frame/kernels.h"
#include "tests/support/array_data.h"
#include "tests/support/zoom_reference.h"
#include "velquad/array.h"

namespace {

using velquad::test::fillRandom;
using velquad::test::LooseArray;

struct Images {
    unsigned int type;
    unsigned int flags;
    unsigned int srcSize;
    unsigned int dstSize;
    LooseArray source;
    LooseArray destination;

    explicit Images(const benchmark::State& state)
        : type(static_cast<unsigned int>(state.range(0))),
          flags(static_cast<unsigned int>(state.range(1))),
          srcSize(static_cast<unsigned int>(state.range(2))),
          dstSize(static_cast<unsigned int>(state.range(3))),
          source(srcSize, srcSize, type),
          destination(dstSize, dstSize, type) {
        std::mt19937 random(7);
        fillRandom(source, srcSize, srcSize, type, random);
    }
};

void zoom(benchmark::State& state) {
    Images images(state);
    for (auto _ : state) {
        matZoomArray2v(images.srcSize, images.srcSize, images.source.rows(), images.dstSize, images.dstSize,
                       images.destination.rows(), images.type, images.flags);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * images.dstSize * images.dstSize);
    state.SetLabel(velquad::frame::kernelLevelName(velquad::frame::kernelLevel()));
}

void zoomLiteral(benchmark::State& state) {
    Images images(state);
    const velquad::test::zoom::Job job{images.srcSize, images.srcSize, images.source.rows(),
                                       images.dstSize, images.dstSize, images.destination.rows()};
    for (auto _ : state) {
        velquad::test::zoom::zoomArray(job, images.type, images.flags);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * images.dstSize * images.dstSize);
}

/// The bytes that a zoom reads and writes. A reduction leaves out source rows, but hardly any cache line of a row.
std::size_t bytesMoved(const Images& images) {
    const std::size_t rowsPerCell = images.flags == 4 ? 4 : images.flags;
    const std::size_t rowsRead = std::min<std::size_t>(images.srcSize, rowsPerCell * images.dstSize);
    return velquad::test::kElementBytes[images.type] *
           (rowsRead * images.srcSize + std::size_t{images.dstSize} * images.dstSize);
}

/// A copy of half as many bytes moves as many.
void zoomBytesCopied(benchmark::State& state) {
    const Images images(state);
    const std::size_t bytes = bytesMoved(images) / 2;
    std::vector<unsigned char> from(bytes, 1);
    std::vector<unsigned char> to(bytes);
    for (auto _ : state) {
        std::memcpy(to.data(), from.data(), bytes);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * images.dstSize * images.dstSize);
}

void cases(benchmark::internal::Benchmark* b) {
    for (const int flags : {1, 2, 4}) {
        for (const int type : {2, 4, 7, 8, 9}) {
            b->Args({type, flags, 2048, 4096});
            b->Args({type, flags, 4096, 1500});
        }
    }
    b->Unit(benchmark::kMillisecond);
}
BENCHMARK(zoom)->Apply(cases);
BENCHMARK(zoomLiteral)->Apply(cases);
BENCHMARK(zoomBytesCopied)->Apply(cases);

}  // namespace
