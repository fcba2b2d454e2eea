// Raster lines, clipped segments and arrows.
#include <velquad/geometry.h>

#include <vector>

#include "chains.h"
#include "pictures.h"

namespace gallery {
namespace {

constexpr int kZoom = 16;

}  // namespace

Canvas drawFanOfLines() {
    Canvas canvas(41, 41, kZoom);
    const tagPOINT hub{20, 20};
    const tagPOINT ends[] = {{39, 20}, {39, 27}, {39, 35}, {35, 39}, {26, 39}, {20, 39}, {13, 39},
                             {5, 39},  {1, 35},  {1, 26},  {1, 20},  {1, 13},  {1, 5},   {5, 1},
                             {14, 1},  {20, 1},  {27, 1},  {35, 1},  {39, 5},  {39, 14}};
    const Rgb colours[] = {kOrange, kBlue, kGreen, kRed, kViolet};
    int index = 0;
    for (const tagPOINT& end : ends) {
        canvas.fillCells(pixelsOf(hub, end), colours[index % 5]);
        ++index;
    }
    for (const tagPOINT& end : ends)
        canvas.stroke(middleOf(hub), middleOf(end), 1.5, kInk);
    canvas.dot(middleOf(hub), 5.0, kInk);
    return canvas;
}

Canvas drawThereAndBack() {
    Canvas canvas(41, 17, kZoom);
    // 36 columns and 14 rows: a quarter and three quarters of the way, the line runs exactly between two pixels.
    const tagPOINT from{2, 1};
    const tagPOINT to{38, 15};
    const CPoint start(from);
    const CPoint end(to);
    CMatBresenhamLine there(start, end);
    for (CPoint pixel; there.GetNextPoint(pixel);)
        canvas.fillCell(static_cast<int>(pixel.x), static_cast<int>(pixel.y), kOrange);
    std::vector<tagPOINT> common = pixelsOf(from, to);
    CMatBresenhamLine back(end, start);
    for (CPoint pixel; back.GetNextPoint(pixel);) {
        bool isCommon = false;
        for (const tagPOINT& other : common)
            isCommon = isCommon || pixel == other;
        canvas.fillCell(static_cast<int>(pixel.x), static_cast<int>(pixel.y), isCommon ? kFaint : kBlue);
    }
    canvas.stroke(middleOf(from), middleOf(to), 1.5, kInk);
    canvas.dot(middleOf(from), 4.0, kInk);
    canvas.dot(middleOf(to), 4.0, kInk);
    return canvas;
}

Canvas drawClippedPixels() {
    Canvas canvas(41, 29, kZoom);
    const int rect[] = {9, 7, 31, 21};
    const tagPOINT segments[][2] = {{{1, 3}, {39, 16}},   {{3, 26}, {25, 1}}, {{14, 18}, {26, 11}},
                                    {{28, 12}, {37, 27}}, {{1, 8}, {7, 27}},  {{20, 27}, {39, 24}},
                                    {{36, 20}, {20, 18}}, {{30, 1}, {39, 11}}};
    const Rgb colours[] = {kOrange, kBlue, kGreen, kRed, kViolet};
    int index = 0;
    for (const auto& segment : segments) {
        canvas.fillCells(pixelsOf(segment[0], segment[1]), kFaint);
    }
    for (const auto& segment : segments) {
        tagPOINT p1 = segment[0];
        tagPOINT p2 = segment[1];
        if (matClipLine2L(rect, &p1, &p2) != 0) {
            canvas.fillCells(pixelsOf(p1, p2), colours[index % 5]);
        }
        ++index;
    }
    // The rectangle's edges belong to it: the frame runs around their pixels.
    canvas.frame({rect[0] - 0.5, rect[1] - 0.5, rect[2] + 0.5, rect[3] + 0.5}, 2.0, kInk);
    return canvas;
}

Canvas drawClippedSegments() {
    Canvas canvas(41, 29, kZoom);
    const tagMAT_RECT2D rect{9.25, 6.5, 31.75, 21.5};
    const tagPOINT2D hub{15.5, 12.0};
    const Rgb colours[] = {kOrange, kBlue, kGreen, kRed, kViolet};
    constexpr int kSegments = 15;
    for (int i = 0; i < kSegments; ++i) {
        // Points along the frame of the picture, seen from the hub and from its mirror image.
        const tagPOINT2D end{i < 8 ? 1.0 + 5.0 * i : 39.0, i < 8 ? 27.0 : 25.0 - 3.5 * (i - 8)};
        const tagPOINT2D start{2 * hub.x - end.x, 2 * hub.y - end.y};
        canvas.stroke(start, end, 1.5, kFaint);
        tagPOINT2D p1 = start;
        tagPOINT2D p2 = end;
        if (matClipLine2D(&rect, &p1, &p2) == 0) continue;
        canvas.stroke(p1, p2, 2.5, colours[i % 5]);
        canvas.dot(p1, 4.0, colours[i % 5]);
        canvas.dot(p2, 4.0, colours[i % 5]);
    }
    canvas.frame(rect, 2.0, kInk);
    return canvas;
}

Canvas drawArrows() {
    Canvas canvas(41, 41, kZoom);
    const tagPOINT hub{20, 20};
    const tagPOINT tips[] = {{38, 20}, {35, 34}, {20, 38}, {8, 32}, {2, 20}, {5, 6}, {20, 2}, {33, 8}};
    constexpr int kDegrees = 1;
    constexpr double kHeadLength = 6.0;
    double angle = 15.0;
    for (const tagPOINT& tip : tips) {
        const tagPOINT2D from = middleOf(hub);
        const tagPOINT2D to = middleOf(tip);
        canvas.fillCells(pixelsOf(hub, tip), kFaint);
        canvas.stroke(from, to, 2.5, kInk);
        tagPOINT2D left{};
        tagPOINT2D right{};
        if (matComputeArrow(&from, &to, angle, kDegrees, kHeadLength, &left, &right) != 0) {
            canvas.stroke(left, to, 2.5, kOrange);
            canvas.dot(left, 4.0, kOrange);
            canvas.stroke(right, to, 2.5, kBlue);
            canvas.dot(right, 4.0, kBlue);
        }
        angle += 7.5;
    }
    canvas.dot(middleOf(hub), 5.0, kInk);
    return canvas;
}

}  // namespace gallery
