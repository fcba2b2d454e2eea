/// @file
#ifndef VELQUAD_CURVES_H
#define VELQUAD_CURVES_H

#include "velquad/types.h"

extern "C" {}  // extern "C"

#endif  // VELQUAD_CURVES_H
