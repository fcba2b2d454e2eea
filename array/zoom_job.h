// One zoom: its axes, its rectangles of cells, and the workers for a rectangle.
#ifndef VELQUAD_ARRAY_ZOOM_JOB_H
#define VELQUAD_ARRAY_ZOOM_JOB_H

#include <cmath>
#include <cstddef>

#include "array/array_2d.h"

namespace velquad::array {

/// A source must have this much more than the samples that a position needs.
inline constexpr double kNeighbourMargin = 1e-7;

/// Inclusive on all sides; empty when right < left or bottom < top.
struct CellRect {
    int left = 0;
    int top = 0;
    int right = -1;
    int bottom = -1;

    bool isEmpty() const { return right < left || bottom < top; }
};

/// One axis of a zoom.
struct Axis {
    unsigned int sourceSize;
    unsigned int destinationSize;
    double scale;

    Axis(unsigned int source, unsigned int destination)
        : sourceSize(source),
          destinationSize(destination),
          scale(static_cast<double>(destination) / static_cast<double>(source)) {}

    double position(unsigned int cell) const { return static_cast<double>(cell) / scale; }

    /// The first cell that has a sample before its position; 0 when there is none.
    int firstWithSampleBefore() const {
        for (unsigned int cell = 0; cell < destinationSize; ++cell) {
            if (std::trunc(position(cell)) > 0.0) return static_cast<int>(cell);
        }
        return 0;
    }

    /// The last cell that has `needed` samples behind its position; -1 when there is none.
    int lastWithSamplesBehind(double needed) const {
        for (unsigned int cell = destinationSize; cell-- > 0;) {
            if (sourceSize > std::trunc(position(cell)) + needed + kNeighbourMargin)
                return static_cast<int>(cell);
        }
        return -1;
    }

    int lastCell() const { return static_cast<int>(destinationSize - 1); }

    /// The sample nearest to a cell's position.
    unsigned int nearestSample(unsigned int cell) const {
        const double sample = std::trunc(position(cell) + 0.5);
        return sample < sourceSize - 1 ? static_cast<unsigned int>(sample) : sourceSize - 1;
    }
};

/// A whole number and the way to the next one.
struct Position {
    unsigned int index;
    double fraction;

    Position(const Axis& axis, unsigned int cell) {
        const double position = axis.position(cell);
        index = static_cast<unsigned int>(position);
        fraction = position - index;
    }
};

struct Zoom {
    Axis x;
    Axis y;
    const void* sourceRows;
    const void* destinationRows;
    std::size_t elementSize;        ///< Bytes of an element.
    unsigned int valueType;         ///< Type code of the values of an element.
    unsigned int valuesPerElement;  ///< 3 or 4 for pixels of bytes, else 1.
    bool isStreamed;                ///< The destination is written past the caches.

    unsigned char* destination(unsigned int row, unsigned int column) const {
        return rowAt(destinationRows, row) + column * elementSize;
    }
};

/// @name Workers
/// Fill the cells of a rectangle. The bilinear and the cubic one need all samples around them.
/// @{
void zoomNearest(const Zoom& zoom, const CellRect& rect);
void zoomBilinear(const Zoom& zoom, const CellRect& rect);
void zoomCubic(const Zoom& zoom, const CellRect& rect);
/// @}

}  // namespace velquad::array

#endif  // VELQUAD_ARRAY_ZOOM_JOB_H
