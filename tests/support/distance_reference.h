// Slow, plain versions of the distances, for randomised comparison. Integers are computed in 64 bits and cut to
// 32 bits after every operation.
#ifndef VELQUAD_TESTS_SUPPORT_DISTANCE_REFERENCE_H
#define VELQUAD_TESTS_SUPPORT_DISTANCE_REFERENCE_H

#include <bit>
#include <cmath>
#include <cstdint>

#include "velquad/frame.h"
#include "velquad/geometry.h"

namespace velquad::test {

/// The bits of a double, so that 0.0 and -0.0 differ and a not-a-number equals itself.
inline std::uint64_t bits(double value) {
    return std::bit_cast<std::uint64_t>(value);
}

/// Cuts a 64-bit integer to 32 bits with sign.
inline std::int64_t cut(std::int64_t value) {
    const std::int64_t low = value & 0xffffffff;
    return low >= 0x80000000 ? low - 0x100000000 : low;
}

template <class Point>
struct ReferenceFoot {
    double distance;
    Point closest;
    double parameter;
};

inline ReferenceFoot<tagPOINT2D> referenceSegment2D(tagPOINT2D a, tagPOINT2D b, tagPOINT2D p,
                                                    bool isSquared) {
    double t = 0.0;
    tagPOINT2D closest = a;
    const bool isPoint = 1e-40 > std::fabs(a.x - b.x) && 1e-40 > std::fabs(a.y - b.y);
    if (!isPoint) {
        const tagPOINT2D q{p.x - (b.y - a.y), p.y + (b.x - a.x)};
        matIntersectLines2D(&a, &b, &p, &q, nullptr, &t, nullptr, nullptr);
        if (t > 0.9999999999999998) {
            closest = b;
            t = 1.0;
        } else if (2.220446049250313e-16 > t) {
            t = 0.0;
        } else {
            closest = {(b.x - a.x) * t + a.x, (b.y - a.y) * t + a.y};
        }
    }
    const double dx = p.x - closest.x;
    const double dy = p.y - closest.y;
    const double sum = dy * dy + dx * dx;
    return {isSquared ? sum : std::sqrt(sum), closest, t};
}

inline ReferenceFoot<tagPOINT2D> referenceSegment2L(tagPOINT a, tagPOINT b, tagPOINT p, bool isSquared) {
    const std::int64_t ax = a.x, ay = a.y, bx = b.x, by = b.y, px = p.x, py = p.y;
    const double startX = static_cast<double>(ax);
    const double startY = static_cast<double>(ay);
    double t = 0.0;
    tagPOINT2D closest{startX, startY};
    if (ax != bx || ay != by) {
        const std::int64_t qx = cut(cut(px - by) + ay);
        const std::int64_t qy = cut(cut(py - ax) + bx);
        const std::int64_t ux = cut(qx - px);
        const std::int64_t uy = cut(py - qy);
        const std::int64_t denominator = cut(cut(cut(by - ay) * ux) + cut(cut(bx - ax) * uy));
        const std::int64_t numerator = cut(cut(cut(px - ax) * uy) + cut(cut(py - ay) * ux));
        if (denominator != 0) {
            t = static_cast<double>(numerator) / static_cast<double>(denominator);
        } else {
            t = numerator == 0 ? 0.0 : 1.7976931348623157e308;
        }
        if (-1e-7 < t && t < 1.0000001) {
            closest = {static_cast<double>(cut(bx - ax)) * t + startX,
                       static_cast<double>(cut(by - ay)) * t + startY};
        } else if (t > 1.0) {
            closest = {static_cast<double>(bx), static_cast<double>(by)};
            t = 1.0;
        } else {
            t = 0.0;
        }
    }
    const double dx = static_cast<double>(px) - closest.x;
    const double dy = static_cast<double>(py) - closest.y;
    const double sum = dy * dy + dx * dx;
    return {isSquared ? sum : std::sqrt(sum), closest, t};
}

/// The parameter on a line of space, by the exported pieces; false when the perpendicular misses the line.
inline bool referenceParameter3D(tagPOINT3D a, tagPOINT3D b, tagPOINT3D p, double* t) {
    double n[3];
    if (matCalcOrthogonal(n, &a, &b, &p) == 1) {
        const tagPOINT3D c{n[0] + a.x, n[1] + a.y, n[2] + a.z};
        double m[3];
        matCalcOrthogonal(m, &a, &b, &c);
        const tagPOINT3D q{m[0] + p.x, m[1] + p.y, m[2] + p.z};
        tagPOINT3D foot;
        return matIntersectLines3D(&a, &b, &p, &q, &foot, t, nullptr, nullptr) == 1;
    }
    const double d[3] = {b.x - a.x, b.y - a.y, b.z - a.z};
    const double o[3] = {p.x - a.x, p.y - a.y, p.z - a.z};
    int i = 0;
    if (std::fabs(d[1]) > std::fabs(d[0])) i = 1;
    if (std::fabs(d[2]) > std::fabs(d[0]) && std::fabs(d[2]) > std::fabs(d[1])) i = 2;
    *t = o[i] / d[i];
    return true;
}

inline ReferenceFoot<tagPOINT3D> reference3D(tagPOINT3D a, tagPOINT3D b, tagPOINT3D p, bool isSquared,
                                             bool isSegment) {
    const tagPOINT3D d{b.x - a.x, b.y - a.y, b.z - a.z};
    double t = 0.0;
    tagPOINT3D closest = a;
    if (!(1e-40 > std::fabs(d.x) && 1e-40 > std::fabs(d.y) && 1e-40 > std::fabs(d.z))) {
        if (!referenceParameter3D(a, b, p, &t)) return {1.7976931348623157e308, {}, 0.0};
        if (isSegment && 2.220446049250313e-16 > t) {
            t = 0.0;
        } else if (isSegment && t > 0.9999999999999998) {
            closest = b;
            t = 1.0;
        } else {
            closest = {d.x * t + a.x, d.y * t + a.y, d.z * t + a.z};
        }
    }
    return {matCalcDist3D(&closest, &p, isSquared ? 1 : 0), closest, t};
}

}  // namespace velquad::test

#endif  // VELQUAD_TESTS_SUPPORT_DISTANCE_REFERENCE_H
