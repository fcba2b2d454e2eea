/// @file
/// Running evaluators, regression lines and planes, robust line fits.
#ifndef VELQUAD_STATISTICS_H
#define VELQUAD_STATISTICS_H

#include "velquad/platform.h"
#include "velquad/types.h"

#endif  // VELQUAD_STATISTICS_H
