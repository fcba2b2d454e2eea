// What the tests may ask about movable memory beyond its public functions.
#ifndef VELQUAD_PLATFORM_GLOBAL_MEMORY_H
#define VELQUAD_PLATFORM_GLOBAL_MEMORY_H

#include <cstddef>
#include <cstdint>

#include "velquad/platform.h"

namespace velquad::platform {

/// Blocks that exist before the table of blocks has to grow for the first time. They take no allocation of
/// their own.
inline constexpr std::uint32_t kFirstTableSize = 4096;

/// @return how many blocks of the process are allocated at this moment.
std::size_t liveBlockCount();

/// @return how many blocks the table holds without growing.
std::size_t blockTableCapacity();

/// Moves the next handle of a live movable block's place close to the end of its generations, so that a test
/// reaches the point where the place is given up. The block is freed.
void freeAtLastGeneration(HGLOBAL handle);

}  // namespace velquad::platform

#endif  // VELQUAD_PLATFORM_GLOBAL_MEMORY_H
