// Conversion, fill, limits and linear map as they are defined, element by element, with the rules written out per
// type code. Rows are tables of addresses at any alignment.
#ifndef VELQUAD_TESTS_SUPPORT_ELEMENT_REFERENCE_H
#define VELQUAD_TESTS_SUPPORT_ELEMENT_REFERENCE_H

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace velquad::test::elements {

using Byte = unsigned char;

inline Byte* rowOf(const void* rows, std::size_t y) {
    Byte* row = nullptr;
    std::memcpy(&row, static_cast<const Byte*>(rows) + 8 * y, 8);
    return row;
}

template <class T>
T load(const Byte* row, std::size_t index) {
    T value;
    std::memcpy(&value, row + index * sizeof(T), sizeof(T));
    return value;
}

template <class T>
void store(Byte* row, std::size_t index, T value) {
    std::memcpy(row + index * sizeof(T), &value, sizeof(T));
}

/// The runtime's `lround` in its low 32 bits; 0 where that function has no result.
inline std::int32_t lround32(double value) {
    if (!(std::fabs(value) < 9223372036854775808.0)) return 0;
    return static_cast<std::int32_t>(
        static_cast<std::uint32_t>(static_cast<std::uint64_t>(std::llround(value))));
}

inline std::int32_t trunc32(double value) {
    return value > -2147483649.0 && value < 2147483648.0 ? static_cast<std::int32_t>(value) : INT32_MIN;
}

inline std::int64_t trunc64(double value) {
    return value >= -9223372036854775808.0 && value < 9223372036854775808.0 ? static_cast<std::int64_t>(value)
                                                                            : INT64_MIN;
}

inline std::uint32_t low32(std::int64_t value) {
    return static_cast<std::uint32_t>(static_cast<std::uint64_t>(value));
}

template <class T>
T lowBits(std::int32_t value) {
    return static_cast<T>(static_cast<std::uint32_t>(value));
}

// Conversion to float.

template <class Convert>
void forEach(const void* source, const void* destination, std::size_t width, std::size_t height,
             Convert convert) {
    for (std::size_t y = 0; y < height; ++y) {
        const Byte* from = rowOf(source, y);
        Byte* to = rowOf(destination, y);
        for (std::size_t x = 0; x < width; ++x)
            convert(from, to, x);
    }
}

inline int convertToFloat(const void* source, const void* destination, std::size_t width, std::size_t height,
                          unsigned int type, int flags) {
    const auto run = [&](auto convert) {
        forEach(source, destination, width, height, convert);
        return 1;
    };
    const auto pixel = [&](std::size_t bytes) {
        if ((flags & 1) != 0) {
            return run([bytes](const Byte* from, Byte* to, std::size_t x) {
                Byte largest = from[x * bytes];
                if (from[x * bytes + 1] > largest) largest = from[x * bytes + 1];
                if (from[x * bytes + 2] > largest) largest = from[x * bytes + 2];
                store(to, x, static_cast<float>(largest));
            });
        }
        return run([bytes](const Byte* from, Byte* to, std::size_t x) {
            const double mean = (from[x * bytes] + from[x * bytes + 1] + from[x * bytes + 2]) / 3.0;
            store(to, x, static_cast<float>(mean));
        });
    };
    switch (type) {
        case 1:
        case 2:
            return run(
                [](const Byte* from, Byte* to, std::size_t x) { store(to, x, static_cast<float>(from[x])); });
        case 4:
            return run([](const Byte* from, Byte* to, std::size_t x) {
                store(to, x, static_cast<float>(load<std::uint16_t>(from, x)));
            });
        case 6:
            return run([](const Byte* from, Byte* to, std::size_t x) {
                store(to, x, static_cast<float>(load<std::uint32_t>(from, x)));
            });
        case 7:
            return run(
                [](const Byte* from, Byte* to, std::size_t x) { std::memcpy(to + 4 * x, from + 4 * x, 4); });
        case 8:
            return run([](const Byte* from, Byte* to, std::size_t x) {
                store(to, x, static_cast<float>(load<double>(from, x)));
            });
        case 9:
            return pixel(3);
        case 10:
            return pixel(4);
        default:
            return 0;
    }
}

// Conversion from float.

inline double largerOfZero(double v) {
    return v > 0.0 ? v : 0.0;
}

inline int convertFromFloat(const void* source, const void* destination, std::size_t width,
                            std::size_t height, unsigned int type) {
    double min = 1.7976931348623157e308;
    double max = -1.7976931348623157e308;
    if (width == 0 || height == 0) return 0;
    for (std::size_t y = 0; y < height; ++y) {
        for (std::size_t x = 0; x < width; ++x) {
            const double value = static_cast<double>(load<float>(rowOf(source, y), x));
            if (min > value) min = value;
            if (value > max) max = value;
        }
    }
    const double d = max - min;
    double s = 1e-7 > std::fabs(d) ? 0.0 : 1.0 / d;
    if (type < 1 || type > 10) return 0;
    constexpr double kSpan[] = {0, 255, 255, 65535, 65535, 4294967295.0, 4294967295.0, 0, 0, 255, 255};
    s *= kSpan[type];
    forEach(source, destination, width, height, [&](const Byte* from, Byte* to, std::size_t x) {
        const double f = static_cast<double>(load<float>(from, x));
        const double v = (f - min) * s;
        switch (type) {
            case 1:
                store(to, x, lowBits<Byte>(lround32(v - (-128.0))));
                break;
            case 2:
                store(to, x, lowBits<Byte>(lround32(largerOfZero(v))));
                break;
            case 3:
                store(to, x, lowBits<std::uint16_t>(lround32(v - (-32768.0))));
                break;
            case 4:
                store(to, x, lowBits<std::uint16_t>(lround32(largerOfZero(v))));
                break;
            case 5: {
                const double t = v - (-2147483648.0);
                std::int32_t value = lround32(t);
                if (t > 2147483646.5) {
                    value = INT32_MAX;
                } else if (-2147483647.5 > t) {
                    value = INT32_MIN;
                }
                store(to, x, value);
                break;
            }
            case 6: {
                std::uint32_t value = low32(trunc64(v + 0.5));
                if (v > 4294967294.5) {
                    value = UINT32_MAX;
                } else if (0.5000001 > v) {
                    value = 0;
                }
                store(to, x, value);
                break;
            }
            case 7:
                std::memcpy(to + 4 * x, from + 4 * x, 4);
                break;
            case 8:
                store(to, x, f);
                break;
            default: {
                const std::size_t bytes = type == 9 ? 3 : 4;
                const Byte b = lowBits<Byte>(lround32(largerOfZero(v)));
                for (std::size_t i = 0; i < 3; ++i)
                    to[bytes * x + i] = b;
                if (type == 10) to[4 * x + 3] = 1;
            }
        }
    });
    return 1;
}

// One number as an element.

inline double within(double value, double lowest, double highest) {
    if (value > highest) return highest;
    if (value < lowest) return lowest;
    return value;
}

inline int mapValue(double value, Byte* out, unsigned int type) {
    const auto packed = static_cast<std::uint64_t>(trunc64(value));
    switch (type) {
        case 1:
            store(out, 0, lowBits<Byte>(lround32(within(value, -128.0, 127.0))));
            return 1;
        case 2:
            store(out, 0, lowBits<Byte>(lround32(within(value, 0.0, 255.0))));
            return 1;
        case 3:
            store(out, 0, lowBits<std::uint16_t>(lround32(within(value, -32768.0, 32767.0))));
            return 1;
        case 4:
            store(out, 0, lowBits<std::uint16_t>(lround32(within(value, 0.0, 65535.0))));
            return 1;
        case 5:
            store(out, 0,
                  value >= 2147483646.5 ? INT32_MAX : (-2147483647.5 > value ? INT32_MIN : lround32(value)));
            return 1;
        case 6:
            store(out, 0,
                  value >= 4294967294.5
                      ? UINT32_MAX
                      : (1e-7 > value ? 0U : static_cast<std::uint32_t>(trunc32(value + 0.5))));
            return 1;
        case 7:
            store(out, 0, static_cast<float>(within(value, -3.4028234663852886e+38, 3.4028234663852886e+38)));
            return 1;
        case 8:
            store(out, 0, value);
            return 1;
        case 9:
        case 10:
            for (std::size_t i = 0; i < (type == 9 ? 3U : 4U); ++i)
                out[i] = static_cast<Byte>(packed >> (8 * i));
            return 1;
        default:
            return 0;
    }
}

inline int clear(const void* rows, std::size_t width, std::size_t height, unsigned int type, double value) {
    constexpr std::size_t kBytes[] = {0, 1, 1, 2, 2, 4, 4, 4, 8, 3, 4};
    Byte element[8] = {};
    if (mapValue(value, element, type) == 0) return 0;
    const std::size_t bytes = kBytes[type];
    const std::size_t stored = type == 10 ? 3 : bytes;
    for (std::size_t y = 0; y < height; ++y) {
        Byte* row = rowOf(rows, y);
        for (std::size_t x = 0; x < width; ++x) {
            switch (stored) {
                case 1:
                    row[x] = element[0];
                    break;
                case 2:
                    std::memcpy(row + 2 * x, element, 2);
                    break;
                case 3:
                    std::memcpy(row + bytes * x, element, 3);
                    break;
                case 4:
                    std::memcpy(row + 4 * x, element, 4);
                    break;
                default:
                    std::memcpy(row + 8 * x, element, 8);
                    break;
            }
        }
    }
    return 1;
}

// Limits.

template <class T>
void clampElements(const void* rows, std::size_t width, std::size_t height, T low, T high,
                   std::size_t stride = 1, std::size_t values = 1) {
    for (std::size_t y = 0; y < height; ++y) {
        Byte* row = rowOf(rows, y);
        for (std::size_t x = 0; x < width; ++x) {
            for (std::size_t c = 0; c < values; ++c) {
                T e = load<T>(row, x * stride + c);
                if (e > high) e = high;
                if (e < low) e = low;
                store(row, x * stride + c, e);
            }
        }
    }
}

inline int clamp(const void* rows, std::size_t width, std::size_t height, unsigned int type, double low,
                 double high) {
    const std::int32_t h = lround32(high);
    const std::int32_t l = lround32(low);
    switch (type) {
        case 1: {
            const auto upper = h > 127 ? std::int8_t{127} : lowBits<std::int8_t>(h);
            const auto lower = l < -128 ? std::int8_t{-128} : lowBits<std::int8_t>(l);
            clampElements(rows, width, height, lower < upper ? lower : upper, upper);
            return 1;
        }
        case 2:
        case 9:
        case 10: {
            const auto upper = h > 255 ? Byte{255} : lowBits<Byte>(h);
            const auto lower = l < 0 ? Byte{0} : lowBits<Byte>(l);
            const std::size_t stride = type == 2 ? 1 : (type == 9 ? 3 : 4);
            clampElements(rows, width, height, lower < upper ? lower : upper, upper, stride,
                          type == 2 ? 1 : 3);
            return 1;
        }
        case 3: {
            const auto upper = h > 32767 ? std::int16_t{32767} : lowBits<std::int16_t>(h);
            const auto lower = l < -32768 ? std::int16_t{-32768} : lowBits<std::int16_t>(l);
            clampElements(rows, width, height, lower < upper ? lower : upper, upper);
            return 1;
        }
        case 4: {
            const auto upper = h > 65535 ? std::uint16_t{65535} : lowBits<std::uint16_t>(h);
            const auto lower = l < 0 ? std::uint16_t{0} : lowBits<std::uint16_t>(l);
            clampElements(rows, width, height, lower, upper);
            return 1;
        }
        case 5: {
            std::int32_t upper = h;
            if (high >= 2147483646.0) {
                upper = INT32_MAX;
            } else if (-2147483647.0 > high) {
                upper = INT32_MIN;
            }
            std::int32_t lower = h;
            if (low >= 2147483646.0) {
                lower = INT32_MAX;
            } else if (-2147483647.0 > low) {
                lower = INT32_MIN;
            }
            clampElements(rows, width, height, lower < upper ? lower : upper, upper);
            return 1;
        }
        case 6: {
            const auto bound = [](double value) {
                if (value > 4294967295.0) return UINT32_MAX;
                if (0.0 > value) return 0U;
                return low32(trunc64(value + 0.5));
            };
            const std::uint32_t upper = bound(high);
            const std::uint32_t lower = bound(low);
            clampElements(rows, width, height, lower < upper ? lower : upper, upper);
            return 1;
        }
        case 7:
            clampElements(rows, width, height, static_cast<float>(low), static_cast<float>(high));
            return 1;
        case 8:
            clampElements(rows, width, height, low, high);
            return 1;
        default:
            return 0;
    }
}

// Linear map.

template <class T, class Convert>
void mapElements(const void* rows, std::size_t width, std::size_t height, double offset, double scale,
                 double bias, Convert convert, std::size_t stride = 1, std::size_t values = 1) {
    for (std::size_t y = 0; y < height; ++y) {
        Byte* row = rowOf(rows, y);
        for (std::size_t x = 0; x < width; ++x) {
            for (std::size_t c = 0; c < values; ++c) {
                const double e = static_cast<double>(load<T>(row, x * stride + c));
                store(row, x * stride + c, convert((e + offset) * scale + bias));
            }
        }
    }
}

template <class T, std::int32_t kLowest, std::int32_t kHighest>
T limitedTo(double t) {
    std::int32_t r = lround32(t);
    if (r > kHighest) r = kHighest;
    if (r < kLowest) r = kLowest;
    return static_cast<T>(r);
}

inline int transform(const void* rows, std::size_t width, std::size_t height, unsigned int type,
                     double offset, double scale, double bias) {
    const auto byte = limitedTo<Byte, 0, 255>;
    switch (type) {
        case 1:
            mapElements<std::int8_t>(rows, width, height, offset, scale, bias,
                                     limitedTo<std::int8_t, -128, 127>);
            return 0;
        case 2:
            mapElements<Byte>(rows, width, height, offset, scale, bias, byte);
            return 1;
        case 3:
            mapElements<std::int16_t>(rows, width, height, offset, scale, bias,
                                      limitedTo<std::int16_t, -32768, 32767>);
            return 1;
        case 4:
            mapElements<std::uint16_t>(rows, width, height, offset, scale, bias,
                                       limitedTo<std::uint16_t, 0, 65535>);
            return 1;
        case 5:
            mapElements<std::int32_t>(rows, width, height, offset, scale, bias, [](double t) {
                if (t > 2147483647.0) t = 2147483647.0;
                if (t < -2147483648.0) t = -2147483648.0;
                return lround32(t);
            });
            return 1;
        case 6:
            mapElements<std::uint32_t>(rows, width, height, offset, scale, bias, [](double t) {
                if (t > 4294967295.0) t = 4294967295.0;
                if (t < 0.0) t = 0.0;
                return low32(trunc64(t + 0.5));
            });
            return 1;
        case 7:
            mapElements<float>(rows, width, height, offset, scale, bias,
                               [](double t) { return static_cast<float>(t); });
            return 1;
        case 8:
            mapElements<double>(rows, width, height, offset, scale, bias, [](double t) { return t; });
            return 1;
        case 9:
            mapElements<Byte>(rows, width, height, offset, scale, bias, byte, 3, 3);
            return 1;
        case 10:
            mapElements<Byte>(rows, width, height, offset, scale, bias, byte, 4, 3);
            return 1;
        default:
            return 0;
    }
}

}  // namespace velquad::test::elements

#endif  // VELQUAD_TESTS_SUPPORT_ELEMENT_REFERENCE_H
