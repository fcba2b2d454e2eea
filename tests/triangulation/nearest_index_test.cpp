// The tree behind the search for the nearest vertex, against a walk over all points.
#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

#include "tests/support/allocation_failure.h"
#include "triangulation/nearest_index.h"

namespace {

using velquad::triangulation::NearestIndex;

constexpr double kNoLimit = 1.7976931348623157e308;

struct Points {
    explicit Points(const tagMAT_RECT2D& box) : index(box) {}
    void add(double x, double y) {
        index.prepare(x, y);
        index.add(x, y, static_cast<std::uint32_t>(places.size()));
        places.push_back({x, y});
    }
    template <class Accepts>
    void expectNearest(double x, double y, double limit, const Accepts& accepts) const {
        double best = limit;
        std::uint32_t point = NearestIndex::kNone;
        for (std::uint32_t i = 0; i < places.size(); ++i) {
            const double dx = x - places[i].x;
            const double dy = y - places[i].y;
            if (!accepts(i) || !(dx * dx + dy * dy < best)) continue;
            best = dx * dx + dy * dy;
            point = i;
        }
        const NearestIndex::Found found = index.nearest(x, y, limit, accepts);
        EXPECT_EQ(found.point, point);
        EXPECT_EQ(found.distanceSquared, best);
    }
    std::vector<tagPOINT2D> places;
    NearestIndex index;
};

TEST(NearestIndex, EmptyFindsNothing) {
    const NearestIndex index({0, 0, 1, 1});
    EXPECT_EQ(index.nearest(0, 0, kNoLimit).point, NearestIndex::kNone);
    EXPECT_EQ(index.nearest(0, 0, 5.0).distanceSquared, 5.0);
}

TEST(NearestIndex, AgreesWithAWalkOverAllPoints) {
    for (unsigned seed = 1; seed <= 30; ++seed) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        std::mt19937 random(seed);
        // Grids have many equal distances; fine ones, several points in a cell of the tree.
        const double step = seed % 3 == 0 ? 1.0 : (seed % 3 == 1 ? 0x1p-20 : 1e9);
        const unsigned width = seed % 2 == 0 ? 9 : 1000;
        const auto coordinate = [&] { return static_cast<double>(random() % width) * step; };
        Points points({0, 0, 40, 40});
        for (int i = 0; i < 400; ++i) {
            const double x = coordinate();
            points.add(x, coordinate());
        }
        for (int i = 0; i < 100; ++i) {
            const double x = coordinate() + (i % 2 == 0 ? 0.0 : step / 2);
            const double y = coordinate();
            points.expectNearest(x, y, kNoLimit, [](std::uint32_t) { return true; });
            points.expectNearest(x, y, step * step * 4, [](std::uint32_t) { return true; });
            points.expectNearest(x, y, kNoLimit, [](std::uint32_t p) { return p % 7 == 3; });
            points.expectNearest(x, y, kNoLimit, [](std::uint32_t) { return false; });
        }
    }
}

TEST(NearestIndex, TakesAnyNumberOfPointsAtOnePlace) {
    Points points({0, 0, 1, 1});
    for (int i = 0; i < 100; ++i)
        points.add(0.3, 0.3);
    points.add(0.7, 0.3);
    points.expectNearest(0.31, 0.3, kNoLimit, [](std::uint32_t) { return true; });
    points.expectNearest(0.9, 0.3, kNoLimit, [](std::uint32_t) { return true; });
    points.expectNearest(0.31, 0.3, kNoLimit, [](std::uint32_t p) { return p > 57; });
}

TEST(NearestIndex, SurvivesShortage) {
    std::mt19937 random(3);
    Points points({0, 0, 100, 100});
    for (int i = 0; i < 300; ++i) {
        const double x = static_cast<double>(random() % 1000) / 10;
        const double y = static_cast<double>(random() % 1000) / 10;
        for (std::size_t number = 1; number < 50; ++number) {
            velquad::test::failAllocation(number);
            bool hasFailed = false;
            try {
                points.index.prepare(x, y);
            } catch (const std::bad_alloc&) {
                hasFailed = true;
            }
            velquad::test::failAllocation(0);
            points.expectNearest(x, y, kNoLimit, [](std::uint32_t) { return true; });
            if (!hasFailed) break;
        }
        points.add(x, y);
    }
}

}  // namespace
