/// @file
/// Delaunay triangulation of scattered heights, and Voronoi maps.
#ifndef VELQUAD_TRIANGULATION_H
#define VELQUAD_TRIANGULATION_H

#include <cstdint>

#include "velquad/platform.h"
#include "velquad/types.h"

extern "C" {

/// Takes an edge of a triangulation. What it returns is ignored.
/// @param start, end  copies of the edge's ends, valid during the call.
typedef int (*MatDelaunayEdgeCallback)(tagPOINT3D* start, tagPOINT3D* end, void* user1, void* user2);

/// Takes a vertex of a triangulation.
/// @param position  a copy of the vertex, valid during the call.
/// @return 1 to go on; anything else ends the enumeration and becomes its result.
typedef int (*MatDelaunayPositionCallback)(tagPOINT3D* position, void* user);

/// @name Delaunay triangulation
/// Points of the plane, each with a z value and an identifier, are inserted one by one and triangulated. A place
/// can then be asked for its triangle and for the z value that is interpolated there.
///
///     void* handle = matInitDelaunay2D(nullptr);
///     matExtentDelaunay2D(&handle, &point, DBL_MAX);              // as often as wanted
///     tagPOINT3D place{x, y, 0.0};
///     if (matFindPositionInDelaunay2D(handle, &place, nullptr, nullptr) != 0) use(place.z);
///     matExitDelaunay2D(handle);
///
/// **Handles.** Functions that take the address of a handle may replace the triangulation; what the variable holds
/// after the call is the live one, and earlier copies of the handle are dead. The variable never holds a dead one.
/// **Extent and helpers.** The triangulation is made for a rectangle, its extent, with a triangle of three helper
/// vertices around it. A point outside makes the extent grow: everything is rebuilt for the box of all points, twice
/// as large around its middle and at least 32 by 32. Helpers are never reported as vertices, but edges to them can be
/// drawn. They stand at a finite distance, so a flat bay of the convex hull can stay open; a place in it is outside.
/// **Tolerances.** DBL_MAX stands for 1e-6. A negative value is relative to the larger side of the extent: -0.01 is a
/// hundredth of it. Distances up to about 3.2e-4 count as 0.
/// **Identifiers.** All bits set means none.
/// **Order.** Results follow the order of insertion: the first of equally near vertices or edges is found, vertices
/// are listed as they were inserted, edges as they were made. Predicates are computed in doubles as they stand, so
/// the same calls give the same triangulation everywhere.
/// **Failures.** No exception leaves these functions, not even one of a callback: it turns into the failure value.
/// When memory is short the triangulation stays as it was before the call, except that a first insertion may leave
/// the extent that it made.
/// **Threads.** A handle belongs to one thread at a time. A callback must not change the triangulation.
/// @par Source  L. Guibas, J. Stolfi, Primitives for the manipulation of general subdivisions and the computation of
///              Voronoi diagrams, ACM Transactions on Graphics 4 (1985).
/// @{

/// Makes a triangulation without points.
/// @param extent  the rectangle that points are expected in. Null, or a left side of DBL_MAX, leaves that to the
///                first point: then it reaches 10 to each side of it. A flat rectangle takes no points until it is
///                outgrown.
/// @return the handle, to be released with `matExitDelaunay2D`; null when memory is short or a side is an infinity
///         or not a number.
VELQUAD_API void* matInitDelaunay2D(const tagMAT_RECT2D* extent);

/// Releases a triangulation.
/// @return 1; 0 for null.
VELQUAD_API int matExitDelaunay2D(void* handle);

/// `matExtentWithIdDelaunay2D` without an identifier.
VELQUAD_API int matExtentDelaunay2D(void** handle, const tagPOINT3D* point, double tolerance);

/// Inserts a point.
///   (1) Vertices within the tolerance give way to the new one; nearness counts in the plane.
///   (2) A point outside the extent makes it grow. After (1) and (2) the triangulation is another one.
///   (3) A point on an edge, within 1e-6, divides it.
///   (4) A rebuilt triangulation drops points within 1e-6 of an earlier one, and any that rounding at extreme
///       coordinates puts outside.
/// @param tolerance  see above. A vertex up to 3.2e-4 away causes a rebuild whatever the tolerance, but only those
///                   within the tolerance give way in it.
/// @return 1, also where (4) drops the point itself; 0 when nothing was tried: null arguments, a coordinate that is an
///         infinity or not a number, a flat extent, or memory shortage.
/// @par Cost  A walk over the triangles from the last point to this one, some flips, and a search in a tree. A
///            rebuild inserts all points again.
VELQUAD_API int matExtentWithIdDelaunay2D(void** handle, const tagPOINT3D* point, std::uint64_t id,
                                          double tolerance);

/// Removes all vertices within a tolerance of a place, by rebuilding the triangulation from the others.
/// @param point  the place; z is ignored.
/// @return 1; 0 when no vertex is that near, for null arguments and after memory shortage.
VELQUAD_API int matReduceDelaunay2D(void** handle, const tagPOINT3D* point, double tolerance);

/// Hands edges to a callback, in the order in which they were made.
/// @param drawFlags     a sum: 2 for the edges with a helper at one end, 4 for the others. 0 calls nothing.
/// @param user1, user2  passed to the callback as they are.
/// @return 1, also for an empty triangulation; 0 for a null handle or callback and after an exception.
VELQUAD_API int matDrawDelaunay2D(void* handle, MatDelaunayEdgeCallback edgeCallback, unsigned int drawFlags,
                                  void* user1, void* user2);

/// `matFindPositionInDelaunay2DEx` with the flags 1.
VELQUAD_API unsigned int matFindPositionInDelaunay2D(void* handle, tagPOINT3D* point, tagPOINT3D* corners,
                                                     int* isOutside);

/// Finds what a place lies on and interpolates z there.
///   (1) On a vertex, within 1e-6: that vertex. On an edge, within 1e-6: its two ends. In a triangle: its three
///       corners; which comes first depends on the way of the search. z is interpolated linearly.
///   (2) Outside, that is also where a corner is a helper, the nearest vertex is found, or the nearest edge if it is
///       looked for and is not farther away. x and y of the place become those of the vertex, or of the nearest
///       point of the edge.
///   (3) With 8 or 16 the place is not located. z is the mean of all vertices, weighted by the inverse square of the
///       distance, or by its fourth power. The place itself is the one corner; within 1e-5 of a vertex that vertex is,
///       and then `isOutside` is not written.
/// @param point      x and y of the place; receives x, y and z of what was found.
/// @param corners    room for three points; receives as many as the function returns. May be null.
/// @param isOutside  receives 1 for a place outside, else 0. May be null.
/// @param findFlags  a sum: 1 looks for the nearest edge by the mean distance of its ends, 2 by the distance of the
///                   edge itself (1 prevails), 8 and 16 interpolate from all vertices (16 prevails).
/// @return the number of corners; 0, with `point` as it was, when there are none, for a flat triangle, a place that is
///         not finite, and null arguments; 0xFFFFFFFF after an exception.
/// @par Cost  A walk from the last point inserted; the nearest edge and the interpolation from all look at all edges
///            or vertices.
/// @par Source  for (3): D. Shepard, A two-dimensional interpolation function for irregularly-spaced data, 1968.
VELQUAD_API unsigned int matFindPositionInDelaunay2DEx(void* handle, tagPOINT3D* point, tagPOINT3D* corners,
                                                       int* isOutside, unsigned int findFlags);

/// `matFindPositionInDelaunay2DEx` among the vertices of one identifier.
///   (1) Located corners count only if all have the same identifier, and that is the one asked for or none was;
///       otherwise the place is outside.
///   (2) Outside, edges and vertices without identifier do not count, nor edges between two identifiers.
///   (3) Interpolation from all takes exactly the vertices with the identifier asked for.
/// @param id         the identifier; all bits set accepts any in (1) and (2).
/// @param cornerIds  room for three identifiers; receives those of the corners. May be null.
VELQUAD_API unsigned int matFindPositionByIdInDelaunay2D(void* handle, tagPOINT3D* point, std::uint64_t id,
                                                         tagPOINT3D* corners, std::uint64_t* cornerIds,
                                                         int* isOutside, unsigned int findFlags);

/// Lists all vertices in the order of insertion.
/// @param points  room for all of them; null to learn their number only.
/// @return their number; 0 for a null handle; 0xFFFFFFFF after an exception.
VELQUAD_API unsigned int matGetPointListOfDelaunay2D(void* handle, tagPOINT3D* points);

/// Hands the vertices in or around a rectangle to a callback, in the order of insertion.
///   (1) Sides in the wrong order are exchanged. The rectangle has a margin of 1e-7.
///   (2) A vertex within 1e-7 of one that is reported, in x and in y, is reported as well.
///   (3) With 2, the corners of all triangles that meet the rectangle. A triangle that reaches over nothing but the
///       left side, with no corner of the one in the other, does not count as meeting.
/// @param enumFlags  2 for (3); otherwise the vertices in the rectangle.
/// @param user       passed to the callback as it is.
/// @return 1; what the callback returned, if that is not 1; 0 for null arguments, a triangulation that was made
///         without an extent and never had a point, and after an exception.
/// @par Cost  O(n log n) for n vertices.
VELQUAD_API int matEnumDelaunayPositionsInRect(void* handle, const tagMAT_RECT2D* rect,
                                               unsigned int enumFlags,
                                               MatDelaunayPositionCallback positionCallback, void* user);

/// Gives the vertex nearest to a place the z value of `point`.
/// @param tolerance  how far away it may be, as it stands: neither default nor relative.
/// @return 1; 0 when there is no vertex that near, and for null arguments.
VELQUAD_API int matSetZValueOfDelaunayPosition(void* handle, const tagPOINT3D* point, double tolerance);

/// Gives the vertex nearest to a place an identifier. Otherwise like `matSetZValueOfDelaunayPosition`.
VELQUAD_API int matSetIDOfDelaunayPosition(void* handle, std::uint64_t id, const tagPOINT3D* point,
                                           double tolerance);

/// @}

/// @name Voronoi map
/// A raster of cells, each of which holds the identifier of its nearest seed point.
///
///     void* map = matAllocVoronoiMap2D(640, 480);
///     matAddPointToVoronoiMap2D(map, &point, 7);          // as often as wanted
///     matComputeVoronoiMap2D(map);
///     int id = matGetIDFromNeighborInVoronoiMap2D(map, x, y);
///     matFreeVoronoiMap2D(map);
///
/// A map belongs to one thread at a time.
/// @{

/// Makes a map whose cells all hold 0, without seeds.
/// @param width, height  columns and rows. 0 gives a map without cells.
/// @return the map, to be released with `matFreeVoronoiMap2D`; null when memory is short, as it is when the product of
///         the counts is below 0. Negative counts whose product is not have a map without use.
VELQUAD_API void* matAllocVoronoiMap2D(int width, int height);

/// Releases a map. Null is ignored.
VELQUAD_API void matFreeVoronoiMap2D(void* map);

/// Adds a seed. The cells stay as they are until the next computation.
/// @param point  where the seed lies, in cells; it may lie outside the map.
/// @param id     what cells nearest to it will hold; identifiers may repeat.
/// @return 1; 0 for a null map. Memory shortage throws `std::bad_alloc` and leaves the map as it was.
VELQUAD_API int matAddPointToVoronoiMap2D(void* map, const tagPOINT* point, int id);

/// Fills all cells.
///   (1) The nearest seed has the smallest (y - seed.y)^2 + (x - seed.x)^2; among equals the first one added wins.
///   (2) Differences, squares and sum wrap around at 32 bits and are compared with their sign. A seed farther away
///       than 46340 cells can therefore count as near; such seeds give what the formula gives.
/// Without seeds the map stays as it is and a `CInvalidArgException*` is thrown, unless the map has no cells.
/// @return 0, always; nothing is done for a null map.
/// @par Cost  near the number of cells, for any number of seeds spread over the map or in clusters. Only far
///            seeds, from some hundred thousand cells on, cost an operation each a cell.
VELQUAD_API int matComputeVoronoiMap2D(void* map);

/// Reads a cell.
/// @param x, y  column and row, 0 or more. Negative values are not checked one by one: they address the cells of
///              the rows above.
/// @return what the cell holds: an identifier, or 0 before the first computation. -1 for a null map, for x or y
///         beyond the last column or row, and for what lies before the first cell.
VELQUAD_API int matGetIDFromNeighborInVoronoiMap2D(void* map, int x, int y);

/// @}

}  // extern "C"

#endif  // VELQUAD_TRIANGULATION_H
