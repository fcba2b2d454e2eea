/// @file
/// A drawn picture, for when no photograph is at hand.
#ifndef MOSAIC_SCENE_H
#define MOSAIC_SCENE_H

#include "image.h"

namespace examples::mosaic {

/// Draws pebbles of all sizes and shades over each other, the same on every call.
GreyImage drawPebbles();

}  // namespace examples::mosaic

#endif  // MOSAIC_SCENE_H
