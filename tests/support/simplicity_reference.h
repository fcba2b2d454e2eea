// The plain versions of the simplicity test and of the repairs: loops over all pairs, one change at a time. The
// library's versions must give the same bits.
//
// A family tells what integer and double outlines differ in: `Point`, `Size`, `same`, `cross` (contact of two
// segments), `positionOnLine` and `runSize`.
#ifndef VELQUAD_TESTS_SUPPORT_SIMPLICITY_REFERENCE_H
#define VELQUAD_TESTS_SUPPORT_SIMPLICITY_REFERENCE_H

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "tests/support/polygon_reference.h"
#include "velquad/types.h"

namespace velquad::test::reference {

struct Contact {
    bool exists;
    bool isParallel;
};

struct IntegerFamily {
    using Point = tagPOINT;
    using Size = std::uint32_t;

    static bool same(const Point& a, const Point& b) { return reference::same(a, b); }
    static Contact cross(const Point& a0, const Point& a1, const Point& b0, const Point& b1) {
        return {doSegmentsMeet(a0, a1, b0, b1), crossLines(a0, a1, b0, b1).isParallel != 0};
    }
    static double positionOnLine(const Point& a, const Point& b, const Point& point) {
        return scaleFactor(a, b, point);
    }
    /// The pixels that the steps from vertex `from` to vertex `to` cover.
    static Size runSize(const std::vector<Point>& points, std::size_t from, std::size_t to) {
        Size sum = 1;
        for (std::size_t i = from; i < to; ++i) {
            const std::int32_t dx = minus(points[i + 1].x, points[i].x);
            const std::int32_t dy = minus(points[i + 1].y, points[i].y);
            const std::int32_t sizeX = dx < 0 ? minus(0, dx) : dx;
            const std::int32_t sizeY = dy < 0 ? minus(0, dy) : dy;
            sum += static_cast<Size>(sizeX > sizeY ? sizeX : sizeY);
        }
        return sum;
    }
};

struct Fault {
    bool exists = false;
    std::size_t first = 0;
    std::size_t second = 0;
};

/// The pair loop.
template <class Family>
Fault findFault(const std::vector<typename Family::Point>& all, bool closed) {
    if (all.empty()) return {};
    std::size_t skipped = 0;
    while (skipped + 1 < all.size() && Family::same(all[skipped], all[skipped + 1]))
        ++skipped;
    if (skipped + 1 == all.size()) return {};
    std::vector<typename Family::Point> points(all.begin() + static_cast<std::ptrdiff_t>(skipped), all.end());
    while (points.size() > 1 && Family::same(points.back(), points.front()))
        points.pop_back();
    if (points.size() == 1) return {};
    while (points.size() > 1 && Family::same(points.back(), points[points.size() - 2]))
        points.pop_back();
    if (points.size() == 1) return {};
    const std::size_t m = points.size();
    const std::size_t edges = closed ? m : m - 1;
    bool isFirstOuterEdge = true;
    for (std::size_t i = 0; i < edges; ++i) {
        const auto& a0 = points[i];
        const auto& a1 = points[(i + 1) % m];
        if (Family::same(a0, a1)) continue;
        bool isAdjacent = true;
        for (std::size_t j = i + 1; j < edges; ++j) {
            const auto& b0 = points[j];
            const auto& b1 = points[(j + 1) % m];
            if (Family::same(b0, b1)) continue;
            const bool wasAdjacent = isAdjacent;
            isAdjacent = false;
            const bool closesOutline = isFirstOuterEdge && j == m - 1;
            const Contact contact = Family::cross(a0, a1, b0, b1);
            if (!contact.exists) continue;
            bool isFault = !wasAdjacent && !closesOutline;
            if (contact.isParallel) {
                const double s0 = Family::positionOnLine(a0, a1, b0);
                const double s1 = Family::positionOnLine(a0, a1, b1);
                if (wasAdjacent) {
                    isFault = s1 < 1.0000001;
                } else if (closesOutline) {
                    isFault = s0 > -1e-7;
                } else if (s0 > 1.0000001) {
                    isFault = !(s1 > 1.0000001);
                } else {
                    isFault = !(s0 < -1e-7 && s1 < -1e-7);
                }
            }
            if (isFault) return {true, i + skipped, j + skipped};
        }
        isFirstOuterEdge = false;
    }
    return {};
}

/// A repaired outline: the result of the call, and the points that it stores.
template <class Family>
struct Repaired {
    std::size_t result = 0;
    std::vector<typename Family::Point> stored;
};

/// @param maximal  how large a side may be to go. @return result 0 when nothing is stored.
template <class Family>
Repaired<Family> makeSimple(const std::vector<typename Family::Point>& outline,
                            typename Family::Size maximal) {
    using Points = std::vector<typename Family::Point>;
    const bool wasClosed = Family::same(outline.front(), outline.back());
    Points points = outline;
    if (!wasClosed) points.push_back(points.front());
    for (int round = 0; round < 100000; ++round) {
        const Fault fault = findFault<Family>(points, true);
        if (!fault.exists) {
            Repaired<Family> repaired{points.size(), points};
            if (!wasClosed) repaired.stored.pop_back();
            return repaired;
        }
        const auto at = [&](std::size_t index) {
            return points.begin() + static_cast<std::ptrdiff_t>(index);
        };
        const auto loop = Family::runSize(points, fault.first, fault.second);
        const auto rest = Family::runSize(points, 0, points.size() - 1) - loop;
        if (loop >= maximal && rest >= maximal) return {};
        if (loop < rest) {
            points.erase(at(fault.first + 1), at(fault.second + 1));
        } else {
            points = Points(at(fault.first + 1), at(fault.second));
            if (points.empty()) return {};
        }
        if (!Family::same(points.front(), points.back())) points.push_back(points.front());
    }
    return {};
}

template <class Family>
Repaired<Family> makeChainSimple(const std::vector<typename Family::Point>& chain,
                                 typename Family::Size maximal) {
    auto points = chain;
    while (true) {
        const Fault fault = findFault<Family>(points, false);
        if (!fault.exists) return {points.size(), points};
        if (Family::runSize(points, fault.first, fault.second) >= maximal) return {};
        points.erase(points.begin() + static_cast<std::ptrdiff_t>(fault.first) + 1,
                     points.begin() + static_cast<std::ptrdiff_t>(fault.second) + 1);
    }
}

inline Outline withoutRepeats(const Outline& points) {
    Outline result;
    for (const tagPOINT& p : points) {
        if (result.empty() || !same(result.back(), p)) result.push_back(p);
    }
    return result;
}

/// One sting at a time, each found from the beginning. @return the result of the call; the points in place.
inline std::size_t removeStings(Outline& points, bool noWrap, double width) {
    const auto at = [&](std::size_t index) { return points.begin() + static_cast<std::ptrdiff_t>(index); };
    while (true) {
        points = withoutRepeats(points);
        if (points.size() <= 1) return points.size();
        const bool isClosed = same(points.front(), points.back());
        if (isClosed) {
            if (points.size() == 3) return 1;
            points.pop_back();
            noWrap = true;
        } else if (noWrap && points.size() == 2) {
            return 1;
        }
        const std::size_t n = points.size();
        const std::size_t limit = noWrap ? n : n + 2;
        bool hasChanged = false;
        for (std::size_t k = 2; k < limit && !hasChanged; ++k) {
            const tagPOINT p = points[k - 2];
            const std::size_t indexOfQ = (k - 1) % n;
            const tagPOINT q = points[indexOfQ];
            const tagPOINT r = points[k % n];
            const std::int32_t inX = minus(q.x, p.x);
            const std::int32_t inY = minus(q.y, p.y);
            const std::int32_t outX = minus(r.x, q.x);
            const std::int32_t outY = minus(r.y, q.y);
            const double sumX = plus(inX, outX);
            const double sumY = plus(inY, outY);
            if (sumX * sumX + sumY * sumY > width * width) continue;
            if (minus(times(inX, outY), times(inY, outX)) != 0) continue;
            points[indexOfQ] = r;
            if (indexOfQ == 0) {
                points.erase(at(1));
            } else if (indexOfQ + 1 != n) {
                points.erase(at(indexOfQ + 1));
            } else {
                points[0] = r;
                points.pop_back();
            }
            hasChanged = true;
        }
        if (isClosed) points.push_back(points.front());
        if (!hasChanged) return points.size();
    }
}

/// @return the result of the call; the points in place.
inline std::uint32_t separateTouchingSegments(Outline& points) {
    const tagPOINT steps[] = {{0, -1}, {1, -1}, {1, 0}, {1, 1}, {0, 1}, {-1, 1}, {-1, 0}, {-1, -1}};
    while (true) {
        points = withoutRepeats(points);
        const std::size_t n = points.size();
        const Fault fault = findFault<IntegerFamily>(points, true);
        if (!fault.exists) return static_cast<std::uint32_t>(n);
        bool hasImproved = false;
        for (std::size_t end = 0; end < 2 && !hasImproved; ++end) {
            const std::size_t v = (fault.first + end) % n;
            const tagPOINT saved = points[v];
            for (const tagPOINT& step : steps) {
                points[v] = {plus(saved.x, step.x), plus(saved.y, step.y)};
                if (same(points[v], points[(v + 1) % n])) continue;
                if (v != 0 && same(points[v], points[v - 1])) continue;
                const Fault moved = findFault<IntegerFamily>(points, true);
                if (!moved.exists) {
                    points = withoutRepeats(points);
                    return static_cast<std::uint32_t>(points.size());
                }
                hasImproved = moved.first > fault.first;
                if (hasImproved) break;
            }
            if (!hasImproved) points[v] = saved;
        }
        if (!hasImproved) return 0xFFFFFFFFU;
    }
}

}  // namespace velquad::test::reference

#endif  // VELQUAD_TESTS_SUPPORT_SIMPLICITY_REFERENCE_H
