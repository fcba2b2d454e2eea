// The Renner subspline: a once continuously differentiable cubic curve through points of the plane or of space,
// whose tangents come from the neighbouring chords only, with corners kept or rounded.
#ifndef VELQUAD_CURVES_RENNER_H
#define VELQUAD_CURVES_RENNER_H

#include "curves/segments.h"

namespace velquad::curves {

/// Results of the Renner routines.
inline constexpr int kRennerDone = 0;
inline constexpr int kRennerTooFewPoints = 1;  ///< Fewer than five points.
inline constexpr int kRennerEqualPoints = 2;   ///< Two consecutive points coincide.
inline constexpr int kRennerNoMemory = 3;      ///< Working memory.
inline constexpr int kRennerNoCapacity = 4;    ///< No row left for the point that a rounded corner adds.
inline constexpr int kRennerBadDimension = 5;  ///< Neither two nor three coordinates.

/// Computes the curve through the points P[0] ... P[m] and stores its coefficients and parameter lengths.
///
/// A tangent is the mean of the two chords at its point, each weighted by the turn on the other chord's far
/// side, so that straight runs stay straight. A point between two straight runs is a corner: with a corner
/// factor strictly between 0 and 1 it gives way to one point on each of its chords, else the curve keeps two
/// tangents there. A curve whose ends coincide is closed; the ends of an open one are continued linearly.
///
/// @param set           in: m, dimension, P with room for capacity + 1 rows; b, c, d and len with room for
///                      `capacity` segments. out: all of them; rounding grows m by one a corner and may turn a
///                      closed curve's start by one point.
/// @param cornerFactor  share of the shorter chord that rounding takes from both chords of a corner.
/// @return 0 or a code above; after a failure the contents are not to be used.
/// @par Cost    Linear in the points; each rounded corner moves the row pointers behind it.
/// @par Source  G. Renner, A method of shape description for mechanical engineering practice, Computers in
///              Industry 3 (1982).
int rennerCoefficients(SplineSegmentSet& set, Index capacity, double cornerFactor);

/// Replaces the corner P[corner] by two points, each at the distance `cornerFactor` times the shorter chord from
/// it, and mends the chords.
/// @param m       index of the last point; grows by one.
/// @param P       rows 0 ... m, with room for `capacity` + 1.
/// @param chords  rows -2 ... m + 1, with room for row m + 2; chords[i] leads from P[i] to P[i + 1].
/// @return 0; 4 when m equals the capacity, with nothing changed.
int rennerRoundCorner(Index& m, Index capacity, Index d, Index corner, double** P, double** chords,
                      double cornerFactor);

}  // namespace velquad::curves

#endif  // VELQUAD_CURVES_RENNER_H
