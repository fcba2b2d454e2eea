// Running moments of arrays, for other functions of the array room.
#ifndef VELQUAD_ARRAY_RANGE_H
#define VELQUAD_ARRAY_RANGE_H

#include "velquad/statistics.h"

namespace velquad::array {

/// Adds one channel of an array of a type from 1 to 8 to running moments, row by row.
void addChannel(const void* rows, unsigned int type, unsigned int width, unsigned int height,
                unsigned int channels, unsigned int channel, CMatMomentEvaluator& evaluator);

}  // namespace velquad::array

#endif  // VELQUAD_ARRAY_RANGE_H
