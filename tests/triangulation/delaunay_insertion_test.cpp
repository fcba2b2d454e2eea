// Insertion, growth, replacement and removal: documented cases, limits and failures.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <set>
#include <utility>
#include <vector>

#include "tests/support/allocation_failure.h"
#include "tests/support/delaunay_pair.h"
#include "velquad/framework.h"

namespace {

using velquad::test::bitsOf;
using velquad::test::DelaunayPair;
using velquad::test::DelaunayRecord;
using velquad::test::recordOf;
using velquad::test::delaunay::kDoubleMax;
using velquad::test::delaunay::kNoId;
using velquad::triangulation::CDelaunay2D;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

/// A handle that is released.
class Handle {
  public:
    explicit Handle(const tagMAT_RECT2D* extent = nullptr) : handle_(matInitDelaunay2D(extent)) {}
    ~Handle() { matExitDelaunay2D(handle_); }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;

    void* get() const { return handle_; }
    void** address() { return &handle_; }
    const CDelaunay2D& subject() const { return *static_cast<const CDelaunay2D*>(handle_); }

    int add(double x, double y, double z = 0.0, double tolerance = kDoubleMax) {
        const tagPOINT3D point{x, y, z};
        return matExtentDelaunay2D(&handle_, &point, tolerance);
    }
    int reduce(double x, double y, double tolerance) {
        const tagPOINT3D point{x, y, 0.0};
        return matReduceDelaunay2D(&handle_, &point, tolerance);
    }

  private:
    void* handle_;
};

std::vector<std::vector<double>> pointsOf(void* handle) {
    const unsigned int count = matGetPointListOfDelaunay2D(handle, nullptr);
    std::vector<tagPOINT3D> points(count + 1);
    EXPECT_EQ(matGetPointListOfDelaunay2D(handle, points.data()), count);
    std::vector<std::vector<double>> values;
    for (unsigned int i = 0; i < count; ++i)
        values.push_back({points[i].x, points[i].y, points[i].z});
    return values;
}

using Values = std::vector<std::vector<double>>;
using Ends = std::pair<std::pair<double, double>, std::pair<double, double>>;

/// The edges between vertices, each with its smaller end first.
std::multiset<Ends> edgesOf(void* handle) {
    std::multiset<Ends> edges;
    const auto record = [](tagPOINT3D* start, tagPOINT3D* end, void* user1, void*) {
        std::pair<double, double> a{start->x, start->y};
        std::pair<double, double> b{end->x, end->y};
        if (b < a) std::swap(a, b);
        static_cast<std::multiset<Ends>*>(user1)->insert({a, b});
        return 0;
    };
    EXPECT_EQ(matDrawDelaunay2D(handle, record, 4, &edges, nullptr), 1);
    return edges;
}

void expectExtent(const CDelaunay2D& t, const tagMAT_RECT2D& expected) {
    EXPECT_EQ(bitsOf(t.extent()), bitsOf(expected));
}

TEST(DelaunayInsertion, FirstPointMakesTheExtent) {
    Handle handle;
    EXPECT_EQ(matGetPointListOfDelaunay2D(handle.get(), nullptr), 0U);
    EXPECT_EQ(handle.add(5, 7), 1);
    expectExtent(handle.subject(), {-5, -3, 15, 17});
    EXPECT_EQ(pointsOf(handle.get()), (Values{{5, 7, 0}}));
}

TEST(DelaunayInsertion, HelpersStandAroundTheExtent) {
    const tagMAT_RECT2D extent{0, 0, 40, 20};
    const Handle handle(&extent);
    const CDelaunay2D& t = handle.subject();
    ASSERT_EQ(t.pointCount(), 3U);
    const double expected[3][2] = {{-30, -5}, {70, -5}, {20, 45}};
    for (std::uint32_t i = 0; i < 3; ++i) {
        EXPECT_EQ(t.position(i).x, expected[i][0]);
        EXPECT_EQ(t.position(i).y, expected[i][1]);
        EXPECT_EQ(t.z(i), kDoubleMax);
        EXPECT_EQ(t.id(i), kNoId);
    }
    EXPECT_EQ(t.edgeCount(), 3U);
}

TEST(DelaunayInsertion, LeftSideOfTheLargestDoubleMeansEmpty) {
    const tagMAT_RECT2D extent{kDoubleMax, 0, 1, 1};
    Handle handle(&extent);
    ASSERT_NE(handle.get(), nullptr);
    EXPECT_FALSE(handle.subject().hasPoints());
    expectExtent(handle.subject(), {kDoubleMax, kDoubleMax, kDoubleMax, kDoubleMax});
    EXPECT_EQ(handle.add(0, 0), 1);
    // Nothing else of the rectangle is looked at then.
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const tagMAT_RECT2D odd{kDoubleMax, nan, nan, nan};
    const Handle other(&odd);
    ASSERT_NE(other.get(), nullptr);
    EXPECT_FALSE(other.subject().hasPoints());
}

TEST(DelaunayInsertion, PointOutsideMakesTheExtentGrow) {
    Handle handle;
    handle.add(5, 7, 1);
    EXPECT_EQ(handle.add(100, 100, 2), 1);
    expectExtent(handle.subject(), {-42.5, -39.5, 147.5, 146.5});
    EXPECT_EQ(pointsOf(handle.get()), (Values{{5, 7, 1}, {100, 100, 2}}));
}

TEST(DelaunayInsertion, MarginOfTheExtentCounts) {
    const tagMAT_RECT2D extent{0, 0, 40, 40};
    for (const bool isOutside : {false, true}) {
        Handle handle(&extent);
        EXPECT_EQ(handle.add(40.0 + (isOutside ? 1.5e-7 : 0.5e-7), 20), 1);
        EXPECT_EQ(handle.subject().extent().right == 40.0, !isOutside);
        Handle other(&extent);
        EXPECT_EQ(other.add(20, isOutside ? -1.5e-7 : -0.5e-7), 1);
        EXPECT_EQ(other.subject().extent().top == 0.0, !isOutside);
    }
}

TEST(DelaunayInsertion, PointWithinTheToleranceReplaces) {
    Handle handle;
    handle.add(0, 0, 1);
    handle.add(5, 5, 2);
    const tagPOINT3D again{5e-7, 0, 9};
    EXPECT_EQ(matExtentWithIdDelaunay2D(handle.address(), &again, 77, kDoubleMax), 1);
    EXPECT_EQ(pointsOf(handle.get()), (Values{{5, 5, 2}, {5e-7, 0, 9}}));
    EXPECT_EQ(handle.subject().id(4), 77U);
}

TEST(DelaunayInsertion, DistancesBelowTheRootCountAsNoneButTheRadiusRules) {
    // 3e-4 counts as distance 0, so everything is rebuilt, but the old vertex is farther than the radius and stays.
    Handle handle;
    handle.add(0, 0, 1);
    EXPECT_EQ(handle.add(3e-4, 0, 2), 1);
    EXPECT_EQ(pointsOf(handle.get()), (Values{{0, 0, 1}, {3e-4, 0, 2}}));
    expectExtent(handle.subject(), {1.5e-4 - 16, -16, 1.5e-4 + 16, 16});
    // 3.2e-4 is beyond the root of 1e-7: nothing is rebuilt.
    Handle other;
    other.add(0, 0, 1);
    EXPECT_EQ(other.add(3.2e-4, 0, 2), 1);
    expectExtent(other.subject(), {-10, -10, 10, 10});
}

TEST(DelaunayInsertion, RebuildDropsTheSecondOfTwoPointsWithinTheVertexTolerance) {
    Handle handle;
    handle.add(0, 0, 1);
    EXPECT_EQ(handle.add(5e-7, 0, 2, 0.0), 1);
    EXPECT_EQ(pointsOf(handle.get()), (Values{{0, 0, 1}}));
}

TEST(DelaunayInsertion, NegativeToleranceIsRelativeToTheExtent) {
    const tagMAT_RECT2D extent{0, 0, 200, 100};
    const double distances[] = {1.9, 2.0, 2.1};
    const std::size_t counts[] = {1, 1, 2};
    for (int i = 0; i < 3; ++i) {
        Handle handle(&extent);
        handle.add(50, 50);
        EXPECT_EQ(handle.add(50 + distances[i], 50, 0, -0.01), 1);
        EXPECT_EQ(pointsOf(handle.get()).size(), counts[i]) << distances[i];
    }
}

TEST(DelaunayInsertion, ToleranceThatIsNotANumberReplacesEverything) {
    Handle handle;
    handle.add(0, 0, 1);
    handle.add(5, 5, 2);
    EXPECT_EQ(handle.add(1, 1, 3, kNaN), 1);
    EXPECT_EQ(pointsOf(handle.get()), (Values{{1, 1, 3}}));
}

TEST(DelaunayInsertion, PointOnAnEdgeDividesIt) {
    Handle handle;
    handle.add(0, 0);
    handle.add(4, 0);
    handle.add(0, 4);
    handle.add(1, -4);
    ASSERT_EQ(edgesOf(handle.get()).count({{0, 0}, {4, 0}}), 1U);
    const std::size_t before = handle.subject().edgeCount();
    EXPECT_EQ(handle.add(2, 0), 1);
    EXPECT_EQ(handle.subject().edgeCount(), before + 3);
    const std::multiset<Ends> edges = edgesOf(handle.get());
    EXPECT_EQ(edges.count({{0, 0}, {4, 0}}), 0U);
    // Four triangles share the new vertex.
    EXPECT_EQ(edges.count({{0, 0}, {2, 0}}), 1U);
    EXPECT_EQ(edges.count({{2, 0}, {4, 0}}), 1U);
    EXPECT_EQ(edges.count({{0, 4}, {2, 0}}), 1U);
    EXPECT_EQ(edges.count({{1, -4}, {2, 0}}), 1U);
}

TEST(DelaunayInsertion, CocircularDiagonalStaysAsItWasMade) {
    Handle falling;
    for (const auto& [x, y] : {std::pair{0, 0}, {4, 0}, {0, 4}, {4, 4}})
        falling.add(x, y);
    EXPECT_EQ(edgesOf(falling.get()).count({{0, 4}, {4, 0}}), 1U);
    EXPECT_EQ(edgesOf(falling.get()).count({{0, 0}, {4, 4}}), 0U);
    Handle rising;
    for (const auto& [x, y] : {std::pair{0, 0}, {4, 4}, {4, 0}, {0, 4}})
        rising.add(x, y);
    EXPECT_EQ(edgesOf(rising.get()).count({{0, 4}, {4, 0}}), 0U);
    EXPECT_EQ(edgesOf(rising.get()).count({{0, 0}, {4, 4}}), 1U);
}

TEST(DelaunayInsertion, DiagonalIsFlippedWhenAPointLiesInTheCircle) {
    Handle handle;
    for (const auto& [x, y] : {std::pair{0.0, 0.0}, {4.0, 0.0}, {0.0, 4.0}, {3.9, 3.9}})
        handle.add(x, y);
    EXPECT_EQ(edgesOf(handle.get()).count({{0, 4}, {4, 0}}), 0U);
    EXPECT_EQ(edgesOf(handle.get()).count({{0, 0}, {3.9, 3.9}}), 1U);
}

TEST(DelaunayInsertion, FlatExtentTakesNothingUntilItIsOutgrown) {
    const tagMAT_RECT2D extent{0, 0, 10, 0};
    Handle handle(&extent);
    EXPECT_EQ(handle.add(5, 0), 0);
    EXPECT_EQ(matGetPointListOfDelaunay2D(handle.get(), nullptr), 0U);
    EXPECT_EQ(handle.add(5, 5), 1);
    EXPECT_EQ(handle.add(5, 0), 1);
    EXPECT_EQ(matGetPointListOfDelaunay2D(handle.get(), nullptr), 2U);
}

TEST(DelaunayInsertion, WhatIsNotFiniteIsRefused) {
    Handle handle;
    for (const double bad : {kNaN, kInfinity, -kInfinity}) {
        EXPECT_EQ(handle.add(bad, 0), 0);
        EXPECT_EQ(handle.add(0, bad), 0);
        EXPECT_FALSE(handle.subject().hasPoints());
    }
    handle.add(0, 0, 1);
    handle.add(3, 4, 2);
    const auto before = recordOf(handle.subject());
    for (const double bad : {kNaN, kInfinity, -kInfinity}) {
        EXPECT_EQ(handle.add(bad, 0), 0);
        EXPECT_EQ(handle.add(0, bad), 0);
        EXPECT_EQ(handle.reduce(bad, 0, kInfinity), 0);
        EXPECT_EQ(handle.reduce(0, bad, kInfinity), 0);
        const tagPOINT3D point{bad, 0, 5};
        EXPECT_EQ(matSetZValueOfDelaunayPosition(handle.get(), &point, kInfinity), 0);
        EXPECT_EQ(matSetIDOfDelaunayPosition(handle.get(), 5, &point, kInfinity), 0);
    }
    EXPECT_EQ(recordOf(handle.subject()), before);
    EXPECT_EQ(handle.add(1, 1, kNaN), 1);
    const tagMAT_RECT2D rects[] = {
        {kNaN, 0, 1, 1}, {0, kInfinity, 1, 1}, {0, 0, kNaN, 1}, {0, 0, 1, -kInfinity}};
    for (const tagMAT_RECT2D& rect : rects)
        EXPECT_EQ(matInitDelaunay2D(&rect), nullptr);
}

TEST(DelaunayInsertion, LargestDoubleIsSurvived) {
    Handle handle;
    handle.add(kDoubleMax, kDoubleMax);
    handle.add(-kDoubleMax, 3);
    // Whatever came of these, the next ordinary points are taken.
    handle.add(1, 1);
    handle.add(2, 5);
    EXPECT_EQ(handle.add(5, 1), 1);
    EXPECT_GE(matGetPointListOfDelaunay2D(handle.get(), nullptr), 1U);
}

TEST(DelaunayInsertion, NullIsRefused) {
    const tagPOINT3D point{0, 0, 0};
    void* none = nullptr;
    EXPECT_EQ(matExtentDelaunay2D(nullptr, &point, 0.0), 0);
    EXPECT_EQ(matExtentDelaunay2D(&none, &point, 0.0), 0);
    EXPECT_EQ(matExtentWithIdDelaunay2D(&none, &point, 1, 0.0), 0);
    EXPECT_EQ(matReduceDelaunay2D(nullptr, &point, 0.0), 0);
    EXPECT_EQ(matReduceDelaunay2D(&none, &point, 0.0), 0);
    EXPECT_EQ(matExitDelaunay2D(nullptr), 0);
    Handle handle;
    EXPECT_EQ(matExtentDelaunay2D(handle.address(), nullptr, 0.0), 0);
    EXPECT_EQ(matReduceDelaunay2D(handle.address(), nullptr, 0.0), 0);
    EXPECT_EQ(none, nullptr);
    EXPECT_EQ(matExitDelaunay2D(matInitDelaunay2D(nullptr)), 1);
}

TEST(DelaunayReduction, RemovesWhatLiesWithinTheRadius) {
    Handle handle;
    EXPECT_EQ(handle.reduce(0, 0, 1.0), 0) << "an empty triangulation";
    for (const auto& [x, y] : {std::pair{0, 0}, {1, 0}, {2, 0}, {0, 3}})
        handle.add(x, y, x);
    EXPECT_EQ(handle.reduce(0, -1, 0.5), 0) << "nothing is near";
    EXPECT_EQ(handle.reduce(0, 0, 1.0), 1);
    // A vertex at exactly the radius goes.
    EXPECT_EQ(pointsOf(handle.get()), (Values{{2, 0, 2}, {0, 3, 0}}));
    expectExtent(handle.subject(), {1 - 16.0, 1.5 - 16, 1 + 16.0, 1.5 + 16});
    // Relative to an extent of 32: a radius of 0.32.
    EXPECT_EQ(handle.reduce(2.3, 0, -0.01), 1);
    EXPECT_EQ(pointsOf(handle.get()), (Values{{0, 3, 0}}));
}

TEST(DelaunayReduction, OfTheLastPointLeavesAnEmptyExtent) {
    Handle handle;
    handle.add(500, -300);
    EXPECT_EQ(handle.reduce(500, -300, kDoubleMax), 1);
    EXPECT_EQ(matGetPointListOfDelaunay2D(handle.get(), nullptr), 0U);
    EXPECT_TRUE(handle.subject().hasPoints()) << "the helpers";
    expectExtent(handle.subject(), {-16, -16, 16, 16});
    EXPECT_EQ(handle.reduce(0, 0, 5.0), 0);
}

TEST(DelaunayReduction, RadiusWithoutEndTakesEverything) {
    Handle handle;
    handle.add(0, 0);
    handle.add(9, 9);
    EXPECT_EQ(handle.reduce(1e9, 0, kInfinity), 1);
    EXPECT_EQ(matGetPointListOfDelaunay2D(handle.get(), nullptr), 0U);
}

/// Lets each allocation of `change` fail in turn: the triangulation stays as it was, and the call then succeeds.
template <class Change>
void expectUnharmedByShortage(const std::vector<tagPOINT3D>& points, const Change& change) {
    try {
        throw std::bad_alloc();
    } catch (const std::bad_alloc&) {
        // The first exception of a thread takes memory that stays.
    }
    std::size_t failures = 0;
    for (std::size_t number = 1; number < 100000; ++number) {
        SCOPED_TRACE(number);
        Handle handle;
        for (const tagPOINT3D& p : points)
            handle.add(p.x, p.y, p.z);
        const auto before = recordOf(handle.subject());
        const std::ptrdiff_t live = velquad::test::liveAllocations();
        velquad::test::failAllocation(number);
        const int result = change(handle);
        const bool hasFailed = velquad::test::hasAllocationFailed();
        velquad::test::failAllocation(0);
        if (!hasFailed) {
            EXPECT_EQ(result, 1);
            EXPECT_GT(failures, 0U);
            return;
        }
        ++failures;
        EXPECT_EQ(result, 0);
        EXPECT_GE(velquad::test::liveAllocations(), live);
        EXPECT_EQ(recordOf(handle.subject()), before);
        EXPECT_EQ(change(handle), 1);
    }
    FAIL() << "more allocations than expected";
}

std::vector<tagPOINT3D> rows(int count) {
    std::vector<tagPOINT3D> points;
    for (int i = 0; i < count; ++i)
        points.push_back({(i % 5) * 1.5, (i / 5) * 1.25, i * 1.0});
    return points;
}

TEST(DelaunayShortage, FailedFirstInsertionLeavesAnEmptyTriangulation) {
    for (std::size_t number = 1;; ++number) {
        ASSERT_LT(number, 100U);
        Handle handle;
        velquad::test::failAllocation(number);
        const int result = handle.add(1, 2);
        const bool hasFailed = velquad::test::hasAllocationFailed();
        velquad::test::failAllocation(0);
        EXPECT_EQ(result, hasFailed ? 0 : 1);
        EXPECT_EQ(handle.add(3, 4), 1);
        EXPECT_EQ(matGetPointListOfDelaunay2D(handle.get(), nullptr), hasFailed ? 1U : 2U);
        if (!hasFailed) break;
    }
}

TEST(DelaunayShortage, InsertionLeavesTheOldOne) {
    // Numbers of points at which one array or another has to grow.
    for (const int count : {1, 2, 3, 4, 5, 6, 7, 8, 12, 16, 24}) {
        SCOPED_TRACE(count);
        Handle probe;
        for (const tagPOINT3D& p : rows(count))
            probe.add(p.x, p.y, p.z);
        const std::size_t before = velquad::test::allocationCount();
        probe.add(0.7, 0.6, 3);
        if (velquad::test::allocationCount() == before) continue;
        expectUnharmedByShortage(rows(count), [](Handle& handle) { return handle.add(0.7, 0.6, 3); });
    }
}

TEST(DelaunayShortage, GrowthLeavesTheOldOne) {
    expectUnharmedByShortage(rows(20), [](Handle& handle) { return handle.add(500, 500, 3); });
}

TEST(DelaunayShortage, ReplacementLeavesTheOldOne) {
    expectUnharmedByShortage(rows(20), [](Handle& handle) { return handle.add(1.5, 1.25, 3); });
}

TEST(DelaunayShortage, ReductionLeavesTheOldOne) {
    expectUnharmedByShortage(rows(20), [](Handle& handle) { return handle.reduce(1.5, 1.25, 1.6) != 0; });
}

TEST(DelaunayShortage, InitGivesNull) {
    velquad::test::forEachFailingAllocation([] {
        const tagMAT_RECT2D extent{0, 0, 10, 10};
        return Handle(&extent).get() == nullptr;
    });
}

TEST(DelaunayShortage, WhileArrangingDoesNotShow) {
    // Each allocation of an arrangement fails in turn; the result is the same.
    std::size_t mostInOne = 0;
    std::size_t beforeMost = 0;
    const auto build = [&](Handle& handle) {
        std::uint32_t state = 1;
        const auto next = [&state] { return (state = state * 1664525U + 1013904223U) * 0x1p-32 * 100; };
        const std::size_t start = velquad::test::allocationCount();
        for (int i = 0; i < 13500; ++i) {
            const double x = next();
            const double y = next();
            const std::size_t before = velquad::test::allocationCount();
            if (handle.add(x, y) == 0) handle.add(x, y);
            const std::size_t inOne = velquad::test::allocationCount() - before;
            // The first ones rebuild, which allocates a lot as well.
            if (i < 1000 || inOne <= mostInOne) continue;
            mostInOne = inOne;
            beforeMost = before - start;
        }
    };
    Handle plain;
    build(plain);
    const DelaunayRecord expected = recordOf(plain.subject());
    const std::size_t first = beforeMost + 1;
    const std::size_t last = beforeMost + mostInOne;
    // Three kinds of records are arranged, each with places, an inverse and two new arrays.
    ASSERT_GE(mostInOne, 12U) << "points enough for an arrangement";
    for (std::size_t number = first; number <= last; ++number) {
        Handle handle;
        velquad::test::failAllocation(number);
        build(handle);
        EXPECT_TRUE(velquad::test::hasAllocationFailed());
        velquad::test::failAllocation(0);
        EXPECT_TRUE(recordOf(handle.subject()) == expected) << number - first;
    }
}

}  // namespace
