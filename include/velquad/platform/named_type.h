/// @file
/// Strong types: `fluent::NamedType` and `fluent::Comparable`.
///
/// Where the NamedType library (https://github.com/joboccara/NamedType) is installed, this header includes it. Elsewhere
/// it defines what VELQUAD itself needs of it, with the same names: names in the module and the way arguments are
/// passed are the same either way.
#ifndef VELQUAD_PLATFORM_NAMED_TYPE_H
#define VELQUAD_PLATFORM_NAMED_TYPE_H

#if __has_include(<NamedType/named_type.hpp>)

#include <NamedType/named_type.hpp>

#else

#include <utility>

namespace fluent {

/// A value of type `T` that converts neither from nor to `T` by itself. Types with different `Parameter` are
/// different types.
/// @tparam Parameter  tells strong types apart; need not be complete.
/// @tparam Skills     operations that the type has.
template <typename T, typename Parameter, template <typename> class... Skills>
class NamedType : public Skills<NamedType<T, Parameter, Skills...>>... {
  public:
    using UnderlyingType = T;

    NamedType() = default;
    explicit constexpr NamedType(const T& value) : value_(value) {}
    explicit constexpr NamedType(T&& value) : value_(std::move(value)) {}

    /// The plain value.
    constexpr T& get() { return value_; }
    constexpr const T& get() const { return value_; }

  private:
    T value_;
};

/// The skill of being compared: all six comparisons, with values of the same strong type only.
template <typename Strong>
struct Comparable {
    friend constexpr bool operator==(const Strong& a, const Strong& b) { return a.get() == b.get(); }
    friend constexpr bool operator!=(const Strong& a, const Strong& b) { return !(a.get() == b.get()); }
    friend constexpr bool operator<(const Strong& a, const Strong& b) { return a.get() < b.get(); }
    friend constexpr bool operator>(const Strong& a, const Strong& b) { return b.get() < a.get(); }
    friend constexpr bool operator<=(const Strong& a, const Strong& b) { return !(b.get() < a.get()); }
    friend constexpr bool operator>=(const Strong& a, const Strong& b) { return !(a.get() < b.get()); }
};

}  // namespace fluent

#endif

#endif  // VELQUAD_PLATFORM_NAMED_TYPE_H
