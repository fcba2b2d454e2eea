// Arrays for tests and benchmarks whose rows lie where a test wants them: at odd addresses, out of order, with guard
// bytes between them.
#ifndef VELQUAD_TESTS_SUPPORT_ARRAY_DATA_H
#define VELQUAD_TESTS_SUPPORT_ARRAY_DATA_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

namespace velquad::test {

inline constexpr unsigned int kTypeCount = 10;
inline constexpr unsigned char kGuard = 0xA5;

/// Bytes per element by type code.
inline constexpr std::size_t kElementBytes[] = {0, 1, 1, 2, 2, 4, 4, 4, 8, 3, 4};
/// Values per element, and the type code of one value.
inline constexpr std::size_t kElementValues[] = {0, 1, 1, 1, 1, 1, 1, 1, 1, 3, 4};

/// A row table of its own making: rows stand in reverse order, each at an odd address, with guards around them; the
/// table itself is aligned to 4 bytes only.
class LooseArray {
  public:
    LooseArray(std::size_t width, std::size_t height, unsigned int type, std::size_t guard = 5)
        : rowBytes_(width * kElementBytes[type]),
          stride_((rowBytes_ + 2 * guard) | 1U),
          data_(stride_ * height + 2 * guard + 1, kGuard),
          table_(8 * height + 12) {
        for (std::size_t y = 0; y < height; ++y) {
            const unsigned char* row = data_.data() + (height - 1 - y) * stride_ + guard;
            std::memcpy(table_.data() + 4 + 8 * y, &row, sizeof(row));
            std::memset(this->row(y), 0, rowBytes_);
        }
    }
    // The table holds addresses of this object's data.
    LooseArray(const LooseArray&) = delete;
    LooseArray& operator=(const LooseArray&) = delete;

    /// The table as callers pass it. Converted through an integer: it is not aligned for pointers.
    template <class Table = void**>
    Table rows() {
        return reinterpret_cast<Table>(reinterpret_cast<std::uintptr_t>(table_.data() + 4));
    }

    unsigned char* row(std::size_t y) const {
        unsigned char* row = nullptr;
        std::memcpy(&row, table_.data() + 4 + 8 * y, sizeof(row));
        return row;
    }

    template <class T>
    T get(std::size_t y, std::size_t index) const {
        T value;
        std::memcpy(&value, row(y) + index * sizeof(T), sizeof(T));
        return value;
    }

    template <class T>
    void set(std::size_t y, std::size_t index, T value) {
        std::memcpy(row(y) + index * sizeof(T), &value, sizeof(T));
    }

    std::size_t rowBytes() const { return rowBytes_; }

    /// Everything that the array holds, guards included.
    const std::vector<unsigned char>& bytes() const { return data_; }

    void copyBytes(const LooseArray& other) { std::memcpy(data_.data(), other.data_.data(), data_.size()); }

  private:
    std::size_t rowBytes_;
    std::size_t stride_;
    std::vector<unsigned char> data_;
    std::vector<unsigned char> table_;
};

/// Fills rows with random bits of integers; with moderate floating point numbers, and with `special` also with
/// infinities, not-a-numbers, zeros of both signs and the largest values.
template <class Random>
void fillRandom(LooseArray& array, std::size_t width, std::size_t height, unsigned int type, Random& random,
                bool special = false) {
    constexpr double kSpecial[] = {0.0, -0.0, 1e300, -1e300, 3.5e38, 1e-310, 1.7976931348623157e308};
    for (std::size_t y = 0; y < height; ++y) {
        if (type != 7 && type != 8) {
            for (std::size_t i = 0; i < array.rowBytes(); ++i)
                array.row(y)[i] = static_cast<unsigned char>(random());
            continue;
        }
        for (std::size_t x = 0; x < width; ++x) {
            double value = std::uniform_real_distribution<double>(-300.0, 300.0)(random);
            if (special && random() % 8 == 0) {
                const unsigned int which = static_cast<unsigned int>(random() % 10);
                if (which < 7) value = kSpecial[which];
                if (which == 7) value = std::numeric_limits<double>::infinity();
                if (which == 8) value = -std::numeric_limits<double>::infinity();
                if (which == 9) value = std::numeric_limits<double>::quiet_NaN();
            }
            if (type == 7) {
                array.set(y, x, static_cast<float>(value));
            } else {
                array.set(y, x, value);
            }
        }
    }
}

}  // namespace velquad::test

#endif  // VELQUAD_TESTS_SUPPORT_ARRAY_DATA_H
