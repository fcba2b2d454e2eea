#include "pictures.h"

#include <velquad/array.h>

#include <algorithm>
#include <cmath>

#include "ink.h"

namespace examples::mosaic {
namespace {

constexpr Rgb kPage{255, 255, 255};
constexpr Rgb kFrameColour{120, 126, 134};
constexpr Rgb kNumberColour{255, 255, 255};
constexpr Rgb kHaloColour{60, 66, 74};

int zoomFor(int width, int height) {
    constexpr int kWantedSide = 1300;
    constexpr int kLargest = 8;
    return std::clamp(kWantedSide / std::max(width, height), 1, kLargest);
}

GreyImage cropped(const GreyImage& image, const Frame& part) {
    GreyImage result(part.width, part.height);
    for (int y = 0; y < part.height; ++y) {
        for (int x = 0; x < part.width; ++x) {
            const int fromX = std::clamp(part.left + x, 0, image.width - 1);
            const int fromY = std::clamp(part.top + y, 0, image.height - 1);
            result.at(x, y) = image.at(fromX, fromY);
        }
    }
    return result;
}

/// Enlarges by the library, evenly between the pixels. Pixel (x, y) comes to lie at (x, y) times the zoom. Behind the
/// last pixels there is nothing to go to, so that these only begin.
GreyImage enlarged(const GreyImage& image, int zoom) {
    GreyImage result(image.width * zoom, image.height * zoom);
    std::vector<const void*> sourceRows;
    std::vector<void*> resultRows;
    for (int y = 0; y < image.height; ++y)
        sourceRows.push_back(&image.at(0, y));
    for (int y = 0; y < result.height; ++y)
        resultRows.push_back(&result.at(0, y));
    constexpr unsigned int kBilinear = 2;
    matZoomArray2v(static_cast<unsigned int>(image.width), static_cast<unsigned int>(image.height),
                   sourceRows.data(), static_cast<unsigned int>(result.width),
                   static_cast<unsigned int>(result.height), resultRows.data(), MAT_ARRAY_UINT16, kBilinear);
    return cropped(result, {0, 0, result.width - zoom + 1, result.height - zoom + 1});
}

void paste(ColourImage& page, const ColourImage& image, int left, int top) {
    for (int y = 0; y < image.height; ++y)
        std::copy_n(&image.at(0, y), image.width, &page.at(left, top + y));
}

/// Numbers that are laid on a page together.
class Numbers {
  public:
    explicit Numbers(ColourImage& page)
        : page_(page), halo_(page.width, page.height), digits_(page.width, page.height) {}

    void add(std::size_t value, double x, double y) {
        constexpr double kHeight = 18.0;
        halo_.number(value, x, y, kHeight, 6.0);
        digits_.number(value, x, y, kHeight, 2.5);
    }
    void draw() {
        blend(page_, halo_, kHaloColour);
        blend(page_, digits_, kNumberColour);
    }

  private:
    ColourImage& page_;
    InkLayer halo_;
    InkLayer digits_;
};

}  // namespace

Frame frameAround(const Tiles& tiles, const std::vector<std::vector<tagPOINT2D>>& placings) {
    tagPOINT2D low = placings.front().front();
    tagPOINT2D high = low;
    for (const std::vector<tagPOINT2D>& places : placings) {
        for (const tagPOINT2D& place : places) {
            low = {std::min(low.x, place.x), std::min(low.y, place.y)};
            high = {std::max(high.x, place.x), std::max(high.y, place.y)};
        }
    }
    Frame frame;
    frame.left = static_cast<int>(std::floor(low.x));
    frame.top = static_cast<int>(std::floor(low.y));
    frame.width = static_cast<int>(std::ceil(high.x)) + tiles.width - frame.left;
    frame.height = static_cast<int>(std::ceil(high.y)) + tiles.height - frame.top;
    return frame;
}

GreyImage stitched(const Tiles& tiles, const std::vector<tagPOINT2D>& places, const Frame& frame) {
    Image<double> sums(frame.width, frame.height);
    Image<double> weights(frame.width, frame.height);
    for (std::size_t i = 0; i < places.size(); ++i) {
        // The pixels of the frame that the tile reaches, and where these lie in the tile.
        const int left = static_cast<int>(std::ceil(places[i].x));
        const int top = static_cast<int>(std::ceil(places[i].y));
        const tagPOINT2D origin{left - places[i].x, top - places[i].y};
        const Image<float> part =
            resampled(asFloats(tiles.tiles[i].image), origin, tiles.width, tiles.height);
        for (int y = 0; y < part.height; ++y) {
            const double toEdgeY = std::min(origin.y + y, tiles.height - 1 - origin.y - y);
            for (int x = 0; x < part.width; ++x) {
                const double toEdgeX = std::min(origin.x + x, tiles.width - 1 - origin.x - x);
                if (toEdgeX < 0.0 || toEdgeY < 0.0) continue;
                const double weight = (toEdgeX + 1.0) * (toEdgeY + 1.0);
                const int frameX = left + x - frame.left;
                const int frameY = top + y - frame.top;
                sums.at(frameX, frameY) += weight * static_cast<double>(part.at(x, y));
                weights.at(frameX, frameY) += weight;
            }
        }
    }
    constexpr std::uint16_t kWhite = 65535;
    GreyImage result(frame.width, frame.height, kWhite);
    for (std::size_t i = 0; i < result.pixels.size(); ++i) {
        if (weights.pixels[i] > 0.0)
            result.pixels[i] = static_cast<std::uint16_t>(sums.pixels[i] / weights.pixels[i] + 0.5);
    }
    return result;
}

ColourImage drawTiles(const Tiles& tiles) {
    constexpr int kGap = 12;
    const int zoom = zoomFor(kTileColumns * tiles.width, kTileRows * tiles.height);
    const int stepX = (tiles.width - 1) * zoom + 1 + kGap;
    const int stepY = (tiles.height - 1) * zoom + 1 + kGap;
    ColourImage page(kTileColumns * stepX + kGap, kTileRows * stepY + kGap, kPage);
    Numbers numbers(page);
    for (std::size_t i = 0; i < tiles.tiles.size(); ++i) {
        const Tile& tile = tiles.tiles[i];
        const int left = kGap + tile.column * stepX;
        const int top = kGap + tile.row * stepY;
        paste(page, coloured(enlarged(tile.image, zoom)), left, top);
        numbers.add(i + 1, left + 24.0, top + 20.0);
    }
    numbers.draw();
    return page;
}

ColourImage drawLarge(const GreyImage& image) {
    return coloured(enlarged(image, zoomFor(image.width, image.height)));
}

ColourImage drawDetails(const Tiles& tiles, const Frame& frame, const std::vector<tagPOINT2D>& places,
                        const std::vector<Pair>& pairs, const GreyImage& before, const GreyImage& after) {
    constexpr int kGap = 12;
    constexpr int kZoom = 7;
    constexpr int kColumns = 90;
    constexpr int kRows = 60;
    constexpr int kWidth = (kColumns - 1) * kZoom + 1;
    constexpr int kHeight = (kRows - 1) * kZoom + 1;
    ColourImage page(2 * kWidth + kGap, static_cast<int>(pairs.size()) * (kHeight + kGap) - kGap, kPage);
    int top = 0;
    for (const Pair& pair : pairs) {
        const tagPOINT2D& first = places[pair.first];
        const tagPOINT2D& second = places[pair.second];
        const tagPOINT2D middle{(first.x + second.x) / 2.0 + tiles.middleX(),
                                (first.y + second.y) / 2.0 + tiles.middleY()};
        const Frame part{static_cast<int>(middle.x) - frame.left - kColumns / 2,
                         static_cast<int>(middle.y) - frame.top - kRows / 2, kColumns, kRows};
        paste(page, coloured(enlarged(cropped(before, part), kZoom)), 0, top);
        paste(page, coloured(enlarged(cropped(after, part), kZoom)), kWidth + kGap, top);
        top += kHeight + kGap;
    }
    return page;
}

ColourImage drawVectors(const Tiles& tiles, const Frame& frame, const std::vector<tagPOINT2D>& places,
                        const GreyImage& image, const std::vector<Vectors>& vectors, double magnification) {
    constexpr double kFade = 0.72;
    constexpr double kLineWidth = 3.0;
    constexpr double kHeadLength = 11.0;
    const int zoom = zoomFor(image.width, image.height);
    ColourImage page = coloured(enlarged(image, zoom), kFade);
    const auto onPage = [&](double x, double y) {
        return tagPOINT2D{(x - frame.left) * zoom + 0.5, (y - frame.top) * zoom + 0.5};
    };
    InkLayer frames(page.width, page.height);
    for (const tagPOINT2D& place : places) {
        const tagPOINT2D low = onPage(place.x, place.y);
        const tagPOINT2D high = onPage(place.x + tiles.width - 1, place.y + tiles.height - 1);
        frames.frame(low.x, low.y, high.x, high.y, 1.2);
    }
    blend(page, frames, kFrameColour);
    for (const Vectors& set : vectors) {
        InkLayer halo(page.width, page.height);
        InkLayer arrows(page.width, page.height);
        for (std::size_t i = 0; i < set.from.size(); ++i) {
            const tagPOINT2D from = onPage(set.from[i].x, set.from[i].y);
            const tagPOINT2D to{from.x + set.by[i].x * magnification * zoom,
                                from.y + set.by[i].y * magnification * zoom};
            halo.arrow(from, to, kLineWidth + 3.0, kHeadLength);
            arrows.arrow(from, to, kLineWidth, kHeadLength);
        }
        blend(page, halo, kPage);
        blend(page, arrows, set.colour);
    }
    Numbers numbers(page);
    for (std::size_t i = 0; i < places.size(); ++i) {
        const tagPOINT2D low = onPage(places[i].x, places[i].y);
        const Tile& tile = tiles.tiles[i];
        // In the corner of the tile that no other one covers, if there is one.
        const double inX = tile.column == 0 ? 0.08 : 0.38;
        const double inY = tile.row == 0 ? 0.1 : 0.4;
        numbers.add(i + 1, low.x + inX * tiles.width * zoom, low.y + inY * tiles.height * zoom);
    }
    numbers.draw();
    return page;
}

}  // namespace examples::mosaic
