// The simplified interface of libpng reports errors by its result, so no jump crosses a destructor.
#include "png_file.h"

#include <png.h>

#include <stdexcept>

namespace gallery {

void writePng(const std::string& path, Canvas& canvas) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(canvas.width());
    image.height = static_cast<png_uint_32>(canvas.height());
    image.format = PNG_FORMAT_RGB;
    constexpr int kKeep8Bit = 0;
    constexpr png_int_32 kGapless = 0;
    if (png_image_write_to_file(&image, path.c_str(), kKeep8Bit, canvas.pixels().data(), kGapless, nullptr) ==
        0) {
        throw std::runtime_error("cannot write '" + path + "': " + image.message);
    }
}

}  // namespace gallery
