// Location of a peak between the samples of a curve: a parabola through a window, and the tests that tell a peak from
// noise and background.
#include <cmath>
#include <cstddef>
#include <sstream>
#include <string>

#include "fitting/sample_sums.h"
#include "velquad/fitting.h"

using velquad::fitting::SampleSums;

namespace {

using Samples = std::vector<double>;

static_assert(sizeof(math::ParaFit) == 72);

constexpr std::size_t kLeastSamples = 3;
// Samples on each side, the index included, that belong to the window however far they lie.
constexpr std::ptrdiff_t kLeastReach = 3;
// More samples than this must lie outside the window, and more than the other one count, to tell a background.
constexpr std::ptrdiff_t kMostWithoutBackground = 2;
constexpr unsigned int kMostWithoutStatistics = 3;

struct Window {
    int left;
    int right;
};

struct Parabola {
    double a;
    double b;
    double c;
    double residual;

    double at(double x) const { return (x * a) * x + x * b + c; }
};

double sampleOf(const Samples& samples, std::ptrdiff_t i) {
    return samples[static_cast<std::size_t>(i)];
}

bool isIndex(const Samples& samples, int index) {
    return index >= 0 && static_cast<std::size_t>(index) < samples.size();
}

// Comparisons are such that an x that is not a number belongs to the window.
Window windowAround(const Samples& x, int index, double halfWidth) {
    Window window{index, index};
    if (!isIndex(x, index)) return window;
    const double centre = sampleOf(x, index);
    for (int i = index; i >= 0; --i) {
        if (centre - sampleOf(x, i) >= halfWidth && index - i >= kLeastReach) break;
        window.left = i;
    }
    const auto count = static_cast<std::ptrdiff_t>(x.size());
    for (std::ptrdiff_t i = index; i < count; ++i) {
        if (sampleOf(x, i) - centre >= halfWidth && i - index >= kLeastReach) break;
        window.right = static_cast<int>(i);
    }
    return window;
}

void writeWindow(const Window& window) {
    std::wostringstream text;
    text << L" Fitting parabola " << window.left << L"," << window.right << std::endl;
    OutputDebugStringW(text.str().c_str());
}

void writeFit(const Samples& x, const Window& window, const Parabola& parabola, const math::ParaFit& fit) {
    const double leftX = sampleOf(x, window.left);
    const double rightX = sampleOf(x, window.right);
    std::wostringstream text;
    text << L" from " << leftX << L" to " << rightX << L" a:" << parabola.a << L" b:" << parabola.b << L" c:"
         << parabola.c << L" Vertex: " << fit.vertexX << L"," << fit.vertexY << L",L/R: "
         << parabola.at(leftX) << L"/" << parabola.at(rightX) << L", MSE " << parabola.residual << L"/"
         << std::sqrt(parabola.residual) << std::endl;
    OutputDebugStringW(text.str().c_str());
}

// What lies outside the window, going outwards, without the descent from the window's end.
class Background {
  public:
    explicit Background(double windowEnd) : windowEnd_(windowEnd) {}

    void visit(double value, SampleSums& sums) {
        isOnFlank_ = isOnFlank_ && windowEnd_ > value;
        if (!isOnFlank_) sums.add(value);
    }

  private:
    double windowEnd_;
    bool isOnFlank_ = true;
};

double backgroundThreshold(const Samples& y, const Window& window, double factor) {
    const auto count = static_cast<std::ptrdiff_t>(y.size());
    if (count - window.right - 1 + window.left <= kMostWithoutBackground) return 0.0;
    SampleSums sums;
    Background leftSide(sampleOf(y, window.left));
    for (std::ptrdiff_t i = std::ptrdiff_t{window.left} - 1; i >= 0; --i)
        leftSide.visit(sampleOf(y, i), sums);
    Background rightSide(sampleOf(y, window.right));
    for (std::ptrdiff_t i = std::ptrdiff_t{window.right} + 1; i < count; ++i)
        rightSide.visit(sampleOf(y, i), sums);
    if (sums.count <= kMostWithoutStatistics) return 0.0;
    return sums.deviation() * factor + sums.mean();
}

bool isPeak(const Samples& x, const Samples& y, const Window& window, const Parabola& parabola,
            const math::ParaFit& fit, double backgroundFactor, double noiseFactor) {
    const double leftX = sampleOf(x, window.left);
    const double rightX = sampleOf(x, window.right);
    const double leftY = parabola.at(leftX);
    const double rightY = parabola.at(rightX);
    const double low = leftY > rightY ? rightY : leftY;
    const bool isTallEnough = (fit.vertexY - low) >= std::sqrt(parabola.residual) * noiseFactor;
    const double threshold = backgroundThreshold(y, window, backgroundFactor);
    return parabola.a < 0.0 && isTallEnough && fit.vertexX > leftX && rightX > fit.vertexX &&
           fit.vertexY > threshold;
}

void storePlateau(const Samples& x, const Samples& y, int index, math::ParaFit& fit) {
    const double level = sampleOf(y, index);
    const auto last = static_cast<std::ptrdiff_t>(y.size()) - 1;
    std::ptrdiff_t left = index;
    while (left > 0 && sampleOf(y, left) == level)
        --left;
    std::ptrdiff_t right = index;
    while (right < last && sampleOf(y, right) == level)
        ++right;
    fit.plateauLeftX = sampleOf(x, left);
    fit.plateauRightX = sampleOf(x, right);
}

}  // namespace

namespace math {

ParaFit::ParaFit()
    : vertexX(0.0),
      vertexY(0.0),
      curvature(0.0),
      reserved(0.0),
      residual(0.0),
      left(0),
      right(0),
      plateauLeftX(0.0),
      plateauRightX(0.0),
      isPeak(false) {}

ParaFit& ParaFit::operator=(const ParaFit& other) = default;

ParaFit& ParaFit::operator=(ParaFit&& other) noexcept = default;

bool FitParabola(const std::vector<double>& x, const std::vector<double>& y, int index, double width,
                 ParaFit& fit, CSVDPolyFit& poly, bool verbose, double minCurvature, double backgroundFactor,
                 double noiseFactor) {
    if (x.size() != y.size() || x.size() < kLeastSamples) return false;
    fit.vertexY = 0.0;
    fit.curvature = 0.0;
    fit.isPeak = false;
    const Window window = windowAround(x, index, width * 0.5);
    if (verbose) writeWindow(window);
    Parabola parabola{};
    if (!poly.FitRangeParabola(x, y, window.left, window.right, parabola.a, parabola.b, parabola.c,
                               &parabola.residual))
        return false;
    if (!(std::fabs(parabola.a) > minCurvature)) return false;
    fit.vertexY = parabola.c - (parabola.b * parabola.b) / (parabola.a * 4.0);
    fit.vertexX = -parabola.b / (parabola.a * 2.0);
    fit.curvature = parabola.a;
    fit.residual = parabola.residual;
    fit.left = window.left;
    fit.right = window.right;
    fit.isPeak = isPeak(x, y, window, parabola, fit, backgroundFactor, noiseFactor);
    if (verbose) writeFit(x, window, parabola, fit);
    storePlateau(x, y, index, fit);
    return true;
}

}  // namespace math
