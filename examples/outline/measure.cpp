#include "measure.h"

#include <algorithm>
#include <cmath>

#include "trace.h"

namespace examples::outline {
namespace {

constexpr int kClosed = 1;
constexpr int kNotSquared = 0;

/// Polygons hold integers, and the curve functions truncate their results to integers. In whole pixels a smooth
/// curve would come out as the same staircase that went in. So the outlines are scaled up first: with 16
/// sub-pixels per pixel a curve is drawn to a sixteenth of a pixel.
///
/// There is a limit to this. Orientation and membership are decided by products of two coordinate differences
/// in 32-bit integers, which wrap silently beyond 2^31. As long as coordinates stay below 32000, so does the
/// sum of two such products. Pictures beyond 2000 pixels thus get fewer sub-pixels.
int subpixelsFor(int width, int height) {
    constexpr int kWanted = 16;
    constexpr int kLargestCoordinate = 32000;
    int subpixels = kWanted;
    while (subpixels > 1 && subpixels * std::max(width, height) > kLargestCoordinate)
        subpixels /= 2;
    return subpixels;
}

/// The outline of an object as a closed polygon without repeated points, counter-clockwise.
///
/// Counter-clockwise is meant in mathematical axes, x to the right and y upwards. In a picture y runs downwards,
/// so that on the screen these outlines run clockwise. What matters is that all run the same way: their areas
/// are positive then.
Polygon rawOutline(const Objects& objects, const Region& region, int subpixels) {
    constexpr int kCounterClockwise = 1;
    Polygon polygon = makePolygon(traceOutline(objects, region));
    const LockedPolygon locked(polygon);
    locked.setCount(polyRemoveDoublePoints(locked.points(), locked.count()));
    polyMakeCCW(locked.points(), locked.count(), kCounterClockwise);
    polyScale(locked.points(), locked.count(), subpixels, subpixels);
    return polygon;
}

Extent extentOf(const Polygon& polygon, int subpixels) {
    const LockedPolygon locked(polygon);
    const double perPixel = subpixels;
    return {polyCalcAreaExact(locked.points(), locked.count()) / (perPixel * perPixel),
            polyCalcLength(locked.points(), locked.count(), kClosed, kNotSquared) / perPixel};
}

RECT boundsOf(const Polygon& polygon, int subpixels) {
    const LockedPolygon locked(polygon);
    RECT bounds{};
    polyGetBoundingRect(locked.points(), locked.count(), &bounds);
    return {bounds.left / subpixels, bounds.top / subpixels, bounds.right / subpixels,
            bounds.bottom / subpixels};
}

/// Centre of gravity of the enclosed area, and whether it lies on the object: that of a crescent does not.
///
/// The library rounds the centres of the triangles that it sums up to integers. In sub-pixels that costs less
/// than a sixteenth of a pixel.
void findCentre(MeasuredObject& object, int subpixels) {
    const LockedPolygon locked(object.raw);
    tagPOINT2D centre{};
    if (polyCalcCenterOfGravity(locked.points(), locked.count(), &centre) == 0) return;
    tagPOINT nearest{};
    nearest.x = static_cast<LONG>(std::lround(centre.x));
    nearest.y = static_cast<LONG>(std::lround(centre.y));
    constexpr int kOutside = 0;  // Inside is 1, on the outline -1.
    object.isCentreInside = polyIsPointInside(locked.points(), locked.count(), &nearest) != kOutside;
    object.centre = tagPOINT2D{centre.x / subpixels, centre.y / subpixels};
}

/// How many points of a traced outline make one point of a smooth one.
///
/// A curve through every pixel of a staircase is a rounded staircase, so only every few points are kept. The
/// first and the last one always stay. A step that leaves a short remainder would put two kept points side by
/// side at the seam, and the curve would bulge there; of a few steps the one that leaves the fullest last chord wins.
DWORD thinningStep(DWORD count) {
    constexpr DWORD kWanted = 5;
    constexpr DWORD kFewestPoints = 16;
    const DWORD edges = count - 1;
    const DWORD wanted = std::clamp(edges / kFewestPoints, DWORD{1}, kWanted);
    DWORD best = wanted;
    double bestRemainder = 0.0;  // The last chord as a part of the others.
    for (DWORD step = std::max(wanted - 1, DWORD{1}); step <= wanted + 2; ++step) {
        const DWORD remainder = edges % step == 0 ? step : edges % step;
        if (static_cast<double>(remainder) / step <= bestRemainder) continue;
        bestRemainder = static_cast<double>(remainder) / step;
        best = step;
    }
    return best;
}

/// Every few points of an outline; nothing for an outline that is too short to be smoothed.
Polygon controlPoints(const Polygon& outline) {
    constexpr DWORD kFewestPoints = 9;  // The interpolating curve takes five and more.
    Polygon thinned = copyOf(outline);
    const LockedPolygon locked(thinned);
    if (locked.count() < kFewestPoints) return Polygon();
    locked.setCount(polyElapsePoints(locked.points(), locked.count(), thinningStep(locked.count())));
    // In thin places the outline runs back over its own pixels, and two kept points can be the same one. The
    // interpolating curve refuses equal neighbours.
    locked.setCount(polyRemoveDoublePoints(locked.points(), locked.count()));
    if (locked.count() < kFewestPoints) return Polygon();
    return thinned;
}

/// The two smooth forms of an outline: one through the control points, one near them.
void smooth(MeasuredObject& object, int subpixels) {
    const Polygon control = controlPoints(object.raw);
    if (!control) return;

    // The step is a distance along the curve, in the coordinates of the polygon: a quarter of a pixel.
    const double step = subpixels / 4.0;

    // Where two straight runs meet in a corner, the corner is cut at this part of the shorter adjoining chord.
    constexpr double kCornerFactor = 0.3;
    object.interpolated = Polygon(polyCalcInterpolatingCurve(control.handle(), step, kCornerFactor, nullptr));
    if (object.interpolated) object.interpolatedExtent = extentOf(object.interpolated, subpixels);

    // Order 4 is the cubic B-spline. It does not pass through its control points and evens out their noise.
    constexpr int kOrder = 4;
    object.fitted = Polygon(polyCalcFittingCurve(control.handle(), step, kOrder, nullptr));
    if (object.fitted) object.fittedExtent = extentOf(object.fitted, subpixels);
}

/// The object whose outline comes nearest to the centre of object `index`, and how the two lie.
std::optional<Neighbour> neighbourOf(const std::vector<MeasuredObject>& objects, std::size_t index,
                                     int subpixels) {
    const MeasuredObject& object = objects[index];
    const LockedPolygon outline(object.raw);
    tagPOINT from = *outline.begin();
    if (object.centre) {
        from.x = static_cast<LONG>(std::lround(object.centre->x * subpixels));
        from.y = static_cast<LONG>(std::lround(object.centre->y * subpixels));
    }

    std::optional<Neighbour> nearest;
    for (std::size_t i = 0; i < objects.size(); ++i) {
        if (i == index) continue;
        const LockedPolygon other(objects[i].raw);
        const double distance = polyCalcDistance(other.points(), other.count(), kClosed, &from, kNotSquared,
                                                 nullptr, nullptr, nullptr) /
                                subpixels;
        if (!nearest || distance < nearest->distance) nearest = Neighbour{i, distance, Position::kApart};
    }
    if (nearest) {
        const LockedPolygon other(objects[nearest->index].raw);
        nearest->position = static_cast<Position>(polyGetRelativePosition(
            outline.points(), outline.count(), kClosed, other.points(), other.count(), kClosed));
    }
    return nearest;
}

}  // namespace

double circularityOf(const Extent& extent) {
    constexpr double kPi = 3.141592653589793;
    return extent.length > 0.0 ? 4.0 * kPi * extent.area / (extent.length * extent.length) : 0.0;
}

Measurement measure(const Objects& objects) {
    Measurement result;
    result.subpixels = subpixelsFor(objects.labels.width, objects.labels.height);
    for (const Region& region : objects.regions) {
        MeasuredObject object;
        object.region = region;
        object.raw = rawOutline(objects, region, result.subpixels);
        object.bounds = boundsOf(object.raw, result.subpixels);
        object.rawExtent = extentOf(object.raw, result.subpixels);
        findCentre(object, result.subpixels);
        smooth(object, result.subpixels);
        result.objects.push_back(std::move(object));
    }
    for (std::size_t i = 0; i < result.objects.size(); ++i) {
        result.objects[i].neighbour = neighbourOf(result.objects, i, result.subpixels);
    }
    return result;
}

std::vector<tagPOINT2D> pointsInPixels(const Polygon& polygon, int subpixels, bool isTruncated) {
    std::vector<tagPOINT2D> result;
    if (!polygon) return result;
    const LockedPolygon locked(polygon);
    const double shift = isTruncated ? 0.5 : 0.0;
    result.reserve(locked.count());
    for (const tagPOINT& point : locked) {
        result.push_back({(point.x + shift) / subpixels, (point.y + shift) / subpixels});
    }
    return result;
}

}  // namespace examples::outline
