// A volume, rotated and blurred, as slices.
#include <velquad/array.h>

#include <cstddef>
#include <stdexcept>
#include <vector>

#include "arrays.h"
#include "pictures.h"

namespace gallery {
namespace {

constexpr int kSide = 72;  // of the volume, in voxels
constexpr auto kSize = static_cast<unsigned int>(kSide);
constexpr double kMiddle = (kSide - 1) / 2.0;

/// A cube of bytes with its tables. It begins black.
class Volume {
  public:
    Volume() : voxels_(std::size_t{kSize} * kSize * kSize) {
        for (int z = 0; z < kSide; ++z) {
            for (int y = 0; y < kSide; ++y)
                rows_.push_back(&at(0, y, z));
        }
        for (int z = 0; z < kSide; ++z)
            slices_.push_back(&rows_[static_cast<std::size_t>(z) * kSize]);
    }
    Volume(const Volume&) = delete;
    Volume& operator=(const Volume&) = delete;

    /// The slice table as the functions of the library take it.
    void*** slices() { return slices_.data(); }
    unsigned char& at(int x, int y, int z) { return voxels_[index(x, y, z)]; }
    unsigned char at(int x, int y, int z) const { return voxels_[index(x, y, z)]; }

  private:
    static std::size_t index(int x, int y, int z) {
        return (static_cast<std::size_t>(z) * kSize + static_cast<std::size_t>(y)) * kSize +
               static_cast<std::size_t>(x);
    }

    std::vector<unsigned char> voxels_;
    std::vector<void*> rows_;
    std::vector<void**> slices_;
};

/// An ellipsoid in a cube from -1 to 1, which adds to what it covers.
struct Ellipsoid {
    double added;
    tagPOINT3D middle;
    tagPOINT3D semiAxes;
    double sine;  ///< Of a turn around z.
    double cosine;

    bool covers(double x, double y, double z) const {
        const double right = (x - middle.x) * cosine + (y - middle.y) * sine;
        const double down = (y - middle.y) * cosine - (x - middle.x) * sine;
        const double u = right / semiAxes.x;
        const double v = down / semiAxes.y;
        const double w = (z - middle.z) / semiAxes.z;
        return u * u + v * v + w * w <= 1.0;
    }
};

/// A head in broad outlines: a shell, two dark chambers that lean, and knots inside and in front.
constexpr Ellipsoid kHead[] = {
    {215.0, {0.0, 0.0, 0.0}, {0.70, 0.90, 0.82}, 0.0, 1.0},
    {-145.0, {0.0, 0.0, 0.0}, {0.62, 0.82, 0.74}, 0.0, 1.0},
    {-60.0, {0.24, -0.08, 0.06}, {0.13, 0.36, 0.26}, 0.28, 0.96},
    {-60.0, {-0.24, -0.08, -0.06}, {0.18, 0.46, 0.30}, -0.28, 0.96},
    {70.0, {0.0, 0.42, 0.16}, {0.24, 0.20, 0.30}, 0.0, 1.0},
    {90.0, {0.28, 0.50, -0.30}, {0.09, 0.09, 0.09}, 0.0, 1.0},
    {110.0, {-0.10, 0.64, 0.0}, {0.06, 0.06, 0.30}, 0.0, 1.0},
    {110.0, {0.0, -0.62, 0.0}, {0.12, 0.05, 0.06}, 0.0, 1.0},
    {120.0, {-0.30, 0.0, 0.52}, {0.10, 0.10, 0.10}, 0.0, 1.0},
    {120.0, {-0.07, 0.0, 0.56}, {0.07, 0.07, 0.07}, 0.0, 1.0},
    {120.0, {0.10, 0.0, 0.58}, {0.04, 0.04, 0.04}, 0.0, 1.0},
    {215.0, {0.0, -0.93, 0.10}, {0.12, 0.10, 0.20}, 0.0, 1.0},
};

double densityAt(double x, double y, double z) {
    double density = 0.0;
    for (const Ellipsoid& ellipsoid : kHead) {
        if (ellipsoid.covers(x, y, z)) density += ellipsoid.added;
    }
    return density < 255.0 ? density : 255.0;
}

void fillWithHead(Volume& volume) {
    constexpr double kPitch = 2.0 / kSide;
    for (int z = 0; z < kSide; ++z) {
        for (int y = 0; y < kSide; ++y) {
            for (int x = 0; x < kSide; ++x) {
                double sum = 0.0;
                for (int sample = 0; sample < 8; ++sample) {  // two along each axis
                    const double u = x - kMiddle + 0.5 * (sample % 2) - 0.25;
                    const double v = y - kMiddle + 0.5 * (sample / 2 % 2) - 0.25;
                    const double w = z - kMiddle + 0.5 * (sample / 4) - 0.25;
                    sum += densityAt(kPitch * u, kPitch * v, kPitch * w);
                }
                volume.at(x, y, z) = static_cast<unsigned char>(sum / 8.0 + 0.5);
            }
        }
    }
}

/// Turns around z, then around x, and leaves the middle of the volume where it is. In the matrix the middle of the
/// first voxel is at 0.5, so that the volume reaches from 0 to its size.
void rotate(Volume& from, Volume& to) {
    constexpr double kCentre = kSide / 2.0;
    constexpr double kAroundZ[] = {0.8, 0.6};  // cosine and sine
    constexpr double kAroundX[] = {12.0 / 13.0, 5.0 / 13.0};
    double matrix[4][4] = {
        {kAroundZ[0], -kAroundZ[1], 0.0, 0.0},
        {kAroundX[0] * kAroundZ[1], kAroundX[0] * kAroundZ[0], -kAroundX[1], 0.0},
        {kAroundX[1] * kAroundZ[1], kAroundX[1] * kAroundZ[0], kAroundX[0], 0.0},
        {0.0, 0.0, 0.0, 1.0},
    };
    for (int row = 0; row < 3; ++row)
        matrix[row][3] = kCentre - kCentre * (matrix[row][0] + matrix[row][1] + matrix[row][2]);
    if (matAffinTransformArray3v(kSize, kSize, kSize, from.slices(), kSize, kSize, kSize, to.slices(),
                                 MAT_ARRAY_UINT8, matrix, 0) != 1)
        throw std::runtime_error("matAffinTransformArray3v failed");
}

/// Smooths a copy; sigma along x, y and z.
void blur(Volume& from, Volume& to, const tagPOINT3D& sigma) {
    matCopyArray3v(to.slices(), from.slices(), kSide, kSide, kSide, MAT_ARRAY_UINT8, 1);
    unsigned int size[] = {kSize, kSize, kSize};
    double sigmas[] = {sigma.x, sigma.y, sigma.z};
    double radiusFactors[] = {3.0, 3.0, 3.0};
    constexpr int kInFloats = 1;
    if (matGaussianBlurFilter3v(to.slices(), size, MAT_ARRAY_UINT8, 1, nullptr, sigmas, radiusFactors,
                                kInFloats, nullptr, nullptr) != 1)
        throw std::runtime_error("matGaussianBlurFilter3v failed");
}

GreyImage acrossZ(const Volume& volume, int z) {
    GreyImage image(kSide, kSide);
    for (int y = 0; y < kSide; ++y) {
        for (int x = 0; x < kSide; ++x)
            image.at(x, y) = volume.at(x, y, z);
    }
    return image;
}

GreyImage acrossY(const Volume& volume, int y) {
    GreyImage image(kSide, kSide);
    for (int z = 0; z < kSide; ++z) {
        for (int x = 0; x < kSide; ++x)
            image.at(x, z) = volume.at(x, y, z);
    }
    return image;
}

GreyImage acrossX(const Volume& volume, int x) {
    GreyImage image(kSide, kSide);
    for (int z = 0; z < kSide; ++z) {
        for (int y = 0; y < kSide; ++y)
            image.at(y, z) = volume.at(x, y, z);
    }
    return image;
}

}  // namespace

Canvas drawVolumes() {
    constexpr int kScale = 3;
    constexpr int kGap = 14;
    constexpr int kStep = kSide * kScale + kGap;
    Volume original;
    Volume rotated;
    Volume blurred;
    Volume blurredAlongZ;
    fillWithHead(original);
    rotate(original, rotated);
    blur(original, blurred, {2.0, 2.0, 2.0});
    blur(original, blurredAlongZ, {0.0, 0.0, 5.0});
    Canvas canvas(kGap + 4 * kStep, kGap + 3 * kStep, 1, Grid::kHidden);
    int left = kGap;
    for (const Volume* volume : {&original, &rotated, &blurred, &blurredAlongZ}) {
        drawGrey(canvas, left, kGap, acrossZ(*volume, kSide / 2), kScale);
        drawGrey(canvas, left, kGap + kStep, acrossY(*volume, kSide / 2), kScale);
        drawGrey(canvas, left, kGap + 2 * kStep, acrossX(*volume, kSide / 2), kScale);
        left += kStep;
    }
    return canvas;
}

}  // namespace gallery
