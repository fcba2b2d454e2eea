// Removal of self-crossings by cutting loops off, for integer and double points.
#ifndef VELQUAD_POLYGON_SIMPLICITY_REPAIR_IMPL_H
#define VELQUAD_POLYGON_SIMPLICITY_REPAIR_IMPL_H

#include <algorithm>
#include <cstddef>

#include "polygon/mini_vector_impl.h"
#include "polygon/point_traits.h"
#include "polygon/scratch_array.h"
#include "polygon/simplicity_impl.h"
#include "velquad/types.h"

namespace velquad::polygon {

/// A copy of an outline that loops are cut out of.
template <class Point>
class LoopCutter {
  public:
    using Size = MiniVectorSize<Point>;

    /// Copies the points. @return false without memory.
    bool copy(const Point* points, DWORD count) {
        if (!points_.reserve(std::size_t{count} + 1)) return false;
        std::copy(points, points + count, points_.data());
        count_ = count;
        return true;
    }

    const Point* points() const { return points_.data(); }
    DWORD count() const { return count_; }

    EdgePair firstFault(bool closed) { return test_.firstFault(points_.data(), count_, closed); }

    Size loopSize(const EdgePair& fault) const {
        return miniVectorCount(points_.data(), count_, fault.first, fault.second, false);
    }
    Size totalSize() const { return miniVectorCount(points_.data(), count_, 0, count_ - 1, false); }

    /// Deletes the points behind the first edge's start up to the second edge's start.
    void removeLoop(const EdgePair& fault) {
        std::copy(points_.data() + fault.second + 1, points_.data() + count_,
                  points_.data() + fault.first + 1);
        count_ -= fault.second - fault.first;
    }

    /// Deletes all points but those between the starts of the two edges.
    void keepLoop(const EdgePair& fault) {
        std::copy(points_.data() + fault.first + 1, points_.data() + fault.second, points_.data());
        count_ = fault.second - fault.first - 1;
    }

    void close() {
        if (!isClosed(points_.data(), count_)) points_[count_++] = points_[0];
    }

  private:
    ScratchArray<Point> points_;
    DWORD count_ = 0;
    SimplicityTest<Point> test_;
};

/// Cuts off the smaller side of the first fault, again and again. @return false when both sides of a fault are too
/// large to go, or nothing would be left.
template <class Point>
bool cutSmallerSides(LoopCutter<Point>& outline, MiniVectorSize<Point> maximalLoopSize) {
    using Size = MiniVectorSize<Point>;
    while (true) {
        const EdgePair fault = outline.firstFault(true);
        if (SimplicityTest<Point>::isSimple(fault)) return true;
        const Size loop = outline.loopSize(fault);
        const Size rest = outline.totalSize() - loop;
        if (loop >= maximalLoopSize && rest >= maximalLoopSize) return false;
        const DWORD countBefore = outline.count();
        const Point lastBefore = outline.points()[countBefore - 1];
        if (loop < rest) {
            outline.removeLoop(fault);
        } else {
            // Neighbours that fold back have no point between them to keep.
            if (fault.second - fault.first < 2) return false;
            outline.keepLoop(fault);
        }
        outline.close();
        // Doubles that are equal in pairs only can lead to a last point that is cut off and put back for ever.
        const Point last = outline.points()[outline.count() - 1];
        if (outline.count() == countBefore && last.x == lastBefore.x && last.y == lastBefore.y) return false;
    }
}

/// See `polyMakeSimple` and `poly2dMakeSimple`.
template <class Point>
DWORD makeSimple(Point* points, DWORD count, MiniVectorSize<Point> maximalLoopSize) {
    if (points == nullptr || count == 0) return 0;
    const bool wasClosed = isClosed(points, count);
    LoopCutter<Point> outline;
    if (!outline.copy(points, count)) return 0;
    outline.close();
    if (!cutSmallerSides(outline, maximalLoopSize)) return 0;
    // Kept: an outline that came without a closing point gets none, and yet the count includes it.
    const DWORD stored = wasClosed ? outline.count() : outline.count() - 1;
    std::copy(outline.points(), outline.points() + stored, points);
    return outline.count();
}

/// See `polyMakeSimpleEx` and `poly2dMakeSimpleEx`.
template <class Point>
DWORD makeSimpleEx(Point* points, DWORD count, bool closed, MiniVectorSize<Point> maximalLoopSize) {
    if (closed) return makeSimple(points, count, maximalLoopSize);
    if (points == nullptr || count == 0) return 0;
    LoopCutter<Point> chain;
    if (!chain.copy(points, count)) return 0;
    while (true) {
        const EdgePair fault = chain.firstFault(false);
        if (SimplicityTest<Point>::isSimple(fault)) break;
        if (chain.loopSize(fault) >= maximalLoopSize) return 0;
        chain.removeLoop(fault);
    }
    std::copy(chain.points(), chain.points() + chain.count(), points);
    return chain.count();
}

}  // namespace velquad::polygon

#endif  // VELQUAD_POLYGON_SIMPLICITY_REPAIR_IMPL_H
