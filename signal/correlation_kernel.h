// The inner loops of the normalised cross-correlation, one version for each instruction set. All versions give
// the same bits.
#ifndef VELQUAD_SIGNAL_CORRELATION_KERNEL_H
#define VELQUAD_SIGNAL_CORRELATION_KERNEL_H

#include <cstddef>

namespace velquad::signal {

/// A pattern with its mean subtracted.
struct CorrelationPattern {
    const double* values;
    std::size_t count;
    double norm;
};

/// Stores the correlation of the pattern with the stretches that begin at signal[0] to signal[count - 1].
/// `result` may be `signal`.
using CorrelationKernel = void (*)(const CorrelationPattern& pattern, const double* signal, std::size_t count,
                                   double* result);

void correlateBaseline(const CorrelationPattern& pattern, const double* signal, std::size_t count,
                       double* result);
#if !defined(_WIN32)
void correlateAvx2(const CorrelationPattern& pattern, const double* signal, std::size_t count,
                   double* result);
void correlateAvx512(const CorrelationPattern& pattern, const double* signal, std::size_t count,
                     double* result);
#endif

/// A version and whether this processor can run it.
struct CorrelationLevel {
    const char* name;
    CorrelationKernel kernel;
    bool isSupported;
};

inline constexpr std::size_t kCorrelationLevelCount = 3;

/// All versions, the plainest first; those that the system lacks have no kernel.
const CorrelationLevel (&correlationLevels())[kCorrelationLevelCount];

}  // namespace velquad::signal

#endif  // VELQUAD_SIGNAL_CORRELATION_KERNEL_H
