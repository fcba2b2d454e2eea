/// @file
/// Chains of pixels, taken from the library's functions and records.
#ifndef GALLERY_CHAINS_H
#define GALLERY_CHAINS_H

#include <velquad/types.h>

#include <vector>

namespace gallery {

/// The pixels of a raster line, both ends included.
std::vector<tagPOINT> pixelsOf(const tagPOINT& from, const tagPOINT& to);
/// Takes the points out of a polygon and releases it. Throws when there is none.
std::vector<tagPOINT> pointsOf(void* handle);

inline tagPOINT2D middleOf(const tagPOINT& pixel) {
    return {static_cast<double>(pixel.x), static_cast<double>(pixel.y)};
}

}  // namespace gallery

#endif  // GALLERY_CHAINS_H
