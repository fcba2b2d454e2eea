// The way of a point from object to window coordinates and back: model view, projection, viewport.
#include "transform/flat_matrix.h"
#include "velquad/transform.h"

namespace {

using namespace velquad::transform;

/// The box that normalised coordinates from -1 to 1 are mapped to: its low corner and half its extent.
struct Window {
    double low[3];
    double half[3];

    Window(const int* viewport, const double* depthRange)
        : low{static_cast<double>(viewport[0]), static_cast<double>(viewport[1]), depthRange[0]},
          half{static_cast<double>(viewport[2]) * 0.5, static_cast<double>(viewport[3]) * 0.5,
               (depthRange[1] - depthRange[0]) * 0.5} {}

    void map(double* vector) const {
        for (int i = 0; i < 3; ++i)
            vector[i] = half[i] * (vector[i] + 1.0) + low[i];
    }

    void mapBack(double* vector) const {
        for (int i = 0; i < 3; ++i)
            vector[i] = (vector[i] - low[i]) / half[i] - 1.0;
    }

    void computeMatrix(Rows m) const {
        double scaling[4][4];
        double translation[4][4];
        loadTranslation(scaling, low[0], low[1], low[2]);
        for (int i = 0; i < 3; ++i)
            scaling[i][i] = half[i];
        loadTranslation(translation, 1.0, 1.0, 1.0);
        multiply(m, scaling, translation);
    }
};

}  // namespace

int matViewPortTransformation16(double* vector, int* viewport, double* depthRange, int inverse) {
    const Window window(viewport, depthRange);
    if (inverse != 0) {
        window.mapBack(vector);
    } else {
        window.map(vector);
    }
    return 1;
}

int matProjectionTransformVector16(double* vector, double* modelView, double* projection, int* viewport,
                                   double* depthRange) {
    // A vanishing weight leaves the vector as it was, and the next step takes it from there.
    if (modelView != nullptr) transformPoint(vector, modelView);
    if (projection != nullptr) transformPoint(vector, projection);
    if (viewport != nullptr && depthRange != nullptr) Window(viewport, depthRange).map(vector);
    return 1;
}

int matInverseProjectionTransformVector16(double* vector, double* inverseModelView, double* inverseProjection,
                                          int* viewport, double* depthRange) {
    if (viewport != nullptr && depthRange != nullptr) Window(viewport, depthRange).mapBack(vector);
    if (inverseProjection != nullptr) transformPoint(vector, inverseProjection);
    if (inverseModelView != nullptr) transformPoint(vector, inverseModelView);
    return 1;
}

int matComputeViewPortMatrix4(double (*m)[4], int* viewport, double* depthRange) {
    Window(viewport, depthRange).computeMatrix(m);
    return 1;
}

int matComputeFullProjectionMatrix4(double (*m)[4], double* modelView, double* projection, int* viewport,
                                    double* depthRange) {
    // Kept: result and second factor are one matrix in all three products, so that no true product comes out;
    // see `matMultiplyMatrix4`. Identities on a viewport of 2 by 2 at the origin give the zero matrix.
    double factor[4][4];
    loadIdentity(m);
    fromFlat(factor, modelView);
    matMultiplyMatrix4(m, factor, m);
    fromFlat(factor, projection);
    matMultiplyMatrix4(m, factor, m);
    Window(viewport, depthRange).computeMatrix(factor);
    matMultiplyMatrix4(m, factor, m);
    return 1;
}
