#include "ink.h"

#include <velquad/geometry.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <string>

namespace examples {
namespace {

/// Strokes of the digits in a box of width 0.5 and height 1, y downwards: the bars of a 7-segment display.
struct Bar {
    tagPOINT2D from;
    tagPOINT2D to;
};
constexpr std::array<Bar, 7> kBars{{{{0.0, 0.0}, {0.5, 0.0}},
                                    {{0.5, 0.0}, {0.5, 0.5}},
                                    {{0.5, 0.5}, {0.5, 1.0}},
                                    {{0.0, 1.0}, {0.5, 1.0}},
                                    {{0.0, 0.5}, {0.0, 1.0}},
                                    {{0.0, 0.0}, {0.0, 0.5}},
                                    {{0.0, 0.5}, {0.5, 0.5}}}};
/// For each digit, bit i is set when bar i belongs to it.
constexpr std::array<unsigned int, 10> kDigits{0x3f, 0x06, 0x5b, 0x4f, 0x66, 0x6d, 0x7d, 0x07, 0x7f, 0x6f};

double distanceToSegment(double x, double y, const tagPOINT2D& from, const tagPOINT2D& to) {
    const double dx = to.x - from.x;
    const double dy = to.y - from.y;
    const double lengthSquared = dx * dx + dy * dy;
    double t = 0.0;
    if (lengthSquared > 0.0) {
        t = std::clamp(((x - from.x) * dx + (y - from.y) * dy) / lengthSquared, 0.0, 1.0);
    }
    const double offX = x - (from.x + t * dx);
    const double offY = y - (from.y + t * dy);
    return std::sqrt(offX * offX + offY * offY);
}

std::uint8_t mixed(std::uint8_t below, std::uint8_t above, unsigned int coverage) {
    return static_cast<std::uint8_t>((below * (255U - coverage) + above * coverage + 127U) / 255U);
}

}  // namespace

void InkLayer::segment(const tagPOINT2D& from, const tagPOINT2D& to, double lineWidth) {
    const double reach = lineWidth / 2.0 + 0.5;  // Half the line, and half a pixel for its soft edge.
    const int left = std::max(0, static_cast<int>(std::floor(std::min(from.x, to.x) - reach)));
    const int right =
        std::min(coverage_.width - 1, static_cast<int>(std::ceil(std::max(from.x, to.x) + reach)));
    const int top = std::max(0, static_cast<int>(std::floor(std::min(from.y, to.y) - reach)));
    const int bottom =
        std::min(coverage_.height - 1, static_cast<int>(std::ceil(std::max(from.y, to.y) + reach)));
    for (int y = top; y <= bottom; ++y) {
        for (int x = left; x <= right; ++x) {
            const double inside = reach - distanceToSegment(x + 0.5, y + 0.5, from, to);
            const auto covered = static_cast<std::uint8_t>(255.0 * std::clamp(inside, 0.0, 1.0));
            coverage_.at(x, y) = std::max(coverage_.at(x, y), covered);
        }
    }
}

void InkLayer::stroke(const std::vector<tagPOINT2D>& points, double lineWidth) {
    if (points.size() == 1) segment(points.front(), points.front(), lineWidth);
    for (std::size_t i = 1; i < points.size(); ++i)
        segment(points[i - 1], points[i], lineWidth);
}

void InkLayer::arrow(const tagPOINT2D& from, const tagPOINT2D& to, double lineWidth, double headLength) {
    constexpr double kHeadAngle = 25.0;
    constexpr int kDegrees = 1;
    segment(from, from, 2.0 * lineWidth);
    segment(from, to, lineWidth);
    tagPOINT2D left{};
    tagPOINT2D right{};
    const double length = std::hypot(to.x - from.x, to.y - from.y);
    const double head = std::min(headLength, length / 2.0);
    if (head > lineWidth && matComputeArrow(&from, &to, kHeadAngle, kDegrees, head, &left, &right) != 0) {
        segment(left, to, lineWidth);
        segment(right, to, lineWidth);
    }
}

void InkLayer::frame(double left, double top, double right, double bottom, double lineWidth) {
    stroke({{left, top}, {right, top}, {right, bottom}, {left, bottom}, {left, top}}, lineWidth);
}

void InkLayer::number(std::size_t value, double x, double y, double height, double lineWidth) {
    constexpr double kDigitWidth = 0.5;
    constexpr double kAdvance = 0.8;
    const std::string digits = std::to_string(value);
    const double width = (kAdvance * static_cast<double>(digits.size() - 1) + kDigitWidth) * height;
    double left = x - width / 2.0;
    const double top = y - height / 2.0;
    for (const char digit : digits) {
        const unsigned int bars = kDigits[static_cast<std::size_t>(digit - '0')];
        for (std::size_t i = 0; i < kBars.size(); ++i) {
            if ((bars >> i & 1U) == 0) continue;
            const Bar& bar = kBars[i];
            segment({left + bar.from.x * height, top + bar.from.y * height},
                    {left + bar.to.x * height, top + bar.to.y * height}, lineWidth);
        }
        left += kAdvance * height;
    }
}

double magnificationFor(double longest, double room) {
    double factor = 1.0;
    while (factor * longest > room)
        factor /= 10.0;
    while (10.0 * factor * longest <= room && factor < 1e6)
        factor *= 10.0;
    for (const double step : {5.0, 2.0}) {
        if (step * factor * longest <= room) return step * factor;
    }
    return factor;
}

ColourImage coloured(const GreyImage& image, double fade) {
    ColourImage result(image.width, image.height);
    for (std::size_t i = 0; i < image.pixels.size(); ++i) {
        const double grey = image.pixels[i] / 257.0;
        const auto value = static_cast<std::uint8_t>(grey + (255.0 - grey) * fade + 0.5);
        result.pixels[i] = {value, value, value};
    }
    return result;
}

void blend(ColourImage& image, const InkLayer& layer, Rgb colour) {
    for (std::size_t i = 0; i < image.pixels.size(); ++i) {
        const unsigned int coverage = layer.coverage().pixels[i];
        Rgb& pixel = image.pixels[i];
        pixel = {mixed(pixel.red, colour.red, coverage), mixed(pixel.green, colour.green, coverage),
                 mixed(pixel.blue, colour.blue, coverage)};
    }
}

}  // namespace examples
