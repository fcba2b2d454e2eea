// Elements of typed arrays: their codes and sizes, reading and writing them at any address, and the one place
// where a type code is switched on. May be used in kernel files.
#ifndef VELQUAD_ARRAY_ELEMENT_H
#define VELQUAD_ARRAY_ELEMENT_H

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "frame/inline.h"
#include "velquad/array.h"

namespace velquad::array {

/// What a type code stands for: `kComponents` values of type `Value`, side by side.
template <unsigned int kTypeCode, class ValueType, std::size_t kComponentCount = 1>
struct Element {
    using Value = ValueType;
    static constexpr unsigned int kType = kTypeCode;
    static constexpr std::size_t kComponents = kComponentCount;
    static constexpr std::size_t kBytes = sizeof(ValueType) * kComponentCount;
};

using Int8Element = Element<MAT_ARRAY_INT8, std::int8_t>;
using UInt8Element = Element<MAT_ARRAY_UINT8, std::uint8_t>;
using Int16Element = Element<MAT_ARRAY_INT16, std::int16_t>;
using UInt16Element = Element<MAT_ARRAY_UINT16, std::uint16_t>;
using Int32Element = Element<MAT_ARRAY_INT32, std::int32_t>;
using UInt32Element = Element<MAT_ARRAY_UINT32, std::uint32_t>;
using FloatElement = Element<MAT_ARRAY_FLOAT, float>;
using DoubleElement = Element<MAT_ARRAY_DOUBLE, double>;
using Byte3Element = Element<MAT_ARRAY_BYTE3, std::uint8_t, 3>;
using Byte4Element = Element<MAT_ARRAY_BYTE4, std::uint8_t, 4>;

/// Calls `visit` with a value of the `Element` type that belongs to a type code.
/// @return whether the code is known; `visit` was not called otherwise.
template <class Visitor>
VELQUAD_ALWAYS_INLINE bool dispatchElement(unsigned int type, Visitor&& visit) {
    switch (type) {
        case MAT_ARRAY_INT8:
            visit(Int8Element());
            return true;
        case MAT_ARRAY_UINT8:
            visit(UInt8Element());
            return true;
        case MAT_ARRAY_INT16:
            visit(Int16Element());
            return true;
        case MAT_ARRAY_UINT16:
            visit(UInt16Element());
            return true;
        case MAT_ARRAY_INT32:
            visit(Int32Element());
            return true;
        case MAT_ARRAY_UINT32:
            visit(UInt32Element());
            return true;
        case MAT_ARRAY_FLOAT:
            visit(FloatElement());
            return true;
        case MAT_ARRAY_DOUBLE:
            visit(DoubleElement());
            return true;
        case MAT_ARRAY_BYTE3:
            visit(Byte3Element());
            return true;
        case MAT_ARRAY_BYTE4:
            visit(Byte4Element());
            return true;
        default:
            return false;
    }
}

/// The dispatcher for what knows values, not pixels: codes 1 to 8.
template <class Visitor>
VELQUAD_ALWAYS_INLINE bool dispatchScalar(unsigned int type, Visitor&& visit) {
    if (type == MAT_ARRAY_BYTE3 || type == MAT_ARRAY_BYTE4) return false;
    return dispatchElement(type, [&visit](auto element) {
        if constexpr (decltype(element)::kComponents == 1) visit(element);
    });
}

/// @return bytes of one element; 0 for a code that is no type.
VELQUAD_ALWAYS_INLINE constexpr unsigned int elementSize(unsigned int type) {
    constexpr unsigned char kSizes[] = {0, 1, 1, 2, 2, 4, 4, 4, 8, 3, 4};
    return type < sizeof(kSizes) ? kSizes[type] : 0;
}

/// @return the usual type of elements of this size; 0 when there is none. A size of 4 is a float, never an integer
///         or a pixel; sizes of 1 and 2 are unsigned.
VELQUAD_ALWAYS_INLINE constexpr unsigned int typeOfSize(unsigned int size) {
    constexpr unsigned int kTypes[] = {
        0, MAT_ARRAY_UINT8, MAT_ARRAY_UINT16, MAT_ARRAY_BYTE3, MAT_ARRAY_FLOAT, 0, 0, 0, MAT_ARRAY_DOUBLE};
    return size < sizeof(kTypes) / sizeof(kTypes[0]) ? kTypes[size] : 0;
}

/// Reads the value with this index from a row that may begin at any address.
template <class Value>
VELQUAD_ALWAYS_INLINE Value loadElement(const void* row, std::size_t index) {
    Value value;
    std::memcpy(&value, static_cast<const unsigned char*>(row) + index * sizeof(Value), sizeof(Value));
    return value;
}

/// Writes the value with this index to a row that may begin at any address.
template <class Value>
VELQUAD_ALWAYS_INLINE void storeElement(void* row, std::size_t index, Value value) {
    std::memcpy(static_cast<unsigned char*>(row) + index * sizeof(Value), &value, sizeof(Value));
}

}  // namespace velquad::array

#endif  // VELQUAD_ARRAY_ELEMENT_H
