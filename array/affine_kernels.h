// The loops of the affine transform over runs of destination voxels, compiled for several instruction sets.
#ifndef VELQUAD_ARRAY_AFFINE_KERNELS_H
#define VELQUAD_ARRAY_AFFINE_KERNELS_H

#include <cstddef>
#include <cstdint>

namespace velquad::array {

/// Destination voxels that are worked on at a time.
inline constexpr std::size_t kAffineRun = 128;

/// Where a source lies and how large it is.
struct AffineSource {
    const void* volume;
    std::size_t channels;
    std::size_t elementBytes;
    std::uint32_t size[3];
};

/// The terms of a row's homogeneous positions that do not change along the row: component a of voxel x is
/// ((x + 0.5) m[a][0] + y[a]) + z[a] + w[a], from left to right.
struct AffineRow {
    double x[4];
    double y[4];
    double z[4];
    double w[4];
};

/// How a destination voxel is fed.
enum AffineFeed : std::int32_t {
    kOutside = 0,  ///< Not in the source.
    kAtEdge = 1,   ///< In a cell without its upper neighbour on some axis.
    kWithin = 2,   ///< In a cell with all eight neighbours.
};

/// Positions of a run in the source, and what follows from them.
struct AffineVoxels {
    double position[3][kAffineRun];
    double upper[3][kAffineRun];       ///< Weight of the upper neighbour; that of the lower one is 1 less it.
    std::int32_t cell[3][kAffineRun];  ///< Cell, or with nearest sampling the voxel; -1 outside.
    std::int32_t feed[kAffineRun];
};

struct AffineKernels {
    using Interpolate = void (*)(const AffineSource& source, const AffineVoxels& voxels, std::size_t begin,
                                 std::size_t end, std::size_t channel, void* to);

    /// Positions of the voxels first, first + 1, ... of a row.
    void (*scale)(double first, double ratio, double* position, std::size_t count);
    void (*place)(const AffineRow& row, double first, AffineVoxels& voxels, std::size_t count);
    /// With division by the weight. @return false when the weight of a voxel vanishes.
    bool (*placeByWeight)(const AffineRow& row, double first, AffineVoxels& voxels, std::size_t count);

    /// Cells, weights and feeds from positions. @return how many voxels are inside.
    std::size_t (*locate)(const AffineSource& source, AffineVoxels& voxels, std::size_t count);

    /// Nearest voxels from positions; called after `locate` and in place of its cells, for what is inside.
    void (*pickNearest)(const AffineSource& source, AffineVoxels& voxels, std::size_t count);

    /// Interpolates one channel of the voxels [begin, end), all inside, for the codes 1 to 8. `to` receives
    /// end - begin elements.
    Interpolate interpolate[8];
};

/// The loops for the instruction set in use.
const AffineKernels& affineKernels();

}  // namespace velquad::array

#endif  // VELQUAD_ARRAY_AFFINE_KERNELS_H
