// First differences and zero crossings of sampled curves.
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "velquad/signal.h"

namespace {

// What the first sample must exceed to have a sign, and what the later ones must.
constexpr double kFirstSignThreshold = 2.2250738585072014e-308;
constexpr double kSignThreshold = 1.1754943508222875e-38;

int signOf(double value, double threshold) {
    if (value > threshold) return 1;
    return value < -threshold ? -1 : 0;
}

struct SignedSample {
    int index;
    double value;
    int sign;
};

// A caller's list of positions, filled up to its capacity and counted beyond it.
class CrossingList {
  public:
    CrossingList(double* positions, const unsigned int* capacity)
        : positions_(positions), capacity_(positions == nullptr || capacity == nullptr ? 0 : *capacity) {}

    void add(double position) {
        if (count_ < capacity_) positions_[count_] = position;
        ++count_;
    }
    bool hasOverflowed() const { return positions_ != nullptr && count_ > capacity_; }
    void storeCount(unsigned int* count) const {
        if (count != nullptr) *count = count_;
    }

  private:
    double* positions_;
    unsigned int capacity_;
    unsigned int count_ = 0;
};

// The next sample with a sign from `index` on; its sign is 0 if there is none.
SignedSample nextSigned(const double* data, int n, int index, double threshold) {
    for (int i = index; i < n; ++i) {
        const int sign = signOf(data[i], threshold);
        if (sign != 0) return {i, data[i], sign};
    }
    return {n, 0.0, 0};
}

}  // namespace

extern "C" void fnrDerivate(const double* in, double* out, int n, int isCircular) {
    if (n < 1) return;
    const auto last = static_cast<std::size_t>(n) - 1;
    if (in != out) std::memmove(out, in, (last + 1) * sizeof(double));
    const double next = isCircular != 0 ? out[0] : out[last];
    for (std::size_t i = 0; i < last; ++i)
        out[i] = out[i + 1] - out[i];
    // With n = 1 the sample itself is the next one in both cases.
    out[last] = next - out[last];
}

extern "C" int fnrFindZeroPoint(const double* data, int n, double* rising, unsigned int* risingCount,
                                double* falling, unsigned int* fallingCount, int isCircular) {
    CrossingList risingList(rising, risingCount);
    CrossingList fallingList(falling, fallingCount);
    const SignedSample first = nextSigned(data, n, 0, kFirstSignThreshold);
    if (first.sign != 0) {
        SignedSample previous = first;
        for (;;) {
            const SignedSample current = nextSigned(data, n, previous.index + 1, kSignThreshold);
            if (current.sign == 0) break;
            if (current.sign != previous.sign) {
                const double a = previous.value;
                const double steps = current.index - previous.index;
                const double position = steps * a / (a - current.value) + previous.index;
                (current.sign > 0 ? risingList : fallingList).add(position);
            }
            previous = current;
        }
        if (isCircular != 0 && previous.sign != first.sign) {
            const double a = previous.value;
            const double steps = static_cast<double>(std::int64_t{first.index} - previous.index + n);
            const double position = a / (a - first.value) * steps + previous.index;
            (first.sign < 0 ? fallingList : risingList).add(position);
        }
    }
    risingList.storeCount(risingCount);
    fallingList.storeCount(fallingCount);
    return risingList.hasOverflowed() || fallingList.hasOverflowed() ? 0 : 1;
}
