// Inner loops of the search for a peak. Compiled for several instruction sets; see frame/kernels.h for what may be
// used here.
#include "array/peak_kernels.h"

#include "array/element.h"

namespace velquad::array::VELQUAD_KERNEL_LEVEL {

namespace {

void slide(std::uint64_t* sums, const void* entering, const void* leaving, std::size_t count) {
    if (entering != nullptr && leaving != nullptr) {
        for (std::size_t i = 0; i < count; ++i) {
            sums[i] += loadElement<std::uint16_t>(entering, i);
            sums[i] -= loadElement<std::uint16_t>(leaving, i);
        }
    } else if (entering != nullptr) {
        for (std::size_t i = 0; i < count; ++i)
            sums[i] += loadElement<std::uint16_t>(entering, i);
    } else if (leaving != nullptr) {
        for (std::size_t i = 0; i < count; ++i)
            sums[i] -= loadElement<std::uint16_t>(leaving, i);
    }
}

}  // namespace

extern const PeakKernels kPeakKernels;
const PeakKernels kPeakKernels = {slide};

}  // namespace velquad::array::VELQUAD_KERNEL_LEVEL
