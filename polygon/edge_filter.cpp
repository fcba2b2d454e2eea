// The choice of the kernels that find runs of edges beside a ray.
#include "frame/kernels.h"
#include "polygon/edge_side_kernels.h"

namespace velquad::polygon {

VELQUAD_DEFINE_KERNELS(EdgeSideKernels, kEdgeSideKernels, edgeSideKernels)

}  // namespace velquad::polygon
