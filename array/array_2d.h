// Row tables and the block of an array that was made here.
//
//   offset  0       4        8      12         16         20                20 + 8 * height
//           +-------+--------+------+----------+----------+-----------------+------------------------+
//           | width | height | type | channels | dataSize | row table       | rows without a gap     |
//           +-------+--------+------+----------+----------+-----------------+------------------------+
//                                                         ^ what callers hold
//
// A row table is aligned to 4 bytes only, a row not at all. May be used in kernel files.
#ifndef VELQUAD_ARRAY_ARRAY_2D_H
#define VELQUAD_ARRAY_ARRAY_2D_H

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "frame/inline.h"

namespace velquad::array {

/// The words in front of the row table.
struct tagMAT_ARRAY_HEADER {
    std::uint32_t width;     ///< Elements per row.
    std::uint32_t height;    ///< Rows.
    std::uint32_t type;      ///< Element type code.
    std::uint32_t channels;  ///< Interleaved channels per element position.
    std::uint32_t dataSize;  ///< Bytes behind the row table.
};
static_assert(sizeof(tagMAT_ARRAY_HEADER) == 20);

/// Bytes of one entry of a row table.
inline constexpr std::size_t kRowEntrySize = 8;
static_assert(sizeof(void*) == kRowEntrySize);

/// The address of row `y`. The table may be of any element type and at any address.
VELQUAD_ALWAYS_INLINE unsigned char* rowAt(const void* rows, std::size_t y) {
    unsigned char* row;
    std::memcpy(&row, static_cast<const unsigned char*>(rows) + y * kRowEntrySize, kRowEntrySize);
    return row;
}

/// Stores the address of row `y` in a table at any address.
VELQUAD_ALWAYS_INLINE void setRow(void* rows, std::size_t y, const void* row) {
    std::memcpy(static_cast<unsigned char*>(rows) + y * kRowEntrySize, &row, kRowEntrySize);
}

/// The header of an array that was made here.
VELQUAD_ALWAYS_INLINE tagMAT_ARRAY_HEADER headerOf(const void* rows) {
    tagMAT_ARRAY_HEADER header;
    std::memcpy(&header, static_cast<const unsigned char*>(rows) - sizeof(header), sizeof(header));
    return header;
}

/// What `matAllocArray2v`, `matFreeArray2v` and `matDuplicateArray2v` do, for use inside the module.
void** allocArray2d(std::uint32_t width, std::uint32_t height, std::uint32_t type, std::uint32_t channels,
                    void** dataOut);
void freeArray2d(void* rows);

}  // namespace velquad::array

#endif  // VELQUAD_ARRAY_ARRAY_2D_H
