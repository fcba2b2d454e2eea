#include "platform/module.h"

#include <cstring>
#include <mutex>
#include <new>
#include <utility>

namespace velquad::platform {

namespace {

// One entry of the list of libraries that are searched by class name.
struct LibraryRecord {
    const ModuleRecord* module;
    LibraryRecord* next;
};

// What the module knows of run-time classes. Constant-initialised: it is in use before static objects are
// constructed and after they are destroyed.
struct ModuleState {
    std::mutex mutex;
    CRuntimeClass* classes = nullptr;  // registered, and not taken over by a module
    CRuntimeClass* setAside = nullptr;
    LibraryRecord* libraries = nullptr;
    bool isStarting = false;
    ModuleRecord record{};
    ModuleTrace trace{};
};
constinit ModuleState state;

void note(ModuleEvent event) {
    if (state.trace.count < ModuleTrace::kCapacity) state.trace.events[state.trace.count++] = event;
}

CRuntimeClass* findClass(CRuntimeClass* first, const char* name) {
    CRuntimeClass* record = first;
    while (record != nullptr && std::strcmp(record->m_lpszClassName, name) != 0)
        record = record->m_pNextClass;
    return record;
}

bool isListed(const CRuntimeClass* first, const CRuntimeClass* record) {
    while (first != nullptr && first != record)
        first = first->m_pNextClass;
    return first != nullptr;
}

struct HookAtLoad {
    HookAtLoad() { runHook(); }
};
__attribute__((init_priority(VELQUAD_HOOK_PRIORITY))) const HookAtLoad hookAtLoad;

}  // namespace

const ModuleTrace& moduleTrace() {
    return state.trace;
}

const ModuleRecord& moduleRecord() {
    return state.record;
}

std::size_t libraryCount() {
    const std::lock_guard lock(state.mutex);
    std::size_t count = 0;
    for (const LibraryRecord* library = state.libraries; library != nullptr; library = library->next)
        ++count;
    return count;
}

void runHook() {
    const std::lock_guard lock(state.mutex);
    state.setAside = std::exchange(state.classes, nullptr);
    state.isStarting = true;
    note(ModuleEvent::kHook);
}

void attachModule(HINSTANCE instance) {
    auto* library = new (std::nothrow) LibraryRecord{&state.record, nullptr};
    const std::lock_guard lock(state.mutex);
    state.record.classes = std::exchange(state.classes, std::exchange(state.setAside, nullptr));
    state.record.isInitialised = true;
    if (library != nullptr) {
        library->next = state.libraries;
        state.libraries = library;
    }
    state.record.instance = instance;
    state.isStarting = false;
    note(ModuleEvent::kAttached);
}

void detachModule() {
    LibraryRecord* library = nullptr;
    {
        const std::lock_guard lock(state.mutex);
        LibraryRecord** link = &state.libraries;
        while (*link != nullptr && (*link)->module != &state.record)
            link = &(*link)->next;
        library = *link;
        if (library != nullptr) *link = library->next;
        state.record.classes = nullptr;
        state.record.isInitialised = false;
        note(ModuleEvent::kDetached);
    }
    delete library;
}

}  // namespace velquad::platform

void AfxClassInit(CRuntimeClass* record) {
    using namespace velquad::platform;
    if (record == nullptr) return;
    const std::lock_guard lock(state.mutex);
    if (isListed(state.classes, record) || isListed(state.record.classes, record)) return;
    record->m_pNextClass = state.classes;
    state.classes = record;
    if (state.isStarting) note(ModuleEvent::kClassRegistered);
}

CRuntimeClass* CRuntimeClass::FromName(const char* name) {
    using namespace velquad::platform;
    if (name == nullptr) return nullptr;
    const std::lock_guard lock(state.mutex);
    CRuntimeClass* found = findClass(state.classes, name);
    for (const LibraryRecord* library = state.libraries; library != nullptr; library = library->next) {
        if (found == nullptr) found = findClass(library->module->classes, name);
    }
    return found;
}
