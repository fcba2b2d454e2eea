// Normalised cross-correlation step by step: one stretch after the other.
#ifndef VELQUAD_TESTS_SUPPORT_PATTERN_CORRELATION_REFERENCE_H
#define VELQUAD_TESTS_SUPPORT_PATTERN_CORRELATION_REFERENCE_H

#include <cmath>
#include <cstddef>

namespace velquad::test {

/// The literal loops. `pattern` has its mean subtracted.
inline void correlateLiterally(const double* pattern, std::size_t size, double norm, const double* signal,
                               std::size_t count, double* result) {
    const auto m = static_cast<double>(size);
    for (std::size_t s = 0; s < count; ++s) {
        double sum = 0.0;
        double squares = 0.0;
        double dot = 0.0;
        for (std::size_t k = 0; k < size; ++k) {
            const double value = signal[s + k];
            sum += value;
            squares += value * value;
            dot += value * pattern[k];
        }
        const double x = squares - sum / m * sum;
        result[s] = x > 0.0 ? dot / (std::sqrt(x) * norm) : x;
    }
}

}  // namespace velquad::test

#endif  // VELQUAD_TESTS_SUPPORT_PATTERN_CORRELATION_REFERENCE_H
