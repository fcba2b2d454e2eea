// Outlines as image applications hold them, for the benchmarks of this room.
#ifndef VELQUAD_BENCH_POLYGON_OUTLINES_H
#define VELQUAD_BENCH_POLYGON_OUTLINES_H

#include <cmath>
#include <random>
#include <vector>

#include "velquad/types.h"

namespace velquad::bench {

/// A rippled circle of `count` points whose neighbours lie some `spacing` pixels apart. `scale` shrinks it about
/// its centre.
inline std::vector<tagPOINT> rippledCircle(int count, double spacing, double scale = 1.0,
                                           double centerX = 0.0) {
    constexpr double kFullTurn = 6.283185307179586;
    const double radius = scale * spacing * count / kFullTurn;
    std::vector<tagPOINT> outline;
    outline.reserve(static_cast<std::size_t>(count));
    for (int k = 0; k < count; ++k) {
        const double angle = kFullTurn * k / count;
        const double r = radius * (1.0 + 0.02 * std::sin(40.0 * angle));
        outline.push_back({static_cast<LONG>(std::lround(centerX + r * std::cos(angle))),
                           static_cast<LONG>(std::lround(r * std::sin(angle)))});
    }
    return outline;
}

/// A star of `count` points whose corners have random distances from the centre, from half of `radius` on.
inline std::vector<tagPOINT> raggedStar(int count, double radius) {
    constexpr double kFullTurn = 6.283185307179586;
    std::mt19937 engine(7);
    std::vector<tagPOINT> outline;
    outline.reserve(static_cast<std::size_t>(count));
    for (int k = 0; k < count; ++k) {
        const double angle = kFullTurn * k / count;
        const double r = radius * (0.5 + static_cast<double>(engine()) / 8589934592.0);
        outline.push_back({static_cast<LONG>(std::lround(r * std::cos(angle))),
                           static_cast<LONG>(std::lround(r * std::sin(angle)))});
    }
    return outline;
}

}  // namespace velquad::bench

#endif  // VELQUAD_BENCH_POLYGON_OUTLINES_H
