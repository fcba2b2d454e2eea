// Inner loops of zoom by nearest samples. Compiled for several instruction sets; see frame/kernels.h for what may be used
// here.
#include "array/nearest_kernels.h"

#include "array/element.h"
#include "array/prefetch.h"

#if defined(__AVX512F__) && defined(__AVX512BW__) && defined(__AVX512VL__)
#define VELQUAD_NEAREST_WINDOWS 1
#if !defined(__clang__)
// The compiler's own header leaves operands undefined that an instruction does not use.
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif
#include <immintrin.h>
#else
#define VELQUAD_NEAREST_WINDOWS 0
#endif

#if defined(__SSSE3__)
#define VELQUAD_NEAREST_SHUFFLES 1
#include <immintrin.h>
#else
#define VELQUAD_NEAREST_SHUFFLES 0
#endif

namespace velquad::array::VELQUAD_KERNEL_LEVEL {

namespace {

template <class Value>
VELQUAD_ALWAYS_INLINE void copyOneByOne(const NearestSource& source, const NearestColumns& columns,
                                        std::size_t begin, void* destination) {
    if (begin >= columns.count) return;
    const auto first = static_cast<std::size_t>(columns.index[begin]);
    const auto last = static_cast<std::size_t>(columns.index[columns.count - 1]);
    prefetchRange(source.ahead + first * sizeof(Value), (last - first + 1) * sizeof(Value));
    for (std::size_t i = begin; i < columns.count; ++i) {
        const auto index = static_cast<std::size_t>(columns.index[i]);
        storeElement(destination, i, loadElement<Value>(source.row, index));
    }
}

#if VELQUAD_NEAREST_WINDOWS

/// Elements of a group are permuted from a window of the source row, which begins with the first of them.
template <class Value>
constexpr std::int32_t kWindow = 64;

VELQUAD_ALWAYS_INLINE __m256i loadOffsets(const NearestColumns& columns, std::size_t i) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i_u*>(columns.offset + i));
}

/// Bytes are found in words: the word that holds a byte, moved down if it is the upper one.
VELQUAD_ALWAYS_INLINE void copyGroup(const std::uint8_t* /*type*/, const unsigned char* window,
                                     __m256i offsets, unsigned char* to) {
    const __m256i which = _mm256_srli_epi16(offsets, 1);
    const __m256i shift = _mm256_slli_epi16(_mm256_and_si256(offsets, _mm256_set1_epi16(1)), 3);
    const __m512i words = _mm512_permutexvar_epi16(_mm512_castsi256_si512(which), _mm512_loadu_si512(window));
    const __m256i found = _mm256_srlv_epi16(_mm512_castsi512_si256(words), shift);
    _mm_storeu_si128(reinterpret_cast<__m128i_u*>(to), _mm256_cvtepi16_epi8(found));
}

VELQUAD_ALWAYS_INLINE void copyGroup(const std::uint16_t* /*type*/, const unsigned char* window,
                                     __m256i offsets, unsigned char* to) {
    const __m512i found = _mm512_permutex2var_epi16(
        _mm512_loadu_si512(window), _mm512_castsi256_si512(offsets), _mm512_loadu_si512(window + 64));
    _mm256_storeu_si256(reinterpret_cast<__m256i_u*>(to), _mm512_castsi512_si256(found));
}

VELQUAD_ALWAYS_INLINE void copyGroup(const std::uint32_t* /*type*/, const unsigned char* window,
                                     __m256i offsets, unsigned char* to) {
    const __m512i which = _mm512_cvtepu16_epi32(offsets);
    const __m512i first =
        _mm512_permutex2var_epi32(_mm512_loadu_si512(window), which, _mm512_loadu_si512(window + 64));
    const __m512i second =
        _mm512_permutex2var_epi32(_mm512_loadu_si512(window + 128), which, _mm512_loadu_si512(window + 192));
    const __mmask16 isInSecond = _mm512_cmpgt_epi32_mask(which, _mm512_set1_epi32(31));
    _mm512_storeu_si512(to, _mm512_mask_blend_epi32(isInSecond, first, second));
}

/// @return the first column that is left.
template <class Value>
VELQUAD_ALWAYS_INLINE std::size_t copyGroups(const NearestSource& source, const NearestColumns& columns,
                                             void* destination) {
    if (columns.spanOfGroup >= kWindow<Value>) return 0;
    std::size_t end = columns.count / kNearestGroup * kNearestGroup;
    while (end > 0 && columns.index[end - kNearestGroup] > columns.lastIndex - (kWindow<Value> - 1))
        end -= kNearestGroup;
    const std::size_t span = (static_cast<std::size_t>(columns.spanOfGroup) + 1) * sizeof(Value);
    auto* to = static_cast<unsigned char*>(destination);
    for (std::size_t i = 0; i < end; i += kNearestGroup) {
        const auto first = static_cast<std::size_t>(columns.index[i]);
        prefetchRange(source.ahead + first * sizeof(Value), span);
        copyGroup(static_cast<const Value*>(nullptr), source.row + first * sizeof(Value),
                  loadOffsets(columns, i), to + i * sizeof(Value));
    }
    return end;
}

#endif

template <class Value>
void copy(const NearestSource& source, const NearestColumns& columns, void* destination) {
    std::size_t begin = 0;
#if VELQUAD_NEAREST_WINDOWS
    if constexpr (sizeof(Value) <= 4) begin = copyGroups<Value>(source, columns, destination);
#endif
    copyOneByOne<Value>(source, columns, begin, destination);
}

/// Bytes that are copied as one.
struct Pixel {
    unsigned char byte[3];
};

#if VELQUAD_NEAREST_SHUFFLES

VELQUAD_ALWAYS_INLINE __m128i loadBytes(const unsigned char* from) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i_u*>(from));
}

/// Four pixels at a time, two from a vector of the source row each. The last four bytes of a vector are written again
/// with the next ones. @return the first column that is left.
VELQUAD_ALWAYS_INLINE std::size_t copyPixelGroups(const NearestSource& source, const NearestColumns& columns,
                                                  unsigned char* to) {
    if (columns.spanOfPair >= kPixelWindow) return 0;
    const std::int32_t lastWindow = columns.lastIndex - kPixelWindow;
    std::size_t i = 0;
    for (; i + 2 * kPixelGroup <= columns.count && columns.index[i + 2] <= lastWindow; i += kPixelGroup) {
        const auto first = static_cast<std::size_t>(columns.index[i]);
        __builtin_prefetch(source.ahead + 3 * first);
        const auto third = static_cast<std::size_t>(columns.index[i + 2]);
        const __m128i left =
            _mm_shuffle_epi8(loadBytes(source.row + 3 * first), loadBytes(columns.bytes[0] + 4 * i));
        const __m128i right =
            _mm_shuffle_epi8(loadBytes(source.row + 3 * third), loadBytes(columns.bytes[1] + 4 * i));
        _mm_storeu_si128(reinterpret_cast<__m128i_u*>(to + 3 * i), _mm_or_si128(left, right));
    }
    return i;
}

#endif

/// Pixels of three bytes are copied as four; the one behind, which is written next, takes the fourth. The last ones,
/// which are those of the last sample, have none behind.
void copyPixels(const NearestSource& source, const NearestColumns& columns, void* destination) {
    auto* to = static_cast<unsigned char*>(destination);
    std::size_t i = 0;
#if VELQUAD_NEAREST_SHUFFLES
    i = copyPixelGroups(source, columns, to);
#endif
    const auto begin = static_cast<std::size_t>(columns.index[i]);
    const auto last = static_cast<std::size_t>(columns.index[columns.count - 1]);
    prefetchRange(source.ahead + 3 * begin, 3 * (last - begin));
    for (; static_cast<std::size_t>(columns.index[i]) < last; ++i)
        __builtin_memcpy(to + 3 * i, source.row + 3 * static_cast<std::size_t>(columns.index[i]), 4);
    copyOneByOne<Pixel>(source, columns, i, destination);
}

}  // namespace

extern const NearestKernels kNearestKernels;
const NearestKernels kNearestKernels = {{nullptr, copy<std::uint8_t>, copy<std::uint16_t>, copyPixels,
                                         copy<std::uint32_t>, nullptr, nullptr, nullptr,
                                         copy<std::uint64_t>}};

}  // namespace velquad::array::VELQUAD_KERNEL_LEVEL
