#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <random>
#include <vector>

#include "tests/support/allocation_failure.h"
#include "velquad/geometry.h"

namespace {

constexpr int kFinestTestedLevel = 8;

int halfCountOf(CMatNormalEncoder& encoder) {
    return (encoder.GetNumberOfEncodedDirections() - 1) / 2;
}

int encode(CMatNormalEncoder& encoder, float x, float y, float z) {
    float vector[3] = {x, y, z};
    return encoder.GetEncodedDirection(vector);
}

}  // namespace

TEST(NormalEncoder, CountsDirectionsOfEachLevel) {
    // 2 (s^2 + (s + 1)^2) + 1 for s = 1, 2, 4, ..., 256.
    const int expected[] = {11, 27, 83, 291, 1091, 4227, 16643, 66051, 263171};
    for (int level = 0; level <= kFinestTestedLevel; ++level) {
        CMatNormalEncoder encoder(level);
        EXPECT_EQ(encoder.GetNumberOfEncodedDirections(), expected[level]);
    }
}

TEST(NormalEncoder, ElevenDirectionsAtLevelZero) {
    CMatNormalEncoder encoder(0);
    // The lattice rows a = -1, 0, 1: two corners, the pole, two corners.
    const float expected[5][3] = {{0, -1, 0}, {1, 0, 0}, {0, 0, 1}, {-1, 0, 0}, {0, 1, 0}};
    for (int i = 0; i < 5; ++i) {
        const float* upper = encoder.GetDecodedGradient(i);
        const float* lower = encoder.GetDecodedGradient(i + 5);
        for (int c = 0; c < 2; ++c) {
            EXPECT_EQ(upper[c], expected[i][c]) << i;
            EXPECT_EQ(lower[c], expected[i][c]) << i;
        }
        EXPECT_EQ(upper[2], expected[i][2]) << i;
        EXPECT_EQ(lower[2], -expected[i][2]) << i;
    }
    EXPECT_EQ(encode(encoder, 0, -1, 0), 0);
    EXPECT_EQ(encode(encoder, 1, 0, 0), 1);
    EXPECT_EQ(encode(encoder, 0, 0, 1), 2);
    EXPECT_EQ(encode(encoder, -1, 0, 0), 3);
    EXPECT_EQ(encode(encoder, 0, 1, 0), 4);
    EXPECT_EQ(encode(encoder, 0, 0, -1), 7);
}

// Level 1, found by hand: rows a = -1, -1/2, 0, 1/2, 1 with 3, 2, 3, 2, 3 points.
TEST(NormalEncoder, LatticeOfLevelOne) {
    CMatNormalEncoder encoder(1);
    // Row 1 has b = -1/2 and 1/2: (p, w) = (0, -1/2) and (1/2, 0), with q = 1/2.
    const float half = 0.70710678F;
    const float* third = encoder.GetDecodedGradient(3);
    EXPECT_EQ(third[0], 0.0F);
    EXPECT_FLOAT_EQ(third[1], -half);
    EXPECT_FLOAT_EQ(third[2], half);
    const float* fourth = encoder.GetDecodedGradient(4);
    EXPECT_FLOAT_EQ(fourth[0], half);
    EXPECT_EQ(fourth[1], 0.0F);
    EXPECT_FLOAT_EQ(fourth[2], half);
    // Row 0, middle: b = 0, (p, w) = (1/2, -1/2) on the equator.
    const float* first = encoder.GetDecodedGradient(1);
    EXPECT_FLOAT_EQ(first[0], half);
    EXPECT_FLOAT_EQ(first[1], -half);
    EXPECT_EQ(first[2], 0.0F);
    // Row 2, middle: the pole.
    EXPECT_EQ(encoder.GetDecodedGradient(6)[2], 1.0F);
    EXPECT_EQ(encode(encoder, 0, 0, 5), 6);
    EXPECT_EQ(encode(encoder, 0, 0, -5), 19);
}

TEST(NormalEncoder, NullVectorIsTheLastIndex) {
    for (int level = 0; level <= kFinestTestedLevel; ++level) {
        CMatNormalEncoder encoder(level);
        const int last = 2 * halfCountOf(encoder);
        EXPECT_EQ(encode(encoder, 0.0F, 0.0F, 0.0F), last);
        EXPECT_EQ(encode(encoder, -0.0F, 0.0F, -0.0F), last);
        const float* decoded = encoder.GetDecodedGradient(last);
        EXPECT_EQ(decoded[0], 0.0F);
        EXPECT_EQ(decoded[1], 0.0F);
        EXPECT_EQ(decoded[2], 0.0F);
    }
}

TEST(NormalEncoder, PolesDifferByHalfTheCount) {
    for (int level = 0; level <= kFinestTestedLevel; ++level) {
        CMatNormalEncoder encoder(level);
        EXPECT_EQ(encode(encoder, 0, 0, -1) - encode(encoder, 0, 0, 1), halfCountOf(encoder));
    }
}

TEST(NormalEncoder, DecodedDirectionsHaveUnitLength) {
    for (int level = 0; level <= kFinestTestedLevel; ++level) {
        CMatNormalEncoder encoder(level);
        const int count = encoder.GetNumberOfEncodedDirections() - 1;
        for (int i = 0; i < count; ++i) {
            const float* d = encoder.GetDecodedGradient(i);
            const auto square = [](float v) { return static_cast<double>(v) * static_cast<double>(v); };
            ASSERT_NEAR(std::sqrt(square(d[0]) + square(d[1]) + square(d[2])), 1.0, 2e-7)
                << level << ", " << i;
        }
    }
}

TEST(NormalEncoder, DecodedDirectionsGiveTheirIndexBack) {
    for (int level = 0; level <= kFinestTestedLevel; ++level) {
        SCOPED_TRACE(level);
        CMatNormalEncoder encoder(level);
        const int half = halfCountOf(encoder);
        int equatorCount = 0;
        for (int i = 0; i <= 2 * half; ++i) {
            float* d = encoder.GetDecodedGradient(i);
            // The equator of the lower half is the one of the upper half.
            const bool isLowerEquator = half <= i && i < 2 * half && d[2] == 0.0F;
            if (isLowerEquator) {
                ++equatorCount;
                ASSERT_TRUE(std::signbit(d[2]));
            }
            ASSERT_EQ(encoder.GetEncodedDirection(d), isLowerEquator ? i - half : i);
        }
        EXPECT_EQ(equatorCount, 4 << level);
    }
}

TEST(NormalEncoder, LowerHalfMirrorsTheUpperOne) {
    CMatNormalEncoder encoder(4);
    const int half = halfCountOf(encoder);
    for (int i = 0; i < half; ++i) {
        const float* upper = encoder.GetDecodedGradient(i);
        const float* lower = encoder.GetDecodedGradient(half + i);
        ASSERT_EQ(lower[0], upper[0]);
        ASSERT_EQ(lower[1], upper[1]);
        ASSERT_EQ(lower[2], -upper[2]);
        ASSERT_GE(upper[2], 0.0F);
    }
}

TEST(NormalEncoder, AnyDirectionEncodesToANearOne) {
    std::mt19937_64 random(3);
    std::normal_distribution<float> component;
    for (int level = 0; level <= kFinestTestedLevel; ++level) {
        CMatNormalEncoder encoder(level);
        // x and y on the octahedron round by half a cell of 1 / s each, z then by one at most; towards the sphere
        // differences grow by no more than sqrt(3).
        const double widest = std::sqrt(1.5) * std::sqrt(3.0) / (1 << level) + 1e-6;
        for (int round = 0; round < 2000; ++round) {
            float v[3] = {component(random), component(random), component(random)};
            const float* d = encoder.GetDecodedGradient(encoder.GetEncodedDirection(v));
            const double length = std::sqrt(static_cast<double>(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]));
            double squared = 0.0;
            for (int c = 0; c < 3; ++c) {
                const double difference = static_cast<double>(v[c]) / length - static_cast<double>(d[c]);
                squared += difference * difference;
            }
            ASSERT_LT(std::sqrt(squared), widest) << level << ", " << round;
        }
    }
}

/// Another way to the index of a place: every cell inside the diamond |p| + |w| <= s belongs to the lattice point on
/// it, and a cell outside to the nearest cell inside of the same p.
TEST(NormalEncoder, IndexCountsTheLatticePointsRowByRow) {
    std::mt19937_64 random(6);
    std::normal_distribution<float> component;
    for (int level = 0; level <= kFinestTestedLevel; ++level) {
        CMatNormalEncoder encoder(level);
        const int s = 1 << level;
        for (int round = 0; round < 3000; ++round) {
            float v[3] = {component(random), component(random), component(random)};
            if (round % 3 == 0) v[2] = 0.0F;
            const float scale = 1.0F / (std::fabs(v[1]) + std::fabs(v[0]) + std::fabs(v[2]));
            const auto place = [&](float u) {
                return static_cast<int>((static_cast<double>(u * scale) + 1.0) * s + 0.5) - s;
            };
            const int p = place(v[0]);
            int w = place(v[1]);
            const int rim = s - std::abs(p);
            if (w > rim) w = rim;
            if (w < -rim) w = -rim;
            // p = (b - a) / 2 and w = (b + a) / 2: row a from -s to s, place b along it in steps of two.
            const int row = w - p + s;
            const int pointsBefore = (row + 1) / 2 * (s + 1) + row / 2 * s;
            const int index = pointsBefore + (p + w + s) / 2;
            ASSERT_EQ(encoder.GetEncodedDirection(v), v[2] < 0.0F ? index + halfCountOf(encoder) : index)
                << level << ", " << round;
        }
    }
}

TEST(NormalEncoder, LengthDoesNotMatter) {
    CMatNormalEncoder encoder(5);
    std::mt19937_64 random(4);
    std::normal_distribution<float> component;
    for (int round = 0; round < 1000; ++round) {
        const float x = component(random);
        const float y = component(random);
        const float z = component(random);
        const int index = encode(encoder, x, y, z);
        ASSERT_EQ(encode(encoder, x * 1024.0F, y * 1024.0F, z * 1024.0F), index);
        ASSERT_EQ(encode(encoder, x / 65536.0F, y / 65536.0F, z / 65536.0F), index);
    }
}

TEST(NormalEncoder, OddNumbersGiveAnIndexOfTheTable) {
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
    constexpr float kLargest = std::numeric_limits<float>::max();
    constexpr float kTiny = std::numeric_limits<float>::denorm_min();
    const float values[] = {0.0F, 1.0F,     -1.0F,     kInfinity, -kInfinity,
                            kNaN, kLargest, -kLargest, kTiny,     -kTiny};
    for (const int level : {0, 3}) {
        CMatNormalEncoder encoder(level);
        for (const float x : values) {
            for (const float y : values) {
                for (const float z : values) {
                    const int index = encode(encoder, x, y, z);
                    ASSERT_GE(index, 0);
                    ASSERT_LT(index, encoder.GetNumberOfEncodedDirections());
                }
            }
        }
    }
}

TEST(NormalEncoder, TableIsWhatDecodingPointsInto) {
    CMatNormalEncoder encoder(2);
    float* table = encoder.GetDecodedGradientTable();
    EXPECT_EQ(encoder.GetDecodedGradient(0), table);
    EXPECT_EQ(encoder.GetDecodedGradient(82), table + 246);
}

TEST(NormalEncoder, AssignmentSharesTheTables) {
    const std::ptrdiff_t before = velquad::test::liveAllocations();
    {
        CMatNormalEncoder target(1);
        {
            CMatNormalEncoder source(3);
            EXPECT_EQ(&(target = source), &target);
            EXPECT_EQ(target.GetDecodedGradientTable(), source.GetDecodedGradientTable());
            EXPECT_EQ(target.GetNumberOfEncodedDirections(), 291);
            // The tables that the target gave up are gone.
            EXPECT_EQ(velquad::test::liveAllocations(), before + 1);
        }
        // The source is gone, its tables live on.
        EXPECT_EQ(encode(target, 0, 0, -1) - encode(target, 0, 0, 1), 145);
        EXPECT_EQ(target.GetDecodedGradient(290)[0], 0.0F);
    }
    EXPECT_EQ(velquad::test::liveAllocations(), before);
}

TEST(NormalEncoder, AssignmentToItselfAndCopiesKeepTheTables) {
    const std::ptrdiff_t before = velquad::test::liveAllocations();
    {
        CMatNormalEncoder encoder(2);
        float* table = encoder.GetDecodedGradientTable();
        CMatNormalEncoder& same = encoder;
        encoder = same;
        EXPECT_EQ(encoder.GetDecodedGradientTable(), table);
        EXPECT_EQ(encode(encoder, 0, 0, 1), 20);
        auto copy = std::make_unique<CMatNormalEncoder>(encoder);
        EXPECT_EQ(copy->GetDecodedGradientTable(), table);
        copy.reset();
        EXPECT_EQ(encode(encoder, 0, 0, 1), 20);
    }
    EXPECT_EQ(velquad::test::liveAllocations(), before);
}

TEST(NormalEncoder, RebuildsItsTablesWhenTheLevelChanged) {
    static_assert(sizeof(CMatNormalEncoder) == 40);
    const std::ptrdiff_t before = velquad::test::liveAllocations();
    {
        CMatNormalEncoder encoder(0);
        CMatNormalEncoder sharing(encoder);
        // The level is the first field.
        const int finer = 2;
        std::memcpy(reinterpret_cast<unsigned char*>(&encoder), &finer, sizeof finer);
        EXPECT_EQ(encoder.GetNumberOfEncodedDirections(), 83);
        EXPECT_EQ(encode(encoder, 0, 0, 1), 20);
        EXPECT_EQ(encode(encoder, 0, 0, 0), 82);
        const int finest = 3;
        std::memcpy(reinterpret_cast<unsigned char*>(&encoder), &finest, sizeof finest);
        EXPECT_EQ(encoder.GetDecodedGradient(290)[2], 0.0F);
        EXPECT_EQ(encode(encoder, 0, 0, 0), 290);
        // Who shared the old tables keeps them.
        EXPECT_EQ(encode(sharing, 0, 0, -1), 7);
    }
    EXPECT_EQ(velquad::test::liveAllocations(), before);
}

TEST(NormalEncoder, ThrowsWithoutMemory) {
    const std::size_t count = velquad::test::forEachFailingAllocation([] {
        try {
            CMatNormalEncoder encoder(2);
            EXPECT_EQ(encode(encoder, 0, 0, 1), 20);
            return false;
        } catch (const std::bad_alloc&) {
            return true;
        }
    });
    EXPECT_GT(count, 0U);
}

TEST(NormalEncoder, FailedRebuildLeavesTheObjectWhole) {
    CMatNormalEncoder encoder(0);
    const int finer = 2;
    std::memcpy(reinterpret_cast<unsigned char*>(&encoder), &finer, sizeof finer);
    velquad::test::failAllocation(1);
    EXPECT_THROW(encoder.GetDecodedGradient(0), std::bad_alloc);
    velquad::test::failAllocation(0);
    EXPECT_EQ(encode(encoder, 0, 0, 1), 20);
}

TEST(NormalEncoder, RefusesLevelsBeyondItsIndices) {
    EXPECT_THROW(CMatNormalEncoder(15), std::bad_alloc);
    EXPECT_THROW(CMatNormalEncoder(31), std::bad_alloc);
    EXPECT_THROW(CMatNormalEncoder{std::numeric_limits<int>::max()}, std::bad_alloc);
}

TEST(NormalEncoder, LevelBelowZeroHasNoLattice) {
    for (const int level : {-1, -5, std::numeric_limits<int>::min()}) {
        CMatNormalEncoder encoder(level);
        EXPECT_EQ(encoder.GetNumberOfEncodedDirections(), 3);
        EXPECT_EQ(encode(encoder, 1, 2, 3), 0);
        EXPECT_EQ(encode(encoder, 1, 2, -3), 1);
        EXPECT_EQ(encode(encoder, 0, 0, 0), 2);
        EXPECT_TRUE(std::isnan(encoder.GetDecodedGradient(0)[0]));
        EXPECT_EQ(encoder.GetDecodedGradient(2)[0], 0.0F);
    }
}
