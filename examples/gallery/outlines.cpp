// Outlines: repaired, split, cut into pieces, reduced, and within their convex hulls.
#include <velquad/polygon.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <stdexcept>
#include <vector>

#include "chains.h"
#include "pictures.h"

namespace gallery {
namespace {

constexpr int kZoom = 14;
constexpr Rgb kColours[] = {kOrange, kBlue, kGreen, kRed, kViolet};

using Outline = std::vector<tagPOINT>;

DWORD countOf(const Outline& outline) {
    return static_cast<DWORD>(outline.size());
}

/// Cuts an outline to the count that a function returned.
void shorten(Outline& outline, DWORD count) {
    if (count == 0 || count > outline.size()) throw std::runtime_error("an outline was not repaired");
    outline.resize(count);
}

Outline moved(Outline outline, int dx, int dy) {
    polyTranslate(outline.data(), countOf(outline), dx, dy);
    return outline;
}

Rgb pale(Rgb colour) {
    const auto towardsPaper = [](std::uint8_t paper, std::uint8_t channel) {
        return static_cast<std::uint8_t>((3 * paper + channel) / 4);
    };
    return {towardsPaper(kPaper.red, colour.red), towardsPaper(kPaper.green, colour.green),
            towardsPaper(kPaper.blue, colour.blue)};
}

/// Fills the pixels inside an outline and on it.
void fillInside(Canvas& canvas, const Outline& outline, Rgb colour) {
    RECT rect;
    polyGetBoundingRect(outline.data(), countOf(outline), &rect);
    for (LONG y = rect.top; y <= rect.bottom; ++y) {
        for (LONG x = rect.left; x <= rect.right; ++x) {
            const tagPOINT pixel{x, y};
            if (polyIsPointInside(outline.data(), countOf(outline), &pixel) != 0)
                canvas.fillCell(static_cast<int>(x), static_cast<int>(y), colour);
        }
    }
}

/// Fills the pixels of the edges between stored points.
void fillEdges(Canvas& canvas, const Outline& chain, Rgb colour) {
    for (std::size_t i = 1; i < chain.size(); ++i)
        canvas.fillCells(pixelsOf(chain[i - 1], chain[i]), colour);
}

/// Draws the edges between stored points, and the points.
void strokeEdges(Canvas& canvas, const Outline& chain, double width, Rgb colour) {
    for (std::size_t i = 1; i < chain.size(); ++i)
        canvas.stroke(middleOf(chain[i - 1]), middleOf(chain[i]), width, colour);
    for (const tagPOINT& point : chain)
        canvas.dot(middleOf(point), 4.0, colour);
}

void drawShape(Canvas& canvas, const Outline& outline, Rgb colour) {
    fillInside(canvas, outline, pale(colour));
    fillEdges(canvas, outline, colour);
    strokeEdges(canvas, outline, 1.5, kInk);
}

/// Draws an outline in grey, and in red the first edge at fault and the one that it meets.
void drawFaults(Canvas& canvas, const Outline& outline) {
    drawShape(canvas, outline, kFaint);
    DWORD edges[2];
    if (polyIsSimple(outline.data(), countOf(outline), 1, &edges[0], &edges[1]) != 0) return;
    for (const DWORD edge : edges)
        canvas.stroke(middleOf(outline[edge]), middleOf(outline[edge + 1]), 3.5, kRed);
}

/// Draws what a repair left on top of the old outline.
void drawRepaired(Canvas& canvas, const Outline& before, const Outline& after, Rgb colour) {
    drawShape(canvas, after, colour);
    for (std::size_t i = 1; i < before.size(); ++i)
        canvas.stroke(middleOf(before[i - 1]), middleOf(before[i]), 1.5, kRed);
    strokeEdges(canvas, after, 2.5, kInk);
}

/// A closed outline with bays and headlands, as a chain of pixels.
Outline coast(const tagPOINT2D& centre, double radius) {
    constexpr int kCorners = 120;
    constexpr double kTurn = 6.283185307179586;
    Outline corners;
    for (int i = 0; i <= kCorners; ++i) {
        const double angle = kTurn * (i % kCorners) / kCorners;
        const double distance =
            radius * (0.8 + 0.15 * std::cos(3 * angle + 0.5) + 0.08 * std::sin(8 * angle));
        corners.push_back({polyMakeInt(centre.x + distance * std::cos(angle)),
                           polyMakeInt(centre.y + distance * std::sin(angle))});
    }
    Outline pixels;
    for (std::size_t i = 1; i < corners.size(); ++i) {
        const Outline edge = pixelsOf(corners[i - 1], corners[i]);
        pixels.insert(pixels.end(), edge.begin(), edge.end());
    }
    shorten(pixels, polyRemoveDoublePoints(pixels.data(), countOf(pixels)));
    return pixels;
}

}  // namespace

Canvas drawRepairs() {
    constexpr int kPanel = 22;
    Canvas canvas(3 * kPanel, 2 * kPanel, kZoom);

    // Only vertices are cut off, none is put at a crossing: those next to a loop stay close to it.
    const Outline crossing{{3, 4},  {12, 7}, {17, 9}, {19, 3}, {14, 2}, {13, 11}, {17, 18},
                           {8, 16}, {2, 15}, {2, 19}, {6, 20}, {5, 13}, {3, 4}};
    Outline simple = crossing;
    shorten(simple, polyMakeSimple(simple.data(), countOf(simple), std::numeric_limits<DWORD>::max()));
    drawFaults(canvas, crossing);
    drawRepaired(canvas, moved(crossing, 0, kPanel), moved(simple, 0, kPanel), kOrange);

    // A bent sting, one whose foot is a pixel wide, and one of three pixels, which is too wide to be removed.
    const Outline stung{{5, 6},   {9, 6},   {9, 4},   {12, 1},  {9, 4},   {9, 6},   {15, 6}, {16, 11},
                        {20, 11}, {15, 11}, {16, 16}, {11, 16}, {11, 20}, {11, 13}, {5, 16}, {5, 6}};
    Outline smooth = stung;
    shorten(smooth, polyRemoveStings(smooth.data(), countOf(smooth), 0, 1.0));
    drawFaults(canvas, moved(stung, kPanel, 0));
    drawRepaired(canvas, moved(stung, kPanel, kPanel), moved(smooth, kPanel, kPanel), kBlue);

    const Outline touching{{2, 3},   {18, 3},  {18, 10}, {6, 10}, {2, 14},
                           {13, 10}, {18, 14}, {18, 19}, {2, 19}, {2, 3}};
    Outline apart = touching;
    shorten(apart, polySeperateTouchingSegments(apart.data(), countOf(apart)));
    drawFaults(canvas, moved(touching, 2 * kPanel, 0));
    drawRepaired(canvas, moved(touching, 2 * kPanel, kPanel), moved(apart, 2 * kPanel, kPanel), kGreen);
    return canvas;
}

Canvas drawSplit() {
    constexpr int kPanel = 31;
    Canvas canvas(2 * kPanel + 2, 30, kZoom);
    const Outline outline{{3, 5},   {12, 3},  {18, 7},  {27, 4}, {28, 15}, {24, 18},
                          {27, 26}, {16, 25}, {10, 27}, {4, 24}, {6, 14},  {3, 5}};
    // The ends lie off the outline: the split starts and ends at the places next to them.
    const Outline cut{{16, 2}, {14, 10}, {19, 14}, {15, 20}, {20, 28}};
    drawShape(canvas, outline, kFaint);
    strokeEdges(canvas, cut, 2.5, kRed);

    void* first = nullptr;
    void* second = nullptr;
    if (!polySplit(outline.data(), countOf(outline), 1, 1.0, cut.data(), countOf(cut), &first, &second))
        throw std::runtime_error("an outline was not split");
    const Outline firstPiece = pointsOf(first);
    const Outline secondPiece = pointsOf(second);
    drawShape(canvas, moved(firstPiece, kPanel + 2, 0), kOrange);
    drawShape(canvas, moved(secondPiece, kPanel - 1, 0), kBlue);
    return canvas;
}

Canvas drawDecomposition() {
    constexpr int kPanel = 31;
    constexpr double kNoSnap = std::numeric_limits<double>::max();
    Canvas canvas(2 * kPanel, 30, kZoom);
    const Outline outline{{4, 6},   {14, 2},  {24, 4}, {28, 12}, {22, 16},
                          {27, 26}, {14, 22}, {6, 27}, {2, 18},  {4, 6}};
    const std::vector<tagPOLY_POSITION> positions{{0, 0.5}, {2, 0.25}, {4, 0.6}, {5, 0.9}, {7, 0.7}};
    int panel = 0;
    for (const double tolerance : {kNoSnap, 3.0}) {
        std::vector<void*> handles(positions.size() + 1);  // one entry stays free
        DWORD number = 0;
        if (!polyDecompose(outline.data(), countOf(outline), 1, tolerance, positions.data(),
                           static_cast<DWORD>(positions.size()), handles.data(),
                           static_cast<DWORD>(handles.size()), &number))
            throw std::runtime_error("an outline was not cut");
        for (DWORD i = 0; i < number; ++i)
            fillEdges(canvas, moved(pointsOf(handles[i]), panel * kPanel, 0), kColours[i % 5]);
        strokeEdges(canvas, moved(outline, panel * kPanel, 0), 1.5, kInk);
        for (const tagPOLY_POSITION& position : positions) {
            tagPOINT2D place{};
            polyCalcPoint(outline.data(), countOf(outline), 1, position.index, position.fraction, &place);
            const tagPOINT2D centre{place.x + panel * kPanel, place.y};
            canvas.dot(centre, 7.0, kInk);
            canvas.dot(centre, 5.0, kPaper);
        }
        ++panel;
    }
    return canvas;
}

Canvas drawReduction() {
    constexpr int kPanel = 31;
    constexpr DWORD kPasses = 16;  // more than this outline takes
    Canvas canvas(3 * kPanel, kPanel, 10);
    const Outline outline = coast({15.0, 15.0}, 14.0);
    int panel = 0;
    for (const double limit : {0.25, 1.0, 4.0}) {
        Outline reduced = outline;
        shorten(reduced, polyReducePointsEx(reduced.data(), countOf(reduced), limit, kPasses));
        canvas.fillCells(moved(outline, panel * kPanel, 0), kFaint);
        strokeEdges(canvas, moved(reduced, panel * kPanel, 0), 2.5, kColours[panel]);
        ++panel;
    }
    return canvas;
}

Canvas drawConvexHulls() {
    constexpr int kPanel = 32;
    Canvas canvas(2 * kPanel, 32, kZoom);
    Outline cloud;
    std::uint32_t state = 20;
    const auto next = [&] {
        state = state * 1664525u + 1013904223u;
        return static_cast<int>(state >> 16) % 25;
    };
    for (int i = 0; i < 40; ++i) {
        const int x = 3 + next();
        const int y = 3 + next();
        cloud.push_back({x, y});
    }
    const Outline star = moved({{15, 2},
                                {18, 11},
                                {28, 9},
                                {22, 16},
                                {29, 25},
                                {18, 21},
                                {13, 29},
                                {11, 20},
                                {2, 22},
                                {8, 14},
                                {4, 5},
                                {12, 10},
                                {15, 2}},
                               kPanel, 0);
    canvas.fillCells(cloud, kInk);
    drawShape(canvas, star, kFaint);
    for (Outline points : {cloud, star}) {
        shorten(points, polyConvexHull(points.data(), countOf(points)));
        points.push_back(points.front());
        strokeEdges(canvas, points, 3.0, kOrange);
    }
    return canvas;
}

}  // namespace gallery
