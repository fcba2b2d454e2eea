// A module made of the library's object code and of this file, which lets a host watch how it starts and stops.
#include "tests/module/probe.h"
#include "platform/module.h"

namespace {

using velquad::platform::moduleRecord;
using velquad::platform::moduleTrace;

CRuntimeClass early = {"ProbeClass", 8, 0, nullptr, &CObject::GetThisClass, nullptr};

ProbeReport report() {
    ProbeReport result{};
    for (std::size_t i = 0; i < moduleTrace().count && i < ProbeReport::kCapacity; ++i)
        result.events[result.eventCount++] = static_cast<int>(moduleTrace().events[i]);
    result.isInitialised = moduleRecord().isInitialised;
    result.instance = moduleRecord().instance;
    result.libraryCount = velquad::platform::libraryCount();
    result.isClassKnown = CRuntimeClass::FromName("ProbeClass") == &early;
    return result;
}

// Outlives the attached module, and tells the host what is left at the end.
ProbeReport* farewell = nullptr;
struct TellAtEnd {
    TellAtEnd() {}
    ~TellAtEnd() {
        if (farewell != nullptr) *farewell = report();
    }
};
__attribute__((init_priority(VELQUAD_HOOK_PRIORITY + 1))) const TellAtEnd tellAtEnd;

struct RegisterEarly {
    RegisterEarly() { AfxClassInit(&early); }
};
VELQUAD_STATIC_OBJECT const RegisterEarly registerEarly;

}  // namespace

extern "C" {

VELQUAD_API void probeReport(ProbeReport* result);
VELQUAD_API void probeTellAtEnd(ProbeReport* result);

void probeReport(ProbeReport* result) {
    *result = report();
}

void probeTellAtEnd(ProbeReport* result) {
    farewell = result;
}

}  // extern "C"
