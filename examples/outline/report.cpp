#include "report.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "drawing.h"
#include "text.h"

namespace examples::outline {
namespace {

const char* nameOf(Position position) {
    switch (position) {
        case Position::kApart:
            return "apart";
        case Position::kMeeting:
            return "meeting";
        case Position::kNeighbourInside:
            return "around it";
        case Position::kInsideNeighbour:
            return "inside it";
    }
    return "";
}

const char* yesOrNo(bool value) {
    return value ? "yes" : "no";
}

std::string optionalNumber(bool exists, double value, int decimals) {
    if (!exists) return "";
    return number(value, decimals);
}

/// The cells of one object, as the table and the page show them.
std::vector<std::string> cellsOf(const Measurement& measurement, std::size_t index) {
    const MeasuredObject& object = measurement.objects[index];
    const Extent none;
    const Extent& raw = object.rawExtent;
    const Extent& interpolated = object.interpolatedExtent.value_or(none);
    const Extent& fitted = object.fittedExtent.value_or(none);
    const bool hasInterpolated = object.interpolatedExtent.has_value();
    const bool hasFitted = object.fittedExtent.has_value();
    const bool hasCentre = object.centre.has_value();
    const bool hasNeighbour = object.neighbour.has_value();
    return {std::to_string(index + 1),
            std::to_string(object.region.pixelCount),
            optionalNumber(true, raw.area, 1),
            optionalNumber(hasInterpolated, interpolated.area, 1),
            optionalNumber(hasFitted, fitted.area, 1),
            optionalNumber(true, raw.length, 1),
            optionalNumber(hasInterpolated, interpolated.length, 1),
            optionalNumber(hasFitted, fitted.length, 1),
            optionalNumber(hasFitted, circularityOf(fitted), 3),
            optionalNumber(hasCentre, hasCentre ? object.centre->x : 0.0, 2),
            optionalNumber(hasCentre, hasCentre ? object.centre->y : 0.0, 2),
            hasCentre ? yesOrNo(object.isCentreInside) : "",
            hasNeighbour ? std::to_string(object.neighbour->index + 1) : "",
            optionalNumber(hasNeighbour, hasNeighbour ? object.neighbour->distance : 0.0, 1),
            hasNeighbour ? nameOf(object.neighbour->position) : "",
            std::to_string(object.bounds.left),
            std::to_string(object.bounds.top),
            std::to_string(object.bounds.right),
            std::to_string(object.bounds.bottom),
            yesOrNo(object.region.touchesBorder)};
}

/// The columns: as the CSV names them, and as the page does.
constexpr Column kColumns[] = {{"object", "Object"},
                               {"pixels", "Pixels"},
                               {"area_raw", "Area, raw"},
                               {"area_interpolated", "Area, interpolated"},
                               {"area_fitted", "Area, fitted"},
                               {"length_raw", "Length, raw"},
                               {"length_interpolated", "Length, interpolated"},
                               {"length_fitted", "Length, fitted"},
                               {"circularity", "Circularity"},
                               {"centre_x", "Centre x"},
                               {"centre_y", "Centre y"},
                               {"centre_inside", "Centre inside"},
                               {"neighbour", "Neighbour"},
                               {"distance", "Distance"},
                               {"position", "Lies"},
                               {"left", "Left"},
                               {"top", "Top"},
                               {"right", "Right"},
                               {"bottom", "Bottom"},
                               {"touches_border", "Touches border"}};

Table tableOf(const Measurement& measurement) {
    Table table{{std::begin(kColumns), std::end(kColumns)}, {}};
    for (std::size_t i = 0; i < measurement.objects.size(); ++i)
        table.rows.push_back(cellsOf(measurement, i));
    return table;
}

/// Path data of a closed outline. The closing point is left out, "Z" stands for it.
std::string pathOf(const Polygon& polygon, int subpixels, bool isCurve) {
    std::vector<tagPOINT2D> points = pointsInPixels(polygon, subpixels, isCurve);
    if (points.size() > 1 && points.front().x == points.back().x && points.front().y == points.back().y) {
        points.pop_back();
    }
    std::ostringstream path = plainStream(2);
    const char* command = "M";
    for (const tagPOINT2D& point : points) {
        path << command << point.x << ' ' << point.y;
        command = "L";
    }
    path << 'Z';
    return path.str();
}

/// The colours of the lines on a white page.
constexpr const char* kRawInk = "#e07a00";
constexpr const char* kRawFill = "#fdf0dc";
constexpr const char* kInterpolatedInk = "#0077cc";
constexpr const char* kFittedInk = "#c2185b";

/// The outlines of the objects from `first` to before `last`, each kind over all of the one before.
void writePaths(std::ostream& svg, const Measurement& measurement, std::size_t first, std::size_t last) {
    const auto writeKind = [&](const char* ink, const char* fill, const Polygon MeasuredObject::*which,
                               bool isCurve) {
        svg << "<g fill=\"" << fill << "\" stroke=\"" << ink << "\" stroke-linejoin=\"round\">\n";
        for (std::size_t i = first; i < last; ++i) {
            const Polygon& polygon = measurement.objects[i].*which;
            if (polygon) svg << "<path d=\"" << pathOf(polygon, measurement.subpixels, isCurve) << "\"/>\n";
        }
        svg << "</g>\n";
    };
    writeKind(kRawInk, kRawFill, &MeasuredObject::raw, false);
    writeKind(kInterpolatedInk, "none", &MeasuredObject::interpolated, true);
    writeKind(kFittedInk, "none", &MeasuredObject::fitted, true);
}

/// The object that the page shows enlarged: the one of most pixels that has curves, or else the first.
std::size_t showpieceOf(const Measurement& measurement) {
    std::size_t best = 0;
    std::int64_t most = 0;
    for (std::size_t i = 0; i < measurement.objects.size(); ++i) {
        const MeasuredObject& object = measurement.objects[i];
        if (!object.fitted || object.region.touchesBorder || object.region.pixelCount <= most) continue;
        best = i;
        most = object.region.pixelCount;
    }
    return best;
}

/// One object with its outlines, large.
std::string detailSvg(const Measurement& measurement, std::size_t index) {
    constexpr int kMargin = 3;
    const RECT& bounds = measurement.objects[index].bounds;
    std::ostringstream svg = plainStream(2);
    svg << "<svg class=\"detail\" role=\"img\" aria-label=\"One object enlarged\" stroke-width=\"0.2\" "
           "viewBox=\""
        << bounds.left - kMargin << ' ' << bounds.top - kMargin << ' '
        << bounds.right - bounds.left + 2 * kMargin << ' ' << bounds.bottom - bounds.top + 2 * kMargin
        << "\">\n";
    writePaths(svg, measurement, index, index + 1);
    svg << "</svg>\n";
    return svg.str();
}

/// The grey values of the picture as bars, the threshold as a line.
std::string histogramSvg(const RunSummary& run) {
    constexpr double kHeight = 90.0;
    std::ostringstream svg = plainStream(2);
    const std::uint64_t tallest = *std::max_element(run.histogram.counts.begin(), run.histogram.counts.end());
    svg << "<svg class=\"histogram\" viewBox=\"0 0 " << Histogram::kBins
        << " 100\" preserveAspectRatio=\"none\" "
        << "role=\"img\" aria-label=\"Histogram with threshold\">\n<path d=\"M0 " << kHeight;
    for (std::size_t bin = 0; bin < Histogram::kBins; ++bin) {
        // Roots of the counts, so that few object pixels show beside much ground.
        const double part =
            std::sqrt(static_cast<double>(run.histogram.counts[bin]) / static_cast<double>(tallest));
        const double top = kHeight - part * (kHeight - 4.0);
        svg << 'L' << static_cast<double>(bin) << ' ' << top << 'L' << static_cast<double>(bin) + 1.0 << ' '
            << top;
    }
    const double at =
        (run.threshold - run.histogram.low) / (run.histogram.high - run.histogram.low) * Histogram::kBins;
    svg << 'L' << static_cast<double>(Histogram::kBins) << ' ' << kHeight
        << "Z\" fill=\"#8a929c\"/>\n<path d=\"M" << at
        << " 0V100\" stroke=\"#c2185b\" stroke-width=\"1\"/>\n</svg>\n";
    return svg.str();
}

/// What the colours of the lines mean.
std::string keyOf(const std::string& raw, const std::string& interpolated, const std::string& fitted) {
    const auto entry = [](const std::string& colour, const char* meaning) {
        return "<span style=\"background:" + colour + "\"></span>" + meaning;
    };
    return "<figcaption class=\"key\">" + entry(raw, "raw, from pixel to pixel") +
           entry(interpolated, "interpolating curve") + entry(fitted, "fitting curve") + "</figcaption>\n";
}

}  // namespace

std::string csvOf(const Measurement& measurement) {
    return csvOf(tableOf(measurement));
}

std::string svgOf(const RunSummary& run, const Measurement& measurement) {
    std::ostringstream svg = plainStream(2);
    // Whole coordinates are pixel centres, so that the picture reaches half a pixel further on all sides.
    svg << "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"-0.5 -0.5 " << run.width << ' ' << run.height
        << "\" width=\"" << run.width * 3 << "\" height=\"" << run.height * 3 << "\">\n"
        << "<rect x=\"-0.5\" y=\"-0.5\" width=\"" << run.width << "\" height=\"" << run.height
        << "\" fill=\"#ffffff\"/>\n<g stroke-width=\"0.4\">\n";
    writePaths(svg, measurement, 0, measurement.objects.size());
    svg << "</g>\n";
    svg << "<g font-family=\"sans-serif\" font-size=\"9\" fill=\"#333333\" text-anchor=\"middle\">\n";
    for (std::size_t i = 0; i < measurement.objects.size(); ++i) {
        const Region& region = measurement.objects[i].region;
        svg << "<text x=\"" << region.innermostX << "\" y=\"" << region.innermostY << "\" dy=\"0.35em\">"
            << i + 1 << "</text>\n";
    }
    svg << "</g>\n</svg>\n";
    return svg.str();
}

std::string htmlOf(const RunSummary& run, const Measurement& measurement) {
    std::ostringstream html = plainStream(1);
    html << pageStart("Outlines of " + run.source) << "<p>" << run.width << " x " << run.height << " pixels, "
         << measurement.objects.size() << (measurement.objects.size() == 1 ? " object" : " objects") << ", "
         << measurement.subpixels << " sub-pixels per pixel. "
         << "<a href=\"measures.csv\">measures.csv</a> holds the table below.</p>\n";

    html << "<h2>The picture and its outlines</h2>\n<figure>\n"
         << "<img src=\"overlay.png\" alt=\"The picture with all outlines\">\n"
         << keyOf(htmlColour(kRawColour), htmlColour(kInterpolatedColour), htmlColour(kFittedColour))
         << "</figure>\n";

    const std::size_t showpiece = showpieceOf(measurement);
    html << "<h2>Raw and smoothed outlines</h2>\n<figure>\n"
         << "<img src=\"outlines.svg\" alt=\"All outlines over each other\">\n"
         << keyOf(kRawInk, kInterpolatedInk, kFittedInk) << "</figure>\n<figure>\n"
         << detailSvg(measurement, showpiece) << "<figcaption>Object " << showpiece + 1
         << " enlarged.</figcaption>\n</figure>\n";

    html << "<h2>Threshold</h2>\n<figure>\n"
         << histogramSvg(run)
         << "<figcaption>Grey values after smoothing and flattening, drawn as square roots of "
         << "their counts; the line is Otsu's threshold, " << run.threshold / 257.0
         << " on a scale of 0 to 255.</figcaption>\n</figure>\n";

    html << "<h2>Measures</h2>\n<p>In pixels and square pixels. The raw outline runs through the centres of "
            "the "
         << "outermost pixels, half a pixel inside of the edge; so its area is smaller than the number of "
            "pixels. "
         << "Its length counts every stair; the curves give the length of the shape.</p>\n"
         << htmlOf(tableOf(measurement)) << kPageEnd;
    return html.str();
}

}  // namespace examples::outline
