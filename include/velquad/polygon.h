/// @file
#ifndef VELQUAD_POLYGON_H
#define VELQUAD_POLYGON_H

#include "velquad/types.h"

extern "C" {}  // extern "C"

#endif  // VELQUAD_POLYGON_H
