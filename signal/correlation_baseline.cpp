// The correlation kernel for every x86-64 processor.
#define VELQUAD_KERNEL correlateBaseline
#define VELQUAD_LANES 2
#include "signal/correlation_body.inc"
