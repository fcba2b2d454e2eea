#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <random>
#include <vector>

#include "tests/support/allocation_failure.h"
#include "tests/support/resampling_reference.h"
#include "velquad/curves.h"
#include "velquad/framework.h"

using namespace velquad::test;

namespace {

template <class Pixel>
constexpr unsigned int kPixelSize = sizeof(Pixel);

/// An image whose rows stand at odd addresses, each followed by a guard.
template <class Pixel>
class Image {
  public:
    Image(std::size_t width, std::size_t height) : width_(width), rows_(height), bytes_(height) {
        for (std::size_t r = 0; r < height; ++r) {
            bytes_[r].assign(1 + width * sizeof(Pixel) + 1, kGuard);
            rows_[r] = bytes_[r].data() + 1;
        }
    }

    void set(std::size_t r, const std::vector<Pixel>& row) {
        if (!row.empty()) std::memcpy(rows_[r], row.data(), row.size() * sizeof(Pixel));
    }
    std::vector<Pixel> row(std::size_t r) const {
        std::vector<Pixel> row(width_);
        if (width_ > 0) std::memcpy(row.data(), rows_[r], width_ * sizeof(Pixel));
        return row;
    }
    bool isGuarded(std::size_t r) const { return bytes_[r].front() == kGuard && bytes_[r].back() == kGuard; }
    void** rows() { return rows_.data(); }

  private:
    static constexpr unsigned char kGuard = 0xA5;
    std::size_t width_;
    std::vector<void*> rows_;
    std::vector<std::vector<unsigned char>> bytes_;
};

template <class Pixel>
std::vector<Pixel> stretchRow(const std::vector<Pixel>& source, unsigned int targetWidth) {
    Image<Pixel> from(source.size(), 1);
    Image<Pixel> to(targetWidth, 1);
    from.set(0, source);
    EXPECT_EQ(matHorzStretchImage(static_cast<unsigned int>(source.size()), 1, kPixelSize<Pixel>, from.rows(),
                                  targetWidth, to.rows()),
              0);
    EXPECT_TRUE(to.isGuarded(0));
    return to.row(0);
}

using Bytes = std::vector<std::uint8_t>;
using Words = std::vector<std::uint16_t>;

TEST(StretchedImage, AnEqualWidthChangesNothing) {
    EXPECT_EQ(stretchRow(Bytes{0, 255, 3, 200, 7}, 5), (Bytes{0, 255, 3, 200, 7}));
    EXPECT_EQ(stretchRow(Words{0, 65535, 3, 20000, 7}, 5), (Words{0, 65535, 3, 20000, 7}));
}

TEST(StretchedImage, FollowsTheSplineByHand) {
    // Through 0, 100, 0: S(0.5) = 68.75 and S(1.5) = 68.75. At 2.5 the last polynomial goes on, with c1 = -150, b1 = 0
    // and d1 = 50: (50 * 1.5 - 150) * 1.5 * 1.5 + 100 = -68.75, which no pixel holds.
    EXPECT_EQ(stretchRow(Bytes{0, 100, 0}, 6), (Bytes{0, 69, 100, 69, 0, 0}));
}

TEST(StretchedImage, SharpEdgesAreLimited) {
    // The spline through a step overshoots on both sides of it.
    const Bytes bytes = stretchRow(Bytes{0, 0, 0, 255, 255, 255}, 24);
    EXPECT_EQ(bytes[7], 0);
    EXPECT_EQ(bytes[14], 255);
    const Words words = stretchRow(Words{0, 0, 0, 65535, 65535, 65535}, 24);
    EXPECT_EQ(words[7], 0);
    EXPECT_EQ(words[14], 65535);
}

TEST(StretchedImage, AHalfIsRoundedAwayFromZero) {
    // A line: S(0.5) = 0.5, S(1.5) = 1.5, S(2.5) = 2.5.
    EXPECT_EQ(stretchRow(Bytes{0, 1, 2}, 6), (Bytes{0, 1, 1, 2, 2, 3}));
}

TEST(StretchedImage, NarrowingTakesPixelsFromAllOver) {
    EXPECT_EQ(stretchRow(Bytes{10, 20, 30, 40, 50, 60}, 3), (Bytes{10, 30, 50}));
    EXPECT_EQ(stretchRow(Bytes{10, 20, 30}, 1), (Bytes{10}));
    EXPECT_EQ(stretchRow(Bytes{10, 20, 30}, 0), (Bytes{}));
}

TEST(StretchedImage, FewerThanThreePixelsAreACodeOfTheirOwn) {
    for (const unsigned int width : {0U, 1U, 2U}) {
        Image<std::uint8_t> from(2, 1);
        Image<std::uint8_t> to(4, 1);
        to.set(0, {1, 2, 3, 4});
        EXPECT_EQ(matHorzStretchImage(width, 1, 1, from.rows(), 4, to.rows()), 12);
        EXPECT_EQ(to.row(0), (Bytes{1, 2, 3, 4}));
    }
}

TEST(StretchedImage, NoRowsAreNoFailure) {
    EXPECT_EQ(matHorzStretchImage(5, 0, 1, nullptr, 5, nullptr), 0);
    EXPECT_EQ(matHorzStretchImage(2, 0, 1, nullptr, 5, nullptr), 0);
}

TEST(StretchedImage, ANullTableIsRefused) {
    Image<std::uint8_t> image(3, 1);
    EXPECT_EQ(matHorzStretchImage(3, 1, 1, nullptr, 3, image.rows()), 12);
    EXPECT_EQ(matHorzStretchImage(3, 1, 1, image.rows(), 3, nullptr), 12);
}

TEST(StretchedImage, EveryOtherPixelSizeMeansSixteenBits) {
    for (const unsigned int size : {0U, 3U, 16U}) {
        Image<std::uint16_t> from(3, 1);
        Image<std::uint16_t> to(3, 1);
        from.set(0, {1000, 2000, 65535});
        EXPECT_EQ(matHorzStretchImage(3, 1, size, from.rows(), 3, to.rows()), 0);
        EXPECT_EQ(to.row(0), (Words{1000, 2000, 65535}));
    }
}

TEST(StretchedImage, ARowMayBeItsOwnTarget) {
    Image<std::uint8_t> image(6, 1);
    image.set(0, {10, 20, 30, 40, 50, 60});
    EXPECT_EQ(matHorzStretchImage(6, 1, 1, image.rows(), 3, image.rows()), 0);
    EXPECT_EQ(image.row(0), (Bytes{10, 30, 50, 40, 50, 60}));
}

template <class Pixel>
void compareWithPlainVersion(unsigned int seed, int maximum) {
    std::mt19937 random(seed);
    for (int round = 0; round < 150; ++round) {
        SCOPED_TRACE(round);
        const std::size_t width = 3 + random() % 40;
        const std::size_t height = random() % 10;
        const std::size_t targetWidth = random() % 100;
        const bool isBlackAndWhite = random() % 3 == 0;
        Image<Pixel> from(width, height);
        Image<Pixel> to(targetWidth, height);
        for (std::size_t r = 0; r < height; ++r) {
            std::vector<Pixel> row(width);
            for (Pixel& pixel : row)
                pixel = isBlackAndWhite ? static_cast<Pixel>(random() % 2 == 0 ? maximum : 0)
                                        : static_cast<Pixel>(random());
            from.set(r, row);
        }
        ASSERT_EQ(matHorzStretchImage(static_cast<unsigned int>(width), static_cast<unsigned int>(height),
                                      kPixelSize<Pixel>, from.rows(), static_cast<unsigned int>(targetWidth),
                                      to.rows()),
                  0);
        for (std::size_t r = 0; r < height; ++r) {
            ASSERT_EQ(to.row(r), stretchReference(from.row(r), targetWidth, maximum)) << "row " << r;
            ASSERT_TRUE(to.isGuarded(r));
        }
    }
}

TEST(StretchedImage, GivesThePixelsOfOneSplineARow) {
    compareWithPlainVersion<std::uint8_t>(91, 255);
    compareWithPlainVersion<std::uint16_t>(92, 65535);
}

/// Counts what it is told.
class Host : public CWinApp {
  public:
    void DoWaitCursor(int code) override {
        (code > 0 ? begun : ended) += 1;
        CWinApp::DoWaitCursor(code);
    }
    int begun = 0;
    int ended = 0;
};

TEST(StretchedImage, TheApplicationWaitsUntilEveryWayOut) {
    Host host;
    Image<std::uint8_t> image(3, 1);
    matHorzStretchImage(3, 1, 1, image.rows(), 3, image.rows());
    EXPECT_EQ(host.begun, 1);
    EXPECT_EQ(host.ended, 1);
    matHorzStretchImage(2, 1, 1, image.rows(), 3, image.rows());
    EXPECT_EQ(host.begun, 2);
    EXPECT_EQ(host.ended, 2);
    matHorzStretchImage(3, 0, 1, image.rows(), 3, image.rows());
    EXPECT_EQ(host.begun, 3);
    EXPECT_EQ(host.ended, 3);
    failAllocation(1);
    EXPECT_EQ(matHorzStretchImage(3, 1, 1, image.rows(), 3, image.rows()), 3);
    failAllocation(0);
    EXPECT_EQ(host.begun, 4);
    EXPECT_EQ(host.ended, 4);
    EXPECT_EQ(host.GetWaitCursorCount(), 0);
}

TEST(StretchedImage, LackOfMemoryHasItsCode) {
    Image<std::uint8_t> from(3, 1);
    Image<std::uint8_t> to(3, 1);
    const Bytes before = {1, 2, 3};
    forEachFailingAllocation([&] {
        to.set(0, before);
        const int code = matHorzStretchImage(3, 1, 1, from.rows(), 3, to.rows());
        if (code == 3) {
            EXPECT_EQ(to.row(0), before);
        }
        return code == 3;
    });
}

}  // namespace
