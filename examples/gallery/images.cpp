// A scene zoomed in each way, its region, its limits and a linear map of its values.
#include <velquad/array.h>

#include <cstddef>
#include <stdexcept>
#include <vector>

#include "arrays.h"
#include "pictures.h"
#include "plot.h"
#include "scene.h"

namespace gallery {
namespace {

constexpr int kGap = 14;  // between panels, in cells
constexpr double kWhite = 255.0;

/// A kind of interpolation, as `matZoomArray2v` knows it.
struct Kind {
    unsigned int flags;
    Rgb colour;
};
constexpr Kind kKinds[] = {{0, kGreen}, {2, kBlue}, {4, kOrange}};

GreyImage zoomed(const GreyImage& image, int width, int height, unsigned int flags) {
    GreyImage result(width, height);
    if (matZoomArray2v(image.columnCount(), image.rowCount(), image.rows(), result.columnCount(),
                       result.rowCount(), result.rows(), MAT_ARRAY_UINT8, flags) != 1)
        throw std::runtime_error("matZoomArray2v failed");
    return result;
}

GreyImage zoomedRegion(const GreyImage& image, const RECT& region, int width, int height,
                       unsigned int flags) {
    GreyImage result(width, height);
    if (matZoomArrayROI2v(image.columnCount(), image.rowCount(), image.rows(), &region, result.columnCount(),
                          result.rowCount(), result.rows(), nullptr, MAT_ARRAY_UINT8, flags) != 1)
        throw std::runtime_error("matZoomArrayROI2v failed");
    return result;
}

std::vector<double> levelsOfRow(const GreyImage& image, int y) {
    std::vector<double> levels;
    for (int x = 0; x < image.width(); ++x)
        levels.push_back(image.at(x, y));
    return levels;
}

int columnsOf(const RECT& region) {
    return static_cast<int>(region.right - region.left + 1);
}

int rowsOf(const RECT& region) {
    return static_cast<int>(region.bottom - region.top + 1);
}

/// Frames a region of an image that is drawn with its corner at (left, top).
void frameRegion(Canvas& canvas, int left, int top, const RECT& region, int scale, Rgb colour) {
    canvas.frame({left + static_cast<double>(region.left) * scale - 0.5,
                  top + static_cast<double>(region.top) * scale - 0.5,
                  left + static_cast<double>(region.right + 1) * scale - 0.5,
                  top + static_cast<double>(region.bottom + 1) * scale - 0.5},
                 2.5, colour);
}

/// How many pixels have each grey level.
std::vector<double> histogram(const GreyImage& image) {
    std::vector<double> counts(256);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            ++counts[image.at(x, y)];
    }
    return counts;
}

void transform(void* const* rows, unsigned int width, unsigned int height, double offset, double scale,
               double bias) {
    if (matTransformArray2v(rows, width, height, MAT_ARRAY_UINT8, offset, scale, bias) != 1)
        throw std::runtime_error("matTransformArray2v failed");
}

/// Maps the smallest value to 0 and the largest to 255.
void stretch(GreyImage& image) {
    double least = 0.0;
    double greatest = 0.0;
    if (matGetRangeOfArray2v(image.rows(), MAT_ARRAY_UINT8, 1, nullptr, 0, image.columnCount(),
                             image.rowCount(), &least, &greatest, nullptr, nullptr) != 1)
        throw std::runtime_error("matGetRangeOfArray2v failed");
    transform(image.rows(), image.columnCount(), image.rowCount(), -least, kWhite / (greatest - least), 0.0);
}

void clamp(GreyImage& image, double low, double high) {
    if (matClampArray2v(image.rows(), image.columnCount(), image.rowCount(), MAT_ARRAY_UINT8, low, high) != 1)
        throw std::runtime_error("matClampArray2v failed");
}

/// Turns light into dark within a region.
void invertRegion(GreyImage& image, const RECT& region, double sum) {
    void** rows =
        matMapArrayToROI2v(image.rows(), image.width(), image.rowCount(), MAT_ARRAY_UINT8, 1, &region);
    if (rows == nullptr) throw std::runtime_error("matMapArrayToROI2v failed");
    const int done =
        matTransformArray2v(rows, static_cast<unsigned int>(columnsOf(region)),
                            static_cast<unsigned int>(rowsOf(region)), MAT_ARRAY_UINT8, 0.0, -1.0, sum);
    matFreeArrayMappedToRoi2v(rows);
    if (done != 1) throw std::runtime_error("matTransformArray2v failed");
}

/// An image and how often its grey levels occur, beside it.
void drawWithHistogram(Canvas& canvas, int left, int top, const GreyImage& image, Rgb colour) {
    constexpr double kMost = 1500.0;  // pixels, the upper edge
    drawGrey(canvas, left, top, image, 1);
    const double plotLeft = left + image.width() + kGap;
    const Plot plot(canvas, {plotLeft, top - 0.5, plotLeft + 192.0, top + image.height() - 0.5},
                    {-0.5, kWhite + 0.5}, {0.0, kMost});
    plot.bars(histogram(image), 0.75, colour);
}

}  // namespace

Canvas drawZooms(const Scene& scene) {
    constexpr int kPanelWidth = 288;
    constexpr int kPanelHeight = 216;
    constexpr int kDetailScale = 3;
    constexpr int kSmallScale = 4;
    constexpr int kRow = 40;  // of the details, drawn as a curve: it lies on the old row 15
    constexpr int kOldRow = 15;
    const GreyImage& image = scene.image;
    const RECT& detail = scene.detail;

    const int plotLeft = 2 * kGap + 2 * image.width();
    const int width = 4 * kGap + 3 * kPanelWidth;
    const int detailTop = 2 * kGap + 2 * image.height();
    const int smallTop = detailTop + kPanelHeight + kGap;
    Canvas canvas(width, smallTop + kPanelHeight + kGap, 1, Grid::kHidden);
    drawGrey(canvas, kGap, kGap, image, 2);
    frameRegion(canvas, kGap, kGap, detail, 2, kRed);
    const Plot plot(canvas,
                    {static_cast<double>(plotLeft), static_cast<double>(kGap),
                     static_cast<double>(width - kGap), static_cast<double>(detailTop - kGap)},
                    {0.0, kPanelWidth / kDetailScale - 1.0}, {0.0, scene.detailWhite});
    int left = kGap;
    for (const Kind& kind : kKinds) {
        const GreyImage large =
            zoomedRegion(image, detail, kPanelWidth / kDetailScale, kPanelHeight / kDetailScale, kind.flags);
        drawGrey(canvas, left, detailTop, large, kDetailScale);
        plot.curve(levelsOfRow(large, kRow), 2.0, kind.colour);
        drawGrey(canvas, left, smallTop,
                 zoomed(image, kPanelWidth / kSmallScale, kPanelHeight / kSmallScale, kind.flags),
                 kSmallScale);
        left += kPanelWidth + kGap;
    }
    const double spacing = static_cast<double>(kPanelWidth / kDetailScale) / columnsOf(detail);
    plot.dots(levelsOfRow(zoomedRegion(image, detail, columnsOf(detail), rowsOf(detail), 0), kOldRow), 4.0,
              kInk, spacing);
    return canvas;
}

Canvas drawLimits(const Scene& scene) {
    constexpr int kColumn = kSceneWidth + kGap + 192 + 2 * kGap;
    GreyImage dull = scene.image;
    transform(dull.rows(), dull.columnCount(), dull.rowCount(), 0.0, 0.42, 62.0);
    const int secondTop = 2 * kGap + dull.height();
    Canvas canvas(2 * kColumn, secondTop + dull.height() + kGap, 1, Grid::kHidden);

    drawWithHistogram(canvas, kGap, kGap, dull, kInk);

    GreyImage stretched = dull;
    stretch(stretched);
    drawWithHistogram(canvas, kColumn + kGap, kGap, stretched, kOrange);

    GreyImage clamped = dull;
    clamp(clamped, 90.0, 140.0);
    drawWithHistogram(canvas, kGap, secondTop, clamped, kBlue);

    GreyImage inverted = dull;
    const RECT region{70, 40, 189, 139};
    invertRegion(inverted, region, 230.0);
    drawWithHistogram(canvas, kColumn + kGap, secondTop, inverted, kGreen);
    frameRegion(canvas, kColumn + kGap, secondTop, region, 1, kRed);
    return canvas;
}

}  // namespace gallery
