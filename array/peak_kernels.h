// Inner loops of the search for a peak.
#ifndef VELQUAD_ARRAY_PEAK_KERNELS_H
#define VELQUAD_ARRAY_PEAK_KERNELS_H

#include <cstddef>
#include <cstdint>

namespace velquad::array {

struct PeakKernels {
    /// sums[i] += entering[i] - leaving[i], for rows of 16-bit words at any address; a null row counts as zeros.
    void (*slide)(std::uint64_t* sums, const void* entering, const void* leaving, std::size_t count);
};

const PeakKernels& peakKernels();

}  // namespace velquad::array

#endif  // VELQUAD_ARRAY_PEAK_KERNELS_H
