// The local run of an outline: a regression line through the neighbourhood of a vertex, and the direction in
// which the outline follows it.
#include <cmath>
#include <cstdint>

#include "frame/convert.h"
#include "frame/primitives.h"
#include "polygon/point_traits.h"
#include "velquad/polygon.h"

using velquad::frame::Int32;
using velquad::frame::isSmaller;

namespace {

/// A denominator below this leaves the line undetermined.
constexpr double kNoSpread = 1e-100;

enum SelectionBits : DWORD { kPointsBefore = 1, kVertexItself = 2, kPointsBehind = 4 };
enum Orientation : DWORD { kXOverY = 0, kYOverX = 1 };

/// The points that a neighbourhood wraps round on: all, without a closing point.
DWORD wrappedCount(const tagPOINT* points, DWORD count) {
    return count > 2 && velquad::polygon::isClosed(points, count) ? count - 1 : count;
}

/// Sums of a least-squares line, taken point by point.
struct LineSums {
    double count = 0.0;
    double x = 0.0;
    double y = 0.0;
    double xx = 0.0;
    double yy = 0.0;
    double xy = 0.0;

    void add(const tagPOINT& point) {
        const tagPOINT2D p = velquad::frame::toPoint2D(point);
        count += 1.0;
        x += p.x;
        y += p.y;
        xx += p.x * p.x;
        yy += p.y * p.y;
        xy += p.x * p.y;
    }
};

/// dependent = slope * independent + intercept.
struct FittedLine {
    bool isDetermined;
    double slope;
    double intercept;
};

FittedLine fitLine(double count, double independent, double dependent, double squares, double products) {
    const double denominator = count * squares - independent * independent;
    if (isSmaller(kNoSpread, denominator)) return {false, 0.0, 0.0};
    return {true, (count * products - independent * dependent) / denominator,
            (squares * dependent - products * independent) / denominator};
}

double variance(double count, double sum, double squares) {
    const double mean = sum / count;
    return squares / count - mean * mean;
}

/// The points around a vertex that the selection asks for. Indices wrap around at 32 bits before they are taken
/// modulo `count`, so that points before the vertex are reached up to `count` steps back.
LineSums sumNeighbourhood(const tagPOINT* points, DWORD count, DWORD index, DWORD halfWidth,
                          DWORD selection) {
    LineSums sums;
    const DWORD vertex = count + index;
    if ((selection & kPointsBefore) != 0) {
        for (DWORD back = halfWidth; back > 0; --back)
            sums.add(points[(vertex - back) % count]);
    }
    if ((selection & kVertexItself) != 0) sums.add(points[vertex % count]);
    if ((selection & kPointsBehind) != 0) {
        for (DWORD k = 0; k < halfWidth; ++k)
            sums.add(points[(vertex + 1 + k) % count]);
    }
    return sums;
}

/// A point of a walk along the outline.
struct WalkedPoint {
    tagPOINT point{0, 0};
    std::uint64_t step = 0;
};

/// The points of smallest and of greatest coordinate; among equals the first one met.
struct Extremes {
    WalkedPoint minimum;
    WalkedPoint maximum;
};

Extremes findExtremes(const tagPOINT* points, DWORD count, DWORD index, Int32 halfWidth, bool alongX) {
    const std::uint64_t walkLength = 2 * static_cast<std::uint64_t>(halfWidth) + 1;
    // Two rounds meet every vertex, even where the index wraps around at 32 bits on the way. Whatever comes later
    // was met before.
    const std::uint64_t twoRounds = 2 * static_cast<std::uint64_t>(count);
    const std::uint64_t steps = walkLength < twoRounds ? walkLength : twoRounds;
    const DWORD start = count - static_cast<DWORD>(halfWidth) + index;
    Extremes found{{points[start % count], 0}, {points[start % count], 0}};
    for (std::uint64_t step = 1; step < steps; ++step) {
        const tagPOINT& point = points[(start + static_cast<DWORD>(step)) % count];
        const Int32 value = alongX ? point.x : point.y;
        if (value < (alongX ? found.minimum.point.x : found.minimum.point.y)) found.minimum = {point, step};
        if (value > (alongX ? found.maximum.point.x : found.maximum.point.y)) found.maximum = {point, step};
    }
    return found;
}

/// The difference of two coordinates, wrapped around at 32 bits.
double wrappedDifference(Int32 end, Int32 start) {
    return static_cast<double>(velquad::frame::wrapSub(end, start));
}

/// The difference of a line's values at two coordinates.
double riseOfLine(Int32 end, Int32 start, double slope, double intercept) {
    return (static_cast<double>(end) * slope + intercept) - (static_cast<double>(start) * slope + intercept);
}

}  // namespace

extern "C" int polyCalcLocalRegressionLine(const tagPOINT* points, DWORD count, DWORD index, DWORD halfWidth,
                                           DWORD selection, double* slope, double* intercept,
                                           DWORD* orientation) {
    if (count == 0) return 0;
    const LineSums sums = sumNeighbourhood(points, wrappedCount(points, count), index, halfWidth, selection);
    if (sums.count < 2.0) return 0;
    const bool isYOverX = variance(sums.count, sums.x, sums.xx) > variance(sums.count, sums.y, sums.yy);
    const FittedLine line = isYOverX ? fitLine(sums.count, sums.x, sums.y, sums.xx, sums.xy)
                                     : fitLine(sums.count, sums.y, sums.x, sums.yy, sums.xy);
    if (!line.isDetermined) return 0;
    if (slope != nullptr) *slope = line.slope;
    if (intercept != nullptr) *intercept = line.intercept;
    if (orientation != nullptr) *orientation = isYOverX ? kYOverX : kXOverY;
    return 1;
}

extern "C" int polyCalcLocalDirection(const tagPOINT* points, DWORD count, DWORD index, int halfWidth,
                                      double slope, double intercept, int xAxis, tagPOINT2D* out) {
    if (out == nullptr) return 1;
    if (count == 0 || halfWidth < 0) {
        *out = {0.0, 0.0};
        return 1;
    }
    const bool alongX = xAxis != 0;
    const Extremes extremes = findExtremes(points, wrappedCount(points, count), index, halfWidth, alongX);
    const bool isAscending = extremes.minimum.step < extremes.maximum.step;
    const tagPOINT& start = isAscending ? extremes.minimum.point : extremes.maximum.point;
    const tagPOINT& end = isAscending ? extremes.maximum.point : extremes.minimum.point;
    *out = alongX
               ? tagPOINT2D{wrappedDifference(end.x, start.x), riseOfLine(end.x, start.x, slope, intercept)}
               : tagPOINT2D{riseOfLine(end.y, start.y, slope, intercept), wrappedDifference(end.y, start.y)};
    return 1;
}
