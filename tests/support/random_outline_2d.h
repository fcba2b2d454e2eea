// Random outlines of doubles that meet the degenerate cases: few points on a small grid, each coordinate now and then
// moved by an amount that some tolerance of the library is about.
#ifndef VELQUAD_TESTS_SUPPORT_RANDOM_OUTLINE_2D_H
#define VELQUAD_TESTS_SUPPORT_RANDOM_OUTLINE_2D_H

#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "velquad/types.h"

namespace velquad::test {

class RandomOutline2D {
  public:
    /// Where the points lie.
    struct Grid {
        unsigned side = 5;         ///< Cells in each direction.
        double spacing = 1.0;      ///< Distance of the cells.
        double shift = 0.0;        ///< Coordinate of the first cell.
        unsigned jitterOdds = 8;   ///< One coordinate in so many is moved; 0 for none.
        unsigned specialOdds = 0;  ///< One coordinate in so many is no number, infinite or huge; 0 for none.
    };

    RandomOutline2D(unsigned seed, const Grid& grid) : engine_(seed), grid_(grid) {}

    unsigned below(unsigned bound) { return static_cast<unsigned>(engine_()) % bound; }

    double coordinate() {
        if (grid_.specialOdds != 0 && below(grid_.specialOdds) == 0) return special();
        const double cell = grid_.shift + grid_.spacing * below(grid_.side);
        return grid_.jitterOdds != 0 && below(grid_.jitterOdds) == 0 ? jittered(cell) : cell;
    }

    tagPOINT2D point() {
        const double x = coordinate();
        return {x, coordinate()};
    }

    /// An outline of `least` to `most` points: on the grid, with repeated points, straight runs and closing points.
    std::vector<tagPOINT2D> outline(unsigned least, unsigned most) {
        const unsigned count = least + below(most - least + 1);
        std::vector<tagPOINT2D> points;
        while (points.size() < count)
            points.push_back(next(points));
        const unsigned closings = count > 1 ? below(4) : 0;
        for (unsigned k = 1; k < closings; ++k)
            points.push_back(nearTo(points.front()));
        return points;
    }

  private:
    tagPOINT2D next(const std::vector<tagPOINT2D>& points) {
        const unsigned choice = below(12);
        if (points.empty() || choice > 3) return point();
        if (choice == 0) return nearTo(points.back());
        if (choice == 1) return nearTo(points[below(static_cast<unsigned>(points.size()))]);
        const tagPOINT2D& a = points.back();
        const tagPOINT2D& b = points[points.size() > 1 ? points.size() - 2 : 0];
        // On along the last edge, or back on it.
        const double step = choice == 2 ? 0.5 : -0.5;
        return {a.x + (a.x - b.x) * step, a.y + (a.y - b.y) * step};
    }

    tagPOINT2D nearTo(const tagPOINT2D& p) {
        if (below(2) == 0) return p;
        return below(2) == 0 ? tagPOINT2D{jittered(p.x), p.y} : tagPOINT2D{jittered(p.x), jittered(p.y)};
    }

    double jittered(double value) {
        static const double kAmounts[] = {1e-7,
                                          std::nextafter(1e-7, 0.0),
                                          std::nextafter(1e-7, 1.0),
                                          5e-8,
                                          2e-7,
                                          1e-9,
                                          1e-15,
                                          1e-40,
                                          1e-41,
                                          1e-6,
                                          1e-3,
                                          0.5,
                                          0.125,
                                          1.0 / 3.0};
        const double amount = kAmounts[below(static_cast<unsigned>(std::size(kAmounts)))];
        return below(2) == 0 ? value + amount : value - amount;
    }

    double special() {
        static const double kValues[] = {std::numeric_limits<double>::quiet_NaN(),
                                         std::numeric_limits<double>::infinity(),
                                         -std::numeric_limits<double>::infinity(),
                                         kNoValue,
                                         -kNoValue,
                                         1e300,
                                         -1e200,
                                         5e-324,
                                         -0.0};
        return kValues[below(static_cast<unsigned>(std::size(kValues)))];
    }

    std::mt19937 engine_;
    Grid grid_;
};

/// Grids that between them meet every tolerance.
inline const RandomOutline2D::Grid kRandomGrids2D[] = {
    {4, 1.0, 0.0, 0, 0},       {5, 1.0, -2.0, 6, 0},  {7, 0.25, 0.0, 4, 0},  {4, 1e-7, 0.0, 3, 0},
    {4, 0.4e-7, 0.0, 5, 0},    {4, 1e-20, 0.0, 5, 0}, {3, 1e-40, 0.0, 5, 0}, {5, 1e6, 1e9, 5, 0},
    {6, 1.0 / 3.0, 0.1, 8, 0}, {9, 1e-3, 1e3, 6, 0},  {4, 1e150, 0.0, 0, 0}, {5, 1.0, 0.0, 8, 9},
    {4, 1e12, -1e12, 4, 30},
};

}  // namespace velquad::test

#endif  // VELQUAD_TESTS_SUPPORT_RANDOM_OUTLINE_2D_H
