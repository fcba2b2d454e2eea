/// @file
/// All public headers of the library.
#ifndef VELQUAD_VELQUAD_H
#define VELQUAD_VELQUAD_H

#include "velquad/array.h"
#include "velquad/containers.h"
#include "velquad/curves.h"
#include "velquad/fitting.h"
#include "velquad/frame.h"
#include "velquad/framework.h"
#include "velquad/geometry.h"
#include "velquad/platform.h"
#include "velquad/polygon.h"
#include "velquad/signal.h"
#include "velquad/statistics.h"
#include "velquad/transform.h"
#include "velquad/triangulation.h"
#include "velquad/types.h"

#endif  // VELQUAD_VELQUAD_H
