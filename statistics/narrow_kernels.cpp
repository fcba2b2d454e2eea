// Sums over integers of 8 and 16 bits. Compiled for several instruction sets; see frame/kernels.h for what may be used
// here.
//
// Elements are moved so that one loop serves signed and unsigned types: those of 8 bits to 0 ... 255, those of 16 bits
// to -32768 ... 32767, where one instruction adds the products of neighbours. With x = u + s, y = v + s the sums of x
// and y follow from those of u and v: sum x = sum u + n s, sum x y = sum u v + s (sum u + sum v) + n s^2.
//
// An array that does not fill its last vector is continued with copies of its last element. They change no range,
// and what they add is taken off the sums.
#include <cstring>

#include "statistics/narrow_sums.h"
#include "statistics/narrow_vector.h"
#include "statistics/prefetch.h"

namespace velquad::statistics::VELQUAD_KERNEL_LEVEL {

namespace {

/// How the elements of a type are moved: which bits are flipped, and how far an element lies above the moved one.
template <class T>
struct Move;
template <>
struct Move<std::int8_t> {
    static constexpr int kFlip = 0x80;
    static constexpr std::int32_t kShift = -128;
};
template <>
struct Move<std::uint8_t> {
    static constexpr int kFlip = 0;
    static constexpr std::int32_t kShift = 0;
};
template <>
struct Move<std::int16_t> {
    static constexpr int kFlip = 0;
    static constexpr std::int32_t kShift = 0;
};
template <>
struct Move<std::uint16_t> {
    static constexpr int kFlip = 0x8000;
    static constexpr std::int32_t kShift = 32768;
};

/// The elements behind the last full vector of an array, continued to a vector.
template <class T>
struct Tail {
    static constexpr std::size_t kPerVector = Vector::kBytes / sizeof(T);
    T elements[kPerVector];

    /// @param used  1 to `kPerVector`.
    Tail(const char* values, std::size_t used) {
        std::memcpy(elements, values, used * sizeof(T));
        for (std::size_t i = used; i < kPerVector; ++i)
            elements[i] = elements[used - 1];
    }
    std::int32_t movedFill() const { return elements[kPerVector - 1] - Move<T>::kShift; }
};

/// Sums of lanes of unsigned 32-bit values, modulo 2^32 and by their high halves. Of up to 2^15 values of any size, the
/// high halves add up to less than 2^31, and the low halves too: their sum is what the two totals differ by.
class WideSums {
  public:
    VELQUAD_ALWAYS_INLINE void add(Vector values) {
        low_ = add32(low_, values);
        high_ = add32(high_, highHalves(values));
    }
    VELQUAD_ALWAYS_INLINE std::int64_t total() const {
        const LanesOf<std::uint32_t> low(low_);
        const LanesOf<std::uint32_t> high(high_);
        std::uint64_t sum = 0;
        for (std::size_t k = 0; k < LanesOf<std::uint32_t>::kCount; ++k) {
            const std::uint64_t floor = std::uint64_t{high.lane[k]} << 16;
            sum += floor + (low.lane[k] - static_cast<std::uint32_t>(floor));
        }
        return static_cast<std::int64_t>(sum);
    }

  private:
    Vector low_ = Vector::all32(0);
    Vector high_ = Vector::all32(0);
};

/// Lanes of bytes: a lane of products grows by at most 4 * 255^2 with each vector.
constexpr std::size_t kMaxVectors = kNarrowBlock / Vector::kBytes + 1;
static_assert(kMaxVectors * 4 * 255 * 255 < (1U << 31));
/// Lanes of words: twice as many vectors.
static_assert(2 * kMaxVectors <= (1U << 15));

/// Sums and range of moved elements, vector by vector.
template <std::size_t kElementBytes>
struct Gatherer;

template <>
struct Gatherer<1> {
    Vector sum = Vector::all32(0);
    Vector squares = Vector::all32(0);
    Vector least = Vector::all8(0xFF);
    Vector greatest = Vector::all8(0);

    VELQUAD_ALWAYS_INLINE static Vector flip(int bits) { return Vector::all8(bits); }
    VELQUAD_ALWAYS_INLINE void add(Vector u) {
        least = min8(least, u);
        greatest = max8(greatest, u);
        sum = add64(sum, sumsOf8(u));
        const Vector one = widenOneHalf(u);
        const Vector other = widenOtherHalf(u);
        squares = add32(squares, add32(products(one, one), products(other, other)));
    }
    VELQUAD_ALWAYS_INLINE NarrowSums totals() const {
        return {sumOfLanes<std::int64_t>(sum), sumOfLanes<std::int32_t>(squares),
                leastLane<std::uint8_t>(least), greatestLane<std::uint8_t>(greatest)};
    }
};

/// The squares of two neighbours add up to at most 2^31, which is right as an unsigned number.
template <>
struct Gatherer<2> {
    Vector ones = Vector::all16(1);
    Vector sum = Vector::all32(0);
    WideSums squares;
    Vector least = Vector::all16(INT16_MAX);
    Vector greatest = Vector::all16(INT16_MIN);

    VELQUAD_ALWAYS_INLINE static Vector flip(int bits) { return Vector::all16(bits); }
    VELQUAD_ALWAYS_INLINE void add(Vector u) {
        least = min16(least, u);
        greatest = max16(greatest, u);
        sum = add32(sum, products(u, ones));
        squares.add(products(u, u));
    }
    VELQUAD_ALWAYS_INLINE NarrowSums totals() const {
        return {sumOfLanes<std::int32_t>(sum), squares.total(), leastLane<std::int16_t>(least),
                greatestLane<std::int16_t>(greatest)};
    }
};

/// Sums of moved pairs, vector by vector.
template <std::size_t kElementBytes>
struct PairGatherer;

template <>
struct PairGatherer<1> {
    Vector x = Vector::all32(0);
    Vector y = Vector::all32(0);
    Vector xx = Vector::all32(0);
    Vector yy = Vector::all32(0);
    Vector xy = Vector::all32(0);

    VELQUAD_ALWAYS_INLINE void add(Vector u, Vector v) {
        x = add64(x, sumsOf8(u));
        y = add64(y, sumsOf8(v));
        const Vector u1 = widenOneHalf(u);
        const Vector v1 = widenOneHalf(v);
        const Vector u2 = widenOtherHalf(u);
        const Vector v2 = widenOtherHalf(v);
        xx = add32(xx, add32(products(u1, u1), products(u2, u2)));
        yy = add32(yy, add32(products(v1, v1), products(v2, v2)));
        xy = add32(xy, add32(products(u1, v1), products(u2, v2)));
    }
    VELQUAD_ALWAYS_INLINE NarrowPairSums totals(std::size_t /*vectorCount*/) const {
        return {sumOfLanes<std::int64_t>(x), sumOfLanes<std::int64_t>(y), sumOfLanes<std::int32_t>(xx),
                sumOfLanes<std::int32_t>(yy), sumOfLanes<std::int32_t>(xy)};
    }
};

/// The products of two neighbouring pairs add up to -2^31 + 2^16 at least and 2^31 at most. Raised by 2^31 - 2^16 they
/// are unsigned, as squares are.
template <>
struct PairGatherer<2> {
    static constexpr std::int32_t kRaise = 0x7FFF0000;
    Vector ones = Vector::all16(1);
    Vector raise = Vector::all32(kRaise);
    Vector x = Vector::all32(0);
    Vector y = Vector::all32(0);
    WideSums xx;
    WideSums yy;
    WideSums xy;

    VELQUAD_ALWAYS_INLINE void add(Vector u, Vector v) {
        x = add32(x, products(u, ones));
        y = add32(y, products(v, ones));
        xx.add(products(u, u));
        yy.add(products(v, v));
        xy.add(add32(products(u, v), raise));
    }
    VELQUAD_ALWAYS_INLINE NarrowPairSums totals(std::size_t vectorCount) const {
        const auto lanes = static_cast<std::int64_t>(vectorCount * LanesOf<std::int32_t>::kCount);
        return {sumOfLanes<std::int32_t>(x), sumOfLanes<std::int32_t>(y), xx.total(), yy.total(),
                xy.total() - lanes * kRaise};
    }
};

template <class T>
NarrowSums sums(const void* values, std::size_t count) {
    constexpr std::size_t kPerVector = Tail<T>::kPerVector;
    constexpr std::int64_t s = Move<T>::kShift;
    const char* at = static_cast<const char*>(values);
    const Vector flip = Gatherer<sizeof(T)>::flip(Move<T>::kFlip);
    // All full vectors but the last; that one and what remains are taken as the tail.
    const std::size_t vectorCount = (count - 1) / kPerVector;
    Gatherer<sizeof(T)> gatherer;
    for (std::size_t i = 0; i < vectorCount; ++i) {
        prefetchAhead(at + i * Vector::kBytes);
        gatherer.add(Vector::load(at + i * Vector::kBytes) ^ flip);
    }
    const Tail<T> tail(at + vectorCount * Vector::kBytes, count - vectorCount * kPerVector);
    gatherer.add(Vector::load(tail.elements) ^ flip);
    const NarrowSums moved = gatherer.totals();

    const auto n = static_cast<std::int64_t>(count);
    const auto fillCount = static_cast<std::int64_t>((vectorCount + 1) * kPerVector - count);
    const std::int64_t fill = tail.movedFill();
    const std::int64_t sum = moved.sum - fillCount * fill;
    const std::int64_t squares = moved.sumOfSquares - fillCount * fill * fill;
    return {sum + n * s, squares + 2 * s * sum + n * s * s, moved.min + Move<T>::kShift,
            moved.max + Move<T>::kShift};
}

template <class T>
NarrowPairSums pairSums(const void* x, const void* y, std::size_t count) {
    constexpr std::size_t kPerVector = Tail<T>::kPerVector;
    constexpr std::int64_t s = Move<T>::kShift;
    const char* atX = static_cast<const char*>(x);
    const char* atY = static_cast<const char*>(y);
    const Vector flip = Gatherer<sizeof(T)>::flip(Move<T>::kFlip);
    const std::size_t vectorCount = (count - 1) / kPerVector;
    PairGatherer<sizeof(T)> gatherer;
    for (std::size_t i = 0; i < vectorCount; ++i) {
        prefetchAhead(atX + i * Vector::kBytes);
        prefetchAhead(atY + i * Vector::kBytes);
        gatherer.add(Vector::load(atX + i * Vector::kBytes) ^ flip,
                     Vector::load(atY + i * Vector::kBytes) ^ flip);
    }
    const Tail<T> tailX(atX + vectorCount * Vector::kBytes, count - vectorCount * kPerVector);
    const Tail<T> tailY(atY + vectorCount * Vector::kBytes, count - vectorCount * kPerVector);
    gatherer.add(Vector::load(tailX.elements) ^ flip, Vector::load(tailY.elements) ^ flip);
    const NarrowPairSums moved = gatherer.totals(vectorCount + 1);

    const auto n = static_cast<std::int64_t>(count);
    const auto fillCount = static_cast<std::int64_t>((vectorCount + 1) * kPerVector - count);
    const std::int64_t u = tailX.movedFill();
    const std::int64_t v = tailY.movedFill();
    const std::int64_t sumU = moved.x - fillCount * u;
    const std::int64_t sumV = moved.y - fillCount * v;
    return {sumU + n * s, sumV + n * s, moved.xx - fillCount * u * u + 2 * s * sumU + n * s * s,
            moved.yy - fillCount * v * v + 2 * s * sumV + n * s * s,
            moved.xy - fillCount * u * v + s * (sumU + sumV) + n * s * s};
}

template <class T>
std::size_t oddCount(const void* values, std::size_t count) {
    static_assert(kNarrowBlock <= UINT16_MAX);
    const char* at = static_cast<const char*>(values);
    std::uint16_t odd = 0;
    for (std::size_t i = 0; i < count; ++i) {
        // The first byte of an integer is its lowest.
        odd = static_cast<std::uint16_t>(odd + (at[i * sizeof(T)] & 1));
    }
    return odd;
}

template <class T>
constexpr NarrowTypeKernels kernelsOf() {
    return {sums<T>, pairSums<T>, oddCount<T>};
}

}  // namespace

extern const NarrowKernels kNarrowKernels;
const NarrowKernels kNarrowKernels = {{kernelsOf<std::int8_t>(), kernelsOf<std::uint8_t>(),
                                       kernelsOf<std::int16_t>(), kernelsOf<std::uint16_t>()}};

}  // namespace velquad::statistics::VELQUAD_KERNEL_LEVEL
