// Faces as walks read them: how positions are mapped to cells, and when cells may be trusted.
#include "triangulation/faces.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <random>

namespace {

using velquad::triangulation::Cell;
using velquad::triangulation::CellGrid;
using velquad::triangulation::cornerAfter;
using velquad::triangulation::cornerBefore;
using velquad::triangulation::cornerOf;
using velquad::triangulation::Face;
using velquad::triangulation::faceOf;
using velquad::triangulation::sideOf;
using velquad::triangulation::Turn;
using velquad::triangulation::turnAt;
using velquad::triangulation::turnOf;

constexpr std::int64_t kNever = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kLastCell = (1 << 24) - 1;

TEST(Face, NumbersItsCornersAround) {
    EXPECT_EQ(cornerAfter(0), 1U);
    EXPECT_EQ(cornerAfter(1), 2U);
    EXPECT_EQ(cornerAfter(2), 0U);
    EXPECT_EQ(cornerBefore(0), 2U);
    EXPECT_EQ(cornerBefore(1), 0U);
    EXPECT_EQ(cornerBefore(2), 1U);
    EXPECT_EQ(sideOf(0x3FFFFFFF, 2), 0xFFFFFFFEU);
    EXPECT_EQ(faceOf(0xFFFFFFFE), 0x3FFFFFFFU);
    EXPECT_EQ(cornerOf(0xFFFFFFFE), 2U);
}

TEST(Face, KeepsItsWays) {
    Face face;
    face.setWay(2, {sideOf(0, 0), {0x123456, 0x789ABC}});
    face.setWay(0, {sideOf(7, 1), {kLastCell, 0}});
    face.setWay(1, {sideOf(0x3FFFFFFF, 2), {0, kLastCell}});
    face.setBeyond(2, 5);
    EXPECT_EQ(face.way(0).side, 29U);
    EXPECT_EQ(face.way(0).corner.x, kLastCell);
    EXPECT_EQ(face.way(0).corner.y, 0);
    EXPECT_EQ(face.way(1).side, 0xFFFFFFFEU);
    EXPECT_EQ(face.way(1).corner.x, 0);
    EXPECT_EQ(face.way(1).corner.y, kLastCell);
    EXPECT_EQ(face.way(2).side, 5U);
    EXPECT_EQ(face.beyond(2), 5U);
    EXPECT_EQ(face.way(2).corner.x, 0x123456);
    EXPECT_EQ(face.way(2).corner.y, 0x789ABC);
}

TEST(CellGrid, SpreadsItsBoxOverTheCells) {
    // 2^24 cells less a margin of 64 on each side.
    const CellGrid grid({-50, 1000, 150, 1400});
    EXPECT_NEAR(static_cast<double>(grid.cellOf({-50, 1000}).x), 64, 1);
    EXPECT_NEAR(static_cast<double>(grid.cellOf({-50, 1000}).y), 64, 1);
    EXPECT_NEAR(static_cast<double>(grid.cellOf({150, 1400}).x), 16777152, 1);
    EXPECT_NEAR(static_cast<double>(grid.cellOf({150, 1400}).y), 16777152, 1);
    EXPECT_NEAR(static_cast<double>(grid.cellOf({0, 1200}).x), 64 + 16777088 / 4, 1);
    EXPECT_NEAR(static_cast<double>(grid.cellOf({0, 1200}).y), 8388608, 1);
}

TEST(CellGrid, KnowsHowFarAVertexReaches) {
    // 83885 cells to a unit, so a vertex's tolerance is less than a cell: with both roundings, 2.
    const CellGrid coarse({0, 0, 200, 400});
    EXPECT_TRUE(coarse.mayBeSameVertex({2, -2}));
    EXPECT_FALSE(coarse.mayBeSameVertex({3, 0}));
    EXPECT_FALSE(coarse.mayBeSameVertex({-3, 0}));
    EXPECT_FALSE(coarse.mayBeSameVertex({0, 3}));
    EXPECT_FALSE(coarse.mayBeSameVertex({0, -3}));
    EXPECT_EQ(coarse.sureTurn(), 2 * (std::int64_t{1} << 25) + 8);
    // 16777088 / 0.5 cells to a unit, 33.55 to a vertex's tolerance: 33 and 2.
    const CellGrid fine({0, 0, 0.5, 400});
    EXPECT_TRUE(fine.mayBeSameVertex({35, 35}));
    EXPECT_FALSE(fine.mayBeSameVertex({36, 0}));
    EXPECT_EQ(fine.sureTurn(), 35 * (std::int64_t{1} << 25) + 8);
}

TEST(CellGrid, TellsNothingOfBoxesBeyondItsBounds) {
    constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    // The finest grid has 2^16 cells to a vertex's tolerance: 16777088e-6 / 65536 is 2.55998e-4.
    for (const tagMAT_RECT2D& box :
         {tagMAT_RECT2D{0, 0, 0, 1}, tagMAT_RECT2D{0, 0, 1, 0}, tagMAT_RECT2D{0, 0, 2.559e-4, 1},
          tagMAT_RECT2D{0, 0, 1e130, 1}, tagMAT_RECT2D{0, 0, 1, 1e130}, tagMAT_RECT2D{0, 0, kNan, 1},
          tagMAT_RECT2D{0, 0, 1, kInfinity}, tagMAT_RECT2D{0, 0, -1, 1}}) {
        const CellGrid grid(box);
        EXPECT_EQ(grid.sureTurn(), kNever) << box.right << ' ' << box.bottom;
        for (const tagPOINT2D& place : {tagPOINT2D{box.left, box.top}, tagPOINT2D{1e100, -1e100},
                                        tagPOINT2D{kInfinity, -kInfinity}, tagPOINT2D{kNan, kNan}}) {
            EXPECT_EQ(grid.cellOf(place).x, 0);
            EXPECT_EQ(grid.cellOf(place).y, 0);
        }
        EXPECT_TRUE(grid.mayBeSameVertex({0, 0}));
    }
    EXPECT_LT(CellGrid({0, 0, 2.561e-4, 1}).sureTurn(), kNever);
    EXPECT_LT(CellGrid({0, 0, 1e120, 1}).sureTurn(), kNever);
    EXPECT_EQ(CellGrid().sureTurn(), kNever);
}

TEST(CellTurn, IsTwiceTheAreaOfTheTriangle) {
    // From (-1, 5) to (1, 5) the line runs along x, with the origin below: to its right.
    EXPECT_EQ(turnOf({-1, 5}, {1, 5}), 10);
    EXPECT_EQ(turnOf({1, 5}, {-1, 5}), -10);
    EXPECT_EQ(turnOf({3, 6}, {1, 2}), 0);
    // The largest distances.
    EXPECT_EQ(turnOf({-kLastCell, kLastCell}, {kLastCell, kLastCell}), 2 * kLastCell * kLastCell);
}

TEST(CellTurn, GoesLeftFirstAndOnlyWhenSure) {
    // Seen from p: a side from (-10, -10) to (10, -10) and corners opposite. p is to the left of the line from the
    // start to a corner far to the right, and so on.
    const Cell from{-10, -10};
    const Cell to{10, -10};
    EXPECT_EQ(turnAt(from, {0, 10}, to, 1, 1), Turn::kNone);
    EXPECT_EQ(turnAt(from, {20, -5}, to, 1, 1), Turn::kLeft);
    EXPECT_EQ(turnAt(from, {-20, -5}, to, 1, 1), Turn::kRight);
    EXPECT_EQ(turnAt(from, {0, -5}, to, 1, 1), Turn::kLeft) << "both sides have p beyond";
    // The turn from (-10, -10) to (20, -5) is 20 * -10 - -5 * -10 = -250.
    EXPECT_EQ(turnAt(from, {20, -5}, to, 250, 1), Turn::kLeft);
    EXPECT_EQ(turnAt(from, {20, -5}, to, 251, 1), Turn::kUnsure);
    // To (-20, -5): -20 * -10 - -5 * -10 = 150, and from there to (10, -10): 10 * -5 - -10 * -20 = -250.
    EXPECT_EQ(turnAt(from, {-20, -5}, to, 150, 250), Turn::kRight);
    EXPECT_EQ(turnAt(from, {-20, -5}, to, 151, 250), Turn::kUnsure);
    EXPECT_EQ(turnAt(from, {-20, -5}, to, 150, 251), Turn::kUnsure);
    // To (0, 10): 0 * -10 - 10 * -10 = 100, and on to (10, -10): 10 * 10 - -10 * 0 = 100.
    EXPECT_EQ(turnAt(from, {0, 10}, to, 100, 100), Turn::kNone);
    EXPECT_EQ(turnAt(from, {0, 10}, to, 100, 101), Turn::kUnsure);
}

/// Places with whole coordinates below 2^25, so that all of a turn is exact in doubles; a cell is about two units.
class NearlyStraight {
  public:
    struct Sample {
        Cell from;
        Cell to;
        double exactTurn;
    };

    /// Seen from p, one place and another that lies nearly behind it or opposite.
    Sample next() {
        const tagPOINT2D p{whole(0, kSize), whole(0, kSize)};
        const tagPOINT2D from{whole(0, kSize), whole(0, kSize)};
        tagPOINT2D to{-1, -1};
        while (!(to.x >= 0 && to.x <= kSize && to.y >= 0 && to.y <= kSize)) {
            const double along = std::uniform_real_distribution<double>(-2, 2)(random_);
            to = {std::floor(p.x + along * (from.x - p.x)) + whole(-3, 3),
                  std::floor(p.y + along * (from.y - p.y)) + whole(-3, 3)};
        }
        const Cell here = grid_.cellOf(p);
        return {grid_.cellOf(from) - here, grid_.cellOf(to) - here,
                (to.x - p.x) * (from.y - p.y) - (to.y - p.y) * (from.x - p.x)};
    }

  private:
    static constexpr int kSize = 1 << 25;

    double whole(int low, int high) { return std::uniform_int_distribution<int>(low, high)(random_); }

    std::mt19937 random_{5};
    CellGrid grid_{{0, 0, kSize, kSize}};
};

TEST(CellTurn, HasTheSignOfThePositionsWhenSure) {
    NearlyStraight samples;
    int sure = 0;
    double mostWrong = 0.0;
    for (int i = 0; i < 2000000; ++i) {
        const NearlyStraight::Sample s = samples.next();
        const std::int64_t turn = turnOf(s.from, s.to);
        const std::int64_t bound = CellGrid::sureTurn(s.from, s.to);
        const bool isSame = (turn > 0) == (s.exactTurn > 0) && (turn < 0) == (s.exactTurn < 0);
        if (turn >= bound || turn <= -bound) {
            ++sure;
            ASSERT_TRUE(isSame) << turn << " for " << s.exactTurn;
        } else if (!isSame) {
            const double share = static_cast<double>(turn) / static_cast<double>(bound);
            if (share > mostWrong) mostWrong = share;
        }
    }
    EXPECT_GT(sure, 1000);
    EXPECT_GT(mostWrong, 0.7) << "a much smaller bound would not do";
}

}  // namespace
