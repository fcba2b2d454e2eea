/// @file
/// Geometry of the plane and of space: distances and angles.
///
/// **Points.** The suffix of a name tells its points: `2D` and `3D` take doubles, `2L` and `3L` take 32-bit
/// integers, and a name without suffix does exactly what its `2L` sibling does. Integer differences wrap around
/// at 32 bits and are then computed with as doubles.
/// **Results.** `velquad::kNoValue` stands for a distance that does not exist. Degenerate input gives a defined
/// value, never an error. Arguments that are called optional may be null: the value is then not stored.
/// **Pointers.** Functions do not test their mandatory pointers, unless they say so.
/// **Threads.** Pure functions of their arguments. A record belongs to one thread at a time.
#ifndef VELQUAD_GEOMETRY_H
#define VELQUAD_GEOMETRY_H

#include "velquad/types.h"

extern "C" {

/// @name Distances between points
/// Euclidean distances in the units of the coordinates. With `isSquared` non-zero the result is the squared
/// distance, and no root is taken.
///   (1) Exchanging `a` and `b` leaves the result unchanged, to the last bit.
///   (2) Integer differences wrap: points 2^31 apart and more have the distance of the wrapped difference.
/// @{

/// The distance of two pixels.
VELQUAD_API double matCalcDist(const tagPOINT* a, const tagPOINT* b, int isSquared);

/// The same function as `matCalcDist`.
VELQUAD_API double matCalcDist2L(const tagPOINT* a, const tagPOINT* b, int isSquared);

/// The distance of two points of the plane.
VELQUAD_API double matCalcDist2D(const tagPOINT2D* a, const tagPOINT2D* b, int isSquared);

/// The distance of two points of space.
VELQUAD_API double matCalcDist3D(const tagPOINT3D* a, const tagPOINT3D* b, int isSquared);

/// The distance of two points of space with integer coordinates x, y, z.
VELQUAD_API double matCalcDist3L(const int* a, const int* b, int isSquared);

/// The distance of two pixels in units of measurement.
/// @param scaleX  width of a pixel.
/// @param scaleY  height of a pixel.
VELQUAD_API double matCalcPixelScaledDist(const tagPOINT* a, const tagPOINT* b, double scaleX, double scaleY,
                                          int isSquared);
/// @}

/// @name Distances to segments and lines
/// The distance of `point` from the segment a-b, or from the infinite line through a and b.
/// @param isSquared  non-zero: the squared distance.
/// @param closest    optional; the nearest point of the segment or line, also for integer points in doubles.
/// @param parameter  optional; its place on a -> b, 0 at a and 1 at b.
///
/// When a and b coincide, `closest` is a and `parameter` is 0.0. Otherwise a line at right angles to a-b is led
/// through `point`, and its crossing with a-b is the foot.
/// @{

/// The distance from a segment. a and b coincide when both coordinates differ by less than 1e-40. A foot up to
/// 2.2e-16 inside an end, or beyond it, is that end, with `parameter` exactly 0.0 or 1.0.
/// @note  Coordinates so large that rounding swallows the perpendicular give an end of the segment.
VELQUAD_API double matCalcDistanceToSegment2D(const tagPOINT2D* a, const tagPOINT2D* b,
                                              const tagPOINT2D* point, int isSquared, tagPOINT2D* closest,
                                              double* parameter);

/// The distance from a segment between pixels. A foot with -1e-7 < parameter < 1.0000001 is kept as it is, so
/// `closest` may lie that little beyond an end; any other foot is moved to its end, and `parameter` is then
/// exactly 0.0 or 1.0. a and b coincide when they are equal.
/// @note  The crossing is computed in 32 bits: the answer is the expected one while products of two coordinate
///        differences, and sums of two such products, stay within 32 bits.
VELQUAD_API double matCalcDistanceToSegment2L(const tagPOINT* a, const tagPOINT* b, const tagPOINT* point,
                                              int isSquared, tagPOINT2D* closest, double* parameter);

/// The same function as `matCalcDistanceToSegment2L`.
VELQUAD_API double matCalcDistanceToSegment(const tagPOINT* a, const tagPOINT* b, const tagPOINT* point,
                                            int isSquared, tagPOINT2D* closest, double* parameter);

/// The distance from a segment of space; ends are met as by `matCalcDistanceToSegment2D`. A point on the line
/// itself (`matCalcOrthogonal` gives 0) is placed by the dominant coordinate of b - a.
/// @return the distance; `velquad::kNoValue`, with nothing stored, when rounding keeps the perpendicular from
///         meeting the line.
VELQUAD_API double matCalcDistanceToSegment3D(const tagPOINT3D* a, const tagPOINT3D* b,
                                              const tagPOINT3D* point, int isSquared, tagPOINT3D* closest,
                                              double* parameter);

/// The distance from an infinite line. `parameter` may be any number. a and b coincide when both coordinates
/// differ by less than 1e-40.
/// @return the distance; `velquad::kNoValue`, with nothing stored, when rounding swallows the perpendicular.
VELQUAD_API double matCalcDistanceToLine2D(const tagPOINT2D* a, const tagPOINT2D* b, const tagPOINT2D* point,
                                           int isSquared, tagPOINT2D* closest, double* parameter);

/// The distance from an infinite line through two pixels. a and b coincide when they are equal. The limits of
/// `matCalcDistanceToSegment2L` hold.
/// @return the distance; `velquad::kNoValue`, with nothing stored, when wrap-around makes the perpendicular
///         parallel to the line.
VELQUAD_API double matCalcDistanceToLine2L(const tagPOINT* a, const tagPOINT* b, const tagPOINT* point,
                                           int isSquared, tagPOINT2D* closest, double* parameter);

/// The same function as `matCalcDistanceToLine2L`.
VELQUAD_API double matCalcDistanceToLine(const tagPOINT* a, const tagPOINT* b, const tagPOINT* point,
                                         int isSquared, tagPOINT2D* closest, double* parameter);

/// The distance from an infinite line of space. `parameter` may be any number.
/// @return as `matCalcDistanceToSegment3D`.
VELQUAD_API double matCalcDistanceToLine3D(const tagPOINT3D* a, const tagPOINT3D* b, const tagPOINT3D* point,
                                           int isSquared, tagPOINT3D* closest, double* parameter);
/// @}

/// @name Distances to planes
/// A plane is given by one of its points and a normal of any length.
/// @{

/// The distance of `point` from a plane.
/// @param foot       optional; the foot of the perpendicular from `point`.
/// @param isSquared  non-zero: the squared distance.
/// @return the distance, never negative; `velquad::kNoValue`, with nothing stored, when the squared length of
///         `normal` is below 1e-40.
VELQUAD_API double matCalcDistanceToPlane(const tagPOINT3D* point, const tagPOINT3D* planePoint,
                                          const tagPOINT3D* normal, tagPOINT3D* foot, int isSquared);

/// The length of the step from `point` along the *normal* by t times it, where
/// t = normal . (planePoint - point) / (normal . direction). `direction` enters through that denominator alone:
/// the step ends on the plane for a direction equal to `normal`, in general not for another one.
/// @param foot       optional; the end of the step.
/// @param isSquared  non-zero: the squared length.
/// @return the length; `velquad::kNoValue`, not squared and with nothing stored, when |normal . direction| is
///         below 1e-40, that is for a direction within the plane.
VELQUAD_API double matCalcDirectedDistanceToPlane(const tagPOINT3D* point, const tagPOINT3D* direction,
                                                  const tagPOINT3D* planePoint, const tagPOINT3D* normal,
                                                  tagPOINT3D* foot, int isSquared);
/// @}

/// @name Shortest and longest of many pairs
/// `matInitDistance` once, `matCompareDistance` for every pair of pixels, `matCompleteDistance` once; the results
/// are then read from the record.
/// @{

/// Empties a record and sets the size of a pixel in units of measurement.
/// @return 1, or 0 for a null record.
VELQUAD_API int matInitDistance(tagMAT_DISTANCE* record, double scaleX, double scaleY);

/// Takes one pair into a record. A pair becomes the shortest or the longest when it beats the one before by more
/// than 1e-10, so that the earliest of equal pairs stays.
/// @param distance  the pair's distance; `velquad::kNoValue` for that of `matComputeCorrectedDistance`.
/// @return 1 when the pair was counted; 0, with the record as it was, for a null record and for a pair with an x
///         of `velquad::kCoordinateNotSet` (y is not looked at).
VELQUAD_API int matCompareDistance(tagMAT_DISTANCE* record, tagPOINT a, tagPOINT b, double distance);

/// Turns the sum of distances into their mean and finds the directions of both pairs, as directions of undirected
/// lines in degrees: from 180 on they are turned back by 180, and what is within 1e-7 below 180 is 0.0.
/// Meant to run once: a second run divides the mean by the count again.
/// @return 1, or 0 for a null record. A record without pairs stays as it was.
VELQUAD_API int matCompleteDistance(tagMAT_DISTANCE* record);

/// The distance from the outer edge of one pixel to that of another: their centres' distance, and the length of
/// the line's section through one pixel, for the two halves at the ends.
/// @return the distance in units of measurement; (scaleX + scaleY) / 2 for one and the same pixel.
VELQUAD_API double matComputeCorrectedDistance(tagPOINT a, tagPOINT b, double scaleX, double scaleY);
/// @}

/// @name Angles
/// A period is 360.0 with `isDegrees` non-zero and 6.283185307179586 otherwise. A direction that cannot be formed
/// gives 0.0. Senses are those of mathematical axes, y upwards.
/// @{

/// How far the way p0, p1, p2 turns at p1: 0 for straight on.
/// @return radians, (-pi, pi], positive for a counter-clockwise turn. Within a cosine of 1e-7 of straight on or of
///         a reversal the result is 0.0 or +pi; when a step of the way is shorter than 1e-7 it is 0.0.
VELQUAD_API double matCalcAngle2D(const tagPOINT2D* p0, const tagPOINT2D* p1, const tagPOINT2D* p2);

/// Reduces an angle to [0, period). An angle within 1e-9 of a whole number of periods gives 0.0, and
/// `velquad::kNoValue` is returned as it is.
/// @note  Beyond 2^31 periods the result is meaningless, as it is for a not-a-number.
VELQUAD_API double matNormalizeAngle(double angle, int isDegrees);

/// The angle from the ray center-first to the ray center-second, swept in the sense that is asked for.
/// @param isCounterClockwise  zero: clockwise.
/// @param isDegrees           non-zero: a result in degrees.
/// @return [0, period); 0.0 also for a ray shorter than 1e-7.
VELQUAD_API double matCalcNormalizedAngle2D(const tagPOINT2D* center, const tagPOINT2D* first,
                                            const tagPOINT2D* second, int isCounterClockwise, int isDegrees);

/// Reduces an angle to the range that `mode` asks for, by way of `matNormalizeAngle`.
/// @param mode  bit 0: (-half a period, half a period]. Else bit 1: [0, half a period], the angle to the nearer
///              side of a whole turn. Neither: [0, period). `velquad::kNoValue` stays itself, negated with bit 1
///              alone.
VELQUAD_API double matMapNormalizedAngle(double angle, int isDegrees, unsigned int mode);

/// The smaller of the two angles between two directions.
/// @return [0, half a period].
VELQUAD_API double matCalcDistanceOfAngles(double a, double b, int isDegrees);

/// The direction from pixel a to pixel b in units of measurement, counter-clockwise from the x axis.
/// @return degrees, [0, 360); 0.0 for a scaled difference shorter than 1e-7.
VELQUAD_API double matCalcScaledAngle(tagPOINT a, tagPOINT b, double scaleX, double scaleY);
/// @}

}  // extern "C"

/// Converts a vector to its polar angles, or polar angles to the unit vector of that direction.
/// @param vector       three doubles x, y, z: read towards polar angles, written towards a vector.
/// @param inclination  angle from the z axis, or with `isElevation` from the x-y plane.
/// @param azimuth      angle in the x-y plane, from x towards y.
/// @param isDegrees    non-zero: both angles in degrees, else in radians.
/// @param toPolar      non-zero: towards polar angles. Both angles are optional then and come out in
///                     [0, period), so that a negative elevation is a large angle. A vector within 1e-5 of the z
///                     axis has the azimuth 0. Zero: towards a vector; both angles must be valid.
/// @return 1; 0, with nothing stored, for a vector shorter than 1e-7 towards polar angles.
VELQUAD_API int matComputePolarVector(double* const vector, double* inclination, double* azimuth,
                                      int isDegrees, int isElevation, int toPolar);

#endif  // VELQUAD_GEOMETRY_H
