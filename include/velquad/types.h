/// @file
/// The records that cross the boundary of the library, and the values that stand for "nothing there".
///
/// Records stand at global scope with their tags, fields and layout; callers may walk them by hand. y grows
/// downwards in images, while orientation tests are written in mathematical axes and no function corrects for
/// that.
#ifndef VELQUAD_TYPES_H
#define VELQUAD_TYPES_H

#include <cstddef>
#include <cstdint>

#include "velquad/platform.h"

/// A point of the plane.
struct tagPOINT2D {
    double x;
    double y;
};

/// A point of space.
struct tagPOINT3D {
    double x;
    double y;
    double z;
};

/// A rectangle of the plane, all four sides inclusive.
struct tagMAT_RECT2D {
    double left;
    double top;
    double right;
    double bottom;
};

/// A polygon as it stands in a movable block: the number of points, then the points without a gap.
///
///     offset 0       4        8        12       16
///            +-------+--------+--------+--------+----
///            | count | x[0]   | y[0]   | x[1]   | ...       8 * count + 4 bytes
///            +-------+--------+--------+--------+----
///
/// Points have 4-byte alignment. A closed polygon stores its first point once more behind the last one and
/// counts it.
struct tagPOLY {
    DWORD count;         ///< Points that the record holds, a closing point included.
    tagPOINT points[1];  ///< `count` points; the array is as long as the block allows.
};

/// A polygon of double points: the number of points, then the points at the alignment of their coordinates.
///
///     offset 0       4         8        16       24       32
///            +-------+---------+--------+--------+--------+----
///            | count | padding | x[0]   | y[0]   | x[1]   | ...       16 * count + 8 bytes
///            +-------+---------+--------+--------+--------+----
///
/// Unlike in `tagPOLY` there are four bytes of padding behind the count.
struct tagPOLY2D {
    DWORD count;           ///< Points that the record holds, a closing point included.
    tagPOINT2D points[1];  ///< `count` points; the array is as long as the caller made it.
};

/// An outline as a chain code: a start pixel and the direction of each step from it.
///
///     7 0 1        Codes 0 to 7 lead to the eight neighbours, clockwise on an image from the one above:
///     6 . 2        (0, -1), (1, -1), (1, 0), (1, 1), (0, 1), (-1, 1), (-1, 0), (-1, -1).
///     5 4 3        Codes 8 and 9 stay where they are.
struct tagMINIVEC {
    DWORD count;             ///< Steps that the record holds.
    LONG x;                  ///< Where the first step starts.
    LONG y;                  ///< Where the first step starts.
    unsigned char codes[1];  ///< `count` codes; the array is as long as the block allows.
};

/// A place on an outline: `fraction` 0 is the vertex `index`, 1 the vertex behind it.
struct tagPOLY_POSITION {
    DWORD index;
    double fraction;
};

/// The running record of the shortest and the longest of many point pairs; see `matInitDistance`.
struct tagMAT_DISTANCE {
    tagPOINT shortestFrom;    ///< First point of the shortest pair; 0x7fffffff twice while there is none.
    tagPOINT shortestTo;      ///< Second point of the shortest pair.
    double shortestDistance;  ///< Its distance; the largest double while there is none.
    double shortestAngle;     ///< Its direction in degrees, [0, 180), after `matCompleteDistance`.
    tagPOINT longestFrom;     ///< First point of the longest pair.
    tagPOINT longestTo;       ///< Second point of the longest pair.
    double longestDistance;   ///< Its distance.
    double longestAngle;      ///< Its direction in degrees, [0, 180), after `matCompleteDistance`.
    double meanDistance;      ///< Sum of all distances; their mean after `matCompleteDistance`.
    DWORD count;              ///< Pairs compared.
    double scaleX;            ///< Width of a pixel in units of measurement.
    double scaleY;            ///< Height of a pixel in units of measurement.
};

namespace velquad {

/// The largest double: a distance, a parameter or a coordinate that does not exist.
inline constexpr double kNoValue = 1.7976931348623157e308;
/// The largest float: an extent that is not set yet.
inline constexpr double kExtentNotSet = 3.4028234663852886e38;
/// A pixel coordinate that is not set.
inline constexpr int kCoordinateNotSet = 0x7fffffff;

/// What the functions on sampled curves report.
enum SignalStatus : int {
    kSignalOk = 0,
    kSignalNoMemory = 1,     ///< A working block could not be allocated.
    kSignalLockFailed = 2,   ///< A working block could not be locked.
    kSignalBadArgument = 3,  ///< A count of 0, or what else the function names.
};

}  // namespace velquad

#endif  // VELQUAD_TYPES_H
