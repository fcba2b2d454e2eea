// Zoom of values next to the middle between two integers, so close that the error of fast loops would put them on the
// other side of it. Samples and positions were searched for such that this error is nearly as large as it can become.
// The values in the comments, and with them the results, were computed in rational arithmetic.
#include <gtest/gtest.h>

#include <cstdint>
#include <ostream>
#include <vector>

#include "tests/support/array_data.h"
#include "tests/support/kernel_levels.h"
#include "velquad/array.h"

namespace {

using velquad::test::forEachKernelLevel;
using velquad::test::kElementValues;
using velquad::test::LooseArray;

constexpr unsigned int kBilinear = 2;
constexpr unsigned int kCubic = 4;

/// A cell of a zoom from as many samples as one cell needs.
struct BorderCell {
    unsigned int flags;
    std::uint32_t width;  ///< Size of the destination.
    std::uint32_t height;
    std::uint32_t x;
    std::uint32_t y;
    std::vector<int> samples;  ///< Row by row: 2 x 2 or 4 x 4.
    int expected;
};

std::ostream& operator<<(std::ostream& out, const BorderCell& cell) {
    return out << (cell.flags == kCubic ? "cubic to " : "bilinear to ") << cell.width << " x " << cell.height
               << " at " << cell.x << ", " << cell.y;
}

/// Expects the result in all values of a pixel, whose samples are the same. `offset`: is added to samples and result.
template <class Value>
void expectBorderCell(const BorderCell& cell, unsigned int type, int offset) {
    SCOPED_TRACE(testing::Message() << "type " << type << " " << cell);
    const std::uint32_t size = cell.flags == kCubic ? 4 : 2;
    const std::size_t values = kElementValues[type];
    LooseArray source(size, size, type);
    for (std::size_t i = 0; i < cell.samples.size(); ++i) {
        for (std::size_t part = 0; part < values; ++part)
            source.set(i / size, i % size * values + part, static_cast<Value>(cell.samples[i] + offset));
    }
    forEachKernelLevel([&] {
        LooseArray destination(cell.width, cell.height, type);
        EXPECT_EQ(1, matZoomArray2v(size, size, source.rows(), cell.width, cell.height, destination.rows(),
                                    type, cell.flags));
        for (std::size_t part = 0; part < values; ++part) {
            const auto result = destination.get<Value>(cell.y, cell.x * values + part);
            EXPECT_EQ(cell.expected + offset, static_cast<int>(result));
        }
    });
}

TEST(Zoom, RoundsBytesToTheirSideOfTheMiddle) {
    const BorderCell cells[] = {
        // 233.499992, 8.0e-6 below the middle, where floats make it 3.1e-5 more than the middle.
        {kBilinear, 639, 683, 109, 121, {250, 227, 244, 167}, 233},
        // 235.5000056, which becomes 3.1e-5 less than the middle.
        {kBilinear, 302, 589, 58, 136, {223, 252, 244, 226}, 236},
        // 236.4999946, which becomes 1.2e-4 more than the middle.
        {kCubic,
         176,
         189,
         67,
         73,
         {113, 248, 255, 11, 75, 202, 254, 136, 133, 239, 209, 219, 40, 235, 247, 190},
         236},
        // 244.5000021, which becomes 1.2e-4 less than the middle.
        {kCubic,
         248,
         214,
         91,
         81,
         {77, 235, 210, 104, 70, 222, 227, 60, 42, 175, 254, 235, 214, 240, 235, 61},
         245},
    };
    for (const BorderCell& cell : cells) {
        for (const unsigned int type : {2U, 9U, 10U})
            expectBorderCell<std::uint8_t>(cell, type, 0);
    }
}

TEST(Zoom, RoundsWordsToTheirSideOfTheMiddle) {
    // As signed values. Unsigned ones are more by 32768 and have the same fractions.
    const BorderCell cells[] = {
        // 1115.49998, which becomes 2 units of 2^-14 more than the middle in fixed point.
        {kBilinear, 259, 101, 64, 18, {-32768, 28286, -16567, 32767}, 1115},
        // 29505.50003, 3 units less.
        {kBilinear, 93, 205, 1, 3, {32760, -32768, -32757, 16542}, 29506},
        // 25596.4999995, 8 units more; rows lie in the middle of two samples.
        {kCubic,
         501,
         8,
         221,
         3,
         {32270, 32556, -32744, -32606, -32566, -32547, 32421, 32562, -32557, -32663, 32274, 32629, 32570,
          32697, -32673, -32696},
         25596},
        // -18103.5000002: 8 units more, which is on the wrong side below zero as well.
        {kCubic,
         519,
         8,
         188,
         3,
         {-32684, 32417, -32494, -32571, 32765, -32394, 32591, 32553, 32544, -32348, 32752, 32742, -32624,
          32749, -32564, -32559},
         -18104},
        // -11548.4999996, 9 units less.
        {kCubic,
         673,
         101,
         221,
         38,
         {32401, 32710, -32549, 32424, -32519, -32389, 32446, -32763, -32728, -32551, 32571, -32673, 32720,
          32493, -32389, 32482},
         -11548},
        // 4445.5000004, 9 units less.
        {kCubic,
         738,
         101,
         301,
         38,
         {-32752, 32455, -32672, -32640, 32582, -32738, 32733, 32546, 32525, -32768, 32563, 32620, -32618,
          32419, -32528, -32761},
         4446},
    };
    for (const BorderCell& cell : cells) {
        expectBorderCell<std::int16_t>(cell, 3, 0);
        expectBorderCell<std::uint16_t>(cell, 4, 32768);
    }
}

TEST(Zoom, RoundsBytesByFractionsThatAreJustTooLongForFloats) {
    const BorderCell cells[] = {
        // Multiples of 2^-9 in both directions: 137.5 - 2^-18 has one bit more than a float.
        {kBilinear, 1024, 1024, 367, 363, {151, 23, 156, 175}, 137},
        // 1/8 and 7/8: 80.5 - 2^-17.
        {kCubic,
         32,
         32,
         9,
         15,
         {131, 116, 224, 50, 119, 190, 12, 133, 185, 76, 115, 199, 72, 100, 43, 187},
         80},
    };
    for (const BorderCell& cell : cells)
        expectBorderCell<std::uint8_t>(cell, 2, 0);
}

TEST(Zoom, RoundsWordsByFractionsThatAreJustTooLongForFixedPoint) {
    const BorderCell cells[] = {
        // Multiples of 2^-8 in both directions, of which fixed point keeps 14 bits: 11456.5 - 2^-15.
        {kBilinear, 512, 512, 231, 173, {550, 19262, 6984, 8762}, 11456},
        // -15435.5 + 2^-16.
        {kBilinear, 512, 512, 73, 207, {4808, -29017, -14702, -26072}, -15435},
        // 7/8 and 1/8: 24231.5 + 2^-17.
        {kCubic,
         32,
         32,
         15,
         9,
         {26302, 31718, 2997, -29821, -18814, 9402, 21696, -19049, 1686, -11078, 10523, -31164, 14460, -8763,
          13208, -12687},
         24232},
    };
    for (const BorderCell& cell : cells) {
        expectBorderCell<std::int16_t>(cell, 3, 0);
        expectBorderCell<std::uint16_t>(cell, 4, 32768);
    }
}

}  // namespace
