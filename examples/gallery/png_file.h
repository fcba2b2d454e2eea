/// @file
/// Writing PNG files.
#ifndef GALLERY_PNG_FILE_H
#define GALLERY_PNG_FILE_H

#include <string>

#include "canvas.h"

namespace gallery {

/// Writes a canvas as an 8-bit colour PNG.
/// @throws std::runtime_error when the file cannot be written.
void writePng(const std::string& path, Canvas& canvas);

}  // namespace gallery

#endif  // GALLERY_PNG_FILE_H
