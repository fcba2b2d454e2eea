// Positions, cells and interpolation of the affine transform. Voxels are independent of each other, so the
// compiler takes several side by side; only the samples are fetched one by one.
#include "array/affine_kernels.h"

#include "array/element.h"
#include "array/volume.h"
#include "array/volume_rounding.h"

namespace velquad::array::VELQUAD_KERNEL_LEVEL {

namespace {

/// Positions this close to a cell from below belong to it.
constexpr double kCellTolerance = 1e-7;

/// A homogeneous weight below this one marks a point at infinity.
constexpr double kVanishingWeight = 1e-7;

VELQUAD_ALWAYS_INLINE double component(const AffineRow& row, double x, int index) {
    return x * row.x[index] + row.y[index] + row.z[index] + row.w[index];
}

void scale(double first, double ratio, double* position, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i)
        position[i] = (first + static_cast<double>(static_cast<std::int32_t>(i))) / ratio;
}

void place(const AffineRow& row, double first, AffineVoxels& voxels, std::size_t count) {
    const AffineRow terms = row;
    for (std::size_t i = 0; i < count; ++i) {
        const double x = first + static_cast<double>(static_cast<std::int32_t>(i)) + 0.5;
        for (int axis = 0; axis < 3; ++axis)
            voxels.position[axis][i] = component(terms, x, axis) - 0.5;
    }
}

bool placeByWeight(const AffineRow& row, double first, AffineVoxels& voxels, std::size_t count) {
    std::int32_t vanishing = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const double x = first + static_cast<double>(static_cast<std::int32_t>(i)) + 0.5;
        const double weight = component(row, x, 3);
        for (int axis = 0; axis < 3; ++axis)
            voxels.position[axis][i] = component(row, x, axis) / weight - 0.5;
        vanishing |= kVanishingWeight > __builtin_fabs(weight) ? 1 : 0;
    }
    return vanishing == 0;
}

std::size_t locate(const AffineSource& source, AffineVoxels& voxels, std::size_t count) {
    for (int axis = 0; axis < 3; ++axis) {
        // Cells are numbered with 31 bits. Without voxels nothing is inside.
        const double size = source.size[axis];
        const double limit = size < 1.0 ? -1.0 : size < 2147483648.0 ? size : 2147483648.0;
        const double last = size - 1.0;
        const double* const position = voxels.position[axis];
        double* const upper = voxels.upper[axis];
        std::int32_t* const cell = voxels.cell[axis];
        for (std::size_t i = 0; i < count; ++i) {
            const double where = position[i];
            double moved = 0.0 > where ? where - kCellTolerance : where + kCellTolerance;
            moved = moved > -1.0 && moved < limit ? moved : -1.0;
            const auto found = static_cast<std::int32_t>(moved);
            const auto lower = static_cast<double>(found);
            // Kept: positions from -1 to 0 lie in cell 0 with a negative weight, which extrapolates.
            upper[i] = lower < last ? where - lower : 0.0;
            cell[i] = found;
        }
    }
    const std::uint32_t lastX = source.size[0] - 1;
    const std::uint32_t lastY = source.size[1] - 1;
    const std::uint32_t lastZ = source.size[2] - 1;
    std::int32_t insideCount = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const std::int32_t x = voxels.cell[0][i];
        const std::int32_t y = voxels.cell[1][i];
        const std::int32_t z = voxels.cell[2][i];
        const bool isOutside = (x | y | z) < 0;
        const bool isWithin = (static_cast<std::uint32_t>(x) < lastX) &
                              (static_cast<std::uint32_t>(y) < lastY) &
                              (static_cast<std::uint32_t>(z) < lastZ);
        voxels.feed[i] = isOutside ? kOutside : isWithin ? kWithin : kAtEdge;
        insideCount += isOutside ? 0 : 1;
    }
    return static_cast<std::size_t>(insideCount);
}

void pickNearest(const AffineSource& source, AffineVoxels& voxels, std::size_t count) {
    for (int axis = 0; axis < 3; ++axis) {
        const double size = source.size[axis];
        const double last = size < 2147483648.0 ? size - 1.0 : 2147483647.0;
        const double* const position = voxels.position[axis];
        std::int32_t* const cell = voxels.cell[axis];
        for (std::size_t i = 0; i < count; ++i) {
            const double where = position[i];
            double rounded = 0.0 > where ? where - 0.49 : where + 0.5;
            rounded = rounded > last ? last : rounded;
            rounded = rounded > 0.0 ? rounded : 0.0;
            cell[i] = static_cast<std::int32_t>(rounded);
        }
    }
}

/// The samples around each voxel of a run: for each of the four rows of its cell the lower and the upper
/// neighbour along x, side by side. What does not exist is 0, which adds nothing to a sum that began with
/// 0.0.
template <class Value>
struct Samples {
    Value at[4][2 * kAffineRun];
};

template <class Value, bool kIsSingleChannel>
VELQUAD_ALWAYS_INLINE void fetchWithin(const AffineSource& source, const AffineVoxels& voxels, std::size_t i,
                                       std::size_t channel, Samples<Value>& samples, std::size_t to) {
    const auto x = static_cast<std::size_t>(voxels.cell[0][i]);
    const auto y = static_cast<std::size_t>(voxels.cell[1][i]);
    const auto z = static_cast<std::size_t>(voxels.cell[2][i]);
    const unsigned char* const slice0 = sliceAt(source.volume, z);
    const unsigned char* const slice1 = sliceAt(source.volume, z + 1);
    const unsigned char* const rows[] = {rowAt(slice0, y), rowAt(slice0, y + 1), rowAt(slice1, y),
                                         rowAt(slice1, y + 1)};
    for (std::size_t row = 0; row < 4; ++row) {
        Value* const pair = samples.at[row] + 2 * to;
        if constexpr (kIsSingleChannel) {
            std::memcpy(pair, rows[row] + x * sizeof(Value), 2 * sizeof(Value));
        } else {
            pair[0] = loadElement<Value>(rows[row], x * source.channels + channel);
            pair[1] = loadElement<Value>(rows[row], (x + 1) * source.channels + channel);
        }
    }
}

template <class Value>
void fetchAtEdge(const AffineSource& source, const AffineVoxels& voxels, std::size_t i, std::size_t channel,
                 Samples<Value>& samples, std::size_t to) {
    for (std::uint32_t corner = 0; corner < 8; ++corner) {
        const std::uint32_t x = static_cast<std::uint32_t>(voxels.cell[0][i]) + (corner & 1U);
        const std::uint32_t y = static_cast<std::uint32_t>(voxels.cell[1][i]) + ((corner >> 1U) & 1U);
        const std::uint32_t z = static_cast<std::uint32_t>(voxels.cell[2][i]) + (corner >> 2U);
        const bool exists = x < source.size[0] && y < source.size[1] && z < source.size[2];
        samples.at[corner >> 1U][2 * to + (corner & 1U)] =
            exists ? loadElement<Value>(rowAt(source.volume, z, y), x * source.channels + channel) : Value(0);
    }
}

template <class Value, bool kIsSingleChannel>
VELQUAD_ALWAYS_INLINE void fetch(const AffineSource& source, const AffineVoxels& voxels, std::size_t begin,
                                 std::size_t end, std::size_t channel, Samples<Value>& samples) {
    for (std::size_t i = begin; i < end; ++i) {
        if (voxels.feed[i] == kWithin) {
            fetchWithin<Value, kIsSingleChannel>(source, voxels, i, channel, samples, i - begin);
        } else {
            fetchAtEdge<Value>(source, voxels, i, channel, samples, i - begin);
        }
    }
}

template <class ElementType>
void interpolate(const AffineSource& source, const AffineVoxels& voxels, std::size_t begin, std::size_t end,
                 std::size_t channel, void* to) {
    using Value = typename ElementType::Value;
    Samples<Value> samples;
    if (source.channels == 1) {
        fetch<Value, true>(source, voxels, begin, end, channel, samples);
    } else {
        fetch<Value, false>(source, voxels, begin, end, channel, samples);
    }
    const auto& p = samples.at;
    const double* const upperX = voxels.upper[0] + begin;
    const double* const upperY = voxels.upper[1] + begin;
    const double* const upperZ = voxels.upper[2] + begin;
    for (std::size_t i = 0; i < end - begin; ++i) {
        const double tx = upperX[i];
        const double ty = upperY[i];
        const double tz = upperZ[i];
        const double ux = 1.0 - tx;
        const double uy = 1.0 - ty;
        const double uz = 1.0 - tz;
        double sum = 0.0;
        // NOLINTNEXTLINE(clang-analyzer-core.UndefinedBinaryOperatorResult): `fetch` has filled all that is read
        sum += static_cast<double>(p[0][2 * i]) * uz * uy * ux;
        sum += static_cast<double>(p[0][2 * i + 1]) * uz * uy * tx;
        sum += static_cast<double>(p[1][2 * i]) * uz * ty * ux;
        sum += static_cast<double>(p[1][2 * i + 1]) * uz * ty * tx;
        sum += static_cast<double>(p[2][2 * i]) * tz * uy * ux;
        sum += static_cast<double>(p[2][2 * i + 1]) * tz * uy * tx;
        sum += static_cast<double>(p[3][2 * i]) * tz * ty * ux;
        sum += static_cast<double>(p[3][2 * i + 1]) * tz * ty * tx;
        storeElement(to, i, roundedTo<ElementType, Int32Rounder::kNarrow>(sum));
    }
}

}  // namespace

extern const AffineKernels kAffineKernels;
const AffineKernels kAffineKernels = {
    scale,
    place,
    placeByWeight,
    locate,
    pickNearest,
    {interpolate<Int8Element>, interpolate<UInt8Element>, interpolate<Int16Element>,
     interpolate<UInt16Element>, interpolate<Int32Element>, interpolate<UInt32Element>,
     interpolate<FloatElement>, interpolate<DoubleElement>}};

}  // namespace velquad::array::VELQUAD_KERNEL_LEVEL
