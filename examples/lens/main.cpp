// Looks at a grid of dots through a lens whose distortion is known, fits all lens models to what it sees, and tells
// what each one leaves: a small host application of VELQUAD. The library is called in fit.cpp.
//
//     lens [--out DIR]
//
// Exit status: 0 done, 1 failed with one line on standard error, 2 wrong usage.
#include <filesystem>
#include <iostream>
#include <string>
#include <vector>

#include "camera.h"
#include "fit.h"
#include "image_io.h"
#include "program.h"
#include "report.h"
#include "text.h"

namespace examples::lens {
namespace {

constexpr const char* kUsage =
    "Usage: lens [options]\n"
    "Looks at a grid of dots through a lens whose distortion is known, fits all lens models, and writes "
    "dots.png,\n"
    "residuals.svg, boards.png, models.csv, dots.csv and index.html.\n"
    "\n"
    "  --out DIR  where to write (default: out)\n"
    "  --help     this text\n";

struct Options {
    std::string outputDirectory = "out";
    bool help = false;
};

Options parse(CommandLine line) {
    Options options;
    while (!line.atEnd()) {
        const std::string& argument = line.next();
        if (argument == "--out") {
            options.outputDirectory = line.value();
        } else if (argument == "--help" || argument == "-h") {
            options.help = true;
        } else {
            throw UsageError("unknown argument " + argument + " (see --help)");
        }
    }
    return options;
}

ErrorSize differenceOf(const std::vector<Dot>& dots, tagPOINT2D Dot::*first, tagPOINT2D Dot::*second) {
    std::vector<tagPOINT2D> differences;
    for (const Dot& dot : dots)
        differences.push_back({(dot.*first).x - (dot.*second).x, (dot.*first).y - (dot.*second).y});
    return sizeOf(differences);
}

void run(const Options& options) {
    Results results;
    results.dots = dotsInSight();
    const GreyImage picture = photographDots(results.dots);
    measureDots(picture, results.dots);
    results.finding = differenceOf(results.dots, &Dot::measured, &Dot::shown);
    results.distortion = differenceOf(results.dots, &Dot::shown, &Dot::truth);

    // Here the library comes in.
    const std::vector<Dot> between = pointsBetween();
    results.pointsBetween = between.size();
    for (unsigned int model = kFirstModel; model <= kLastModel; ++model)
        results.models.push_back(fitModel(model, results.dots, between));
    const GreyImage board = photographBoard();
    const GreyImage straight = corrected(board, results.dots);

    const std::filesystem::path directory = makeDirectory(options.outputDirectory);
    const auto inDirectory = [&directory](const char* name) { return (directory / name).string(); };
    writePng(inDirectory("dots.png"), drawDots(picture, results.dots));
    writePng(inDirectory("boards.png"), drawBoards(board, straight));
    writeText(inDirectory("residuals.svg"), residualsSvg(results));
    writeText(inDirectory("models.csv"), csvOf(modelTableOf(results)));
    writeText(inDirectory("dots.csv"), csvOf(dotTableOf(results)));
    writeText(inDirectory("index.html"), htmlOf(results));
    const ModelResult& last = results.models.back();
    std::cout << results.dots.size() << " dots, " << number(results.distortion.rms, 1)
              << " pixels rms before; model " << last.model << " leaves " << number(last.dots.rms, 3)
              << "; see " << inDirectory("index.html") << '\n';
}

}  // namespace
}  // namespace examples::lens

int main(int argc, char** argv) {
    using namespace examples::lens;
    return examples::runProgram("lens", kUsage, examples::CommandLine(argc, argv), parse, run);
}
