// Slow, obvious versions of splitting and decomposition, step after step, on vectors that grow.
#ifndef VELQUAD_TESTS_SUPPORT_SPLITTING_REFERENCE_H
#define VELQUAD_TESTS_SUPPORT_SPLITTING_REFERENCE_H

#include <cmath>
#include <cstddef>
#include <optional>
#include <vector>

#include "tests/support/polygon_reference.h"
#include "velquad/types.h"

namespace velquad::test::reference {

inline std::int32_t rounded(double value) {
    const double shifted = value > 0.0 ? value + 0.5 : value - 0.5;
    if (!(shifted > -2147483649.0 && shifted < 2147483648.0)) return -2147483647 - 1;
    return static_cast<std::int32_t>(shifted);
}

inline bool isZero(double fraction) {
    return std::fabs(fraction) < 1e-7;
}

/// The point at a position; none behind the end of an open chain.
inline std::optional<tagPOINT2D> pointAt(const Outline& points, bool closed, DWORD index, double fraction) {
    if (index >= points.size()) return std::nullopt;
    const tagPOINT& a = points[index];
    if (isZero(fraction)) return tagPOINT2D{static_cast<double>(a.x), static_cast<double>(a.y)};
    if (!closed && index == points.size() - 1 && fraction > 0.0) return std::nullopt;
    const tagPOINT& b = points[(index + 1) % (closed ? points.size() - 1 : points.size())];
    return tagPOINT2D{minus(b.x, a.x) * fraction + a.x, minus(b.y, a.y) * fraction + a.y};
}

struct Place {
    DWORD index;
    double fraction;
    tagPOINT point;
};

inline Place snapped(const Outline& points, bool closed, tagPOLY_POSITION position, double tolerance) {
    Place place{position.index, position.fraction, {-2147483647 - 1, -2147483647 - 1}};
    const auto a = pointAt(points, closed, place.index, 0.0);
    const auto b = pointAt(points, closed, place.index, 1.0);
    const auto c = pointAt(points, closed, place.index, place.fraction);
    if (!a || !b || !c) return place;
    const auto distance = [](const tagPOINT2D& p, const tagPOINT2D& q) {
        return std::sqrt((q.x - p.x) * (q.x - p.x) + (q.y - p.y) * (q.y - p.y));
    };
    if (isZero(place.fraction)) {
        place.fraction = 0.0;
    } else if (distance(*c, *a) < tolerance) {
        place.fraction = 0.0;
    } else if (distance(*c, *b) < tolerance) {
        if (closed) {
            place.index = static_cast<DWORD>((place.index + 1) % (points.size() - 1));
            place.fraction = 0.0;
        } else if (place.index + 1 < points.size()) {
            place.index += 1;
            place.fraction = 0.0;
        }
    }
    const auto point = pointAt(points, closed, place.index, place.fraction);
    if (point) place.point = {rounded(point->x), rounded(point->y)};
    return place;
}

inline Outline withoutDoublePoints(const Outline& points) {
    Outline kept;
    for (const tagPOINT& p : points) {
        if (kept.empty() || !same(kept.back(), p)) kept.push_back(p);
    }
    return kept;
}

struct Pieces {
    Outline first;
    Outline second;
};

inline std::size_t withoutClosingPoint(const Outline& points) {
    return same(points.front(), points.back()) ? points.size() - 1 : points.size();
}

/// Both pieces of a split; the second one means something for closed outlines only.
inline Pieces split(const Outline& points, bool closed, double tolerance, const Outline& cut) {
    const double snap = tolerance == kNoValue ? 0.0 : tolerance;
    const Nearest nearestA = distance(points, closed, cut.front(), true);
    const Nearest nearestB = distance(points, closed, cut.back(), true);
    Place lo = snapped(points, closed, {nearestA.index, nearestA.fraction}, snap);
    Place hi = snapped(points, closed, {nearestB.index, nearestB.fraction}, snap);
    const int order = comparePositions({lo.index, lo.fraction}, {hi.index, hi.fraction});
    if (order > 0) std::swap(lo, hi);
    const std::size_t m = cut.size();
    Pieces pieces;
    Outline& one = pieces.first;
    for (std::size_t i = isZero(lo.fraction) ? lo.index : lo.index + 1; i <= hi.index; ++i)
        one.push_back(points[i]);
    if (!isZero(hi.fraction)) one.push_back(hi.point);
    for (std::size_t k = 1; k + 1 < m; ++k)
        one.push_back(order <= 0 ? cut[m - 1 - k] : cut[k]);
    if (!isZero(lo.fraction) && order != 0) one.push_back(lo.point);
    one.push_back(one.front());
    one = withoutDoublePoints(one);
    Outline& two = pieces.second;
    const std::size_t n = withoutClosingPoint(points);
    if (isZero(hi.fraction)) two.push_back(hi.point);
    for (std::size_t i = std::size_t{hi.index} + 1; i <= lo.index + n; ++i)
        two.push_back(points[i % n]);
    if (!isZero(lo.fraction)) two.push_back(lo.point);
    for (std::size_t k = 1; k + 1 < m; ++k)
        two.push_back(order <= 0 ? cut[k] : cut[m - 1 - k]);
    if (!isZero(hi.fraction)) two.push_back(hi.point);
    two.push_back(two.front());
    two = withoutDoublePoints(two);
    return pieces;
}

/// Both arcs between two positions; the second one means something for closed outlines only. None for a first
/// position that is nowhere, and where vertices are asked for that do not exist.
inline std::optional<Pieces> decompose(const Outline& points, bool closed, double tolerance,
                                       tagPOLY_POSITION a, tagPOLY_POSITION b) {
    if (points.size() < 2 || a.index == 0xFFFFFFFF || a.fraction == kNoValue) return std::nullopt;
    if (b.index == 0xFFFFFFFF || b.fraction == kNoValue) b = a;
    const double snap = tolerance == kNoValue ? 0.0 : tolerance;
    Place lo = snapped(points, closed, a, snap);
    Place hi = snapped(points, closed, b, snap);
    if (comparePositions({lo.index, lo.fraction}, {hi.index, hi.fraction}) > 0) std::swap(lo, hi);
    if (hi.index >= points.size() && hi.index != lo.index) return std::nullopt;
    Pieces pieces;
    pieces.first.push_back(lo.point);
    for (std::size_t i = std::size_t{lo.index} + 1; i <= hi.index; ++i)
        pieces.first.push_back(points[i]);
    pieces.first.push_back(hi.point);
    pieces.first = withoutDoublePoints(pieces.first);
    const std::size_t n = withoutClosingPoint(points);
    pieces.second.push_back(hi.point);
    for (std::size_t i = std::size_t{hi.index} + 1; i <= lo.index + n; ++i)
        pieces.second.push_back(points[i % n]);
    pieces.second.push_back(lo.point);
    pieces.second = withoutDoublePoints(pieces.second);
    return pieces;
}

/// All pieces of a list of positions, as many as fit; none when a piece cannot be made.
inline std::optional<std::vector<Outline>> decompose(const Outline& points, bool closed, double tolerance,
                                                     const Positions& positions, DWORD room) {
    std::vector<Outline> result;
    const auto add = [&](const tagPOLY_POSITION& a, const tagPOLY_POSITION& b, bool isWrapped) {
        const auto pieces = decompose(points, closed, tolerance, a, b);
        if (pieces) result.push_back(isWrapped ? pieces->second : pieces->first);
        return pieces.has_value();
    };
    if (closed) {
        for (std::size_t k = 1; k <= positions.size(); ++k) {
            if (result.size() + 1 == room) return result;
            if (!add(positions[k - 1], positions[k % positions.size()], k == positions.size())) {
                return std::nullopt;
            }
        }
        return result;
    }
    const tagPOLY_POSITION start{0, 0.0};
    if (positions.front().index != 0 || positions.front().fraction > 1e-7) {
        if (room == 1) return result;
        if (!add(start, positions.front(), false)) return std::nullopt;
    }
    for (std::size_t i = 1; i < positions.size(); ++i) {
        if (result.size() + 1 == room) return result;
        if (!add(positions[i - 1], positions[i], false)) return std::nullopt;
    }
    if (positions.back().index >= points.size() - 1 || result.size() + 1 == room) return result;
    if (!add(start, positions.back(), false)) return std::nullopt;
    return result;
}

}  // namespace velquad::test::reference

#endif  // VELQUAD_TESTS_SUPPORT_SPLITTING_REFERENCE_H
