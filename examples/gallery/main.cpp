// Draws what functions of VELQUAD do, enlarged until single pixels show, as PNG files and a page around them.
//
//     gallery [DIR]        DIR: where to write, default "gallery"
//
// Exit status: 0 done, 1 failed with one line on standard error, 2 wrong usage.
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>

#include "pictures.h"
#include "png_file.h"

namespace gallery {
namespace {

struct Picture {
    const char* file;
    const char* title;
    const char* text;
    Canvas (*draw)();
};

constexpr Picture kPictures[] = {
    {"lines.png", "Raster lines",
     "matGetBresenhamLine from the middle in all directions: one pixel per row or column of the longer "
     "extent.",
     drawFanOfLines},
    {"there_and_back.png", "There and back",
     "CMatBresenhamLine from left to right (orange) and from right to left (blue); common pixels are grey. "
     "Where "
     "a line runs exactly between two pixels, the diagonal step is taken, so the way back differs.",
     drawThereAndBack},
    {"clipped_pixels.png", "Segments clipped to pixels",
     "matClipLine2L: the pixels of whole segments in grey, those of the clipped ones in colour. Edges belong "
     "to "
     "the rectangle. Ends move to whole pixels, so a clipped segment may leave the old pixels by one.",
     drawClippedPixels},
    {"clipped_segments.png", "Segments clipped to a rectangle of doubles",
     "matClipLine2D: each end that lies outside moves along its segment to the edge.", drawClippedSegments},
};

void writePage(const std::string& path) {
    std::ofstream page(path);
    page << "<!doctype html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n<title>VELQUAD "
            "gallery</title>\n"
            "<style>\n"
            "body { font: 16px/1.5 sans-serif; max-width: 60rem; margin: 2rem auto; padding: 0 1rem; }\n"
            "img { max-width: 100%; }\nfigure { margin: 2rem 0; }\n"
            "</style>\n</head>\n<body>\n<h1>Gallery</h1>\n";
    for (const Picture& picture : kPictures) {
        page << "<h2>" << picture.title << "</h2>\n<figure>\n<img src=\"" << picture.file << "\" alt=\""
             << picture.title << "\">\n<figcaption>" << picture.text << "</figcaption>\n</figure>\n";
    }
    page << "</body>\n</html>\n";
    page.close();
    if (!page) throw std::runtime_error("cannot write '" + path + "'");
}

void run(const std::filesystem::path& directory) {
    std::filesystem::create_directories(directory);
    for (const Picture& picture : kPictures) {
        Canvas canvas = picture.draw();
        writePng((directory / picture.file).string(), canvas);
    }
    writePage((directory / "index.html").string());
}

}  // namespace
}  // namespace gallery

int main(int argc, char** argv) {
    if (argc > 2 || (argc == 2 && argv[1][0] == '-')) {
        std::cerr << "usage: gallery [DIR]\n";
        return 2;
    }
    try {
        gallery::run(argc == 2 ? argv[1] : "gallery");
    } catch (const std::exception& error) {
        std::cerr << "gallery: " << error.what() << '\n';
        return 1;
    }
    return 0;
}
