// A digital disc as a table of rings, and the place where the mean of an image under it is largest.
//
// The sums under the disc slide: from one row to the next a disc gains the lower end of each of its columns and loses
// the upper end, so a position costs two words per column instead of one per cell. Sums of 16-bit words are exact in
// integers and, as the additions of doubles that define them, below 2^53.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <new>

#include "array/array_2d.h"
#include "array/element.h"
#include "array/peak_kernels.h"
#include "frame/convert.h"
#include "frame/global_block.h"
#include "frame/kernels.h"
#include "velquad/array.h"

namespace velquad::array {

VELQUAD_DEFINE_KERNELS(PeakKernels, kPeakKernels, peakKernels)

}  // namespace velquad::array

using velquad::array::allocArray2d;
using velquad::array::freeArray2d;
using velquad::array::peakKernels;
using velquad::array::rowAt;
using velquad::array::storeElement;
using velquad::frame::LockedBlock;

namespace {

/// Distances and means that differ by less are the same.
constexpr double kSameValue = 1e-7;

/// The distances of a larger disc do not fit an array of 4 GiB.
constexpr int kMaxRadius = 11584;

/// A cell outside of the disc, in the table of shapes.
constexpr std::uint16_t kOutside = 65535;

struct FreeArray {
    void operator()(void** rows) const { freeArray2d(rows); }
};
using OwnedArray = std::unique_ptr<void*, FreeArray>;

/// A disc and its tables.
struct Disc {
    OwnedArray shape;
    LockedBlock distances;  ///< Doubles.
    LockedBlock extents;    ///< First columns of all rows, then last columns.
    unsigned int maxIndex = 0;

    explicit operator bool() const { return shape != nullptr; }
};

/// The distance of a cell from the centre; the largest double for a cell outside. The edge is rounded: a cell belongs
/// to the disc when its distance, rounded, is at most the radius.
double ringDistance(int x, int y, int radius) {
    const double distance = std::sqrt(static_cast<double>(x) * x + static_cast<double>(y) * y);
    return velquad::frame::lroundToInt32(distance) > radius ? velquad::kNoValue : distance;
}

/// Sorts the distances of all cells and keeps each value once. @return how many remain.
std::size_t keepDistinct(double* values, std::size_t count) {
    std::sort(values, values + count);
    std::size_t kept = 1;
    for (std::size_t i = 1; i < count; ++i) {
        if (!(kSameValue > std::fabs(values[i] - values[kept - 1]))) values[kept++] = values[i];
    }
    return kept;
}

/// The index of the first ring at this distance.
std::uint16_t ringIndex(const double* rings, std::size_t count, double distance) {
    const double* ring = std::lower_bound(rings, rings + count, distance - kSameValue);
    while (!(kSameValue > std::fabs(distance - *ring)))
        ++ring;
    return static_cast<std::uint16_t>(ring - rings);
}

void fillShape(Disc& disc, std::size_t ringCount, int radius) {
    const auto size = 2 * static_cast<std::size_t>(radius) + 1;
    int* left = disc.extents.as<int>();
    int* right = left + size;
    std::fill(left, left + 2 * size, velquad::kCoordinateNotSet);
    for (std::size_t y = 0; y < size; ++y) {
        unsigned char* row = rowAt(disc.shape.get(), y);
        for (std::size_t x = 0; x < size; ++x) {
            const double distance =
                ringDistance(static_cast<int>(x) - radius, static_cast<int>(y) - radius, radius);
            if (distance == velquad::kNoValue) {
                storeElement(row, x, kOutside);
                continue;
            }
            const int column = static_cast<int>(x);
            if (column < left[y]) left[y] = column;
            right[y] = column;
            storeElement(row, x, ringIndex(disc.distances.as<double>(), ringCount, distance));
        }
    }
}

/// @return a disc without a shape when there is no memory for it or the radius is negative.
Disc makeDisc(int radius) {
    using velquad::frame::kZeroedMovable;
    Disc disc;
    if (radius < 0 || radius > kMaxRadius) return disc;
    const auto size = 2 * static_cast<std::uint32_t>(radius) + 1;
    const std::size_t cells = std::size_t{size} * size;
    const LockedBlock all(kZeroedMovable, cells * sizeof(double));
    if (!all) return disc;
    auto* distances = all.as<double>();
    for (int y = -radius; y <= radius; ++y) {
        for (int x = -radius; x <= radius; ++x)
            *distances++ = ringDistance(x, y, radius);
    }
    const std::size_t count = keepDistinct(all.as<double>(), cells);
    disc.distances = LockedBlock(kZeroedMovable, count * sizeof(double));
    disc.extents = LockedBlock(kZeroedMovable, 2 * size * sizeof(int));
    if (!disc.distances || !disc.extents) return disc;
    std::copy_n(all.as<double>(), count, disc.distances.as<double>());
    disc.maxIndex = static_cast<unsigned int>(count - 1);
    disc.shape.reset(allocArray2d(size, size, MAT_ARRAY_UINT16, 1, nullptr));
    if (disc) fillShape(disc, count, radius);
    return disc;
}

/// An image of words and the disc that moves over it.
struct PeakSearch {
    const void* image;
    int width;
    int height;
    int radius;
    const int* left;  ///< First column of each row of the disc; the disc is symmetric.

    /// How far the disc reaches above and below its centre, `dx` columns beside it.
    int reach(int dx) const { return radius - left[dx + radius]; }

    const unsigned char* rowOrNull(int y) const {
        return y >= 0 && y < height ? rowAt(image, static_cast<std::size_t>(y)) : nullptr;
    }
};

/// The best mean so far. Among equal means the last one wins.
struct Peak {
    double value = -velquad::kExtentNotSet;
    int x = -1;
    int y = -1;

    void offer(double sum, double count, int atX, int atY) {
        double mean = count != 0.0 ? sum / count : 0.0;
        if (kSameValue > std::fabs(mean)) mean = 0.0;
        if (mean >= value) {
            value = mean;
            x = atX;
            y = atY;
        }
    }
};

/// Cell by cell, without any memory.
void findPeakPlainly(const PeakSearch& search, Peak& peak) {
    for (int y = 0; y < search.height; ++y) {
        for (int x = 0; x < search.width; ++x) {
            double sum = 0.0;
            double count = 0.0;
            for (int dy = -search.radius; dy <= search.radius; ++dy) {
                const unsigned char* row = search.rowOrNull(y + dy);
                if (row == nullptr) continue;
                const int reach = search.reach(dy);
                const int end = std::min(x + reach, search.width - 1);
                for (int column = std::max(x - reach, 0); column <= end; ++column) {
                    sum += velquad::array::loadElement<std::uint16_t>(row, static_cast<std::size_t>(column));
                    count += 1.0;
                }
            }
            peak.offer(sum, count, x, y);
        }
    }
}

/// Moves the disc one row down: from the centre row `y` to y + 1.
void slideDown(const PeakSearch& search, int y, std::uint64_t* sums) {
    const auto slide = peakKernels().slide;
    const int farthest = std::min(search.radius, search.width - 1);
    for (int dx = -farthest; dx <= farthest; ++dx) {
        const int reach = search.reach(dx);
        const unsigned char* entering = search.rowOrNull(y + 1 + reach);
        const unsigned char* leaving = search.rowOrNull(y - reach);
        // Centres whose column at `dx` lies in the image.
        const auto first = static_cast<std::size_t>(std::max(0, -dx));
        const auto count = static_cast<std::size_t>(search.width - std::abs(dx));
        const std::size_t offset = 2 * static_cast<std::size_t>(std::max(0, dx));
        slide(sums + first, entering == nullptr ? nullptr : entering + offset,
              leaving == nullptr ? nullptr : leaving + offset, count);
    }
}

/// Counts the cells of the disc that lie in the image, for all centres of row `y`.
void countCells(const PeakSearch& search, int y, std::uint32_t* counts) {
    std::fill(counts, counts + search.width, 0U);
    const int first = std::max(-search.radius, -y);
    const int last = std::min(search.radius, search.height - 1 - y);
    for (int dy = first; dy <= last; ++dy) {
        const int reach = search.reach(dy);
        for (int x = 0; x < search.width; ++x)
            counts[x] += static_cast<std::uint32_t>(std::min(x + reach, search.width - 1) -
                                                    std::max(x - reach, 0) + 1);
    }
}

void findPeakSliding(const PeakSearch& search, std::uint64_t* sums, std::uint32_t* counts, Peak& peak) {
    std::fill(sums, sums + search.width, std::uint64_t{0});
    // Starts where the disc lies wholly above the image.
    for (int y = -search.radius - 1; y < -1; ++y)
        slideDown(search, y, sums);
    bool isInside = false;
    for (int y = 0; y < search.height; ++y) {
        slideDown(search, y - 1, sums);
        // The counts stay while no row of the disc is cut off.
        const bool wasInside = isInside;
        isInside = y >= search.radius && y < search.height - search.radius;
        if (!isInside || !wasInside) countCells(search, y, counts);
        for (int x = 0; x < search.width; ++x)
            peak.offer(static_cast<double>(sums[x]), static_cast<double>(counts[x]), x, y);
    }
}

void findPeak(const PeakSearch& search, Peak& peak) {
    if (search.image == nullptr || search.width <= 0 || search.height <= 0) return;
    const auto width = static_cast<std::size_t>(search.width);
    const std::unique_ptr<std::uint64_t[]> sums(new (std::nothrow) std::uint64_t[width]);
    const std::unique_ptr<std::uint32_t[]> counts(new (std::nothrow) std::uint32_t[width]);
    if (sums != nullptr && counts != nullptr) {
        findPeakSliding(search, sums.get(), counts.get(), peak);
    } else {
        findPeakPlainly(search, peak);
    }
}

/// Marks of `matFindMinMaxValues`.
constexpr unsigned char kNoExtreme = 127;
constexpr unsigned char kMaximum = 255;
constexpr unsigned char kMinimum = 0;

}  // namespace

unsigned short** matAllocCircularShape2w(int radius, double** distances, unsigned int* maxIndex, int** left,
                                         int** right) {
    Disc disc = makeDisc(radius);
    if (!disc) return nullptr;
    if (maxIndex != nullptr) *maxIndex = disc.maxIndex;
    int* extents = disc.extents.as<int>();
    if (right != nullptr) *right = extents + 2 * static_cast<std::size_t>(radius) + 1;
    // Kept: a block that the caller does not ask for stays allocated.
    auto* rings = static_cast<double*>(disc.distances.release());
    if (distances != nullptr) *distances = rings;
    disc.extents.release();
    if (left != nullptr) *left = extents;
    return static_cast<unsigned short**>(static_cast<void*>(disc.shape.release()));
}

int matFreeCircularShape2w(unsigned short** shape, double* distances, int* left, int* /*right*/) {
    if (shape != nullptr) freeArray2d(shape);
    if (distances != nullptr) velquad::frame::matGlobalFreeLocked(distances);
    if (left != nullptr) velquad::frame::matGlobalFreeLocked(left);
    return 1;
}

int matFindGlobalPeak2w(unsigned short** image, int width, int height, int radius, tagPOINT* peak,
                        double* value) {
    const Disc disc = makeDisc(radius);
    if (!disc) return 0;
    Peak found;
    findPeak({image, width, height, radius, disc.extents.as<int>()}, found);
    if (peak != nullptr) {
        peak->x = found.x;
        peak->y = found.y;
    }
    if (value != nullptr) *value = found.value;
    return 1;
}

extern "C" int matFindMinMaxValues(const double* values, unsigned char* flags, unsigned int count) {
    if (count == 0 || values == nullptr || flags == nullptr) return 1;
    std::fill(flags, flags + count, kNoExtreme);
    std::size_t start = 0;
    while (start < count && values[start] == values[0])
        ++start;
    if (start == count) return 1;
    bool isRising = values[start] > values[0];
    while (true) {
        std::size_t end = start;
        while (end + 1 < count && !(isRising ? values[end] > values[end + 1] : values[end + 1] > values[end]))
            ++end;
        if (end + 1 == count) return 1;
        // The plateau may reach back to the start of the run, but not beyond.
        std::size_t first = end;
        while (first > start && values[first - 1] == values[end])
            --first;
        flags[first + (end - first) / 2] = isRising ? kMaximum : kMinimum;
        start = end;
        isRising = !isRising;
    }
}
