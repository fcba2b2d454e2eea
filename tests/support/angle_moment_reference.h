// Statistics of directions, literally: every step for every value, with the exported functions of angles.
#ifndef VELQUAD_TESTS_SUPPORT_ANGLE_MOMENT_REFERENCE_H
#define VELQUAD_TESTS_SUPPORT_ANGLE_MOMENT_REFERENCE_H

#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include "velquad/geometry.h"

namespace velquad::test {

struct ReferenceAngleMoments {
    static constexpr double kNone = std::numeric_limits<double>::max();

    double min = kNone;
    double max = kNone;
    std::uint32_t count = 4294967295U;
    double stdDev = kNone;
    double mean = kNone;
    double range = kNone;
    bool hasFailed = false;

    ReferenceAngleMoments(const std::vector<double>& angles, int sense, int degrees) {
        std::vector<float> values;
        for (const double angle : angles)
            values.push_back(static_cast<float>(matNormalizeAngle(angle, degrees)));
        if (values.empty()) return;
        const auto n = static_cast<double>(values.size());

        double sumOfCosines = 0.0;
        double sumOfSines = 0.0;
        for (const float value : values) {
            const double x = radians(value, degrees);
            sumOfCosines += std::cos(x);
            sumOfSines += std::sin(x);
        }
        const tagPOINT2D c{sumOfCosines / n, sumOfSines / n};
        if (1e-5 > std::sqrt(c.y * c.y + c.x * c.x)) {
            hasFailed = true;
            return;
        }
        count = static_cast<std::uint32_t>(values.size());
        const tagPOINT2D origin{0.0, 0.0};
        const tagPOINT2D xAxis{1.0, 0.0};
        mean = matCalcNormalizedAngle2D(&origin, &xAxis, &c, sense, degrees);
        const double turn = degrees != 0 ? 360.0 : 6.283185307179586;

        double sumOfDistances = 0.0;
        for (const float value : values) {
            sumOfDistances += matNormalizeAngle(
                matCalcDistanceOfAngles(static_cast<double>(value), mean, degrees), degrees);
        }
        stdDev = sumOfDistances / n;

        double low = 3.4028234663852886e38;
        double high = -3.4028234663852886e38;
        for (const float value : values) {
            const double x = radians(value, degrees);
            const tagPOINT2D u{std::cos(x), std::sin(x)};
            const double a = matCalcNormalizedAngle2D(&origin, &c, &u, sense, degrees);
            const double s = a > turn * 0.5 ? a - turn : a;
            if (!(low < s)) low = s;
            if (!(high > s)) high = s;
        }
        min = matNormalizeAngle(low + mean, degrees);
        max = matNormalizeAngle(high + mean, degrees);
        range = high - low;
    }

  private:
    static double radians(float value, int degrees) {
        const auto angle = static_cast<double>(value);
        return degrees != 0 ? angle * 3.141592653589793 / 180.0 : angle;
    }
};

}  // namespace velquad::test

#endif  // VELQUAD_TESTS_SUPPORT_ANGLE_MOMENT_REFERENCE_H
