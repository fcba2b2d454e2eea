// Raster lines into a buffer and pixel by pixel. All forms walk by the same steps, so they give the same pixels.
#include "geometry/raster_line.h"

#include <cstddef>

#include "velquad/geometry.h"

using velquad::frame::wrapAdd;
using velquad::geometry::Int32;
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

namespace {

/// The value of `step` before the first pixel.
constexpr int kNotStarted = -1;

}  // namespace

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

CMatBresenhamLine::CMatBresenhamLine(CPoint startPoint, CPoint endPoint)
    : start(startPoint), end(endPoint), step(kNotStarted), current(startPoint) {
    const RasterSteps steps = rasterSteps(start.x, start.y, end.x, end.y);
    diagonalX = steps.diagonalX;
    diagonalY = steps.diagonalY;
    straightX = steps.straightX;
    straightY = steps.straightY;
    diagonalError = steps.diagonalError;
    straightError = steps.straightError;
    error = steps.error;
    major = steps.major;
    minor = steps.minor;
}

CMatBresenhamLine::CMatBresenhamLine(const CMatBresenhamLine& other) = default;

CMatBresenhamLine& CMatBresenhamLine::operator=(const CMatBresenhamLine& other) = default;

bool CMatBresenhamLine::GetNextPoint(CPoint& point) {
    if (step == kNotStarted) {
        point = start;
        step = 0;
        return true;
    }
    if (step >= major) return false;
    // All bits set for a straight step. A branch here would be as good as random to a branch predictor.
    const Int32 isStraight = error >> 31;
    const auto choose = [isStraight](Int32 straight, Int32 diagonal) {
        return (straight & isStraight) | (diagonal & ~isStraight);
    };
    // The pixel is stored whole, so that the next call reads it back whole, without waiting for two stores.
    const CPoint next(wrapAdd(current.x, choose(straightX, diagonalX)),
                      wrapAdd(current.y, choose(straightY, diagonalY)));
    error = wrapAdd(error, choose(straightError, diagonalError));
    ++step;
    current = next;
    point = next;
    return true;
}

int CMatBresenhamLine::GetPointCount() {
    return wrapAdd(major, 1);
}
