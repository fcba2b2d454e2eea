// The ellipse inside a pixel rectangle: one quarter by the midpoint method with integer error terms, the other three
// by mirroring (J. R. Van Aken, An efficient ellipse-drawing algorithm, 1984). Rectangles of up to three pixels in
// width or height have no quarter to mirror and are left to the parameter walker.
#include <cstddef>
#include <cstdint>

#include "frame/convert.h"
#include "frame/global_block.h"
#include "frame/primitives.h"
#include "geometry/rotated_ellipse.h"
#include "geometry/wrapping64.h"
#include "velquad/geometry.h"

using velquad::frame::Int32;
using velquad::frame::wrapAdd;
using velquad::frame::wrapNeg;
using velquad::frame::wrapSub;
using velquad::geometry::Wrapping64;

namespace {

/// The smallest difference of opposite sides that a mirrored quarter can fill.
constexpr Int32 kSmallestMirroredExtent = 3;
/// Points that suffice for an ellipse, per pixel of its longer semi-axis.
constexpr unsigned int kPointsPerPixelOfAxis = 12;

/// One extent of the rectangle, from side to side. An even number of pixels has two middle ones.
struct Extent {
    Int32 difference;
    bool isOdd;
    Int32 semiAxis;

    Extent(Int32 low, Int32 high)
        : difference(wrapSub(high, low)),
          isOdd((wrapAdd(difference, 1) & 1) != 0),
          semiAxis(isOdd ? difference / 2 : wrapAdd(difference, 1) / 2 - 1) {}
};

struct EllipseExtents {
    Extent width;
    Extent height;

    explicit EllipseExtents(const int* rect) : width(rect[0], rect[2]), height(rect[1], rect[3]) {}
};

unsigned int estimatePoints(const EllipseExtents& extents) {
    Int32 longest = 1;
    if (extents.width.semiAxis > longest) longest = extents.width.semiAxis;
    if (extents.height.semiAxis > longest) longest = extents.height.semiAxis;
    return kPointsPerPixelOfAxis * static_cast<unsigned int>(longest);
}

/// Writes points into a caller's buffer and never behind its end.
class BoundedPoints {
  public:
    BoundedPoints(tagPOINT* points, unsigned int capacity) : points_(points), capacity_(capacity) {}

    bool append(std::int64_t x, std::int64_t y) {
        if (count_ >= capacity_) return false;
        points_[count_++] = {static_cast<Int32>(x), static_cast<Int32>(y)};
        return true;
    }
    bool hasRoomFor(std::int64_t more) const { return count_ + more <= capacity_; }
    std::int64_t count() const { return count_; }
    const tagPOINT& operator[](std::int64_t index) const { return points_[index]; }

  private:
    tagPOINT* points_;
    std::int64_t capacity_;
    std::int64_t count_ = 0;
};

/// Lists the quarter from (a, 0) to (0, b). @return false when there is no room.
bool traceQuadrant(Int32 a, Int32 b, BoundedPoints& out) {
    const Wrapping64 aa = Wrapping64(a) * a;
    const Wrapping64 bb = Wrapping64(b) * b;
    const Wrapping64 aa4 = aa * 4;
    const Wrapping64 bb4 = bb * 4;
    std::int64_t x = a;
    std::int64_t y = 0;
    Wrapping64 c = bb4 * x;
    Wrapping64 e1 = Wrapping64(bb.value() >> 1) - bb * 2 * x + aa * 2;
    Wrapping64 e2 = Wrapping64(aa.value() >> 1) - c + bb * 2;
    Wrapping64 f = 0;
    // The steep part: y moves with every point.
    while (e2 < 0) {
        if (!out.append(x, y)) return false;
        f += aa4;
        ++y;
        if (e1 >= 0) {
            c -= bb4;
            --x;
            e2 += f - c + bb * 2;
            e1 -= c;
        } else {
            e2 += f;
        }
        e1 += f + aa * 2;
    }
    // The flat part: x moves with every point.
    for (;;) {
        if (!out.append(x, y)) return false;
        const bool alsoMovesY = e2 < 0;
        c -= bb4;
        e2 -= c;
        --x;
        if (alsoMovesY) {
            f += aa4;
            ++y;
            e2 += f;
        }
        if (x < 0) return true;
        e2 += bb * 2;
    }
}

/// Completes the first quarter to the closed outline around the origin. @return false when there is no room.
bool mirrorQuadrant(const EllipseExtents& extents, BoundedPoints& out) {
    // A point on an axis of symmetry is its own mirror image and is not repeated.
    const Int32 oddWidth = extents.width.isOdd ? 1 : 0;
    const Int32 oddHeight = extents.height.isOdd ? 1 : 0;
    const std::int64_t quarter = out.count() - oddWidth;
    if (!out.hasRoomFor(quarter)) return false;
    for (std::int64_t i = quarter - 1; i >= 0; --i)
        out.append(wrapNeg(wrapAdd(out[i].x, 1 - oddWidth)), out[i].y);
    const std::int64_t half = out.count() - oddHeight;
    if (!out.hasRoomFor(half)) return false;
    for (std::int64_t i = half - 1; i >= 0; --i)
        out.append(out[i].x, wrapNeg(wrapAdd(out[i].y, 1 - oddHeight)));
    return true;
}

DWORD mirroredEllipse(const int* rect, const EllipseExtents& extents, tagPOINT* points,
                      unsigned int capacity) {
    if (points == nullptr) return 0;
    BoundedPoints out(points, capacity);
    if (!traceQuadrant(extents.width.semiAxis, extents.height.semiAxis, out)) return 0;
    if (!mirrorQuadrant(extents, out)) return 0;

    const Int32 offsetX = wrapAdd(wrapAdd(rect[0], extents.width.semiAxis), extents.width.isOdd ? 0 : 1);
    const Int32 offsetY = wrapAdd(rect[1], extents.height.isOdd ? extents.height.difference / 2
                                                                : wrapAdd(extents.height.difference, 1) / 2);
    const std::int64_t count = out.count();
    for (std::int64_t i = 0; i < count; ++i)
        points[i] = {wrapAdd(points[i].x, offsetX), wrapAdd(points[i].y, offsetY)};
    const tagPOINT first = points[0];
    if (velquad::frame::samePoint(first, points[count - 1])) return static_cast<DWORD>(count);
    if (!out.append(first.x, first.y)) return 0;
    return static_cast<DWORD>(out.count());
}

extern "C" {

/// Lets a walk end when it delivers more points than `arg1` tells.
static int countUpTo(tagPOINT, DWORD index, std::uint64_t arg1, std::int64_t) {
    return index < arg1 ? 1 : 0;
}

/// Stores a point at its index. `arg1` is the address of the first point.
static int storePoint(tagPOINT point, DWORD index, std::uint64_t arg1, std::int64_t) {
    reinterpret_cast<tagPOINT*>(static_cast<std::uintptr_t>(arg1))[index] = point;
    return 1;
}

}  // extern "C"

/// The ellipse in a narrow rectangle. It is walked twice, to count and to store, so that it takes no memory and
/// leaves a buffer that is too small as it was.
DWORD narrowEllipse(const int* rect, const EllipseExtents& extents, tagPOINT* points, unsigned int capacity) {
    const double center[2] = {wrapAdd(rect[0], rect[2]) * 0.5, wrapAdd(rect[1], rect[3]) * 0.5};
    const double semiAxisA = extents.width.difference * 0.5;
    const double semiAxisB = extents.height.difference * 0.5;
    const auto walk = [&](velquad::PointCallback callback, std::uint64_t arg1) {
        velquad::geometry::CMatRotatedEllipse ellipse(center, semiAxisA, semiAxisB, 0.0, true, false, 1.0,
                                                      1.0, callback, arg1, 0);
        return ellipse.Trace();
    };
    if (points == nullptr) return walk(nullptr, 0);
    const DWORD count = walk(countUpTo, capacity);
    if (count != 0) walk(storePoint, reinterpret_cast<std::uintptr_t>(points));
    return count;
}

}  // namespace

DWORD matCalcEllipseQuadrant(int a, int b, tagPOINT* points, unsigned int capacity) {
    if (points == nullptr) return 0;
    BoundedPoints out(points, capacity);
    return traceQuadrant(a, b, out) ? static_cast<DWORD>(out.count()) : 0;
}

extern "C" unsigned int matEstimatePointsInEllipse(const int* rect) {
    return rect == nullptr ? 0 : estimatePoints(EllipseExtents(rect));
}

extern "C" DWORD matCalcEllipse(const int* rect, tagPOINT* points, unsigned int capacity) {
    if (rect == nullptr) return 0;
    const EllipseExtents extents(rect);
    const bool isMirrored = extents.width.difference >= kSmallestMirroredExtent &&
                            extents.height.difference >= kSmallestMirroredExtent;
    return isMirrored ? mirroredEllipse(rect, extents, points, capacity)
                      : narrowEllipse(rect, extents, points, capacity);
}

extern "C" void* polyGetEllipse(const int* rect) {
    if (rect == nullptr) return nullptr;
    constexpr SIZE_T kHeaderBytes = offsetof(tagPOLY, points);
    const unsigned int capacity = matEstimatePointsInEllipse(rect);
    velquad::frame::LockedBlock block(velquad::frame::kZeroedMovable,
                                      SIZE_T{capacity} * sizeof(tagPOINT) + kHeaderBytes);
    if (!block) return nullptr;
    auto* record = block.as<tagPOLY>();
    record->count = matCalcEllipse(rect, record->points, capacity);
    return block.releaseHandle(SIZE_T{record->count} * sizeof(tagPOINT) + kHeaderBytes);
}
