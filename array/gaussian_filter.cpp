// Separable Gaussian blur of volumes, one line at a time. The kernel is cut off at a radius and normalised
// again for each sample over what of it lies in the volume, so no value outside is ever assumed.
#include "array/gaussian_filter.h"

#include <cstdlib>

#include "array/element.h"
#include "array/gaussian_rows.h"
#include "array/volume.h"
#include "frame/convert.h"
#include "frame/math.h"
#include "frame/primitives.h"
#include "velquad/array.h"

namespace velquad::array {

namespace {

/// Sigmas closer than this share a kernel.
constexpr double kSameSigma = 1e-5;

/// The largest radius whose 2 * (2 * radius + 1) numbers can be counted in 32 bits with a sign.
constexpr std::int32_t kLargestRadius = 0x1FFFFFFF;

}  // namespace

std::int32_t gaussianRadius(double sigma, double radiusFactor) {
    return frame::truncToInt32(sigma * radiusFactor);
}

double gaussianWeight(std::int32_t k, double sigma) {
    const double square = frame::wrapMul(k, k);
    return frame::exp(-square / (sigma * sigma + sigma * sigma));
}

CGaussianBlurFilter3D::~CGaussianBlurFilter3D() {
    dropKernel();
    Detach();
}

int CGaussianBlurFilter3D::FilterLine(int axis, unsigned int x, unsigned int y, unsigned int z,
                                      unsigned int /*channel*/) {
    if (axis < kAxisX || axis > kAxisZ) return 0;
    const double sigma = m_sigma[axis];
    const auto length = static_cast<std::int32_t>(sizeAlong(axis));
    const std::int32_t radius = gaussianRadius(sigma, m_radiusFactor[axis]);
    const bool isFirstLine =
        (axis == kAxisX || x == 0) && (axis == kAxisY || y == 0) && (axis == kAxisZ || z == 0);
    if (isFirstLine) dropKernel();
    if (!isBuilt(radius, sigma) && !buildKernel(radius, sigma)) {
        m_isKernelLacking = true;
        return 0;
    }
    const double* const in = m_inLine[axis];
    double* const out = m_outLine[axis];
    double* const window = m_kernel.window;
    for (std::int32_t i = 0; i < length; ++i) {
        const std::int32_t first = frame::wrapSub(i, radius);
        const std::int32_t last = frame::wrapAdd(i, radius);
        const std::int32_t low = (first < 0 ? 0 : first) - i;
        const std::int32_t high = frame::wrapSub(last > length - 1 ? length - 1 : last, i);
        if (m_kernel.windowLow != low || m_kernel.windowHigh != high) {
            double sum = 0.0;
            for (std::int32_t k = low; k <= high; ++k) {
                window[k - low] = m_kernel.weights[radius + k];
                sum += window[k - low];
            }
            for (std::int32_t k = low; k <= high; ++k)
                window[k - low] /= sum;
        }
        double sum = 0.0;
        for (std::int32_t k = low; k <= high; ++k)
            sum += window[k - low] * in[i + k];
        out[i] = sum;
    }
    return 1;
}

int CGaussianBlurFilter3D::Run() {
    int result = kFilterFailed;
    if (runByRows(*this, result)) return result;
    m_isKernelLacking = false;
    // Not even a part of the volume is filtered when an axis cannot be.
    for (int axis = 0; axis < kAxes && elementSize(m_type) != 0 && m_type <= MAT_ARRAY_DOUBLE; ++axis) {
        if (axis == kAxisZ && m_depth < 2) continue;
        if (gaussianRadius(m_sigma[axis], m_radiusFactor[axis]) > kLargestRadius) return kFilterFailed;
    }
    result = CImageSignalFilter3D::Run();
    return m_isKernelLacking ? kFilterFailed : result;
}

int CGaussianBlurFilter3D::Process(void*** volume, const unsigned int* size, unsigned int type,
                                   unsigned int channels, const unsigned int* strides) {
    const int result = Attach(volume, size, type, channels, strides) != 0 ? Run() : kFilterFailed;
    Detach();
    return result;
}

bool CGaussianBlurFilter3D::isBuilt(std::int32_t radius, double sigma) const {
    return m_kernel.weights != nullptr && m_kernel.radius == radius &&
           frame::isSmaller(kSameSigma, sigma - m_kernel.sigma);
}

bool CGaussianBlurFilter3D::buildKernel(std::int32_t radius, double sigma) {
    std::free(m_kernel.weights);
    m_kernel.weights = m_kernel.window = nullptr;
    m_kernel.radius = radius;
    m_kernel.sigma = sigma;
    if (radius > kLargestRadius) return false;
    // The empty windows of a negative radius never look at the one weight that stands for its kernel.
    const std::size_t count = radius < 0 ? 1 : 2 * static_cast<std::size_t>(radius) + 1;
    m_kernel.weights = static_cast<double*>(std::calloc(2 * count, sizeof(double)));
    if (m_kernel.weights == nullptr) return false;
    m_kernel.window = m_kernel.weights + count;
    if (sigma == 0.0) {
        m_kernel.weights[0] = 1.0;
        return true;
    }
    for (std::size_t i = 0; i < count; ++i)
        m_kernel.weights[i] = gaussianWeight(frame::wrapSub(static_cast<std::int32_t>(i), radius), sigma);
    return true;
}

void CGaussianBlurFilter3D::dropKernel() {
    std::free(m_kernel.weights);
    m_kernel = tagMAT_GAUSS_KERNEL();
}

namespace {

/// Filters a floating copy of an integer volume and stores it back, of a cancelled run as far as it got.
DWORD filterCopy(CGaussianBlurFilter3D& filter, void*** volume, const unsigned int* size, unsigned int type,
                 unsigned int channels, unsigned int copyType) {
    const unsigned int width = size[kAxisX];
    const unsigned int height = size[kAxisY];
    const unsigned int depth = size[kAxisZ];
    const bool isFloat = copyType == MAT_ARRAY_FLOAT;
    const OwnedVolume copy(matAllocArray3v(width, height, depth, copyType, channels, nullptr));
    if (copy.get() == nullptr) return kFilterFailed;
    const auto elementBytes = static_cast<unsigned int>(isFloat ? sizeof(float) : sizeof(double));
    const unsigned int steps[kAxes] = {channels * elementBytes, width * channels * elementBytes, 0xFFFFFFFFU};
    auto*** const floats = reinterpret_cast<float***>(copy.get());
    auto*** const doubles = reinterpret_cast<double***>(copy.get());
    if (isFloat) {
        matConvertToFloat3v(floats, volume, width, height, depth, type, channels);
    } else {
        matConvertToDouble3v(doubles, volume, width, height, depth, type, channels);
    }
    if (filter.Process(copy.get(), size, copyType, channels, steps) == kFilterFailed) return kFilterFailed;
    const int isStored = isFloat
                             ? matConvertFromFloat3v(floats, volume, width, height, depth, type, channels)
                             : matConvertFromDouble3v(doubles, volume, width, height, depth, type, channels);
    return static_cast<DWORD>(isStored);
}

}  // namespace

}  // namespace velquad::array

DWORD matGaussianBlurFilter3v(void*** volume, unsigned int* const size, unsigned int type,
                              unsigned int channels, unsigned int* const strides, double* const sigma,
                              double* const radiusFactor, int convert,
                              int (*callback)(unsigned int, unsigned int, void*), void* callbackUser) {
    using namespace velquad::array;
    if (volume == nullptr || size == nullptr || sigma == nullptr || radiusFactor == nullptr)
        return kFilterFailed;
    CGaussianBlurFilter3D filter;
    filter.m_callback = callback;
    filter.m_callbackUser = callbackUser;
    for (int axis = 0; axis < kAxes; ++axis) {
        filter.m_sigma[axis] = sigma[axis];
        filter.m_radiusFactor[axis] = radiusFactor[axis];
    }
    if (convert != 0 && type >= MAT_ARRAY_INT8 && type <= MAT_ARRAY_UINT16)
        return filterCopy(filter, volume, size, type, channels, MAT_ARRAY_FLOAT);
    if (convert != 0 && (type == MAT_ARRAY_INT32 || type == MAT_ARRAY_UINT32))
        return filterCopy(filter, volume, size, type, channels, MAT_ARRAY_DOUBLE);
    return static_cast<DWORD>(filter.Process(volume, size, type, channels, strides));
}
