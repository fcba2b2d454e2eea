// The streamed copies for the instructions that this machine has.
#include "array/stream_kernels.h"
#include "frame/kernels.h"

namespace velquad::array {

VELQUAD_DEFINE_KERNELS(StreamKernels, kStreamKernels, streamKernels)

}  // namespace velquad::array
