// The life of the module: what happens when it is loaded and unloaded, and in which order.
//
//     1. the hook        sets the run-time classes that are registered so far aside, so that those registered
//                        from here on are the module's own
//     2. static objects  register the module's classes, among other things
//     3. attach          takes the module's classes over into the module record, restores the others, and enters
//                        the record in the list of libraries that are searched by class name
//     4. detach          leaves the list and clears the record
//
// No exported function depends on this having happened, apart from finding a class by its name.
#ifndef VELQUAD_PLATFORM_MODULE_H
#define VELQUAD_PLATFORM_MODULE_H

#include <cstddef>

#include "velquad/framework.h"

// Init priorities of static objects. The linker sorts initialisers by them over all object files, and leaves the
// ones without a priority for the end: steps 1 to 3 come in this order whatever the order of linking, and static
// objects without a priority find the module attached. Destruction runs backwards.
#define VELQUAD_HOOK_PRIORITY 101
#define VELQUAD_STATIC_OBJECT_PRIORITY 200
#define VELQUAD_ATTACH_PRIORITY 300

/// Marks a static object that belongs to step 2.
#define VELQUAD_STATIC_OBJECT __attribute__((init_priority(VELQUAD_STATIC_OBJECT_PRIORITY)))

namespace velquad::platform {

enum class ModuleEvent { kHook, kClassRegistered, kAttached, kDetached };

/// The first events of the module's life, in order. Classes that a host registers later are not listed.
struct ModuleTrace {
    static constexpr std::size_t kCapacity = 32;
    ModuleEvent events[kCapacity];
    std::size_t count;
};

/// What the module keeps for its whole life.
struct ModuleRecord {
    bool isInitialised;
    HINSTANCE instance;
    CRuntimeClass* classes;  ///< The module's own run-time classes, linked by `m_pNextClass`.
};

const ModuleTrace& moduleTrace();
const ModuleRecord& moduleRecord();

/// @return how many libraries are searched by class name.
std::size_t libraryCount();

/// Step 1.
void runHook();
/// Step 3. A library record that cannot be allocated is left out; the instance handle is stored all the same.
void attachModule(HINSTANCE instance);
/// Step 4.
void detachModule();

}  // namespace velquad::platform

#endif  // VELQUAD_PLATFORM_MODULE_H
