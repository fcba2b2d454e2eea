/// @file
/// A small drawing surface: smooth lines and numbers on an enlarged picture.
#ifndef OUTLINE_DRAWING_H
#define OUTLINE_DRAWING_H

#include <velquad/types.h>

#include <vector>

#include "image.h"
#include "measure.h"

namespace outline {

/// Colours of the three outlines on a grey picture, and of the numbers.
inline constexpr Rgb kRawColour{255, 176, 0};
inline constexpr Rgb kInterpolatedColour{0, 200, 255};
inline constexpr Rgb kFittedColour{255, 40, 150};
inline constexpr Rgb kNumberColour{255, 255, 255};

/// Lines that are drawn together in one colour. Each pixel keeps the greatest part that one of the lines covers,
/// so that the joints of a finely stepped curve do not pile up.
class InkLayer {
  public:
    InkLayer(int width, int height) : coverage_(width, height) {}

    /// Draws through the points, in layer coordinates, with round joints and soft edges.
    void stroke(const std::vector<tagPOINT2D>& points, double lineWidth);
    /// Draws a number in segments of a 7-segment display, its middle at (x, y).
    void number(std::size_t value, double x, double y, double height, double lineWidth);

    const Image<std::uint8_t>& coverage() const { return coverage_; }

  private:
    void segment(const tagPOINT2D& from, const tagPOINT2D& to, double lineWidth);

    Image<std::uint8_t> coverage_;  ///< 0 to 255.
};

/// Lays a colour over an image where the layer has ink.
void blend(ColourImage& image, const InkLayer& layer, Rgb colour);

/// The picture, enlarged so that single pixels show, with the outlines of all objects and their numbers.
ColourImage drawOverlay(const GreyImage& image, const Measurement& measurement);

}  // namespace outline

#endif  // OUTLINE_DRAWING_H
