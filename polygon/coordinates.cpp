// Operations on all coordinates of an outline: moving, scaling, rounding, extent.
#include <emmintrin.h>

#include <cstdint>
#include <cstring>

#include "frame/convert.h"
#include "polygon/position.h"
#include "velquad/polygon.h"

using velquad::frame::Int32;
using velquad::frame::wrapAdd;

namespace {

/// Both products of a point at once, truncated as `truncToInt32` does.
tagPOINT scaled(tagPOINT point, __m128d scale) {
    static_assert(sizeof(tagPOINT) == sizeof(std::int64_t));
    std::int64_t bits = 0;
    std::memcpy(&bits, &point, sizeof bits);
    const __m128d product = _mm_mul_pd(_mm_cvtepi32_pd(_mm_cvtsi64_si128(bits)), scale);
    bits = _mm_cvtsi128_si64(_mm_cvttpd_epi32(product));
    std::memcpy(&point, &bits, sizeof bits);
    return point;
}

}  // namespace

extern "C" int polyTranslate(tagPOINT* points, DWORD count, int dx, int dy) {
    if (points == nullptr || count == 0) return 0;
    for (DWORD i = 0; i < count; ++i) {
        points[i].x = wrapAdd(points[i].x, dx);
        points[i].y = wrapAdd(points[i].y, dy);
    }
    return 1;
}

extern "C" int polyScale(tagPOINT* points, DWORD count, double scaleX, double scaleY) {
    if (points == nullptr || count == 0) return 0;
    const __m128d scale = _mm_set_pd(scaleY, scaleX);
    for (DWORD i = 0; i < count; ++i)
        points[i] = scaled(points[i], scale);
    return 1;
}

extern "C" int polyMakeInt(double value) {
    return velquad::polygon::makeInt(value);
}

extern "C" void polyGetBoundingRect(const tagPOINT* points, DWORD count, RECT* rect) {
    constexpr Int32 kLargest = 2147483647;
    constexpr Int32 kSmallest = -kLargest - 1;
    if (rect == nullptr) return;
    Int32 left = kLargest;
    Int32 top = kLargest;
    Int32 right = kSmallest;
    Int32 bottom = kSmallest;
    if (points == nullptr) count = 0;
    for (DWORD i = 0; i < count; ++i) {
        const Int32 x = points[i].x;
        const Int32 y = points[i].y;
        left = x < left ? x : left;
        top = y < top ? y : top;
        right = x > right ? x : right;
        bottom = y > bottom ? y : bottom;
    }
    SetRect(rect, left, top, right, bottom);
}
