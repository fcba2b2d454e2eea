#include "load_module.h"

#include <dlfcn.h>
#include <stddef.h>
#include <string.h>

static void* module = NULL;

int loadModule(const char* path) {
    module = dlopen(path, RTLD_NOW | RTLD_LOCAL);
    return module != NULL;
}

AnyFunction moduleFunction(const char* name) {
    void* address = dlsym(module, name);
    AnyFunction function = NULL;
    memcpy(&function, &address, sizeof function);
    return function;
}

AnyFunction memoryFunction(const char* name) {
    return moduleFunction(name);
}

int unloadModule(void) {
    return dlclose(module) == 0;
}
