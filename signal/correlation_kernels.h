// The inner loops of the normalised cross-correlation.
#ifndef VELQUAD_SIGNAL_CORRELATION_KERNELS_H
#define VELQUAD_SIGNAL_CORRELATION_KERNELS_H

#include <cstddef>

namespace velquad::signal {

/// A pattern with its mean subtracted.
struct CorrelationPattern {
    const double* values;
    std::size_t count;
    double norm;
};

struct CorrelationKernels {
    /// Stores the correlation of the pattern with the stretches that begin at signal[0] to signal[count - 1].
    /// `result` may be `signal`.
    void (*correlate)(const CorrelationPattern& pattern, const double* signal, std::size_t count,
                      double* result);
};

const CorrelationKernels& correlationKernels();

}  // namespace velquad::signal

#endif  // VELQUAD_SIGNAL_CORRELATION_KERNELS_H
