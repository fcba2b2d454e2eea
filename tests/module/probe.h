// What the probe module tells its host.
#ifndef VELQUAD_TESTS_MODULE_PROBE_H
#define VELQUAD_TESTS_MODULE_PROBE_H

#include <cstddef>

#include "velquad/platform.h"

struct ProbeReport {
    static constexpr std::size_t kCapacity = 32;
    int events[kCapacity];  ///< Values of `velquad::platform::ModuleEvent`.
    std::size_t eventCount;
    bool isInitialised;
    HINSTANCE instance;
    std::size_t libraryCount;
    bool isClassKnown;  ///< A class that a static object of the probe registers is found by its name.
};

// Exported by the probe as `probeReport`: reports the present state; as `probeTellAtEnd`: names the place that is
// filled when the module's first static object is destroyed, which is the last to be.
using ProbeFunction = void (*)(ProbeReport* report);

#endif  // VELQUAD_TESTS_MODULE_PROBE_H
