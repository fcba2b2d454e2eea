// Scattered heights: their triangulation, surfaces between them, and vertices in a rectangle.
#include <velquad/geometry.h>
#include <velquad/triangulation.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <set>
#include <stdexcept>
#include <utility>
#include <vector>

#include "noise.h"
#include "pictures.h"

namespace gallery {
namespace {

constexpr unsigned int kNone = 0xFFFFFFFF;  // what a search returns that failed
constexpr unsigned int kEdgesToHelpers = 2;
constexpr unsigned int kEdgesBetweenVertices = 4;

struct Edge {
    tagPOINT3D start;
    tagPOINT3D end;
};

tagPOINT2D onPlane(const tagPOINT3D& point) {
    return {point.x, point.y};
}

bool isSame(const tagPOINT3D& a, const tagPOINT3D& b) {
    return a.x == b.x && a.y == b.y;
}

/// A triangulation of scattered heights.
class Triangulation {
  public:
    Triangulation(const std::vector<tagPOINT3D>& points, const tagMAT_RECT2D& extent)
        : handle_(matInitDelaunay2D(&extent)) {
        constexpr double kDefaultTolerance = std::numeric_limits<double>::max();
        for (const tagPOINT3D& point : points) {
            if (matExtentDelaunay2D(&handle_, &point, kDefaultTolerance) != 1) {
                matExitDelaunay2D(handle_);
                throw std::runtime_error("matExtentDelaunay2D failed");
            }
        }
    }
    Triangulation(const Triangulation&) = delete;
    Triangulation& operator=(const Triangulation&) = delete;
    ~Triangulation() { matExitDelaunay2D(handle_); }

    std::vector<Edge> edges(unsigned int kinds) const {
        std::vector<Edge> edges;
        const auto append = [](tagPOINT3D* start, tagPOINT3D* end, void* list, void*) {
            static_cast<std::vector<Edge>*>(list)->push_back({*start, *end});
            return 1;
        };
        if (matDrawDelaunay2D(handle_, append, kinds, &edges, nullptr) != 1)
            throw std::runtime_error("matDrawDelaunay2D failed");
        return edges;
    }

    /// The height at a place, found with some flags.
    double height(double x, double y, unsigned int flags) const {
        tagPOINT3D place{x, y, 0.0};
        const unsigned int count = matFindPositionInDelaunay2DEx(handle_, &place, nullptr, nullptr, flags);
        if (count == 0 || count == kNone) throw std::runtime_error("a place was not found");
        return place.z;
    }

    /// The triangle around a place; no corners outside and on edges.
    std::vector<tagPOINT3D> triangleAt(double x, double y) const {
        tagPOINT3D place{x, y, 0.0};
        std::vector<tagPOINT3D> corners(3);
        int isOutside = 0;
        const unsigned int count = matFindPositionInDelaunay2D(handle_, &place, corners.data(), &isOutside);
        if (count != 3 || isOutside != 0) corners.clear();
        return corners;
    }

    std::vector<tagPOINT3D> verticesIn(const tagMAT_RECT2D& rect, unsigned int flags) const {
        std::vector<tagPOINT3D> vertices;
        const auto append = [](tagPOINT3D* vertex, void* list) {
            static_cast<std::vector<tagPOINT3D>*>(list)->push_back(*vertex);
            return 1;
        };
        if (matEnumDelaunayPositionsInRect(handle_, &rect, flags, append, &vertices) != 1)
            throw std::runtime_error("matEnumDelaunayPositionsInRect failed");
        return vertices;
    }

  private:
    void* handle_;
};

/// Whether an edge has a triangle on one side only: no other vertex on that side is joined to both ends.
bool isOuter(const Edge& edge, const std::vector<Edge>& all) {
    const auto otherEnds = [&all](const tagPOINT3D& vertex) {
        std::vector<tagPOINT3D> ends;
        for (const Edge& candidate : all) {
            if (isSame(candidate.start, vertex)) ends.push_back(candidate.end);
            if (isSame(candidate.end, vertex)) ends.push_back(candidate.start);
        }
        return ends;
    };
    bool hasLeft = false;
    bool hasRight = false;
    const std::vector<tagPOINT3D> aroundEnd = otherEnds(edge.end);
    for (const tagPOINT3D& corner : otherEnds(edge.start)) {
        const auto isCorner = [&corner](const tagPOINT3D& other) { return isSame(corner, other); };
        if (std::none_of(aroundEnd.begin(), aroundEnd.end(), isCorner)) continue;
        const double turn = (edge.end.x - edge.start.x) * (corner.y - edge.start.y) -
                            (edge.end.y - edge.start.y) * (corner.x - edge.start.x);
        (turn > 0.0 ? hasLeft : hasRight) = true;
    }
    return !hasLeft || !hasRight;
}

/// A landscape over a field of 100 by 70: hills and a hollow.
double landscape(double x, double y) {
    struct Hill {
        double x;
        double y;
        double height;
        double halfWidth;
    };
    constexpr Hill kHills[] = {{28.0, 24.0, 0.75, 15.0},
                               {70.0, 46.0, 0.60, 17.0},
                               {76.0, 16.0, 0.35, 9.0},
                               {46.0, 52.0, -0.45, 13.0},
                               {14.0, 58.0, 0.30, 10.0}};
    double level = 0.3;
    for (const Hill& hill : kHills) {
        const double dx = (x - hill.x) / hill.halfWidth;
        const double dy = (y - hill.y) / hill.halfWidth;
        const double fall = 1.0 + 0.5 * (dx * dx + dy * dy);
        level += hill.height / (fall * fall);
    }
    return level;
}

/// Heights of the landscape at scattered places, none of them close to another one.
std::vector<tagPOINT3D> scatteredHeights(std::size_t count) {
    constexpr double kLeastDistance = 5.6;
    Noise noise(5);
    std::vector<tagPOINT3D> points;
    while (points.size() < count) {
        const double x = 50.0 + 40.0 * noise.next();
        const double y = 35.0 + 26.0 * noise.next();
        const auto isClose = [x, y](const tagPOINT3D& p) {
            return (p.x - x) * (p.x - x) + (p.y - y) * (p.y - y) < kLeastDistance * kLeastDistance;
        };
        if (std::none_of(points.begin(), points.end(), isClose)) points.push_back({x, y, landscape(x, y)});
    }
    return points;
}

constexpr tagMAT_RECT2D kField{0.0, 0.0, 100.0, 70.0};
constexpr std::size_t kPoints = 80;

/// From the sea over meadows and rocks to snow, with a dark line at each tenth.
Rgb mapColour(double height) {
    struct Stop {
        double height;
        double red;
        double green;
        double blue;
    };
    constexpr Stop kStops[] = {{0.0, 50, 100, 170},   {0.2, 120, 180, 215}, {0.3, 150, 195, 140},
                               {0.5, 225, 220, 150},  {0.7, 205, 160, 110}, {0.9, 165, 115, 90},
                               {1.05, 250, 250, 250}, {9.0, 250, 250, 250}};
    const double level = std::clamp(height, 0.0, 1.2);
    const Stop* above = kStops + 1;
    while (above->height <= level)
        ++above;
    const Stop& below = above[-1];
    const double part = (level - below.height) / (above->height - below.height);
    const auto mixed = [part](double first, double second) {
        return static_cast<std::uint8_t>(first + (second - first) * part + 0.5);
    };
    return {mixed(below.red, above->red), mixed(below.green, above->green), mixed(below.blue, above->blue)};
}

/// A part of a canvas that shows a part of the plane.
struct Panel {
    Canvas& canvas;
    tagPOINT2D corner;  ///< Upper left, in cells.
    tagPOINT2D origin;  ///< The place shown there.
    double scale;       ///< Cells for each unit.

    tagPOINT2D at(const tagPOINT2D& place) const {
        return {corner.x + (place.x - origin.x) * scale, corner.y + (place.y - origin.y) * scale};
    }
    /// Draws what of an edge lies in an area, in cells.
    void stroke(const Edge& edge, const tagMAT_RECT2D& area, double width, Rgb colour) const {
        tagPOINT2D start = at(onPlane(edge.start));
        tagPOINT2D end = at(onPlane(edge.end));
        if (matClipLine2D(&area, &start, &end) != 0) canvas.stroke(start, end, width, colour);
    }
    void stroke(const Edge& edge, double width, Rgb colour) const {
        canvas.stroke(at(onPlane(edge.start)), at(onPlane(edge.end)), width, colour);
    }
    void dot(const tagPOINT3D& place, double radius, Rgb colour) const {
        canvas.dot(at(onPlane(place)), radius, colour);
    }
};

void drawEdges(const Panel& panel, const tagMAT_RECT2D& area, const Triangulation& triangulation,
               double width) {
    for (const Edge& edge : triangulation.edges(kEdgesToHelpers))
        panel.stroke(edge, area, 0.75 * width, kGreen);
    const std::vector<Edge> edges = triangulation.edges(kEdgesBetweenVertices);
    // Inner edges come on top: beside a flat corner they run close to the outer ones.
    for (const bool outer : {true, false}) {
        for (const Edge& edge : edges) {
            if (isOuter(edge, edges) == outer)
                panel.stroke(edge, area, outer ? 2.0 * width : width, outer ? kOrange : kBlue);
        }
    }
}

/// Shows a height for each cell of a field, with lines of equal height.
template <typename Height>
void drawMap(Canvas& canvas, int left, int top, int scale, const Height& height) {
    constexpr double kLines = 10.0;  // of equal height, for each unit
    const int columns = static_cast<int>(kField.right) * scale;
    const int rows = static_cast<int>(kField.bottom) * scale;
    std::vector<double> above(static_cast<std::size_t>(columns) + 1);
    for (int y = 0; y < rows; ++y) {
        double before = 0.0;
        for (int x = 0; x < columns; ++x) {
            const double level = height((x + 0.5) / scale, (y + 0.5) / scale);
            const double band = std::floor(level * kLines);
            const auto column = static_cast<std::size_t>(x);
            const bool isLine = (x > 0 && std::floor(before * kLines) != band) ||
                                (y > 0 && std::floor(above[column] * kLines) != band);
            Rgb colour = mapColour(level);
            if (isLine) {
                const auto darker = [](std::uint8_t channel) {
                    return static_cast<std::uint8_t>(channel * 2 / 3);
                };
                colour = {darker(colour.red), darker(colour.green), darker(colour.blue)};
            }
            canvas.fillCell(left + x, top + y, colour);
            before = level;
            above[column] = level;
        }
    }
    canvas.frame({left - 0.5, top - 0.5, left + columns - 0.5, top + rows - 0.5}, 1.5, kInk);
}

/// A triangle by its corners in order, so that it is the same from wherever it was found.
using Triangle = std::array<std::pair<double, double>, 3>;

/// The triangles that meet a rectangle, found by looking at places in it.
std::set<Triangle> trianglesMeeting(const Triangulation& triangulation, const tagMAT_RECT2D& rect) {
    constexpr int kLooks = 160;  // along each side
    std::set<Triangle> triangles;
    for (int i = 0; i <= kLooks; ++i) {
        for (int j = 0; j <= kLooks; ++j) {
            const std::vector<tagPOINT3D> corners =
                triangulation.triangleAt(rect.left + (rect.right - rect.left) * i / kLooks,
                                         rect.top + (rect.bottom - rect.top) * j / kLooks);
            if (corners.empty()) continue;
            Triangle triangle;
            std::transform(corners.begin(), corners.end(), triangle.begin(), [](const tagPOINT3D& corner) {
                return std::pair<double, double>(corner.x, corner.y);
            });
            std::sort(triangle.begin(), triangle.end());
            triangles.insert(triangle);
        }
    }
    return triangles;
}

/// Fills the cells whose middles lie in a triangle.
void fillTriangle(const Panel& panel, const Triangle& triangle, Rgb colour) {
    std::array<tagPOINT2D, 3> corners;
    std::transform(triangle.begin(), triangle.end(), corners.begin(), [&panel](const auto& corner) {
        return panel.at({corner.first, corner.second});
    });
    const auto byX = [](const tagPOINT2D& a, const tagPOINT2D& b) { return a.x < b.x; };
    const auto byY = [](const tagPOINT2D& a, const tagPOINT2D& b) { return a.y < b.y; };
    const auto [leftmost, rightmost] = std::minmax_element(corners.begin(), corners.end(), byX);
    const auto [topmost, lowest] = std::minmax_element(corners.begin(), corners.end(), byY);
    for (int y = static_cast<int>(std::floor(topmost->y)); y <= lowest->y; ++y) {
        for (int x = static_cast<int>(std::floor(leftmost->x)); x <= rightmost->x; ++x) {
            int turns = 0;
            for (std::size_t i = 0; i < 3; ++i) {
                const tagPOINT2D& a = corners[i];
                const tagPOINT2D& b = corners[(i + 1) % 3];
                turns += (b.x - a.x) * (y - a.y) - (b.y - a.y) * (x - a.x) > 0.0 ? 1 : -1;
            }
            if (turns == 3 || turns == -3) panel.canvas.fillCell(x, y, colour);
        }
    }
}

}  // namespace

Canvas drawTriangulation() {
    constexpr int kWidth = 690;
    constexpr int kHeight = 490;
    constexpr int kOverview = 238;  // cells, the width of the column with the helpers
    Canvas canvas(kWidth + kOverview, kHeight, 1, Grid::kHidden);
    const std::vector<tagPOINT3D> points = scatteredHeights(kPoints);
    const Triangulation whole(points, kField);
    const Panel large{canvas, {0.0, 0.0}, {0.0, 0.0}, 7.0};
    drawEdges(large, {-2.0, -2.0, kWidth, kHeight + 2.0}, whole, 2.0);
    for (const tagPOINT3D& point : points)
        large.dot(point, 4.5, kInk);

    double top = 17.0;
    for (const std::size_t count : {std::size_t{3}, std::size_t{12}, kPoints}) {
        constexpr tagPOINT2D kFirstHelper{-75.0, -17.5};
        const Triangulation part({points.begin(), points.begin() + static_cast<std::ptrdiff_t>(count)},
                                 kField);
        drawEdges({canvas, {kWidth + 19.0, top}, kFirstHelper, 0.8},
                  {kWidth, 0.0, kWidth + kOverview, kHeight}, part, 1.25);
        top += 158.0;
    }
    return canvas;
}

Canvas drawSurfaces() {
    constexpr int kScale = 3;
    constexpr int kGap = 14;
    constexpr int kStepX = 100 * kScale + kGap;
    constexpr int kStepY = 70 * kScale + kGap;
    constexpr unsigned int kFlags[] = {0, 1, 2, 8, 16};
    Canvas canvas(kGap + 3 * kStepX, kGap + 2 * kStepY, 1, Grid::kHidden);
    const std::vector<tagPOINT3D> points = scatteredHeights(kPoints);
    const Triangulation triangulation(points, kField);
    int index = 0;
    for (const unsigned int flags : kFlags) {
        const int left = kGap + index % 3 * kStepX;
        const int top = kGap + index / 3 * kStepY;
        drawMap(canvas, left, top, kScale,
                [&](double x, double y) { return triangulation.height(x, y, flags); });
        const Panel panel{canvas, {left - 0.5, top - 0.5}, {0.0, 0.0}, static_cast<double>(kScale)};
        for (const tagPOINT3D& point : points)
            panel.dot(point, 1.75, kInk);
        ++index;
    }
    drawMap(canvas, kGap + 2 * kStepX, kGap + kStepY, kScale, landscape);
    return canvas;
}

Canvas drawVerticesInRectangle() {
    constexpr double kScale = 5.4;  // cells for each unit
    constexpr double kShift = 460.0;
    constexpr tagMAT_RECT2D kRect{30.0, 22.0, 62.0, 44.0};
    Canvas canvas(940, 360, 1, Grid::kHidden);
    const std::vector<tagPOINT3D> points = scatteredHeights(kPoints);
    const Triangulation triangulation(points, kField);
    double left = 0.0;
    for (const unsigned int flags : {0U, 2U}) {
        const Panel panel{canvas, {left, 0.0}, {5.0, 3.0}, kScale};
        if (flags == 2) {
            for (const Triangle& triangle : trianglesMeeting(triangulation, kRect))
                fillTriangle(panel, triangle, kFaint);
        }
        for (const Edge& edge : triangulation.edges(kEdgesBetweenVertices))
            panel.stroke(edge, 1.25, kBlue);
        const tagPOINT2D corner = panel.at({kRect.left, kRect.top});
        const tagPOINT2D opposite = panel.at({kRect.right, kRect.bottom});
        canvas.frame({corner.x, corner.y, opposite.x, opposite.y}, 2.5, kRed);
        for (const tagPOINT3D& point : points)
            panel.dot(point, 3.5, kInk);
        for (const tagPOINT3D& vertex : triangulation.verticesIn(kRect, flags))
            panel.dot(vertex, 6.0, kOrange);
        left += kShift;
    }
    return canvas;
}

}  // namespace gallery
