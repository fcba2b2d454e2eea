// Operations on all coordinates of an outline: moving, scaling, rounding, extent.
#include "frame/convert.h"
#include "polygon/position.h"
#include "velquad/polygon.h"

using velquad::frame::Int32;
using velquad::frame::wrapAdd;

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
    for (DWORD i = 0; i < count; ++i) {
        points[i].x = velquad::frame::truncToInt32(static_cast<double>(points[i].x) * scaleX);
        points[i].y = velquad::frame::truncToInt32(static_cast<double>(points[i].y) * scaleY);
    }
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
