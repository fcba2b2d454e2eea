/// @file
/// The outlines and their numbers on the enlarged picture.
#ifndef OUTLINE_DRAWING_H
#define OUTLINE_DRAWING_H

#include "image.h"
#include "ink.h"
#include "measure.h"

namespace examples::outline {

/// Colours of the three outlines on a grey picture, and of the numbers.
inline constexpr Rgb kRawColour{255, 176, 0};
inline constexpr Rgb kInterpolatedColour{0, 200, 255};
inline constexpr Rgb kFittedColour{255, 40, 150};
inline constexpr Rgb kNumberColour{255, 255, 255};

/// The picture, enlarged so that single pixels show, with the outlines of all objects and their numbers.
ColourImage drawOverlay(const GreyImage& image, const Measurement& measurement);

}  // namespace examples::outline

#endif  // OUTLINE_DRAWING_H
