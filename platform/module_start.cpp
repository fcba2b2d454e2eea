// Start and stop of the module on systems where a loaded file runs its initialisers and nothing else: attaching
// and detaching are the life of one static object.

#include <dlfcn.h>

#include "platform/module.h"

namespace velquad::platform {

namespace {

// The address at which the file that holds this code is loaded, as a module handle is on Windows.
HINSTANCE ownInstance() {
    static const char anchor = 0;
    Dl_info information{};
    return dladdr(&anchor, &information) != 0 ? information.dli_fbase : nullptr;
}

class AttachedModule {
  public:
    AttachedModule() { attachModule(ownInstance()); }
    AttachedModule(const AttachedModule&) = delete;
    AttachedModule& operator=(const AttachedModule&) = delete;
    ~AttachedModule() { detachModule(); }
};
__attribute__((init_priority(VELQUAD_ATTACH_PRIORITY))) const AttachedModule attachedModule;

}  // namespace

}  // namespace velquad::platform
