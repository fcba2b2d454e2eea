// Minimum, maximum, mean and standard deviation of the channels of a volume, slice after slice.
#include "array/element.h"
#include "array/range.h"
#include "array/volume.h"
#include "array/volume_kernels.h"
#include "statistics/moments.h"
#include "velquad/array.h"

extern "C" int matGetRangeOfArray3v(const void* const* const* volume, unsigned int type,
                                    unsigned int channels, unsigned int width, unsigned int height,
                                    unsigned int depth, double* minOut, double* maxOut, double* meanOut,
                                    double* stdDevOut) {
    using velquad::statistics::Moments;
    if (volume == nullptr) return 0;
    if (type == MAT_ARRAY_BYTE3 || type == MAT_ARRAY_BYTE4) {
        channels = type == MAT_ARRAY_BYTE3 ? 3 : 4;
        type = MAT_ARRAY_UINT8;
    }
    if (type < MAT_ARRAY_INT8 || type > velquad::array::kScalarTypes) return 0;
    for (unsigned int channel = 0; channel < channels; ++channel) {
        CMatMomentEvaluator evaluator;
        for (unsigned int z = 0; z < depth; ++z) {
            velquad::array::addChannel(velquad::array::sliceAt(volume, z), type, width, height, channels,
                                       channel, evaluator);
        }
        if (minOut != nullptr) minOut[channel] = Moments::min(evaluator);
        if (maxOut != nullptr) maxOut[channel] = Moments::max(evaluator);
        if (meanOut != nullptr) meanOut[channel] = Moments::mean(evaluator);
        if (stdDevOut != nullptr) stdDevOut[channel] = Moments::stdDev(evaluator);
    }
    return 1;
}
