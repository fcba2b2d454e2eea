/// @file
/// The tiles put together, and how far they lie off, as pictures.
#ifndef MOSAIC_PICTURES_H
#define MOSAIC_PICTURES_H

#include <velquad/types.h>

#include <vector>

#include "align.h"
#include "image.h"
#include "tiles.h"

namespace examples::mosaic {

inline constexpr Rgb kStageColour{224, 112, 0};
inline constexpr Rgb kAlignedColour{0, 110, 210};
inline constexpr Rgb kPairColour{170, 40, 160};

/// A part of the plane that pictures show, in whole pixels of the tiles.
struct Frame {
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
};

/// The smallest frame around the tiles at all of these places.
Frame frameAround(const Tiles& tiles, const std::vector<std::vector<tagPOINT2D>>& placings);

/// Puts the tiles together. Where they overlap their grey values are mixed, each with more weight towards the middle
/// of its tile. What no tile covers is white.
GreyImage stitched(const Tiles& tiles, const std::vector<tagPOINT2D>& places, const Frame& frame);

/// The tiles side by side, with gaps.
ColourImage drawTiles(const Tiles& tiles);

/// A picture, enlarged for the screen.
ColourImage drawLarge(const GreyImage& image);

/// Parts of two pictures of the same frame where two tiles overlap: on the left the one, on the right the other. A
/// row for each of the pairs.
ColourImage drawDetails(const Tiles& tiles, const Frame& frame, const std::vector<tagPOINT2D>& places,
                        const std::vector<Pair>& pairs, const GreyImage& before, const GreyImage& after);

/// Vectors that belong to places.
struct Vectors {
    std::vector<tagPOINT2D> from;
    std::vector<tagPOINT2D> by;
    Rgb colour;
};

/// The picture, faint, with the frames of its tiles and vectors on it.
ColourImage drawVectors(const Tiles& tiles, const Frame& frame, const std::vector<tagPOINT2D>& places,
                        const GreyImage& image, const std::vector<Vectors>& vectors, double magnification);

}  // namespace examples::mosaic

#endif  // MOSAIC_PICTURES_H
