// The line of least distance through points of the plane. The adjugate of the covariance matrix has the same
// eigenvectors with their eigenvalues exchanged, so the vector of its smaller singular value points along the
// greatest spread.
#include "frame/primitives.h"
#include "statistics/singular_vectors.h"
#include "velquad/frame.h"
#include "velquad/statistics.h"

namespace {

tagPOINT2D centreOf(const tagPOINT2D* points, unsigned int count) {
    tagPOINT2D sum{0.0, 0.0};
    for (unsigned int i = 0; i < count; ++i) {
        sum.x += points[i].x;
        sum.y += points[i].y;
    }
    const double n = count;
    return {sum.x / n, sum.y / n};
}

velquad::statistics::SquareMatrix<2> adjugateOfCovariance(const tagPOINT2D* points, unsigned int count,
                                                          const tagPOINT2D& centre) {
    double cxx = 0.0;
    double cyy = 0.0;
    double cxy = 0.0;
    for (unsigned int i = 0; i < count; ++i) {
        const double dx = points[i].x - centre.x;
        const double dy = points[i].y - centre.y;
        cxx += dx * dx;
        cyy += dy * dy;
        cxy += dx * dy;
    }
    const double n = count;
    cxx /= n;
    cyy /= n;
    cxy /= n;
    return {{{cyy, -cxy}, {-cxy, cxx}}};
}

}  // namespace

extern "C" int matFittingLineEx(const tagPOINT2D* points, unsigned int count, tagPOINT2D* centre,
                                tagPOINT2D* direction) {
    if (points == nullptr || centre == nullptr || direction == nullptr) return 0;
    const tagPOINT2D mean = centreOf(points, count);
    const auto decomposition = velquad::statistics::decompose(adjugateOfCovariance(points, count, mean));
    if (!decomposition) return 0;
    const auto smaller = decomposition->column(decomposition->values[1] > decomposition->values[0] ? 0 : 1);
    tagPOINT2D along{smaller[0], smaller[1]};
    matNormalizeVector2D(&along);
    *direction = along;
    *centre = mean;
    return 1;
}
