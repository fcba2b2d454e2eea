// Conversion to and from floats, fill, limits and linear map of whole arrays, and one number as an element. What a
// type asks for is decided here, once per call; the loops over rows are kernels.
#include <cmath>
#include <cstdint>
#include <limits>

#include "array/array_2d.h"
#include "array/element.h"
#include "array/element_kernels.h"
#include "array/prefetch.h"
#include "array/rounding.h"
#include "array/stream_kernels.h"
#include "frame/convert.h"
#include "frame/kernels.h"
#include "velquad/array.h"

namespace velquad::array {

VELQUAD_DEFINE_KERNELS(ElementKernels, kElementKernels, elementKernels)

}  // namespace velquad::array

using namespace velquad::array;
using velquad::frame::lroundToInt32;
using velquad::frame::truncToInt32;
using velquad::frame::truncToInt64;

namespace {

/// A range of floats below this is flat.
constexpr double kFlatRange = 1e-7;

/// Below this a number is 0 as an unsigned 32-bit integer.
constexpr double kSmallestUInt32 = 1e-7;

/// Results of a linear map within this need no look at their range when they are rounded.
constexpr double kNarrowLimit = 2147483000.0;

/// Bytes of a part of a row, which is asked for as a whole while the part before it is worked on.
constexpr std::size_t kPartBytes = 4096;

/// The elements to work on first so that what follows begins with a cache line; vectors that lie across two lines
/// take twice as long to store.
std::size_t countToCacheLine(const void* row, std::size_t elementBytes, std::size_t count) {
    constexpr std::size_t kCacheLine = 64;
    constexpr std::size_t kWorthwhile = 256;
    const std::size_t gap = (kCacheLine - reinterpret_cast<std::uintptr_t>(row) % kCacheLine) % kCacheLine;
    return count < kWorthwhile || gap % elementBytes != 0 ? 0 : gap / elementBytes;
}

/// Elements of one or two rows that are worked on in step. In place, `from` is `to`.
struct Run {
    const unsigned char* from;
    unsigned char* to;
    std::size_t fromBytes;  ///< Bytes of an element.
    std::size_t toBytes;
    std::size_t count;

    std::size_t countPerPart() const { return kPartBytes / (fromBytes > toBytes ? fromBytes : toBytes); }

    Run part(std::size_t begin, std::size_t most) const {
        const std::size_t rest = count - begin;
        return {from + begin * fromBytes, to + begin * toBytes, fromBytes, toBytes,
                rest < most ? rest : most};
    }

    void prefetch() const {
        prefetchRange(to, count * toBytes);
        if (from != to) prefetchRange(from, count * fromBytes);
    }
};

/// Calls `work(from, to, count)` for the elements of a row up to a cache line of the destination, then
/// `workOnPart(part, following)` for its parts. `next` is what will be worked on behind the row.
template <class Work, class WorkOnPart>
void splitRow(const Run& row, const Run& next, Work work, WorkOnPart workOnPart) {
    const std::size_t perPart = row.countPerPart();
    const std::size_t head = countToCacheLine(row.to, row.toBytes, row.count);
    if (head != 0) work(row.from, row.to, head);
    for (std::size_t begin = head; begin < row.count; begin += perPart) {
        const Run part = row.part(begin, perPart);
        const std::size_t end = begin + part.count;
        workOnPart(part, end < row.count ? row.part(end, perPart) : next);
    }
}

/// Calls `work(from, to, count)` for the parts of a row.
template <class Work>
void forEachPart(const Run& row, const Run& next, Work work) {
    splitRow(row, next, work, [&](const Run& part, const Run& following) {
        following.prefetch();
        work(part.from, part.to, part.count);
    });
}

/// The same for a destination that is streamed: each part is made in a buffer and copied from there.
template <class Work>
void forEachStreamedPart(const Run& row, const Run& next, Work work) {
    alignas(64) unsigned char buffer[kPartBytes];
    splitRow(row, next, work, [&](const Run& part, const Run& following) {
        if (row.from != row.to) prefetchRange(following.from, following.count * following.fromBytes);
        work(part.from, buffer, part.count);
        streamKernels().copy(buffer, part.to, part.count * part.toBytes);
    });
}

/// What an operation does with the elements that stand at its destination.
enum class Destination { kRead, kOverwritten };

/// Calls `work(from, to, count)` for the rows of two arrays, in parts that suit the cache. A destination that is only
/// overwritten may be streamed: then `to` lies in a buffer.
template <class Work>
void forEachPart(Destination use, const void* source, unsigned int sourceType, const void* destination,
                 unsigned int destinationType, unsigned int width, unsigned int height, Work work) {
    const auto runAt = [&](std::size_t y) {
        return Run{rowAt(source, y), rowAt(destination, y), elementSize(sourceType),
                   elementSize(destinationType), width};
    };
    const std::size_t bytes = std::size_t{elementSize(destinationType)} * width;
    const bool isStreamed =
        use == Destination::kOverwritten && height != 0 && bytes >= kStreamedBytes / height;
    for (std::size_t y = 0; y < height; ++y) {
        const Run row = runAt(y);
        const Run next = y + 1 < height ? runAt(y + 1).part(0, row.countPerPart()) : row.part(width, 0);
        if (isStreamed) {
            forEachStreamedPart(row, next, work);
        } else {
            forEachPart(row, next, work);
        }
    }
    if (isStreamed) streamKernels().finish();
}

/// Calls `work(part, count)` for the rows of an array in place, in parts that suit the cache.
template <class Work>
void forEachPart(const void* rows, unsigned int width, unsigned int height, unsigned int type, Work work,
                 Destination use = Destination::kRead) {
    forEachPart(use, rows, type, rows, type, width, height,
                [&](const void* /*from*/, unsigned char* to, std::size_t count) { work(to, count); });
}

bool isType(unsigned int type) {
    return elementSize(type) != 0;
}

/// An array without rows needs no table.
bool hasRows(const void* rows, unsigned int height) {
    return rows != nullptr || height == 0;
}

/// What the range of floats is stretched over.
double spanOf(unsigned int type) {
    switch (type) {
        case MAT_ARRAY_INT16:
        case MAT_ARRAY_UINT16:
            return 65535.0;
        case MAT_ARRAY_INT32:
        case MAT_ARRAY_UINT32:
            return 4294967295.0;
        default:
            return 255.0;
    }
}

/// The range of floats as `matGetRangeOfArray2v` finds it. It begins with the largest doubles, crossed, which
/// infinities on the wrong side do not change.
void rangeOfFloats(const void* rows, unsigned int width, unsigned int height, double& min, double& max) {
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    float least = kInfinity;
    float greatest = -kInfinity;
    const auto floatRange = elementKernels().floatRange;
    forEachPart(rows, width, height, MAT_ARRAY_FLOAT,
                [&](const void* part, std::size_t count) { floatRange(part, count, least, greatest); });
    min = least == kInfinity ? velquad::kNoValue : static_cast<double>(least);
    max = greatest == -kInfinity ? -velquad::kNoValue : static_cast<double>(greatest);
}

/// Floats become floats and doubles as they are.
bool isNormalised(unsigned int type) {
    return type != MAT_ARRAY_FLOAT && type != MAT_ARRAY_DOUBLE;
}

Normalisation normalisationOf(const void* rows, unsigned int width, unsigned int height, unsigned int type) {
    double min = 0.0;
    double max = 0.0;
    rangeOfFloats(rows, width, height, min, max);
    const double extent = max - min;
    const double scale = kFlatRange > std::fabs(extent) ? 0.0 : 1.0 / extent;
    return {min, scale * spanOf(type)};
}

void storePackedPixel(double value, void* out, std::size_t bytes) {
    const auto packed = static_cast<std::uint64_t>(truncToInt64(value));
    for (std::size_t i = 0; i < bytes; ++i)
        storeElement(out, i, static_cast<std::uint8_t>(packed >> (8 * i)));
}

std::int32_t mappedToInt32(double value) {
    if (value >= 2147483646.5) return INT32_MAX;
    if (-2147483647.5 > value) return INT32_MIN;
    return lroundToInt32(value);
}

std::uint32_t mappedToUInt32(double value) {
    if (value >= 4294967294.5) return UINT32_MAX;
    if (kSmallestUInt32 > value) return 0;
    // Kept: truncation to signed 32 bits, so that 2147483647.5 and above store 0x80000000.
    return static_cast<std::uint32_t>(truncToInt32(value + 0.5));
}

bool mapValue(double value, void* out, unsigned int type) {
    return dispatchElement(type, [value, out]<class ElementType>(ElementType /*element*/) {
        using Value = typename ElementType::Value;
        constexpr unsigned int kType = ElementType::kType;
        if constexpr (ElementType::kComponents > 1) {
            storePackedPixel(value, out, ElementType::kBytes);
        } else if constexpr (kType == MAT_ARRAY_INT32) {
            storeElement(out, 0, mappedToInt32(value));
        } else if constexpr (kType == MAT_ARRAY_UINT32) {
            storeElement(out, 0, mappedToUInt32(value));
        } else if constexpr (kType == MAT_ARRAY_FLOAT) {
            storeElement(out, 0, static_cast<float>(limited(value, -kLargestFloat, kLargestFloat)));
        } else if constexpr (kType == MAT_ARRAY_DOUBLE) {
            storeElement(out, 0, value);
        } else {
            constexpr double kLowest = std::numeric_limits<Value>::min();
            constexpr double kHighest = std::numeric_limits<Value>::max();
            storeElement(out, 0, static_cast<Value>(lroundToInt32(limited(value, kLowest, kHighest))));
        }
    });
}

/// A bound of an integer type of up to 16 bits, from above or from below. Kept: only the side that points out of the
/// type is limited; of a bound beyond the other end the low bits are taken.
template <class Value>
Value highBound(double high) {
    const std::int32_t h = lroundToInt32(high);
    return h > std::numeric_limits<Value>::max() ? std::numeric_limits<Value>::max() : static_cast<Value>(h);
}

template <class Value>
Value lowBound(double low) {
    const std::int32_t l = lroundToInt32(low);
    return l < std::numeric_limits<Value>::min() ? std::numeric_limits<Value>::min() : static_cast<Value>(l);
}

/// A bound of the signed 32-bit type; `otherwise` is what a value within the range is rounded from.
std::int32_t boundOfInt32(double value, double otherwise) {
    if (value >= 2147483646.0) return INT32_MAX;
    if (-2147483647.0 > value) return INT32_MIN;
    return lroundToInt32(otherwise);
}

std::uint32_t boundOfUInt32(double value) {
    if (value > 4294967295.0) return UINT32_MAX;
    if (0.0 > value) return 0;
    return truncatedTo<UInt32Element>(value + 0.5);
}

template <class ElementType>
ClampBounds clampBounds(double low, double high) {
    using Value = typename ElementType::Value;
    constexpr unsigned int kType = ElementType::kType;
    // Kept: the low bound of unsigned 16-bit integers and of floating point numbers is not limited by the high one.
    constexpr bool kIsLowLimited =
        kType != MAT_ARRAY_UINT16 && kType != MAT_ARRAY_FLOAT && kType != MAT_ARRAY_DOUBLE;
    Value h;
    Value l;
    if constexpr (kType == MAT_ARRAY_FLOAT || kType == MAT_ARRAY_DOUBLE) {
        h = static_cast<Value>(high);
        l = static_cast<Value>(low);
    } else if constexpr (kType == MAT_ARRAY_INT32) {
        h = boundOfInt32(high, high);
        // Kept: a low bound within the range takes the value of the high one.
        l = boundOfInt32(low, high);
    } else if constexpr (kType == MAT_ARRAY_UINT32) {
        h = boundOfUInt32(high);
        l = boundOfUInt32(low);
    } else {
        h = highBound<Value>(high);
        l = lowBound<Value>(low);
    }
    if (kIsLowLimited && h < l) l = h;
    ClampBounds bounds = {};
    storeElement(bounds.high, 0, h);
    storeElement(bounds.low, 0, l);
    return bounds;
}

/// Every step of the map is monotone, so the results of the extreme values enclose all others.
template <class ElementType>
bool isNarrow(double offset, double scale, double bias) {
    using Value = typename ElementType::Value;
    const double first = (static_cast<double>(std::numeric_limits<Value>::min()) + offset) * scale + bias;
    const double last = (static_cast<double>(std::numeric_limits<Value>::max()) + offset) * scale + bias;
    return std::fabs(first) < kNarrowLimit && std::fabs(last) < kNarrowLimit;
}

}  // namespace

extern "C" int matConvertArrayToFloat2v(const void* const* source, float* const* destination,
                                        unsigned int width, unsigned int height, unsigned int type,
                                        int flags) {
    if (source == nullptr || destination == nullptr || !isType(type)) return 0;
    const ElementKernels& kernels = elementKernels();
    const bool isPixel = type == MAT_ARRAY_BYTE3 || type == MAT_ARRAY_BYTE4;
    const auto convert = isPixel && (flags & 1) != 0 ? kernels.largestToFloat[type] : kernels.toFloat[type];
    if (convert == nullptr) return 0;
    forEachPart(Destination::kOverwritten, source, type, destination, MAT_ARRAY_FLOAT, width, height,
                convert);
    return 1;
}

extern "C" int matConvertArrayFromFloat2v(const float* const* source, void* const* destination,
                                          unsigned int width, unsigned int height, unsigned int type) {
    if (source == nullptr || destination == nullptr) return 0;
    if (width == 0 || height == 0 || !isType(type)) return 0;
    const Normalisation normalisation =
        isNormalised(type) ? normalisationOf(source, width, height, type) : Normalisation{};
    const auto convert = elementKernels().fromFloat[type];
    forEachPart(
        Destination::kOverwritten, source, MAT_ARRAY_FLOAT, destination, type, width, height,
        [&](const void* from, void* to, std::size_t count) { convert(from, to, count, normalisation); });
    return 1;
}

extern "C" int matClearArray2v(void* const* rows, unsigned int width, unsigned int height, unsigned int type,
                               double value) {
    unsigned char element[8] = {};
    if (!hasRows(rows, height) || !mapValue(value, element, type)) return 0;
    const auto fill = elementKernels().fill[type];
    // Of pixels of four bytes the last one stays.
    forEachPart(
        rows, width, height, type, [&](void* part, std::size_t count) { fill(part, count, element); },
        type == MAT_ARRAY_BYTE4 ? Destination::kRead : Destination::kOverwritten);
    return 1;
}

extern "C" int matClampArray2v(void* const* rows, unsigned int width, unsigned int height, unsigned int type,
                               double low, double high) {
    if (!hasRows(rows, height)) return 0;
    const bool isKnown = dispatchElement(type, [&]<class ElementType>(ElementType /*element*/) {
        const ClampBounds bounds = clampBounds<ElementType>(low, high);
        const auto clamp = elementKernels().clamp[type];
        forEachPart(rows, width, height, type,
                    [&](void* part, std::size_t count) { clamp(part, count, bounds); });
    });
    return isKnown ? 1 : 0;
}

extern "C" int matTransformArray2v(void* const* rows, unsigned int width, unsigned int height,
                                   unsigned int type, double offset, double scale, double bias) {
    if (rows == nullptr) return 0;
    const bool isKnown = dispatchElement(type, [&]<class ElementType>(ElementType /*element*/) {
        const LinearMap map{offset, scale, bias, isNarrow<ElementType>(offset, scale, bias)};
        const auto transform = elementKernels().transform[type];
        forEachPart(rows, width, height, type,
                    [&](void* part, std::size_t count) { transform(part, count, map); });
    });
    // Kept: signed bytes are transformed and still give 0.
    return isKnown && type != MAT_ARRAY_INT8 ? 1 : 0;
}

extern "C" int matMapValue1d(double value, void* out, unsigned int type) {
    return out != nullptr && mapValue(value, out, type) ? 1 : 0;
}
