// Start and stop of the module on Windows. The C++ runtime has run the hook and the static constructors when the
// system's notification of the process arrives here, and runs the static destructors after the last one.

#include "platform/module.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, void* /*reserved*/) {
    switch (reason) {
        case DLL_PROCESS_ATTACH:
            // Refused while the compiler's run-time library keeps thread-local storage in the file. The system
            // then goes on notifying, and each notification of a thread ends in the default below.
            DisableThreadLibraryCalls(instance);
            velquad::platform::attachModule(instance);
            break;
        case DLL_PROCESS_DETACH:
            velquad::platform::detachModule();
            break;
        default:
            break;
    }
    return TRUE;
}
