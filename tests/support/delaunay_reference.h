// A Delaunay triangulation as plain as can be: quad edges on the heap, arrays that are searched and shifted, every
// vertex looked at on every insertion. Guibas and Stolfi's operators, step by step.
#ifndef VELQUAD_TESTS_SUPPORT_DELAUNAY_REFERENCE_H
#define VELQUAD_TESTS_SUPPORT_DELAUNAY_REFERENCE_H

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "velquad/geometry.h"
#include "velquad/types.h"

namespace velquad::test::delaunay {

inline constexpr double kDoubleMax = 1.7976931348623157e308;
inline constexpr double kFloatMax = 3.4028234663852886e38;
inline constexpr std::uint64_t kNoId = ~std::uint64_t{0};
inline constexpr std::size_t kNotFound = ~std::size_t{0};

struct Point {
    double x = 0.0;
    double y = 0.0;
    double z = kDoubleMax;
    std::uint64_t id = kNoId;
    bool isHelper = false;
};

struct Edge {
    int num = 0;
    Edge* next = nullptr;
    Point* data = nullptr;

    Edge* rot() { return num < 3 ? this + 1 : this - 3; }
    Edge* sym() { return num < 2 ? this + 2 : this - 2; }
    Edge* invRot() { return num > 0 ? this - 1 : this + 3; }
    Edge* onext() { return next; }
    Edge* oprev() { return rot()->onext()->rot(); }
    Edge* lnext() { return invRot()->onext()->rot(); }
    Edge* lprev() { return onext()->sym(); }
    Edge* dprev() { return invRot()->onext()->invRot(); }
    Point*& org() { return data; }
    Point*& dest() { return sym()->data; }
};

struct Group {
    Edge e[4];
    Group() {
        for (int i = 0; i < 4; ++i)
            e[i].num = i;
        e[0].next = &e[0];
        e[1].next = &e[3];
        e[2].next = &e[2];
        e[3].next = &e[1];
    }
    Group(const Group&) = delete;
    Group& operator=(const Group&) = delete;
};

inline double length(double dx, double dy) {
    return std::sqrt(dx * dx + dy * dy);
}
inline double distance(const Point& a, const Point& b) {
    return length(a.x - b.x, a.y - b.y);
}
inline double squared(const Point& a, const Point& b) {
    const double dx = a.x - b.x;
    const double dy = a.y - b.y;
    return dx * dx + dy * dy;
}
inline double triArea(const Point& a, const Point& b, const Point& c) {
    return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
}
inline bool ccw(const Point& a, const Point& b, const Point& c) {
    return triArea(a, b, c) > 0.0;
}
inline bool rightOf(const Point& p, Edge* e) {
    return ccw(p, *e->dest(), *e->org());
}
inline bool inCircle(const Point& a, const Point& b, const Point& c, const Point& d) {
    return (a.x * a.x + a.y * a.y) * triArea(b, c, d) - (b.x * b.x + b.y * b.y) * triArea(a, c, d) +
               (c.x * c.x + c.y * c.y) * triArea(a, b, d) - (d.x * d.x + d.y * d.y) * triArea(a, b, c) >
           0.0;
}
inline bool onEdge(const Point& p, Edge* e) {
    const double t1 = distance(p, *e->org());
    const double t2 = distance(p, *e->dest());
    if (t1 < 1e-6 || t2 < 1e-6) return true;
    const double t3 = distance(*e->org(), *e->dest());
    if (t1 > t3 || t2 > t3) return false;
    const double nx = (e->dest()->y - e->org()->y) / t3;
    const double ny = -(e->dest()->x - e->org()->x) / t3;
    return std::fabs(nx * (p.x - e->org()->x) + ny * (p.y - e->org()->y)) < 1e-6;
}

class Triangulation {
  public:
    Edge* startingEdge = nullptr;
    std::vector<std::unique_ptr<Group>> edges;
    std::vector<std::unique_ptr<Point>> points;
    tagMAT_RECT2D extent{};

    explicit Triangulation(const tagMAT_RECT2D* rect) { init(rect); }

    void init(const tagMAT_RECT2D* rect) {
        if (rect == nullptr || rect->left == kDoubleMax) {
            extent = {kDoubleMax, kDoubleMax, kDoubleMax, kDoubleMax};
            return;
        }
        extent = *rect;
        const double w = extent.right - extent.left;
        const double h = extent.bottom - extent.top;
        Point* a = append({extent.left - w * 3 * 0.25, extent.top - h * 0.25, kDoubleMax, kNoId, true});
        Point* b = append({extent.right + w * 3 * 0.25, extent.top - h * 0.25, kDoubleMax, kNoId, true});
        Point* c = append({extent.left + w * 0.5, extent.bottom + h * 1.25, kDoubleMax, kNoId, true});
        Edge* ea = makeEdge(a, b);
        Edge* eb = makeEdge(b, c);
        splice(ea->sym(), eb);
        Edge* ec = makeEdge(c, a);
        splice(eb->sym(), ec);
        splice(ec->sym(), ea);
        startingEdge = ea;
    }

    bool hasPoints() const { return !points.empty(); }

    bool isInSuperTriangle(const Point& p) const {
        if (points.size() < 3) return false;
        const Point& a = *points[0];
        const Point& b = *points[1];
        const Point& c = *points[2];
        const double det = (b.x - a.x) * (c.y - a.y) - (c.x - a.x) * (b.y - a.y);
        if (std::fabs(det) < 1e-7) return false;
        const double u = ((p.x - a.x) * (c.y - a.y) - (p.y - a.y) * (c.x - a.x)) / det;
        const double v = ((b.x - a.x) * (p.y - a.y) - (b.y - a.y) * (p.x - a.x)) / det;
        if (u < -1e-7 || v < -1e-7) return false;
        return u + v > -1e-7 && u + v < 1.0000001;
    }

    bool isInExtent(const Point& p) const {
        return !(extent.left - 1e-7 > p.x || p.x > extent.right + 1e-7 || extent.top - 1e-7 > p.y ||
                 p.y > extent.bottom + 1e-7);
    }

    /// Gives up after 0x1000000 steps, or where that is sure to come: a walk of more steps than there are directed
    /// edges has come back to one, and never ends.
    Edge* locate(const Point& p) const {
        if (!isInSuperTriangle(p)) return nullptr;
        const std::size_t mostSteps = std::min<std::size_t>(0x1000000, 2 * edges.size() + 2);
        Edge* e = startingEdge;
        for (std::size_t steps = 1;; ++steps) {
            if (distance(p, *e->org()) < 1e-6 || distance(p, *e->dest()) < 1e-6) return e;
            if (rightOf(p, e)) {
                e = e->sym();
            } else if (!rightOf(p, e->onext())) {
                e = e->onext();
            } else if (!rightOf(p, e->dprev())) {
                e = e->dprev();
            } else {
                return e;
            }
            if (steps == mostSteps) return nullptr;
        }
    }

    bool insertSite(const Point& v) {
        if (!isInSuperTriangle(v) || !isInExtent(v)) return false;
        Edge* e = locate(v);
        if (e == nullptr) return false;
        if (distance(v, *e->org()) < 1e-6 || distance(v, *e->dest()) < 1e-6) return true;
        if (onEdge(v, e)) {
            e = e->oprev();
            deleteEdge(e->onext());
        }
        Point* added = append(v);
        Edge* base = makeEdge(e->org(), added);
        splice(base, e);
        startingEdge = base;
        do {
            base = connect(e, base->sym());
            e = base->oprev();
        } while (e->lnext() != startingEdge);
        for (;;) {
            Edge* t = e->oprev();
            if (rightOf(*t->dest(), e) && inCircle(*e->org(), *t->dest(), *e->dest(), v)) {
                swap(e);
                e = e->oprev();
            } else if (e->onext() == startingEdge) {
                return true;
            } else {
                e = e->onext()->lprev();
            }
        }
    }

    double findNearestDistance(const Point& p, std::size_t& index) const {
        index = kNotFound;
        double best = kDoubleMax;
        for (std::size_t i = 0; i < points.size(); ++i) {
            if (points[i]->isHelper) continue;
            const double d = squared(p, *points[i]);
            if (d < best) {
                best = d;
                index = i;
            }
        }
        if (index == kNotFound) return kDoubleMax;
        return best < 1e-7 ? 0.0 : std::sqrt(best);
    }

    double resolve(double tolerance) const {
        if (tolerance == kDoubleMax) return 1e-6;
        if (tolerance < 0.0) {
            const double w = extent.right - extent.left;
            const double h = extent.bottom - extent.top;
            return -tolerance * (w > h ? w : h);
        }
        return tolerance;
    }

    static std::unique_ptr<Triangulation> rebuild(const Triangulation& old, const Point& center,
                                                  double radius, bool dropOnly) {
        std::vector<Point> survivors;
        for (const auto& p : old.points)
            if (!p->isHelper && squared(center, *p) > radius * radius) survivors.push_back(*p);
        double left = kFloatMax;
        double top = kFloatMax;
        double right = -kFloatMax;
        double bottom = -kFloatMax;
        const auto widen = [&](const Point& p) {
            if (p.x < left) left = p.x;
            if (p.x > right) right = p.x;
            if (p.y < top) top = p.y;
            if (p.y > bottom) bottom = p.y;
        };
        for (const Point& p : survivors)
            widen(p);
        if (!dropOnly) widen(center);
        const double cx = (left + right) * 0.5;
        const double cy = (top + bottom) * 0.5;
        double w = 2.0 * (right - left);
        double h = 2.0 * (bottom - top);
        if (w < 32.0) w = 32.0;
        if (h < 32.0) h = 32.0;
        const tagMAT_RECT2D rect{cx - w / 2, cy - h / 2, cx + w / 2, cy + h / 2};
        auto fresh = std::make_unique<Triangulation>(&rect);
        for (const Point& p : survivors)
            fresh->insertSite(p);
        if (!dropOnly) fresh->insertSite(center);
        return fresh;
    }

    static int extend(std::unique_ptr<Triangulation>& handle, const tagPOINT3D& point, std::uint64_t id,
                      double tolerance) {
        if (handle == nullptr) return 0;
        // What has no place cannot be inserted.
        if (!std::isfinite(point.x) || !std::isfinite(point.y)) return 0;
        if (!handle->hasPoints()) {
            const tagMAT_RECT2D rect{point.x - 10, point.y - 10, point.x + 10, point.y + 10};
            handle->init(&rect);
        }
        const double radius = handle->resolve(tolerance);
        const Point p{point.x, point.y, point.z, id, false};
        std::size_t index = 0;
        if (handle->findNearestDistance(p, index) > radius && handle->isInExtent(p)) {
            return handle->insertSite(p) ? 1 : 0;
        }
        handle = rebuild(*handle, p, radius, false);
        return 1;
    }

    static int reduce(std::unique_ptr<Triangulation>& handle, const tagPOINT3D& point, double tolerance) {
        if (handle == nullptr || !handle->hasPoints()) return 0;
        if (!std::isfinite(point.x) || !std::isfinite(point.y)) return 0;
        const double radius = handle->resolve(tolerance);
        const Point p{point.x, point.y, kDoubleMax, kNoId, false};
        std::size_t index = 0;
        if (handle->findNearestDistance(p, index) > radius) return 0;
        handle = rebuild(*handle, p, radius, true);
        return 1;
    }

    Point* append(const Point& p) {
        points.push_back(std::make_unique<Point>(p));
        return points.back().get();
    }

    Edge* makeEdge(Point* org, Point* dest) {
        edges.push_back(std::make_unique<Group>());
        Edge* e = &edges.back()->e[0];
        e->org() = org;
        e->dest() = dest;
        return e;
    }

    static void splice(Edge* a, Edge* b) {
        Edge* alpha = a->onext()->rot();
        Edge* beta = b->onext()->rot();
        std::swap(a->next, b->next);
        std::swap(alpha->next, beta->next);
    }

    Edge* connect(Edge* a, Edge* b) {
        Edge* e = makeEdge(nullptr, nullptr);
        splice(e, a->lnext());
        splice(e->sym(), b);
        e->org() = a->dest();
        e->dest() = b->org();
        return e;
    }

    void deleteEdge(Edge* e) {
        splice(e, e->oprev());
        splice(e->sym(), e->sym()->oprev());
        for (std::size_t i = 0; i < edges.size(); ++i) {
            if (e - e->num != &edges[i]->e[0]) continue;
            edges.erase(edges.begin() + static_cast<std::ptrdiff_t>(i));
            return;
        }
    }

    static void swap(Edge* e) {
        Edge* a = e->oprev();
        Edge* b = e->sym()->oprev();
        splice(e, a);
        splice(e->sym(), b);
        splice(e, a->lnext());
        splice(e->sym(), b->lnext());
        e->org() = a->dest();
        e->dest() = b->dest();
    }
};

}  // namespace velquad::test::delaunay

#endif  // VELQUAD_TESTS_SUPPORT_DELAUNAY_REFERENCE_H
