// Asking the system for large pages.
#ifndef VELQUAD_PLATFORM_LARGE_PAGES_H
#define VELQUAD_PLATFORM_LARGE_PAGES_H

#include <cstddef>

namespace velquad::platform {

/// The size of a large page, and what memory should be aligned to for it.
inline constexpr std::size_t kLargePage = std::size_t{2} << 20;

/// Advises the system to back whole large pages of memory, not yet written, by such: accesses all over a large array
/// then find their translations in the processor's buffer. Only speed depends on it, and a system without such
/// advice ignores it.
/// @param start  a multiple of `kLargePage`.
void adviseLargePages(void* start, std::size_t byteCount) noexcept;

}  // namespace velquad::platform

#endif  // VELQUAD_PLATFORM_LARGE_PAGES_H
