#include "phantom.h"

#include <algorithm>
#include <cmath>

#include "noise.h"

namespace examples::outline {
namespace {

constexpr int kWidth = 480;
constexpr int kHeight = 340;
constexpr int kSamplesPerSide = 4;  ///< Each pixel is the mean of 4 x 4 samples, which softens the edges.

/// A place relative to the centre of a shape.
struct Offset {
    double x;
    double y;
    double radius() const { return std::sqrt(x * x + y * y); }
};

bool isInDisc(Offset p, double radius) {
    return p.radius() <= radius;
}

bool isInEllipse(Offset p, double a, double b, double angle) {
    const double u = p.x * std::cos(angle) + p.y * std::sin(angle);
    const double v = p.y * std::cos(angle) - p.x * std::sin(angle);
    return (u * u) / (a * a) + (v * v) / (b * b) <= 1.0;
}

bool isInSquare(Offset p, double side) {
    return std::max(std::abs(p.x), std::abs(p.y)) <= side / 2.0;
}

bool isInRing(Offset p, double outer, double inner) {
    return p.radius() <= outer && p.radius() >= inner;
}

bool isInCrescent(Offset p) {
    return isInDisc(p, 55.0) && !isInDisc({p.x - 12.0, p.y}, 46.0);
}

bool isInFlower(Offset p) {
    return p.radius() <= 42.0 + 11.0 * std::cos(5.0 * std::atan2(p.y, p.x));
}

bool isObject(double x, double y) {
    const auto from = [x, y](double cx, double cy) { return Offset{x - cx, y - cy}; };
    return isInDisc(from(80, 85), 40.0) || isInEllipse(from(235, 85), 60.0, 30.0, 0.5) ||
           isInSquare(from(390, 85), 71.0) || isInRing(from(85, 245), 55.0, 38.0) ||
           isInDisc(from(85, 245), 14.0) || isInCrescent(from(245, 245)) || isInFlower(from(390, 245));
}

/// The part of a pixel that objects cover, 0 to 1. The centre of pixel (x, y) is the place (x, y).
double coverage(int x, int y) {
    int hits = 0;
    for (int j = 0; j < kSamplesPerSide; ++j) {
        for (int i = 0; i < kSamplesPerSide; ++i) {
            const double sampleX = x + (i + 0.5) / kSamplesPerSide - 0.5;
            const double sampleY = y + (j + 0.5) / kSamplesPerSide - 0.5;
            if (isObject(sampleX, sampleY)) ++hits;
        }
    }
    return static_cast<double>(hits) / (kSamplesPerSide * kSamplesPerSide);
}

}  // namespace

GreyImage drawPhantom() {
    constexpr double kGround = 9000.0;
    constexpr double kLightFromTheLeft = 14000.0;
    constexpr double kObjectContrast = 26000.0;
    constexpr double kNoise = 2500.0;
    GreyImage image(kWidth, kHeight);
    Noise noise;
    for (int y = 0; y < kHeight; ++y) {
        for (int x = 0; x < kWidth; ++x) {
            const double light = kLightFromTheLeft * (1.0 - static_cast<double>(x) / kWidth);
            const double grey = kGround + light + kObjectContrast * coverage(x, y) + kNoise * noise.next();
            image.at(x, y) = static_cast<std::uint16_t>(grey);
        }
    }
    return image;
}

}  // namespace examples::outline
