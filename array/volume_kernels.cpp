// Conversions of runs of elements and weighted sums of rows. Elements are independent of each other, so the
// compiler may take as many side by side as the instruction set has lanes.
#include "array/volume_kernels.h"

#include "array/element.h"
#include "array/rounding.h"
#include "array/volume_rounding.h"

namespace velquad::array::VELQUAD_KERNEL_LEVEL {

namespace {

template <class ElementType>
void toDouble(const void* from, void* to, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i)
        storeElement(to, i, static_cast<double>(loadElement<typename ElementType::Value>(from, i)));
}

template <class ElementType>
void toFloat(const void* from, void* to, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        const auto value = static_cast<double>(loadElement<typename ElementType::Value>(from, i));
        storeElement(to, i, roundedTo<FloatElement, Int32Rounder::kWide>(value));
    }
}

template <class ElementType, class Source>
void toElements(const void* from, void* to, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        const auto value = static_cast<double>(loadElement<Source>(from, i));
        storeElement(to, i, roundedTo<ElementType, Int32Rounder::kWide>(value));
    }
}

#if defined(__AVX512F__)
constexpr std::size_t kLanes = 8;
#elif defined(__AVX__)
constexpr std::size_t kLanes = 4;
#else
constexpr std::size_t kLanes = 2;
#endif
using Lanes [[gnu::vector_size(kLanes * sizeof(double))]] = double;

VELQUAD_ALWAYS_INLINE Lanes loadLanes(const double* from) {
    Lanes lanes;
    __builtin_memcpy(&lanes, from, sizeof(lanes));
    return lanes;
}

VELQUAD_ALWAYS_INLINE void storeLanes(double* to, Lanes lanes) {
    __builtin_memcpy(to, &lanes, sizeof(lanes));
}

void weightedSum(const double* const* rows, const double* weights, std::size_t rowCount, double* to,
                 std::size_t count) {
    // Four sums at a time hide the latency of the additions, whose order in each sum is fixed.
    constexpr std::size_t kBlock = 4 * kLanes;
    std::size_t i = 0;
    for (; i + kBlock <= count; i += kBlock) {
        Lanes sum0 = {};
        Lanes sum1 = {};
        Lanes sum2 = {};
        Lanes sum3 = {};
        for (std::size_t row = 0; row < rowCount; ++row) {
            const double* from = rows[row] + i;
            const double weight = weights[row];
            sum0 += weight * loadLanes(from);
            sum1 += weight * loadLanes(from + kLanes);
            sum2 += weight * loadLanes(from + 2 * kLanes);
            sum3 += weight * loadLanes(from + 3 * kLanes);
        }
        storeLanes(to + i, sum0);
        storeLanes(to + i + kLanes, sum1);
        storeLanes(to + i + 2 * kLanes, sum2);
        storeLanes(to + i + 3 * kLanes, sum3);
    }
    for (; i < count; ++i) {
        double sum = 0.0;
        for (std::size_t row = 0; row < rowCount; ++row)
            sum += weights[row] * rows[row][i];
        to[i] = sum;
    }
}

}  // namespace

extern const VolumeKernels kVolumeKernels;
const VolumeKernels kVolumeKernels = {
    {toDouble<Int8Element>, toDouble<UInt8Element>, toDouble<Int16Element>, toDouble<UInt16Element>,
     toDouble<Int32Element>, toDouble<UInt32Element>, toDouble<FloatElement>, toDouble<DoubleElement>},
    {toFloat<Int8Element>, toFloat<UInt8Element>, toFloat<Int16Element>, toFloat<UInt16Element>,
     toFloat<Int32Element>, toFloat<UInt32Element>, toFloat<FloatElement>, toFloat<DoubleElement>},
    {toElements<Int8Element, double>, toElements<UInt8Element, double>, toElements<Int16Element, double>,
     toElements<UInt16Element, double>, toElements<Int32Element, double>, toElements<UInt32Element, double>,
     toElements<FloatElement, double>, toElements<DoubleElement, double>},
    {toElements<Int8Element, float>, toElements<UInt8Element, float>, toElements<Int16Element, float>,
     toElements<UInt16Element, float>, toElements<Int32Element, float>, toElements<UInt32Element, float>,
     toElements<FloatElement, float>, toElements<DoubleElement, float>},
    weightedSum};

}  // namespace velquad::array::VELQUAD_KERNEL_LEVEL
