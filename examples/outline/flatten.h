/// @file
/// Uneven lighting, taken out before a single threshold is laid over the whole picture.
#ifndef OUTLINE_FLATTEN_H
#define OUTLINE_FLATTEN_H

#include "image.h"
#include "threshold.h"

namespace examples::outline {

/// Averages each pixel with its eight neighbours under binomial weights (1 2 1) x (1 2 1) / 16: noise would fray
/// the outlines. The border repeats its own pixels.
GreyImage smoothed(const GreyImage& image);

/// Subtracts the lighting of the ground, a surface of second order in x and y.
///
/// The surface is fitted by least squares to the pixels that the current threshold counts as ground, and the
/// fit is repeated with the better threshold that each round allows. The mean of the ground stays.
/// @return the image as it was when it has too little ground for a fit.
GreyImage flattened(const GreyImage& image, ObjectsAre objectsAre);

}  // namespace examples::outline

#endif  // OUTLINE_FLATTEN_H
