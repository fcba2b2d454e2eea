// Runs of edges of doubles that lie clearly beside a ray. Compiled for several instruction sets; see frame/kernels.h
// for what may be used here.
//
// Points are x and y in turn. Of two vectors of them one is made of every x and one of every y, in an order that costs
// one instruction each; a run is judged as a whole, so the order does not matter.
#include "polygon/edge_side_kernels.h"

#include <cstddef>
#include <cstdint>

#include "frame/inline.h"

namespace velquad::polygon::VELQUAD_KERNEL_LEVEL {

namespace {

#if defined(__AVX512F__)
constexpr std::size_t kLanes = 8;
#elif defined(__AVX__)
constexpr std::size_t kLanes = 4;
#else
constexpr std::size_t kLanes = 2;
#endif
using Lanes [[gnu::vector_size(kLanes * sizeof(double))]] = double;
/// The result of a comparison: all bits of a lane, or none.
using Mask [[gnu::vector_size(kLanes * sizeof(std::int64_t))]] = std::int64_t;

/// Edges that are judged together.
constexpr DWORD kRun = 16;

VELQUAD_ALWAYS_INLINE Lanes load(const tagPOINT2D* points) {
    Lanes lanes;
    __builtin_memcpy(&lanes, points, sizeof lanes);
    return lanes;
}

#if defined(__AVX512F__)
VELQUAD_ALWAYS_INLINE Lanes everyX(Lanes a, Lanes b) {
    return __builtin_shufflevector(a, b, 0, 8, 2, 10, 4, 12, 6, 14);
}
VELQUAD_ALWAYS_INLINE Lanes everyY(Lanes a, Lanes b) {
    return __builtin_shufflevector(a, b, 1, 9, 3, 11, 5, 13, 7, 15);
}
#elif defined(__AVX__)
VELQUAD_ALWAYS_INLINE Lanes everyX(Lanes a, Lanes b) {
    return __builtin_shufflevector(a, b, 0, 4, 2, 6);
}
VELQUAD_ALWAYS_INLINE Lanes everyY(Lanes a, Lanes b) {
    return __builtin_shufflevector(a, b, 1, 5, 3, 7);
}
#else
VELQUAD_ALWAYS_INLINE Lanes everyX(Lanes a, Lanes b) {
    return __builtin_shufflevector(a, b, 0, 2);
}
VELQUAD_ALWAYS_INLINE Lanes everyY(Lanes a, Lanes b) {
    return __builtin_shufflevector(a, b, 1, 3);
}
#endif

VELQUAD_ALWAYS_INLINE Lanes magnitude(Lanes value) {
    constexpr std::int64_t kAllButSign = 0x7FFFFFFFFFFFFFFF;
    Mask bits;
    __builtin_memcpy(&bits, &value, sizeof bits);
    bits &= kAllButSign;
    __builtin_memcpy(&value, &bits, sizeof bits);
    return value;
}

/// Not-a-numbers are not clear: the side of one is none.
VELQUAD_ALWAYS_INLINE bool isRunClear(const tagPOINT2D* points, const ClearSide& side) {
    Mask isClear = ~Mask{};
    for (DWORD i = 0; i < kRun; i += kLanes) {
        const Lanes a = load(points + i);
        const Lanes b = load(points + i + kLanes / 2);
        const Lanes nextA = load(points + i + 1);
        const Lanes nextB = load(points + i + kLanes / 2 + 1);
        const Lanes width = everyX(nextA, nextB) - everyX(a, b);
        isClear &= everyX(a, b) * side.factorX - everyY(a, b) * side.factorY >= side.least;
        isClear &= (magnitude(a) <= side.reach) & (magnitude(b) <= side.reach);
        isClear &= (width == 0.0) | (magnitude(width) >= side.leastWidth);
    }
    std::int64_t all = -1;
    for (std::size_t lane = 0; lane < kLanes; ++lane)
        all &= isClear[lane];
    return all != 0;
}

DWORD countClearEdges(const tagPOINT2D* points, DWORD count, const ClearSide& side) {
    DWORD edges = 0;
    while (count - edges >= kRun && isRunClear(points + edges, side))
        edges += kRun;
    return edges;
}

}  // namespace

extern const EdgeSideKernels kEdgeSideKernels;
const EdgeSideKernels kEdgeSideKernels = {countClearEdges};

}  // namespace velquad::polygon::VELQUAD_KERNEL_LEVEL
