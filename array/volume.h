// Volumes: tables of slices, each a row table, and the block of a volume that was made here.
//
//   offset  0       4        8       12     16         20         24         32            32 + 8 * depth
//           +-------+--------+-------+------+----------+----------+----------+-------------+------+
//           | width | height | depth | type | channels | dataSize | reserved | slice table | seal |
//           +-------+--------+-------+------+----------+----------+----------+-------------+------+
//                                                                            ^ what callers hold
//
// Tables of callers may lie at any address.
#ifndef VELQUAD_ARRAY_VOLUME_H
#define VELQUAD_ARRAY_VOLUME_H

#include <cstddef>
#include <cstdint>

#include "array/array_2d.h"

namespace velquad::array {

/// The words in front of the slice table.
struct tagMAT_ARRAY3V_HEADER {
    std::uint32_t width;        ///< Elements per row.
    std::uint32_t height;       ///< Rows per slice.
    std::uint32_t depth;        ///< Slices.
    std::uint32_t type;         ///< Element type code.
    std::uint32_t channels;     ///< Interleaved channels per element position.
    std::uint32_t dataSize;     ///< Bytes of all elements modulo 2^32; the mark by which a volume is known.
    std::uint32_t reserved[2];  ///< Zero.
};
static_assert(sizeof(tagMAT_ARRAY3V_HEADER) == 32);

/// The row table of slice `z`. Slice tables and row tables have entries of the same kind.
VELQUAD_ALWAYS_INLINE unsigned char* sliceAt(const void* volume, std::size_t z) {
    return rowAt(volume, z);
}

/// The address of row `y` of slice `z`.
VELQUAD_ALWAYS_INLINE unsigned char* rowAt(const void* volume, std::size_t z, std::size_t y) {
    return rowAt(sliceAt(volume, z), y);
}

/// Releases a volume that was made here when it goes out of scope.
class OwnedVolume {
  public:
    explicit OwnedVolume(void*** volume) : volume_(volume) {}
    OwnedVolume(const OwnedVolume&) = delete;
    OwnedVolume& operator=(const OwnedVolume&) = delete;
    ~OwnedVolume();

    void*** get() const { return volume_; }

  private:
    void*** volume_;
};

}  // namespace velquad::array

#endif  // VELQUAD_ARRAY_VOLUME_H
