/// @file
/// A drawing surface that shows a small pixel grid enlarged, with smooth lines on top.
#ifndef GALLERY_CANVAS_H
#define GALLERY_CANVAS_H

#include <velquad/types.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace gallery {

struct Rgb {
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;
};
static_assert(sizeof(Rgb) == 3, "rows of Rgb are handed to the PNG writer as they are");

inline constexpr Rgb kPaper{252, 251, 247};
inline constexpr Rgb kGridColour{222, 220, 212};
inline constexpr Rgb kInk{40, 44, 52};
inline constexpr Rgb kFaint{205, 203, 196};
inline constexpr Rgb kOrange{236, 140, 36};
inline constexpr Rgb kBlue{52, 120, 200};
inline constexpr Rgb kGreen{60, 160, 110};
inline constexpr Rgb kRed{208, 64, 72};
inline constexpr Rgb kViolet{140, 90, 180};

/// Whether the lines between cells show. Without them cells touch, as the pixels of images do.
enum class Grid { kShown, kHidden };

/// `columns` by `rows` cells of `zoom` screen pixels. The middle of cell (x, y) is the point (x, y), and y grows
/// downwards, as in the library's images.
class Canvas {
  public:
    Canvas(int columns, int rows, int zoom, Grid grid = Grid::kShown);

    /// Fills a cell; cells outside are ignored.
    void fillCell(int x, int y, Rgb colour);
    /// Fills the cells of a chain of pixels.
    void fillCells(const std::vector<tagPOINT>& pixels, Rgb colour) {
        for (const tagPOINT& pixel : pixels)
            fillCell(static_cast<int>(pixel.x), static_cast<int>(pixel.y), colour);
    }
    /// Draws a straight line with soft edges. The width is in screen pixels.
    void stroke(const tagPOINT2D& from, const tagPOINT2D& to, double width, Rgb colour);
    /// Draws the outline of a rectangle.
    void frame(const tagMAT_RECT2D& rect, double width, Rgb colour);
    /// Draws a disc. The radius is in screen pixels.
    void dot(const tagPOINT2D& centre, double radius, Rgb colour) {
        stroke(centre, centre, 2 * radius, colour);
    }

    /// Draws a circle with soft edges. The radius is in cells, the width in screen pixels.
    void ring(const tagPOINT2D& centre, double radius, double width, Rgb colour);

    int width() const { return columns_ * zoom_ + 1; }
    int height() const { return rows_ * zoom_ + 1; }
    std::vector<Rgb>& pixels() { return pixels_; }

  private:
    Rgb& at(int x, int y) {
        return pixels_[static_cast<std::size_t>(y) * static_cast<std::size_t>(width()) +
                       static_cast<std::size_t>(x)];
    }

    void blend(int x, int y, double part, Rgb colour);

    int columns_;
    int rows_;
    int zoom_;
    int gap_;  ///< Screen pixels of the grid lines.
    std::vector<Rgb>
        pixels_;  ///< Rows from the top; one screen pixel more than the cells, for the last grid line.
};

}  // namespace gallery

#endif  // GALLERY_CANVAS_H
