// libpng reports an error by a long jump out of its own functions. A jump must not skip a destructor, so the
// work is cut in two kinds of function: those that call libpng own nothing but plain values and turn the jump
// into a result, and the others own all memory and never see a jump.
#include "image_io.h"

#include <png.h>

#include <csetjmp>
#include <cstdint>
#include <cstdio>
#include <memory>

namespace examples {
namespace {

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

constexpr std::size_t kSignatureSize = 8;

/// What libpng said: the error, and the first warning before it, which often tells more. It lives in the Session,
/// outside of every jump.
struct Message {
    char error[200] = "";
    char warning[200] = "";
};

extern "C" {

[[noreturn]] static void keepMessageAndJump(png_structp png, png_const_charp text) {
    auto* message = static_cast<Message*>(png_get_error_ptr(png));
    std::snprintf(message->error, sizeof message->error, "%s", text);
    png_longjmp(png, 1);
}

static void keepFirstWarning(png_structp png, png_const_charp text) {
    auto* message = static_cast<Message*>(png_get_error_ptr(png));
    if (message->warning[0] == '\0') std::snprintf(message->warning, sizeof message->warning, "%s", text);
}

static void readExactly(png_structp png, png_bytep bytes, png_size_t count) {
    auto* file = static_cast<std::FILE*>(png_get_io_ptr(png));
    if (std::fread(bytes, 1, count, file) != count) png_error(png, "the file ends too early");
}
}

/// The two records of libpng and the file that they work on.
class Session {
  public:
    enum class Direction { kRead, kWrite };

    Session(File file, Direction direction) : file_(std::move(file)), direction_(direction) {
        png_ = direction == Direction::kRead ? png_create_read_struct(PNG_LIBPNG_VER_STRING, &message_,
                                                                      keepMessageAndJump, keepFirstWarning)
                                             : png_create_write_struct(PNG_LIBPNG_VER_STRING, &message_,
                                                                       keepMessageAndJump, keepFirstWarning);
        if (png_ != nullptr) info_ = png_create_info_struct(png_);
        if (info_ == nullptr) {
            destroy();
            throw Failure("no memory for the PNG library");
        }
    }
    ~Session() { destroy(); }
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    png_structp png() const { return png_; }
    png_infop info() const { return info_; }
    std::FILE* file() const { return file_.get(); }
    std::string message() const {
        const std::string warning = message_.warning;
        return message_.error + (warning.empty() ? "" : " (" + warning + ")");
    }

  private:
    void destroy() {
        if (direction_ == Direction::kRead) {
            png_destroy_read_struct(&png_, &info_, nullptr);
        } else {
            png_destroy_write_struct(&png_, &info_);
        }
    }

    Message message_;
    File file_;
    Direction direction_;
    png_structp png_ = nullptr;
    png_infop info_ = nullptr;
};

/// Reads what stands before the pixels and asks for two 16-bit samples per pixel, grey and opacity, in the
/// byte order of the file (high byte first).
bool readHeader(png_structp png, png_infop info, std::FILE* file, png_uint_32* width, png_uint_32* height) {
    if (setjmp(png_jmpbuf(png)) != 0) return false;
    png_set_read_fn(png, file, readExactly);
    png_set_sig_bytes(png, static_cast<int>(kSignatureSize));
    png_set_user_limits(png, kMaximalSide, kMaximalSide);
    png_read_info(png, info);
    *width = png_get_image_width(png, info);
    *height = png_get_image_height(png, info);
    png_set_expand_16(png);
    if ((png_get_color_type(png, info) & PNG_COLOR_MASK_COLOR) != 0) {
        constexpr double kDefaultWeight = -1.0;
        png_set_rgb_to_gray(png, PNG_ERROR_ACTION_NONE, kDefaultWeight, kDefaultWeight);
    }
    png_set_add_alpha(png, 0xffff, PNG_FILLER_AFTER);
    png_set_interlace_handling(png);
    png_read_update_info(png, info);
    return true;
}

bool readRows(png_structp png, png_bytepp rows) {
    if (setjmp(png_jmpbuf(png)) != 0) return false;
    png_read_image(png, rows);
    png_read_end(png, nullptr);
    return true;
}

bool writeAll(png_structp png, png_infop info, std::FILE* file, png_uint_32 width, png_uint_32 height,
              int depth, int colourType, png_bytepp rows) {
    if (setjmp(png_jmpbuf(png)) != 0) return false;
    png_init_io(png, file);
    png_set_IHDR(png, info, width, height, depth, colourType, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_write_info(png, info);
    png_write_image(png, rows);
    png_write_end(png, info);
    return true;
}

/// Addresses of the rows of a gapless block.
std::vector<png_bytep> rowsOf(std::uint8_t* bytes, std::size_t rowSize, std::size_t height) {
    std::vector<png_bytep> rows(height);
    for (std::size_t y = 0; y < height; ++y)
        rows[y] = bytes + y * rowSize;
    return rows;
}

/// A grey value as seen on a white page.
std::uint16_t onWhite(unsigned int grey, unsigned int opacity) {
    constexpr std::uint64_t kWhite = 65535;
    const std::uint64_t mixed = std::uint64_t{grey} * opacity + kWhite * (kWhite - opacity);
    return static_cast<std::uint16_t>((mixed + kWhite / 2) / kWhite);
}

unsigned int bigEndian16(const std::uint8_t* bytes) {
    return (static_cast<unsigned int>(bytes[0]) << 8U) | bytes[1];
}

File open(const std::string& path, const char* mode) {
    return File(std::fopen(path.c_str(), mode));
}

void writeRows(const std::string& path, int width, int height, int depth, int colourType,
               std::vector<png_bytep> rows) {
    File file = open(path, "wb");
    if (file == nullptr) throw Failure("cannot write '" + path + "'");
    bool isWritten = false;
    std::string reason;
    {
        Session session(std::move(file), Session::Direction::kWrite);
        isWritten = writeAll(session.png(), session.info(), session.file(), static_cast<png_uint_32>(width),
                             static_cast<png_uint_32>(height), depth, colourType, rows.data()) &&
                    std::fflush(session.file()) == 0;
        reason = session.message();
    }
    if (!isWritten) {
        std::remove(path.c_str());
        throw Failure("cannot write '" + path + "'" + (reason.empty() ? "" : ": " + reason));
    }
}

}  // namespace

GreyImage readPng(const std::string& path) {
    File file = open(path, "rb");
    if (file == nullptr) throw Failure("cannot open '" + path + "'");
    std::uint8_t signature[kSignatureSize] = {};
    if (std::fread(signature, 1, kSignatureSize, file.get()) != kSignatureSize ||
        png_sig_cmp(signature, 0, kSignatureSize) != 0) {
        throw Failure("'" + path + "' is not a PNG image");
    }

    Session session(std::move(file), Session::Direction::kRead);
    png_uint_32 width = 0;
    png_uint_32 height = 0;
    if (!readHeader(session.png(), session.info(), session.file(), &width, &height)) {
        throw Failure("cannot read '" + path + "': " + session.message());
    }
    if (static_cast<long long>(width) * static_cast<long long>(height) > kMaximalPixels) {
        throw Failure("'" + path + "' is too large: " + std::to_string(width) + " x " +
                      std::to_string(height) + " pixels");
    }

    constexpr std::size_t kBytesPerPixel = 4;
    std::vector<std::uint8_t> bytes(std::size_t{width} * height * kBytesPerPixel);
    std::vector<png_bytep> rows = rowsOf(bytes.data(), std::size_t{width} * kBytesPerPixel, height);
    if (!readRows(session.png(), rows.data())) {
        throw Failure("cannot read '" + path + "': " + session.message());
    }

    GreyImage image(static_cast<int>(width), static_cast<int>(height));
    for (std::size_t i = 0; i < image.pixels.size(); ++i) {
        const std::uint8_t* pixel = bytes.data() + i * kBytesPerPixel;
        image.pixels[i] = onWhite(bigEndian16(pixel), bigEndian16(pixel + 2));
    }
    return image;
}

void writePng(const std::string& path, const ColourImage& image) {
    std::vector<std::uint8_t> bytes;
    bytes.reserve(image.pixels.size() * sizeof(Rgb));
    for (const Rgb& pixel : image.pixels)
        bytes.insert(bytes.end(), {pixel.red, pixel.green, pixel.blue});
    writeRows(path, image.width, image.height, 8, PNG_COLOR_TYPE_RGB,
              rowsOf(bytes.data(), static_cast<std::size_t>(image.width) * sizeof(Rgb),
                     static_cast<std::size_t>(image.height)));
}

void writePng(const std::string& path, const GreyImage& image) {
    std::vector<std::uint8_t> bytes;
    bytes.reserve(image.pixels.size() * 2);
    for (const unsigned int grey : image.pixels) {
        bytes.insert(bytes.end(),
                     {static_cast<std::uint8_t>(grey >> 8U), static_cast<std::uint8_t>(grey & 0xffU)});
    }
    writeRows(path, image.width, image.height, 16, PNG_COLOR_TYPE_GRAY,
              rowsOf(bytes.data(), static_cast<std::size_t>(image.width) * 2,
                     static_cast<std::size_t>(image.height)));
}

}  // namespace examples
