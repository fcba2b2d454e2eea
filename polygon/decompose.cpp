// Cutting an outline at positions: into the arc between two of them and the rest, or into all arcs of a sorted list.
// Linear in the points that are copied, plus one record a piece.
#include "polygon/piece.h"
#include "velquad/polygon.h"

using velquad::frame::LockedBlock;
using velquad::polygon::CutPieces;
using velquad::polygon::CutSpan;
using velquad::polygon::PieceWriter;
using velquad::polygon::refuseCut;
using velquad::polygon::snappedPlace;

namespace {

constexpr DWORD kNoIndex = 0xFFFFFFFF;
/// A position up to this far behind the first point is the start of a chain.
constexpr double kStartTolerance = 1e-7;

/// An outline and how positions on it are snapped.
struct Source {
    const tagPOINT* points;
    DWORD count;
    bool closed;
    double tolerance;
};

constexpr bool isNowhere(const tagPOLY_POSITION& position) {
    return position.index == kNoIndex || position.fraction == velquad::kNoValue;
}

/// The chain from the earlier place to the later one.
LockedBlock arcBetween(const Source& source, const CutSpan& span) {
    const std::uint64_t low = span.low.position.index;
    const std::uint64_t high = span.high.position.index;
    PieceWriter piece(high - low + 2);
    if (!piece) return {};
    piece.add(span.low.roundedPoint());
    piece.addVertices(source.points, low + 1, high + 1);
    piece.add(span.high.roundedPoint());
    return piece.finish();
}

/// The chain from the later place round to the earlier one.
LockedBlock arcAround(const Source& source, const CutSpan& span) {
    const std::uint64_t low = span.low.position.index;
    const std::uint64_t high = span.high.position.index;
    const DWORD period = velquad::polygon::countWithoutClosingPoint(source.points, source.count);
    const std::uint64_t vertices = low + period - high;
    PieceWriter piece(vertices + 3);
    if (!piece) return {};
    piece.add(span.high.roundedPoint());
    piece.addVerticesAround(source.points, period, high + 1, vertices);
    piece.add(span.low.roundedPoint());
    return piece.finish();
}

/// See `matDecomposePolygon`.
bool decompose(const Source& source, const tagPOLY_POSITION& position1, const tagPOLY_POSITION& position2,
               void** out1, void** out2) {
    if (source.points == nullptr || source.count < 2 || isNowhere(position1)) return refuseCut(out1, out2);
    const tagPOLY_POSITION& otherEnd = isNowhere(position2) ? position1 : position2;
    const auto place = [&](const tagPOLY_POSITION& position) {
        return snappedPlace(source.points, source.count, source.closed, position, source.tolerance);
    };
    const CutSpan span = velquad::polygon::spanBetween(place(position1), place(otherEnd));
    // Vertices behind the last one are not there to be copied.
    const DWORD high = span.high.position.index;
    if (high >= source.count && high != span.low.position.index) return refuseCut(out1, out2);
    CutPieces pieces;
    if (out1 != nullptr) {
        pieces.first = arcBetween(source, span);
        if (!pieces.first) return refuseCut(out1, out2);
    }
    if (source.closed && out2 != nullptr) {
        pieces.second = arcAround(source, span);
        if (!pieces.second) return refuseCut(out1, out2);
    }
    pieces.release(out1, out2);
    return true;
}

/// Pieces in a caller's array, which is given back empty unless the work is done to its end.
class PieceList {
  public:
    PieceList(void** handles, DWORD room) : handles_(handles), room_(room) {}

    /// Kept: one entry of the array is never used.
    bool isFull() const { return number_ + 1 == room_; }
    DWORD number() const { return number_; }

    void add(void* handle) { handles_[number_++] = handle; }

    void freeAll() {
        while (number_ > 0) {
            polyFree(handles_[--number_]);
            handles_[number_] = nullptr;
        }
    }

  private:
    void** handles_;
    DWORD room_;
    DWORD number_ = 0;
};

/// Adds the arc between two positions. @return false when there is none.
bool addArc(const Source& source, const tagPOLY_POSITION& from, const tagPOLY_POSITION& to,
            PieceList& pieces) {
    void* handle = nullptr;
    if (!decompose(source, from, to, &handle, nullptr)) return false;
    pieces.add(handle);
    return true;
}

/// Adds the arc that leads from the later position over the end of a closed outline to the earlier one.
bool addArcAround(const Source& source, const tagPOLY_POSITION& from, const tagPOLY_POSITION& to,
                  PieceList& pieces) {
    void* handle = nullptr;
    if (!decompose(source, from, to, nullptr, &handle)) return false;
    pieces.add(handle);
    return true;
}

bool decomposeChain(const Source& source, const tagPOLY_POSITION* positions, DWORD positionCount,
                    PieceList& pieces) {
    constexpr tagPOLY_POSITION kStart{0, 0.0};
    const tagPOLY_POSITION& first = positions[0];
    const tagPOLY_POSITION& last = positions[positionCount - 1];
    if (first.index != 0 || first.fraction > kStartTolerance) {
        if (pieces.isFull()) return true;
        if (!addArc(source, kStart, first, pieces)) return false;
    }
    for (DWORD i = 1; i < positionCount; ++i) {
        if (pieces.isFull()) return true;
        if (!addArc(source, positions[i - 1], positions[i], pieces)) return false;
    }
    if (last.index >= source.count - 1 || pieces.isFull()) return true;
    // Kept: the last piece leads from the start of the chain to the last position, not from there to the end.
    return addArc(source, kStart, last, pieces);
}

bool decomposeRing(const Source& source, const tagPOLY_POSITION* positions, DWORD positionCount,
                   PieceList& pieces) {
    for (DWORD i = 1; i < positionCount; ++i) {
        if (pieces.isFull()) return true;
        if (!addArc(source, positions[i - 1], positions[i], pieces)) return false;
    }
    return pieces.isFull() || addArcAround(source, positions[positionCount - 1], positions[0], pieces);
}

}  // namespace

bool matDecomposePolygon(const tagPOINT* points, DWORD count, int closed, double tolerance, DWORD index1,
                         double fraction1, DWORD index2, double fraction2, void** out1, void** out2) {
    const Source source{points, count, closed != 0, velquad::polygon::snapTolerance(tolerance)};
    return decompose(source, {index1, fraction1}, {index2, fraction2}, out1, out2);
}

bool polyDecompose(const tagPOINT* points, DWORD count, int closed, double tolerance,
                   const tagPOLY_POSITION* positions, DWORD positionCount, void** handles, DWORD room,
                   DWORD* number) {
    if (number == nullptr) return false;
    *number = 0;
    if (points == nullptr || positions == nullptr || handles == nullptr || positionCount == 0 || room == 0) {
        return false;
    }
    const Source source{points, count, closed != 0, velquad::polygon::snapTolerance(tolerance)};
    PieceList pieces(handles, room);
    const bool isDone = source.closed ? decomposeRing(source, positions, positionCount, pieces)
                                      : decomposeChain(source, positions, positionCount, pieces);
    if (!isDone) pieces.freeAll();
    *number = pieces.number();
    return isDone;
}
