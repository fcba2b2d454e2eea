// Finds runs of consecutive edges that are too far from a point to be the nearest ones, sixteen at a time.
#ifndef VELQUAD_POLYGON_FAR_RUN_FILTER_H
#define VELQUAD_POLYGON_FAR_RUN_FILTER_H

#include <emmintrin.h>

#include "frame/convert.h"
#include "velquad/types.h"

namespace velquad::polygon {

/// The filter that never skips, for points without a better one.
template <class Point>
class FarRunFilter {
  public:
    /// Edges that are judged together.
    static constexpr DWORD kRun = 1;

    explicit FarRunFilter(const Point& /*test*/) {}

    bool isEnabled() const { return false; }

    /// Tells whether the distances of the edges between points[0] and points[kRun] are certainly greater than
    /// `reach`.
    bool isFarther(const Point* /*points*/, double /*reach*/) const { return false; }
};

/// For integer points: the box around a run is farther away than `reach`.
///
/// The filter acts only when all points of the run lie within 32766 pixels of the test point in x and y, and the
/// test point within 2^20 of the origin. The foot on an edge is computed from a parameter whose products may wrap
/// around. Whatever parameter comes out, it is held within 1e-7 of [0, 1], so the foot lies on the edge or beyond it
/// by less than 0.01 pixels. The computed distance thus falls short of that of the box by no more than this; the
/// slack is twice as much, for rounding.
template <>
class FarRunFilter<tagPOINT> {
  public:
    static constexpr DWORD kRun = 16;

    explicit FarRunFilter(const tagPOINT& test) : testX_(test.x), testY_(test.y) {}

    bool isEnabled() const {
        return isWithin(testX_, kLargestTestCoordinate) && isWithin(testY_, kLargestTestCoordinate);
    }

    bool isFarther(const tagPOINT* points, double reach) const {
        constexpr double kSlack = 0.02;
        const Box box = boxAround(points);
        if (box.left < -kLargestOffset || box.top < -kLargestOffset || box.right > kLargestOffset ||
            box.bottom > kLargestOffset) {
            return false;
        }
        const frame::Int32 dx = box.left > 0 ? box.left : box.right < 0 ? -box.right : 0;
        const frame::Int32 dy = box.top > 0 ? box.top : box.bottom < 0 ? -box.bottom : 0;
        return static_cast<double>(dx * dx + dy * dy) > (reach + kSlack) * (reach + kSlack);
    }

  private:
    static constexpr frame::Int32 kLargestTestCoordinate = 1 << 20;
    static constexpr frame::Int32 kLargestOffset = 32766;

    /// Relative to the test point.
    struct Box {
        frame::Int32 left;
        frame::Int32 top;
        frame::Int32 right;
        frame::Int32 bottom;
    };

    static constexpr bool isWithin(frame::Int32 value, frame::Int32 bound) {
        return -bound <= value && value <= bound;
    }

    /// Four points relative to the test point, x and y in turn; far ones become -32768 or 32767.
    static __m128i fourOffsets(const tagPOINT* points, __m128i test) {
        const __m128i lowPair = _mm_loadu_si128(reinterpret_cast<const __m128i*>(points));
        const __m128i highPair = _mm_loadu_si128(reinterpret_cast<const __m128i*>(points + 2));
        return _mm_packs_epi32(_mm_sub_epi32(lowPair, test), _mm_sub_epi32(highPair, test));
    }

    /// The box around points[0] to points[kRun].
    Box boxAround(const tagPOINT* points) const {
        const __m128i test = _mm_set_epi32(testY_, testX_, testY_, testX_);
        __m128i low = fourOffsets(points, test);
        __m128i high = low;
        for (const DWORD first : {DWORD{4}, DWORD{8}, DWORD{12}, kRun - 3}) {
            const __m128i offsets = fourOffsets(points + first, test);
            low = _mm_min_epi16(low, offsets);
            high = _mm_max_epi16(high, offsets);
        }
        low = _mm_min_epi16(low, _mm_srli_si128(low, 8));
        low = _mm_min_epi16(low, _mm_srli_si128(low, 4));
        high = _mm_max_epi16(high, _mm_srli_si128(high, 8));
        high = _mm_max_epi16(high, _mm_srli_si128(high, 4));
        return {lane(low, 0), lane(low, 1), lane(high, 0), lane(high, 1)};
    }

    static frame::Int32 lane(__m128i lanes, int index) {
        const frame::Int32 both = _mm_cvtsi128_si32(lanes);
        return static_cast<std::int16_t>(index == 0 ? both & 0xFFFF : (both >> 16) & 0xFFFF);
    }

    frame::Int32 testX_;
    frame::Int32 testY_;
};

}  // namespace velquad::polygon

#endif  // VELQUAD_POLYGON_FAR_RUN_FILTER_H
