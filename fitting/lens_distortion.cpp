// Polynomial maps of the plane for the correction of lens distortion: one linear least-squares problem for each
// output coordinate, solved through the singular values of the matrix of terms, which both share.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <new>
#include <utility>
#include <vector>

#include "fitting/lens_basis.h"
#include "fitting/svd_solve.h"
#include "velquad/fitting.h"

using velquad::fitting::evaluateLensTerms;
using velquad::fitting::lensTermCount;
using velquad::fitting::LensTerms;

namespace svd {

struct CSVDFitPoly2d::Record {
    unsigned int modelId = 0;
    unsigned int dotCount = 0;
    unsigned int maxDots = 0;
    std::size_t termCount = 0;
    double centreX = 0.0;
    double scale = 0.0;          // half the height: the unit of both axes and the vertical centre
    std::vector<double> design;  // the terms of each dot in a row; rows of dots to come are zero
    std::vector<double> targetX;
    std::vector<double> targetY;

    double normalizeX(double x) const { return (x - centreX) / scale; }
    double normalizeY(double y) const { return (y - scale) / scale; }

    void evaluate(double x, double y, LensTerms& terms) const {
        const double u = normalizeX(x);
        const double v = normalizeY(y);
        evaluateLensTerms(modelId, u, v, std::sqrt(u * u + v * v), terms);
    }
};

CSVDFitPoly2d::CSVDFitPoly2d() : record(new (std::nothrow) Record) {}

CSVDFitPoly2d::~CSVDFitPoly2d() {
    delete record;
    record = nullptr;
}

// Kept: the record that this object had is not released, as another object may share it.
CSVDFitPoly2d& CSVDFitPoly2d::operator=(const CSVDFitPoly2d& other) = default;

bool CSVDFitPoly2d::Allocate(unsigned int dots, svd::PolyModelId model, unsigned int width,
                             unsigned int height) {
    if (record == nullptr) return false;
    const std::size_t termCount = lensTermCount(model.get());
    const std::size_t dotRoom = dots;
    if (termCount != 0 && dotRoom > std::numeric_limits<std::size_t>::max() / sizeof(double) / termCount)
        throw std::bad_alloc();
    Record fresh;
    fresh.modelId = model.get();
    fresh.maxDots = dots;
    fresh.termCount = termCount;
    fresh.centreX = static_cast<double>(width) * 0.5;
    fresh.scale = static_cast<double>(height) * 0.5;
    fresh.design.resize(dotRoom * termCount);
    fresh.targetX.resize(dotRoom);
    fresh.targetY.resize(dotRoom);
    *record = std::move(fresh);
    return true;
}

void CSVDFitPoly2d::PutCalibDot(double x, double y, double targetX, double targetY) {
    if (record == nullptr || record->dotCount >= record->maxDots) return;
    LensTerms terms;
    record->evaluate(x, y, terms);
    const std::size_t row = record->dotCount;
    std::copy_n(terms.data(), record->termCount, record->design.data() + row * record->termCount);
    record->targetX[row] = record->normalizeX(targetX);
    record->targetY[row] = record->normalizeY(targetY);
    ++record->dotCount;
}

bool CSVDFitPoly2d::Fit(LensDistortionParams& params) {
    if (record == nullptr) return false;
    std::vector<double> xCoefficients(record->termCount);
    std::vector<double> yCoefficients(record->termCount);
    velquad::fitting::solveLeastSquares(
        record->design.data(), record->maxDots, record->termCount,
        {{record->targetX.data(), xCoefficients.data()}, {record->targetY.data(), yCoefficients.data()}});
    params.modelId = record->modelId;
    params.xCoefficients = std::move(xCoefficients);
    params.yCoefficients = std::move(yCoefficients);
    return true;
}

void CSVDFitPoly2d::Predict(LensDistortionParams& params, double x, double y, double& resultX,
                            double& resultY) const {
    if (record == nullptr) return;
    LensTerms terms;
    record->evaluate(x, y, terms);
    // The bounds cost nothing next to the terms and keep coefficients of a smaller model from being overrun.
    const std::size_t count =
        std::min({record->termCount, params.xCoefficients.size(), params.yCoefficients.size()});
    const double* const xCoefficients = params.xCoefficients.data();
    const double* const yCoefficients = params.yCoefficients.data();
    double sumX = 0.0;
    double sumY = 0.0;
    for (std::size_t term = 0; term < count; ++term) {
        sumX += terms[term] * xCoefficients[term];
        sumY += terms[term] * yCoefficients[term];
    }
    resultX = sumX * record->scale + record->centreX;
    resultY = sumY * record->scale + record->scale;
}

}  // namespace svd
