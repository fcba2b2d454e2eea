// The sorted lists of vertices and triangles.
#include "triangulation/triangle_list.h"

#include <cmath>

namespace velquad::triangulation {
namespace {

/// Coordinates that differ by less are equal.
constexpr double kSamePlace = 1e-7;
/// The part of the whole area that may be missing.
constexpr double kMissingArea = 1e-10;

}  // namespace

int comparePlaces(const tagPOINT2D& a, const tagPOINT2D& b) {
    if (std::fabs(a.y - b.y) >= kSamePlace) return b.y > a.y ? -1 : 1;
    if (std::fabs(a.x - b.x) < kSamePlace) return 0;
    return b.x > a.x ? -1 : 1;
}

int CSortedPointList::Compare(const PlacedPoint* a, const PlacedPoint* b) const {
    return comparePlaces(a->position, b->position);
}

void CSortedPointList::add(const CDelaunay2D& triangulation, std::uint32_t number) {
    const tagPOINT2D& place = triangulation.position(number);
    points_.push_back({place, number});
    if (!insert(&points_.back())) {
        points_.pop_back();
        return;
    }
    if (place.x < bounds_.left) bounds_.left = place.x;
    if (place.x > bounds_.right) bounds_.right = place.x;
    if (place.y < bounds_.top) bounds_.top = place.y;
    if (place.y > bounds_.bottom) bounds_.bottom = place.y;
}

bool CSortedPointList::hasPointAt(const tagPOINT2D& place) const {
    // Most places are nowhere near; a generous margin leaves the others to the list.
    constexpr double kFarOff = 2 * kSamePlace;
    if (bounds_.left - place.x > kFarOff || place.x - bounds_.right > kFarOff) return false;
    if (bounds_.top - place.y > kFarOff || place.y - bounds_.bottom > kFarOff) return false;
    const PlacedPoint point{place, 0};
    return contains(&point);
}

CSortedTriangleList::CSortedTriangleList(const CDelaunay2D& triangulation)
    : totalArea_(
          triangleArea(triangulation.position(0), triangulation.position(1), triangulation.position(2))),
      areaTolerance_(totalArea_ * kMissingArea),
      capacity_(2 * static_cast<std::uint64_t>(triangulation.edgeCount())) {
    triangulation.forEachEdge([&](EdgeRef e) {
        add(triangulation, triangulation.org(e), triangulation.dest(triangulation.onext(e)),
            triangulation.dest(e));
    });
    if (isComplete()) return;
    triangulation.forEachEdge([&](EdgeRef e) {
        add(triangulation, triangulation.org(e), triangulation.dest(e),
            triangulation.dest(triangulation.oprev(e)));
    });
}

int CSortedTriangleList::Compare(const CTriangle* a, const CTriangle* b) const {
    return comparePlaces(a->center, b->center);
}

bool CSortedTriangleList::isComplete() const {
    return std::fabs(coveredArea_ - totalArea_) < areaTolerance_;
}

void CSortedTriangleList::add(const CDelaunay2D& triangulation, std::uint32_t a, std::uint32_t b,
                              std::uint32_t c) {
    if (CDelaunay2D::isHelper(a) && CDelaunay2D::isHelper(b) && CDelaunay2D::isHelper(c)) return;
    if (count_ == capacity_) return;
    const tagPOINT2D& pa = triangulation.position(a);
    const tagPOINT2D& pb = triangulation.position(b);
    const tagPOINT2D& pc = triangulation.position(c);
    // Kept: an entry that is not counted is filled anew with the next triangle, also when the list has it.
    if (triangles_.size() == count_) triangles_.emplace_back();
    CTriangle& triangle = triangles_[count_];
    triangle = {
        {a, b, c}, {(pa.x + pb.x + pc.x) / 3.0, (pa.y + pb.y + pc.y) / 3.0}, triangleArea(pa, pb, pc)};
    const bool isNew = insert(&triangle);
    if (isComplete() || !isNew) return;
    coveredArea_ += triangle.area;
    ++count_;
}

}  // namespace velquad::triangulation
