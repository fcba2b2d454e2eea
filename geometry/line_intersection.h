// Crossings of lines and of segments in the plane, one template for integer and double points. Every line a or
// b is given by two points; a parameter is 0 at the first and 1 at the second.
//
// The crossing solves a0 + t (a1 - a0) = b0 + s (b1 - b0) for t by Cramer's rule; s is then read off the crossing
// point along the dominant axis of b. Integer differences, products and sums wrap around at 32 bits.
#ifndef VELQUAD_GEOMETRY_LINE_INTERSECTION_H
#define VELQUAD_GEOMETRY_LINE_INTERSECTION_H

#include "frame/primitives.h"
#include "geometry/scale_factor.h"
#include "velquad/types.h"

namespace velquad::geometry {

struct LineCrossing {
    bool exists;        ///< The lines cross, or they are one line.
    bool isParallel;    ///< The determinant of the directions is exactly 0.
    double parameterA;  ///< On the first line; 0.0 for one and the same line, `kNoValue` when none exists.
};

/// A parallel line this near, in units of the determinant, is the same line. For integers: exactly 0.
inline constexpr double kSameLineTolerance = 1e-40;

/// The parameter of a crossing on the first line, not yet divided.
template <class Coordinate>
struct CrossingRatio {
    Coordinate numerator;
    Coordinate denominator;
};

template <class Point>
auto crossingRatio(const Point& a0, const Point& a1, const Point& b0, const Point& b1) {
    using Coordinate = typename frame::PointTraits<Point>::Coordinate;
    using A = frame::Arithmetic<Coordinate>;
    const Coordinate dx = A::sub(b1.x, b0.x);
    const Coordinate minusDy = A::neg(A::sub(b1.y, b0.y));
    const Coordinate denominator =
        A::add(A::mul(A::sub(a1.y, a0.y), dx), A::mul(A::sub(a1.x, a0.x), minusDy));
    const Coordinate numerator = A::add(A::mul(A::sub(b0.y, a0.y), dx), A::mul(A::sub(b0.x, a0.x), minusDy));
    return CrossingRatio<Coordinate>{numerator, denominator};
}

template <class Coordinate>
LineCrossing lineCrossing(const CrossingRatio<Coordinate>& ratio) {
    if (ratio.denominator != 0) {
        return {true, false, static_cast<double>(ratio.numerator) / static_cast<double>(ratio.denominator)};
    }
    if (frame::isSmaller(kSameLineTolerance, static_cast<double>(ratio.numerator))) return {true, true, 0.0};
    return {false, true, kNoValue};
}

template <class Point>
LineCrossing crossLines(const Point& a0, const Point& a1, const Point& b0, const Point& b1) {
    return lineCrossing(crossingRatio(a0, a1, b0, b1));
}

/// The point (a1 - a0) * parameter + a0.
template <class Point>
tagPOINT2D pointOnLine(const Point& a0, const Point& a1, double parameter) {
    using A = frame::Arithmetic<typename frame::PointTraits<Point>::Coordinate>;
    return {static_cast<double>(A::sub(a1.x, a0.x)) * parameter + static_cast<double>(a0.x),
            static_cast<double>(A::sub(a1.y, a0.y)) * parameter + static_cast<double>(a0.y)};
}

/// The parameter on the second line, b, of a crossing point that `pointOnLine` gave.
template <class Point>
double crossingParameterB(const Point& b0, const Point& b1, const tagPOINT2D& point) {
    return scaleFactorOnLine(b0, b1, point);
}

/// An open interval of parameters.
struct ParameterBand {
    double below;
    double above;
    constexpr bool contains(double parameter) const { return below < parameter && parameter < above; }
};

/// The whole segment, a little beyond both ends.
inline constexpr ParameterBand kWholeSegment{-1e-7, 1.0000001};
/// The segment with its start and without its end, so that a chain of segments meets each shared vertex once.
inline constexpr ParameterBand kHalfOpenSegment{-1e-40, 1.0};

/// What integer and double segments differ in, on purpose.
template <class Point>
struct SegmentTraits;

template <>
struct SegmentTraits<tagPOINT> {
    static constexpr ParameterBand kFirst = kWholeSegment;
    static constexpr ParameterBand kSecond = kWholeSegment;
    static constexpr bool isFarAbove(frame::Int32 low, frame::Int32 high) { return low > high; }
    static constexpr bool isFarBelow(frame::Int32 high, frame::Int32 low) { return high < low; }
};

template <>
struct SegmentTraits<tagPOINT2D> {
    static constexpr double kBoxMargin = 1e-7;
    static constexpr ParameterBand kFirst = kHalfOpenSegment;
    static constexpr ParameterBand kSecond = kWholeSegment;
    static constexpr bool isFarAbove(double low, double high) { return low > high + kBoxMargin; }
    static constexpr bool isFarBelow(double high, double low) { return low - kBoxMargin > high; }
};

/// Tells whether the extents of two segments are apart in one coordinate.
template <class Point, class Coordinate>
constexpr bool areExtentsApart(Coordinate a0, Coordinate a1, Coordinate b0, Coordinate b1) {
    using Traits = SegmentTraits<Point>;
    const Coordinate lowA = a1 < a0 ? a1 : a0;
    const Coordinate highA = a1 > a0 ? a1 : a0;
    const Coordinate lowB = b1 < b0 ? b1 : b0;
    const Coordinate highB = b1 > b0 ? b1 : b0;
    const bool isAbove = Traits::isFarAbove(lowA, highB);
    const bool isBelow = Traits::isFarBelow(highA, lowB);
    return isAbove | isBelow;
}

/// Tells whether the bounding boxes of two segments are apart. Boxes that touch are not.
template <class Point>
constexpr bool areBoxesApart(const Point& a0, const Point& a1, const Point& b0, const Point& b1) {
    using Coordinate = typename frame::PointTraits<Point>::Coordinate;
    // All four comparisons at once: which of them rejects a pair is hard to predict, that one does is not.
    const bool isApartInX = areExtentsApart<Point, Coordinate>(a0.x, a1.x, b0.x, b1.x);
    const bool isApartInY = areExtentsApart<Point, Coordinate>(a0.y, a1.y, b0.y, b1.y);
    return isApartInX | isApartInY;
}

struct SegmentCrossing {
    tagPOINT2D point;
    double parameterA;
    double parameterB;
    bool isParallel;  ///< Set as soon as the boxes touch, also when the segments have no contact.
};

/// The contact of two segments of one line: the first of b0, b1 and a0 that lies on the other segment.
template <class Point>
bool crossCollinearSegments(const Point& a0, const Point& a1, const Point& b0, const Point& b1,
                            SegmentCrossing* out) {
    using Traits = SegmentTraits<Point>;
    const auto toDouble = [](const Point& p) {
        return tagPOINT2D{static_cast<double>(p.x), static_cast<double>(p.y)};
    };
    const auto accept = [out](const tagPOINT2D& point, double parameterA, double parameterB) {
        if (out != nullptr) *out = {point, parameterA, parameterB, true};
        return true;
    };
    const tagPOINT2D startB = toDouble(b0);
    if (const double t = scaleFactorOnLine(a0, a1, startB); Traits::kFirst.contains(t)) {
        return accept(startB, t, 0.0);
    }
    const tagPOINT2D endB = toDouble(b1);
    if (const double t = scaleFactorOnLine(a0, a1, endB); Traits::kFirst.contains(t)) {
        return accept(endB, t, 1.0);
    }
    const tagPOINT2D startA = toDouble(a0);
    if (const double s = scaleFactorOnLine(b0, b1, startA); Traits::kSecond.contains(s)) {
        return accept(startA, 0.0, s);
    }
    // a1 needs no test: on b it would bring b0, b1 or a0 with it.
    return false;
}

/// `crossSegments` for segments whose boxes are known to touch.
template <class Point>
bool crossSegmentsInTouchingBoxes(const Point& a0, const Point& a1, const Point& b0, const Point& b1,
                                  SegmentCrossing* out) {
    using Traits = SegmentTraits<Point>;
    const LineCrossing lines = crossLines(a0, a1, b0, b1);
    if (out != nullptr) out->isParallel = lines.isParallel;
    if (!lines.exists) return false;
    if (lines.isParallel) return crossCollinearSegments(a0, a1, b0, b1, out);
    if (!Traits::kFirst.contains(lines.parameterA)) return false;
    const tagPOINT2D point = pointOnLine(a0, a1, lines.parameterA);
    const double parameterB = crossingParameterB(b0, b1, point);
    if (!Traits::kSecond.contains(parameterB)) return false;
    if (out != nullptr) *out = {point, lines.parameterA, parameterB, false};
    return true;
}

/// Tells whether two segments have contact. See `matIntersectSegments2L` and `matIntersectSegments2D`.
/// @param out  null when only the answer is wanted. Without contact nothing but `isParallel` is stored, and not
///             even that when the bounding boxes are apart.
template <class Point>
bool crossSegments(const Point& a0, const Point& a1, const Point& b0, const Point& b1,
                   SegmentCrossing* out = nullptr) {
    return !areBoxesApart(a0, a1, b0, b1) && crossSegmentsInTouchingBoxes(a0, a1, b0, b1, out);
}

}  // namespace velquad::geometry

#endif  // VELQUAD_GEOMETRY_LINE_INTERSECTION_H
