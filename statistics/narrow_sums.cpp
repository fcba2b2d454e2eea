// The sums over integers of 8 and 16 bits for the instructions that this machine has.
#include "statistics/narrow_sums.h"

#include "frame/kernels.h"

namespace velquad::statistics {

VELQUAD_DEFINE_KERNELS(NarrowKernels, kNarrowKernels, narrowKernels)

}  // namespace velquad::statistics
