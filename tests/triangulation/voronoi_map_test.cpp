// Voronoi maps: documented cases, limits, and comparison with plain loops.
#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <memory>
#include <random>
#include <vector>

#include "tests/support/allocation_failure.h"
#include "tests/support/voronoi_reference.h"
#include "velquad/framework.h"
#include "velquad/triangulation.h"

namespace {

using velquad::test::ReferenceSeed;
using velquad::test::referenceVoronoi;

struct MapDeleter {
    void operator()(void* map) const { matFreeVoronoiMap2D(map); }
};
using Map = std::unique_ptr<void, MapDeleter>;

Map makeMap(int width, int height, const std::vector<ReferenceSeed>& seeds) {
    Map map(matAllocVoronoiMap2D(width, height));
    for (const ReferenceSeed& seed : seeds) {
        const tagPOINT point{seed.x, seed.y};
        EXPECT_EQ(matAddPointToVoronoiMap2D(map.get(), &point, seed.id), 1);
    }
    return map;
}

std::vector<std::int32_t> cellsOf(const Map& map, int width, int height) {
    std::vector<std::int32_t> cells;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            cells.push_back(matGetIDFromNeighborInVoronoiMap2D(map.get(), x, y));
    return cells;
}

void expectAsReference(int width, int height, const std::vector<ReferenceSeed>& seeds) {
    const Map map = makeMap(width, height, seeds);
    ASSERT_NE(map, nullptr);
    EXPECT_EQ(matComputeVoronoiMap2D(map.get()), 0);
    EXPECT_EQ(cellsOf(map, width, height), referenceVoronoi(width, height, seeds));
}

TEST(VoronoiMap, IsZeroBeforeTheFirstComputation) {
    const Map map = makeMap(3, 2, {{0, 0, 9}});
    EXPECT_EQ(cellsOf(map, 3, 2), std::vector<std::int32_t>(6, 0));
}

TEST(VoronoiMap, CellsHoldTheNearestSeed) {
    const Map map = makeMap(5, 2, {{0, 0, 7}, {4, 1, 8}});
    EXPECT_EQ(matComputeVoronoiMap2D(map.get()), 0);
    // Cell (2, 0) is 4 from the first seed and 5 from the second, (2, 1) the other way round.
    EXPECT_EQ(cellsOf(map, 5, 2), (std::vector<std::int32_t>{7, 7, 7, 8, 8, 7, 7, 8, 8, 8}));
}

TEST(VoronoiMap, FirstOfEquallyDistantSeedsWins) {
    const Map rising = makeMap(3, 1, {{0, 0, 5}, {2, 0, 6}});
    matComputeVoronoiMap2D(rising.get());
    EXPECT_EQ(matGetIDFromNeighborInVoronoiMap2D(rising.get(), 1, 0), 5);
    const Map falling = makeMap(3, 1, {{2, 0, 6}, {0, 0, 5}});
    matComputeVoronoiMap2D(falling.get());
    EXPECT_EQ(matGetIDFromNeighborInVoronoiMap2D(falling.get(), 1, 0), 6);
}

TEST(VoronoiMap, FirstOfTwoSeedsAtOnePlaceWins) {
    const Map map = makeMap(40, 30, {{90, 90, 1}, {3, 3, 2}, {3, 3, 4}, {3, 3, 3}});
    matComputeVoronoiMap2D(map.get());
    EXPECT_EQ(cellsOf(map, 40, 30), std::vector<std::int32_t>(1200, 2));
}

TEST(VoronoiMap, SeedOutsideTheMapCounts) {
    const Map map = makeMap(2, 1, {{-3, 0, 1}, {3, -1, 2}});
    matComputeVoronoiMap2D(map.get());
    // Squares from (0, 0): 9 and 10; from (1, 0): 16 and 5.
    EXPECT_EQ(cellsOf(map, 2, 1), (std::vector<std::int32_t>{1, 2}));
}

TEST(VoronoiMap, DistancesWrapAroundAt32Bits) {
    // 46341^2 = 2147488281 wraps to -2147479015 and beats every real distance; 46340^2 does not wrap.
    const Map map = makeMap(2, 1, {{0, 0, 1}, {-46340, 0, 2}});
    matComputeVoronoiMap2D(map.get());
    EXPECT_EQ(cellsOf(map, 2, 1), (std::vector<std::int32_t>{1, 2}));
    // 65536^2 wraps to 0, as near as a seed on the cell itself; the first one wins.
    const Map distant = makeMap(1, 1, {{65536, 0, 3}, {0, 0, 4}});
    matComputeVoronoiMap2D(distant.get());
    EXPECT_EQ(cellsOf(distant, 1, 1), (std::vector<std::int32_t>{3}));
}

TEST(VoronoiMap, LargestDistanceStaysPositive) {
    // 46340^2 + 296^2 = 2147483216 fits; with 297 rows the sum is 2147483809 and wraps.
    const Map map = makeMap(1, 2, {{46340, -296, 1}, {0, 40000, 2}});
    matComputeVoronoiMap2D(map.get());
    EXPECT_EQ(cellsOf(map, 1, 2), (std::vector<std::int32_t>{2, 1}));
    expectAsReference(9, 9, {{46340, 304, 12}});
    // Squares that 64 bits do not hold in sum.
    expectAsReference(9, 9,
                      {{INT_MIN, INT_MIN, 1}, {INT_MIN + 1, INT_MIN + 2, 2}, {INT_MIN + 3, INT_MIN, 3}});
}

TEST(VoronoiMap, DistanceOfTwoToThe31IsTheNearestOfAll) {
    // 32768^2 + 32768^2 wraps to -2^31, at the last cell only.
    const Map map = makeMap(9, 9, {{0, 0, 1}, {-32760, -32760, 2}});
    matComputeVoronoiMap2D(map.get());
    std::vector<std::int32_t> expected(81, 1);
    expected.back() = 2;
    EXPECT_EQ(cellsOf(map, 9, 9), expected);
}

TEST(VoronoiMap, LaterSeedsTakeEffectWithTheNextComputation) {
    const Map map = makeMap(2, 1, {{0, 0, 1}});
    matComputeVoronoiMap2D(map.get());
    const tagPOINT point{1, 0};
    EXPECT_EQ(matAddPointToVoronoiMap2D(map.get(), &point, 2), 1);
    EXPECT_EQ(cellsOf(map, 2, 1), (std::vector<std::int32_t>{1, 1}));
    matComputeVoronoiMap2D(map.get());
    EXPECT_EQ(cellsOf(map, 2, 1), (std::vector<std::int32_t>{1, 2}));
}

TEST(VoronoiMap, ReadsOnlyItsOwnCells) {
    const Map map = makeMap(3, 2, {{0, 0, 1}, {2, 1, 2}});
    matComputeVoronoiMap2D(map.get());
    EXPECT_EQ(matGetIDFromNeighborInVoronoiMap2D(map.get(), 3, 0), -1);
    EXPECT_EQ(matGetIDFromNeighborInVoronoiMap2D(map.get(), 0, 2), -1);
    EXPECT_EQ(matGetIDFromNeighborInVoronoiMap2D(map.get(), 2, 1), 2);
    // One before the second row is the end of the first one.
    EXPECT_EQ(matGetIDFromNeighborInVoronoiMap2D(map.get(), -1, 1),
              matGetIDFromNeighborInVoronoiMap2D(map.get(), 2, 0));
    EXPECT_EQ(matGetIDFromNeighborInVoronoiMap2D(map.get(), -1, 0), -1);
    EXPECT_EQ(matGetIDFromNeighborInVoronoiMap2D(map.get(), 0, INT_MIN), -1);
    EXPECT_EQ(matGetIDFromNeighborInVoronoiMap2D(map.get(), INT_MIN, INT_MIN), -1);
}

TEST(VoronoiMap, NullMapIsRefused) {
    const tagPOINT point{0, 0};
    EXPECT_EQ(matAddPointToVoronoiMap2D(nullptr, &point, 1), 0);
    EXPECT_EQ(matComputeVoronoiMap2D(nullptr), 0);
    EXPECT_EQ(matGetIDFromNeighborInVoronoiMap2D(nullptr, 0, 0), -1);
    matFreeVoronoiMap2D(nullptr);
    const Map map(matAllocVoronoiMap2D(1, 1));
    EXPECT_EQ(matAddPointToVoronoiMap2D(map.get(), nullptr, 1), 0);
}

TEST(VoronoiMap, WithoutRowsOrColumnsNothingIsComputed) {
    const Map flat = makeMap(5, 0, {});
    ASSERT_NE(flat, nullptr);
    EXPECT_EQ(matComputeVoronoiMap2D(flat.get()), 0);
    EXPECT_EQ(matGetIDFromNeighborInVoronoiMap2D(flat.get(), 0, 0), -1);
    const Map thin = makeMap(0, 5, {});
    ASSERT_NE(thin, nullptr);
    EXPECT_EQ(matComputeVoronoiMap2D(thin.get()), 0);
    EXPECT_EQ(matGetIDFromNeighborInVoronoiMap2D(thin.get(), 0, 0), -1);
}

TEST(VoronoiMap, ImpossibleSizesGiveNoMap) {
    EXPECT_EQ(matAllocVoronoiMap2D(-1, 5), nullptr);
    EXPECT_EQ(matAllocVoronoiMap2D(5, -1), nullptr);
    EXPECT_EQ(matAllocVoronoiMap2D(INT_MAX, INT_MAX), nullptr);
    const Map odd(matAllocVoronoiMap2D(-2, -2));
    ASSERT_NE(odd, nullptr);
    EXPECT_EQ(matComputeVoronoiMap2D(odd.get()), 0);
    EXPECT_EQ(matGetIDFromNeighborInVoronoiMap2D(odd.get(), 0, 0), -1);
}

TEST(VoronoiMap, WithoutSeedsTheComputationThrows) {
    const Map map = makeMap(2, 2, {});
    bool hasThrown = false;
    try {
        matComputeVoronoiMap2D(map.get());
    } catch (CInvalidArgException* exception) {
        hasThrown = true;
        exception->Delete();
    }
    EXPECT_TRUE(hasThrown);
    EXPECT_EQ(cellsOf(map, 2, 2), std::vector<std::int32_t>(4, 0));
}

TEST(VoronoiMap, ShortageWhileMakingAMapGivesNull) {
    velquad::test::forEachFailingAllocation([] {
        const Map map(matAllocVoronoiMap2D(4, 4));
        return map == nullptr;
    });
}

TEST(VoronoiMap, ShortageWhileAddingThrowsAndKeepsTheSeeds) {
    velquad::test::forEachFailingAllocation([] {
        const Map map(matAllocVoronoiMap2D(1, 1));
        if (map == nullptr) return true;
        bool hasFailed = false;
        for (int i = 0; i < 20; ++i) {
            const tagPOINT point{-i, 0};
            try {
                matAddPointToVoronoiMap2D(map.get(), &point, i + 1);
            } catch (const std::bad_alloc&) {
                hasFailed = true;
                EXPECT_EQ(matAddPointToVoronoiMap2D(map.get(), &point, i + 1), 1);
            }
        }
        matComputeVoronoiMap2D(map.get());
        EXPECT_EQ(matGetIDFromNeighborInVoronoiMap2D(map.get(), 0, 0), 1);
        return hasFailed || velquad::test::hasAllocationFailed();
    });
}

TEST(VoronoiMap, ShortageWhileComputingChangesNoResult) {
    std::mt19937 random(5);
    std::vector<ReferenceSeed> seeds;
    for (int i = 0; i < 30; ++i)
        seeds.push_back({static_cast<int>(random() % 60), static_cast<int>(random() % 50), i});
    const std::vector<std::int32_t> expected = referenceVoronoi(60, 50, seeds);
    for (std::size_t number = 1; number < 40; ++number) {
        const Map map = makeMap(60, 50, seeds);
        velquad::test::failAllocation(number);
        EXPECT_EQ(matComputeVoronoiMap2D(map.get()), 0);
        const bool hasFailed = velquad::test::hasAllocationFailed();
        velquad::test::failAllocation(0);
        EXPECT_EQ(cellsOf(map, 60, 50), expected) << "allocation " << number;
        if (!hasFailed) return;
    }
    FAIL() << "more allocations than expected";
}

struct Layout {
    const char* name;
    std::int32_t (*draw)(std::mt19937& random);
};

std::int32_t onSmallMap(std::mt19937& random) {
    return static_cast<std::int32_t>(random() % 60);
}
std::int32_t onCoarseGrid(std::mt19937& random) {
    return static_cast<std::int32_t>(random() % 8) * 8;
}
std::int32_t around(std::mt19937& random) {
    return static_cast<std::int32_t>(random() % 400) - 200;
}
std::int32_t atTheWrap(std::mt19937& random) {
    return 32768 + static_cast<std::int32_t>(random() % 41) - 20;
}
std::int32_t beyondTheWrap(std::mt19937& random) {
    return static_cast<std::int32_t>(random() % 400000) - 200000;
}
std::int32_t anywhere(std::mt19937& random) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(random()));
}
std::int32_t nearTheLimits(std::mt19937& random) {
    const auto step = static_cast<std::int32_t>(random() % 30);
    return random() % 2 == 0 ? INT_MIN + step : INT_MAX - step;
}

class VoronoiMapLayout : public testing::TestWithParam<Layout> {};

TEST_P(VoronoiMapLayout, AgreesWithPlainLoops) {
    for (unsigned seed = 1; seed <= 40; ++seed) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        std::mt19937 random(seed);
        std::vector<ReferenceSeed> seeds;
        // A few close ones among the distant ones.
        if (seed % 3 == 0) seeds.push_back({5, 40, 2});
        const std::size_t count = 1 + random() % 60;
        for (std::size_t i = 0; i < count; ++i) {
            const std::int32_t x = GetParam().draw(random);
            const std::int32_t y = GetParam().draw(random);
            seeds.push_back({x, y, static_cast<std::int32_t>(i) + 100});
        }
        if (seed % 2 == 0) seeds.push_back({20, 20, 1});
        const int width = 1 + static_cast<int>(random() % 90);
        const int height = 1 + static_cast<int>(random() % 90);
        expectAsReference(width, height, seeds);
    }
}

INSTANTIATE_TEST_SUITE_P(All, VoronoiMapLayout,
                         testing::Values(Layout{"onSmallMap", onSmallMap},
                                         Layout{"onCoarseGrid", onCoarseGrid}, Layout{"around", around},
                                         Layout{"atTheWrap", atTheWrap},
                                         Layout{"beyondTheWrap", beyondTheWrap}, Layout{"anywhere", anywhere},
                                         Layout{"nearTheLimits", nearTheLimits}),
                         [](const auto& instance) { return instance.param.name; });

TEST(VoronoiMap, LongMapsAreCutIntoRoots) {
    std::vector<ReferenceSeed> seeds;
    std::mt19937 random(77);
    for (int i = 0; i < 25; ++i)
        seeds.push_back({static_cast<int>(random() % 9000), static_cast<int>(random() % 5), i});
    expectAsReference(9000, 5, seeds);
    for (ReferenceSeed& seed : seeds)
        std::swap(seed.x, seed.y);
    expectAsReference(5, 9000, seeds);
    // Both ends of a row that is longer than distances can be.
    expectAsReference(70000, 1, {{0, 0, 1}, {69999, 0, 2}, {35000, 3, 3}});
}

}  // namespace
