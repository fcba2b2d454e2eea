// A tilted ellipse whose parameter is stepped through one turn.
#ifndef VELQUAD_GEOMETRY_ROTATED_ELLIPSE_H
#define VELQUAD_GEOMETRY_ROTATED_ELLIPSE_H

#include <cstdint>

#include "velquad/geometry.h"
#include "velquad/statistics.h"

namespace velquad::geometry {

class CMatRotatedEllipse {
  public:
    /// @param rotation  the tilt in degrees or radians, from the x axis towards the y axis when
    ///                  `isCounterClockwise`.
    CMatRotatedEllipse(const double* center, double a, double b, double rotation, bool isCounterClockwise,
                       bool isDegrees, double pixelWidth, double pixelHeight, PointCallback pointCallback,
                       std::uint64_t arg1, std::int64_t arg2);

    /// Checks scales and semi-axes, once.
    bool IsValid();

    /// The point of the ellipse at parameter `t`, in pixels relative to the centre.
    tagPOINT2D Offset(double t) const;

    /// How far a pixel lies from the curve; never negative.
    double Error(const tagPOINT& pixel) const;

    /// The pixel that stands for parameter `t`.
    /// @param pixel  in: the pixel to compare with, (0, 0) in a walk; out: the pixel chosen.
    void CurvePoint(double t, tagPOINT& pixel);

    /// Delivers the chain of pixels.
    /// @return the number of points delivered; 0 for an invalid ellipse and when the callback stopped the walk.
    DWORD Trace();

    double centerX, centerY;      // in units of measurement
    double semiAxisA, semiAxisB;  // not negative
    double angle;                 // radians
    double scaleX, scaleY;        // size of a pixel
    double squaredSemiAxisA, squaredSemiAxisB;
    double sinAngle, cosAngle;
    double diagonalLength;
    DWORD pointCount = 0;         // points delivered so far
    int isIrregular = 0;          // small, thin, or on pixels far from square
    CMatMomentEvaluator moments;  // Kept: part of every ellipse, fed by none
    PointCallback callback;
    std::uint64_t callbackArg1;
    std::int64_t callbackArg2;
    int validity = -1;  // -1 not checked yet, 0 invalid, 1 valid
    tagPOINT lastRounded{kCoordinateNotSet, kCoordinateNotSet};
    tagPOINT lastChosen{kCoordinateNotSet, kCoordinateNotSet};

  private:
    bool deliver(const tagPOINT& point);
    bool deliverLine(const tagPOINT& previous, const tagPOINT& current);
    int nearestDirection(const tagPOINT2D& offset) const;
};

}  // namespace velquad::geometry

#endif  // VELQUAD_GEOMETRY_ROTATED_ELLIPSE_H
