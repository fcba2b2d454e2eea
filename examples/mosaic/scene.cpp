#include "scene.h"

#include <algorithm>
#include <cmath>

#include "noise.h"

namespace examples::mosaic {
namespace {

constexpr int kWidth = 480;
constexpr int kHeight = 360;

/// Lays a pebble on the picture: an ellipse with a soft edge and light from the upper left.
void layPebble(GreyImage& picture, double centreX, double centreY, double radius, double roundness,
               double shade) {
    constexpr double kContrast = 0.35;
    const int reach = static_cast<int>(radius) + 2;
    for (int y = static_cast<int>(centreY) - reach; y <= static_cast<int>(centreY) + reach; ++y) {
        for (int x = static_cast<int>(centreX) - reach; x <= static_cast<int>(centreX) + reach; ++x) {
            if (!picture.contains(x, y)) continue;
            const double u = (x - centreX) / radius;
            const double v = (y - centreY) / (radius * roundness);
            const double distance = std::sqrt(u * u + v * v);
            const double cover = std::clamp((1.0 - distance) * radius * roundness + 0.5, 0.0, 1.0);
            const double height = std::sqrt(std::max(0.0, 1.0 - distance * distance));
            const double light = shade * (0.55 + 0.45 * height - kContrast * (u + v) * 0.5);
            std::uint16_t& grey = picture.at(x, y);
            grey = static_cast<std::uint16_t>(grey + (std::clamp(light, 0.0, 65535.0) - grey) * cover);
        }
    }
}

}  // namespace

GreyImage drawPebbles() {
    constexpr std::uint16_t kGround = 9000;
    constexpr int kPebbles = 900;
    GreyImage picture(kWidth, kHeight, kGround);
    Noise noise(7);
    for (int i = 0; i < kPebbles; ++i) {
        // The large ones lie below.
        const double age = 1.0 - static_cast<double>(i) / kPebbles;
        const double x = kWidth * (0.5 + 0.52 * noise.next());
        const double y = kHeight * (0.5 + 0.52 * noise.next());
        const double radius = 4.0 + 22.0 * age * age * (0.75 + 0.25 * noise.next());
        const double roundness = 0.8 + 0.2 * noise.next();
        const double shade = 38000.0 + 22000.0 * noise.next();
        layPebble(picture, x, y, radius, roundness, shade);
    }
    return picture;
}

}  // namespace examples::mosaic
