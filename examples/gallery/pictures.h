/// @file
/// The pictures of the gallery, one function each.
#ifndef GALLERY_PICTURES_H
#define GALLERY_PICTURES_H

#include "canvas.h"

namespace gallery {

/// Raster lines from one pixel in many directions.
Canvas drawFanOfLines();
/// A line, and the same line with its ends exchanged.
Canvas drawThereAndBack();
/// Segments cut to a rectangle of pixels.
Canvas drawClippedPixels();
/// Segments cut to a rectangle of doubles.
Canvas drawClippedSegments();

}  // namespace gallery

#endif  // GALLERY_PICTURES_H
