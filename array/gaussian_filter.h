// The Gaussian as a filter of lines.
#ifndef VELQUAD_ARRAY_GAUSSIAN_FILTER_H
#define VELQUAD_ARRAY_GAUSSIAN_FILTER_H

#include <cstdint>

#include "array/signal_filter.h"
#include "velquad/types.h"

namespace velquad::array {

/// The raw Gaussian of one axis and the window of one sample.
struct tagMAT_GAUSS_KERNEL {
    static constexpr std::int32_t kNone = 0x7FFFFFFF;

    /// Kept: compared with the window of every sample and never set, so that every sample forms its own.
    std::int32_t windowLow = kNone;
    std::int32_t windowHigh = kNone;  ///< See `windowLow`.
    std::int32_t radius = kNone;      ///< Radius that `weights` were made for.
    double sigma = kNoValue;          ///< Sigma that `weights` were made for.
    double* weights = nullptr;        ///< 2 * radius + 1 weights, not normalised; null for no kernel.
    double* window = nullptr;         ///< Normalised weights of a window; behind `weights` in one allocation.
};

/// The radius at which a Gaussian is cut off; -2147483648 when it does not fit 32 bits or is not a number.
/// The windows of a negative radius, this one included, are empty, and so all results are 0.
std::int32_t gaussianRadius(double sigma, double radiusFactor);

/// exp(-k^2 / (2 sigma^2)), with k^2 in 32 bits that wrap around.
double gaussianWeight(std::int32_t k, double sigma);

class CGaussianBlurFilter3D final : public CImageSignalFilter3D {
  public:
    CGaussianBlurFilter3D() = default;
    CGaussianBlurFilter3D(const CGaussianBlurFilter3D&) = delete;
    CGaussianBlurFilter3D& operator=(const CGaussianBlurFilter3D&) = delete;
    ~CGaussianBlurFilter3D();

    int FilterLine(int axis, unsigned int x, unsigned int y, unsigned int z, unsigned int channel) override;

    /// As the base does, with whole rows at a time where the volume allows it; see gaussian_rows.h.
    /// @return as the base; 0 also when a kernel cannot be had.
    int Run();
    int Process(void*** volume, const unsigned int* size, unsigned int type, unsigned int channels,
                const unsigned int* strides);

    tagMAT_GAUSS_KERNEL m_kernel;
    double m_radiusFactor[kAxes] = {1.5, 1.5, 1.5};  ///< Cut-off radius in sigmas.
    double m_sigma[kAxes] = {2.0, 2.0, 2.0};         ///< Standard deviation in voxels.

  private:
    bool isBuilt(std::int32_t radius, double sigma) const;
    bool buildKernel(std::int32_t radius, double sigma);
    void dropKernel();

    bool m_isKernelLacking = false;
};

}  // namespace velquad::array

#endif  // VELQUAD_ARRAY_GAUSSIAN_FILTER_H
