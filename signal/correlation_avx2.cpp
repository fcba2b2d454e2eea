// The correlation kernel for processors with AVX2.
#define VELQUAD_KERNEL correlateAvx2
#define VELQUAD_LANES 4
#include "signal/correlation_body.inc"
