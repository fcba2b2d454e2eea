/// @file
/// Typed images and volumes: conversion, regions, zoom, affine transform, blur.
///
/// **Arrays.** An image is a table of row addresses, `rows[y]`, and a type code that travels beside it. A row holds
/// `width` elements, or `width * channels` where a function takes channels. All functions reach the elements through
/// the row table and take any table: one made by `matAllocArray2v`, the region of another array, or the caller's
/// own. Rows need not follow each other, and neither table nor rows need to be aligned; tables made here are aligned
/// to 4 bytes, their rows not at all. Only `matFreeArray2v` and `matZeroInitArray2v` need a block made here.
///
/// **Type codes.** `MAT_ARRAY_INT8` (1) to `MAT_ARRAY_BYTE4` (10); every other code is no type.
///
/// **Results.** 1 for done and 0 for not done unless told otherwise. Sizes and flags are 32 bits wide.
///
/// **Rounding.** Each family has its own: conversion, clamp and transform round halves away from zero (`lround`,
/// narrowed to 32 bits); zoom adds 0.5 away from zero and truncates. They differ beyond 32 bits, and for the
/// numbers next to a half, which the sum may round up to it.
///
/// **Threads.** No state is kept; calls on different arrays may run side by side.
#ifndef VELQUAD_ARRAY_H
#define VELQUAD_ARRAY_H

#include "velquad/platform.h"
#include "velquad/types.h"

/// @name Element type codes
/// @{
inline constexpr unsigned int MAT_ARRAY_INT8 = 1;    ///< Signed 8-bit integer.
inline constexpr unsigned int MAT_ARRAY_UINT8 = 2;   ///< Unsigned 8-bit integer.
inline constexpr unsigned int MAT_ARRAY_INT16 = 3;   ///< Signed 16-bit integer.
inline constexpr unsigned int MAT_ARRAY_UINT16 = 4;  ///< Unsigned 16-bit integer.
inline constexpr unsigned int MAT_ARRAY_INT32 = 5;   ///< Signed 32-bit integer.
inline constexpr unsigned int MAT_ARRAY_UINT32 = 6;  ///< Unsigned 32-bit integer.
inline constexpr unsigned int MAT_ARRAY_FLOAT = 7;   ///< 32-bit floating point.
inline constexpr unsigned int MAT_ARRAY_DOUBLE = 8;  ///< 64-bit floating point.
inline constexpr unsigned int MAT_ARRAY_BYTE3 = 9;   ///< Pixel of three unsigned bytes.
inline constexpr unsigned int MAT_ARRAY_BYTE4 = 10;  ///< Pixel of four unsigned bytes.
/// @}

extern "C" {

/// @name Arrays as blocks
/// @{

/// @return bytes of one element: 1, 1, 2, 2, 4, 4, 4, 8, 3, 4 for the codes 1 to 10; 0 for any other code.
VELQUAD_API unsigned int matCvtArrayTypeToSize2v(unsigned int type);

/// The usual type of an element size.
/// @return 2 for 1 byte, 4 for 2, 9 for 3, 7 (float) for 4, 8 for 8; 0 for any other size.
VELQUAD_API unsigned int matCvtSizeToArrayType2v(unsigned int size);

/// Makes an array whose elements are all zero.
///
/// It is one block: five 32-bit words (`width`, `height`, `type`, `channels`, bytes of data), the row table, and the
/// rows without a gap. An unknown type has rows of no bytes; width and height may be 0.
/// @param dataOut  optional: receives the address of the first row; left alone on failure.
/// @return the row table, which the caller owns until `matFreeArray2v`; null without memory, or when header,
///         table and rows need 4 GiB or more.
VELQUAD_API void** matAllocArray2v(unsigned int width, unsigned int height, unsigned int type,
                                   unsigned int channels, void** dataOut);

/// Releases an array. An address that was not made here is ignored.
/// @return 0 for null, else 1.
VELQUAD_API int matFreeArray2v(void** rows);

/// Copies `height` rows into a new array. The source may be any row table; its header, if it has one, is not read.
/// @return the new row table, or null without memory; also null for null rows, unless the height is 0.
VELQUAD_API void** matDuplicateArray2v(const void* const* rows, unsigned int width, unsigned int height,
                                       unsigned int type, unsigned int channels);

/// Minimum, maximum, mean and standard deviation (divisor: the number of elements) of each channel.
///   (1) Elements count as `CMatMomentEvaluator::AddValue` takes them, in row order: the largest double is refused,
///       not-a-numbers change neither minimum nor maximum.
///   (2) `MAT_ARRAY_BYTE3` and `MAT_ARRAY_BYTE4` have three and four channels of bytes, whatever `channels` says.
///   (3) A channel without an element ends the work with 0; the channels before it keep their results.
/// @param mask      optional: rows of one byte per pixel. Pixels count where the byte is not 0.
/// @param maskFlag  with a mask, any other value than 0 admits no pixel at all.
/// @param minOut    optional, as the other three: one double per channel.
/// @return 1, or 0 for null rows and by (3). A code that is no type gives 1, and nothing is stored.
VELQUAD_API int matGetRangeOfArray2v(const void* const* rows, unsigned int type, unsigned int channels,
                                     const void* const* mask, int maskFlag, unsigned int width,
                                     unsigned int height, double* minOut, double* maxOut, double* meanOut,
                                     double* stdDevOut);
/// @}

/// @name Conversion, fill, limits, linear map
/// `width` is the number of elements in a row: interleaved channels multiply it. Nothing is written on failure.
/// @{

/// Widens every element to a float.
///   (1) Type 1 is read as unsigned bytes, like type 2. Types 3 and 5 are not supported.
///   (2) Pixels become the mean of their first three bytes, or with bit 0 of `flags` the largest of them.
/// @return 1; 0 for a null table, for types 3 and 5 and for a code that is no type.
VELQUAD_API int matConvertArrayToFloat2v(const void* const* source, float* const* destination,
                                         unsigned int width, unsigned int height, unsigned int type,
                                         int flags);

/// Stretches the range of a float array over the range of an element type.
///   (1) The smallest float becomes the smallest value of the type and the largest the largest, rounded by `lround`;
///       a range below 1e-7 maps everything to the smallest value.
///   (2) Type 5 saturates: every element is 0x7FFFFFFF unless it is not a number, or an infinity is among the floats.
///   (3) Types 7 and 8 receive the floats unchanged. Pixels receive the same value in the first three bytes, a
///       fourth is set to 1.
/// @return 1; 0 for a null table, an empty source and a code that is no type.
VELQUAD_API int matConvertArrayFromFloat2v(const float* const* source, void* const* destination,
                                           unsigned int width, unsigned int height, unsigned int type);

/// Fills an array with one value, converted as by `matMapValue1d`; a double is stored as it is. The fourth byte of a
/// four-byte pixel keeps its value.
/// @return 1; 0 for a code that is no type, and for null rows unless the height is 0.
VELQUAD_API int matClearArray2v(void* const* rows, unsigned int width, unsigned int height, unsigned int type,
                                double value);

/// Limits every element from above by `high`, then from below by `low`. The fourth byte of a four-byte pixel keeps
/// its value.
///   (1) Bounds of integer types are rounded. For the types 1 to 4, 9 and 10 they are taken modulo 2^32 first; a high
///       bound above the type is then limited to it, as is a low bound below it, and of one that lies beyond the other
///       end the low bits are taken. The types 5 and 6 limit bounds to both of their ends.
///   (2) Where the bounds cross, the upper one wins for the types 1, 2, 3, 5, 6, 9 and 10, the lower one for 4, 7, 8.
///   (3) Type 5: a low bound within the range of 32 bits takes the value of the high one, rounded and modulo 2^32, so
///       all elements become the high bound where that fits as well.
/// @return 1; 0 for a code that is no type, and for null rows unless the height is 0.
VELQUAD_API int matClampArray2v(void* const* rows, unsigned int width, unsigned int height, unsigned int type,
                                double low, double high);

/// Replaces every element e by (e + offset) * scale + bias, computed in double, rounded and limited to the type.
/// Pixels are treated byte by byte; a fourth byte keeps its value.
/// @return 1; 0 for null rows, for a code that is no type, and for type 1, whose elements are changed all the same.
VELQUAD_API int matTransformArray2v(void* const* rows, unsigned int width, unsigned int height,
                                    unsigned int type, double offset, double scale, double bias);

/// Stores a number as one element.
///   (1) Types 1 to 4 round by `lround` after limiting. Type 5 saturates.
///   (2) Type 6: 0 below 1e-7, 0xFFFFFFFF from 4294967294.5 on; values from 2147483647.5 on store 0x80000000.
///   (3) Type 7 limits to the largest float, type 8 stores the value.
///   (4) Pixels: the value is a packed pixel, low byte first, truncated.
/// @param out  at least 8 bytes at any address.
/// @return 1; 0 for a code that is no type and a null `out`.
VELQUAD_API int matMapValue1d(double value, void* out, unsigned int type);
/// @}

/// @name Regions
/// @{

/// Makes a row table of a region, so that everything that takes row tables works on the region. No element is
/// copied. Right and bottom belong to the region.
/// @param width  width of the array in elements.
/// @param roi    the region; null for the whole array. It is accepted with 0 <= left <= right <= width and
///               0 <= top <= bottom <= height: one column and one row beyond the array pass, and what the table then
///               names is the caller's.
/// @return the table of bottom - top + 1 rows, to be released by `matFreeArrayMappedToRoi2v` only; null for a region
///         that is not accepted, for null rows and without memory.
VELQUAD_API void** matMapArrayToROI2v(void* const* rows, int width, unsigned int height, unsigned int type,
                                      unsigned int channels, const RECT* roi);

/// Releases the table of a region; the array stays.
/// @return 0 for null, else 1.
VELQUAD_API int matFreeArrayMappedToRoi2v(void** table);
/// @}

/// @name Zoom
/// Destination cell x lies at x / (dstWidth / srcWidth) in the source, without a shift by half a cell, so that cell 0
/// lies on cell 0. Interpolation is done in double. Cubic takes one sample before and two behind a position, bilinear
/// one behind; where the source ends before that, the next simpler kind is used, at last the nearest sample. Results
/// are rounded halves away from zero and limited to the type; type 6 stores 0x80000000 for 2147483647.5 and above.
/// Samples are never averaged: a reduction by a whole number takes every so many-th one, by every kind, but for the
/// rounding of the quotients above, which floating types show.
/// Source and destination must not overlap.
/// @par Source  R. Keys, Cubic convolution interpolation for digital image processing, 1981, with the parameter -1.
/// @{

/// Resamples an array to another size.
/// @param flags  bit value 4: cubic; else bit value 2: bilinear; else nearest.
/// @return 1. An unknown type, a null table, an empty source or destination, and source rows of more than 2147483647
///         values (a pixel of bytes has three or four) write nothing.
VELQUAD_API int matZoomArray2v(unsigned int srcWidth, unsigned int srcHeight, const void* const* srcRows,
                               unsigned int dstWidth, unsigned int dstHeight, void* const* dstRows,
                               unsigned int type, unsigned int flags);

/// Resamples a region of an array into a region of another. Regions are those of `matMapArrayToROI2v`; null stands
/// for the whole array.
/// @return 1, or 0 for a null table, when a region is not accepted, or without memory; nothing is written then.
VELQUAD_API int matZoomArrayROI2v(unsigned int srcWidth, unsigned int srcHeight, const void* const* srcRows,
                                  const RECT* srcRoi, unsigned int dstWidth, unsigned int dstHeight,
                                  void* const* dstRows, const RECT* dstRoi, unsigned int type,
                                  unsigned int flags);

/// The form of `matZoomArrayROI2v` for pixels known by their size: 1 and 2 bytes are unsigned integers, 3 a pixel of
/// bytes, 4 a float, 8 a double.
/// @param mode  2: cubic; 1: bilinear; any other: nearest.
/// @return as `matZoomArrayROI2v`.
VELQUAD_API int matZoomImage(unsigned int srcWidth, unsigned int srcHeight, unsigned int bytesPerPixel,
                             const void* const* srcRows, const RECT* srcRoi, unsigned int dstWidth,
                             unsigned int dstHeight, void* const* dstRows, const RECT* dstRoi,
                             unsigned int mode);
/// @}

/// Marks the local extremes of a sequence.
///   (1) The middle of a maximal plateau, rounded down, is marked 255, that of a minimal one 0, all else 127.
///   (2) The ends of the sequence are never marked.
/// @param flags  `count` bytes.
/// @return 1, also for null pointers, which write nothing.
VELQUAD_API int matFindMinMaxValues(const double* values, unsigned char* flags, unsigned int count);

}  // extern "C"

/// @name Discs
/// A digital disc of radius r has the cells whose distance from the centre, rounded, is at most r: with r = 1 all nine
/// cells of a square. Its tables have 2 r + 1 rows and columns; cell (x, y) lies at (x - r, y - r) from the centre.
/// @{

/// Makes the tables of a disc.
/// @param distances  receives the distinct distances of the cells, ascending; the last one is the largest double when
///                   there are cells outside of the disc.
/// @param maxIndex   receives the index of the last distance.
/// @param left       receives the first column of each row.
/// @param right      receives the last column of each row; it points into the block of `left`.
/// @return for each cell the low 16 bits of the index of its distance, 65535 outside of the disc. Indices reach 65536
///         at a radius of 536; from there on `left` and `right` tell what lies inside. Null for a negative radius, one
///         above 11584, and without memory, with nothing stored. All of it is the caller's until
///         `matFreeCircularShape2w`. Every output may be null, but what is not asked for here cannot be released.
VELQUAD_API unsigned short** matAllocCircularShape2w(int radius, double** distances, unsigned int* maxIndex,
                                                     int** left, int** right);

/// Releases the tables of a disc; null pointers are ignored, and `right` is not used.
/// @return 1.
VELQUAD_API int matFreeCircularShape2w(unsigned short** shape, double* distances, int* left, int* right);

/// Finds where the mean of an image under a disc is largest. At the border the mean is that of the cells within the
/// image. Among equal means the one with the largest y wins, within a row the one with the largest x.
/// @param peak   optional: receives the place; (-1, -1) for an empty or null image.
/// @param value  optional: receives the mean there; below 1e-7 it is 0, for an empty image -3.4028234663852886e38.
/// @return 1, or 0 when the tables of the disc cannot be made; nothing is stored then.
/// @par Cost  O(width * height * radius).
VELQUAD_API int matFindGlobalPeak2w(unsigned short** image, int width, int height, int radius, tagPOINT* peak,
                                    double* value);
/// @}

/// Sets all elements of an array that was made by `matAllocArray2v` to zero.
/// @return 0 for null, else 1.
VELQUAD_API int matZeroInitArray2v(void** rows);

/// @name Volumes
/// A volume is a table of slices, `volume[z][y]`, each slice a row table. As with images, every function but
/// `matFreeArray3v`, `matIsArray3v` and `matZeroInitArray3v` takes any such tables.
///
/// **Rounding.** Values are stored rounded by x + 0.5, or x - 0.49 below zero, and truncated: -0.5 becomes 0,
/// and only values from -0.51 downwards become -1. The limits of the type are applied to the truncated 32-bit value,
/// which is -2147483648 for everything beyond 32 bits: 3e9 becomes 0 in type 2. In particular:
///
///     type   below -2147483647.5   2147483647.5 to 4294967294.5              beyond
///     5      -2147483648           -2147483648 (affine transform: 2147483647)  2147483647
///     6      0x80000000            0x80000000                                0xFFFFFFFF
///     7                 limited to the largest float
///
/// Negative values wrap around in type 6: -1 becomes 0xFFFFFFFF.
/// @{

extern "C" {

/// Makes a volume whose elements are all zero. Each slice is an array as `matAllocArray2v` makes it and may
/// be used as one, but must not be released alone.
///
/// In front of the slice table stand eight 32-bit words: `width`, `height`, `depth`, `type`, `channels`,
/// bytes of all elements modulo 2^32, and two zeros.
/// @param dataOut  optional: receives null, as there is no single block of data; left alone on failure.
/// @return the slice table, which the caller owns until `matFreeArray3v`; null without memory, and for slices
///         that `matAllocArray2v` does not make.
VELQUAD_API void*** matAllocArray3v(unsigned int width, unsigned int height, unsigned int depth,
                                    unsigned int type, unsigned int channels, void** dataOut);

/// Releases a volume and its slices. What was not made by `matAllocArray3v` is left alone.
/// @return 0 when `matIsArray3v` says 0, else 1.
VELQUAD_API int matFreeArray3v(void*** volume);

/// Tells whether the words in front of an address are those of a volume: readable, and with a size of data
/// that is the product of the others. This is a test of plausibility, which 32 bytes of zeros pass too.
/// @return 1 or 0; 0 for null.
VELQUAD_API int matIsArray3v(const void* const* const* volume);

/// Sets all elements of a volume that was made by `matAllocArray3v` to zero.
/// @return 0 when `matIsArray3v` says 0, else 1.
VELQUAD_API int matZeroInitArray3v(void*** volume);

/// Minimum, maximum, mean and standard deviation (divisor: the number of elements) of each channel; elements
/// count as for `matGetRangeOfArray2v`. A channel without an element gives what an empty
/// `CMatMomentEvaluator` gives: the largest double, four times.
/// @param minOut  optional, as the other three: one double per channel.
/// @return 1; 0 for a null volume and for a code that is no type.
VELQUAD_API int matGetRangeOfArray3v(const void* const* const* volume, unsigned int type,
                                     unsigned int channels, unsigned int width, unsigned int height,
                                     unsigned int depth, double* minOut, double* maxOut, double* meanOut,
                                     double* stdDevOut);

}  // extern "C"

/// Copies all rows. Neither table is tested.
/// @return 1; a size below 1 copies nothing.
VELQUAD_API int matCopyArray3v(void*** destination, void*** source, int width, int height, int depth,
                               unsigned int type, unsigned int channels);
/// @}

/// @name Conversion of volumes
/// Elements of the types 1 to 8 to floats or doubles and back, by value: nothing is stretched, and signed
/// types are signed. `type` is that of the side that is `void`. Rows hold `width * channels` elements. The
/// `2v` forms take row tables of one slice.
/// @return 1; 0 for a null table and for a type outside 1 to 8, pixels included.
/// @{
VELQUAD_API int matConvertToDouble3v(double*** destination, void*** source, unsigned int width,
                                     unsigned int height, unsigned int depth, unsigned int type,
                                     unsigned int channels);
VELQUAD_API int matConvertToFloat3v(float*** destination, void*** source, unsigned int width,
                                    unsigned int height, unsigned int depth, unsigned int type,
                                    unsigned int channels);
VELQUAD_API int matConvertFromDouble3v(double*** source, void*** destination, unsigned int width,
                                       unsigned int height, unsigned int depth, unsigned int type,
                                       unsigned int channels);
VELQUAD_API int matConvertFromFloat3v(float*** source, void*** destination, unsigned int width,
                                      unsigned int height, unsigned int depth, unsigned int type,
                                      unsigned int channels);
VELQUAD_API int matConvertToDouble2v(double** destination, void** source, unsigned int width,
                                     unsigned int height, unsigned int type, unsigned int channels);
VELQUAD_API int matConvertToFloat2v(float** destination, void** source, unsigned int width,
                                    unsigned int height, unsigned int type, unsigned int channels);
VELQUAD_API int matConvertFromDouble2v(double** source, void** destination, unsigned int width,
                                       unsigned int height, unsigned int type, unsigned int channels);
VELQUAD_API int matConvertFromFloat2v(float** source, void** destination, unsigned int width,
                                      unsigned int height, unsigned int type, unsigned int channels);
/// @}

/// @name Affine transform and blur
/// @{

/// Resamples a volume into another one under an affine or projective map. Each destination voxel is fetched
/// from where the inverse map says it comes from.
///   (1) The matrix maps source positions to destination positions, row by row for column vectors. In its
///       coordinates voxel 0 reaches from 0 to 1, with its centre at 0.5; the positions of (2) count from that
///       centre. A singular matrix is not reported.
///   (2) A position belongs to the source from above -1 to below the size, on every axis; one within 1e-7 of
///       the next whole number away from zero has reached it. Between -1 and 0 the values of cells 0 and 1
///       are extrapolated; from size - 1 on the last cell's value is taken. All else, and every voxel of an
///       empty source, becomes background.
///   (3) Trilinear interpolation in double; the result is rounded and limited to the type.
///   (4) Nearest sampling rounds positions as values are rounded (see Volumes) and copies pixels unchanged.
///   (5) A voxel that maps to infinity takes the position of the voxel before it.
/// Source and destination must not overlap.
/// @param channels    interleaved channels; `MAT_ARRAY_BYTE3` and `MAT_ARRAY_BYTE4` have three and four
///                    bytes, whatever `channels` says.
/// @param matrix      four rows of four. Not read in scale mode.
/// @param flags       bit 31: scale mode, where destination voxel x comes from x / (dstWidth / srcWidth),
///                    without the shift to voxel centres; bit value 1: nearest sampling. Other bits are
///                    ignored.
/// @param background  optional: one double per channel, truncated to the type without limits (300.7 is 44 in
///                    type 2). The largest double stands for 0, as does null.
/// @return 1; 0 for a null table, a null matrix that is needed, a code that is no type, and without memory
///         for the background. Nothing is written then. Without memory for the inverse of the matrix the result is 1,
///         and every voxel is taken from the position -0.5 of the source.
VELQUAD_API int _matAffinTransformArray3v(unsigned int srcWidth, unsigned int srcHeight,
                                          unsigned int srcDepth, unsigned int channels, void*** source,
                                          unsigned int dstWidth, unsigned int dstHeight,
                                          unsigned int dstDepth, void*** destination, unsigned int type,
                                          double (*const matrix)[4], DWORD flags, double* background);

/// `_matAffinTransformArray3v` with one channel and background 0.
extern "C" VELQUAD_API int matAffinTransformArray3v(unsigned int srcWidth, unsigned int srcHeight,
                                                    unsigned int srcDepth, void*** source,
                                                    unsigned int dstWidth, unsigned int dstHeight,
                                                    unsigned int dstDepth, void*** destination,
                                                    unsigned int type, const double (*matrix)[4],
                                                    DWORD flags);

/// Smooths a volume in place by a Gaussian along Z, Y and X, one axis after the other; Z only with more than
/// one slice. The kernel of each axis is cut off at a radius and normalised over what of it lies in the
/// volume, so that a constant volume stays constant up to its faces.
///   (1) A sigma of 0, and a radius from 0 to below 1, do not smooth an axis: its values are only rounded to their type
///       as told below. But a sigma so close to 0 that its square
///       is 0 has no weights: everything becomes a not-a-number before it is rounded.
///   (2) Without conversion, values are rounded to their type after each axis. With conversion, types 1 to 4
///       are filtered in a copy of floats, types 5 and 6 in one of doubles, and rounded once.
///   (3) `MAT_ARRAY_BYTE3`, `MAT_ARRAY_BYTE4` and unknown types pass through all lines unchanged.
///   (4) A negative radius, and one that does not fit 32 bits or is not a number, makes the axis zero.
/// @param size          width, height and depth.
/// @param strides       optional: byte steps along X, Y and Z, counted from the first element of a line, for
///                      volumes in one block; 0 and 0xFFFFFFFF stand for none, and the tables are used. Not
///                      used with a copy.
/// @param sigma         standard deviation along X, Y and Z in voxels.
/// @param radiusFactor  radius of the kernels in sigmas, along X, Y and Z. The radius is truncated to whole
///                      voxels.
/// @param convert       non-zero: integers are filtered in a copy.
/// @param callback      optional: called once for each line, in the order of the work: along Z for x and in
///                      it y, along Y for z and in it x, along X for y and in it z. `current` counts from 1
///                      to `total`. The result 0 ends the work: exactly the lines announced before are
///                      filtered. Lines may be announced some time ahead of their filtering, so the callback
///                      must not look at the volume.
/// @return 1 for done, 2 when the callback ended it, 0 without memory, for null arguments that are needed,
///         and for a radius of 2^29 and more in a volume whose rows overlap. When memory ends in the course of
///         the work, a volume without conversion may be partly filtered. A filtered copy is stored even when
///         the callback ended the work, and the result is 1 then.
/// @par Cost  O(voxels * radius). Beyond the copy, memory for some rows.
VELQUAD_API DWORD matGaussianBlurFilter3v(void*** volume, unsigned int* const size, unsigned int type,
                                          unsigned int channels, unsigned int* const strides,
                                          double* const sigma, double* const radiusFactor, int convert,
                                          int (*callback)(unsigned int, unsigned int, void*),
                                          void* callbackUser);
/// @}

#endif  // VELQUAD_ARRAY_H
