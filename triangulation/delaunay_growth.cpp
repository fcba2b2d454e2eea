// Growth, replacement and removal. A vertex is never taken out of a subdivision: one that no longer suits is
// replaced by a new one, into which the vertices that stay are inserted in their order.
#include "triangulation/delaunay_growth.h"

#include <cmath>

namespace velquad::triangulation {
namespace {

/// Half the width of the first extent around the first point.
constexpr double kFirstReach = 10.0;
/// Least width and height of a rebuilt extent.
constexpr double kLeastExtent = 32.0;

bool isFinite(const tagPOINT2D& p) {
    return std::isfinite(p.x) && std::isfinite(p.y);
}

/// The bounding box of points, twice as large around its middle.
class DoubledBox {
  public:
    void add(const tagPOINT2D& p) {
        if (p.x < left_) left_ = p.x;
        if (p.x > right_) right_ = p.x;
        if (p.y < top_) top_ = p.y;
        if (p.y > bottom_) bottom_ = p.y;
    }

    tagMAT_RECT2D extent() const {
        const double centerX = (left_ + right_) * 0.5;
        const double centerY = (top_ + bottom_) * 0.5;
        const double width = atLeast(2.0 * (right_ - left_));
        const double height = atLeast(2.0 * (bottom_ - top_));
        return {centerX - width / 2, centerY - height / 2, centerX + width / 2, centerY + height / 2};
    }

  private:
    static double atLeast(double size) { return size < kLeastExtent ? kLeastExtent : size; }

    double left_ = kExtentNotSet;
    double top_ = kExtentNotSet;
    double right_ = -kExtentNotSet;
    double bottom_ = -kExtentNotSet;
};

/// Makes a triangulation of the vertices of `old` farther than `radius` from `center`, and of one more point when
/// `added` is not null.
Delaunay2DHandle rebuild(const CDelaunay2D& old, const tagPOINT2D& center, double radius,
                         const Point2d* added) {
    const auto survives = [&](std::uint32_t point) {
        const double dx = center.x - old.position(point).x;
        const double dy = center.y - old.position(point).y;
        return dx * dx + dy * dy > radius * radius;
    };
    DoubledBox box;
    for (std::uint32_t i = CDelaunay2D::kHelperCount; i < old.pointCount(); ++i)
        if (survives(i)) box.add(old.position(i));
    if (added != nullptr) box.add(center);
    const tagMAT_RECT2D extent = box.extent();
    auto fresh = std::make_unique<CDelaunay2D>(&extent);
    // Kept: a point that the new triangulation refuses is lost without notice, as is the added one.
    for (std::uint32_t i = CDelaunay2D::kHelperCount; i < old.pointCount(); ++i)
        if (survives(i)) fresh->insertSite(old.point(i));
    if (added != nullptr) fresh->insertSite(*added);
    return fresh;
}

}  // namespace

bool extend(Delaunay2DHandle& handle, const Point2d& point, double tolerance) {
    const tagPOINT2D place{point.x, point.y};
    if (!isFinite(place)) return false;
    if (!handle->hasPoints()) {
        handle->init(
            {place.x - kFirstReach, place.y - kFirstReach, place.x + kFirstReach, place.y + kFirstReach});
    }
    const double radius = handle->resolveTolerance(tolerance);
    if (handle->isFartherThan(place, radius) && handle->isInExtent(place)) return handle->insertSite(point);
    handle = rebuild(*handle, place, radius, &point);
    return true;
}

bool reduce(Delaunay2DHandle& handle, const tagPOINT2D& place, double tolerance) {
    if (!handle->hasPoints() || !isFinite(place)) return false;
    const double radius = handle->resolveTolerance(tolerance);
    if (handle->isFartherThan(place, radius)) return false;
    handle = rebuild(*handle, place, radius, nullptr);
    return true;
}

}  // namespace velquad::triangulation
