// A photograph from a file becomes a scene. All is done in whole numbers, so it is the same on every system.
#include "photograph.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

#include "image_io.h"

namespace gallery {
namespace {

/// A part of an image.
struct Part {
    int left;
    int top;
    int width;
    int height;
};

/// The largest part around the middle that has the shape of a scene.
Part middleOf(const examples::GreyImage& photo) {
    const int width = std::min(photo.width, photo.height * kSceneWidth / kSceneHeight);
    const int height = std::min(photo.height, photo.width * kSceneHeight / kSceneWidth);
    return {(photo.width - width) / 2, (photo.height - height) / 2, width, height};
}

/// How much of the old pixel `from` the new pixel `to` covers along one side, where `oldCount` pixels become
/// `newCount`: 0 to `newCount`, for a whole one.
std::int64_t covered(int from, int to, int oldCount, int newCount) {
    return std::min((from + 1) * newCount, (to + 1) * oldCount) - std::max(from * newCount, to * oldCount);
}

/// The mean of what a pixel of the scene covers. The library's zooms take samples instead; those would show patterns
/// that are not in the photograph.
unsigned char meanLevel(const examples::GreyImage& photo, const Part& part, int x, int y) {
    std::int64_t sum = 0;
    for (int v = y * part.height / kSceneHeight; v * kSceneHeight < (y + 1) * part.height; ++v) {
        for (int u = x * part.width / kSceneWidth; u * kSceneWidth < (x + 1) * part.width; ++u) {
            sum += covered(u, x, part.width, kSceneWidth) * covered(v, y, part.height, kSceneHeight) *
                   photo.at(part.left + u, part.top + v);
        }
    }
    constexpr std::int64_t kStep = 65535 / 255;  // between grey levels of 8 bits
    const std::int64_t whole = std::int64_t{part.width} * part.height * kStep;
    return static_cast<unsigned char>((sum + whole / 2) / whole);
}

GreyImage reduced(const examples::GreyImage& photo) {
    const Part part = middleOf(photo);
    GreyImage image(kSceneWidth, kSceneHeight);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            image.at(x, y) = meanLevel(photo, part, x, y);
    }
    return image;
}

/// The sum of differences between neighbours in the detail whose upper left corner this is.
int roughness(const GreyImage& image, int left, int top) {
    int sum = 0;
    for (int y = top; y < top + kDetailHeight - 1; ++y) {
        for (int x = left; x < left + kDetailWidth - 1; ++x) {
            sum +=
                std::abs(image.at(x + 1, y) - image.at(x, y)) + std::abs(image.at(x, y + 1) - image.at(x, y));
        }
    }
    return sum;
}

/// Whether grey levels are still apart with the lowest contrast that the pictures show.
bool hasContrast(const GreyImage& image) {
    constexpr int kLeastRange = 3;
    int least = 255;
    int greatest = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            least = std::min<int>(least, image.at(x, y));
            greatest = std::max<int>(greatest, image.at(x, y));
        }
    }
    return greatest - least >= kLeastRange;
}

RECT roughestDetail(const GreyImage& image) {
    int most = -1;
    RECT detail{};
    for (int top = 0; top + kDetailHeight <= image.height(); ++top) {
        for (int left = 0; left + kDetailWidth <= image.width(); ++left) {
            const int here = roughness(image, left, top);
            if (here <= most) continue;
            most = here;
            detail = {left, top, left + kDetailWidth - 1, top + kDetailHeight - 1};
        }
    }
    return detail;
}

}  // namespace

Scene photographedScene(const std::string& path) {
    const examples::GreyImage photo = examples::readPng(path);
    if (photo.width < kSceneWidth || photo.height < kSceneHeight) {
        throw examples::Failure("'" + path + "' is too small: at least " + std::to_string(kSceneWidth) +
                                " x " + std::to_string(kSceneHeight) + " pixels are needed");
    }
    const GreyImage image = reduced(photo);
    if (!hasContrast(image)) throw examples::Failure("'" + path + "' shows nothing but one grey");
    return {image, roughestDetail(image), 255.0};
}

}  // namespace gallery
