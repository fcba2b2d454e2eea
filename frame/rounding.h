// Rounding to decimal places.
#ifndef VELQUAD_FRAME_ROUNDING_H
#define VELQUAD_FRAME_ROUNDING_H

namespace velquad::frame {

/// 10 to an integer power, through the C library's `pow`.
double powerOfTen(int exponent);

/// Rounds to `decimals` places, with halves away from zero at every one of the `guardDigits` digits behind
/// them. A value that scaling would carry beyond the largest double is returned unchanged.
double matRoundToDecimals(double value, int decimals, int guardDigits);

}  // namespace velquad::frame

#endif  // VELQUAD_FRAME_ROUNDING_H
