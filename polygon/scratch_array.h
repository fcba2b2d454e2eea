// Working memory of functions that promise to free what they take and to report, not throw, when there is none.
#ifndef VELQUAD_POLYGON_SCRATCH_ARRAY_H
#define VELQUAD_POLYGON_SCRATCH_ARRAY_H

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <type_traits>

namespace velquad::polygon {

/// An array of plain elements from the ordinary heap. The elements are not initialised.
template <class T>
class ScratchArray {
    static_assert(std::is_trivially_copyable_v<T> && std::is_trivially_destructible_v<T>);

  public:
    /// Makes room for `count` elements; the room there is is used again. The contents are lost when it grows.
    /// @return false without memory.
    bool reserve(std::size_t count) {
        if (count <= room_) return true;
        elements_.reset();
        room_ = 0;
        if (count > static_cast<std::size_t>(-1) / sizeof(T)) return false;
        elements_.reset(static_cast<T*>(std::malloc(count * sizeof(T))));
        if (elements_ == nullptr) return false;
        room_ = count;
        return true;
    }

    T* data() const { return elements_.get(); }
    T& operator[](std::size_t index) const { return elements_[index]; }

  private:
    struct Free {
        void operator()(void* memory) const { std::free(memory); }
    };

    std::unique_ptr<T[], Free> elements_;
    std::size_t room_ = 0;
};

}  // namespace velquad::polygon

#endif  // VELQUAD_POLYGON_SCRATCH_ARRAY_H
