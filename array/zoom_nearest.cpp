// Zoom by nearest samples. What belongs to the columns of a strip is computed once; rows of cells that show the same
// source row are copies of each other.
#include <cstdint>

#include "array/nearest_kernels.h"
#include "array/zoom_job.h"
#include "array/zoom_strip.h"
#include "frame/kernels.h"

namespace velquad::array {

VELQUAD_DEFINE_KERNELS(NearestKernels, kNearestKernels, nearestKernels)

namespace {

/// Fills in where the columns of a strip lie.
void placeColumns(const Zoom& zoom, unsigned int left, std::size_t count, NearestColumns& columns) {
    columns.count = count;
    columns.lastIndex = static_cast<std::int32_t>(zoom.x.sourceSize - 1);
    columns.spanOfGroup = 0;
    for (std::size_t i = 0; i < count; ++i) {
        columns.index[i] =
            static_cast<std::int32_t>(zoom.x.nearestSample(left + static_cast<unsigned int>(i)));
        const std::int32_t offset = columns.index[i] - columns.index[i / kNearestGroup * kNearestGroup];
        columns.offset[i] = static_cast<std::uint16_t>(offset);
        if (offset > columns.spanOfGroup) columns.spanOfGroup = offset;
    }
}

/// Fills in from where the bytes of groups of pixels of three bytes come.
void placePixels(NearestColumns& columns) {
    constexpr unsigned char kElsewhere = 128;
    columns.spanOfPair = 0;
    for (std::size_t i = 0; i < columns.count; ++i) {
        const std::int32_t offset = columns.index[i] - columns.index[i / 2 * 2];
        if (offset > columns.spanOfPair) columns.spanOfPair = offset;
    }
    for (std::size_t i = 0; i < columns.count / kPixelGroup * kPixelGroup; i += kPixelGroup) {
        for (std::size_t k = 0; k < 16; ++k) {
            // The last four bytes of a vector are of no use.
            const std::size_t column = k < 12 ? i + k / 3 : i;
            const std::int32_t offset = columns.index[column] - columns.index[column / 2 * 2];
            const auto byte = static_cast<unsigned char>(3 * offset + static_cast<std::int32_t>(k % 3));
            const bool isSecond = column >= i + 2;
            columns.bytes[0][4 * i + k] = isSecond ? kElsewhere : byte;
            columns.bytes[1][4 * i + k] = isSecond ? byte : kElsewhere;
        }
    }
}

}  // namespace

void zoomNearest(const Zoom& zoom, const CellRect& rect) {
    const auto copyRow = nearestKernels().copy[zoom.elementSize];
    NearestColumns columns;
    forEachStrip(zoom, rect, kNearestStrip, [&](unsigned int left, std::size_t count) {
        placeColumns(zoom, left, count, columns);
        if (zoom.elementSize == 3) placePixels(columns);
        StripWriter writer(zoom, rect, left, count);
        const auto top = static_cast<unsigned int>(rect.top);
        unsigned int sampleBefore = 0;
        for (unsigned int y = top; y <= static_cast<unsigned int>(rect.bottom); ++y) {
            const unsigned int sample = zoom.y.nearestSample(y);
            if (y != top && sample == sampleBefore) {
                writer.repeatRow(y);
            } else {
                const unsigned int next =
                    y != static_cast<unsigned int>(rect.bottom) ? zoom.y.nearestSample(y + 1) : sample;
                const NearestSource source = {rowAt(zoom.sourceRows, sample), rowAt(zoom.sourceRows, next)};
                writer.writeRow(y, [&](unsigned char* to) { copyRow(source, columns, to); });
            }
            sampleBefore = sample;
        }
    });
}

}  // namespace velquad::array
