// Cuts a picture into overlapping tiles as a wrong stage would take them, measures how far neighbours lie apart, and
// puts the tiles together again: a small host application of VELQUAD. The library is called in align.cpp, and in
// tiles.cpp to resample.
//
//     mosaic [picture.png] [--out DIR] [options]
//
// Exit status: 0 done, 1 failed with one line on standard error, 2 wrong usage.
#include <algorithm>
#include <cmath>
#include <filesystem>
#include <iostream>
#include <string>
#include <vector>

#include "align.h"
#include "image_io.h"
#include "ink.h"
#include "pictures.h"
#include "program.h"
#include "report.h"
#include "scene.h"
#include "text.h"
#include "tiles.h"

namespace examples::mosaic {
namespace {

constexpr const char* kUsage =
    "Usage: mosaic [picture.png] [options]\n"
    "Cuts a PNG picture into overlapping tiles whose places are only known roughly, aligns them, and writes\n"
    "before.png, after.png and other pictures, tiles.csv, pairs.csv and index.html.\n"
    "\n"
    "  --out DIR        where to write (default: out)\n"
    "  --stage-error N  the largest error of the known places, 0 to 8 pixels (default: 4)\n"
    "  --help           this text\n"
    "\n"
    "Without a picture it draws one.\n";

struct Options {
    std::string picture;  ///< Empty for a drawn one.
    std::string outputDirectory = "out";
    double stageError = 4.0;
    bool help = false;
};

double stageErrorFromText(const std::string& text) {
    constexpr double kLargest = 8.0;
    const bool isDigit = text.size() == 1 && text.find_first_not_of("0123456789") == std::string::npos;
    const double error = isDigit ? text[0] - '0' : -1.0;
    if (error < 0.0 || error > kLargest) throw UsageError("--stage-error takes a whole number from 0 to 8");
    return error;
}

Options parse(CommandLine line) {
    Options options;
    while (!line.atEnd()) {
        const std::string& argument = line.next();
        if (argument == "--out") {
            options.outputDirectory = line.value();
        } else if (argument == "--stage-error") {
            options.stageError = stageErrorFromText(line.value());
        } else if (argument == "--help" || argument == "-h") {
            options.help = true;
        } else {
            takePicture(argument, options.picture);
        }
    }
    return options;
}

std::vector<tagPOINT2D> stagePlaces(const Tiles& tiles) {
    std::vector<tagPOINT2D> places;
    for (const Tile& tile : tiles.tiles)
        places.push_back(tile.stage);
    return places;
}

/// Where the tiles have their middles, and where pairs of them overlap.
std::vector<tagPOINT2D> middlesOf(const Tiles& tiles, const std::vector<tagPOINT2D>& places) {
    std::vector<tagPOINT2D> middles;
    for (const tagPOINT2D& place : places)
        middles.push_back({place.x + tiles.middleX(), place.y + tiles.middleY()});
    return middles;
}

/// The residuals of the measured pairs, each where its tiles overlap.
Vectors pairVectors(const Results& results, const std::vector<tagPOINT2D>& middles) {
    Vectors vectors{{}, {}, kPairColour};
    for (std::size_t i = 0; i < results.pairs.size(); ++i) {
        const Pair& pair = results.pairs[i];
        if (!pair.isMeasured) continue;
        const tagPOINT2D& first = middles[pair.first];
        const tagPOINT2D& second = middles[pair.second];
        vectors.from.push_back({(first.x + second.x) / 2.0, (first.y + second.y) / 2.0});
        vectors.by.push_back(results.residuals[i]);
    }
    return vectors;
}

/// The pairs that look worst where the stage says.
std::vector<Pair> worstPairs(std::vector<Pair> pairs) {
    constexpr std::size_t kShown = 2;
    const auto wrong = [](const Pair& pair) { return pair.correlation - pair.stageCorrelation; };
    std::stable_sort(pairs.begin(), pairs.end(),
                     [&](const Pair& a, const Pair& b) { return wrong(a) > wrong(b); });
    pairs.resize(std::min(pairs.size(), kShown));
    return pairs;
}

void writePictures(const std::filesystem::path& directory, Results& results) {
    const auto inDirectory = [&directory](const char* name) { return (directory / name).string(); };
    const Tiles& tiles = results.tiles;
    const std::vector<tagPOINT2D> stage = stagePlaces(tiles);
    const Frame frame = frameAround(tiles, {stage, results.aligned});
    const GreyImage before = stitched(tiles, stage, frame);
    const GreyImage after = stitched(tiles, results.aligned, frame);
    writePng(inDirectory("tiles.png"), drawTiles(tiles));
    writePng(inDirectory("before.png"), drawLarge(before));
    writePng(inDirectory("after.png"), drawLarge(after));
    writePng(inDirectory("details.png"),
             drawDetails(tiles, frame, results.aligned, worstPairs(results.pairs), before, after));

    // Vectors may be as long as a third of a tile.
    const double room = std::min(tiles.width, tiles.height) / 3.0;
    const std::vector<tagPOINT2D> middles = middlesOf(tiles, results.aligned);
    const Vectors stageVectors{middles, results.stageErrors, kStageColour};
    const Vectors alignedVectors{middles, results.alignedErrors, kAlignedColour};
    results.errorMagnification = magnificationFor(sizeOf(results.stageErrors).largest, room);
    writePng(inDirectory("errors.png"),
             drawVectors(tiles, frame, results.aligned, after, {stageVectors, alignedVectors},
                         results.errorMagnification));
    const Vectors residualVectors = pairVectors(results, middles);
    results.residualMagnification = magnificationFor(
        std::max(sizeOf(residualVectors.by).largest, sizeOf(results.alignedErrors).largest), room);
    writePng(inDirectory("residuals.png"),
             drawVectors(tiles, frame, results.aligned, after, {residualVectors, alignedVectors},
                         results.residualMagnification));
}

void run(const Options& options) {
    const GreyImage picture = options.picture.empty() ? drawPebbles() : readPng(options.picture);
    Results results;
    results.source = options.picture.empty() ? "drawn pebbles"
                                             : std::filesystem::path(options.picture).filename().string();
    results.pictureWidth = picture.width;
    results.pictureHeight = picture.height;
    results.tiles = cutTiles(picture, options.stageError);

    // Here the library comes in.
    results.pairs = measurePairs(results.tiles);
    if (results.measuredPairs() == 0)
        throw Failure("no two tiles show the same; the picture has too little detail");
    results.aligned = align(results.tiles, results.pairs);

    results.stageErrors = errorsOf(results.tiles, stagePlaces(results.tiles));
    results.alignedErrors = errorsOf(results.tiles, results.aligned);
    results.residuals = residualsOf(results.pairs, results.aligned);
    const std::filesystem::path directory = makeDirectory(options.outputDirectory);
    writePictures(directory, results);
    writeText((directory / "tiles.csv").string(), csvOf(tileTableOf(results)));
    writeText((directory / "pairs.csv").string(), csvOf(pairTableOf(results)));
    writeText((directory / "index.html").string(), htmlOf(results));
    const ErrorSize before = sizeOf(results.stageErrors);
    const ErrorSize after = sizeOf(results.alignedErrors);
    std::cout << results.tiles.tiles.size() << " tiles, " << results.measuredPairs() << " of "
              << results.pairs.size() << " pairs measured; errors rms " << number(before.rms, 3) << " -> "
              << number(after.rms, 3) << ", at most " << number(before.largest, 3) << " -> "
              << number(after.largest, 3) << " pixels; see " << (directory / "index.html").string() << '\n';
}

}  // namespace
}  // namespace examples::mosaic

int main(int argc, char** argv) {
    using namespace examples::mosaic;
    return examples::runProgram("mosaic", kUsage, examples::CommandLine(argc, argv), parse, run);
}
