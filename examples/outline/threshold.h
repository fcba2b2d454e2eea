/// @file
/// From grey values to numbered objects.
#ifndef OUTLINE_THRESHOLD_H
#define OUTLINE_THRESHOLD_H

#include <array>
#include <cstdint>
#include <vector>

#include "image.h"

namespace examples::outline {

/// How often each grey value occurs, in 256 equal bins between the darkest and the brightest pixel, so that a
/// 12-bit picture in a 16-bit file uses them all.
struct Histogram {
    static constexpr int kBins = 256;
    double low = 0.0;
    double high = 0.0;
    std::array<std::uint64_t, kBins> counts{};

    bool isSingleValue() const { return low == high; }
    /// The grey value between bin `bin` and the one behind it.
    double upperEdge(int bin) const { return low + (high - low) * (bin + 1) / kBins; }
};

Histogram histogramOf(const GreyImage& image);

/// The threshold that parts the histogram in two classes with the greatest variance between them.
///
/// Source: N. Otsu, "A threshold selection method from gray-level histograms", IEEE Transactions on Systems,
/// Man, and Cybernetics 9 (1979). Equally good neighbours give the middle one.
double otsuThreshold(const Histogram& histogram);

enum class ObjectsAre {
    kBright,
    kDark,
    kAutomatic,  ///< What most of the picture's border shows is the ground; the other class holds the objects.
};

/// 1 where there is an object, 0 on the ground.
using Mask = Image<std::uint8_t>;

Mask thresholded(const GreyImage& image, double threshold, ObjectsAre objectsAre);

/// Closes clefts that are one or two pixels wide: each object grows by a pixel on all sides and shrinks again
/// (J. Serra, "Image Analysis and Mathematical Morphology", 1982). What lies beyond the border counts as what it
/// borders on.
Mask closed(const Mask& mask);

/// One connected object.
struct Region {
    std::int32_t label = 0;  ///< Its value in `Objects::labels`.
    int firstX = 0;          ///< Its first pixel in reading order: nothing of it lies above, and nothing
    int firstY = 0;          ///< to the left in the same row.
    std::int64_t pixelCount = 0;
    bool touchesBorder = false;
    int innermostX = 0;  ///< A pixel as far from the object's edge as any: a place for its number.
    int innermostY = 0;
};

struct Objects {
    Image<std::int32_t> labels;   ///< 0 on the ground.
    std::vector<Region> regions;  ///< In reading order of their first pixels.
};

/// Fills holes of at most `largestHole` pixels, then numbers the objects of `smallestObject` pixels and more;
/// smaller ones become ground. Objects hang together over corners, holes over sides only.
Objects findObjects(const Mask& mask, std::int64_t smallestObject, std::int64_t largestHole);

}  // namespace examples::outline

#endif  // OUTLINE_THRESHOLD_H
