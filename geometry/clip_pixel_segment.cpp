// Clipping of a segment between pixels to a rectangle of pixels.
//
// The method of D. Cohen and I. Sutherland (W. M. Newman, R. F. Sproull, "Principles of Interactive Computer
// Graphics", 1973): a code per end tells beyond which edges it lies. Ends beyond one edge together have nothing
// inside; otherwise an outer end moves along the segment to one of its edges. A moved end stays between where it
// was and the other end, so it never gets beyond the same edge again: at most four moves an end.
#include <cstdint>

#include "frame/convert.h"
#include "velquad/geometry.h"

using velquad::frame::Int32;

namespace {

struct PixelRect {
    Int32 left;
    Int32 top;
    Int32 right;
    Int32 bottom;
};

struct Pixel {
    Int32 x;
    Int32 y;
};

enum Outcode : unsigned int { kRightOf = 1, kLeftOf = 2, kBelow = 4, kAbove = 8 };

unsigned int outcodeOf(const PixelRect& rect, const Pixel& p) {
    unsigned int code = 0;
    if (p.x > rect.right) code |= kRightOf;
    if (p.x < rect.left) code |= kLeftOf;
    if (p.y > rect.bottom) code |= kBelow;
    if (p.y < rect.top) code |= kAbove;
    return code;
}

std::uint64_t magnitude(std::int64_t value) {
    return static_cast<std::uint64_t>(value < 0 ? -value : value);
}

/// from + part * extent / whole with |part| <= |whole|, the quotient truncated towards zero. The three are
/// differences of coordinates, below 2^32 in size, so the product of two magnitudes fits 64 bits.
Int32 cutCoordinate(Int32 from, std::int64_t part, std::int64_t extent, std::int64_t whole) {
    const auto quotient = static_cast<std::int64_t>(magnitude(part) * magnitude(extent) / magnitude(whole));
    const bool isNegative = (part < 0) != (extent < 0) ? whole > 0 : whole < 0;
    return static_cast<Int32>(from + (isNegative ? -quotient : quotient));
}

/// Moves an outer end to the first of its edges, in the order left, right, bottom, top. The other end is not
/// beyond that edge, so the divisor is not 0.
Pixel moveToEdge(const PixelRect& rect, unsigned int code, const Pixel& moved, const Pixel& other) {
    const std::int64_t extentX = std::int64_t{other.x} - moved.x;
    const std::int64_t extentY = std::int64_t{other.y} - moved.y;
    if ((code & (kLeftOf | kRightOf)) != 0) {
        const Int32 x = (code & kLeftOf) != 0 ? rect.left : rect.right;
        return {x, cutCoordinate(moved.y, std::int64_t{x} - moved.x, extentY, extentX)};
    }
    const Int32 y = (code & kBelow) != 0 ? rect.bottom : rect.top;
    return {cutCoordinate(moved.x, std::int64_t{y} - moved.y, extentX, extentY), y};
}

/// A squared length, which may need 65 bits.
struct WideSquare {
    bool carry;
    std::uint64_t low;
};

WideSquare squaredDistance(const Pixel& a, const Pixel& b) {
    const std::uint64_t dx = magnitude(std::int64_t{a.x} - b.x);
    const std::uint64_t dy = magnitude(std::int64_t{a.y} - b.y);
    const std::uint64_t sum = dx * dx + dy * dy;
    return {sum < dx * dx, sum};
}

bool isGreater(const WideSquare& a, const WideSquare& b) {
    return a.carry != b.carry ? a.carry : a.low > b.low;
}

int clipPixelSegment(const int* rectangle, tagPOINT* p1, tagPOINT* p2) {
    if (rectangle == nullptr || p1 == nullptr || p2 == nullptr) return 0;
    const PixelRect rect{rectangle[0], rectangle[1], rectangle[2], rectangle[3]};
    const Pixel start{static_cast<Int32>(p1->x), static_cast<Int32>(p1->y)};
    Pixel first = start;
    Pixel second{static_cast<Int32>(p2->x), static_cast<Int32>(p2->y)};
    unsigned int firstCode = outcodeOf(rect, first);
    unsigned int secondCode = outcodeOf(rect, second);
    if (firstCode == 0 && secondCode == 0) return 1;

    while (firstCode != 0 || secondCode != 0) {
        if ((firstCode & secondCode) != 0) return 0;
        if (firstCode == 0) {
            const Pixel inner = first;
            first = second;
            second = inner;
            firstCode = secondCode;
            secondCode = 0;
        }
        first = moveToEdge(rect, firstCode, first, second);
        firstCode = outcodeOf(rect, first);
    }

    // The ends may have changed places above; the one that is nearer to the old first end is the first again.
    const bool isExchanged = isGreater(squaredDistance(start, first), squaredDistance(start, second));
    const Pixel& nearer = isExchanged ? second : first;
    const Pixel& farther = isExchanged ? first : second;
    *p1 = {nearer.x, nearer.y};
    *p2 = {farther.x, farther.y};
    return 1;
}

}  // namespace

extern "C" int matClipLine2L(const int* rect, tagPOINT* p1, tagPOINT* p2) {
    return clipPixelSegment(rect, p1, p2);
}

extern "C" int matClipLine(const int* rect, tagPOINT* p1, tagPOINT* p2) {
    return clipPixelSegment(rect, p1, p2);
}
