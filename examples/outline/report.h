/// @file
/// The results in files: a table, a vector drawing and a page that shows them all.
#ifndef OUTLINE_REPORT_H
#define OUTLINE_REPORT_H

#include <string>

#include "image.h"
#include "measure.h"
#include "threshold.h"

namespace examples::outline {

/// What the page tells about a run besides its measurements.
struct RunSummary {
    std::string source;  ///< Name of the picture, as its user knows it.
    int width = 0;
    int height = 0;
    Histogram histogram;  ///< Of the picture that was thresholded.
    double threshold = 0.0;
};

/// One line per object; the first line names the columns. Empty fields stand for what does not exist.
std::string csvOf(const Measurement& measurement);

/// All outlines over each other, in units of pixels.
std::string svgOf(const RunSummary& run, const Measurement& measurement);

/// The page. It refers to overlay.png, outlines.svg and measures.csv beside it and to nothing else.
std::string htmlOf(const RunSummary& run, const Measurement& measurement);

}  // namespace examples::outline

#endif  // OUTLINE_REPORT_H
