// The angle table that the whole process shares.
#include <utility>

#include "geometry/angle_table.h"

namespace velquad::geometry {

namespace {

constexpr std::uint64_t kStepsPerDegree = 1000;

}  // namespace

constinit const CMatAngleInterpolator* sinCosTable = nullptr;
constinit std::shared_ptr<CSinCosApproximator> sinCosApproximator;

CSinCosApproximator::CSinCosApproximator(std::unique_ptr<CMatAngleInterpolator> angles)
    : interpolator(std::move(angles)) {}

CSinCosApproximator::~CSinCosApproximator() {
    if (sinCosTable == interpolator.get()) sinCosTable = nullptr;
}

void installSinCosApproximator() {
    if (sinCosTable != nullptr) return;
    auto holder =
        std::make_shared<CSinCosApproximator>(std::make_unique<CMatAngleInterpolator>(kStepsPerDegree));
    const CMatAngleInterpolator* installed = holder->get();
    sinCosApproximator = std::move(holder);
    sinCosTable = installed;
}

}  // namespace velquad::geometry
