#include <gtest/gtest.h>

#include <cstddef>
#include <utility>
#include <vector>

#include "tests/support/allocation_failure.h"
#include "velquad/curves.h"
#include "velquad/platform.h"

namespace {

using Pixels = std::vector<std::pair<int, int>>;

HGLOBAL makePolygon(const Pixels& pixels) {
    const HGLOBAL handle = GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, 8 * (pixels.size() + 1) + 4);
    auto* record = static_cast<tagPOLY*>(GlobalLock(handle));
    record->count = static_cast<DWORD>(pixels.size());
    tagPOINT* points = record->points;
    for (const auto& pixel : pixels)
        *points++ = {pixel.first, pixel.second};
    GlobalUnlock(handle);
    return handle;
}

Pixels pixelsOf(HGLOBAL handle) {
    Pixels pixels;
    const auto* record = static_cast<const tagPOLY*>(GlobalLock(handle));
    const tagPOINT* points = record->points;
    for (DWORD i = 0; i < record->count; ++i)
        pixels.emplace_back(points[i].x, points[i].y);
    GlobalUnlock(handle);
    return pixels;
}

UINT lockCount(HGLOBAL handle) {
    return GlobalFlags(handle) & GMEM_LOCKCOUNT;
}

/// Owns a polygon block; null for none.
class Polygon {
  public:
    explicit Polygon(const Pixels& pixels) : handle_(makePolygon(pixels)) {}
    explicit Polygon(HGLOBAL handle) : handle_(handle) {}
    Polygon(const Polygon&) = delete;
    Polygon& operator=(const Polygon&) = delete;
    ~Polygon() { GlobalFree(handle_); }

    HGLOBAL handle() const { return handle_; }
    Pixels pixels() const { return pixelsOf(handle_); }

  private:
    HGLOBAL handle_;
};

const Pixels kLine{{0, 0}, {2, 0}, {4, 0}, {6, 0}, {8, 0}};
const Pixels kSquare{{20, 0},  {40, 0}, {60, 0}, {60, 20}, {60, 40}, {60, 60}, {40, 60},
                     {20, 60}, {0, 60}, {0, 40}, {0, 20},  {0, 0},   {20, 0}};

TEST(PolyCalcInterpolatingCurve, StoresEachPixelOnce) {
    const Polygon source(kLine);
    unsigned int error = 99;
    const Polygon curve(polyCalcInterpolatingCurve(source.handle(), 0.25, 0.0, &error));
    EXPECT_EQ(error, 0u);
    ASSERT_NE(curve.handle(), nullptr);
    EXPECT_EQ(curve.pixels(),
              (Pixels{{0, 0}, {1, 0}, {2, 0}, {3, 0}, {4, 0}, {5, 0}, {6, 0}, {7, 0}, {8, 0}}));
}

TEST(PolyCalcInterpolatingCurve, CutsTowardsZero) {
    const Polygon source(Pixels{{-8, 0}, {-6, 0}, {-4, 0}, {-2, 0}, {0, 0}});
    const Polygon curve(polyCalcInterpolatingCurve(source.handle(), 0.75, 0.0, nullptr));
    // -8, -7.25, -6.5, -6, -5.25, -4.5, ...
    EXPECT_EQ(curve.pixels(),
              (Pixels{{-8, 0}, {-7, 0}, {-6, 0}, {-5, 0}, {-4, 0}, {-3, 0}, {-2, 0}, {-1, 0}, {0, 0}}));
}

TEST(PolyCalcInterpolatingCurve, ResultIsUnlockedAndCutToItsPoints) {
    const Polygon source(kLine);
    const Polygon curve(polyCalcInterpolatingCurve(source.handle(), 1.0, 0.0, nullptr));
    ASSERT_NE(curve.handle(), nullptr);
    EXPECT_EQ(lockCount(curve.handle()), 0u);
    EXPECT_GE(GlobalSize(curve.handle()), 8u * 9 + 4);
    EXPECT_LT(GlobalSize(curve.handle()), 8u * 9 + 4 + 64);
}

TEST(PolyCalcInterpolatingCurve, AClosedPolygonGivesAClosedCurve) {
    for (const double factor : {0.0, 0.5}) {
        const Polygon source(kSquare);
        unsigned int error = 99;
        const Polygon curve(polyCalcInterpolatingCurve(source.handle(), 3.0, factor, &error));
        ASSERT_EQ(error, 0u);
        const Pixels pixels = curve.pixels();
        ASSERT_GT(pixels.size(), 50u);
        EXPECT_EQ(pixels.front(), pixels.back());
        EXPECT_EQ(pixels.front(), kSquare.front());
    }
}

TEST(PolyCalcInterpolatingCurve, GrowsInBlocksOverLongCurves) {
    Pixels line;
    for (int i = 0; i <= 8; ++i)
        line.emplace_back(3000 * i, -7);
    const Polygon source(line);
    unsigned int error = 99;
    const Polygon curve(polyCalcInterpolatingCurve(source.handle(), 1.0, 0.0, &error));
    ASSERT_EQ(error, 0u);
    const Pixels pixels = curve.pixels();
    ASSERT_EQ(pixels.size(), 24001u);
    for (int i = 0; i < 24001; ++i)
        ASSERT_EQ(pixels[static_cast<std::size_t>(i)], std::make_pair(i, -7));
}

TEST(PolyCalcInterpolatingCurve, ReportsTheCodesOfTheCurve) {
    const auto codeOf = [](const Pixels& pixels, double step) {
        const Polygon source(pixels);
        unsigned int error = 99;
        EXPECT_EQ(polyCalcInterpolatingCurve(source.handle(), step, 0.0, &error), nullptr);
        EXPECT_EQ(polyCalcInterpolatingCurve(source.handle(), step, 0.0, nullptr), nullptr);
        return error;
    };
    EXPECT_EQ(codeOf(kLine, 0.0), 1u);
    EXPECT_EQ(codeOf({}, 1.0), 8u);
    EXPECT_EQ(codeOf({{0, 0}}, 1.0), 9u);
    EXPECT_EQ(codeOf({{0, 0}, {1, 0}, {2, 0}, {3, 0}}, 1.0), 9u);
    EXPECT_EQ(codeOf({{0, 0}, {1, 0}, {1, 0}, {3, 0}, {4, 0}}, 1.0), 10u);
    EXPECT_EQ(codeOf(kLine, 1e-14), 7u);
}

TEST(PolyCalcInterpolatingCurve, ANullHandleCannotBeLocked) {
    unsigned int error = 99;
    EXPECT_EQ(polyCalcInterpolatingCurve(nullptr, 1.0, 0.0, &error), nullptr);
    EXPECT_EQ(error, 7u);
    EXPECT_EQ(polyCalcInterpolatingCurve(nullptr, 1.0, 0.0, nullptr), nullptr);
}

TEST(PolyCalcInterpolatingCurve, TakesAwayALockOfTheCaller) {
    for (const double step : {1.0, 0.0}) {  // also when the curve fails
        const Polygon source(kLine);
        GlobalLock(source.handle());
        GlobalLock(source.handle());
        ASSERT_EQ(lockCount(source.handle()), 2u);
        const Polygon curve(polyCalcInterpolatingCurve(source.handle(), step, 0.0, nullptr));
        EXPECT_EQ(lockCount(source.handle()), 1u);
        const Polygon again(polyCalcInterpolatingCurve(source.handle(), step, 0.0, nullptr));
        EXPECT_EQ(lockCount(source.handle()), 0u);
        const Polygon unlocked(polyCalcInterpolatingCurve(source.handle(), step, 0.0, nullptr));
        EXPECT_EQ(lockCount(source.handle()), 0u);
    }
}

TEST(PolyCalcFittingCurve, KeepsTheLocksOfTheCaller) {
    for (const double step : {1.0, 0.0}) {
        const Polygon source(kLine);
        GlobalLock(source.handle());
        const Polygon curve(polyCalcFittingCurve(source.handle(), step, 3, nullptr));
        EXPECT_EQ(lockCount(source.handle()), 1u);
        GlobalUnlock(source.handle());
        const Polygon unlocked(polyCalcFittingCurve(source.handle(), step, 3, nullptr));
        EXPECT_EQ(lockCount(source.handle()), 0u);
    }
}

TEST(PolyCurves, LeaveTheirSourceUnchanged) {
    const Polygon source(kSquare);
    const Polygon interpolating(polyCalcInterpolatingCurve(source.handle(), 1.0, 0.5, nullptr));
    const Polygon fitting(polyCalcFittingCurve(source.handle(), 1.0, 4, nullptr));
    EXPECT_NE(interpolating.handle(), nullptr);
    EXPECT_NE(fitting.handle(), nullptr);
    EXPECT_EQ(source.pixels(), kSquare);
}

TEST(PolyCalcFittingCurve, OpenCurveRunsFromTheFirstToTheLastPoint) {
    const Polygon source(Pixels{{0, 0}, {2, 4}, {4, 0}});
    unsigned int error = 99;
    const Polygon curve(polyCalcFittingCurve(source.handle(), 100.0, 3, &error));
    EXPECT_EQ(error, 0u);
    EXPECT_EQ(curve.pixels(), (Pixels{{0, 0}, {2, 2}, {4, 0}}));
}

TEST(PolyCalcFittingCurve, AcceptsEqualNeighboursAndCutsTowardsZero) {
    // The middle sample is (-2.25, 2.25).
    const Polygon source(Pixels{{0, 0}, {-3, 3}, {-3, 3}});
    const Polygon curve(polyCalcFittingCurve(source.handle(), 100.0, 3, nullptr));
    EXPECT_EQ(curve.pixels(), (Pixels{{0, 0}, {-2, 2}, {-3, 3}}));
}

TEST(PolyCalcFittingCurve, ClosedCurveIsCutToPixels) {
    const Polygon source(Pixels{{0, 0}, {4, 0}, {4, 4}, {0, 4}, {0, 0}});
    const Polygon curve(polyCalcFittingCurve(source.handle(), 100.0, 3, nullptr));
    EXPECT_EQ(curve.pixels(),
              (Pixels{{2, 0}, {3, 0}, {4, 2}, {3, 3}, {2, 4}, {0, 3}, {0, 2}, {0, 0}, {2, 0}}));
}

TEST(PolyCalcFittingCurve, AllSamplesInOnePixelAreOnePoint) {
    const Polygon source(Pixels{{5, 5}, {5, 5}, {5, 5}, {5, 5}});
    const Polygon curve(polyCalcFittingCurve(source.handle(), 1.0, 3, nullptr));
    EXPECT_EQ(curve.pixels(), (Pixels{{5, 5}}));
}

TEST(PolyCalcFittingCurve, GrowsInBlocksOverLongCurves) {
    Pixels line;
    for (int i = 0; i <= 5; ++i)
        line.emplace_back(4000 * i, 0);
    const Polygon source(line);
    unsigned int error = 99;
    const Polygon curve(polyCalcFittingCurve(source.handle(), 1.0, 3, &error));
    ASSERT_EQ(error, 0u);
    const Pixels pixels = curve.pixels();
    EXPECT_GT(pixels.size(), 4096u * 3);
    EXPECT_EQ(pixels.front(), line.front());
    for (std::size_t i = 1; i < pixels.size(); ++i)
        ASSERT_GT(pixels[i].first, pixels[i - 1].first);
}

TEST(PolyCalcFittingCurve, ReportsTheCodesOfTheCurve) {
    const auto codeOf = [](const Pixels& pixels, double step, int order) {
        const Polygon source(pixels);
        unsigned int error = 99;
        EXPECT_EQ(polyCalcFittingCurve(source.handle(), step, order, &error), nullptr);
        EXPECT_EQ(polyCalcFittingCurve(source.handle(), step, order, nullptr), nullptr);
        return error;
    };
    EXPECT_EQ(codeOf(kLine, 0.0, 3), 1u);
    EXPECT_EQ(codeOf(kLine, 1.0, 2), 2u);
    EXPECT_EQ(codeOf(kLine, 1.0, 6), 4u);
    EXPECT_EQ(codeOf({}, 1.0, 3), 8u);
    unsigned int error = 99;
    EXPECT_EQ(polyCalcFittingCurve(nullptr, 1.0, 3, &error), nullptr);
    EXPECT_EQ(error, 7u);
}

/// Long enough that the target grows more than once.
Pixels longLine() {
    Pixels line;
    for (int i = 0; i <= 5; ++i)
        line.emplace_back(3000 * i, 0);
    return line;
}

/// Compares without allocating.
bool holds(HGLOBAL handle, const Pixels& expected) {
    const auto* record = static_cast<const tagPOLY*>(GlobalLock(handle));
    const tagPOINT* points = record->points;
    bool isSame = record->count == expected.size();
    for (std::size_t i = 0; isSame && i < expected.size(); ++i) {
        isSame = points[i].x == expected[i].first && points[i].y == expected[i].second;
    }
    GlobalUnlock(handle);
    return isSame;
}

/// Runs a polygon function with each allocation failing in turn. A result that could not be shrunk is still
/// complete; it shows the failure by its size.
template <class Draw>
std::size_t failEachAllocation(Draw draw) {
    const Polygon source(longLine());
    const Pixels expected = Polygon(draw(source.handle(), nullptr)).pixels();
    return velquad::test::forEachFailingAllocation([&] {
        unsigned int error = 99;
        const HGLOBAL result = draw(source.handle(), &error);
        EXPECT_EQ(lockCount(source.handle()), 0u);
        if (result == nullptr) {
            EXPECT_TRUE(error == 6 || error == 7) << error;
            return true;
        }
        EXPECT_EQ(error, 0u);
        EXPECT_EQ(lockCount(result), 0u);
        EXPECT_TRUE(holds(result, expected));
        const bool isLarger = GlobalSize(result) > 8 * expected.size() + 4;
        GlobalFree(result);
        return isLarger;
    });
}

TEST(PolyCalcInterpolatingCurve, ReportsEveryFailingAllocation) {
    EXPECT_GE(failEachAllocation([](HGLOBAL source, unsigned int* error) {
                  return polyCalcInterpolatingCurve(source, 1.0, 0.5, error);
              }),
              10u);
}

TEST(PolyCalcFittingCurve, ReportsEveryFailingAllocation) {
    EXPECT_GE(failEachAllocation([](HGLOBAL source, unsigned int* error) {
                  return polyCalcFittingCurve(source, 1.0, 3, error);
              }),
              6u);
}

}  // namespace
