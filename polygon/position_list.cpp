// Lists of places on an outline: order, sorting, search and removal.
#include <cmath>
#include <cstdint>
#include <cstring>
#include <utility>

#include "frame/convert.h"
#include "polygon/position.h"
#include "velquad/polygon.h"

using velquad::frame::Int32;
using velquad::polygon::comparePositions;

namespace {

/// A point this much farther than the tolerance still matches.
constexpr double kToleranceMargin = 1e-7;
constexpr DWORD kNotFound = 0xFFFFFFFF;

enum class PassEnd { kSorted, kExchanged, kRemoved };

/// One pass of the bubble sort over `count` positions.
/// @param exchanges  counts the exchanges.
PassEnd sortPass(tagPOLY_POSITION* positions, DWORD count, bool removeEqual, std::uint64_t& exchanges) {
    PassEnd end = PassEnd::kSorted;
    for (DWORD j = 1; j < count; ++j) {
        const int order = comparePositions(positions[j - 1], positions[j]);
        if (order > 0) {
            std::swap(positions[j - 1], positions[j]);
            ++exchanges;
            end = PassEnd::kExchanged;
        } else if (order == 0 && removeEqual) {
            std::memmove(&positions[j - 1], &positions[j], (count - j) * sizeof(tagPOLY_POSITION));
            return PassEnd::kRemoved;
        }
    }
    return end;
}

/// Tells whether a position, rounded to integers, lies at a point. The square of the distance wraps around at 32
/// bits; a negative one has no root and matches nothing.
bool isAtPoint(const tagPOINT* points, DWORD count, bool closed, double tolerance,
               const tagPOLY_POSITION& position, const tagPOINT& point) {
    // Kept: the mark of a position that does not exist is rounded like any point, to (-2147483648, -2147483648).
    tagPOINT2D exact{velquad::kNoValue, velquad::kNoValue};
    velquad::polygon::calcPoint(points, count, closed, position.index, position.fraction, &exact);
    const tagPOINT rounded = velquad::polygon::makeIntPoint(exact);
    const Int32 dx = velquad::frame::wrapSub(rounded.x, point.x);
    const Int32 dy = velquad::frame::wrapSub(rounded.y, point.y);
    const Int32 squared =
        velquad::frame::wrapAdd(velquad::frame::wrapMul(dx, dx), velquad::frame::wrapMul(dy, dy));
    return tolerance + kToleranceMargin >= std::sqrt(static_cast<double>(squared));
}

}  // namespace

extern "C" int polyComparePositions(DWORD index1, double fraction1, DWORD index2, double fraction2) {
    return comparePositions({index1, fraction1}, {index2, fraction2});
}

extern "C" DWORD polySortPositions(tagPOLY_POSITION* positions, DWORD count, int removeEqual) {
    // The comparison is not transitive, as a chain of equal neighbours can span any fraction, so the result depends
    // on every step of the bubble sort. Each exchange takes one inversion away; more exchanges than there can be
    // inversions come from fractions that are not numbers and would never end.
    std::uint64_t exchanges = 0;
    while (count >= 2) {
        const PassEnd end = sortPass(positions, count, removeEqual != 0, exchanges);
        if (end == PassEnd::kSorted) break;
        if (end == PassEnd::kRemoved) {
            --count;
            exchanges = 0;
        } else if (exchanges > std::uint64_t{count} * (count - 1) / 2) {
            break;
        }
    }
    return count;
}

extern "C" DWORD polyFindPosition(const tagPOINT* points, DWORD count, int closed, double tolerance,
                                  const tagPOLY_POSITION* positions, DWORD positionCount, tagPOINT point) {
    for (DWORD i = 0; i < positionCount; ++i) {
        if (isAtPoint(points, count, closed != 0, tolerance, positions[i], point)) return i;
    }
    return kNotFound;
}

extern "C" DWORD polyRemovePosition(const tagPOINT* points, DWORD count, int closed, double tolerance,
                                    tagPOLY_POSITION* positions, DWORD positionCount, tagPOINT point) {
    DWORD kept = 0;
    for (DWORD i = 0; i < positionCount; ++i) {
        if (isAtPoint(points, count, closed != 0, tolerance, positions[i], point)) continue;
        if (kept != i) positions[kept] = positions[i];
        ++kept;
    }
    return kept;
}
