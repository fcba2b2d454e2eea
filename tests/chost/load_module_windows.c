#include "load_module.h"

#include <windows.h>

static HMODULE module = NULL;

int loadModule(const char* path) {
    module = LoadLibraryA(path);
    return module != NULL;
}

AnyFunction moduleFunction(const char* name) {
    return (AnyFunction)GetProcAddress(module, name);
}

AnyFunction memoryFunction(const char* name) {
    return (AnyFunction)GetProcAddress(GetModuleHandleA("kernel32.dll"), name);
}

int unloadModule(void) {
    return FreeLibrary(module) != 0;
}
