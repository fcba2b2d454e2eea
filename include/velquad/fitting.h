/// @file
/// Linear solvers, least-squares polynomials and rationals.
///
/// **Indices.** Every function tells whether its tables count from 1 or from 0. A table that counts from 1 holds
/// nothing at index 0, neither as a row nor within a row, and index 0 is never touched.
/// **Pointers.** Not tested unless told otherwise.
/// **Exceptions.** The C++ functions let `std::bad_alloc` through when working memory is lacking. Their arguments
/// are then as they were.
/// **Threads.** Pure functions of their arguments.
#ifndef VELQUAD_FITTING_H
#define VELQUAD_FITTING_H

#include <cstdint>

#include "velquad/platform.h"
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
/// @param b  `b[1..n][1..m]`: the right-hand sides, one a column, then the solutions; null when `m` is 0.
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
/// @return true when done; false when the normal equations are singular, as with fewer different samples than
///         coefficients.
/// @throws CInvalidArgException*  for coefficientCount < 1.
VELQUAD_API bool matLeastSquaresPolynomFit(
    double* y, int dataCount, double* coefficients, int coefficientCount, double* chiSquare,
    void (*basis)(int index, double* basis, int coefficientCount, void* user), void* user);

/// Fits a polynomial to the points (`x[i]`, `y[i]`).
/// @param x, y          `dataCount` numbers each, from index 0.
/// @param coefficients  `coefficientCount` numbers from index 0, highest power first; stored on success only.
/// @param chiSquare     may be null; see `matLeastSquaresPolynomFit`. Stored on success only.
/// @return true when done; false for null `coefficients` (nothing is read then) and for fewer different x than
///         coefficients.
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

#endif  // VELQUAD_FITTING_H
