/// @file
/// Curves in a panel of a canvas.
#ifndef GALLERY_PLOT_H
#define GALLERY_PLOT_H

#include <vector>

#include "canvas.h"

namespace gallery {

/// An interval from `first` to `last`, which may be the smaller one.
struct Interval {
    double first;
    double last;

    double place(double value) const { return (value - first) / (last - first); }
};

/// A panel whose places stand for values; values grow upwards. What lies above or below is drawn on the edge.
class Plot {
  public:
    /// Frames the panel.
    /// @param area  the panel, in cells.
    Plot(Canvas& canvas, const tagMAT_RECT2D& area, const Interval& x, const Interval& y);

    tagPOINT2D at(double x, double y) const;
    /// Marks a value across the panel.
    void level(double y, double width, Rgb colour) const;
    /// Joins the values, which stand at 0, 1, ... times `spacing`.
    void curve(const std::vector<double>& values, double width, Rgb colour, double spacing = 1.0) const;
    /// Marks the values one by one.
    void dots(const std::vector<double>& values, double radius, Rgb colour, double spacing = 1.0) const;
    /// Draws bars from the lower edge up.
    void bars(const std::vector<double>& values, double width, Rgb colour) const;

  private:
    Canvas& canvas_;
    tagMAT_RECT2D area_;
    Interval x_;
    Interval y_;
};

}  // namespace gallery

#endif  // GALLERY_PLOT_H
