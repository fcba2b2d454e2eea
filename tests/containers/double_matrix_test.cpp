#include <gtest/gtest.h>

#include <cstddef>
#include <limits>
#include <memory>
#include <new>
#include <vector>

#include "tests/support/allocation_failure.h"
#include "velquad/containers.h"
#include "velquad/fitting.h"

namespace {

static_assert(sizeof(CDoubleMatrix) == 88);

/// Rows by columns, counted up from 1.
CDoubleMatrix countedMatrix(int rows, int columns) {
    CDoubleMatrix matrix(rows, columns);
    for (int i = 0; i < rows * columns; ++i)
        matrix.GetData()[i] = i + 1;
    return matrix;
}

int invalidArguments(CDoubleMatrix& matrix, int rowOffset, int columnOffset) {
    try {
        matrix.GetMatrixPtr(rowOffset, columnOffset);
    } catch (CInvalidArgException* exception) {
        exception->Delete();
        return 1;
    }
    return 0;
}

TEST(DoubleMatrix, TellsItsSize) {
    const CDoubleMatrix matrix(2, 3);
    EXPECT_EQ(matrix.GetRowSize(), 3);
    EXPECT_EQ(matrix.GetColumnSize(), 2);
    EXPECT_EQ(matrix.GetSize().cx, 3);
    EXPECT_EQ(matrix.GetSize().cy, 2);
    for (int row = 0; row < 2; ++row) {
        for (int column = 0; column < 3; ++column)
            EXPECT_EQ(matrix(row, column), 0.0);
    }
    const CDoubleMatrix sized(CSize(3, 2));
    EXPECT_TRUE(sized.GetSize() == CSize(3, 2));
}

TEST(DoubleMatrix, BeginsEmpty) {
    CDoubleMatrix matrix;
    EXPECT_TRUE(matrix.GetSize() == CSize(0, 0));
    EXPECT_EQ(matrix.GetRowSize(), 0);
    EXPECT_EQ(matrix.GetColumnSize(), 0);
    EXPECT_EQ(matrix.GetData(), nullptr);
    EXPECT_EQ(invalidArguments(matrix, 0, 0), 1);
    EXPECT_EQ(invalidArguments(matrix, 1, 1), 1);
}

TEST(DoubleMatrix, IsEmptyWithoutColumnsOrRows) {
    CDoubleMatrix matrix(5, 0);
    EXPECT_TRUE(matrix.GetSize() == CSize(0, 0));
    EXPECT_EQ(matrix.GetColumnSize(), 0);
    EXPECT_EQ(invalidArguments(matrix, 1, 1), 1);
    matrix.SetSize(0, 5);
    EXPECT_TRUE(matrix.GetSize() == CSize(5, 0));
    EXPECT_EQ(matrix.GetColumnSize(), 0);
    EXPECT_EQ(invalidArguments(matrix, 0, 0), 1);
    matrix.SetSize(-2, -3);
    EXPECT_TRUE(matrix.GetSize() == CSize(0, 0));
    EXPECT_EQ(matrix.GetColumnSize(), 0);
}

TEST(DoubleMatrix, GivesTheRowTableUpWithItsSize) {
    CDoubleMatrix matrix(2, 3);
    const CDoubleMatrix other(2, 3);
    const std::ptrdiff_t withoutTable = velquad::test::liveAllocations();
    const auto tableCount = [&matrix, withoutTable] {
        matrix.GetMatrixPtr(1, 1);
        return velquad::test::liveAllocations() - withoutTable;
    };
    ASSERT_EQ(tableCount(), 1);
    matrix.SetSize(2, 3);
    EXPECT_EQ(velquad::test::liveAllocations(), withoutTable);
    ASSERT_EQ(tableCount(), 1);
    matrix.SetSize(CSize(3, 2));
    EXPECT_EQ(velquad::test::liveAllocations(), withoutTable);
    ASSERT_EQ(tableCount(), 1);
    matrix = other;
    EXPECT_EQ(velquad::test::liveAllocations(), withoutTable);
    // A copy of itself changes nothing, the table included.
    double** const table = matrix.GetMatrixPtr(0, 0);
    const CDoubleMatrix& same = matrix;
    matrix = same;
    EXPECT_EQ(velquad::test::liveAllocations(), withoutTable + 1);
    EXPECT_EQ(table[1], matrix.GetData() + 3);
}

TEST(DoubleMatrix, KeepsElementsRowByRow) {
    CDoubleMatrix matrix;
    matrix.SetSize(2, 3);
    matrix.ElementAt(1, 0) = 5.0;
    EXPECT_EQ(matrix.GetData()[3], 5.0);
    EXPECT_EQ(matrix.GetMatrixPtr(1, 1)[2][1], 5.0);
    matrix(0, 2) = 7.0;
    matrix.SetAt(1, 2, 8.0);
    const CDoubleMatrix& constant = matrix;
    EXPECT_EQ(constant.GetAt(0, 2), 7.0);
    EXPECT_EQ(constant(1, 2), 8.0);
    EXPECT_EQ(constant.GetRow(1)[2], 8.0);
    matrix.GetRow(1)[1] = 9.0;
    EXPECT_EQ(constant.GetData()[4], 9.0);
}

TEST(DoubleMatrix, KeepsTheLinearOrderWhenItIsResized) {
    CDoubleMatrix matrix = countedMatrix(2, 3);
    matrix.SetSize(3, 2);
    EXPECT_EQ(matrix(1, 0), 3.0);
    EXPECT_EQ(matrix(2, 1), 6.0);
    matrix.SetSize(CSize(4, 2));
    EXPECT_EQ(matrix(1, 1), 6.0);
    EXPECT_EQ(matrix(1, 2), 0.0);
    EXPECT_EQ(matrix(1, 3), 0.0);
}

TEST(DoubleMatrix, BuildsTheTableAnewEachTime) {
    CDoubleMatrix matrix = countedMatrix(2, 3);
    double** table = matrix.GetMatrixPtr(0, 0);
    EXPECT_EQ(table[0][0], 1.0);
    EXPECT_EQ(table[1][2], 6.0);
    EXPECT_EQ(table[1], matrix.GetRow(1));
    for (int call = 0; call < 2; ++call) {
        table = matrix.GetMatrixPtr(1, 1);
        EXPECT_EQ(table[1][1], 1.0);
        EXPECT_EQ(table[2][3], 6.0);
    }
    table = matrix.GetMatrixPtr(-3, 10);
    EXPECT_EQ(table[-3][10], 1.0);
    EXPECT_EQ(table[-2][12], 6.0);
    table = matrix.GetMatrixPtr(5, 0);
    EXPECT_EQ(table[6][0], 4.0);
    matrix.SetSize(1, 6);
    table = matrix.GetMatrixPtr(1, 1);
    EXPECT_EQ(table[1][6], 6.0);
}

TEST(DoubleMatrix, TableServesTheSolver) {
    CDoubleMatrix matrix(2, 2);
    matrix(0, 0) = 4.0;
    matrix(0, 1) = 2.0;
    matrix(1, 0) = 1.0;
    matrix(1, 1) = 1.0;
    EXPECT_TRUE(matGaussJordanElimination(matrix.GetMatrixPtr(1, 1), 2, nullptr, 0));
    EXPECT_EQ(matrix(0, 0), 0.5);
    EXPECT_EQ(matrix(1, 1), 2.0);
}

TEST(DoubleMatrix, Copies) {
    const CDoubleMatrix original = countedMatrix(2, 3);
    CDoubleMatrix copy(original);
    EXPECT_TRUE(copy.GetSize() == CSize(3, 2));
    EXPECT_EQ(copy(1, 2), 6.0);
    copy(0, 0) = 99.0;
    EXPECT_EQ(original(0, 0), 1.0);
    CDoubleMatrix assigned(7, 7);
    EXPECT_EQ(&(assigned = original), &assigned);
    EXPECT_TRUE(assigned.GetSize() == CSize(3, 2));
    EXPECT_EQ(assigned.GetMatrixPtr(0, 0)[1][2], 6.0);
    const CDoubleMatrix& self = assigned;
    assigned = self;
    assigned.Copy(assigned);
    EXPECT_EQ(assigned(1, 2), 6.0);
    assigned.Copy(CDoubleMatrix());
    EXPECT_EQ(assigned.GetData(), nullptr);
}

TEST(DoubleMatrix, StaysAsItWasWhenASizeIsRefused) {
    CDoubleMatrix matrix = countedMatrix(2, 3);
    EXPECT_THROW(matrix.SetSize(-1, 4), std::bad_alloc);
    EXPECT_THROW(matrix.SetSize(46341, 46341), std::bad_alloc);
    EXPECT_TRUE(matrix.GetSize() == CSize(3, 2));
    EXPECT_EQ(matrix(1, 2), 6.0);
}

TEST(DoubleMatrix, ReleasesEverythingWhenMemoryIsLacking) {
    const std::size_t count = velquad::test::forEachFailingAllocation([] {
        try {
            CDoubleMatrix matrix = countedMatrix(2, 3);
            CDoubleMatrix copy(matrix);
            return copy.GetMatrixPtr(1, 1)[2][3] != 6.0;
        } catch (const std::bad_alloc&) {
            return true;
        }
    });
    EXPECT_GE(count, 3U);
}

TEST(DoubleMatrix, KnowsItsClassButIsNotRegistered) {
    const CDoubleMatrix matrix;
    const CRuntimeClass* record = matrix.GetRuntimeClass();
    EXPECT_EQ(record, CDoubleMatrix::GetThisClass());
    EXPECT_EQ(record, &CDoubleMatrix::classCDoubleMatrix);
    EXPECT_STREQ(record->m_lpszClassName, "CDoubleMatrix");
    EXPECT_EQ(record->m_wSchema, 65535U);
    EXPECT_EQ(record->m_pfnCreateObject, nullptr);
    EXPECT_EQ(CDoubleMatrix::_GetBaseClass(), CObject::GetThisClass());
    EXPECT_EQ(CRuntimeClass::FromName("CDoubleMatrix"), nullptr);
}

}  // namespace
