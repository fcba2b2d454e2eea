// Convex hulls of integer outlines and of points of space.
#include "polygon/hull_impl.h"

#include "polygon/point_traits.h"
#include "velquad/polygon.h"

extern "C" DWORD polyConvexHull(tagPOINT* points, DWORD count) {
    if (points == nullptr || count == 0) return 0;
    const bool isClosed = velquad::polygon::isClosed(points, count);
    return velquad::polygon::wrapHull(points, isClosed ? count - 1 : count);
}

extern "C" DWORD matConvexHullP3D(tagPOINT3D* points, DWORD count) {
    return velquad::polygon::wrapHull(points, count);
}
