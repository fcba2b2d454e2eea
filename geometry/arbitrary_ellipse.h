// A tilted ellipse that is followed from pixel to pixel.
#ifndef VELQUAD_GEOMETRY_ARBITRARY_ELLIPSE_H
#define VELQUAD_GEOMETRY_ARBITRARY_ELLIPSE_H

#include "geometry/closed_curve.h"

namespace velquad::geometry {

class CMatArbitraryEllipse final : public CMatClosedCurve {
  public:
    /// Finds the pixel at the end of the first axis and the direction in which the curve leaves it.
    /// @param tilt  in radians, from the x axis towards the y axis.
    CMatArbitraryEllipse(PointCallback pointCallback, std::uint64_t arg1, std::int64_t arg2, double x,
                         double y, double semiAxisA, double semiAxisB, double tilt, double pixelWidth,
                         double pixelHeight);

    double GetNeighbourError(tagPOINT point, tagPOINT* neighbour, int direction) override;

    /// Follows the ellipse from `startPoint`; see `CMatClosedCurve::Follow`.
    DWORD Walk() { return Follow(startPoint, startDirection); }

    double centerX, centerY;  // in units of measurement, as the semi-axes
    double angle;
    tagPOINT startPoint;
    int startDirection;
    double scaleX, scaleY;  // size of a pixel
    double sinAngle, cosAngle;
    double squaredSemiAxisA, squaredSemiAxisB;
};

}  // namespace velquad::geometry

#endif  // VELQUAD_GEOMETRY_ARBITRARY_ELLIPSE_H
