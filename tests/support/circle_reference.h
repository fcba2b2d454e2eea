// The search for the best circle as plain loops: every triple, every point, the general inverse.
#ifndef VELQUAD_TESTS_SUPPORT_CIRCLE_REFERENCE_H
#define VELQUAD_TESTS_SUPPORT_CIRCLE_REFERENCE_H

#include <cstddef>

#include "velquad/geometry.h"

namespace velquad::test {

struct BestCircle {
    bool isFound = false;
    tagPOINT2D center{};
    double radius = 0.0;
    double error = 1.7e308;
};

/// The earliest of the triples with the smallest sum of squared deviations.
inline BestCircle bestCircleLiterally(const tagPOINT2D* points, std::size_t count) {
    BestCircle best;
    tagPOINT2D center{};
    double radius = 0.0;
    for (std::size_t i = 0; i < count; ++i) {
        for (std::size_t j = i + 1; j < count; ++j) {
            for (std::size_t k = j + 1; k < count; ++k) {
                tagPOINT2D triple[3] = {points[i], points[j], points[k]};
                matGetCircleThrough3Points(triple, &center, &radius);
                double error = 0.0;
                for (std::size_t m = 0; m < count; ++m) {
                    const double deviation = matCalcDist2D(&points[m], &center, 0) - radius;
                    error += deviation * deviation;
                }
                if (best.error > error) best = {true, center, radius, error};
            }
        }
    }
    return best;
}

}  // namespace velquad::test

#endif  // VELQUAD_TESTS_SUPPORT_CIRCLE_REFERENCE_H
