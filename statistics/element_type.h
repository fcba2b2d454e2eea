// The element types that untyped arrays of the statistics may have.
#ifndef VELQUAD_STATISTICS_ELEMENT_TYPE_H
#define VELQUAD_STATISTICS_ELEMENT_TYPE_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>
#include <utility>

namespace velquad::statistics {

/// Integers whose squares and sums are gathered as integers.
template <class T>
inline constexpr bool kIsNarrowInteger = std::is_integral_v<T> && sizeof(T) <= 2;

/// Element `index` of an array at any address.
template <class T>
T elementAt(const void* values, std::size_t index) {
    T element;
    std::memcpy(&element, static_cast<const char*>(values) + index * sizeof(T), sizeof(T));
    return element;
}

/// The part of an array of `T` that begins with element `index`.
template <class T>
const void* tailOf(const void* values, std::size_t index) {
    return static_cast<const char*>(values) + index * sizeof(T);
}

/// Calls `action(std::type_identity<T>{})` for the type that a code stands for.
/// @return false for an unknown code.
template <class Action>
bool withElementType(unsigned int typeCode, Action&& action) {
    switch (typeCode) {
        case 1:
            action(std::type_identity<std::int8_t>{});
            return true;
        case 2:
            action(std::type_identity<std::uint8_t>{});
            return true;
        case 3:
            action(std::type_identity<std::int16_t>{});
            return true;
        case 4:
            action(std::type_identity<std::uint16_t>{});
            return true;
        case 5:
            action(std::type_identity<std::int32_t>{});
            return true;
        case 6:
            action(std::type_identity<std::uint32_t>{});
            return true;
        case 7:
            action(std::type_identity<float>{});
            return true;
        case 8:
            action(std::type_identity<double>{});
            return true;
        default:
            return false;
    }
}

}  // namespace velquad::statistics

#endif  // VELQUAD_STATISTICS_ELEMENT_TYPE_H
