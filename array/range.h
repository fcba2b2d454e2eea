// Minimum and maximum as other functions of the array room need them.
#ifndef VELQUAD_ARRAY_RANGE_H
#define VELQUAD_ARRAY_RANGE_H

namespace velquad::array {

/// The range of an array of floats as `matGetRangeOfArray2v` finds it.
/// @return false for an array without elements, with nothing stored.
bool rangeOfFloats(const void* rows, unsigned int width, unsigned int height, double& min, double& max);

}  // namespace velquad::array

#endif  // VELQUAD_ARRAY_RANGE_H
