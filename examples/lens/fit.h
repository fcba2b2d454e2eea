/// @file
/// The library at work: lens models fitted to the dots, and what they leave.
#ifndef LENS_FIT_H
#define LENS_FIT_H

#include <velquad/types.h>

#include <cstddef>
#include <vector>

#include "camera.h"
#include "errors.h"
#include "image.h"

namespace examples::lens {

inline constexpr unsigned int kFirstModel = 2;
inline constexpr unsigned int kLastModel = 9;

struct ModelResult {
    unsigned int model = 0;
    std::size_t terms = 0;
    std::vector<tagPOINT2D> residuals;  ///< For each dot: where the fitted map puts it, less where it is.
    ErrorSize dots;                     ///< Of the residuals.
    ErrorSize between;  ///< Of the map at points between the dots, at known positions without noise.
};

/// Fits a model to the measured dots.
ModelResult fitModel(unsigned int model, const std::vector<Dot>& dots, const std::vector<Dot>& between);

/// Undoes the distortion of the board's picture with a fit of the last model.
GreyImage corrected(const GreyImage& board, const std::vector<Dot>& dots);

}  // namespace examples::lens

#endif  // LENS_FIT_H
