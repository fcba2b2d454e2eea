// Working memory of functions that promise to free what they take and to report, not throw, when there is none.
#ifndef VELQUAD_POLYGON_SCRATCH_ARRAY_H
#define VELQUAD_POLYGON_SCRATCH_ARRAY_H

#include <cstddef>
#include <cstdlib>
#include <type_traits>

namespace velquad::polygon {

/// An array of plain elements from the ordinary heap. The elements are not initialised.
template <class T>
class ScratchArray {
    static_assert(std::is_trivially_copyable_v<T> && std::is_trivially_destructible_v<T>);

  public:
    ScratchArray() = default;
    ScratchArray(const ScratchArray&) = delete;
    ScratchArray& operator=(const ScratchArray&) = delete;
    ~ScratchArray() { std::free(elements_); }

    /// Makes room for `count` elements; room that is there is used again. The contents are lost when it grows.
    /// @return false without memory.
    bool reserve(std::size_t count) {
        if (count <= room_) return true;
        std::free(elements_);
        elements_ = nullptr;
        room_ = 0;
        if (count > static_cast<std::size_t>(-1) / sizeof(T)) return false;
        elements_ = static_cast<T*>(std::malloc(count * sizeof(T)));
        if (elements_ == nullptr) return false;
        room_ = count;
        return true;
    }

    T* data() const { return elements_; }
    T& operator[](std::size_t index) const { return elements_[index]; }

  private:
    T* elements_ = nullptr;
    std::size_t room_ = 0;
};

}  // namespace velquad::polygon

#endif  // VELQUAD_POLYGON_SCRATCH_ARRAY_H
