// Simplicity of integer outlines, and its repair by cutting loops off.
#include "polygon/simplicity_impl.h"

#include "polygon/simplicity_repair_impl.h"
#include "velquad/polygon.h"

extern "C" int polyIsSimple(const tagPOINT* points, DWORD count, int closed, DWORD* first, DWORD* second) {
    return velquad::polygon::isSimple(points, count, closed != 0, first, second);
}

extern "C" DWORD polyMakeSimple(tagPOINT* points, DWORD count, DWORD maximalLoopSize) {
    return velquad::polygon::makeSimple(points, count, maximalLoopSize);
}

extern "C" DWORD polyMakeSimpleEx(tagPOINT* points, DWORD count, int closed, DWORD maximalLoopSize) {
    return velquad::polygon::makeSimpleEx(points, count, closed != 0, maximalLoopSize);
}
