/// @file
/// Images in memory, and the one kind of error that the program reports.
#ifndef EXAMPLES_IMAGE_H
#define EXAMPLES_IMAGE_H

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

namespace examples {

/// Why the program cannot go on, in one line for its user.
class Failure : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// A picture of `width` by `height` elements, rows from the top, without gaps.
template <typename Pixel>
struct Image {
    int width = 0;
    int height = 0;
    std::vector<Pixel> pixels;

    Image() = default;
    Image(int w, int h, Pixel value = Pixel())
        : width(w), height(h), pixels(static_cast<std::size_t>(w) * static_cast<std::size_t>(h), value) {}

    bool contains(int x, int y) const { return x >= 0 && y >= 0 && x < width && y < height; }
    Pixel& at(int x, int y) { return pixels[indexOf(x, y)]; }
    const Pixel& at(int x, int y) const { return pixels[indexOf(x, y)]; }
    std::size_t indexOf(int x, int y) const {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x);
    }
};

/// Grey values 0 (black) to 65535 (white), whatever the depth of the file was.
using GreyImage = Image<std::uint16_t>;

/// A colour of the screen.
struct Rgb {
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;
};
using ColourImage = Image<Rgb>;
static_assert(sizeof(Rgb) == 3, "rows of Rgb are handed to the PNG writer as they are");

}  // namespace examples

#endif  // EXAMPLES_IMAGE_H
