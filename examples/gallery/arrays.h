/// @file
/// Images of numbers, as the library's arrays hold them.
#ifndef GALLERY_ARRAYS_H
#define GALLERY_ARRAYS_H

#include <velquad/array.h>

#include <new>

#include "canvas.h"

namespace gallery {

/// The type code of an element.
template <typename Element>
inline constexpr unsigned int kTypeOf = 0;
template <>
inline constexpr unsigned int kTypeOf<unsigned char> = MAT_ARRAY_UINT8;
template <>
inline constexpr unsigned int kTypeOf<unsigned short> = MAT_ARRAY_UINT16;

/// An image of one channel. It begins black.
template <typename Element>
class Image {
  public:
    Image(int width, int height)
        : width_(width),
          height_(height),
          rows_(matAllocArray2v(static_cast<unsigned int>(width), static_cast<unsigned int>(height),
                                kTypeOf<Element>, 1, nullptr)) {
        if (rows_ == nullptr) throw std::bad_alloc();
    }
    Image(const Image& other)
        : width_(other.width_),
          height_(other.height_),
          rows_(
              matDuplicateArray2v(other.rows_, other.columnCount(), other.rowCount(), kTypeOf<Element>, 1)) {
        if (rows_ == nullptr) throw std::bad_alloc();
    }
    Image& operator=(const Image&) = delete;
    ~Image() { matFreeArray2v(rows_); }

    int width() const { return width_; }
    int height() const { return height_; }
    unsigned int columnCount() const { return static_cast<unsigned int>(width_); }
    unsigned int rowCount() const { return static_cast<unsigned int>(height_); }
    void** rows() { return rows_; }
    const void* const* rows() const { return rows_; }
    Element& at(int x, int y) { return static_cast<Element*>(rows_[y])[x]; }
    Element at(int x, int y) const { return static_cast<const Element*>(rows_[y])[x]; }

  private:
    int width_;
    int height_;
    void** rows_;
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
