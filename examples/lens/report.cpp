#include "report.h"

#include <algorithm>
#include <cmath>

#include "ink.h"

namespace examples::lens {
namespace {

constexpr Rgb kTrueColour{224, 112, 0};
constexpr Rgb kDotColour{0, 110, 210};
constexpr Rgb kPage{255, 255, 255};
constexpr int kTitleHeight = 70;  ///< Of a panel.

/// One panel: the frame of the picture, the residuals enlarged, a bar for their scale, and what it is.
void writePanel(std::ostream& svg, const Results& results, const ModelResult& model, double left,
                double top) {
    constexpr double kLongest = 150.0;
    const double magnification = magnificationFor(model.dots.largest, kLongest);
    svg << "<g transform=\"translate(" << left << ' ' << top << ")\">\n<text x=\"0\" y=\"52\">Model "
        << model.model << ", " << model.terms << " terms: rms " << number(model.dots.rms, 3) << ", at most "
        << number(model.dots.largest, 3) << " px; vectors x "
        << number(magnification, magnification < 1.0 ? 1 : 0) << "</text>\n<g transform=\"translate(0 "
        << kTitleHeight << ")\">\n<rect width=\"" << kWidth << "\" height=\"" << kHeight
        << "\" fill=\"#ffffff\" stroke=\"#aab0b8\" stroke-width=\"2\"/>\n";
    svg << "<path stroke=\"" << htmlColour(kDotColour) << "\" stroke-width=\"5\" d=\"";
    for (std::size_t i = 0; i < results.dots.size(); ++i) {
        const tagPOINT2D& at = results.dots[i].measured;
        svg << 'M' << at.x << ' ' << at.y << 'l' << model.residuals[i].x * magnification << ' '
            << model.residuals[i].y * magnification;
    }
    // Lines of no length with round ends are dots.
    svg << "\"/>\n<path stroke=\"#1d232a\" stroke-width=\"10\" d=\"";
    for (const Dot& dot : results.dots)
        svg << 'M' << dot.measured.x << ' ' << dot.measured.y << "h0";
    svg << "\"/>\n</g>\n</g>\n";
}

}  // namespace

ColourImage drawDots(const GreyImage& picture, const std::vector<Dot>& dots) {
    ColourImage page = coloured(picture, 0.25);
    InkLayer lines(page.width, page.height);
    InkLayer centres(page.width, page.height);
    for (const Dot& dot : dots) {
        lines.arrow(dot.measured, dot.truth, 3.0, 12.0);
        centres.stroke({dot.measured}, 5.0);
    }
    blend(page, lines, kTrueColour);
    blend(page, centres, kPage);
    return page;
}

ColourImage drawBoards(const GreyImage& before, const GreyImage& after) {
    constexpr int kGap = 16;
    constexpr int kStep = 2 * kBoardSquare / kBoardScale;
    ColourImage page(before.width + kGap + after.width, before.height, kPage);
    int left = 0;
    for (const GreyImage* board : {&before, &after}) {
        ColourImage half = coloured(*board, 0.0);
        InkLayer lines(half.width, half.height);
        for (int x = kStep; x < half.width; x += kStep)
            lines.stroke({{x + 0.5, 0.0}, {x + 0.5, half.height - 1.0}}, 1.5);
        for (int y = kStep; y < half.height; y += kStep)
            lines.stroke({{0.0, y + 0.5}, {half.width - 1.0, y + 0.5}}, 1.5);
        blend(half, lines, kTrueColour);
        for (int y = 0; y < half.height; ++y)
            std::copy_n(&half.at(0, y), half.width, &page.at(left, y));
        left += half.width + kGap;
    }
    return page;
}

std::string residualsSvg(const Results& results) {
    constexpr int kColumns = 2;
    constexpr int kGap = 100;
    constexpr int kPanelWidth = kWidth + kGap;
    constexpr int kPanelHeight = kHeight + kTitleHeight + kGap;
    const int rows = (static_cast<int>(results.models.size()) + kColumns - 1) / kColumns;
    std::ostringstream svg = plainStream(1);
    svg << "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 " << kColumns * kPanelWidth + kGap << ' '
        << rows * kPanelHeight << "\" width=\"1200\" stroke-linecap=\"round\" font-family=\"sans-serif\" "
        << "font-size=\"44\" fill=\"none\">\n<rect width=\"100%\" height=\"100%\" fill=\"#f4f5f7\"/>\n"
        << "<style>text { fill: #1d232a; }</style>\n";
    for (std::size_t i = 0; i < results.models.size(); ++i) {
        const int column = static_cast<int>(i) % kColumns;
        const int row = static_cast<int>(i) / kColumns;
        writePanel(svg, results, results.models[i], kGap + column * kPanelWidth,
                   kGap / 2 + row * kPanelHeight);
    }
    svg << "</svg>\n";
    return svg.str();
}

Table modelTableOf(const Results& results) {
    Table table;
    table.columns = {{"model", "Model"},
                     {"terms", "Terms"},
                     {"rms_dots", "Dots, rms"},
                     {"largest_dots", "Dots, at most"},
                     {"rms_between", "Between, rms"},
                     {"largest_between", "Between, at most"}};
    for (const ModelResult& model : results.models) {
        table.rows.push_back({std::to_string(model.model), std::to_string(model.terms),
                              number(model.dots.rms, 4), number(model.dots.largest, 4),
                              number(model.between.rms, 4), number(model.between.largest, 4)});
    }
    return table;
}

Table dotTableOf(const Results& results) {
    Table table;
    table.columns = {{"true_x", "True x"},
                     {"true_y", "True y"},
                     {"measured_x", "Measured x"},
                     {"measured_y", "Measured y"}};
    for (const Dot& dot : results.dots) {
        table.rows.push_back({number(dot.truth.x, 1), number(dot.truth.y, 1), number(dot.measured.x, 3),
                              number(dot.measured.y, 3)});
    }
    return table;
}

std::string htmlOf(const Results& results) {
    std::ostringstream html = plainStream(1);
    html << pageStart("Lens models") << "<p>A camera of " << kWidth << " x " << kHeight
         << " pixels looks at a grid of dots through a lens whose distortion is known: rms "
         << results.distortion.rms << " and at most " << results.distortion.largest << " pixels. "
         << results.dots.size() << " dots were found with an error of rms " << number(results.finding.rms, 3)
         << " pixels.</p>\n";

    html << "<h2>The dots</h2>\n<figure>\n<img src=\"dots.png\" alt=\"The picture of the dots\">\n"
         << "<figcaption>An arrow goes from each dot to its true place, in the scale of the "
            "picture.</figcaption>\n"
         << "</figure>\n";
    html << "<h2>What each model leaves</h2>\n<p>In pixels. At the dots, the error of their measurement "
            "counts too; "
         << "between them the map is compared at " << results.pointsBetween << " points without noise.</p>\n"
         << "<p>Models 2 to 4 have powers of the distance from the centre, but not their products with x and "
            "y, of "
         << "which radial distortion consists; they do little more than shift and stretch. Models 5 to 7 "
            "have those "
         << "of the third power, but not the product x y, which a lens that is not quite centred needs. "
            "Models 8 and 9 "
         << "have all that and go up to the fifth power. What is left of them is the error of the dots and, "
            "in the "
         << "corners, what the inverse of a lens has of higher powers.</p>\n"
         << examples::htmlOf(modelTableOf(results))
         << "<figure>\n<img src=\"residuals.svg\" alt=\"Residuals of all models\">\n"
         << "<figcaption>For each model: where it puts the dots, less where they are, at the measured dots "
            "(black). The "
         << "last number of each title tells how many times the vectors are "
            "enlarged.</figcaption>\n</figure>\n";
    html << "<h2>A picture corrected</h2>\n<figure>\n<img src=\"boards.png\" alt=\"A board before and "
            "after\">\n"
         << "<figcaption>A chequered board with rings as the lens shows it, and corrected by model "
         << kLastModel << ". The lines are straight and lie where edges of the board belong."
         << "</figcaption>\n</figure>\n"
         << "<p><a href=\"models.csv\">models.csv</a> holds the table above, <a "
            "href=\"dots.csv\">dots.csv</a> the "
         << "dots.</p>\n"
         << kPageEnd;
    return html.str();
}

}  // namespace examples::lens
