/// @file
/// A picture cut into overlapping tiles, as a microscope with a moving stage would take it.
#ifndef MOSAIC_TILES_H
#define MOSAIC_TILES_H

#include <velquad/types.h>

#include <vector>

#include "image.h"

namespace examples::mosaic {

inline constexpr int kTileRows = 4;
inline constexpr int kTileColumns = 5;

struct Tile {
    int row = 0;
    int column = 0;
    GreyImage image;
    tagPOINT2D truth{};  ///< Where its upper left pixel lies in the picture, in fractions of pixels.
    tagPOINT2D stage{};  ///< Where the stage says it is.
};

/// Tiles in rows, all of one size.
struct Tiles {
    int width = 0;
    int height = 0;
    double stageError = 0.0;  ///< The largest error of the stage along each axis, in pixels.
    std::vector<Tile> tiles;

    double middleX() const { return (width - 1) / 2.0; }
    double middleY() const { return (height - 1) / 2.0; }
};

/// Cuts the picture into `kTileRows` by `kTileColumns` tiles that overlap by about 30 percent. Their places are
/// scattered by up to three pixels, those that the stage reports by `stageError` more; each tile has its own
/// brightness, contrast and noise.
/// @throws Failure for a picture that is too small.
Tiles cutTiles(const GreyImage& picture, double stageError);

/// Resamples a picture by the library: pixel (0, 0) of the result lies at `origin` of the picture. What lies outside
/// of the picture is black.
Image<float> resampled(Image<float> picture, const tagPOINT2D& origin, int width, int height);

/// The same grey values as floats.
Image<float> asFloats(const GreyImage& picture);

/// Blurs a picture by the library, with a Gaussian that is cut off at two sigmas. @param sigma  in pixels.
Image<float> blurred(Image<float> picture, double sigma);

}  // namespace examples::mosaic

#endif  // MOSAIC_TILES_H
