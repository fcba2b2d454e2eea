#include "tiles.h"

#include <velquad/array.h>

#include <algorithm>
#include <string>

#include "noise.h"

namespace examples::mosaic {
namespace {

constexpr double kJitter = 3.0;   ///< The largest distance of a tile from its place in a regular grid.
constexpr double kOverlap = 0.3;  ///< Of neighbouring tiles, as part of their width or height.
constexpr int kSmallestTile = 40;
constexpr double kWhite = 65535.0;

/// The length of `count` overlapping tiles that fill `length`.
int tileLength(int length, int count) {
    return static_cast<int>((length - 2 * kJitter) / (1.0 + (1.0 - kOverlap) * (count - 1)));
}

/// The library takes a picture as a table of its rows; one of these is a slice of a volume.
std::vector<void*> rowTable(Image<float>& image) {
    std::vector<void*> rows;
    for (int y = 0; y < image.height; ++y)
        rows.push_back(&image.at(0, y));
    return rows;
}

/// What the camera makes of grey values: a little brighter or darker, more or less contrast, noise.
GreyImage photographed(const Image<float>& scene, Noise& noise) {
    constexpr double kGainSpread = 0.05;
    constexpr double kOffsetSpread = 1200.0;
    constexpr double kNoise = 800.0;
    const double gain = 1.0 + kGainSpread * noise.next();
    const double offset = kOffsetSpread * noise.next();
    GreyImage image(scene.width, scene.height);
    for (std::size_t i = 0; i < image.pixels.size(); ++i) {
        const double grey = static_cast<double>(scene.pixels[i]) * gain + offset + kNoise * noise.bell();
        image.pixels[i] = static_cast<std::uint16_t>(std::clamp(grey, 0.0, kWhite) + 0.5);
    }
    return image;
}

}  // namespace

Image<float> asFloats(const GreyImage& picture) {
    Image<float> result(picture.width, picture.height);
    std::transform(picture.pixels.begin(), picture.pixels.end(), result.pixels.begin(),
                   [](std::uint16_t grey) { return static_cast<float>(grey); });
    return result;
}

Image<float> resampled(Image<float> picture, const tagPOINT2D& origin, int width, int height) {
    Image<float> result(width, height);
    std::vector<void*> sourceRows = rowTable(picture);
    std::vector<void*> resultRows = rowTable(result);
    void** source = sourceRows.data();
    void** destination = resultRows.data();
    // The matrix takes places of the picture to places of the result.
    const double matrix[4][4] = {
        {1.0, 0.0, 0.0, -origin.x}, {0.0, 1.0, 0.0, -origin.y}, {0.0, 0.0, 1.0, 0.0}, {0.0, 0.0, 0.0, 1.0}};
    constexpr DWORD kInterpolate = 0;
    if (matAffinTransformArray3v(static_cast<unsigned int>(picture.width),
                                 static_cast<unsigned int>(picture.height), 1, &source,
                                 static_cast<unsigned int>(width), static_cast<unsigned int>(height), 1,
                                 &destination, MAT_ARRAY_FLOAT, matrix, kInterpolate) == 0) {
        throw Failure("a picture cannot be resampled");
    }
    return result;
}

Image<float> blurred(Image<float> picture, double sigma) {
    std::vector<void*> rows = rowTable(picture);
    void** slice = rows.data();
    unsigned int size[3] = {static_cast<unsigned int>(picture.width),
                            static_cast<unsigned int>(picture.height), 1};
    double sigmas[3] = {sigma, sigma, 0.0};
    double radii[3] = {2.0, 2.0, 0.0};  // In sigmas.
    constexpr unsigned int kOneChannel = 1;
    constexpr int kInPlace = 0;
    if (matGaussianBlurFilter3v(&slice, size, MAT_ARRAY_FLOAT, kOneChannel, nullptr, sigmas, radii, kInPlace,
                                nullptr, nullptr) == 0) {
        throw Failure("a picture cannot be blurred");
    }
    return picture;
}

Tiles cutTiles(const GreyImage& picture, double stageError) {
    Tiles result;
    result.width = tileLength(picture.width, kTileColumns);
    result.height = tileLength(picture.height, kTileRows);
    result.stageError = stageError;
    if (std::min(result.width, result.height) < kSmallestTile) {
        throw Failure("the picture is too small: " + std::to_string(picture.width) + " x " +
                      std::to_string(picture.height) + " pixels");
    }
    const double stepX = (picture.width - 2 * kJitter - result.width) / (kTileColumns - 1);
    const double stepY = (picture.height - 2 * kJitter - result.height) / (kTileRows - 1);

    const Image<float> scene = asFloats(picture);
    Noise noise(20);
    const auto scattered = [&noise](double x, double y, double spread) {
        const double byX = spread * noise.next();
        return tagPOINT2D{x + byX, y + spread * noise.next()};
    };
    for (int row = 0; row < kTileRows; ++row) {
        for (int column = 0; column < kTileColumns; ++column) {
            Tile tile;
            tile.row = row;
            tile.column = column;
            tile.truth = scattered(kJitter + column * stepX, kJitter + row * stepY, kJitter);
            tile.stage = scattered(tile.truth.x, tile.truth.y, stageError);
            tile.image = photographed(resampled(scene, tile.truth, result.width, result.height), noise);
            result.tiles.push_back(std::move(tile));
        }
    }
    return result;
}

}  // namespace examples::mosaic
