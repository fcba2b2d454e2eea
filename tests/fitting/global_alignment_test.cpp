#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <limits>
#include <new>
#include <random>
#include <utility>
#include <vector>

#include "tests/support/alignment_reference.h"
#include "tests/support/allocation_failure.h"
#include "tests/support/first_allocations.h"
#include "velquad/fitting.h"

namespace {

using svd::CSVDGlobAln;
using velquad::test::AlignmentStatement;
using velquad::test::failAllocation;
using velquad::test::failFirstAllocations;
using velquad::test::FullAlignment;
using velquad::test::hasAllocationFailed;
using velquad::test::liveAllocations;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

static_assert(sizeof(CSVDGlobAln) == sizeof(void*));

void expectPosition(const CSVDGlobAln& alignment, int index, int id, double x, double y,
                    double tolerance = 1e-9) {
    int actualId = -77;
    double actualX = kNan;
    double actualY = kNan;
    ASSERT_TRUE(alignment.GetPos(index, actualId, actualX, actualY));
    EXPECT_EQ(actualId, id);
    EXPECT_NEAR(actualX, x, tolerance) << "id " << id;
    EXPECT_NEAR(actualY, y, tolerance) << "id " << id;
}

TEST(GlobalAlignment, CentresAFreePair) {
    CSVDGlobAln alignment;
    EXPECT_TRUE(alignment.Allocate(1, 2));
    EXPECT_TRUE(alignment.PutPair(1, 2, 10.0, 5.0, 1.0));
    EXPECT_EQ(alignment.GlobalAlign(), 0.0);
    EXPECT_EQ(alignment.GetColumns(), 2);
    expectPosition(alignment, 0, 1, -5.0, -2.5, 0.0);
    expectPosition(alignment, 1, 2, 5.0, 2.5, 0.0);
}

TEST(GlobalAlignment, PlacesAPairAtAKnownPlace) {
    CSVDGlobAln alignment;
    alignment.Allocate(1, 2);
    EXPECT_TRUE(alignment.PutPair(1, 2, 10.0, 5.0, 1.0));
    EXPECT_TRUE(alignment.PutExpected(1, 100.0, 100.0));
    EXPECT_NEAR(alignment.GlobalAlign(), 0.0, 1e-20);
    expectPosition(alignment, 0, 1, 100.0, 100.0);
    expectPosition(alignment, 1, 2, 110.0, 105.0);
}

TEST(GlobalAlignment, AddsTheOffsetToAFixedPlace) {
    CSVDGlobAln alignment;
    alignment.Allocate(0, 1);
    EXPECT_TRUE(alignment.PutFixed(-8, 1.0, 2.0, 30.0, -40.0, 0.25));
    EXPECT_NEAR(alignment.GlobalAlign(), 0.0, 1e-20);
    expectPosition(alignment, 0, -8, 31.0, -38.0);
}

TEST(GlobalAlignment, AddsTheOffsetBeforeItWeighs) {
    // Place and offset times the weight would not be finite.
    CSVDGlobAln alignment;
    alignment.Allocate(0, 1);
    EXPECT_TRUE(alignment.PutFixed(1, 1e308, -1e308, -1e308, 1e308, 10.0));
    EXPECT_EQ(alignment.GlobalAlign(), 0.0);
    expectPosition(alignment, 0, 1, 0.0, 0.0, 0.0);
}

TEST(GlobalAlignment, NumbersItemsInOrderOfFirstUse) {
    CSVDGlobAln alignment;
    alignment.Allocate(3, 4);
    EXPECT_TRUE(alignment.PutPair(30, -20, 1.0, 0.0, 1.0));
    EXPECT_TRUE(alignment.PutExpected(10, 0.0, 0.0));
    EXPECT_TRUE(alignment.PutPair(10, 30, 2.0, 3.0, 1.0));
    EXPECT_TRUE(alignment.PutPair(-2147483647 - 1, 10, 1.0, 1.0, 1.0));
    EXPECT_EQ(alignment.GetColumns(), 4);
    alignment.GlobalAlign();
    expectPosition(alignment, 0, 30, 2.0, 3.0);
    expectPosition(alignment, 1, -20, 3.0, 3.0);
    expectPosition(alignment, 2, 10, 0.0, 0.0);
    expectPosition(alignment, 3, -2147483647 - 1, -1.0, -1.0);
}

TEST(GlobalAlignment, SpreadsTheMisfitOfACycle) {
    // The shifts sum to (3, -6); each pair takes a third.
    CSVDGlobAln alignment;
    alignment.Allocate(3, 3);
    alignment.PutPair(1, 2, 11.0, -2.0, 1.0);
    alignment.PutPair(2, 3, 1.0, 8.0, 1.0);
    alignment.PutPair(3, 1, -9.0, -12.0, 1.0);
    alignment.PutExpected(1, 0.0, 0.0);
    EXPECT_NEAR(alignment.GlobalAlign(), 3.0 * (1.0 + 4.0), 1e-9);
    expectPosition(alignment, 0, 1, 0.0, 0.0);
    expectPosition(alignment, 1, 2, 10.0, 0.0);
    expectPosition(alignment, 2, 3, 10.0, 10.0);
}

TEST(GlobalAlignment, WeighsContradictions) {
    // Weights count squared: 0 with 1 and 10 with 3 give 9, at a cost of 1 * 81 + 9 * 1.
    CSVDGlobAln alignment;
    alignment.Allocate(1, 1);
    EXPECT_TRUE(alignment.PutFixed(1, 0.0, 0.0, 0.0, 0.0, 1.0));
    EXPECT_TRUE(alignment.PutFixed(1, 10.0, 20.0, 0.0, 0.0, -3.0));
    EXPECT_NEAR(alignment.GlobalAlign(), 90.0 + 360.0, 1e-9);
    expectPosition(alignment, 0, 1, 9.0, 18.0);
}

TEST(GlobalAlignment, BalancesPairsAndPlacesByTheirWeights) {
    // By the normal equations in rational numbers.
    CSVDGlobAln alignment;
    alignment.Allocate(3, 3);
    EXPECT_TRUE(alignment.PutPair(5, 3, 10.0, 1.0, 1.0));
    EXPECT_TRUE(alignment.PutPair(3, 9, 4.0, 7.0, 2.0));
    EXPECT_TRUE(alignment.PutPair(5, 9, 17.0, 5.0, 0.5));
    EXPECT_TRUE(alignment.PutFixed(5, 90.0, 60.0, 10.0, -10.0, 1.0));
    EXPECT_TRUE(alignment.PutConstraintWeightFactor(3.0));
    EXPECT_TRUE(alignment.PutExpected(9, 110.0, 60.0));
    EXPECT_NEAR(alignment.GlobalAlign(), 12.484615384615385 + 5.2846153846153845, 1e-10);
    expectPosition(alignment, 0, 5, 97.71538461538462, 51.315384615384616, 1e-11);
    expectPosition(alignment, 1, 3, 106.54615384615384, 52.746153846153845, 1e-11);
    expectPosition(alignment, 2, 9, 110.25384615384615, 59.853846153846156, 1e-11);
}

TEST(GlobalAlignment, TakesAWeightNextToNothingForNone) {
    // The singular values are near sqrt(2) and weight / sqrt(2); the smaller one counts from 2^-52 times twice the
    // number of items that room was made for.
    struct Case {
        unsigned int itemRoom;
        double weight;
        double firstX;
    };
    for (const Case& test : {Case{2, 2.2e-15, 100.0}, Case{2, 1.4e-15, -5.0}, Case{20, 1.4e-14, -5.0},
                             Case{20, 2.2e-14, 100.0}}) {
        SCOPED_TRACE(test.weight);
        CSVDGlobAln alignment;
        alignment.Allocate(0, test.itemRoom);
        EXPECT_TRUE(alignment.PutPair(1, 2, 10.0, 0.0, 1.0));
        EXPECT_TRUE(alignment.PutFixed(1, 100.0, 0.0, 0.0, 0.0, test.weight));
        alignment.GlobalAlign();
        // So small a weight leaves few digits.
        expectPosition(alignment, 0, 1, test.firstX, 0.0, 30.0);
    }
}

TEST(GlobalAlignment, IgnoresTheSignOfAWeight) {
    CSVDGlobAln alignment;
    alignment.Allocate(1, 2);
    EXPECT_TRUE(alignment.PutPair(1, 2, 10.0, 5.0, -2.0));
    EXPECT_NEAR(alignment.GlobalAlign(), 0.0, 1e-20);
    expectPosition(alignment, 0, 1, -5.0, -2.5);
    expectPosition(alignment, 1, 2, 5.0, 2.5);
}

TEST(GlobalAlignment, TakesAPairOfOneItemForItsPlace) {
    CSVDGlobAln alignment;
    alignment.Allocate(1, 1);
    EXPECT_TRUE(alignment.PutPair(4, 4, 7.0, 8.0, 2.0));
    EXPECT_EQ(alignment.GetColumns(), 1);
    EXPECT_NEAR(alignment.GlobalAlign(), 0.0, 1e-20);
    expectPosition(alignment, 0, 4, 7.0, 8.0);
}

TEST(GlobalAlignment, CentresEachFreeGroup) {
    CSVDGlobAln alignment;
    alignment.Allocate(4, 7);
    alignment.PutPair(1, 2, 10.0, 0.0, 1.0);
    alignment.PutPair(3, 4, 0.0, 6.0, 5.0);
    alignment.PutPair(4, 5, 0.0, 6.0, 0.5);
    alignment.PutPair(6, 7, 1.0, 1.0, 1.0);
    alignment.PutExpected(7, 50.0, 60.0);
    EXPECT_NEAR(alignment.GlobalAlign(), 0.0, 1e-18);
    expectPosition(alignment, 0, 1, -5.0, 0.0);
    expectPosition(alignment, 1, 2, 5.0, 0.0);
    expectPosition(alignment, 2, 3, 0.0, -6.0);
    expectPosition(alignment, 3, 4, 0.0, 0.0);
    expectPosition(alignment, 4, 5, 0.0, 6.0);
    expectPosition(alignment, 5, 6, 49.0, 59.0);
    expectPosition(alignment, 6, 7, 50.0, 60.0);
}

TEST(GlobalAlignment, GivesWeightZeroNoSay) {
    CSVDGlobAln alignment;
    alignment.Allocate(2, 2);
    EXPECT_TRUE(alignment.PutConstraintWeightFactor(0.0));
    EXPECT_TRUE(alignment.PutPair(1, 2, 10.0, 5.0, 1.0));
    EXPECT_TRUE(alignment.PutExpected(1, 100.0, 100.0));
    EXPECT_TRUE(alignment.PutPair(1, 2, 99.0, 99.0, 0.0));
    EXPECT_TRUE(alignment.PutExpected(2, 100.0, 100.0));
    EXPECT_FALSE(alignment.PutExpected(2, 100.0, 100.0)) << "statements of weight 0 need room";
    EXPECT_NEAR(alignment.GlobalAlign(), 0.0, 1e-20);
    expectPosition(alignment, 0, 1, -5.0, -2.5);
    expectPosition(alignment, 1, 2, 5.0, 2.5);
}

TEST(GlobalAlignment, ReadsTheFactorAtEachExpectedPlace) {
    // 0 with factor 1 (the initial one) and 10 with factor 3.
    CSVDGlobAln alignment;
    alignment.Allocate(1, 1);
    alignment.PutExpected(1, 0.0, 0.0);
    EXPECT_TRUE(alignment.PutConstraintWeightFactor(3.0));
    alignment.PutExpected(1, 10.0, 0.0);
    EXPECT_TRUE(alignment.PutConstraintWeightFactor(1000.0));
    EXPECT_NEAR(alignment.GlobalAlign(), 90.0, 1e-9);
    expectPosition(alignment, 0, 1, 9.0, 0.0);
}

TEST(GlobalAlignment, RefusesNegativeFactors) {
    CSVDGlobAln alignment;
    EXPECT_TRUE(alignment.PutConstraintWeightFactor(3.0));
    EXPECT_FALSE(alignment.PutConstraintWeightFactor(-1e-300));
    EXPECT_FALSE(alignment.PutConstraintWeightFactor(kNan));
    EXPECT_FALSE(alignment.PutConstraintWeightFactor(-std::numeric_limits<double>::infinity()));
    EXPECT_TRUE(alignment.PutConstraintWeightFactor(-0.0));
    EXPECT_TRUE(alignment.PutConstraintWeightFactor(3.0));
    EXPECT_FALSE(alignment.PutConstraintWeightFactor(-5.0));
    alignment.Allocate(1, 1);  // keeps the factor
    alignment.PutFixed(1, 0.0, 0.0, 0.0, 0.0, 1.0);
    alignment.PutExpected(1, 10.0, 0.0);
    EXPECT_NEAR(alignment.GlobalAlign(), 90.0, 1e-9);
}

TEST(GlobalAlignment, RefusesMoreItemsThanDeclared) {
    CSVDGlobAln alignment;
    alignment.Allocate(1, 2);
    EXPECT_TRUE(alignment.PutPair(1, 2, 10.0, 5.0, 1.0));
    EXPECT_FALSE(alignment.PutPair(1, 3, 1.0, 1.0, 1.0));
    EXPECT_FALSE(alignment.PutPair(3, 1, 1.0, 1.0, 1.0));
    EXPECT_FALSE(alignment.PutFixed(3, 0.0, 0.0, 0.0, 0.0, 1.0));
    EXPECT_FALSE(alignment.PutExpected(3, 0.0, 0.0));
    EXPECT_EQ(alignment.GetColumns(), 2);
    EXPECT_TRUE(alignment.PutExpected(2, 0.0, 0.0)) << "refused statements need no room";
    EXPECT_TRUE(alignment.PutExpected(1, -10.0, -5.0));
    EXPECT_FALSE(alignment.PutExpected(1, -10.0, -5.0));
    EXPECT_NEAR(alignment.GlobalAlign(), 0.0, 1e-18);
    expectPosition(alignment, 0, 1, -10.0, -5.0);
}

TEST(GlobalAlignment, SpendsItemsOnARefusedPairButNotOnARefusedPlace) {
    CSVDGlobAln alignment;
    alignment.Allocate(0, 4);  // room for four statements
    for (int i = 0; i < 4; ++i)
        EXPECT_TRUE(alignment.PutExpected(1, 8.0, 4.0));
    EXPECT_FALSE(alignment.PutExpected(2, 0.0, 0.0));
    EXPECT_FALSE(alignment.PutFixed(2, 0.0, 0.0, 0.0, 0.0, 1.0));
    EXPECT_EQ(alignment.GetColumns(), 1);
    EXPECT_FALSE(alignment.PutPair(7, 8, 0.0, 0.0, 1.0));
    EXPECT_EQ(alignment.GetColumns(), 3);
    EXPECT_FALSE(alignment.PutPair(9, 10, 0.0, 0.0, 1.0));  // 9 takes the last place
    EXPECT_EQ(alignment.GetColumns(), 4);
    alignment.GlobalAlign();
    expectPosition(alignment, 0, 1, 8.0, 4.0);
    expectPosition(alignment, 1, 7, 0.0, 0.0);
    expectPosition(alignment, 2, 8, 0.0, 0.0);
    expectPosition(alignment, 3, 9, 0.0, 0.0);
}

TEST(GlobalAlignment, HasNoRoomBeforeAllocate) {
    CSVDGlobAln alignment;
    EXPECT_FALSE(alignment.PutPair(1, 2, 0.0, 0.0, 1.0));
    EXPECT_FALSE(alignment.PutFixed(1, 0.0, 0.0, 0.0, 0.0, 1.0));
    EXPECT_FALSE(alignment.PutExpected(1, 0.0, 0.0));
    EXPECT_EQ(alignment.GetColumns(), 0);
    EXPECT_EQ(alignment.GlobalAlign(), 0.0);
}

TEST(GlobalAlignment, HasNoRoomWithoutItems) {
    CSVDGlobAln alignment;
    EXPECT_TRUE(alignment.Allocate(5, 0));
    EXPECT_FALSE(alignment.PutPair(1, 1, 0.0, 0.0, 1.0));
    EXPECT_FALSE(alignment.PutExpected(1, 0.0, 0.0));
    EXPECT_EQ(alignment.GlobalAlign(), 0.0);
    EXPECT_TRUE(alignment.Allocate(5, 3));
    EXPECT_EQ(alignment.GlobalAlign(), 0.0);
    EXPECT_EQ(alignment.GetColumns(), 0);
}

TEST(GlobalAlignment, WrapsItsSizesAround) {
    CSVDGlobAln alignment;
    EXPECT_TRUE(alignment.Allocate(4294967295U, 1));  // no statements, one item
    EXPECT_FALSE(alignment.PutExpected(1, 0.0, 0.0));
    EXPECT_EQ(alignment.GetColumns(), 0);
    EXPECT_FALSE(alignment.PutPair(1, 1, 0.0, 0.0, 1.0));
    EXPECT_EQ(alignment.GetColumns(), 1);
    EXPECT_TRUE(alignment.Allocate(0, 2147483648U));  // both wrap to nothing
    EXPECT_FALSE(alignment.PutPair(1, 1, 0.0, 0.0, 1.0));
    EXPECT_EQ(alignment.GetColumns(), 0);
}

TEST(GlobalAlignment, RefusesSizesBeyondAllMemory) {
    CSVDGlobAln alignment;
    alignment.Allocate(1, 2);
    alignment.PutPair(1, 2, 10.0, 5.0, 1.0);
    EXPECT_THROW(alignment.Allocate(0, 2147483647U), std::bad_alloc);
    EXPECT_THROW(alignment.Allocate(2000000000U, 1000000000U - 7U), std::bad_alloc);
    EXPECT_EQ(alignment.GetColumns(), 2);
    EXPECT_NEAR(alignment.GlobalAlign(), 0.0, 1e-20);
    expectPosition(alignment, 1, 2, 5.0, 2.5);
}

TEST(GlobalAlignment, KnowsItsIndices) {
    CSVDGlobAln alignment;
    alignment.Allocate(1, 2);
    alignment.PutPair(1, 2, 10.0, 5.0, 1.0);
    alignment.GlobalAlign();
    int id = 99;
    double x = 98.0;
    double y = 97.0;
    EXPECT_FALSE(alignment.GetPos(alignment.GetColumns(), id, x, y));
    EXPECT_FALSE(alignment.GetPos(-1, id, x, y));
    EXPECT_FALSE(alignment.GetPos(std::numeric_limits<int>::max(), id, x, y));
    EXPECT_EQ(id, 99);
    EXPECT_EQ(x, 98.0);
    EXPECT_EQ(y, 97.0);
}

TEST(GlobalAlignment, SolvesAgainWithFurtherStatements) {
    CSVDGlobAln alignment;
    alignment.Allocate(2, 3);
    alignment.PutPair(1, 2, 10.0, 5.0, 1.0);
    alignment.GlobalAlign();
    expectPosition(alignment, 0, 1, -5.0, -2.5);
    alignment.PutPair(2, 3, 2.0, 2.0, 1.0);
    expectPosition(alignment, 2, 3, 0.0, 0.0, 0.0);  // not solved for yet
    alignment.PutExpected(3, 0.0, 0.0);
    alignment.GlobalAlign();
    expectPosition(alignment, 0, 1, -12.0, -7.0);
    expectPosition(alignment, 1, 2, -2.0, -2.0);
}

TEST(GlobalAlignment, KeepsTheLastSolutionOverAllocate) {
    CSVDGlobAln alignment;
    alignment.Allocate(1, 2);
    alignment.PutPair(1, 2, 10.0, 5.0, 1.0);
    alignment.GlobalAlign();
    alignment.Allocate(1, 3);
    EXPECT_EQ(alignment.GetColumns(), 0);
    alignment.PutPair(8, 9, 0.0, 0.0, 1.0);
    alignment.PutExpected(7, 0.0, 0.0);
    expectPosition(alignment, 0, 8, -5.0, -2.5);
    expectPosition(alignment, 2, 7, 0.0, 0.0, 0.0);  // beyond what was solved
}

TEST(GlobalAlignment, GivesNotANumberForWeightsThatAreNotFinite) {
    for (const double bad : {kNan, std::numeric_limits<double>::infinity()}) {
        CSVDGlobAln alignment;
        alignment.Allocate(1, 2);
        EXPECT_TRUE(alignment.PutPair(1, 2, 10.0, 5.0, bad));
        EXPECT_TRUE(std::isnan(alignment.GlobalAlign()));
        int id = 0;
        double x = 0.0;
        double y = 0.0;
        EXPECT_TRUE(alignment.GetPos(1, id, x, y));
        EXPECT_EQ(id, 2);
        EXPECT_TRUE(std::isnan(x));
        EXPECT_TRUE(std::isnan(y));
    }
}

TEST(GlobalAlignment, GivesNotANumberForShiftsThatAreNotFinite) {
    for (const double bad : {kNan, std::numeric_limits<double>::infinity()}) {
        CSVDGlobAln alignment;
        alignment.Allocate(2, 2);
        EXPECT_TRUE(alignment.PutPair(1, 2, 10.0, 5.0, 1.0));
        EXPECT_TRUE(alignment.PutFixed(1, 0.0, bad, 0.0, 0.0, 1.0));
        EXPECT_TRUE(std::isnan(alignment.GlobalAlign()));
        int id = 0;
        double x = 0.0;
        double y = 0.0;
        EXPECT_TRUE(alignment.GetPos(0, id, x, y));
        EXPECT_TRUE(std::isnan(x));
        EXPECT_TRUE(std::isnan(y));
    }
}

void put(CSVDGlobAln& alignment, const std::vector<AlignmentStatement>& statements) {
    for (const AlignmentStatement& s : statements) {
        if (s.first == s.second) {
            ASSERT_TRUE(alignment.PutFixed(s.first, s.x, s.y, 0.0, 0.0, s.weight));
        } else {
            ASSERT_TRUE(alignment.PutPair(s.first, s.second, s.x, s.y, s.weight));
        }
    }
}

/// Room for pairs with which a problem is solved axis by axis.
unsigned int roomToSolveByAxes(unsigned int items) {
    return 0x8000 / items + 1;
}

/// Solves a problem with the library, both ways, and with the full system, and compares. Where divide and conquer is
/// right, the numbers are its own.
void compareWithFullSystem(const std::vector<AlignmentStatement>& statements, unsigned int pairRoom,
                           unsigned int itemRoom) {
    FullAlignment full(pairRoom, itemRoom);
    for (const AlignmentStatement& s : statements)
        full.put(s);
    const Eigen::VectorXd expected = full.solve<Eigen::JacobiSVD<Eigen::MatrixXd>>();
    const Eigen::VectorXd divided = full.solve<Eigen::BDCSVD<Eigen::MatrixXd>>();
    const bool isDividedRight = (divided - expected).norm() <= 1e-12 * expected.norm();
    const double residual = full.residual(expected);
    for (const unsigned int room : {pairRoom, roomToSolveByAxes(itemRoom)}) {
        SCOPED_TRACE(room);
        CSVDGlobAln alignment;
        alignment.Allocate(room, itemRoom);
        put(alignment, statements);
        const double squares = alignment.GlobalAlign();
        EXPECT_NEAR(squares, residual, 1e-9 * (1.0 + residual));
        ASSERT_EQ(static_cast<std::size_t>(alignment.GetColumns()), full.ids().size());
        const bool isExact = room == pairRoom && isDividedRight;
        if (isExact) {
            EXPECT_EQ(squares, full.residual(divided));
        }
        const Eigen::VectorXd& positions = isExact ? divided : expected;
        for (int i = 0; i < alignment.GetColumns(); ++i) {
            expectPosition(alignment, i, full.ids()[static_cast<std::size_t>(i)], positions(2 * i),
                           positions(2 * i + 1), isExact ? 0.0 : 1e-9 * expected.norm());
        }
    }
}

TEST(GlobalAlignment, AgreesWithTheFullSystem) {
    for (unsigned int seed = 1; seed <= 300; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        const auto below = [&random](unsigned int bound) {
            return static_cast<unsigned int>(random() % bound);
        };
        std::uniform_real_distribution<double> shift(-100.0, 100.0);
        std::uniform_real_distribution<double> weight(-3.0, 3.0);
        const unsigned int items = 1 + below(24);
        const unsigned int count = below(2 * items + 1);
        const bool isWeighted = below(2) == 0;
        const unsigned int fixedPercent = 10 * below(4);  // 0: free groups only
        std::vector<AlignmentStatement> statements;
        for (unsigned int i = 0; i < count; ++i) {
            const int first = static_cast<int>(below(items));
            const bool isFixed = below(100) < fixedPercent;
            const int second = isFixed ? first : static_cast<int>(below(items));
            if (first == second && !isFixed) continue;
            statements.push_back(
                {first, second, shift(random), shift(random), isWeighted ? weight(random) : 1.0});
        }
        compareWithFullSystem(statements, 2 * items, items);
        if (HasFailure()) return;
    }
}

TEST(GlobalAlignment, AgreesWithTheFullSystemOnMosaics) {
    for (const bool isFree : {false, true}) {
        SCOPED_TRACE(isFree);
        std::mt19937 random(5);
        std::normal_distribution<double> noise(0.0, 1.5);
        std::vector<AlignmentStatement> statements;
        for (int row = 0; row < 5; ++row) {
            for (int column = 0; column < 6; ++column) {
                const int tile = 6 * row + column;
                if (column < 5)
                    statements.push_back({tile, tile + 1, 400.0 + noise(random), noise(random), 1.0});
                if (row < 4)
                    statements.push_back({tile, tile + 6, noise(random), 300.0 + noise(random), 2.0});
            }
        }
        if (!isFree) statements.push_back({0, 0, 1000.0, 2000.0, 1.0});
        compareWithFullSystem(statements, 60, 30);
    }
}

struct SparseCase {
    std::vector<std::pair<int, int>> pairs;  // statement i has the shift i + 1; equal ids are a place
    double residual;
};

TEST(GlobalAlignment, SolvesSystemsThatDivideAndConquerMisses) {
    // Eigen 3.4's divide and conquer leaves 13.07, 109.9 and 31970 for these.
    const std::vector<SparseCase> cases = {{{{0, 0},
                                             {1, 2},
                                             {3, 4},
                                             {2, 0},
                                             {5, 6},
                                             {0, 0},
                                             {7, 8},
                                             {9, 3},
                                             {10, 11},
                                             {7, 12},
                                             {0, 9},
                                             {5, 5},
                                             {13, 14},
                                             {13, 14},
                                             {15, 7},
                                             {8, 8},
                                             {14, 14}},
                                            13.0},
                                           {{{0, 1},
                                             {2, 3},
                                             {4, 5},
                                             {6, 7},
                                             {8, 9},
                                             {1, 8},
                                             {10, 11},
                                             {9, 0},
                                             {8, 12},
                                             {12, 3},
                                             {13, 2},
                                             {14, 15},
                                             {16, 11},
                                             {15, 10},
                                             {17, 7},
                                             {14, 14}},
                                            100.0},
                                           {{{0, 1},
                                             {2, 0},
                                             {3, 4},
                                             {0, 5},
                                             {5, 6},
                                             {6, 3},
                                             {3, 1},
                                             {0, 6},
                                             {7, 8},
                                             {9, 9},
                                             {10, 11},
                                             {5, 11},
                                             {12, 11},
                                             {11, 2},
                                             {13, 13},
                                             {8, 13},
                                             {13, 14},
                                             {7, 15}},
                                            357.6}};
    for (const SparseCase& system : cases) {
        SCOPED_TRACE(system.residual);
        CSVDGlobAln alignment;
        alignment.Allocate(18, 18);
        double shift = 0.0;
        for (const auto& [first, second] : system.pairs) {
            shift += 1.0;
            ASSERT_TRUE(first == second ? alignment.PutFixed(first, shift, 0.0, 0.0, 0.0, 1.0)
                                        : alignment.PutPair(first, second, shift, 0.0, 1.0));
        }
        EXPECT_NEAR(alignment.GlobalAlign(), system.residual, 1e-9);
    }
}

TEST(GlobalAlignment, CentresGroupsThatDivideAndConquerLeavesAside) {
    // Axis by axis, Eigen 3.4's divide and conquer adds to this least-squares solution one of the equations without
    // right-hand sides: a norm of 467.8, with item 4 at (-94.5, -258.9).
    const std::vector<AlignmentStatement> statements = {
        {23, 19, 26, 94, 1}, {4, 4, 57, -13, 0},   {16, 16, 50, 41, 0},  {8, 8, -36, -72, 0},
        {3, 16, 15, 91, 1},  {5, 19, -94, -76, 1}, {12, 12, 52, -75, 0}, {11, 2, -23, -63, 1},
        {24, 14, 44, -5, 1}, {16, 19, 88, -71, 1}, {18, 3, -87, 81, 1},  {27, 27, -36, -69, 1},
        {0, 0, 81, 100, 0},  {16, 15, -44, 41, 1}, {7, 0, 36, -13, 1},   {24, 24, 42, 36, 2}};
    for (const unsigned int room : {0U, roomToSolveByAxes(29)}) {
        SCOPED_TRACE(room);
        CSVDGlobAln alignment;
        alignment.Allocate(room, 29);
        put(alignment, statements);
        EXPECT_NEAR(alignment.GlobalAlign(), 0.0, 1e-9);
        double squares = 0.0;
        for (int i = 0; i < alignment.GetColumns(); ++i) {
            int id = 0;
            double x = 0.0;
            double y = 0.0;
            ASSERT_TRUE(alignment.GetPos(i, id, x, y));
            squares += x * x + y * y;
        }
        EXPECT_NEAR(std::sqrt(squares), 313.098, 1e-3);
        expectPosition(alignment, 2, 4, 0.0, 0.0);
        expectPosition(alignment, 4, 8, 0.0, 0.0);
    }
}

TEST(GlobalAlignment, TellsOfEveryLackOfMemory) {
    const auto tellsOfLack = [] {
        CSVDGlobAln alignment;
        try {
            if (!alignment.Allocate(20, 20)) return true;
            for (int id = 0; id < 19; ++id)
                alignment.PutPair(id, id + 1, 1.0, 1.0, 1.0);
            alignment.GlobalAlign();
        } catch (const std::bad_alloc&) {
            return true;
        }
        return false;
    };
    // The last one is the check before the decomposition begins.
    failFirstAllocations(6, tellsOfLack);
}

TEST(GlobalAlignment, KeepsItsStateWhenMemoryIsLacking) {
    CSVDGlobAln alignment;
    alignment.Allocate(1, 2);
    alignment.PutPair(1, 2, 10.0, 5.0, 1.0);
    alignment.GlobalAlign();
    failAllocation(1);
    EXPECT_THROW(alignment.GlobalAlign(), std::bad_alloc);
    failAllocation(2);
    EXPECT_THROW(alignment.Allocate(9, 9), std::bad_alloc);
    failAllocation(0);
    EXPECT_EQ(alignment.GetColumns(), 2);
    expectPosition(alignment, 1, 2, 5.0, 2.5);
    EXPECT_NEAR(alignment.GlobalAlign(), 0.0, 1e-20);
}

TEST(GlobalAlignment, DoesNothingWithoutARecord) {
    failAllocation(1);
    CSVDGlobAln alignment;
    const bool hasFailed = hasAllocationFailed();
    failAllocation(0);
    ASSERT_TRUE(hasFailed);
    EXPECT_FALSE(alignment.Allocate(1, 2));
    EXPECT_FALSE(alignment.PutPair(1, 2, 0.0, 0.0, 1.0));
    EXPECT_FALSE(alignment.PutFixed(1, 0.0, 0.0, 0.0, 0.0, 1.0));
    EXPECT_FALSE(alignment.PutExpected(1, 0.0, 0.0));
    EXPECT_FALSE(alignment.PutConstraintWeightFactor(1.0));
    EXPECT_EQ(alignment.GlobalAlign(), 0.0);
    EXPECT_EQ(alignment.GetColumns(), 0);
    int id = 0;
    double x = 0.0;
    double y = 0.0;
    EXPECT_FALSE(alignment.GetPos(0, id, x, y));
}

TEST(GlobalAlignment, ReleasesItsRecord) {
    const std::ptrdiff_t before = liveAllocations();
    {
        CSVDGlobAln alignment;
        alignment.Allocate(1, 2);
        alignment.PutPair(1, 2, 10.0, 5.0, 1.0);
        alignment.GlobalAlign();
        EXPECT_GT(liveAllocations(), before);
    }
    EXPECT_EQ(liveAllocations(), before);
}

}  // namespace
