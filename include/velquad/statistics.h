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
struct AngleMoments;
struct Moments;
struct PairSums;
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

/// Mean, extremes and spread of a set of directions, where 350 and 10 degrees have the mean 0 and lie 20 apart.
///
///     CMatMomentOfAnglesEvaluator fibres(1, 1);
///     for (double direction : directions) fibres.AddValue(direction);
///     if (fibres.GetMean(&mean) != velquad::kNoValue) report(mean, fibres.GetRange(nullptr));
///
/// The mean is the direction of the sum of all unit vectors. The other results are measured from it, so all values
/// are kept, as floats: 4 bytes each, and that is the precision of the results too.
///
///   (1) Results are computed by the first getter that finds its own missing, and stay as they are until
///       `ResetResults` or `Reset`, whatever values are added.
///   (2) Directions that cancel out have no mean. This and the lack of memory make the object fail: it takes no
///       more values until `Reset`.
///   (3) Adding a constant to all angles moves mean and extremes by it, within rounding, and leaves spread and
///       range.
///   (4) An infinite angle and what is not a number make all results but the count not numbers.
///
/// **Threads.** Getters write to their object.
/// **Memory.** Grows 32 values at a time. Copying by construction is not offered; see `operator=`.
/// @par Source  K. V. Mardia, P. E. Jupp, Directional Statistics, 2000, for the mean direction.
class CMatMomentOfAnglesEvaluator {
  public:
    /// No values yet.
    /// @param sense    non-zero: angles grow from the x axis towards the y axis. With 0 the mean is measured the
    ///                 other way round, which mirrors it, while the extremes are still taken from it as before: what
    ///                 comes out is of little use.
    /// @param degrees  non-zero: all angles in degrees; 0: in radians.
    VELQUAD_API CMatMomentOfAnglesEvaluator(int sense, int degrees);
    CMatMomentOfAnglesEvaluator(const CMatMomentOfAnglesEvaluator&) = delete;

    /// Releases the values.
    VELQUAD_API ~CMatMomentOfAnglesEvaluator();

    /// Takes over all fields, the address of the values among them: both objects hold the same memory afterwards,
    /// and what this one held is not released. Only one of the two may add values from then on, be reset or
    /// destroyed.
    VELQUAD_API CMatMomentOfAnglesEvaluator& operator=(const CMatMomentOfAnglesEvaluator& other);

    /// Forgets values, results and failure; the object may be filled again. The range is left as `ResetResults`
    /// leaves it. @return 1.
    VELQUAD_API int Reset();

    /// Forgets results and keeps the values, so that the next getter computes anew. The range is not forgotten:
    /// `GetRange` gives the old one until another getter has computed. @return 1.
    VELQUAD_API int ResetResults();

    /// Takes one angle, of any size; it is reduced to one turn.
    /// @return 1; 0 when the object has failed, or fails now for lack of memory.
    VELQUAD_API int AddValue(double angle);

    /// @name Results
    /// Angles in the unit of the object; `velquad::kNoValue` without values and when there is no mean. The result
    /// is stored through the pointer too, unless that is null.
    /// @{

    /// The direction that lies furthest from the mean against the sense, in [0, one turn).
    VELQUAD_API double GetMin(double* result);
    /// The direction that lies furthest from the mean in the sense, in [0, one turn).
    VELQUAD_API double GetMax(double* result);
    /// The angle from the one extreme to the other through the mean. See `ResetResults`.
    VELQUAD_API double GetRange(double* result);
    /// The mean direction, in [0, one turn).
    VELQUAD_API double GetMean(double* result);
    /// The mean distance from the mean direction, each distance in [0, half a turn]. No squares are taken.
    VELQUAD_API double GetStdDev(double* result);
    /// The number of values that the results were computed from; 4294967295 without results.
    VELQUAD_API DWORD GetCount(DWORD* result);
    /// @}

  private:
    friend struct velquad::statistics::AngleMoments;

    VELQUAD_API int ComputeResults();

    float* values;   // reduced to one turn
    DWORD count;     // values held
    DWORD capacity;  // values that there is memory for
    int failed;
    int degrees;
    int sense;
    double min;
    double max;
    DWORD resultCount;  // values that the results are of
    double stdDev;
    double mean;
    double range;
};

/// The correlation of two channels, seen pair by pair.
///
///     CMatCorrelationEvaluator correlation;
///     for (int y = 0; y < height; ++y) correlation.AddValuePairs(red[y], green[y], width);
///     report(correlation.ComputeCorrelation());
///
/// There is no reset: a new object starts anew. Nothing is allocated and nothing throws.
/// @par Source  K. Pearson, Proceedings of the Royal Society of London 58 (1895).
class CMatCorrelationEvaluator {
  public:
    /// No pairs yet.
    VELQUAD_API CMatCorrelationEvaluator();
    CMatCorrelationEvaluator(const CMatCorrelationEvaluator& other) = default;
    VELQUAD_API ~CMatCorrelationEvaluator();
    VELQUAD_API CMatCorrelationEvaluator& operator=(const CMatCorrelationEvaluator& other);

    /// Takes one pair, whatever its values. @return 1.
    VELQUAD_API int AddValuePair(double x, double y);

    /// @name Arrays
    /// Takes `count` pairs. Their number wraps at 32 bits.
    ///   (1) The forms for unsigned integers sum exactly within one call, and round once at its end. These bits may
    ///       differ from those of the same data given pair by pair.
    ///   (2) All others leave the bits behind that the pairs in their order leave.
    /// @param x, y   may be null when `count` is not above 0: nothing is read then.
    /// @param count  added to the number of pairs whatever its sign, so a negative one lowers that number.
    /// @return 1.
    /// @{
    VELQUAD_API int AddValuePairs(unsigned char* x, unsigned char* y, int count);
    VELQUAD_API int AddValuePairs(unsigned short* x, unsigned short* y, int count);
    VELQUAD_API int AddValuePairs(float* x, float* y, int count);
    VELQUAD_API int AddValuePairs(double* x, double* y, int count);

    /// @param typeCode  of both arrays, 1 to 8, see the head of this file.
    /// @return 1; 0 with nothing changed for an unknown code.
    VELQUAD_API int AddValuePairs(void* x, void* y, int count, unsigned int typeCode);
    /// @}

    /// Pearson's correlation coefficient of all pairs.
    ///   (1) 0.0 where a channel is constant.
    ///   (2) Neither limited to [-1, 1] nor safe from cancellation: values far from 0 with a small spread can give
    ///       results beyond these limits, and where rounding makes one variance negative, not a number.
    /// @return `velquad::kNoValue` without pairs.
    VELQUAD_API double ComputeCorrelation();

  private:
    friend struct velquad::statistics::PairSums;

    double sumX;
    double sumXX;
    double sumY;
    double sumYY;
    double sumXY;
    DWORD count;
};

#endif  // VELQUAD_STATISTICS_H
