// Digital discs, and the places where an image is brightest under them.
#include <velquad/array.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <vector>

#include "arrays.h"
#include "noise.h"
#include "pictures.h"
#include "plot.h"

namespace gallery {
namespace {

constexpr unsigned short kOutside = 65535;  // what a disc's table holds beside the disc

/// The tables of a disc.
class Disc {
  public:
    explicit Disc(int radius)
        : radius_(radius), cells_(matAllocCircularShape2w(radius, &distances_, &maxIndex_, &left_, &right_)) {
        if (cells_ == nullptr) throw std::runtime_error("matAllocCircularShape2w failed");
    }
    Disc(const Disc&) = delete;
    Disc& operator=(const Disc&) = delete;
    ~Disc() { matFreeCircularShape2w(cells_, distances_, left_, right_); }

    int radius() const { return radius_; }
    int side() const { return 2 * radius_ + 1; }
    unsigned short cell(int x, int y) const {
        const unsigned short* row = nullptr;  // the table is aligned to 4 bytes only
        std::memcpy(&row, reinterpret_cast<const char*>(cells_) + sizeof(row) * static_cast<std::size_t>(y),
                    sizeof(row));
        return row[x];
    }
    int left(int y) const { return left_[y]; }
    int right(int y) const { return right_[y]; }
    /// The distances within the disc.
    std::vector<double> distances() const {
        std::vector<double> distances(distances_, distances_ + maxIndex_ + 1);
        while (distances.back() >= radius_ + 0.5)  // the entry for the cells outside
            distances.pop_back();
        return distances;
    }

  private:
    int radius_;
    double* distances_ = nullptr;
    unsigned int maxIndex_ = 0;
    int* left_ = nullptr;
    int* right_ = nullptr;
    unsigned short** cells_;
};

/// From orange in the middle to blue at the rim.
Rgb colourOf(double part) {
    const auto between = [part](std::uint8_t inside, std::uint8_t outside) {
        return static_cast<std::uint8_t>(inside + (outside - inside) * part + 0.5);
    };
    return {between(kOrange.red, kBlue.red), between(kOrange.green, kBlue.green),
            between(kOrange.blue, kBlue.blue)};
}

void drawDisc(Canvas& canvas, const tagPOINT& middle, const Disc& disc) {
    const auto count = static_cast<double>(disc.distances().size());
    const int left = static_cast<int>(middle.x) - disc.radius();
    const int top = static_cast<int>(middle.y) - disc.radius();
    for (int y = 0; y < disc.side(); ++y) {
        for (int x = 0; x < disc.side(); ++x) {
            const unsigned short index = disc.cell(x, y);
            canvas.fillCell(left + x, top + y, index == kOutside ? kFaint : colourOf(index / (count - 1.0)));
        }
        canvas.dot({static_cast<double>(left + disc.left(y)), static_cast<double>(top + y)}, 2.5, kInk);
        canvas.dot({static_cast<double>(left + disc.right(y)), static_cast<double>(top + y)}, 2.5, kInk);
    }
    canvas.ring({static_cast<double>(middle.x), static_cast<double>(middle.y)}, disc.radius() + 0.5, 1.5,
                kInk);
}

using DeepImage = Image<unsigned short>;

/// A round spot, half as bright at `halfWidth` from its middle.
struct Spot {
    tagPOINT2D middle;
    double height;
    double halfWidth;
};

/// Spots of all widths on a noisy ground. The widest is cut off by the border.
DeepImage spots() {
    constexpr Spot kSpots[] = {
        {{24.0, 18.0}, 3400.0, 1.6}, {{70.0, 22.0}, 2300.0, 5.0}, {{113.5, 54.0}, 1500.0, 11.0},
        {{38.0, 52.0}, 1100.0, 8.0}, {{88.0, 55.0}, 1500.0, 3.0}, {{8.0, 44.0}, 1300.0, 3.0},
        {{52.0, 10.0}, 1200.0, 2.0}, {{60.0, 60.0}, 900.0, 4.0},  {{100.0, 12.0}, 1000.0, 4.0},
    };
    Noise noise(7);
    DeepImage image(116, 72);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            double level = 420.0 + 160.0 * noise.bell();
            for (const Spot& spot : kSpots) {
                const double dx = (x - spot.middle.x) / spot.halfWidth;
                const double dy = (y - spot.middle.y) / spot.halfWidth;
                const double fall = 1.0 + 0.4142135623730951 * (dx * dx + dy * dy);
                level += spot.height / (fall * fall);
            }
            image.at(x, y) = static_cast<unsigned short>(level + 0.5);
        }
    }
    return image;
}

tagPOINT peakOf(DeepImage& image, int radius) {
    std::vector<unsigned short*> rows;
    for (int y = 0; y < image.height(); ++y)
        rows.push_back(&image.at(0, y));
    tagPOINT peak{};
    if (matFindGlobalPeak2w(rows.data(), image.width(), image.height(), radius, &peak, nullptr) != 1)
        throw std::runtime_error("matFindGlobalPeak2w failed");
    return peak;
}

}  // namespace

Canvas drawDiscs() {
    constexpr int kGap = 3;
    Canvas canvas(76, 45, 12);
    const int middleRow = 13;
    int left = kGap;
    for (const int radius : {1, 2, 4, 7, 11}) {
        drawDisc(canvas, {left + radius, middleRow}, Disc(radius));
        left += 2 * radius + 1 + kGap;
    }
    const Disc disc(11);
    const std::vector<double> distances = disc.distances();
    const Plot plot(canvas, {2.5, 27.5, 72.5, 42.5}, {-1.0, static_cast<double>(distances.size())},
                    {0.0, 13.0});
    plot.level(11.5, 1.5, kFaint);
    for (std::size_t i = 0; i < distances.size(); ++i) {
        const auto index = static_cast<double>(i);
        canvas.dot(plot.at(index, distances[i]), 4.5,
                   colourOf(index / static_cast<double>(distances.size() - 1)));
    }
    return canvas;
}

Canvas drawPeaks() {
    struct Search {
        int radius;
        Rgb colour;
    };
    constexpr int kMargin = 3;
    DeepImage image = spots();
    Canvas canvas(image.width() + 2 * kMargin, image.height() + 2 * kMargin, 8, Grid::kHidden);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const auto level = static_cast<std::uint8_t>(std::min(255, image.at(x, y) / 13));
            canvas.fillCell(kMargin + x, kMargin + y, {level, level, level});
        }
    }
    for (const Search& search : {Search{1, kRed}, Search{5, kOrange}, Search{14, kBlue}}) {
        const tagPOINT peak = peakOf(image, search.radius);
        const tagPOINT2D middle{kMargin + static_cast<double>(peak.x), kMargin + static_cast<double>(peak.y)};
        canvas.ring(middle, search.radius + 0.5, 3.0, search.colour);
        canvas.dot(middle, 4.5, search.colour);
    }
    return canvas;
}

}  // namespace gallery
