#include "flatten.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <utility>

namespace examples::outline {
namespace {

constexpr int kTerms = 6;
using Terms = std::array<double, kTerms>;

/// The terms of the surface at a pixel. Coordinates run from -1 to 1, which keeps the equations well scaled.
Terms termsAt(const GreyImage& image, int x, int y) {
    const double u = 2.0 * x / std::max(image.width - 1, 1) - 1.0;
    const double v = 2.0 * y / std::max(image.height - 1, 1) - 1.0;
    return {1.0, u, v, u * u, u * v, v * v};
}

double valueOf(const Terms& surface, const Terms& terms) {
    double sum = 0.0;
    for (std::size_t i = 0; i < kTerms; ++i)
        sum += surface[i] * terms[i];
    return sum;
}

/// Six equations in six unknowns with their right side behind them.
using Equations = std::array<std::array<double, kTerms + 1>, kTerms>;

/// Gaussian elimination with the largest pivot of each column. Nothing for a singular system.
std::optional<Terms> solve(Equations equations) {
    constexpr double kSmallestPivot = 1e-9;
    for (std::size_t column = 0; column < kTerms; ++column) {
        std::size_t pivot = column;
        for (std::size_t row = column + 1; row < kTerms; ++row) {
            if (std::abs(equations[row][column]) > std::abs(equations[pivot][column])) pivot = row;
        }
        if (!(std::abs(equations[pivot][column]) > kSmallestPivot)) return std::nullopt;
        std::swap(equations[pivot], equations[column]);
        for (std::size_t row = 0; row < kTerms; ++row) {
            if (row == column) continue;
            const double factor = equations[row][column] / equations[column][column];
            for (std::size_t i = column; i <= kTerms; ++i)
                equations[row][i] -= factor * equations[column][i];
        }
    }
    Terms solution{};
    for (std::size_t i = 0; i < kTerms; ++i)
        solution[i] = equations[i][kTerms] / equations[i][i];
    return solution;
}

std::optional<Terms> fitSurface(const GreyImage& image, const Mask& objects) {
    Equations equations{};
    for (int y = 0; y < image.height; ++y) {
        for (int x = 0; x < image.width; ++x) {
            if (objects.at(x, y) != 0) continue;
            const Terms terms = termsAt(image, x, y);
            for (std::size_t row = 0; row < kTerms; ++row) {
                for (std::size_t i = 0; i < kTerms; ++i)
                    equations[row][i] += terms[row] * terms[i];
                equations[row][kTerms] += terms[row] * image.at(x, y);
            }
        }
    }
    return solve(equations);
}

/// The mean that the surface keeps in the image: its own mean over all pixels.
double meanOf(const Terms& surface, const GreyImage& image) {
    double sum = 0.0;
    for (int y = 0; y < image.height; ++y) {
        for (int x = 0; x < image.width; ++x)
            sum += valueOf(surface, termsAt(image, x, y));
    }
    return sum / static_cast<double>(image.pixels.size());
}

GreyImage without(const Terms& surface, const GreyImage& image) {
    const double mean = meanOf(surface, image);
    GreyImage result(image.width, image.height);
    for (int y = 0; y < image.height; ++y) {
        for (int x = 0; x < image.width; ++x) {
            const double grey = image.at(x, y) - valueOf(surface, termsAt(image, x, y)) + mean;
            result.at(x, y) = static_cast<std::uint16_t>(std::clamp(grey, 0.0, 65535.0));
        }
    }
    return result;
}

}  // namespace

GreyImage smoothed(const GreyImage& image) {
    GreyImage result(image.width, image.height);
    for (int y = 0; y < image.height; ++y) {
        for (int x = 0; x < image.width; ++x) {
            unsigned int sum = 0;
            for (int j = -1; j <= 1; ++j) {
                for (int i = -1; i <= 1; ++i) {
                    const int sourceX = std::clamp(x + i, 0, image.width - 1);
                    const int sourceY = std::clamp(y + j, 0, image.height - 1);
                    const unsigned int weight = (i == 0 ? 2U : 1U) * (j == 0 ? 2U : 1U);
                    sum += weight * image.at(sourceX, sourceY);
                }
            }
            result.at(x, y) = static_cast<std::uint16_t>((sum + 8U) / 16U);
        }
    }
    return result;
}

GreyImage flattened(const GreyImage& image, ObjectsAre objectsAre) {
    constexpr int kRounds = 4;
    GreyImage result = image;
    for (int round = 0; round < kRounds; ++round) {
        const Histogram histogram = histogramOf(result);
        if (histogram.isSingleValue()) return result;
        const Mask objects = thresholded(result, otsuThreshold(histogram), objectsAre);
        const std::optional<Terms> surface = fitSurface(image, objects);
        if (!surface) return image;
        result = without(*surface, image);
    }
    return result;
}

}  // namespace examples::outline
