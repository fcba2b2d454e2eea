// Inner loops over the elements of a row: conversion to and from floats, fill, limits, linear map.
#ifndef VELQUAD_ARRAY_ELEMENT_KERNELS_H
#define VELQUAD_ARRAY_ELEMENT_KERNELS_H

#include <cstddef>

#include "array/element.h"

namespace velquad::array {

inline constexpr std::size_t kTypeCodes = 11;

/// The bounds of a clamp as elements: the first values of `high` and `low`.
struct ClampBounds {
    unsigned char high[8];
    unsigned char low[8];
};

/// e -> (e + offset) * scale + bias.
struct LinearMap {
    double offset;
    double scale;
    double bias;
    /// Every result lies well within 32 bits, so that rounding need not look at its range.
    bool isNarrow;
};

/// How floats are normalised: (f - min) * scale.
struct Normalisation {
    double min;
    double scale;
};

/// Each table is indexed by type code; an entry is null where there is no such loop. Counts are elements.
struct ElementKernels {
    void (*toFloat[kTypeCodes])(const void* source, void* destination, std::size_t count);
    /// Pixels by their largest byte.
    void (*largestToFloat[kTypeCodes])(const void* source, void* destination, std::size_t count);
    void (*fromFloat[kTypeCodes])(const void* source, void* destination, std::size_t count,
                                  const Normalisation& normalisation);
    /// Fills with the element at `element`.
    void (*fill[kTypeCodes])(void* row, std::size_t count, const void* element);
    void (*clamp[kTypeCodes])(void* row, std::size_t count, const ClampBounds& bounds);
    void (*transform[kTypeCodes])(void* row, std::size_t count, const LinearMap& map);
};

const ElementKernels& elementKernels();

}  // namespace velquad::array

#endif  // VELQUAD_ARRAY_ELEMENT_KERNELS_H
