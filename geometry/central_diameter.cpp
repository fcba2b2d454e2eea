// Diameters of a binary object along a raster line through its centre. Places on the line are computed, not
// looked up, so that only the part of the line that can meet the image is walked, whatever its length.
#include <algorithm>
#include <cstdint>

#include "frame/convert.h"
#include "geometry/distance.h"
#include "geometry/raster_line.h"
#include "velquad/geometry.h"

using velquad::frame::Int32;
using velquad::geometry::rasterPixelCount;
using velquad::geometry::RasterSteps;
using velquad::geometry::rasterSteps;

namespace {

constexpr std::uint32_t kBufferedPixels = 65535;
constexpr tagPOINT kNoPixel{velquad::kCoordinateNotSet, velquad::kCoordinateNotSet};

/// A binary image, seen through coordinates that may lie anywhere.
struct BinaryImage {
    std::int64_t width;
    std::int64_t height;
    const unsigned char* const* rows;

    bool isInside(const tagPOINT& p) const {
        return rows != nullptr && 0 <= p.x && p.x < width && 0 <= p.y && p.y < height;
    }
    bool isSet(const tagPOINT& p) const { return isInside(p) && rows[p.y][p.x] != 0; }
};

/// A run of places on a line, both ends included; empty when `last` is smaller.
struct Span {
    std::int64_t first;
    std::int64_t last;
};

/// Bresenham's line from one pixel to another, with access to each of its pixels. Step i lies i pixels along the
/// major axis and round(i * minor / major) along the minor one, halves away from the start.
class RasterLine {
  public:
    RasterLine(const tagPOINT& from, const RasterSteps& steps)
        : from_(from),
          count_(rasterPixelCount(steps)),
          major_(steps.major),
          // An extent of exactly 2^31 stays negative; twice that is 0, so the minor axis never steps.
          minor_(std::max<std::int64_t>(steps.minor, 0)),
          signX_(steps.diagonalX),
          signY_(steps.diagonalY),
          isSteep_(steps.straightX == 0) {}

    /// The number of pixels, at least one.
    std::int64_t count() const { return count_; }

    tagPOINT at(std::int64_t i) const {
        const std::int64_t across = major_ == 0 ? 0 : (2 * minor_ * i + major_) / (2 * major_);
        const std::int64_t x = from_.x + signX_ * (isSteep_ ? across : i);
        const std::int64_t y = from_.y + signY_ * (isSteep_ ? i : across);
        return {static_cast<Int32>(static_cast<std::uint32_t>(x)),
                static_cast<Int32>(static_cast<std::uint32_t>(y))};
    }

    /// The places whose coordinate along the major axis lies in the image: all others are outside.
    Span spanWithin(const BinaryImage& image) const {
        const std::int64_t start = isSteep_ ? from_.y : from_.x;
        const std::int64_t size = isSteep_ ? image.height : image.width;
        const bool isForward = (isSteep_ ? signY_ : signX_) > 0;
        const std::int64_t first = isForward ? -start : start - size + 1;
        const std::int64_t last = isForward ? size - 1 - start : start;
        return {std::max<std::int64_t>(first, 0), std::min(last, count() - 1)};
    }

  private:
    tagPOINT from_;
    std::int64_t count_;
    std::int64_t major_;
    std::int64_t minor_;
    std::int64_t signX_;
    std::int64_t signY_;
    bool isSteep_;
};

/// The set one of the three pixels in the middle of the line that is nearest to `center`, the earliest of equally
/// near ones.
/// @return its place, or -1.
std::int64_t middlePlace(const BinaryImage& image, const RasterLine& line, const tagPOINT& center) {
    const std::int64_t first = std::max<std::int64_t>(line.count() / 2 - 1, 0);
    const std::int64_t last = std::min(line.count() - 1, line.count() / 2 + 1);
    std::int64_t nearest = -1;
    double shortest = 0.0;
    for (std::int64_t i = first; i <= last; ++i) {
        const tagPOINT pixel = line.at(i);
        if (!image.isSet(pixel)) continue;
        const double squared = velquad::geometry::distanceSquared(pixel, center);
        if (nearest >= 0 && !(squared < shortest)) continue;
        nearest = i;
        shortest = squared;
    }
    return nearest;
}

/// Follows the line from a set pixel in steps of `step`, over set pixels and over places outside the image.
/// @return the last set pixel.
tagPOINT followSetPixels(const BinaryImage& image, const RasterLine& line, const Span& span,
                         std::int64_t place, int step) {
    tagPOINT lastSet = line.at(place);
    for (std::int64_t i = place + step; span.first <= i && i <= span.last; i += step) {
        const tagPOINT pixel = line.at(i);
        if (image.isSet(pixel)) {
            lastSet = pixel;
        } else if (image.isInside(pixel)) {
            break;
        }
    }
    return lastSet;
}

void store(tagPOINT* out, const tagPOINT& value) {
    if (out != nullptr) *out = value;
}

}  // namespace

extern "C" int matCalcCentralInnerAndOuterDiameter(int width, int height, const unsigned char* const* rows,
                                                   tagPOINT center, tagPOINT from, tagPOINT to,
                                                   tagPOINT* innerFirst, tagPOINT* innerLast,
                                                   tagPOINT* outerFirst, tagPOINT* outerLast,
                                                   tagPOINT* lineBuffer) {
    const BinaryImage image{width, height, rows};
    const RasterSteps steps = rasterSteps(from.x, from.y, to.x, to.y);
    if (lineBuffer != nullptr) {
        const std::uint32_t storedCount = std::min(rasterPixelCount(steps), kBufferedPixels);
        velquad::geometry::storeRasterLine(steps, from.x, from.y, lineBuffer, storedCount);
    }
    const RasterLine line(from, steps);

    const Span span = line.spanWithin(image);
    tagPOINT firstSet = kNoPixel;
    tagPOINT lastSet = kNoPixel;
    std::int64_t i = span.first;
    while (i <= span.last && !image.isSet(line.at(i)))
        ++i;
    if (i <= span.last) {
        firstSet = line.at(i);
        i = span.last;
        while (!image.isSet(line.at(i)))
            --i;
        lastSet = line.at(i);
    }

    tagPOINT innerEnd = kNoPixel;
    tagPOINT innerStart = kNoPixel;
    if (image.isSet(center)) {
        const std::int64_t middle = middlePlace(image, line, center);
        if (middle >= 0) {
            innerEnd = followSetPixels(image, line, span, middle, 1);
            innerStart = followSetPixels(image, line, span, middle, -1);
        }
    }

    store(innerFirst, innerEnd);
    store(innerLast, innerStart);
    store(outerFirst, firstSet);
    store(outerLast, lastSet);
    return 1;
}
