// Finds the edges of an outline that can matter to a crossing count, and passes over the others some at a time.
#ifndef VELQUAD_POLYGON_EDGE_FILTER_H
#define VELQUAD_POLYGON_EDGE_FILTER_H

#include <emmintrin.h>

#include <bit>
#include <cmath>

#include "frame/convert.h"
#include "polygon/edge_side_kernels.h"
#include "velquad/types.h"

namespace velquad::polygon {

/// Made for a ray from `test` through `target`, a vertex of the outline of all `points`.
template <class Point>
class EdgeFilter;

/// For integer points: an edge with both ends clearly on one side of the ray's line is never counted.
///
/// Let d be the ray, p the current and q the next vertex as seen from the test point, and c = p x d, n = q x d
/// their sides. The count forms t = (p x q) / (n - c) on the ray and from it u = c / (c - n) on the edge, and
/// ignores the edge when n = c or when u lies outside [-1e-7, 1.0000001]. The filter acts only when
///   - all components of d, p and q fit 16 bits, so that every product, sum and difference above is below 2^31
///     and nothing wraps (c and n have one sign, p x q is a single cross product);
///   - the test point lies within 2^20 of the origin, so that u, computed through absolute coordinates, is off
///     by less than 3e-10 + 1e-15 |u|;
///   - c and n have one sign and are at least `margin_` > 2e-7 |d| 2^16 >= 2e-7 |n - c| in magnitude, so that
///     the exact u misses [0, 1] by 2e-7 or more, twice the tolerance.
/// Then the computed u is outside the tolerated range too, and the edge changes nothing.
template <>
class EdgeFilter<tagPOINT> {
  public:
    EdgeFilter(const tagPOINT& test, const tagPOINT& target, const tagPOINT* /*points*/, DWORD /*count*/)
        : testX_(test.x),
          testY_(test.y),
          dx_(frame::wrapSub(target.x, test.x)),
          dy_(frame::wrapSub(target.y, test.y)),
          isEnabled_(isWithin(testX_, kLargestTestCoordinate) && isWithin(testY_, kLargestTestCoordinate) &&
                     isWithin(dx_, kLargestComponent) && isWithin(dy_, kLargestComponent)) {
        if (isEnabled_) {
            const double length = static_cast<double>((dx_ < 0 ? -dx_ : dx_) + (dy_ < 0 ? -dy_ : dy_));
            margin_ = 1 + static_cast<frame::Int32>(2e-7 * 65536.0 * length);
        }
    }

    /// @return the first edge in [first, last) that may change the count, edge i being points[i] to
    ///         points[i + 1]; `last` when there is none.
    DWORD firstRelevantEdge(const tagPOINT* points, DWORD first, DWORD last) const {
        if (!isEnabled_ || first >= last) return first < last ? first : last;
        const frame::Int32 x = frame::wrapSub(points[first].x, testX_);
        const frame::Int32 y = frame::wrapSub(points[first].y, testY_);
        if (!fits16Bits(x) || !fits16Bits(y)) return first;
        // No branch on the sign: where edges go to and fro across the ray's line it could not be foreseen.
        const frame::Int32 side = x * dy_ - y * dx_;
        const frame::Int32 sign = side < 0 ? -1 : 1;
        // Nor is a run worth beginning there.
        if (sign * side < margin_ || !isClearlyOn(sign, points[first + 1])) return first;
        return endOfRun(sign, points, first + 2, last) - 1;
    }

  private:
    static constexpr frame::Int32 kLargestTestCoordinate = 1 << 20;
    static constexpr frame::Int32 kLargestComponent = 32767;

    static constexpr bool isWithin(frame::Int32 value, frame::Int32 bound) {
        return -bound <= value && value <= bound;
    }
    static constexpr bool fits16Bits(frame::Int32 value) { return -32768 <= value && value <= 32767; }

    /// @param sign  1 for the side where c is positive, -1 for the other one.
    bool isClearlyOn(frame::Int32 sign, const tagPOINT& point) const {
        const frame::Int32 x = frame::wrapSub(point.x, testX_);
        const frame::Int32 y = frame::wrapSub(point.y, testY_);
        return fits16Bits(x) && fits16Bits(y) && sign * (x * dy_ - y * dx_) >= margin_;
    }

    /// The same for four points at once. The sides come out of one multiply-add of 16-bit components.
    /// @return a bit for each, the lowest for the first; none is set when one of them does not fit 16 bits.
    unsigned clearOfFour(frame::Int32 sign, const tagPOINT* points) const {
        const __m128i test = _mm_set_epi32(testY_, testX_, testY_, testX_);
        const __m128i half = _mm_set1_epi32(32768);
        const __m128i lowPair =
            _mm_sub_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(points)), test);
        const __m128i highPair =
            _mm_sub_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(points + 2)), test);
        const __m128i excess =
            _mm_srli_epi32(_mm_or_si128(_mm_add_epi32(lowPair, half), _mm_add_epi32(highPair, half)), 16);
        const __m128i components = _mm_packs_epi32(lowPair, highPair);
        const auto factorX = static_cast<short>(sign * dy_);
        const auto factorY = static_cast<short>(-sign * dx_);
        const __m128i factors =
            _mm_set_epi16(factorY, factorX, factorY, factorX, factorY, factorX, factorY, factorX);
        const __m128i sides = _mm_madd_epi16(components, factors);
        const __m128i isClear = _mm_cmpgt_epi32(sides, _mm_set1_epi32(margin_ - 1));
        const __m128i fits = _mm_cmpeq_epi32(excess, _mm_setzero_si128());
        if (_mm_movemask_epi8(fits) != 0xFFFF) return 0;
        return static_cast<unsigned>(_mm_movemask_ps(_mm_castsi128_ps(isClear)));
    }

    /// @return a point in [`first`, `end`], before which all from `first` on are clear.
    DWORD skipFours(frame::Int32 sign, const tagPOINT* points, DWORD first, DWORD end) const {
        constexpr unsigned kAllFour = 15;
        DWORD i = first;
        while (i < end && end - i >= 4) {
            const unsigned clear = clearOfFour(sign, points + i);
            if (clear != kAllFour) return i + static_cast<DWORD>(std::countr_one(clear));
            i += 4;
        }
        return i;
    }

    /// @return the first point in [first, last] that is not clearly on a side; last + 1 when all are or there is none.
    DWORD endOfRun(frame::Int32 sign, const tagPOINT* points, DWORD first, DWORD last) const {
        constexpr DWORD kShortRun = 32;
        DWORD i = first;
        if (first < last && last - first > kShortRun) {
            i = skipFours(sign, points, i, first + kShortRun);
            if (i - first == kShortRun) {
                const ClearSide2L side{testX_, testY_, static_cast<short>(sign * dy_),
                                       static_cast<short>(-sign * dx_), margin_ - 1};
                i += edgeSideKernels().countClearPoints(points + i, last - i, side);
                i = skipFours(sign, points, i, last);
            }
        } else {
            i = skipFours(sign, points, i, last);
        }
        while (i <= last && isClearlyOn(sign, points[i]))
            ++i;
        return i;
    }

    frame::Int32 testX_;
    frame::Int32 testY_;
    frame::Int32 dx_;
    frame::Int32 dy_;
    frame::Int32 margin_ = 0;
    bool isEnabled_;
};

/// For points of doubles, by the same sides c and n, of which a wide margin is asked so that no rounding matters.
///
/// Let M bound all coordinates, D = |d.x| + |d.y|, e = q - p, E its larger component and r = 2^-53. The filter acts
/// only when c and n have one sign and are at least 2^-20 M D in magnitude, and when e.x is 0 or at least 2^-22 M. The
/// exact u = c / (c - n) then misses [0, 1] by g >= 2^-20 M D / |c - n| >= 2^-21. The computed one is off
///   - by less than 12 r |u| + 25 r M / |e.y| for a vertical edge, where |c - n| = |d.x| |e.y|, and
///   - by less than (45 r M / |e.x| + 7 r |u|) D E / |c - n| + 15 r M / |e.x| + 6 r |u| for any other with
///     |c - n| > 60 r D E,
/// which is less than g / 4 and leaves more than three times the tolerance. When |c - n| is smaller still, the edge
/// runs along the ray at a distance: the computed t and u are above 10^6 in magnitude, or there is no crossing, since
/// the numerator of t is at least 2^-21 M E.
template <>
class EdgeFilter<tagPOINT2D> {
  public:
    EdgeFilter(const tagPOINT2D& test, const tagPOINT2D& target, const tagPOINT2D* points, DWORD count)
        : dx_(target.x - test.x), dy_(target.y - test.y) {
        if (count < kLeastPoints) return;
        reach_ = 1.0;
        reachTo(test);
        reachTo(target);
        for (DWORD i = 0; i < kSamples; ++i)
            reachTo(points[i * (count / kSamples)]);
        reach_ *= 4.0;
        const double length = std::fabs(dx_) + std::fabs(dy_);
        // Comparisons with a not-a-number are false.
        isEnabled_ = reach_ <= kLargestReach && length >= kShortestRay;
        margin_ = kMargin * reach_ * length;
        sideOfTest_ = test.x * dy_ - test.y * dx_;
    }

    /// @return the first edge in [first, last) that may change the count, edge i being points[i] to
    ///         points[i + 1]; `last` when there is none.
    DWORD firstRelevantEdge(const tagPOINT2D* points, DWORD first, DWORD last) const {
        if (!isEnabled_ || first >= last) return first < last ? first : last;
        // No branch on the sign: where edges go to and fro across the ray's line it could not be foreseen.
        const double sideOfFirst = points[first].x * dy_ - points[first].y * dx_ - sideOfTest_;
        const double sign = sideOfFirst < 0.0 ? -1.0 : 1.0;
        const ClearSide side{sign * dy_, sign * dx_, margin_ + sign * sideOfTest_, reach_,
                             kLeastWidth * reach_};
        return isClear(points[first], side) ? endOfRun(side, points, first, last) : first;
    }

  private:
    /// Shorter outlines are not worth the preparation.
    static constexpr DWORD kLeastPoints = 32;
    static constexpr DWORD kSamples = 8;
    static constexpr double kMargin = 0x1p-20;
    static constexpr double kLeastWidth = 0x1p-22;
    /// Far below where products overflow, and far above where they lose bits.
    static constexpr double kLargestReach = 1e100;
    static constexpr double kShortestRay = 1e-7;

    /// Lets the bound cover a point. One that it does not cover in the end is never clear.
    void reachTo(const tagPOINT2D& point) {
        reach_ = std::fabs(point.x) > reach_ ? std::fabs(point.x) : reach_;
        reach_ = std::fabs(point.y) > reach_ ? std::fabs(point.y) : reach_;
    }

    static bool isClear(const tagPOINT2D& p, const ClearSide& side) {
        return p.x * side.factorX - p.y * side.factorY >= side.least && std::fabs(p.x) <= side.reach &&
               std::fabs(p.y) <= side.reach;
    }

    /// @return the first edge in [first, last) that is not clear, or `last`. points[first] is clear itself.
    static DWORD endOfRun(const ClearSide& side, const tagPOINT2D* points, DWORD first, DWORD last) {
        // Where edges go to and fro across the ray's line no run is worth beginning.
        if (!isEdgeClear(side, points + first)) return first;
        DWORD i = first + edgeSideKernels().countClearEdges(points + first, last - first, side);
        // The run has not looked at its end, which is the end of its last edge and the start of the next one.
        if (!isClear(points[i], side)) return i - 1;
        while (i < last && isEdgeClear(side, points + i))
            ++i;
        return i;
    }

    /// For an edge whose start is clear.
    static bool isEdgeClear(const ClearSide& side, const tagPOINT2D* points) {
        const double width = points[1].x - points[0].x;
        return isClear(points[1], side) && (width == 0.0 || std::fabs(width) >= side.leastWidth);
    }

    double dx_;
    double dy_;
    double reach_ = 0.0;
    double margin_ = 0.0;
    double sideOfTest_ = 0.0;
    bool isEnabled_ = false;
};

}  // namespace velquad::polygon

#endif  // VELQUAD_POLYGON_EDGE_FILTER_H
