// Balls on a tiled floor, by tracing rays. Only roots are taken, so the image is the same on every system.
#include "scene.h"

#include <cmath>
#include <cstddef>

namespace gallery {
namespace {

struct Vector {
    double x;
    double y;
    double z;
};

Vector operator+(const Vector& a, const Vector& b) {
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}
Vector operator-(const Vector& a, const Vector& b) {
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}
Vector operator*(double factor, const Vector& v) {
    return {factor * v.x, factor * v.y, factor * v.z};
}
double dot(const Vector& a, const Vector& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}
Vector unit(const Vector& v) {
    return (1.0 / std::sqrt(dot(v, v))) * v;
}

/// A ball. Its surface is matt with `paint`, or a mirror with a paint of 0.
struct Ball {
    Vector centre;
    double radius;
    double paint;
};

constexpr Ball kBalls[] = {
    {{-0.55, 1.0, 1.2}, 1.0, 0.0},
    {{1.25, 0.55, 0.1}, 0.55, 0.85},
    {{0.35, 0.28, -0.9}, 0.28, 0.45},
};
constexpr int kMostMirrors = 3;  // how often a ray is thrown back
constexpr double kSkin = 1e-6;   // keeps a ray from meeting the surface that it starts from
const Vector kTowardsLight = unit({-0.55, 0.75, -0.6});

/// A ray meets a ball, or none.
struct Meeting {
    const Ball* ball = nullptr;
    double distance = 0.0;
};

Meeting nextBall(const Vector& start, const Vector& direction) {
    Meeting nearest;
    for (const Ball& ball : kBalls) {
        const Vector toCentre = ball.centre - start;
        const double along = dot(toCentre, direction);
        const double square = ball.radius * ball.radius - dot(toCentre, toCentre) + along * along;
        if (square < 0.0) continue;
        const double distance = along - std::sqrt(square);
        if (distance > kSkin && (nearest.ball == nullptr || distance < nearest.distance))
            nearest = {&ball, distance};
    }
    return nearest;
}

/// Light on a matt surface.
double lit(const Vector& place, const Vector& normal, double paint) {
    const double slope = dot(normal, kTowardsLight);
    const bool shaded = slope <= 0.0 || nextBall(place, kTowardsLight).ball != nullptr;
    return paint * (0.22 + (shaded ? 0.0 : 0.78 * slope));
}

double floorLight(const Vector& place, double distance) {
    const auto column = static_cast<int>(std::floor(place.x * 2.0));
    const auto row = static_cast<int>(std::floor(place.z * 2.0));
    const double light = lit(place, {0.0, 1.0, 0.0}, (column + row) % 2 == 0 ? 0.95 : 0.3);
    const double haze = distance / (distance + 9.0);
    return light + (0.75 - light) * haze;
}

/// The glint of the light on a ball.
double glint(const Vector& direction, const Vector& normal) {
    const double along = dot(direction - (2.0 * dot(direction, normal)) * normal, kTowardsLight);
    if (along <= 0.0) return 0.0;
    double power = along;
    for (int i = 0; i < 5; ++i)
        power *= power;
    return 0.8 * power;
}

/// What comes along a ray, about 0 to 1.
double traced(Vector start, Vector direction) {
    double added = 0.0;
    double share = 1.0;
    for (int mirrors = 0;; ++mirrors) {
        const Meeting meeting = nextBall(start, direction);
        if (meeting.ball == nullptr) {
            if (direction.y >= -1e-3) return added + share * (0.75 - 0.5 * direction.y);
            const double distance = -start.y / direction.y;
            return added + share * floorLight(start + distance * direction, distance);
        }
        const Vector place = start + meeting.distance * direction;
        const Vector normal = unit(place - meeting.ball->centre);
        added += share * glint(direction, normal);
        if (meeting.ball->paint > 0.0) return added + share * lit(place, normal, meeting.ball->paint);
        if (mirrors == kMostMirrors) return added;
        share *= 0.8;
        direction = direction - (2.0 * dot(direction, normal)) * normal;
        start = place;
    }
}

}  // namespace

Scene drawnScene() {
    constexpr int kSamples = 4;  // along each side of a pixel
    constexpr Vector kCamera{0.25, 1.35, -4.6};
    constexpr RECT kDetail{88, 74, 123, 100};  // the light ball in the mirror
    GreyImage image(kSceneWidth, kSceneHeight);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            double sum = 0.0;
            for (int sample = 0; sample < kSamples * kSamples; ++sample) {
                const double u = x + (sample % kSamples + 0.5) / kSamples - image.width() / 2;
                const double v = y + (sample / kSamples + 0.5) / kSamples - image.height() / 2;
                sum += traced(kCamera, unit({u / 330.0, -v / 330.0 - 0.11, 1.0}));
            }
            const double level = 255.0 * sum / (kSamples * kSamples);
            image.at(x, y) = static_cast<unsigned char>(level < 255.0 ? level + 0.5 : 255.0);
        }
    }
    return {image, kDetail, 170.0};
}

}  // namespace gallery
