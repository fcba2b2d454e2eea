// Volumes as blocks: made, recognised, released, copied, cleared.
#include "array/volume.h"

#include <cstdlib>
#include <cstring>

#include "array/element.h"
#include "velquad/array.h"

using velquad::array::allocArray2d;
using velquad::array::elementSize;
using velquad::array::freeArray2d;
using velquad::array::kRowEntrySize;
using velquad::array::rowAt;
using velquad::array::setRow;
using velquad::array::sliceAt;
using velquad::array::tagMAT_ARRAY3V_HEADER;

namespace {

/// Mixed with a block's address into its seal. A header of zeros passes for that of an empty volume, so the
/// block is released only when the seal says that it was allocated here.
constexpr std::uint64_t kSealPattern = 0x3D76A51C9E42B8F7U;
using Seal = std::uint64_t;

/// The address of the block that belongs to a slice table. It may be foreign, so it is not reached by
/// walking.
std::uintptr_t blockOf(const void* volume) {
    return reinterpret_cast<std::uintptr_t>(volume) - sizeof(tagMAT_ARRAY3V_HEADER);
}

Seal sealOf(std::uintptr_t block) {
    return std::uint64_t{block} ^ kSealPattern;
}

/// Where the seal of a volume of this depth stands.
unsigned char* sealPlace(const void* volume, std::uint32_t depth) {
    return reinterpret_cast<unsigned char*>(reinterpret_cast<std::uintptr_t>(volume) + kRowEntrySize * depth);
}

std::uint32_t dataSizeOf(const tagMAT_ARRAY3V_HEADER& header) {
    return header.channels * header.depth * header.height * header.width * elementSize(header.type);
}

/// Reads the header in front of a slice table.
/// @return false when it cannot be read or is not that of a volume.
bool readHeader(const void* volume, tagMAT_ARRAY3V_HEADER& header) {
    if (volume == nullptr) return false;
    const void* block = reinterpret_cast<const void*>(blockOf(volume));
    if (IsBadReadPtr(block, sizeof(header)) != 0) return false;
    std::memcpy(&header, block, sizeof(header));
    return header.dataSize == dataSizeOf(header);
}

bool isSealed(const void* volume, std::uint32_t depth) {
    const unsigned char* place = sealPlace(volume, depth);
    if (IsBadReadPtr(place, sizeof(Seal)) != 0) return false;
    Seal seal = 0;
    std::memcpy(&seal, place, sizeof(seal));
    return seal == sealOf(blockOf(volume));
}

/// Releases the slices that are there, and the block. The seal is broken first.
void release(void* volume, std::uint32_t depth) {
    for (std::uint32_t z = 0; z < depth; ++z) {
        if (unsigned char* slice = sliceAt(volume, z); slice != nullptr) freeArray2d(slice);
    }
    std::memset(sealPlace(volume, depth), 0, sizeof(Seal));
    std::free(static_cast<unsigned char*>(volume) - sizeof(tagMAT_ARRAY3V_HEADER));
}

}  // namespace

namespace velquad::array {

OwnedVolume::~OwnedVolume() {
    matFreeArray3v(volume_);
}

}  // namespace velquad::array

extern "C" void*** matAllocArray3v(unsigned int width, unsigned int height, unsigned int depth,
                                   unsigned int type, unsigned int channels, void** dataOut) {
    tagMAT_ARRAY3V_HEADER header{width, height, depth, type, channels, 0, {0, 0}};
    header.dataSize = dataSizeOf(header);
    void* block = std::calloc(sizeof(header) + kRowEntrySize * depth + sizeof(Seal), 1);
    if (block == nullptr) return nullptr;
    std::memcpy(block, &header, sizeof(header));
    unsigned char* volume = static_cast<unsigned char*>(block) + sizeof(header);
    const Seal seal = sealOf(reinterpret_cast<std::uintptr_t>(block));
    std::memcpy(sealPlace(volume, depth), &seal, sizeof(seal));
    for (std::uint32_t z = 0; z < depth; ++z) {
        void** slice = allocArray2d(width, height, type, channels, nullptr);
        if (slice == nullptr) {
            release(volume, depth);
            return nullptr;
        }
        setRow(volume, z, slice);
    }
    if (dataOut != nullptr) *dataOut = nullptr;
    return static_cast<void***>(static_cast<void*>(volume));
}

extern "C" int matFreeArray3v(void*** volume) {
    tagMAT_ARRAY3V_HEADER header;
    if (!readHeader(volume, header)) return 0;
    if (isSealed(volume, header.depth)) release(volume, header.depth);
    return 1;
}

extern "C" int matIsArray3v(const void* const* const* volume) {
    tagMAT_ARRAY3V_HEADER header;
    return readHeader(volume, header) ? 1 : 0;
}

extern "C" int matZeroInitArray3v(void*** volume) {
    tagMAT_ARRAY3V_HEADER header;
    if (!readHeader(volume, header)) return 0;
    const std::size_t rowBytes = std::size_t{elementSize(header.type)} * header.channels * header.width;
    if (rowBytes == 0) return 1;
    for (std::uint32_t z = 0; z < header.depth; ++z) {
        for (std::uint32_t y = 0; y < header.height; ++y)
            std::memset(rowAt(volume, z, y), 0, rowBytes);
    }
    return 1;
}

int matCopyArray3v(void*** destination, void*** source, int width, int height, int depth, unsigned int type,
                   unsigned int channels) {
    if (width < 1 || height < 1 || depth < 1) return 1;
    const std::size_t rowBytes = std::size_t{elementSize(type)} * static_cast<std::size_t>(width) * channels;
    if (rowBytes == 0) return 1;
    for (std::size_t z = 0; z < static_cast<std::size_t>(depth); ++z) {
        for (std::size_t y = 0; y < static_cast<std::size_t>(height); ++y)
            std::memmove(rowAt(destination, z, y), rowAt(source, z, y), rowBytes);
    }
    return 1;
}
