#include "camera.h"

#include <algorithm>
#include <cmath>

#include "noise.h"

namespace examples::lens {
namespace {

constexpr double kCentreX = kWidth / 2.0;
constexpr double kCentreY = kHeight / 2.0;
constexpr double kUnit = kHeight / 2.0;

/// The coefficients of the lens, for positions from the centre in units of half the height.
constexpr double kRadial1 = -0.022;
constexpr double kRadial2 = 0.0012;
constexpr double kTangential1 = 0.0015;
constexpr double kTangential2 = -0.001;

constexpr double kSpacing = 50.0;
constexpr double kRadius = 9.0;
constexpr int kReach = 15;  ///< Around a dot there is nothing else.

/// Points of a square grid, shifted against that of the dots, that are shown at least `margin` inside of the picture.
std::vector<Dot> gridInSight(double shift, double margin) {
    std::vector<Dot> dots;
    constexpr int kBeyond = 4;
    for (int row = -kBeyond; row * kSpacing < kHeight + kBeyond * kSpacing; ++row) {
        for (int column = -kBeyond; column * kSpacing < kWidth + kBeyond * kSpacing; ++column) {
            Dot dot{};
            dot.truth = {column * kSpacing + shift, row * kSpacing + shift};
            dot.shown = distorted(dot.truth);
            const bool isInSight = dot.shown.x > margin && dot.shown.x < kWidth - 1 - margin &&
                                   dot.shown.y > margin && dot.shown.y < kHeight - 1 - margin;
            if (isInSight) dots.push_back(dot);
        }
    }
    return dots;
}

/// The part of the light that is left at a distance from the centre.
double vignetting(double x, double y) {
    constexpr double kLossInCorner = 0.3;
    const double u = (x - kCentreX) / kCentreX;
    const double v = (y - kCentreY) / kCentreY;
    return 1.0 - kLossInCorner * (u * u + v * v) / 2.0;
}

std::uint16_t asGrey(double light) {
    return static_cast<std::uint16_t>(std::clamp(light, 0.0, 65535.0) + 0.5);
}

/// The light of the board, 0 to 1: squares, and rings around the centre of the picture.
double boardAt(const tagPOINT2D& point) {
    constexpr double kRingStep = 200.0;
    constexpr double kRingWidth = 7.0;
    const auto square = [](double place) { return static_cast<int>(std::floor(place / kBoardSquare)); };
    const bool isDark = ((square(point.x) + square(point.y)) & 1) != 0;
    const double radius = std::hypot(point.x - kCentreX, point.y - kCentreY);
    const bool isRing =
        std::abs(std::remainder(radius, kRingStep)) < kRingWidth / 2.0 && radius > kRingStep / 2.0;
    if (isRing) return 0.1;
    return isDark ? 0.55 : 0.9;
}

}  // namespace

tagPOINT2D distorted(const tagPOINT2D& truth) {
    const double u = (truth.x - kCentreX) / kUnit;
    const double v = (truth.y - kCentreY) / kUnit;
    const double q = u * u + v * v;
    const double radial = 1.0 + kRadial1 * q + kRadial2 * q * q;
    const double shownU = u * radial + 2.0 * kTangential1 * u * v + kTangential2 * (q + 2.0 * u * u);
    const double shownV = v * radial + kTangential1 * (q + 2.0 * v * v) + 2.0 * kTangential2 * u * v;
    return {kCentreX + kUnit * shownU, kCentreY + kUnit * shownV};
}

tagPOINT2D undistorted(const tagPOINT2D& shown) {
    // Each round takes back what the last one is off; the distortion is small, so that this ends soon.
    constexpr int kMostRounds = 30;
    constexpr double kCloseEnough = 1e-9;
    tagPOINT2D truth = shown;
    for (int i = 0; i < kMostRounds; ++i) {
        const tagPOINT2D at = distorted(truth);
        const tagPOINT2D off{at.x - shown.x, at.y - shown.y};
        truth = {truth.x - off.x, truth.y - off.y};
        if (std::abs(off.x) + std::abs(off.y) < kCloseEnough) break;
    }
    return truth;
}

std::vector<Dot> dotsInSight() {
    return gridInSight(0.0, kReach + 1.0);
}

std::vector<Dot> pointsBetween() {
    return gridInSight(kSpacing / 2.0, kReach + 1.0);
}

GreyImage photographDots(const std::vector<Dot>& dots) {
    constexpr double kGround = 56000.0;
    constexpr double kInk = 12000.0;
    constexpr double kNoise = 1500.0;
    Image<float> cover(kWidth, kHeight);
    for (const Dot& dot : dots) {
        const int middleX = static_cast<int>(dot.shown.x);
        const int middleY = static_cast<int>(dot.shown.y);
        for (int y = middleY - kReach; y <= middleY + kReach; ++y) {
            for (int x = middleX - kReach; x <= middleX + kReach; ++x) {
                const double inside = kRadius + 0.5 - std::hypot(x - dot.shown.x, y - dot.shown.y);
                cover.at(x, y) = static_cast<float>(std::clamp(inside, 0.0, 1.0));
            }
        }
    }
    GreyImage picture(kWidth, kHeight);
    Noise noise(11);
    for (int y = 0; y < kHeight; ++y) {
        for (int x = 0; x < kWidth; ++x) {
            const double light = kGround + (kInk - kGround) * static_cast<double>(cover.at(x, y));
            picture.at(x, y) = asGrey(light * vignetting(x, y) + kNoise * noise.bell());
        }
    }
    return picture;
}

void measureDots(const GreyImage& picture, std::vector<Dot>& dots) {
    for (Dot& dot : dots) {
        const int middleX = static_cast<int>(std::lround(dot.shown.x));
        const int middleY = static_cast<int>(std::lround(dot.shown.y));
        // The corners of the window show the ground; what is darker than three quarters of it is the dot.
        const double ground =
            (picture.at(middleX - kReach, middleY - kReach) + picture.at(middleX + kReach, middleY - kReach) +
             picture.at(middleX - kReach, middleY + kReach) +
             picture.at(middleX + kReach, middleY + kReach)) /
            4.0;
        double sum = 0.0;
        double sumX = 0.0;
        double sumY = 0.0;
        for (int y = middleY - kReach; y <= middleY + kReach; ++y) {
            for (int x = middleX - kReach; x <= middleX + kReach; ++x) {
                const double darkness = std::max(0.0, 0.75 * ground - picture.at(x, y));
                sum += darkness;
                sumX += darkness * x;
                sumY += darkness * y;
            }
        }
        if (sum <= 0.0) throw Failure("a dot cannot be found");
        dot.measured = {sumX / sum, sumY / sum};
    }
}

GreyImage photographBoard() {
    constexpr int kSamples = 3;  // Along each side of a pixel.
    constexpr double kWhite = 60000.0;
    GreyImage picture(kWidth / kBoardScale, kHeight / kBoardScale);
    for (int y = 0; y < picture.height; ++y) {
        for (int x = 0; x < picture.width; ++x) {
            double light = 0.0;
            for (int j = 0; j < kSamples; ++j) {
                for (int i = 0; i < kSamples; ++i) {
                    const auto place = [](int pixel, int sample) {
                        return kBoardScale * (pixel + (sample + 0.5) / kSamples - 0.5);
                    };
                    light += boardAt(undistorted({place(x, i), place(y, j)}));
                }
            }
            picture.at(x, y) = asGrey(kWhite * light / (kSamples * kSamples));
        }
    }
    return picture;
}

}  // namespace examples::lens
