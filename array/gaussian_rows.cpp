// The blur of whole rows.
//
// Along Y and Z the lines of one row lie side by side, so a pass walks rows: a ring holds the rows that one
// window covers, as doubles, and each result row is the weighted sum of the rows in the ring. Along X the
// same sum is taken of one row shifted against itself. Each sample keeps its own sequence of operations, and
// samples that see the same part of the kernel share its normalised window. Rows are worked on in chunks, so
// that the ring stays in the cache.
//
// Result rows are written while later rows are still to be read, and lines are taken in another order than one
// by one. That gives the same only while no two rows share memory; volumes that do not pass this test are left
// to the walk by lines.
#include "array/gaussian_rows.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <new>

#include "array/element.h"
#include "array/volume.h"
#include "array/volume_kernels.h"

namespace velquad::array {

namespace {

/// Doubles of a ring that is to stay in the first levels of the cache.
constexpr std::size_t kRingTarget = 4096;
constexpr std::size_t kSmallestChunk = 64;
constexpr std::size_t kLargestChunk = 1024;

/// Kernels up to this length keep the windows of all samples near the ends; longer ones form them when
/// needed.
constexpr std::size_t kLargestTabledKernel = 255;

/// With a callback, lines of a Z pass are announced and filtered in slabs of this width.
constexpr std::uint32_t kSlabWidth = 64;

/// The part of a kernel that one sample sees, normalised.
struct Window {
    const double* weights;
    std::size_t count;
    std::size_t first;  ///< Index of the sample that the first weight belongs to.
};

/// The windows along one axis.
class Windows {
  public:
    Windows() = default;

    void plan(double sigma, double radiusFactor, std::uint32_t length) {
        const std::int32_t radius = gaussianRadius(sigma, radiusFactor);
        sigma_ = sigma;
        length_ = length;
        isEmpty_ = radius < 0 || length == 0;
        // What lies beyond the length of the line is never seen.
        if (!isEmpty_) reach_ = std::min<std::size_t>(static_cast<std::size_t>(radius), length - 1);
        isTabled_ = kernelLength() <= kLargestTabledKernel;
    }

    std::size_t reach() const { return reach_; }

    /// Rows that a ring must hold.
    std::size_t ringRows() const { return std::min<std::size_t>(kernelLength(), length_); }

    /// Doubles that `build` needs.
    std::size_t memory() const { return kernelLength() * (1 + slotCount()); }

    /// Computes the kernel, and the windows that are kept.
    void build(double* memory) {
        kernel_ = memory;
        slots_ = memory + kernelLength();
        if (isEmpty_) return;
        for (std::size_t i = 0; i < kernelLength(); ++i) {
            const auto k =
                static_cast<std::int32_t>(static_cast<std::int64_t>(i) - static_cast<std::int64_t>(reach_));
            kernel_[i] = sigma_ == 0.0 ? 1.0 : gaussianWeight(k, sigma_);
        }
        if (hasInterior()) form(reach_, slots_);
        if (!isTabled_) return;
        for (std::size_t i = 0; i < length_; ++i) {
            if (!isInterior(i)) form(i, slot(i));
        }
    }

    /// The window of sample `i`. It is valid until the next call.
    Window at(std::size_t i) const {
        if (isEmpty_) return {slots_, 0, 0};
        double* const weights = slot(i);
        if (!isTabled_ && !isInterior(i)) form(i, weights);
        return {weights, highOf(i) - lowOf(i) + 1, lowOf(i)};
    }

    bool isInterior(std::size_t i) const { return i >= reach_ && i + reach_ < length_; }

  private:
    std::size_t kernelLength() const { return 2 * reach_ + 1; }
    std::size_t slotCount() const { return isTabled_ ? kernelLength() : 2; }
    bool hasInterior() const { return length_ > 2 * reach_; }
    std::size_t lowOf(std::size_t i) const { return i < reach_ ? 0 : i - reach_; }
    std::size_t highOf(std::size_t i) const { return std::min<std::size_t>(i + reach_, length_ - 1); }

    /// Where the window of sample `i` stands: slot 0 for all samples that see the whole kernel, and for each
    /// of the others a slot of its own, or without a table slot 1.
    double* slot(std::size_t i) const {
        std::size_t index = i;
        if (isInterior(i)) {
            index = 0;
        } else if (!isTabled_) {
            index = 1;
        } else if (hasInterior()) {
            index = i < reach_ ? i + 1 : i + kernelLength() - length_;
        }
        return slots_ + index * kernelLength();
    }

    void form(std::size_t i, double* window) const {
        const std::size_t low = lowOf(i);
        const std::size_t count = highOf(i) - low + 1;
        const double* raw = kernel_ + (low + reach_ - i);
        double sum = 0.0;
        for (std::size_t k = 0; k < count; ++k)
            sum += raw[k];
        for (std::size_t k = 0; k < count; ++k)
            window[k] = raw[k] / sum;
    }

    double sigma_ = 0.0;
    std::size_t length_ = 0;
    std::size_t reach_ = 0;
    bool isEmpty_ = true;
    bool isTabled_ = true;
    double* kernel_ = nullptr;
    double* slots_ = nullptr;
};

/// The bytes from the first row of a slice to behind its last one.
struct Extent {
    std::uintptr_t begin;
    std::uintptr_t end;
};

/// Finds the extent of rows that lie in the order of the table or in the reverse order.
/// @return false when rows overlap or lie in another order.
bool findExtent(const void* rows, std::size_t height, std::size_t rowBytes, Extent& extent) {
    const auto addressOf = [rows](std::size_t y) { return reinterpret_cast<std::uintptr_t>(rowAt(rows, y)); };
    const bool isRising = addressOf(0) <= addressOf(height - 1);
    for (std::size_t y = 1; y < height; ++y) {
        const std::uintptr_t lower = addressOf(isRising ? y - 1 : y);
        const std::uintptr_t upper = addressOf(isRising ? y : y - 1);
        if (upper < lower || upper - lower < rowBytes) return false;
    }
    extent = {addressOf(isRising ? 0 : height - 1), addressOf(isRising ? height - 1 : 0) + rowBytes};
    return true;
}

/// Tells whether no two rows of a volume share memory. Slices that interleave count as sharing.
bool hasDisjointRows(const void* volume, std::size_t height, std::size_t depth, std::size_t rowBytes) {
    const std::unique_ptr<Extent[]> extents(new (std::nothrow) Extent[depth]);
    if (extents == nullptr) return false;
    for (std::size_t z = 0; z < depth; ++z) {
        if (!findExtent(sliceAt(volume, z), height, rowBytes, extents[z])) return false;
    }
    std::sort(extents.get(), extents.get() + depth,
              [](const Extent& a, const Extent& b) { return a.begin < b.begin; });
    for (std::size_t z = 1; z < depth; ++z) {
        if (extents[z].begin < extents[z - 1].end) return false;
    }
    return true;
}

struct FreeDeleter {
    void operator()(void* block) const { std::free(block); }
};

class RowFilter {
  public:
    explicit RowFilter(const CGaussianBlurFilter3D& filter)
        : filter_(filter),
          elementBytes_(elementSize(filter.m_type)),
          rowCount_(std::size_t{filter.m_width} * filter.m_channels),
          rowBytes_(rowCount_ * elementBytes_) {}

    /// Makes sure that the volume can be filtered by rows, and everything ready for it.
    bool prepare() {
        if (filter_.m_type < 1 || filter_.m_type > kScalarTypes) return false;
        if (rowCount_ == 0 || filter_.m_height == 0 || filter_.m_depth == 0) return false;
        for (int axis = 0; axis < kAxes; ++axis) {
            // No line runs along Z in a single slice.
            if (axis == kAxisZ && filter_.m_depth < 2) continue;
            windows_[axis].plan(filter_.m_sigma[axis], filter_.m_radiusFactor[axis], filter_.sizeAlong(axis));
        }
        if (!areStepsRegular() || !areRowsDisjoint() || !allocate()) return false;
        load_ = volumeKernels().toDouble[filter_.m_type - 1];
        store_ = volumeKernels().fromDouble[filter_.m_type - 1];
        sum_ = volumeKernels().weightedSum;
        return true;
    }

    int run() {
        if (filter_.m_depth > 1 && !runAlongZ()) return kFilterCancelled;
        if (!runAlongY() || !runAlongX()) return kFilterCancelled;
        return kFilterDone;
    }

  private:
    bool hasStepY() const { return CImageSignalFilter3D::isStepGiven(filter_.m_strideY); }
    bool hasStepZ() const { return CImageSignalFilter3D::isStepGiven(filter_.m_strideZ); }

    /// Tells whether given steps along X and Y walk from element to element and over whole rows.
    bool areStepsRegular() const {
        const bool isRegularX = !CImageSignalFilter3D::isStepGiven(filter_.m_strideX) ||
                                filter_.m_strideX == filter_.m_channels * elementBytes_;
        return isRegularX && (!hasStepY() || filter_.m_strideY >= rowBytes_);
    }

    bool areRowsDisjoint() const {
        if (filter_.m_depth > 1 && !hasStepZ())
            return hasDisjointRows(filter_.m_volume, filter_.m_height, filter_.m_depth, rowBytes_);
        Extent extent = {0, 0};
        if (filter_.m_depth > 1) {
            if (!findExtent(sliceAt(filter_.m_volume, 0), filter_.m_height, rowBytes_, extent)) return false;
            if (extent.end - extent.begin > filter_.m_strideZ) return false;
        }
        // Along Y it is enough when the rows of each slice do not overlap.
        for (std::size_t z = 0; z < filter_.m_depth && !hasStepY(); ++z) {
            if (!findExtent(sliceAt(filter_.m_volume, z), filter_.m_height, rowBytes_, extent)) return false;
        }
        return true;
    }

    bool allocate() {
        const std::size_t ringRows =
            std::max(windows_[kAxisY].ringRows(), filter_.m_depth > 1 ? windows_[kAxisZ].ringRows() : 0);
        const std::size_t pointers = std::max(ringRows, windows_[kAxisX].ringRows());
        chunk_ = std::clamp(kRingTarget / ringRows, kSmallestChunk, kLargestChunk);
        chunk_ = std::min(chunk_, rowCount_);
        std::size_t doubles = ringRows * chunk_ + 2 * rowCount_;
        for (const Windows& windows : windows_)
            doubles += windows.memory();
        memory_.reset(static_cast<double*>(std::malloc(doubles * sizeof(double))));
        pointers_.reset(static_cast<const double**>(std::malloc(pointers * sizeof(double*))));
        if (memory_ == nullptr || pointers_ == nullptr) return false;
        double* place = memory_.get();
        for (Windows& windows : windows_) {
            windows.build(place);
            place += windows.memory();
        }
        row_ = place;
        sums_ = row_ + rowCount_;
        ring_ = sums_ + rowCount_;
        return true;
    }

    /// Announces up to `count` lines. @return how many the callback agreed to.
    std::uint64_t announce(std::uint64_t count) {
        if (filter_.m_callback == nullptr) return count;
        const std::uint32_t total = filter_.lineCount();
        for (std::uint64_t i = 0; i < count; ++i) {
            if (filter_.m_callback(++counter_, total, filter_.m_callbackUser) == 0) return i;
        }
        return count;
    }

    /// Filters the elements [first, first + count) of the rows `rowOf(0)`, `rowOf(1)`, ... across the rows.
    template <class RowOf>
    void filterAcross(const Windows& windows, std::size_t length, std::size_t first, std::size_t count,
                      const RowOf& rowOf) {
        const std::size_t ringRows = windows.ringRows();
        for (std::size_t end = first + count; first < end; first += chunk_) {
            const std::size_t chunk = std::min(chunk_, end - first);
            const std::size_t offset = first * elementBytes_;
            std::size_t loaded = 0;
            std::size_t loadedSlot = 0;
            for (std::size_t i = 0; i < length; ++i) {
                for (; loaded < length && loaded <= i + windows.reach(); ++loaded) {
                    load_(rowOf(loaded) + offset, ring_ + loadedSlot * chunk_, chunk);
                    loadedSlot = loadedSlot + 1 == ringRows ? 0 : loadedSlot + 1;
                }
                const Window window = windows.at(i);
                std::size_t slot = window.first % ringRows;
                for (std::size_t k = 0; k < window.count; ++k) {
                    pointers_[k] = ring_ + slot * chunk_;
                    slot = slot + 1 == ringRows ? 0 : slot + 1;
                }
                sum_(pointers_.get(), window.weights, window.count, sums_, chunk);
                store_(sums_, rowOf(i) + offset, chunk);
            }
        }
    }

    void filterSlab(std::size_t y, std::size_t firstX, std::size_t endX) {
        if (firstX >= endX) return;
        const auto rowOf = [this, y](std::size_t z) {
            return hasStepZ() ? rowAt(filter_.m_volume, 0, y) + z * filter_.m_strideZ
                              : rowAt(filter_.m_volume, z, y);
        };
        filterAcross(windows_[kAxisZ], filter_.m_depth, firstX * filter_.m_channels,
                     (endX - firstX) * filter_.m_channels, rowOf);
    }

    bool runAlongZ() {
        const std::uint32_t width = filter_.m_width;
        const std::uint32_t height = filter_.m_height;
        const std::uint32_t slab = filter_.m_callback == nullptr ? width : kSlabWidth;
        for (std::uint32_t x = 0; x < width; x += std::min(slab, width - x)) {
            // Lines go down the columns, column after column.
            const std::uint64_t asked = std::uint64_t{std::min(slab, width - x)} * height;
            const std::uint64_t agreed = announce(asked);
            for (std::uint32_t y = 0; y < height; ++y)
                filterSlab(y, x, x + agreed / height + (y < agreed % height ? 1 : 0));
            if (agreed < asked) return false;
        }
        return true;
    }

    bool runAlongY() {
        for (std::uint32_t z = 0; z < filter_.m_depth; ++z) {
            const auto rowOf = [this, z](std::size_t y) {
                return hasStepY() ? rowAt(filter_.m_volume, z, 0) + y * filter_.m_strideY
                                  : rowAt(filter_.m_volume, z, y);
            };
            const std::uint64_t agreed = announce(filter_.m_width);
            filterAcross(windows_[kAxisY], filter_.m_height, 0, agreed * filter_.m_channels, rowOf);
            if (agreed < filter_.m_width) return false;
        }
        return true;
    }

    /// Filters samples [first, first + count) of the row, which all have the window of the first one.
    void filterAlong(std::size_t first, std::size_t count) {
        const std::size_t channels = filter_.m_channels;
        const Window window = windows_[kAxisX].at(first);
        for (std::size_t k = 0; k < window.count; ++k)
            pointers_[k] = row_ + (window.first + k) * channels;
        sum_(pointers_.get(), window.weights, window.count, sums_ + first * channels, count * channels);
    }

    bool runAlongX() {
        const Windows& windows = windows_[kAxisX];
        const std::size_t width = filter_.m_width;
        const std::size_t reach = windows.reach();
        for (std::uint32_t y = 0; y < filter_.m_height; ++y) {
            for (std::uint32_t z = 0; z < filter_.m_depth; ++z) {
                if (announce(1) == 0) return false;
                unsigned char* row = rowAt(filter_.m_volume, z, y);
                load_(row, row_, rowCount_);
                std::size_t x = 0;
                for (; x < width && !windows.isInterior(x); ++x)
                    filterAlong(x, 1);
                if (x < width) {
                    filterAlong(x, width - 2 * reach);
                    x = width - reach;
                }
                for (; x < width; ++x)
                    filterAlong(x, 1);
                store_(sums_, row, rowCount_);
            }
        }
        return true;
    }

    const CGaussianBlurFilter3D& filter_;
    std::size_t elementBytes_;
    std::size_t rowCount_;  ///< Elements of a row, all channels.
    std::size_t rowBytes_;
    std::size_t chunk_ = 0;  ///< Elements of a row that are worked on at a time across rows.
    std::uint32_t counter_ = 0;
    Windows windows_[kAxes];
    std::unique_ptr<double[], FreeDeleter> memory_;
    std::unique_ptr<const double*[], FreeDeleter> pointers_;
    double* row_ = nullptr;
    double* sums_ = nullptr;
    double* ring_ = nullptr;
    VolumeKernels::Convert load_ = nullptr;
    VolumeKernels::Convert store_ = nullptr;
    decltype(VolumeKernels::weightedSum) sum_ = nullptr;
};

}  // namespace

bool runByRows(const CGaussianBlurFilter3D& filter, int& result) {
    RowFilter rows(filter);
    if (!rows.prepare()) return false;
    result = rows.run();
    return true;
}

}  // namespace velquad::array
