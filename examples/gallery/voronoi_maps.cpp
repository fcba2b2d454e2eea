// Maps whose cells belong to their nearest seeds.
#include <velquad/triangulation.h>

#include <cstddef>
#include <cstdint>
#include <new>
#include <vector>

#include "noise.h"
#include "pictures.h"

namespace gallery {
namespace {

struct Seed {
    tagPOINT place;
    int id;
};

/// A computed map.
class VoronoiMap {
  public:
    VoronoiMap(int width, int height, const std::vector<Seed>& seeds)
        : map_(matAllocVoronoiMap2D(width, height)) {
        if (map_ == nullptr) throw std::bad_alloc();
        for (const Seed& seed : seeds)
            matAddPointToVoronoiMap2D(map_, &seed.place, seed.id);
        matComputeVoronoiMap2D(map_);
    }
    VoronoiMap(const VoronoiMap&) = delete;
    VoronoiMap& operator=(const VoronoiMap&) = delete;
    ~VoronoiMap() { matFreeVoronoiMap2D(map_); }

    int at(int x, int y) const { return matGetIDFromNeighborInVoronoiMap2D(map_, x, y); }

  private:
    void* map_;
};

/// A soft colour of the circle of hues. `turn` counts whole circles, `light` goes from 0, black, to 1.
Rgb softHue(double turn, double light) {
    const auto channel = [turn, light](double shift) {
        const double moved = turn + shift;
        const double place = moved - static_cast<int>(moved);                     // 0 to 1
        const double wave = place < 0.5 ? 4.0 * place - 1.0 : 3.0 - 4.0 * place;  // from -1 to 1 and back
        return static_cast<std::uint8_t>(light * (170.0 + 60.0 * wave) + 0.5);
    };
    return {channel(0.5), channel(0.5 + 2.0 / 3.0), channel(0.5 + 1.0 / 3.0)};
}

/// Keeps the colours of near identifiers apart.
Rgb colourOfId(int id) {
    constexpr double kGoldenTurn = 0.38196601125010515;
    constexpr double kLights[] = {1.0, 0.8, 1.07, 0.9};
    return softHue(id * kGoldenTurn, kLights[id % 4]);
}

/// Seeds all over a map, and closer together around its lower left.
std::vector<Seed> scatteredSeeds(int width, int height) {
    Noise noise(11);
    std::vector<Seed> seeds;
    const auto add = [&](double x, double y) {
        seeds.push_back({{static_cast<LONG>(x), static_cast<LONG>(y)}, static_cast<int>(seeds.size())});
    };
    for (int i = 0; i < 45; ++i) {
        const double x = (0.5 + 0.5 * noise.next()) * width;
        const double y = (0.5 + 0.5 * noise.next()) * height;
        add(x, y);
    }
    for (int i = 0; i < 24; ++i) {
        const double x = (0.27 + 0.36 * noise.bell()) * width;
        const double y = (0.70 + 0.40 * noise.bell()) * height;
        add(x, y);
    }
    return seeds;
}

/// Draws a map with its corner in the cell (left, top), each of its cells `scale` cells wide and high.
void drawMap(Canvas& canvas, int left, int top, int width, int height, int scale,
             const std::vector<Seed>& seeds) {
    const VoronoiMap map(width, height, seeds);
    for (int y = 0; y < height * scale; ++y) {
        for (int x = 0; x < width * scale; ++x)
            canvas.fillCell(left + x, top + y, colourOfId(map.at(x / scale, y / scale)));
    }
    canvas.frame({left - 0.5, top - 0.5, left + width * scale - 0.5, top + height * scale - 0.5}, 1.5, kInk);
    for (const Seed& seed : seeds) {
        canvas.dot({left + (static_cast<double>(seed.place.x) + 0.5) * scale - 0.5,
                    top + (static_cast<double>(seed.place.y) + 0.5) * scale - 0.5},
                   3.0, kInk);
    }
}

}  // namespace

Canvas drawVoronoiMaps() {
    constexpr int kWidth = 150;
    constexpr int kHeight = 140;
    constexpr int kScale = 3;
    constexpr int kGap = 14;
    constexpr int kKinds = 5;
    Canvas canvas(3 * kGap + 2 * kWidth * kScale, 2 * kGap + kHeight * kScale, 1, Grid::kHidden);
    std::vector<Seed> seeds = scatteredSeeds(kWidth, kHeight);
    drawMap(canvas, kGap, kGap, kWidth, kHeight, kScale, seeds);
    for (Seed& seed : seeds)
        seed.id %= kKinds;
    drawMap(canvas, 2 * kGap + kWidth * kScale, kGap, kWidth, kHeight, kScale, seeds);
    return canvas;
}

}  // namespace gallery
