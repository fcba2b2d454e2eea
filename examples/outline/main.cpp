// Finds the objects of a picture, measures their outlines and draws them smoothly: a small host application of
// VELQUAD. The interesting part, where the library is called, is measure.cpp; polygon.h shows how polygon
// handles are kept.
//
//     outline [picture.png] [--out DIR] [options]
//
// Exit status: 0 done, 1 failed with one line on standard error, 2 wrong usage.
#include <cstdint>
#include <filesystem>
#include <iostream>
#include <string>
#include <vector>

#include "drawing.h"
#include "flatten.h"
#include "image_io.h"
#include "measure.h"
#include "phantom.h"
#include "program.h"
#include "report.h"
#include "text.h"
#include "threshold.h"

namespace examples::outline {
namespace {

constexpr const char* kUsage =
    "Usage: outline [picture.png] [options]\n"
    "Finds objects in a PNG picture, measures and smooths their outlines, and writes overlay.png,\n"
    "outlines.svg, measures.csv and index.html.\n"
    "\n"
    "  --out DIR        where to write (default: out)\n"
    "  --phantom        draw a test picture instead of reading one (default without a picture)\n"
    "  --objects WHICH  bright, dark or auto (default: auto, what the picture's border is not)\n"
    "  --min-area N     pixels of the smallest object (default: 1/2000 of the picture, at least 12)\n"
    "  --no-flatten     do not take out uneven lighting\n"
    "  --help           this text\n";

struct Options {
    std::string picture;  ///< Empty for the phantom.
    std::string outputDirectory = "out";
    ObjectsAre objectsAre = ObjectsAre::kAutomatic;
    std::int64_t smallestObject = 0;  ///< 0: by the size of the picture.
    bool flatten = true;
    bool help = false;
};

ObjectsAre objectsFromText(const std::string& text) {
    if (text == "bright") return ObjectsAre::kBright;
    if (text == "dark") return ObjectsAre::kDark;
    if (text == "auto") return ObjectsAre::kAutomatic;
    throw UsageError("--objects takes bright, dark or auto");
}

std::int64_t areaFromText(const std::string& text) {
    constexpr std::size_t kMostDigits = 9;
    const bool isNumber = !text.empty() && text.size() <= kMostDigits &&
                          text.find_first_not_of("0123456789") == std::string::npos;
    const std::int64_t area = isNumber ? std::stoll(text) : 0;
    if (area < 1) throw UsageError("--min-area takes a number of pixels, 1 or more");
    return area;
}

Options parse(CommandLine line) {
    Options options;
    bool isPhantom = false;
    while (!line.atEnd()) {
        const std::string& argument = line.next();
        if (argument == "--out") {
            options.outputDirectory = line.value();
        } else if (argument == "--objects") {
            options.objectsAre = objectsFromText(line.value());
        } else if (argument == "--min-area") {
            options.smallestObject = areaFromText(line.value());
        } else if (argument == "--no-flatten") {
            options.flatten = false;
        } else if (argument == "--phantom") {
            isPhantom = true;
        } else if (argument == "--help" || argument == "-h") {
            options.help = true;
        } else {
            takePicture(argument, options.picture);
        }
    }
    if (isPhantom && !options.picture.empty()) throw UsageError("give a picture or --phantom, not both");
    return options;
}

std::int64_t smallestObjectFor(const Options& options, const GreyImage& picture) {
    if (options.smallestObject > 0) return options.smallestObject;
    constexpr std::int64_t kSmallest = 12;
    return std::max(kSmallest, static_cast<std::int64_t>(picture.pixels.size()) / 2000);
}

/// A failed threshold leaves specks by the thousand; nobody wants them measured.
void refuseTooManyObjects(const Objects& objects) {
    constexpr std::size_t kMostObjects = 2000;
    if (objects.regions.size() > kMostObjects) {
        throw Failure(std::to_string(objects.regions.size()) + " objects found, more than " +
                      std::to_string(kMostObjects) + "; a larger --min-area leaves the specks out");
    }
}

void run(const Options& options) {
    // A picture, as grey values.
    const GreyImage picture = options.picture.empty() ? drawPhantom() : readPng(options.picture);

    // Objects: smooth away the noise, level the light, part the grey values in two classes, mend the clefts,
    // number the pieces.
    GreyImage prepared = smoothed(picture);
    if (options.flatten) prepared = flattened(prepared, options.objectsAre);
    RunSummary summary;
    summary.histogram = histogramOf(prepared);
    if (summary.histogram.isSingleValue())
        throw Failure("no objects found: the picture has one grey value only");
    summary.threshold = otsuThreshold(summary.histogram);
    const std::int64_t smallestObject = smallestObjectFor(options, picture);
    const Mask mask = closed(thresholded(prepared, summary.threshold, options.objectsAre));
    const Objects objects = findObjects(mask, smallestObject, 4 * smallestObject);
    if (objects.regions.empty()) {
        throw Failure("no objects found of " + std::to_string(smallestObject) + " or more pixels");
    }
    refuseTooManyObjects(objects);

    // Outlines: here the library comes in.
    const Measurement measurement = measure(objects);

    // Results.
    summary.source =
        options.picture.empty() ? "the phantom" : std::filesystem::path(options.picture).filename().string();
    summary.width = picture.width;
    summary.height = picture.height;
    const std::filesystem::path directory = makeDirectory(options.outputDirectory);
    const auto inDirectory = [&directory](const char* name) { return (directory / name).string(); };
    writePng(inDirectory("overlay.png"), drawOverlay(picture, measurement));
    writeText(inDirectory("outlines.svg"), svgOf(summary, measurement));
    writeText(inDirectory("measures.csv"), csvOf(measurement));
    writeText(inDirectory("index.html"), htmlOf(summary, measurement));
    std::cout << measurement.objects.size() << (measurement.objects.size() == 1 ? " object" : " objects")
              << " measured; see " << inDirectory("index.html") << '\n';
}

}  // namespace
}  // namespace examples::outline

int main(int argc, char** argv) {
    using namespace examples::outline;
    return examples::runProgram("outline", kUsage, examples::CommandLine(argc, argv), parse, run);
}
