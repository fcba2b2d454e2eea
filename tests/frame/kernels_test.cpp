// The levels of kernels.
#include "frame/kernels.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>

namespace {

using velquad::frame::kernelLevel;
using velquad::frame::kernelLevelCount;
using velquad::frame::kernelLevelName;
using velquad::frame::selectKernelLevel;

TEST(KernelLevels, BeginWithTheBaselineAndEndWithTheOneInUse) {
    ASSERT_GE(kernelLevelCount(), 1U);
    EXPECT_EQ(std::string("baseline"), kernelLevelName(0));
    EXPECT_EQ(kernelLevelCount() - 1, kernelLevel());
}

TEST(KernelLevels, CanBeSelectedWhenTheMachineHasThem) {
    const std::size_t best = kernelLevel();
    selectKernelLevel(0);
    EXPECT_EQ(0U, kernelLevel());
    selectKernelLevel(kernelLevelCount());
    EXPECT_EQ(0U, kernelLevel()) << "an unknown level is ignored";
    selectKernelLevel(best);
    EXPECT_EQ(best, kernelLevel());
}

}  // namespace
