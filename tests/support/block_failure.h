// Makes single calls of the movable-block functions fail, where failing allocations cannot reach: a lock, a
// reallocation that could be done in place, a block of any size. Only for test programs that wrap
// GlobalAlloc, GlobalLock and GlobalReAlloc at link time; not available on Windows.
#ifndef VELQUAD_TESTS_SUPPORT_BLOCK_FAILURE_H
#define VELQUAD_TESTS_SUPPORT_BLOCK_FAILURE_H

#include "velquad/platform.h"

namespace velquad::test {

enum class BlockCall { kNone, kAlloc, kLock, kReAlloc };

/// Lets the next call of this function on the calling thread fail; kNone switches off.
void failNextBlockCall(BlockCall call);

/// The size that the last GlobalAlloc or GlobalReAlloc of the calling thread was asked for.
SIZE_T lastBlockSize();

/// The flags that the last GlobalAlloc or GlobalReAlloc of the calling thread was given.
UINT lastBlockFlags();

}  // namespace velquad::test

#endif  // VELQUAD_TESTS_SUPPORT_BLOCK_FAILURE_H
