/// @file
/// Outlines as the library's polygons: cleaned, measured, smoothed. Here the library does its work.
#ifndef OUTLINE_MEASURE_H
#define OUTLINE_MEASURE_H

#include <velquad/velquad.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "polygon.h"
#include "threshold.h"

namespace examples::outline {

/// Area in square pixels and length in pixels of a closed outline.
struct Extent {
    double area = 0.0;
    double length = 0.0;
};

/// How a neighbour lies.
enum class Position { kApart = 0, kMeeting = 1, kNeighbourInside = 2, kInsideNeighbour = 3 };

struct Neighbour {
    std::size_t index = 0;
    double distance = 0.0;  ///< From this object's centre to the neighbour's outline, in pixels.
    Position position = Position::kApart;
};

/// One object with its outlines. All polygons are closed, and all hold sub-pixel coordinates: divide by
/// `Measurement::subpixels`.
struct MeasuredObject {
    Region region;
    Polygon raw;           ///< From pixel centre to pixel centre.
    Polygon interpolated;  ///< Curve through every few points of it; none for a tiny object.
    Polygon fitted;        ///< Curve near these points; none for a tiny object.

    RECT bounds{};  ///< In pixels; all four sides belong to the object.
    Extent rawExtent;
    std::optional<Extent> interpolatedExtent;
    std::optional<Extent> fittedExtent;
    std::optional<tagPOINT2D> centre;  ///< In pixels; none for an object without area.
    bool isCentreInside = false;
    std::optional<Neighbour> neighbour;  ///< None for an object that is alone.
};

struct Measurement {
    int subpixels = 1;  ///< Sub-pixels per pixel in all polygons.
    std::vector<MeasuredObject> objects;
};

/// 4 pi area / length^2: 1 for a disc, less for everything else.
double circularityOf(const Extent& extent);

/// Traces, cleans, measures and smooths all objects.
/// @throws Failure when the memory does not suffice.
Measurement measure(const Objects& objects);

/// The points of a polygon in pixels, for drawing.
///
/// Curves come out of the library with coordinates truncated to integers, on average half a sub-pixel low.
/// `isTruncated` puts that half back.
std::vector<tagPOINT2D> pointsInPixels(const Polygon& polygon, int subpixels, bool isTruncated);

}  // namespace examples::outline

#endif  // OUTLINE_MEASURE_H
