// A mapping of grey levels and a stretched image by cubic splines, and the lengths of digital circles.
#include <velquad/curves.h>
#include <velquad/geometry.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <new>
#include <stdexcept>
#include <vector>

#include "chains.h"
#include "pictures.h"
#include "plot.h"

namespace gallery {
namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kWhite = 255.0;

Rgb grey(double level) {
    const auto byte = static_cast<std::uint8_t>(std::lround(level));
    return {byte, byte, byte};
}

/// A mapping of all grey levels, given by a few points.
struct Mapping {
    std::vector<double> from;
    std::vector<double> to;
    Rgb colour;
};

std::vector<double> tabulate(const Mapping& mapping) {
    std::vector<double> table(256);
    if (matInterpolateIntensityCurve(mapping.from.data(), mapping.to.data(),
                                     static_cast<unsigned int>(mapping.from.size()), 0.0, kWhite,
                                     table.data(), static_cast<unsigned int>(table.size())) != table.size())
        throw std::runtime_error("matInterpolateIntensityCurve failed");
    return table;
}

/// A mapping as a curve, and below it a ramp of grey levels before and after.
void drawMapping(Canvas& canvas, int left, const Mapping& mapping) {
    constexpr int kSide = 64;  // cells of the plot and of the ramp
    constexpr int kTop = 2;
    constexpr int kRamp = kTop + kSide + 1;
    constexpr int kRampRows = 4;
    const std::vector<double> table = tabulate(mapping);
    const Plot plot(canvas,
                    {static_cast<double>(left), static_cast<double>(kTop),
                     static_cast<double>(left + kSide - 1), static_cast<double>(kTop + kSide - 1)},
                    {0.0, kWhite}, {0.0, kWhite});
    canvas.stroke(plot.at(0.0, 0.0), plot.at(kWhite, kWhite), 1.5, kFaint);
    plot.curve(table, 3.5, mapping.colour);
    for (std::size_t i = 0; i < mapping.from.size(); ++i)
        canvas.dot(plot.at(mapping.from[i], mapping.to[i]), 5.5, kInk);
    for (int column = 0; column < kSide; ++column) {
        const int level = column * 255 / (kSide - 1);
        for (int row = 0; row < kRampRows; ++row) {
            canvas.fillCell(left + column, kRamp + row, grey(level));
            canvas.fillCell(left + column, kRamp + kRampRows + row,
                            grey(table[static_cast<std::size_t>(level)]));
        }
    }
}

class Image {
  public:
    Image(int width, int height)
        : width_(width),
          height_(height),
          pixels_(static_cast<std::size_t>(width) * static_cast<std::size_t>(height)) {}

    int width() const { return width_; }
    int height() const { return height_; }
    unsigned char& at(int x, int y) {
        return pixels_[static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) +
                       static_cast<std::size_t>(x)];
    }
    unsigned char* row(int y) { return &at(0, y); }

  private:
    int width_;
    int height_;
    std::vector<unsigned char> pixels_;
};

/// A disc with a soft edge, hard bars and a ramp below them.
Image drawing() {
    Image image(24, 16);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const double edge = 5.0 - std::sqrt((x - 6.0) * (x - 6.0) + (y - 6.0) * (y - 6.0));
            double level = 60.0;
            if (y >= 13) {
                level = 10.0 * x + 10.0;
            } else if (x >= 14) {
                level = (x == 15 || x == 18 || x == 19 || x == 22) ? 230.0 : 60.0;
            } else if (edge > 0.0) {
                level = 60.0 + 150.0 * (edge < 1.0 ? edge : 1.0);
            }
            image.at(x, y) = static_cast<unsigned char>(level);
        }
    }
    return image;
}

Image stretched(Image& image, int width) {
    Image result(width, image.height());
    std::vector<const void*> sources;
    std::vector<void*> targets;
    for (int y = 0; y < image.height(); ++y) {
        sources.push_back(image.row(y));
        targets.push_back(result.row(y));
    }
    if (matHorzStretchImage(static_cast<unsigned int>(image.width()),
                            static_cast<unsigned int>(image.height()), 1, sources.data(),
                            static_cast<unsigned int>(width), targets.data()) != 0)
        throw std::runtime_error("matHorzStretchImage failed");
    return result;
}

void drawImage(Canvas& canvas, int left, int top, Image& image) {
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            canvas.fillCell(left + x, top + y, grey(image.at(x, y)));
    }
    canvas.frame({left - 0.5, top - 0.5, left + image.width() - 0.5, top + image.height() - 0.5}, 1.5, kInk);
}

std::vector<double> levels(Image& image, int y) {
    return std::vector<double>(image.row(y), image.row(y) + image.width());
}

std::vector<tagPOINT> digitalCircle(int radius) {
    const int count = matGetEllipse(radius, radius, nullptr, 0, 1);
    if (count <= 0) throw std::runtime_error("no circle");
    std::vector<tagPOINT> pixels(static_cast<std::size_t>(count));
    if (matGetEllipse(radius, radius, pixels.data(), count, 1) != count)
        throw std::runtime_error("a circle was not drawn");
    return pixels;
}

/// A digital circle with the true one on top.
void drawCircle(Canvas& canvas, const tagPOINT& middle, int radius) {
    constexpr int kSteps = 180;
    for (const tagPOINT& pixel : digitalCircle(radius))
        canvas.fillCell(static_cast<int>(middle.x + pixel.x), static_cast<int>(middle.y + pixel.y), kFaint);
    const auto at = [&](int step) {
        const double angle = 2 * kPi * step / kSteps;
        const tagPOINT2D centre = middleOf(middle);
        return tagPOINT2D{centre.x + radius * std::cos(angle), centre.y + radius * std::sin(angle)};
    };
    for (int step = 0; step < kSteps; ++step)
        canvas.stroke(at(step), at(step + 1), 1.5, kInk);
}

struct Release {
    void operator()(void* block) const { std::free(block); }
};
using Chain = std::unique_ptr<tagMINIVEC, Release>;

unsigned char codeOf(const tagPOINT& from, const tagPOINT& to) {
    constexpr int kSteps[8][2] = {{0, -1}, {1, -1}, {1, 0}, {1, 1}, {0, 1}, {-1, 1}, {-1, 0}, {-1, -1}};
    for (unsigned char code = 0; code < 8; ++code) {
        if (to.x - from.x == kSteps[code][0] && to.y - from.y == kSteps[code][1]) return code;
    }
    throw std::runtime_error("pixels of a circle are no neighbours");
}

/// The closed outline through pixels, each a neighbour of the one before.
Chain chainOf(const std::vector<tagPOINT>& pixels) {
    Chain chain(static_cast<tagMINIVEC*>(std::malloc(sizeof(tagMINIVEC) + pixels.size())));
    if (!chain) throw std::bad_alloc();
    chain->count = static_cast<DWORD>(pixels.size());
    chain->x = pixels.front().x;
    chain->y = pixels.front().y;
    unsigned char* const codes = chain->codes;
    for (std::size_t i = 0; i < pixels.size(); ++i)
        codes[i] = codeOf(pixels[i], pixels[(i + 1) % pixels.size()]);
    return chain;
}

/// The chain of chords from pixel to pixel.
double lengthOfSteps(const tagMINIVEC& chain) {
    const unsigned char* const codes = chain.codes;
    double length = 0.0;
    for (DWORD i = 0; i < chain.count; ++i)
        length += codes[i] % 2 == 0 ? 1.0 : std::sqrt(2.0);
    return length;
}

}  // namespace

Canvas drawIntensityCurves() {
    Canvas canvas(134, 77, 7);
    drawMapping(canvas, 2, {{0.0, 64.0, 128.0, 192.0, 255.0}, {0.0, 24.0, 128.0, 231.0, 255.0}, kOrange});
    drawMapping(canvas, 68, {{0.0, 96.0, 144.0, 255.0}, {30.0, 40.0, 215.0, 225.0}, kBlue});
    return canvas;
}

Canvas drawStretchedImage() {
    Canvas canvas(82, 64, 11);
    constexpr int kBar = 8;  // a row through the disc and the bars
    Image image = drawing();
    Image narrow = stretched(image, 12);
    Image wider = stretched(image, 36);
    Image wide = stretched(image, 72);
    drawImage(canvas, 3, 2, image);
    drawImage(canvas, 29, 2, narrow);
    drawImage(canvas, 43, 2, wider);
    drawImage(canvas, 3, 20, wide);
    const Plot plot(canvas, {2.5, 38.0, 74.5, 61.0}, {-0.5, 71.5}, {0.0, kWhite});
    plot.curve(levels(wide, kBar), 3.0, kOrange);
    plot.dots(levels(wide, kBar), 3.0, kOrange);
    plot.dots(levels(image, kBar), 5.0, kInk, 3.0);
    return canvas;
}

Canvas drawPerimeters() {
    constexpr int kGreatest = 40;
    constexpr int kMiddleRow = 11;
    constexpr int kGap = 8;
    Canvas canvas(91, 60, 10);
    int left = 4;
    for (const int radius : {1, 2, 4, 7, 9}) {
        drawCircle(canvas, {left + radius, kMiddleRow}, radius);
        left += 2 * radius + 1 + kGap;
    }
    const Plot plot(canvas, {4.0, 24.0, 86.0, 57.0}, {0.0, kGreatest + 1.0}, {0.96, 1.28});
    plot.level(1.0, 1.5, kInk);
    for (int radius = 1; radius <= kGreatest; ++radius) {
        const Chain chain = chainOf(digitalCircle(radius));
        const double round = 2 * kPi * radius;
        const double outer = miniCalcOuterPerimeter(chain.get(), 1.0, 1.0);
        const double inner = miniCalcInnerPerimeter(chain.get(), 1.0, 1.0);
        canvas.dot(plot.at(radius, outer / round), 4.5, kBlue);
        canvas.dot(plot.at(radius, inner / round), 4.5, kOrange);
        canvas.dot(plot.at(radius, lengthOfSteps(*chain) / round), 2.5, kInk);
    }
    return canvas;
}

}  // namespace gallery
