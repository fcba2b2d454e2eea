// Slow, obvious versions of the queries on outlines of doubles, step after step and with arithmetic of their own. The
// library's versions must give the same bits.
#ifndef VELQUAD_TESTS_SUPPORT_POLYGON2D_REFERENCE_H
#define VELQUAD_TESTS_SUPPORT_POLYGON2D_REFERENCE_H

#include <cmath>
#include <vector>

#include "velquad/types.h"

namespace velquad::test::reference2d {

using Outline = std::vector<tagPOINT2D>;

inline bool isBelow(double tolerance, double value) {
    return value < tolerance && -value < tolerance;
}

inline bool same(const tagPOINT2D& a, const tagPOINT2D& b) {
    return isBelow(1e-7, a.x - b.x) && isBelow(1e-7, a.y - b.y);
}

/// Position of a point along a line. Lines that are points and points at them are told with one tolerance.
inline double positionOnLine(const tagPOINT2D& a, const tagPOINT2D& b, const tagPOINT2D& p,
                             double tolerance) {
    const double dx = b.x - a.x;
    const double dy = b.y - a.y;
    if (isBelow(tolerance, dx) && isBelow(tolerance, dy)) {
        return isBelow(tolerance, p.x - a.x) && isBelow(tolerance, p.y - a.y) ? 0.0 : kNoValue;
    }
    if (std::fabs(dx) > std::fabs(dy)) return (p.x - a.x) / dx;
    return (p.y - a.y) / dy;
}

struct Crossing {
    int result;
    int isParallel;
    double t;
    double s;
};

/// Crossing of the lines a and b with the parameters t on a and s on b.
inline Crossing crossLines(const tagPOINT2D& a0, const tagPOINT2D& a1, const tagPOINT2D& b0,
                           const tagPOINT2D& b1) {
    const double dx = b1.x - b0.x;
    const double dy = b1.y - b0.y;
    const double denominator = (a1.y - a0.y) * dx + (a1.x - a0.x) * -dy;
    const double numerator = (b0.y - a0.y) * dx + (b0.x - a0.x) * -dy;
    Crossing crossing{1, 0, 0.0, 0.0};
    if (denominator == 0.0) {
        crossing.isParallel = 1;
        if (!isBelow(1e-40, numerator)) return {0, 1, kNoValue, kNoValue};
    } else {
        crossing.t = numerator / denominator;
    }
    const tagPOINT2D p{(a1.x - a0.x) * crossing.t + a0.x, (a1.y - a0.y) * crossing.t + a0.y};
    crossing.s = positionOnLine(b0, b1, p, 1e-40);
    return crossing;
}

inline bool isOnFirst(double parameter) {
    return -1e-40 < parameter && parameter < 1.0;
}
inline bool isOnSecond(double parameter) {
    return -1e-7 < parameter && parameter < 1.0000001;
}

/// Contact of the half-open segment a with the segment b.
inline bool doSegmentsMeet(const tagPOINT2D& a0, const tagPOINT2D& a1, const tagPOINT2D& b0,
                           const tagPOINT2D& b1, int* isParallel = nullptr) {
    const auto low = [](double a, double b) { return a < b ? a : b; };
    const auto high = [](double a, double b) { return a > b ? a : b; };
    if (low(a0.x, a1.x) > high(b0.x, b1.x) + 1e-7 || low(a0.y, a1.y) > high(b0.y, b1.y) + 1e-7) return false;
    if (low(b0.x, b1.x) - 1e-7 > high(a0.x, a1.x) || low(b0.y, b1.y) - 1e-7 > high(a0.y, a1.y)) return false;
    const Crossing crossing = crossLines(a0, a1, b0, b1);
    if (isParallel != nullptr) *isParallel = crossing.isParallel;
    if (crossing.result == 0) return false;
    if (crossing.isParallel == 0) return isOnFirst(crossing.t) && isOnSecond(crossing.s);
    return isOnFirst(positionOnLine(a0, a1, b0, 1e-40)) || isOnFirst(positionOnLine(a0, a1, b1, 1e-40)) ||
           isOnSecond(positionOnLine(b0, b1, a0, 1e-40));
}

inline int sign(double value) {
    if (std::fabs(value) < 1e-7) return 0;
    return value > 0.0 ? 1 : -1;
}

/// 1 inside, 0 outside, -1 on the outline.
inline int isPointInside(const Outline& points, const tagPOINT2D& test) {
    std::size_t n = points.size();
    if (n == 0) return 0;
    while (n > 1 && same(points[n - 1], points[0]))
        --n;
    if (n == 1) return same(points[0], test) ? -1 : 0;
    std::size_t start = n;
    for (std::size_t i = 0; i < n && start == n; ++i) {
        const tagPOINT2D& next = points[(i + 1) % n];
        if (same(test, next)) return -1;
        if (same(points[i], next)) continue;
        const Crossing crossing = crossLines(test, next, points[i], next);
        const bool isOnEdge = crossing.s > -1e-7 && crossing.s < 1.0000001 && std::fabs(crossing.s) >= 1e-7;
        if (crossing.isParallel == 0 && isOnEdge) start = i;
    }
    if (start == n) return 0;
    const tagPOINT2D target = points[(start + 1) % n];
    const auto side = [&](const tagPOINT2D& p) {
        return (p.x - test.x) * (target.y - test.y) + (p.y - test.y) * (test.x - target.x);
    };
    int crossings = 0;
    double stored = 0.0;
    std::size_t i = start;
    do {
        const tagPOINT2D& current = points[i];
        const tagPOINT2D& next = points[(i + 1) % n];
        i = (i + 1) % n;
        if (same(current, next)) continue;
        const Crossing crossing = crossLines(test, target, current, next);
        if (crossing.result == 0) continue;
        if (crossing.isParallel != 0) {
            const double positionOfCurrent = positionOnLine(test, target, current, 1e-7);
            const double positionOfNext = positionOnLine(test, target, next, 1e-7);
            if (sign(positionOfCurrent) != sign(positionOfNext)) return -1;
            continue;
        }
        const double t = crossing.t;
        if (std::fabs(t) >= 1e-7 && t <= 0.0) continue;
        double u = 0.0;
        if (next.x == current.x) {
            u = ((target.y - test.y) * t + test.y - current.y) / (next.y - current.y);
        } else {
            u = ((target.x - test.x) * t + test.x - current.x) / (next.x - current.x);
        }
        if (!(u > -1e-7 && u < 1.0000001)) continue;
        if (std::fabs(t) < 1e-7) return -1;
        if (std::fabs(u) < 1e-7) {
            const double v = side(next);
            if (std::fabs(v) < 1e-7) {
                if (sign(stored) != 0) ++crossings;
            } else if (sign(stored) != sign(v)) {
                ++crossings;
            }
        } else if (std::fabs(1.0 - u) < 1e-7) {
            stored = side(current);
        } else {
            ++crossings;
        }
    } while (i != start);
    return crossings % 2;
}

/// The plain pair loop: does an edge of `a` meet an edge of `b`?
inline bool doOutlinesMeet(const Outline& a, bool closedA, const Outline& b, bool closedB) {
    for (std::size_t i = closedA ? 0 : 1; i < a.size(); ++i) {
        const tagPOINT2D& a0 = closedA ? a[i] : a[i - 1];
        const tagPOINT2D& a1 = closedA ? a[(i + 1) % a.size()] : a[i];
        if (same(a0, a1)) continue;
        for (std::size_t j = closedB ? 0 : 1; j < b.size(); ++j) {
            const tagPOINT2D& b0 = closedB ? b[j] : b[j - 1];
            const tagPOINT2D& b1 = closedB ? b[(j + 1) % b.size()] : b[j];
            if (!same(b0, b1) && doSegmentsMeet(a0, a1, b0, b1)) return true;
        }
    }
    return false;
}

/// 0 apart, 1 the outlines meet, 2 b inside a, 3 a inside b. Neither outline is empty.
inline int relativePosition(const Outline& a, bool closedA, const Outline& b, bool closedB) {
    if (doOutlinesMeet(a, closedA, b, closedB)) return 1;
    if (closedA && isPointInside(a, b[0]) != 0) return 2;
    if (closedB && isPointInside(b, a[0]) != 0) return 3;
    return 0;
}

inline double distance(const tagPOINT2D& a, const tagPOINT2D& b, bool isSquared) {
    const double dx = b.x - a.x;
    const double dy = b.y - a.y;
    const double squared = dx * dx + dy * dy;
    return isSquared ? squared : std::sqrt(squared);
}

struct Nearest {
    double distance = kNoValue;
    tagPOINT2D point{kNoValue, kNoValue};
    DWORD index = 0;
    double fraction = 0.0;
};

/// Distance from a point to one segment.
inline Nearest distanceToSegment(const tagPOINT2D& a, const tagPOINT2D& b, const tagPOINT2D& test,
                                 bool isSquared) {
    Nearest foot;
    foot.point = a;
    if (!(isBelow(1e-40, a.x - b.x) && isBelow(1e-40, a.y - b.y))) {
        const tagPOINT2D q{test.x - (b.y - a.y), test.y + (b.x - a.x)};
        const double t = crossLines(a, b, test, q).t;
        if (t > 0.9999999999999998) {
            foot.point = b;
            foot.fraction = 1.0;
        } else if (!(2.220446049250313e-16 > t)) {
            foot.point = {(b.x - a.x) * t + a.x, (b.y - a.y) * t + a.y};
            foot.fraction = t;
        }
    }
    foot.distance = distance(foot.point, test, isSquared);
    return foot;
}

/// Distance from a point to an outline of at least one point.
inline Nearest distance(const Outline& points, bool closed, const tagPOINT2D& test, bool isSquared) {
    const std::size_t count = points.size();
    if (count == 1) return {distance(points[0], test, isSquared), points[0], 0, 0.0};
    const bool isStored = points.front().x == points.back().x && points.front().y == points.back().y;
    const std::size_t edges = count - 1 + (closed && !isStored ? 1 : 0);
    Nearest best;
    for (std::size_t i = 0; i < edges; ++i) {
        Nearest foot = distanceToSegment(points[i], points[(i + 1) % count], test, isSquared);
        if (!(best.distance > foot.distance)) continue;
        best = foot;
        best.index = static_cast<DWORD>(i);
    }
    return best;
}

inline double length(const Outline& points, bool closed, bool isSquared) {
    if (points.size() < 2) return 0.0;
    double sum = 0.0;
    for (std::size_t i = 1; i < points.size(); ++i)
        sum += distance(points[i - 1], points[i], isSquared);
    if (closed) sum += distance(points.front(), points.back(), isSquared);
    return sum;
}

/// Length of a run, or of what lies outside of it.
inline double runLength(const Outline& points, std::size_t from, std::size_t to, bool outside) {
    double sum = 0.0;
    for (std::size_t k = outside ? 1 : from + 1; k <= (outside ? from : to); ++k)
        sum += distance(points[k - 1], points[k], false);
    for (std::size_t k = to + 1; outside && k < points.size(); ++k)
        sum += distance(points[k - 1], points[k], false);
    return sum;
}

struct Fault {
    bool isFound = false;
    std::size_t first = 0;
    std::size_t second = 0;
};

/// The first pair of edges that makes an outline not simple, by the plain loop over all pairs.
inline Fault firstFault(const Outline& points, bool closed) {
    const std::size_t count = points.size();
    std::size_t s = 0;
    while (s + 1 < count && same(points[s], points[s + 1]))
        ++s;
    if (s + 1 >= count) return {};
    const Outline p(points.begin() + static_cast<std::ptrdiff_t>(s), points.end());
    std::size_t m = count - s;
    while (m > 1 && same(p[m - 1], p[0]))
        --m;
    while (m > 1 && same(p[m - 1], p[m - 2]))
        --m;
    if (m == 1) return {};
    const std::size_t edges = closed ? m : m - 1;
    bool isFirstOuter = true;
    for (std::size_t i = 0; i < edges; ++i) {
        const tagPOINT2D& a0 = p[i];
        const tagPOINT2D& a1 = p[(i + 1) % m];
        if (same(a0, a1)) continue;
        bool isAdjacent = true;
        for (std::size_t j = i + 1; j < edges; ++j) {
            const tagPOINT2D& b0 = p[j];
            const tagPOINT2D& b1 = p[(j + 1) % m];
            if (same(b0, b1)) continue;
            const bool wasAdjacent = isAdjacent;
            isAdjacent = false;
            const bool closes = isFirstOuter && j == m - 1;
            int isParallel = 0;
            if (!doSegmentsMeet(a0, a1, b0, b1, &isParallel)) continue;
            bool isFault = false;
            if (isParallel == 0) {
                isFault = !wasAdjacent && !closes;
            } else {
                const double s0 = positionOnLine(a0, a1, b0, 1e-7);
                const double s1 = positionOnLine(a0, a1, b1, 1e-7);
                if (wasAdjacent) {
                    isFault = s1 < 1.0000001;
                } else if (closes) {
                    isFault = s0 > -1e-7;
                } else if (s0 > 1.0000001) {
                    isFault = !(s1 > 1.0000001);
                } else {
                    isFault = !(s0 < -1e-7 && s1 < -1e-7);
                }
            }
            if (isFault) return {true, i + s, j + s};
        }
        isFirstOuter = false;
    }
    return {};
}

struct Repair {
    DWORD count;
    Outline points;  ///< The caller's array afterwards.
};

/// Cuts the smaller side of each fault off.
inline Repair makeSimple(const Outline& points, double limit) {
    const bool wasClosed = same(points.front(), points.back());
    Outline work = points;
    if (!wasClosed) work.push_back(points.front());
    Fault fault = firstFault(work, true);
    for (int round = 0; fault.isFound; ++round) {
        // A cut that changes nothing would come again for ever.
        if (round > 10000) return {0, points};
        const double loop = runLength(work, fault.first, fault.second, false);
        const double rest = runLength(work, 0, work.size() - 1, false) - loop;
        if (loop >= limit && rest >= limit) return {0, points};
        const auto at = [&](std::size_t i) { return work.begin() + static_cast<std::ptrdiff_t>(i); };
        if (loop < rest) {
            work.erase(at(fault.first + 1), at(fault.second + 1));
        } else {
            work = Outline(at(fault.first + 1), at(fault.second));
        }
        if (work.empty()) return {0, points};
        if (!same(work.front(), work.back())) work.push_back(work.front());
        fault = firstFault(work, true);
    }
    Repair repair{static_cast<DWORD>(work.size()), points};
    const std::size_t stored = wasClosed ? work.size() : work.size() - 1;
    for (std::size_t i = 0; i < stored; ++i)
        repair.points[i] = work[i];
    return repair;
}

/// Cuts the loops of an open chain off.
inline Repair makeChainSimple(const Outline& points, double limit) {
    Outline work = points;
    for (Fault fault = firstFault(work, false); fault.isFound; fault = firstFault(work, false)) {
        if (runLength(work, fault.first, fault.second, false) >= limit) return {0, points};
        work.erase(work.begin() + static_cast<std::ptrdiff_t>(fault.first) + 1,
                   work.begin() + static_cast<std::ptrdiff_t>(fault.second) + 1);
    }
    Repair repair{static_cast<DWORD>(work.size()), points};
    for (std::size_t i = 0; i < work.size(); ++i)
        repair.points[i] = work[i];
    return repair;
}

}  // namespace velquad::test::reference2d

#endif  // VELQUAD_TESTS_SUPPORT_POLYGON2D_REFERENCE_H
