// A working buffer in a movable block, as the functions with a numbered status use it.
#ifndef VELQUAD_FRAME_WORKING_BLOCK_H
#define VELQUAD_FRAME_WORKING_BLOCK_H

#include "velquad/platform.h"
#include "velquad/types.h"

namespace velquad::frame {

/// Allocates and locks a block, and releases it at the end of its scope. Tells which of the two failed.
class WorkingBlock {
  public:
    /// @param size  bytes; none gives a block of one, as a block of no bytes cannot be locked.
    explicit WorkingBlock(SIZE_T size, UINT flags = GMEM_MOVEABLE)
        : handle_(GlobalAlloc(flags, size == 0 ? 1 : size)),
          contents_(handle_ == nullptr ? nullptr : GlobalLock(handle_)) {}
    WorkingBlock(const WorkingBlock&) = delete;
    WorkingBlock& operator=(const WorkingBlock&) = delete;
    ~WorkingBlock() {
        if (contents_ != nullptr) GlobalUnlock(handle_);
        if (handle_ != nullptr) GlobalFree(handle_);
    }

    /// `kSignalOk`, `kSignalNoMemory` or `kSignalLockFailed`.
    SignalStatus status() const {
        if (handle_ == nullptr) return kSignalNoMemory;
        return contents_ == nullptr ? kSignalLockFailed : kSignalOk;
    }

    template <class T>
    T* as() const {
        return static_cast<T*>(contents_);
    }

  private:
    HGLOBAL handle_;
    void* contents_;
};

}  // namespace velquad::frame

#endif  // VELQUAD_FRAME_WORKING_BLOCK_H
