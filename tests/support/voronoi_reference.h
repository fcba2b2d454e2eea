// A Voronoi map as plain loops: every cell looks at every seed.
#ifndef VELQUAD_TESTS_SUPPORT_VORONOI_REFERENCE_H
#define VELQUAD_TESTS_SUPPORT_VORONOI_REFERENCE_H

#include <cstddef>
#include <cstdint>
#include <vector>

namespace velquad::test {

struct ReferenceSeed {
    std::int32_t x;
    std::int32_t y;
    std::int32_t id;
};

inline std::vector<std::int32_t> referenceVoronoi(int width, int height,
                                                  const std::vector<ReferenceSeed>& seeds) {
    std::vector<std::int32_t> cells;
    cells.reserve(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            double best = 1e15;
            std::int32_t id = seeds[0].id;
            for (const ReferenceSeed& seed : seeds) {
                const std::uint32_t dx = static_cast<std::uint32_t>(x) - static_cast<std::uint32_t>(seed.x);
                const std::uint32_t dy = static_cast<std::uint32_t>(y) - static_cast<std::uint32_t>(seed.y);
                const double d = static_cast<std::int32_t>(dy * dy + dx * dx);
                if (best > d) {
                    best = d;
                    id = seed.id;
                }
            }
            cells.push_back(id);
        }
    }
    return cells;
}

}  // namespace velquad::test

#endif  // VELQUAD_TESTS_SUPPORT_VORONOI_REFERENCE_H
