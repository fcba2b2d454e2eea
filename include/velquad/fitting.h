/// @file
/// Linear solvers, polynomials, lens distortion, global alignment, rationals.
#ifndef VELQUAD_FITTING_H
#define VELQUAD_FITTING_H

#include "velquad/platform.h"
#include "velquad/types.h"

#endif  // VELQUAD_FITTING_H
