#include "report.h"

#include <algorithm>
#include <cmath>

#include "pictures.h"

namespace examples::mosaic {
namespace {

tagPOINT2D difference(const tagPOINT2D& a, const tagPOINT2D& b) {
    return {a.x - b.x, a.y - b.y};
}

/// A patch of colour and what it stands for.
std::string keyEntry(Rgb colour, const char* meaning) {
    return "<span style=\"background:" + htmlColour(colour) + "\"></span>" + meaning;
}

std::string figure(const char* file, const char* name, const std::string& caption) {
    return std::string("<figure>\n<img src=\"") + file + "\" alt=\"" + name + "\">\n" + caption +
           "</figure>\n";
}

std::string caption(const std::string& text) {
    return "<figcaption>" + text + "</figcaption>\n";
}

std::string key(const std::string& entries) {
    return "<figcaption class=\"key\">" + entries + "</figcaption>\n";
}

}  // namespace

std::vector<tagPOINT2D> errorsOf(const Tiles& tiles, const std::vector<tagPOINT2D>& places) {
    std::vector<tagPOINT2D> errors;
    tagPOINT2D mean{};
    const auto count = static_cast<double>(places.size());
    for (std::size_t i = 0; i < places.size(); ++i) {
        errors.push_back(difference(places[i], tiles.tiles[i].truth));
        mean = {mean.x + errors.back().x / count, mean.y + errors.back().y / count};
    }
    for (tagPOINT2D& error : errors)
        error = difference(error, mean);
    return errors;
}

std::vector<tagPOINT2D> residualsOf(const std::vector<Pair>& pairs, const std::vector<tagPOINT2D>& places) {
    std::vector<tagPOINT2D> residuals;
    for (const Pair& pair : pairs)
        residuals.push_back(difference(pair.shift, difference(places[pair.second], places[pair.first])));
    return residuals;
}

int Results::measuredPairs() const {
    return static_cast<int>(
        std::count_if(pairs.begin(), pairs.end(), [](const Pair& pair) { return pair.isMeasured; }));
}

Table tileTableOf(const Results& results) {
    Table table;
    table.columns = {{"tile", "Tile"},
                     {"true_x", "True x"},
                     {"true_y", "True y"},
                     {"stage_x", "Stage x"},
                     {"stage_y", "Stage y"},
                     {"aligned_x", "Aligned x"},
                     {"aligned_y", "Aligned y"},
                     {"stage_error", "Error of the stage"},
                     {"aligned_error", "Error aligned"}};
    for (std::size_t i = 0; i < results.tiles.tiles.size(); ++i) {
        const Tile& tile = results.tiles.tiles[i];
        table.rows.push_back(
            {std::to_string(i + 1), number(tile.truth.x, 2), number(tile.truth.y, 2), number(tile.stage.x, 2),
             number(tile.stage.y, 2), number(results.aligned[i].x, 2), number(results.aligned[i].y, 2),
             number(lengthOf(results.stageErrors[i]), 3), number(lengthOf(results.alignedErrors[i]), 3)});
    }
    return table;
}

Table pairTableOf(const Results& results) {
    Table table;
    table.columns = {{"first", "Tile"},
                     {"second", "and tile"},
                     {"stage_x", "Stage x"},
                     {"stage_y", "Stage y"},
                     {"measured_x", "Measured x"},
                     {"measured_y", "Measured y"},
                     {"stage_correlation", "Correlation by the stage"},
                     {"correlation", "Correlation measured"},
                     {"expected_error", "Expected error"},
                     {"residual_x", "Residual x"},
                     {"residual_y", "Residual y"},
                     {"measured", "Measured"}};
    for (std::size_t i = 0; i < results.pairs.size(); ++i) {
        const Pair& pair = results.pairs[i];
        table.rows.push_back({std::to_string(pair.first + 1), std::to_string(pair.second + 1),
                              number(pair.stage.x, 2), number(pair.stage.y, 2), number(pair.shift.x, 2),
                              number(pair.shift.y, 2), number(pair.stageCorrelation, 3),
                              number(pair.correlation, 3), number(pair.error, 3),
                              number(results.residuals[i].x, 3), number(results.residuals[i].y, 3),
                              pair.isMeasured ? "yes" : "no"});
    }
    return table;
}

std::string htmlOf(const Results& results) {
    const ErrorSize stage = sizeOf(results.stageErrors);
    const ErrorSize aligned = sizeOf(results.alignedErrors);
    std::ostringstream html = plainStream(2);
    html << pageStart("Mosaic of " + results.source) << "<p>" << results.pictureWidth << " x "
         << results.pictureHeight << " pixels, cut into " << results.tiles.tiles.size() << " tiles of "
         << results.tiles.width << " x " << results.tiles.height << " pixels. The stage was up to "
         << number(results.tiles.stageError, 0) << " pixels wrong along each axis. "
         << results.measuredPairs() << " of " << results.pairs.size()
         << " neighbouring pairs were measured by correlation.</p>\n"
         << "<p>Errors of the places: rms " << stage.rms << " and at most " << stage.largest
         << " pixels by the stage, rms " << number(aligned.rms, 3) << " and at most "
         << number(aligned.largest, 3) << " pixels after the alignment.</p>\n";

    html << "<h2>The tiles</h2>\n"
         << figure("tiles.png", "The tiles side by side",
                   caption("Each one has its own brightness, contrast and noise, and lies at a fraction of a "
                           "pixel in the picture."));
    html << "<h2>By the stage</h2>\n"
         << figure("before.png", "The tiles where the stage says",
                   caption("Where tiles overlap, they are mixed: what is off shows twice."));
    html << "<h2>Aligned</h2>\n" << figure("after.png", "The tiles aligned", "");
    html << "<h2>Details</h2>\n"
         << figure(
                "details.png", "Details before and after the alignment",
                caption(
                    "Overlaps of the pairs that the stage got wrong most: on the left as the stage says, on "
                    "the right aligned."));
    html << "<h2>Errors</h2>\n"
         << figure("errors.png", "Errors of all places",
                   key(keyEntry(kStageColour, "error by the stage") +
                       keyEntry(kAlignedColour, "error aligned")) +
                       caption(
                           "Enlarged " + number(results.errorMagnification, 0) +
                           " times in units of the picture. Frames show the aligned tiles; the mean error is "
                           "left out."));
    html << "<h2>Residuals</h2>\n"
         << figure(
                "residuals.png", "Residuals of all pairs",
                key(keyEntry(kPairColour, "shift of a pair: measured less aligned") +
                    keyEntry(kAlignedColour, "error aligned")) +
                    caption(
                        "Enlarged " + number(results.residualMagnification, 0) +
                        " times. Measured shifts that go round in a circle do not add up to nothing; what is "
                        "left over is shared by the pairs. Pairs that could not be measured take the shift "
                        "of the stage with little weight, and are not drawn."));
    html << "<h2>Tiles</h2>\n<p>In pixels; also in <a href=\"tiles.csv\">tiles.csv</a>. The mean error is "
            "taken "
            "off.</p>\n"
         << examples::htmlOf(tileTableOf(results))
         << "<h2>Pairs</h2>\n<p>From the first tile to the second; also in "
         << "<a href=\"pairs.csv\">pairs.csv</a>. The inverse of the expected error is the weight of a "
            "pair.</p>\n"
         << examples::htmlOf(pairTableOf(results)) << kPageEnd;
    return html.str();
}

}  // namespace examples::mosaic
