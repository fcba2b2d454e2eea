// Minimum and maximum as other functions of the array room need them.
#ifndef VELQUAD_ARRAY_RANGE_H
#define VELQUAD_ARRAY_RANGE_H

#include "velquad/statistics.h"

namespace velquad::array {

/// Adds one channel of an array of a type from 1 to 8 to running moments, row by row.
void addChannel(const void* rows, unsigned int type, unsigned int width, unsigned int height,
                unsigned int channels, unsigned int channel, CMatMomentEvaluator& evaluator);

/// The range of an array of floats as `matGetRangeOfArray2v` finds it.
/// @return false for an array without elements, with nothing stored.
bool rangeOfFloats(const void* rows, unsigned int width, unsigned int height, double& min, double& max);

}  // namespace velquad::array

#endif  // VELQUAD_ARRAY_RANGE_H
