// Inner loops of the Fourier transform. Compiled for several instruction sets; see frame/kernels.h for what may be
// used here.
#include "signal/fft_kernels.h"

#include "signal/lanes.h"

namespace velquad::signal::VELQUAD_KERNEL_LEVEL {

namespace {

/// Neighbouring elements of a spectrum.
struct Elements {
    Lanes re;
    Lanes im;
};

VELQUAD_ALWAYS_INLINE Elements loadElements(const double* re, const double* im, std::size_t at) {
    return {load(re + at), load(im + at)};
}

VELQUAD_ALWAYS_INLINE void storeElements(double* re, double* im, std::size_t at, const Elements& elements) {
    store(re + at, elements.re);
    store(im + at, elements.im);
}

/// `element` times its factor.
VELQUAD_ALWAYS_INLINE Elements turned(const Elements& element, Lanes c, Lanes s) {
    return {element.re * c - s * element.im, s * element.re + element.im * c};
}

VELQUAD_ALWAYS_INLINE void butterfly(Elements& upper, Elements& lower, const Elements& turnedLower) {
    lower.re = upper.re - turnedLower.re;
    lower.im = upper.im - turnedLower.im;
    upper.re += turnedLower.re;
    upper.im += turnedLower.im;
}

/// The first element of a half has the factor 1, which is not multiplied.
VELQUAD_ALWAYS_INLINE Elements withFirstUnturned(const Elements& elements, Elements turnedElements) {
    turnedElements.re[0] = elements.re[0];
    turnedElements.im[0] = elements.im[0];
    return turnedElements;
}

VELQUAD_ALWAYS_INLINE Lanes spread(double value) {
    return value - Lanes{};
}

constexpr std::size_t kReversed[kFftBlock] = {0, 4, 2, 6, 1, 5, 3, 7};

/// Joins halves of `Half` elements in a block of each lane.
template <std::size_t Half>
VELQUAD_ALWAYS_INLINE void stageOfBlocks(Elements (&block)[kFftBlock], const FftData& data) {
    for (std::size_t group = 0; group < kFftBlock; group += 2 * Half) {
        Elements& lower = block[group + Half];
        butterfly(block[group], lower, Elements(lower));
        for (std::size_t k = 1; k < Half; ++k) {
            Elements& other = block[group + k + Half];
            butterfly(block[group + k], other,
                      turned(other, spread(data.cosines[Half + k]), spread(data.sines[Half + k])));
        }
    }
}

/// Lanes of two rows, exchanged so that a square of rows is mirrored when all distances have been gone through.
constexpr int upperLane(int lane, int distance) {
    return (lane & distance) != 0 ? static_cast<int>(kLanes) + lane - distance : lane;
}

constexpr int lowerLane(int lane, int distance) {
    return (lane & distance) != 0 ? static_cast<int>(kLanes) + lane : lane + distance;
}

template <int D>
VELQUAD_ALWAYS_INLINE void exchange(Lanes& upper, Lanes& lower) {
    const Lanes a = upper;
    const Lanes b = lower;
#if defined(__AVX512F__)
    upper = __builtin_shufflevector(a, b, upperLane(0, D), upperLane(1, D), upperLane(2, D), upperLane(3, D),
                                    upperLane(4, D), upperLane(5, D), upperLane(6, D), upperLane(7, D));
    lower = __builtin_shufflevector(a, b, lowerLane(0, D), lowerLane(1, D), lowerLane(2, D), lowerLane(3, D),
                                    lowerLane(4, D), lowerLane(5, D), lowerLane(6, D), lowerLane(7, D));
#elif defined(__AVX__)
    upper = __builtin_shufflevector(a, b, upperLane(0, D), upperLane(1, D), upperLane(2, D), upperLane(3, D));
    lower = __builtin_shufflevector(a, b, lowerLane(0, D), lowerLane(1, D), lowerLane(2, D), lowerLane(3, D));
#else
    upper = __builtin_shufflevector(a, b, upperLane(0, D), upperLane(1, D));
    lower = __builtin_shufflevector(a, b, lowerLane(0, D), lowerLane(1, D));
#endif
}

template <int D>
VELQUAD_ALWAYS_INLINE void exchangeRows(Lanes (&rows)[kLanes]) {
    constexpr std::size_t kDistance = D;
    for (std::size_t row = 0; row < kLanes; ++row) {
        if ((row & kDistance) == 0) exchange<D>(rows[row], rows[row + kDistance]);
    }
}

/// Row r gets what was lane r of each row.
VELQUAD_ALWAYS_INLINE void mirror(Lanes (&rows)[kLanes]) {
    exchangeRows<1>(rows);
    if constexpr (kLanes > 2) exchangeRows<2>(rows);
    if constexpr (kLanes > 4) exchangeRows<4>(rows);
}

/// Stores the block of each lane in one piece, the blocks `distance` elements apart, in bit-reversed order.
template <Lanes Elements::*Part>
VELQUAD_ALWAYS_INLINE void storeBlocks(const Elements (&block)[kFftBlock], double* at, std::size_t distance) {
    for (std::size_t begin = 0; begin < kFftBlock; begin += kLanes) {
        Lanes rows[kLanes];
        for (std::size_t row = 0; row < kLanes; ++row)
            rows[row] = block[begin + row].*Part;
        mirror(rows);
        for (std::size_t lane = 0; lane < kLanes; ++lane)
            store(at + kReversed[lane] * kLanes / kFftBlock * distance + begin, rows[lane]);
    }
}

/// The lanes hold neighbouring blocks of the source, which bit reversal spreads over the whole spectrum.
void firstStages(const FftSource& source, const FftData& data) {
    const std::size_t blocks = data.n / kFftBlock;
    const std::size_t steps = blocks / kLanes;
    std::size_t reversed = 0;
    for (std::size_t i = 0; i < blocks; i += kLanes) {
        Elements block[kFftBlock];
        for (std::size_t k = 0; k < kFftBlock; ++k)
            block[k] = loadElements(source.re, source.im, kReversed[k] * blocks + i);
        stageOfBlocks<1>(block, data);
        stageOfBlocks<2>(block, data);
        stageOfBlocks<4>(block, data);
        storeBlocks<&Elements::re>(block, data.re + reversed * kFftBlock, steps * kFftBlock);
        storeBlocks<&Elements::im>(block, data.im + reversed * kFftBlock, steps * kFftBlock);
        std::size_t bit = steps / 2;
        for (; bit != 0 && bit <= reversed; bit /= 2)
            reversed -= bit;
        reversed += bit;
    }
}

template <bool IsFirst>
VELQUAD_ALWAYS_INLINE void stageAt(const FftData& data, std::size_t half, std::size_t group, std::size_t k) {
    const std::size_t i = group + k;
    Elements upper = loadElements(data.re, data.im, i);
    Elements lower = loadElements(data.re, data.im, i + half);
    Elements t = turned(lower, load(data.cosines + half + k), load(data.sines + half + k));
    if (IsFirst) t = withFirstUnturned(lower, t);
    butterfly(upper, lower, t);
    storeElements(data.re, data.im, i, upper);
    storeElements(data.re, data.im, i + half, lower);
}

void stage(const FftData& data, std::size_t half) {
    for (std::size_t group = 0; group < data.n; group += 2 * half) {
        stageAt<true>(data, half, group, 0);
        for (std::size_t k = kLanes; k < half; k += kLanes)
            stageAt<false>(data, half, group, k);
    }
}

template <bool IsFirst>
VELQUAD_ALWAYS_INLINE void twoStagesAt(const FftData& data, std::size_t half, std::size_t group,
                                       std::size_t k) {
    double* re = data.re + group + k;
    double* im = data.im + group + k;
    Elements a = loadElements(re, im, 0);
    Elements b = loadElements(re, im, half);
    Elements c = loadElements(re, im, 2 * half);
    Elements d = loadElements(re, im, 3 * half);
    const Lanes cosine = load(data.cosines + half + k);
    const Lanes sine = load(data.sines + half + k);
    Elements turnedB = turned(b, cosine, sine);
    Elements turnedD = turned(d, cosine, sine);
    if (IsFirst) {
        turnedB = withFirstUnturned(b, turnedB);
        turnedD = withFirstUnturned(d, turnedD);
    }
    butterfly(a, b, turnedB);
    butterfly(c, d, turnedD);
    const double* nextCosines = data.cosines + 2 * half + k;
    const double* nextSines = data.sines + 2 * half + k;
    Elements turnedC = turned(c, load(nextCosines), load(nextSines));
    if (IsFirst) turnedC = withFirstUnturned(c, turnedC);
    butterfly(a, c, turnedC);
    butterfly(b, d, turned(d, load(nextCosines + half), load(nextSines + half)));
    storeElements(re, im, 0, a);
    storeElements(re, im, half, b);
    storeElements(re, im, 2 * half, c);
    storeElements(re, im, 3 * half, d);
}

void twoStages(const FftData& data, std::size_t half) {
    for (std::size_t group = 0; group < data.n; group += 4 * half) {
        twoStagesAt<true>(data, half, group, 0);
        for (std::size_t k = kLanes; k < half; k += kLanes)
            twoStagesAt<false>(data, half, group, k);
    }
}

}  // namespace

extern const FftKernels kFftKernels;
const FftKernels kFftKernels = {firstStages, stage, twoStages};

}  // namespace velquad::signal::VELQUAD_KERNEL_LEVEL
