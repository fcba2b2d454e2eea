// Sine and cosine from a table of the first quadrant. The nearest entry is taken; there is no interpolation
// between entries, so the error is at most half a step.
#include "frame/math.h"
#include "geometry/angle_table.h"
#include "velquad/geometry.h"

using velquad::geometry::AngleTable;
using velquad::geometry::kQuarterTurnRad;

namespace {

constexpr std::uint64_t kDegreesPerQuadrant = 90;
/// How far beyond the end of a quadrant an angle still counts to it, times the steps of the quadrant.
constexpr double kQuadrantMargin = 1e-7;

}  // namespace

CMatAngleInterpolator::CMatAngleInterpolator(std::uint64_t stepsPerDegree)
    : steps(stepsPerDegree * kDegreesPerQuadrant), epsilon(kQuadrantMargin / static_cast<double>(steps)) {
    table.reserve(steps + 1);
    for (std::uint64_t k = 0; k <= steps; ++k) {
        table.push_back(
            velquad::frame::sin(static_cast<double>(k) * kQuarterTurnRad / static_cast<double>(steps)));
    }
}

CMatAngleInterpolator::CMatAngleInterpolator(const CMatAngleInterpolator& other) = default;
CMatAngleInterpolator::CMatAngleInterpolator(CMatAngleInterpolator&& other) noexcept = default;
CMatAngleInterpolator& CMatAngleInterpolator::operator=(const CMatAngleInterpolator& other) = default;
CMatAngleInterpolator& CMatAngleInterpolator::operator=(CMatAngleInterpolator&& other) noexcept = default;
CMatAngleInterpolator::~CMatAngleInterpolator() = default;

double CMatAngleInterpolator::sin(double angle, bool isDegrees) {
    return AngleTable::sine(*this, angle, isDegrees);
}

double CMatAngleInterpolator::cos(double angle, bool isDegrees) {
    return AngleTable::cosine(*this, angle, isDegrees);
}

void CMatAngleInterpolator::SelfTest() {
    // Reaches every entry once in the first quadrant and walks all four twice; a wrong index shows under a
    // memory checker.
    const auto angleAt = [this](std::uint64_t k) {
        return static_cast<double>(k) * 90.0 / static_cast<double>(steps);
    };
    for (std::uint64_t k = 0; k <= steps; ++k)
        static_cast<void>(sin(angleAt(k), true));
    for (std::uint64_t k = 0; k <= 4 * steps; ++k)
        static_cast<void>(sin(angleAt(k), false));
    for (std::uint64_t k = 0; k <= 4 * steps; ++k)
        static_cast<void>(cos(angleAt(k), false));
}
