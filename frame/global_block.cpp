#include "frame/global_block.h"

namespace velquad::frame {

void* matGlobalAllocLocked(UINT flags, SIZE_T size) {
    const HGLOBAL handle = GlobalAlloc(flags, size);
    if (handle == nullptr) return nullptr;
    void* contents = GlobalLock(handle);
    if (contents == nullptr) GlobalFree(handle);
    return contents;
}

void* matGlobalReAllocLocked(void* contents, SIZE_T size, UINT flags) {
    const HGLOBAL handle = GlobalHandle(contents);
    if (handle == nullptr) return nullptr;
    GlobalUnlock(handle);
    const HGLOBAL resized = GlobalReAlloc(handle, size, flags);
    if (resized == nullptr) {
        GlobalLock(handle);
        return nullptr;
    }
    void* moved = GlobalLock(resized);
    if (moved == nullptr) GlobalFree(resized);
    return moved;
}

void matGlobalFreeLocked(void* contents) {
    const HGLOBAL handle = GlobalHandle(contents);
    if (handle == nullptr) return;
    GlobalUnlock(handle);
    GlobalFree(handle);
}

HGLOBAL unlockToHandle(void* contents) {
    const HGLOBAL handle = GlobalHandle(contents);
    GlobalUnlock(handle);
    return handle;
}

HGLOBAL shrinkToHandle(void* contents, SIZE_T size) {
    const HGLOBAL handle = unlockToHandle(contents);
    const HGLOBAL shrunk = GlobalReAlloc(handle, size, GMEM_MOVEABLE);
    return shrunk != nullptr ? shrunk : handle;
}

}  // namespace velquad::frame
