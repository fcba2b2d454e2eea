// Rectangles against points and triangles.
#include "triangulation/enumerate.h"

#include <cmath>
#include <utility>

#include "geometry/line_intersection.h"

namespace velquad::triangulation {
namespace {

bool isBarycentric(double value) {
    return value > kLowestBarycentric && value < kHighestBarycentric;
}

bool isInTriangle(const tagPOINT2D& p, const tagPOINT2D& a, const tagPOINT2D& b, const tagPOINT2D& c) {
    const double determinant = (c.y - a.y) * (b.x - a.x) - (c.x - a.x) * (b.y - a.y);
    if (std::fabs(determinant) < kMargin) return false;
    const double u = ((p.x - a.x) * (c.y - a.y) - (p.y - a.y) * (c.x - a.x)) / determinant;
    const double v = ((p.y - a.y) * (b.x - a.x) - (p.x - a.x) * (b.y - a.y)) / determinant;
    return isBarycentric(u) && isBarycentric(v) && isBarycentric(u + v);
}

}  // namespace

MarginRect::MarginRect(const tagMAT_RECT2D& rect) : rect_(rect) {
    if (rect_.left > rect_.right) std::swap(rect_.left, rect_.right);
    if (rect_.top > rect_.bottom) std::swap(rect_.top, rect_.bottom);
}

bool MarginRect::contains(const tagPOINT2D& p) const {
    return p.x > rect_.left - kMargin && rect_.right + kMargin > p.x && p.y > rect_.top - kMargin &&
           rect_.bottom + kMargin > p.y;
}

bool MarginRect::isApartFrom(const tagPOINT2D& a, const tagPOINT2D& b, const tagPOINT2D& c) const {
    const double left = rect_.left - kMargin;
    const double right = rect_.right + kMargin;
    const double top = rect_.top - kMargin;
    const double bottom = rect_.bottom + kMargin;
    return (a.x <= left && b.x <= left && c.x <= left) || (a.x >= right && b.x >= right && c.x >= right) ||
           (a.y <= top && b.y <= top && c.y <= top) || (a.y >= bottom && b.y >= bottom && c.y >= bottom);
}

bool MarginRect::meetsTriangle(const tagPOINT2D& a, const tagPOINT2D& b, const tagPOINT2D& c) const {
    if (isApartFrom(a, b, c)) return false;
    if (contains(a) || contains(b) || contains(c)) return true;
    const tagPOINT2D corners[4] = {{rect_.left, rect_.top},
                                   {rect_.right, rect_.top},
                                   {rect_.right, rect_.bottom},
                                   {rect_.left, rect_.bottom}};
    for (const tagPOINT2D& corner : corners)
        if (isInTriangle(corner, a, b, c)) return true;
    const auto crossesSide = [&corners](const tagPOINT2D& from, const tagPOINT2D& to) {
        for (int side = 0; side < 3; ++side)
            if (geometry::crossSegments(from, to, corners[side], corners[side + 1])) return true;
        return false;
    };
    return crossesSide(a, b) || crossesSide(b, c) || crossesSide(c, a);
}

void listPointsInRect(const CDelaunay2D& triangulation, const MarginRect& rect, CSortedPointList& list) {
    for (std::uint32_t i = CDelaunay2D::kHelperCount; i < triangulation.pointCount(); ++i)
        if (rect.contains(triangulation.position(i))) list.add(triangulation, i);
}

void listCornersOfTriangles(const CDelaunay2D& triangulation, const MarginRect& rect,
                            CSortedPointList& list) {
    const CSortedTriangleList triangles(triangulation);
    triangles.forEach([&](const CTriangle* triangle) {
        const std::uint32_t* corners = triangle->vertices;
        if (!rect.meetsTriangle(triangulation.position(corners[0]), triangulation.position(corners[1]),
                                triangulation.position(corners[2]))) {
            return;
        }
        for (int i = 0; i < 3; ++i)
            if (!CDelaunay2D::isHelper(corners[i])) list.add(triangulation, corners[i]);
    });
}

}  // namespace velquad::triangulation
