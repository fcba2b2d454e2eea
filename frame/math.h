// The one door to the C library's transcendental functions. C libraries differ in the last bits of these
// results; a common set of bits for all systems can be put here and nowhere else. `sqrt` is exact everywhere
// and needs no door.
#ifndef VELQUAD_FRAME_MATH_H
#define VELQUAD_FRAME_MATH_H

#include <cmath>

namespace velquad::frame {

inline double sin(double x) {
    return std::sin(x);
}
inline double cos(double x) {
    return std::cos(x);
}
inline double tan(double x) {
    return std::tan(x);
}
inline double acos(double x) {
    return std::acos(x);
}
inline double atan(double x) {
    return std::atan(x);
}
inline double atan2(double y, double x) {
    return std::atan2(y, x);
}
inline double exp(double x) {
    return std::exp(x);
}
inline double log(double x) {
    return std::log(x);
}
inline double log10(double x) {
    return std::log10(x);
}
inline double pow(double base, double exponent) {
    return std::pow(base, exponent);
}
inline double hypot(double x, double y) {
    return std::hypot(x, y);
}

}  // namespace velquad::frame

#endif  // VELQUAD_FRAME_MATH_H
