// Location of a place, the nearest edge and vertex of a place outside, and interpolation of z: linear in the
// triangle, or from all vertices by inverse distances (D. Shepard, A two-dimensional interpolation function for
// irregularly-spaced data, 1968).
#include "triangulation/find_position.h"

#include <cmath>

#include "geometry/distance.h"

namespace velquad::triangulation {
namespace {

// Find flags.
constexpr unsigned int kNearestByMeanDistance = 1;
constexpr unsigned int kNearestByDistance = 2;
constexpr unsigned int kInverseSquare = 8;
constexpr unsigned int kInverseFourthPower = 16;

constexpr double kLargestFloat = 3.4028234663852886e38;
constexpr double kSmallestFloat = 1.1754943508222875e-38;

class PositionSearch {
  public:
    PositionSearch(const CDelaunay2D& triangulation, const Point2d& query, bool filtersByIds)
        : triangulation_(triangulation),
          place_{query.x, query.y},
          queryId_(query.id),
          filtersByIds_(filtersByIds) {}

    FoundCorners locate(int* isOutside, unsigned int flags) const {
        if (isOutside != nullptr) *isOutside = 0;
        const FoundCorners inside = locateInside();
        if (inside.count != 0) return inside;
        if (isOutside != nullptr) *isOutside = 1;
        return locateOutside(flags);
    }

    FoundCorners interpolateFromAll(int* isOutside, unsigned int flags) const;

  private:
    FoundCorners locateInside() const {
        const EdgeRef e = triangulation_.locate(place_);
        if (e == kNoEdge) return {};
        const std::uint32_t from = triangulation_.org(e);
        const std::uint32_t to = triangulation_.dest(e);
        if (isVertex(from)) return corners({from});
        if (isVertex(to)) return corners({to});
        if (triangulation_.isOnEdge(place_, e)) return corners({from, to});
        return corners({from, triangulation_.dest(triangulation_.onext(e)), to});
    }

    bool isVertex(std::uint32_t point) const { return isSameVertex(place_, triangulation_.position(point)); }

    /// The vertices, unless one is a helper or the identifiers are not those asked for.
    FoundCorners corners(std::initializer_list<std::uint32_t> points) const {
        FoundCorners found;
        for (const std::uint32_t point : points) {
            if (CDelaunay2D::isHelper(point)) return {};
            found.corners[found.count++] = triangulation_.point(point);
        }
        if (!filtersByIds_) return found;
        const std::uint64_t id = found.corners[0].id;
        for (std::uint32_t i = 1; i < found.count; ++i)
            if (found.corners[i].id != id) return {};
        if (queryId_ != kNoId && queryId_ != id) return {};
        return found;
    }

    bool suits(std::uint64_t id) const { return id != kNoId && (queryId_ == kNoId || queryId_ == id); }

    FoundCorners locateOutside(unsigned int flags) const {
        EdgeRef edge = kNoEdge;
        double edgeDistance = kNoValue;
        if ((flags & (kNearestByMeanDistance | kNearestByDistance)) != 0) {
            edge = (flags & kNearestByMeanDistance) != 0
                       ? nearestEdge([this](EdgeRef e) { return meanDistance(e); })
                       : nearestEdge([this](EdgeRef e) { return segmentDistance(e); });
            if (edge != kNoEdge) edgeDistance = segmentDistance(edge);
        }
        const NearestIndex::Found vertex = nearestVertex();
        FoundCorners found;
        if (vertex.point != NearestIndex::kNone &&
            (edge == kNoEdge || edgeDistance > CDelaunay2D::foundDistance(vertex.distanceSquared))) {
            found.count = 1;
            found.corners[0] = triangulation_.point(vertex.point);
        } else if (edge != kNoEdge) {
            found.count = 2;
            found.corners[0] = triangulation_.point(triangulation_.org(edge));
            found.corners[1] = triangulation_.point(triangulation_.dest(edge));
        }
        return found;
    }

    double meanDistance(EdgeRef e) const {
        return (pointDistance(place_, triangulation_.orgPosition(e)) +
                pointDistance(place_, triangulation_.destPosition(e))) *
               0.5;
    }

    double segmentDistance(EdgeRef e) const {
        return geometry::footOnSegment(triangulation_.orgPosition(e), triangulation_.destPosition(e), place_)
            .distance;
    }

    template <class Measure>
    EdgeRef nearestEdge(const Measure& measure) const {
        EdgeRef best = kNoEdge;
        double bestLength = kLargestFloat;
        triangulation_.forEachEdge([&](EdgeRef e) {
            if (!countsAsEdge(e)) return;
            const double length = measure(e);
            if (!(length < bestLength)) return;
            bestLength = length;
            best = e;
        });
        return best;
    }

    bool countsAsEdge(EdgeRef e) const {
        const std::uint32_t from = triangulation_.org(e);
        const std::uint32_t to = triangulation_.dest(e);
        if (CDelaunay2D::isHelper(from) || CDelaunay2D::isHelper(to)) return false;
        return !filtersByIds_ ||
               (triangulation_.id(from) == triangulation_.id(to) && suits(triangulation_.id(from)));
    }

    NearestIndex::Found nearestVertex() const {
        if (!filtersByIds_) return triangulation_.nearestPoint(place_, kLargestFloat);
        return triangulation_.nearestPoint(
            place_, kLargestFloat, [this](std::uint32_t point) { return suits(triangulation_.id(point)); });
    }

    double distanceSquared(std::uint32_t point) const {
        const double dx = place_.x - triangulation_.position(point).x;
        const double dy = place_.y - triangulation_.position(point).y;
        return dx * dx + dy * dy;
    }

    bool contributes(std::uint32_t point) const {
        return !filtersByIds_ || triangulation_.id(point) == queryId_;
    }

    const CDelaunay2D& triangulation_;
    tagPOINT2D place_;
    std::uint64_t queryId_;
    bool filtersByIds_;
};

/// The mean of all z values, weighted by a power of the inverse distance. Weights and values are divided by their
/// largest ones before they are summed, so that sums neither overflow nor vanish.
FoundCorners PositionSearch::interpolateFromAll(int* isOutside, unsigned int flags) const {
    constexpr double kSamePlaceSquared = 1e-10;
    constexpr double kLeastValue = 1e-15;
    FoundCorners found;
    if (!std::isfinite(place_.x) || !std::isfinite(place_.y)) return found;
    const auto weightOf = [flags](double squared) {
        return 1.0 / ((flags & kInverseFourthPower) != 0 ? squared * squared : squared);
    };
    double largestWeight = -kLargestFloat;
    double largestZ = -kLargestFloat;
    const std::uint32_t count = triangulation_.pointCount();
    for (std::uint32_t i = CDelaunay2D::kHelperCount; i < count; ++i) {
        if (!contributes(i)) continue;
        const double squared = distanceSquared(i);
        if (squared < kSamePlaceSquared) {
            found.count = 1;
            found.corners[0] = triangulation_.point(i);
            return found;
        }
        const double weight = weightOf(squared);
        if (weight > largestWeight) largestWeight = weight;
        if (const double z = std::fabs(triangulation_.z(i)); z > largestZ) largestZ = z;
    }
    if (largestWeight < kSmallestFloat) largestWeight = 1.0;
    if (largestZ < kLeastValue) largestZ = 1.0;
    double weightSum = 0.0;
    double valueSum = 0.0;
    for (std::uint32_t i = CDelaunay2D::kHelperCount; i < count; ++i) {
        if (!contributes(i)) continue;
        const double weight = weightOf(distanceSquared(i)) / largestWeight;
        weightSum += weight;
        valueSum += triangulation_.z(i) / largestZ * weight;
        found.count = 1;
    }
    if (found.count == 0) return found;
    found.corners[0] = {place_.x, place_.y, largestZ * valueSum / weightSum, queryId_, false};
    if (isOutside != nullptr) *isOutside = 0;
    return found;
}

/// Moves a place to its edge.
void moveToEdge(Point2d& query, const Point2d& a, const Point2d& b) {
    const geometry::SegmentFoot foot =
        geometry::footOnSegment(tagPOINT2D{a.x, a.y}, tagPOINT2D{b.x, b.y}, tagPOINT2D{query.x, query.y});
    query.x = foot.closest.x;
    query.y = foot.closest.y;
    query.z = (b.z - a.z) * foot.parameter + a.z;
}

/// Moves a place to where its barycentric coordinates put it.
/// @return false, with the place as it was, for a flat triangle.
bool moveToTriangle(Point2d& query, const Point2d& a, const Point2d& b, const Point2d& c) {
    const double determinant = (b.x - a.x) * (c.y - a.y) - (c.x - a.x) * (b.y - a.y);
    if (std::fabs(determinant) < kMargin) return false;
    const double u = ((query.x - a.x) * (c.y - a.y) - (query.y - a.y) * (c.x - a.x)) / determinant;
    const double v = ((query.y - a.y) * (b.x - a.x) - (query.x - a.x) * (b.y - a.y)) / determinant;
    query.x = a.x + u * (b.x - a.x) + v * (c.x - a.x);
    query.y = a.y + u * (b.y - a.y) + v * (c.y - a.y);
    query.z = a.z + u * (b.z - a.z) + v * (c.z - a.z);
    return true;
}

}  // namespace

FoundCorners findPosition(const CDelaunay2D& triangulation, Point2d& query, int* isOutside,
                          unsigned int flags, bool filtersByIds) {
    const PositionSearch search(triangulation, query, filtersByIds);
    const FoundCorners found = (flags & (kInverseSquare | kInverseFourthPower)) != 0
                                   ? search.interpolateFromAll(isOutside, flags)
                                   : search.locate(isOutside, flags);
    const Point2d* corners = found.corners;
    if (found.count == 1) {
        query = corners[0];
    } else if (found.count == 2) {
        moveToEdge(query, corners[0], corners[1]);
    } else if (found.count == 3 && !moveToTriangle(query, corners[0], corners[1], corners[2])) {
        return {};
    }
    return found;
}

}  // namespace velquad::triangulation
