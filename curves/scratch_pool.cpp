// A pool of zeroed vectors and matrices.
//
// A matrix is a single allocation: opening one costs the same few calls for ten rows as for a hundred thousand,
// and neighbouring rows are neighbours in memory.
#include "curves/scratch_pool.h"

#include <cstdlib>
#include <limits>

namespace velquad::curves {
namespace {

constexpr std::uint64_t kMostBytes = static_cast<std::uint64_t>(std::numeric_limits<Index>::max());

bool isPool(const ScratchPool* pool) {
    return pool != nullptr && pool->kind == kPoolHead;
}

void* allocateZeroed(std::uint64_t count, std::uint64_t size) {
    if (count > kMostBytes / size) return nullptr;
    // An empty array is a block of one element: null stands for failure only.
    return std::calloc(static_cast<std::size_t>(count == 0 ? 1 : count), static_cast<std::size_t>(size));
}

void* allocateMatrix(std::uint64_t rows, std::uint64_t columns) {
    static_assert(sizeof(double*) % alignof(double) == 0, "the elements follow the row pointers");
    if (columns > (kMostBytes - sizeof(double*)) / sizeof(double)) return nullptr;
    void* block = allocateZeroed(rows, sizeof(double*) + columns * sizeof(double));
    if (block == nullptr) return nullptr;
    auto** row = static_cast<double**>(block);
    auto* element = static_cast<double*>(static_cast<void*>(row + rows));
    for (std::uint64_t i = 0; i < rows; ++i)
        row[i] = element + i * columns;
    return block;
}

void* allocateBlock(int kind, std::uint64_t count, std::uint64_t size2) {
    switch (kind) {
        case kVectorBlock:
            return allocateZeroed(count, sizeof(double));
        case kMatrixBlock:
            return allocateMatrix(count, size2);
        default:
            return nullptr;
    }
}

ScratchPool* makeNode(void* block, int kind, std::uint64_t size1, std::uint64_t size2, ScratchPool* next) {
    auto* node = static_cast<ScratchPool*>(std::malloc(sizeof(ScratchPool)));
    if (node != nullptr) *node = {block, kind, size1, size2, next};
    return node;
}

}  // namespace

ScratchPool* poolOpen() {
    return makeNode(nullptr, kPoolHead, 0, 0, nullptr);
}

void* poolAlloc(ScratchPool* pool, int kind, std::uint64_t count, std::uint64_t size2) {
    if (!isPool(pool)) return nullptr;
    void* block = allocateBlock(kind, count, size2);
    ScratchPool* node = block == nullptr ? nullptr : makeNode(block, kind, count, size2, pool->next);
    if (node == nullptr) {
        std::free(block);
        pool->size1 = 1;
        return nullptr;
    }
    pool->next = node;
    return block;
}

bool poolIsOk(const ScratchPool* pool) {
    return isPool(pool) && pool->size1 == 0;
}

void poolClose(ScratchPool* pool) {
    if (!isPool(pool)) return;
    while (pool != nullptr) {
        ScratchPool* next = pool->next;
        std::free(pool->block);
        std::free(pool);
        pool = next;
    }
}

}  // namespace velquad::curves
