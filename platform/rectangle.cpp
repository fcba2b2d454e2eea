// Rectangle helpers of the user interface.
#include "velquad/platform.h"

extern "C" BOOL SetRect(RECT* rect, int left, int top, int right, int bottom) {
    if (rect == nullptr) return 0;
    *rect = {left, top, right, bottom};
    return 1;
}

extern "C" BOOL CopyRect(RECT* destination, const RECT* source) {
    if (destination == nullptr || source == nullptr) return 0;
    *destination = *source;
    return 1;
}
