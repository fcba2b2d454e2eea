// The correlation kernel for processors with AVX-512.
#define VELQUAD_KERNEL correlateAvx512
#define VELQUAD_LANES 8
#include "signal/correlation_body.inc"
