// The terms of the lens models, at a point in normalised coordinates.
#ifndef VELQUAD_FITTING_LENS_BASIS_H
#define VELQUAD_FITTING_LENS_BASIS_H

#include <algorithm>
#include <array>
#include <cstddef>

namespace velquad::fitting {

/// The terms of the largest model.
constexpr std::size_t kMaxLensTerms = 24;

using LensTerms = std::array<double, kMaxLensTerms>;

/// The number of terms of a model; 0 for an unknown one.
constexpr std::size_t lensTermCount(unsigned int model) {
    switch (model) {
        case 2:
            return 5;
        case 3:
            return 6;
        case 4:
            return 7;
        case 5:
            return 10;
        case 6:
            return 9;
        case 7:
            return 17;
        case 8:
            return 24;
        case 9:
            return 21;
        default:
            return 0;
    }
}

/// Stores as many terms as given at the front.
template <typename... Terms>
inline void storeTerms(LensTerms& out, Terms... terms) {
    static_assert(sizeof...(Terms) <= kMaxLensTerms);
    const double values[] = {terms...};
    std::copy_n(values, sizeof...(Terms), out.data());
}

/// The aberration model. Its zeros keep the places of terms that stored coefficients of older fits have.
inline void storeAberrationTerms(LensTerms& out, double x, double y) {
    const double x2 = x * x;
    const double y2 = y * y;
    const double x3 = x2 * x;
    const double y3 = y2 * y;
    const double q = x2 + y2;
    storeTerms(out, 0.0, 1.0, 0.0, x, x2, x * y, x, y,                       //
               y2 / 3.0 + x2, 2.0 * x * y / 3.0, x * y2 + x3, x2 - y2,       //
               2.0 * x * y, x3, (3.0 * x2 * y + y3) * 0.5,                   //
               (5.0 * x2 + y2) * q / 5.0, 4.0 * x * y * q / 5.0, q * q * x,  //
               x2 / 3.0 + y2, x * y2 + x3, y3, (3.0 * y3 + x2 * y) * 0.5,    //
               (5.0 * y2 + x2) * q / 5.0, q * q * y);
}

/// All products of powers up to degree 5.
inline void storeQuinticTerms(LensTerms& out, double x, double y) {
    const double x2 = x * x;
    const double y2 = y * y;
    const double x3 = x2 * x;
    const double y3 = y2 * y;
    const double x4 = x3 * x;
    const double y4 = y3 * y;
    storeTerms(out, 1.0, x, y, x2, y2, x * y, x3, x2 * y, x * y2, y3, x4, x3 * y, x2 * y2, x * y3, y4, x4 * x,
               x4 * y, x3 * y2, x2 * y3, x * y4, y4 * y);
}

/// Stores the first `lensTermCount(model)` terms at (x, y), which is `r` away from the origin. The order of the
/// terms is that of stored coefficients.
inline void evaluateLensTerms(unsigned int model, double x, double y, double r, LensTerms& out) {
    const double x2 = x * x;
    const double y2 = y * y;
    const double x3 = x2 * x;
    const double y3 = y2 * y;
    const double r2 = r * r;
    switch (model) {
        case 2:
            return storeTerms(out, 1.0, x, y, r, r2);
        case 3:
            return storeTerms(out, 1.0, x, y, r, r2, r2 * r);
        case 4:
            return storeTerms(out, 1.0, x, y, r, r2, r2 * r, r2 * r * r);
        case 5:
            return storeTerms(out, 1.0, x, y, x2, y2, x2 * y, x * y2, x3, y3, r);
        case 6:
            return storeTerms(out, 1.0, x, y, x2, y2, x2 * y, x * y2, x3, y3);
        case 7:
            // Kept: three products stand twice. A fit gives each of the two half of the weight.
            return storeTerms(out, 1.0, x, y, x2, y2, x2 * y, x * y2, x3, y3,  //
                              x3 * y, x2 * y2, x3 * x, x * y3, x2 * y2, x * y3, x3 * y, y3 * y);
        case 8:
            return storeAberrationTerms(out, x, y);
        case 9:
            return storeQuinticTerms(out, x, y);
        default:
            return;
    }
}

}  // namespace velquad::fitting

#endif  // VELQUAD_FITTING_LENS_BASIS_H
