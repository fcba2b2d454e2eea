// Scratch memory of the curve functions: vectors and matrices of doubles that live and die together.
//
// A function makes all the allocations of a stage and asks once whether they succeeded; whatever was made is
// released in one go. Every element starts at 0.
#ifndef VELQUAD_CURVES_SCRATCH_POOL_H
#define VELQUAD_CURVES_SCRATCH_POOL_H

#include <cstddef>
#include <cstdint>

namespace velquad::curves {

/// Index and count of points, rows and coordinates; wide enough for every 32-bit count plus a half.
using Index = std::ptrdiff_t;

/// What an entry of a pool holds.
inline constexpr int kVectorBlock = 0;  ///< A vector of doubles.
inline constexpr int kMatrixBlock = 2;  ///< A matrix of doubles, reached through its row pointers.
inline constexpr int kPoolHead = 410;   ///< The head node; every operation checks for it first.

/// A node of the singly linked list of allocations.
struct ScratchPool {
    void* block;          ///< The allocation; null in the head node.
    int kind;             ///< Kind of allocation.
    std::uint64_t size1;  ///< First size; in the head node non-zero once an allocation failed.
    std::uint64_t size2;  ///< Second size.
    ScratchPool* next;    ///< Next older allocation; from the head node the newest one.
};

/// @return an empty pool, or null when there is no memory.
ScratchPool* poolOpen();

/// Allocates a zeroed vector of `count` doubles (kind 0), or a zeroed matrix of `count` rows by `size2` columns
/// (kind 2). A matrix is one block, its row pointers in front of its elements, so rows may trade places by
/// their pointers. A size of 0 is not a failure.
/// @return `double*` or `double**`; null for failure, another kind or no pool. A failure marks the pool.
void* poolAlloc(ScratchPool* pool, int kind, std::uint64_t count, std::uint64_t size2);

/// @return true when there is a pool and none of its allocations failed.
bool poolIsOk(const ScratchPool* pool);

/// Frees all entries, then the pool. Null is ignored.
void poolClose(ScratchPool* pool);

/// Owns a pool for the length of a scope.
class ScratchMemory {
  public:
    ScratchMemory() : pool_(poolOpen()) {}
    ScratchMemory(const ScratchMemory&) = delete;
    ScratchMemory& operator=(const ScratchMemory&) = delete;
    ~ScratchMemory() { poolClose(pool_); }

    double* vector(Index count) {
        return static_cast<double*>(poolAlloc(pool_, kVectorBlock, static_cast<std::uint64_t>(count), 0));
    }
    double** matrix(Index rows, Index columns) {
        return static_cast<double**>(poolAlloc(pool_, kMatrixBlock, static_cast<std::uint64_t>(rows),
                                               static_cast<std::uint64_t>(columns)));
    }
    bool isOk() const { return poolIsOk(pool_); }

  private:
    ScratchPool* pool_;
};

}  // namespace velquad::curves

#endif  // VELQUAD_CURVES_SCRATCH_POOL_H
