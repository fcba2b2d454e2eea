/// @file
/// Delaunay triangulation and Voronoi maps.
#ifndef VELQUAD_TRIANGULATION_H
#define VELQUAD_TRIANGULATION_H

#include "velquad/platform.h"
#include "velquad/types.h"

#endif  // VELQUAD_TRIANGULATION_H
