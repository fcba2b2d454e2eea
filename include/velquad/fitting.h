/// @file
/// Linear solvers, least-squares polynomials and rationals, fits by singular values.
///
/// **Indices.** Every function tells whether its tables count from 1 or from 0. A table that counts from 1 holds
/// nothing at index 0, neither as a row nor within a row, and index 0 is never touched.
/// **Pointers.** Not tested unless told otherwise.
/// **Exceptions.** The C++ functions let `std::bad_alloc` through when working memory is lacking. Their arguments
/// are then as they were.
/// **Threads.** Pure functions of their arguments. An object belongs to one thread at a time.
#ifndef VELQUAD_FITTING_H
#define VELQUAD_FITTING_H

#include <cstdint>
#include <vector>

#include "velquad/platform.h"
#include "velquad/platform/named_type.h"
#include "velquad/types.h"

/// @name Direct linear solvers
/// @{

/// Inverts a matrix in place and solves A X = B for any number of right-hand sides, by Gauss-Jordan elimination
/// with full pivoting.
///   (1) Of the elements that may become the pivot, the largest absolute value wins; among equal ones the last
///       in the order of rows and columns.
///   (2) A pivot below 2.2e-16 (the epsilon of doubles) ends the elimination. The bound is absolute: scale
///       matrices of tiny numbers first.
/// @param a  `a[1..n][1..n]`: the matrix, then its inverse. The rows must not overlap.
/// @param b  `b[1..n][1..m]`: the right-hand sides, one a column, then the solutions; null when `m` is 0. The rows must
///           overlap neither one another nor those of `a`.
/// @return true when done. False for n < 1 or m < 0, with nothing changed; false for a singular matrix, with `a`
///         and `b` partly reduced.
/// @par Cost    About 2 n^3 operations for the inverse and n^3 / 3 comparisons. No allocation up to n = 16, one
///              block above.
/// @par Source  W. H. Press, S. A. Teukolsky, W. T. Vetterling, B. P. Flannery, Numerical Recipes, 1986, explains
///              the method.
VELQUAD_API bool matGaussJordanElimination(double** a, int n, double** b, int m);

/// `matGaussJordanElimination` under a second name.
VELQUAD_API bool matInvertMatrix(double** a, int n, double** b, int m);

/// Inverts a matrix by Gauss-Jordan elimination and keeps the original.
/// @param source  `source[1..n][1..n]`, not changed.
/// @param result  `result[1..n][1..n]`; may be `source`.
/// @return true when done; false, with nothing stored, for a null table, n < 1, a singular matrix or no memory for
///         a copy.
VELQUAD_API bool matInvertMatrix(double** source, double** result, int n);

/// Inverts a matrix and solves A x = b, by LU decomposition with partial pivoting.
/// @param a  `a[0..n-1][0..n-1]`: the matrix, then its inverse.
/// @param b  `b[0..n-1]`: the right-hand side, then the inverse times the right-hand side.
/// @return true always. A singular matrix is not detected; it gives infinities and not-a-numbers. n < 1 does
///         nothing.
VELQUAD_API bool matSolveLinearEquation(double** a, double* b, int n);
/// @}

/// @name Least-squares polynomials
/// Coefficients stand with the highest power first: `c[0]` x^(count-1) + ... + `c[count-1]`.
/// @{

/// Fits a linear combination of `coefficientCount` functions to samples, by the normal equations and
/// `matGaussJordanElimination`.
/// @param y             samples `y[1..dataCount]`.
/// @param coefficients  `coefficients[1..coefficientCount]`, stored on success only.
/// @param chiSquare     may be null. NOT the sum of squared residuals: the model values of all samples up to and
///                      with each are added up without a restart, and the squares of each sample less that running
///                      sum are summed. Compute a residual from the coefficients where one is needed.
/// @param basis         stores the values of all functions for the sample `index` (1 to `dataCount`) in
///                      `basis[1..coefficientCount]`. Called once a sample, in order, and once more for
///                      `chiSquare`. What it does not store keeps its last value, at first 0.
/// @param user          handed to `basis`.
/// @return true when done; false when the normal equations are singular, as they are with fewer different samples than
///         coefficients, unless rounding hides it: then the coefficients are some of many.
/// @throws CInvalidArgException*  for coefficientCount < 1.
VELQUAD_API bool matLeastSquaresPolynomFit(
    double* y, int dataCount, double* coefficients, int coefficientCount, double* chiSquare,
    void (*basis)(int index, double* basis, int coefficientCount, void* user), void* user);

/// Fits a polynomial to the points (`x[i]`, `y[i]`).
/// @param x, y          `dataCount` numbers each, from index 0.
/// @param coefficients  `coefficientCount` numbers from index 0, highest power first; stored on success only.
/// @param chiSquare     may be null; see `matLeastSquaresPolynomFit`. Stored on success only.
/// @return true when done; false for null `coefficients` (nothing is read then) and for fewer different x than
///         coefficients, unless rounding hides it.
/// @throws CInvalidArgException*  for coefficientCount < 1.
VELQUAD_API bool matPolynomFit(double* x, double* y, int dataCount, double* coefficients,
                               int coefficientCount, double* chiSquare);

/// The value of a polynomial, summed from the constant term upwards over powers that are built by repeated
/// multiplication.
/// @param coefficients      from index 0, highest power first.
/// @param coefficientCount  at least 1.
/// @return true always.
VELQUAD_API bool matPolynomEval(double* coefficients, int coefficientCount, double x, double& result);
/// @}

extern "C" {

/// @name Rationals
/// @{

/// A fraction as a double. The whole part is split off first, so that it stays exact up to 2^53 whatever the
/// numerator.
/// @return the quotient; the largest double for a denominator of 0.
VELQUAD_API double matConvertRationalToDoublei64(std::int64_t numerator, std::int64_t denominator);

/// The form of `matConvertRationalToDoublei64` for unsigned numbers.
VELQUAD_API double matConvertRationalToDoubleu64(std::uint64_t numerator, std::uint64_t denominator);

/// The greatest common divisor.
/// @return never 0, so that one may divide by it: the other number when one is 0, 1 when both are.
/// @par Source  The binary method of J. Stein, Journal of Computational Physics 1 (1967).
VELQUAD_API DWORD matCalcGreatestCommonDivisor(DWORD a, DWORD b);

/// Finds the first convergent of the continued fraction of |value| that agrees with it to a number of decimal
/// digits. The fraction is in lowest terms, its denominator positive.
/// @param numerator, denominator  each may be null. Stored on result 0 only.
/// @param significantDigits       the tolerance is 10^-significantDigits in the scale of `value`, whose decimal
///                                logarithm is rounded to an integer.
/// @param maxTerms                terms of the continued fraction to try.
/// @param zeroThreshold           values of smaller size give 0 / 1.
/// @return 0 success; 1 no memory; 2 a term or a convergent does not fit 32 bits, so also for an infinity or a
///         not-a-number; 3 no convergent within the tolerance in `maxTerms` terms.
VELQUAD_API int matCvtDoubleToRational(double value, int* numerator, int* denominator, int significantDigits,
                                       unsigned int maxTerms, double zeroThreshold);
/// @}

}  // extern "C"

/// @name Least squares by singular values
/// @{

namespace svd {

/// A vector of doubles with indices of the caller's choice, as `svdsolve` and its callers exchange them.
///
///     svd::CDVector b(1, n);
///     for (int i = 1; i <= n; ++i) b[i] = ...;
///     svdsolve(a.get(), b.get(), n, x.get(), columns, nullptr);
///
/// There is memory for the indices 0 to `nh`, so that the block can be handed on as a plain array and indexed
/// alike. Elements are not initialised and indices are not checked.
class CDVector {
  public:
    /// No block; both bounds are 0.
    VELQUAD_API CDVector();

    /// @param nl, nh  the lowest and the highest index in use. `nl` is kept for the reader only.
    /// @throws std::bad_alloc  also for nh < -1 and for the largest int.
    VELQUAD_API CDVector(int nl, int nh);

    /// Empty, like a default vector. Nothing is moved: `other` keeps its block.
    VELQUAD_API CDVector(CDVector&& other) noexcept;
    VELQUAD_API ~CDVector();
    CDVector& operator=(const CDVector&) = delete;

    /// @return element `i`, 0 <= i <= nh.
    VELQUAD_API double& operator[](int i);

    /// @return the block, its first element having index 0; null without one. It stays the object's.
    VELQUAD_API double* get();

  private:
    double* data;
    [[maybe_unused]] int nl;
    [[maybe_unused]] int nh;
};

/// A matrix of doubles with indices of the caller's choice and a table of its rows, which can be handed on as
/// `double**`. See `CDVector`.
///
///     svd::CDMatrix a(1, rows, 1, columns);
///     a[1][1] = ...;
///     a.get()[rows][columns] = ...;
///
/// There is memory for all rows from 0 to `nrh` and columns from 0 to `nch`, but pointers are set for the rows from
/// `nrl` on only.
class CDMatrix {
  public:
    /// No memory; all bounds are 0.
    VELQUAD_API CDMatrix();

    /// @param nrl, nrh  the lowest and the highest row in use; none when `nrl` is above `nrh`.
    /// @param ncl, nch  the lowest and the highest column in use. `ncl` is kept for the reader only.
    /// @throws std::bad_alloc  also when (nrh + 1) (nch + 1) elements, or nrh + 1 rows, are less than none or more
    ///                         than an int counts.
    VELQUAD_API CDMatrix(int nrl, int nrh, int ncl, int nch);

    /// Takes the memory of `other`, which is left with its bounds and without memory.
    VELQUAD_API CDMatrix(CDMatrix&& other) noexcept;
    VELQUAD_API ~CDMatrix();
    CDMatrix& operator=(const CDMatrix&) = delete;

    /// @return row `i`, nrl <= i <= nrh; its first element has index 0.
    VELQUAD_API double* operator[](int i);

    /// @return the table of rows, its first entry having index 0; null without one. It stays the object's.
    VELQUAD_API double** get();

  private:
    double** rows;
    double* data;
    int nrl;
    int nrh;
    int ncl;
    int nch;
};

}  // namespace svd

/// Solves A x = b in the sense of least squares, whatever the shape and the rank of A.
///   (1) Of all x that come closest to b, the shortest is taken. Columns that cannot be told apart so share their
///       weight.
///   (2) The rank is the number of singular values that are neither below the largest one times the epsilon of doubles
///       times the smaller of `rows` and `columns`, nor below the smallest normal double.
///   (3) Rows and columns below 1 count as none: x is 0 without rows.
///   (4) Where A holds an infinity or a not-a-number, all of x are not-a-numbers.
/// @param a         `a[1..rows][1..columns]`, only read.
/// @param b         `b[1..rows]`, only read.
/// @param x         `x[1..columns]`.
/// @param residual  may be null: the sum of the squares of A x - b, no root taken. 0 without rows.
/// @throws std::bad_alloc  with nothing stored.
/// @par Cost    Of the order of rows columns^2 operations for few columns, and working memory for a few copies
///              of A.
/// @par Source  G. H. Golub, C. F. Van Loan, Matrix Computations, 1983; what is not square is reduced by QR with
///              column pivoting first, then by two-sided Jacobi rotations.
VELQUAD_API void svdsolve(double** a, double* b, int rows, double* x, int columns, double* residual);

/// Fits the affine map that takes source points to target points, by `svdsolve`.
///   (1) Points on a line, or fewer than three, leave some of the map open; its six numbers are the ones of the
///       smallest sum of squares then. That is no failure.
/// @param target     `target[1..count][1..2]`, x and y.
/// @param source     `source[1..count][1..2]`.
/// @param transform  `transform[1..3][1..3]`: a homogeneous matrix that acts on columns (x, y, 1). All nine are
///                   stored.
/// @param residual   the sum of the squared errors of both coordinates.
/// @return true, also for a null table or residual, a count below 0 and no memory: nothing is stored then. False for an
///         exception of the host's that is not `std::bad_alloc`, with the largest double in `residual`.
VELQUAD_API bool svdhomfit(double** target, double** source, int count, double** transform, double* residual);
/// @}

namespace math {

/// @name Fits to a window of a sampled curve
/// A curve is two vectors of equal size, x and y.
/// @{

/// Fits lines and parabolas to ranges of a curve, and keeps its working memory from fit to fit.
///
///     math::CSVDPolyFit poly(2);
///     if (poly.FitRangeParabola(x, y, 10, 20, a, b, c, nullptr)) report(-b / (2.0 * a));
///
///   (1) The range is moved to its means before the fit, so that curves far from the origin keep their digits.
///   (2) Ranges with fewer different x than coefficients give one of the possible fits, and no failure.
///
/// **Memory.** Grows to the longest range and is kept until the object is destroyed.
/// **Threads.** An object belongs to one thread at a time.
class CSVDPolyFit {
  public:
    /// No memory yet.
    /// @param degree  the highest power that may be fitted: 1 for lines only, 2 for parabolas too.
    VELQUAD_API CSVDPolyFit(int degree);  // NOLINT(google-explicit-constructor)
    CSVDPolyFit(const CSVDPolyFit&) = delete;
    VELQUAD_API ~CSVDPolyFit();
    CSVDPolyFit& operator=(const CSVDPolyFit&) = delete;

    /// Fits y = slope x + intercept to the samples `first` to `last`, both included.
    /// @param residual  may be null: the sum of the squared errors.
    /// @return true when fitted. False, with nothing stored, for vectors of different sizes, first >= last, a range
    ///         beyond the vectors, a degree below 1, and no memory to grow.
    /// @throws std::bad_alloc  when memory is lacking for the solution itself; nothing is stored.
    VELQUAD_API bool FitRangeLine(const std::vector<double>& x, const std::vector<double>& y, int first,
                                  int last, double& slope, double& intercept, double* residual);

    /// Fits y = a x^2 + b x + c to the samples `first` to `last`, both included and at least four.
    /// @param residual  may be null: the sum of the squared errors.
    /// @return true when fitted. False, with nothing stored, as `FitRangeLine`, for fewer than four samples and for
    ///         a degree below 2.
    /// @throws std::bad_alloc  as `FitRangeLine`.
    VELQUAD_API bool FitRangeParabola(const std::vector<double>& x, const std::vector<double>& y, int first,
                                      int last, double& a, double& b, double& c, double* residual);

  private:
    VELQUAD_API bool FitPoly(const std::vector<double>& x, const std::vector<double>& y, int first, int last,
                             int coefficientCount, double* residual);
    VELQUAD_API bool Allocate(int samples);

    svd::CDMatrix* design;        // [1..capacity][1..maxCoefficients]: powers of x
    svd::CDVector* rhs;           // [1..capacity]: y
    svd::CDVector* coefficients;  // [1..maxCoefficients], of the means' frame, the constant first
    int capacity;                 // samples that there is memory for
    int maxCoefficients;          // degree + 1
    double xMean;                 // of the range fitted last
    double yMean;                 // of the range fitted last
};

/// What `FitParabola` found.
struct ParaFit {
    double vertexX;    ///< Position of the vertex, between the samples.
    double vertexY;    ///< Height of the vertex.
    double curvature;  ///< a of y = a x^2 + b x + c; negative for a peak.
    double reserved;   ///< Not used.
    double residual;   ///< Sum of the squared errors of the window.
    int left;          ///< First sample of the window.
    int right;         ///< Last sample of the window.
    double
        plateauLeftX;  ///< x of the nearest sample to the left of the index with another y, or of the first one.
    double
        plateauRightX;  ///< x of the nearest sample to the right of the index with another y, or of the last one.
    bool isPeak;        ///< The parabola passed every test of a peak.

    /// All zero and false.
    VELQUAD_API ParaFit();
    ParaFit(const ParaFit& other) = default;
    VELQUAD_API ParaFit& operator=(const ParaFit& other);
    VELQUAD_API ParaFit& operator=(ParaFit&& other) noexcept;
};

/// Fits a parabola around a sample of a curve and tells whether it is a peak that stands out from noise and
/// background: a peak locator of better than sample resolution.
///
/// The window takes the index, two neighbours on either side, and more for as long as their x lies less than half
/// of `width` away. The fit is a peak (`ParaFit::isPeak`) when
///   (1) it opens downwards,
///   (2) its vertex lies inside the window, not on its ends,
///   (3) its vertex stands at least `noiseFactor` times the root of the residual above the lower end of the parabola,
///   (4) its vertex lies above the background: mean plus `backgroundFactor` standard deviations of the samples
///       outside the window. The feet of the peak itself do not count: going outwards from the window, samples are
///       left out while they are lower than the window's last sample, and all that follow the first other one count.
///       With fewer than four such samples the background is 0.
/// @param x, y          the curve; x must grow.
/// @param index         the sample to look around.
/// @param width         width of the window, in units of x.
/// @param fit           the result. On false `vertexY`, `curvature` and `isPeak` are reset and the rest stays as it
///                      was; nothing changes for unusable vectors.
/// @param poly          working memory, of degree 2 at least.
/// @param verbose       writes the window and the fit to `OutputDebugStringW`.
/// @param minCurvature  parabolas that are as flat as this, or flatter, are refused.
/// @return true when a parabola was fitted, peak or not. False for vectors of different sizes or fewer than three
///         samples, an index outside of them, windows of fewer than four samples, too flat parabolas, a `poly` of
///         degree below 2, and when `poly` has no memory to grow.
/// @throws std::bad_alloc  as `CSVDPolyFit::FitRangeLine`, with `fit` as on false; with `verbose` also for lack of memory
///                         for the text on the fit, with all of `fit` but the plateau stored.
VELQUAD_API bool FitParabola(const std::vector<double>& x, const std::vector<double>& y, int index,
                             double width, ParaFit& fit, CSVDPolyFit& poly, bool verbose, double minCurvature,
                             double backgroundFactor, double noiseFactor);
/// @}

/// Mean and standard deviation of a sample, value by value.
///   (1) Two sums are kept, not the values: data far from 0 with a small spread lose digits, down to a deviation
///       of 0.
///   (2) A not-a-number makes the mean not a number and the deviation 0.
///
/// Nothing is allocated and nothing throws.
class CSampleStatistics {
  public:
    /// No values yet.
    VELQUAD_API CSampleStatistics();
    CSampleStatistics(const CSampleStatistics& other) = default;
    VELQUAD_API CSampleStatistics& operator=(const CSampleStatistics& other);
    VELQUAD_API CSampleStatistics& operator=(CSampleStatistics&& other) noexcept;

    /// Takes a value.
    VELQUAD_API void Sample(double value);

    /// @return the arithmetic mean; 0 without values.
    VELQUAD_API double Mean() const;

    /// @return the standard deviation of the sample (the divisor is one less than the number of values); 0 for
    ///         fewer than two values. Of use up to 65536 values only: the product of the number of values and one
    ///         less wraps at 32 bits.
    VELQUAD_API double StdDev() const;

    /// @return the number of values.
    VELQUAD_API unsigned int size() const;

  private:
    unsigned int count;
    double sum;
    double sumOfSquares;
};

}  // namespace math

/// @name Lens distortion and the alignment of mosaics
/// @{

namespace svd {

struct PolyModelIdParameter;

/// The number of a lens model, of a type of its own so that a number of dots or a size is not taken for it.
using PolyModelId = fluent::NamedType<unsigned int, PolyModelIdParameter, fluent::Comparable>;

/// Fits a polynomial map from measured positions of calibration dots to their true positions, and applies it: the
/// correction of lens distortion.
///
///     svd::CSVDFitPoly2d lens;
///     lens.Allocate(dotCount, svd::PolyModelId(9), width, height);
///     // lens.PutCalibDot(measuredX, measuredY, trueX, trueY) for each dot
///     svd::CSVDFitPoly2d::LensDistortionParams params;
///     lens.Fit(params);
///     lens.Predict(params, x, y, trueX, trueY);
///
/// Positions are in pixels. Inside, they are taken from the image centre in units of half the height, along both
/// axes: u = (x - width / 2) / (height / 2), v = (y - height / 2) / (height / 2). Circles stay circles. The map is a
/// linear combination of the terms of a model, with r the distance sqrt(u^2 + v^2) and q = u^2 + v^2:
///
/// | model | terms |
/// |---|---|
/// | 2 | 1, u, v, r, r^2 |
/// | 3 | 1, u, v, r, r^2, r^3 |
/// | 4 | 1, u, v, r, r^2, r^3, r^4 |
/// | 5 | 1, u, v, u^2, v^2, u^2 v, u v^2, u^3, v^3, r |
/// | 6 | 1, u, v, u^2, v^2, u^2 v, u v^2, u^3, v^3 |
/// | 7 | 1, u, v, u^2, v^2, u^2 v, u v^2, u^3, v^3, u^3 v, u^2 v^2, u^4, u v^3, u^2 v^2, u v^3, u^3 v, v^4 |
/// | 8 | 0, 1, 0, u, u^2, u v, u, v, v^2 / 3 + u^2, 2 u v / 3, u v^2 + u^3, u^2 - v^2, 2 u v, u^3, (3 u^2 v + v^3) / 2, (5 u^2 + v^2) q / 5, 4 u v q / 5, q^2 u, u^2 / 3 + v^2, u v^2 + u^3, v^3, (3 v^3 + u^2 v) / 2, (5 v^2 + u^2) q / 5, q^2 v |
/// | 9 | 1, u, v, u^2, v^2, u v, u^3, u^2 v, u v^2, v^3, u^4, u^3 v, u^2 v^2, u v^3, v^4, u^5, u^4 v, u^3 v^2, u^2 v^3, u v^4, v^5 |
///
///   (1) The fit is the least-squares fit in u and v, all dots of one weight. Of several best fits it is the one
///       with the smallest sum of squared coefficients; so terms that are equal share their weight equally (models
///       7 and 8), and terms that are zero have coefficient 0 (model 8).
///   (2) Any other model has no terms; its map sends every point to the image centre.
///   (3) Models 2 to 4 hold powers of r but no products of them with u and v, which a radial distortion consists of:
///       models 5 to 9 correct one.
///   (4) The map takes points. To resample an image, fit the inverse map, with measured and true positions exchanged.
///
/// Parameters that were stored are used again by an object of the same model and image size, without dots:
///
///     lens.Allocate(0, svd::PolyModelId(params.modelId), width, height);
///
/// **Memory.** An object holds a pointer to a record, which is null when memory was lacking for it; the members do
/// nothing then and return false.
/// **Exceptions.** `std::bad_alloc` from `Allocate` and `Fit`.
/// **Threads.** An object, and objects that share a record, belong to one thread at a time.
class CSVDFitPoly2d {
  public:
    /// The result of a fit, to be stored and used later.
    struct LensDistortionParams {
        unsigned int modelId = 0;           ///< The number of the model.
        std::vector<double> xCoefficients;  ///< One coefficient a term, for the true x.
        std::vector<double> yCoefficients;  ///< One coefficient a term, for the true y.
    };

    VELQUAD_API CSVDFitPoly2d();
    CSVDFitPoly2d(const CSVDFitPoly2d&) = delete;

    /// Releases the record.
    VELQUAD_API ~CSVDFitPoly2d();

    /// Shares the record of `other`. The own one is not released, and nobody counts who shares: of two objects with
    /// one record only one may be destroyed.
    VELQUAD_API CSVDFitPoly2d& operator=(const CSVDFitPoly2d& other);

    /// Starts a fit: chooses the model and the image size, makes room for dots and forgets those there are.
    /// @param dots           the number of dots to come. Rows of dots that never come do not change the result.
    /// @param width, height  of the image, in pixels.
    /// @return true.
    /// @throws std::bad_alloc  with the object as it was.
    VELQUAD_API bool Allocate(unsigned int dots, svd::PolyModelId model, unsigned int width,
                              unsigned int height);

    /// Adds a dot. More dots than `Allocate` was told of are left out.
    /// @param x, y              the measured position.
    /// @param targetX, targetY  the true position.
    VELQUAD_API void PutCalibDot(double x, double y, double targetX, double targetY);

    /// Fits the map. The dots stay, so that more can be added and the fit repeated.
    /// @param params  replaced by the result. The coefficients are not-a-numbers when measured positions are not finite,
    ///                those of one axis infinities and not-a-numbers when true positions along that axis are not.
    /// @return true; false, with nothing stored, without a record.
    /// @throws std::bad_alloc  with `params` as it was.
    VELQUAD_API bool Fit(LensDistortionParams& params);

    /// Maps a point. Allocates nothing.
    /// @param params            coefficients for the model and the image size of the last `Allocate`, which decides,
    ///                          not `params.modelId`. Terms beyond the shorter list of coefficients are left out.
    /// @param x, y              a measured position.
    /// @param resultX, resultY  the true position.
    VELQUAD_API void Predict(LensDistortionParams& params, double x, double y, double& resultX,
                             double& resultY) const;

  private:
    struct Record;
    Record* record;
};

/// Finds the positions of items in the plane that agree best with measured displacements between pairs of them and
/// with known places, as for the tiles of a stitched image.
///
///     svd::CSVDGlobAln alignment;
///     alignment.Allocate(pairCount, itemCount);
///     alignment.PutPair(1, 2, 10.0, 5.0, 1.0);  // and so on
///     alignment.PutExpected(1, 100.0, 100.0);
///     alignment.GlobalAlign();
///     alignment.GetPos(1, id, x, y);             // id 2 at (110, 105)
///
/// Each statement is two equations, one for x and one for y, multiplied with a weight. The result has the smallest
/// sum of squared differences of the weighted equations.
///   (1) Items that no known place reaches through pairs are placed so that the sum of all their squared coordinates
///       is smallest: each connected group of them is centred at the origin.
///   (2) The sign of a weight is irrelevant; a statement of weight 0 says nothing but needs room.
///   (3) Items get indices in the order in which their ids are first used.
///
/// **Memory.** As for `CSVDFitPoly2d`; linear in pairs and items, but `GlobalAlign` needs matrices of the size of
/// the system: two rows for each pair and item that there is room for, two columns for each item. Large systems, of
/// more than 2^17 such coefficients, are solved with half as many of both for what is in use.
/// **Exceptions.** `std::bad_alloc` from `Allocate` and `GlobalAlign`.
/// **Threads.** An object belongs to one thread at a time; const members may run side by side.
/// @par Source  The minimum-norm least-squares solution by singular values: G. Golub, W. Kahan, Calculating the
///              singular values and pseudo-inverse of a matrix, 1965; by divide and conquer, M. Gu, S. C. Eisenstat,
///              1995.
class CSVDGlobAln {
  public:
    VELQUAD_API CSVDGlobAln();
    CSVDGlobAln(const CSVDGlobAln&) = delete;
    CSVDGlobAln& operator=(const CSVDGlobAln&) = delete;
    VELQUAD_API ~CSVDGlobAln();

    /// Starts a problem: forgets statements and items. Positions of an earlier solution and the weight factor stay.
    /// There is room for `nPairs` + `nItems` statements about `nItems` items.
    /// @return true; false without a record.
    /// @throws std::bad_alloc  with the object as it was; always where a matrix of 2 (nPairs + nItems) rows and
    ///                         2 nItems columns cannot be addressed.
    VELQUAD_API bool Allocate(unsigned int nPairs, unsigned int nItems);

    /// Says that item `id2` lies (dx, dy) from item `id1`. Equal ids say that the item lies at (dx, dy).
    /// @return false, with nothing said, when there is no room for the items or the statement. Items that are new
    ///         may have taken room then.
    VELQUAD_API bool PutPair(int id1, int id2, double dx, double dy, double weight);

    /// Says that an item lies at (x + xOffset, y + yOffset).
    /// @return false, with nothing changed, when there is no room.
    VELQUAD_API bool PutFixed(int id, double x, double y, double xOffset, double yOffset, double weight);

    /// Says that an item lies at (x, y), with the weight set by `PutConstraintWeightFactor` before.
    /// @return false, with nothing changed, when there is no room.
    VELQUAD_API bool PutExpected(int id, double x, double y);

    /// Sets the weight for later calls of `PutExpected`; 1 at first.
    /// @return false, with nothing changed, for a negative number or a not-a-number.
    VELQUAD_API bool PutConstraintWeightFactor(double factor);

    /// Solves for all positions. The statements stay, so that more can be added and the problem solved again.
    /// @return the sum of squared differences of the weighted equations; 0 when there are none. Not a number, as the
    ///         positions are, for statements with infinities or not-a-numbers.
    /// @par Cost    One decomposition of a matrix with a row a statement and a column an item, for both axes.
    VELQUAD_API double GlobalAlign();

    /// The number of items.
    VELQUAD_API int GetColumns() const;

    /// The id and position of an item. A position that was never solved for is (0, 0).
    /// @param index  of the item, in the order of first use.
    /// @return false, with nothing stored, when there is no such item.
    VELQUAD_API bool GetPos(int index, int& id, double& x, double& y) const;

  private:
    struct Record;
    Record* record;
};

}  // namespace svd
/// @}

#endif  // VELQUAD_FITTING_H
