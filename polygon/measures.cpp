// Distance, centre of gravity, area and length of an outline.
#include "polygon/measures_impl.h"

#include "frame/convert.h"
#include "geometry/triangle.h"
#include "velquad/polygon.h"

using velquad::frame::Int32;
using velquad::frame::isSmaller;
using velquad::frame::wrapAdd;
using velquad::polygon::NearestPlace;

namespace {

constexpr double kNoArea = 1e-40;

/// The mean of three coordinates, truncated towards zero; the sum wraps around.
Int32 meanOfThree(Int32 a, Int32 b, Int32 c) {
    return wrapAdd(wrapAdd(a, b), c) / 3;
}

tagPOINT2D midpoint(const tagPOINT& a, const tagPOINT& b) {
    return {static_cast<double>(wrapAdd(a.x, b.x) / 2), static_cast<double>(wrapAdd(a.y, b.y) / 2)};
}

/// The mean of all points, rounded to integers.
tagPOINT roundedMean(const tagPOINT* points, DWORD count) {
    double sumX = 0.0;
    double sumY = 0.0;
    for (DWORD i = 0; i < count; ++i) {
        sumX += static_cast<double>(points[i].x);
        sumY += static_cast<double>(points[i].y);
    }
    return {velquad::frame::lroundToInt32(sumX / count), velquad::frame::lroundToInt32(sumY / count)};
}

}  // namespace

extern "C" double polyCalcDistance(const tagPOINT* points, DWORD count, int closed, const tagPOINT* point,
                                   int isSquared, tagPOINT2D* nearest, DWORD* index, double* fraction) {
    NearestPlace place;
    if (count != 0) {
        place = velquad::polygon::nearestPlace(points, count, closed != 0, *point, isSquared != 0);
    }
    if (nearest != nullptr) *nearest = place.point;
    if (index != nullptr) *index = place.index;
    if (fraction != nullptr) *fraction = place.fraction;
    return place.distance;
}

extern "C" int polyCalcCenterOfGravity(const tagPOINT* points, DWORD count, tagPOINT2D* out) {
    if (count == 1 || count == 2) {
        // Kept: the point is stored although the result is 0. There is a centre, but no area.
        if (out != nullptr) {
            *out = count == 1 ? velquad::frame::toPoint2D(points[0]) : midpoint(points[0], points[1]);
        }
        return 0;
    }
    double area = 0.0;
    tagPOINT2D moment{0.0, 0.0};
    for (DWORD i = 0; i < count; ++i) {
        const tagPOINT& corner = points[0];
        const tagPOINT& current = points[i];
        const tagPOINT& next = points[i + 1 == count ? 0 : i + 1];
        const double triangle = velquad::geometry::signedArea(corner, current, next);
        area += triangle;
        // Kept: the centre of each triangle is an integer point before it is weighted.
        moment.x += triangle * static_cast<double>(meanOfThree(current.x, corner.x, next.x));
        moment.y += triangle * static_cast<double>(meanOfThree(current.y, corner.y, next.y));
    }
    if (isSmaller(kNoArea, area)) return 0;
    if (out != nullptr) *out = {moment.x / area, moment.y / area};
    return 1;
}

extern "C" double polyCalcAreaExact(const tagPOINT* points, DWORD count) {
    if (count < 2) return 0.0;
    // The fan is spread from the middle, which keeps its 32-bit products small.
    const tagPOINT center = roundedMean(points, count);
    double area = 0.0;
    for (DWORD i = 1; i < count; ++i)
        area += velquad::geometry::signedArea(center, points[i - 1], points[i]);
    if (!velquad::polygon::isClosed(points, count)) {
        area += velquad::geometry::signedArea(center, points[count - 1], points[0]);
    }
    return area;
}

extern "C" double polyCalcLength(const tagPOINT* points, DWORD count, int closed, int isSquared) {
    return velquad::polygon::length(points, count, closed != 0, isSquared != 0);
}
