// The questions to a triangulation as plain loops: see delaunay_reference.h.
#ifndef VELQUAD_TESTS_SUPPORT_DELAUNAY_QUERIES_REFERENCE_H
#define VELQUAD_TESTS_SUPPORT_DELAUNAY_QUERIES_REFERENCE_H

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "tests/support/delaunay_reference.h"
#include "velquad/geometry.h"

namespace velquad::test::delaunay {

inline tagPOINT2D plane(const Point& p) {
    return {p.x, p.y};
}

inline double segmentDistance(const Point& a, const Point& b, const Point& p, tagPOINT2D* closest = nullptr,
                              double* t = nullptr) {
    const tagPOINT2D pa = plane(a);
    const tagPOINT2D pb = plane(b);
    const tagPOINT2D pp = plane(p);
    return matCalcDistanceToSegment2D(&pa, &pb, &pp, 0, closest, t);
}

inline unsigned int locateCorners(const Triangulation& t, const Point& p, Point* r, int& isOutside,
                                  unsigned int flags, bool filter) {
    isOutside = 0;
    const auto inside = [&]() -> unsigned int {
        Edge* e = t.locate(p);
        if (e == nullptr) return 0;
        unsigned int k = 0;
        if (distance(p, *e->org()) < 1e-6) {
            k = 1;
            r[0] = *e->org();
        } else if (distance(p, *e->dest()) < 1e-6) {
            k = 1;
            r[0] = *e->dest();
        } else if (onEdge(p, e)) {
            k = 2;
            r[0] = *e->org();
            r[1] = *e->dest();
        } else {
            k = 3;
            r[0] = *e->org();
            r[1] = *e->onext()->dest();
            r[2] = *e->dest();
        }
        for (unsigned int i = 0; i < k; ++i)
            if (r[i].isHelper) return 0;
        if (!filter) return k;
        for (unsigned int i = 0; i < k; ++i)
            if (r[i].id != r[0].id) return 0;
        return p.id == kNoId || p.id == r[0].id ? k : 0;
    };
    if (const unsigned int k = inside(); k != 0) return k;
    isOutside = 1;
    Edge* bestEdge = nullptr;
    double edgeDistance = 0.0;
    if ((flags & 3) != 0) {
        double best = kFloatMax;
        for (const auto& group : t.edges) {
            Edge* e = &group->e[0];
            const Point& a = *e->org();
            const Point& b = *e->dest();
            if (a.isHelper || b.isHelper) continue;
            if (filter) {
                if (a.id == kNoId || a.id != b.id) continue;
                if (p.id != kNoId && p.id != a.id) continue;
            }
            const double measure =
                (flags & 1) != 0 ? (distance(p, a) + distance(p, b)) / 2 : segmentDistance(a, b, p);
            if (measure < best) {
                best = measure;
                bestEdge = e;
            }
        }
        if (bestEdge != nullptr) edgeDistance = segmentDistance(*bestEdge->org(), *bestEdge->dest(), p);
    }
    const Point* bestPoint = nullptr;
    double best = kFloatMax;
    for (const auto& q : t.points) {
        if (q->isHelper) continue;
        if (filter && (q->id == kNoId || (p.id != kNoId && q->id != p.id))) continue;
        if (squared(p, *q) < best) {
            best = squared(p, *q);
            bestPoint = q.get();
        }
    }
    const double vertexDistance = best < 1e-7 ? 0.0 : std::sqrt(best);
    if (bestEdge == nullptr && bestPoint == nullptr) return 0;
    if (bestEdge == nullptr || (bestPoint != nullptr && edgeDistance > vertexDistance)) {
        r[0] = *bestPoint;
        return 1;
    }
    r[0] = *bestEdge->org();
    r[1] = *bestEdge->dest();
    return 2;
}

inline unsigned int interpolateAll(const Triangulation& t, const Point& p, Point* r, int& isOutside,
                                   unsigned int flags, bool filter) {
    if (!std::isfinite(p.x) || !std::isfinite(p.y)) return 0;
    double maxW = -kFloatMax;
    double maxZ = -kFloatMax;
    for (const auto& q : t.points) {
        if (q->isHelper || (filter && q->id != p.id)) continue;
        double d2 = squared(p, *q);
        if (d2 < 1e-10) {
            r[0] = *q;
            return 1;
        }
        if ((flags & 16) != 0) d2 = d2 * d2;
        const double w = 1.0 / d2;
        if (w > maxW) maxW = w;
        if (std::fabs(q->z) > maxZ) maxZ = std::fabs(q->z);
    }
    if (maxW < 1.1754943508222875e-38) maxW = 1.0;
    if (maxZ < 1e-15) maxZ = 1.0;
    double sumW = 0.0;
    double sumWZ = 0.0;
    int counter = 0;
    for (const auto& q : t.points) {
        if (q->isHelper || (filter && q->id != p.id)) continue;
        double d2 = squared(p, *q);
        if ((flags & 16) != 0) d2 = d2 * d2;
        const double w = 1.0 / d2;
        sumW += w / maxW;
        sumWZ += (q->z / maxZ) * (w / maxW);
        ++counter;
    }
    if (counter == 0) return 0;
    r[0] = {p.x, p.y, maxZ * sumWZ / sumW, p.id, false};
    isOutside = 0;
    return 1;
}

/// What a find function returns and stores.
struct Found {
    unsigned int count = 0;
    tagPOINT3D point{};
    tagPOINT3D corners[3] = {};
    std::uint64_t ids[3] = {};
    int isOutside = 0;
};

inline Found find(const Triangulation* t, Found found, std::uint64_t id, unsigned int flags, bool filter) {
    found.count = 0;
    if (t == nullptr) return found;
    Point p{found.point.x, found.point.y, kDoubleMax, id, false};
    Point r[3];
    const unsigned int k = (flags & 24) != 0 ? interpolateAll(*t, p, r, found.isOutside, flags, filter)
                                             : locateCorners(*t, p, r, found.isOutside, flags, filter);
    if (k == 0) return found;
    if (k == 1) {
        p = r[0];
    } else if (k == 2) {
        tagPOINT2D closest{};
        double s = 0.0;
        segmentDistance(r[0], r[1], p, &closest, &s);
        p.x = closest.x;
        p.y = closest.y;
        p.z = (r[1].z - r[0].z) * s + r[0].z;
    } else {
        const Point& a = r[0];
        const Point& b = r[1];
        const Point& c = r[2];
        const double det = (b.x - a.x) * (c.y - a.y) - (c.x - a.x) * (b.y - a.y);
        if (std::fabs(det) < 1e-7) return found;
        const double u = ((p.x - a.x) * (c.y - a.y) - (p.y - a.y) * (c.x - a.x)) / det;
        const double v = ((p.y - a.y) * (b.x - a.x) - (p.x - a.x) * (b.y - a.y)) / det;
        p.x = a.x + u * (b.x - a.x) + v * (c.x - a.x);
        p.y = a.y + u * (b.y - a.y) + v * (c.y - a.y);
        p.z = a.z + u * (b.z - a.z) + v * (c.z - a.z);
    }
    for (unsigned int i = 0; i < k; ++i) {
        found.corners[i] = {r[i].x, r[i].y, r[i].z};
        found.ids[i] = r[i].id;
    }
    found.point = {p.x, p.y, p.z};
    found.count = k;
    return found;
}

inline int compareAt(const Point& a, const Point& b) {
    if (std::fabs(a.y - b.y) >= 1e-7) return b.y > a.y ? -1 : 1;
    if (std::fabs(a.x - b.x) < 1e-7) return 0;
    return b.x > a.x ? -1 : 1;
}

/// Pointers in ascending order, in one shifted array; `placeOf` makes a point of an element.
template <class T, class PlaceOf>
struct SortedPointers {
    std::vector<T*> elements;
    PlaceOf placeOf;

    explicit SortedPointers(PlaceOf place) : placeOf(place) {}

    std::pair<std::ptrdiff_t, bool> find(const Point& value) const {
        if (elements.empty()) return {-1, false};
        const auto at = [&](std::ptrdiff_t i) {
            return compareAt(placeOf(*elements[static_cast<std::size_t>(i)]), value);
        };
        std::ptrdiff_t low = 0;
        std::ptrdiff_t high = static_cast<std::ptrdiff_t>(elements.size()) - 1;
        if (at(low) == 0) return {low, true};
        if (at(low) > 0) return {-1, false};
        if (at(high) == 0) return {high, true};
        if (at(high) < 0) return {high, false};
        while (high - low > 1) {
            const std::ptrdiff_t middle = (low + high) / 2;
            if (at(middle) == 0) return {middle, true};
            (at(middle) < 0 ? low : high) = middle;
        }
        return {low, false};
    }

    bool insert(T* element) {
        const auto [index, isEqual] = find(placeOf(*element));
        if (!isEqual) elements.insert(elements.begin() + (index + 1), element);
        return !isEqual;
    }
};

struct Triangle {
    Point* vertices[3] = {};
    Point center;
    double area = 0.0;
};

inline bool inTriangle(const Point& p, const Point& a, const Point& b, const Point& c) {
    const double det = (c.y - a.y) * (b.x - a.x) - (c.x - a.x) * (b.y - a.y);
    if (std::fabs(det) < 1e-7) return false;
    const double u = ((p.x - a.x) * (c.y - a.y) - (p.y - a.y) * (c.x - a.x)) / det;
    const double v = ((p.y - a.y) * (b.x - a.x) - (p.x - a.x) * (b.y - a.y)) / det;
    return u > -1e-7 && u < 1.0000001 && v > -1e-7 && v < 1.0000001 && u + v > -1e-7 && u + v < 1.0000001;
}

inline bool inRect(const Point& p, const tagMAT_RECT2D& r) {
    return p.x > r.left - 1e-7 && r.right + 1e-7 > p.x && p.y > r.top - 1e-7 && r.bottom + 1e-7 > p.y;
}

inline bool meets(const Triangle& t, const tagMAT_RECT2D& r) {
    const Point* v[3] = {t.vertices[0], t.vertices[1], t.vertices[2]};
    int left = 0;
    int right = 0;
    int top = 0;
    int bottom = 0;
    for (const Point* p : v) {
        left += p->x <= r.left - 1e-7 ? 1 : 0;
        right += p->x >= r.right + 1e-7 ? 1 : 0;
        top += p->y <= r.top - 1e-7 ? 1 : 0;
        bottom += p->y >= r.bottom + 1e-7 ? 1 : 0;
    }
    if (left == 3 || right == 3 || top == 3 || bottom == 3) return false;
    for (const Point* p : v)
        if (inRect(*p, r)) return true;
    const tagPOINT2D c[4] = {{r.left, r.top}, {r.right, r.top}, {r.right, r.bottom}, {r.left, r.bottom}};
    for (const tagPOINT2D& corner : c)
        if (inTriangle({corner.x, corner.y}, *v[0], *v[1], *v[2])) return true;
    for (int i = 0; i < 3; ++i) {
        const tagPOINT2D a = plane(*v[i]);
        const tagPOINT2D b = plane(*v[(i + 1) % 3]);
        for (int side = 0; side < 3; ++side)
            if (matIntersectSegments2D(&a, &b, &c[side], &c[side + 1], nullptr, nullptr, nullptr, nullptr) !=
                0)
                return true;
    }
    return false;
}

/// Calls `visit` with the numbers of the points in or around a rectangle.
/// @return 1, the stopping value, or 0.
inline int enumerate(const Triangulation* t, tagMAT_RECT2D r, unsigned int flags,
                     const std::function<int(const Point&)>& visit) {
    if (t == nullptr) return 0;
    if (r.left > r.right) std::swap(r.left, r.right);
    if (r.top > r.bottom) std::swap(r.top, r.bottom);
    if (t->points.size() < 3) return 0;
    SortedPointers<Point, Point (*)(const Point&)> list([](const Point& p) { return p; });
    if ((flags & 2) == 0) {
        for (const auto& p : t->points)
            if (!p->isHelper && inRect(*p, r)) list.insert(p.get());
    } else {
        const double total = std::fabs(triArea(*t->points[0], *t->points[1], *t->points[2])) * 0.5;
        double covered = 0.0;
        const std::size_t capacity = 2 * t->edges.size();
        std::vector<Triangle> triangles(capacity + 1);
        std::size_t count = 0;
        SortedPointers<Triangle, Point (*)(const Triangle&)> sorted(
            [](const Triangle& x) { return x.center; });
        const auto add = [&](Point* a, Point* b, Point* c) {
            if (a->isHelper && b->isHelper && c->isHelper) return;
            if (count == capacity) return;
            Triangle& entry = triangles[count];
            entry.vertices[0] = a;
            entry.vertices[1] = b;
            entry.vertices[2] = c;
            entry.center.x = (a->x + b->x + c->x) / 3.0;
            entry.center.y = (a->y + b->y + c->y) / 3.0;
            entry.area = std::fabs(triArea(*a, *b, *c)) * 0.5;
            const bool isNew = sorted.insert(&entry);
            if (std::fabs(covered - total) < total * 1e-10 || !isNew) return;
            covered += entry.area;
            ++count;
        };
        for (const auto& group : t->edges) {
            Edge* e = &group->e[0];
            add(e->org(), e->onext()->dest(), e->dest());
        }
        if (!(std::fabs(covered - total) < total * 1e-10)) {
            for (const auto& group : t->edges) {
                Edge* e = &group->e[0];
                add(e->org(), e->dest(), e->oprev()->dest());
            }
        }
        for (const Triangle* triangle : sorted.elements) {
            if (!meets(*triangle, r)) continue;
            for (Point* p : triangle->vertices)
                if (!p->isHelper) list.insert(p);
        }
    }
    for (const auto& p : t->points) {
        if (p->isHelper || !list.find(*p).second) continue;
        if (const int answer = visit(*p); answer != 1) return answer;
    }
    return 1;
}

}  // namespace velquad::test::delaunay

#endif  // VELQUAD_TESTS_SUPPORT_DELAUNAY_QUERIES_REFERENCE_H
