#include "tests/support/allocation_counters.h"

namespace velquad::test {

AllocationCounters& allocationCounters() {
    thread_local AllocationCounters counters;
    return counters;
}

}  // namespace velquad::test
