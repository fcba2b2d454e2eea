// Runs a test once for every instruction set that the machine has.
#ifndef VELQUAD_TESTS_SUPPORT_KERNEL_LEVELS_H
#define VELQUAD_TESTS_SUPPORT_KERNEL_LEVELS_H

#include <gtest/gtest.h>

#include <cstddef>

#include "frame/kernels.h"

namespace velquad::test {

/// Calls `check()` with each level in use, and goes back to the level of the machine.
template <class Check>
void forEachKernelLevel(Check check) {
    for (std::size_t level = 0; level < frame::kernelLevelCount(); ++level) {
        SCOPED_TRACE(frame::kernelLevelName(level));
        frame::selectKernelLevel(level);
        check();
    }
    frame::selectKernelLevel(frame::kernelLevelCount() - 1);
}

}  // namespace velquad::test

#endif  // VELQUAD_TESTS_SUPPORT_KERNEL_LEVELS_H
