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
const FftKernels kFftKernels = {stage, twoStages};

}  // namespace velquad::signal::VELQUAD_KERNEL_LEVEL
