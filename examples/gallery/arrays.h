/// @file
/// Images of numbers, as the library's functions take them.
#ifndef GALLERY_ARRAYS_H
#define GALLERY_ARRAYS_H

#include <cstddef>
#include <vector>

#include "canvas.h"

namespace gallery {

/// An image of one channel with its row table. It begins black.
template <typename Element>
class Image {
  public:
    Image(int width, int height)
        : width_(width), height_(height), elements_(static_cast<std::size_t>(width) * rowCount()) {
        addRows();
    }
    Image(const Image& other) : width_(other.width_), height_(other.height_), elements_(other.elements_) {
        addRows();
    }
    Image& operator=(const Image&) = delete;

    int width() const { return width_; }
    int height() const { return height_; }
    unsigned int columnCount() const { return static_cast<unsigned int>(width_); }
    unsigned int rowCount() const { return static_cast<unsigned int>(height_); }
    /// The row table as the functions of the library take it.
    void* const* rows() { return rows_.data(); }
    const void* const* rows() const { return rows_.data(); }
    Element& at(int x, int y) { return elements_[index(x, y)]; }
    Element at(int x, int y) const { return elements_[index(x, y)]; }

  private:
    std::size_t index(int x, int y) const {
        return static_cast<std::size_t>(y) * columnCount() + static_cast<std::size_t>(x);
    }
    void addRows() {
        for (int y = 0; y < height_; ++y)
            rows_.push_back(&at(0, y));
    }

    int width_;
    int height_;
    std::vector<Element> elements_;
    std::vector<void*> rows_;
};

using GreyImage = Image<unsigned char>;

/// Draws an image with its upper left corner in the cell (left, top), each pixel `scale` cells wide and high, and
/// frames it.
inline void drawGrey(Canvas& canvas, int left, int top, const GreyImage& image, int scale) {
    for (int y = 0; y < image.height() * scale; ++y) {
        for (int x = 0; x < image.width() * scale; ++x) {
            const unsigned char level = image.at(x / scale, y / scale);
            canvas.fillCell(left + x, top + y, {level, level, level});
        }
    }
    canvas.frame(
        {left - 0.5, top - 0.5, left + image.width() * scale - 0.5, top + image.height() * scale - 0.5}, 1.5,
        kInk);
}

}  // namespace gallery

#endif  // GALLERY_ARRAYS_H
