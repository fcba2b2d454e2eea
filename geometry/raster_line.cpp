// Raster lines into a buffer and pixel by pixel. All forms walk by the same steps, so they give the same pixels.

// The module exports its own copies of the inline members, which must not vanish into their uses below.
#define VELQUAD_EMIT_INLINE __attribute__((noinline, used)) VELQUAD_API

#include <cstddef>

#include "geometry/raster_line.h"
#include "velquad/geometry.h"

using velquad::frame::wrapAdd;
using velquad::geometry::rasterPixelCount;
using velquad::geometry::RasterSteps;
using velquad::geometry::rasterSteps;
using velquad::geometry::storeRasterLine;

static_assert(offsetof(CMatBresenhamLine, start) == 0);
static_assert(offsetof(CMatBresenhamLine, end) == 8);
static_assert(offsetof(CMatBresenhamLine, step) == 16);
static_assert(offsetof(CMatBresenhamLine, current) == 20);
static_assert(offsetof(CMatBresenhamLine, diagonalX) == 28);
static_assert(offsetof(CMatBresenhamLine, diagonalY) == 32);
static_assert(offsetof(CMatBresenhamLine, straightX) == 36);
static_assert(offsetof(CMatBresenhamLine, straightY) == 40);
static_assert(offsetof(CMatBresenhamLine, diagonalError) == 44);
static_assert(offsetof(CMatBresenhamLine, straightError) == 48);
static_assert(offsetof(CMatBresenhamLine, error) == 52);
static_assert(offsetof(CMatBresenhamLine, major) == 56);
static_assert(offsetof(CMatBresenhamLine, minor) == 60);
static_assert(sizeof(CMatBresenhamLine) == 64);

unsigned int matGetBresenhamLine(int x0, int y0, int x1, int y1, tagPOINT* points, unsigned int capacity) {
    const RasterSteps steps = rasterSteps(x0, y0, x1, y1);
    const unsigned int count = rasterPixelCount(steps);
    if (points == nullptr) return count;
    if (capacity < count) return 0;
    storeRasterLine(steps, x0, y0, points, count);
    return count;
}

extern "C" unsigned int matGetLine(int x0, int y0, int x1, int y1, tagPOINT* points, unsigned int capacity) {
    const RasterSteps steps = rasterSteps(x0, y0, x1, y1);
    const unsigned int count = rasterPixelCount(steps);
    if (points != nullptr) storeRasterLine(steps, x0, y0, points, capacity < count ? capacity : count);
    return count;
}

CMatBresenhamLine::CMatBresenhamLine(const CMatBresenhamLine& other) = default;

CMatBresenhamLine& CMatBresenhamLine::operator=(const CMatBresenhamLine& other) = default;

int CMatBresenhamLine::GetPointCount() {
    return wrapAdd(major, 1);
}

namespace {

// Uses of the inline members, for which the compiler writes out their copies.
[[gnu::used]] bool (CMatBresenhamLine::*const walk)(CPoint&) = &CMatBresenhamLine::GetNextPoint;
[[gnu::used]] CMatBresenhamLine makeLine(CPoint start, CPoint end) {
    return CMatBresenhamLine(start, end);
}

}  // namespace
