// Thinning of an outline by percentage and by deviation, and the size of its runs. All in place.
#include "geometry/distance.h"
#include "polygon/mini_vector_impl.h"
#include "polygon/point_traits.h"
#include "velquad/polygon.h"

using velquad::frame::samePoint;

namespace {

/// Behind the last kept point, adds the last point of the input, unless the two are equal.
DWORD appendLast(tagPOINT* points, DWORD kept, const tagPOINT& last) {
    if (!samePoint(points[kept - 1], last)) points[kept++] = last;
    return kept;
}

struct PassResult {
    DWORD count;
    bool hasRemoved;
};

/// One pass: judges each odd point by its two neighbours. A point is stored at its own place or before it, so the
/// points still to be read are those of the input.
PassResult removeNearOddPoints(tagPOINT* points, DWORD count, double maximalDeviation) {
    const tagPOINT last = points[count - 1];
    PassResult result{1, false};
    for (DWORD i = 2; i < count; i += 2) {
        const tagPOINT middle = points[i - 1];
        const tagPOINT next = points[i];
        // Kept: the squared distance is compared with the deviation as it is given.
        if (velquad::geometry::distanceToLine(points[i - 2], next, middle, true) > maximalDeviation) {
            points[result.count++] = middle;
        } else {
            result.hasRemoved = true;
        }
        points[result.count++] = next;
    }
    result.count = appendLast(points, result.count, last);
    return result;
}

}  // namespace

extern "C" DWORD polyGetMiniVecCount(const tagPOINT* points, DWORD count, DWORD from, DWORD to, int outside) {
    return velquad::polygon::miniVectorCount(points, count, from, to, outside != 0);
}

extern "C" DWORD polyReducePoints(tagPOINT* points, DWORD count, DWORD percent) {
    const DWORD wanted = count * percent / 100;
    if (points == nullptr || wanted == 0) return 0;
    const DWORD step = count / wanted;
    if (step <= 1) return count;
    const tagPOINT last = points[count - 1];
    DWORD kept = 0;
    // The index is compared by its distance to the end, as the next multiple of the step can exceed 32 bits.
    for (DWORD i = 0;; i += step) {
        points[kept++] = points[i];
        if (count - i <= step) break;
    }
    return appendLast(points, kept, last);
}

extern "C" DWORD polyReducePointsEx(tagPOINT* points, DWORD count, double maximalDeviation,
                                    DWORD maximalPasses) {
    if (points == nullptr || count == 0) return 0;
    for (DWORD pass = 0; pass < maximalPasses; ++pass) {
        const PassResult result = removeNearOddPoints(points, count, maximalDeviation);
        count = result.count;
        if (!result.hasRemoved) break;
    }
    return count;
}
