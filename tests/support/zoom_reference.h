// Zoom as it is defined, cell by cell: the measure of the fast version in tests and benchmarks.
#ifndef VELQUAD_TESTS_SUPPORT_ZOOM_REFERENCE_H
#define VELQUAD_TESTS_SUPPORT_ZOOM_REFERENCE_H

#include <cmath>
#include <cstdint>
#include <cstring>
#include <type_traits>
#include <vector>

namespace velquad::test::zoom {

using Int = std::int64_t;

struct Rect {
    Int left;
    Int top;
    Int right;
    Int bottom;
};

inline const unsigned char* rowOf(const void* rows, Int y) {
    const unsigned char* row = nullptr;
    std::memcpy(&row, static_cast<const unsigned char*>(rows) + 8 * y, 8);
    return row;
}

inline unsigned char* rowOf(void* rows, Int y) {
    unsigned char* row = nullptr;
    std::memcpy(&row, static_cast<unsigned char*>(rows) + 8 * y, 8);
    return row;
}

template <class T>
double sample(const unsigned char* row, Int index) {
    T value;
    std::memcpy(&value, row + index * static_cast<Int>(sizeof(T)), sizeof(T));
    return static_cast<double>(value);
}

inline std::int32_t truncated(double value) {
    return value > -2147483649.0 && value < 2147483648.0 ? static_cast<std::int32_t>(value) : INT32_MIN;
}

inline std::int32_t rounded(double v) {
    return truncated(0 > v ? v - 0.5 : v + 0.5);
}

template <class T>
T stored(double v) {
    if constexpr (std::is_same_v<T, double>) {
        return v;
    } else if constexpr (std::is_same_v<T, float>) {
        if (v > 3.4028234663852886e+38) v = 3.4028234663852886e+38;
        if (-3.4028234663852886e+38 > v) v = -3.4028234663852886e+38;
        return static_cast<float>(v);
    } else if constexpr (std::is_same_v<T, std::int32_t>) {
        if (v > 2147483646.45) return INT32_MAX;
        if (-2147483647.45 > v) return INT32_MIN;
        return rounded(v);
    } else if constexpr (std::is_same_v<T, std::uint32_t>) {
        if (v > 4294967294.45) return UINT32_MAX;
        if (0.55 > v) return 0;
        return static_cast<std::uint32_t>(rounded(v));
    } else {
        std::int32_t r = rounded(v);
        constexpr bool kSigned = std::is_signed_v<T>;
        constexpr std::int32_t kHighest = sizeof(T) == 1 ? (kSigned ? 127 : 255) : (kSigned ? 32767 : 65535);
        constexpr std::int32_t kLowest = kSigned ? -kHighest - 1 : 0;
        if (r > kHighest) r = kHighest;
        if (kLowest > r) r = kLowest;
        return static_cast<T>(r);
    }
}

struct Job {
    std::uint32_t srcWidth;
    std::uint32_t srcHeight;
    const void* src;
    std::uint32_t dstWidth;
    std::uint32_t dstHeight;
    void* dst;

    double sx() const { return static_cast<double>(dstWidth) / static_cast<double>(srcWidth); }
    double sy() const { return static_cast<double>(dstHeight) / static_cast<double>(srcHeight); }
};

inline void nearest(const Job& job, const Rect& rect, std::size_t bytes) {
    const double sx = job.sx();
    const double sy = job.sy();
    for (Int y = rect.top; y <= rect.bottom; ++y) {
        Int row = static_cast<Int>(static_cast<double>(y) / sy + 0.5);
        if (row > Int{job.srcHeight} - 1) row = Int{job.srcHeight} - 1;
        const unsigned char* source = rowOf(job.src, row);
        unsigned char* destination = rowOf(job.dst, y);
        for (Int x = rect.left; x <= rect.right; ++x) {
            Int column = static_cast<Int>(static_cast<double>(x) / sx + 0.5);
            if (column > Int{job.srcWidth} - 1) column = Int{job.srcWidth} - 1;
            const auto* from = source + static_cast<std::size_t>(column) * bytes;
            auto* to = destination + static_cast<std::size_t>(x) * bytes;
            switch (bytes) {
                case 1:
                    std::memcpy(to, from, 1);
                    break;
                case 2:
                    std::memcpy(to, from, 2);
                    break;
                case 3:
                    std::memcpy(to, from, 3);
                    break;
                case 4:
                    std::memcpy(to, from, 4);
                    break;
                default:
                    std::memcpy(to, from, 8);
                    break;
            }
        }
    }
}

template <class T, Int kValues>
void bilinear(const Job& job, const Rect& rect) {
    const double sx = job.sx();
    const double sy = job.sy();
    for (Int y = rect.top; y <= rect.bottom; ++y) {
        const double fy = static_cast<double>(y) / sy;
        const Int iy = static_cast<Int>(fy);
        const double ty = fy - static_cast<double>(iy);
        const unsigned char* row0 = rowOf(job.src, iy);
        const unsigned char* row1 = rowOf(job.src, iy + 1);
        unsigned char* destination = rowOf(job.dst, y);
        for (Int x = rect.left; x <= rect.right; ++x) {
            const double fx = static_cast<double>(x) / sx;
            const Int ix = static_cast<Int>(fx);
            const double tx = fx - static_cast<double>(ix);
            for (Int c = 0; c < kValues; ++c) {
                const double p00 = sample<T>(row0, ix * kValues + c);
                const double p01 = sample<T>(row0, (ix + 1) * kValues + c);
                const double p10 = sample<T>(row1, ix * kValues + c);
                const double p11 = sample<T>(row1, (ix + 1) * kValues + c);
                const double v =
                    p00 * (1 - tx) * (1 - ty) + p01 * tx * (1 - ty) + p10 * (1 - tx) * ty + p11 * tx * ty;
                const T value = stored<T>(v);
                std::memcpy(destination + (x * kValues + c) * static_cast<Int>(sizeof(T)), &value, sizeof(T));
            }
        }
    }
}

struct Weights {
    double a;
    double b;
    double c;
    double d;
};

inline std::vector<Weights> weights(std::uint32_t size, double scale) {
    std::vector<Weights> all(size);
    for (std::uint32_t i = 0; i < size; ++i) {
        const double f = i / scale;
        const double t = f - static_cast<double>(static_cast<Int>(f));
        all[i] = {(1 - t) * t * (1 - t), 1 - (t + t) * t + t * t * t, ((1 - t) * t + 1) * t, (1 - t) * t * t};
    }
    return all;
}

inline double combined(double p, double q, double r, double s, const Weights& w) {
    return q * w.b - p * w.a + r * w.c - s * w.d;
}

template <class T, Int kValues>
void cubic(const Job& job, const Rect& rect) {
    if (rect.right < rect.left || rect.bottom < rect.top) return;
    const double sx = job.sx();
    const double sy = job.sy();
    const std::vector<Weights> columns = weights(job.dstWidth, sx);
    const std::vector<Weights> rows = weights(job.dstHeight, sy);
    for (Int y = rect.top; y <= rect.bottom; ++y) {
        const Int iy = static_cast<Int>(static_cast<double>(y) / sy);
        const unsigned char* source[4];
        for (Int k = 0; k < 4; ++k)
            source[k] = iy - 1 + k < 0 ? nullptr : rowOf(job.src, iy - 1 + k);
        unsigned char* destination = rowOf(job.dst, y);
        for (Int x = rect.left; x <= rect.right; ++x) {
            const Int ix = static_cast<Int>(static_cast<double>(x) / sx);
            for (Int c = 0; c < kValues; ++c) {
                double line[4] = {};
                for (Int k = 0; k < 4; ++k) {
                    if (source[k] == nullptr) continue;  // Before the first row: weight 0, no sample.
                    const double before = ix == 0 ? 0.0 : sample<T>(source[k], (ix - 1) * kValues + c);
                    line[k] = combined(before, sample<T>(source[k], ix * kValues + c),
                                       sample<T>(source[k], (ix + 1) * kValues + c),
                                       sample<T>(source[k], (ix + 2) * kValues + c),
                                       columns[static_cast<std::size_t>(x)]);
                }
                const T value = stored<T>(
                    combined(line[0], line[1], line[2], line[3], rows[static_cast<std::size_t>(y)]));
                std::memcpy(destination + (x * kValues + c) * static_cast<Int>(sizeof(T)), &value, sizeof(T));
            }
        }
    }
}

inline Rect bilinearRect(const Job& job) {
    Rect rect{0, 0, -1, -1};
    for (Int y = Int{job.dstHeight} - 1; y >= 0; --y) {
        if (job.srcHeight > std::trunc(static_cast<double>(y) / job.sy()) + 1 + 1e-7) {
            rect.bottom = y;
            break;
        }
    }
    for (Int x = Int{job.dstWidth} - 1; x >= 0; --x) {
        if (job.srcWidth > std::trunc(static_cast<double>(x) / job.sx()) + 1 + 1e-7) {
            rect.right = x;
            break;
        }
    }
    return rect;
}

inline Rect cubicRect(const Job& job) {
    Rect rect{0, 0, -1, -1};
    for (Int y = 0; y < Int{job.dstHeight}; ++y) {
        if (std::trunc(static_cast<double>(y) / job.sy()) > 0) {
            rect.top = y;
            break;
        }
    }
    for (Int y = Int{job.dstHeight} - 1; y >= 0; --y) {
        if (job.srcHeight > std::trunc(static_cast<double>(y) / job.sy()) + 2 + 1e-7) {
            rect.bottom = y;
            break;
        }
    }
    for (Int x = 0; x < Int{job.dstWidth}; ++x) {
        if (std::trunc(static_cast<double>(x) / job.sx()) != 0) {
            rect.left = x;
            break;
        }
    }
    for (Int x = Int{job.dstWidth} - 1; x >= 0; --x) {
        if (job.srcWidth > std::trunc(static_cast<double>(x) / job.sx()) + 2 + 1e-7) {
            rect.right = x;
            break;
        }
    }
    return rect;
}

template <class T, Int kValues>
void zoom(const Job& job, unsigned int flags) {
    const std::size_t bytes = sizeof(T) * static_cast<std::size_t>(kValues);
    const Int right = Int{job.dstWidth} - 1;
    const Int bottom = Int{job.dstHeight} - 1;
    if (job.srcWidth == 0 || job.srcHeight == 0 || right < 0 || bottom < 0) return;
    if ((flags & 6U) == 0) {
        nearest(job, {0, 0, right, bottom}, bytes);
        return;
    }
    const Rect b = bilinearRect(job);
    if ((flags & 4U) != 0) {
        const Rect c = cubicRect(job);
        cubic<T, kValues>(job, c);
        bilinear<T, kValues>(job, {0, 0, b.right, c.top - 1});
        bilinear<T, kValues>(job, {0, c.bottom + 1, b.right, b.bottom});
        bilinear<T, kValues>(job, {0, c.top, c.left - 1, c.bottom});
        bilinear<T, kValues>(job, {c.right + 1, c.top, b.right, c.bottom});
    } else {
        bilinear<T, kValues>(job, b);
    }
    nearest(job, {b.right + 1, 0, right, bottom}, bytes);
    nearest(job, {0, b.bottom + 1, b.right, bottom}, bytes);
}

inline void zoomArray(const Job& job, unsigned int type, unsigned int flags) {
    switch (type) {
        case 1:
            zoom<std::int8_t, 1>(job, flags);
            break;
        case 2:
            zoom<std::uint8_t, 1>(job, flags);
            break;
        case 3:
            zoom<std::int16_t, 1>(job, flags);
            break;
        case 4:
            zoom<std::uint16_t, 1>(job, flags);
            break;
        case 5:
            zoom<std::int32_t, 1>(job, flags);
            break;
        case 6:
            zoom<std::uint32_t, 1>(job, flags);
            break;
        case 7:
            zoom<float, 1>(job, flags);
            break;
        case 8:
            zoom<double, 1>(job, flags);
            break;
        case 9:
            zoom<std::uint8_t, 3>(job, flags);
            break;
        case 10:
            zoom<std::uint8_t, 4>(job, flags);
            break;
        default:
            break;
    }
}

}  // namespace velquad::test::zoom

#endif  // VELQUAD_TESTS_SUPPORT_ZOOM_REFERENCE_H
