#include "fitting/working_memory.h"

#include <gtest/gtest.h>

#include <Eigen/SVD>
#include <cstddef>
#include <new>

#include "tests/support/allocation_failure.h"

namespace {

using velquad::fitting::requireMemoryForDecomposition;
using velquad::test::forEachFailingAllocation;
using velquad::test::peakMemory;

TEST(WorkingMemory, IsAskedForOnceAndGivenBack) {
    EXPECT_EQ(forEachFailingAllocation([] {
                  try {
                      requireMemoryForDecomposition(10, 3);
                      return false;
                  } catch (const std::bad_alloc&) {
                      return true;
                  }
              }),
              1U);
}

template <typename Decomposition>
std::size_t peakOfDecomposition(Eigen::Index rows, Eigen::Index columns) {
    const Eigen::MatrixXd matrix = Eigen::MatrixXd::Random(rows, columns);
    const Eigen::Matrix<double, Eigen::Dynamic, 2> sides =
        Eigen::Matrix<double, Eigen::Dynamic, 2>::Random(rows, 2);
    return peakMemory([&matrix, &sides] {
        const Decomposition decomposition(matrix, Eigen::ComputeThinU | Eigen::ComputeThinV);
        const Eigen::Matrix<double, Eigen::Dynamic, 2> solution = decomposition.solve(sides);
        EXPECT_EQ(solution.rows(), matrix.cols());
    });
}

TEST(WorkingMemory, IsMoreThanADecompositionUses) {
    const Eigen::Index sizes[] = {1, 2, 3, 5, 6, 10, 15, 16, 17, 21, 24, 33, 64, 130};
    for (const Eigen::Index rows : sizes) {
        for (const Eigen::Index columns : sizes) {
            SCOPED_TRACE(testing::Message() << rows << " x " << columns);
            const std::size_t asked = peakMemory([rows, columns] {
                requireMemoryForDecomposition(static_cast<std::size_t>(rows),
                                              static_cast<std::size_t>(columns));
            });
            EXPECT_GE(asked, peakOfDecomposition<Eigen::JacobiSVD<Eigen::MatrixXd>>(rows, columns));
            EXPECT_GE(asked, peakOfDecomposition<Eigen::BDCSVD<Eigen::MatrixXd>>(rows, columns));
        }
    }
}

}  // namespace
