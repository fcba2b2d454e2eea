// Arrays as blocks: made, released, copied, cleared.
#include "array/array_2d.h"

#include <cstring>

#include "array/element.h"
#include "frame/global_block.h"
#include "velquad/array.h"

using velquad::array::allocArray2d;
using velquad::array::elementSize;
using velquad::array::freeArray2d;
using velquad::array::headerOf;
using velquad::array::kRowEntrySize;
using velquad::array::rowAt;
using velquad::array::setRow;
using velquad::array::tagMAT_ARRAY_HEADER;
using velquad::array::typeOfSize;

namespace {

constexpr std::uint64_t kLargestSize = 0xFFFFFFFFU;

/// Tells whether header, table and rows stay within the 32 bits that a block's size has.
bool fitsBlock(std::uint64_t elementStride, std::uint32_t width, std::uint32_t height) {
    if (height == 0) return true;
    if (elementStride != 0 && width > kLargestSize / elementStride) return false;
    const std::uint64_t rowBytes = elementStride * width;
    return rowBytes + kRowEntrySize <= (kLargestSize - sizeof(tagMAT_ARRAY_HEADER)) / height;
}

}  // namespace

namespace velquad::array {

void** allocArray2d(std::uint32_t width, std::uint32_t height, std::uint32_t type, std::uint32_t channels,
                    void** dataOut) {
    const std::uint64_t elementStride = std::uint64_t{elementSize(type)} * channels;
    if (!fitsBlock(elementStride, width, height)) return nullptr;
    // An array without rows may have any row size; the words wrap around.
    const auto rowBytes = static_cast<std::uint32_t>(elementStride * width);
    const std::size_t tableSize = kRowEntrySize * height;
    const tagMAT_ARRAY_HEADER header{width, height, type, channels, rowBytes * height};
    void* block =
        frame::matGlobalAllocLocked(frame::kZeroedMovable, sizeof(header) + tableSize + header.dataSize);
    if (block == nullptr) return nullptr;
    unsigned char* rows = static_cast<unsigned char*>(block) + sizeof(header);
    unsigned char* data = rows + tableSize;
    for (std::uint32_t y = 0; y < height; ++y)
        setRow(rows, y, data + std::size_t{y} * rowBytes);
    if (dataOut != nullptr) *dataOut = data;
    std::memcpy(block, &header, sizeof(header));
    return static_cast<void**>(static_cast<void*>(rows));
}

void freeArray2d(void* rows) {
    // The block is looked up by an address that may be foreign, so it is formed without walking out of an object.
    const std::uintptr_t block = reinterpret_cast<std::uintptr_t>(rows) - sizeof(tagMAT_ARRAY_HEADER);
    frame::matGlobalFreeLocked(reinterpret_cast<void*>(block));
}

}  // namespace velquad::array

extern "C" unsigned int matCvtArrayTypeToSize2v(unsigned int type) {
    return elementSize(type);
}

extern "C" unsigned int matCvtSizeToArrayType2v(unsigned int size) {
    return typeOfSize(size);
}

extern "C" void** matAllocArray2v(unsigned int width, unsigned int height, unsigned int type,
                                  unsigned int channels, void** dataOut) {
    return allocArray2d(width, height, type, channels, dataOut);
}

extern "C" int matFreeArray2v(void** rows) {
    if (rows == nullptr) return 0;
    freeArray2d(rows);
    return 1;
}

extern "C" void** matDuplicateArray2v(const void* const* rows, unsigned int width, unsigned int height,
                                      unsigned int type, unsigned int channels) {
    if (rows == nullptr && height != 0) return nullptr;
    void** copy = allocArray2d(width, height, type, channels, nullptr);
    if (copy == nullptr) return nullptr;
    const std::uint32_t rowBytes = elementSize(type) * channels * width;
    if (rowBytes == 0) return copy;
    for (std::uint32_t y = 0; y < height; ++y)
        std::memcpy(rowAt(copy, y), rowAt(rows, y), rowBytes);
    return copy;
}

int matZeroInitArray2v(void** rows) {
    if (rows == nullptr) return 0;
    const tagMAT_ARRAY_HEADER header = headerOf(rows);
    unsigned char* data = reinterpret_cast<unsigned char*>(rows) + kRowEntrySize * header.height;
    std::memset(data, 0, header.dataSize);
    return 1;
}
