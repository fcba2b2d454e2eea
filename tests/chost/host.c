/* A host in plain C that knows no header of the library and is linked to nothing of it: it finds the plain
   exports by their names at run time, and walks a polygon by hand.
       chost <path of the module> */
#include <stddef.h>
#include <stdint.h>
#include <stdio.h>
#include <string.h>

#include "load_module.h"

/* What the host knows of the library. Calls are the platform's own C calls; DWORD and LONG have 32 bits. */
typedef struct {
    int32_t x, y;
} Pixel;
typedef void* Handle;

static void* (*lockBlock)(Handle);
static int (*unlockBlock)(Handle);
static double (*calcDist)(const Pixel*, const Pixel*, int);
static Handle (*copyPolygon)(const Pixel*, uint32_t, int);
static int (*freePolygon)(Handle);
static double (*calcArea)(const Pixel*, uint32_t);
static double (*calcLength)(const Pixel*, uint32_t, int, int);
static int (*isPointInside)(const Pixel*, uint32_t, const Pixel*);
static int (*translate)(Pixel*, uint32_t, int, int);
static Handle (*calcCurve)(Handle, double, double, unsigned int*);

static int failures = 0;

#define CHECK(condition)                                                 \
    do {                                                                 \
        if (!(condition)) {                                              \
            printf("line %d: %s does not hold\n", __LINE__, #condition); \
            ++failures;                                                  \
        }                                                                \
    } while (0)

/* Stores a function's address in a pointer of the function's own type. */
static void bind(AnyFunction function, void* pointer, const char* name) {
    if (function == NULL) {
        printf("%s is missing\n", name);
        ++failures;
    }
    memcpy(pointer, &function, sizeof function);
}

static void bindAll(void) {
    bind(memoryFunction("GlobalLock"), &lockBlock, "GlobalLock");
    bind(memoryFunction("GlobalUnlock"), &unlockBlock, "GlobalUnlock");
    bind(moduleFunction("matCalcDist"), &calcDist, "matCalcDist");
    bind(moduleFunction("polyCopy"), &copyPolygon, "polyCopy");
    bind(moduleFunction("polyFree"), &freePolygon, "polyFree");
    bind(moduleFunction("polyCalcAreaExact"), &calcArea, "polyCalcAreaExact");
    bind(moduleFunction("polyCalcLength"), &calcLength, "polyCalcLength");
    bind(moduleFunction("polyIsPointInside"), &isPointInside, "polyIsPointInside");
    bind(moduleFunction("polyTranslate"), &translate, "polyTranslate");
    bind(moduleFunction("polyCalcInterpolatingCurve"), &calcCurve, "polyCalcInterpolatingCurve");
}

/* The record by its bytes: the count at offset 0, from offset 4 on x and y of each point, four bytes each. */
static uint32_t countOf(const unsigned char* record) {
    uint32_t count;
    memcpy(&count, record, 4);
    return count;
}

static Pixel pointOf(const unsigned char* record, uint32_t index) {
    Pixel point;
    memcpy(&point.x, record + 4 + 8 * (size_t)index, 4);
    memcpy(&point.y, record + 8 + 8 * (size_t)index, 4);
    return point;
}

static int isAt(Pixel point, int32_t x, int32_t y) {
    return point.x == x && point.y == y;
}

static void useDistances(void) {
    const Pixel origin = {0, 0};
    const Pixel other = {3, -4};
    CHECK(calcDist(&origin, &other, 0) == 5.0);
    CHECK(calcDist(&origin, &other, 1) == 25.0);
}

static void useSquare(void) {
    const Pixel corners[] = {{0, 0}, {10, 0}, {10, 10}, {0, 10}};
    const Pixel inner = {5, 5};
    const Pixel outer = {15, 5};
    const Pixel corner = {10, 10};
    Handle square = copyPolygon(corners, 4, 1);
    unsigned char* record = lockBlock(square);
    Pixel* points = NULL;
    CHECK(record != NULL);
    if (record == NULL) return;
    CHECK((void*)record != square);
    CHECK(countOf(record) == 5);
    CHECK(isAt(pointOf(record, 0), 0, 0));
    CHECK(isAt(pointOf(record, 2), 10, 10));
    CHECK(isAt(pointOf(record, 4), 0, 0));
    points = (Pixel*)(void*)(record + 4);
    CHECK(calcArea(points, 5) == 100.0);
    CHECK(calcLength(points, 5, 1, 0) == 40.0);
    CHECK(isPointInside(points, 5, &inner) == 1);
    CHECK(isPointInside(points, 5, &outer) == 0);
    CHECK(isPointInside(points, 5, &corner) == -1);
    CHECK(translate(points, 5, 100, -200) == 1);
    CHECK(isAt(pointOf(record, 2), 110, -190));
    CHECK(unlockBlock(square) == 0);
    CHECK(freePolygon(square) == 1);
    CHECK(freePolygon(NULL) == 0);
}

static void useCurve(void) {
    const Pixel line[] = {{0, 0}, {2, 0}, {4, 0}, {6, 0}, {8, 0}};
    unsigned int error = 99;
    Handle source = copyPolygon(line, 5, 0);
    Handle curve = calcCurve(source, 0.25, 0.0, &error);
    const unsigned char* record = NULL;
    uint32_t i = 0;
    CHECK(error == 0);
    CHECK(curve != NULL);
    record = lockBlock(curve);
    CHECK(record != NULL);
    if (record == NULL) return;
    CHECK(countOf(record) == 9);
    for (i = 0; i < countOf(record); ++i)
        CHECK(isAt(pointOf(record, i), (int32_t)i, 0));
    unlockBlock(curve);
    CHECK(freePolygon(curve) == 1);
    CHECK(freePolygon(source) == 1);
    CHECK(calcCurve(NULL, 1.0, 0.0, &error) == NULL);
    CHECK(error == 7);
}

int main(int argc, char** argv) {
    int round = 0;
    if (argc != 2) return 2;
    /* What is loaded again after it was unloaded is as good as new. */
    for (round = 0; round < 2; ++round) {
        if (!loadModule(argv[1])) {
            printf("%s cannot be loaded\n", argv[1]);
            return 1;
        }
        bindAll();
        if (failures != 0) return 1;
        useDistances();
        useSquare();
        useCurve();
        CHECK(unloadModule());
    }
    printf("%d failures\n", failures);
    return failures == 0 ? 0 : 1;
}
