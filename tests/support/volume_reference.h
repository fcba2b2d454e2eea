// Slow, obvious versions of the volume functions: one element, one voxel, one line after the other, with
// arithmetic and rounding of their own. The library's versions must give the same bits.
#ifndef VELQUAD_TESTS_SUPPORT_VOLUME_REFERENCE_H
#define VELQUAD_TESTS_SUPPORT_VOLUME_REFERENCE_H

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <vector>

#include "velquad/transform.h"

namespace velquad::test::volume {

using Rounder = double (*)(double);

inline std::int32_t truncated32(double x) {
    return x > -2147483649.0 && x < 2147483648.0 ? static_cast<std::int32_t>(x) : INT32_MIN;
}
inline std::int64_t truncated64(double x) {
    return x >= -9223372036854775808.0 && x < 9223372036854775808.0 ? static_cast<std::int64_t>(x)
                                                                    : INT64_MIN;
}
inline std::int32_t rounded(double x) {
    return truncated32(0 > x ? x - 0.49 : x + 0.5);
}
inline double between(std::int32_t value, std::int32_t low, std::int32_t high) {
    return value > high ? high : value < low ? low : value;
}
inline double toInt8(double x) {
    return between(rounded(x), -128, 127);
}
inline double toUInt8(double x) {
    return between(rounded(x), 0, 255);
}
inline double toInt16(double x) {
    return between(rounded(x), -32768, 32767);
}
inline double toUInt16(double x) {
    return between(rounded(x), 0, 65535);
}
inline double toInt32(double x) {
    return x > 2147483646.499999 ? 2147483647.0 : -2147483647.499999 > x ? -2147483648.0 : rounded(x);
}
inline double toInt32Wide(double x) {
    return x > 4294967294.499999 ? 2147483647.0 : -2147483647.499999 > x ? -2147483648.0 : rounded(x);
}
inline double toUInt32(double x) {
    return x > 4294967294.499999 ? 4294967295.0 : rounded(x);
}
inline double toFloat(double x) {
    constexpr double kLimit = 3.4028234663852886e+38;
    return x > kLimit ? kLimit : x < -kLimit ? -kLimit : x;
}
inline double toDouble(double x) {
    return x;
}

/// The rounders by type code; `isWide` chooses between the two for type 5.
inline Rounder rounderOf(unsigned int type, bool isWide) {
    constexpr Rounder kRounders[] = {nullptr, toInt8,   toUInt8, toInt16, toUInt16,
                                     toInt32, toUInt32, toFloat, toDouble};
    return type == 5 && isWide ? toInt32Wide : kRounders[type];
}

template <class T>
T load(const unsigned char* place) {
    T value;
    std::memcpy(&value, place, sizeof(T));
    return value;
}

inline double read(unsigned int type, const unsigned char* place) {
    switch (type) {
        case 1:
            return load<std::int8_t>(place);
        case 2:
            return load<std::uint8_t>(place);
        case 3:
            return load<std::int16_t>(place);
        case 4:
            return load<std::uint16_t>(place);
        case 5:
            return load<std::int32_t>(place);
        case 6:
            return load<std::uint32_t>(place);
        case 7:
            return static_cast<double>(load<float>(place));
        default:
            return load<double>(place);
    }
}

/// Stores a number without rounding: the low bytes of the truncated one, a narrowed or an unchanged one.
inline void write(unsigned int type, unsigned char* place, double value) {
    constexpr std::size_t kBytes[] = {0, 1, 1, 2, 2, 4, 4, 4, 8};
    if (type == 8) {
        std::memcpy(place, &value, sizeof(value));
    } else if (type == 7) {
        const auto narrow = static_cast<float>(value);
        std::memcpy(place, &narrow, sizeof(narrow));
    } else if (type == 6) {
        const std::int64_t bits = truncated64(value);
        std::memcpy(place, &bits, kBytes[type]);
    } else {
        const std::int32_t bits = truncated32(value);
        std::memcpy(place, &bits, kBytes[type]);
    }
}

inline std::size_t bytesOf(unsigned int type) {
    constexpr std::size_t kBytes[] = {0, 1, 1, 2, 2, 4, 4, 4, 8, 3, 4};
    return type <= 10 ? kBytes[type] : 0;
}

inline unsigned char* entry(const void* table, std::size_t index) {
    unsigned char* address = nullptr;
    std::memcpy(&address, static_cast<const unsigned char*>(table) + 8 * index, sizeof(address));
    return address;
}

inline unsigned char* rowOf(const void* volume, std::size_t z, std::size_t y) {
    return entry(entry(volume, z), y);
}

/// Sizes of a volume, its type and its channels.
struct Shape {
    unsigned int width;
    unsigned int height;
    unsigned int depth;
    unsigned int type;
    unsigned int channels;
};

/// Converts every element from one type to another.
inline void convert(const void* source, unsigned int sourceType, void* destination,
                    unsigned int destinationType, const Shape& shape) {
    const Rounder round = rounderOf(destinationType, true);
    for (std::size_t z = 0; z < shape.depth; ++z) {
        for (std::size_t y = 0; y < shape.height; ++y) {
            for (std::size_t i = 0; i < std::size_t{shape.width} * shape.channels; ++i) {
                const double value = read(sourceType, rowOf(source, z, y) + i * bytesOf(sourceType));
                write(destinationType, rowOf(destination, z, y) + i * bytesOf(destinationType), round(value));
            }
        }
    }
}

/// The affine transform for the types 1 to 8. `background` has one double per channel.
template <unsigned int kType>
void resample(const Shape& from, const void* source, unsigned int dstWidth, unsigned int dstHeight,
              unsigned int dstDepth, void* destination, const double (*matrix)[4], bool isScaled,
              bool isNearest, const double* background) {
    const Rounder round = rounderOf(kType, false);
    const std::size_t bytes = bytesOf(kType);
    const auto at = [&](std::int32_t x, std::int32_t y, std::int32_t z, std::size_t c) {
        const std::size_t index = static_cast<std::size_t>(x) * from.channels + c;
        return read(kType,
                    rowOf(source, static_cast<std::size_t>(z), static_cast<std::size_t>(y)) + index * bytes);
    };
    const auto isBelow = [](std::int64_t cell, unsigned int size) {
        return cell < static_cast<std::int64_t>(size);
    };
    const double scaleX = static_cast<double>(dstWidth) / from.width;
    const double scaleY = static_cast<double>(dstHeight) / from.height;
    const double scaleZ = static_cast<double>(dstDepth) / from.depth;
    double inverse[4][4] = {};
    double result[4] = {};
    if (!isScaled) matInvertMatrix4(inverse, matrix, 0);
    for (unsigned int z = 0; z < dstDepth; ++z) {
        for (unsigned int y = 0; y < dstHeight; ++y) {
            for (unsigned int x = 0; x < dstWidth; ++x) {
                double sx = x / scaleX;
                double sy = y / scaleY;
                double sz = z / scaleZ;
                if (!isScaled) {
                    const double vector[4] = {x + 0.5, y + 0.5, z + 0.5, 1.0};
                    matTransformVector4(result, inverse, vector, 1);
                    sx = result[0] - 0.5;
                    sy = result[1] - 0.5;
                    sz = result[2] - 0.5;
                }
                const std::int32_t ix = truncated32(0 > sx ? sx - 1e-7 : sx + 1e-7);
                const std::int32_t iy = truncated32(0 > sy ? sy - 1e-7 : sy + 1e-7);
                const std::int32_t iz = truncated32(0 > sz ? sz - 1e-7 : sz + 1e-7);
                unsigned char* const pixel =
                    rowOf(destination, z, y) + static_cast<std::size_t>(x) * from.channels * bytes;
                const bool isInside = ix >= 0 && iy >= 0 && iz >= 0 && isBelow(ix, from.width) &&
                                      isBelow(iy, from.height) && isBelow(iz, from.depth);
                if (!isInside) {
                    for (std::size_t c = 0; c < from.channels; ++c)
                        write(kType, pixel + c * bytes, background[c]);
                    continue;
                }
                if (isNearest) {
                    const auto nearest = [](double s, unsigned int size) {
                        std::int64_t q = rounded(s);
                        if (q > static_cast<std::int64_t>(size) - 1) q = static_cast<std::int64_t>(size) - 1;
                        return static_cast<std::size_t>(q < 0 ? 0 : q);
                    };
                    const unsigned char* row =
                        rowOf(source, nearest(sz, from.depth), nearest(sy, from.height));
                    std::memcpy(pixel, row + nearest(sx, from.width) * from.channels * bytes,
                                from.channels * bytes);
                    continue;
                }
                const bool hasX = isBelow(std::int64_t{ix} + 1, from.width);
                const bool hasY = isBelow(std::int64_t{iy} + 1, from.height);
                const bool hasZ = isBelow(std::int64_t{iz} + 1, from.depth);
                const double tx = hasX ? sx - ix : 0.0;
                const double ty = hasY ? sy - iy : 0.0;
                const double tz = hasZ ? sz - iz : 0.0;
                const double ux = 1.0 - tx;
                const double uy = 1.0 - ty;
                const double uz = 1.0 - tz;
                for (std::size_t c = 0; c < from.channels; ++c) {
                    double sum = 0.0;
                    sum += at(ix, iy, iz, c) * uz * uy * ux;
                    if (hasX) sum += at(ix + 1, iy, iz, c) * uz * uy * tx;
                    if (hasY) sum += at(ix, iy + 1, iz, c) * uz * ty * ux;
                    if (hasX && hasY) sum += at(ix + 1, iy + 1, iz, c) * uz * ty * tx;
                    if (hasZ) sum += at(ix, iy, iz + 1, c) * tz * uy * ux;
                    if (hasZ && hasX) sum += at(ix + 1, iy, iz + 1, c) * tz * uy * tx;
                    if (hasZ && hasY) sum += at(ix, iy + 1, iz + 1, c) * tz * ty * ux;
                    if (hasX && hasY && hasZ) sum += at(ix + 1, iy + 1, iz + 1, c) * tz * ty * tx;
                    write(kType, pixel + c * bytes, round(sum));
                }
            }
        }
    }
}

/// The same with the type as a value.
template <class... Arguments>
void resampleOfType(unsigned int type, const Arguments&... arguments) {
    switch (type) {
        case 1:
            return resample<1>(arguments...);
        case 2:
            return resample<2>(arguments...);
        case 3:
            return resample<3>(arguments...);
        case 4:
            return resample<4>(arguments...);
        case 5:
            return resample<5>(arguments...);
        case 6:
            return resample<6>(arguments...);
        case 7:
            return resample<7>(arguments...);
        default:
            return resample<8>(arguments...);
    }
}

/// The blur of one volume, line by line, without a floating copy.
class Blur {
  public:
    const double* sigma = nullptr;
    const double* radiusFactor = nullptr;
    const unsigned int* strides = nullptr;
    int (*callback)(unsigned int, unsigned int, void*) = nullptr;
    void* callbackUser = nullptr;

    int run(void* volume, const Shape& shape) {
        shape_ = shape;
        volume_ = volume;
        counter_ = 0;
        if (shape.depth > 1) {
            for (unsigned int x = 0; x < shape.width; ++x) {
                for (unsigned int y = 0; y < shape.height; ++y) {
                    if (!filterLine(2, x, y, 0)) return 2;
                }
            }
        }
        for (unsigned int z = 0; z < shape.depth; ++z) {
            for (unsigned int x = 0; x < shape.width; ++x) {
                if (!filterLine(1, x, 0, z)) return 2;
            }
        }
        for (unsigned int y = 0; y < shape.height; ++y) {
            for (unsigned int z = 0; z < shape.depth; ++z) {
                if (!filterLine(0, 0, y, z)) return 2;
            }
        }
        return 1;
    }

  private:
    bool filterLine(int axis, unsigned int x, unsigned int y, unsigned int z) {
        const unsigned int total = (shape_.width + shape_.height) * shape_.depth +
                                   (shape_.depth > 1 ? shape_.width * shape_.height : 0);
        if (callback != nullptr && callback(++counter_, total, callbackUser) == 0) return false;
        switch (shape_.type) {
            case 1:
                return filterChannels<std::int8_t>(axis, x, y, z);
            case 2:
                return filterChannels<std::uint8_t>(axis, x, y, z);
            case 3:
                return filterChannels<std::int16_t>(axis, x, y, z);
            case 4:
                return filterChannels<std::uint16_t>(axis, x, y, z);
            case 5:
                return filterChannels<std::int32_t>(axis, x, y, z);
            case 6:
                return filterChannels<std::uint32_t>(axis, x, y, z);
            case 7:
                return filterChannels<float>(axis, x, y, z);
            case 8:
                return filterChannels<double>(axis, x, y, z);
            default:
                return true;
        }
    }

    template <class T>
    bool filterChannels(int axis, unsigned int x, unsigned int y, unsigned int z) {
        for (unsigned int channel = 0; channel < shape_.channels; ++channel) {
            const std::size_t length = axis == 0 ? shape_.width : axis == 1 ? shape_.height : shape_.depth;
            in_.resize(length);
            out_.resize(length);
            for (std::size_t i = 0; i < length; ++i)
                in_[i] = static_cast<double>(load<T>(sampleAt(axis, x, y, z, channel, i)));
            smooth(axis, static_cast<std::int32_t>(length), x, y, z);
            const Rounder round = rounderOf(shape_.type, true);
            for (std::size_t i = 0; i < length; ++i)
                write(shape_.type, sampleAt(axis, x, y, z, channel, i), round(out_[i]));
        }
        return true;
    }

    unsigned char* sampleAt(int axis, unsigned int x, unsigned int y, unsigned int z, unsigned int channel,
                            std::size_t i) const {
        const std::size_t bytes = bytesOf(shape_.type);
        const std::size_t element = (std::size_t{x} * shape_.channels + channel) * bytes;
        const std::size_t step = strides == nullptr ? 0 : strides[axis];
        const bool isGiven = step != 0 && step != 0xFFFFFFFFU;
        if (axis == 0) return rowOf(volume_, z, y) + element + i * (isGiven ? step : shape_.channels * bytes);
        if (axis == 1)
            return isGiven ? rowOf(volume_, z, 0) + element + i * step : rowOf(volume_, z, i) + element;
        return isGiven ? rowOf(volume_, 0, y) + element + i * step : rowOf(volume_, i, y) + element;
    }

    void smooth(int axis, std::int32_t length, unsigned int x, unsigned int y, unsigned int z) {
        const std::int32_t radius = truncated32(sigma[axis] * radiusFactor[axis]);
        if (radius < 0) {
            std::fill(out_.begin(), out_.end(), 0.0);
            return;
        }
        const bool isFirst = (axis == 0 || x == 0) && (axis == 1 || y == 0) && (axis == 2 || z == 0);
        if (isFirst) {
            weights_.assign(static_cast<std::size_t>(2 * radius + 1), 1.0);
            window_.resize(weights_.size());
            for (std::int32_t k = -radius; k <= radius && sigma[axis] != 0.0; ++k) {
                const double square =
                    static_cast<std::int32_t>(static_cast<std::uint32_t>(k) * static_cast<std::uint32_t>(k));
                weights_[static_cast<std::size_t>(k + radius)] =
                    std::exp(-square / (sigma[axis] * sigma[axis] + sigma[axis] * sigma[axis]));
            }
        }
        const double* const weights = weights_.data();
        double* const window = window_.data();
        const double* const in = in_.data();
        for (std::int32_t i = 0; i < length; ++i) {
            const std::int32_t low = std::max(i - radius, 0) - i;
            const std::int32_t high = std::min(i + radius, length - 1) - i;
            double sum = 0.0;
            for (std::int32_t k = low; k <= high; ++k) {
                window[k - low] = weights[radius + k];
                sum += window[k - low];
            }
            for (std::int32_t k = low; k <= high; ++k)
                window[k - low] /= sum;
            double smoothed = 0.0;
            for (std::int32_t k = low; k <= high; ++k)
                smoothed += window[k - low] * in[i + k];
            out_[static_cast<std::size_t>(i)] = smoothed;
        }
    }

    Shape shape_ = {};
    void* volume_ = nullptr;
    unsigned int counter_ = 0;
    std::vector<double> weights_;
    std::vector<double> window_;
    std::vector<double> in_;
    std::vector<double> out_;
};

}  // namespace velquad::test::volume

#endif  // VELQUAD_TESTS_SUPPORT_VOLUME_REFERENCE_H
