// Plain versions of the clippers, written for comparison: no sharing, no shortcuts.
#ifndef VELQUAD_TESTS_SUPPORT_CLIP_REFERENCE_H
#define VELQUAD_TESTS_SUPPORT_CLIP_REFERENCE_H

#include <cmath>
#include <cstdint>
#include <utility>

#include "velquad/types.h"

namespace velquad::test {

/// Outcode clipping with signed 64-bit products: valid while coordinates differ by less than 2^31.
inline int referenceClip2L(const int* rect, tagPOINT& p1, tagPOINT& p2) {
    using Wide = std::int64_t;
    const Wide left = rect[0];
    const Wide top = rect[1];
    const Wide right = rect[2];
    const Wide bottom = rect[3];
    const auto codeOf = [&](Wide x, Wide y) {
        return (x > right ? 1 : 0) | (x < left ? 2 : 0) | (y > bottom ? 4 : 0) | (y < top ? 8 : 0);
    };
    Wide ax = p1.x;
    Wide ay = p1.y;
    Wide bx = p2.x;
    Wide by = p2.y;
    if (codeOf(ax, ay) == 0 && codeOf(bx, by) == 0) return 1;
    for (int a = codeOf(ax, ay), b = codeOf(bx, by); a != 0 || b != 0;) {
        if ((a & b) != 0) return 0;
        if (a == 0) {
            std::swap(ax, bx);
            std::swap(ay, by);
            std::swap(a, b);
        }
        if ((a & 2) != 0) {
            ay = ay + (left - ax) * (by - ay) / (bx - ax);
            ax = left;
        } else if ((a & 1) != 0) {
            ay = ay + (right - ax) * (by - ay) / (bx - ax);
            ax = right;
        } else if ((a & 4) != 0) {
            ax = ax + (bottom - ay) * (bx - ax) / (by - ay);
            ay = bottom;
        } else {
            ax = ax + (top - ay) * (bx - ax) / (by - ay);
            ay = top;
        }
        a = codeOf(ax, ay);
    }
    const Wide toA = (p1.x - ax) * (p1.x - ax) + (p1.y - ay) * (p1.y - ay);
    const Wide toB = (p1.x - bx) * (p1.x - bx) + (p1.y - by) * (p1.y - by);
    if (toA > toB) {
        std::swap(ax, bx);
        std::swap(ay, by);
    }
    p1.x = static_cast<int>(ax);
    p1.y = static_cast<int>(ay);
    p2.x = static_cast<int>(bx);
    p2.y = static_cast<int>(by);
    return 1;
}

/// Clipping of a segment of doubles, edge by edge.
inline int referenceClip2D(const tagMAT_RECT2D& rect, tagPOINT2D& p1, tagPOINT2D& p2) {
    const double e = 1e-7;
    const double left = rect.left;
    const double top = rect.top;
    const double right = rect.right;
    const double bottom = rect.bottom;
    const auto inside = [&](const tagPOINT2D& p) {
        return !(left - e > p.x) && !(p.x > right + e) && !(top - e > p.y) && !(p.y > bottom + e);
    };
    const auto outside = [&](const tagPOINT2D& a, const tagPOINT2D& b) {
        if (left - e > a.x && left - e > b.x) return true;
        if (a.x > right + e && b.x > right + e) return true;
        if (top - e > a.y && top - e > b.y) return true;
        return a.y > bottom + e && b.y > bottom + e;
    };
    if (inside(p1) && inside(p2)) return 1;
    if (1e-7 > std::fabs(p1.x - p2.x) && 1e-7 > std::fabs(p1.y - p2.y)) {
        return inside(p1) || inside(p2) ? 1 : 0;
    }
    if (outside(p1, p2)) return 0;
    for (int pass = 0; pass < 2; ++pass) {
        tagPOINT2D m = pass == 0 ? p1 : p2;
        const tagPOINT2D f = pass == 0 ? p2 : p1;
        for (int edge = 0; edge < 4; ++edge) {
            if (edge == 0 && left - e > m.x) {
                m.y = m.y + (f.y - m.y) * ((left - m.x) / (f.x - m.x));
                m.x = left;
            } else if (edge == 1 && m.x > right + e) {
                m.y = (m.y - f.y) * ((right - f.x) / (m.x - f.x)) + f.y;
                m.x = right;
            } else if (edge == 2 && top - e > m.y) {
                m.x = m.x + ((top - m.y) / (f.y - m.y)) * (f.x - m.x);
                m.y = top;
            } else if (edge == 3 && m.y > bottom + e) {
                m.x = (m.x - f.x) * ((bottom - f.y) / (m.y - f.y)) + f.x;
                m.y = bottom;
            }
            if (outside(m, f)) return 0;
        }
        (pass == 0 ? p1 : p2) = m;
    }
    return inside(p1) && inside(p2) ? 1 : 0;
}

/// Clipping of a line to a box, each pair of faces written out.
inline int referenceClip3D(const double* corner, double sizeX, double sizeY, double sizeZ,
                           const tagPOINT3D& p, const tagPOINT3D& d, tagPOINT3D& first, tagPOINT3D& second) {
    const double unset = 3.4028234663852886e38;
    double lowest = unset;
    double highest = -unset;
    const auto take = [&](double t, double u, double sizeU, double w, double sizeW) {
        if (!(u >= 0.0 && sizeU >= u && w >= 0.0 && sizeW >= w)) return;
        if (t < lowest) lowest = t;
        if (t > highest) highest = t;
    };
    const auto bothFound = [&] { return lowest != unset && std::fabs(highest - lowest) >= 1e-7; };
    if (!(1e-7 > std::fabs(d.x))) {
        for (const double face : {corner[0], corner[0] + sizeX}) {
            const double t = (face - p.x) / d.x;
            take(t, d.y * t + (p.y - corner[1]), sizeY, d.z * t + (p.z - corner[2]), sizeZ);
        }
    }
    if (!bothFound() && !(1e-7 > std::fabs(d.y))) {
        for (const double face : {corner[1], corner[1] + sizeY}) {
            const double t = (face - p.y) / d.y;
            take(t, d.x * t + (p.x - corner[0]), sizeX, d.z * t + (p.z - corner[2]), sizeZ);
        }
    }
    if (!bothFound() && !(1e-7 > std::fabs(d.z))) {
        for (const double face : {corner[2], corner[2] + sizeZ}) {
            const double t = (face - p.z) / d.z;
            take(t, d.y * t + (p.y - corner[1]), sizeY, d.x * t + (p.x - corner[0]), sizeX);
        }
    }
    if (lowest == unset) return 0;
    const tagPOINT3D low{p.x + lowest * d.x, p.y + lowest * d.y, p.z + lowest * d.z};
    const tagPOINT3D high{p.x + highest * d.x, p.y + highest * d.y, p.z + highest * d.z};
    const bool lowFirst = std::fabs(highest) > std::fabs(lowest);
    first = lowFirst ? low : high;
    second = lowFirst ? high : low;
    return 1;
}

}  // namespace velquad::test

#endif  // VELQUAD_TESTS_SUPPORT_CLIP_REFERENCE_H
