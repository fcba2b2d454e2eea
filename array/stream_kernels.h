// Copies that go to memory past the caches.
#ifndef VELQUAD_ARRAY_STREAM_KERNELS_H
#define VELQUAD_ARRAY_STREAM_KERNELS_H

#include <cstddef>

namespace velquad::array {

/// From so many bytes on, what is written is streamed: it would push everything else out of the caches, and a stored
/// line need not be fetched first. Where other programs use the memory too, that is twice as fast.
inline constexpr std::size_t kStreamedBytes = std::size_t{32} << 20;

struct StreamKernels {
    /// Copies to a place that does not overlap. What is written may be seen late by other threads until `finish`.
    void (*copy)(const void* source, void* destination, std::size_t bytes);
    void (*finish)();
};

const StreamKernels& streamKernels();

}  // namespace velquad::array

#endif  // VELQUAD_ARRAY_STREAM_KERNELS_H
