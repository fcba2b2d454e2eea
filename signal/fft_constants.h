// The circle constants of the signal functions. Results depend on their twelve decimals.
#ifndef VELQUAD_SIGNAL_FFT_CONSTANTS_H
#define VELQUAD_SIGNAL_FFT_CONSTANTS_H

namespace velquad::signal {

inline constexpr double kPi = 3.14159265359;
inline constexpr double kTwoPi = 6.28318530718;
inline constexpr double kFourPi = 12.56637061436;

}  // namespace velquad::signal

#endif  // VELQUAD_SIGNAL_FFT_CONSTANTS_H
