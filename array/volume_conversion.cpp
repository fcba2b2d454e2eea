// Conversions between elements of any type and floats or doubles: the type is looked up once, then whole rows
// go through one loop.
#include "array/volume.h"
#include "array/volume_kernels.h"
#include "frame/kernels.h"
#include "velquad/array.h"

using velquad::array::kScalarTypes;
using velquad::array::rowAt;
using velquad::array::VolumeKernels;
using velquad::array::volumeKernels;

namespace velquad::array {

VELQUAD_DEFINE_KERNELS(VolumeKernels, kVolumeKernels, volumeKernels)

}  // namespace velquad::array

namespace {

using Loops = VolumeKernels::Convert[kScalarTypes];

/// Sizes of a volume and the type of the side that is not fixed.
struct Shape {
    unsigned int width;
    unsigned int height;
    unsigned int depth;
    unsigned int type;
    unsigned int channels;
};

/// Takes every row of the source through the loop of the type.
/// @return 1, or 0 for a null table and for a type without a loop.
int convert(const Loops& loops, const void* source, void* destination, const Shape& shape) {
    if (source == nullptr || destination == nullptr) return 0;
    if (shape.type < 1 || shape.type > kScalarTypes) return 0;
    const VolumeKernels::Convert loop = loops[shape.type - 1];
    const std::size_t count = std::size_t{shape.width} * shape.channels;
    if (count == 0) return 1;
    for (std::size_t z = 0; z < shape.depth; ++z) {
        for (std::size_t y = 0; y < shape.height; ++y)
            loop(rowAt(source, z, y), rowAt(destination, z, y), count);
    }
    return 1;
}

/// The same for one slice on each side.
int convertSlice(const Loops& loops, const void* source, void* destination, const Shape& shape) {
    if (source == nullptr || destination == nullptr) return 0;
    const void* sourceSlices[] = {source};
    void* destinationSlices[] = {destination};
    return convert(loops, sourceSlices, destinationSlices, shape);
}

}  // namespace

int matConvertToDouble3v(double*** destination, void*** source, unsigned int width, unsigned int height,
                         unsigned int depth, unsigned int type, unsigned int channels) {
    return convert(volumeKernels().toDouble, source, destination, {width, height, depth, type, channels});
}

int matConvertToFloat3v(float*** destination, void*** source, unsigned int width, unsigned int height,
                        unsigned int depth, unsigned int type, unsigned int channels) {
    return convert(volumeKernels().toFloat, source, destination, {width, height, depth, type, channels});
}

int matConvertFromDouble3v(double*** source, void*** destination, unsigned int width, unsigned int height,
                           unsigned int depth, unsigned int type, unsigned int channels) {
    return convert(volumeKernels().fromDouble, source, destination, {width, height, depth, type, channels});
}

int matConvertFromFloat3v(float*** source, void*** destination, unsigned int width, unsigned int height,
                          unsigned int depth, unsigned int type, unsigned int channels) {
    return convert(volumeKernels().fromFloat, source, destination, {width, height, depth, type, channels});
}

int matConvertToDouble2v(double** destination, void** source, unsigned int width, unsigned int height,
                         unsigned int type, unsigned int channels) {
    return convertSlice(volumeKernels().toDouble, source, destination, {width, height, 1, type, channels});
}

int matConvertToFloat2v(float** destination, void** source, unsigned int width, unsigned int height,
                        unsigned int type, unsigned int channels) {
    return convertSlice(volumeKernels().toFloat, source, destination, {width, height, 1, type, channels});
}

int matConvertFromDouble2v(double** source, void** destination, unsigned int width, unsigned int height,
                           unsigned int type, unsigned int channels) {
    return convertSlice(volumeKernels().fromDouble, source, destination, {width, height, 1, type, channels});
}

int matConvertFromFloat2v(float** source, void** destination, unsigned int width, unsigned int height,
                          unsigned int type, unsigned int channels) {
    return convertSlice(volumeKernels().fromFloat, source, destination, {width, height, 1, type, channels});
}
