/// @file
/// The library at work: how far neighbouring tiles lie apart, and the places that agree best with all of that.
#ifndef MOSAIC_ALIGN_H
#define MOSAIC_ALIGN_H

#include <velquad/types.h>

#include <cstddef>
#include <vector>

#include "tiles.h"

namespace examples::mosaic {

/// Two neighbouring tiles, and how far the second one lies from the first.
struct Pair {
    std::size_t first = 0;
    std::size_t second = 0;
    tagPOINT2D stage{};             ///< What the stage says.
    tagPOINT2D shift{};             ///< What the tiles show; the stage's where they show nothing.
    double correlation = 0.0;       ///< Of the overlapping details, at the measured shift.
    double stageCorrelation = 0.0;  ///< Where the stage says.
    double error = 0.0;             ///< Expected error of the shift along one axis, in pixels.
    bool isMeasured = false;        ///< The correlation has a peak that can be trusted.
};

/// Looks for the shift of every tile against its right and its lower neighbour.
std::vector<Pair> measurePairs(const Tiles& tiles);

/// Places of all tiles, in their order. The first one keeps the place that the stage gave it.
std::vector<tagPOINT2D> align(const Tiles& tiles, const std::vector<Pair>& pairs);

}  // namespace examples::mosaic

#endif  // MOSAIC_ALIGN_H
