/// @file
/// Running evaluators, regression lines and planes, robust line fits.
///
/// An evaluator keeps sums, not values, unless it says otherwise: it is fed value by value or array by array and
/// read at any time. A result that does not exist is `velquad::kNoValue`, the largest double.
///
/// Arrays without a type come with a code of their elements: 1 and 2 for signed and unsigned integers of 8 bits, 3
/// and 4 of 16 bits, 5 and 6 of 32 bits, 7 for floats, 8 for doubles. They may stand at any address. A call reads
/// its arrays during the call only and never writes to them.
///
/// **Threads.** An object belongs to one thread at a time. Distinct objects share nothing unless their class says so.
#ifndef VELQUAD_STATISTICS_H
#define VELQUAD_STATISTICS_H

#include "velquad/platform.h"
#include "velquad/types.h"

namespace velquad::statistics {
struct Moments;
}  // namespace velquad::statistics

/// Count, range, mean and spread of a stream of values.
///
///     CMatMomentEvaluator brightness;
///     for (int y = 0; y < height; ++y) brightness.AddValues(rows[y], width);
///     report(brightness.GetMean(), brightness.GetStdDev());
///
///   (1) Values given as an array leave the same bits behind as the same values given one by one. That is what
///       allows to gather integers of 8 and 16 bits exactly and many at a time.
///   (2) Sums are plain doubles: exact for integers while they stay below 2^53. The variance is the difference of
///       two of them, so values far from 0 with a small spread lose digits; move them towards 0 first.
///   (3) A not-a-number makes mean and variance not a number and leaves the range alone.
///
/// Nothing is allocated and nothing throws.
class VELQUAD_API CMatMomentEvaluator {
  public:
    /// No values yet.
    CMatMomentEvaluator();
    CMatMomentEvaluator(const CMatMomentEvaluator& other);
    CMatMomentEvaluator& operator=(const CMatMomentEvaluator& other);
    virtual ~CMatMomentEvaluator();

    /// Forgets all values. @return 1.
    int Reset();

    /// Takes one value.
    /// @return 1; 0 with nothing changed for `velquad::kNoValue` itself, and when 4294967295 values are held.
    int AddValue(double value);

    /// @name Arrays
    /// Takes `count` values in their order. Unlike `AddValue` these refuse nothing: `velquad::kNoValue` is summed
    /// like any other value, and the number of values wraps at 32 bits.
    /// @param values  may be null when `count` is not above 0: nothing is read then.
    /// @param count   added to the number of values whatever its sign, so a negative one lowers that number.
    /// @return 1.
    /// @par Cost  O(count), no allocation. Integers of 8 and 16 bits are several times faster than the rest while
    ///            the sums are integers, of squares up to 2^55.
    /// @{
    int AddValues(double* values, int count);
    int AddValues(unsigned char* values, int count);
    int AddValues(unsigned short* values, int count);
    int AddValues(float* values, int count);

    /// @param typeCode  1 to 8, see the head of this file.
    /// @return 1; 0 with nothing changed for an unknown code.
    int AddValues(void* values, int count, unsigned int typeCode);
    /// @}

    /// @name Results
    /// Of all values taken since the last `Reset`; `velquad::kNoValue` when there are none.
    /// @{

    /// The smallest value.
    double GetMin();
    /// The greatest value.
    double GetMax();
    /// The arithmetic mean.
    double GetMean();
    /// The variance of the values as a whole population (the divisor is their number, not one less), never below 0.
    double GetVariance();
    /// The square root of the variance.
    double GetStdDev();
    /// @}

    /// @return the number of values; 0 when there are none.
    DWORD GetCount();

  private:
    friend struct velquad::statistics::Moments;

    double sum;           // of the values
    double sumOfSquares;  // of the values
    double min;           // the largest double without values
    double max;           // the smallest double without values
    DWORD count;
};

#endif  // VELQUAD_STATISTICS_H
