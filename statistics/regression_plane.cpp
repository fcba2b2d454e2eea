// The plane of least distance through points of space, with distances of the points in blocks: the divisions and
// roots of a block are independent of each other, the running statistic that takes them is not.
#include <array>
#include <cstddef>
#include <optional>

#include "frame/primitives.h"
#include "geometry/distance.h"
#include "geometry/plane_distance.h"
#include "statistics/singular_vectors.h"
#include "velquad/frame.h"
#include "velquad/statistics.h"

using velquad::statistics::SquareMatrix;

namespace {

tagPOINT3D centreOf(const tagPOINT3D* points, unsigned int count) {
    tagPOINT3D sum{0.0, 0.0, 0.0};
    for (unsigned int i = 0; i < count; ++i) {
        sum.x += points[i].x;
        sum.y += points[i].y;
        sum.z += points[i].z;
    }
    const double reciprocal = 1.0 / count;
    return {sum.x * reciprocal, sum.y * reciprocal, sum.z * reciprocal};
}

/// Sums of the products of scaled deviations. The matrix is symmetric to the bit.
SquareMatrix<3> scatterOf(const tagPOINT3D* points, unsigned int count, const tagPOINT3D& centre,
                          const tagPOINT3D& scale) {
    double xx = 0.0;
    double xy = 0.0;
    double xz = 0.0;
    double yy = 0.0;
    double yz = 0.0;
    double zz = 0.0;
    for (unsigned int i = 0; i < count; ++i) {
        const double dx = (points[i].x - centre.x) * scale.x;
        const double dy = (points[i].y - centre.y) * scale.y;
        const double dz = (points[i].z - centre.z) * scale.z;
        xx += dx * dx;
        xy += dx * dy;
        xz += dx * dz;
        yy += dy * dy;
        yz += dy * dz;
        zz += dz * dz;
    }
    return {{{xx, xy, xz}, {xy, yy, yz}, {xz, yz, zz}}};
}

/// The singular vector of the smallest value, taken back from the scaled space. The first of equals.
tagPOINT3D normalOf(const velquad::statistics::SingularVectors<3>& decomposition, const tagPOINT3D& scale) {
    std::size_t smallest = 0;
    for (std::size_t i = 1; i < 3; ++i) {
        if (decomposition.values[i] < decomposition.values[smallest]) smallest = i;
    }
    const auto column = decomposition.column(smallest);
    tagPOINT3D normal{column[0] * scale.x, column[1] * scale.y, column[2] * scale.z};
    matNormalizeVector3D(&normal);
    return normal;
}

CMatMomentEvaluator distanceMoments(const tagPOINT3D* points, unsigned int count, const tagPOINT3D& centre,
                                    const tagPOINT3D& normal, const tagPOINT3D& direction) {
    CMatMomentEvaluator moments;
    const auto plane = velquad::geometry::directedPlane(centre, normal, direction);
    if (!plane) return moments;
    constexpr unsigned int kBlock = 256;
    std::array<double, kBlock> distances;
    for (unsigned int begin = 0; begin < count;) {
        const unsigned int size = count - begin < kBlock ? count - begin : kBlock;
        const tagPOINT3D* block = points + begin;
        for (unsigned int i = 0; i < size; ++i)
            distances[i] = velquad::geometry::distance(block[i], plane->hitOf(block[i]));
        // A root is never the mark for no value, so the batch form takes what single values would be.
        moments.AddValues(distances.data(), static_cast<int>(size));
        begin += size;
    }
    return moments;
}

}  // namespace

extern "C" int matRegressionPlane(const tagPOINT3D* points, unsigned int count, const tagPOINT3D* axisScale,
                                  tagPOINT3D* centre, tagPOINT3D* normal, const tagPOINT3D* direction,
                                  double* meanDistance, double* stdDevDistance) {
    if (points == nullptr) return 0;
    const tagPOINT3D scale = axisScale != nullptr ? *axisScale : tagPOINT3D{1.0, 1.0, 1.0};
    const tagPOINT3D mean = centreOf(points, count);
    const auto decomposition = velquad::statistics::decompose(scatterOf(points, count, mean, scale));
    if (!decomposition) return 0;
    const tagPOINT3D across = normalOf(*decomposition, scale);
    if (centre != nullptr) *centre = mean;
    if (normal != nullptr) *normal = across;
    if (meanDistance == nullptr && stdDevDistance == nullptr) return 1;

    CMatMomentEvaluator moments =
        distanceMoments(points, count, mean, across, direction != nullptr ? *direction : across);
    if (meanDistance != nullptr) *meanDistance = moments.GetMean();
    if (stdDevDistance != nullptr) *stdDevDistance = moments.GetStdDev();
    return 1;
}
