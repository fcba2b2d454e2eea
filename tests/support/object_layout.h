// Reading the fields of an object that its class keeps to itself.
#ifndef VELQUAD_TESTS_SUPPORT_OBJECT_LAYOUT_H
#define VELQUAD_TESTS_SUPPORT_OBJECT_LAYOUT_H

#include <cstring>

namespace velquad::test {

/// The bytes of an object as a record of the same size, with fields of the test's own.
template <typename Layout, typename Object>
Layout layoutOf(const Object& object) {
    static_assert(sizeof(Layout) == sizeof(Object));
    Layout layout{};
    std::memcpy(static_cast<void*>(&layout), static_cast<const void*>(&object), sizeof layout);
    return layout;
}

}  // namespace velquad::test

#endif  // VELQUAD_TESTS_SUPPORT_OBJECT_LAYOUT_H
