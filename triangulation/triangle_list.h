// The vertices and the triangles of a triangulation, sorted by place.
#ifndef VELQUAD_TRIANGULATION_TRIANGLE_LIST_H
#define VELQUAD_TRIANGULATION_TRIANGLE_LIST_H

#include <cstddef>
#include <cstdint>
#include <deque>

#include "triangulation/delaunay.h"
#include "triangulation/sorted_list.h"

namespace velquad::triangulation {

/// Orders places by y, then by x; places that differ by less than 1e-7 in both coordinates are equal.
int comparePlaces(const tagPOINT2D& a, const tagPOINT2D& b);

/// Places, by number of the vertex.
struct PlacedPoint {
    tagPOINT2D position;
    std::uint32_t number;
};

class CSortedPointList : public CSortedListT<PlacedPoint> {
  public:
    int Compare(const PlacedPoint* a, const PlacedPoint* b) const override;

    /// Adds a vertex unless one is there.
    void add(const CDelaunay2D& triangulation, std::uint32_t number);

    /// Tells whether the list has a point at a place, within the tolerance of `Compare`.
    bool hasPointAt(const tagPOINT2D& place) const;

  private:
    std::deque<PlacedPoint> points_;
    tagMAT_RECT2D bounds_{kNoValue, kNoValue, -kNoValue, -kNoValue};
};

/// A triangle of the enumeration.
struct CTriangle {
    std::uint32_t vertices[3];
    tagPOINT2D center;  ///< The mean of the corners.
    double area;
};

/// The triangles of a triangulation, each once, sorted by their centers. Triangles are gathered to the left of each
/// edge, and where these do not cover the area of the super-triangle, to the right as well.
class CSortedTriangleList : public CSortedListT<CTriangle> {
  public:
    /// @param triangulation  one with points.
    explicit CSortedTriangleList(const CDelaunay2D& triangulation);

    int Compare(const CTriangle* a, const CTriangle* b) const override;

  private:
    void add(const CDelaunay2D& triangulation, std::uint32_t a, std::uint32_t b, std::uint32_t c);
    bool isComplete() const;

    double totalArea_;
    double coveredArea_ = 0.0;
    double areaTolerance_;
    std::deque<CTriangle> triangles_;
    std::uint64_t capacity_;
    std::uint64_t count_ = 0;
};

}  // namespace velquad::triangulation

#endif  // VELQUAD_TRIANGULATION_TRIANGLE_LIST_H
