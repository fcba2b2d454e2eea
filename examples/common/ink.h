/// @file
/// Smooth lines and numbers on a picture.
#ifndef EXAMPLES_INK_H
#define EXAMPLES_INK_H

#include <velquad/types.h>

#include <cstddef>
#include <cstdint>
#include <vector>

#include "image.h"

namespace examples {

/// Lines that are drawn together in one colour. Each pixel keeps the greatest part that one of the lines covers,
/// so that the joints of a finely stepped curve do not pile up.
class InkLayer {
  public:
    InkLayer(int width, int height) : coverage_(width, height) {}

    /// Draws through the points, in layer coordinates, with round joints and soft edges.
    void stroke(const std::vector<tagPOINT2D>& points, double lineWidth);
    /// Draws an arrow from a dot. The head of a short one is shorter too, that of a very short one is left out.
    void arrow(const tagPOINT2D& from, const tagPOINT2D& to, double lineWidth, double headLength);
    /// Draws the outline of a rectangle.
    void frame(double left, double top, double right, double bottom, double lineWidth);
    /// Draws a number in segments of a 7-segment display, its middle at (x, y).
    void number(std::size_t value, double x, double y, double height, double lineWidth);

    const Image<std::uint8_t>& coverage() const { return coverage_; }

  private:
    void segment(const tagPOINT2D& from, const tagPOINT2D& to, double lineWidth);

    Image<std::uint8_t> coverage_;  ///< 0 to 255.
};

/// How many times vectors are enlarged: 1, 2 or 5 times a power of ten, so that the longest one fits in `room`.
double magnificationFor(double longest, double room);

/// A picture for the screen. `fade` mixes it with white: 0 leaves it as it is, 1 leaves nothing of it.
ColourImage coloured(const GreyImage& image, double fade = 0.0);

/// Lays a colour over an image where the layer has ink.
void blend(ColourImage& image, const InkLayer& layer, Rgb colour);

}  // namespace examples

#endif  // EXAMPLES_INK_H
