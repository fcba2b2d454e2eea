#include "drawing.h"

#include <algorithm>

namespace examples::outline {
namespace {

/// Each pixel becomes a square of `zoom` by `zoom`. The grey values are stretched to the darker three quarters of
/// the screen's range, on which all colours of the lines stand out.
ColourImage enlarged(const GreyImage& image, int zoom) {
    const auto [low, high] = std::minmax_element(image.pixels.begin(), image.pixels.end());
    constexpr double kBrightest = 190.0;
    const double scale = *high > *low ? kBrightest / (*high - *low) : 0.0;
    ColourImage result(image.width * zoom, image.height * zoom);
    for (int y = 0; y < result.height; ++y) {
        for (int x = 0; x < result.width; ++x) {
            const auto grey = static_cast<std::uint8_t>((image.at(x / zoom, y / zoom) - *low) * scale);
            result.at(x, y) = {grey, grey, grey};
        }
    }
    return result;
}

/// Large enough for curves to show between the pixels, small enough for a screen.
int zoomFor(const GreyImage& image) {
    constexpr int kWantedSide = 2000;
    constexpr int kLargest = 8;
    return std::clamp(kWantedSide / std::max(image.width, image.height), 1, kLargest);
}

/// From pixel coordinates, whole numbers in the centres of pixels, to the enlarged picture.
std::vector<tagPOINT2D> enlarged(std::vector<tagPOINT2D> points, int zoom) {
    for (tagPOINT2D& point : points)
        point = {(point.x + 0.5) * zoom, (point.y + 0.5) * zoom};
    return points;
}

}  // namespace

ColourImage drawOverlay(const GreyImage& image, const Measurement& measurement) {
    const int zoom = zoomFor(image);
    ColourImage overlay = enlarged(image, zoom);

    const auto drawAll = [&](const Polygon MeasuredObject::*which, bool isCurve, double lineWidth,
                             Rgb colour) {
        InkLayer layer(overlay.width, overlay.height);
        for (const MeasuredObject& object : measurement.objects) {
            layer.stroke(enlarged(pointsInPixels(object.*which, measurement.subpixels, isCurve), zoom),
                         lineWidth);
        }
        blend(overlay, layer, colour);
    };
    // The lines lie over each other for the most part; each is narrower than the one below.
    const double wide = zoom > 2 ? 5.0 : 2.0;
    drawAll(&MeasuredObject::interpolated, true, wide, kInterpolatedColour);
    drawAll(&MeasuredObject::fitted, true, 0.55 * wide, kFittedColour);
    drawAll(&MeasuredObject::raw, false, 0.25 * wide, kRawColour);

    InkLayer halo(overlay.width, overlay.height);
    InkLayer numbers(overlay.width, overlay.height);
    constexpr double kNumberHeight = 18.0;
    for (std::size_t i = 0; i < measurement.objects.size(); ++i) {
        const Region& region = measurement.objects[i].region;
        const tagPOINT2D pixel{static_cast<double>(region.innermostX),
                               static_cast<double>(region.innermostY)};
        const tagPOINT2D at = enlarged({pixel}, zoom).front();
        halo.number(i + 1, at.x, at.y, kNumberHeight, 6.0);
        numbers.number(i + 1, at.x, at.y, kNumberHeight, 2.5);
    }
    blend(overlay, halo, {0, 0, 0});
    blend(overlay, numbers, kNumberColour);
    return overlay;
}

}  // namespace examples::outline
