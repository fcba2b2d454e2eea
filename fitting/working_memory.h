// Asks for memory before work that must not run out of it half-way.
#ifndef VELQUAD_FITTING_WORKING_MEMORY_H
#define VELQUAD_FITTING_WORKING_MEMORY_H

#include <cstddef>
#include <new>

namespace velquad::fitting {

/// Throws `std::bad_alloc` unless the memory that a singular value decomposition of this size works with can be had.
/// Eigen 3.4 resizes matrices by releasing the old elements first; when the allocation of the new ones fails, the old
/// ones are released once more by the destructor. So lack of memory has to show before a decomposition begins.
inline void requireMemoryForDecomposition(std::size_t rows, std::size_t columns) {
    // Working copies, singular vectors and workspace, generously counted: the peak stays below.
    const std::size_t longer = rows < columns ? columns : rows;
    const std::size_t shorter = (rows < columns ? rows : columns) + 1;
    ::operator delete(
        ::operator new(sizeof(double) * ((6 * shorter + 32) * longer + 10 * shorter * shorter)));
}

}  // namespace velquad::fitting

#endif  // VELQUAD_FITTING_WORKING_MEMORY_H
