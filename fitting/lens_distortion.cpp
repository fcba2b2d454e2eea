// Polynomial maps of the plane for the correction of lens distortion: one linear least-squares problem for each
// output coordinate, solved through the singular values of the matrix of terms, which both share.
#include <Eigen/SVD>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <new>
#include <utility>
#include <vector>

#include "fitting/lens_basis.h"
#include "fitting/working_memory.h"
#include "velquad/fitting.h"

namespace {

using velquad::fitting::evaluateLensTerms;
using velquad::fitting::kMaxLensTerms;
using velquad::fitting::lensTermCount;
using velquad::fitting::LensTerms;

using RowMajorMatrix = Eigen::Matrix<double, Eigen::Dynamic, Eigen::Dynamic, Eigen::RowMajor>;

bool isFinite(const std::vector<double>& values) {
    return std::all_of(values.begin(), values.end(), [](double value) { return std::isfinite(value); });
}

// The minimum-norm least-squares solutions for two right-hand sides. A decomposition is undefined for a matrix
// that is empty or not finite.
std::array<std::vector<double>, 2> solveBoth(const std::vector<double>& design, std::size_t columns,
                                             const std::vector<double>& first,
                                             const std::vector<double>& second) {
    const std::size_t rows = first.size();
    if (rows == 0 || columns == 0) return {std::vector<double>(columns), std::vector<double>(columns)};
    std::array<std::vector<double>, 2> solutions;
    solutions.fill(std::vector<double>(columns, std::numeric_limits<double>::quiet_NaN()));
    if (!isFinite(design)) return solutions;
    const Eigen::MatrixXd matrix = Eigen::Map<const RowMajorMatrix>(
        design.data(), static_cast<Eigen::Index>(rows), static_cast<Eigen::Index>(columns));
    velquad::fitting::requireMemoryForDecomposition(rows, columns);
    const Eigen::JacobiSVD<Eigen::MatrixXd> decomposition(matrix, Eigen::ComputeThinU | Eigen::ComputeThinV);
    const std::array<const std::vector<double>*, 2> targets = {&first, &second};
    for (std::size_t axis = 0; axis < targets.size(); ++axis) {
        const Eigen::Map<const Eigen::VectorXd> target(targets[axis]->data(),
                                                       static_cast<Eigen::Index>(rows));
        Eigen::Map<Eigen::VectorXd>(solutions[axis].data(), static_cast<Eigen::Index>(columns)) =
            decomposition.solve(target);
    }
    return solutions;
}

}  // namespace

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
    std::array<std::vector<double>, 2> solutions =
        solveBoth(record->design, record->termCount, record->targetX, record->targetY);
    params.modelId = record->modelId;
    params.xCoefficients = std::move(solutions[0]);
    params.yCoefficients = std::move(solutions[1]);
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
