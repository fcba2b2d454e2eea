// Finding positions, interpolation, drawing, enumeration and setting values: documented cases, limits and failures.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <stdexcept>
#include <tuple>
#include <vector>

#include "tests/support/allocation_failure.h"
#include "triangulation/enumerate.h"
#include "velquad/framework.h"
#include "velquad/triangulation.h"

namespace {

constexpr double kLargest = 1.7976931348623157e308;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr std::uint64_t kNone = ~std::uint64_t{0};

struct Vertex {
    double x;
    double y;
    double z;
    std::uint64_t id = kNone;
};

class DelaunayQuestion : public testing::Test {
  protected:
    DelaunayQuestion() {
        const tagMAT_RECT2D extent{-100, -100, 100, 100};
        handle = matInitDelaunay2D(&extent);
    }
    ~DelaunayQuestion() override { matExitDelaunay2D(handle); }
    DelaunayQuestion(const DelaunayQuestion&) = delete;
    DelaunayQuestion& operator=(const DelaunayQuestion&) = delete;

    void add(const std::vector<Vertex>& vertices) {
        for (const Vertex& v : vertices) {
            const tagPOINT3D point{v.x, v.y, v.z};
            ASSERT_EQ(matExtentWithIdDelaunay2D(&handle, &point, v.id, kLargest), 1);
        }
    }

    unsigned int find(double x, double y, unsigned int flags) {
        place = {x, y, -77.0};
        isOutside = -5;
        return matFindPositionInDelaunay2DEx(handle, &place, corners, &isOutside, flags);
    }

    unsigned int findById(double x, double y, std::uint64_t id, unsigned int flags) {
        place = {x, y, -77.0};
        isOutside = -5;
        return matFindPositionByIdInDelaunay2D(handle, &place, id, corners, ids, &isOutside, flags);
    }

    void expectPlace(double x, double y, double z) const {
        EXPECT_DOUBLE_EQ(place.x, x);
        EXPECT_DOUBLE_EQ(place.y, y);
        EXPECT_DOUBLE_EQ(place.z, z);
    }

    void* handle = nullptr;
    tagPOINT3D place{};
    tagPOINT3D corners[3] = {};
    std::uint64_t ids[3] = {};
    int isOutside = 0;
};

const std::vector<Vertex> kTriangle = {{0, 0, 0}, {6, 0, 0}, {0, 6, 3}};

TEST_F(DelaunayQuestion, PlaceOnAVertexTakesItsValue) {
    add(kTriangle);
    EXPECT_EQ(find(0, 6, 0), 1U);
    EXPECT_EQ(isOutside, 0);
    expectPlace(0, 6, 3);
    EXPECT_EQ(corners[0].z, 3);
    EXPECT_EQ(find(0.9e-6, 6, 0), 1U);
    expectPlace(0, 6, 3);
    EXPECT_EQ(find(1.1e-6, 5.9, 0), 3U);
}

TEST_F(DelaunayQuestion, PlaceInATriangleIsInterpolated) {
    add(kTriangle);
    EXPECT_EQ(find(2, 2, 0), 3U);
    EXPECT_EQ(isOutside, 0);
    expectPlace(2, 2, 1);
    double sum = 0.0;
    for (const tagPOINT3D& corner : corners)
        sum += corner.x * 10 + corner.y * 100 + corner.z * 1000;
    EXPECT_EQ(sum, 60 + 600 + 3000);
}

TEST_F(DelaunayQuestion, FlatTriangleHasNoValue) {
    // Twice its area is 3.3e-4 * 2.9e-4 = 9.57e-8.
    add({{0, 0, 1}, {3.3e-4, 0, 1}, {1.65e-4, 2.9e-4, 1}});
    corners[0].z = 55;
    EXPECT_EQ(find(1.65e-4, 1e-4, 0), 0U);
    EXPECT_EQ(isOutside, 0);
    EXPECT_EQ(place.x, 1.65e-4);
    EXPECT_EQ(place.y, 1e-4);
    EXPECT_EQ(place.z, -77);
    EXPECT_EQ(corners[0].z, 55);
}

TEST_F(DelaunayQuestion, TriangleThatIsJustNotFlatHasOne) {
    // Twice its area is 4e-4 * 2.6e-4 = 1.04e-7.
    add({{0, 0, 1}, {4e-4, 0, 1}, {2e-4, 2.6e-4, 1}});
    EXPECT_EQ(find(2e-4, 1e-4, 0), 3U);
    EXPECT_EQ(isOutside, 0);
    EXPECT_EQ(place.z, 1);
}

TEST_F(DelaunayQuestion, PlaceOnAnEdgeIsInterpolatedAlongIt) {
    add(kTriangle);
    EXPECT_EQ(find(0, 2, 0), 2U);
    EXPECT_EQ(isOutside, 0);
    expectPlace(0, 2, 1);
    EXPECT_EQ(find(0.9e-6, 2, 0), 2U);
    expectPlace(0, 2, 1);
    EXPECT_EQ(find(1.1e-6, 2, 0), 3U);
}

TEST_F(DelaunayQuestion, PlaceOutsideTheHullFindsTheFirstOfEqualVertices) {
    add(kTriangle);
    EXPECT_EQ(find(3, -2, 0), 1U);
    EXPECT_EQ(isOutside, 1);
    expectPlace(0, 0, 0);
    EXPECT_EQ(corners[0].x, 0);
    EXPECT_EQ(find(1000, 1000, 0), 1U) << "outside of everything";
    EXPECT_EQ(isOutside, 1);
}

TEST_F(DelaunayQuestion, PlaceOutsideTheHullFindsTheNearestEdge) {
    add({{0, 0, 0}, {6, 0, 12}, {0, 6, 3}});
    EXPECT_EQ(find(2, -1.5, 2), 2U);
    EXPECT_EQ(isOutside, 1);
    expectPlace(2, 0, 4);
    EXPECT_EQ(find(2, -1.5, 1), 2U);
    expectPlace(2, 0, 4);
    place = {2, -1.5, 0};
    EXPECT_EQ(matFindPositionInDelaunay2D(handle, &place, nullptr, nullptr), 2U);
    expectPlace(2, 0, 4);
}

TEST_F(DelaunayQuestion, EdgeMeasuresDiffer) {
    add({{-40, 0, 1}, {40, 0, 2}, {3, -6, 3}, {5, -6, 4}, {0, 60, 5}});
    // The long edge from (-40, 0) to (3, -6) passes close by, but in the mean its ends are 21.8 away; those of the
    // short one from (3, -6) to (5, -6) are 11 and 13 away.
    for (const unsigned int flags : {1U, 3U}) {
        EXPECT_EQ(find(-8, -6, flags), 2U);
        EXPECT_EQ(isOutside, 1);
        EXPECT_EQ(corners[0].x + corners[1].x, 8);
        expectPlace(3, -6, 3);
    }
    // What the function without flags measures by.
    place = {-8, -6, -77};
    EXPECT_EQ(matFindPositionInDelaunay2D(handle, &place, corners, nullptr), 2U);
    EXPECT_EQ(corners[0].x + corners[1].x, 8);
    expectPlace(3, -6, 3);
    EXPECT_EQ(find(-8, -6, 2), 2U);
    EXPECT_EQ(isOutside, 1);
    EXPECT_EQ(corners[0].x + corners[1].x, -37);
    EXPECT_NEAR(place.y, -4.4, 0.2);
}

TEST_F(DelaunayQuestion, EdgeWinsAgainstItsEqualDistantEnd) {
    add(kTriangle);
    EXPECT_EQ(find(-1, -1, 2), 2U);
    EXPECT_EQ(isOutside, 1);
    expectPlace(0, 0, 0);
}

TEST_F(DelaunayQuestion, VerticesAndEdgesBeyondTheLargestFloatAreNotFound) {
    add({{0, 0, 1}, {6, 0, 2}, {0, 6, 3}});
    // 1.8e19 squared is 3.24e38, and 1.9e19 squared 3.61e38; the largest float is 3.4028e38.
    EXPECT_EQ(find(1.8e19, 0, 0), 1U);
    expectPlace(0, 0, 1);
    EXPECT_EQ(find(1.9e19, 0, 0), 0U);
    EXPECT_EQ(isOutside, 1);
    expectPlace(1.9e19, 0, -77);
    // An edge is measured by its distance, not by the square of it.
    for (const unsigned int flags : {1U, 2U}) {
        EXPECT_EQ(find(1.9e19, 0, flags), 2U);
        expectPlace(6, 0, 2);
        EXPECT_EQ(find(3.4e38, 0, flags), 2U);
        EXPECT_EQ(find(3.41e38, 0, flags), 0U);
    }
}

TEST_F(DelaunayQuestion, LoneVertexIsFoundWithoutEdges) {
    add({{5, 5, 8}});
    EXPECT_EQ(find(1, 1, 3), 1U);
    expectPlace(5, 5, 8);
    EXPECT_EQ(isOutside, 1);
}

TEST_F(DelaunayQuestion, NothingIsFoundWithoutVertices) {
    EXPECT_EQ(find(1, 1, 3), 0U);
    expectPlace(1, 1, -77);
    EXPECT_EQ(isOutside, 1);
    EXPECT_EQ(find(1, 1, 8), 0U);
    EXPECT_EQ(isOutside, -5);
}

TEST_F(DelaunayQuestion, IdsOfTheCornersMustAgree) {
    add({{0, 0, 0, 1}, {6, 0, 0, 1}, {0, 6, 3, 2}});
    EXPECT_EQ(findById(1, 2, kNone, 2), 2U);
    EXPECT_EQ(isOutside, 1);
    // The only edge with one identifier at both ends.
    expectPlace(1, 0, 0);
    EXPECT_EQ(ids[0], 1U);
    EXPECT_EQ(ids[1], 1U);
    EXPECT_EQ(findById(1, 2, 2, 2), 1U);
    expectPlace(0, 6, 3);
    EXPECT_EQ(ids[0], 2U);
    EXPECT_EQ(findById(1, 2, 3, 3), 0U);
    EXPECT_EQ(isOutside, 1);
    EXPECT_EQ(find(1, 2, 2), 3U) << "without the filter";
}

TEST_F(DelaunayQuestion, IdsThatAgreeAreInside) {
    add({{0, 0, 0, 4}, {6, 0, 0, 4}, {0, 6, 3, 4}});
    for (const std::uint64_t id : {std::uint64_t{4}, kNone}) {
        EXPECT_EQ(findById(2, 2, id, 0), 3U);
        EXPECT_EQ(isOutside, 0);
        EXPECT_EQ(ids[2], 4U);
    }
    EXPECT_EQ(findById(2, 2, 5, 0), 0U);
}

TEST_F(DelaunayQuestion, VerticesWithoutIdCountInsideButNotOutside) {
    add(kTriangle);
    EXPECT_EQ(findById(2, 2, kNone, 0), 3U);
    EXPECT_EQ(findById(-2, -2, kNone, 3), 0U);
}

TEST_F(DelaunayQuestion, VerticesGetNoIdUnlessOneIsGiven) {
    const tagPOINT3D point{4, 5, 6};
    ASSERT_EQ(matExtentDelaunay2D(&handle, &point, kLargest), 1);
    EXPECT_EQ(findById(4, 5, kNone, 0), 1U);
    EXPECT_EQ(ids[0], kNone);
    EXPECT_EQ(findById(4, 5, 0, 0), 0U);
}

TEST_F(DelaunayQuestion, InterpolationWeighsByInversePowers) {
    add({{0, 0, 10}, {3, 0, 20}});
    EXPECT_EQ(find(1, 0, 8), 1U);
    // (10 / 1 + 20 / 4) / (1 + 1 / 4)
    expectPlace(1, 0, 12);
    EXPECT_EQ(isOutside, 0);
    EXPECT_EQ(find(1, 0, 16), 1U);
    expectPlace(1, 0, 11.25 / 1.0625);
    EXPECT_EQ(find(1, 0, 24), 1U);
    expectPlace(1, 0, 11.25 / 1.0625);
}

TEST_F(DelaunayQuestion, InterpolationAtAVertexIsThatVertex) {
    add({{0, 0, 10}, {3, 0, 20}});
    EXPECT_EQ(find(3 + 0.9e-5, 0, 8), 1U);
    expectPlace(3, 0, 20);
    EXPECT_EQ(isOutside, -5) << "not written";
    EXPECT_EQ(find(3 + 1.1e-5, 0, 8), 1U);
    EXPECT_EQ(place.x, 3 + 1.1e-5);
    EXPECT_EQ(isOutside, 0);
    // A squared distance of exactly 1e-10 is one.
    const double x = 9.999754996998677e-06;
    ASSERT_EQ(x * x + 7e-8 * 7e-8, 1e-10);
    EXPECT_EQ(find(x, 7e-8, 8), 1U);
    EXPECT_EQ(place.x, x);
    EXPECT_EQ(isOutside, 0);
}

TEST_F(DelaunayQuestion, InterpolationOfZerosIsZero) {
    add({{0, 0, 0}, {3, 0, 0}});
    EXPECT_EQ(find(1, 7, 8), 1U);
    expectPlace(1, 7, 0);
}

// Dividing by the largest weight or value changes the last bits; these are the ones without a division.
TEST_F(DelaunayQuestion, InterpolationDoesNotDivideByWeightsBelowTheLeastFloat) {
    add({{0, 0, 10}, {3, 0, 20.5}});
    EXPECT_EQ(find(1.01e12, 0, 16), 1U);
    EXPECT_EQ(place.z, 15.250000000031187);
}

TEST_F(DelaunayQuestion, InterpolationDoesNotDivideByValuesNextToNothing) {
    add({{0, 0, 3e-17}, {30, 7, 7e-17}});
    EXPECT_EQ(find(1.2, 0, 8), 1U);
    EXPECT_EQ(place.z, 3.006546347229168e-17);
}

TEST_F(DelaunayQuestion, InterpolationDividesByTheLeastValueThatCounts) {
    add({{0, 0, 3e-16}, {30, 7, -1e-15}});
    EXPECT_EQ(find(1.2, 0, 8), 1U);
    EXPECT_EQ(place.z, 2.9787243715052057e-16);
}

TEST_F(DelaunayQuestion, InterpolationWithoutAnyWeightGivesNoNumber) {
    add({{0, 0, 10}, {3, 0, 20}});
    EXPECT_EQ(find(1e160, 0, 8), 1U);
    EXPECT_EQ(isOutside, 0);
    EXPECT_EQ(place.x, 1e160);
    EXPECT_TRUE(std::isnan(place.z));
}

TEST_F(DelaunayQuestion, InterpolationByIdTakesExactlyThatId) {
    add({{0, 0, 10, 1}, {3, 0, 20, 2}, {9, 9, 40}});
    EXPECT_EQ(findById(1, 0, 2, 8), 1U);
    expectPlace(1, 0, 20);
    EXPECT_EQ(ids[0], 2U);
    EXPECT_EQ(findById(1, 0, kNone, 8), 1U);
    expectPlace(1, 0, 40);
    EXPECT_EQ(findById(1, 0, 7, 8), 0U);
}

TEST_F(DelaunayQuestion, PlaceThatIsNotFiniteIsNotFound) {
    add(kTriangle);
    for (const double bad : {kNaN, kInfinity, -kInfinity}) {
        for (const unsigned int flags : {0U, 1U, 2U, 8U, 16U}) {
            EXPECT_EQ(find(bad, 1, flags), 0U) << flags;
            EXPECT_EQ(find(1, bad, flags), 0U) << flags;
            EXPECT_EQ(place.z, -77);
        }
    }
}

TEST_F(DelaunayQuestion, NullIsRefused) {
    add(kTriangle);
    tagPOINT3D point{1, 1, 0};
    EXPECT_EQ(matFindPositionInDelaunay2D(nullptr, &point, nullptr, nullptr), 0U);
    EXPECT_EQ(matFindPositionInDelaunay2DEx(handle, nullptr, nullptr, nullptr, 0), 0U);
    EXPECT_EQ(matFindPositionByIdInDelaunay2D(nullptr, &point, 1, nullptr, nullptr, nullptr, 0), 0U);
    EXPECT_EQ(matFindPositionByIdInDelaunay2D(handle, &point, kNone, nullptr, nullptr, nullptr, 0), 3U);
    EXPECT_EQ(matGetPointListOfDelaunay2D(nullptr, &point), 0U);
    EXPECT_EQ(matDrawDelaunay2D(handle, nullptr, 4, nullptr, nullptr), 0);
    const auto draw = [](tagPOINT3D*, tagPOINT3D*, void*, void*) { return 0; };
    EXPECT_EQ(matDrawDelaunay2D(nullptr, draw, 4, nullptr, nullptr), 0);
    const tagMAT_RECT2D rect{0, 0, 1, 1};
    const auto visit = [](tagPOINT3D*, void*) { return 1; };
    EXPECT_EQ(matEnumDelaunayPositionsInRect(nullptr, &rect, 0, visit, nullptr), 0);
    EXPECT_EQ(matEnumDelaunayPositionsInRect(handle, nullptr, 0, visit, nullptr), 0);
    EXPECT_EQ(matEnumDelaunayPositionsInRect(handle, &rect, 0, nullptr, nullptr), 0);
    EXPECT_EQ(matSetZValueOfDelaunayPosition(nullptr, &point, 1.0), 0);
    EXPECT_EQ(matSetZValueOfDelaunayPosition(handle, nullptr, 1.0), 0);
    EXPECT_EQ(matSetIDOfDelaunayPosition(nullptr, 1, &point, 1.0), 0);
    EXPECT_EQ(matSetIDOfDelaunayPosition(handle, 1, nullptr, 1.0), 0);
}

int countEdge(tagPOINT3D*, tagPOINT3D*, void* user1, void* user2) {
    ++*static_cast<int*>(user1);
    EXPECT_EQ(user2, static_cast<char*>(user1) + 1);
    return 0;
}

TEST_F(DelaunayQuestion, DrawFlagsSelectEdges) {
    int count = 0;
    const auto draw = [&](unsigned int flags) {
        count = 0;
        EXPECT_EQ(matDrawDelaunay2D(handle, countEdge, flags, &count, reinterpret_cast<char*>(&count) + 1),
                  1);
        return count;
    };
    EXPECT_EQ(draw(2), 3) << "the helpers' own edges";
    add(kTriangle);
    // Six vertices have twelve edges.
    EXPECT_EQ(draw(0), 0);
    EXPECT_EQ(draw(1), 0);
    EXPECT_EQ(draw(2), 9);
    EXPECT_EQ(draw(4), 3);
    EXPECT_EQ(draw(6), 12);
    void* empty = matInitDelaunay2D(nullptr);
    count = 0;
    EXPECT_EQ(matDrawDelaunay2D(empty, countEdge, 6, &count, nullptr), 1);
    EXPECT_EQ(count, 0);
    matExitDelaunay2D(empty);
}

int throwsAtOnce(tagPOINT3D*, tagPOINT3D*, void*, void*) {
    throw std::runtime_error("callback");
}
int throwsFramework(tagPOINT3D*, void*) {
    throw new CException();
}

TEST_F(DelaunayQuestion, ExceptionsOfCallbacksTurnIntoFailures) {
    add(kTriangle);
    EXPECT_EQ(matDrawDelaunay2D(handle, throwsAtOnce, 4, nullptr, nullptr), 0);
    const tagMAT_RECT2D rect{-1, -1, 9, 9};
    EXPECT_EQ(matEnumDelaunayPositionsInRect(handle, &rect, 0, throwsFramework, nullptr), 0);
}

struct Visited {
    std::vector<double> z;
    std::size_t stopAt = 1000;
};

int visitPosition(tagPOINT3D* position, void* user) {
    auto& visited = *static_cast<Visited*>(user);
    visited.z.push_back(position->z);
    return visited.z.size() == visited.stopAt ? -3 : 1;
}

TEST_F(DelaunayQuestion, EnumerationFollowsTheOrderOfInsertion) {
    add({{5, 5, 1}, {1, 1, 2}, {50, 50, 3}, {3, 2, 4}, {0, 5, 5}});
    for (const tagMAT_RECT2D rect : {tagMAT_RECT2D{0, 0, 5, 5}, tagMAT_RECT2D{5, 5, 0, 0},
                                     tagMAT_RECT2D{5, 0, 0, 5}, tagMAT_RECT2D{0, 5, 5, 0}}) {
        Visited visited;
        EXPECT_EQ(matEnumDelaunayPositionsInRect(handle, &rect, 0, visitPosition, &visited), 1);
        EXPECT_EQ(visited.z, (std::vector<double>{1, 2, 4, 5}));
    }
}

TEST_F(DelaunayQuestion, EnumerationHasAMargin) {
    add({{5 + 0.5e-7, 5, 1}, {5 + 1.5e-3, 5, 2}, {8, 8, 3}});
    const tagMAT_RECT2D rect{0, 0, 5, 5};
    Visited visited;
    EXPECT_EQ(matEnumDelaunayPositionsInRect(handle, &rect, 0, visitPosition, &visited), 1);
    EXPECT_EQ(visited.z, (std::vector<double>{1}));
}

TEST_F(DelaunayQuestion, EnumerationMarginIsTheSameAtEachSide) {
    add({{5 + 1.5e-7, 1, 1}, {-1.5e-7, 2, 2}, {2, 5 + 1.5e-7, 3}, {2, -1.5e-7, 4}});
    add({{5 + 0.5e-7, 3, 5}, {-0.5e-7, 4, 6}, {3, 5 + 0.5e-7, 7}, {3, -0.5e-7, 8}});
    const tagMAT_RECT2D rect{0, 0, 5, 5};
    Visited visited;
    EXPECT_EQ(matEnumDelaunayPositionsInRect(handle, &rect, 0, visitPosition, &visited), 1);
    EXPECT_EQ(visited.z, (std::vector<double>{5, 6, 7, 8}));
}

TEST_F(DelaunayQuestion, EnumerationEndsWithTheCallbacksValue) {
    add({{5, 5, 1}, {1, 1, 2}, {3, 2, 4}});
    const tagMAT_RECT2D rect{0, 0, 5, 5};
    Visited visited{{}, 2};
    EXPECT_EQ(matEnumDelaunayPositionsInRect(handle, &rect, 0, visitPosition, &visited), -3);
    EXPECT_EQ(visited.z, (std::vector<double>{1, 2}));
}

TEST_F(DelaunayQuestion, EnumerationOfTrianglesTakesTheirCorners) {
    add({{0, 0, 1}, {40, 0, 2}, {0, 40, 3}, {40, 40, 4}, {-60, -60, 5}});
    const tagMAT_RECT2D rect{2, 1, 3, 2};
    Visited visited;
    EXPECT_EQ(matEnumDelaunayPositionsInRect(handle, &rect, 0, visitPosition, &visited), 1);
    EXPECT_TRUE(visited.z.empty());
    EXPECT_EQ(matEnumDelaunayPositionsInRect(handle, &rect, 2, visitPosition, &visited), 1);
    EXPECT_EQ(visited.z, (std::vector<double>{1, 2, 3}));
}

TEST_F(DelaunayQuestion, EnumerationNeedsPoints) {
    void* empty = matInitDelaunay2D(nullptr);
    const tagMAT_RECT2D rect{0, 0, 1, 1};
    Visited visited;
    EXPECT_EQ(matEnumDelaunayPositionsInRect(empty, &rect, 0, visitPosition, &visited), 0);
    EXPECT_EQ(matEnumDelaunayPositionsInRect(empty, &rect, 2, visitPosition, &visited), 0);
    matExitDelaunay2D(empty);
    // With helpers only there is nothing to visit.
    EXPECT_EQ(matEnumDelaunayPositionsInRect(handle, &rect, 2, visitPosition, &visited), 1);
    EXPECT_TRUE(visited.z.empty());
}

TEST_F(DelaunayQuestion, EnumerationReportsShortage) {
    add({{0, 0, 1}, {40, 0, 2}, {0, 40, 3}, {40, 40, 4}});
    for (const unsigned int flags : {0U, 2U}) {
        velquad::test::forEachFailingAllocation([&] {
            const tagMAT_RECT2D rect{-1, -1, 41, 41};
            int count = 0;
            const auto visit = [](tagPOINT3D*, void* user) {
                ++*static_cast<int*>(user);
                return 1;
            };
            return matEnumDelaunayPositionsInRect(handle, &rect, flags, visit, &count) == 0;
        });
    }
}

TEST(DelaunayMarginRect, MeetsTriangles) {
    const velquad::triangulation::MarginRect rect({10, 10, 0, 0});
    const auto meets = [&rect](tagPOINT2D a, tagPOINT2D b, tagPOINT2D c) {
        return rect.meetsTriangle(a, b, c);
    };
    EXPECT_TRUE(meets({1, 1}, {-5, 0}, {-5, 5})) << "a corner inside";
    EXPECT_TRUE(meets({-100, -100}, {200, -100}, {0, 300})) << "the rectangle inside";
    EXPECT_TRUE(meets({-5, 4}, {15, 4}, {5, 40})) << "over the right side";
    EXPECT_TRUE(meets({4, -5}, {6, -5}, {5, 50})) << "over the top";
    EXPECT_FALSE(meets({-5, 4}, {-1, 4}, {-3, 9})) << "left of it";
    EXPECT_FALSE(meets({11, 4}, {12, 4}, {13, 9}));
    EXPECT_FALSE(meets({1, -4}, {2, -4}, {3, -1}));
    EXPECT_FALSE(meets({1, 14}, {2, 14}, {3, 11}));
    EXPECT_FALSE(meets({-9, 3}, {3, -9}, {-9, -9})) << "past a corner";
}

TEST(DelaunayMarginRect, IsApartFromATriangleExactlyAtItsMargin) {
    const velquad::triangulation::MarginRect rect({0, 0, 10, 10});
    // The vertex next to a corner of the rectangle brings that corner within the margin of the triangle's own test.
    EXPECT_FALSE(rect.meetsTriangle({-1e-7, 0}, {-20, -5}, {-20, 5}));
    EXPECT_FALSE(rect.meetsTriangle({10 + 1e-7, 0}, {30, -5}, {30, 5}));
    EXPECT_FALSE(rect.meetsTriangle({0, -1e-7}, {-5, -20}, {5, -20}));
    EXPECT_FALSE(rect.meetsTriangle({0, 10 + 1e-7}, {-5, 30}, {5, 30}));
    EXPECT_TRUE(rect.meetsTriangle({-0.99e-7, 0}, {-20, -5}, {-20, 5}));
    EXPECT_TRUE(rect.meetsTriangle({10 + 0.99e-7, 0}, {30, -5}, {30, 5}));
    EXPECT_TRUE(rect.meetsTriangle({0, -0.99e-7}, {-5, -20}, {5, -20}));
    EXPECT_TRUE(rect.meetsTriangle({0, 10 + 0.99e-7}, {-5, 30}, {5, 30}));
}

TEST(DelaunayMarginRect, CornersCountBeyondAVertexUpToTheMarginOfTheSum) {
    // Beyond the vertex at the origin both coordinates of (p, p) are -0.02 p, and the vertex's own one is 1 + 0.04 p.
    const tagPOINT2D a{0, 0};
    const tagPOINT2D b{-100, 50};
    const tagPOINT2D c{50, -100};
    const velquad::triangulation::MarginRect within({2e-6, 2e-6, 10, 10});
    const velquad::triangulation::MarginRect beyond({3e-6, 3e-6, 10, 10});
    for (const auto& [first, second, third] :
         {std::tuple{a, b, c}, std::tuple{b, c, a}, std::tuple{c, a, b}, std::tuple{a, c, b}}) {
        EXPECT_TRUE(within.meetsTriangle(first, second, third));
        EXPECT_FALSE(beyond.meetsTriangle(first, second, third));
    }
}

TEST(DelaunayMarginRect, FlatTrianglesHoldNoRectangle) {
    const velquad::triangulation::MarginRect rect({0, 0, 1e-6, 1e-6});
    // Twice the area is 3e-4 * 3e-4 = 9e-8, then 3e-4 * 3.6e-4 = 1.08e-7.
    EXPECT_FALSE(rect.meetsTriangle({-1e-4, -1e-4}, {2e-4, -1e-4}, {0, 2e-4}));
    EXPECT_TRUE(rect.meetsTriangle({-1e-4, -1e-4}, {2e-4, -1e-4}, {0, 2.6e-4}));
}

TEST_F(DelaunayQuestion, ValuesAreSetAtTheNearestVertex) {
    add({{0, 0, 1}, {4, 0, 2}});
    const tagPOINT3D close{1.5, 0, 9};
    EXPECT_EQ(matSetZValueOfDelaunayPosition(handle, &close, 1.5), 1);
    EXPECT_EQ(matSetZValueOfDelaunayPosition(handle, &close, 1.4999999), 0);
    EXPECT_EQ(matSetZValueOfDelaunayPosition(handle, &close, -0.5), 0) << "no relative tolerance";
    // Equally far from both: the first one.
    const tagPOINT3D middle{2, 0, 7};
    EXPECT_EQ(matSetIDOfDelaunayPosition(handle, 55, &middle, 2.0), 1);
    tagPOINT3D points[2];
    EXPECT_EQ(matGetPointListOfDelaunay2D(handle, points), 2U);
    EXPECT_EQ(points[0].z, 9);
    EXPECT_EQ(points[1].z, 2);
    EXPECT_EQ(findById(0, 0, 55, 0), 1U);
    EXPECT_EQ(ids[0], 55U);
}

TEST_F(DelaunayQuestion, DistancesNextToNothingAreWithinAnyTolerance) {
    add({{0, 0, 1}});
    // 3.1e-4 squared is 9.61e-8, and 3.2e-4 squared 1.024e-7.
    const tagPOINT3D beside{3.1e-4, 0, 9};
    const tagPOINT3D beyond{3.2e-4, 0, 9};
    EXPECT_EQ(matSetZValueOfDelaunayPosition(handle, &beyond, 0.0), 0);
    EXPECT_EQ(matSetIDOfDelaunayPosition(handle, 5, &beyond, 3.1e-4), 0);
    EXPECT_EQ(matSetZValueOfDelaunayPosition(handle, &beside, 0.0), 1);
    EXPECT_EQ(matSetIDOfDelaunayPosition(handle, 5, &beside, 0.0), 1);
    EXPECT_EQ(findById(0, 0, 5, 0), 1U);
    expectPlace(0, 0, 9);
}

TEST_F(DelaunayQuestion, ValuesAreNotSetWithoutVertices) {
    const tagPOINT3D point{0, 0, 9};
    EXPECT_EQ(matSetZValueOfDelaunayPosition(handle, &point, kInfinity), 0);
    EXPECT_EQ(matSetIDOfDelaunayPosition(handle, 1, &point, kInfinity), 0);
}

}  // namespace
