#include "chains.h"

#include <velquad/geometry.h>
#include <velquad/polygon.h>

#include <stdexcept>

namespace gallery {

std::vector<tagPOINT> pixelsOf(const tagPOINT& from, const tagPOINT& to) {
    std::vector<tagPOINT> pixels(matGetBresenhamLine(from.x, from.y, to.x, to.y, nullptr, 0));
    matGetBresenhamLine(from.x, from.y, to.x, to.y, pixels.data(), static_cast<unsigned int>(pixels.size()));
    return pixels;
}

std::vector<tagPOINT> pointsOf(void* handle) {
    if (handle == nullptr) throw std::runtime_error("a polygon was not made");
    const tagPOLY* polygon = static_cast<const tagPOLY*>(GlobalLock(handle));
    if (polygon == nullptr) {
        polyFree(handle);
        throw std::runtime_error("a polygon cannot be locked");
    }
    std::vector<tagPOINT> points(polygon->points, polygon->points + polygon->count);
    GlobalUnlock(handle);
    polyFree(handle);
    return points;
}

}  // namespace gallery
