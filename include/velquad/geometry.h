/// @file
#ifndef VELQUAD_GEOMETRY_H
#define VELQUAD_GEOMETRY_H

#include "velquad/types.h"

extern "C" {}  // extern "C"

#endif  // VELQUAD_GEOMETRY_H
