// Zoom by nearest, bilinear and cubic interpolation.
//
// The destination is cut into rectangles by how much of a position's neighbourhood the source has, and each rectangle is
// filled by the best interpolation that needs no sample outside.
#include <cstdint>

#include "array/array_2d.h"
#include "array/element.h"
#include "array/roi.h"
#include "array/stream_kernels.h"
#include "array/zoom_job.h"
#include "velquad/array.h"

using velquad::array::Axis;
using velquad::array::CellRect;
using velquad::array::kStreamedBytes;
using velquad::array::streamKernels;
using velquad::array::Zoom;
using velquad::array::zoomBilinear;
using velquad::array::zoomCubic;
using velquad::array::zoomNearest;

namespace {

constexpr unsigned int kBilinearFlag = 2;
constexpr unsigned int kCubicFlag = 4;

/// The cells that have all samples for bilinear interpolation.
CellRect bilinearRect(const Zoom& zoom) {
    return {0, 0, zoom.x.lastWithSamplesBehind(1.0), zoom.y.lastWithSamplesBehind(1.0)};
}

/// The cells that have all samples for cubic interpolation.
CellRect cubicRect(const Zoom& zoom) {
    return {zoom.x.firstWithSampleBefore(), zoom.y.firstWithSampleBefore(), zoom.x.lastWithSamplesBehind(2.0),
            zoom.y.lastWithSamplesBehind(2.0)};
}

/// Nearest samples where the source ends right of or below a bilinear rectangle.
void zoomNearestAround(const Zoom& zoom, const CellRect& bilinear) {
    zoomNearest(zoom, {bilinear.right + 1, 0, zoom.x.lastCell(), zoom.y.lastCell()});
    zoomNearest(zoom, {0, bilinear.bottom + 1, bilinear.right, zoom.y.lastCell()});
}

/// Bilinear interpolation above, below, left and right of a cubic rectangle.
void zoomBilinearAround(const Zoom& zoom, const CellRect& cubic, const CellRect& bilinear) {
    zoomBilinear(zoom, {0, 0, bilinear.right, cubic.top - 1});
    zoomBilinear(zoom, {0, cubic.bottom + 1, bilinear.right, bilinear.bottom});
    zoomBilinear(zoom, {0, cubic.top, cubic.left - 1, cubic.bottom});
    zoomBilinear(zoom, {cubic.right + 1, cubic.top, bilinear.right, cubic.bottom});
}

void zoomByFlags(const Zoom& zoom, unsigned int flags) {
    if ((flags & (kCubicFlag | kBilinearFlag)) == 0) {
        zoomNearest(zoom, {0, 0, zoom.x.lastCell(), zoom.y.lastCell()});
        return;
    }
    const CellRect bilinear = bilinearRect(zoom);
    if ((flags & kCubicFlag) != 0) {
        const CellRect cubic = cubicRect(zoom);
        zoomCubic(zoom, cubic);
        zoomBilinearAround(zoom, cubic, bilinear);
    } else {
        zoomBilinear(zoom, bilinear);
    }
    zoomNearestAround(zoom, bilinear);
}

/// Rows that hold more values than this cannot be indexed by the kernels.
constexpr std::uint64_t kMaxValuesPerRow = 0x7FFFFFFFU;

void zoomArray(unsigned int srcWidth, unsigned int srcHeight, const void* srcRows, unsigned int dstWidth,
               unsigned int dstHeight, const void* dstRows, unsigned int type, unsigned int flags) {
    if (srcWidth == 0 || srcHeight == 0 || dstWidth == 0 || dstHeight == 0) return;
    if (srcRows == nullptr || dstRows == nullptr) return;
    velquad::array::dispatchElement(type, [&]<class ElementType>(ElementType /*element*/) {
        if (std::uint64_t{srcWidth} * ElementType::kComponents > kMaxValuesPerRow) return;
        const Zoom zoom{Axis(srcWidth, dstWidth),
                        Axis(srcHeight, dstHeight),
                        srcRows,
                        dstRows,
                        ElementType::kBytes,
                        ElementType::kComponents == 1 ? ElementType::kType : MAT_ARRAY_UINT8,
                        ElementType::kComponents,
                        std::size_t{dstWidth} * dstHeight >= kStreamedBytes / ElementType::kBytes};
        zoomByFlags(zoom, flags);
        if (zoom.isStreamed) streamKernels().finish();
    });
}

unsigned int widthOf(const RECT* roi, unsigned int width) {
    return roi == nullptr ? width : static_cast<unsigned int>(roi->right - roi->left) + 1;
}

unsigned int heightOf(const RECT* roi, unsigned int height) {
    return roi == nullptr ? height : static_cast<unsigned int>(roi->bottom - roi->top) + 1;
}

int zoomRegions(unsigned int srcWidth, unsigned int srcHeight, const void* srcRows, const RECT* srcRoi,
                unsigned int dstWidth, unsigned int dstHeight, const void* dstRows, const RECT* dstRoi,
                unsigned int type, unsigned int flags) {
    using velquad::array::mapRegion;
    const auto source =
        mapRegion(srcRows, static_cast<int>(srcWidth), static_cast<int>(srcHeight), type, 1, srcRoi);
    const auto destination =
        mapRegion(dstRows, static_cast<int>(dstWidth), static_cast<int>(dstHeight), type, 1, dstRoi);
    if (source == nullptr || destination == nullptr) return 0;
    zoomArray(widthOf(srcRoi, srcWidth), heightOf(srcRoi, srcHeight), source.get(), widthOf(dstRoi, dstWidth),
              heightOf(dstRoi, dstHeight), destination.get(), type, flags);
    return 1;
}

}  // namespace

extern "C" int matZoomArray2v(unsigned int srcWidth, unsigned int srcHeight, const void* const* srcRows,
                              unsigned int dstWidth, unsigned int dstHeight, void* const* dstRows,
                              unsigned int type, unsigned int flags) {
    zoomArray(srcWidth, srcHeight, srcRows, dstWidth, dstHeight, dstRows, type, flags);
    return 1;
}

extern "C" int matZoomArrayROI2v(unsigned int srcWidth, unsigned int srcHeight, const void* const* srcRows,
                                 const RECT* srcRoi, unsigned int dstWidth, unsigned int dstHeight,
                                 void* const* dstRows, const RECT* dstRoi, unsigned int type,
                                 unsigned int flags) {
    return zoomRegions(srcWidth, srcHeight, srcRows, srcRoi, dstWidth, dstHeight, dstRows, dstRoi, type,
                       flags);
}

extern "C" int matZoomImage(unsigned int srcWidth, unsigned int srcHeight, unsigned int bytesPerPixel,
                            const void* const* srcRows, const RECT* srcRoi, unsigned int dstWidth,
                            unsigned int dstHeight, void* const* dstRows, const RECT* dstRoi,
                            unsigned int mode) {
    const unsigned int type = velquad::array::typeOfSize(bytesPerPixel);
    const unsigned int flags = mode == 2 ? kCubicFlag : mode == 1 ? kBilinearFlag : 1U;
    return zoomRegions(srcWidth, srcHeight, srcRows, srcRoi, dstWidth, dstHeight, dstRows, dstRoi, type,
                       flags);
}
