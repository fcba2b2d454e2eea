// The exported functions of the triangulation. None lets an exception out, those of callbacks included.
#include <cmath>

#include "triangulation/delaunay_growth.h"
#include "triangulation/enumerate.h"
#include "triangulation/find_position.h"
#include "velquad/framework.h"
#include "velquad/triangulation.h"

namespace velquad::triangulation {
namespace {

// Draw flags.
constexpr unsigned int kDrawHelperEdges = 2;
constexpr unsigned int kDrawEdges = 4;
/// Enum flag.
constexpr unsigned int kCornersOfTriangles = 2;
/// What find and list functions return after an exception.
constexpr unsigned int kFailed = 0xFFFFFFFF;
/// What `matFindPositionInDelaunay2D` searches with.
constexpr unsigned int kDefaultFindFlags = 1;

/// The value of a call, or `failure` when it throws.
template <class Result, class Call>
Result guarded(Result failure, const Call& call) {
    try {
        return call();
    } catch (CException* exception) {
        exception->Delete();
    } catch (...) {
    }
    return failure;
}

CDelaunay2D* triangulationOf(void* handle) {
    return static_cast<CDelaunay2D*>(handle);
}

/// Runs `change` on a caller's triangulation, which it may replace. The caller always holds a live one.
template <class Change>
int changeHandle(void** handle, const Change& change) {
    if (handle == nullptr || *handle == nullptr) return 0;
    Delaunay2DHandle owned(triangulationOf(*handle));
    const bool isDone = guarded(false, [&] { return change(owned); });
    *handle = owned.release();
    return isDone ? 1 : 0;
}

int extendHandle(void** handle, const tagPOINT3D* point, std::uint64_t id, double tolerance) {
    if (point == nullptr) return 0;
    return changeHandle(handle, [&](Delaunay2DHandle& triangulation) {
        return extend(triangulation, {point->x, point->y, point->z, id, false}, tolerance);
    });
}

tagPOINT3D positionOf(const CDelaunay2D& triangulation, std::uint32_t point) {
    const tagPOINT2D& at = triangulation.position(point);
    return {at.x, at.y, triangulation.z(point)};
}

unsigned int findPositionFor(void* handle, tagPOINT3D* point, std::uint64_t id, tagPOINT3D* corners,
                             std::uint64_t* cornerIds, int* isOutside, unsigned int flags,
                             bool filtersByIds) {
    if (handle == nullptr || point == nullptr) return 0;
    return guarded(kFailed, [&]() -> unsigned int {
        Point2d query{point->x, point->y, kNoValue, id, false};
        const FoundCorners found =
            findPosition(*triangulationOf(handle), query, isOutside, flags, filtersByIds);
        if (found.count == 0) return 0;
        for (std::uint32_t i = 0; i < found.count; ++i) {
            const Point2d& corner = found.corners[i];
            if (corners != nullptr) corners[i] = {corner.x, corner.y, corner.z};
            if (cornerIds != nullptr) cornerIds[i] = corner.id;
        }
        *point = {query.x, query.y, query.z};
        return found.count;
    });
}

/// Calls `set` with the nearest vertex, if it lies within the tolerance.
template <class Set>
int setNearest(void* handle, const tagPOINT3D* point, double tolerance, const Set& set) {
    if (handle == nullptr || point == nullptr) return 0;
    return guarded(0, [&] {
        CDelaunay2D& triangulation = *triangulationOf(handle);
        const NearestIndex::Found found = triangulation.nearestPoint({point->x, point->y}, kNoValue);
        if (found.point == NearestIndex::kNone) return 0;
        if (CDelaunay2D::foundDistance(found.distanceSquared) > tolerance) return 0;
        set(triangulation, found.point);
        return 1;
    });
}

}  // namespace
}  // namespace velquad::triangulation

using namespace velquad::triangulation;

extern "C" void* matInitDelaunay2D(const tagMAT_RECT2D* extent) {
    return guarded<void*>(nullptr, [&]() -> void* {
        const bool isEmpty = extent == nullptr || extent->left == velquad::kNoValue;
        if (!isEmpty && !(std::isfinite(extent->left) && std::isfinite(extent->top) &&
                          std::isfinite(extent->right) && std::isfinite(extent->bottom))) {
            return nullptr;
        }
        return new CDelaunay2D(extent);
    });
}

extern "C" int matExitDelaunay2D(void* handle) {
    if (handle == nullptr) return 0;
    delete triangulationOf(handle);
    return 1;
}

extern "C" int matExtentDelaunay2D(void** handle, const tagPOINT3D* point, double tolerance) {
    return extendHandle(handle, point, kNoId, tolerance);
}

extern "C" int matExtentWithIdDelaunay2D(void** handle, const tagPOINT3D* point, std::uint64_t id,
                                         double tolerance) {
    return extendHandle(handle, point, id, tolerance);
}

extern "C" int matReduceDelaunay2D(void** handle, const tagPOINT3D* point, double tolerance) {
    if (point == nullptr) return 0;
    return changeHandle(handle, [&](Delaunay2DHandle& triangulation) {
        return reduce(triangulation, {point->x, point->y}, tolerance);
    });
}

extern "C" int matDrawDelaunay2D(void* handle, MatDelaunayEdgeCallback edgeCallback, unsigned int drawFlags,
                                 void* user1, void* user2) {
    if (handle == nullptr || edgeCallback == nullptr) return 0;
    return guarded(0, [&] {
        const CDelaunay2D& triangulation = *triangulationOf(handle);
        triangulation.forEachEdge([&](EdgeRef e) {
            const std::uint32_t from = triangulation.org(e);
            const std::uint32_t to = triangulation.dest(e);
            const bool touchesHelper = CDelaunay2D::isHelper(from) || CDelaunay2D::isHelper(to);
            if ((drawFlags & (touchesHelper ? kDrawHelperEdges : kDrawEdges)) == 0) return;
            tagPOINT3D start = positionOf(triangulation, from);
            tagPOINT3D end = positionOf(triangulation, to);
            edgeCallback(&start, &end, user1, user2);
        });
        return 1;
    });
}

extern "C" unsigned int matFindPositionInDelaunay2D(void* handle, tagPOINT3D* point, tagPOINT3D* corners,
                                                    int* isOutside) {
    return findPositionFor(handle, point, kNoId, corners, nullptr, isOutside, kDefaultFindFlags, false);
}

extern "C" unsigned int matFindPositionInDelaunay2DEx(void* handle, tagPOINT3D* point, tagPOINT3D* corners,
                                                      int* isOutside, unsigned int findFlags) {
    return findPositionFor(handle, point, kNoId, corners, nullptr, isOutside, findFlags, false);
}

extern "C" unsigned int matFindPositionByIdInDelaunay2D(void* handle, tagPOINT3D* point, std::uint64_t id,
                                                        tagPOINT3D* corners, std::uint64_t* cornerIds,
                                                        int* isOutside, unsigned int findFlags) {
    return findPositionFor(handle, point, id, corners, cornerIds, isOutside, findFlags, true);
}

extern "C" unsigned int matGetPointListOfDelaunay2D(void* handle, tagPOINT3D* points) {
    if (handle == nullptr) return 0;
    return guarded(kFailed, [&]() -> unsigned int {
        const CDelaunay2D& triangulation = *triangulationOf(handle);
        if (!triangulation.hasPoints()) return 0;
        const std::uint32_t count = triangulation.pointCount() - CDelaunay2D::kHelperCount;
        for (std::uint32_t i = 0; points != nullptr && i < count; ++i)
            points[i] = positionOf(triangulation, CDelaunay2D::kHelperCount + i);
        return count;
    });
}

extern "C" int matEnumDelaunayPositionsInRect(void* handle, const tagMAT_RECT2D* rect, unsigned int enumFlags,
                                              MatDelaunayPositionCallback positionCallback, void* user) {
    if (handle == nullptr || rect == nullptr || positionCallback == nullptr) return 0;
    return guarded(0, [&] {
        const CDelaunay2D& triangulation = *triangulationOf(handle);
        if (!triangulation.hasPoints()) return 0;
        const MarginRect marginRect(*rect);
        CSortedPointList list;
        if ((enumFlags & kCornersOfTriangles) != 0) {
            listCornersOfTriangles(triangulation, marginRect, list);
        } else {
            listPointsInRect(triangulation, marginRect, list);
        }
        // Kept: a vertex that the list does not have itself is reported as well when one within 1e-7 of it is there.
        for (std::uint32_t i = CDelaunay2D::kHelperCount; i < triangulation.pointCount(); ++i) {
            if (!list.hasPointAt(triangulation.position(i))) continue;
            tagPOINT3D position = positionOf(triangulation, i);
            if (const int answer = positionCallback(&position, user); answer != 1) return answer;
        }
        return 1;
    });
}

extern "C" int matSetZValueOfDelaunayPosition(void* handle, const tagPOINT3D* point, double tolerance) {
    return setNearest(handle, point, tolerance, [point](CDelaunay2D& triangulation, std::uint32_t nearest) {
        triangulation.setZ(nearest, point->z);
    });
}

extern "C" int matSetIDOfDelaunayPosition(void* handle, std::uint64_t id, const tagPOINT3D* point,
                                          double tolerance) {
    return setNearest(handle, point, tolerance, [id](CDelaunay2D& triangulation, std::uint32_t nearest) {
        triangulation.setId(nearest, id);
    });
}
