// An ellipse around the origin from two arcs that meet where its tangent is diagonal: each is traced from the end of
// an axis, and the second one is turned into place. Quarters, halves and the whole are mirrored from there.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

#include "frame/convert.h"
#include "geometry/raster_line.h"
#include "geometry/wrapping64.h"
#include "velquad/geometry.h"

using velquad::frame::Int32;
using velquad::frame::wrapNeg;
using velquad::geometry::Wrapping64;

namespace {

constexpr int kFailed = -1;
/// Below this semi-axis the whole contour is always made.
constexpr int kSmallestZigzag = 3;
constexpr std::int64_t kLargest64 = std::numeric_limits<std::int64_t>::max();

/// One arc: how many points it has, and where it ends. y counts upwards here.
struct Arc {
    std::int64_t count;
    std::int64_t endX;
    std::int64_t endY;
};

tagPOINT pointAt(std::int64_t x, std::int64_t y) {
    return {static_cast<Int32>(x), static_cast<Int32>(y)};
}

/// Traces the arc from (rx, 0) towards (0, -ry) until x is below `minX` or y above `maxY`.
/// @param out  may be null: the points are only counted.
/// @return a negative count when the error terms do not fit 64 bits or the points do not fit `capacity`.
Arc traceOctant(std::int64_t rx, std::int64_t ry, tagPOINT* out, std::int64_t capacity, std::int64_t minX,
                std::int64_t maxY) {
    constexpr Arc kNoArc{kFailed, 0, 0};
    const std::int64_t rx2 = 2 * rx * rx;
    const std::int64_t ry2 = 2 * ry * ry;
    if (ry2 > kLargest64 / rx || rx2 > kLargest64 / ry) return kNoArc;
    std::int64_t x = rx;
    std::int64_t y = 0;
    Wrapping64 e = rx * rx + ry * ry;
    Wrapping64 s = rx * rx;
    Wrapping64 t = ry2 * rx - ry * ry;
    Arc arc{0, 0, 0};
    do {
        if (out != nullptr) {
            if (arc.count >= capacity) return kNoArc;
            out[arc.count] = pointAt(x, y);
        }
        ++arc.count;
        arc.endX = x;
        arc.endY = -y;
        if (e >= 0) {
            e -= s;
            --y;
            s += rx2;
            if (e >= 0) continue;
        }
        e += t;
        t -= ry2;
        --x;
    } while (x >= minX && y >= -maxY);
    return arc;
}

/// Appends the second arc, which stands at `second`, to the first one: without its first point, in reverse order, and
/// turned from its own axis to that of the first. The two may overlap when the arcs fill the buffer.
void appendTurned(tagPOINT* points, std::int64_t firstCount, tagPOINT* second, std::int64_t secondCount) {
    if (secondCount <= 1) return;
    std::reverse(second + 1, second + secondCount);
    tagPOINT* out = points + firstCount;
    for (std::int64_t i = 1; i < secondCount; ++i) {
        const tagPOINT source = second[i];
        *out++ = {wrapNeg(source.y), wrapNeg(source.x)};
    }
}

/// Makes the quarter from (a, 0) to (0, -b). @return its number of points, or -1.
std::int64_t makeQuarter(std::int64_t a, std::int64_t b, tagPOINT* points, std::int64_t capacity) {
    const double length = std::sqrt(static_cast<double>(a * a + b * b));
    const auto middle = static_cast<std::int64_t>(static_cast<double>(a * b) / length);
    const std::int64_t half = capacity / 2;
    const Arc first = traceOctant(a, b, points, half, middle, b);
    if (first.count < 1) return kFailed;

    tagPOINT* secondPoints = points == nullptr ? nullptr : points + half;
    Arc second{1, b, 0};
    if (first.endY < b) {
        second = traceOctant(b, a, secondPoints, half, first.endY, first.endX);
        if (second.count < 1) return kFailed;
    }
    // The second arc runs along the other axis: its x is the first one's y.
    const std::int64_t gapX = std::abs(first.endX - second.endY);
    const std::int64_t gapY = std::abs(first.endY - second.endX);
    std::int64_t firstCount = first.count;
    std::int64_t secondCount = second.count;
    if (gapX == 0 && gapY == 0) --secondCount;
    if (gapX >= 2 || gapY >= 2) {
        firstCount += (gapX > gapY ? gapX : gapY) - 1;
        if (points != nullptr) {
            if (firstCount > half) return kFailed;
            std::int64_t x = first.endX;
            std::int64_t y = -first.endY;
            for (std::int64_t i = first.count; i < firstCount; ++i) {
                if (gapX > gapY) {
                    --x;
                } else {
                    --y;
                }
                points[i] = pointAt(x, y);
            }
        }
    }
    const std::int64_t count = firstCount + secondCount;
    if (points != nullptr) {
        appendTurned(points, firstCount, secondPoints, secondCount);
        points[count - 1] = pointAt(0, -b);
    }
    return count;
}

/// Turns the quarter of `count` points into the upper half. @return false when it does not fit.
bool makeHalf(tagPOINT* points, std::int64_t count, std::int64_t capacity) {
    if (2 * count - 1 > capacity) return false;
    tagPOINT* out = points + count;
    for (std::int64_t i = count - 2; i >= 0; --i)
        *out++ = {wrapNeg(points[i].x), points[i].y};
    return true;
}

/// Spreads the quarter over both sides of the upper half, one point on each side by turns.
// Kept: the last point becomes the mirror image of the first, so the top of the ellipse is lost.
void makeZigzag(tagPOINT* points, std::int64_t count) {
    for (std::int64_t i = 1; i < count - 1; i += 2)
        points[i].x = wrapNeg(points[i].x);
    points[count - 1] = {wrapNeg(points[0].x), points[0].y};
}

/// The ellipse without extent along one axis. @return the number of its points, whatever fits.
int storeLine(const tagPOINT& start, const tagPOINT& end, tagPOINT* points, std::int64_t capacity) {
    const auto steps = velquad::geometry::rasterSteps(start.x, start.y, end.x, end.y);
    const std::uint32_t count = velquad::geometry::rasterPixelCount(steps);
    if (points != nullptr && capacity > 0) {
        const auto stored = static_cast<std::uint32_t>(count < capacity ? count : capacity);
        velquad::geometry::storeRasterLine(steps, start.x, start.y, points, stored);
    }
    return static_cast<int>(count);
}

}  // namespace

extern "C" int matGetEllipse(int a, int b, tagPOINT* points, int capacity, int fullContour) {
    if (a < 0 || b < 0) return kFailed;
    if (a == 0) return storeLine({0, -b}, {0, b}, points, capacity);
    if (b == 0) return storeLine({-a, 0}, {a, 0}, points, capacity);
    const bool isFull = fullContour != 0 || a < kSmallestZigzag || b < kSmallestZigzag;

    const std::int64_t quarter = makeQuarter(a, b, points, capacity);
    if (quarter < 0) return kFailed;
    const std::int64_t total = isFull ? 2 * quarter - 1 : quarter;
    const std::int64_t mirrored = total - 2 > 0 ? total - 2 : 0;
    const std::int64_t finalCount = total + mirrored;
    if (finalCount > std::numeric_limits<int>::max()) return kFailed;
    if (points == nullptr) return static_cast<int>(finalCount);

    if (isFull) {
        if (!makeHalf(points, quarter, capacity)) return kFailed;
    } else {
        makeZigzag(points, quarter);
    }
    if (finalCount > capacity) return kFailed;
    tagPOINT* out = points + total;
    for (std::int64_t i = mirrored; i >= 1; --i)
        *out++ = {points[i].x, wrapNeg(points[i].y)};
    return static_cast<int>(finalCount);
}
