// Plain versions of the raster lines for comparison, in wide integers.
#ifndef VELQUAD_TESTS_SUPPORT_RASTER_REFERENCE_H
#define VELQUAD_TESTS_SUPPORT_RASTER_REFERENCE_H

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

namespace velquad::test {

using WidePixel = std::pair<std::int64_t, std::int64_t>;

/// The error term of the textbook, one loop per octant pair.
inline std::vector<WidePixel> referenceErrorTermLine(std::int64_t x0, std::int64_t y0, std::int64_t x1,
                                                     std::int64_t y1) {
    const std::int64_t adx = x1 >= x0 ? x1 - x0 : x0 - x1;
    const std::int64_t ady = y1 >= y0 ? y1 - y0 : y0 - y1;
    const std::int64_t sx = x1 >= x0 ? 1 : -1;
    const std::int64_t sy = y1 >= y0 ? 1 : -1;
    std::vector<WidePixel> pixels{{x0, y0}};
    std::int64_t x = x0;
    std::int64_t y = y0;
    if (2 * adx <= 2 * ady) {
        for (std::int64_t e = 2 * adx - ady; y != y1; e += 2 * adx) {
            const bool wasNegative = e < 0;
            if (!wasNegative) x += sx;
            y += sy;
            pixels.emplace_back(x, y);
            if (!wasNegative) e -= 2 * ady;
        }
    } else {
        for (std::int64_t e = 2 * ady - adx; x != x1; e += 2 * ady) {
            const bool wasNegative = e < 0;
            x += sx;
            if (!wasNegative) y += sy;
            pixels.emplace_back(x, y);
            if (!wasNegative) e -= 2 * adx;
        }
    }
    return pixels;
}

/// Without an error term: after k steps the minor axis has made floor((2 k minor + major) / (2 major)) steps,
/// which is k * minor / major to the nearest, halves up.
inline WidePixel referenceRoundedPixel(std::int64_t x0, std::int64_t y0, std::int64_t x1, std::int64_t y1,
                                       std::int64_t k) {
    const std::int64_t adx = x1 >= x0 ? x1 - x0 : x0 - x1;
    const std::int64_t ady = y1 >= y0 ? y1 - y0 : y0 - y1;
    const std::int64_t sx = x1 >= x0 ? 1 : -1;
    const std::int64_t sy = y1 >= y0 ? 1 : -1;
    const std::int64_t major = std::max(adx, ady);
    const std::int64_t minor = std::min(adx, ady);
    const std::int64_t across = major == 0 ? 0 : (2 * k * minor + major) / (2 * major);
    return adx >= ady ? WidePixel{x0 + sx * k, y0 + sy * across} : WidePixel{x0 + sx * across, y0 + sy * k};
}

}  // namespace velquad::test

#endif  // VELQUAD_TESTS_SUPPORT_RASTER_REFERENCE_H
