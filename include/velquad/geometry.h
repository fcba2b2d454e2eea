/// @file
/// Geometry of the plane and of space: distances, angles, scale factors, crossings of lines, segments and
/// ellipses, triangles, tetrahedra, cuboids.
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
/// length, its logarithm cut towards zero; a quotient from there upwards is the step itself. A quotient that is round already gives the next larger step: 0 to 100 with 11 labels and mode 1 gives
/// the step 20.
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
    CMatAngleInterpolator(CMatAngleInterpolator&& other);
    CMatAngleInterpolator& operator=(const CMatAngleInterpolator& other);
    /// `other` may only be assigned to or destroyed afterwards.
    CMatAngleInterpolator& operator=(CMatAngleInterpolator&& other);
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
/// @note  The chain is closed as soon as it comes within one pixel of its start, the second step included: a very
///        thin ellipse can end early.
/// @return 1, or 0 when `callback` stopped the drawing, when a semi-axis divided by its scale is not above zero, and
///         when the chain has not closed after 131072 points, all of which have been delivered.
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

#endif  // VELQUAD_GEOMETRY_H
