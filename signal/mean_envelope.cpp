// A line between the upper and the lower extremes of a curve.
//
// The curve is walked along its extremes, once in each direction. Where extremes lie close together, the line goes
// half way between each of them and the chord of the opposite ones around it; over long stretches it keeps the
// shape of the curve. The two walks are averaged, so no direction is favoured.
#include <cstddef>
#include <cstdint>

#include "frame/working_block.h"
#include "velquad/signal.h"

namespace {

using velquad::SignalStatus;
using velquad::frame::WorkingBlock;

/// A curve read and written from its first value on, or from its last one back.
template <class T, std::ptrdiff_t Stride>
struct Walked {
    T* first;
    T& operator[](std::size_t i) const { return first[static_cast<std::ptrdiff_t>(i) * Stride]; }
};

/// Indices of extremes in ascending order, and a place among them.
struct ExtremeList {
    std::uint32_t* indices;
    std::size_t count = 0;
    std::size_t cursor = 0;

    /// Writes in any case: whether a value of a noisy curve is an extreme cannot be predicted.
    void addIf(bool isExtreme, std::size_t index) {
        indices[count] = static_cast<std::uint32_t>(index);
        count += isExtreme ? 1 : 0;
    }
    /// Only a curve of not-a-numbers has none; then its start stands in.
    std::size_t current() const { return count == 0 ? 0 : indices[cursor]; }
    std::size_t before() const { return cursor == 0 ? 0 : indices[cursor - 1]; }
    bool isAtLast() const { return cursor + 1 >= count; }
    /// @return false at the last entry, where the cursor stays.
    bool advance() {
        if (isAtLast()) return false;
        ++cursor;
        return true;
    }
};

/// Room of a list beyond one entry a value: the first value can come twice, and one more place is written to.
constexpr std::size_t kSpareEntries = 2;

struct Extremes {
    ExtremeList minima;
    ExtremeList maxima;

    Extremes(std::uint32_t* lists, std::size_t n) : minima{lists}, maxima{lists + n + kSpareEntries} {}

    static std::size_t blockSize(std::size_t n) { return 2 * (n + kSpareEntries) * sizeof(std::uint32_t); }

    /// A value without a lower neighbour is a minimum, one without a higher neighbour a maximum; a flat stretch is
    /// both. Kept: the window lags by one at first, so the first value is also judged as if it were the second, and
    /// the second one as if it were its own neighbour.
    template <class Data>
    void find(const Data& data, std::size_t n) {
        minima.count = maxima.count = 0;
        minima.cursor = maxima.cursor = 0;
        minima.addIf(data[1] >= data[0], 0);
        maxima.addIf(data[0] >= data[1], 0);
        double a = data[0];
        double b = data[1];
        double c = data[1];
        for (std::size_t k = 0;; ++k) {
            minima.addIf((a >= b) & (c >= b), k);
            maxima.addIf((b >= a) & (b >= c), k);
            a = b;
            b = c;
            if (k + 2 == n) break;
            c = data[k + 2];
        }
        minima.addIf(a >= b, n - 1);
        maxima.addIf(b >= a, n - 1);
    }
};

/// One walk from the start of a curve to its end.
template <class Data, class Result>
class Walk {
  public:
    Walk(const Data& data, std::size_t n, const Result& result, std::size_t gap, Extremes& extremes)
        : data_(data), n_(n), result_(result), gap_(gap), extremes_(extremes), value_(data[0]) {}

    void run() {
        // The first extreme is the first value, unless not-a-numbers stand there.
        result_[0] = value_;
        // One more round runs when both lists are at their ends. Only not-a-numbers can keep the walk from
        // getting there.
        bool isLastRound = false;
        while (takeNext() && !isLastRound)
            isLastRound = extremes_.minima.isAtLast() && extremes_.maxima.isAtLast();
        finish();
    }

  private:
    /// Goes to the nearer of the next extremes. @return false when no list got on although one could.
    bool takeNext() {
        ExtremeList& minima = extremes_.minima;
        ExtremeList& maxima = extremes_.maxima;
        const std::size_t e = minima.current() < maxima.current() ? minima.current() : maxima.current();
        const bool isMinimum = minima.current() == e;
        const bool isMaximum = maxima.current() == e;
        // The upper envelope is the opposite one of a tie.
        const ExtremeList& other = isMinimum ? maxima : minima;
        stretchTo(e, other.current(), other.before());
        start_ = e;
        const bool couldAdvance = !minima.isAtLast() || !maxima.isAtLast();
        bool hasAdvanced = isMinimum && minima.advance();
        hasAdvanced = (isMaximum && maxima.advance()) || hasAdvanced;
        return hasAdvanced || !couldAdvance;
    }

    void stretchTo(std::size_t e, std::size_t opposite, std::size_t before) {
        const std::size_t d = e - start_;
        if (d == 0) {
            value_ = data_[e];
            result_[e] = value_;
        } else if (d > gap_) {
            keepShape(e, static_cast<double>(d));
        } else {
            const double chord = (data_[opposite] - data_[before]) / static_cast<double>(opposite - before) *
                                     static_cast<double>(e - before) +
                                 data_[before];
            drawLine(e, (chord + data_[e]) * 0.5, static_cast<double>(d));
        }
    }

    /// The curve itself, less a correction that fades away towards e.
    void keepShape(std::size_t e, double d) {
        const double target = data_[e];
        if (data_[start_] != result_[start_]) {
            double s = (result_[start_] - target) / (data_[start_] - target);
            const double step = (s - 1.0) / d;
            for (std::size_t i = start_; i <= e; ++i) {
                result_[i] = (data_[i] - target) * s + target;
                s -= step;
            }
        } else {
            for (std::size_t i = start_ + 1; i <= e; ++i)
                result_[i] = data_[i];
        }
        value_ = target;
    }

    void drawLine(std::size_t e, double target, double d) {
        const double slope = (target - value_) / d;
        for (std::size_t i = start_; i <= e; ++i) {
            result_[i] = value_;
            value_ += slope;
        }
        value_ = target;
    }

    /// A line from the last extreme to the last value.
    void finish() {
        if (start_ == n_ - 1) return;
        const double slope = (data_[n_ - 1] - data_[start_]) / static_cast<double>(n_ - start_ - 1);
        for (std::size_t i = start_ + 1; i < n_; ++i) {
            value_ += slope;
            result_[i] = value_;
        }
    }

    const Data& data_;
    std::size_t n_;
    const Result& result_;
    std::size_t gap_;
    Extremes& extremes_;
    std::size_t start_ = 0;
    double value_;
};

template <class Data, class Result>
void walk(const Data& data, std::size_t n, const Result& result, std::size_t gap, Extremes& extremes) {
    extremes.find(data, n);
    Walk<Data, Result>(data, n, result, gap, extremes).run();
}

/// The mean of the walks in both directions.
/// @param back  room for the walk from the end to the start.
void passBothWays(const double* source, std::size_t n, double* target, double* back, std::size_t gap,
                  Extremes& extremes) {
    using Forwards = Walked<const double, 1>;
    using Backwards = Walked<const double, -1>;
    walk(Forwards{source}, n, Walked<double, 1>{target}, gap, extremes);
    walk(Backwards{source + (n - 1)}, n, Walked<double, -1>{back + (n - 1)}, gap, extremes);
    for (std::size_t k = 0; k < n; ++k)
        target[k] = (target[k] + back[k]) * 0.5;
}

}  // namespace

extern "C" unsigned int matMeanEnvelope(const double* in, unsigned int n, double* out, unsigned int rounds,
                                        unsigned int gap) {
    if (in == nullptr || out == nullptr || n == 0 || rounds == 0) return velquad::kSignalBadArgument;
    const std::size_t count = n;
    const WorkingBlock curves(2 * count * sizeof(double));
    if (curves.status() != velquad::kSignalOk) return static_cast<unsigned int>(curves.status());
    const WorkingBlock lists(Extremes::blockSize(count));
    if (lists.status() != velquad::kSignalOk) return static_cast<unsigned int>(lists.status());
    double* back = curves.as<double>();
    double* spare = back + count;
    if (count == 1) {
        out[0] = in[0];
        return velquad::kSignalOk;
    }
    Extremes extremes(lists.as<std::uint32_t>(), count);
    const double* source = in;
    for (unsigned int round = 0; round < rounds; ++round) {
        double* target = round % 2 == 0 ? out : spare;
        passBothWays(source, count, target, back, gap, extremes);
        source = target;
    }
    if (source == spare) {
        for (std::size_t k = 0; k < count; ++k)
            out[k] = spare[k];
    }
    return velquad::kSignalOk;
}
