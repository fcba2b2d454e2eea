/// @file
/// Serialisable arrays and matrices of doubles.
#ifndef VELQUAD_CONTAINERS_H
#define VELQUAD_CONTAINERS_H

#include "velquad/platform.h"
#include "velquad/types.h"

#endif  // VELQUAD_CONTAINERS_H
