// What the fuzzers share: reading values off the input, and checks.
#ifndef VELQUAD_FUZZ_INPUT_H
#define VELQUAD_FUZZ_INPUT_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "velquad/types.h"

namespace velquad::fuzz {

/// Reads values off the input; zeros once it is used up.
class Input {
  public:
    Input(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}

    template <class T>
    T take() {
        T value{};
        const std::size_t bytes = size_ < sizeof(T) ? size_ : sizeof(T);
        std::memcpy(&value, data_, bytes);
        data_ += bytes;
        size_ -= bytes;
        return value;
    }

    std::size_t size() const { return size_; }

    /// Points on a small grid, where degenerate cases abound, or anywhere in the 32-bit range.
    std::vector<tagPOINT> takeOutline(std::size_t most) {
        const std::size_t count = take<std::uint8_t>() % (most + 1);
        const bool isSmall = (take<std::uint8_t>() & 1) != 0;
        std::vector<tagPOINT> points;
        for (std::size_t i = 0; i < count; ++i) {
            if (isSmall) {
                const auto x = static_cast<LONG>(take<std::int8_t>() % 8);
                points.push_back({x, static_cast<LONG>(take<std::int8_t>() % 8)});
            } else {
                const auto x = static_cast<LONG>(take<std::int32_t>());
                points.push_back({x, static_cast<LONG>(take<std::int32_t>())});
            }
        }
        return points;
    }

    /// The same for doubles: a small grid with jitter of the size of the tolerances, or any bits at all.
    std::vector<tagPOINT2D> takeOutline2D(std::size_t most) {
        const std::size_t count = take<std::uint8_t>() % (most + 1);
        const bool isSmall = (take<std::uint8_t>() & 3) != 0;
        std::vector<tagPOINT2D> points;
        for (std::size_t i = 0; i < count; ++i) {
            const double x = isSmall ? takeNearGrid() : take<double>();
            points.push_back({x, isSmall ? takeNearGrid() : take<double>()});
        }
        return points;
    }

    double takeNearGrid() {
        static constexpr double kOffsets[] = {0.0, 0.0, 0.0, 0.0, 5e-8, -5e-8, 1e-7, 0.5};
        const auto bits = take<std::uint8_t>();
        return bits % 8 + kOffsets[bits / 8 % 8];
    }

  private:
    const std::uint8_t* data_;
    std::size_t size_;
};

inline void require(bool condition) {
    if (!condition) __builtin_trap();
}

}  // namespace velquad::fuzz

#endif  // VELQUAD_FUZZ_INPUT_H
