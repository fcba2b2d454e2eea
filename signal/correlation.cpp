// Normalised cross-correlation of a stored pattern with a signal.
#include "signal/correlation_kernels.h"

#include <cmath>
#include <cstdint>
#include <new>
#include <vector>

#include "frame/kernels.h"
#include "velquad/signal.h"

namespace velquad::signal {

VELQUAD_DEFINE_KERNELS(CorrelationKernels, kCorrelationKernels, correlationKernels)

}  // namespace velquad::signal

namespace {

using velquad::signal::CorrelationPattern;

struct CorrelationRecord {
    double norm = 0.0;
    std::vector<double> pattern;
};

// Stores the pattern without its mean, and its norm.
void prepare(CorrelationRecord& record, const double* pattern, int n) {
    record.pattern.assign(pattern, pattern + n);
    double sum = 0.0;
    double squares = 0.0;
    for (const double sample : record.pattern) {
        sum += sample;
        squares += sample * sample;
    }
    const double mean = sum / n;
    const double aboutMean = squares - mean * sum;
    record.norm = aboutMean > 0.0 ? std::sqrt(aboutMean) : 0.0;
    for (double& sample : record.pattern)
        sample -= mean;
}

}  // namespace

extern "C" void* fnrInitCorrelation(const double* pattern, int n) {
    if (pattern == nullptr || n < 2) return nullptr;
    auto* record = new (std::nothrow) CorrelationRecord;
    if (record == nullptr) return nullptr;
    try {
        prepare(*record, pattern, n);
    } catch (const std::bad_alloc&) {
        delete record;
        return nullptr;
    }
    return record;
}

extern "C" int fnrDoCorrelation(void* handle, const double* signal, unsigned int signalCount, double* result,
                                int maxCount) {
    if (handle == nullptr || signal == nullptr || result == nullptr) return -1;
    const auto& record = *static_cast<const CorrelationRecord*>(handle);
    const std::size_t size = record.pattern.size();
    std::int64_t count = std::int64_t{signalCount} - static_cast<std::int64_t>(size) + 1;
    if (count > maxCount) count = maxCount;
    // A pattern with a not-a-number has norm 0 as well.
    if (record.norm <= 0.0 || count < 1) return -1;
    const CorrelationPattern pattern{record.pattern.data(), size, record.norm};
    velquad::signal::correlationKernels().correlate(pattern, signal, static_cast<std::size_t>(count), result);
    return static_cast<int>(count);
}

extern "C" void fnrExitCorrelation(void** handle) {
    if (handle == nullptr) return;
    delete static_cast<CorrelationRecord*>(*handle);
    *handle = nullptr;
}
