// Draws what functions of VELQUAD do, enlarged until single pixels show, as PNG files and a page around them.
//
//     gallery [DIR] [--picture FILE]
//
// Exit status: 0 done, 1 failed with one line on standard error, 2 wrong usage.
#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>

#include "photograph.h"
#include "pictures.h"
#include "png_file.h"
#include "program.h"
#include "scene.h"

namespace gallery {
namespace {

constexpr const char* kUsage =
    "Usage: gallery [DIR] [--picture FILE]\n"
    "Draws what functions of VELQUAD do, as PNG files and index.html.\n"
    "\n"
    "  DIR             where to write (default: gallery)\n"
    "  --picture FILE  a photograph as PNG, at least 240 x 180 pixels, whose middle takes the place of the\n"
    "                  drawn scene\n"
    "  --help          this text\n";

struct Options {
    std::string outputDirectory;
    std::string photograph;  ///< Empty for the drawn scene.
    bool help = false;
};

struct Picture {
    const char* file;
    const char* title;
    const char* text;
    Canvas (*draw)();  ///< Null for a picture of the scene, which has the members below.
    Canvas (*drawScene)(const Scene&) = nullptr;
    const char* drawnEnd = "";       ///< How the text ends with the drawn scene,
    const char* photographEnd = "";  ///< and with a photograph.
};

constexpr Picture kPictures[] = {
    {"lines.png", "Raster lines",
     "matGetBresenhamLine from the middle in all directions: one pixel per row or column of the longer "
     "extent.",
     drawFanOfLines},
    {"there_and_back.png", "There and back",
     "CMatBresenhamLine from left to right (orange) and from right to left (blue); common pixels are grey. "
     "Where "
     "a line runs exactly between two pixels, the diagonal step is taken, so the way back differs.",
     drawThereAndBack},
    {"clipped_pixels.png", "Segments clipped to pixels",
     "matClipLine2L: the pixels of whole segments in grey, those of the clipped ones in colour. Edges belong "
     "to "
     "the rectangle. Ends move to whole pixels, so a clipped segment may leave the old pixels by one.",
     drawClippedPixels},
    {"clipped_segments.png", "Segments clipped to a rectangle of doubles",
     "matClipLine2D: each end that lies outside moves along its segment to the edge.", drawClippedSegments},
    {"arrows.png", "Arrows",
     "matComputeArrow: from one middle, with heads of 15 degrees (right) and 7.5 more from arrow to arrow, "
     "clockwise. The left line is orange, the right one blue. They are named in axes whose y grows upwards; "
     "in an image it grows "
     "downwards, so they change sides.",
     drawArrows},
    {"ellipses_in_rectangles.png", "Ellipses in rectangles",
     "matCalcEllipse: odd and even widths and heights, and rectangles of a few pixels. The thin curve is the "
     "ellipse through the middles of the outermost pixels.",
     drawEllipsesInRectangles},
    {"ellipses_around_origin.png", "Ellipses around the origin",
     "matGetEllipse with semi-axes from 1 to 19: whole contours on the left. On the right the shortened "
     "ones, whose quarter takes every other point on each side.",
     drawEllipsesAroundOrigin},
    {"tilted_ellipses.png", "Tilted ellipses",
     "polyGetRotatedEllipse (orange) and polyGetArbitraryEllipse (blue); common pixels are grey. The last "
     "two have pixels twice as high as wide, and twice as wide as high. The second ellipse is one where the "
     "walk from pixel to pixel closes after two steps, as they go round a corner.",
     drawTiltedEllipses},
    {"directions.png", "Directions as indices",
     "CMatNormalEncoder: spheres seen obliquely from above, coloured by the index of each cell's direction; "
     "the lower half darker. Left level 2 with the decoded directions as dots, right level 4 with colours in "
     "the order of the indices.",
     drawDirections},
    {"fitted_lines.png", "Lines through a cloud with outliers",
     "CMatRegressionLine (orange) is pulled up by the outliers on the right; CMatRobustLineFit (blue) stays "
     "with the "
     "majority.",
     drawFittedLines},
    {"mean_directions.png", "The mean of directions",
     "CMatMomentOfAnglesEvaluator: directions as dots, their mean in ink, their range in orange and the mean "
     "distance from the mean, to both sides, in green. The directions on the left lie around 0 degrees, "
     "where the "
     "mean of the numbers would point to the other side.",
     drawMeanDirections},
    {"fitted_plane.png", "A plane through points",
     "matRegressionPlane: the plane of least distance with its centre and normal. Points above are blue and "
     "those "
     "below violet, each joined to its foot on the plane.",
     drawFittedPlane},
    {"repairs.png", "Outlines repaired",
     "Above, the outlines at fault, with the first pair of edges that meet in red; below, what is left of "
     "them, on top of the old line in red. polyMakeSimple (orange) cuts the smaller side off at each "
     "crossing and joins the vertices next to it. polyRemoveStings (blue) removes what runs out and back on "
     "one line, up to a width of 1 pixel. polySeperateTouchingSegments (green) moves vertices by a pixel "
     "until no edges touch.",
     drawRepairs},
    {"split.png", "An outline split along a line",
     "polySplit: on the left the outline and the line in red; on the right the two pieces, moved apart. The "
     "outline is cut where it is nearest to the ends of the line.",
     drawSplit},
    {"decomposition.png", "An outline cut into pieces",
     "polyDecompose: the rings are the positions, the colours the pieces. On the right, positions nearer "
     "than 3 pixels to a vertex move onto it.",
     drawDecomposition},
    {"reduction.png", "An outline reduced",
     "polyReducePointsEx: of the grey chain of pixels, points go that lie near the line through their "
     "neighbours, up to squared distances of 0.25, 1 and 4. Each pass measures against what the one before "
     "has left, so the line may end up farther off than the limit.",
     drawReduction},
    {"convex_hulls.png", "Convex hulls",
     "polyConvexHull of scattered pixels and of the vertices of an outline.", drawConvexHulls},
    {"polynomials.png", "Polynomials through noisy points",
     "matPolynomFit and matPolynomEval: a cubic with noise, fitted by polynomials of degree 1 (green), 3 "
     "(blue) and 11 (orange). The first is too stiff, the last follows the noise.",
     drawPolynomials},
    {"correlation.png", "A pattern found in a signal",
     "fnrInitCorrelation and fnrDoCorrelation: above the pattern (blue), in the middle a signal that holds "
     "it "
     "twice, once upside down, and below the correlation, between lines at 1 and -1. Each number of it "
     "stands below the first sample of its stretch. The highest (green) is where the pattern lies, the "
     "lowest (red) where it lies upside down; the slow bend of the signal hardly matters.",
     drawCorrelation},
    {"zero_crossings.png", "Zero crossings of a curve",
     "fnrFindZeroPoint: where the curve between the samples rises (green) and falls (red) through zero. A "
     "run of zeros on the way up is one crossing, on the straight line between the samples around it (grey). "
     "Zeros that the curve touches from above are none.",
     drawZeroCrossings},
    {"smoothing.png", "A profile smoothed",
     "A profile (ink) was measured with noise (dots). matSavitzkyGolay (orange) fits parabolas to 13 "
     "samples: it keeps more of narrow bells, overshoots at steep edges and repeats the nearest value at "
     "both ends. matMeanValue (blue) takes the mean of 13 samples and flattens what is narrower. "
     "matFFTSmooth (green), here with a Blackman window, is the gentlest.",
     drawSmoothing},
    {"windows.png", "A spectrum under windows",
     "matFFT of the noisy profile above, zero frequency in the middle; its amplitudes by matMapFFTData, as "
     "bars over four and a half decades. Grey is the whole spectrum, in colour what matWindowFFT leaves of "
     "it. From above: triangular, Hann, Welch, Blackman. The line is the window itself, on a linear scale "
     "from 0.",
     drawWindows},
    {"mean_envelope.png", "A line between extremes",
     "matMeanEnvelope: a slow wave under a quick one, with a gap of 8 samples and after 1 round (orange) and "
     "4 rounds (blue). Where the quick wave pauses, the extremes lie farther apart and one round keeps to "
     "the curve. At the ends, where extremes are known on one side only, the line may leave the curve.",
     drawMeanEnvelope},
    {"deconvolution.png", "A distribution freed of chance meetings",
     "matDeconvolution: measured (grey bars) are single events, two at once, three at once and so on, behind "
     "a peak on the left without any event, which reaches beyond the panel. The dots are the single events "
     "that the curve was made of; the lines are what comes back, by the logarithm of the spectrum (orange) "
     "and by the series of that logarithm (blue). The first is drawn in areas of the peak, the second in "
     "areas of the whole curve.",
     drawDeconvolution},
    {"intensity_curves.png", "Mappings of grey levels",
     "matInterpolateIntensityCurve: natural cubic splines through a few points, and a ramp of grey levels "
     "before (upper strip) and after (lower strip). The right one swings beyond its points and is cut at "
     "black and white.",
     drawIntensityCurves},
    {"stretched_image.png", "An image stretched",
     "matHorzStretchImage: on the left above an image 24 pixels wide; beside it the same at 12 and 36, below "
     "at 72 pixels. At the bottom a row of the widest one (orange) through the old pixels (ink). The curve "
     "swings beyond steep edges, cut at black and white, and goes on behind the last old pixel.",
     drawStretchedImage},
    {"perimeters.png", "Lengths of digital circles",
     "miniCalcInnerPerimeter (orange) and miniCalcOuterPerimeter (blue) of digital circles with radii from 1 "
     "to 40 pixels, against 2 pi r: the line is 1, the lower edge 0.96 and the upper one 1.28. Small dots "
     "are the sums of the steps from pixel to pixel. Above, five of the circles with the true ones.",
     drawPerimeters},
    {"zooms.png", "An image zoomed",
     "matZoomArrayROI2v enlarges the region in red, matZoomArray2v reduces the whole image below; from the "
     "left nearest, bilinear and cubic. On the right a row of the enlarged region in green, blue and "
     "orange, through its old pixels (ink): cubic interpolation swings beyond edges. What is reduced "
     "consists of samples, not of means, so fine",
     nullptr, drawZooms, " tiles become coarse patterns.",
     " lines become coarse patterns or break. The image is the middle of a photograph, reduced to 240 by 180 "
     "pixels."},
    {"limits.png", "Values mapped and limited",
     "Images and their histograms, whose highest bars are cut off. Above a dull image, and the same "
     "stretched to all grey levels by matTransformArray2v, with the range from matGetRangeOfArray2v: the "
     "levels move apart and leave gaps. Below, matClampArray2v keeps values between 90 and 140. On the "
     "right matMapArrayToROI2v has made rows of the region in red, in which matTransformArray2v turns "
     "light into dark.",
     nullptr, drawLimits, "",
     " The dull image is the middle of a photograph with less contrast than it had."},
    {"volumes.png", "A volume rotated and blurred",
     "Slices through the middle of a volume: from above across z, across y and across x, where z grows "
     "downwards in the last two. From the left the volume itself, turned around two axes by "
     "matAffinTransformArray3v, smoothed by matGaussianBlurFilter3v with a sigma of 2 voxels, and with one "
     "of 5 voxels along z alone.",
     drawVolumes},
    {"discs.png", "Digital discs",
     "matAllocCircularShape2w: discs of the radii 1, 2, 4, 7 and 11 whose cells are coloured by the index "
     "of their distance from the middle; cells outside are grey. Dots mark the first and the last cell of "
     "each row. The circles are wider than the radii by half a cell, as distances are rounded. Below, the "
     "distances of the largest disc by their indices; the line is 11.5.",
     drawDiscs},
    {"peaks.png", "The brightest place under a disc",
     "matFindGlobalPeak2w with discs of the radii 1 (red), 5 (orange) and 14 (blue), each where its mean "
     "is largest: the wider the disc, the wider the spot that it finds. At the border the mean is that of "
     "the cells within the image, so the spot that is cut off can win.",
     drawPeaks},
    {"triangulation.png", "Scattered points triangulated",
     "matExtentDelaunay2D and matDrawDelaunay2D: edges between points are blue, or orange where a triangle "
     "lies on one side only. Green edges lead to the three helpers, which the right side shows around the "
     "first 3 points, around 12 and around all 80. The helpers are not infinitely far away, so the orange "
     "line may run a little inside the convex hull.",
     drawTriangulation},
    {"surfaces.png", "Surfaces through scattered heights",
     "matFindPositionInDelaunay2DEx at each pixel, with the heights at the dots. Above, heights are linear "
     "in each triangle; outside they are those of the nearest vertex (left), of the nearest edge by the "
     "mean distance of its ends (middle) and by its own distance (right). Below, means of all heights "
     "weighted by the inverse of the squared distance (left) and of its fourth power (middle), and the "
     "landscape that the heights were taken from (right).",
     drawSurfaces},
    {"vertices_in_rectangle.png", "Vertices in a rectangle",
     "matEnumDelaunayPositionsInRect: on the left the vertices in the rectangle, on the right the corners "
     "of all triangles that meet it. Those triangles are grey; matFindPositionInDelaunay2D found them from "
     "places in the rectangle.",
     drawVerticesInRectangle},
    {"voronoi_maps.png", "Maps of the nearest seeds",
     "matComputeVoronoiMap2D: each cell has the colour of its nearest seed, read by "
     "matGetIDFromNeighborInVoronoiMap2D. On the left every seed has an identifier of its own. On the "
     "right they share five identifiers, and areas of the same one grow together.",
     drawVoronoiMaps},
};

void writePage(const std::string& path, bool isPhotograph) {
    std::ofstream page(path);
    page << "<!doctype html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n<title>VELQUAD "
            "gallery</title>\n"
            "<style>\n"
            "body { font: 16px/1.5 sans-serif; max-width: 60rem; margin: 2rem auto; padding: 0 1rem; }\n"
            "img { max-width: 100%; }\nfigure { margin: 2rem 0; }\n"
            "</style>\n</head>\n<body>\n<h1>Gallery</h1>\n";
    for (const Picture& picture : kPictures) {
        page << "<h2>" << picture.title << "</h2>\n<figure>\n<img src=\"" << picture.file << "\" alt=\""
             << picture.title << "\">\n<figcaption>" << picture.text
             << (isPhotograph ? picture.photographEnd : picture.drawnEnd) << "</figcaption>\n</figure>\n";
    }
    page << "</body>\n</html>\n";
    page.close();
    if (!page) throw std::runtime_error("cannot write '" + path + "'");
}

Options parse(examples::CommandLine line) {
    Options options;
    while (!line.atEnd()) {
        const std::string& argument = line.next();
        if (argument == "--picture") {
            examples::takePicture(line.value(), options.photograph);
        } else if (argument == "--help" || argument == "-h") {
            options.help = true;
        } else if (argument.rfind('-', 0) == 0) {
            throw examples::UsageError("unknown option " + argument + " (see --help)");
        } else if (argument.empty()) {
            throw examples::UsageError("the name of the directory is empty");
        } else if (!options.outputDirectory.empty()) {
            throw examples::UsageError("more than one directory given (see --help)");
        } else {
            options.outputDirectory = argument;
        }
    }
    if (options.outputDirectory.empty()) options.outputDirectory = "gallery";
    return options;
}

void run(const Options& options) {
    const bool isPhotograph = !options.photograph.empty();
    const Scene scene = isPhotograph ? photographedScene(options.photograph) : drawnScene();
    const std::filesystem::path directory = examples::makeDirectory(options.outputDirectory);
    for (const Picture& picture : kPictures) {
        Canvas canvas = picture.draw != nullptr ? picture.draw() : picture.drawScene(scene);
        writePng((directory / picture.file).string(), canvas);
    }
    writePage((directory / "index.html").string(), isPhotograph);
}

}  // namespace
}  // namespace gallery

int main(int argc, char** argv) {
    using namespace gallery;
    return examples::runProgram("gallery", kUsage, examples::CommandLine(argc, argv), parse, run);
}
