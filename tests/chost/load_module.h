/* A module bound at run time: how a system loads it and finds its functions. */
#ifndef VELQUAD_TESTS_CHOST_LOAD_MODULE_H
#define VELQUAD_TESTS_CHOST_LOAD_MODULE_H

typedef void (*AnyFunction)(void);

/* Loads a module by the path of its file. Returns 1, or 0. */
int loadModule(const char* path);

/* A function that the module exports under this plain name, or null. */
AnyFunction moduleFunction(const char* name);

/* A function for movable memory: the system's own where it has one, otherwise the module's. */
AnyFunction memoryFunction(const char* name);

/* Returns 1 when the module could be unloaded. */
int unloadModule(void);

#endif
