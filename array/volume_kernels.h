// The loops of conversions and blur over runs of elements, compiled for several instruction sets.
#ifndef VELQUAD_ARRAY_VOLUME_KERNELS_H
#define VELQUAD_ARRAY_VOLUME_KERNELS_H

#include <cstddef>

namespace velquad::array {

/// Element types that volumes are computed in, codes 1 to 8. Tables of loops are indexed by code - 1.
inline constexpr unsigned int kScalarTypes = 8;

struct VolumeKernels {
    using Convert = void (*)(const void* from, void* to, std::size_t count);

    /// Elements to doubles, floats of double range limited to floats. All runs may begin at any address.
    Convert toDouble[kScalarTypes];
    Convert toFloat[kScalarTypes];
    /// Doubles and floats to elements, rounded and limited; see `roundedTo` with the wide int32 rounder.
    Convert fromDouble[kScalarTypes];
    Convert fromFloat[kScalarTypes];

    /// to[i] = 0.0 + weights[0] rows[0][i] + weights[1] rows[1][i] + ..., summed from left to right.
    void (*weightedSum)(const double* const* rows, const double* weights, std::size_t rowCount, double* to,
                        std::size_t count);
};

/// The loops for the instruction set in use.
const VolumeKernels& volumeKernels();

}  // namespace velquad::array

#endif  // VELQUAD_ARRAY_VOLUME_KERNELS_H
