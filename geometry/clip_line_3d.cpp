// Clipping of an infinite line to a box with edges along the axes: the line is crossed with the planes of the six
// faces, and the crossings that lie on their face are its ends.
#include <cmath>

#include "frame/primitives.h"
#include "velquad/geometry.h"

using velquad::frame::isSmaller;

namespace {

/// A direction whose component is smaller runs along the faces of that axis.
constexpr double kParallel = 1e-7;
/// Crossings at parameters closer than this are the same corner or edge of the box.
constexpr double kSameCrossing = 1e-7;

struct Box {
    double corner[3];
    double size[3];
};

struct Line {
    double point[3];
    double direction[3];
};

/// The parameters of the crossings found so far.
struct Section {
    double lowest = velquad::kExtentNotSet;
    double highest = -velquad::kExtentNotSet;

    bool isSet() const { return lowest != velquad::kExtentNotSet; }
    bool hasTwoEnds() const { return isSet() && !isSmaller(kSameCrossing, highest - lowest); }
    void add(double t) {
        if (t < lowest) lowest = t;
        if (t > highest) highest = t;
    }
};

/// Whether the line's point at the parameter `t` lies within the box's extent along one axis.
bool isWithin(const Box& box, const Line& line, int axis, double t) {
    const double distance = line.direction[axis] * t + (line.point[axis] - box.corner[axis]);
    return distance >= 0.0 && box.size[axis] >= distance;
}

/// Crosses the line with the two faces at right angles to one axis.
void crossFaces(const Box& box, const Line& line, int axis, Section& section) {
    if (isSmaller(kParallel, line.direction[axis])) return;
    const double faces[] = {box.corner[axis], box.corner[axis] + box.size[axis]};
    for (const double face : faces) {
        const double t = (face - line.point[axis]) / line.direction[axis];
        if (isWithin(box, line, (axis + 1) % 3, t) && isWithin(box, line, (axis + 2) % 3, t)) section.add(t);
    }
}

tagPOINT3D pointAt(const Line& line, double t) {
    return {line.point[0] + t * line.direction[0], line.point[1] + t * line.direction[1],
            line.point[2] + t * line.direction[2]};
}

}  // namespace

extern "C" int matClipLine3D(const double* corner, double sizeX, double sizeY, double sizeZ,
                             const tagPOINT3D* linePoint, const tagPOINT3D* lineDirection, tagPOINT3D* first,
                             tagPOINT3D* second) {
    const Box box{{corner[0], corner[1], corner[2]}, {sizeX, sizeY, sizeZ}};
    const Line line{{linePoint->x, linePoint->y, linePoint->z},
                    {lineDirection->x, lineDirection->y, lineDirection->z}};

    // Kept: the search ends at the first axis that gives both ends. An end found on a later axis could move the
    // section by rounding only, but its bits would be others.
    Section section;
    for (int axis = 0; axis < 3 && !section.hasTwoEnds(); ++axis)
        crossFaces(box, line, axis, section);
    if (!section.isSet()) return 0;

    const tagPOINT3D lowest = pointAt(line, section.lowest);
    const tagPOINT3D highest = pointAt(line, section.highest);
    const bool isLowestNearer = std::fabs(section.highest) > std::fabs(section.lowest);
    *first = isLowestNearer ? lowest : highest;
    *second = isLowestNearer ? highest : lowest;
    return 1;
}
