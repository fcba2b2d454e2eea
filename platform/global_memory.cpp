#include <cstdlib>
#include <cstring>
#include <mutex>
#include <unordered_map>
#include "velquad/platform.h"
namespace {
struct Block {
    void* address;
    SIZE_T size;
    UINT locks;
};
std::mutex mutex;
std::unordered_map<void*, Block*> blocks;
Block* find(HGLOBAL h) {
    auto it = blocks.find(h);
    return it == blocks.end() ? nullptr : it->second;
}
}  // namespace
extern "C" HGLOBAL GlobalAlloc(UINT, SIZE_T size) {
    std::lock_guard g(mutex);
    void* p = std::calloc(1, size + 1);
    if (!p) return nullptr;
    auto* b = static_cast<Block*>(std::malloc(sizeof(Block)));
    if (!b) {
        std::free(p);
        return nullptr;
    }
    *b = {p, size, 0};
    blocks[b] = b;
    return b;
}
extern "C" void* GlobalLock(HGLOBAL h) {
    std::lock_guard g(mutex);
    Block* b = find(h);
    if (!b) return nullptr;
    ++b->locks;
    return b->address;
}
extern "C" BOOL GlobalUnlock(HGLOBAL h) {
    std::lock_guard g(mutex);
    Block* b = find(h);
    if (!b || b->locks == 0) return 0;
    --b->locks;
    return b->locks != 0;
}
extern "C" HGLOBAL GlobalReAlloc(HGLOBAL h, SIZE_T size, UINT) {
    std::lock_guard g(mutex);
    Block* b = find(h);
    if (!b) return nullptr;
    void* p = std::realloc(b->address, size + 1);
    if (!p) return nullptr;
    if (size > b->size) std::memset(static_cast<char*>(p) + b->size, 0, size - b->size);
    b->address = p;
    b->size = size;
    return h;
}
extern "C" HGLOBAL GlobalHandle(const void* a) {
    std::lock_guard g(mutex);
    for (auto& e : blocks)
        if (e.second->address == a) return e.first;
    return nullptr;
}
extern "C" SIZE_T GlobalSize(HGLOBAL h) {
    std::lock_guard g(mutex);
    Block* b = find(h);
    return b ? b->size : 0;
}
extern "C" HGLOBAL GlobalFree(HGLOBAL h) {
    if (!h) return nullptr;
    std::lock_guard g(mutex);
    Block* b = find(h);
    if (!b) return h;
    blocks.erase(h);
    std::free(b->address);
    std::free(b);
    return nullptr;
}
extern "C" UINT GlobalFlags(HGLOBAL h) {
    std::lock_guard g(mutex);
    Block* b = find(h);
    return b ? b->locks : GMEM_INVALID_HANDLE;
}
