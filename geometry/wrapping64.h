// 64-bit signed integers that wrap around, for the error terms of curve tracers. They are exact for every curve an
// image can hold; a larger one yields a wrong curve of bounded length, never undefined behaviour.
#ifndef VELQUAD_GEOMETRY_WRAPPING64_H
#define VELQUAD_GEOMETRY_WRAPPING64_H

#include <cstdint>

namespace velquad::geometry {

class Wrapping64 {
  public:
    constexpr Wrapping64(std::int64_t value)
        : bits_(static_cast<std::uint64_t>(value)) {}  // NOLINT: converts

    constexpr std::int64_t value() const { return static_cast<std::int64_t>(bits_); }

    constexpr Wrapping64& operator+=(Wrapping64 other) {
        bits_ += other.bits_;
        return *this;
    }
    constexpr Wrapping64& operator-=(Wrapping64 other) {
        bits_ -= other.bits_;
        return *this;
    }
    friend constexpr Wrapping64 operator+(Wrapping64 a, Wrapping64 b) { return a += b; }
    friend constexpr Wrapping64 operator-(Wrapping64 a, Wrapping64 b) { return a -= b; }
    friend constexpr Wrapping64 operator*(Wrapping64 a, Wrapping64 b) {
        return static_cast<std::int64_t>(a.bits_ * b.bits_);
    }
    friend constexpr bool operator<(Wrapping64 a, Wrapping64 b) { return a.value() < b.value(); }
    friend constexpr bool operator>=(Wrapping64 a, Wrapping64 b) { return a.value() >= b.value(); }

  private:
    std::uint64_t bits_;
};

}  // namespace velquad::geometry

#endif  // VELQUAD_GEOMETRY_WRAPPING64_H
