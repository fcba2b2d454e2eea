/// @file
/// Polygons: outlines of integer points, owned as records in movable blocks, and the operations on them; and the same
/// operations on outlines of doubles, the functions with the prefix `poly2d`.
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
/// **Results.** No function reports an error text. A null handle or a result of 0 tells of failure where the function
/// itself says nothing else; flags are tested for zero or non-zero. Coordinates are pixels, y downwards, and wrap
/// around at 32 bits.
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

/// @name Membership
/// @{

/// Tells whether a point lies inside an outline. The outline counts as closed, whether or not closing points are
/// stored; any number of them is left out.
///   (1) On the outline, vertices included, the answer is -1. Every non-zero answer thus means "not outside".
///   (2) By the even-odd rule a point that the outline winds round twice is outside.
///   (3) A flat outline, whose vertices lie on one line with the point, has no inside: -1 at a vertex, 0 between two
///       vertices as anywhere else.
///   (4) Differences and products of coordinates wrap around at 32 bits, which no outline notices whose extent, with
///       the point, is at most 32767 pixels.
/// Distances along the ray and along an edge are compared with a tolerance of 1e-7, relative to their length. The ray is
/// aimed at a vertex, so a point off an edge by less than 1e-7 of the way to that vertex counts as on the edge.
/// @param point  the point asked about. Not null unless `count` is 0.
/// @return 1 inside, 0 outside or for a count of 0, -1 on the outline.
/// @par Cost    O(count), no allocation.
/// @par Source  Crossing count: M. Shimrat, Algorithm 112, Communications of the ACM 5, 1962.
VELQUAD_API int polyIsPointInside(const tagPOINT* points, DWORD count, const tagPOINT* point);

/// Tells how two outlines lie to one another.
///   (1) Outlines meet when a segment of one has contact with a segment of the other; touching is enough. Edges
///       without length are left out, so a stored closing point does no harm.
///   (2) Otherwise one outline lies inside the other when its first point does; only a closed outline has an inside.
///       Where both hold, B inside A is reported.
/// @param closedA, closedB  non-zero: an edge leads from the last point to the first. 0: an open chain.
/// @return 0 apart, 1 the outlines meet, 2 B lies inside A, 3 A lies inside B. An outline without points is apart
///         from everything.
/// @par Cost  O(n log n) for outlines of n points in all that lie apart, are nested or run side by side; O(n^2) when
///            the boxes of most edges overlap. No allocation.
VELQUAD_API int polyGetRelativePosition(const tagPOINT* pointsA, DWORD countA, int closedA,
                                        const tagPOINT* pointsB, DWORD countB, int closedB);
/// @}

/// @name Measures
/// @{

/// The distance of a point from an outline. The foot on an edge may lie beyond its ends by 1e-7 of its length.
/// Coordinate differences and their products wrap around at 32 bits.
/// @param closed     non-zero: the edge from the last point to the first counts too, unless the two are equal.
/// @param point      the point asked about. Not null unless `count` is 0.
/// @param isSquared  non-zero: the result is the squared distance.
/// @param nearest    optional; receives the nearest point of the outline.
/// @param index      optional; receives the first point of the nearest edge, the lowest one among equal distances.
/// @param fraction   optional; receives the place on that edge, 0 at its start.
/// @return the distance. A single point is measured to itself, with index and fraction 0. Without any point the
///         result and both coordinates of `nearest` are the largest double, index and fraction 0.
/// @par Cost  O(count), no allocation.
VELQUAD_API double polyCalcDistance(const tagPOINT* points, DWORD count, int closed, const tagPOINT* point,
                                    int isSquared, tagPOINT2D* nearest, DWORD* index, double* fraction);

/// The centre of gravity of the area of an outline, always taken as closed.
/// The outline is fanned out from its first point, and the centre of each triangle is truncated to integers before it
/// is weighted with the triangle's area, so the result is off by up to a pixel, and by more for concave outlines,
/// whose triangles partly cancel. Sums of three coordinates and the products of the triangle areas wrap around at
/// 32 bits.
/// @param out  optional. For a count of 1 it receives the point and for a count of 2 the midpoint, truncated to
///             integers, although the result is 0. It is left alone when there is no area.
/// @return 1 when the outline has an area; 0 for fewer than three points and for an area below 1e-40.
VELQUAD_API int polyCalcCenterOfGravity(const tagPOINT* points, DWORD count, tagPOINT2D* out);

/// The signed area of an outline, always taken as closed: positive for counter-clockwise in mathematical axes.
/// Reversing the order of the points changes the sign and nothing else. The triangles are fanned out from the rounded
/// mean of the points; the area is exact while twice the area of each of them fits 32 bits.
/// @return the area in square pixels, a multiple of 0.5; 0 for fewer than two points.
VELQUAD_API double polyCalcAreaExact(const tagPOINT* points, DWORD count);

/// The length of an outline: the sum of the lengths of its edges, in order.
/// @param closed     non-zero: the edge from the last point to the first is added, whatever it measures; a stored
///                   closing point makes it 0.
/// @param isSquared  non-zero: the squares of the edge lengths are summed.
/// @return the length; 0 for fewer than two points.
VELQUAD_API double polyCalcLength(const tagPOINT* points, DWORD count, int closed, int isSquared);
/// @}

/// @name Direction
/// @{

/// Fits a least-squares line through the points around a vertex. A stored closing point is left out when there are
/// more than two points, and the neighbourhood wraps round.
/// The coordinate with the greater variance becomes the independent one, x only when its variance is strictly greater.
/// @param index        the vertex; taken modulo the number of points.
/// @param halfWidth    how many points on each side belong to the neighbourhood; at most the number of points for
///                     those before the vertex. A point counts as often as the neighbourhood meets it.
/// @param selection    which points enter: bit 0 those before the vertex, bit 1 the vertex, bit 2 those behind it.
/// @param slope        optional; receives the slope of dependent over independent coordinate.
/// @param intercept    optional; receives the dependent coordinate at 0.
/// @param orientation  optional; receives 1 for y over x, 0 for x over y.
/// @return 1. 0, with nothing stored, for fewer than two selected points or when all of them coincide.
VELQUAD_API int polyCalcLocalRegressionLine(const tagPOINT* points, DWORD count, DWORD index, DWORD halfWidth,
                                            DWORD selection, double* slope, double* intercept,
                                            DWORD* orientation);

/// The direction in which an outline follows the line of `polyCalcLocalRegressionLine` around a vertex: from the
/// extreme point of the independent coordinate that the outline meets first to the one that it meets later, both put
/// onto the line. It is not normalised.
/// @param halfWidth  how many points on each side are looked at; a negative one gives the null vector.
/// @param xAxis      the orientation of the line: non-zero for y over x.
/// @param out        receives the vector; the null vector when there are no points.
/// @return 1 always.
VELQUAD_API int polyCalcLocalDirection(const tagPOINT* points, DWORD count, DWORD index, int halfWidth,
                                       double slope, double intercept, int xAxis, tagPOINT2D* out);

/// Tells whether an outline, always taken as closed, runs counter-clockwise in mathematical axes: its turning angles
/// sum up to more than 0. Repeated points are left out; a reversal turns by half a turn to the left.
/// @return 1 or 0; 0 also for a null pointer, a count of 0 or 0xFFFFFFFF, and when there is no memory.
/// @par Cost  O(count), one block of memory for a closed copy.
VELQUAD_API int polyIsCCW(const tagPOINT* points, DWORD count);

/// Gives an outline the wanted sense of rotation, as `polyIsCCW` tells it, by reversing the points where needed.
/// @param wanted  non-zero for counter-clockwise, 0 for the other sense.
/// @return 1 always.
VELQUAD_API int polyMakeCCW(tagPOINT* points, DWORD count, int wanted);

/// Reverses the order of the points in place; a closing point takes part.
/// @return 1, or 0 for a null pointer.
VELQUAD_API int polyReverseOrder(tagPOINT* points, DWORD count);

/// Tells whether two outlines, given as locked records, run the same way. Closed ones do when `polyIsCCW` says the
/// same of both. Open ones do when each begins strictly nearer to the other's beginning than to the other's end.
/// @return 1 or 0; 0 also for a null record, and for an open chain without points.
VELQUAD_API int polyCompareDirections(const tagPOLY* a, const tagPOLY* b, int closed);
/// @}

/// @name Lists of positions
/// @{

/// Compares two positions: by index, then by fraction.
/// @return -1 when the first comes first, 1 when the second does, 0 for one index and fractions nearer than 1e-7.
///         Equality is not transitive. 1 at one index when a fraction is not a number.
VELQUAD_API int polyComparePositions(DWORD index1, double fraction1, DWORD index2, double fraction2);

/// Sorts positions in place into ascending order of `polyComparePositions`, by a bubble sort whose steps are part of
/// the result, as equality is not transitive.
/// @param removeEqual  non-zero: of two neighbours that compare equal on the way, the first is removed.
/// @return the new count; `count` itself without removal. What stands behind it is unspecified.
/// @par Cost  O(count) for each place by which an entry has to move to the front: O(count^2) at worst, one pass when
///            the positions are sorted.
VELQUAD_API DWORD polySortPositions(tagPOLY_POSITION* positions, DWORD count, int removeEqual);

/// Finds the first position that lies at a point. The point of each position is rounded as by `polyMakeInt` before it
/// is compared; a position that does not exist lies at (-2147483648, -2147483648). The square of the distance wraps
/// around at 32 bits, and a negative one matches nothing.
/// @param closed     non-zero for a closed outline that stores its closing point; see `polyCalcPoint`.
/// @param tolerance  a point up to `tolerance` + 1e-7 away matches.
/// @return its place in the array; 0xFFFFFFFF when there is none.
VELQUAD_API DWORD polyFindPosition(const tagPOINT* points, DWORD count, int closed, double tolerance,
                                   const tagPOLY_POSITION* positions, DWORD positionCount, tagPOINT point);

/// Removes all positions that `polyFindPosition` would find, in place; the others keep their order.
/// @return the number of positions left.
VELQUAD_API DWORD polyRemovePosition(const tagPOINT* points, DWORD count, int closed, double tolerance,
                                     tagPOLY_POSITION* positions, DWORD positionCount, tagPOINT point);
/// @}

/// @name Simplicity
/// @{

/// Tells whether an outline is simple: no two edges meet but neighbours at their common vertex.
///   (1) Repeats at the beginning and the end, and closing points, are left out first, with either flag: the edge of an
///       open chain back to its first point is not looked at. Edges without length have no part in anything.
///   (2) Touching is meeting. Contact is that of `matIntersectSegments2L`, tolerance and wrap-around included.
///   (3) Neighbours may go on in one line, but not fold back.
/// @param closed  non-zero: an edge leads from the last point to the first; it may be stored or not.
/// @param first   optional; receives the lowest edge that is at fault, by the index of the point that it starts at.
/// @param second  optional; receives the lowest edge, above `first`, that it must not meet. Both are left alone when
///                the outline is simple.
/// @return 1 simple, 0 not; 1 for fewer than two different points. A closed outline of two points folds back: 0.
/// @par Cost    O(n log n) for outlines whose edges have few others around them, O(n^2) when the bounds of most edges
///              overlap. Working memory of some 20 bytes a point; without it O(n^2), with the same answer.
/// @par Source  Bounding hierarchy of upright and oriented boxes: S. Gottschalk, M. C. Lin, D. Manocha, "OBBTree",
///              SIGGRAPH 1996.
VELQUAD_API int polyIsSimple(const tagPOINT* points, DWORD count, int closed, DWORD* first, DWORD* second);

/// Makes an outline, always taken as closed, simple: at the first fault one of the two sides is cut off, until there is
/// none. The side that goes is the one of fewer pixels, by `polyGetMiniVecCount`; of equal ones the rest goes and the
/// loop between the two edges stays.
/// @param points           altered in place.
/// @param maximalLoopSize  how large a side may be to go: when both sides of a fault reach this, nothing is done.
/// @return the new count. For an outline without a stored closing point this is one more than the points that were
///         written: a simple one of n points gives n + 1. 0, with the points as they were, when both sides of a fault
///         are too large, when nothing would be left, and without memory.
VELQUAD_API DWORD polyMakeSimple(tagPOINT* points, DWORD count, DWORD maximalLoopSize);

/// Makes an outline or an open chain simple.
/// @param closed           non-zero: the same as `polyMakeSimple`. 0: of an open chain the loop goes at each fault,
///                         whatever the size of the rest.
/// @param maximalLoopSize  a loop of this many pixels or more may not go.
/// @return the new count. 0, with the points as they were, when a loop is too large and without memory.
VELQUAD_API DWORD polyMakeSimpleEx(tagPOINT* points, DWORD count, int closed, DWORD maximalLoopSize);

/// Removes stings: points q whose neighbours p and r lie on one line with it, with r no farther from p than `width`, so
/// that the outline runs out to q and back. Repeated points go first. Stings go one after the other, each the first in
/// order, as the removal of one can uncover another. A closed outline, one that stores its closing point, is taken as a
/// chain that begins at that point: a sting whose tip is there stays.
/// @param noWrap  0: the triples across the ends of an open chain are looked at too.
/// @param width   a distance of exactly this is a sting.
/// @return the new count, a closing point included. 1 when the outline collapsed: one point is left, or two different
///         ones of a closed outline or of a chain with `noWrap`.
/// @par Cost  O(count), no allocation.
VELQUAD_API DWORD polyRemoveStings(tagPOINT* points, DWORD count, int noWrap, double width);

/// Brings touching edges of an outline, always taken as closed, apart. Repeated points are removed. Then, as long as
/// the outline is not simple, one of the two vertices of the first edge at fault is moved to a neighbouring pixel: the
/// first of the eight, clockwise from above, at which the outline is simple or its first fault comes later.
/// @return the new count; 0xFFFFFFFF when no move helps, with the points as the last move left them.
VELQUAD_API DWORD polySeperateTouchingSegments(tagPOINT* points, DWORD count);
/// @}

/// @name Reduction
/// @{

/// The size of a run of an outline: how many pixels it covers. An edge takes max(|dx|, |dy|) steps of a raster line.
/// Differences and sums wrap around at 32 bits.
/// @param from, to  vertices.
/// @param outside   0: the run from `from` to `to`. Non-zero: the rest, from the first vertex to `from` and on from `to`
///                  to the place behind the last point, which must be readable and hold the vertex that follows the
///                  last one; nothing is read there when `to` is `count` or more.
/// @return the number of steps and one; 1 for an empty run.
VELQUAD_API DWORD polyGetMiniVecCount(const tagPOINT* points, DWORD count, DWORD from, DWORD to, int outside);

/// Thins a polygon in place to about a percentage of its points: every k-th point stays, with k = count divided by
/// (count * percent / 100), both truncated, and the last one in any case.
/// @param percent  nothing changes where k is 1 or 0, as it is once more than half of the points would stay. The
///                 product wraps around at 32 bits.
/// @return the new count. A percentage of less than one point has no k; then nothing changes and the result is 0.
VELQUAD_API DWORD polyReducePoints(tagPOINT* points, DWORD count, DWORD percent);

/// Thins a polygon in place, in passes: of each three points in a row that begin at an even one, the middle one goes
/// when it lies near the line through the others. With an even number of points the last but one is not tried.
/// @param maximalDeviation  compared with the squared distance from the line; a point at exactly this goes.
/// @param maximalPasses     each pass halves the points at most. The passes end when one removes nothing.
/// @return the new count; 0 when `points` is null or `count` is 0.
/// @par Cost  O(count) for each pass, no allocation. A pass may remove a single point.
VELQUAD_API DWORD polyReducePointsEx(tagPOINT* points, DWORD count, double maximalDeviation,
                                     DWORD maximalPasses);
/// @}

/// @name Convex hull
/// @{

/// Moves the vertices of the convex hull to the front of a point array, beginning with the leftmost of those with the
/// smallest y and counter-clockwise in mathematical axes. No closing point is added.
///   (1) The array is permuted: behind the vertices stand the other points. A closing point stays where it is and has
///       no part.
///   (2) Of points in one line with an edge only the ends are vertices.
///   (3) Directions are compared by 90 dy / (|dx| + |dy|), continued round to 360. Of those that differ by less than
///       1e-7 the farthest point is taken, even when a nearer one lies outside by that little.
///   (4) A repeat of the first vertex is a vertex when it comes last; repeats of others are none.
/// @return the number of vertices; 1 when all points are equal, 0 for a count of 0.
/// @par Cost    O(count) for each vertex, no allocation.
/// @par Source  Package wrapping: R. A. Jarvis, Information Processing Letters 2, 1973, with the angle substitute of
///              R. Sedgewick, "Algorithms", 1983.
VELQUAD_API DWORD polyConvexHull(tagPOINT* points, DWORD count);

/// The same for points of space, in the plane of x and y: z travels with its point. No closing point is looked for.
/// @return the number of vertices; 1 for a count of 0.
VELQUAD_API DWORD matConvexHullP3D(tagPOINT3D* points, DWORD count);
/// @}

}  // extern "C"

/// @name Splitting and decomposition
/// An outline is cut at places on it. Pieces are new polygons, given out as unlocked handles that the caller ends with
/// `polyFree`; the source is not written to. Every place that lands in a piece is rounded as by `polyMakeInt`, and a
/// piece has no double points. Its block is as large as the piece was before they were removed.
///   - *Snap tolerance*: a place nearer than this to an end of its edge is moved there, see `polyReplacePointByVertex`.
///     The largest double stands for 0, which snaps nothing.
///   - *Closed*: non-zero for a closed outline, which stores its closing point.
///   - A result of false leaves nothing allocated.
/// @{

/// Splits an outline along a cut line. The outline is cut where it is nearest to the first and to the last point of the
/// line; the points between these two become part of both pieces.
///   (1) The first piece follows the outline from the earlier place to the later one and goes back along the cut line.
///       Where the two places are one, the way back does not end in that place again.
///   (2) The second piece, of a closed outline only, follows the outline from the later place over its end to the
///       earlier one, and goes back along the cut line.
///   (3) Both pieces are closed polygons and run in the direction of the outline.
/// @param count     at least 3.
/// @param cut       the points of the cut line. Its direction does not matter.
/// @param cutCount  at least 2.
/// @param out1      optional; receives the first piece.
/// @param out2      optional; receives the second piece. Left alone when the outline is open.
/// @return false, with null in both outputs, when a pointer is null, a count is too small or there is no memory.
/// @par Cost  O(count + cutCount) and one block for each piece.
VELQUAD_API bool polySplit(const tagPOINT* points, DWORD count, int closed, double tolerance,
                           const tagPOINT* cut, DWORD cutCount, void** out1, void** out2);

/// Cuts an outline at two positions, given in any order.
///   (1) The first piece is the chain from the earlier position to the later one: a single point when they are one.
///   (2) The second piece, of a closed outline only, is the chain from the later position over the end of the outline
///       to the earlier one: all the way round when they are one.
///   (3) Neither piece is closed by a point of its own.
/// A position that does not exist, as any at the last point of an open chain, lies at (-2147483648, -2147483648).
/// @param count               at least 2.
/// @param index1, fraction1   a position; see `polyCalcPoint`.
/// @param index2, fraction2   the other position. The first one again when the index is 0xFFFFFFFF or the fraction the
///                            largest double.
/// @param out1                optional; receives the first piece.
/// @param out2                optional; receives the second piece. Left alone when the outline is open.
/// @return false, with null in both outputs, when `points` is null, `count` is too small, the first index is 0xFFFFFFFF
///         or its fraction the largest double, an arc would lead over indices beyond `count`, or there is no memory.
/// @par Cost  O(count) and one block for each piece.
VELQUAD_API bool matDecomposePolygon(const tagPOINT* points, DWORD count, int closed, double tolerance,
                                     DWORD index1, double fraction1, DWORD index2, double fraction2,
                                     void** out1, void** out2);

/// Cuts an outline at all positions of a list, which has to be in ascending order (`polySortPositions`). Each piece is
/// a chain as of `matDecomposePolygon`, in this order:
///   - open chain: from the start to the first position, unless that is the start itself (index 0 and a fraction up to
///     1e-7); from each position to the next; and, unless the last position stands at the last point, one from the
///     start of the chain to the last position. The end of the chain behind that position is in no piece.
///   - closed outline: from each position to the next, and from the last one over the end of the outline to the first.
/// @param positions      not null.
/// @param positionCount  not 0.
/// @param handles        receives the pieces; entries that are not used are left alone.
/// @param room           entries of `handles`, not 0. One of them always stays free: at most `room` - 1 pieces are made.
/// @param number         receives the number of pieces.
/// @return true also when the room was too small for all pieces. False, with `number` 0 and every entry that had been
///         filled null again, when a pointer is null, `positionCount` or `room` is 0, or a piece cannot be made.
/// @par Cost  O(count + positionCount) for a sorted list, and one block for each piece.
VELQUAD_API bool polyDecompose(const tagPOINT* points, DWORD count, int closed, double tolerance,
                               const tagPOLY_POSITION* positions, DWORD positionCount, void** handles,
                               DWORD room, DWORD* number);
/// @}

extern "C" {

/// @name Outlines of doubles
/// The functions with the prefix `poly2d` do for points of doubles what their namesakes do for integer points, with
/// these differences throughout:
///   - Two points are one when both coordinates differ by less than 1e-7.
///   - Nothing wraps around; a coordinate that is not a number has no contact with anything and no distance.
///   - Of two segments whose contact is tested the first is half open: it begins at its start within 1e-40 and ends
///     before its end, so that a chain meets each shared vertex once (see `matIntersectSegments2D`).
/// There are no handles: the caller owns the array. What else differs is told at each function.
/// @{

/// Tells whether a point lies inside an outline; see `polyIsPointInside`. A point that is one with a vertex lies on
/// the outline.
/// @param point  the point asked about. Not null unless `count` is 0.
/// @return 1 inside, 0 outside or for a count of 0, -1 on the outline.
/// @par Cost    O(count), no allocation.
/// @par Source  Crossing count: M. Shimrat, Algorithm 112, Communications of the ACM 5, 1962.
VELQUAD_API int poly2dIsPointInside(const tagPOINT2D* points, DWORD count, const tagPOINT2D* point);

/// Tells how two outlines lie to one another; see `polyGetRelativePosition`. The edges of A are the half-open ones, so
/// outlines that only touch may meet in one order of the arguments and not in the other: an end of an edge of A that
/// is no start of another edge, the last point of an open chain, does not touch anything.
/// @return 0 apart, 1 the outlines meet, 2 B lies inside A, 3 A lies inside B. An outline without points is apart
///         from everything.
/// @par Cost  O(n log n) for outlines of n points in all that lie apart, are nested or run side by side; O(n^2) when
///            the boxes of most edges overlap. No allocation.
VELQUAD_API int poly2dGetRelativePosition(const tagPOINT2D* pointsA, DWORD countA, int closedA,
                                          const tagPOINT2D* pointsB, DWORD countB, int closedB);

/// The distance of a point from an outline; see `polyCalcDistance`. The foot on an edge lies between its ends; within
/// 2.3e-16 of an end it is that end.
/// @param closed     non-zero: the edge from the last point to the first counts too, unless the two are equal exactly.
///                   This is the one place of the family without a tolerance.
/// @param point      the point asked about. Not null unless `count` is 0.
/// @param isSquared  non-zero: the result is the squared distance.
/// @param nearest    optional; receives the nearest point of the outline.
/// @param index      optional; receives the first point of the nearest edge, the lowest one among equal distances.
/// @param fraction   optional; receives the place on that edge, 0 at its start.
/// @return the distance. A single point is measured to itself, with index and fraction 0. Without any edge that has a
///         distance the result and both coordinates of `nearest` are the largest double, index and fraction 0.
/// @par Cost  O(count), no allocation.
VELQUAD_API double poly2dCalcDistance(const tagPOINT2D* points, DWORD count, int closed,
                                      const tagPOINT2D* point, int isSquared, tagPOINT2D* nearest,
                                      DWORD* index, double* fraction);

/// The length of an outline; see `polyCalcLength`.
/// @return the length, or the sum of the squares of the edge lengths; 0 for fewer than two points.
VELQUAD_API double poly2dCalcLength(const tagPOINT2D* points, DWORD count, int closed, int isSquared);

/// Tells whether an outline with a stored closing point runs counter-clockwise in mathematical axes: its turning
/// angles sum up to more than 0. The points are taken as they stand. Without a closing point one corner is missing
/// from the sum; a reversal turns by half a turn to the left.
/// @return 1 counter-clockwise, 0 clockwise, -1 when there is no direction: the sum is below 1e-7 in magnitude, there
///         are fewer than two points, or `points` is null. A sum that is not a number gives 0.
/// @par Cost  O(count), no allocation.
VELQUAD_API int poly2dIsCCW(const tagPOINT2D* points, DWORD count);

/// Gives an outline the wanted sense of rotation, as `poly2dIsCCW` tells it, by reversing the points where needed. An
/// outline without direction counts as counter-clockwise.
/// @param wanted  non-zero for counter-clockwise, 0 for the other sense.
/// @return 1 always.
VELQUAD_API int poly2dMakeCCW(tagPOINT2D* points, DWORD count, int wanted);

/// Reverses the order of the points in place; a closing point takes part.
/// @return 1, or 0 for a null pointer.
VELQUAD_API int poly2dReverseOrder(tagPOINT2D* points, DWORD count);

/// Tells whether two outlines, given as records, run the same way. Closed ones do when `poly2dIsCCW` gives the same of
/// both, -1 included. Open ones do when each begins strictly nearer to the other's beginning than to the other's end.
/// @return 1 or 0; 0 also for a null record, and for an open chain without points.
VELQUAD_API int poly2dCompareDirections(const tagPOLY2D* a, const tagPOLY2D* b, int closed);

/// Removes points that are one with the point before, in place. Behind a removed point only the front half of the tail
/// moves down, counted in bytes, so that of an odd tail half a point moves. The points behind are then not those of the
/// input; a tail of an even number of points even leaves a new double point, which goes in its turn. A list without
/// double points is left alone.
/// @return the new count; `count` when it is below 2 or `points` is null.
/// @par Cost  O(count) plus half a tail for each removed point, no allocation.
VELQUAD_API DWORD poly2dRemoveDoublePoints(tagPOINT2D* points, DWORD count);

/// Tells whether an outline is simple; see `polyIsSimple`. Contact is that of `matIntersectSegments2D` with the lower
/// edge as the first, half-open segment: the end of an edge meets nothing, the start of the next one does.
/// @param closed  non-zero: an edge leads from the last point to the first; it may be stored or not.
/// @param first   optional; receives the lowest edge that is at fault, by the index of the point that it starts at.
/// @param second  optional; receives the lowest edge, above `first`, that it must not meet. Both are left alone when
///                the outline is simple.
/// @return 1 simple, 0 not; 1 for fewer than two different points.
/// @par Cost  as of `polyIsSimple`.
VELQUAD_API int poly2dIsSimple(const tagPOINT2D* points, DWORD count, int closed, DWORD* first,
                               DWORD* second);

/// Makes an outline, always taken as closed, simple; see `polyMakeSimple`. The size of a side is its length.
/// @param points           altered in place.
/// @param maximalLoopSize  a length: when both sides of a fault reach this, nothing is done.
/// @return the new count. For an outline without a stored closing point this is one more than the points that were
///         written: a simple one of n points gives n + 1. 0, with the points as they were, when both sides of a fault
///         are too long, when nothing would be left, and without memory.
VELQUAD_API DWORD poly2dMakeSimple(tagPOINT2D* points, DWORD count, double maximalLoopSize);

/// Makes an outline or an open chain simple; see `polyMakeSimpleEx`.
/// @param closed           non-zero: the same as `poly2dMakeSimple`.
/// @param maximalLoopSize  a loop of this length or more may not go.
/// @return the new count. 0, with the points as they were, when a loop is too long and without memory.
VELQUAD_API DWORD poly2dMakeSimpleEx(tagPOINT2D* points, DWORD count, int closed, double maximalLoopSize);

/// The length of a run of an outline. Unlike the steps of `polyGetMiniVecCount` it has no one added, and nothing behind
/// the last point is read.
/// @param from, to  vertices.
/// @param outside   0: the run from `from` to `to`. Non-zero: the rest, from the first vertex to `from` and on from `to`
///                  to the last one.
/// @return the length; 0.0 for an empty run.
VELQUAD_API double poly2dGetMiniVecCount(const tagPOINT2D* points, DWORD count, DWORD from, DWORD to,
                                         int outside);
/// @}

}  // extern "C"

#endif  // VELQUAD_POLYGON_H
