// Volumes for tests and benchmarks whose rows lie where a test wants them: slices of LooseArray, in a slice
// table at an odd address.
#ifndef VELQUAD_TESTS_SUPPORT_VOLUME_DATA_H
#define VELQUAD_TESTS_SUPPORT_VOLUME_DATA_H

#include <cmath>
#include <cstring>
#include <memory>
#include <vector>

#include "tests/support/array_data.h"

namespace velquad::test {

class LooseVolume {
  public:
    /// `rowElements` counts all channels.
    LooseVolume(std::size_t rowElements, std::size_t height, std::size_t depth, unsigned int type)
        : type_(type), rowElements_(rowElements), height_(height), table_(8 * depth + 9) {
        for (std::size_t z = 0; z < depth; ++z) {
            slices_.push_back(std::make_unique<LooseArray>(rowElements, height, type));
            void** const rows = slices_.back()->rows();
            std::memcpy(table_.data() + 1 + 8 * z, &rows, sizeof(rows));
        }
    }
    // The table holds addresses of this object's data.
    LooseVolume(const LooseVolume&) = delete;
    LooseVolume& operator=(const LooseVolume&) = delete;

    /// The table as callers pass it. Converted through an integer: it is not aligned for pointers.
    template <class Table = void***>
    Table slices() {
        return reinterpret_cast<Table>(reinterpret_cast<std::uintptr_t>(table_.data() + 1));
    }

    LooseArray& slice(std::size_t z) { return *slices_[z]; }
    std::size_t depth() const { return slices_.size(); }

    template <class T>
    T get(std::size_t z, std::size_t y, std::size_t index) const {
        return slices_[z]->get<T>(y, index);
    }

    template <class T>
    void set(std::size_t z, std::size_t y, std::size_t index, T value) {
        slices_[z]->set(y, index, value);
    }

    template <class Random>
    void fill(Random& random, bool special = false) {
        for (auto& slice : slices_)
            fillRandom(*slice, rowElements_, height_, type_, random, special);
    }

    void copyBytes(const LooseVolume& other) {
        for (std::size_t z = 0; z < depth(); ++z)
            slices_[z]->copyBytes(*other.slices_[z]);
    }

    /// Tells whether two volumes of one shape hold the same bits, guards included. All not-a-numbers are the
    /// same.
    bool equals(const LooseVolume& other) const {
        for (std::size_t z = 0; z < depth(); ++z) {
            if (slices_[z]->bytes() == other.slices_[z]->bytes()) continue;
            if (type_ != 7 && type_ != 8) return false;
            for (std::size_t y = 0; y < height_; ++y) {
                for (std::size_t i = 0; i < rowElements_; ++i) {
                    if (!sameElement(other, z, y, i)) return false;
                }
            }
        }
        return true;
    }

  private:
    template <class T>
    bool sameNumber(const LooseVolume& other, std::size_t z, std::size_t y, std::size_t i) const {
        const T a = get<T>(z, y, i);
        const T b = other.get<T>(z, y, i);
        return std::memcmp(&a, &b, sizeof(T)) == 0 || (std::isnan(a) && std::isnan(b));
    }

    bool sameElement(const LooseVolume& other, std::size_t z, std::size_t y, std::size_t i) const {
        return type_ == 7 ? sameNumber<float>(other, z, y, i) : sameNumber<double>(other, z, y, i);
    }

    unsigned int type_;
    std::size_t rowElements_;
    std::size_t height_;
    std::vector<std::unique_ptr<LooseArray>> slices_;
    std::vector<unsigned char> table_;
};

}  // namespace velquad::test

#endif  // VELQUAD_TESTS_SUPPORT_VOLUME_DATA_H
