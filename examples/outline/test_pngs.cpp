// Writes pictures for test.sh: the phantom in every colour type and depth, pictures without objects, and files
// that are broken each in its own way.
//
//     make_test_pngs DIRECTORY
#include <png.h>

#include <csetjmp>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <vector>

#include "image_io.h"
#include "phantom.h"
#include "program.h"

namespace examples::outline {
namespace {

/// One kind of PNG, and how a grey value becomes the samples of a pixel in it.
struct Kind {
    const char* name;
    int colourType;
    int depth;
    int interlace;
    void (*append)(std::vector<std::uint8_t>& bytes, unsigned int grey);
};

std::uint8_t highByte(unsigned int grey) {
    return static_cast<std::uint8_t>(grey >> 8U);
}
std::uint8_t lowByte(unsigned int grey) {
    return static_cast<std::uint8_t>(grey & 0xffU);
}

void appendGrey8(std::vector<std::uint8_t>& bytes, unsigned int grey) {
    bytes.push_back(highByte(grey));
}
void appendGrey16(std::vector<std::uint8_t>& bytes, unsigned int grey) {
    bytes.insert(bytes.end(), {highByte(grey), lowByte(grey)});
}
void appendGreyAlpha8(std::vector<std::uint8_t>& bytes, unsigned int grey) {
    bytes.insert(bytes.end(), {highByte(grey), 255});
}
/// Black behind a veil: what shows of the white page is the grey value.
void appendVeil16(std::vector<std::uint8_t>& bytes, unsigned int grey) {
    const unsigned int opacity = 65535U - grey;
    bytes.insert(bytes.end(), {0, 0, highByte(opacity), lowByte(opacity)});
}
void appendRgb8(std::vector<std::uint8_t>& bytes, unsigned int grey) {
    bytes.insert(bytes.end(), 3, highByte(grey));
}
void appendRgb16(std::vector<std::uint8_t>& bytes, unsigned int grey) {
    for (int i = 0; i < 3; ++i)
        appendGrey16(bytes, grey);
}
void appendRgba8(std::vector<std::uint8_t>& bytes, unsigned int grey) {
    appendRgb8(bytes, grey);
    bytes.push_back(255);
}
void appendPalette8(std::vector<std::uint8_t>& bytes, unsigned int grey) {
    bytes.push_back(
        static_cast<std::uint8_t>(255U - highByte(grey)));  // The palette runs from white to black.
}

constexpr Kind kKinds[] = {
    {"grey8", PNG_COLOR_TYPE_GRAY, 8, PNG_INTERLACE_NONE, appendGrey8},
    {"grey8_interlaced", PNG_COLOR_TYPE_GRAY, 8, PNG_INTERLACE_ADAM7, appendGrey8},
    {"grey16", PNG_COLOR_TYPE_GRAY, 16, PNG_INTERLACE_NONE, appendGrey16},
    {"greyalpha8", PNG_COLOR_TYPE_GRAY_ALPHA, 8, PNG_INTERLACE_NONE, appendGreyAlpha8},
    {"veil16", PNG_COLOR_TYPE_GRAY_ALPHA, 16, PNG_INTERLACE_NONE, appendVeil16},
    {"rgb8", PNG_COLOR_TYPE_RGB, 8, PNG_INTERLACE_NONE, appendRgb8},
    {"rgb16", PNG_COLOR_TYPE_RGB, 16, PNG_INTERLACE_ADAM7, appendRgb16},
    {"rgba8", PNG_COLOR_TYPE_RGB_ALPHA, 8, PNG_INTERLACE_NONE, appendRgba8},
    {"palette8", PNG_COLOR_TYPE_PALETTE, 8, PNG_INTERLACE_NONE, appendPalette8},
};

/// Calls libpng and owns nothing: its error jump ends here.
bool writeAll(png_structp png, png_infop info, std::FILE* file, const Kind& kind, png_uint_32 width,
              png_uint_32 height, png_const_colorp palette, png_bytepp rows) {
    if (setjmp(png_jmpbuf(png)) != 0) return false;
    png_init_io(png, file);
    png_set_IHDR(png, info, width, height, kind.depth, kind.colourType, kind.interlace,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    if (kind.colourType == PNG_COLOR_TYPE_PALETTE) png_set_PLTE(png, info, palette, 256);
    png_write_info(png, info);
    png_write_image(png, rows);
    png_write_end(png, info);
    return true;
}

void writeKind(const std::string& path, const GreyImage& image, const Kind& kind) {
    std::vector<std::uint8_t> bytes;
    for (const unsigned int grey : image.pixels)
        kind.append(bytes, grey);
    const std::size_t rowSize = bytes.size() / static_cast<std::size_t>(image.height);
    std::vector<png_bytep> rows;
    for (std::size_t y = 0; y < static_cast<std::size_t>(image.height); ++y)
        rows.push_back(&bytes[y * rowSize]);
    std::vector<png_color> palette;
    for (int i = 255; i >= 0; --i) {
        const auto grey = static_cast<png_byte>(i);
        palette.push_back({grey, grey, grey});
    }

    std::FILE* file = std::fopen(path.c_str(), "wb");
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png != nullptr ? png_create_info_struct(png) : nullptr;
    const bool isWritten = file != nullptr && info != nullptr &&
                           writeAll(png, info, file, kind, static_cast<png_uint_32>(image.width),
                                    static_cast<png_uint_32>(image.height), palette.data(), rows.data());
    png_destroy_write_struct(&png, &info);
    if (file != nullptr) std::fclose(file);
    if (!isWritten) throw Failure("cannot write '" + path + "'");
}

void writeBytes(const std::string& path, const std::string& bytes) {
    std::ofstream file(path, std::ios::binary);
    file << bytes;
    if (!file.flush()) throw Failure("cannot write '" + path + "'");
}

std::string readBytes(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::string bigEndian(unsigned int value) {
    std::string bytes;
    for (unsigned int shift = 32; shift > 0; shift -= 8)
        bytes += static_cast<char>(value >> (shift - 8) & 0xffU);
    return bytes;
}

/// The checksum of a PNG chunk, ISO 3309.
unsigned int crc32Of(const std::string& bytes) {
    unsigned int crc = 0xffffffffU;
    for (const char c : bytes) {
        crc ^= static_cast<unsigned char>(c);
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc >> 1U) ^ ((crc & 1U) != 0 ? 0xedb88320U : 0U);
    }
    return crc ^ 0xffffffffU;
}

std::string chunk(const std::string& name, const std::string& data) {
    return bigEndian(static_cast<unsigned int>(data.size())) + name + data + bigEndian(crc32Of(name + data));
}

/// A file that claims any size and has no pixels, with right checksums.
std::string withoutPixels(unsigned int width, unsigned int height) {
    const std::string header = bigEndian(width) + bigEndian(height) + std::string("\x08\x00\x00\x00\x00", 5);
    return "\x89PNG\r\n\x1a\n" + chunk("IHDR", header) + chunk("IDAT", "") + chunk("IEND", "");
}

void writeAllPictures(const std::filesystem::path& directory) {
    const auto path = [&directory](const std::string& name) {
        return (directory / (name + ".png")).string();
    };
    GreyImage phantom = drawPhantom();
    for (std::uint16_t& grey : phantom.pixels) {
        grey = static_cast<std::uint16_t>(highByte(grey) * 257U);  // What 8 bits can hold, so that all agree.
    }
    for (const Kind& kind : kKinds)
        writeKind(path("good_" + std::string(kind.name)), phantom, kind);

    // Lone objects in the smallest sizes: less than a curve needs, and one pixel.
    GreyImage specks(40, 30, 5000);
    for (int y = 5; y < 8; ++y) {
        for (int x = 5; x < 8; ++x)
            specks.at(x, y) = 60000;
    }
    for (int x = 10; x < 35; ++x)
        specks.at(x, 20) = 60000;
    specks.at(30, 5) = 60000;
    writePng(path("specks"), specks);

    writePng(path("empty_black"), GreyImage(64, 48, 0));
    writePng(path("empty_one_pixel"), GreyImage(1, 1, 30000));

    const std::string good = readBytes(path("good_grey8"));
    writeBytes(path("bad_empty_file"), "");
    writeBytes(path("bad_text"), "This is not a picture.\n");
    writeBytes(path("bad_signature_only"), good.substr(0, 8));
    writeBytes(path("bad_cut_header"), good.substr(0, 20));
    writeBytes(path("bad_cut_pixels"), good.substr(0, good.size() / 2));
    writeBytes(path("bad_cut_end"), good.substr(0, good.size() - 6));
    std::string flipped = good;
    flipped[good.size() / 2] = static_cast<char>(flipped[good.size() / 2] ^ 0x10);
    writeBytes(path("bad_flipped_bit"), flipped);
    writeBytes(path("bad_no_width"), withoutPixels(0, 100));
    writeBytes(path("bad_huge_width"), withoutPixels(0x7fffffff, 1));
    writeBytes(path("bad_huge_sides"), withoutPixels(0x7fffffff, 0x7fffffff));
    writeBytes(path("bad_negative_side"), withoutPixels(0x80000001, 10));
    writeBytes(path("bad_no_pixels"), withoutPixels(100, 100));
    writeBytes(path("bad_many_pixels"), withoutPixels(16384, 16384));
}

}  // namespace
}  // namespace examples::outline

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: make_test_pngs DIRECTORY\n";
        return 2;
    }
    return examples::runProgram("make_test_pngs", [&] { examples::outline::writeAllPictures(argv[1]); });
}
