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

#include <vector>

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
    /// @return 1; 0 with nothing changed when an array of elements is null.
    /// @par Cost  O(count), no allocation. Integers of 8 and 16 bits are several times faster than the rest while
    ///            the sums are integers, of squares up to 2^55.
    /// @{
    int AddValues(double* values, int count);
    int AddValues(unsigned char* values, int count);
    int AddValues(unsigned short* values, int count);
    int AddValues(float* values, int count);

    /// @param typeCode  1 to 8, see the head of this file.
    /// @return as above; 0 with nothing changed for an unknown code too.
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
///   (4) An infinite angle and what is not a number make all results but the count not numbers. Angles beyond 2^31
///       turns count as `matNormalizeAngle` leaves them: as meaningless ones.
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

    /// Takes one angle; it is reduced to one turn by `matNormalizeAngle`.
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

    float* values;   // as `matNormalizeAngle` reduces them
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
    VELQUAD_API ~CMatCorrelationEvaluator();  // NOLINT(performance-trivially-destructible): a name of the module
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
    /// @return 1; 0 with nothing changed when an array of elements is null.
    /// @{
    VELQUAD_API int AddValuePairs(unsigned char* x, unsigned char* y, int count);
    VELQUAD_API int AddValuePairs(unsigned short* x, unsigned short* y, int count);
    VELQUAD_API int AddValuePairs(float* x, float* y, int count);
    VELQUAD_API int AddValuePairs(double* x, double* y, int count);

    /// @param typeCode  of both arrays, 1 to 8, see the head of this file.
    /// @return as above; 0 with nothing changed for an unknown code too.
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

namespace velquad::statistics {
struct RobustPairs;
}  // namespace velquad::statistics

/// @name Regression lines
/// A line is a slope, an intercept and the flag that tells which coordinate is the independent one:
///
///     yOfX non-zero    y = slope * x + intercept
///     yOfX zero        x = slope * y + intercept
///
/// A pair with a coordinate that equals `ignoreValue` exactly is passed over. `velquad::kNoValue` as `ignoreValue`
/// keeps all ordinary data. Optional outputs may be null and are left alone on failure unless told otherwise.
/// @par Source  C. F. Gauss, Theoria combinationis observationum, 1823 (least squares).
/// @{

extern "C" {

/// Fits y = slope * x + intercept by least squares.
/// @param x, y   `count` coordinates each.
/// @param slope, intercept  the line; either may be null.
/// @return 1; 0 for fewer than two usable pairs, and for a vertical line: 1e-100 > |n * sum x^2 - (sum x)^2|.
VELQUAD_API int matRegressionLine(const double* x, const double* y, unsigned int count, double ignoreValue,
                                  double* slope, double* intercept);

/// Fits a line by least squares with the coordinate that spreads more as the independent one, so that steep lines
/// fit as well as flat ones.
///   (1) Where both coordinates have the same variance the line is told as x over y.
///   (2) Exchanging the arrays gives the same line with the flag negated, unless the variances are equal.
/// @param x, y   `count` coordinates each.
/// @param slope, intercept, yOfX  the line; each may be null.
/// @return 1; 0 for fewer than two usable pairs, and for points that all coincide: 1e-100 > |n * sum t^2 - (sum t)^2|
///         for the independent coordinate t. Coordinates that leave rounding in this difference give some line.
VELQUAD_API int matCalcRegressionLine(const double* x, const double* y, unsigned int count,
                                      double ignoreValue, double* slope, double* intercept,
                                      unsigned int* yOfX);

/// Fits a line by least absolute deviations, so that a minority of outliers hardly moves it. See
/// `CMatRobustLineFit`; `velquad::kNoValue` marks unknown coordinates.
/// @param x, y   `count` coordinates each.
/// @param slope, intercept, yOfX  the line; each may be null.
/// @return 1; 0 as `CMatRobustLineFit::CalcRegressionLine`. When memory is lacking to collect the pairs, 0 with
///         nothing stored.
VELQUAD_API int matRobustLineFit(const double* x, const double* y, unsigned int count, double* slope,
                                 double* intercept, int* yOfX);

}  // extern "C"

#if defined(__GNUC__)
// Neither class is meant to be deleted through a pointer to the base.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
#endif

/// A least-squares line through a stream of pairs, and questions to that line. The line is the one of
/// `matCalcRegressionLine`.
///
///     CMatRegressionLine line;
///     for (const tagPOINT2D& p : cloud) line.AddValue(p.x, p.y);
///     if (line.CalcRegressionLine(&slope, &intercept, &yOfX) != 0) angle = line.CalcAngle(0, 1);
///
/// Pairs may be added after a line was computed; the line stays as it is until it is computed again.
/// **Threads.** An object belongs to one thread at a time.
class VELQUAD_API CMatRegressionLine {
  public:
    /// No pairs, no line.
    CMatRegressionLine(double ignoreValue = velquad::kNoValue);  // NOLINT(google-explicit-constructor)
    CMatRegressionLine(const CMatRegressionLine& other);
    CMatRegressionLine(CMatRegressionLine&& other) noexcept;
    CMatRegressionLine& operator=(const CMatRegressionLine& other);

    /// @return 1 when the pair was taken, 0 when it was passed over.
    virtual int AddValue(double x, double y);

    /// Computes the line of all pairs so far. Each output may be null.
    /// @return 1; 0 as `matCalcRegressionLine`: nothing is stored and the line computed before stays then.
    virtual int CalcRegressionLine(double* slope, double* intercept, int* yOfX);

    /// The point of the line at a value of the independent coordinate.
    /// @param point  x and y; untouched on 0.
    /// @return 1; 0 when no line was computed.
    int CalcPointAt(double t, double* point);

    /// The distance of a point from the line.
    /// @param point      x and y.
    /// @param footPoint  x and y of the nearest point of the line; may be null.
    /// @return the distance; 0.0, with nothing stored, when no line was computed. `velquad::kNoValue`, with
    ///         nothing stored, when the line is so steep or so far off that the perpendicular is lost to rounding.
    double CalcDistanceOfPoint(double* point, double* footPoint);

    /// The unsigned angle between an axis and the line, directed towards growing independent coordinate: from 0 to
    /// a half turn.
    ///   (1) Angles up to 1e-7 below a half turn are mirrored too, and so come out as much above it.
    /// @param axis     0 for the x axis, 1 for the y axis.
    /// @param degrees  non-zero for degrees, else radians.
    /// @return the angle; `velquad::kNoValue` for any other axis; 0.0 when no line was computed.
    double CalcAngle(int axis, int degrees);

  protected:
    DWORD count = 0;                       ///< Pairs taken.
    double sumX = 0.0;                     ///< Sum of x.
    double sumY = 0.0;                     ///< Sum of y.
    double sumXX = 0.0;                    ///< Sum of x^2.
    double sumYY = 0.0;                    ///< Sum of y^2.
    double sumXY = 0.0;                    ///< Sum of x * y.
    double ignoreValue;                    ///< Marks an unknown coordinate.
    double slope = velquad::kNoValue;      ///< `kNoValue` while there is no line.
    double intercept = velquad::kNoValue;  ///< `kNoValue` while there is no line.
    int yOfX = 0;                          ///< Which coordinate is independent.
};

/// A line by least absolute deviations through a stream of pairs, with the questions of `CMatRegressionLine`.
///
/// Which coordinate is independent is decided as for the least-squares line. The slope is the zero of
///
///     f(b) = sum of x_j * sign(y_j - b * x_j - median(y - b * x)),
///
/// bracketed from the least-squares slope and bisected to a hundredth of its standard deviation; the intercept is
/// the median that belongs to it. Residuals up to 1e-7 of |y| (or 1e-7 itself where y is 0) count as zero.
///   (1) Points count by the side of the line that they lie on, not by their distance from it, and by their place
///       along the independent axis. So an outlier across the line hardly matters, one along the axis does.
///   (2) Where signs balance exactly at a slope that is tried, as few pairs of an even number can, the search does not
///       stop there but ends at the far end of its bracket. When already the least-squares slope is balanced, the
///       result lies three of its standard deviations below.
///
/// **Cost.** A slope that is tried costs two passes over the pairs; a fit tries some twelve. 16 bytes for each pair
/// kept, and 8 more during the fit.
/// **Threads.** An object belongs to one thread at a time; it may not even be read during a fit.
/// @par Source  P. S. Laplace, 1789 (the weighted median); R. Koenker and G. Bassett, Regression Quantiles, 1978.
class VELQUAD_API CMatRobustLineFit : public CMatRegressionLine {
  public:
    /// No pairs, no line.
    /// @throws std::bad_alloc
    CMatRobustLineFit(double ignoreValue = velquad::kNoValue);  // NOLINT(google-explicit-constructor)
    CMatRobustLineFit(const CMatRobustLineFit& other);
    /// `other` may only be assigned to or destroyed afterwards.
    CMatRobustLineFit(CMatRobustLineFit&& other) noexcept;
    CMatRobustLineFit& operator=(const CMatRobustLineFit& other);
    ~CMatRobustLineFit();

    /// Unlike that of the base class, the result is 1 also for a pair that was passed over.
    /// @throws std::bad_alloc, std::length_error  with the object as it was.
    int AddValue(double x, double y) override;

    /// Computes the line of all pairs so far. Each output may be null.
    /// @return 1; 0 when the least-squares fit fails: nothing is stored and the line computed before stays. Also 0
    ///         when the independent coordinates differ by rounding only, 2.220446049250313e-16 >
    ///         n * sum x^2 - (sum x)^2, or memory is lacking: the line is unset then, `velquad::kNoValue` is stored
    ///         for slope and intercept, and the flag of the least-squares line.
    int CalcRegressionLine(double* slope, double* intercept, int* yOfX) override;

  private:
    friend struct velquad::statistics::RobustPairs;

    std::vector<tagPOINT2D> points;  ///< The pairs from index 1 on; the first is (0, 0) and no data.
};

#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif
/// @}

/// @name Lines and planes of least distance
/// The line or plane with the least sum of squared distances, measured at right angles: it contains the centre of
/// the points, and its direction comes from the singular vectors of the spread around it.
/// @par Source  K. Pearson, On lines and planes of closest fit to systems of points in space, 1901.
/// @{

extern "C" {

/// Fits a line through points of the plane.
/// @param centre     mean of the points.
/// @param direction  unit vector along the line, with either sign.
/// @return 1; 0 for a null pointer and when memory is lacking, with nothing stored. Points that are not finite, and
///         a count of 0, give 1 with not-a-numbers.
VELQUAD_API int matFittingLineEx(const tagPOINT2D* points, unsigned int count, tagPOINT2D* centre,
                                 tagPOINT2D* direction);

/// Fits a plane through points of space, and measures how far they lie from it.
///   (1) The mean and the standard deviation are those of unsigned distances. The deviation is the population's.
///   (2) A scale that is 0 takes an axis out of the fit: the normal of the rest is along that axis, and multiplied
///       by 0 it is the null vector. Where the rest lies on a line, or in a point, it may be another direction
///       across that.
///   (3) Points that all equal their centre have the normal (1, 0, 0) times the first scale.
/// @param axisScale          factors of the three axes during the fit, for axes of unlike units; null for 1.
/// @param centre             mean of the points; may be null.
/// @param normal             unit vector across the plane, with either sign, or the null vector; may be null.
/// @param direction          direction along which distances are measured; null for the normal. See
///                           `matCalcDirectedDistanceToPlane` for what it does to the distances.
/// @param meanDistance       mean of the distances; may be null. `velquad::kNoValue` when there are no points,
///                           when the direction lies within the plane, and when the normal is the null vector.
/// @param stdDevDistance     their standard deviation; may be null. `velquad::kNoValue` as for the mean.
/// @return 1; 0 for null points and when memory is lacking, with nothing stored. Points that are not finite give 1
///         with not-a-numbers.
VELQUAD_API int matRegressionPlane(const tagPOINT3D* points, unsigned int count, const tagPOINT3D* axisScale,
                                   tagPOINT3D* centre, tagPOINT3D* normal, const tagPOINT3D* direction,
                                   double* meanDistance, double* stdDevDistance);

}  // extern "C"
/// @}

#endif  // VELQUAD_STATISTICS_H
