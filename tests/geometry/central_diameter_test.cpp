#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "velquad/geometry.h"

namespace {

constexpr int kUnset = 0x7fffffff;
constexpr std::size_t kBufferedPixels = 65535;

/// An image whose rows are allocations of their own, so that a sanitizer sees every step beyond one. Any character
/// but '.' is set.
class Image {
  public:
    explicit Image(const std::vector<std::string>& picture)
        : width(static_cast<int>(picture.empty() ? 0 : picture[0].size())),
          height(static_cast<int>(picture.size())) {
        for (const std::string& row : picture) {
            rows_.push_back(std::make_unique<unsigned char[]>(row.size()));
            for (std::size_t x = 0; x < row.size(); ++x)
                rows_.back()[x] = row[x] == '.' ? 0 : static_cast<unsigned char>(row[x]);
            pointers_.push_back(rows_.back().get());
        }
    }
    unsigned char** rows() { return pointers_.data(); }
    unsigned char& at(int x, int y) {
        return rows_[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)];
    }
    bool isSet(tagPOINT p) {
        return 0 <= p.x && p.x < width && 0 <= p.y && p.y < height && at(p.x, p.y) != 0;
    }
    const int width;
    const int height;

  private:
    std::vector<std::unique_ptr<unsigned char[]>> rows_;
    std::vector<unsigned char*> pointers_;
};

struct Diameters {
    tagPOINT innerFirst{1, 1};
    tagPOINT innerLast{1, 1};
    tagPOINT outerFirst{1, 1};
    tagPOINT outerLast{1, 1};
    std::vector<tagPOINT> line;
};

Diameters measure(Image& image, tagPOINT center, tagPOINT from, tagPOINT to) {
    Diameters d;
    d.line.assign(kBufferedPixels, {-1, -1});
    EXPECT_EQ(matCalcCentralInnerAndOuterDiameter(image.width, image.height, image.rows(), center, from, to,
                                                  &d.innerFirst, &d.innerLast, &d.outerFirst, &d.outerLast,
                                                  d.line.data()),
              1);
    return d;
}

void expectPoint(const tagPOINT& actual, int x, int y) {
    EXPECT_EQ(actual.x, x);
    EXPECT_EQ(actual.y, y);
}

/// The pixels of a line by stepping with an error term.
std::vector<tagPOINT> stepLine(tagPOINT from, tagPOINT to) {
    const int absX = std::abs(to.x - from.x);
    const int absY = std::abs(to.y - from.y);
    const int signX = to.x < from.x ? -1 : 1;
    const int signY = to.y < from.y ? -1 : 1;
    const int major = absX > absY ? absX : absY;
    const int minor = absX > absY ? absY : absX;
    int error = 2 * minor - major;
    std::vector<tagPOINT> pixels;
    tagPOINT p = from;
    for (int i = 0; i <= major; ++i) {
        pixels.push_back(p);
        if (error < 0) {
            if (absX < absY) {
                p.y += signY;
            } else {
                p.x += signX;
            }
            error += 2 * minor;
        } else {
            p.x += signX;
            p.y += signY;
            error += 2 * (minor - major);
        }
    }
    return pixels;
}

/// Both diameters by walking the whole line pixel by pixel.
Diameters measureLiterally(Image& image, tagPOINT center, tagPOINT from, tagPOINT to) {
    const tagPOINT none{kUnset, kUnset};
    Diameters d{none, none, none, none, stepLine(from, to)};
    const int n = static_cast<int>(d.line.size());
    const auto pixel = [&](int i) { return d.line[static_cast<std::size_t>(i)]; };
    for (int i = n - 1; i >= 0; --i) {
        if (image.isSet(pixel(i))) d.outerFirst = pixel(i);
    }
    for (int i = 0; i < n; ++i) {
        if (image.isSet(pixel(i))) d.outerLast = pixel(i);
    }
    if (!image.isSet(center)) return d;
    int middle = -1;
    double shortest = 1e300;
    for (int i = std::max(n / 2 - 1, 0); i <= std::min(n - 1, n / 2 + 1); ++i) {
        const tagPOINT p = pixel(i);
        const double squared = matCalcDist(&p, &center, 1);
        if (image.isSet(p) && squared < shortest) {
            middle = i;
            shortest = squared;
        }
    }
    if (middle < 0) return d;
    const auto isOutside = [&](tagPOINT p) {
        return p.x < 0 || p.x >= image.width || p.y < 0 || p.y >= image.height;
    };
    for (int i = middle; i < n && (image.isSet(pixel(i)) || isOutside(pixel(i))); ++i) {
        if (image.isSet(pixel(i))) d.innerFirst = pixel(i);
    }
    for (int i = middle; i >= 0 && (image.isSet(pixel(i)) || isOutside(pixel(i))); --i) {
        if (image.isSet(pixel(i))) d.innerLast = pixel(i);
    }
    return d;
}

void expectSame(const Diameters& actual, const Diameters& expected) {
    expectPoint(actual.innerFirst, expected.innerFirst.x, expected.innerFirst.y);
    expectPoint(actual.innerLast, expected.innerLast.x, expected.innerLast.y);
    expectPoint(actual.outerFirst, expected.outerFirst.x, expected.outerFirst.y);
    expectPoint(actual.outerLast, expected.outerLast.x, expected.outerLast.y);
}

}  // namespace

TEST(CentralDiameter, InnerEndsAtTheGapsAndOuterGoesAcrossThem) {
    Image image({"............", "##.##1##..#.", "............"});
    const Diameters d = measure(image, {5, 1}, {0, 1}, {11, 1});
    expectPoint(d.outerFirst, 0, 1);
    expectPoint(d.outerLast, 10, 1);
    // The first inner end is the one towards the end of the line.
    expectPoint(d.innerFirst, 7, 1);
    expectPoint(d.innerLast, 3, 1);
}

TEST(CentralDiameter, CentreOutsideTheObjectHasNoInnerDiameter) {
    Image image({"##########"});
    for (const tagPOINT center : {tagPOINT{-1, 0}, tagPOINT{10, 0}, tagPOINT{5, 1}, tagPOINT{5, -1}}) {
        const Diameters d = measure(image, center, {0, 0}, {9, 0});
        expectPoint(d.innerFirst, kUnset, kUnset);
        expectPoint(d.innerLast, kUnset, kUnset);
        expectPoint(d.outerFirst, 0, 0);
        expectPoint(d.outerLast, 9, 0);
    }
    Image holed({"####.#####"});
    expectPoint(measure(holed, {4, 0}, {0, 0}, {9, 0}).innerFirst, kUnset, kUnset);
}

TEST(CentralDiameter, LineThatMissesTheObjectHasNoOuterDiameter) {
    Image image({"....", "....", "####"});
    const Diameters d = measure(image, {1, 2}, {0, 0}, {3, 0});
    expectPoint(d.outerFirst, kUnset, kUnset);
    expectPoint(d.outerLast, kUnset, kUnset);
    expectPoint(d.innerFirst, kUnset, kUnset);
    expectPoint(d.innerLast, kUnset, kUnset);
}

TEST(CentralDiameter, SetCentreWithoutASetMiddlePixelHasNoInnerDiameter) {
    // Eight pixels: the middle is 3 to 5.
    Image image({"###...##", "...#...."});
    const Diameters d = measure(image, {3, 1}, {0, 0}, {7, 0});
    expectPoint(d.innerFirst, kUnset, kUnset);
    expectPoint(d.outerFirst, 0, 0);
    expectPoint(d.outerLast, 7, 0);
}

TEST(CentralDiameter, EarliestOfEquallyNearMiddlePixelsStarts) {
    // Middle pixels 3, 4, 5; pixels 3 and 5 are set and equally near to the centre below pixel 4.
    Image image({".###.###", "....#..."});
    const Diameters d = measure(image, {4, 1}, {0, 0}, {7, 0});
    expectPoint(d.innerFirst, 3, 0);
    expectPoint(d.innerLast, 1, 0);
    // Nearer to the later one.
    Image other({".###.###", ".....#.."});
    const Diameters e = measure(other, {5, 1}, {0, 0}, {7, 0});
    expectPoint(e.innerFirst, 7, 0);
    expectPoint(e.innerLast, 5, 0);
}

TEST(CentralDiameter, FollowsTheLineOutOfTheImage) {
    Image image({"#####"});
    const Diameters d = measure(image, {2, 0}, {-10, 0}, {14, 0});
    expectPoint(d.innerFirst, 4, 0);
    expectPoint(d.innerLast, 0, 0);
    expectPoint(d.outerFirst, 0, 0);
    expectPoint(d.outerLast, 4, 0);
    expectPoint(d.line[0], -10, 0);
    expectPoint(d.line[24], 14, 0);
    expectPoint(d.line[25], -1, -1);
}

TEST(CentralDiameter, LineOfOnePixel) {
    Image image({"#.", ".#"});
    const Diameters d = measure(image, {1, 1}, {1, 1}, {1, 1});
    expectPoint(d.innerFirst, 1, 1);
    expectPoint(d.innerLast, 1, 1);
    expectPoint(d.outerFirst, 1, 1);
    expectPoint(d.outerLast, 1, 1);
    expectPoint(measure(image, {1, 1}, {1, 0}, {1, 0}).outerFirst, kUnset, kUnset);
}

TEST(CentralDiameter, ResultsAreOptional) {
    Image image({"###"});
    std::vector<tagPOINT> line(3);
    EXPECT_EQ(matCalcCentralInnerAndOuterDiameter(3, 1, image.rows(), {1, 0}, {0, 0}, {2, 0}, nullptr,
                                                  nullptr, nullptr, nullptr, line.data()),
              1);
    expectPoint(line[2], 2, 0);
}

TEST(CentralDiameter, EmptyImageHasNoDiameters) {
    Image image({});
    const Diameters d = measure(image, {0, 0}, {-3, -3}, {3, 3});
    expectPoint(d.outerFirst, kUnset, kUnset);
    expectPoint(d.innerFirst, kUnset, kUnset);
    EXPECT_EQ(matCalcCentralInnerAndOuterDiameter(-4, -4, nullptr, {0, 0}, {-3, -3}, {3, 3}, nullptr, nullptr,
                                                  nullptr, nullptr, nullptr),
              1);
}

TEST(CentralDiameter, NeverWritesMoreThanTheBufferedPixels) {
    for (const int pixelCount : {65534, 65535, 65536, 200000}) {
        SCOPED_TRACE(pixelCount);
        // The object lies at the far end of the line.
        Image image({std::string(10, '#')});
        std::vector<tagPOINT> line(kBufferedPixels + 1, {-1, -1});
        tagPOINT outerFirst{};
        tagPOINT outerLast{};
        const int start = 9 - (pixelCount - 1);
        EXPECT_EQ(matCalcCentralInnerAndOuterDiameter(10, 1, image.rows(), {5, 0}, {start, 0}, {9, 0},
                                                      nullptr, nullptr, &outerFirst, &outerLast, line.data()),
                  1);
        expectPoint(outerFirst, 0, 0);
        expectPoint(outerLast, 9, 0);
        const std::size_t written =
            std::min<std::size_t>(static_cast<std::size_t>(pixelCount), kBufferedPixels);
        expectPoint(line[written - 1], start + static_cast<int>(written) - 1, 0);
        expectPoint(line[written], -1, -1);
    }
}

TEST(CentralDiameter, LongLinesAreMeasuredAtOnce) {
    Image image({"..........", "..######..", ".........."});
    const Diameters d = measure(image, {5, 1}, {-1000000000, 1}, {1000000009, 1});
    expectPoint(d.outerFirst, 2, 1);
    expectPoint(d.outerLast, 7, 1);
    expectPoint(d.innerFirst, 7, 1);
    expectPoint(d.innerLast, 2, 1);
}

TEST(CentralDiameter, BufferHoldsThePixelsOfTheRasterLine) {
    constexpr int kMin = std::numeric_limits<int>::min();
    constexpr int kMax = std::numeric_limits<int>::max();
    struct Ends {
        tagPOINT from;
        tagPOINT to;
    };
    // Longer lines than 2^30 steps, whose error term wraps, and extents of 2^31 included.
    const Ends lines[] = {
        {{0, 0}, {5, 2}},          {{3, 9}, {-40, 200000}},      {{0, 0}, {kMax, 2000000000}},
        {{7, kMax}, {-9, 100}},    {{0, 0}, {1999999999, kMax}}, {{0, 0}, {kMin, kMin}},
        {{0, 0}, {kMin, 2000000}}, {{0, 0}, {3, kMin}}};
    Image image({"##", "##"});
    for (const Ends& ends : lines) {
        SCOPED_TRACE(testing::Message() << "to " << ends.to.x << ", " << ends.to.y);
        std::vector<tagPOINT> expected(kBufferedPixels, {-1, -1});
        matGetLine(ends.from.x, ends.from.y, ends.to.x, ends.to.y, expected.data(), kBufferedPixels);
        const Diameters d = measure(image, {0, 0}, ends.from, ends.to);
        for (std::size_t i = 0; i < kBufferedPixels; ++i) {
            ASSERT_EQ(d.line[i].x, expected[i].x) << i;
            ASSERT_EQ(d.line[i].y, expected[i].y) << i;
        }
    }
}

TEST(CentralDiameter, LineOfTwoExtentsOfTwoTo31RunsAlongItsRow) {
    constexpr int kMin = std::numeric_limits<int>::min();
    Image image({"....", "####"});
    const Diameters d = measure(image, {2, 1}, {2, 1}, {kMin + 2, kMin + 1});
    expectPoint(d.outerFirst, 2, 1);
    expectPoint(d.outerLast, 0, 1);
    expectPoint(d.innerFirst, kUnset, kUnset);
}

TEST(CentralDiameter, EndsAnywhereAreSafe) {
    constexpr int kMin = std::numeric_limits<int>::min();
    constexpr int kMax = std::numeric_limits<int>::max();
    Image image({"##", "##"});
    const int values[] = {kMin, kMin + 1, -1, 0, 1, 2, kMax - 1, kMax};
    for (const int x0 : values) {
        for (const int y0 : values) {
            for (const int x1 : values) {
                for (const int y1 : values) {
                    const Diameters d = measure(image, {0, 0}, {x0, y0}, {x1, y1});
                    for (const tagPOINT& p : {d.innerFirst, d.innerLast, d.outerFirst, d.outerLast}) {
                        ASSERT_TRUE(image.isSet(p) || (p.x == kUnset && p.y == kUnset));
                    }
                }
            }
        }
    }
}

TEST(CentralDiameter, MatchesTheWalkOverTheWholeLine) {
    for (unsigned int seed = 0; seed < 3000; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        const auto between = [&random](int low, int high) {
            return std::uniform_int_distribution<int>(low, high)(random);
        };
        std::vector<std::string> picture(static_cast<std::size_t>(between(1, 12)));
        const auto width = static_cast<std::size_t>(between(1, 12));
        for (std::string& row : picture) {
            for (std::size_t x = 0; x < width; ++x)
                row += between(0, 9) < 3 ? '.' : '#';
        }
        Image image(picture);
        const tagPOINT center{between(-1, 12), between(-1, 12)};
        const tagPOINT from{between(-8, 20), between(-8, 20)};
        const tagPOINT to{between(-8, 20), between(-8, 20)};
        Diameters d;
        d.line.assign(64, {-1, -1});
        ASSERT_EQ(matCalcCentralInnerAndOuterDiameter(image.width, image.height, image.rows(), center, from,
                                                      to, &d.innerFirst, &d.innerLast, &d.outerFirst,
                                                      &d.outerLast, d.line.data()),
                  1);
        const Diameters expected = measureLiterally(image, center, from, to);
        expectSame(d, expected);
        for (std::size_t i = 0; i < expected.line.size(); ++i)
            expectPoint(d.line[i], expected.line[i].x, expected.line[i].y);
        expectPoint(d.line[expected.line.size()], -1, -1);
        ASSERT_FALSE(HasFailure());
    }
}
