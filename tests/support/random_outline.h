// Random outlines of integer points that have everything in them that outlines must be feared for.
#ifndef VELQUAD_TESTS_SUPPORT_RANDOM_OUTLINE_H
#define VELQUAD_TESTS_SUPPORT_RANDOM_OUTLINE_H

#include <climits>
#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

#include "tests/support/polygon_reference.h"
#include "velquad/types.h"

namespace velquad::test {

enum class OutlineKind {
    kRandomWalk,    ///< Steps of up to a few pixels, so that it crosses itself soon.
    kForwardWalk,   ///< A walk that goes on in x and thus meets itself seldom.
    kStar,          ///< A ragged star around a centre: simple but for rounding.
    kCrossingStar,  ///< A star whose corners are joined every few corners on.
    kGrid,          ///< Points of a small grid: touching and overlapping edges, repeats.
    kLine,          ///< Points of one line, in any order, with a few beside it.
    kThereAndBack,  ///< A chain and its way back, beside it or on it.
    kNumberOfKinds
};

class RandomOutline {
  public:
    explicit RandomOutline(unsigned seed) : engine_(seed) {}

    /// A number below `bound`.
    int below(int bound) { return static_cast<int>(engine_() % static_cast<unsigned>(bound)); }

    /// An outline of at least one point. Some have the size and the place at which 32 bits wrap around.
    std::vector<tagPOINT> outline(int largestCount) {
        const auto kind = static_cast<OutlineKind>(below(static_cast<int>(OutlineKind::kNumberOfKinds)));
        return placed(decorated(shape(kind, 1 + below(largestCount))));
    }

  private:
    struct Wide {
        double x;
        double y;
    };
    using Shape = std::vector<Wide>;

    double unit() { return static_cast<double>(engine_()) / 4294967296.0; }

    Shape shape(OutlineKind kind, int count) {
        Shape points;
        double x = 0.0;
        double y = 0.0;
        const double slope = below(4) - 1.5;
        for (int i = 0; i < count; ++i) {
            const double turn = 6.283185307179586 * i / count;
            switch (kind) {
                case OutlineKind::kRandomWalk:
                    x += below(7) - 3;
                    y += below(7) - 3;
                    break;
                case OutlineKind::kForwardWalk:
                    x += 1 + below(4);
                    y += below(9) - 4;
                    break;
                case OutlineKind::kStar:
                    x = count * 9.0 * (0.3 + unit()) * std::cos(turn);
                    y = count * 9.0 * (0.3 + unit()) * std::sin(turn);
                    break;
                case OutlineKind::kCrossingStar:
                    x = 1000.0 * std::cos(turn * 3.0);
                    y = 1000.0 * std::sin(turn * 2.0);
                    break;
                case OutlineKind::kGrid:
                    x = below(6);
                    y = below(6);
                    break;
                case OutlineKind::kLine:
                    x = 2.0 * below(40);
                    y = slope * x + (below(20) == 0 ? below(3) : 0);
                    break;
                default:
                    x = 5.0 * (i <= count / 2 ? i : count - i);
                    y = slope * x + (i <= count / 2 ? 0 : below(8));
                    break;
            }
            points.push_back({x, y});
        }
        return points;
    }

    /// Repeats, closing points, and parts walked once more.
    Shape decorated(Shape points) {
        Shape result;
        for (const Wide& p : points) {
            result.push_back(p);
            while (below(12) == 0)
                result.push_back(p);
        }
        if (below(8) == 0 && result.size() > 3) result.push_back(result[result.size() / 2]);
        while (below(3) == 0)
            result.push_back(result.front());
        return result;
    }

    std::vector<tagPOINT> placed(const Shape& shape) {
        static constexpr double kScales[] = {1.0, 1.0, 1.0, 7.0, 300.0, 3000.0, 66666.0, 4e6};
        const double scale = kScales[below(8)];
        const std::int64_t shifts[] = {0, 0, 0, -40, 1000000, INT_MAX, INT_MIN, INT_MAX / 2};
        const std::int64_t shiftX = shifts[below(8)];
        const std::int64_t shiftY = shifts[below(8)];
        std::vector<tagPOINT> points;
        for (const Wide& p : shape) {
            points.push_back({reference::wrapped(static_cast<std::int64_t>(p.x * scale) + shiftX),
                              reference::wrapped(static_cast<std::int64_t>(p.y * scale) + shiftY)});
        }
        return points;
    }

    std::mt19937 engine_;
};

}  // namespace velquad::test

#endif  // VELQUAD_TESTS_SUPPORT_RANDOM_OUTLINE_H
