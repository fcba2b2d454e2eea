// A program outside the tree: makes a polygon handle, measures it and lets it go.
#include <velquad/velquad.h>

#include <cstdio>

int main() {
    const tagPOINT corners[] = {{0, 0}, {10, 0}, {10, 10}, {0, 10}};
    void* handle = polyCopy(corners, 4, 1);
    const auto* record = static_cast<const tagPOLY*>(GlobalLock(handle));
    if (record == nullptr) return 1;
    std::printf("points %u, area %.1f, length %.1f\n", static_cast<unsigned>(record->count),
                polyCalcAreaExact(record->points, record->count),
                polyCalcLength(record->points, record->count, 0, 0));
    GlobalUnlock(handle);
    return polyFree(handle) == 1 && matIsEqual(1.0, 1.04, 1) == 1 ? 0 : 1;
}
