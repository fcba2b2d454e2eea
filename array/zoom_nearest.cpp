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

/// The bytes of a source row that a strip of columns reads.
struct SourceSpan {
    std::size_t begin;
    std::size_t end;

    SourceSpan(const std::int32_t* index, std::size_t count, std::size_t indexedBytes)
        : begin(static_cast<std::size_t>(index[0]) * indexedBytes),
          end((static_cast<std::size_t>(index[count - 1]) + 1) * indexedBytes) {}

    /// Asks for a row ahead of its use. Strips are too short for the processor to see by itself where the next one
    /// begins.
    void prefetch(const void* sourceRows, unsigned int y) const {
        prefetchRange(rowAt(sourceRows, y) + begin, end - begin);
    }
};

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

}  // namespace

void zoomNearest(const Zoom& zoom, const CellRect& rect) {
    const auto copyRow = nearestKernels().copy[zoom.elementSize];
    NearestColumns columns{};
    forEachStrip(zoom, rect, kNearestStrip, [&](unsigned int left, std::size_t count) {
        placeColumns(zoom, left, count, columns);
        const SourceSpan span(columns.index, count, zoom.elementSize);
        StripWriter writer(zoom, rect, left, count);
        const auto top = static_cast<unsigned int>(rect.top);
        unsigned int sampleBefore = 0;
        for (unsigned int y = top; y <= static_cast<unsigned int>(rect.bottom); ++y) {
            const unsigned int sample = zoom.y.nearestSample(y);
            if (y != top && sample == sampleBefore) {
                writer.repeatRow(y);
            } else {
                if (y != static_cast<unsigned int>(rect.bottom))
                    span.prefetch(zoom.sourceRows, zoom.y.nearestSample(y + 1));
                writer.writeRow(
                    y, [&](unsigned char* to) { copyRow(rowAt(zoom.sourceRows, sample), columns, to); });
            }
            sampleBefore = sample;
        }
    });
}

}  // namespace velquad::array
