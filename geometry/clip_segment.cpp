// Clipping of a segment to a rectangle of doubles: each end in turn is cut at every edge that it lies beyond.
#include <cmath>

#include "frame/primitives.h"
#include "velquad/geometry.h"

using velquad::frame::isSmaller;

namespace {

/// How far beyond an edge a point still counts as inside; such a point is not moved.
constexpr double kMargin = 1e-7;
/// Ends closer than this in both coordinates are one point.
constexpr double kSamePoint = 1e-7;

bool isLeftOf(const tagMAT_RECT2D& rect, const tagPOINT2D& p) {
    return rect.left - kMargin > p.x;
}
bool isRightOf(const tagMAT_RECT2D& rect, const tagPOINT2D& p) {
    return p.x > rect.right + kMargin;
}
bool isAbove(const tagMAT_RECT2D& rect, const tagPOINT2D& p) {
    return rect.top - kMargin > p.y;
}
bool isBelow(const tagMAT_RECT2D& rect, const tagPOINT2D& p) {
    return p.y > rect.bottom + kMargin;
}

/// A coordinate that is not a number is beyond no edge.
bool isInside(const tagMAT_RECT2D& rect, const tagPOINT2D& p) {
    return !isLeftOf(rect, p) && !isRightOf(rect, p) && !isAbove(rect, p) && !isBelow(rect, p);
}

bool areBeyondOneEdge(const tagMAT_RECT2D& rect, const tagPOINT2D& a, const tagPOINT2D& b) {
    return (isLeftOf(rect, a) && isLeftOf(rect, b)) || (isRightOf(rect, a) && isRightOf(rect, b)) ||
           (isAbove(rect, a) && isAbove(rect, b)) || (isBelow(rect, a) && isBelow(rect, b));
}

// The four cuts take `moved` to an edge that it lies beyond and `fixed` does not. They are not mirror images of
// each other: left and top start at the moved end, right and bottom at the fixed one, and the factors of top
// stand in another order. Results differ in their last bits.

void cutLeft(const tagMAT_RECT2D& rect, tagPOINT2D& moved, const tagPOINT2D& fixed) {
    moved.y += (fixed.y - moved.y) * ((rect.left - moved.x) / (fixed.x - moved.x));
    moved.x = rect.left;
}

void cutRight(const tagMAT_RECT2D& rect, tagPOINT2D& moved, const tagPOINT2D& fixed) {
    moved.y = (moved.y - fixed.y) * ((rect.right - fixed.x) / (moved.x - fixed.x)) + fixed.y;
    moved.x = rect.right;
}

void cutTop(const tagMAT_RECT2D& rect, tagPOINT2D& moved, const tagPOINT2D& fixed) {
    moved.x += (rect.top - moved.y) / (fixed.y - moved.y) * (fixed.x - moved.x);
    moved.y = rect.top;
}

void cutBottom(const tagMAT_RECT2D& rect, tagPOINT2D& moved, const tagPOINT2D& fixed) {
    moved.x = (moved.x - fixed.x) * ((rect.bottom - fixed.y) / (moved.y - fixed.y)) + fixed.x;
    moved.y = rect.bottom;
}

/// Cuts one end at all edges. False as soon as nothing of the segment is left inside.
bool cutEnd(const tagMAT_RECT2D& rect, tagPOINT2D& moved, const tagPOINT2D& fixed) {
    if (isLeftOf(rect, moved)) cutLeft(rect, moved, fixed);
    if (areBeyondOneEdge(rect, moved, fixed)) return false;
    if (isRightOf(rect, moved)) cutRight(rect, moved, fixed);
    if (areBeyondOneEdge(rect, moved, fixed)) return false;
    if (isAbove(rect, moved)) cutTop(rect, moved, fixed);
    if (areBeyondOneEdge(rect, moved, fixed)) return false;
    if (isBelow(rect, moved)) cutBottom(rect, moved, fixed);
    return !areBeyondOneEdge(rect, moved, fixed);
}

}  // namespace

extern "C" int matClipLine2D(const tagMAT_RECT2D* rect, tagPOINT2D* p1, tagPOINT2D* p2) {
    const bool isFirstInside = isInside(*rect, *p1);
    const bool isSecondInside = isInside(*rect, *p2);
    if (isFirstInside && isSecondInside) return 1;
    if (isSmaller(kSamePoint, p1->x - p2->x) && isSmaller(kSamePoint, p1->y - p2->y)) {
        return isFirstInside || isSecondInside ? 1 : 0;
    }
    if (areBeyondOneEdge(*rect, *p1, *p2)) return 0;

    tagPOINT2D first = *p1;
    if (!cutEnd(*rect, first, *p2)) return 0;
    *p1 = first;
    // Kept: when it turns out only now that nothing is inside, the first end stays cut.
    tagPOINT2D second = *p2;
    if (!cutEnd(*rect, second, *p1)) return 0;
    *p2 = second;
    return isInside(*rect, *p1) && isInside(*rect, *p2) ? 1 : 0;
}
