/// @file
/// A camera whose lens is known: what it makes of straight lines and of dots.
#ifndef LENS_CAMERA_H
#define LENS_CAMERA_H

#include <velquad/types.h>

#include <vector>

#include "image.h"

namespace examples::lens {

inline constexpr int kWidth = 1600;
inline constexpr int kHeight = 1200;

/// Where the lens shows a point: radial and tangential distortion, as in D. C. Brown, Decentering distortion of
/// lenses, 1966. Positions are in pixels; a perfect lens would leave them alone.
tagPOINT2D distorted(const tagPOINT2D& truth);

/// Which point the lens shows at a position.
tagPOINT2D undistorted(const tagPOINT2D& shown);

/// A dot of the target.
struct Dot {
    tagPOINT2D truth;     ///< Where it is.
    tagPOINT2D shown;     ///< Where the lens shows it.
    tagPOINT2D measured;  ///< Where it was found in the picture.
};

/// The dots of a square grid that the picture shows whole. None of them was measured yet.
std::vector<Dot> dotsInSight();

/// Points between the dots, to look at a map where it was not fitted.
std::vector<Dot> pointsBetween();

/// The picture of the dots: dark discs with soft edges on a bright ground that darkens towards the corners, and noise.
GreyImage photographDots(const std::vector<Dot>& dots);

/// Finds each dot near where it is shown, as the centre of gravity of its darkness.
void measureDots(const GreyImage& picture, std::vector<Dot>& dots);

/// Half as large as the picture of the dots: a chequered board with rings, as the lens shows it.
GreyImage photographBoard();
inline constexpr int kBoardScale = 2;     ///< Pixels of the camera in one of the board's picture.
inline constexpr int kBoardSquare = 100;  ///< Side of a square, in pixels of the camera.

}  // namespace examples::lens

#endif  // LENS_CAMERA_H
