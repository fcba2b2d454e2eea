// The shift of two tiles is where their overlapping pixels correlate best. Pearson's coefficient does not care for
// brightness and contrast, in which tiles differ. Uneven light would make everything correlate, noise nothing; so
// only details between the two in size are compared. The coefficient is computed for all whole-pixel shifts around
// the one that the stage reports; parabolas through the best one and its neighbours, along x and along y, give the
// fraction.
//
// Shifts that go round in a circle do not add up to nothing. Of all places of the tiles the alignment takes those
// with the least sum of squared differences from the shifts, each weighted by the inverse of its expected error.
#include "align.h"

#include <velquad/fitting.h>
#include <velquad/statistics.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace examples::mosaic {
namespace {

constexpr double kFine = 1.0;    ///< What is smaller than that is noise; the sigma of a Gaussian.
constexpr double kCoarse = 3.0;  ///< What is larger than that may be uneven light.
constexpr int kBorder = 6;       ///< Pixels that the larger Gaussian reaches: two sigmas.
/// Pixels that share their noise: the area of the smaller Gaussian with itself.
constexpr double kNoiseArea = 4.0 * 3.141592653589793 * kFine * kFine;
constexpr int kMargin = 3;  ///< Shifts around those that are possible, for the parabola at the edge.
constexpr int kSmallestOverlap = 6;
constexpr double kTrustedCorrelation = 0.5;
/// Errors that all measured shifts have in common: grey values between the pixels are interpolated.
constexpr double kSmallestError = 0.02;

/// Details larger than noise and smaller than what light does: the difference of two blurred pictures. The border,
/// where a blurred picture would have to know what lies outside, is left out.
Image<float> detailsOf(const GreyImage& image) {
    const Image<float> grey = asFloats(image);
    const Image<float> fine = blurred(grey, kFine);
    const Image<float> coarse = blurred(grey, kCoarse);
    Image<float> details(image.width - 2 * kBorder, image.height - 2 * kBorder);
    for (int y = 0; y < details.height; ++y) {
        for (int x = 0; x < details.width; ++x)
            details.at(x, y) = fine.at(x + kBorder, y + kBorder) - coarse.at(x + kBorder, y + kBorder);
    }
    return details;
}

/// The pixels that two tiles have in common along one axis, counted in the first one.
struct Overlap {
    int from;
    int to;  ///< Behind the last one.

    Overlap(int shift, int length) : from(std::max(0, shift)), to(std::min(length, length + shift)) {}
    int length() const { return to - from; }
};

/// The correlation of the second tile, moved by a whole number of pixels, with what it then lies on.
double correlationAt(const Image<float>& first, const Image<float>& second, int shiftX, int shiftY) {
    const Overlap columns(shiftX, first.width);
    const Overlap rows(shiftY, first.height);
    if (std::min(columns.length(), rows.length()) < kSmallestOverlap) return -1.0;
    CMatCorrelationEvaluator correlation;
    for (int y = rows.from; y < rows.to; ++y) {
        // The library only reads, though it takes pointers to what may be written.
        auto* firstRow = const_cast<float*>(&first.at(columns.from, y));
        auto* secondRow = const_cast<float*>(&second.at(columns.from - shiftX, y - shiftY));
        correlation.AddValuePairs(firstRow, secondRow, columns.length());
    }
    return correlation.ComputeCorrelation();
}

/// Correlations for all whole-pixel shifts within `reach` of a middle one.
struct Surface {
    int middleX;
    int middleY;
    int reach;
    Image<double> values;

    Surface(const Image<float>& first, const Image<float>& second, const tagPOINT2D& middle, int reachAround)
        : middleX(static_cast<int>(std::lround(middle.x))),
          middleY(static_cast<int>(std::lround(middle.y))),
          reach(reachAround),
          values(2 * reach + 1, 2 * reach + 1) {
        for (int y = 0; y < values.height; ++y) {
            for (int x = 0; x < values.width; ++x)
                values.at(x, y) = correlationAt(first, second, middleX - reach + x, middleY - reach + y);
        }
    }

    std::pair<int, int> best() const {
        const auto at = std::max_element(values.pixels.begin(), values.pixels.end()) - values.pixels.begin();
        return {static_cast<int>(at % values.width), static_cast<int>(at / values.width)};
    }
};

/// The peak of a cut through the surface, in whole-pixel shifts from its start.
math::ParaFit peakOf(const std::vector<double>& cut, int at) {
    constexpr int kParabola = 2;
    constexpr double kFiveSamples = 0.0;  // Two neighbours on either side and no more.
    constexpr double kFlattest = 0.0;
    constexpr double kAboveBackground = 0.0;
    constexpr double kAboveNoise = 1.0;
    std::vector<double> places(cut.size());
    for (std::size_t i = 0; i < places.size(); ++i)
        places[i] = static_cast<double>(i);
    math::CSVDPolyFit poly(kParabola);
    math::ParaFit fit;
    math::FitParabola(places, cut, at, kFiveSamples, fit, poly, false, kFlattest, kAboveBackground,
                      kAboveNoise);
    return fit;
}

/// The highest point of a surface.
struct Peak {
    bool isSound = false;
    tagPOINT2D shift{};
    double correlation = 0.0;
    double error = 0.0;  ///< Expected, along one axis, in pixels.
};

Peak peakOf(const Image<float>& first, const Image<float>& second, const tagPOINT2D& around, int reach) {
    const Surface surface(first, second, around, reach);
    const auto [bestX, bestY] = surface.best();
    std::vector<double> cutX;
    std::vector<double> cutY;
    for (int i = 0; i < surface.values.width; ++i) {
        cutX.push_back(surface.values.at(i, bestY));
        cutY.push_back(surface.values.at(bestX, i));
    }
    const math::ParaFit alongX = peakOf(cutX, bestX);
    const math::ParaFit alongY = peakOf(cutY, bestY);

    Peak peak;
    peak.correlation = surface.values.at(bestX, bestY);
    peak.isSound = alongX.isPeak && alongY.isPeak && peak.correlation > kTrustedCorrelation;
    if (!peak.isSound) return peak;
    const int left = surface.middleX - reach;
    const int top = surface.middleY - reach;
    peak.shift = {left + alongX.vertexX, top + alongY.vertexX};
    // Noise lowers the correlation, and moves a sharp peak less than a blunt one.
    const double pixels = static_cast<double>(Overlap(left + bestX, first.width).length()) *
                          Overlap(top + bestY, first.height).length();
    const double lost = std::max(0.0, 1.0 - peak.correlation) * kNoiseArea / pixels;
    peak.error = std::sqrt((lost / -alongX.curvature + lost / -alongY.curvature) / 2.0 +
                           kSmallestError * kSmallestError);
    return peak;
}

/// Where the peak lies off the whole pixels, the cuts miss its middle and it is seen a little off. So the second tile
/// is moved by the fraction that was found, and what is left over is measured.
Peak refined(const Image<float>& first, const Image<float>& second, const Peak& found) {
    constexpr int kNearby = 3;
    const tagPOINT2D whole{std::round(found.shift.x), std::round(found.shift.y)};
    const tagPOINT2D fraction{found.shift.x - whole.x, found.shift.y - whole.y};
    const Image<float> moved = resampled(second, {-fraction.x, -fraction.y}, second.width, second.height);
    Peak peak = peakOf(first, moved, whole, kNearby);
    peak.shift = {peak.shift.x + fraction.x, peak.shift.y + fraction.y};
    return peak;
}

void measure(Pair& pair, const Tiles& tiles, const std::vector<Image<float>>& details) {
    constexpr int kRefinements = 2;
    const Image<float>& first = details[pair.first];
    const Image<float>& second = details[pair.second];
    const int reach = static_cast<int>(std::ceil(2.0 * tiles.stageError)) + kMargin;
    Peak peak = peakOf(first, second, pair.stage, reach);
    for (int i = 0; i < kRefinements && peak.isSound; ++i)
        peak = refined(first, second, peak);
    pair.isMeasured = peak.isSound;
    pair.stageCorrelation = correlationAt(first, second, static_cast<int>(std::lround(pair.stage.x)),
                                          static_cast<int>(std::lround(pair.stage.y)));
    pair.correlation = peak.correlation;
    if (peak.isSound) {
        pair.shift = peak.shift;
        pair.error = peak.error;
    } else {
        // The stage's own error: two of them, each evenly spread.
        pair.shift = pair.stage;
        pair.error = std::max(tiles.stageError, kSmallestError) * std::sqrt(2.0 / 3.0);
    }
}

}  // namespace

std::vector<Pair> measurePairs(const Tiles& tiles) {
    std::vector<Image<float>> details;
    for (const Tile& tile : tiles.tiles)
        details.push_back(detailsOf(tile.image));
    std::vector<Pair> pairs;
    const auto add = [&](std::size_t first, std::size_t second) {
        Pair pair;
        pair.first = first;
        pair.second = second;
        const tagPOINT2D& from = tiles.tiles[first].stage;
        const tagPOINT2D& to = tiles.tiles[second].stage;
        pair.stage = {to.x - from.x, to.y - from.y};
        measure(pair, tiles, details);
        pairs.push_back(pair);
    };
    for (std::size_t i = 0; i < tiles.tiles.size(); ++i) {
        if (tiles.tiles[i].column + 1 < kTileColumns) add(i, i + 1);
        if (tiles.tiles[i].row + 1 < kTileRows) add(i, i + kTileColumns);
    }
    return pairs;
}

std::vector<tagPOINT2D> align(const Tiles& tiles, const std::vector<Pair>& pairs) {
    svd::CSVDGlobAln alignment;
    alignment.Allocate(static_cast<unsigned int>(pairs.size()),
                       static_cast<unsigned int>(tiles.tiles.size()));
    const tagPOINT2D& held = tiles.tiles.front().stage;
    alignment.PutExpected(0, held.x, held.y);
    for (const Pair& pair : pairs) {
        alignment.PutPair(static_cast<int>(pair.first), static_cast<int>(pair.second), pair.shift.x,
                          pair.shift.y, 1.0 / pair.error);
    }
    alignment.GlobalAlign();

    // Items have indices in the order of their first use; the id tells which tile one is.
    std::vector<tagPOINT2D> places(tiles.tiles.size());
    for (int i = 0; i < alignment.GetColumns(); ++i) {
        int id = 0;
        tagPOINT2D place{};
        if (alignment.GetPos(i, id, place.x, place.y)) places[static_cast<std::size_t>(id)] = place;
    }
    return places;
}

}  // namespace examples::mosaic
