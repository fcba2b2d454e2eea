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
///   (2) Type 5 saturates: every element is 0x7FFFFFFF unless it is not a number.
///   (3) Types 7 and 8 receive the floats unchanged. Pixels receive the same value in the first three bytes, a
///       fourth is set to 1.
/// @return 1; 0 for a null table, an empty source and a code that is no type.
VELQUAD_API int matConvertArrayFromFloat2v(const float* const* source, void* const* destination,
                                           unsigned int width, unsigned int height, unsigned int type);

/// Fills an array with one value, converted as by `matMapValue1d`; a double is stored as it is. The fourth byte of a
/// four-byte pixel keeps its value.
/// @return 1, or 0 for a code that is no type. `rows` is not tested.
VELQUAD_API int matClearArray2v(void* const* rows, unsigned int width, unsigned int height, unsigned int type,
                                double value);

/// Limits every element from above by `high`, then from below by `low`. The fourth byte of a four-byte pixel keeps
/// its value.
///   (1) Bounds of integer types are rounded. The side that points out of the type is limited to it; of a bound that
///       lies beyond the other end the low bits are taken.
///   (2) Where the bounds cross, the upper one wins for the types 1, 2, 3, 5, 6, 9 and 10, the lower one for 4, 7, 8.
///   (3) Type 5: a low bound within the range of 32 bits takes the value of the high one, so all elements become it.
/// @return 1, or 0 for a code that is no type. `rows` is not tested.
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
/// @return 1, or 0 for a code that is no type.
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
///         that is not accepted and without memory.
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
/// Source and destination must not overlap.
/// @par Source  R. Keys, Cubic convolution interpolation for digital image processing, 1981, with the parameter -1.
/// @{

/// Resamples an array to another size.
/// @param flags  bit value 4: cubic; else bit value 2: bilinear; else nearest.
/// @return 1. An unknown type and an empty source or destination write nothing.
VELQUAD_API int matZoomArray2v(unsigned int srcWidth, unsigned int srcHeight, const void* const* srcRows,
                               unsigned int dstWidth, unsigned int dstHeight, void* const* dstRows,
                               unsigned int type, unsigned int flags);

/// Resamples a region of an array into a region of another. Regions are those of `matMapArrayToROI2v`; null stands
/// for the whole array.
/// @return 1, or 0 when a region is not accepted or without memory; nothing is written then.
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
/// @return 1.
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
/// @return for each cell the index of its distance, 65535 outside of the disc; null for a negative radius, one above
///         11584, and without memory, with nothing stored. All of it is the caller's until `matFreeCircularShape2w`.
///         Every output may be null, but what is not asked for here cannot be released.
VELQUAD_API unsigned short** matAllocCircularShape2w(int radius, double** distances, unsigned int* maxIndex,
                                                     int** left, int** right);

/// Releases the tables of a disc; null pointers are ignored, and `right` is not used.
/// @return 1.
VELQUAD_API int matFreeCircularShape2w(unsigned short** shape, double* distances, int* left, int* right);

/// Finds where the mean of an image under a disc is largest. At the border the mean is that of the cells within the
/// image. Among equal means the one with the largest y wins, within a row the one with the largest x.
/// @param peak   optional: receives the place; (-1, -1) for an empty image.
/// @param value  optional: receives the mean there; below 1e-7 it is 0, for an empty image -3.4028234663852886e38.
/// @return 1, or 0 when the tables of the disc cannot be made; nothing is stored then.
/// @par Cost  O(width * height * radius).
VELQUAD_API int matFindGlobalPeak2w(unsigned short** image, int width, int height, int radius, tagPOINT* peak,
                                    double* value);
/// @}

/// Sets all elements of an array that was made by `matAllocArray2v` to zero.
/// @return 0 for null, else 1.
VELQUAD_API int matZeroInitArray2v(void** rows);

#endif  // VELQUAD_ARRAY_H
