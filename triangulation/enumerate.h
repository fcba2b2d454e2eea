// The vertices in or around a rectangle.
#ifndef VELQUAD_TRIANGULATION_ENUMERATE_H
#define VELQUAD_TRIANGULATION_ENUMERATE_H

#include "triangulation/delaunay.h"
#include "triangulation/triangle_list.h"

namespace velquad::triangulation {

/// A rectangle with its sides in order and a margin of 1e-7.
class MarginRect {
  public:
    explicit MarginRect(const tagMAT_RECT2D& rect);

    /// Tells whether a place lies in the rectangle with its margin.
    bool contains(const tagPOINT2D& p) const;

    /// Tells whether a triangle and the rectangle have a point in common. Kept: the left side of the rectangle is
    /// not compared with the triangle's edges, so a triangle that reaches over that side only, without a corner of
    /// one in the other, counts as apart.
    bool meetsTriangle(const tagPOINT2D& a, const tagPOINT2D& b, const tagPOINT2D& c) const;

  private:
    bool isApartFrom(const tagPOINT2D& a, const tagPOINT2D& b, const tagPOINT2D& c) const;

    tagMAT_RECT2D rect_;
};

/// Lists the vertices in a rectangle.
void listPointsInRect(const CDelaunay2D& triangulation, const MarginRect& rect, CSortedPointList& list);

/// Lists the corners, helpers left out, of the triangles that meet a rectangle.
void listCornersOfTriangles(const CDelaunay2D& triangulation, const MarginRect& rect, CSortedPointList& list);

}  // namespace velquad::triangulation

#endif  // VELQUAD_TRIANGULATION_ENUMERATE_H
