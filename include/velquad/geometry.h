/// @file
/// Geometry of the plane and of space: distances, angles, scale factors, crossings of lines, segments and
/// ellipses, triangles, tetrahedra, cuboids, clipping, raster lines.
///
/// **Points.** The suffix of a name tells its points: `2D` and `3D` take doubles, `2L` and `3L` take 32-bit
/// integers, and a name without suffix does exactly what its `2L` sibling does. Integers are computed with in 32
/// bits that wrap around unless said otherwise.
/// **Results.** Truth values are 1 and 0. Tolerances are strict: a value equal to a tolerance is not small. A
/// number that does not exist is `velquad::kNoValue`. Degenerate input gives a defined value, never an error;
/// division by a zero that no function tests for gives an infinity or not a number and passes on.
/// **Pointers.** Functions do not test their mandatory pointers unless they say so. Arguments that are called
/// optional may be null: the value is then not stored.
/// **Threads.** Pure functions of their arguments. A record belongs to one thread at a time.
#ifndef VELQUAD_GEOMETRY_H
#define VELQUAD_GEOMETRY_H

#include <cstdint>
#include <vector>

#include "velquad/framework.h"
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

/// The distance from a segment. a and b coincide when both coordinates differ by less than 1e-40. A foot
/// beyond an end, or with a parameter less than 2.220446049250313e-16 inside of it, is that end, with `parameter`
/// exactly 0.0 or 1.0.
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
/// lines in degrees, [0, 180): from 179.9999999 on they are turned back by 180, and what falls below 0 is 0.0.
/// Only a direction just below a full turn, turned back, comes out between 179.9999999 and 180.
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
/// @note  Angles of so many periods that their last bit counts for more than 1e-9 may miss the interval by that bit:
///        in radians beyond some 2^20 periods. Beyond 2^31 periods the result is meaningless, as it is for a
///        not-a-number.
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

extern "C" {

/// @name Scale factors
/// Where a point lies along the line a -> b: 0.0 at a, 1.0 at b, any number beyond. The parameter is measured
/// along the dominant axis of the line alone; nobody asks whether the point lies on the line.
///
/// No pointer is tested.
/// @{

/// The parameter of a point, measured along x when |b.x - a.x| is the strictly larger difference, else along y.
/// @return the parameter. When a and b are less than 1e-40 apart in both coordinates: 0.0 for a `point` that is
///         as near to a, else `velquad::kNoValue`.
VELQUAD_API double matGetScaleFactor2D(const tagPOINT2D* a, const tagPOINT2D* b, const tagPOINT2D* point);

/// The form of `matGetScaleFactor2D` for a line of integer points and a point in doubles. The differences of a
/// and b are 32-bit integers that wrap around, and so are their absolute values: an axis along which the points
/// are exactly 2^31 apart never dominates, and the quotient may be an infinity or not a number then.
/// @return the parameter. For equal a and b: 0.0 for a `point` within 1e-7 in both coordinates, else
///         `velquad::kNoValue`.
VELQUAD_API double matGetScaleFactor2L(const tagPOINT* a, const tagPOINT* b, const tagPOINT2D* point);

/// The same as `matGetScaleFactor2L`.
VELQUAD_API double matGetScaleFactor(const tagPOINT* a, const tagPOINT* b, const tagPOINT2D* point);

/// The form of `matGetScaleFactor2L` for an integer point; its distance from a wraps around too.
VELQUAD_API double matGetScaleFactor2LL(const tagPOINT* a, const tagPOINT* b, const tagPOINT* point);

/// The form for space, along the largest difference of a and b; of equal ones the first in the order x, y, z.
/// @return the parameter; 0.0, wherever `point` is, when the largest difference is below 1e-7.
VELQUAD_API double matGetScaleFactor3D(const tagPOINT3D* a, const tagPOINT3D* b, const tagPOINT3D* point);
/// @}

/// @name Lines and segments
/// Common points of two lines or two segments a0-a1 and b0-b1. A parameter is 0.0 at the first point of its line
/// and 1.0 at the second. The inputs are not tested for null; each output may be null when it is not wanted.
/// @{

/// Crosses two lines of the plane.
///   (1) Lines are parallel when the determinant of their directions is exactly 0.0; lines that are nearly
///       parallel cross far away.
///   (2) Parallel lines are one line when the determinant of the first direction's start and the second line is
///       below 1e-40. Their common point is a0.
///   (3) A line without length is parallel to every other. As the second one it counts as the same line wherever
///       it is; as the first one only when it lies on the other.
/// @param point       the common point; untouched on 0.
/// @param parameterA  parameter of the point on a; `velquad::kNoValue` on 0.
/// @param parameterB  parameter of the point on b, by `matGetScaleFactor2D`; untouched on 0.
/// @param isParallel  1 or 0, always stored.
/// @return 1 when there is a common point, else 0.
/// @par Cost    One division, a second one when `parameterB` is wanted.
/// @par Source  Cramer's rule.
VELQUAD_API int matIntersectLines2D(const tagPOINT2D* a0, const tagPOINT2D* a1, const tagPOINT2D* b0,
                                    const tagPOINT2D* b1, tagPOINT2D* point, double* parameterA,
                                    double* parameterB, int* isParallel);

/// The form of `matIntersectLines2D` for integer points. Differences, products and sums are 32-bit integers that
/// wrap around, so determinants are exact while coordinates differ by at most 32767. `parameterB` comes from
/// `matGetScaleFactor2L`.
VELQUAD_API int matIntersectLines2L(const tagPOINT* a0, const tagPOINT* a1, const tagPOINT* b0,
                                    const tagPOINT* b1, tagPOINT2D* point, double* parameterA,
                                    double* parameterB, int* isParallel);

/// The same as `matIntersectLines2L`.
VELQUAD_API int matIntersectLines(const tagPOINT* a0, const tagPOINT* a1, const tagPOINT* b0,
                                  const tagPOINT* b1, tagPOINT2D* point, double* parameterA,
                                  double* parameterB, int* isParallel);

/// Crosses two lines of space. Points less than 1e-7 apart in every coordinate are the same place.
///   (1) Both lines are points: they meet when they are the same place, with both parameters 0.0.
///   (2) One line is a point: it always meets the other line, in the point itself, with parameter 0.0 on its own
///       line and that of `matGetScaleFactor3D` on the other. Whether it lies on that line is not examined.
///   (3) Parallel lines, whose common normal is shorter than 1e-7, always meet too, one line or not: in the end
///       of b whose parameter on a is nearer to 0, with `parameterB` 0.0 for b0 and 1.0 for b1, which takes a tie.
///   (4) Other lines are crossed in the plane that drops the dominant coordinate of the normal. They meet when
///       both parameters lead to the same place; otherwise they are skew.
///
/// All outputs that are wanted are always stored.
/// @param point       the common point on a; `velquad::kNoValue` three times on 0.
/// @param parameterA  `velquad::kNoValue` on 0.
/// @param parameterB  `velquad::kNoValue` on 0.
/// @param isParallel  0 in case (4), crossing or skew; 1 in the other cases, and when no coordinate of the normal
///                    reaches 1e-7 although its length does.
/// @return 1 when there is a common point, else 0.
VELQUAD_API int matIntersectLines3D(const tagPOINT3D* a0, const tagPOINT3D* a1, const tagPOINT3D* b0,
                                    const tagPOINT3D* b1, tagPOINT3D* point, double* parameterA,
                                    double* parameterB, int* isParallel);

/// Finds the contact of two segments of the plane. The first segment is half open: a contact at a0 counts
/// (parameters above -1e-40), one at a1 does not (parameters below 1.0). The second segment is taken whole, and
/// 1e-7 beyond its ends (parameters above -1e-7 and below 1.0000001). A chain of first segments thus meets every
/// shared vertex once.
///   (1) Bounding boxes more than 1e-7 apart have no contact.
///   (2) Overlapping segments of one line give, in this order: b0, or else b1, when it lies on the first segment
///       (`parameterB` 0.0 or 1.0), or else a0 when it lies on the second (`parameterA` 0.0).
///   (3) A second segment without length is taken for a part of the first one's line: where the boxes touch, it has
///       contact when its place along the dominant axis is on the first segment, even at a distance from it.
/// @param point       the contact; untouched on 0.
/// @param parameterA  parameter of the contact on a; untouched on 0.
/// @param parameterB  parameter of the contact on b; untouched on 0.
/// @param isParallel  1 or 0, also on 0; untouched when the bounding boxes are apart.
/// @return 1 for a contact, else 0.
VELQUAD_API int matIntersectSegments2D(const tagPOINT2D* a0, const tagPOINT2D* a1, const tagPOINT2D* b0,
                                       const tagPOINT2D* b1, tagPOINT2D* point, double* parameterA,
                                       double* parameterB, int* isParallel);

/// The form of `matIntersectSegments2D` for integer points, with two differences: both segments are taken whole
/// and 1e-7 beyond their ends, and bounding boxes are compared exactly. Determinants wrap around at 32 bits as in
/// `matIntersectLines2L`.
VELQUAD_API int matIntersectSegments2L(const tagPOINT* a0, const tagPOINT* a1, const tagPOINT* b0,
                                       const tagPOINT* b1, tagPOINT2D* point, double* parameterA,
                                       double* parameterB, int* isParallel);

/// The same as `matIntersectSegments2L`.
VELQUAD_API int matIntersectSegments(const tagPOINT* a0, const tagPOINT* a1, const tagPOINT* b0,
                                     const tagPOINT* b1, tagPOINT2D* point, double* parameterA,
                                     double* parameterB, int* isParallel);
/// @}

/// @name Lines and ellipses
/// Crossings of the line through p0 and p1 with an ellipse. `first` is the crossing nearer to p0; of two equally
/// near ones it is the one with the larger coordinate along the line's dominant axis.
///   (1) The result is 0 when p0 and p1 are less than 1e-7 apart in both coordinates.
///   (2) Let h^2 - q be the discriminant of the roots, and q their product, about the centre and along the
///       dominant axis of the line. A line counts when the discriminant is not below q - 5e-8: lines with a
///       crossing on each side of the centre always do, lines with both crossings on one side only when
///       h^2 >= 2 q - 5e-8.
///   (3) A discriminant below 1e-7 is a tangent, with one crossing.
///   (4) An axis without length leads to a division by zero, which shows in the crossings.
/// @{

/// Crosses a line with the ellipse in a rectangle of integers: left, top, right, bottom. Centre and semi-axes are
/// whole numbers, halved towards zero after 32-bit sums and differences that wrap around, so an odd extent loses
/// half a pixel.
/// @param first   nearer crossing; may be null, untouched on 0.
/// @param second  other crossing, equal to `first` on 1; may be null, untouched on 0.
/// @return the number of crossings, 0, 1 or 2. The other pointers are not tested for null.
VELQUAD_API int matIntersectLineAndEllipse(const int* rect, const tagPOINT2D* p0, const tagPOINT2D* p1,
                                           tagPOINT2D* first, tagPOINT2D* second);

}  // extern "C"

/// The form of `matIntersectLineAndEllipse` for a rectangle of doubles, without any rounding. Points are pairs of
/// doubles x, y. Nothing is written to `rect`, `p0` or `p1`.
VELQUAD_API int matIntersectLineAndEllipse2D(tagMAT_RECT2D* rect, double* p0, double* p1, double* first,
                                             double* second);

/// Crosses a line with an ellipse of any orientation, by turning the line to the upright ellipse and the
/// crossings back.
/// @param center              centre, x and y. Not written, like `p0` and `p1`.
/// @param semiAxisX           half the extent along the ellipse's own first axis, which `angle` turns.
/// @param semiAxisY           half the extent along its second axis.
/// @param angle               direction of the first axis, in degrees when `isDegrees` is non-zero.
/// @param isCounterClockwise  sense of `angle`, in mathematical axes.
/// @param first   nearer crossing, x and y; must not be null. On 0 the buffer's old content is turned by `angle`.
/// @param second  other crossing; may be null. On 1 it is the crossing relative to `center`. On 0 it is treated
///                as `first` is.
/// @return the number of crossings, 0, 1 or 2. No pointer that must not be null is tested, apart from `first`,
///         which is left out then.
VELQUAD_API int matIntersectLineAndArbitraryEllipse(double* const center, double semiAxisX, double semiAxisY,
                                                    double angle, int isCounterClockwise, int isDegrees,
                                                    double* p0, double* p1, double* first, double* second);
/// @}

extern "C" {

/// @name Pixels, triangles, tetrahedra
/// No pointer is tested for null, apart from optional outputs.
/// @{

/// The length of the section that a line in the direction from a to b has in one pixel when it runs through the
/// pixel's centre.
/// @param a       one pixel of the line. Differences wrap around at 32 bits.
/// @param b       another pixel of the line.
/// @param scaleX  width of a pixel in units of measurement, above 0.
/// @param scaleY  height of a pixel, above 0.
/// @return the length in units of measurement; the mean of width and height when a and b are the same.
VELQUAD_API double matCalcPixelSection(const tagPOINT* a, const tagPOINT* b, double scaleX, double scaleY);

/// The area of a triangle by the sum of the trapezoids under its edges, positive for counter-clockwise corners
/// in mathematical axes. Differences, sums and products are 32-bit integers that wrap around; corners near the
/// origin keep them small.
/// @return the area, a multiple of 0.5.
VELQUAD_API double matCalcSignedAreaOfTriangle2P(const tagPOINT* p0, const tagPOINT* p1, const tagPOINT* p2);

/// The form of `matCalcSignedAreaOfTriangle2P` for doubles.
VELQUAD_API double matCalcSignedAreaOfTriangle2D(const tagPOINT2D* p0, const tagPOINT2D* p1,
                                                 const tagPOINT2D* p2);

/// The area of a triangle in space, half the length of the product of two edges. Never negative.
VELQUAD_API double matCalcUnsignedAreaOfTriangle(const tagPOINT3D* p0, const tagPOINT3D* p1,
                                                 const tagPOINT3D* p2);

/// The volume of a tetrahedron, positive when the edges from p0 to p1, p2 and p3 are a right-handed system like the
/// axes x, y and z.
VELQUAD_API double matCalcSignedVolumeOfTetrahedron(const tagPOINT3D* p0, const tagPOINT3D* p1,
                                                    const tagPOINT3D* p2, const tagPOINT3D* p3);

/// The sphere through the four corners of a tetrahedron.
/// @param center     its centre; may be null. p1 for a flat tetrahedron.
/// @param isSquared  non-zero: the square of the radius is wanted.
/// @return the radius, measured from p0 to the centre; 0.0 for a flat tetrahedron, whose volume is below
///         1e-20 / 12.
VELQUAD_API double matCalcCenterOfTetrahedron(const tagPOINT3D* p0, const tagPOINT3D* p1,
                                              const tagPOINT3D* p2, const tagPOINT3D* p3, tagPOINT3D* center,
                                              int isSquared);
/// @}

/// @name Cuboids
/// A cuboid with edges along the axes is six doubles: xMin, xMax, yMin, yMax, zMin, zMax. These functions return
/// true, or false for a null pointer and then store nothing.
/// @{

/// Stores six values in a cuboid.
VELQUAD_API bool matInitCuboid(double* cuboid, double xMin, double xMax, double yMin, double yMax,
                               double zMin, double zMax);

/// Makes a cuboid that holds nothing: its minima are `velquad::kExtentNotSet`, its maxima the negative of that,
/// so that the first point given to `matGetBoundingCuboid` sets all six.
VELQUAD_API bool matSetMinimumCuboid(double* cuboid);

/// Widens a cuboid as far as needed to hold a point. A coordinate that is not a number changes nothing.
VELQUAD_API bool matGetBoundingCuboid(double* cuboid, const tagPOINT3D* point);

/// Stores the smallest cuboid that holds two others. `out` may be `a` or `b`.
VELQUAD_API bool matMergeCuboids(double* out, const double* a, const double* b);
/// @}

/// @name Axis labels
/// @{

/// Finds a round step for the labels of a linear axis and bounds that are multiples of it. The step is the
/// smallest number of the series that lies above the largest one not above
/// (high - low) / (max(labelCount, 2) - 1). The series starts at 5 times the power of ten of the axis's
/// length, its logarithm cut towards zero; a quotient from there upwards is the step itself. A quotient that is
/// round already gives the next larger step: 0 to 100 with 11 labels and mode 1 gives the step 20.
/// @param mode         mantissas of the series: 1 for 1, 2, 5; 2 for 1, 2.5, 5; 3 for 1, 5; any other value for 1,
///                     2, 2.5, 5. They are multiplied by powers of ten.
/// @param roundedLow   a multiple of the step at or below `low`: `low` cut towards zero when it is positive, and one
///                     step below that otherwise. May be null.
/// @param roundedHigh  a multiple of the step at or above `high`: `high` cut towards zero when it is not positive, and
///                     one step above that otherwise. May be null.
/// @return the step; `velquad::kNoValue`, with nothing stored, when `high` exceeds `low` by 1e-7 or less.
VELQUAD_API double matCalcLabsLinear(double low, double high, unsigned int labelCount, unsigned int mode,
                                     double* roundedLow, double* roundedHigh);
/// @}

}  // extern "C"

namespace velquad {

/// Receives the points of a curve one by one.
/// @param index  0 for the first point, one more for each that follows.
/// @param arg1   the caller's values, passed through.
/// @return non-zero to go on; 0 ends the drawing.
using PointCallback = int (*)(tagPOINT point, DWORD index, std::uint64_t arg1, std::int64_t arg2);

namespace geometry {
struct AngleTable;
}  // namespace geometry

}  // namespace velquad

/// @name Sine and cosine from a table
/// @{

/// Sine and cosine with limited precision and without a call of the mathematical library. The table covers one
/// quadrant; the nearest entry is the result, nothing is interpolated, so an angle is in effect rounded to a
/// multiple of 1 / `stepsPerDegree` degrees.
///   (1) Multiples of a quarter turn in degrees are exact: 0, 1 or -1. The sine of 360 degrees is -0.0.
///   (2) Angles are reduced to one turn first, whatever their size. Not a number for an infinity and for what is
///       not a number.
/// Reading is safe from several threads. Memory: 720 * `stepsPerDegree` + 8 bytes.
class VELQUAD_API CMatAngleInterpolator {
  public:
    /// Builds the table. With 0 steps every result is not a number.
    /// @throws std::bad_alloc, std::length_error
    CMatAngleInterpolator(std::uint64_t stepsPerDegree);  // NOLINT(google-explicit-constructor)
    CMatAngleInterpolator(const CMatAngleInterpolator& other);
    /// `other` may only be assigned to or destroyed afterwards.
    CMatAngleInterpolator(CMatAngleInterpolator&& other) noexcept;
    CMatAngleInterpolator& operator=(const CMatAngleInterpolator& other);
    /// `other` may only be assigned to or destroyed afterwards.
    CMatAngleInterpolator& operator=(CMatAngleInterpolator&& other) noexcept;
    ~CMatAngleInterpolator();

    /// The sine of an angle in degrees or radians.
    double sin(double angle, bool isDegrees);

    /// The cosine: the sine of the angle and a quarter turn more.
    double cos(double angle, bool isDegrees);

  private:
    friend struct velquad::geometry::AngleTable;

    void SelfTest();

    std::vector<double> table;  // sines of the first quadrant, both ends included
    std::uint64_t steps;        // intervals of the table
    double epsilon;             // how far a quadrant reaches beyond its end, in degrees
};
/// @}

/// @name Ellipses
/// Ellipses as chains of pixels, drawn in three independent ways that need not give the same pixels: by mirroring a
/// quarter in a rectangle, by mirroring octants around the origin, and as tilted ellipses on a grid whose pixels
/// need not be square.
///
/// A rectangle is four integers, left, top, right, bottom, all four inclusive. A polygon is an unlocked movable block
/// with a `tagPOLY`; the caller releases it with `polyFree`.
///
/// A tilted ellipse has its centre and semi-axes in units of measurement; `scaleX` and `scaleY` are the width and
/// height of a pixel in these units, and pixel (0, 0) has its centre at the origin. `angle` is the tilt of semi-axis
/// A against the x axis, in degrees when `isDegrees` is non-zero and else in radians, towards the y axis when
/// `isCounterClockwise` is non-zero and away from it otherwise. `callback` may be null. A null `center` is invalid.
/// @{

/// Lists the quarter of an ellipse around the origin from (a, 0) to (0, b), x falling and y rising. Neighbours in
/// the list are neighbours in the grid.
/// @param a, b      semi-axes in pixels, not negative. Exact up to a million; far larger ones give some bounded list.
/// @param points    buffer for `capacity` points.
/// @return the number of points; 0 for a null buffer, and when `capacity` is too small: what fits is stored then.
/// @par Source  midpoint method; J. R. Van Aken, An efficient ellipse-drawing algorithm, 1984.
VELQUAD_API DWORD matCalcEllipseQuadrant(int a, int b, tagPOINT* points, unsigned int capacity);

extern "C" {

/// A capacity that suffices for `matCalcEllipse`: 12 for each pixel of the longer semi-axis, and 12 at least.
/// @return the number of points; 0 for a null rectangle.
VELQUAD_API unsigned int matEstimatePointsInEllipse(const int* rect);

/// Lists the outline of the ellipse in a rectangle. It starts at the right end of the horizontal axis, passes the
/// bottom first, and its last point equals its first.
///   (1) The outline is symmetric about the rectangle's centre, never leaves the rectangle and touches its left and
///       right sides; top and bottom too, unless the ellipse is upright and very thin: the corrections of the last
///       rows are skipped then (4 pixels wide and 17 high: it ends one row short).
///   (2) A rectangle of up to three pixels in width or height gets the pixels of `polyGetRotatedEllipse` around its
///       centre. That chain may be a single pixel, and halves are rounded away from zero there.
/// @return the number of points. 0 for a null rectangle, and when `points` is null or too small; a part of the points
///         is stored then, but none of a narrow rectangle. The points of a narrow rectangle are counted when
///         `points` is null.
VELQUAD_API DWORD matCalcEllipse(const int* rect, tagPOINT* points, unsigned int capacity);

/// The points of `matCalcEllipse` as a polygon.
/// @return its handle; null for a null rectangle and when there is no memory.
VELQUAD_API void* polyGetEllipse(const int* rect);

/// Lists an ellipse around the origin. The whole contour starts at (a, 0), runs through (0, -b), (-a, 0) and (0, b),
/// and ends at a neighbour of its start, which is not repeated.
///   (1) An ellipse with a semi-axis 0 is the line from (0, -b) to (0, b), or from (-a, 0) to (a, 0). What fits of
///       it is stored, and the count is always the full one.
///   (2) Everything else fails when it does not fit. Each of the two arcs of a quarter needs half of the capacity
///       at most, so the count told for a null `points` always suffices.
/// @param a, b         semi-axes in pixels.
/// @param points       may be null: the points are only counted, and `capacity` plays no part.
/// @param fullContour  zero: the points of the quarter lie on its two sides by turns, and the lower half repeats
///                     them mirrored; the topmost and lowest points are lost. Ellipses with a semi-axis below 3 are
///                     whole in any case.
/// @return the number of points; -1 for a negative semi-axis, for one whose products do not fit 64 bits, for a count
///         beyond 32 bits and for a buffer that is too small. A part of the points may be stored then.
/// @par Source  midpoint method for two octants; J. R. Van Aken, An efficient ellipse-drawing algorithm, 1984.
VELQUAD_API int matGetEllipse(int a, int b, tagPOINT* points, int capacity, int fullContour);

/// Tells whether a pixel lies inside the ellipse in a rectangle. Centre and semi-axes are whole quotients by 2, as in
/// `matIntersectLineAndEllipse`.
/// @param distance  optional; how far the pixel lies from the nearer one of the two crossings of the ellipse with the
///                  line through centre and pixel. Left alone when the pixel is the centre.
/// @return 1 inside, and for the centre; 0 outside; -1 on the curve, within 1e-7 of the length between the
///         crossings.
VELQUAD_API int matIsPointInsideEllipse(const int* rect, const tagPOINT* point, double* distance);

/// Draws a tilted ellipse by following the curve from pixel to pixel. Each step turns by a quarter turn at most and
/// takes the pixel nearest to the curve. The chain starts at the end of semi-axis A, and its last point equals its
/// first.
/// @note  The chain is closed as soon as it comes within one pixel of its start, the second step included. So it ends
///        early on very thin ellipses, and at some tilts of others where its first two steps go round a corner.
/// @return 1, or 0 when `callback` stopped the drawing, when a semi-axis divided by its scale is not above zero, and
///         when the chain has not closed after 131073 points, all of which have been delivered.
VELQUAD_API int matDrawArbitraryEllipse(const tagPOINT2D* center, double semiAxisA, double semiAxisB,
                                        double angle, int isCounterClockwise, int isDegrees, double scaleX,
                                        double scaleY, velquad::PointCallback callback, std::uint64_t arg1,
                                        std::int64_t arg2);

/// The points of `matDrawArbitraryEllipse` as a polygon. The block may be larger than its points.
/// @return its handle; null where the drawing gives 0 and when there is no memory.
VELQUAD_API void* polyGetArbitraryEllipse(const tagPOINT2D* center, double semiAxisA, double semiAxisB,
                                          double angle, int isCounterClockwise, int isDegrees, double scaleX,
                                          double scaleY);

}  // extern "C"

/// Draws a tilted ellipse by stepping its parameter through one turn, from the end of semi-axis A towards that of
/// semi-axis B and back. Points that are not neighbours are joined by a line. The sign of a semi-axis does not
/// matter; semi-axes of 0 are allowed and give a line.
///   (1) Up to a longer semi-axis of 1 pixel the ellipse is its centre pixel.
///   (2) Neighbours in the chain are neighbours in the grid and differ.
/// @note  Where the curve passes through pixel (0, 0), a pixel considered just before takes its place.
/// @return 1, or 0 when `callback` stopped the drawing or the size of a pixel is below 1e-7.
VELQUAD_API int matDrawRotatedEllipse(double* const center, double semiAxisA, double semiAxisB, double angle,
                                      int isCounterClockwise, int isDegrees, double scaleX, double scaleY,
                                      velquad::PointCallback callback, std::uint64_t arg1, std::int64_t arg2);

/// The points of `matDrawRotatedEllipse` as a polygon. The block may be larger than its points.
/// @return its handle; null where the drawing gives 0 and when there is no memory.
VELQUAD_API void* polyGetRotatedEllipse(double* const center, double semiAxisA, double semiAxisB,
                                        double angle, int isCounterClockwise, int isDegrees, double scaleX,
                                        double scaleY);
/// @}

extern "C" {

/// @name Clipping
/// What of a segment lies in a rectangle, or of a line in a box. Edges and faces belong to the inside. Three
/// methods, each with its own order of the result. y grows from top to bottom.
/// @{

/// Cuts a segment between pixels to a rectangle of pixels: left, top, right, bottom with left <= right and
/// top <= bottom.
///   (1) An end inside stays as it is. An end outside is moved along the segment to an edge; its other coordinate
///       is rounded towards where it was.
///   (2) `p1` is the end nearer to the old `p1`, so the segment keeps its direction.
///   (3) Differences are taken in 64 bits: segments and rectangles may use the whole range of 32 bits.
/// @param p1  first end, changed in place; untouched on 0.
/// @param p2  second end, changed in place; untouched on 0.
/// @return 1 when something of the segment is inside; 0 when nothing is, and for a null pointer. A rectangle with
///         exchanged sides has no inside.
/// @par Cost    At most eight divisions.
/// @par Source  Cohen and Sutherland's outcodes.
VELQUAD_API int matClipLine2L(const int* rect, tagPOINT* p1, tagPOINT* p2);

/// The same as `matClipLine2L`.
VELQUAD_API int matClipLine(const int* rect, tagPOINT* p1, tagPOINT* p2);

/// Cuts a segment to a rectangle. A point up to 1e-7 beyond an edge counts as inside and is not moved, so that a
/// result may lie that little outside.
///   (1) Both ends inside: nothing changes.
///   (2) Ends less than 1e-7 apart in both coordinates are one point, inside when either end is; nothing changes.
///   (3) Otherwise first `p1` and then `p2` is cut at the edges left, right, top, bottom in turn.
/// @param p1  first end, changed in place. On 0 it is untouched or already cut.
/// @param p2  second end, changed in place. On 0 it is untouched, unless rounding alone put an end outside.
/// @return 1 when something of the segment is inside, else 0. No pointer is tested for null.
VELQUAD_API int matClipLine2D(const tagMAT_RECT2D* rect, tagPOINT2D* p1, tagPOINT2D* p2);

/// Finds where an infinite line enters and leaves a box with edges along the axes.
///   (1) An axis along which the direction is smaller than 1e-7 has no faces to cross: a line without direction
///       meets no box, even from its inside.
///   (2) Faces are crossed in the order x, y, z, until two crossings at least 1e-7 apart in the parameter of
///       the line are found.
///   (3) A line that touches one corner gives one point twice.
/// @param corner         x, y, z of the corner with the smallest coordinates.
/// @param sizeX          extent from there along x; not negative, like the others.
/// @param sizeY          extent along y.
/// @param sizeZ          extent along z.
/// @param linePoint      base point of the line.
/// @param lineDirection  its direction, of any length.
/// @param first          crossing nearer to `linePoint`; untouched on 0. May be one of the inputs.
/// @param second         the other crossing, of two equally near ones that against the direction; untouched on 0.
/// @return 1 when the line meets the box, else 0. No pointer is tested for null.
/// @note  Crossings are looked for at parameters between -`velquad::kExtentNotSet` and
///        `velquad::kExtentNotSet`. A box behind that, at lower parameters, gives 1 all the same, with an end of that
///        range in place of a crossing; one beyond it gives 0.
VELQUAD_API int matClipLine3D(const double* corner, double sizeX, double sizeY, double sizeZ,
                              const tagPOINT3D* linePoint, const tagPOINT3D* lineDirection, tagPOINT3D* first,
                              tagPOINT3D* second);
/// @}

}  // extern "C"

/// @name Circles
/// @{

/// The circle through three points, from its equation x^2 + y^2 + D x + E y + F = 0.
///
/// There is no test for collinear points. The inverse of a singular matrix is then whatever
/// `matInvertMatrix4` yields, and so are the centre and the radius: in general infinite or not a number.
/// @param points  three points.
/// @param center  optional.
/// @param radius  optional; not a number where rounding makes its square negative.
/// @return 1; 0, with nothing stored, for null `points` and when working memory is lacking.
VELQUAD_API int matGetCircleThrough3Points(tagPOINT2D* const points, tagPOINT2D* center, double* radius);
/// @}

extern "C" {

/// @name Best circles and arrows
/// @{

/// Finds the circle through three of the points that fits all of them best: the one with the smallest sum of
/// squared distances of the points to its line. Among equal sums the first triple in lexical order of its
/// indices wins.
///   (1) Triples whose circle or sum is not a finite number are never taken.
///   (2) The answer is that of trying every triple in order, to the last bit.
/// @param count   number of points. Below three, and when no triple has a circle, nothing is stored.
/// @param center  two doubles x, y.
/// @return 1.
/// @par Cost    All count^3 / 6 triples are looked at, each against a few points only, as far as its sum stays
///              below the best one so far. No allocation. For small sets of points.
/// @par Source  Models through minimal samples, after M. A. Fischler and R. C. Bolles, Random Sample Consensus,
///              1981; here every sample is tried.
VELQUAD_API int poly2dLeastSquareCircle(const tagPOINT2D* points, unsigned int count, double* center,
                                        double* radius);

/// The form of `poly2dLeastSquareCircle` for pixels. The centre is rounded, halves away from zero; the radius
/// is not.
/// @return 1; 0, with nothing stored, when working memory is lacking.
VELQUAD_API int polyLeastSquareCircle(const tagPOINT* points, unsigned int count, tagPOINT* center,
                                      double* radius);

/// The outer ends of the two head lines of an arrow that points from `tail` to `tip`. Both lines end at `tip`.
/// @param angle      between the shaft and a head line; in degrees when `isDegrees` is non-zero.
/// @param length     of a head line, in the units of the points.
/// @param left       optional; the shaft turned counter-clockwise about `tip`, in mathematical axes.
/// @param right      optional; the shaft turned clockwise. It is turned by a full turn less `angle`, so the head is
///                   symmetric up to rounding.
/// @return 1; 0, with nothing stored, for a null `tail` or `tip` and for an arrow shorter than 1e-7.
VELQUAD_API int matComputeArrow(const tagPOINT2D* tail, const tagPOINT2D* tip, double angle, int isDegrees,
                                double length, tagPOINT2D* left, tagPOINT2D* right);

/// Measures a binary object along a raster line: where the line first meets and last leaves it, and how far the
/// object reaches without a gap from the line's middle.
///
/// A pixel is set when it lies inside the image and is not 0. The outer ends are the first set pixel seen from
/// either end of the line. The inner ends exist only when `center` is set and one of the three pixels in
/// the middle of the line is: from the one nearest to `center` the line is followed both ways, as long as its
/// pixels are set. What does not exist is (0x7fffffff, 0x7fffffff).
/// @param rows        `height` pointers to `width` pixels each.
/// @param innerFirst  optional; the inner end towards `to`.
/// @param innerLast   optional; the inner end towards `from`.
/// @param outerFirst  optional; the outer end towards `from`.
/// @param outerLast   optional; the outer end towards `to`.
/// @param lineBuffer  receives the pixels of the line as `matGetLine` gives them, but never more than 65535 of
///                    them. Longer lines are measured to their end all the same, those of more than 2^30 steps
///                    along their true course.
/// @return 1.
/// @par Cost    O(width + height) besides the pixels stored, however long the line is.
VELQUAD_API int matCalcCentralInnerAndOuterDiameter(int width, int height, const unsigned char* const* rows,
                                                    tagPOINT center, tagPOINT from, tagPOINT to,
                                                    tagPOINT* innerFirst, tagPOINT* innerLast,
                                                    tagPOINT* outerFirst, tagPOINT* outerLast,
                                                    tagPOINT* lineBuffer);
/// @}

}  // extern "C"

/// Directions of space as small integers, so that a table of shades can be indexed by them.
///
/// The sphere of directions is taken as an octahedron with a regular lattice on it. A level sets how fine the
/// lattice is; with s = 2^level and h = s^2 + (s + 1)^2 the integers are
///
///     0 ... h - 1        directions with z >= 0
///     h ... 2 h - 1      their mirror images, index by index, with z <= 0
///     2 h                the null vector
///
///   (1) A decoded direction encodes to its own index again. Only the directions of the lower half that lie on
///       the equator, whose z is -0.0, encode to the same directions of the upper half.
///   (2) Decoded directions have length 1 within the rounding of floats.
///
/// **Memory.** The tables take 24 h + 4 (2 s + 1)^2 bytes: 4 MB at level 8. Assigned and copied objects share
/// them, and the last one releases them.
/// **Threads.** An object belongs to one thread at a time; objects that share tables may be used side by side.
/// @par Source  Octahedral maps of the sphere, as surveyed by Z. H. Cigolle, S. Donow, D. Evangelakos, M. Mara,
///              M. McGuire and Q. Meyer, A Survey of Efficient Representations for Independent Unit Vectors, 2014.
class CMatNormalEncoder {
  public:
    /// Builds the tables of a level: 0 for 11 directions, each further level has about four times as many. A
    /// level below 0 has no lattice: its directions are not numbers.
    /// @throws std::bad_alloc  when memory is lacking, and for a level above 14.
    VELQUAD_API CMatNormalEncoder(int level);

    /// Shares the tables of another object.
    CMatNormalEncoder(const CMatNormalEncoder& other) { *this = other; }

    VELQUAD_API ~CMatNormalEncoder();

    /// Gives up the own tables and shares those of `other`.
    VELQUAD_API CMatNormalEncoder& operator=(const CMatNormalEncoder& other);

    /// The index of the direction that is nearest on the lattice.
    /// @param vector  three floats x, y, z of any length. Three zeros give the null vector's index. Numbers so
    ///                small that the reciprocal of their sum is infinite, and vectors with infinities or
    ///                not-a-numbers, give the index of some direction.
    VELQUAD_API int GetEncodedDirection(float* const vector);

    /// The three floats x, y, z of a direction. They live as long as the tables and may be written.
    /// @param index  an index in [0, `GetNumberOfEncodedDirections`()); not tested.
    VELQUAD_API float* GetDecodedGradient(int index);

    /// The table of all directions, three floats each, in the order of their indices.
    VELQUAD_API float* GetDecodedGradientTable();

    /// The number of indices, 2 h + 1.
    VELQUAD_API int GetNumberOfEncodedDirections();

  private:
    VELQUAD_API void InitializeIndexTable();

    int level = 0;                   ///< The level asked for.
    int* indexTable = nullptr;       ///< (cells + span)^2 indices, from a place in the square to a direction.
    float* gradientTable = nullptr;  ///< Three floats a direction.
    int builtLevel = -1;             ///< The level that the tables were built for.
    int cells = 0;                   ///< 2^level + 1.
    int span = 0;                    ///< 2^level.
    int halfCount = 0;               ///< Directions of the upper half.
};

/// @name Raster lines
/// The pixels of a straight line from (x0, y0) to (x1, y1), both ends included, each a neighbour of the one before
/// along a side or a corner.
///   (1) There are max(|x1 - x0|, |y1 - y0|) + 1 pixels, one per row or column of the longer extent.
///   (2) All forms give the same pixels in the same order.
///   (3) Where the line runs exactly between two pixels, the step is diagonal; so the way back may take other
///       pixels than the way there.
///   (4) Arithmetic wraps around at 32 bits. Lines of up to 2^30 steps are straight; the pixels of longer ones are
///       as many as told, but the minor axis does not step where it should.
/// @par Source  J. E. Bresenham, IBM Systems Journal 4 (1965).
/// @{

/// Stores a line, all of it or nothing.
/// @param points    the pixels; null to ask for their number.
/// @param capacity  pixels that `points` has room for.
/// @return the number of pixels; 0, with nothing stored, when `capacity` is smaller.
VELQUAD_API unsigned int matGetBresenhamLine(int x0, int y0, int x1, int y1, tagPOINT* points,
                                             unsigned int capacity);

/// Stores as much of a line as fits.
/// @param points    the first `capacity` pixels of the line; may be null, nothing is stored then.
/// @param capacity  pixels that `points` has room for.
/// @return the number of pixels of the whole line, whatever was stored.
extern "C" VELQUAD_API unsigned int matGetLine(int x0, int y0, int x1, int y1, tagPOINT* points,
                                               unsigned int capacity);

/// Walks along a line, one pixel per call:
///
///     CMatBresenhamLine line(CPoint(0, 0), CPoint(5, 2));
///     for (CPoint pixel; line.GetNextPoint(pixel);) visit(pixel);
///
/// A copy goes on from where the original stands. The fields tell the state and are not for writing.
class VELQUAD_API CMatBresenhamLine {
  public:
    /// Stands before the first pixel of the line from `start` to `end`.
    CMatBresenhamLine(CPoint startPoint, CPoint endPoint);
    CMatBresenhamLine(const CMatBresenhamLine& other);
    CMatBresenhamLine& operator=(const CMatBresenhamLine& other);

    /// Goes to the next pixel.
    /// @param point  the pixel; untouched on false.
    /// @return false when the last pixel was given already, and ever after.
    bool GetNextPoint(CPoint& point);

    /// @return the number of pixels of the whole line.
    int GetPointCount();

    CPoint start;       ///< First pixel.
    CPoint end;         ///< Last pixel.
    int step;           ///< Steps made; -1 before the first pixel was given.
    CPoint current;     ///< Pixel given last; `start` before the first call.
    int diagonalX;      ///< Step along both axes: the signs of the differences, 1 for none.
    int diagonalY;      ///< See `diagonalX`.
    int straightX;      ///< Step along the longer extent alone.
    int straightY;      ///< See `straightX`.
    int diagonalError;  ///< What a diagonal step adds to `error`: 2 * (minor - major).
    int straightError;  ///< What a straight step adds to `error`: 2 * minor.
    int error;          ///< Below 0, the next step is straight. Begins as 2 * minor - major.
    int major;          ///< Larger of the extents |dx| and |dy|, the steps of the line.
    int minor;          ///< Smaller of the extents, the diagonal steps among them.

  private:
    static constexpr int add(int a, int b) {
        return static_cast<int>(static_cast<unsigned int>(a) + static_cast<unsigned int>(b));
    }
    static constexpr int negate(int value) { return static_cast<int>(0U - static_cast<unsigned int>(value)); }
};

// Walking is worth inlining: a line then lives in the caller's registers. The module exports both all the same.
VELQUAD_EMIT_INLINE inline CMatBresenhamLine::CMatBresenhamLine(CPoint startPoint, CPoint endPoint)
    : start(startPoint), end(endPoint), step(-1), current(startPoint) {
    const int dx = add(end.x, negate(start.x));
    const int dy = add(end.y, negate(start.y));
    const int extentX = dx < 0 ? negate(dx) : dx;
    const int extentY = dy < 0 ? negate(dy) : dy;
    const bool isFlat = extentX >= extentY;
    diagonalX = dx < 0 ? -1 : 1;
    diagonalY = dy < 0 ? -1 : 1;
    straightX = isFlat ? diagonalX : 0;
    straightY = isFlat ? 0 : diagonalY;
    major = isFlat ? extentX : extentY;
    minor = isFlat ? extentY : extentX;
    straightError = add(minor, minor);
    diagonalError = add(straightError, negate(add(major, major)));
    error = add(straightError, negate(major));
}

VELQUAD_EMIT_INLINE inline bool CMatBresenhamLine::GetNextPoint(CPoint& point) {
    if (step == -1) {
        point = start;
        step = 0;
        return true;
    }
    if (step >= major) return false;
    // Masks, not branches: the sequence of steps is as good as random to a branch predictor. A straight step is a
    // diagonal one and what takes the difference back.
    const int isStraight = error >> 31;
    const CPoint next(add(add(current.x, diagonalX), (straightX - diagonalX) & isStraight),
                      add(add(current.y, diagonalY), (straightY - diagonalY) & isStraight));
    error = add(add(error, diagonalError), add(straightError, negate(diagonalError)) & isStraight);
    ++step;
    current = next;
    point = next;
    return true;
}
/// @}

#endif  // VELQUAD_GEOMETRY_H
