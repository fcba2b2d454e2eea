/// @file
/// PNG files in and out.
#ifndef EXAMPLES_IMAGE_IO_H
#define EXAMPLES_IMAGE_IO_H

#include <string>

#include "image.h"

namespace examples {

/// The longest side that is read. Coordinates of such an image still fit the library's 32-bit products.
inline constexpr int kMaximalSide = 16384;
/// The most pixels that are read: a file of a few bytes may claim any size.
inline constexpr long long kMaximalPixels = 32LL * 1024 * 1024;

/// Reads a PNG of any colour type and depth as grey values. Colours are weighted by their brightness, and what
/// is transparent shows a white page behind it.
/// @throws Failure for a file that is missing, not a PNG, damaged, cut short or too large.
GreyImage readPng(const std::string& path);

/// Writes an 8-bit colour PNG.
/// @throws Failure when the file cannot be written; no partial file stays behind.
void writePng(const std::string& path, const ColourImage& image);

/// Writes a 16-bit grey PNG. @throws Failure as above.
void writePng(const std::string& path, const GreyImage& image);

}  // namespace examples

#endif  // EXAMPLES_IMAGE_IO_H
