#include "fit.h"

#include <velquad/fitting.h>

#include <algorithm>
#include <cmath>

namespace examples::lens {
namespace {

/// The grey value between pixels; white outside of the picture.
double greyAt(const GreyImage& picture, double x, double y) {
    constexpr double kWhite = 65535.0;
    const double left = std::floor(x);
    const double top = std::floor(y);
    const int column = static_cast<int>(left);
    const int row = static_cast<int>(top);
    if (!picture.contains(column, row) || !picture.contains(column + 1, row + 1)) return kWhite;
    const double partX = x - left;
    const double partY = y - top;
    const double above = picture.at(column, row) * (1.0 - partX) + picture.at(column + 1, row) * partX;
    const double below =
        picture.at(column, row + 1) * (1.0 - partX) + picture.at(column + 1, row + 1) * partX;
    return above * (1.0 - partY) + below * partY;
}

}  // namespace

ModelResult fitModel(unsigned int model, const std::vector<Dot>& dots, const std::vector<Dot>& between) {
    svd::CSVDFitPoly2d fit;
    fit.Allocate(static_cast<unsigned int>(dots.size()), svd::PolyModelId(model), kWidth, kHeight);
    for (const Dot& dot : dots)
        fit.PutCalibDot(dot.measured.x, dot.measured.y, dot.truth.x, dot.truth.y);
    svd::CSVDFitPoly2d::LensDistortionParams params;
    if (!fit.Fit(params)) throw Failure("a lens model cannot be fitted");

    const auto errorAt = [&](const tagPOINT2D& seen, const tagPOINT2D& truth) {
        tagPOINT2D predicted{};
        fit.Predict(params, seen.x, seen.y, predicted.x, predicted.y);
        return tagPOINT2D{predicted.x - truth.x, predicted.y - truth.y};
    };
    ModelResult result;
    result.model = model;
    result.terms = params.xCoefficients.size();
    for (const Dot& dot : dots)
        result.residuals.push_back(errorAt(dot.measured, dot.truth));
    std::vector<tagPOINT2D> errorsBetween;
    for (const Dot& point : between)
        errorsBetween.push_back(errorAt(point.shown, point.truth));
    result.dots = sizeOf(result.residuals);
    result.between = sizeOf(errorsBetween);
    return result;
}

GreyImage corrected(const GreyImage& board, const std::vector<Dot>& dots) {
    // Every pixel of the result is fetched from where the lens shows it. That is the map from true to measured
    // positions: the dots are put the other way round.
    svd::CSVDFitPoly2d fit;
    fit.Allocate(static_cast<unsigned int>(dots.size()), svd::PolyModelId(kLastModel), kWidth, kHeight);
    for (const Dot& dot : dots)
        fit.PutCalibDot(dot.truth.x, dot.truth.y, dot.measured.x, dot.measured.y);
    svd::CSVDFitPoly2d::LensDistortionParams params;
    if (!fit.Fit(params)) throw Failure("a lens model cannot be fitted");

    GreyImage result(board.width, board.height);
    for (int y = 0; y < result.height; ++y) {
        for (int x = 0; x < result.width; ++x) {
            tagPOINT2D shown{};
            fit.Predict(params, kBoardScale * x, kBoardScale * y, shown.x, shown.y);
            const double grey = greyAt(board, shown.x / kBoardScale, shown.y / kBoardScale);
            result.at(x, y) = static_cast<std::uint16_t>(grey + 0.5);
        }
    }
    return result;
}

}  // namespace examples::lens
