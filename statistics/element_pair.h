// Two neighbouring elements of an array of any type as a vector of doubles.
#ifndef VELQUAD_STATISTICS_ELEMENT_PAIR_H
#define VELQUAD_STATISTICS_ELEMENT_PAIR_H

#include <emmintrin.h>

#include <cstddef>
#include <cstdint>

#include "statistics/element_type.h"

namespace velquad::statistics {

/// Two neighbouring elements as doubles.
template <class T>
__m128d loadPair(const void* values, std::size_t index) {
    return _mm_setr_pd(elementAt<T>(values, index), elementAt<T>(values, index + 1));
}

template <>
inline __m128d loadPair<double>(const void* values, std::size_t index) {
    return _mm_loadu_pd(static_cast<const double*>(tailOf<double>(values, index)));
}

template <>
inline __m128d loadPair<float>(const void* values, std::size_t index) {
    const __m128i bits = _mm_loadl_epi64(static_cast<const __m128i*>(tailOf<float>(values, index)));
    return _mm_cvtps_pd(_mm_castsi128_ps(bits));
}

template <>
inline __m128d loadPair<std::int32_t>(const void* values, std::size_t index) {
    return _mm_cvtepi32_pd(_mm_loadl_epi64(static_cast<const __m128i*>(tailOf<std::int32_t>(values, index))));
}

/// The lower and the upper lane.
struct Lanes {
    double low = 0.0;
    double high = 0.0;
};

inline Lanes lanesOf(__m128d pair) {
    return {_mm_cvtsd_f64(pair), _mm_cvtsd_f64(_mm_unpackhi_pd(pair, pair))};
}

}  // namespace velquad::statistics

#endif  // VELQUAD_STATISTICS_ELEMENT_PAIR_H
