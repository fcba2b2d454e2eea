// Movable memory: blocks that are known by handles.
//
// Every block has a place in one table. The handle of a movable block names the place and how often the place was
// used before, so that a handle goes stale when its block is freed and stays stale when the place is used again.
// Handles lie outside of the address range of a process and are odd; nothing is ever read through a handle. The
// handle of a fixed block is its address.
//
//     handle   0 1 gggggggggggggggggggggggggggggg ppppppppppppppppppppppppppppppp 1
//                  30 bits of generation          31 bits of place
//
// Addresses are found through a chained hash table over the places. The table of places grows in chunks that
// double it, each chunk with a new array of chain heads in the same allocation: a growth has one point of
// failure, and a failure leaves everything as it was. Chunks are never moved or released. The first chunk is
// static, so that the table works without an allocation until thousands of blocks are alive at once, and
// in the constructors and destructors of static objects.
//
// A short lock guards the table. Contents are allocated, cleared, moved and released outside of it; a place whose
// contents are on the move is marked busy, and whoever asks for its handle meanwhile waits.

#include "platform/global_memory.h"

#include <bit>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <thread>

#include "platform/spin_lock.h"

namespace {

using velquad::platform::kFirstTableSize;
using velquad::platform::SpinLock;

enum class Kind : std::uint8_t { kFree, kMovable, kFixed };

struct Place {
    void* address;             // null for a free place and for a discarded block
    SIZE_T size;               // as last asked for
    SIZE_T capacity;           // bytes that may be used at `address`
    std::uint32_t generation;  // of the present or next block
    std::uint32_t next;        // 1 + index of the next place of the hash chain or of the free list; 0 ends it
    std::uint32_t locks;
    Kind kind;
    bool isBusy;
};

constexpr std::uint32_t kLastGeneration = (1u << 30) - 1;
constexpr std::uint32_t kMostPlaces = 1u << 31;
constexpr int kFirstChunkBits = std::countr_zero(kFirstTableSize);
constexpr int kMostChunks = 31 - kFirstChunkBits + 1;
constexpr SIZE_T kLargestBlock = SIZE_MAX / 2;

static_assert(sizeof(std::uintptr_t) == 8, "handles carry a place and a generation in 64 bits");
static_assert(std::has_single_bit(kFirstTableSize));

// The table of places. Zero bytes are its initial state, and it has no destructor.
class BlockTable {
  public:
    SpinLock& lock() { return lock_; }

    std::size_t liveCount() const { return liveCount_; }
    std::uint32_t capacity() const { return kFirstTableSize << growthCount_; }

    Place& at(std::uint32_t index) {
        // Chunk 0 holds the first places, chunk k > 0 as many as all chunks before it.
        const auto chunk = static_cast<std::uint32_t>(std::bit_width(index >> kFirstChunkBits));
        const std::uint32_t first = chunk == 0 ? 0 : kFirstTableSize << (chunk - 1);
        return chunk == 0 ? firstChunk_[index] : chunks_[chunk][index - first];
    }

    // Takes a free place, 1 + its index; 0 when the table is full and cannot grow.
    std::uint32_t acquire() {
        if (freeList_ == 0 && usedCount_ == capacity() && !grow()) return 0;
        std::uint32_t place = freeList_;
        if (place != 0) {
            freeList_ = at(place - 1).next;
        } else {
            place = ++usedCount_;
        }
        ++liveCount_;
        return place;
    }

    // Gives a place back. A place that used up its generations is left out for good: no handle comes twice.
    void release(std::uint32_t index) {
        Place& place = at(index);
        place.kind = Kind::kFree;
        place.address = nullptr;
        --liveCount_;
        if (place.generation == kLastGeneration) return;
        ++place.generation;
        place.next = freeList_;
        freeList_ = index + 1;
    }

    void link(std::uint32_t index) {
        Place& place = at(index);
        std::uint32_t& head = headOf(place.address);
        place.next = head;
        head = index + 1;
    }

    void unlink(std::uint32_t index) {
        Place& place = at(index);
        std::uint32_t* link = &headOf(place.address);
        while (*link != index + 1)
            link = &at(*link - 1).next;
        *link = place.next;
    }

    // 1 + the index of the block that begins at `address`; 0 when there is none.
    std::uint32_t findAddress(const void* address) {
        if (address == nullptr) return 0;
        std::uint32_t place = headOf(address);
        while (place != 0 && at(place - 1).address != address)
            place = at(place - 1).next;
        return place;
    }

    // 1 + the index of the block with this handle; 0 when there is none.
    std::uint32_t findHandle(HGLOBAL handle) {
        const auto bits = reinterpret_cast<std::uintptr_t>(handle);
        if ((bits & kHandleMask) != kHandleMark) {
            const std::uint32_t place = findAddress(handle);
            return place != 0 && at(place - 1).kind == Kind::kFixed ? place : 0;
        }
        const auto index = static_cast<std::uint32_t>(bits) >> 1;
        if (index >= usedCount_) return 0;
        const Place& place = at(index);
        const bool isLive = place.kind == Kind::kMovable && makeHandle(index) == handle;
        return isLive ? index + 1 : 0;
    }

    HGLOBAL makeHandle(std::uint32_t index) {
        const Place& place = at(index);
        if (place.kind == Kind::kFixed) return place.address;
        const std::uintptr_t number = (static_cast<std::uintptr_t>(place.generation) << 32) | (index << 1);
        return std::bit_cast<HGLOBAL>(number | kHandleMark);
    }

  private:
    static constexpr std::uintptr_t kHandleMark = (std::uintptr_t{1} << 62) | 1;
    static constexpr std::uintptr_t kHandleMask = (std::uintptr_t{3} << 62) | 1;

    std::uint32_t& headOf(const void* address) {
        // Multiplication by 2^64 / golden ratio (Knuth, 1973) spreads addresses that share their low bits.
        constexpr std::uint64_t kSpread = 0x9E3779B97F4A7C15u;
        const std::uint64_t mixed = reinterpret_cast<std::uintptr_t>(address) * kSpread;
        const int bits = kFirstChunkBits + growthCount_;
        std::uint32_t* heads = heads_ == nullptr ? firstHeads_ : heads_;
        return heads[mixed >> (64 - bits)];
    }

    bool grow() {
        const std::uint32_t oldCapacity = capacity();
        if (oldCapacity >= kMostPlaces / 2) return false;
        const std::size_t placeBytes = std::size_t{oldCapacity} * sizeof(Place);
        const std::size_t headBytes = std::size_t{oldCapacity} * 2 * sizeof(std::uint32_t);
        void* memory = std::calloc(1, placeBytes + headBytes);
        if (memory == nullptr) return false;
        chunks_[++growthCount_] = static_cast<Place*>(memory);
        heads_ = static_cast<std::uint32_t*>(static_cast<void*>(static_cast<char*>(memory) + placeBytes));
        // Every place in front of the new chunk is live or retired here, and only places with contents that
        // stand still are in a chain.
        for (std::uint32_t index = 0; index < oldCapacity; ++index) {
            const Place& place = at(index);
            if (place.address != nullptr && !place.isBusy) link(index);
        }
        return true;
    }

    SpinLock lock_;
    int growthCount_ = 0;
    std::uint32_t usedCount_ = 0;
    std::uint32_t freeList_ = 0;
    std::size_t liveCount_ = 0;
    std::uint32_t* heads_ = nullptr;
    Place* chunks_[kMostChunks] = {};
    std::uint32_t firstHeads_[kFirstTableSize] = {};
    Place firstChunk_[kFirstTableSize] = {};
};

constinit BlockTable table;

using TableLock = std::unique_lock<SpinLock>;

// The place of a live handle, at rest; 0 for a refused handle. The lock is given back while waiting.
std::uint32_t findAtRest(HGLOBAL handle, TableLock& lock) {
    for (;;) {
        const std::uint32_t place = table.findHandle(handle);
        if (place == 0 || !table.at(place - 1).isBusy) return place;
        lock.unlock();
        std::this_thread::yield();
        lock.lock();
    }
}

SIZE_T capacityFor(SIZE_T size) {
    return size == 0 ? 1 : size;
}

void* allocateContents(SIZE_T size, bool isZeroed) {
    // The largest size that the C library serves from its per-thread cache. The cache is out of reach of its
    // calloc, which knows in turn which larger blocks are zero already.
    constexpr SIZE_T kLargestCached = 1032;
    if (size > kLargestBlock) return nullptr;
    if (isZeroed && size > kLargestCached) return std::calloc(1, size);
    void* contents = std::malloc(capacityFor(size));
    if (contents != nullptr && isZeroed) std::memset(contents, 0, size);
    return contents;
}

// Clears what lies behind the old contents, if that is asked for.
void zeroTail(void* contents, SIZE_T oldSize, SIZE_T size, UINT flags) {
    if ((flags & GMEM_ZEROINIT) == 0 || size <= oldSize) return;
    std::memset(static_cast<char*>(contents) + oldSize, 0, size - oldSize);
}

HGLOBAL makeMovable(std::uint32_t index) {
    Place& place = table.at(index);
    place.kind = Kind::kMovable;
    return table.makeHandle(index);
}

// Releases the contents and keeps the handle.
HGLOBAL discard(std::uint32_t index, TableLock& lock) {
    Place& place = table.at(index);
    void* contents = place.address;
    if (contents != nullptr) table.unlink(index);
    place.address = nullptr;
    place.size = 0;
    place.capacity = 0;
    const HGLOBAL handle = table.makeHandle(index);
    lock.unlock();
    std::free(contents);
    return handle;
}

HGLOBAL resizeInPlace(std::uint32_t index, SIZE_T size, UINT flags) {
    Place& place = table.at(index);
    if (size > place.capacity) return nullptr;
    zeroTail(place.address, place.size, size, flags);
    place.size = size;
    return table.makeHandle(index);
}

// Resizes contents that may move. The address is withdrawn from the registry meanwhile, since the C library may
// give it to another thread before this one comes back.
HGLOBAL resizeByMoving(std::uint32_t index, SIZE_T size, UINT flags, TableLock& lock) {
    if (size > kLargestBlock) return nullptr;
    Place& place = table.at(index);
    void* oldContents = place.address;
    const SIZE_T oldSize = place.size;
    if (oldContents != nullptr) table.unlink(index);
    place.isBusy = true;
    lock.unlock();

    void* contents = std::realloc(oldContents, capacityFor(size));
    if (contents != nullptr) zeroTail(contents, oldSize, size, flags);

    lock.lock();
    if (contents != nullptr) {
        place.address = contents;
        place.size = size;
        place.capacity = capacityFor(size);
    }
    place.isBusy = false;
    if (place.address != nullptr) table.link(index);
    return contents != nullptr ? table.makeHandle(index) : nullptr;
}

}  // namespace

extern "C" HGLOBAL GlobalAlloc(UINT flags, SIZE_T size) {
    const bool isMovable = (flags & GMEM_MOVEABLE) != 0;
    const bool isDiscarded = isMovable && size == 0;
    void* contents = isDiscarded ? nullptr : allocateContents(size, (flags & GMEM_ZEROINIT) != 0);
    if (contents == nullptr && !isDiscarded) return nullptr;
    {
        const TableLock lock(table.lock());
        const std::uint32_t number = table.acquire();
        if (number != 0) {
            Place& place = table.at(number - 1);
            place.address = contents;
            place.size = size;
            place.capacity = isDiscarded ? 0 : capacityFor(size);
            place.locks = 0;
            place.kind = isMovable ? Kind::kMovable : Kind::kFixed;
            if (!isDiscarded) table.link(number - 1);
            return table.makeHandle(number - 1);
        }
    }
    std::free(contents);
    return nullptr;
}

extern "C" void* GlobalLock(HGLOBAL handle) {
    TableLock lock(table.lock());
    const std::uint32_t number = findAtRest(handle, lock);
    if (number == 0) return nullptr;
    Place& place = table.at(number - 1);
    if (place.kind == Kind::kMovable && place.address != nullptr) {
        if (place.locks == UINT32_MAX) return nullptr;
        ++place.locks;
    }
    return place.address;
}

extern "C" BOOL GlobalUnlock(HGLOBAL handle) {
    TableLock lock(table.lock());
    const std::uint32_t number = findAtRest(handle, lock);
    if (number == 0) return 0;
    Place& place = table.at(number - 1);
    if (place.kind == Kind::kFixed) return 1;
    if (place.locks == 0) return 0;
    return --place.locks != 0;
}

extern "C" HGLOBAL GlobalReAlloc(HGLOBAL handle, SIZE_T size, UINT flags) {
    TableLock lock(table.lock());
    const std::uint32_t number = findAtRest(handle, lock);
    if (number == 0) return nullptr;
    const Place& place = table.at(number - 1);
    const bool mayMove = (flags & GMEM_MOVEABLE) != 0;
    if ((flags & GMEM_MODIFY) != 0) return mayMove ? makeMovable(number - 1) : handle;
    const bool isPinned = place.kind == Kind::kFixed || place.locks != 0;
    if (size == 0 && place.kind == Kind::kMovable) return isPinned ? nullptr : discard(number - 1, lock);
    if (isPinned && !mayMove) return resizeInPlace(number - 1, size, flags);
    return resizeByMoving(number - 1, size, flags, lock);
}

extern "C" HGLOBAL GlobalHandle(const void* address) {
    const TableLock lock(table.lock());
    const std::uint32_t number = table.findAddress(address);
    return number == 0 ? nullptr : table.makeHandle(number - 1);
}

extern "C" SIZE_T GlobalSize(HGLOBAL handle) {
    TableLock lock(table.lock());
    const std::uint32_t number = findAtRest(handle, lock);
    return number == 0 ? 0 : table.at(number - 1).size;
}

extern "C" HGLOBAL GlobalFree(HGLOBAL handle) {
    void* contents = nullptr;
    {
        TableLock lock(table.lock());
        const std::uint32_t number = findAtRest(handle, lock);
        if (number == 0) return handle;
        contents = table.at(number - 1).address;
        if (contents != nullptr) table.unlink(number - 1);
        table.release(number - 1);
    }
    std::free(contents);
    return nullptr;
}

extern "C" UINT GlobalFlags(HGLOBAL handle) {
    TableLock lock(table.lock());
    const std::uint32_t number = findAtRest(handle, lock);
    if (number == 0) return GMEM_INVALID_HANDLE;
    const Place& place = table.at(number - 1);
    const UINT locks = place.locks < GMEM_LOCKCOUNT ? place.locks : GMEM_LOCKCOUNT;
    return locks | (place.address == nullptr ? GMEM_DISCARDED : 0);
}

namespace velquad::platform {

std::size_t liveBlockCount() {
    const TableLock lock(table.lock());
    return table.liveCount();
}

std::size_t blockTableCapacity() {
    const TableLock lock(table.lock());
    return table.capacity();
}

void freeAtLastGeneration(HGLOBAL handle) {
    HGLOBAL last = nullptr;
    {
        TableLock lock(table.lock());
        const std::uint32_t number = findAtRest(handle, lock);
        if (number == 0) return;
        table.at(number - 1).generation = kLastGeneration;
        last = table.makeHandle(number - 1);
    }
    GlobalFree(last);
}

}  // namespace velquad::platform
