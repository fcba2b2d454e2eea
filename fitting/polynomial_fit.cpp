// Lines and parabolas through a range of samples, by singular values.
#include <cstddef>
#include <limits>
#include <new>

#include "fitting/svd_solve.h"
#include "frame/convert.h"
#include "velquad/fitting.h"

namespace {

static_assert(sizeof(math::CSVDPolyFit) == 3 * sizeof(double*) + 2 * sizeof(int) + 2 * sizeof(double));

constexpr int kLineCoefficients = 2;
constexpr int kParabolaCoefficients = 3;
// From the first to the last sample of a parabola's range: one sample more than it has coefficients.
constexpr int kLeastParabolaSpan = 3;

bool isRange(const std::vector<double>& x, const std::vector<double>& y, int first, int last) {
    return x.size() == y.size() && first >= 0 && first < last && static_cast<std::size_t>(last) < x.size() &&
           last - first < std::numeric_limits<int>::max();
}

double meanOf(const std::vector<double>& values, int first, int last) {
    double sum = 0.0;
    for (int i = first; i <= last; ++i)
        sum += values[static_cast<std::size_t>(i)];
    return sum / (last - first + 1);
}

// Makes the new object before the old one goes, so that there is always one once there was.
template <typename Object>
void replace(Object*& owned, Object* replacement) {
    delete owned;
    owned = replacement;
}

}  // namespace

namespace math {

CSVDPolyFit::CSVDPolyFit(int degree)
    : design(nullptr),
      rhs(nullptr),
      coefficients(nullptr),
      capacity(0),
      maxCoefficients(velquad::frame::wrapAdd(degree, 1)),
      xMean(0.0),
      yMean(0.0) {}

CSVDPolyFit::~CSVDPolyFit() {
    delete design;
    delete rhs;
    delete coefficients;
}

bool CSVDPolyFit::FitRangeLine(const std::vector<double>& x, const std::vector<double>& y, int first,
                               int last, double& slope, double& intercept, double* residual) {
    if (!FitPoly(x, y, first, last, kLineCoefficients, residual)) return false;
    const double* const c = coefficients->get();
    slope = c[2];
    intercept = c[1] - xMean * c[2] + yMean;
    return true;
}

bool CSVDPolyFit::FitRangeParabola(const std::vector<double>& x, const std::vector<double>& y, int first,
                                   int last, double& a, double& b, double& c, double* residual) {
    if (!isRange(x, y, first, last) || last - first < kLeastParabolaSpan) return false;
    if (!FitPoly(x, y, first, last, kParabolaCoefficients, residual)) return false;
    const double* const centred = coefficients->get();
    a = centred[3];
    b = centred[2] - 2.0 * centred[3] * xMean;
    c = xMean * centred[3] * xMean + centred[1] - centred[2] * xMean + yMean;
    return true;
}

bool CSVDPolyFit::FitPoly(const std::vector<double>& x, const std::vector<double>& y, int first, int last,
                          int coefficientCount, double* residual) {
    if (!isRange(x, y, first, last) || coefficientCount > maxCoefficients) return false;
    const int sampleCount = last - first + 1;
    if (!Allocate(sampleCount)) return false;
    xMean = meanOf(x, first, last);
    yMean = meanOf(y, first, last);
    double** const rows = design->get();
    double* const values = rhs->get();
    for (int row = 1; row <= sampleCount; ++row) {
        const auto i = static_cast<std::size_t>(first + row - 1);
        const double centredX = x[i] - xMean;
        double power = 1.0;
        for (int column = 1; column <= coefficientCount; ++column) {
            rows[row][column] = power;
            power *= centredX;
        }
        values[row] = y[i] - yMean;
    }
    velquad::fitting::solveLeastSquares(rows, values, sampleCount, coefficients->get(), coefficientCount,
                                        residual);
    return true;
}

bool CSVDPolyFit::Allocate(int samples) {
    if (samples <= capacity) return true;
    try {
        replace(design, new svd::CDMatrix(1, samples, 1, maxCoefficients));
        replace(rhs, new svd::CDVector(1, samples));
        replace(coefficients, new svd::CDVector(1, maxCoefficients));
    } catch (const std::bad_alloc&) {
        return false;
    }
    capacity = samples;
    return true;
}

}  // namespace math
