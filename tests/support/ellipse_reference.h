// The ellipse tracers once more, step by step and without any regard to speed or memory, to compare with. Inputs
// are small enough for plain integers.
#ifndef VELQUAD_TESTS_SUPPORT_ELLIPSE_REFERENCE_H
#define VELQUAD_TESTS_SUPPORT_ELLIPSE_REFERENCE_H

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <utility>

#include "tests/support/outline.h"
#include "velquad/geometry.h"

namespace velquad::test {

using Pixel = std::pair<int, int>;

inline Coordinates referenceQuadrant(int a, int b) {
    using I = std::int64_t;
    const I aa = I{a} * a, bb = I{b} * b, bb4 = 4 * bb, aa4 = 4 * aa;
    I x = a, y = 0, c = x * bb4, f = 0;
    I e1 = (bb >> 1) - x * 2 * bb + 2 * aa;
    I e2 = (aa >> 1) - c + 2 * bb;
    Coordinates points;
    while (e2 < 0) {
        points.emplace_back(x, y);
        f += aa4;
        y += 1;
        if (e1 >= 0) {
            c -= bb4;
            x -= 1;
            e2 += f - c + 2 * bb;
            e1 -= c;
        } else {
            e2 += f;
        }
        e1 += f + 2 * aa;
    }
    while (true) {
        const I old = e2;
        c -= bb4;
        points.emplace_back(x, y);
        I next = old - c;
        x -= 1;
        if (old < 0) {
            f += aa4;
            y += 1;
            next = old - c + f;
        }
        if (x < 0) return points;
        e2 = next + 2 * bb;
    }
}

/// The mirrored outline of a rectangle at least 4 pixels wide and high.
inline Coordinates referenceRectEllipse(int left, int top, int right, int bottom) {
    const int w = right - left, h = bottom - top;
    const int oddW = (w + 1) % 2, oddH = (h + 1) % 2;
    const int qa = oddW == 1 ? w / 2 : (w + 1) / 2 - 1;
    const int qb = oddH == 1 ? h / 2 : (h + 1) / 2 - 1;
    Coordinates points = referenceQuadrant(qa, qb);
    for (int i = static_cast<int>(points.size()) - oddW - 1; i >= 0; --i) {
        const Pixel p = points[static_cast<std::size_t>(i)];
        points.emplace_back(-(p.first + (1 - oddW)), p.second);
    }
    for (int i = static_cast<int>(points.size()) - oddH - 1; i >= 0; --i) {
        const Pixel p = points[static_cast<std::size_t>(i)];
        points.emplace_back(p.first, -(p.second + (1 - oddH)));
    }
    for (Pixel& p : points) {
        p.first += oddW == 1 ? left + qa : left + qa + 1;
        p.second += oddH == 1 ? top + h / 2 : top + (h + 1) / 2;
    }
    if (points.front() != points.back()) points.push_back(Pixel(points.front()));
    return points;
}

struct ReferenceArc {
    Coordinates points;
    std::int64_t endX, endY;
};

inline ReferenceArc referenceOctant(std::int64_t rx, std::int64_t ry, std::int64_t minX, std::int64_t maxY) {
    std::int64_t x = rx, y = 0, e = rx * rx + ry * ry, s = rx * rx, t = 2 * ry * ry * rx - ry * ry;
    ReferenceArc arc{};
    while (true) {
        arc.points.emplace_back(x, y);
        arc.endX = x;
        arc.endY = -y;
        bool isSteep = false;
        if (e >= 0) {
            e -= s;
            y -= 1;
            s += 2 * rx * rx;
            isSteep = e >= 0;
        }
        if (!isSteep) {
            e += t;
            t -= 2 * ry * ry;
            x -= 1;
        }
        if (!(x >= minX && y >= -maxY)) return arc;
    }
}

inline Coordinates referenceEllipseAroundOrigin(int a, int b, bool isFull) {
    if (a < 3 || b < 3) isFull = true;
    const double r = std::sqrt(static_cast<double>(a * a + b * b));
    const auto mid = static_cast<std::int64_t>(a * b / r);
    ReferenceArc first = referenceOctant(a, b, mid, b);
    ReferenceArc second{{{b, 0}}, b, 0};
    if (first.endY < b) second = referenceOctant(b, a, first.endY, first.endX);
    const std::int64_t gapX = std::abs(first.endX - second.endY);
    const std::int64_t gapY = std::abs(first.endY - second.endX);
    if (gapX == 0 && gapY == 0) second.points.pop_back();
    if (gapX >= 2 || gapY >= 2) {
        for (std::int64_t i = 1; i < std::max(gapX, gapY); ++i) {
            Pixel p = first.points.back();
            if (gapX > gapY) {
                --p.first;
            } else {
                --p.second;
            }
            first.points.push_back(p);
        }
    }
    Coordinates points = first.points;
    const std::size_t count = first.points.size() + second.points.size();
    for (std::size_t k = second.points.size(); k-- > 1;)
        points.emplace_back(-second.points[k].second, -second.points[k].first);
    points.resize(count);
    points[count - 1] = {0, -b};
    if (isFull) {
        for (std::size_t i = count - 1; i-- > 0;)
            points.emplace_back(-points[i].first, points[i].second);
    } else {
        for (std::size_t i = 1; i + 1 < count; i += 2)
            points[i].first = -points[i].first;
        points[count - 1] = {-points[0].first, points[0].second};
    }
    for (std::size_t i = points.size() - 1; --i >= 1;)
        points.emplace_back(points[i].first, -points[i].second);
    return points;
}

/// A tilted ellipse, tilt in radians and counter-clockwise.
struct TiltedEllipse {
    double centerX, centerY, a, b, angle, scaleX, scaleY;
};

inline constexpr int kReferenceDx[9] = {0, 1, 1, 1, 0, -1, -1, -1, 0};
inline constexpr int kReferenceDy[9] = {-1, -1, 0, 1, 1, 1, 0, -1, 0};

inline double ellipseEquation(const TiltedEllipse& q, const Pixel& p) {
    const double x = q.scaleX * p.first - q.centerX;
    const double y = q.scaleY * p.second - q.centerY;
    const double u = std::sin(q.angle) * y + std::cos(q.angle) * x;
    const double v = std::cos(q.angle) * y - std::sin(q.angle) * x;
    const double squareA = q.a * q.a, squareB = q.b * q.b;
    const bool flatA = 1e-10 > squareA, flatB = 1e-10 > squareB;
    if (flatA && flatB) return std::sqrt(v * v + u * u);
    if (flatB) return std::fabs(v);
    if (flatA) return std::fabs(u);
    return std::fabs(v * v / squareB + u * u / squareA - 1.0);
}

inline int roundedPixel(double value) {
    return static_cast<int>(std::lround(value));
}

/// The parameter walk. `sine` and `cosine` are the functions in use.
template <class Sine, class Cosine>
Coordinates referenceRotatedEllipse(const TiltedEllipse& q, Sine sine, Cosine cosine) {
    const double m = std::max(q.a / q.scaleX, q.b / q.scaleY);
    const auto n = static_cast<int>(std::lround(m * 6.283185307179586));
    if (n == 0 || 1.0000001 > m)
        return {{roundedPixel(q.centerX / q.scaleX), roundedPixel(q.centerY / q.scaleY)}};
    Pixel lastChosen(0, 0);
    bool hasChosen = false;
    const auto curvePoint = [&](double t) -> Pixel {
        const double u = cosine(t) * q.a, v = sine(t) * q.b;
        const double dx = (u * std::cos(q.angle) - v * std::sin(q.angle)) / q.scaleX;
        const double dy = (v * std::cos(q.angle) + u * std::sin(q.angle)) / q.scaleY;
        const Pixel pixel{roundedPixel(q.centerX / q.scaleX + dx), roundedPixel(q.centerY / q.scaleY + dy)};
        if (pixel.first == 0 && pixel.second == 0 && hasChosen) return lastChosen;
        hasChosen = true;
        const double e = ellipseEquation(q, pixel);
        if (1e-7 > e) return lastChosen = pixel;
        int best = 0;
        double largest = -std::numeric_limits<double>::infinity();
        for (int i = 0; i < 8; ++i) {
            const double along =
                (kReferenceDx[i] * dx + kReferenceDy[i] * dy) / (i % 2 == 0 ? 1.0 : std::sqrt(2.0));
            if (along > largest) {
                largest = along;
                best = i;
            }
        }
        lastChosen = {pixel.first - kReferenceDx[best], pixel.second - kReferenceDy[best]};
        return e > ellipseEquation(q, lastChosen) ? lastChosen : pixel;
    };
    const double step = 6.283185307179586 / n;
    Coordinates points{curvePoint(0.0)};
    for (int i = 1; i <= n; ++i) {
        const Pixel from = points.back();
        const Pixel to = curvePoint(i * step);
        if (from == to) continue;
        const int adx = std::abs(to.first - from.first), ady = std::abs(to.second - from.second);
        const int sx = to.first < from.first ? -1 : 1, sy = to.second < from.second ? -1 : 1;
        const int major = std::max(adx, ady), minor = std::min(adx, ady);
        int e = 2 * minor - major;
        Pixel p = from;
        for (int k = 0; k < major; ++k) {
            const bool both = e >= 0;
            if (both || adx >= ady) p.first += sx;
            if (both || adx < ady) p.second += sy;
            e += both ? 2 * (minor - major) : 2 * minor;
            points.push_back(p);
        }
    }
    return points;
}

/// The pixel walk from a given start. Empty when it does not close within 131072 points.
inline Coordinates referencePixelWalk(const TiltedEllipse& q, const Pixel& start, int direction) {
    const double squareA = q.a * q.a, squareB = q.b * q.b;
    const double sine = std::sin(q.angle), cosine = std::cos(q.angle);
    Coordinates points{start};
    Pixel current = start;
    for (unsigned int index = 1;;) {
        double smallest = std::numeric_limits<double>::infinity();
        Pixel next = current;
        int chosen = direction;
        for (int turn = -2; turn <= 2; ++turn) {
            const int k = (direction + turn + 8) % 8;
            const Pixel p{current.first + kReferenceDx[k], current.second + kReferenceDy[k]};
            const double x = p.first * q.scaleX - q.centerX, y = p.second * q.scaleY - q.centerY;
            const double u = x * cosine + y * sine;
            const double v = y * cosine - x * sine;
            const double error = std::fabs(v * v / squareB + u * u / squareA - 1.0);
            if (error < smallest) {
                smallest = error;
                next = p;
                chosen = k;
            }
        }
        current = next;
        direction = chosen;
        points.push_back(current);
        ++index;
        if (index > 2 && std::abs(current.first - start.first) <= 1 &&
            std::abs(current.second - start.second) <= 1)
            break;
        if (index > 131072) return {};
    }
    points.push_back(start);
    return points;
}

}  // namespace velquad::test

#endif  // VELQUAD_TESTS_SUPPORT_ELLIPSE_REFERENCE_H
