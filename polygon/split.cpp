// Splitting an outline along a cut line.
//
// Both ends of the cut line are projected onto the outline, which falls apart there: one piece follows the outline
// from the earlier place to the later one, the other one from the later place round to the earlier one, and both go
// back along the inner points of the cut line. O(count + cutCount) plus one record a piece.
#include "polygon/measures_impl.h"
#include "polygon/piece.h"
#include "velquad/polygon.h"

using velquad::frame::LockedBlock;
using velquad::polygon::CutPieces;
using velquad::polygon::CutPlace;
using velquad::polygon::CutSpan;
using velquad::polygon::PieceWriter;

namespace {

/// The line along which an outline is split.
struct CutLine {
    const tagPOINT* points;
    DWORD count;

    const tagPOINT& front() const { return points[0]; }
    const tagPOINT& back() const { return points[count - 1]; }

    void addInnerForwards(PieceWriter& piece) const {
        for (DWORD i = 1; i + 1 < count; ++i)
            piece.add(points[i]);
    }
    void addInnerBackwards(PieceWriter& piece) const {
        for (DWORD i = count - 2; i >= 1; --i)
            piece.add(points[i]);
    }
};

/// The place of an outline that lies nearest to an end of the cut line.
CutPlace nearestCutPlace(const tagPOINT* points, DWORD count, bool closed, const tagPOINT& end,
                         double tolerance) {
    const velquad::polygon::NearestPlace nearest =
        velquad::polygon::nearestPlace(points, count, closed, end, true);
    return velquad::polygon::snappedPlace(points, count, closed, {nearest.index, nearest.fraction},
                                          tolerance);
}

/// The piece from the earlier place to the later one.
LockedBlock innerPiece(const tagPOINT* points, const CutSpan& span, const CutLine& cut) {
    const std::uint64_t low = span.low.position.index;
    const std::uint64_t high = span.high.position.index;
    PieceWriter piece(high - low + cut.count + 1);
    if (!piece) return {};
    piece.addVertices(points, span.low.isBehindVertex() ? low + 1 : low, high + 1);
    if (span.high.isBehindVertex()) piece.add(span.high.roundedPoint());
    if (span.order > 0) {
        cut.addInnerForwards(piece);
    } else {
        cut.addInnerBackwards(piece);
    }
    if (span.low.isBehindVertex() && span.order != 0) piece.add(span.low.roundedPoint());
    piece.addClosingPoint();
    return piece.finish();
}

/// The piece from the later place round to the earlier one.
LockedBlock outerPiece(const tagPOINT* points, DWORD count, const CutSpan& span, const CutLine& cut) {
    const std::uint64_t low = span.low.position.index;
    const std::uint64_t high = span.high.position.index;
    const DWORD period = velquad::polygon::countWithoutClosingPoint(points, count);
    const std::uint64_t vertices = low + period - high;
    PieceWriter piece(vertices + cut.count + 1);
    if (!piece) return {};
    // The later place stands in front when it is a vertex, and behind the cut line when it is not.
    if (!span.high.isBehindVertex()) piece.add(span.high.roundedPoint());
    piece.addVerticesAround(points, period, high + 1, vertices);
    if (span.low.isBehindVertex()) piece.add(span.low.roundedPoint());
    if (span.order > 0) {
        cut.addInnerBackwards(piece);
    } else {
        cut.addInnerForwards(piece);
    }
    if (span.high.isBehindVertex()) piece.add(span.high.roundedPoint());
    piece.addClosingPoint();
    return piece.finish();
}

}  // namespace

bool polySplit(const tagPOINT* points, DWORD count, int closed, double tolerance, const tagPOINT* cut,
               DWORD cutCount, void** out1, void** out2) {
    if (points == nullptr || count < 3 || cut == nullptr || cutCount < 2) {
        return velquad::polygon::refuseCut(out1, out2);
    }
    const bool isClosed = closed != 0;
    const double snap = velquad::polygon::snapTolerance(tolerance);
    const CutLine line{cut, cutCount};
    const CutSpan span =
        velquad::polygon::spanBetween(nearestCutPlace(points, count, isClosed, line.front(), snap),
                                      nearestCutPlace(points, count, isClosed, line.back(), snap));
    CutPieces pieces;
    if (out1 != nullptr) {
        pieces.first = innerPiece(points, span, line);
        if (!pieces.first) return velquad::polygon::refuseCut(out1, out2);
    }
    if (isClosed && out2 != nullptr) {
        pieces.second = outerPiece(points, count, span, line);
        if (!pieces.second) return velquad::polygon::refuseCut(out1, out2);
    }
    pieces.release(out1, out2);
    return true;
}
