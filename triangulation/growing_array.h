// A growing array of plain records, each on a cache line of its own where its size is one.
#ifndef VELQUAD_TRIANGULATION_GROWING_ARRAY_H
#define VELQUAD_TRIANGULATION_GROWING_ARRAY_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>
#include <type_traits>
#include <vector>

#include "platform/large_pages.h"

namespace velquad::triangulation {

/// Makes room for `extra` more elements, growing by half at least, so that appending them cannot fail.
template <class T>
void reserveMore(std::vector<T>& values, std::size_t extra) {
    const std::size_t needed = values.size() + extra;
    if (needed <= values.capacity()) return;
    const std::size_t grown = values.capacity() + values.capacity() / 2;
    values.reserve(grown > needed ? grown : needed);
}

/// Elements start on a multiple of 64 bytes. Appending needs room made before.
template <class T>
class GrowingArray {
    static_assert(std::is_trivially_copyable_v<T>);

  public:
    T& operator[](std::size_t index) { return values_[index]; }
    const T& operator[](std::size_t index) const { return values_[index]; }
    std::size_t size() const { return size_; }

    /// Makes room for `extra` more elements, growing by half at least. Elements may move.
    void reserveMore(std::size_t extra) {
        if (size_ + extra <= capacity_) return;
        std::size_t capacity = capacity_ + capacity_ / 2;
        if (capacity < size_ + extra) capacity = size_ + extra;
        const std::size_t byteCount = capacity * sizeof(T);
        const bool isLarge = byteCount >= 2 * platform::kLargePage;
        const std::size_t alignment = isLarge ? platform::kLargePage : kLine;
        std::unique_ptr<std::byte[]> bytes(new std::byte[byteCount + alignment]);
        const std::size_t misfit = reinterpret_cast<std::uintptr_t>(bytes.get()) % alignment;
        T* values = static_cast<T*>(static_cast<void*>(bytes.get() + (alignment - misfit)));
        // Walks jump; on small pages they would wait for page tables as well.
        if (isLarge) platform::adviseLargePages(values, byteCount);
        if (size_ != 0) std::memcpy(static_cast<void*>(values), values_, size_ * sizeof(T));
        bytes_ = std::move(bytes);
        values_ = values;
        capacity_ = capacity;
    }

    /// Appends without growing.
    void append(const T& value) { new (static_cast<void*>(values_ + size_++)) T(value); }

  private:
    static constexpr std::size_t kLine = 64;

    std::unique_ptr<std::byte[]> bytes_;
    T* values_ = nullptr;
    std::size_t size_ = 0;
    std::size_t capacity_ = 0;
};

}  // namespace velquad::triangulation

#endif  // VELQUAD_TRIANGULATION_GROWING_ARRAY_H
