// The movable-block functions come from a DLL of the system and are called through the import pointers
// __imp_GlobalAlloc and so on. A pointer that the program defines itself is taken instead of the import library's,
// so every call arrives here first. The system's functions are then found by name.
//
// Blocks take part in the counting of allocations as those of malloc do: allocating and resizing are attempts that
// can be made to fail.
#include "tests/support/block_failure.h"

#include <cstdlib>

#include "tests/support/allocation_counters.h"

namespace {

using velquad::test::allocationCounters;
using velquad::test::BlockCall;

// The tests that set these run on one thread.
BlockCall failing = BlockCall::kNone;
DWORD failingThread = 0;
SIZE_T lastSize = 0;
UINT lastFlags = 0;

bool mustFailCall(BlockCall call) {
    if (failing != call || failingThread != GetCurrentThreadId()) return false;
    failing = BlockCall::kNone;
    return true;
}

template <class Function>
Function* ofTheSystem(const char* name) {
    const FARPROC function = GetProcAddress(GetModuleHandleW(L"kernel32.dll"), name);
    if (function == nullptr) std::abort();
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(function));
}

HGLOBAL WINAPI allocate(UINT flags, SIZE_T size) {
    static auto* const original = ofTheSystem<HGLOBAL WINAPI(UINT, SIZE_T)>("GlobalAlloc");
    lastSize = size;
    lastFlags = flags;
    if (mustFailCall(BlockCall::kAlloc) || allocationCounters().mustFail()) return nullptr;
    return allocationCounters().counted(original(flags, size));
}

void* WINAPI lock(HGLOBAL handle) {
    static auto* const original = ofTheSystem<void * WINAPI(HGLOBAL)>("GlobalLock");
    return mustFailCall(BlockCall::kLock) ? nullptr : original(handle);
}

HGLOBAL WINAPI reallocate(HGLOBAL handle, SIZE_T size, UINT flags) {
    static auto* const original = ofTheSystem<HGLOBAL WINAPI(HGLOBAL, SIZE_T, UINT)>("GlobalReAlloc");
    lastSize = size;
    lastFlags = flags;
    if (mustFailCall(BlockCall::kReAlloc) || allocationCounters().mustFail()) return nullptr;
    return original(handle, size, flags);
}

HGLOBAL WINAPI release(HGLOBAL handle) {
    static auto* const original = ofTheSystem<HGLOBAL WINAPI(HGLOBAL)>("GlobalFree");
    const HGLOBAL left = original(handle);
    if (handle != nullptr && left == nullptr) --allocationCounters().liveCount;
    return left;
}

}  // namespace

extern "C" {

// The names are the linker's.
extern HGLOBAL(WINAPI* const __imp_GlobalAlloc)(UINT flags, SIZE_T size);
extern void*(WINAPI* const __imp_GlobalLock)(HGLOBAL handle);
extern HGLOBAL(WINAPI* const __imp_GlobalReAlloc)(HGLOBAL handle, SIZE_T size, UINT flags);
extern HGLOBAL(WINAPI* const __imp_GlobalFree)(HGLOBAL handle);
HGLOBAL(WINAPI* const __imp_GlobalAlloc)(UINT flags, SIZE_T size) = allocate;
void*(WINAPI* const __imp_GlobalLock)(HGLOBAL handle) = lock;
HGLOBAL(WINAPI* const __imp_GlobalReAlloc)(HGLOBAL handle, SIZE_T size, UINT flags) = reallocate;
HGLOBAL(WINAPI* const __imp_GlobalFree)(HGLOBAL handle) = release;

}  // extern "C"

namespace velquad::test {

void failNextBlockCall(BlockCall call) {
    failing = call;
    failingThread = GetCurrentThreadId();
}

SIZE_T lastBlockSize() {
    return lastSize;
}

UINT lastBlockFlags() {
    return lastFlags;
}

}  // namespace velquad::test
