// Resampling of volumes under an affine map. Every destination voxel asks where it comes from in the source,
// a run of voxels of one row at a time: positions, cells and weights first, then the samples.
#include <algorithm>
#include <cstring>
#include <type_traits>

#include "array/affine_kernels.h"
#include "array/element.h"
#include "array/rounding.h"
#include "array/volume.h"
#include "frame/global_block.h"
#include "frame/kernels.h"
#include "transform/matrix4.h"
#include "velquad/array.h"

namespace velquad::array {

VELQUAD_DEFINE_KERNELS(AffineKernels, kAffineKernels, affineKernels)

namespace {

constexpr DWORD kScaleMode = 0x80000000U;
constexpr DWORD kNearest = 1;

/// Finds the source positions of destination voxels, row by row in the order of the volume.
class PositionFinder {
  public:
    virtual ~PositionFinder() = default;
    virtual void startRow(std::uint32_t y, std::uint32_t z) = 0;
    virtual void find(std::uint32_t firstX, std::size_t count, AffineVoxels& voxels) = 0;
};

/// Divides by the ratio of the sizes, without a shift by half a voxel.
class ScaleFinder final : public PositionFinder {
  public:
    ScaleFinder(const std::uint32_t (&from)[3], const std::uint32_t (&to)[3]) {
        for (int axis = 0; axis < 3; ++axis)
            ratio_[axis] = static_cast<double>(to[axis]) / static_cast<double>(from[axis]);
    }

    void startRow(std::uint32_t y, std::uint32_t z) override {
        y_ = y / ratio_[1];
        z_ = z / ratio_[2];
    }

    void find(std::uint32_t firstX, std::size_t count, AffineVoxels& voxels) override {
        affineKernels().scale(firstX, ratio_[0], voxels.position[0], count);
        std::fill_n(voxels.position[1], count, y_);
        std::fill_n(voxels.position[2], count, z_);
    }

  private:
    double ratio_[3];
    double y_ = 0.0;
    double z_ = 0.0;
};

/// Takes voxel centres through the inverse of the matrix.
class MatrixFinder final : public PositionFinder {
  public:
    explicit MatrixFinder(const double (*matrix)[4]) {
        transform::invert(inverse_, matrix, false);
        isAffine_ =
            inverse_[3][0] == 0.0 && inverse_[3][1] == 0.0 && inverse_[3][2] == 0.0 && inverse_[3][3] == 1.0;
        for (int i = 0; i < 4; ++i) {
            row_.x[i] = inverse_[i][0];
            row_.w[i] = 1.0 * inverse_[i][3];
        }
    }

    void startRow(std::uint32_t y, std::uint32_t z) override {
        y_ = y + 0.5;
        z_ = z + 0.5;
        for (int i = 0; i < 4; ++i) {
            row_.y[i] = y_ * inverse_[i][1];
            row_.z[i] = z_ * inverse_[i][2];
        }
    }

    void find(std::uint32_t firstX, std::size_t count, AffineVoxels& voxels) override {
        if (isAffine_) {
            // The weight is exactly 1 everywhere.
            affineKernels().place(row_, firstX, voxels, count);
        } else if (affineKernels().placeByWeight(row_, firstX, voxels, count)) {
            transformVoxel(static_cast<double>(firstX) + static_cast<double>(count - 1));
        } else {
            findOneByOne(firstX, count, voxels);
        }
    }

  private:
    /// Kept: a voxel whose weight vanishes takes the position of the voxel before it, over the ends of rows
    /// and slices. Before the first one stands -0.5 on all axes.
    void findOneByOne(std::uint32_t firstX, std::size_t count, AffineVoxels& voxels) {
        for (std::size_t i = 0; i < count; ++i) {
            transformVoxel(static_cast<double>(firstX) + static_cast<double>(i));
            for (int axis = 0; axis < 3; ++axis)
                voxels.position[axis][i] = last_[axis] - 0.5;
        }
    }

    void transformVoxel(double x) {
        const double centre[4] = {x + 0.5, y_, z_, 1.0};
        transform::transformColumn(last_, inverse_, centre);
    }

    double inverse_[4][4] = {};
    AffineRow row_ = {};
    double y_ = 0.0;
    double z_ = 0.0;
    double last_[4] = {};
    bool isAffine_ = false;
};

/// Fills the voxels of a destination row.
class RowFiller {
  public:
    RowFiller(const AffineSource& source, unsigned int type, bool isNearest, const unsigned char* background)
        : source_(source),
          pixelBytes_(source.channels * source.elementBytes),
          isNearest_(isNearest),
          background_(background),
          interpolate_(affineKernels().interpolate[type - 1]) {}

    /// Fills `count` voxels from `pixel` on, whose positions are given.
    void fill(unsigned char* pixel, AffineVoxels& voxels, std::size_t count) const {
        const std::size_t insideCount = affineKernels().locate(source_, voxels, count);
        if (isNearest_) affineKernels().pickNearest(source_, voxels, count);
        for (std::size_t begin = 0, end = 0; begin < count; begin = end) {
            const bool isInside = voxels.feed[begin] != kOutside;
            end = begin + 1;
            if (insideCount == 0 || insideCount == count) end = count;
            while (end < count && (voxels.feed[end] != kOutside) == isInside)
                ++end;
            unsigned char* const first = pixel + begin * pixelBytes_;
            if (!isInside) {
                fillBackground(first, end - begin);
            } else if (isNearest_) {
                copyNearest(first, voxels, begin, end);
            } else {
                interpolateChannels(first, voxels, begin, end);
            }
        }
    }

    std::size_t pixelBytes() const { return pixelBytes_; }

  private:
    /// Calls `work` with the bytes of a pixel. Copies of a size that the compiler knows are single moves.
    template <class Work>
    void withPixelBytes(const Work& work) const {
        switch (pixelBytes_) {
            case 1:
                return work(std::integral_constant<std::size_t, 1>());
            case 2:
                return work(std::integral_constant<std::size_t, 2>());
            case 3:
                return work(std::integral_constant<std::size_t, 3>());
            case 4:
                return work(std::integral_constant<std::size_t, 4>());
            case 8:
                return work(std::integral_constant<std::size_t, 8>());
            default:
                return work(pixelBytes_);
        }
    }

    void fillBackground(unsigned char* pixel, std::size_t count) const {
        withPixelBytes([&](auto pixelBytes) {
            for (std::size_t i = 0; i < count; ++i)
                std::memcpy(pixel + i * pixelBytes, background_, pixelBytes);
        });
    }

    void copyNearest(unsigned char* pixel, const AffineVoxels& voxels, std::size_t begin,
                     std::size_t end) const {
        withPixelBytes([&](auto pixelBytes) {
            for (std::size_t i = begin; i < end; ++i) {
                const unsigned char* row = rowAt(source_.volume, static_cast<std::size_t>(voxels.cell[2][i]),
                                                 static_cast<std::size_t>(voxels.cell[1][i]));
                std::memcpy(pixel + (i - begin) * pixelBytes,
                            row + static_cast<std::size_t>(voxels.cell[0][i]) * pixelBytes, pixelBytes);
            }
        });
    }

    void interpolateChannels(unsigned char* pixel, const AffineVoxels& voxels, std::size_t begin,
                             std::size_t end) const {
        if (source_.channels == 1) {
            interpolate_(source_, voxels, begin, end, 0, pixel);
            return;
        }
        unsigned char run[kAffineRun * sizeof(double)];
        for (std::size_t channel = 0; channel < source_.channels; ++channel) {
            interpolate_(source_, voxels, begin, end, channel, run);
            for (std::size_t i = 0; i < end - begin; ++i) {
                std::memcpy(pixel + i * pixelBytes_ + channel * source_.elementBytes,
                            run + i * source_.elementBytes, source_.elementBytes);
            }
        }
    }

    const AffineSource& source_;
    std::size_t pixelBytes_;
    bool isNearest_;
    const unsigned char* background_;
    AffineKernels::Interpolate interpolate_;
};

void resample(PositionFinder& finder, const RowFiller& filler, void* destination,
              const std::uint32_t (&size)[3]) {
    if (size[0] == 0) return;
    AffineVoxels voxels;
    for (std::uint32_t z = 0; z < size[2]; ++z) {
        for (std::uint32_t y = 0; y < size[1]; ++y) {
            unsigned char* row = rowAt(destination, z, y);
            finder.startRow(y, z);
            for (std::uint32_t x = 0; x < size[0];) {
                const std::size_t count = std::min<std::size_t>(kAffineRun, size[0] - x);
                finder.find(x, count, voxels);
                filler.fill(row, voxels, count);
                row += count * filler.pixelBytes();
                x += static_cast<std::uint32_t>(count);
            }
        }
    }
}

/// Turns the background of each channel into elements, in place: element c ends before double c + 1 begins.
void truncateBackground(unsigned int type, std::size_t channels, void* background) {
    dispatchScalar(type, [=](auto element) {
        using ElementType = decltype(element);
        for (std::size_t channel = 0; channel < channels; ++channel) {
            const auto value = loadElement<double>(background, channel);
            storeElement(background, channel, truncatedTo<ElementType>(value));
        }
    });
}

}  // namespace

}  // namespace velquad::array

extern "C" int matAffinTransformArray3v(unsigned int srcWidth, unsigned int srcHeight, unsigned int srcDepth,
                                        void*** source, unsigned int dstWidth, unsigned int dstHeight,
                                        unsigned int dstDepth, void*** destination, unsigned int type,
                                        const double (*matrix)[4], DWORD flags) {
    // The matrix is only read.
    return _matAffinTransformArray3v(srcWidth, srcHeight, srcDepth, 1, source, dstWidth, dstHeight, dstDepth,
                                     destination, type, const_cast<double(*)[4]>(matrix), flags, nullptr);
}

int _matAffinTransformArray3v(unsigned int srcWidth, unsigned int srcHeight, unsigned int srcDepth,
                              unsigned int channels, void*** source, unsigned int dstWidth,
                              unsigned int dstHeight, unsigned int dstDepth, void*** destination,
                              unsigned int type, double (*const matrix)[4], DWORD flags, double* background) {
    using namespace velquad::array;
    if (type == MAT_ARRAY_BYTE3 || type == MAT_ARRAY_BYTE4) {
        channels = type == MAT_ARRAY_BYTE3 ? 3 : 4;
        type = MAT_ARRAY_UINT8;
    }
    if (source == nullptr || destination == nullptr) return 0;
    const velquad::frame::LockedBlock table(velquad::frame::kZeroedMovable,
                                            std::max<std::size_t>(1, channels * sizeof(double)));
    if (!table) return 0;
    for (unsigned int channel = 0; background != nullptr && channel < channels; ++channel) {
        if (background[channel] != velquad::kNoValue) table.as<double>()[channel] = background[channel];
    }
    if (type < MAT_ARRAY_INT8 || type > MAT_ARRAY_DOUBLE) return 0;
    const bool isScaled = (flags & kScaleMode) != 0;
    if (!isScaled && matrix == nullptr) return 0;
    truncateBackground(type, channels, table.get());
    const AffineSource from = {source, channels, elementSize(type), {srcWidth, srcHeight, srcDepth}};
    const std::uint32_t size[3] = {dstWidth, dstHeight, dstDepth};
    const RowFiller filler(from, type, (flags & kNearest) != 0, table.as<unsigned char>());
    if (isScaled) {
        ScaleFinder finder(from.size, size);
        resample(finder, filler, destination, size);
    } else {
        MatrixFinder finder(matrix);
        resample(finder, filler, destination, size);
    }
    return 1;
}
