// Movable blocks as the library works on them: locked, known by the address of their contents, and released on
// every path.
#ifndef VELQUAD_FRAME_GLOBAL_BLOCK_H
#define VELQUAD_FRAME_GLOBAL_BLOCK_H

#include <utility>

#include "velquad/platform.h"

namespace velquad::frame {

/// Flags of a block that is handed to a caller: movable and zero-filled.
inline constexpr UINT kZeroedMovable = GMEM_MOVEABLE | GMEM_ZEROINIT;

/// Allocates a block and locks it.
/// @return the address of the contents; null without memory, and for a block that cannot be locked, which is
///         freed. A movable block of no bytes cannot.
void* matGlobalAllocLocked(UINT flags, SIZE_T size);

/// Resizes a locked block.
/// @return the new address of the contents, locked. Null when `contents` has no handle; null with the old block
///         valid and locked when the reallocation fails; null with the block freed when the new lock fails.
void* matGlobalReAllocLocked(void* contents, SIZE_T size, UINT flags);

/// Unlocks and frees a locked block. An address without a handle is ignored.
void matGlobalFreeLocked(void* contents);

/// Unlocks a locked block. @return its handle, which owns the block from now on.
HGLOBAL unlockToHandle(void* contents);

/// Unlocks a locked block and shrinks it to `size` bytes.
/// @return the handle that owns it from now on. A failed shrink keeps the larger block.
HGLOBAL shrinkToHandle(void* contents, SIZE_T size);

/// Owns a locked block until it is released as a handle.
class LockedBlock {
  public:
    LockedBlock() = default;
    explicit LockedBlock(void* contents) : contents_(contents) {}
    LockedBlock(UINT flags, SIZE_T size) : contents_(matGlobalAllocLocked(flags, size)) {}
    LockedBlock(LockedBlock&& other) noexcept : contents_(std::exchange(other.contents_, nullptr)) {}
    LockedBlock& operator=(LockedBlock&& other) noexcept {
        std::swap(contents_, other.contents_);
        return *this;
    }
    LockedBlock(const LockedBlock&) = delete;
    LockedBlock& operator=(const LockedBlock&) = delete;
    ~LockedBlock() { matGlobalFreeLocked(contents_); }

    void* get() const { return contents_; }
    template <class T>
    T* as() const {
        return static_cast<T*>(contents_);
    }
    explicit operator bool() const { return contents_ != nullptr; }

    /// Gives the block up, locked. @return the address of its contents, or null for no block.
    void* release() { return std::exchange(contents_, nullptr); }

    /// Gives the block up, unlocked. @return its handle, or null for no block.
    HGLOBAL releaseHandle() {
        void* contents = std::exchange(contents_, nullptr);
        return contents == nullptr ? nullptr : unlockToHandle(contents);
    }

    /// Gives the block up, unlocked and cut to `size` bytes.
    HGLOBAL releaseHandle(SIZE_T size) {
        void* contents = std::exchange(contents_, nullptr);
        return contents == nullptr ? nullptr : shrinkToHandle(contents, size);
    }

  private:
    void* contents_ = nullptr;
};

/// Keeps a caller's block locked for the length of a scope.
class BlockLock {
  public:
    explicit BlockLock(HGLOBAL handle) : handle_(handle), contents_(GlobalLock(handle)) {}
    BlockLock(const BlockLock&) = delete;
    BlockLock& operator=(const BlockLock&) = delete;
    ~BlockLock() {
        if (contents_ != nullptr) GlobalUnlock(handle_);
    }

    template <class T>
    T* as() const {
        return static_cast<T*>(contents_);
    }
    explicit operator bool() const { return contents_ != nullptr; }

  private:
    HGLOBAL handle_;
    void* contents_;
};

}  // namespace velquad::frame

#endif  // VELQUAD_FRAME_GLOBAL_BLOCK_H
