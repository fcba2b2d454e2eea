#include "tests/support/block_failure.h"

namespace {

using velquad::test::BlockCall;

thread_local BlockCall failing = BlockCall::kNone;
thread_local SIZE_T lastSize = 0;
thread_local UINT lastFlags = 0;

bool mustFail(BlockCall call) {
    if (failing != call) return false;
    failing = BlockCall::kNone;
    return true;
}

}  // namespace

extern "C" {

// The names are the linker's, see --wrap.
HGLOBAL __real_GlobalAlloc(UINT flags, SIZE_T size);
void* __real_GlobalLock(HGLOBAL handle);
HGLOBAL __real_GlobalReAlloc(HGLOBAL handle, SIZE_T size, UINT flags);
HGLOBAL __wrap_GlobalAlloc(UINT flags, SIZE_T size);
void* __wrap_GlobalLock(HGLOBAL handle);
HGLOBAL __wrap_GlobalReAlloc(HGLOBAL handle, SIZE_T size, UINT flags);

HGLOBAL __wrap_GlobalAlloc(UINT flags, SIZE_T size) {
    lastSize = size;
    lastFlags = flags;
    return mustFail(BlockCall::kAlloc) ? nullptr : __real_GlobalAlloc(flags, size);
}

void* __wrap_GlobalLock(HGLOBAL handle) {
    return mustFail(BlockCall::kLock) ? nullptr : __real_GlobalLock(handle);
}

HGLOBAL __wrap_GlobalReAlloc(HGLOBAL handle, SIZE_T size, UINT flags) {
    lastSize = size;
    lastFlags = flags;
    return mustFail(BlockCall::kReAlloc) ? nullptr : __real_GlobalReAlloc(handle, size, flags);
}

}  // extern "C"

namespace velquad::test {

void failNextBlockCall(BlockCall call) {
    failing = call;
}

SIZE_T lastBlockSize() {
    return lastSize;
}

UINT lastBlockFlags() {
    return lastFlags;
}

}  // namespace velquad::test
