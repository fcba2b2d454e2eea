/// @file
/// From an object's pixels to its outline.
#ifndef OUTLINE_TRACE_H
#define OUTLINE_TRACE_H

#include <velquad/types.h>

#include <vector>

#include "threshold.h"

namespace examples::outline {

/// Walks once around an object from boundary pixel to boundary pixel, over sides and corners.
///
/// The way is that of Moore's neighbourhood tracing: at each pixel the eight neighbours are looked at in
/// clockwise order (as seen on the screen), beginning behind the ground pixel that was looked at last. The walk
/// ends by Jacob's criterion, not on the first return to the start, for an object may run through its first
/// pixel more than once, but when the first step from there is about to be made again.
///
/// @return the pixels passed, in order. The first one stands at the end again, as closed polygons have it in
///         the library; a lone pixel is one point. Where the object is one pixel thin, pixels occur twice.
std::vector<tagPOINT> traceOutline(const Objects& objects, const Region& region);

}  // namespace examples::outline

#endif  // OUTLINE_TRACE_H
