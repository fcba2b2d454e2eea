#include "canvas.h"

#include <algorithm>
#include <cmath>

namespace gallery {
namespace {

std::uint8_t mixed(std::uint8_t below, std::uint8_t above, double part) {
    return static_cast<std::uint8_t>(below + (above - below) * part + 0.5);
}

}  // namespace

Canvas::Canvas(int columns, int rows, int zoom, Grid grid)
    : columns_(columns), rows_(rows), zoom_(zoom), gap_(grid == Grid::kShown ? 1 : 0) {
    pixels_.assign(static_cast<std::size_t>(width()) * static_cast<std::size_t>(height()),
                   grid == Grid::kShown ? kGridColour : kPaper);
    for (int y = 0; y < rows; ++y) {
        for (int x = 0; x < columns; ++x)
            fillCell(x, y, kPaper);
    }
}

void Canvas::fillCell(int x, int y, Rgb colour) {
    if (x < 0 || y < 0 || x >= columns_ || y >= rows_) return;
    for (int v = y * zoom_ + gap_; v < (y + 1) * zoom_; ++v) {
        for (int u = x * zoom_ + gap_; u < (x + 1) * zoom_; ++u)
            at(u, v) = colour;
    }
}

void Canvas::blend(int x, int y, double part, Rgb colour) {
    Rgb& pixel = at(x, y);
    pixel = {mixed(pixel.red, colour.red, part), mixed(pixel.green, colour.green, part),
             mixed(pixel.blue, colour.blue, part)};
}

void Canvas::stroke(const tagPOINT2D& from, const tagPOINT2D& to, double lineWidth, Rgb colour) {
    const auto onScreen = [&](const tagPOINT2D& p) {
        return tagPOINT2D{(p.x + 0.5) * zoom_, (p.y + 0.5) * zoom_};
    };
    const tagPOINT2D a = onScreen(from);
    const tagPOINT2D b = onScreen(to);
    const double reach = lineWidth / 2 + 1;
    const int left = std::max(0, static_cast<int>(std::floor(std::min(a.x, b.x) - reach)));
    const int right = std::min(width() - 1, static_cast<int>(std::ceil(std::max(a.x, b.x) + reach)));
    const int top = std::max(0, static_cast<int>(std::floor(std::min(a.y, b.y) - reach)));
    const int bottom = std::min(height() - 1, static_cast<int>(std::ceil(std::max(a.y, b.y) + reach)));
    const double dx = b.x - a.x;
    const double dy = b.y - a.y;
    const double lengthSquared = dx * dx + dy * dy;
    for (int y = top; y <= bottom; ++y) {
        for (int x = left; x <= right; ++x) {
            const double t = lengthSquared > 0.0
                                 ? std::clamp(((x - a.x) * dx + (y - a.y) * dy) / lengthSquared, 0.0, 1.0)
                                 : 0.0;
            const double distance = std::hypot(x - (a.x + t * dx), y - (a.y + t * dy));
            blend(x, y, std::clamp(lineWidth / 2 + 0.5 - distance, 0.0, 1.0), colour);
        }
    }
}

void Canvas::ring(const tagPOINT2D& centre, double radius, double lineWidth, Rgb colour) {
    const double middleX = (centre.x + 0.5) * zoom_;
    const double middleY = (centre.y + 0.5) * zoom_;
    const double screenRadius = radius * zoom_;
    for (int y = 0; y < height(); ++y) {
        for (int x = 0; x < width(); ++x) {
            const double fromMiddle =
                std::sqrt((x - middleX) * (x - middleX) + (y - middleY) * (y - middleY));
            const double distance = std::abs(fromMiddle - screenRadius);
            blend(x, y, std::clamp(lineWidth / 2 + 0.5 - distance, 0.0, 1.0), colour);
        }
    }
}

void Canvas::frame(const tagMAT_RECT2D& rect, double lineWidth, Rgb colour) {
    const tagPOINT2D corners[] = {
        {rect.left, rect.top}, {rect.right, rect.top}, {rect.right, rect.bottom}, {rect.left, rect.bottom}};
    for (int i = 0; i < 4; ++i)
        stroke(corners[i], corners[(i + 1) % 4], lineWidth, colour);
}

}  // namespace gallery
