// The blur of whole rows: what CGaussianBlurFilter3D does line by line, done for all lines of a row side by
// side.
#ifndef VELQUAD_ARRAY_GAUSSIAN_ROWS_H
#define VELQUAD_ARRAY_GAUSSIAN_ROWS_H

#include "array/gaussian_filter.h"

namespace velquad::array {

/// Runs an attached filter by rows. Results, and number and order of the callback's calls, are those of the
/// run by lines; when the callback stops the run, exactly the lines before that call are filtered.
/// @return the result of the run in `result`; false when it has to be done by lines, for a volume whose rows
///         overlap, steps that do not fit the rows, and without memory. Nothing was done then.
bool runByRows(const CGaussianBlurFilter3D& filter, int& result);

}  // namespace velquad::array

#endif  // VELQUAD_ARRAY_GAUSSIAN_ROWS_H
