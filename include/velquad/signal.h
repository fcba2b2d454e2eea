/// @file
/// Transforms, smoothing, deconvolution and correlation of sampled curves.
#ifndef VELQUAD_SIGNAL_H
#define VELQUAD_SIGNAL_H

#include "velquad/platform.h"
#include "velquad/types.h"

#endif  // VELQUAD_SIGNAL_H
