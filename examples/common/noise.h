/// @file
/// Scattered numbers.
#ifndef EXAMPLES_NOISE_H
#define EXAMPLES_NOISE_H

#include <cstdint>

namespace examples {

/// The same numbers on every system: the "minimal standard" generator of S. K. Park and K. W. Miller, 1988.
class Noise {
  public:
    /// @param seed  1 to 2147483646.
    explicit Noise(std::uint64_t seed = 1) : state_(seed) {}

    /// @return a value in (-1, 1).
    double next() {
        state_ = state_ * 16807U % 2147483647U;
        return static_cast<double>(state_) / 1073741823.5 - 1.0;
    }
    /// @return a value around 0 with standard deviation 1, never more than 3 away: the sum of three.
    double bell() {
        const double first = next();
        const double second = next();
        return first + second + next();
    }

  private:
    std::uint64_t state_;
};

}  // namespace examples

#endif  // EXAMPLES_NOISE_H
