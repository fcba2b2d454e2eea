// Rows of an image scaled to a new width, each by its own natural cubic spline over the pixels.
//
// Pixels stand at whole numbers, so what elimination does to the matrix of the spline is the same for all rows, and so
// are the places of the target pixels. Rows go in groups: the recurrences along a row depend on each other, those
// of neighbouring rows do not. Every row gets the numbers of a spline of its own, to the last bit.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>

#include "frame/convert.h"
#include "velquad/curves.h"
#include "velquad/framework.h"

namespace {

constexpr int kDone = 0;
constexpr int kNoMemory = 3;
/// What the spline of a row of fewer than three pixels gives.
constexpr int kTooFewPixels = 12;

/// Rows of a group.
constexpr std::size_t kRows = 4;

/// One value of each row of a group.
struct Values {
    double row[kRows];
};

template <class F>
Values forRows(F&& value) {
    Values result;
    for (std::size_t r = 0; r < kRows; ++r)
        result.row[r] = value(r);
    return result;
}

/// What all rows have in common at a source pixel: the elimination of the system for the quadratic coefficients.
struct Elimination {
    double factor;    ///< Times the row above, to be taken away.
    double diagonal;  ///< After elimination.
};

/// Where a target pixel lies.
struct Place {
    std::size_t interval;
    double u;  ///< From the interval's first pixel.
};

/// The polynomial of one interval: ((d u + c) u + b) u + y.
struct Cubic {
    Values y, b, c, d;
};

template <class Pixel>
struct Limits;
template <>
struct Limits<std::uint8_t> {
    static constexpr int kMax = 255;
};
template <>
struct Limits<std::uint16_t> {
    static constexpr int kMax = 65535;
};

/// Rounds halves away from zero and limits to a pixel.
template <class Pixel>
Pixel toPixel(double value) {
    constexpr int kMax = Limits<Pixel>::kMax;
    // The fraction of a value in this range is exact.
    if (!(value > 0.0)) return 0;
    if (value >= kMax) return static_cast<Pixel>(kMax);
    const int whole = static_cast<int>(value);
    return static_cast<Pixel>(value - whole >= 0.5 ? whole + 1 : whole);
}

template <class Pixel>
class RowStretcher {
  public:
    /// Throws std::bad_alloc.
    RowStretcher(std::size_t sourceWidth, std::size_t targetWidth)
        : width_(sourceWidth),
          targetWidth_(targetWidth),
          elimination_(new Elimination[sourceWidth]),
          places_(new Place[targetWidth]),
          cubics_(new Cubic[sourceWidth]) {
        eliminate();
        place();
    }

    /// Stretches `count` rows, 1 to `kRows`.
    void stretch(const void* const* source, void* const* target, std::size_t count) {
        load(source, count);
        solve();
        for (std::size_t o = 0; o < targetWidth_; ++o) {
            const Place at = places_[o];
            const Cubic& cubic = cubics_[at.interval];
            const Values values = forRows([&](std::size_t r) {
                return ((cubic.d.row[r] * at.u + cubic.c.row[r]) * at.u + cubic.b.row[r]) * at.u +
                       cubic.y.row[r];
            });
            for (std::size_t r = 0; r < count; ++r)
                store(target[r], o, toPixel<Pixel>(values.row[r]));
        }
    }

  private:
    static double pixelAt(const void* row, std::size_t i) {
        Pixel pixel;
        std::memcpy(&pixel, static_cast<const char*>(row) + i * sizeof pixel, sizeof pixel);
        return pixel;
    }

    static void store(void* row, std::size_t i, Pixel pixel) {
        std::memcpy(static_cast<char*>(row) + i * sizeof pixel, &pixel, sizeof pixel);
    }

    void eliminate() {
        constexpr double kDiagonal = 4.0;
        elimination_[1] = {0.0, kDiagonal};
        for (std::size_t i = 2; i + 1 < width_; ++i) {
            const double factor = 1.0 / elimination_[i - 1].diagonal;
            elimination_[i] = {factor, kDiagonal - factor};
        }
    }

    void place() {
        const double scale = static_cast<double>(targetWidth_) / static_cast<double>(width_);
        for (std::size_t o = 0; o < targetWidth_; ++o) {
            const double p = static_cast<double>(o) / scale;
            const auto whole = static_cast<std::size_t>(p);
            const std::size_t interval = whole < width_ - 2 ? whole : width_ - 2;
            places_[o] = {interval, p - static_cast<double>(interval)};
        }
    }

    /// A group with fewer rows repeats its last one.
    void load(const void* const* source, std::size_t count) {
        for (std::size_t r = 0; r < kRows; ++r) {
            const void* row = source[r < count ? r : count - 1];
            for (std::size_t i = 0; i < width_; ++i)
                cubics_[i].y.row[r] = pixelAt(row, i);
        }
    }

    void solve() {
        const std::size_t last = width_ - 1;
        cubics_[0].c = cubics_[last].c = Values{};
        for (std::size_t i = 1; i < last; ++i) {
            const double factor = elimination_[i].factor;
            cubics_[i].c = forRows([&](std::size_t r) {
                const double y = cubics_[i].y.row[r];
                // Differences of pixels are exact.
                const double bend = 3.0 * ((cubics_[i + 1].y.row[r] - y) - (y - cubics_[i - 1].y.row[r]));
                return i > 1 ? bend - factor * cubics_[i - 1].c.row[r] : bend;
            });
        }
        for (std::size_t i = last - 1; i >= 1; --i) {
            const double diagonal = elimination_[i].diagonal;
            cubics_[i].c = forRows([&](std::size_t r) {
                const double c = cubics_[i].c.row[r];
                return (i + 1 < last ? c - cubics_[i + 1].c.row[r] : c) / diagonal;
            });
        }
        for (std::size_t i = 0; i < last; ++i) {
            Cubic& cubic = cubics_[i];
            const Cubic& next = cubics_[i + 1];
            cubic.b = forRows([&](std::size_t r) {
                return (next.y.row[r] - cubic.y.row[r]) - (2.0 * cubic.c.row[r] + next.c.row[r]) / 3.0;
            });
            cubic.d = forRows([&](std::size_t r) { return (next.c.row[r] - cubic.c.row[r]) / 3.0; });
        }
    }

    std::size_t width_;
    std::size_t targetWidth_;
    std::unique_ptr<Elimination[]> elimination_;
    std::unique_ptr<Place[]> places_;
    std::unique_ptr<Cubic[]> cubics_;
};

template <class Pixel>
void stretchRows(std::size_t sourceWidth, std::size_t height, const void* const* source,
                 std::size_t targetWidth, void* const* target) {
    RowStretcher<Pixel> stretcher(sourceWidth, targetWidth);
    for (std::size_t row = 0; row < height; row += kRows) {
        const std::size_t rest = height - row;
        stretcher.stretch(source + row, target + row, rest < kRows ? rest : kRows);
    }
}

}  // namespace

extern "C" int matHorzStretchImage(unsigned int sourceWidth, unsigned int height, unsigned int pixelSize,
                                   const void* const* sourceRows, unsigned int targetWidth,
                                   void* const* targetRows) {
    const CWaitCursor wait;
    if (height == 0) return kDone;
    if (sourceWidth < 3 || sourceRows == nullptr || targetRows == nullptr) return kTooFewPixels;
    try {
        if (pixelSize == 1) {
            stretchRows<std::uint8_t>(sourceWidth, height, sourceRows, targetWidth, targetRows);
        } else {
            stretchRows<std::uint16_t>(sourceWidth, height, sourceRows, targetWidth, targetRows);
        }
    } catch (const std::bad_alloc&) {
        return kNoMemory;
    }
    return kDone;
}
