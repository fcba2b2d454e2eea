/// @file
/// Polygons: outlines of integer points, owned as records in movable blocks, and the operations on them.
///
/// **Three forms.** A polygon crosses the boundary in one of three forms, and each function takes exactly
/// one:
///   - *Handle*: a movable block (`GlobalLock`, `GlobalUnlock`) that holds a `tagPOLY`. A handle owns its
///     polygon. Functions give handles out unlocked, and the receiver ends them with `polyFree`.
///   - *Locked record*: the address of a `tagPOLY` that the caller keeps locked.
///   - *Point array and count*: the address of the first point and a separate count. Nearly all operations
///     take this form. They never touch the header of a record: a function that shortens the polygon returns
///     the new count, and the caller stores it. What stands behind a shortened count is unspecified.
///
/// @code
/// void* handle = polyCopy(outline, n, 1);
/// tagPOLY* polygon = static_cast<tagPOLY*>(GlobalLock(handle));
/// polygon->count = polyRemoveDoublePoints(polygon->points, polygon->count);
/// GlobalUnlock(handle);
/// polyFree(handle);
/// @endcode
///
/// **Closed or open.** A record has no flag for it. A closed polygon stores its first point once more as its
/// last one and counts it. Functions tell closed from open in two ways, which are not interchangeable:
///   - by *looking*: the first point equals the last one, both integers exactly (`polyGetType`, `polyCopy`);
///   - by a *closed flag* of the caller, 0 for an open chain, non-zero for a closed one. Whether the closing
///     point must be stored then is told at each function.
///
/// **Positions.** A place on an outline is an edge index and a fraction of that edge: 0 is the vertex
/// `index`, 1 the vertex behind it.
///
/// **Results.** No function reports an error text. A null handle or a result of 0 tells of failure; flags are
/// tested for zero or non-zero. Coordinates are pixels, y downwards, and wrap around at 32 bits.
/// **Threads.** No state is kept between calls. Different polygons may be worked on side by side.
#ifndef VELQUAD_POLYGON_H
#define VELQUAD_POLYGON_H

#include "velquad/types.h"

extern "C" {

/// @name Records
/// @{

/// Allocates a polygon with room for `count` points, or for one when `count` is 0.
/// @return the unlocked handle of a zero-filled block; null when there is no memory. The `count` field of the
///         record is 0: the caller sets it when the points are filled in.
VELQUAD_API void* polyAlloc(DWORD count);

/// Releases a polygon, locked or not.
/// @return 1, or 0 for a null handle.
VELQUAD_API int polyFree(void* handle);

/// Tells whether a point array can hold a polygon.
/// @return 0 for a null pointer, a count of 0 or a count of 0xFFFFFFFF; else 1. No point is read.
VELQUAD_API int polyIsValid(const tagPOINT* points, DWORD count);

/// The size of a record.
/// @return 8 * count + 4, which wraps around at 32 bits from 536870912 points on.
VELQUAD_API DWORD polyGetByteCount(DWORD count);

/// Makes a polygon of one point.
/// @return its unlocked handle; null for a null pointer or when there is no memory.
VELQUAD_API void* polyConvertFromPoint(const tagPOINT* point);

/// Copies a polygon.
/// @param close  non-zero: the copy is closed. A first point is added behind the last one unless the two are
///               equal already, so that a single point is never doubled.
/// @return the unlocked handle of a record with `count` or `count + 1` points; null when `points` is null,
///         `count` is 0 or there is no memory.
VELQUAD_API void* polyCopy(const tagPOINT* points, DWORD count, int close);

/// Tells what the points describe, by looking at the first and the last one.
/// @return 0 for a single point, 1 for an open chain, 2 for a closed polygon; two equal points are a closed
///         polygon. 0 also when `points` is null or `count` is 0.
VELQUAD_API int polyGetType(const tagPOINT* points, DWORD count);
/// @}

/// @name Coordinates
/// @{

/// Moves all points in place. Sums wrap around.
/// @return 1; 0 when `points` is null or `count` is 0.
VELQUAD_API int polyTranslate(tagPOINT* points, DWORD count, int dx, int dy);

/// Multiplies all coordinates in place. Products are truncated towards zero, not rounded: 3 and -3 by 0.5
/// give 1 and -1. A product beyond 32 bits or a not-a-number gives -2147483648.
/// @return 1; 0 when `points` is null or `count` is 0.
VELQUAD_API int polyScale(tagPOINT* points, DWORD count, double scaleX, double scaleY);

/// Rounds as all functions of this family do that compute in doubles and store integers, `polyScale`
/// excepted: 0.5 is added to a value above 0 and subtracted from any other, and the sum is truncated. Halves
/// go away from zero. The sum itself is rounded to a double, so that the largest double below 0.5 gives 1.
/// @return the integer; -2147483648 beyond 32 bits and for a not-a-number.
VELQUAD_API int polyMakeInt(double value);

/// The smallest upright rectangle around all points.
/// @param rect  receives the smallest and largest coordinates, `right` and `bottom` inclusive. For a count of
///              0 it is the empty rectangle: left and top 2147483647, right and bottom -2147483648. May be
///              null.
VELQUAD_API void polyGetBoundingRect(const tagPOINT* points, DWORD count, RECT* rect);
/// @}

/// @name Positions
/// @{

/// The point at a position.
///   (1) |fraction| < 1e-7 gives the vertex itself, on every kind of outline.
///   (2) Closed: the closing point is stored and counted. Index count - 2 leads to vertex 0, and the closing
///       point itself to vertex 1.
///   (3) Open: nothing lies behind the last point, and a positive fraction fails there. A negative one is
///       taken on the edge from the last point to the first, and so leads away from the first point.
///   (4) The fraction is not limited to [0, 1]. The difference of the two vertices wraps around at 32 bits.
/// @param closed  non-zero for a closed outline that stores its closing point.
/// @param out     receives (next - vertex) * fraction + vertex; left alone on failure.
/// @return 1; 0 when `points` or `out` is null, `index` is not below `count`, by (3), and on a closed outline
///         of a single point unless (1) holds.
VELQUAD_API int polyCalcPoint(const tagPOINT* points, DWORD count, int closed, DWORD index, double fraction,
                              tagPOINT2D* out);

/// Moves a position onto a vertex that lies nearer to it than `tolerance`; the start of its edge is tried
/// first, then the end.
/// @param closed     non-zero for a closed outline that stores its closing point.
/// @param index      in: edge of the position. Out: edge that starts at the vertex, wrapped for a closed
///                   outline.
/// @param fraction   in: fraction of the edge. Out: 0 when the position moved, and when it was below 1e-7.
/// @param tolerance  strict: a vertex at exactly this distance does not attract, and 0 attracts nothing.
/// @param out        optional. Receives the point of the resulting position, moved or not; the largest double
///                   in both coordinates when the position does not exist, as on any position at the last
///                   point of an open chain.
/// @return 1 when the position moved onto a vertex. 0 when it stayed, when it stood on its vertex already
///         (|fraction| < 1e-7), when it does not exist, and for a null `points`, `index` or `fraction`, which
///         leaves `out` alone.
VELQUAD_API int polyReplacePointByVertex(const tagPOINT* points, DWORD count, int closed, DWORD* index,
                                         double* fraction, double tolerance, tagPOINT2D* out);
/// @}

/// @name Thinning
/// @{

/// Thins a polygon in place: keeps the points at the multiples of `step`, and the last point in any case.
/// @param step  1 keeps all points; 0 acts as 1.
/// @return the new count; 0 when `count` is 0 or `points` is null.
VELQUAD_API DWORD polyElapsePoints(tagPOINT* points, DWORD count, DWORD step);

/// Thins the polygon of a handle with a step of `distance` rounded to an integer, halves away from zero, and
/// cuts its block to size. The handle must not be locked. A distance that is not a number rounds to 0.
/// @return the handle from now on, which may differ from the one passed in. The same handle, untouched, for a
///         step below 2. Null for a null handle; null, with the polygon freed, when it cannot be locked; null
///         when the block cannot be cut, in which case the handle passed in lives on and holds the thinned
///         polygon.
VELQUAD_API void* polyApplyPointDistance(void* handle, double distance);

/// Removes each point that equals the one before, in place. The last and the first point are not compared, so
/// a closing point stays.
/// @return the new count; `count` when it is below 2 or `points` is null.
/// @par Cost  O(count), no allocation.
VELQUAD_API DWORD polyRemoveDoublePoints(tagPOINT* points, DWORD count);

/// Removes each point that lies nearer than `tolerance` to the point kept last, in place. A run of points
/// thus collapses within a circle around the kept point, however small its steps are. The last point has no
/// privilege: a closing point can go.
/// @param tolerance  strict: tolerance^2 > squared distance removes, so 0 removes nothing, not even repeats.
/// @return the new count; `count` when it is below 2 or `points` is null.
/// @par Cost  O(count), no allocation.
VELQUAD_API DWORD polyRemoveDoublePointsEx(tagPOINT* points, DWORD count, double tolerance);
/// @}

}  // extern "C"

#endif  // VELQUAD_POLYGON_H
