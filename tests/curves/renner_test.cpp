#include "curves/renner.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <string>

#include "curves/vector.h"
#include "tests/support/allocation_failure.h"
#include "tests/support/matrix.h"
#include "tests/support/renner_reference.h"

using namespace velquad::curves;
using velquad::test::Matrix;
using velquad::test::ReferenceRenner;
using velquad::test::Rows;

namespace {

/// A run of the routine on rows that are as long as promised and no longer.
struct Renner {
    std::size_t capacity;
    Matrix P, b, c, d;
    std::vector<double> len;
    SplineSegmentSet set;
    int code;

    Renner(const Rows& points, double cornerFactor, std::size_t spare)
        : capacity(points.size() - 1 + spare),
          P(points, spare),
          b(capacity + 1, points[0].size()),
          c(capacity + 1, points[0].size()),
          d(capacity + 1, points[0].size()),
          len(capacity + 1),
          set{static_cast<Index>(points.size()) - 1,
              static_cast<Index>(points[0].size()),
              P.rows(),
              b.rows(),
              c.rows(),
              d.rows(),
              len.data()},
          code(rennerCoefficients(set, static_cast<Index>(capacity), cornerFactor)) {}

    explicit Renner(const Rows& points, double cornerFactor = 0.0)
        : Renner(points, cornerFactor, points.size() / 2) {}

    std::size_t m() const { return static_cast<std::size_t>(set.m); }
    Rows points() const { return P.copy(m() + 1); }

    double value(std::size_t i, double u, std::size_t j) {
        return ((d[i][j] * u + c[i][j]) * u + b[i][j]) * u + P[i][j];
    }
    double slope(std::size_t i, double u, std::size_t j) {
        return (3.0 * d[i][j] * u + 2.0 * c[i][j]) * u + b[i][j];
    }
};

const Rows kSquareSeamOnSide{{2, 0}, {4, 0}, {6, 0}, {6, 2}, {6, 4}, {6, 6}, {4, 6},
                             {2, 6}, {0, 6}, {0, 4}, {0, 2}, {0, 0}, {2, 0}};
const Rows kSquareSeamOnCorner{{0, 0}, {2, 0}, {4, 0}, {6, 0}, {6, 2}, {6, 4}, {6, 6},
                               {4, 6}, {2, 6}, {0, 6}, {0, 4}, {0, 2}, {0, 0}};
const Rows kSquareRounded{{2, 0}, {4, 0}, {5, 0}, {6, 1}, {6, 2}, {6, 4}, {6, 5}, {5, 6}, {4, 6},
                          {2, 6}, {1, 6}, {0, 5}, {0, 4}, {0, 2}, {0, 1}, {1, 0}, {2, 0}};

TEST(RennerCoefficients, FourPointsAreTooFew) {
    EXPECT_EQ(Renner({{0, 0}, {1, 0}, {2, 1}, {3, 1}}).code, 1);
    EXPECT_EQ(Renner({{0, 0}, {1, 0}, {2, 1}, {3, 1}, {4, 4}}).code, 0);
    EXPECT_EQ(Renner({{0, 0, 0, 0}}).code, 1) << "the number of points is looked at first";
}

TEST(RennerCoefficients, RefusesDimensionsOtherThanTwoAndThree) {
    EXPECT_EQ(Renner({{0}, {1}, {2}, {3}, {4}}).code, 5);
    EXPECT_EQ(Renner({{0, 0, 0, 0}, {1, 0, 0, 0}, {2, 0, 0, 0}, {3, 0, 0, 0}, {4, 0, 0, 0}}).code, 5);
    EXPECT_EQ(Renner({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}, {4, 0, 0}}).code, 0);
}

TEST(RennerCoefficients, RefusesEqualNeighbours) {
    EXPECT_EQ(Renner({{0, 0}, {1, 0}, {1, 0}, {3, 1}, {4, 4}}).code, 2);
    const double epsilon = 2.220446049250313e-16;
    EXPECT_EQ(Renner({{-1, 0}, {0, 0}, {0, epsilon}, {3, 1}, {4, 4}}).code, 0);
    EXPECT_EQ(Renner({{-1, 0}, {0, 0}, {0, std::nextafter(epsilon, 0.0)}, {3, 1}, {4, 4}}).code, 2);
}

TEST(RennerCoefficients, AStraightRunKeepsItsChords) {
    Renner r({{0, 0}, {3, 4}, {9, 12}, {12, 16}, {30, 40}});
    ASSERT_EQ(r.code, 0);
    const double lengths[] = {5, 10, 5, 30};
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_DOUBLE_EQ(r.len[i], lengths[i]);
        EXPECT_DOUBLE_EQ(r.b[i][0], 0.6);
        EXPECT_DOUBLE_EQ(r.b[i][1], 0.8);
        for (std::size_t j = 0; j < 2; ++j) {
            EXPECT_NEAR(r.c[i][j], 0.0, 1e-15);
            EXPECT_NEAR(r.d[i][j], 0.0, 1e-16);
        }
    }
}

TEST(RennerCoefficients, AnAxisParallelRunIsExact) {
    Renner r({{0, 7}, {10, 7}, {13, 7}, {20, 7}, {21, 7}});
    ASSERT_EQ(r.code, 0);
    const double lengths[] = {10, 3, 7, 1};
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(r.len[i], lengths[i]);
        EXPECT_EQ(r.b[i][0], 1.0);
        EXPECT_EQ(r.b[i][1], 0.0);
        for (std::size_t j = 0; j < 2; ++j) {
            EXPECT_EQ(r.c[i][j], 0.0);
            EXPECT_EQ(r.d[i][j], 0.0);
        }
    }
}

// Computed with Python from the definition of the curve.
TEST(RennerCoefficients, OpenPlaneCurve) {
    Renner r({{0, 0}, {4, 0}, {8, 3}, {8, 8}, {3, 10}, {0, 5}});
    ASSERT_EQ(r.code, 0);
    const double expected[5][7] = {
        {4.102115526039424, 0.9006751956889881, -0.43449302856386884, 0.041915178220266455,
         0.13724061966098963, -0.005794701483243008, -0.007635417014038926},
        {5.100088322590734, 0.9520285612852643, 0.3060091804131207, -0.01791515247985557, 0.06100445419190191,
         -0.002935675268049168, -0.0011115408048474342},
        {5.268296038926739, 0.5402121659655739, 0.8415288561557371, -0.10599962372989691, 0.05907208193210991,
         0.0006566481421847354, -0.007337957811145431},
        {6.083205946308234, -0.5219869341072071, 0.8529534809245802, -0.10240605017752291,
         -0.019411912618776568, 0.008728700539302732, -0.010973881383510338},
        {5.995110242244638, -0.7988740978440674, -0.6014982758028717, 0.03454271653487371,
         -0.05090370961720717, 0.002542444846421946, 0.0020215883059568453}};
    for (std::size_t i = 0; i < 5; ++i) {
        EXPECT_EQ(r.len[i], expected[i][0]);
        for (std::size_t j = 0; j < 2; ++j) {
            EXPECT_EQ(r.b[i][j], expected[i][1 + j]);
            EXPECT_EQ(r.c[i][j], expected[i][3 + j]);
            EXPECT_EQ(r.d[i][j], expected[i][5 + j]);
        }
    }
}

TEST(RennerCoefficients, ClosedSpaceCurve) {
    Renner r({{0, 0, 0}, {2, 0, 1}, {3, 2, 1}, {3, 4, 3}, {1, 5, 4}, {0, 0, 0}});
    ASSERT_EQ(r.code, 0);
    EXPECT_EQ(r.len[0], 2.87921973739068);
    EXPECT_EQ(r.b[0][0], 0.161926362376271);
    EXPECT_EQ(r.b[0][1], -0.8446285704622732);
    EXPECT_EQ(r.b[0][2], -0.5102768181354558);
    EXPECT_EQ(r.c[2][2], 0.1717837248053364);
    EXPECT_EQ(r.d[3][0], 0.038315010245093366);
    EXPECT_EQ(r.len[4], 6.6538673930593735);
    EXPECT_EQ(r.d[4][2], 0.004429933555215171);
    for (std::size_t j = 0; j < 3; ++j) {
        EXPECT_NEAR(r.slope(4, r.len[4], j), r.b[0][j], 1e-14) << "smooth across the start";
    }
}

TEST(RennerCoefficients, CornersOfAClosedSquareAreRounded) {
    Renner r(kSquareSeamOnSide, 0.5);
    ASSERT_EQ(r.code, 0);
    EXPECT_EQ(r.m(), 16u);
    EXPECT_EQ(r.points(), kSquareRounded);
    for (std::size_t i = 0; i < 16; i += 4) {
        EXPECT_EQ(r.len[i], 2.0);
        EXPECT_EQ(r.len[i + 1], 1.0);
        EXPECT_EQ(r.len[i + 2], 1.5672232497824485);
        EXPECT_EQ(r.len[i + 3], 1.0);
    }
}

TEST(RennerCoefficients, ASeamOnACornerMovesOnByOnePoint) {
    Renner r(kSquareSeamOnCorner, 0.5);
    ASSERT_EQ(r.code, 0);
    EXPECT_EQ(r.m(), 16u);
    EXPECT_EQ(r.points(), kSquareRounded);
}

TEST(RennerCoefficients, ASeamOnACornerStaysWhenNothingIsRounded) {
    Renner r(kSquareSeamOnCorner, 0.0);
    ASSERT_EQ(r.code, 0);
    EXPECT_EQ(r.points(), kSquareSeamOnCorner);
}

TEST(RennerCoefficients, KeptCornersHaveTwoTangents) {
    for (const double factor : {0.0, 1.0, -0.5, 2.0}) {
        SCOPED_TRACE(factor);
        Renner r(kSquareSeamOnSide, factor);
        ASSERT_EQ(r.code, 0);
        EXPECT_EQ(r.points(), kSquareSeamOnSide);
        for (std::size_t i = 0; i < 12; ++i) {
            EXPECT_EQ(r.len[i], 2.0);
            for (std::size_t j = 0; j < 2; ++j) {
                EXPECT_EQ(r.b[i][j], (kSquareSeamOnSide[i + 1][j] - kSquareSeamOnSide[i][j]) / 2.0);
                EXPECT_EQ(r.c[i][j], 0.0);
                EXPECT_EQ(r.d[i][j], 0.0);
            }
        }
    }
}

TEST(RennerCoefficients, AnOpenCurveRoundsItsInnerCorners) {
    Renner r({{0, 0}, {2, 0}, {4, 0}, {6, 0}, {6, 3}, {6, 6}, {6, 9}}, 0.25);
    ASSERT_EQ(r.code, 0);
    EXPECT_EQ(r.points(), (Rows{{0, 0}, {2, 0}, {4, 0}, {5.5, 0}, {6, 0.5}, {6, 3}, {6, 6}, {6, 9}}));
    EXPECT_EQ(r.len[2], 1.5);
    EXPECT_EQ(r.len[3], 0.7836116248912243);
    EXPECT_EQ(r.len[4], 2.5);
    EXPECT_EQ(r.d[3][0], -0.44970872680485036);
}

TEST(RennerCoefficients, AnOpenCurveRoundsNothingNextToItsEnds) {
    // The linear continuation before chord 0 turns away from it, so point 1 is not between straight runs.
    const Rows points{{0, 3}, {0, 0}, {3, 0}, {6, 0}, {9, 0}, {12, 0}};
    Renner r(points, 0.5);
    ASSERT_EQ(r.code, 0);
    EXPECT_EQ(r.points(), points);
}

TEST(RennerCoefficients, FullRowsGiveCodeFour) {
    EXPECT_EQ(Renner(kSquareSeamOnSide, 0.5, 4).code, 0);
    EXPECT_EQ(Renner(kSquareSeamOnSide, 0.5, 3).code, 4);
    EXPECT_EQ(Renner(kSquareSeamOnSide, 0.5, 0).code, 4);
    EXPECT_EQ(Renner(kSquareSeamOnSide, 0.0, 0).code, 0);
}

TEST(RennerCoefficients, AKinkOfEpsilonIsACorner) {
    const auto pointsAfter = [](double turn) {
        return Renner({{0, 0}, {1, 0}, {2, 0}, {3, turn}, {4, 2 * turn}}, 0.5).points().size();
    };
    const double epsilon = 2.220446049250313e-16;
    EXPECT_EQ(pointsAfter(epsilon), 6u);
    EXPECT_EQ(pointsAfter(std::nextafter(epsilon, 0.0)), 5u);
}

TEST(RennerCoefficients, ATurnOfEpsilonBesideACornerEndsTheStraightRun) {
    const auto pointsAfter = [](double turn) {
        return Renner({{-2, 0}, {-1, 0}, {0, 0}, {0, 1}, {turn, 2}, {2 * turn, 3}}, 0.5).points().size();
    };
    const double epsilon = 2.220446049250313e-16;
    EXPECT_EQ(pointsAfter(epsilon), 6u);
    EXPECT_EQ(pointsAfter(std::nextafter(epsilon, 0.0)), 7u);
}

TEST(RennerCoefficients, TurnsOnBothSidesOfACornerAddUp) {
    const auto pointsAfter = [](double turn) {
        return Renner({{-2, turn}, {-1, 0}, {0, 0}, {0, 1}, {turn, 2}, {2 * turn, 3}}, 0.5).points().size();
    };
    const double epsilon = 2.220446049250313e-16;
    EXPECT_EQ(pointsAfter(0.5 * epsilon), 6u);
    EXPECT_EQ(pointsAfter(std::nextafter(0.5 * epsilon, 0.0)), 7u);
}

TEST(RennerCoefficients, AGapOfEpsilonBetweenTheEndsMakesTheCurveOpen) {
    const auto pointsAfter = [](double gap) {
        Rows points = kSquareSeamOnCorner;
        points.back()[0] = gap;
        return Renner(points, 0.5).points().size();
    };
    const double epsilon = 2.220446049250313e-16;
    EXPECT_EQ(pointsAfter(epsilon), 16u) << "three inner corners";
    EXPECT_EQ(pointsAfter(std::nextafter(epsilon, 0.0)), 17u) << "the seam is one as well";
}

Rows randomPoints(std::mt19937& random, std::size_t dimension, bool isClosed) {
    std::uniform_real_distribution<double> real(-50.0, 50.0);
    Rows points;
    const std::size_t n = 5 + random() % 40;
    for (std::size_t i = 0; i < n; ++i) {
        std::vector<double> point;
        for (std::size_t j = 0; j < dimension; ++j)
            point.push_back(real(random));
        points.push_back(point);
    }
    if (isClosed) points.push_back(points.front());
    return points;
}

TEST(RennerCoefficients, IsContinuousWithUnitSpeedAtEndsAndMiddle) {
    for (unsigned seed = 1; seed <= 60; ++seed) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        std::mt19937 random(seed);
        const std::size_t dimension = 2 + seed % 2;
        Renner r(randomPoints(random, dimension, seed % 3 == 0));
        ASSERT_EQ(r.code, 0);
        for (std::size_t i = 0; i < r.m(); ++i) {
            double speeds[3] = {};
            for (std::size_t j = 0; j < dimension; ++j) {
                EXPECT_NEAR(r.value(i, r.len[i], j), r.P[i + 1][j], 1e-11);
                if (i + 1 < r.m()) {
                    EXPECT_NEAR(r.slope(i, r.len[i], j), r.b[i + 1][j], 1e-12);
                }
                for (int k = 0; k < 3; ++k)
                    speeds[k] += std::pow(r.slope(i, r.len[i] * k / 2.0, j), 2);
            }
            for (const double speed : speeds)
                EXPECT_NEAR(speed, 1.0, 1e-11);
        }
    }
}

/// Steps of 1 or 2 along the axes, each repeated a few times: straight runs with kinks between them.
Rows randomStairs(std::mt19937& random, std::size_t dimension, bool isClosed) {
    Rows points{std::vector<double>(dimension, 0.0)};
    const auto run = [&](std::size_t axis, double step, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) {
            points.push_back(points.back());
            points.back()[axis] += step;
        }
    };
    const std::size_t runs = 2 + random() % 8;
    for (std::size_t k = 0; k < runs; ++k) {
        run(k % dimension, static_cast<double>(1 + random() % 2), 1 + random() % 5);
    }
    if (isClosed) {
        for (std::size_t axis = 0; axis < dimension; ++axis) {
            const double back = points.back()[axis];
            if (back > 0.0) run(axis, -back / 4.0, 4);
        }
        // Any point may carry the seam.
        points.pop_back();
        std::rotate(points.begin(), points.begin() + static_cast<long>(random() % points.size()),
                    points.end());
        points.push_back(points.front());
    } else {
        run(0, 1.0, 4);
    }
    return points;
}

void expectSameAsReference(const Rows& points, double cornerFactor, std::size_t spare) {
    Renner r(points, cornerFactor, spare);
    const ReferenceRenner expected(points, points.size() - 1 + spare, cornerFactor);
    ASSERT_EQ(r.code, expected.code);
    if (r.code != 0) return;
    EXPECT_EQ(r.points(), expected.P);
    const std::size_t m = r.m();
    EXPECT_EQ(std::vector<double>(r.len.begin(), r.len.begin() + static_cast<long>(m)), expected.len);
    EXPECT_EQ(r.b.copy(m), expected.b);
    EXPECT_EQ(r.c.copy(m), expected.c);
    EXPECT_EQ(r.d.copy(m), expected.d);
}

TEST(RennerCoefficients, AgreesBitForBitWithTheLiteralVersion) {
    std::size_t rounded = 0;
    for (unsigned seed = 1; seed <= 600; ++seed) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        std::mt19937 random(seed);
        const std::size_t dimension = 2 + seed % 2;
        const bool isClosed = random() % 2 == 0;
        const Rows points = random() % 4 == 0 ? randomPoints(random, dimension, isClosed)
                                              : randomStairs(random, dimension, isClosed);
        const double factors[] = {0.0, 0.25, 0.5, 0.75, 0.3, 1.0};
        const double factor = factors[random() % 6];
        expectSameAsReference(points, factor, points.size() / 2);
        expectSameAsReference(points, factor, random() % 4);
        Renner r(points, factor);
        if (r.code == 0 && r.m() + 1 > points.size()) ++rounded;
    }
    EXPECT_GT(rounded, 100u) << "the data must have corners";
}

/// A walk along the axes that now and then turns back on itself, ended by the way back to its start.
Rows randomWalkHome(std::mt19937& random, std::size_t dimension) {
    Rows points{std::vector<double>(dimension, 0.0)};
    const auto go = [&](std::size_t axis, double step) {
        points.push_back(points.back());
        points.back()[axis] += step;
    };
    for (std::size_t legs = 2 + random() % 6; legs > 0; --legs) {
        const std::size_t axis = random() % dimension;
        const double step = random() % 2 == 0 ? 1.0 : -1.0;
        for (std::size_t count = 1 + random() % 3; count > 0; --count)
            go(axis, step);
    }
    for (std::size_t axis = 0; axis < dimension; ++axis) {
        while (points.back()[axis] != 0.0)
            go(axis, points.back()[axis] > 0.0 ? -1.0 : 1.0);
    }
    return points;
}

TEST(RennerCoefficients, AgreesBitForBitWhereCurvesTurnBack) {
    for (unsigned seed = 1; seed <= 3000; ++seed) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        std::mt19937 random(seed);
        const Rows points = randomWalkHome(random, 2 + seed % 2);
        expectSameAsReference(points, random() % 3 == 0 ? 0.0 : 0.25, points.size() / 2);
    }
}

TEST(RennerCoefficients, ReportsEveryFailingAllocation) {
    Matrix P(kSquareSeamOnSide), b(13, 2), c(13, 2), d(13, 2);
    double len[13];
    const std::size_t count = velquad::test::forEachFailingAllocation([&] {
        SplineSegmentSet set{12, 2, P.rows(), b.rows(), c.rows(), d.rows(), len};
        const int code = rennerCoefficients(set, 12, 0.0);
        EXPECT_TRUE(code == 0 || code == 3) << code;
        return code == 3;
    });
    EXPECT_GT(count, 0u);
}

TEST(RennerRoundCorner, PutsBothPointsAtTheSameDistance) {
    // Chord rows start at -2; the corner stands at (4, 0), its chords are 4 and 10 long.
    Matrix P(Rows{{0, 0}, {4, 0}, {4, 10}, {4, 20}}, 1);
    Matrix chords(Rows{{-1, -1}, {-2, -2}, {4, 0}, {0, 10}, {0, 10}, {-3, -3}, {-4, -4}}, 1);
    Index m = 3;
    ASSERT_EQ(rennerRoundCorner(m, 4, 2, 1, P.rows(), chords.rows() + 2, 0.25), 0);
    EXPECT_EQ(m, 4);
    EXPECT_EQ(P.copy(5), (Rows{{0, 0}, {3, 0}, {4, 1}, {4, 10}, {4, 20}}));
    EXPECT_EQ(chords.copy(8),
              (Rows{{-1, -1}, {-2, -2}, {3, 0}, {1, 1}, {0, 9}, {0, 10}, {-3, -3}, {-4, -4}}));
}

TEST(RennerRoundCorner, GoesByTheShorterChordOnEitherSide) {
    Matrix P(Rows{{0, 0}, {10, 0}, {10, 4}, {10, 20}}, 1);
    Matrix chords(Rows{{-1, -1}, {-2, -2}, {10, 0}, {0, 4}, {0, 16}, {-3, -3}, {-4, -4}}, 1);
    Index m = 3;
    ASSERT_EQ(rennerRoundCorner(m, 4, 2, 1, P.rows(), chords.rows() + 2, 0.5), 0);
    EXPECT_EQ(P.copy(5), (Rows{{0, 0}, {8, 0}, {10, 2}, {10, 4}, {10, 20}}));
    EXPECT_EQ(chords.copy(8),
              (Rows{{-1, -1}, {-2, -2}, {8, 0}, {2, 2}, {0, 2}, {0, 16}, {-3, -3}, {-4, -4}}));
}

TEST(RennerRoundCorner, ChangesNothingWithoutRoom) {
    const Rows points{{0, 0}, {4, 0}, {4, 10}, {4, 20}};
    const Rows rows{{-1, -1}, {-2, -2}, {4, 0}, {0, 10}, {0, 10}, {-3, -3}, {-4, -4}};
    Matrix P(points);
    Matrix chords(rows);
    Index m = 3;
    EXPECT_EQ(rennerRoundCorner(m, 3, 2, 1, P.rows(), chords.rows() + 2, 0.25), 4);
    EXPECT_EQ(m, 3);
    EXPECT_EQ(P.copy(4), points);
    EXPECT_EQ(chords.copy(7), rows);
}

}  // namespace
