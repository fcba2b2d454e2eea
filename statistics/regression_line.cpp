// Lines by least squares from the sums of the pairs.
#include <cmath>
#include <optional>

#include "frame/primitives.h"
#include "geometry/angle.h"
#include "geometry/distance.h"
#include "velquad/statistics.h"

using velquad::frame::isSmaller;

namespace {

/// Below this, n * sum x^2 - (sum x)^2 means that all x are equal.
constexpr double kNullSpread = 1e-100;

/// Independent coordinates of the two points that stand for a line.
constexpr double kFirstPlace = 0.0;
constexpr double kSecondPlace = 1000.0;

struct Sums {
    DWORD count = 0;
    double x = 0.0;
    double y = 0.0;
    double xx = 0.0;
    double yy = 0.0;
    double xy = 0.0;
};

struct Line {
    double slope;
    double intercept;
};

struct DirectedFit {
    Line line;
    bool yOfX;
};

Sums sumUp(const double* x, const double* y, unsigned int count, double ignoreValue) {
    Sums sums;
    for (unsigned int i = 0; i < count; ++i) {
        if (x[i] == ignoreValue || y[i] == ignoreValue) continue;
        ++sums.count;
        sums.x += x[i];
        sums.y += y[i];
        sums.xx += x[i] * x[i];
        sums.yy += y[i] * y[i];
        sums.xy += x[i] * y[i];
    }
    return sums;
}

/// The line over one coordinate, from its own sums and the sum of the other one.
std::optional<Line> lineOver(double n, double sum, double sumOfSquares, double otherSum, double sumXY) {
    const double spread = n * sumOfSquares - sum * sum;
    if (isSmaller(kNullSpread, spread)) return std::nullopt;
    return Line{(n * sumXY - sum * otherSum) / spread, (sumOfSquares * otherSum - sumXY * sum) / spread};
}

std::optional<Line> lineOverX(const Sums& sums) {
    return lineOver(sums.count, sums.x, sums.xx, sums.y, sums.xy);
}

std::optional<Line> lineOverY(const Sums& sums) {
    return lineOver(sums.count, sums.y, sums.yy, sums.x, sums.xy);
}

std::optional<DirectedFit> fitAlongGreaterSpread(const Sums& sums) {
    if (sums.count < 2) return std::nullopt;
    const double n = sums.count;
    const double varianceX = sums.xx / n - (sums.x / n) * (sums.x / n);
    const double varianceY = sums.yy / n - (sums.y / n) * (sums.y / n);
    const bool yOfX = varianceX > varianceY;
    const std::optional<Line> line = yOfX ? lineOverX(sums) : lineOverY(sums);
    if (!line) return std::nullopt;
    return DirectedFit{*line, yOfX};
}

template <class Flag>
void storeFit(const DirectedFit& fit, double* slope, double* intercept, Flag* yOfX) {
    if (slope != nullptr) *slope = fit.line.slope;
    if (intercept != nullptr) *intercept = fit.line.intercept;
    if (yOfX != nullptr) *yOfX = fit.yOfX ? 1 : 0;
}

}  // namespace

extern "C" int matRegressionLine(const double* x, const double* y, unsigned int count, double ignoreValue,
                                 double* slope, double* intercept) {
    if (x == nullptr || y == nullptr) return 0;
    const Sums sums = sumUp(x, y, count, ignoreValue);
    if (sums.count < 2) return 0;
    const std::optional<Line> line = lineOverX(sums);
    if (!line) return 0;
    if (slope != nullptr) *slope = line->slope;
    if (intercept != nullptr) *intercept = line->intercept;
    return 1;
}

extern "C" int matCalcRegressionLine(const double* x, const double* y, unsigned int count, double ignoreValue,
                                     double* slope, double* intercept, unsigned int* yOfX) {
    if (x == nullptr || y == nullptr) return 0;
    const std::optional<DirectedFit> fit = fitAlongGreaterSpread(sumUp(x, y, count, ignoreValue));
    if (!fit) return 0;
    storeFit(*fit, slope, intercept, yOfX);
    return 1;
}

CMatRegressionLine::CMatRegressionLine(double ignored) : ignoreValue(ignored) {}

CMatRegressionLine::CMatRegressionLine(const CMatRegressionLine& other) = default;
CMatRegressionLine::CMatRegressionLine(CMatRegressionLine&& other) noexcept = default;
CMatRegressionLine& CMatRegressionLine::operator=(const CMatRegressionLine& other) = default;

int CMatRegressionLine::AddValue(double x, double y) {
    if (x == ignoreValue || y == ignoreValue) return 0;
    ++count;
    sumX += x;
    sumY += y;
    sumXX += x * x;
    sumYY += y * y;
    sumXY += x * y;
    return 1;
}

int CMatRegressionLine::CalcRegressionLine(double* slopeOut, double* interceptOut, int* yOfXOut) {
    const std::optional<DirectedFit> fit =
        fitAlongGreaterSpread(Sums{count, sumX, sumY, sumXX, sumYY, sumXY});
    if (!fit) return 0;
    storeFit(*fit, &slope, &intercept, &yOfX);
    storeFit(*fit, slopeOut, interceptOut, yOfXOut);
    return 1;
}

int CMatRegressionLine::CalcPointAt(double t, double* point) {
    if (slope == velquad::kNoValue || intercept == velquad::kNoValue) return 0;
    const double u = slope * t + intercept;
    point[0] = yOfX != 0 ? t : u;
    point[1] = yOfX != 0 ? u : t;
    return 1;
}

double CMatRegressionLine::CalcDistanceOfPoint(double* point, double* footPoint) {
    double first[2];
    double second[2];
    if (CalcPointAt(kFirstPlace, first) == 0 || CalcPointAt(kSecondPlace, second) == 0) return 0.0;
    const auto foot = velquad::geometry::footOnLine(
        tagPOINT2D{first[0], first[1]}, tagPOINT2D{second[0], second[1]}, tagPOINT2D{point[0], point[1]});
    if (!foot) return velquad::kNoValue;
    if (footPoint != nullptr) {
        footPoint[0] = foot->closest.x;
        footPoint[1] = foot->closest.y;
    }
    return foot->distance;
}

double CMatRegressionLine::CalcAngle(int axis, int degrees) {
    constexpr double kFoldFromDegrees = 179.9999999;
    constexpr double kFoldFromRad = 3.1415925535897933;
    if (axis != 0 && axis != 1) return velquad::kNoValue;
    // Without a line both points stay the origin, and the null vector between them has the angle 0.
    double first[2] = {0.0, 0.0};
    double second[2] = {0.0, 0.0};
    CalcPointAt(kFirstPlace, first);
    CalcPointAt(kSecondPlace, second);
    const tagPOINT2D reference = axis == 0 ? tagPOINT2D{1.0, 0.0} : tagPOINT2D{0.0, 1.0};
    const bool isDegrees = degrees != 0;
    const double angle = velquad::geometry::normalizedAngle(
        tagPOINT2D{0.0, 0.0}, reference, tagPOINT2D{second[0] - first[0], second[1] - first[1]}, true,
        isDegrees);
    // Kept: the fold begins a little below the half turn, so angles there come out above it.
    if (!(angle >= (isDegrees ? kFoldFromDegrees : kFoldFromRad))) return angle;
    const double folded = velquad::geometry::fullTurn(isDegrees) - angle;
    return folded < 0.0 ? 0.0 : folded;
}
