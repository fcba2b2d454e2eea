// Sine and cosine from a table, as inner loops use them, and the table that the whole process shares.
#ifndef VELQUAD_GEOMETRY_ANGLE_TABLE_H
#define VELQUAD_GEOMETRY_ANGLE_TABLE_H

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "geometry/angle.h"
#include "velquad/geometry.h"

namespace velquad::geometry {

inline constexpr double kQuarterTurnDegrees = 90.0;
inline constexpr double kQuarterTurnRad = 1.5707963267948966;

/// Brings an angle in degrees to [0, 360] as repeated steps of a full turn do: 360 stays, and a multiple of it
/// from above becomes 360. The steps are exact up to 2^56, so that one remainder takes the place of them all.
/// @return not a number for an infinity.
inline double reduceToTurn(double degrees) {
    if (degrees > kFullTurnDegrees) {
        const double once = degrees - kFullTurnDegrees;
        if (!(once > kFullTurnDegrees)) return once;
        const double rest = std::fmod(degrees, kFullTurnDegrees);
        return rest == 0.0 ? kFullTurnDegrees : rest;
    }
    if (0.0 > degrees) {
        const double rest = std::fmod(degrees, kFullTurnDegrees);
        return 0.0 > rest ? rest + kFullTurnDegrees : (rest == 0.0 ? 0.0 : rest);
    }
    return degrees;
}

/// The integer nearest to `value`, halves upwards. @param value  above -0.5 and below 2^62.
constexpr std::size_t nearestEntry(double value) {
    const auto whole = static_cast<std::int64_t>(value);
    return static_cast<std::size_t>(whole + (value - static_cast<double>(whole) >= 0.5 ? 1 : 0));
}

/// The fields of an interpolator, and its functions inline.
struct AngleTable {
    static const std::vector<double>& table(const CMatAngleInterpolator& angles) { return angles.table; }
    static std::uint64_t steps(const CMatAngleInterpolator& angles) { return angles.steps; }
    static double epsilon(const CMatAngleInterpolator& angles) { return angles.epsilon; }
    static void selfTest(CMatAngleInterpolator& angles) { angles.SelfTest(); }

    /// See `CMatAngleInterpolator::sin`.
    static double sine(const CMatAngleInterpolator& angles, double angle, bool isDegrees) {
        const double degrees = reduceToTurn(isDegrees ? angle : angle / kHalfTurnRad * kHalfTurnDegrees);
        if (std::isnan(degrees)) return degrees;
        const double e = angles.epsilon;
        const auto n = static_cast<double>(angles.steps);
        const double* table = angles.table.data();
        if (e + 90.0 >= degrees) return table[nearestEntry(n * (degrees / 90.0))];
        if (e + 180.0 > degrees) return table[nearestEntry(n * ((180.0 - degrees) / 90.0))];
        if (e + 270.0 > degrees) return -table[nearestEntry(n * ((degrees - 180.0) / 90.0))];
        return -table[nearestEntry(n * ((360.0 - degrees) / 90.0))];
    }

    /// See `CMatAngleInterpolator::cos`.
    static double cosine(const CMatAngleInterpolator& angles, double angle, bool isDegrees) {
        return sine(angles, angle + (isDegrees ? kQuarterTurnDegrees : kQuarterTurnRad), isDegrees);
    }
};

/// Owns the interpolator that the ellipse walker uses in place of the library's sine and cosine.
class CSinCosApproximator {
  public:
    explicit CSinCosApproximator(std::unique_ptr<CMatAngleInterpolator> angles);
    CSinCosApproximator(const CSinCosApproximator&) = delete;
    CSinCosApproximator& operator=(const CSinCosApproximator&) = delete;
    /// Leaves no pointer to the interpolator behind.
    ~CSinCosApproximator();

    const CMatAngleInterpolator* get() const { return interpolator.get(); }

  private:
    std::unique_ptr<CMatAngleInterpolator> interpolator;
};

/// The process-wide holder, released when the process ends, and the interpolator in it. Both are empty until
/// somebody installs them. There is no lock: install before other threads draw.
extern std::shared_ptr<CSinCosApproximator> sinCosApproximator;
extern const CMatAngleInterpolator* sinCosTable;

/// Builds the process-wide table of 1000 steps a degree, once; later calls do nothing.
/// @throws std::bad_alloc  with everything as it was.
void installSinCosApproximator();

}  // namespace velquad::geometry

#endif  // VELQUAD_GEOMETRY_ANGLE_TABLE_H
