/// @file
/// The class framework that the exported classes stand on: the real one when its headers are already included,
/// otherwise the same few names declared here.
#ifndef VELQUAD_FRAMEWORK_H
#define VELQUAD_FRAMEWORK_H

#include "velquad/platform.h"

#endif  // VELQUAD_FRAMEWORK_H
