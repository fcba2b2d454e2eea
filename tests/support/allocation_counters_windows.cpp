// The compiler's thread_local takes its memory from malloc here, so the counters live in a slot of the system.
// They are a few bytes a thread and stay until the test program ends.
#include "tests/support/allocation_counters.h"

#include <cstdlib>
#include <new>

#include "velquad/platform.h"

namespace velquad::test {

AllocationCounters& allocationCounters() {
    // Threads that come first at the same time: one of them sets the slot, the others give theirs back.
    static volatile LONG slot = -1;
    if (slot == -1) {
        const DWORD fresh = TlsAlloc();
        if (fresh == TLS_OUT_OF_INDEXES) std::abort();
        if (InterlockedCompareExchange(&slot, static_cast<LONG>(fresh), -1) != -1) TlsFree(fresh);
    }
    const auto index = static_cast<DWORD>(slot);
    const DWORD lastError = GetLastError();
    void* counters = TlsGetValue(index);
    if (counters == nullptr) {
        counters = HeapAlloc(GetProcessHeap(), 0, sizeof(AllocationCounters));
        if (counters == nullptr) std::abort();
        new (counters) AllocationCounters;
        TlsSetValue(index, counters);
    }
    SetLastError(lastError);
    return *static_cast<AllocationCounters*>(counters);
}

}  // namespace velquad::test
