/// @file
/// How well the tiles were put together: numbers, tables and the page.
#ifndef MOSAIC_REPORT_H
#define MOSAIC_REPORT_H

#include <velquad/types.h>

#include <string>
#include <vector>

#include "align.h"
#include "errors.h"
#include "text.h"
#include "tiles.h"

namespace examples::mosaic {

/// How far places are off from where the tiles really lie, less the mean of it: the whole mosaic may lie anywhere.
std::vector<tagPOINT2D> errorsOf(const Tiles& tiles, const std::vector<tagPOINT2D>& places);

/// How far the measured shifts are off from those of the aligned tiles.
std::vector<tagPOINT2D> residualsOf(const std::vector<Pair>& pairs, const std::vector<tagPOINT2D>& places);

/// All that the page tells.
struct Results {
    std::string source;
    int pictureWidth = 0;
    int pictureHeight = 0;
    Tiles tiles;
    std::vector<Pair> pairs;
    std::vector<tagPOINT2D> aligned;
    std::vector<tagPOINT2D> stageErrors;
    std::vector<tagPOINT2D> alignedErrors;
    std::vector<tagPOINT2D> residuals;
    double errorMagnification = 1.0;
    double residualMagnification = 1.0;

    int measuredPairs() const;
};

Table tileTableOf(const Results& results);
Table pairTableOf(const Results& results);

/// The page. It refers to the pictures and tables beside it and to nothing else.
std::string htmlOf(const Results& results);

}  // namespace examples::mosaic

#endif  // MOSAIC_REPORT_H
