#include "threshold.h"

#include <algorithm>
#include <cmath>

namespace examples::outline {
namespace {

struct Step {
    int dx;
    int dy;
};

constexpr std::array<Step, 4> kSides{{{1, 0}, {0, 1}, {-1, 0}, {0, -1}}};
constexpr std::array<Step, 8> kSidesAndCorners{
    {{1, 0}, {1, 1}, {0, 1}, {-1, 1}, {-1, 0}, {-1, -1}, {0, -1}, {1, -1}}};

/// Numbers the connected parts of the pixels that have `value`, by flood fill with a list of its own in place
/// of recursion.
template <typename Steps>
Objects connectedParts(const Mask& mask, std::uint8_t value, const Steps& steps) {
    Objects result{Image<std::int32_t>(mask.width, mask.height), {}};
    struct Place {
        int x;
        int y;
    };
    std::vector<Place> open;
    for (int y = 0; y < mask.height; ++y) {
        for (int x = 0; x < mask.width; ++x) {
            if (mask.at(x, y) != value || result.labels.at(x, y) != 0) continue;
            Region region;
            region.label = static_cast<std::int32_t>(result.regions.size()) + 1;
            region.firstX = x;
            region.firstY = y;
            result.labels.at(x, y) = region.label;
            open.assign(1, {x, y});
            while (!open.empty()) {
                const Place place = open.back();
                open.pop_back();
                ++region.pixelCount;
                if (place.x == 0 || place.y == 0 || place.x == mask.width - 1 || place.y == mask.height - 1) {
                    region.touchesBorder = true;
                }
                for (const Step step : steps) {
                    const int nextX = place.x + step.dx;
                    const int nextY = place.y + step.dy;
                    if (!mask.contains(nextX, nextY) || mask.at(nextX, nextY) != value ||
                        result.labels.at(nextX, nextY) != 0) {
                        continue;
                    }
                    result.labels.at(nextX, nextY) = region.label;
                    open.push_back({nextX, nextY});
                }
            }
            result.regions.push_back(region);
        }
    }
    return result;
}

/// Finds the innermost pixel of each object: the first one with the greatest distance to what is not the object,
/// counted in steps over sides and corners. What lies beyond the picture's border is not the object.
///
/// Source: two passes over the picture (A. Rosenfeld, J. L. Pfaltz, "Sequential operations in digital picture
/// processing", Journal of the ACM 13, 1966).
void findInnermostPixels(Objects& objects) {
    const Image<std::int32_t>& labels = objects.labels;
    Image<std::int32_t> depth(labels.width, labels.height);
    const auto depthBeside = [&](int x, int y, Step step) {
        const int neighbourX = x + step.dx;
        const int neighbourY = y + step.dy;
        const bool isSame =
            labels.contains(neighbourX, neighbourY) && labels.at(neighbourX, neighbourY) == labels.at(x, y);
        return isSame ? depth.at(neighbourX, neighbourY) : 0;
    };
    constexpr std::array<Step, 4> kPassed{{{-1, -1}, {0, -1}, {1, -1}, {-1, 0}}};
    for (int y = 0; y < labels.height; ++y) {
        for (int x = 0; x < labels.width; ++x) {
            std::int32_t least = depthBeside(x, y, kPassed[0]);
            for (const Step step : kPassed)
                least = std::min(least, depthBeside(x, y, step));
            depth.at(x, y) = least + 1;
        }
    }

    std::vector<std::int32_t> deepest(objects.regions.size(), 0);
    for (int y = labels.height - 1; y >= 0; --y) {
        for (int x = labels.width - 1; x >= 0; --x) {
            for (const Step step : kPassed) {
                depth.at(x, y) = std::min(depth.at(x, y), depthBeside(x, y, {-step.dx, -step.dy}) + 1);
            }
            if (labels.at(x, y) == 0) continue;
            const auto index = static_cast<std::size_t>(labels.at(x, y)) - 1;
            if (depth.at(x, y) < deepest[index]) continue;
            deepest[index] = depth.at(x, y);
            objects.regions[index].innermostX = x;
            objects.regions[index].innermostY = y;
        }
    }
}

/// Gives `value` to each pixel that has it already or has a neighbour with it.
Mask spread(const Mask& mask, std::uint8_t value) {
    Mask result = mask;
    for (int y = 0; y < mask.height; ++y) {
        for (int x = 0; x < mask.width; ++x) {
            for (const Step step : kSidesAndCorners) {
                if (mask.contains(x + step.dx, y + step.dy) && mask.at(x + step.dx, y + step.dy) == value) {
                    result.at(x, y) = value;
                }
            }
        }
    }
    return result;
}

/// Whether most of the outermost pixels are brighter than the threshold.
bool isBorderBright(const GreyImage& image, double threshold) {
    std::int64_t balance = 0;
    const auto count = [&](int x, int y) { balance += image.at(x, y) > threshold ? 1 : -1; };
    for (int x = 0; x < image.width; ++x) {
        count(x, 0);
        count(x, image.height - 1);
    }
    for (int y = 0; y < image.height; ++y) {
        count(0, y);
        count(image.width - 1, y);
    }
    return balance > 0;
}

}  // namespace

Histogram histogramOf(const GreyImage& image) {
    Histogram histogram;
    const auto [low, high] = std::minmax_element(image.pixels.begin(), image.pixels.end());
    histogram.low = *low;
    histogram.high = *high;
    if (histogram.isSingleValue()) {
        histogram.counts[0] = image.pixels.size();
        return histogram;
    }
    const double binsPerGrey = Histogram::kBins / (histogram.high - histogram.low);
    for (const std::uint16_t grey : image.pixels) {
        const int bin = static_cast<int>((grey - histogram.low) * binsPerGrey);
        ++histogram.counts[static_cast<std::size_t>(std::min(bin, Histogram::kBins - 1))];
    }
    return histogram;
}

double otsuThreshold(const Histogram& histogram) {
    double total = 0.0;
    double totalMoment = 0.0;
    for (std::size_t bin = 0; bin < Histogram::kBins; ++bin) {
        const double count = static_cast<double>(histogram.counts[bin]);
        total += count;
        totalMoment += count * static_cast<double>(bin);
    }

    // The variance between the classes below and above a cut is, up to a constant factor,
    // n0 * n1 * (mean0 - mean1)^2. Over a gap in the histogram it is constant; the cut goes into its middle.
    double best = -1.0;
    int firstBest = 0;
    int lastBest = 0;
    double below = 0.0;
    double momentBelow = 0.0;
    for (int bin = 0; bin < Histogram::kBins - 1; ++bin) {
        const double count = static_cast<double>(histogram.counts[static_cast<std::size_t>(bin)]);
        below += count;
        momentBelow += count * bin;
        const double above = total - below;
        if (below == 0.0 || above == 0.0) continue;
        const double difference = momentBelow / below - (totalMoment - momentBelow) / above;
        const double variance = below * above * difference * difference;
        if (variance > best) {
            best = variance;
            firstBest = bin;
            lastBest = bin;
        } else if (variance == best) {
            lastBest = bin;
        }
    }
    return (histogram.upperEdge(firstBest) + histogram.upperEdge(lastBest)) / 2.0;
}

Mask thresholded(const GreyImage& image, double threshold, ObjectsAre objectsAre) {
    const bool areBright = objectsAre == ObjectsAre::kBright ||
                           (objectsAre == ObjectsAre::kAutomatic && !isBorderBright(image, threshold));
    Mask mask(image.width, image.height);
    for (std::size_t i = 0; i < mask.pixels.size(); ++i) {
        mask.pixels[i] = (image.pixels[i] > threshold) == areBright ? 1 : 0;
    }
    return mask;
}

Mask closed(const Mask& mask) {
    return spread(spread(mask, 1), 0);
}

Objects findObjects(const Mask& mask, std::int64_t smallestObject, std::int64_t largestHole) {
    Mask filled = mask;
    const Objects grounds = connectedParts(mask, 0, kSides);
    for (std::size_t i = 0; i < filled.pixels.size(); ++i) {
        const std::int32_t label = grounds.labels.pixels[i];
        if (label == 0) continue;
        const Region& ground = grounds.regions[static_cast<std::size_t>(label) - 1];
        if (!ground.touchesBorder && ground.pixelCount <= largestHole) filled.pixels[i] = 1;
    }

    Objects objects = connectedParts(filled, 1, kSidesAndCorners);
    std::vector<std::int32_t> newLabels(objects.regions.size() + 1, 0);
    std::vector<Region> kept;
    for (Region region : objects.regions) {
        if (region.pixelCount < smallestObject) continue;
        const std::int32_t label = static_cast<std::int32_t>(kept.size()) + 1;
        newLabels[static_cast<std::size_t>(region.label)] = label;
        region.label = label;
        kept.push_back(region);
    }
    for (std::int32_t& label : objects.labels.pixels)
        label = newLabels[static_cast<std::size_t>(label)];
    objects.regions = std::move(kept);
    findInnermostPixels(objects);
    return objects;
}

}  // namespace examples::outline
