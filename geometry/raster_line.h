// The pixels of a straight line, for the exported raster lines and for the rooms that fill buffers with them.
//
// J. E. Bresenham, "Algorithm for computer control of a digital plotter", IBM Systems Journal 4 (1965): one step
// along the major axis per pixel; an integer error term, whose sign alone counts, tells when the minor axis steps
// too. The term stays within 32 bits for lines of up to 2^30 steps; beyond that it wraps around, which bends the
// line but still gives the told number of pixels.
#ifndef VELQUAD_GEOMETRY_RASTER_LINE_H
#define VELQUAD_GEOMETRY_RASTER_LINE_H

#include <cstdint>

#include "frame/convert.h"
#include "velquad/types.h"

namespace velquad::geometry {

using frame::Int32;

/// How a line walks from pixel to pixel. Of equal extents, x is the major one.
struct RasterSteps {
    Int32 diagonalX;      ///< The step when the minor axis moves too: -1 or 1.
    Int32 diagonalY;      ///< -1 or 1.
    Int32 straightX;      ///< The step along the major axis alone.
    Int32 straightY;      ///< One of the two is 0.
    Int32 major;          ///< Steps from the first pixel to the last.
    Int32 minor;          ///< Diagonal steps among them.
    Int32 straightError;  ///< What a straight step adds to the error term.
    Int32 diagonalError;  ///< What a diagonal step adds to it.
    Int32 error;          ///< The error term at the first pixel; below 0, the next step is straight.
};

/// Differences and extents wrap around at 32 bits; an extent of exactly 2^31 stays negative and is never the
/// major one beside an extent that fits.
constexpr RasterSteps rasterSteps(Int32 x0, Int32 y0, Int32 x1, Int32 y1) {
    const Int32 dx = frame::wrapSub(x1, x0);
    const Int32 dy = frame::wrapSub(y1, y0);
    const Int32 extentX = frame::wrapAbs(dx);
    const Int32 extentY = frame::wrapAbs(dy);
    const bool isFlat = extentX >= extentY;

    RasterSteps steps{};
    steps.diagonalX = dx < 0 ? -1 : 1;
    steps.diagonalY = dy < 0 ? -1 : 1;
    steps.straightX = isFlat ? steps.diagonalX : 0;
    steps.straightY = isFlat ? 0 : steps.diagonalY;
    steps.major = isFlat ? extentX : extentY;
    steps.minor = isFlat ? extentY : extentX;
    steps.straightError = frame::wrapMul(2, steps.minor);
    steps.diagonalError = frame::wrapMul(2, frame::wrapSub(steps.minor, steps.major));
    steps.error = frame::wrapSub(steps.straightError, steps.major);
    return steps;
}

/// Pixels of a line, both ends included.
constexpr std::uint32_t rasterPixelCount(const RasterSteps& steps) {
    return static_cast<std::uint32_t>(steps.major) + 1U;
}

/// A place on a line. It does not know the line's end.
struct RasterCursor {
    Int32 x;
    Int32 y;
    Int32 error;  ///< `RasterSteps::error` at the first pixel.

    /// Goes on to the next pixel.
    constexpr void advance(const RasterSteps& steps) {
        // Selections, not branches: the sequence of steps is as good as random to a branch predictor.
        const bool isStraight = error < 0;
        x = frame::wrapAdd(x, isStraight ? steps.straightX : steps.diagonalX);
        y = frame::wrapAdd(y, isStraight ? steps.straightY : steps.diagonalY);
        error = isStraight ? frame::wrapAdd(error, steps.straightError)
                           : frame::wrapAdd(error, steps.diagonalError);
    }
};

/// Stores the first `count` pixels of the line that begins at (x, y).
inline void storeRasterLine(const RasterSteps& steps, Int32 x, Int32 y, tagPOINT* points,
                            std::uint32_t count) {
    RasterCursor cursor{x, y, steps.error};
    for (std::uint32_t i = 0; i < count; ++i) {
        points[i].x = cursor.x;
        points[i].y = cursor.y;
        cursor.advance(steps);
    }
}

}  // namespace velquad::geometry

#endif  // VELQUAD_GEOMETRY_RASTER_LINE_H
