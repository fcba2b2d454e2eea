// Directions of space as small integers. The upper half of an octahedron is unfolded onto a diamond in the plane
// and covered by a lattice turned by 45 degrees; the lower half is its mirror image. A square table leads from a
// place in the diamond's bounding square to the direction there, and its corners outside the diamond repeat
// the nearest entry of their row, so that rounding at the diamond's rim never misses.
//
// Both tables live in one block behind a count of the objects that use it: assignment shares tables, and the last
// owner releases them. Source of the octahedral map: Z. H. Cigolle et al., A Survey of Efficient Representations
// for Independent Unit Vectors, 2014.
#include <atomic>
#include <cmath>
#include <cstddef>
#include <memory>
#include <new>

#include "frame/convert.h"
#include "frame/math.h"
#include "velquad/geometry.h"

using velquad::frame::Int32;

namespace {

/// The finest level whose directions 32 bits can count.
constexpr int kFinestLevel = 14;
constexpr std::size_t kFloatsPerDirection = 3;

/// What stands in front of the tables. Its alignment suits both element types.
struct alignas(std::max_align_t) TableHeader {
    std::atomic<unsigned int> ownerCount{1};
};

TableHeader* headerOf(float* gradientTable) {
    return reinterpret_cast<TableHeader*>(gradientTable) - 1;
}

/// Takes one owner away from a pair of tables, which go with the last one. Null tables are ignored.
void releaseTables(float* gradientTable) {
    if (gradientTable == nullptr) return;
    TableHeader* header = headerOf(gradientTable);
    if (header->ownerCount.fetch_sub(1, std::memory_order_acq_rel) != 1) return;
    header->~TableHeader();
    ::operator delete(header);
}

struct TableDeleter {
    void operator()(float* gradientTable) const { releaseTables(gradientTable); }
};

/// Rows of the lattice, and of the square table, that a level asks for: `cells` and `span`.
struct Resolution {
    explicit Resolution(int level)
        : cells(velquad::frame::truncToInt32(velquad::frame::pow(2.0, level) + 1.0)),
          span(velquad::frame::truncToInt32(velquad::frame::pow(2.0, level))) {}
    Int32 cells;
    Int32 span;
};

/// The row or column of the square table for a coordinate in [-1, 1]: rounded, and held inside the table for any
/// number and not-a-number.
int cellOf(double coordinate, int span) {
    const double position = (coordinate + 1.0) * span + 0.5;
    if (!(position >= 1.0)) return 0;
    const int last = 2 * span;
    return position >= last ? last : static_cast<int>(position);
}

std::size_t cellIndex(float first, float second, int span) {
    const std::size_t stride = 2 * static_cast<std::size_t>(span) + 1;
    return static_cast<std::size_t>(cellOf(static_cast<double>(first), span)) * stride +
           static_cast<std::size_t>(cellOf(static_cast<double>(second), span));
}

/// A point of the diamond: the first two coordinates of a point of the octahedron |first| + |second| + |z| = 1.
struct DiamondPoint {
    /// @param along    the turned coordinate along a row of the lattice, in [-1, 1].
    /// @param halfRow  half the turned coordinate of the row itself.
    DiamondPoint(float along, float halfRow)
        : first(along * 0.5F - halfRow), second(along * 0.5F + halfRow) {}
    float first;
    float second;
};

/// Stores the unit vector towards a point of the upper half, and its mirror image.
void storeDirection(const DiamondPoint& point, float* upper, float* lower) {
    const float third = 1.0F - std::fabs(point.first) - std::fabs(point.second);
    const double x = static_cast<double>(point.first);
    const double y = static_cast<double>(point.second);
    const double z = static_cast<double>(third);
    const double length = std::sqrt(y * y + x * x + z * z);
    upper[0] = lower[0] = static_cast<float>(x / length);
    upper[1] = lower[1] = static_cast<float>(y / length);
    upper[2] = static_cast<float>(z / length);
    lower[2] = -upper[2];
}

/// Fills both tables for all lattice points, row by row; the corners of the square table keep what they held.
void fillLattice(int* indexTable, float* gradientTable, const Resolution& resolution, int halfCount) {
    const int span = resolution.span;
    const auto spanAsFloat = static_cast<float>(span);
    const float pitch = 1.0F / spanAsFloat;
    int index = 0;
    for (int row = 0; row < resolution.cells + span; ++row) {
        const bool isOdd = row % 2 != 0;
        const int pointCount = isOdd ? span : resolution.cells;
        const float halfRow = (static_cast<float>(2 * row) / (2.0F * spanAsFloat) - 1.0F) * 0.5F;
        for (int j = 0; j < pointCount; ++j, ++index) {
            const float even = static_cast<float>(2 * j) / spanAsFloat - 1.0F;
            const float along = isOdd ? pitch + even : even;
            const DiamondPoint point(along, halfRow);
            float* upper = gradientTable + kFloatsPerDirection * static_cast<std::size_t>(index);
            storeDirection(point, upper, upper + kFloatsPerDirection * static_cast<std::size_t>(halfCount));

            const auto claimCellAt = [&](const DiamondPoint& place) {
                indexTable[cellIndex(place.first, place.second, span)] = index;
            };
            claimCellAt(point);
            if (along > 0.0F) claimCellAt(DiamondPoint(along - pitch, halfRow));
            if (isOdd && j + 1 == pointCount) claimCellAt(DiamondPoint(along + pitch, halfRow));
        }
    }
}

/// Closes the gaps of the square table outside the diamond, from the middle of each row outwards.
void closeGaps(int* indexTable, int span) {
    const std::ptrdiff_t stride = 2 * static_cast<std::ptrdiff_t>(span) + 1;
    for (std::ptrdiff_t row = 0; row < stride; ++row) {
        int* cells = indexTable + row * stride;
        for (std::ptrdiff_t i = span + 1; i < stride; ++i) {
            if (cells[i] == -1) cells[i] = cells[i - 1];
        }
        for (std::ptrdiff_t i = span - 1; i >= 0; --i) {
            if (cells[i] == -1) cells[i] = cells[i + 1];
        }
    }
}

}  // namespace

CMatNormalEncoder::CMatNormalEncoder(int levelWanted) : level(levelWanted) {
    InitializeIndexTable();
}

CMatNormalEncoder::~CMatNormalEncoder() {
    releaseTables(gradientTable);
}

CMatNormalEncoder& CMatNormalEncoder::operator=(const CMatNormalEncoder& other) {
    if (this == &other) return *this;
    // The other's tables get their new owner first: both objects may share them already.
    if (other.gradientTable != nullptr)
        headerOf(other.gradientTable)->ownerCount.fetch_add(1, std::memory_order_relaxed);
    releaseTables(gradientTable);
    level = other.level;
    indexTable = other.indexTable;
    gradientTable = other.gradientTable;
    builtLevel = other.builtLevel;
    cells = other.cells;
    span = other.span;
    halfCount = other.halfCount;
    return *this;
}

int CMatNormalEncoder::GetEncodedDirection(float* const vector) {
    if (builtLevel != level) InitializeIndexTable();
    const float sum = std::fabs(vector[1]) + std::fabs(vector[0]) + std::fabs(vector[2]);
    if (sum == 0.0F) return 2 * halfCount;
    const float scale = 1.0F / sum;
    const int index = indexTable[cellIndex(vector[0] * scale, vector[1] * scale, span)];
    return vector[2] < 0.0F ? index + halfCount : index;
}

float* CMatNormalEncoder::GetDecodedGradient(int index) {
    if (builtLevel != level) InitializeIndexTable();
    return gradientTable + static_cast<std::ptrdiff_t>(kFloatsPerDirection) * index;
}

float* CMatNormalEncoder::GetDecodedGradientTable() {
    return gradientTable;
}

int CMatNormalEncoder::GetNumberOfEncodedDirections() {
    using velquad::frame::wrapAdd;
    using velquad::frame::wrapMul;
    const Int32 c = Resolution(level).cells;
    const Int32 inner = wrapAdd(c, -1);
    return wrapAdd(wrapMul(wrapAdd(wrapMul(inner, inner), wrapMul(c, c)), 2), 1);
}

void CMatNormalEncoder::InitializeIndexTable() {
    if (level > kFinestLevel) throw std::bad_alloc();
    const Resolution resolution(level);
    const int newHalfCount = resolution.cells * resolution.cells + resolution.span * resolution.span;
    const std::size_t floatCount =
        2 * kFloatsPerDirection * static_cast<std::size_t>(newHalfCount) + kFloatsPerDirection;
    const std::size_t stride =
        static_cast<std::size_t>(resolution.cells) + static_cast<std::size_t>(resolution.span);
    const std::size_t cellCount = stride * stride;

    // The new tables are complete before the old ones go, so that a lack of memory leaves the object as it was.
    void* block = ::operator new(sizeof(TableHeader) + floatCount * sizeof(float) + cellCount * sizeof(int));
    auto* header = new (block) TableHeader;
    std::unique_ptr<float, TableDeleter> gradients(reinterpret_cast<float*>(header + 1));
    int* indices = reinterpret_cast<int*>(gradients.get() + floatCount);
    std::uninitialized_fill_n(gradients.get(), floatCount, 0.0F);
    std::uninitialized_fill_n(indices, cellCount, -1);
    fillLattice(indices, gradients.get(), resolution, newHalfCount);
    closeGaps(indices, resolution.span);

    releaseTables(gradientTable);
    indexTable = indices;
    gradientTable = gradients.release();
    builtLevel = level;
    cells = resolution.cells;
    span = resolution.span;
    halfCount = newHalfCount;
}
