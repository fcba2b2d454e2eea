/// @file
/// Scattered numbers for the pictures.
#ifndef GALLERY_NOISE_H
#define GALLERY_NOISE_H

#include <cstdint>

namespace gallery {

/// The same numbers in [-1, 1] on every system.
class Noise {
  public:
    explicit Noise(std::uint32_t seed) : state_(seed) {}
    double next() {
        state_ = state_ * 1664525U + 1013904223U;
        return static_cast<double>(state_) * (2.0 / 4294967296.0) - 1.0;
    }
    /// Small values are more likely than great ones.
    double bell() {
        const double first = next();
        const double second = next();
        return (first + second + next()) / 3.0;
    }

  private:
    std::uint32_t state_;
};

}  // namespace gallery

#endif  // GALLERY_NOISE_H
