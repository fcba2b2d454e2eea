// Separation of touching edges by moving single vertices to a neighbouring pixel.
#include "frame/convert.h"
#include "polygon/double_points_impl.h"
#include "polygon/point_traits.h"
#include "polygon/simplicity_impl.h"
#include "velquad/polygon.h"

using velquad::frame::samePoint;
using velquad::frame::wrapAdd;
using velquad::polygon::EdgePair;
using velquad::polygon::removeDoublePoints;

namespace {

using SimplicityTest = velquad::polygon::SimplicityTest<tagPOINT>;

constexpr DWORD kStuck = 0xFFFFFFFFU;

/// The eight neighbours, clockwise on an image from the one above.
constexpr tagPOINT kNeighbors[] = {{0, -1}, {1, -1}, {1, 0}, {1, 1}, {0, 1}, {-1, 1}, {-1, 0}, {-1, -1}};

enum class Move { kNone, kImproves, kMakesSimple };

/// Tells whether a vertex stands on the one behind it or on the one before it. The first vertex has none before it.
bool repeatsNeighbor(const tagPOINT* points, DWORD count, DWORD vertex) {
    const DWORD next = vertex + 1 == count ? 0 : vertex + 1;
    return samePoint(points[vertex], points[next]) ||
           (vertex != 0 && samePoint(points[vertex], points[vertex - 1]));
}

/// Moves a vertex to the first neighbouring pixel that makes the outline simple or its first fault come later than
/// at edge `fault`; back to where it was when there is none.
Move moveVertex(tagPOINT* points, DWORD count, DWORD vertex, DWORD fault, SimplicityTest& test) {
    const tagPOINT saved = points[vertex];
    for (const tagPOINT& step : kNeighbors) {
        points[vertex] = {wrapAdd(saved.x, step.x), wrapAdd(saved.y, step.y)};
        if (repeatsNeighbor(points, count, vertex)) continue;
        const EdgePair moved = test.firstFault(points, count, true);
        if (SimplicityTest::isSimple(moved)) return Move::kMakesSimple;
        if (moved.first > fault) return Move::kImproves;
    }
    points[vertex] = saved;
    return Move::kNone;
}

}  // namespace

extern "C" DWORD polySeperateTouchingSegments(tagPOINT* points, DWORD count) {
    if (points == nullptr) return count;
    SimplicityTest test;
    while (true) {
        count = removeDoublePoints(points, count);
        const EdgePair fault = test.firstFault(points, count, true);
        if (SimplicityTest::isSimple(fault)) return count;
        Move move = Move::kNone;
        for (DWORD end = 0; end < 2 && move == Move::kNone; ++end)
            move = moveVertex(points, count, (fault.first + end) % count, fault.first, test);
        if (move == Move::kMakesSimple) return removeDoublePoints(points, count);
        if (move == Move::kNone) return kStuck;
    }
}
