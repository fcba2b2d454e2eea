/// @file
/// Error vectors in one number.
#ifndef EXAMPLES_ERRORS_H
#define EXAMPLES_ERRORS_H

#include <velquad/types.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace examples {

/// Lengths of error vectors.
struct ErrorSize {
    double rms = 0.0;
    double largest = 0.0;
};

inline double lengthOf(const tagPOINT2D& vector) {
    return std::sqrt(vector.x * vector.x + vector.y * vector.y);
}

inline ErrorSize sizeOf(const std::vector<tagPOINT2D>& errors) {
    ErrorSize size;
    for (const tagPOINT2D& error : errors) {
        const double length = lengthOf(error);
        size.rms += length * length / static_cast<double>(errors.size());
        size.largest = std::max(size.largest, length);
    }
    size.rms = std::sqrt(size.rms);
    return size;
}

}  // namespace examples

#endif  // EXAMPLES_ERRORS_H
