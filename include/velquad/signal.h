/// @file
/// Transforms, smoothing, deconvolution and correlation of sampled curves.
#ifndef VELQUAD_SIGNAL_H
#define VELQUAD_SIGNAL_H

#include "velquad/framework.h"
#include "velquad/platform.h"
#include "velquad/types.h"

/// @name Radial frequencies of an image
/// How much of an image lies at which radial frequency, a measure of its sharpness: the energies of the cosine
/// transforms of its last row of blocks of 8 by 8 pixels, counted from the right edge, by the rounded distance
/// from frequency 0.
///   (1) The rows of blocks above do not reach the result. Columns on the left that make no whole block are left
///       out. Rows are not: the last row of blocks reaches below an image whose height is no multiple of 8, and
///       the buffer must hold what lies there.
///   (2) The transform works in single precision, so a constant image leaves rounding residues outside of bin 0.
///   (3) An image narrower than a block has amplitudes 0.
/// @param pixels      size.cy rows of size.cx pixels without gaps.
/// @param amplitudes  receives min(count, 8) mean energies per pixel of the image; untouched for an image without
///                    pixels (a product of sizes that is not positive) or a null one.
/// @par Source  N. Ahmed, T. Natarajan, K. R. Rao, IEEE Transactions on Computers 23 (1974).
/// @{
VELQUAD_API void matGet8Amplitudes(unsigned char const* pixels, CSize const& size, double* amplitudes,
                                   int count);
VELQUAD_API void matGet8Amplitudes(unsigned short const* pixels, CSize const& size, double* amplitudes,
                                   int count);
/// @}

extern "C" {

/// @name Fourier transform
/// Of a real signal, to and from a spectrum in split form: an array of real and one of imaginary parts.
///   (1) `n` is a power of two; every other count gives 3 with nothing written, and 0 gives 0.
///   (2) Zero frequency stands in the middle of the spectrum, at n / 2.
///   (3) The circle constant has twelve decimals, 6.28318530718, and so have the results.
///   (4) The inverse transform divides by n, the forward one does not.
/// @return `velquad::SignalStatus`: 1 when memory is lacking, 2 when it cannot be locked; the arrays then hold
///         neither the signal nor its transform. 3 for a null array.
/// @par Cost    O(n log n), with n sines and cosines above 4096 values; memory for 2 n doubles.
/// @par Source  J. W. Cooley, J. W. Tukey, Mathematics of Computation 19 (1965).
/// @{

/// @param in         `n` values; may be `real`.
/// @param real       receives the real parts.
/// @param imaginary  receives the imaginary parts.
VELQUAD_API unsigned int matFFT(const double* in, unsigned int n, double* real, double* imaginary);

/// @param real, imaginary  a spectrum; both are overwritten.
/// @param out              receives the real part of the signal; may be `real`.
VELQUAD_API unsigned int matInvFFT(double* real, double* imaginary, unsigned int n, double* out);

/// Multiplies a spectrum by a window that is centred at zero frequency, which makes it a low-pass filter. With l the
/// number of elements that it covers, the Hann and Blackman windows have their middle at l / 2, where zero frequency
/// stands; the triangular and the Welch window have it at (l - 1) / 2, so they tilt the two sides by half an element.
/// @param n     its largest power of two is l: what lies behind is left alone.
/// @param kind  1 triangular, 2 Hann, 3 Welch, 4 Blackman; others leave the spectrum as it is.
/// @return 0. A count of 0 touches nothing.
VELQUAD_API unsigned int matWindowFFT(double* real, double* imaginary, unsigned int n, unsigned short kind);

/// Maps a spectrum of any length to one real curve.
/// @param out   may be `real` or `imaginary`.
/// @param mode  1 power, 2 amplitude, 3 real part, 4 its absolute value, 5 imaginary part, 6 its absolute value.
/// @return 0; 3, with nothing written, for another mode or a null array.
VELQUAD_API unsigned int matMapFFTData(const double* real, const double* imaginary, double* out,
                                       unsigned int n, unsigned short mode);
/// @}

/// Removes from a measured distribution what comes from several events at once: the curve is a single-event
/// distribution, its self-convolution, that of three events and so on, behind a narrow leading peak that no event
/// makes.
///   (1) Method 1 takes the logarithm of the spectrum, after the tail was continued by a power law to a power of
///       two. Its results are magnitudes.
///   (2) Method 2 sums the series of that logarithm by convolutions. Before each term it looks for the Escape key in
///       the calling thread's message queue (other key messages are translated and dispatched), which ends
///       the series with what was summed so far, as a success. Element 0 of the result is 0.
///   (3) The peak is replaced by a rising cosine; element 0 takes its area. Without a peak, when `end` is `start`,
///       method 2 starts from element 0 as it is.
///   (4) Areas and levels that are 0 give infinities and not-a-numbers.
/// @param data    `count` samples.
/// @param result  room for count - start values.
/// @param start   sample that becomes element 0.
/// @param end     first sample behind the leading peak; start <= end < count.
/// @param scale   factor on the area of the peak, for method 1.
/// @param order   highest term of the series, for method 2. Below 2 the curve comes back without its peak.
/// @param method  1 or 2.
/// @return `velquad::SignalStatus`: 3 for another method, an unusable peak and, with method 1, fewer than 16
///         samples or fewer than 11 from `start` on. The result is untouched unless it is 0.
/// @par Cost    Method 1 O(count log count); method 2 O(order * (count - start)^2).
VELQUAD_API unsigned short matDeconvolution(const double* data, unsigned int count, double* result,
                                            unsigned int start, unsigned int end, double scale,
                                            unsigned short order, unsigned short method);

/// @name Smoothing
/// From an array to another one of the same length.
/// @return `velquad::SignalStatus`: 3 for a null array and for the arguments that each function names.
/// @{

/// Fits a parabola (a cubic for derivatives 0 and 2 gives the same) to a sliding window and takes its value or a
/// derivative in the middle.
///   (1) Both ends, half a window each, repeat the nearest value that has a whole window. Without any whole window
///       all is 0.
///   (2) Derivatives are per sample.
/// @param width       1 to 5 for windows of 5, 7, 9, 11 or 13 samples.
/// @param derivative  0 to 2.
/// @param isAbsolute  non-zero: the absolute values of the result.
/// @return 3 also for another width or derivative, and for n <= width + 1.
/// @par Source  A. Savitzky, M. J. E. Golay, Analytical Chemistry 36 (1964).
VELQUAD_API unsigned int matSavitzkyGolay(const double* in, unsigned int n, double* out, unsigned int width,
                                          unsigned int derivative, int isAbsolute);

/// The mean of a sliding window, summed from left to right. At the ends the window is cut; one of even length
/// reaches one sample further to the left. A negative window copies.
/// @param n       a negative count gives 0 with nothing done.
/// @param window  samples; 0 gives 3, and so does n = 0.
/// @par Cost    O(n * window).
VELQUAD_API unsigned int matMeanValue(const double* in, int n, double* out, int window);

/// Smooths by a window over the spectrum. The samples are continued on both sides, up to the next power of two above
/// (twice the count for a power of two), by the slope that would lead from the first sample to the last one over one
/// step more than are filled. So a signal with a trend leaves a jump between the far ends.
/// @param n     16 to 65535; others give 3.
/// @param kind  the window, see `matWindowFFT`; the low 16 bits count.
/// @return 1 when memory is lacking, 2 when it cannot be locked.
VELQUAD_API unsigned int matFFTSmooth(const double* in, unsigned int n, double* out, unsigned int kind);

/// Lays a line between the upper and the lower extremes of a curve, as the mean of a walk from either end.
///   (1) Where an extreme follows the one before within `gap` samples, the line goes half way between it and the
///       chord of the opposite extremes around it.
///   (2) Over a longer stretch the line keeps the shape of the curve and fades to the curve itself.
///   (3) Behind the last extreme the line is straight; at both ends it may leave the curve.
/// @param rounds  how often the result is smoothed again in the same way; 0 gives 3, and so does n = 0.
/// @param gap     longest distance of extremes that are taken together.
/// @return 1 when memory is lacking, 2 when it cannot be locked. Nothing is written then.
/// @par Cost    O(rounds * n); memory for 3 n doubles.
VELQUAD_API unsigned int matMeanEnvelope(const double* in, unsigned int n, double* out, unsigned int rounds,
                                         unsigned int gap);
/// @}

/// @name Range and sum of a curve
/// @{

/// The extremes and the mean of a curve.
///   (1) The extremes start at the largest float and its negative: a curve that lies beyond on one side has that as
///       its extreme. Values that are not numbers leave them alone.
///   (2) The mean adds up partial sums of a hundred values, each divided by `count`.
/// @param values   `count` values.
/// @param minimum, maximum, mean  results; each may be null, or one of the values.
/// @return 1; 0, with nothing written, for no values.
VELQUAD_API int matGetRange(const double* values, unsigned int count, double* minimum, double* maximum,
                            double* mean);

/// Adds slope * value + offset of every value, one after the other, to one sum. No curve is written.
/// @param accumulator  the sum, which goes on from what it holds. It may be one of the values, which then counts
///                     with the sum up to it.
/// @return 0.
VELQUAD_API int matLinearCorrection(const double* values, double* accumulator, unsigned int count,
                                    double slope, double offset);
/// @}

/// @name Correlation, differences and zero crossings of curves
/// @{

/// Prepares a pattern for `fnrDoCorrelation`: its mean is subtracted and its norm about the mean is kept.
/// @param pattern  `n` samples; copied.
/// @return a handle that `fnrExitCorrelation` releases; null for n < 2, a null pattern and when memory is lacking.
VELQUAD_API void* fnrInitCorrelation(const double* pattern, int n);

/// The normalised cross-correlation of a pattern with every stretch of a signal that is as long as the pattern.
///   (1) A result lies in [-1, 1] up to rounding: 1 where the stretch is the pattern times a positive factor plus
///       a constant.
///   (2) A flat stretch gives its sum of squares about the mean, 0 or a little less, in place of a quotient.
///   (3) Each result is summed over its own stretch in order, so it does not depend on the stretches around it nor
///       on the processor.
/// @param handle    from `fnrInitCorrelation`. Any number of threads may use it at once.
/// @param signal    `signalCount` samples.
/// @param result    room for min(signalCount - n + 1, maxCount) numbers, one for each shift from 0 up. May be
///                  `signal`.
/// @param maxCount  most results wanted.
/// @return the number of results; -1 for a null handle or array, a constant pattern, and when there is no result.
/// @par Cost    3 additions and a multiplication per sample of the pattern and shift.
/// @par Source  J. P. Lewis, Fast Normalized Cross-Correlation, 1995, gives the formula.
VELQUAD_API int fnrDoCorrelation(void* handle, const double* signal, unsigned int signalCount, double* result,
                                 int maxCount);

/// Releases a handle and sets it to null. Null, as the pointer or as the handle, is ignored.
VELQUAD_API void fnrExitCorrelation(void** handle);

/// The first difference: `out[i]` = `in[i + 1]` - `in[i]`.
/// @param out         `n` numbers; may be `in`.
/// @param isCircular  non-zero: the last one is `in[0]` - `in[n - 1]`; zero: it is 0.
VELQUAD_API void fnrDerivate(const double* in, double* out, int n, int isCircular);

/// Finds where a curve changes its sign, by linear interpolation between the last sample before and the first
/// sample behind the change. Positions are real-valued indices.
///   (1) Samples without a sign are skipped: a run of zeros between two signs is one crossing. A first sample
///       needs a size above 2.2e-308, the later ones above 1.2e-38.
///   (2) A non-circular curve gives positions in [0, n - 1]; samples of which a difference overflows may give a
///       not-a-number.
/// @param rising, falling            positions where the curve becomes positive, or negative, in order; each list
///                                   may be null.
/// @param risingCount, fallingCount  in: capacity of the list, read only if the list is given; out: crossings
///                                   found, those beyond the capacity included. May be null without a list.
/// @param isCircular                 non-zero: the first sample follows the last one; a crossing between the two
///                                   stands at the end of its list. Its position may be n and more: at most n
///                                   plus the index of the first sample with a sign.
/// @return 1; 0 when a list was too short for its crossings.
VELQUAD_API int fnrFindZeroPoint(const double* data, int n, double* rising, unsigned int* risingCount,
                                 double* falling, unsigned int* fallingCount, int isCircular);
/// @}

}  // extern "C"

#endif  // VELQUAD_SIGNAL_H
