#include "plot.h"

#include <algorithm>
#include <cstddef>

namespace gallery {

Plot::Plot(Canvas& canvas, const tagMAT_RECT2D& area, const Interval& x, const Interval& y)
    : canvas_(canvas), area_(area), x_(x), y_(y) {
    canvas_.frame(area_, 1.5, kInk);
}

tagPOINT2D Plot::at(double x, double y) const {
    const double up = std::clamp(y_.place(y), 0.0, 1.0);
    return {area_.left + (area_.right - area_.left) * x_.place(x),
            area_.bottom - (area_.bottom - area_.top) * up};
}

void Plot::level(double y, double width, Rgb colour) const {
    canvas_.stroke(at(x_.first, y), at(x_.last, y), width, colour);
}

void Plot::curve(const std::vector<double>& values, double width, Rgb colour, double spacing) const {
    for (std::size_t i = 1; i < values.size(); ++i) {
        canvas_.stroke(at(spacing * static_cast<double>(i - 1), values[i - 1]),
                       at(spacing * static_cast<double>(i), values[i]), width, colour);
    }
}

void Plot::dots(const std::vector<double>& values, double radius, Rgb colour, double spacing) const {
    for (std::size_t i = 0; i < values.size(); ++i)
        canvas_.dot(at(spacing * static_cast<double>(i), values[i]), radius, colour);
}

void Plot::bars(const std::vector<double>& values, double width, Rgb colour) const {
    for (std::size_t i = 0; i < values.size(); ++i) {
        const auto x = static_cast<double>(i);
        canvas_.stroke(at(x, y_.first), at(x, values[i]), width, colour);
    }
}

}  // namespace gallery
