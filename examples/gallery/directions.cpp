// The directions of space as small integers, seen on a sphere.
#include <velquad/geometry.h>

#include <algorithm>
#include <cmath>

#include "pictures.h"

namespace gallery {
namespace {

constexpr int kZoom = 4;
constexpr int kRadius = 52;  // of a sphere, in cells
constexpr int kMargin = 4;

// The sphere is looked at from above its equator, so that the upper half and a part of the lower one show.
constexpr double kSineOfView = 0.6;
constexpr double kCosineOfView = 0.8;

/// From the viewer's axes (right, up, towards the viewer) to those of the directions.
tagPOINT3D fromViewer(const tagPOINT3D& v) {
    return {v.x, v.y * kSineOfView - v.z * kCosineOfView, v.y * kCosineOfView + v.z * kSineOfView};
}

tagPOINT3D toViewer(const tagPOINT3D& d) {
    return {d.x, d.y * kSineOfView + d.z * kCosineOfView, d.z * kSineOfView - d.y * kCosineOfView};
}

/// A colour of the circle of hues. `turn` counts whole circles, `light` goes from 0, black, to 1.
Rgb hue(double turn, double light) {
    const auto channel = [&](double shift) {
        const double wave = 0.5 + 0.5 * std::cos(6.283185307179586 * (turn - shift));
        return static_cast<std::uint8_t>(light * (70.0 + 175.0 * wave) + 0.5);
    };
    return {channel(0.0), channel(1.0 / 3.0), channel(2.0 / 3.0)};
}

/// Colours each cell of a sphere by the index of its direction: `turns` of the circle of hues from one index to
/// the next.
void drawSphere(Canvas& canvas, CMatNormalEncoder& encoder, int middleX, double turns) {
    const int middleY = kRadius + kMargin;
    const int half = (encoder.GetNumberOfEncodedDirections() - 1) / 2;
    for (int y = -kRadius; y <= kRadius; ++y) {
        for (int x = -kRadius; x <= kRadius; ++x) {
            const double depth = static_cast<double>(kRadius) * kRadius - x * x - y * y;
            if (depth < 0.0) continue;
            const tagPOINT3D d =
                fromViewer({static_cast<double>(x), static_cast<double>(-y), std::sqrt(depth)});
            float vector[] = {static_cast<float>(d.x), static_cast<float>(d.y), static_cast<float>(d.z)};
            const int index = encoder.GetEncodedDirection(vector);
            // The lower half repeats the indices of the upper one, so it gets the same colours, only darker.
            canvas.fillCell(middleX + x, middleY + y, hue(index % half * turns, index < half ? 1.0 : 0.6));
        }
    }
}

/// Marks the directions that the indices stand for, on the side towards the viewer.
void markDirections(Canvas& canvas, CMatNormalEncoder& encoder, int middleX) {
    const int middleY = kRadius + kMargin;
    const int directions = encoder.GetNumberOfEncodedDirections() - 1;  // the last index is the null vector's
    for (int index = 0; index < directions; ++index) {
        const float* gradient = encoder.GetDecodedGradient(index);
        const auto along = [gradient](int axis) { return static_cast<double>(gradient[axis]); };
        const tagPOINT3D v = toViewer({along(0), along(1), along(2)});
        if (v.z > 0.0) canvas.dot({middleX + kRadius * v.x, middleY - kRadius * v.y}, 2.5, kInk);
    }
}

}  // namespace

Canvas drawDirections() {
    constexpr int kCoarse = 2;
    constexpr int kFine = 4;
    constexpr double kGoldenTurn = 0.38196601125010515;  // keeps the colours of near indices apart
    Canvas canvas(4 * kRadius + 3 * kMargin + 2, 2 * (kRadius + kMargin) + 1, kZoom);
    CMatNormalEncoder coarse(kCoarse);
    const int left = kMargin + kRadius;
    drawSphere(canvas, coarse, left, kGoldenTurn);
    markDirections(canvas, coarse, left);
    CMatNormalEncoder fine(kFine);
    const int half = (fine.GetNumberOfEncodedDirections() - 1) / 2;
    drawSphere(canvas, fine, left + 2 * kRadius + 1 + kMargin, 1.0 / half);
    return canvas;
}

}  // namespace gallery
